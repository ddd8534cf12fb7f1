#include "socket/contract.h"

#include <map>

namespace zev::socket_bench {
namespace {

#if defined(__i386__)
/// Who stands behind a window, for procedures that are real code: such a procedure gets nothing but
/// the window.
std::map<WindowHandle, Ear*>& ears() {
  static std::map<WindowHandle, Ear*> all;
  return all;
}

std::intptr_t __attribute__((stdcall))
enterEar(WindowHandle window, std::uint32_t message, std::uintptr_t wParam, std::intptr_t lParam) {
  const auto found = ears().find(window);
  return found == ears().end() ? 0 : found->second->enter({window, message, wParam, lParam});
}
#endif

}  // namespace

Ear::Ear(MessageWindows& windows, std::uintptr_t address)
    : windows_(windows), address_(address), window_(windows.CreateWindowExA(u"STATIC", u"Ear")) {
  former_ = windows_.GetWindowLongA(window_, windowProcedureIndex);
#if defined(__i386__)
  if (windows_.entersMachineCode()) {
    address_ = reinterpret_cast<std::uintptr_t>(&enterEar);
    ears()[window_] = this;
  }
#endif
  if (!windows_.entersMachineCode()) windows_.standIn(address_, this);
  windows_.SetWindowLongA(window_, windowProcedureIndex, address_);
}

Ear::~Ear() {
  destroy();
  windows_.standIn(address_, nullptr);
}

bool Ear::destroy() {
  if (window_ == 0) return false;
  const bool done = windows_.DestroyWindow(window_);
#if defined(__i386__)
  ears().erase(window_);
#endif
  window_ = 0;
  return done;
}

std::size_t Ear::count(std::uint32_t message) const {
  return static_cast<std::size_t>(
      std::count_if(messages.begin(), messages.end(),
                    [&](const WindowMessage& each) { return each.message == message; }));
}

std::intptr_t Ear::enter(const WindowMessage& message) {
  messages.push_back(message);
  return message.message >= firstMessage ? result : windows_.CallWindowProcA(former_, message);
}

}  // namespace zev::socket_bench
