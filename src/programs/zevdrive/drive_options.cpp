#include "programs/zevdrive/drive_options.h"

#include <CLI/CLI.hpp>

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

using Path = std::filesystem::path;

CLI::Option* addFile(CLI::App& app, const char* name, const std::function<void(Path)>& take,
                     const char* help) {
  const auto taken = [take](const std::string& utf8) {
    take(std::u8string(utf8.begin(), utf8.end()));
  };
  return app.add_option_function<std::string>(name, taken, help)->type_name("FILE");
}

void addOptions(CLI::App& app, DriveOptions& options) {
  addFile(
      app, "SCENARIO", [&](const Path& file) { options.scenario = file; },
      "The scenario, or a case of it: TABLE.json#CASE")
      ->required();
  addFile(
      app, "--program", [&](const Path& file) { options.program = file; }, "ZEVSetup.exe");
  addFile(
      app, "--transcript", [&](const Path& file) { options.transcript = file; },
      "Writes what can be seen from outside at rest, as JSON Lines; without it to standard "
      "output");
  app.add_option("--timeout", options.timeout, "How many seconds the whole play may take")
      ->check(CLI::Range(shortest, longest).description(""))
      ->type_name("SECONDS")
      ->capture_default_str();
  app.add_flag("--prepare", options.prepare,
               "First makes the files, the registry and the windows of other programs that the "
               "scenario's machine has: ON THIS SYSTEM. Without --program that is all");
  addFile(
      app, "--save-registry", [&](const Path& folder) { options.registry = folder; },
      "A folder: saves the keys Software of machine and user in it at the end");
  app.add_flag("--check", options.check,
               "Only tells whether the scenario can be played from outside");
}

}  // namespace

std::optional<DriveOptions> readOptions(const std::vector<std::string>& arguments,
                                        std::ostream& out, std::ostream& err, int& status) {
  DriveOptions options;
  CLI::App app(description, "zevdrive");
  addOptions(app, options);
  app.footer(statuses);
  try {
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    if (!options.program && !options.prepare && !options.check) {
      throw CLI::RequiredError("--program, --prepare or --check");
    }
  } catch (const CLI::ParseError& error) {
    const bool helped = app.exit(error, out, err) == 0;
    status = helped ? exit_status::held : exit_status::unusable;
    return std::nullopt;
  }
  return options;
}

}  // namespace zev::drive
