#include "scenario/form_drawing.h"

#include <gtest/gtest.h>

#include "scenario/play.h"

namespace zev::scenario {
namespace {

std::string drawing(const Play& play) {
  return drawForm(*play.player->machine().screen().activeForm());
}

TEST(FormDrawing, DrawsAFormInItsLayout) {
  const Play play = playScript(R"({"select": ["Combo1", "Deutsch"]})");
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
  const Play play = playScript(
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
|   ##################60%####              ]                     |
|                                                                |
|                                                                |
|   :  << Back   :  [    Run     ]  [   Cancel   ]  [  More  ]   |
|   [    Name    ]  [    Stop    ]  [    Fail    ]               |
+----------------------------------------------------------------+
)");
}

TEST(FormDrawing, ListsWhatAPersonCanUse) {
  const Play play = playScript(R"({"focus": "Text1"})");
  const Form& form = *play.player->machine().screen().activeForm();
  EXPECT_EQ(listControls(form, play.player->machine().screen().focused(form)),
            "use:       >Text1 \"first\"  Combo1  Text2 \"locked\"  Command2 \"Next >>\"  "
            "Command3 \"Cancel\"  Command4 \"More\"  Command5 \"Name\"  Command6 \"Stop\"  "
            "Command7 \"Fail\"\n"
            "disabled:  Command1 \"<< Back\"\n");
}

}  // namespace
}  // namespace zev::scenario
