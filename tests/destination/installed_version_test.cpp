#include <gtest/gtest.h>

#include "destination/expected_boxes.h"
#include "simulated/put_text.h"

namespace zev {
namespace {

using Boxes = std::vector<std::string>;

constexpr TextView userFolder = u"C:\\Users\\bob\\ZEV5";
const std::string question =
    told(u"ZEV Screen Recorder", 292,
         u"A version of ZEV Screen Recorder 6 is already installed on your computer and now you "
         u"are installing again to another directory. It is recommended to install into the same "
         u"directory with the installed version or uninstall it before installing this "
         u"one.\r\n\r\nAre you sure to install into this directory?");

/// One case of the question about another directory.
struct InstalledRow {
  TextView onRecord;  ///< empty: nothing
  bool stands;
  TextView destination;
  bool asks;
};

// clang-format off
constexpr InstalledRow rows[] = {
    {u"",              false, u"C:\\New",     false},
    {u"C:\\Old",       true,  u"C:\\New",     true},
    {u"C:\\Old",       false, u"C:\\New",     false},
    {u"C:\\Old",       true,  u"C:\\Old",     false},
    {u"  C:\\Old  ",   true,  u"C:\\Old",     false},
    {u"  C:\\Old  ",   true,  u"C:\\New",     true},
    {u"C:\\Old",       true,  u"C:\\OLD",     true},
    {u"C:\\Old",       true,  u"c:\\Old",     true},
    {u"C:\\Old",       true,  u"C:\\Old\\a",  true},
    {u"C:\\Old",       true,  u"C:\\Old\\",   true},
    {u"C:\\Old\\",     true,  u"C:\\Old",     true},
    {u"   ",           false, u"C:\\New",     false},
};
// clang-format on

class InstalledMachine : public OnThePage {
 public:
  /// On the store of the machine's class.
  void install(TextView onRecord, bool stands, std::int32_t osClass) {
    globals().gOSClass = osClass;
    if (osClass == profileClass) {
      globals().gUserData = userFolder;
      machine.disks().putDirectory(userFolder);
    }
    if (!onRecord.empty()) keep(onRecord, osClass == profileClass);
    if (stands) machine.disks().putDirectory(withoutTrailing(trim(onRecord), u'\\'));
  }

 private:
  void keep(TextView onRecord, bool inValueFile) {
    if (inValueFile) {
      putText(machine.disks(), join(userFolder, u"\\Dizin"), toUtf8(onRecord) + "\r\n");
    } else {
      record(u"Software\\Tavorns\\ZEV5", onRecord);
    }
  }
};

class InstalledVersion : public InstalledMachine, public testing::Test {};

TEST(InstalledVersions, AreAskedAboutAsTheirTableSays) {
  for (const InstalledRow& row : rows) {
    for (std::int32_t osClass = 0; osClass <= profileClass; ++osClass) {
      InstalledMachine page;
      page.install(row.onRecord, row.stands, osClass);
      page.person.answers = {BoxAnswer::Yes};
      EXPECT_TRUE(page.check(row.destination)) << toUtf8(row.onRecord) << " " << osClass;
      EXPECT_EQ(page.boxes(), row.asks ? Boxes{question} : Boxes())
          << toUtf8(row.onRecord) << " for " << toUtf8(row.destination) << " " << osClass;
      EXPECT_EQ(page.directory(), row.destination);
    }
  }
}

TEST_F(InstalledVersion, ComesBackWithANo) {
  install(u"  C:\\Old  ", true, 3);
  person.answers = {BoxAnswer::No};
  EXPECT_FALSE(check(u"D:\\New"));
  EXPECT_EQ(boxes(), Boxes{question});
  EXPECT_EQ(directory(), u"C:\\Old");
  EXPECT_EQ(program->form1.Text2.Text_.get(), u"C:\\Old");
  EXPECT_FALSE(stands(u"D:\\New"));
}

TEST_F(InstalledVersion, LeavesThePageAloneWithAYes) {
  install(u"C:\\Old", true, 3);
  program->form1.Text2.Text_ = u"as it was";
  person.answers = {BoxAnswer::Yes};
  EXPECT_TRUE(check(u"D:\\New"));
  EXPECT_EQ(program->form1.Text2.Text_.get(), u"as it was");
}

TEST_F(InstalledVersion, IsForgottenOnAProfileClassWithoutItsFolder) {
  for (const TextView folder : {u"", u"   ", u"C:\\nowhere"}) {
    globals().gOSClass = profileClass;
    globals().gUserData = folder;
    globals().gInstalledDir = u"C:\\Windows";
    EXPECT_TRUE(check(u"C:\\New"));
    EXPECT_EQ(globals().gInstalledDir, u"") << toUtf8(folder);
  }
  EXPECT_EQ(boxes(), Boxes());
}

/// What the second folder says does not count without the first.
TEST_F(InstalledVersion, IsNotLookedForInTheSecondFolderAlone) {
  install(u"C:\\Old", true, profileClass);
  globals().gUserDataAlt = globals().gUserData;
  globals().gUserData = u"C:\\nowhere";
  EXPECT_TRUE(check(u"C:\\New"));
  EXPECT_EQ(globals().gInstalledDir, u"");
  EXPECT_EQ(boxes(), Boxes());
}

/// By the list of the maker's keys, compared letter by letter.
TEST_F(InstalledVersion, IsLookedForAmongTheKeysOfItsMaker) {
  const auto knownBehind = [this](std::vector<TextView> keys) {
    machine.registry().removeKey(HKEY_LOCAL_MACHINE, u"Software\\Tavorns");
    for (const TextView each : keys) {
      record(join(u"Software\\Tavorns\\", each), join(u"of ", each));
    }
    globals().gInstalledDir = u"before";
    check(u"C:\\New");
    return toUtf8(globals().gInstalledDir);
  };
  EXPECT_EQ(knownBehind({}), "");
  EXPECT_EQ(knownBehind({u"ZEV5"}), "of ZEV5");
  EXPECT_EQ(knownBehind({u"ZEV4", u"ZEV5", u"ZEV6"}), "of ZEV5");
  EXPECT_EQ(knownBehind({u"ZEV4"}), "before");
  EXPECT_EQ(knownBehind({u"zev5"}), "before");
  EXPECT_EQ(knownBehind({u"ZEV50", u"AZEV5"}), "before");
}

TEST_F(InstalledVersion, IsForgottenWhenItsMakerHasNoKeys) {
  machine.registry().createKey(HKEY_LOCAL_MACHINE, u"Software\\Tavorns");
  globals().gInstalledDir = u"C:\\Windows";
  EXPECT_TRUE(check(u"C:\\New"));
  EXPECT_EQ(globals().gInstalledDir, u"");
}

}  // namespace
}  // namespace zev
