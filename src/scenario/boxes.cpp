#include "scenario/boxes.h"

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

std::string listed(const std::vector<std::string_view>& words) {
  std::string all;
  for (const std::string_view each : words) all += (all.empty() ? "" : ", ") + std::string(each);
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

std::vector<std::string_view> buttonsOf(std::int32_t style) {
  std::vector<std::string_view> buttons;
  for (const AnswerWord& each : answerWords) {
    if (simulated::hasButton(style, each.answer)) buttons.push_back(each.word);
  }
  return buttons;
}

BoxAnswer pressed(const Answer& answer, const simulated::Box& box) {
  if (answer.text) {
    throw ScenarioError(answer.path, "a text for the message box \"" + toUtf8(box.text) + "\"");
  }
  const BoxAnswer button = answerOf(answer.button).value();
  if (simulated::hasButton(box.style, button)) return button;
  const auto buttons = buttonsOf(box.style);
  if (button == BoxAnswer::Cancel && buttons.size() == 1) return BoxAnswer::OK;
  throw ScenarioError(answer.path, "the box \"" + toUtf8(box.text) + "\" has no button \"" +
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
