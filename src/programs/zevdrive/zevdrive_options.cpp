#include "programs/zevdrive/zevdrive_options.h"

#include "programs/command_line/command_line.h"

namespace zev::drive {
namespace {

constexpr double shortest = 0.001;
constexpr double longest = 86400;

const char* const description =
    "Plays the script of a scenario on the real program, through its windows.";
const char* const statuses =
    "Exit status: 0 all expectations held; 1 one did not; 2 the scenario or the command line\n"
    "cannot be used; 3 zevdrive itself failed, or the program did not come to rest; 4 the "
    "scenario\n"
    "cannot be played from outside.";

using command_line::CommandLine;

void addOptions(CommandLine& line, DriveOptions& options) {
  line.file("SCENARIO", options.scenario, "The scenario, or a case of it: TABLE.json#CASE")
      .required();
  line.file("--program", options.program, "ZEVSetup.exe");
  line.file("--transcript", options.transcript,
            "Writes what can be seen from outside at rest, as JSON Lines; without it to standard "
            "output");
  line.option("--timeout", options.timeout, "How many seconds the whole play may take")
      .within(shortest, longest, "")
      .typeName("SECONDS")
      .showsDefault();
  line.flag("--prepare", options.prepare,
            "First makes the files, the registry and the windows of other programs that the "
            "scenario's machine has: ON THIS SYSTEM. Without --program that is all");
  line.file("--save-registry", options.registry,
            "A folder: saves the keys Software of machine and user in it at the end");
  line.flag("--check", options.check, "Only tells whether the scenario can be played from outside");
}

void requireSomethingToDo(const DriveOptions& options) {
  if (!options.program && !options.prepare && !options.check) {
    throw command_line::Missing("--program, --prepare or --check");
  }
}

}  // namespace

std::optional<DriveOptions> readOptions(const std::vector<std::string>& arguments,
                                        std::ostream& out, std::ostream& err, int& status) {
  DriveOptions options;
  CommandLine line("zevdrive", description);
  addOptions(line, options);
  line.footer(statuses);
  line.then([&options] { requireSomethingToDo(options); });
  const command_line::Outcome outcome = line.read(arguments, out, err);
  if (outcome != command_line::Outcome::Taken) {
    const bool helped = outcome == command_line::Outcome::Helped;
    status = helped ? exit_status::held : exit_status::unusable;
    return std::nullopt;
  }
  return options;
}

}  // namespace zev::drive
