#include <gmock/gmock.h>

#include "support/made_image.h"
#include "zevpack/made_package.h"
#include "zevpack/tool.h"

namespace zev::packing {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class ZevpackExtract : public ToolTest {
 protected:
  ZevpackExtract() { writePackage(); }

  void writePackage() const { writeFile(package_, packageOf(madeImage(), made_)); }

  Outcome extract(const std::vector<std::string>& options = {}) const {
    std::vector<std::string> arguments = {"extract", package_, "--to", folder_};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return zevpack(arguments);
  }

  /// The package is refused with these words, and nothing is written.
  void expectRefused(const std::string& what) const {
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{}, std::vector<std::string>{"--packed"}}) {
      const Outcome outcome = extract(options);
      EXPECT_EQ(outcome.status, 1);
      EXPECT_THAT(outcome.err, HasSubstr(package_.string() + " is not right:\n"));
      EXPECT_THAT(outcome.err, HasSubstr(what));
      EXPECT_THAT(outcome.err, HasSubstr("nothing was written"));
      EXPECT_EQ(outcome.out, "");
      EXPECT_FALSE(fs::exists(at("one")));
    }
  }

  const fs::path package_ = at("package");
  const fs::path folder_ = at("one") / "two" / "members";
  std::vector<MadeMember> made_ = packedMembers();
};

TEST_F(ZevpackExtract, ExpandsEveryMemberUnderItsInstalledName) {
  const Outcome outcome = extract();
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("56 of 56 members extracted"));
  EXPECT_EQ(namesIn(folder_).size(), 56u);
  for (const Member& member : members()) {
    EXPECT_TRUE(readFile(folder_ / member.installedName) == made_[placeOf(member.row)].plain)
        << member.installedName;
  }
}

TEST_F(ZevpackExtract, TakesTheMembersOfASignedPackage) {
  writeFile(package_, test::signedFile(readFile(package_)));
  const Outcome outcome = extract();
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  for (const Member& member : members()) {
    EXPECT_TRUE(readFile(folder_ / member.installedName) == made_[placeOf(member.row)].plain)
        << member.installedName;
  }
}

TEST_F(ZevpackExtract, RefusesWhatIsNoPackage) {
  writeFile(package_, noise(16'000'000, 3));
  expectRefused("there is no program in front of the members");
  expectRefused("row 56  zeveffs.dl_ ");
}

TEST_F(ZevpackExtract, RefusesAPackageThatIsShortOfAByte) {
  Bytes bytes = readFile(package_);
  bytes.pop_back();
  writeFile(package_, bytes);
  expectRefused("row  1  MCD28m.wa_ ");
  expectRefused("is cut short");
}

TEST_F(ZevpackExtract, RefusesToReplaceThePackage) {
  makeFolder(folder_);
  fs::rename(package_, folder_ / "Stop.wav");
  const Bytes before = readFile(folder_ / "Stop.wav");
  const Outcome outcome = zevpack({"extract", folder_ / "Stop.wav", "--to", folder_});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("is the package itself"));
  EXPECT_EQ(namesIn(folder_), (std::set<std::string>{"Stop.wav"}));
  EXPECT_TRUE(readFile(folder_ / "Stop.wav") == before);
}

TEST_F(ZevpackExtract, LaysStoredMembersAsTheyAreIfToldThatTheyAreRight) {
  made_ = storedMembers();
  writePackage();
  expectRefused("no header of a packed file");
  EXPECT_EQ(extract({"--plain-ok"}).status, 0);
  for (const Member& member : members()) {
    EXPECT_TRUE(readFile(folder_ / member.installedName) == made_[placeOf(member.row)].packed)
        << member.installedName;
  }
}

TEST_F(ZevpackExtract, GivesPackedMembersOfWhichBuildMakesTheSamePackage) {
  made_[placeOf(4)].packed = noise(2576, 99);
  made_[placeOf(8)].packed[8] = 'B';
  writePackage();
  EXPECT_EQ(extract({"--packed", "--force"}).status, 1);
  EXPECT_EQ(namesIn(folder_).size(), 56u);
  writeFile(at("image"), madeImage());
  const Outcome outcome = zevpack(
      {"build", "--image", at("image"), "--members", folder_, "--output", at("again"), "--force"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_TRUE(readFile(at("again")) == readFile(package_));
}

TEST_F(ZevpackExtract, NamesTheMembersThatItCannotExpandAndLaysTheOthersIfForced) {
  made_[placeOf(8)].packed[8] = 'B';
  made_[placeOf(24)].packed[13] = 0x7F;
  writePackage();
  expectRefused("unknown compression mode");
  const Outcome outcome = extract({"--force"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, HasSubstr("Key118m.wa_"));
  EXPECT_THAT(outcome.out, HasSubstr("unknown compression mode"));
  EXPECT_THAT(outcome.out, HasSubstr("SampleAVI.av_"));
  EXPECT_THAT(outcome.out, HasSubstr("54 of 56 members extracted"));
  EXPECT_EQ(namesIn(folder_).size(), 54u);
  EXPECT_FALSE(fs::exists(folder_ / "Key118m.wav"));
  EXPECT_FALSE(fs::exists(folder_ / "SampleAVI.avi"));
}

TEST_F(ZevpackExtract, LaysWhatIsWhollyInAFileThatIsTooShortIfForced) {
  const Bytes whole = readFile(package_);
  writeFile(package_, Bytes(whole.end() - 194 - 178, whole.end()));
  for (const std::vector<std::string>& options :
       {std::vector<std::string>{"--force"}, std::vector<std::string>{"--force", "--packed"}}) {
    fs::remove_all(folder_);
    const Outcome outcome = extract(options);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.out, HasSubstr("begins in front of the file"));
    EXPECT_THAT(outcome.out, HasSubstr("2 of 56 members extracted"));
    EXPECT_EQ(namesIn(folder_).size(), 2u);
  }
}

TEST_F(ZevpackExtract, WritesOverFilesThatWereThere) {
  makeFolder(folder_);
  writeFile(folder_ / "Stop.wav", Bytes(9));
  writeFile(folder_ / "mine.txt", Bytes(9));
  ASSERT_EQ(extract().status, 0);
  EXPECT_EQ(readFile(folder_ / "Stop.wav"), made_[placeOf(4)].plain);
  EXPECT_EQ(readFile(folder_ / "mine.txt"), Bytes(9));
}

TEST_F(ZevpackExtract, LaysNothingIfOneFileCannotBeLaid) {
  makeFolder(folder_);
  for (const char* hindrance : {"zeveffs.dll.partial", "Stop.wav"}) {
    if (hindrance == std::string("Stop.wav")) {
      writeFile(folder_ / hindrance, Bytes(9));
      fs::permissions(folder_ / hindrance, static_cast<fs::perms>(0444));
    } else {
      fs::create_symlink("nowhere", folder_ / hindrance);
    }
    const Outcome outcome = extract();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr((folder_ / hindrance).string()));
    EXPECT_EQ(namesIn(folder_), std::set<std::string>{hindrance});
    fs::remove(folder_ / hindrance);
  }
}

TEST_F(ZevpackExtract, RefusesAFileInPlaceOfTheFolder) {
  makeFolder(folder_.parent_path());
  writeFile(folder_, Bytes(9));
  const Outcome outcome = extract();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr(folder_.string()));
  EXPECT_EQ(readFile(folder_), Bytes(9));
}

}  // namespace
}  // namespace zev::packing
