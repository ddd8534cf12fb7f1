#pragma once

namespace zev::win32 {

/// A library of the system's folder, loaded by its full path when it is first asked for something,
/// and kept until the process ends.
class SystemLibrary {
 public:
  /// Borrows the name, such as "shell32.dll".
  explicit SystemLibrary(const char* name) : name_(name) {}

  /// A function of the library, by its type and name; null if the system does not have it.
  template <typename Function>
  Function* find(const char* name) {
    return reinterpret_cast<Function*>(address(name));
  }

 private:
  using Address = void (*)();
  Address address(const char* name);

  const char* name_;
  void* module_ = nullptr;
};

}  // namespace zev::win32
