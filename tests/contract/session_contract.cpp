// What the end of the person's session does to a program in every binding.

#include "contract/bench.h"

namespace zev::contract {
namespace {

constexpr FormDesign plainDesign = {
    .name = u"Form1", .caption = u"A form", .width = 3000, .height = 2000, .controls = {}};

class SessionContract : public ContractTest {
 protected:
  SessionContract() {
    application().SessionEnds = [this] { ++tidied_; };
    application().Show(form_);
  }
  ~SessionContract() override { application().Unload(form_); }

  Application& application() { return platform().application; }

  /// How the next pass of the message loop ends the program; none if it does not.
  std::optional<EndKind> endOfPass() {
    try {
      application().DoEvents();
      return std::nullopt;
    } catch (const ProgramEnd& end) {
      return end.kind;
    }
  }

  Form form_{plainDesign};
  int tidied_ = 0;
};

TEST_F(SessionContract, EndsTheProgramBehindWhatTidiesUp) {
  EXPECT_TRUE(bench().endSession(form_));
  EXPECT_EQ(tidied_, 1);
  EXPECT_EQ(endOfPass(), EndKind::Exit);
}

TEST_F(SessionContract, WaitsForABusyProgram) {
  {
    const Application::Busy busy(application(), u"Files are being copied");
    EXPECT_FALSE(bench().endSession(form_));
    EXPECT_EQ(tidied_, 0);
    EXPECT_EQ(endOfPass(), std::nullopt);
  }
  EXPECT_TRUE(bench().endSession(form_));
  EXPECT_EQ(tidied_, 1);
}

TEST_F(SessionContract, EndsAlthoughTidyingUpFails) {
  application().SessionEnds = [] { throw RuntimeError(ErrorNumber::PathNotFound); };
  EXPECT_TRUE(bench().endSession(form_));
  EXPECT_EQ(endOfPass(), EndKind::Exit);
}

}  // namespace
}  // namespace zev::contract
