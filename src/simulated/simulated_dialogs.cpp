#include "simulated/simulated_dialogs.h"

namespace zev::simulated {
namespace {

/// As long as it lives, a box is open.
class OpenBox {
 public:
  explicit OpenBox(Screen& screen) : screen_(screen) { screen_.boxOpens(); }
  ~OpenBox() { screen_.boxCloses(); }
  OpenBox(const OpenBox&) = delete;
  OpenBox& operator=(const OpenBox&) = delete;

 private:
  Screen& screen_;
};

}  // namespace

BoxAnswer SimulatedDialogs::MsgBox(TextView text, std::int32_t style, TextView title) {
  const Box box{Text(text), style, Text(title)};
  BoxAnswer answer{};
  {
    const OpenBox open(screen_);
    answer = person_.answer(box);
  }
  if (machine_.transcript.wants("box")) {
    machine_.transcript.add({{"event", "box"},
                             {"text", toUtf8(text)},
                             {"title", toUtf8(title)},
                             {"style", style},
                             {"answer", answerName(answer)}});
  }
  return answer;
}

Text SimulatedDialogs::InputBox(TextView prompt, TextView title, TextView initial) {
  Text answer;
  {
    const OpenBox open(screen_);
    answer = person_.input(prompt, title, initial);
  }
  if (machine_.transcript.wants("input")) {
    machine_.transcript.add({{"event", "input"},
                             {"prompt", toUtf8(prompt)},
                             {"title", toUtf8(title)},
                             {"answer", toUtf8(answer)}});
  }
  return answer;
}

}  // namespace zev::simulated
