#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>

namespace zev::packing {

/// A line on standard error that follows long work; nothing if that is no terminal. Several threads
/// can work on the pieces.
class Progress {
 public:
  /// `work` begins the line, as "Packing" does, `total` is how many pieces there are. The line ends
  /// with this object.
  Progress(std::string_view work, std::size_t total);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// One more piece is being worked on.
  void step(std::string_view piece);

 private:
  std::mutex telling_;
  std::string work_;
  std::size_t total_;
  std::size_t done_ = 0;
  bool shown_;
};

/// Calls `task` for each number below `count`, on as many processors as the process may use, and
/// returns when all calls have ended. Calls begin in the order of their numbers. If any throw, the
/// exception of the lowest number is thrown again; what had not begun by then is left out. Where
/// the system grants no threads, the calling one does it all.
void inParallel(std::size_t count, const std::function<void(std::size_t)>& task);

}  // namespace zev::packing
