#include "programs/zevdrive/drive_options.h"

#include <algorithm>

namespace zev::drive {
namespace {

double readSeconds(const std::string& value) {
  std::size_t read = 0;
  double seconds = 0;
  try {
    seconds = std::stod(value, &read);
  } catch (const std::logic_error&) {
    read = 0;
  }
  if (read == 0 || read != value.size() || !(seconds > 0)) {
    throw UsageError("--timeout wants seconds, not \"" + value + "\"");
  }
  return seconds;
}

std::filesystem::path pathOf(const std::string& utf8) {
  return std::u8string(utf8.begin(), utf8.end());
}

/// One option: its name, whether a value follows, and what it sets.
struct OptionRow {
  const char* name;
  bool takesValue;
  void (*set)(const std::string& value, DriveOptions& options);
};

// clang-format off
constexpr OptionRow optionRows[] = {
    {"--program", true, [](const std::string& value, DriveOptions& to) { to.program = pathOf(value); }},
    {"--transcript", true, [](const std::string& value, DriveOptions& to) { to.transcript = pathOf(value); }},
    {"--timeout", true, [](const std::string& value, DriveOptions& to) { to.timeout = readSeconds(value); }},
    {"--prepare", false, [](const std::string&, DriveOptions& to) { to.prepare = true; }},
    {"--save-registry", true, [](const std::string& value, DriveOptions& to) { to.registry = pathOf(value); }},
    {"--check", false, [](const std::string&, DriveOptions& to) { to.check = true; }},
    {"--help", false, [](const std::string&, DriveOptions& to) { to.help = true; }},
    {"-h", false, [](const std::string&, DriveOptions& to) { to.help = true; }},
};
// clang-format on

const OptionRow& findOption(const std::string& name) {
  const auto found = std::find_if(std::begin(optionRows), std::end(optionRows),
                                  [&](const OptionRow& row) { return row.name == name; });
  if (found == std::end(optionRows)) throw UsageError("no option " + name);
  return *found;
}

}  // namespace

const char* const driveUsage =
    "zevdrive SCENARIO.json --program ZEVSetup.exe [options]\n"
    "zevdrive TABLE.json#CASE --program ZEVSetup.exe [options]\n"
    "\n"
    "plays the script of a scenario on the real program, through its windows\n"
    "\n"
    "  --transcript FILE   writes what can be seen from outside at rest, as JSON Lines; without "
    "it\n"
    "                      to standard output\n"
    "  --timeout SECONDS   how long the whole play may take; 60\n"
    "  --prepare           first makes the files, the registry and the windows of other programs\n"
    "                      that the scenario's machine has: ON THIS SYSTEM. Without --program "
    "that\n"
    "                      is all\n"
    "  --save-registry DIR saves the keys Software of machine and user in a folder at the end\n"
    "  --check             only tells whether the scenario can be played from outside\n"
    "\n"
    "Exit status: 0 all expectations held; 1 one did not; 2 the scenario or the command line\n"
    "cannot be used; 3 zevdrive itself failed, or the program did not come to rest; 4 the "
    "scenario\n"
    "cannot be played from outside.\n";

DriveOptions parseOptions(const std::vector<std::string>& arguments) {
  DriveOptions options;
  for (std::size_t place = 0; place < arguments.size(); ++place) {
    const std::string& argument = arguments[place];
    if (!argument.starts_with('-')) {
      if (options.scenario) throw UsageError("more than one scenario: " + argument);
      options.scenario = pathOf(argument);
      continue;
    }
    const OptionRow& option = findOption(argument);
    if (option.takesValue && ++place == arguments.size()) {
      throw UsageError(argument + " wants a value");
    }
    option.set(option.takesValue ? arguments[place] : std::string(), options);
  }
  if (!options.help && !options.scenario) throw UsageError("no scenario");
  if (!options.help && !options.program && !options.prepare && !options.check) {
    throw UsageError("no --program");
  }
  return options;
}

}  // namespace zev::drive
