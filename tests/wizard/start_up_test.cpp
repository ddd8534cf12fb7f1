// What the start asks in which order, and what it tells of an error at a step that asks nobody.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <set>

#include "simulated/simulated_machine.h"
#include "wizard/setup.h"

namespace zev {
namespace {

using testing::ElementsAre;

// ---- the first language

/// The digits of a number below 1024, as a table of hexadecimal digits gives them.
std::string hexadecimalOf(int number) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text;
  do {
    text.insert(text.begin(), digits[static_cast<std::size_t>(number % 16)]);
    number /= 16;
  } while (number != 0);
  return text;
}

TEST(PrimaryLanguage, IsTheIdentifierWithoutItsHighestSixBits) {
  for (int identifier = 0; identifier <= 0xFFFF; ++identifier) {
    EXPECT_EQ(toUtf8(PrimaryLanguage(static_cast<std::uint16_t>(identifier))),
              hexadecimalOf(identifier % 1024));
  }
}

// ---- the start

/// Somebody at whose screen one property can be made to fail when it is written.
class UnluckyPerson final : public simulated::Person {
 public:
  std::string control;
  std::string property;
  std::vector<simulated::Box> boxes;

  bool next() override { return false; }
  BoxAnswer answer(const simulated::Box& box) override {
    boxes.push_back(box);
    return simulated::defaultAnswer(box.style);
  }
  Text input(TextView, TextView, TextView initial) override { return Text(initial); }
  void propertyWritten(PropertyBase& written) override {
    const bool failing = toUtf8(written.owner().name()) == control && written.name() == property;
    if (failing) throw RuntimeError(ErrorNumber::OutOfMemory);
  }
};

/// The program whole, started on a usual machine that keeps every call.
class StartUp : public testing::Test {
 protected:
  void start() {
    setup.reset();
    machine.startProgram();
    setup.emplace(machine.platform());
    machine.platform().application.run([&] { setup->start(); });
  }
  /// The calls of these names in their order.
  std::vector<std::string> calls(const std::set<std::string>& names) const {
    std::vector<std::string> found;
    for (const simulated::Event& each : transcript.of("call")) {
      if (names.contains(each["name"].text())) found.push_back(each["name"].text());
    }
    return found;
  }
  /// What is told when a property cannot be written.
  std::string toldWithout(const char* control, const char* property) {
    person.control = control;
    person.property = property;
    person.boxes.clear();
    start();
    return person.boxes.size() == 1 ? toUtf8(person.boxes[0].text) : "not one box";
  }

  UnluckyPerson person;
  simulated::TranscriptLog transcript{true};
  simulated::SimulatedMachine machine{person, transcript};
  std::optional<zev::Setup> setup;  ///< the base class has a Setup of its own
};

/// Behind the title and behind the comparison, and in front of the next window, whatever that is.
TEST_F(StartUp, LetsEventsRunAtThreePlacesOfTheScan) {
  machine.settings().windows = {u"Notepad", u""};
  start();
  EXPECT_THAT(calls({"GetWindow", "GetWindowTextLengthA", "GetWindowTextA", "DoEvents"}),
              ElementsAre("GetWindow",                                                       //
                          "GetWindowTextLengthA", "GetWindowTextA", "DoEvents", "DoEvents",  //
                          "DoEvents", "GetWindow",                                           //
                          "GetWindowTextLengthA", "DoEvents", "GetWindow",                   //
                          // The wizard's own window.
                          "GetWindowTextLengthA", "GetWindowTextA", "DoEvents", "DoEvents",  //
                          "DoEvents", "GetWindow"));
}

/// Steps that ask nothing of the machine can still fail at a control.
TEST_F(StartUp, TellsTheStageOfAControlThatFails) {
  const auto told = [](int stage) {
    return "Error occured during loading the installer. Error No." + std::to_string(stage) +
           "-7: Out of memory";
  };
  EXPECT_EQ(toldWithout("Text1", "Text"), told(22));
  EXPECT_EQ(toldWithout("Combo1", "ListIndex"), told(29));
  EXPECT_EQ(toldWithout("Image1", "Picture"), told(30));
  EXPECT_EQ(toldWithout("Text2", "Text"), told(30));
  EXPECT_EQ(toldWithout("Text2", "SelStart"), told(30));
}

}  // namespace
}  // namespace zev
