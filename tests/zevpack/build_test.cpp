#include <gmock/gmock.h>

#include <cctype>
#include <map>

#include "lz/compressor.h"
#include "programs/zevpack/member_check.h"
#include "support/table.h"
#include "zevpack/made_package.h"
#include "zevpack/tool.h"

namespace zev::packing {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

constexpr std::size_t kMembersTogether = 15'246'584;

std::string upperCase(std::string name) {
  for (char& each : name) each = static_cast<char>(std::toupper(static_cast<unsigned char>(each)));
  return name;
}

class ZevpackBuild : public ToolTest {
 protected:
  ZevpackBuild() {
    writeFile(image_, madeImage());
    writeMembers(folder_, made_);
  }

  Outcome build(const std::string& before = "") const {
    return zevpack({"build", "--image", image_, "--members", folder_, "--output", package_},
                   before);
  }

  fs::path memberFile(std::int32_t row) const {
    return folder_ / members()[placeOf(row)].packedName;
  }

  fs::path installedFile(std::int32_t row) const {
    return folder_ / members()[placeOf(row)].installedName;
  }

  /// Nothing but the image and the members is there: no package, whole or begun.
  void expectNothingWritten() const {
    EXPECT_EQ(namesIn(image_.parent_path()), (std::set<std::string>{"image", "members"}));
  }

  const fs::path image_ = at("image");
  const fs::path folder_ = at("members");
  const fs::path package_ = at("package");
  const std::vector<MadeMember> made_ = storedMembers();
};

TEST_F(ZevpackBuild, LaysTheMembersInReverseBehindTheImage) {
  const Outcome outcome = build();
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.out, HasSubstr("56 members, 15246584 bytes behind the image"));
  const Bytes package = readFile(package_);
  ASSERT_EQ(package.size(), madeImage().size() + kMembersTogether);
  EXPECT_TRUE(package == packageOf(madeImage(), made_));
  for (const test::Row& row : test::Table::read("manifest_packing.tsv")) {
    if (row.isNone("row")) continue;
    const auto size = row.number("size");
    const auto begin = package.end() - row.number("tail_offset") - size;
    EXPECT_TRUE(Bytes(begin, begin + size) == made_[placeOf(row.number("row"))].packed)
        << row.where();
  }
}

TEST_F(ZevpackBuild, GivesTheSamePackageTwice) {
  ASSERT_EQ(build().status, 0);
  const Bytes first = readFile(package_);
  ASSERT_EQ(build().status, 0);
  EXPECT_TRUE(readFile(package_) == first);
}

TEST_F(ZevpackBuild, TakesTheLengthOfTheImageAsItIs) {
  writeFile(image_, Bytes{0x4D});
  ASSERT_EQ(build().status, 0);
  EXPECT_EQ(fs::file_size(package_), kMembersTogether + 1);
}

TEST_F(ZevpackBuild, ReplacesThePackageThatWasThere) {
  writeFile(package_, Bytes(10, 'x'));
  ASSERT_EQ(build().status, 0);
  EXPECT_EQ(fs::file_size(package_), madeImage().size() + kMembersTogether);
  EXPECT_EQ(namesIn(package_.parent_path()),
            (std::set<std::string>{"image", "members", "package"}));
}

TEST_F(ZevpackBuild, AcceptsNamesInOtherCase) {
  for (const Member& member : members()) {
    fs::rename(memberFile(member.row), folder_ / upperCase(member.packedName));
  }
  const Outcome outcome = build();
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_TRUE(readFile(package_) == packageOf(madeImage(), made_));
}

TEST_F(ZevpackBuild, PrefersTheExactNameToOneInOtherCase) {
  writeFile(folder_ / "STOP.WA_", Bytes(1));
  writeFile(folder_ / "stop.wa_", Bytes(2));
  EXPECT_EQ(build().status, 0);
}

TEST_F(ZevpackBuild, LeavesOtherFilesAlone) {
  writeFile(folder_ / "read me.txt", Bytes(100));
  fs::create_directory(folder_ / "Stop.wav");
  EXPECT_EQ(build().status, 0);
}

TEST_F(ZevpackBuild, CompressesPlainFilesUnderInstalledNames) {
  // Noise of these lengths packs to the sizes of the rows: a flag byte to eight literals.
  const std::map<std::int32_t, std::size_t> lengths = {{1, 160}, {8, 589}, {11, 96}};
  for (const auto& [row, length] : lengths) {
    fs::remove(memberFile(row));
    writeFile(installedFile(row), noise(length, 7));
  }
  fs::rename(installedFile(8), folder_ / upperCase(installedFile(8).filename()));
  const Outcome outcome = build();
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  const PackageFile package(package_);
  for (const auto& [row, length] : lengths) {
    const auto stored = package.stored(members()[placeOf(row)]);
    EXPECT_EQ(checkMember(stored, 'v', false), "") << row;
    EXPECT_EQ(expandMember(stored).bytes, noise(length, 7)) << row;
  }
}

TEST_F(ZevpackBuild, PrefersAPackedMemberToThePlainFile) {
  writeFile(installedFile(1), noise(5000, 7));
  const Outcome outcome = build();
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_TRUE(readFile(package_) == packageOf(madeImage(), made_));
}

TEST_F(ZevpackBuild, NamesMembersOfAnotherSizeWithBothSizesAndWritesNothing) {
  writeFile(memberFile(4), Bytes(2575));
  writeFile(memberFile(56), Bytes(55183));
  fs::remove(memberFile(1));
  writeFile(installedFile(1), noise(161, 7));
  const Outcome outcome = build();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("row 4, Stop.wa_: the packed file has 2575 bytes, "
                                     "the manifest says 2576\n"));
  EXPECT_THAT(outcome.err, HasSubstr("row 56, zeveffs.dl_: the packed file has 55183 bytes, "
                                     "the manifest says 55182\n"));
  EXPECT_THAT(outcome.err, HasSubstr("row 1, MCD28m.wa_: MCD28m.wav compresses to 196 bytes, "
                                     "the manifest says 194\n"));
  EXPECT_EQ(linesOf(outcome.err).size(), 5u) << outcome.err;
  EXPECT_THAT(outcome.err, HasSubstr(folder_.string()));
  EXPECT_THAT(outcome.err, HasSubstr("nothing was written"));
  expectNothingWritten();
}

TEST_F(ZevpackBuild, LeavesThePackageThatWasThereIfAMemberDoesNotFit) {
  const Bytes before = noise(1000, 9);
  writeFile(package_, before);
  writeFile(memberFile(4), Bytes{});
  EXPECT_EQ(build().status, 1);
  EXPECT_EQ(readFile(package_), before);
  EXPECT_EQ(namesIn(package_.parent_path()),
            (std::set<std::string>{"image", "members", "package"}));
}

TEST_F(ZevpackBuild, NamesAllMissingMembers) {
  const std::set<std::int32_t> gone = {1, 24, 48, 56};
  for (const std::int32_t row : gone) fs::remove(memberFile(row));
  const Outcome outcome = build();
  EXPECT_EQ(outcome.status, 1);
  for (const Member& member : members()) {
    const std::string line = "row " + std::to_string(member.row) + ", " + member.packedName +
                             ": neither it nor " + member.installedName + " is there\n";
    if (gone.count(member.row) == 1) {
      EXPECT_THAT(outcome.err, HasSubstr(line));
    } else {
      EXPECT_THAT(outcome.err, Not(HasSubstr(line)));
    }
  }
  expectNothingWritten();
}

TEST_F(ZevpackBuild, NamesEveryMemberIfTheFolderIsEmpty) {
  fs::remove_all(folder_);
  fs::create_directory(folder_);
  const Outcome outcome = build();
  EXPECT_EQ(outcome.status, 1);
  for (const Member& member : members()) EXPECT_THAT(outcome.err, HasSubstr(member.packedName));
  expectNothingWritten();
}

TEST_F(ZevpackBuild, TakesAFolderWithAMembersNameForAMissingMember) {
  fs::remove(memberFile(4));
  fs::create_directory(memberFile(4));
  const Outcome outcome = build();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("row 4, Stop.wa_: neither it nor Stop.wav is there"));
}

TEST_F(ZevpackBuild, LeavesThePackageThatWasThereIfTheMachineRefusesToWrite) {
  const Bytes before = noise(1000, 9);
  writeFile(package_, before);
  // A file may then have about half a mebibyte; a longer one is a failed write and no signal.
  const Outcome outcome = build("trap '' XFSZ; ulimit -f 1000");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("cannot write " + package_.string() + ": "));
  EXPECT_EQ(readFile(package_), before);
  EXPECT_EQ(namesIn(package_.parent_path()),
            (std::set<std::string>{"image", "members", "package"}));
}

TEST_F(ZevpackBuild, RefusesAnEmptyImage) {
  writeFile(image_, Bytes{});
  const Outcome outcome = build();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "zevpack: the image " + image_.string() + " is empty\n");
  expectNothingWritten();
}

TEST_F(ZevpackBuild, RefusesAFolderInPlaceOfThePackage) {
  fs::create_directory(package_);
  const Outcome outcome = build();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr(package_.string()));
  EXPECT_TRUE(fs::is_empty(package_));
  EXPECT_EQ(namesIn(package_.parent_path()),
            (std::set<std::string>{"image", "members", "package"}));
}

TEST_F(ZevpackBuild, RefusesToWriteOverWhatIsNoFile) {
  if (!fs::is_character_file("/dev/null")) GTEST_SKIP() << "no device of that name";
  const std::string device = at("device").string();
  fs::create_symlink("/dev/null", device);
  const Outcome outcome =
      zevpack({"build", "--image", image_, "--members", folder_, "--output", device});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr(device));
  EXPECT_TRUE(fs::is_symlink(device));
}

}  // namespace
}  // namespace zev::packing
