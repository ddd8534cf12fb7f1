#include "scenario/zevsim_options.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>

#include "scenario/event_writer.h"

namespace zev::scenario {
namespace {

void readEvents(const std::string& list, ZevsimOptions& options) {
  const auto& kinds = eventKinds();
  for (std::size_t start = 0; start <= list.size();) {
    const std::size_t end = std::min(list.find(',', start), list.size());
    const std::string kind = list.substr(start, end - start);
    if (kind == "all") {
      options.events.assign(kinds.begin(), kinds.end());
    } else if (std::find(kinds.begin(), kinds.end(), kind) != kinds.end()) {
      options.events.push_back(kind);
    } else {
      throw UsageError("no kind of event \"" + kind + "\"");
    }
    start = end + 1;
  }
}

void readWidth(const std::string& value, ZevsimOptions& options) {
  const auto columns = columnsWritten(value);
  if (!columns) throw UsageError("no width of " + value + " columns; 40 is the least");
  options.columns = *columns;
}

/// One option: its name, whether a value follows, and what it sets.
struct OptionRow {
  std::string_view name;
  bool takesValue;
  void (*set)(const std::string& value, ZevsimOptions& options);
};

template <auto Member>
void take(const std::string& value, ZevsimOptions& options) {
  options.*Member = value;
}

template <auto Member>
void raise(const std::string&, ZevsimOptions& options) {
  options.*Member = true;
}

// clang-format off
constexpr OptionRow optionRows[] = {
    {"--package", true, take<&ZevsimOptions::package>},
    {"--transcript", true, take<&ZevsimOptions::transcript>},
    {"--outside", true, take<&ZevsimOptions::outside>},
    {"--state", true, take<&ZevsimOptions::state>},
    {"--export", true, take<&ZevsimOptions::exportFolder>},
    {"--events", true, readEvents},
    {"--width", true, readWidth},
    {"--interactive", false, raise<&ZevsimOptions::interactive>},
    {"--progress", false, raise<&ZevsimOptions::progress>},
    {"--summary", false, raise<&ZevsimOptions::summary>},
    {"--expand", false, raise<&ZevsimOptions::expand>},
    {"--help", false, raise<&ZevsimOptions::help>},
    {"-h", false, raise<&ZevsimOptions::help>},
};
// clang-format on

const OptionRow& findOption(std::string_view name) {
  for (const OptionRow& each : optionRows) {
    if (each.name == name) return each;
  }
  throw UsageError("no option " + std::string(name));
}

}  // namespace

const char* const zevsimUsage =
    "zevsim SCENARIO.json [options]      plays a scenario on a simulated machine\n"
    "zevsim TABLE.json#CASE [options]    plays a case of a scenario that has several\n"
    "zevsim [--interactive [SCENARIO]]   the same verbs typed at a prompt; help lists them\n"
    "\n"
    "  --package FILE      the installer's file, in place of the scenario's own\n"
    "  --transcript FILE   writes what happened, as JSON Lines; without it to standard output,\n"
    "                      unless that is taken by the prompt, --progress or --summary\n"
    "  --events KIND,...   writes these kinds of event only; `all` is every kind, calls of the\n"
    "                      platform and refreshes of controls included\n"
    "  --outside FILE      writes what can be seen from outside at rest, as zevdrive does\n"
    "  --state FILE        writes the machine's state at the end, as JSON\n"
    "  --export DIR        lays drive C: out as DIR/C at the end, and the registry as\n"
    "                      DIR/registry.reg\n"
    "  --progress          shows the progress of the install, and each message box\n"
    "  --summary           tells at the end what was laid and how long it took\n"
    "  --expand            prints the scenario written out, with nothing named in it, and plays\n"
    "                      nothing\n"
    "  --width N           draws the prompt and the progress N columns wide, 40 or more; 78\n"
    "\n"
    "Exit status: 0 all expectations held; 1 one did not; 2 the scenario or the command line\n"
    "cannot be used; 3 zevsim itself failed.\n";

std::optional<int> columnsWritten(std::string_view text) {
  int columns = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), columns);
  const bool whole = error == std::errc() && end == text.data() + text.size();
  if (!whole || columns < leastColumns || columns > mostColumns) return std::nullopt;
  return columns;
}

ZevsimOptions parseOptions(const std::vector<std::string>& arguments) {
  ZevsimOptions options;
  for (std::size_t place = 0; place < arguments.size(); ++place) {
    const std::string& argument = arguments[place];
    if (!argument.starts_with('-')) {
      if (options.scenario) throw UsageError("more than one scenario: " + argument);
      options.scenario = argument;
      continue;
    }
    const OptionRow& option = findOption(argument);
    if (option.takesValue && ++place == arguments.size()) {
      throw UsageError(argument + " wants a value");
    }
    option.set(option.takesValue ? arguments[place] : std::string(), options);
  }
  if (options.expand && !options.scenario) throw UsageError("--expand wants a scenario");
  if (!options.scenario) options.interactive = true;
  return options;
}

}  // namespace zev::scenario
