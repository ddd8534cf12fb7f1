#include "programs/zevsim/form_drawing.h"

#include <gtest/gtest.h>

#include "runtime/controls.h"
#include "scenario/toy_play.h"

namespace zev::scenario {
namespace {

std::string drawing(const ToyPlay& play) {
  return simulator::drawForm(*play.stage->machine().screen().activeForm());
}

TEST(FormDrawing, DrawsAFormInItsLayout) {
  const ToyPlay play = playScript(R"({"select": ["Combo1", "Deutsch"]})");
  EXPECT_EQ(drawing(play), R"(+- Deutsch ------------------------------------------------------+
|   Welcome to the toy. It has two pages, and that is all.       |
|                                                                |
|                                                                |
|   [first                       ]  [locked                ]     |
|                                                                |
|   [Deutsch          v]                                         |
|                                                                |
|                                                                |
|                                                                |
|   :  << Back   :  [  Next >>   ]  [   Cancel   ]  [  More  ]   |
|   [    Name    ]  [    Stop    ]  [    Fail    ]               |
+----------------------------------------------------------------+
)");
}

TEST(FormDrawing, DrawsThePageThatIsShownAndItsProgress) {
  const ToyPlay play = playScript(
      R"({"click": "Command2"}, {"click": "Option2"}, {"click": "Check1"},
         {"change": {"faults": [{"call": "OpenOutput", "nth": 5, "error": 5}]}},
         {"click": "Command2"})");
  EXPECT_EQ(drawing(play), R"(+- Toy ----------------------------------------------------------+
|   ( ) Yes                                                      |
|   (*) No                                                       |
|   [x] Launch                                                   |
|                                                                |
|                            file5                               |
|                                                                |
|   [#################60%###               ]                     |
|                                                                |
|                                                                |
|   :  << Back   :  [    Run     ]  [   Cancel   ]  [  More  ]   |
|   [    Name    ]  [    Stop    ]  [    Fail    ]               |
+----------------------------------------------------------------+
)");
}

constexpr ControlDesign heightsOnAPage[] = {
    {.name = u"Label1", .kind = ControlKind::Label, .place = {0, 0, 900, 240}},
    {.name = u"Label2", .kind = ControlKind::Label, .place = {0, 240 + 160, 900, 240}},
    {.name = u"Label3", .kind = ControlKind::Label, .place = {900, 240 + 159, 900, 240}},
};

TEST(FormDrawing, GivesAControlTheRowThatTwoThirdsOfARowReach) {
  Form form({.name = u"Form1",
             .caption = u"T",
             .width = 1800,
             .height = 960,
             .controls = heightsOnAPage});
  for (const auto* name : {u"Label1", u"Label2", u"Label3"})
    form.control<Label>(name).Caption = name;
  EXPECT_EQ(simulator::drawForm(form), R"(+- T ----------------------+
| Label1                   |
|             Label3       |
| Label2                   |
+--------------------------+
)");
}

constexpr ControlDesign treeControls[] = {
    {.name = u"Dir1", .kind = ControlKind::DirListBox, .place = {75, 0, 1650, 1200}},
};

std::string drawnTree(TextView opened) {
  Form form(
      {.name = u"Form1", .caption = u"T", .width = 1800, .height = 1200, .controls = treeControls});
  form.control<DirListBox>(u"Dir1").setPath(opened);
  return simulator::drawForm(form, {}, [](const Text& folder) -> std::vector<Text> {
    if (folder == u"C:\\Apps") return {u"One", u"Two"};
    if (folder == u"C:\\") return {u"A", u"B", u"C", u"D", u"E"};
    return {};
  });
}

TEST(FormDrawing, DrawsTheOpenedFolderAsATree) {
  EXPECT_EQ(drawnTree(u"C:\\Apps"), R"(+- T ----------------------+
|  |C:\                 |  |
|  |  Apps              |  |
|  |    One             |  |
|  |    Two             |  |
|  |                    |  |
+--------------------------+
)");
}

TEST(FormDrawing, TellsThatATreeHasMore) {
  EXPECT_EQ(drawnTree(u"C:\\"), R"(+- T ----------------------+
|  |C:\                 |  |
|  |  A                 |  |
|  |  B                 |  |
|  |  C                 |  |
|  |  ...               |  |
+--------------------------+
)");
}

TEST(FormDrawing, KeepsTheEndOfADeepTree) {
  EXPECT_NE(drawnTree(u"C:\\1\\2\\3\\4\\5").find("5 "), std::string::npos);
}

TEST(FormDrawing, TellsThatATextHasMore) {
  static constexpr ControlDesign controls[] = {
      {.name = u"Text1",
       .kind = ControlKind::TextBox,
       .place = {75, 0, 2400, 960},
       .text = u"1\n2\n3\n4\n5",
       .multiLine = true},
  };
  const Form form(
      {.name = u"Form1", .caption = u"T", .width = 2550, .height = 960, .controls = controls});
  EXPECT_EQ(simulator::drawForm(form), R"(+- T --------------------------------+
|  |1                             |  |
|  |2                             |  |
|  |3                             |  |
|  |... (read shows all of it)    |  |
+------------------------------------+
)");
}

TEST(FormDrawing, DrawsOnANarrowSheet) {
  const ToyPlay play = playScript("");
  EXPECT_EQ(simulator::drawForm(*play.stage->machine().screen().activeForm(), {40, 24}),
            R"(+- Toy --------------------------------+
|  Welcome to the toy. It has two      |
|  pages, and that is all.             |
|                                      |
|  [first          ]  [locked      ]   |
|                                      |
|  [         v]                        |
|                                      |
|                                      |
|                                      |
|  :<< Back: [Next >>] [Cancel] [More] |
|  [ Name ] [ Stop ]  [ Fail ]         |
+--------------------------------------+
)");
}

TEST(FormDrawing, DrawsOnASheetOfFewLines) {
  const ToyPlay play = playScript("");
  EXPECT_EQ(simulator::drawForm(*play.stage->machine().screen().activeForm(), {78, 8}),
            R"(+- Toy ----------------------------------------------------------+
|   Welcome to the toy. It has two pages, and that is all.       |
|   [first                       ]  [locked                ]     |
|   [                 v]                                         |
|                                                                |
|   :  << Back   :  [  Next >>   ]  [   Cancel   ]  [  More  ]   |
|   [    Name    ]  [    Stop    ]  [    Fail    ]               |
+----------------------------------------------------------------+
)");
}

TEST(FormDrawing, MarksWhatIsDisabledByColons) {
  const ToyPlay play =
      playScript(R"({"click": "Command2"}, {"set": {"Form1.Frame1(2).Enabled": false}})");
  const std::string shown = drawing(play);
  EXPECT_NE(shown.find("|   : : Yes "), std::string::npos) << shown;
  EXPECT_NE(shown.find("|   : : Launch "), std::string::npos) << shown;
}

TEST(FormDrawing, ListsWhatAPersonCanUse) {
  const ToyPlay play = playScript(R"({"focus": "Text1"})");
  const Form& form = *play.stage->machine().screen().activeForm();
  EXPECT_EQ(simulator::listControls(form, play.stage->machine().screen().focused(form)),
            "use:       >Text1 \"first\"  Combo1  Text2 \"locked\"  Command2 \"Next >>\"\n"
            "           Command3 \"Cancel\"  Command4 \"More\"  Command5 \"Name\"\n"
            "           Command6 \"Stop\"  Command7 \"Fail\"\n"
            "disabled:  Command1 \"<< Back\"\n");
}

}  // namespace
}  // namespace zev::scenario
