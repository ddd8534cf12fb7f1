#include "programs/zevdrive/other_windows.h"

#include "win32/form_metrics.h"

namespace zev::drive {
namespace {

constexpr const wchar_t* className = L"ZevdriveOther";
constexpr DWORD kForever = 0xFFFFFFFF;

void makeWindow(const Text& title) {
  CreateWindowExW(WS_EX_NOACTIVATE, className, win32::wide(title), WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                  0, 0, 200, 40, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
}

}  // namespace

OtherWindows::OtherWindows(std::vector<Text> titles) : titles_(std::move(titles)) {
  if (titles_.empty()) return;
  WNDCLASSW description{};
  description.lpfnWndProc = DefWindowProcW;
  description.hInstance = GetModuleHandleW(nullptr);
  description.lpszClassName = className;
  RegisterClassW(&description);
  ready_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  thread_ = CreateThread(nullptr, 0, thread, this, 0, &threadId_);
  WaitForSingleObject(ready_, kForever);
  CloseHandle(ready_);
}

OtherWindows::~OtherWindows() {
  if (thread_ == nullptr) return;
  PostThreadMessageW(threadId_, WM_QUIT, 0, 0);
  WaitForSingleObject(thread_, kForever);
  CloseHandle(thread_);
}

DWORD WINAPI OtherWindows::thread(void* self) {
  static_cast<const OtherWindows*>(self)->run();
  return 0;
}

/// The one made last lies on top, so that they are made from the last to the first.
void OtherWindows::run() const {
  for (auto title = titles_.rbegin(); title != titles_.rend(); ++title) makeWindow(*title);
  SetEvent(ready_);
  MSG message{};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
}

}  // namespace zev::drive
