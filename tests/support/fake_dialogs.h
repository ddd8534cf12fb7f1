#pragma once

#include <vector>

#include "platform/dialogs.h"

namespace zev::test {

/// Boxes that nobody sees: each is noted and answered at once.
class FakeDialogs final : public Dialogs {
 public:
  struct Box {
    Text text;
    std::int32_t style;
    Text title;
  };

  std::vector<Box> boxes;
  BoxAnswer answer = BoxAnswer::OK;

  BoxAnswer MsgBox(TextView text, std::int32_t style, TextView title) override {
    boxes.push_back({Text(text), style, Text(title)});
    return answer;
  }
  Text InputBox(TextView, TextView, TextView initial) override { return Text(initial); }
  Text defaultTitle() override { return u"Setup"; }
};

}  // namespace zev::test
