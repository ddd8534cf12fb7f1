#include "programs/zevsim/progress.h"

#include <gtest/gtest.h>

#include <sstream>

namespace zev::scenario {
namespace {

constexpr ControlDesign barControls[] = {{.name = u"Label12", .kind = ControlKind::Label}};
constexpr FormDesign barDesign = {.name = u"Form1", .caption = u"Toy", .controls = barControls};

/// Line ends of every kind, as they stand in captions and boxes.
constexpr TextView severalLines = u"one\r\ntwo\rthree\n\r\nfive";

TEST(Progress, TellsAFileInOneLine) {
  Form form(barDesign);
  form.Visible = true;
  Label& file = form.control<Label>(u"Label12");
  file.Caption = Text(severalLines);
  std::ostringstream out;
  simulator::Progress(out, false).propertyWritten(form, file.property("Caption"));
  EXPECT_EQ(out.str(), "0%  one two three  five\n");
}

TEST(Progress, TellsABoxInOneLine) {
  std::ostringstream out;
  simulator::Progress(out, false)
      .boxAnswered({.text = Text(severalLines), .title = u"Toy"}, BoxAnswer::OK);
  EXPECT_EQ(out.str(), "[Toy] one two three  five  -> ok\n");
}

}  // namespace
}  // namespace zev::scenario
