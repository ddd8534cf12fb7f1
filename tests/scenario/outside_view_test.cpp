#include "scenario/outside_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "runtime/application.h"

namespace zev::scenario {
namespace {

using testing::ElementsAre;

constexpr ControlDesign controls[] = {
    {.name = u"Label1", .kind = ControlKind::Label, .text = u"Hello"},
    {.name = u"Frame1", .index = 2, .kind = ControlKind::Frame, .visible = false},
    {.name = u"Line1", .kind = ControlKind::Line, .visible = false},
    {.name = u"Text1", .kind = ControlKind::TextBox, .container = u"Frame1(2)"},
    {.name = u"Bar", .kind = ControlKind::Label, .text = u"unseen", .bar = true},
    {.name = u"Command1", .kind = ControlKind::CommandButton, .text = u"Go", .enabled = false},
};
constexpr FormDesign design = {
    .name = u"Form1", .caption = u"Title", .width = 6450, .height = 2995, .controls = controls};

/// A toolkit that shows nothing.
class NoScreen final : public FormEngine {
 public:
  void loaded(Form&) override {}
  void shown(Form&) override {}
  void hidden(Form&) override {}
  void unloaded(Form&) override {}
  void beginPass() override {}
  bool pump() override { return false; }
  bool wait() override { return false; }
  std::uintptr_t windowHandle(const Form&) override { return 0; }
  double TextWidth(const Form&, TextView) override { return 0; }
  double TwipsPerPixelX() override { return 15; }
  void propertyWritten(PropertyBase&) override {}
  void refreshed(Component&) override {}
  void focusGiven(Control&) override {}
};

class OutsideViewTest : public testing::Test {
 protected:
  /// The lines that a look at the form writes.
  std::vector<std::string> look(bool boxOpen = false) {
    view_.look(sightOf(std::vector<Form*>{&form_}), boxOpen);
    return written();
  }

  std::vector<std::string> written() {
    std::vector<std::string> lines;
    std::istringstream all(out_.str());
    out_.str({});
    for (std::string line; std::getline(all, line);) lines.push_back(line);
    return lines;
  }

  NoScreen screen_;
  Application application_{screen_};
  Form form_{design};
  std::ostringstream out_;
  OutsideView view_{out_};
};

TEST_F(OutsideViewTest, TellsAFormWhenItIsFirstSeenByAllThatIsNotPlain) {
  EXPECT_THAT(look(), ElementsAre());
  application_.Show(form_);
  EXPECT_THAT(
      look(),
      ElementsAre(
          R"({"event":"show","form":"Form1"})",
          R"({"event":"set","control":"Form1","property":"Caption","value":"Title"})",
          R"({"event":"set","control":"Form1","property":"Width","value":6450})",
          R"({"event":"set","control":"Form1","property":"Height","value":3000})",
          R"({"event":"set","control":"Form1.Label1","property":"Caption",)"
          R"("value":"Hello"})",
          R"x({"event":"set","control":"Form1.Frame1(2)","property":"Visible","value":false})x",
          R"({"event":"set","control":"Form1.Command1","property":"Caption",)"
          R"("value":"Go"})",
          R"({"event":"set","control":"Form1.Command1","property":"Enabled",)"
          R"("value":false})"));
  EXPECT_THAT(look(), ElementsAre());
}

TEST_F(OutsideViewTest, TellsOnlyWhatHasChangedAndNothingThatNobodySees) {
  application_.Show(form_);
  look();
  form_.control<Label>(u"Bar").Caption = u"other";
  form_.control<Line>(u"Line1").Visible = true;
  form_.control<Label>(u"Label1").Caption = u"Bye";
  form_.control<Label>(u"Label1").Caption = u"Hello";
  form_.control<TextBox>(u"Text1").Text_ = Text(u"typed\0behind", 12);
  EXPECT_THAT(look(), ElementsAre(R"({"event":"set","control":"Form1.Text1","property":"Text",)"
                                  R"("value":"typed"})"));
}

constexpr ControlDesign placedControls[] = {
    {.name = u"Text1", .kind = ControlKind::TextBox, .place = {120, 900, 5145, 2115}},
    {.name = u"Label1", .kind = ControlKind::Label, .place = {7, 8, 22, 23}},
    {.name = u"Combo1", .kind = ControlKind::ComboBox, .place = {15, -23, 300, 315}},
    {.name = u"Drive1", .kind = ControlKind::DriveListBox, .place = {0, -22, 300, 315}},
};
constexpr FormDesign placedDesign = {.name = u"Form1", .caption = {}, .controls = placedControls};

/// A pixel is 15 twips: both edges of a control are moved to the nearest one.
TEST_F(OutsideViewTest, TellsPlacesAsTheyComeOutInPixels) {
  Form form{placedDesign};
  application_.Show(form);
  view_.look(sightOf(std::vector<Form*>{&form}), false);
  const auto placed = [](std::string_view control, std::string_view place) {
    return R"({"event":"set","control":"Form1.)" + std::string(control) +
           R"(","property":"Place","value":)" + std::string(place) + "}";
  };
  EXPECT_THAT(written(),
              ElementsAre(R"({"event":"show","form":"Form1"})",
                          placed("Text1", "[120,900,5145,2115]"), placed("Label1", "[0,15,30,15]"),
                          placed("Combo1", "[15,-30,300,0]"), placed("Drive1", "[0,-15,300,0]")));
}

TEST_F(OutsideViewTest, TellsThatAControlIsMovedAndThatNobodySeesIt) {
  application_.Show(form_);
  look();
  form_.control<Label>(u"Label1").Left = 30;
  EXPECT_THAT(look(), ElementsAre(R"({"event":"set","control":"Form1.Label1","property":"Place",)"
                                  R"("value":[30,0,0,0]})"));
  Sight covered = sightOf(std::vector<Form*>{&form_});
  covered.front().controls.at(0).inSight = false;
  view_.look(covered, false);
  EXPECT_THAT(written(), ElementsAre(R"({"event":"set","control":"Form1.Label1",)"
                                     R"("property":"InSight","value":false})"));
}

constexpr FormDesign otherDesign = {
    .name = u"Form2", .caption = u"Options", .width = 3000, .height = 3000, .controls = {}};

TEST_F(OutsideViewTest, TellsOfEveryFormInItsOrder) {
  Form other{otherDesign};
  application_.Show(form_);
  look();
  application_.Show(other);
  form_.Caption = u"Changed";
  view_.look(sightOf(std::vector<Form*>{&form_, &other}), false);
  EXPECT_THAT(
      written(),
      ElementsAre(R"({"event":"set","control":"Form1","property":"Caption","value":"Changed"})",
                  R"({"event":"show","form":"Form2"})",
                  R"({"event":"set","control":"Form2","property":"Caption","value":"Options"})",
                  R"({"event":"set","control":"Form2","property":"Width","value":3000})",
                  R"({"event":"set","control":"Form2","property":"Height","value":3000})"));
}

TEST_F(OutsideViewTest, SaysNothingOfWhetherFormsAreEnabledWhileABoxIsOpen) {
  application_.Show(form_);
  look();
  form_.Enabled = false;
  EXPECT_THAT(look(true), ElementsAre());
  EXPECT_THAT(
      look(),
      ElementsAre(R"({"event":"set","control":"Form1","property":"Enabled","value":false})"));
}

TEST_F(OutsideViewTest, ComparesAFormThatComesBackWithWhatWasSeenLast) {
  application_.Show(form_);
  look();
  application_.Hide(form_);
  form_.Caption = u"Changed";
  EXPECT_THAT(look(), ElementsAre(R"({"event":"hide","form":"Form1"})"));
  application_.Show(form_);
  EXPECT_THAT(
      look(),
      ElementsAre(R"({"event":"show","form":"Form1"})",
                  R"({"event":"set","control":"Form1","property":"Caption","value":"Changed"})"));
}

TEST_F(OutsideViewTest, BeginsAnewWithTheProgram) {
  application_.Show(form_);
  const auto first = look();
  view_.start();
  EXPECT_EQ(look(), first);
}

TEST_F(OutsideViewTest, TellsBoxesByWhatShowsOfTheirStyle) {
  view_.box(u"Sure?", u"Title", 4388, "no");
  view_.input(u"Name :\r\rC:\\", u"New", u"abc");
  EXPECT_THAT(written(), ElementsAre(R"({"event":"box","text":"Sure?","title":"Title",)"
                                     R"("style":292,"answer":"no"})",
                                     R"({"event":"input","prompt":"Name :\r\n\r\nC:\\",)"
                                     R"("title":"New","answer":"abc"})"));
}

TEST_F(OutsideViewTest, TellsAnEndByItsErrorAlone) {
  view_.end("unload");
  view_.end({{"error", 75}, {"description", "Path/File access error"}});
  EXPECT_THAT(written(),
              ElementsAre(R"({"event":"end"})", R"({"event":"end","how":"error","error":75})"));
}

}  // namespace
}  // namespace zev::scenario
