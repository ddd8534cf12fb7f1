// What every binding does about boxes that the system cannot show.

#include "contract/bench.h"

namespace zev::contract {
namespace {

class DialogsContract : public ContractTest {
 protected:
  DialogsContract() { bench().refuseBoxes(); }
};

TEST_F(DialogsContract, AMessageBoxThatCannotBeShownHasNoAnswer) {
  for (const std::int32_t style :
       {box_style::plain, box_style::yesNoQuestion, box_style::okCancelDefaultCancel,
        box_style::systemYesNoDefaultNo}) {
    EXPECT_EQ(platform().dialogs.MsgBox(u"Text", style, u"Title"), BoxAnswer::None) << style;
  }
}

TEST_F(DialogsContract, AnInputBoxThatCannotBeShownIsCancelled) {
  EXPECT_EQ(platform().dialogs.InputBox(u"Prompt", u"Title", u"initial"), u"");
}

}  // namespace
}  // namespace zev::contract
