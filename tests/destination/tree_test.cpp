#include <gtest/gtest.h>

#include <functional>

#include "destination/expected_boxes.h"
#include "simulated/put_text.h"

namespace zev {
namespace {

using Boxes = std::vector<std::string>;
using Effect = simulated::Fault::Effect;

constexpr int deepest = 20;

/// C:\level1\level2\...
Text levels(int count) {
  Text path = u"C:";
  for (int level = 1; level <= count; ++level) path += join(u"\\level", decimal(level));
  return path;
}

class Tree : public OnThePage, public testing::Test {};

TEST(Trees, AreMadeLevelByLevelWithAPassBehindEach) {
  for (int standing = 0; standing <= deepest; ++standing) {
    for (const int depth : {standing, standing + 1, deepest}) {
      if (depth == 0 || depth > deepest) continue;
      OnThePage page;
      if (standing > 0) page.machine.disks().putDirectory(levels(standing));
      EXPECT_TRUE(page.check(levels(depth))) << standing << " of " << depth;
      EXPECT_EQ(page.directory(), levels(depth));
      EXPECT_TRUE(page.stands(levels(depth)));
      const auto missing = static_cast<std::uint64_t>(depth - standing);
      EXPECT_EQ(page.machine.calls("MkDir"), missing) << standing << " of " << depth;
      EXPECT_EQ(page.machine.calls("DoEvents"), missing) << standing << " of " << depth;
      EXPECT_EQ(page.boxes(), Boxes());
    }
  }
}

TEST(Trees, StopAtTheLevelThatIsRefused) {
  for (int depth = 1; depth <= 12; ++depth) {
    for (int refused = 1; refused <= depth; ++refused) {
      OnThePage page;
      page.machine.setFaults({page.fault("MkDir", levels(refused), Effect::Raise, 75)});
      EXPECT_FALSE(page.check(levels(depth)));
      EXPECT_EQ(page.boxes(), Boxes{notMadeBox(levels(refused))}) << depth;
      EXPECT_EQ(page.directory(), levels(refused)) << depth;
      EXPECT_EQ(page.stands(levels(refused - 1)), true) << depth;
      EXPECT_FALSE(page.stands(levels(refused))) << depth;
      EXPECT_EQ(page.machine.calls("DoEvents"), static_cast<std::uint64_t>(refused - 1)) << depth;
    }
  }
}

TEST_F(Tree, IsRefusedUnderAnyNumberOfTheMaking) {
  for (const std::int32_t error : {52, 53, 57, 61, 70, 75, 76}) {
    machine.setFaults({fault("MkDir", u"", Effect::Raise, error)});
    EXPECT_FALSE(check(u"C:\\one\\two"));
    EXPECT_EQ(boxes(), Boxes{notMadeBox(u"C:\\one")}) << error;
  }
}

/// The looks at the path go: the whole, its parent, the parent as the new directory, and so on up.
TEST(Trees, TellTheWholePathWhenALookFails) {
  constexpr int depth = 4;
  for (std::uint32_t look = 1; look < 2 * depth; ++look) {
    OnThePage page;
    page.machine.setFaults({page.fault("Dir", u"C:\\level1", Effect::Raise, 52, look)});
    EXPECT_FALSE(page.check(levels(depth))) << look;
    EXPECT_EQ(page.boxes(), Boxes{notAcceptedBox(levels(depth))}) << look;
    const int cut = static_cast<int>(look - 1) / 2;
    EXPECT_EQ(toUtf8(page.directory()), toUtf8(levels(depth - cut))) << look;
    EXPECT_FALSE(page.stands(u"C:\\level1")) << look;
  }
}

TEST_F(Tree, CannotBeMadeInAFolderThatIsAFile) {
  putText(machine.disks(), u"C:\\file", "x");
  EXPECT_FALSE(check(u"C:\\file\\below"));
  EXPECT_EQ(boxes(), Boxes{notMadeBox(u"C:\\file\\below")});
}

TEST_F(Tree, CannotBeMadeWhereTheDirectoryIsHidden) {
  machine.disks().put(u"C:\\one", {.directory = true, .attributes = file_attribute::hidden});
  EXPECT_FALSE(check(u"C:\\one"));
  EXPECT_EQ(boxes(), Boxes{notMadeBox(u"C:\\one")});
}

TEST_F(Tree, CannotBeMadeOnAWriteProtectedDrive) {
  machine.disks().put(u"D:\\", {.directory = true, .deny = simulated::Denial{.create = true}});
  EXPECT_FALSE(check(u"D:\\one\\two"));
  EXPECT_EQ(boxes(), Boxes{notMadeBox(u"D:\\one")});
}

// ---- the last resort

/// Does something at the first call of an operation whose first argument is a text.
class AtFirstCall final : public simulated::Transcript {
 public:
  AtFirstCall(std::string name, std::string argument)
      : name_(std::move(name)), argument_(std::move(argument)) {}
  bool wants(std::string_view kind) const override { return kind == "call"; }
  void add(simulated::Event event) override {
    if (!action || event["name"] != name_ || event["arguments"].at(0) != argument_) return;
    std::exchange(action, nullptr)();
  }
  std::function<void()> action;

 private:
  std::string name_;
  std::string argument_;
};

constexpr TextView defaultFolder = u"C:\\Program Files\\ZEV Screen Recorder 6";

/// The directory goes behind the first look at it, and the first making of it is without effect.
class DefaultFolder : public testing::Test {
 protected:
  DefaultFolder() : transcript("Dir", toUtf8(defaultFolder)), page(transcript) {
    page.machine.disks().putDirectory(defaultFolder);
    page.machine.setFaults({page.fault("MkDir", u"", Effect::Ignore, 0, 1)});
  }
  /// With all from a folder on.
  void vanish(TextView folder) {
    transcript.action = [this, folder] { page.machine.disks().remove(folder); };
  }

  AtFirstCall transcript;
  OnThePage page;
};

TEST_F(DefaultFolder, IsMadeAnew) {
  vanish(defaultFolder);
  EXPECT_TRUE(page.check(defaultFolder));
  EXPECT_TRUE(page.stands(defaultFolder));
  EXPECT_EQ(page.machine.calls("MkDir"), 2u);
  EXPECT_EQ(page.boxes(), Boxes());
}

TEST_F(DefaultFolder, IsMadeAnewWithItsParent) {
  vanish(u"C:\\Program Files");
  EXPECT_TRUE(page.check(defaultFolder));
  EXPECT_TRUE(page.stands(defaultFolder));
  EXPECT_EQ(page.machine.calls("MkDir"), 3u);
  EXPECT_EQ(page.directory(), defaultFolder);
}

/// Neither it nor its parent, which is made before it.
TEST(VanishingDefaultFolder, IsNotAcceptedWhenItCannotBeMadeAnew) {
  for (const std::uint32_t refused : {2u, 3u}) {
    AtFirstCall vanishing("Dir", toUtf8(defaultFolder));
    OnThePage page(vanishing);
    page.machine.disks().putDirectory(defaultFolder);
    page.machine.setFaults({page.fault("MkDir", u"", Effect::Ignore, 0, 1),
                            page.fault("MkDir", u"", Effect::Raise, 75, refused)});
    vanishing.action = [&] { page.machine.disks().remove(u"C:\\Program Files"); };
    EXPECT_FALSE(page.check(defaultFolder));
    EXPECT_EQ(page.boxes(), Boxes{notAcceptedBox(defaultFolder)}) << refused;
    EXPECT_EQ(page.directory(), defaultFolder);
    EXPECT_EQ(page.stands(u"C:\\Program Files"), refused == 3) << refused;
    EXPECT_FALSE(page.stands(defaultFolder));
  }
}

TEST(VanishingDefaultFolder, IsKnownLetterByLetter) {
  const Text other = lowerCase(defaultFolder);
  AtFirstCall vanishing("Dir", toUtf8(other));
  OnThePage page(vanishing);
  page.machine.disks().putDirectory(defaultFolder);
  page.machine.setFaults({page.fault("MkDir", u"", Effect::Ignore)});
  vanishing.action = [&] { page.machine.disks().remove(defaultFolder); };
  EXPECT_FALSE(page.check(other));
  EXPECT_EQ(page.boxes(), Boxes{notFoundBox(other)});
}

TEST(VanishingElsewhere, CouldNotBeFound) {
  AtFirstCall vanishing("Dir", "C:\\one");
  OnThePage page(vanishing);
  page.machine.disks().putDirectory(u"C:\\one");
  page.machine.setFaults({page.fault("MkDir", u"", Effect::Ignore)});
  vanishing.action = [&] { page.machine.disks().remove(u"C:\\one"); };
  EXPECT_FALSE(page.check(u"C:\\one"));
  EXPECT_EQ(page.boxes(), Boxes{notFoundBox(u"C:\\one")});
}

TEST(VanishingElsewhere, IsMadeAnewWhereItCan) {
  AtFirstCall vanishing("Dir", "C:\\one");
  OnThePage page(vanishing);
  page.machine.disks().putDirectory(u"C:\\one");
  vanishing.action = [&] { page.machine.disks().remove(u"C:\\one"); };
  EXPECT_TRUE(page.check(u"C:\\one"));
  EXPECT_TRUE(page.stands(u"C:\\one"));
  EXPECT_EQ(page.boxes(), Boxes());
}

TEST(VanishingElsewhere, IsToldWhenItCannotBeMadeAnew) {
  AtFirstCall vanishing("Dir", "C:\\one");
  OnThePage page(vanishing);
  page.machine.disks().putDirectory(u"C:\\one");
  page.machine.setFaults({page.fault("MkDir", u"", Effect::Raise, 75)});
  vanishing.action = [&] { page.machine.disks().remove(u"C:\\one"); };
  EXPECT_FALSE(page.check(u"C:\\one"));
  EXPECT_EQ(page.boxes(), Boxes{notMadeBox(u"C:\\one")});
}

TEST_F(Tree, GoesByTheDriveOfWindows) {
  globals().gWinDir = u"D:\\Windows";
  EXPECT_TRUE(check(u"C:foo"));
  EXPECT_EQ(directory(), u"D:\\");
  machine.disks().removeDrive(u'D');
  EXPECT_FALSE(check(u"C:foo"));
  EXPECT_EQ(boxes(), Boxes{notMadeBox(u"D:\\")});
}

}  // namespace
}  // namespace zev
