#include "win32/message_windows.h"

#include <algorithm>
#include <utility>

#include "win32/ansi.h"
#include "win32/kernel.h"
#include "win32/windows_api.h"

namespace zev::win32 {
namespace {

/// Property of a window under which its record is found again.
constexpr char recordProperty[] = "ZevMessageWindow";

HWND windowOf(WindowHandle window) { return reinterpret_cast<HWND>(window); }

WindowHandle handleOf(HWND window) { return reinterpret_cast<WindowHandle>(window); }

/// The window's procedure as the system has it.
std::uintptr_t actualProcedure(HWND window) {
  return static_cast<std::uintptr_t>(::GetWindowLongPtrA(window, GWLP_WNDPROC));
}

bool setActualProcedure(HWND window, std::uintptr_t procedure) {
  return ::SetWindowLongPtrA(window, GWLP_WNDPROC, static_cast<LONG_PTR>(procedure)) != 0;
}

std::uintptr_t defaultProcedure() { return reinterpret_cast<std::uintptr_t>(&::DefWindowProcA); }

}  // namespace

/// What is kept with a window.
struct Win32MessageWindows::Window {
  Win32MessageWindows& owner;
  HWND handle;
  std::uintptr_t procedure;  ///< which the common one enters
  std::function<bool(const WindowMessage&)> drops;
};

/// Where the system enters. What is behind it lets no exception out.
struct Win32MessageWindows::Entries {
  static Window* recordOf(HWND window) {
    return static_cast<Window*>(::GetPropA(window, recordProperty));
  }

  /// The common procedure. The window can be gone when the message has been answered.
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM first,
                                    LPARAM second) noexcept {
    const Window* const record = recordOf(window);
    if (record == nullptr) return ::DefWindowProcA(window, message, first, second);
    Win32MessageWindows& owner = record->owner;
    const LRESULT answer =
        owner.CallWindowProcA(record->procedure, {handleOf(window), message, first, second});
    if (message == WM_NCDESTROY) owner.forget(handleOf(window));
    return answer;
  }

  /// Sees each message that a loop of the thread gets, those of modal loops included. One that is
  /// to vanish becomes one that nobody answers.
  static LRESULT CALLBACK filter(int code, WPARAM removal, LPARAM taken) noexcept {
    if (code == HC_ACTION && removal == PM_REMOVE) {
      MSG& each = *reinterpret_cast<MSG*>(taken);
      if (isToVanish(each)) each = {nullptr, WM_NULL, 0, 0, each.time, each.pt};
    }
    return ::CallNextHookEx(nullptr, code, removal, taken);
  }

  static bool isToVanish(const MSG& each) {
    const Window* const record = each.hwnd == nullptr ? nullptr : recordOf(each.hwnd);
    return record != nullptr && record->drops &&
           record->drops({handleOf(each.hwnd), each.message, each.wParam, each.lParam});
  }

  static std::uintptr_t common() { return reinterpret_cast<std::uintptr_t>(&procedure); }
};

// ---- windows

Win32MessageWindows::Win32MessageWindows() : systems_{defaultProcedure()} {}

Win32MessageWindows::~Win32MessageWindows() {
  routines_.clear();
  while (!windows_.empty()) {
    const WindowHandle each = windows_.begin()->first;
    ::DestroyWindow(windowOf(each));
    forget(each);
  }
}

WindowHandle Win32MessageWindows::CreateWindowExA(TextView className, TextView caption) {
  const HWND window =
      ::CreateWindowExA(0, ansiArgument(className).c_str(), ansiArgument(caption).c_str(), 0, 0, 0,
                        0, 0, nullptr, nullptr, ::GetModuleHandleA(nullptr), nullptr);
  return window != nullptr && take(handleOf(window)) ? handleOf(window) : 0;
}

/// The window keeps doing what its class does, now by way of the common procedure.
bool Win32MessageWindows::take(WindowHandle window) {
  const HWND handle = windowOf(window);
  const std::uintptr_t procedure = actualProcedure(handle);
  systems_.insert(procedure);
  windows_[window].reset(new Window{*this, handle, procedure, {}});
  const bool taken = ::SetPropA(handle, recordProperty, windows_[window].get()) != FALSE &&
                     setActualProcedure(handle, Entries::common());
  if (!taken) DestroyWindow(window);
  return taken;
}

bool Win32MessageWindows::DestroyWindow(WindowHandle window) {
  if (::DestroyWindow(windowOf(window)) == FALSE) return false;
  forget(window);
  return true;
}

/// Does nothing for a window that is forgotten already.
void Win32MessageWindows::forget(WindowHandle window) {
  if (windows_.count(window) == 0) return;
  ::RemovePropA(windowOf(window), recordProperty);
  windows_.erase(window);
  followRules();
}

// ---- procedures

bool Win32MessageWindows::entersMachineCode() const { return win32::entersMachineCode; }

void Win32MessageWindows::standIn(std::uintptr_t address, MessageRoutine* routine) {
  if (routine == nullptr) {
    routines_.erase(address);
  } else {
    routines_[address] = routine;
  }
}

Win32MessageWindows::Window* Win32MessageWindows::find(WindowHandle window,
                                                       std::int32_t index) const {
  const auto found = windows_.find(window);
  if (found == windows_.end() || index != windowProcedureIndex) return nullptr;
  return found->second.get();
}

/// Machine code, as it can be entered, can set a procedure past this object.
std::uintptr_t Win32MessageWindows::procedureOf(const Window& window) const {
  const std::uintptr_t actual = actualProcedure(window.handle);
  return actual == Entries::common() ? window.procedure : actual;
}

std::uintptr_t Win32MessageWindows::GetWindowLongA(WindowHandle window, std::int32_t index) {
  const Window* const found = find(window, index);
  return found == nullptr ? 0 : procedureOf(*found);
}

std::uintptr_t Win32MessageWindows::SetWindowLongA(WindowHandle window, std::int32_t index,
                                                   std::uintptr_t procedure) {
  Window* const found = find(window, index);
  if (found == nullptr) return 0;
  const std::uintptr_t wanted = procedure == 0 ? defaultProcedure() : procedure;
  const bool common = standsIn(wanted) || isSystems(wanted);
  if (!common && !entersMachineCode()) return 0;
  const std::uintptr_t former = procedureOf(*found);
  if (!setActualProcedure(found->handle, common ? Entries::common() : wanted)) return 0;
  found->procedure = wanted;
  return former;
}

std::intptr_t Win32MessageWindows::CallWindowProcA(std::uintptr_t procedure,
                                                   const WindowMessage& message) {
  const auto routine = routines_.find(procedure);
  if (routine != routines_.end()) return routine->second->enter(message);
  if (procedure == 0 || !(isSystems(procedure) || entersMachineCode())) return 0;
  return ::CallWindowProcA(reinterpret_cast<WNDPROC>(procedure), windowOf(message.window),
                           message.message, message.wParam, message.lParam);
}

// ---- rules

void Win32MessageWindows::dropBeforeDispatch(WindowHandle window,
                                             std::function<bool(const WindowMessage&)> drops) {
  Window* const found = find(window, windowProcedureIndex);
  if (found == nullptr) return;
  found->drops = std::move(drops);
  followRules();
}

/// The thread's hook is there while a rule is in force.
void Win32MessageWindows::followRules() {
  const bool wanted = std::any_of(windows_.begin(), windows_.end(), [](const auto& each) {
    return static_cast<bool>(each.second->drops);
  });
  if (wanted == (hook_ != nullptr)) return;
  if (wanted) {
    hook_ = ::SetWindowsHookExA(WH_GETMESSAGE, Entries::filter, nullptr, ::GetCurrentThreadId());
  } else {
    ::UnhookWindowsHookEx(static_cast<HHOOK>(std::exchange(hook_, nullptr)));
  }
}

}  // namespace zev::win32
