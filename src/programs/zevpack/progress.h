#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

namespace zev::packing {

/// A line on standard error that follows long work; nothing if that is no terminal. Several threads
/// can work on the pieces.
class Progress {
 public:
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

}  // namespace zev::packing
