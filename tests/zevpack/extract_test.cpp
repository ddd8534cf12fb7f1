#include <gmock/gmock.h>

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

  Outcome extract(bool packed = false) const {
    std::vector<std::string> arguments = {"extract", package_, "--to", folder_};
    if (packed) arguments.emplace_back("--packed");
    return zevpack(arguments);
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

TEST_F(ZevpackExtract, LaysStoredMembersAsTheyAre) {
  made_ = storedMembers();
  writePackage();
  EXPECT_EQ(extract().status, 0);
  for (const Member& member : members()) {
    EXPECT_TRUE(readFile(folder_ / member.installedName) == made_[placeOf(member.row)].packed)
        << member.installedName;
  }
}

TEST_F(ZevpackExtract, GivesPackedMembersOfWhichBuildMakesTheSamePackage) {
  made_[placeOf(4)].packed = noise(2576, 99);
  made_[placeOf(8)].packed[8] = 'B';
  writePackage();
  ASSERT_EQ(extract(true).status, 0);
  EXPECT_EQ(namesIn(folder_).size(), 56u);
  writeFile(at("image"), madeImage());
  const Outcome outcome =
      zevpack({"build", "--image", at("image"), "--members", folder_, "--output", at("again")});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_TRUE(readFile(at("again")) == readFile(package_));
}

TEST_F(ZevpackExtract, NamesTheMembersThatItCannotExpandAndLaysTheOthers) {
  made_[placeOf(8)].packed[8] = 'B';
  made_[placeOf(24)].packed[13] = 0x7F;
  writePackage();
  const Outcome outcome = extract();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, HasSubstr("Key118m.wa_"));
  EXPECT_THAT(outcome.out, HasSubstr("unknown compression mode"));
  EXPECT_THAT(outcome.out, HasSubstr("SampleAVI.av_"));
  EXPECT_THAT(outcome.out, HasSubstr("54 of 56 members extracted"));
  EXPECT_EQ(namesIn(folder_).size(), 54u);
  EXPECT_FALSE(fs::exists(folder_ / "Key118m.wav"));
  EXPECT_FALSE(fs::exists(folder_ / "SampleAVI.avi"));
}

TEST_F(ZevpackExtract, LaysWhatIsWhollyInAFileThatIsTooShort) {
  const Bytes whole = readFile(package_);
  writeFile(package_, Bytes(whole.end() - 194 - 178, whole.end()));
  for (const bool packed : {false, true}) {
    fs::remove_all(folder_);
    const Outcome outcome = extract(packed);
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
