#pragma once

#include <filesystem>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zev::simulator {

/// What the command line of zevsim asks for.
struct ZevsimOptions {
  std::optional<std::filesystem::path> scenario;
  std::optional<std::filesystem::path> package;     ///< in place of the scenario's own
  std::optional<std::filesystem::path> transcript;  ///< a file; none: standard output
  std::optional<std::filesystem::path> outside;     ///< the transcript as seen from outside
  std::optional<std::filesystem::path> state;
  std::optional<std::filesystem::path> exportFolder;
  std::vector<std::string> events;  ///< kinds to write; none: all but those on demand
  int columns = 78;                 ///< that the prompt and the progress are wide
  bool interactive = false;
  bool progress = false;
  bool summary = false;
  bool expand = false;  ///< prints the scenario written out and plays nothing
};

/// A file that the command line names, and that zevsim cannot do with what it is to do.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads the arguments after the program's name. Without a scenario it is the prompt that is
/// meant. None if nothing is to be done: the help was printed, or why the arguments make no sense;
/// `status` is then the exit status.
std::optional<ZevsimOptions> readOptions(const std::vector<std::string>& arguments,
                                         std::ostream& out, std::ostream& err, int& status);

/// How many columns wide the prompt can be drawn at least and at most.
inline constexpr int leastColumns = 40;
inline constexpr int mostColumns = 1000;

/// A number of columns as it is written; none for any other number or text.
std::optional<int> columnsWritten(std::string_view text);

}  // namespace zev::simulator
