#pragma once

#include "simulated/person.h"

namespace zev::simulated {

/// Nobody sits at the machine: nothing is done, and boxes take their default button.
class Nobody final : public Person {
 public:
  bool next() override { return false; }
  BoxAnswer answer(const Box& box) override { return defaultAnswer(box.style); }
  Text input(TextView, TextView, TextView) override { return {}; }
};

}  // namespace zev::simulated
