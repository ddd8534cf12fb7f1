#include "simulated/person.h"

#include <algorithm>
#include <vector>

namespace zev::simulated {
namespace {

constexpr std::int32_t buttonMask = 0xF;
constexpr std::int32_t defaultButtonShift = 8;
constexpr std::int32_t defaultButtonMask = 3;

/// The buttons of a box, in their order, by the lowest digit of its style.
std::vector<BoxAnswer> buttonsOf(std::int32_t style) {
  using enum BoxAnswer;
  switch (style & buttonMask) {
    case 1:
      return {OK, Cancel};
    case 2:
      return {Abort, Retry, Ignore};
    case 3:
      return {Yes, No, Cancel};
    case 4:
      return {Yes, No};
    case 5:
      return {Retry, Cancel};
    default:
      return {OK};
  }
}

}  // namespace

BoxAnswer defaultAnswer(std::int32_t style) {
  const std::vector<BoxAnswer> buttons = buttonsOf(style);
  const auto place = static_cast<std::size_t>((style >> defaultButtonShift) & defaultButtonMask);
  return place < buttons.size() ? buttons[place] : buttons.front();
}

bool hasButton(std::int32_t style, BoxAnswer answer) {
  const std::vector<BoxAnswer> buttons = buttonsOf(style);
  return std::find(buttons.begin(), buttons.end(), answer) != buttons.end();
}

}  // namespace zev::simulated
