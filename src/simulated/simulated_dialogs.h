#pragma once

#include "platform/dialogs.h"
#include "simulated/machine_state.h"
#include "simulated/person.h"
#include "simulated/screen.h"

namespace zev::simulated {

/// Boxes, answered by the person. While one is open the forms take no input.
class SimulatedDialogs final : public Dialogs {
 public:
  /// Borrows all three.
  SimulatedDialogs(MachineState& machine, Person& person, Screen& screen)
      : machine_(machine), person_(person), screen_(screen) {}

  /// Both wait for the person, during which the forms take no input, and then tell the transcript.
  BoxAnswer MsgBox(TextView text, std::int32_t style, TextView title) override;
  Text InputBox(TextView prompt, TextView title, TextView initial) override;
  Text defaultTitle() override { return u"ZEVSetup"; }

 private:
  MachineState& machine_;
  Person& person_;
  Screen& screen_;
};

}  // namespace zev::simulated
