#pragma once

#include <vector>

#include "runtime/text.h"
#include "win32/windows_api.h"

namespace zev::drive {

/// Top-level windows of another program, with titles as the scenario gives them and nothing else.
/// They answer messages for as long as this lives.
class OtherWindows {
 public:
  explicit OtherWindows(std::vector<Text> titles);
  ~OtherWindows();
  OtherWindows(const OtherWindows&) = delete;
  OtherWindows& operator=(const OtherWindows&) = delete;

 private:
  static DWORD WINAPI thread(void* self);
  void run() const;

  std::vector<Text> titles_;
  HANDLE ready_ = nullptr;
  HANDLE thread_ = nullptr;
  DWORD threadId_ = 0;
};

}  // namespace zev::drive
