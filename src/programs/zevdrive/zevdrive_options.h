#pragma once

#include <filesystem>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace zev::drive {

/// What the command line of zevdrive asks for.
struct DriveOptions {
  std::filesystem::path scenario;
  std::optional<std::filesystem::path> program;     ///< none: nothing is started
  std::optional<std::filesystem::path> transcript;  ///< a file; none: standard output
  std::optional<std::filesystem::path> registry;    ///< a folder to save the registry in
  double timeout = 60;                              ///< seconds that the whole play may take
  bool prepare = false;  ///< make the scenario's machine first, as far as that can be done here
  bool check = false;    ///< only tell whether the scenario can be played
};

/// A file that the command line names, and that zevdrive cannot do with what it is to do.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads the arguments after the program's name, in UTF-8. None if nothing is to be done: the help
/// was printed, or why the arguments make no sense; `status` is then the exit status.
std::optional<DriveOptions> readOptions(const std::vector<std::string>& arguments,
                                        std::ostream& out, std::ostream& err, int& status);

/// Exit statuses of zevdrive.
namespace exit_status {
inline constexpr int held = 0;      ///< all expectations held
inline constexpr int failed = 1;    ///< at least one did not
inline constexpr int unusable = 2;  ///< the scenario or the command line cannot be used
inline constexpr int broken = 3;    ///< zevdrive itself failed, or the program did not come to rest
inline constexpr int refused = 4;   ///< the scenario cannot be played from outside
}  // namespace exit_status

}  // namespace zev::drive
