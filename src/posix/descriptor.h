#pragma once

#include <utility>

namespace zev::posix {

/// A file descriptor and its only owner.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor();

  int get() const { return number_; }
  /// Closes it now. The error number of the system, 0 on success; it is gone in either case.
  int close();

 private:
  int number_ = -1;
};

}  // namespace zev::posix
