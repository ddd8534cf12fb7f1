#pragma once

#include "platform/processes.h"
#include "simulated/machine_state.h"
#include "simulated/screen.h"

namespace zev::simulated {

/// The desktop: the windows of other programs in the order of the machine's settings, then the
/// forms that are loaded, the one on top first.
class SimulatedWindows final : public Windows {
 public:
  /// Borrows both.
  SimulatedWindows(const MachineState& machine, Screen& screen)
      : machine_(machine), screen_(screen) {}

  WindowHandle GetWindow(WindowHandle window, std::uint32_t command) override;
  std::int32_t GetWindowTextLengthA(WindowHandle window) override;
  std::int32_t GetWindowTextA(WindowHandle window, Text& buffer, std::int32_t size) override;
  bool SetForegroundWindow(WindowHandle window) override;
  bool BringWindowToTop(WindowHandle window) override;

 private:
  struct Window {
    WindowHandle handle = 0;
    Text title;
  };
  std::vector<Window> desktop() const;
  std::optional<Window> find(WindowHandle window) const;

  const MachineState& machine_;
  Screen& screen_;
};

}  // namespace zev::simulated
