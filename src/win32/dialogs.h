#pragma once

#include "platform/dialogs.h"
#include "win32/form_engine.h"

namespace zev::win32 {

/// The boxes of Windows, over the form that is in use.
class WindowsDialogs final : public Dialogs {
 public:
  /// Borrows the engine, whose forms take no input while a box is open.
  explicit WindowsDialogs(WindowsEngine& engine) : engine_(engine) {}

  BoxAnswer MsgBox(TextView text, std::int32_t style, TextView title) override;
  Text InputBox(TextView prompt, TextView title, TextView initial) override;
  Text defaultTitle() override;

 private:
  WindowsEngine& engine_;
};

}  // namespace zev::win32
