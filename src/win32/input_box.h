#pragma once

#include "runtime/text.h"
#include "win32/windows_api.h"

namespace zev::win32 {

/// A modal box with a prompt, one text field, OK and Cancel over the window `owner`. The text;
/// empty if the person cancels.
Text askForText(HWND owner, const Text& prompt, const Text& title, const Text& initial);

/// Numbers of its parts, for who drives the program from outside.
namespace input_box {
inline constexpr int prompt = 1000;
inline constexpr int field = 1001;
}  // namespace input_box

}  // namespace zev::win32
