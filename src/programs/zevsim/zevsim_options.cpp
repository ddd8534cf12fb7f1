#include "programs/zevsim/zevsim_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <system_error>

#include "programs/zevsim/event_writer.h"
#include "programs/zevsim/zevsim_main.h"

namespace zev::simulator {
namespace {

const char* const description =
    "Plays a scenario on a simulated machine; without one, the same verbs are typed at a prompt.";
const char* const statuses =
    "Exit status: 0 all expectations held; 1 one did not; 2 the scenario or the command line\n"
    "cannot be used; 3 zevsim itself failed.";

using File = std::optional<std::filesystem::path>;

void addFile(CLI::App& app, const char* name, File& file, const char* help) {
  app.add_option_function<std::string>(
         name, [&file](const std::string& given) { file = given; }, help)
      ->type_name("FILE");
}

void addFiles(CLI::App& app, ZevsimOptions& options) {
  addFile(app, "SCENARIO", options.scenario, "The scenario, or a case of it: TABLE.json#CASE");
  addFile(app, "--package", options.package,
          "The installer's file, in place of the scenario's own");
  addFile(app, "--transcript", options.transcript,
          "Writes what happened, as JSON Lines; without it to standard output, unless that is "
          "taken by the prompt, --progress or --summary");
  addFile(app, "--outside", options.outside,
          "Writes what can be seen from outside at rest, as zevdrive does");
  addFile(app, "--state", options.state, "Writes the machine's state at the end, as JSON");
  addFile(app, "--export", options.exportFolder,
          "A folder: lays drive C: out as its folder C at the end, and the registry as its file "
          "registry.reg");
}

/// "all" stands for every kind.
void takeEvents(const std::vector<std::string>& given, ZevsimOptions& options) {
  const bool all = std::find(given.begin(), given.end(), "all") != given.end();
  const auto& kinds = eventKinds();
  options.events = all ? std::vector<std::string>(kinds.begin(), kinds.end()) : given;
}

void addEvents(CLI::App& app, ZevsimOptions& options) {
  std::vector<std::string> kinds(eventKinds().begin(), eventKinds().end());
  kinds.push_back("all");
  app.add_option_function<std::vector<std::string>>(
         "--events",
         [&options](const std::vector<std::string>& given) { takeEvents(given, options); },
         "Writes these kinds of event only; \"all\" is every kind, calls of the platform and "
         "refreshes of controls included")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->check(CLI::IsMember(kinds).description(""))
      ->type_name("KIND,KIND");
}

void addScreen(CLI::App& app, ZevsimOptions& options) {
  app.add_flag("--interactive", options.interactive, "The prompt, behind the scenario's script");
  app.add_flag("--progress", options.progress, "Shows the progress of the install, and each box");
  app.add_flag("--expand", options.expand,
               "Prints the scenario written out, with nothing named in it, and plays nothing")
      ->needs(app.get_option("SCENARIO"));
  app.add_flag("--summary", options.summary, "Tells at the end what was laid and how long it took");
  app.add_option("--width", options.columns, "The prompt and the progress are so many columns wide")
      ->check(CLI::Range(leastColumns, mostColumns).description("40 at least"))
      ->type_name("COLUMNS")
      ->capture_default_str();
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
  CLI::App app(description, "zevsim");
  addFiles(app, options);
  addEvents(app, options);
  addScreen(app, options);
  app.footer(statuses);
  try {
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::ParseError& error) {
    const bool helped = app.exit(error, out, err) == 0;
    status = helped ? exit_status::held : exit_status::unusable;
    return std::nullopt;
  }
  options.interactive |= !options.scenario;
  return options;
}

}  // namespace zev::simulator
