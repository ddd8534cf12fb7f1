#include "programs/zevsim/zevsim_options.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "programs/command_line/command_line.h"
#include "programs/zevsim/event_writer.h"
#include "programs/zevsim/zevsim_main.h"

namespace zev::simulator {
namespace {

const char* const description =
    "Plays a scenario on a simulated machine; without one, the same verbs are typed at a prompt.";
const char* const statuses =
    "Exit status: 0 all expectations held; 1 one did not; 2 the scenario or the command line\n"
    "cannot be used; 3 zevsim itself failed.";

using command_line::CommandLine;
using command_line::Option;

/// The files that it takes; the scenario among them.
Option addFiles(CommandLine& line, ZevsimOptions& options) {
  const Option scenario =
      line.file("SCENARIO", options.scenario, "The scenario, or a case of it: TABLE.json#CASE");
  line.file("--package", options.package, "The installer's file, in place of the scenario's own");
  line.file("--transcript", options.transcript,
            "Writes what happened, as JSON Lines; without it to standard output, unless that is "
            "taken by the prompt, --progress or --summary");
  line.file("--outside", options.outside,
            "Writes what can be seen from outside at rest, as zevdrive does");
  line.file("--state", options.state, "Writes the machine's state at the end, as JSON");
  line.file("--export", options.exportFolder,
            "A folder: lays drive C: out as its folder C at the end, and the registry as its file "
            "registry.reg");
  return scenario;
}

void addEvents(CommandLine& line, ZevsimOptions& options) {
  std::vector<std::string> kinds(eventKinds().begin(), eventKinds().end());
  kinds.push_back("all");
  line.words("--events", options.events, kinds,
             "Writes these kinds of event only; \"all\" is every kind, calls of the platform and "
             "refreshes of controls included")
      .typeName("KIND,KIND");
}

/// "all" stands for every kind.
void spellOutAll(std::vector<std::string>& events) {
  const bool all = std::find(events.begin(), events.end(), "all") != events.end();
  if (all) events.assign(eventKinds().begin(), eventKinds().end());
}

void addScreen(CommandLine& line, ZevsimOptions& options, const Option& scenario) {
  line.flag("--interactive", options.interactive, "The prompt, behind the scenario's script");
  line.flag("--progress", options.progress, "Shows the progress of the install, and each box");
  line.flag("--expand", options.expand,
            "Prints the scenario written out, with nothing named in it, and plays nothing")
      .needs(scenario);
  line.flag("--summary", options.summary, "Tells at the end what was laid and how long it took");
  line.option("--width", options.columns, "The prompt and the progress are so many columns wide")
      .within(leastColumns, mostColumns, "40 at least")
      .typeName("COLUMNS")
      .showsDefault();
}

}  // namespace

std::optional<int> columnsWritten(std::string_view text) {
  int columns = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), columns);
  const bool whole = error == std::errc() && end == text.data() + text.size();
  if (!whole || columns < leastColumns || columns > mostColumns) return std::nullopt;
  return columns;
}

std::optional<ZevsimOptions> readOptions(const std::vector<std::string>& arguments,
                                         std::ostream& out, std::ostream& err, int& status) {
  ZevsimOptions options;
  CommandLine line("zevsim", description);
  const Option scenario = addFiles(line, options);
  addEvents(line, options);
  addScreen(line, options, scenario);
  line.footer(statuses);
  const command_line::Outcome outcome = line.read(arguments, out, err);
  if (outcome != command_line::Outcome::Taken) {
    const bool helped = outcome == command_line::Outcome::Helped;
    status = helped ? exit_status::held : exit_status::unusable;
    return std::nullopt;
  }
  spellOutAll(options.events);
  options.interactive |= !options.scenario;
  return options;
}

}  // namespace zev::simulator
