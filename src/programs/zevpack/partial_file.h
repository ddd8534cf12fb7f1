#pragma once

#include <string>

namespace zev::packing {

/// A file in the making, under a name of its own. It is made exclusively, so never through a link;
/// while this lives nothing is left of it, however the process ends, unless that is killed on the
/// spot.
class PartialFile {
 public:
  /// Opens it for writing; std::system_error if it cannot be made, a file of that name among the
  /// reasons.
  explicit PartialFile(std::string path);
  /// Removes what has not been given another name.
  ~PartialFile();
  PartialFile(const PartialFile&) = delete;
  PartialFile& operator=(const PartialFile&) = delete;

  const std::string& path() const { return path_; }
  int descriptor() const { return descriptor_; }
  /// Closes it and gives it another name, in the place of what has it. std::system_error if it
  /// cannot.
  void rename(const std::string& path);

 private:
  void forget();
  friend void removePartialFiles();

  std::string path_;
  int descriptor_ = -1;
  bool there_ = false;
  PartialFile* next_ = nullptr;
};

}  // namespace zev::packing
