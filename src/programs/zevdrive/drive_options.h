#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace zev::drive {

/// What the command line of zevdrive asks for.
struct DriveOptions {
  std::optional<std::filesystem::path> scenario;
  std::optional<std::filesystem::path> program;     ///< none: nothing is started
  std::optional<std::filesystem::path> transcript;  ///< a file; none: standard output
  std::optional<std::filesystem::path> registry;    ///< a folder to save the registry in
  double timeout = 60;                              ///< seconds that the whole play may take
  bool prepare = false;  ///< make the scenario's machine first, as far as that can be done here
  bool check = false;    ///< only tell whether the scenario can be played
  bool help = false;
};

/// A command line that zevdrive cannot make sense of.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads the arguments behind the program's name, in UTF-8.
DriveOptions parseOptions(const std::vector<std::string>& arguments);

/// The text that --help prints.
extern const char* const driveUsage;

}  // namespace zev::drive
