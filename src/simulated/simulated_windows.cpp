#include "simulated/simulated_windows.h"

#include <algorithm>

namespace zev::simulated {
namespace {

constexpr WindowHandle firstForeignWindow = 0x10010;
constexpr WindowHandle windowHandleStep = 2;

auto byHandle(WindowHandle handle) {
  return [handle](const auto& window) { return window.handle == handle; };
}

}  // namespace

std::vector<SimulatedWindows::Window> SimulatedWindows::desktop() const {
  std::vector<Window> windows;
  WindowHandle handle = firstForeignWindow;
  for (const Text& title : machine_.settings.windows) {
    windows.push_back({handle, title});
    handle += windowHandleStep;
  }
  const std::vector<Form*>& forms = screen_.application().forms();
  for (auto form = forms.rbegin(); form != forms.rend(); ++form) {
    windows.push_back({screen_.windowHandle(**form), (*form)->Caption.get()});
  }
  return windows;
}

std::optional<SimulatedWindows::Window> SimulatedWindows::find(WindowHandle window) const {
  const std::vector<Window> windows = desktop();
  const auto found = std::find_if(windows.begin(), windows.end(), byHandle(window));
  return found == windows.end() ? std::nullopt : std::optional(*found);
}

WindowHandle SimulatedWindows::GetWindow(WindowHandle window, std::uint32_t command) {
  const std::vector<Window> windows = desktop();
  const auto found = std::find_if(windows.begin(), windows.end(), byHandle(window));
  if (found == windows.end()) return 0;
  if (command == GW_HWNDFIRST) return windows.front().handle;
  if (command != GW_HWNDNEXT || std::next(found) == windows.end()) return 0;
  return std::next(found)->handle;
}

std::int32_t SimulatedWindows::GetWindowTextLengthA(WindowHandle window) {
  const auto found = find(window);
  return found ? static_cast<std::int32_t>(machine_.toAnsi(found->title).size()) : 0;
}

std::int32_t SimulatedWindows::GetWindowTextA(WindowHandle window, Text& buffer,
                                              std::int32_t size) {
  const auto found = find(window);
  if (!found || size <= 0) return 0;
  const std::string title =
      machine_.toAnsi(found->title).substr(0, static_cast<std::size_t>(size) - 1);
  return static_cast<std::int32_t>(writeAnswer(buffer, title, machine_.codePage()));
}

bool SimulatedWindows::SetForegroundWindow(WindowHandle window) { return find(window).has_value(); }

bool SimulatedWindows::BringWindowToTop(WindowHandle window) { return find(window).has_value(); }

}  // namespace zev::simulated
