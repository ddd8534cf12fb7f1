#pragma once

#include "platform/dialogs.h"
#include "runtime/text.h"
#include "win32/form_engine.h"
#include "win32/windows_api.h"

namespace zev::win32 {

/// The boxes of Windows, over the form that is in use.
class Win32Dialogs final : public Dialogs {
 public:
  /// Borrows the engine, whose forms take no input while a box is open.
  explicit Win32Dialogs(Win32FormEngine& engine) : engine_(engine) {}

  BoxAnswer MsgBox(TextView text, std::int32_t style, TextView title) override;
  Text InputBox(TextView prompt, TextView title, TextView initial) override;
  Text defaultTitle() override;

 private:
  Win32FormEngine& engine_;
};

/// A modal box with a prompt, one text field, OK and Cancel over the window `owner`. The text;
/// empty if the person cancels.
Text askForText(HWND owner, const Text& prompt, const Text& title, const Text& initial);

/// Numbers of its parts, for who drives the program from outside.
namespace input_box {
inline constexpr int prompt = 1000;
inline constexpr int field = 1001;
}  // namespace input_box

}  // namespace zev::win32
