#pragma once

#include <cstdint>
#include <functional>
#include <utility>

#include "localisation/phrases.h"
#include "state/program.h"

namespace zev {

/// Looks for a running product: it counts as running when a title of its main window and one of its
/// settings window are seen in one pass over the top-level windows.
class RunningProduct {
 public:
  /// Borrows the program and the phrases. `setStage` is told the stage number of each step.
  RunningProduct(Program& program, Phrases& phrases, std::function<void(std::int32_t)> setStage)
      : program_(program), phrases_(phrases), setStage_(std::move(setStage)) {}

  /// Asks the person to close a running product, as often as it is found. False if the person gives
  /// up. Run-time errors are ignored.
  bool waitUntilClosed();

 private:
  bool bothWindowsSeen();
  void look(WindowHandle window);
  Text titleOf(WindowHandle window, std::int32_t length);
  void letEventsRun();
  bool personGivesUp();

  Program& program_;
  Phrases& phrases_;
  std::function<void(std::int32_t)> setStage_;
  bool mainSeen_ = false;
  bool settingsSeen_ = false;
};

}  // namespace zev
