#include "scenario/answers.h"

#include <algorithm>

namespace zev::scenario {
namespace {

struct AnswerWord {
  BoxAnswer answer;
  std::string_view word;
};

// clang-format off
constexpr AnswerWord answerWords[] = {
    {BoxAnswer::OK, "ok"},
    {BoxAnswer::Yes, "yes"},
    {BoxAnswer::No, "no"},
    {BoxAnswer::Abort, "abort"},
    {BoxAnswer::Retry, "retry"},
    {BoxAnswer::Ignore, "ignore"},
    {BoxAnswer::Cancel, "cancel"},
};
// clang-format on

/// The words of the buttons, always in the same order.
std::string listed(const std::vector<BoxAnswer>& buttons) {
  std::string all;
  for (const AnswerWord& each : answerWords) {
    if (std::find(buttons.begin(), buttons.end(), each.answer) == buttons.end()) continue;
    all += (all.empty() ? "" : ", ") + std::string(each.word);
  }
  return all;
}

}  // namespace

std::string_view answerWord(BoxAnswer answer) {
  for (const AnswerWord& each : answerWords) {
    if (each.answer == answer) return each.word;
  }
  return {};
}

std::optional<BoxAnswer> answerOf(std::string_view word) {
  for (const AnswerWord& each : answerWords) {
    if (each.word == word) return each.answer;
  }
  return std::nullopt;
}

BoxAnswer pressedOf(const Answer& answer, const std::vector<BoxAnswer>& buttons, TextView boxText) {
  if (answer.text) {
    throw ScenarioError(answer.path, "a text for the message box \"" + toUtf8(boxText) + "\"");
  }
  const BoxAnswer button = answerOf(answer.button).value();
  if (std::find(buttons.begin(), buttons.end(), button) != buttons.end()) return button;
  if (button == BoxAnswer::Cancel && buttons.size() == 1) return BoxAnswer::OK;
  throw ScenarioError(answer.path, "the box \"" + toUtf8(boxText) + "\" has no button \"" +
                                       answer.button + "\"; it has " + listed(buttons));
}

Text entered(const Answer& answer, TextView initial) {
  if (answer.text) return *answer.text;
  if (answer.button == "ok") return Text(initial);
  if (answer.button == "cancel") return {};
  throw ScenarioError(answer.path, "an input box has no button \"" + answer.button +
                                       "\"; it takes a text, ok or cancel");
}

}  // namespace zev::scenario
