#include "posix/code_queue.h"

#if defined(__i386__)

#include <algorithm>
#include <iterator>
#include <utility>

// What machine code calls has the convention of the system that it was made for, and finds a stack
// that is aligned to four bytes only.
#define ZEV_STDCALL __attribute__((stdcall))
#define ZEV_CALLED_BY_CODE __attribute__((stdcall, force_align_arg_pointer))

namespace zev::posix {
namespace {

using Procedure = std::int32_t(ZEV_STDCALL*)(WindowHandle, std::uint32_t, std::uintptr_t,
                                             std::intptr_t);

/// Machine code names no queue, as on the system that it was made for, where each thread has one.
thread_local CodeQueue* entered = nullptr;

ZEV_CALLED_BY_CODE std::int32_t setWindowLongA(WindowHandle window, std::int32_t index,
                                               std::uintptr_t procedure) {
  if (entered == nullptr) return 0;
  return static_cast<std::int32_t>(entered->SetWindowLongA(window, index, procedure));
}

ZEV_CALLED_BY_CODE std::int32_t callWindowProcA(std::uintptr_t procedure, WindowHandle window,
                                                std::uint32_t message, std::uintptr_t wParam,
                                                std::intptr_t lParam) {
  if (entered == nullptr) return 0;
  return entered->CallWindowProcA(procedure, {window, message, wParam, lParam});
}

struct Function {
  std::string_view library;
  std::string_view name;
  std::uintptr_t address;
};

}  // namespace

CodeQueue::~CodeQueue() {
  if (entered == this) entered = nullptr;
}

std::intptr_t CodeQueue::CallWindowProcA(std::uintptr_t procedure, const WindowMessage& message) {
  CodeQueue* const before = std::exchange(entered, this);
  const std::intptr_t result = MessageQueue::CallWindowProcA(procedure, message);
  if (before != nullptr) entered = before;
  return result;
}

std::intptr_t CodeQueue::enterCode(std::uintptr_t procedure, const WindowMessage& message) {
  const auto code = reinterpret_cast<Procedure>(procedure);
  return code(message.window, message.message, message.wParam, message.lParam);
}

std::uintptr_t codeOf(std::string_view library, std::string_view function) {
  const Function functions[] = {
      {"user32", "SetWindowLongA", reinterpret_cast<std::uintptr_t>(&setWindowLongA)},
      {"user32", "CallWindowProcA", reinterpret_cast<std::uintptr_t>(&callWindowProcA)},
  };
  const auto found = std::find_if(
      std::begin(functions), std::end(functions),
      [&](const Function& each) { return each.library == library && each.name == function; });
  return found == std::end(functions) ? 0 : found->address;
}

}  // namespace zev::posix

#else

namespace zev::posix {

std::uintptr_t codeOf(std::string_view, std::string_view) { return 0; }

}  // namespace zev::posix

#endif
