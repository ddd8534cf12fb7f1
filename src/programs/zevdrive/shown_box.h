#pragma once

#include <cstdint>
#include <vector>

#include "platform/dialogs.h"
#include "win32/windows_api.h"

namespace zev::drive {

/// Which of the system's icons a window shows on the screen, as the style of a message box has it:
/// 16, 32, 48 or 64. 0 if it shows none of them, even after some time.
std::int32_t iconShownBy(HWND window);

/// A message box on the screen, as far as it shows.
struct ShownBox {
  HWND window = nullptr;
  Text text{};
  Text title{};
  std::vector<BoxAnswer> buttons{};  ///< from the left
  BoxAnswer byDefault = BoxAnswer::OK;
  std::int32_t icon = 0;  ///< as the style has it

  /// Buttons, icon and default button as the style's number has them.
  std::int32_t style() const;
};

/// True for the box that asks for a text.
bool isInputBox(HWND box);

/// Reads a message box that is open and at rest, which is brought onto the screen first.
ShownBox readBox(HWND box);
/// Presses a button of a message box, by key or mouse.
void press(const ShownBox& box, BoxAnswer answer);

/// An input box on the screen.
struct ShownInput {
  HWND window = nullptr;
  Text prompt{};
  Text title{};
  Text initial{};
};

ShownInput readInput(HWND box);
/// Leaves the box with that text by OK.
void enter(const ShownInput& box, const Text& text);
/// Leaves the box by Cancel.
void cancel(const ShownInput& box);

}  // namespace zev::drive
