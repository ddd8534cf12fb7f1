#include "scenario/answers.h"

#include <algorithm>

namespace zev::scenario {
namespace {

/// In the order in which a message lists them.
constexpr BoxAnswer buttonOrder[] = {BoxAnswer::OK,    BoxAnswer::Yes,   BoxAnswer::No,
                                     BoxAnswer::Abort, BoxAnswer::Retry, BoxAnswer::Ignore,
                                     BoxAnswer::Cancel};

/// The words of the buttons, always in the same order.
std::string listed(const std::vector<BoxAnswer>& buttons) {
  std::string all;
  for (const BoxAnswer each : buttonOrder) {
    if (std::find(buttons.begin(), buttons.end(), each) == buttons.end()) continue;
    all += (all.empty() ? "" : ", ") + std::string(answerName(each));
  }
  return all;
}

}  // namespace

BoxAnswer pressedOf(const Answer& answer, const std::vector<BoxAnswer>& buttons, TextView boxText) {
  if (answer.text) {
    throw ScenarioError(answer.path, "a text for the message box \"" + toUtf8(boxText) + "\"");
  }
  const BoxAnswer button = answerNamed(answer.button).value();
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
