#include "scenario/boxes.h"

namespace zev::scenario {
namespace {

constexpr BoxAnswer allButtons[] = {
    BoxAnswer::OK,    BoxAnswer::Yes,    BoxAnswer::No,     BoxAnswer::Abort,
    BoxAnswer::Retry, BoxAnswer::Ignore, BoxAnswer::Cancel,
};

std::vector<BoxAnswer> answersOf(std::int32_t style) {
  std::vector<BoxAnswer> answers;
  for (const BoxAnswer each : allButtons) {
    if (simulated::hasButton(style, each)) answers.push_back(each);
  }
  return answers;
}

}  // namespace

std::vector<std::string_view> buttonsOf(std::int32_t style) {
  std::vector<std::string_view> buttons;
  for (const BoxAnswer each : answersOf(style)) buttons.push_back(answerWord(each));
  return buttons;
}

BoxAnswer pressed(const Answer& answer, const simulated::Box& box) {
  return pressedOf(answer, answersOf(box.style), box.text);
}

}  // namespace zev::scenario
