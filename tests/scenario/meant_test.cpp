#include "programs/zevsim/meant.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "scenario/toy_play.h"

namespace zev::scenario {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Meant, FoldsCaseAccentsAndWhatStandsAround) {
  EXPECT_EQ(simulator::folded(u"<< Back"), u"back");
  EXPECT_EQ(simulator::folded(u"Siguiente>>"), u"siguiente");
  EXPECT_EQ(simulator::folded(u"Fran\u00C7ais"), u"francais");
  EXPECT_EQ(simulator::folded(u"Franc\u0327ais"), u"francais");
  EXPECT_EQ(simulator::folded(u"\u0130PTAL \u0131\u011F\u015E"), u"iptal igs");
  EXPECT_EQ(simulator::folded(u"No I Do Not Agree."), u"no i do not agree");
  EXPECT_EQ(simulator::folded(u">>"), u">>");
  EXPECT_EQ(simulator::folded(u""), u"");
}

TEST(Meant, TakesTheLikestTexts) {
  const std::vector<Text> texts{u"Ok", u"Okay", u"Not Ok", u"<< Zur\u00FCck", u"Book"};
  EXPECT_THAT(simulator::meantOf(u"ok", texts), ElementsAre(0));
  EXPECT_THAT(simulator::meantOf(u"oka", texts), ElementsAre(1));
  EXPECT_THAT(simulator::meantOf(u"zuru", texts), ElementsAre(3));
  EXPECT_THAT(simulator::meantOf(u"o", texts), ElementsAre(0, 1));
  EXPECT_THAT(simulator::meantOf(u"si", {u"Siguiente>>", u"S\u00ED, estoy", u"Que si"}),
              ElementsAre(1));
  EXPECT_THAT(simulator::meantOf(u"\u00E9t", {u"Bet\u00E9t", u"L'\u00C9t\u00E9"}), ElementsAre(1));
  EXPECT_THAT(simulator::meantOf(u"not", texts), ElementsAre(2));
  EXPECT_THAT(simulator::meantOf(u"ook", texts), IsEmpty());
  EXPECT_THAT(simulator::meantOf(u"", texts), IsEmpty());
  EXPECT_THAT(simulator::meantOf(u"ok", {u"Is it Ok", u"Book of oks"}), ElementsAre(0, 1));
}

TEST(Meant, TakesOneAndNamesSeveral) {
  const std::vector<Text> texts{u"One", u"Two", u"Twice"};
  EXPECT_EQ(simulator::meantOne(u"o", texts), 0u);
  EXPECT_EQ(simulator::meantOne(u"x", texts), std::nullopt);
  EXPECT_EQ(errorOf([&] { simulator::meantOne(u"tw", texts); }),
            "prompt: \"tw\" may be Two, Twice");
}

TEST(Meant, FindsControlsByNameBeforeCaption) {
  const ToyPlay play = playScript(R"({"click": "Command2"})");
  const Form& form = *play.stage->machine().screen().activeForm();
  EXPECT_EQ(simulator::meantControl("command3", form)->name(), u"Command3");
  EXPECT_EQ(simulator::meantControl("cancel", form)->name(), u"Command3");
  EXPECT_EQ(simulator::meantControl("yes", form)->name(), u"Option1");
  EXPECT_EQ(simulator::meantControl("launch", form)->name(), u"Check1");
  EXPECT_EQ(simulator::meantControl("nothing", form), nullptr);
  EXPECT_EQ(errorOf([&] { simulator::meantControl("n", form); }),
            "prompt: \"n\" may be Option2 \"No\" or Command5 \"Name\"");
}

TEST(Meant, LeavesOutWhatIsHiddenAndWhatAPersonTyped) {
  const ToyPlay play = playScript("");
  const Form& form = *play.stage->machine().screen().activeForm();
  EXPECT_EQ(simulator::meantControl("yes", form), nullptr);
  EXPECT_EQ(simulator::meantControl("first", form), nullptr);
  EXPECT_EQ(simulator::meantControl("Welcome", form), nullptr);
}

}  // namespace
}  // namespace zev::scenario
