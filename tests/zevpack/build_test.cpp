#include <gmock/gmock.h>

#include <cctype>
#include <map>

#include "lz/encoder.h"
#include "programs/zevpack/package_check.h"
#include "support/made_image.h"
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

  Outcome build(const std::string& before = "") const { return buildWith({}, before); }

  Outcome buildWith(const std::vector<std::string>& options, const std::string& before = "") const {
    std::vector<std::string> arguments = {"build", "--image",  image_,  "--members",
                                          folder_, "--output", package_};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return zevpack(arguments, before);
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
  const std::vector<MadeMember>& made_ = packedMembers();
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
  for (const std::size_t size : {600u, 601u, 607u}) {
    writeFile(image_, test::madeImage({.size = size}));
    ASSERT_EQ(build().status, 0);
    EXPECT_EQ(fs::file_size(package_), kMembersTogether + size);
  }
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

TEST_F(ZevpackBuild, ChoosesNoneOfTwoNamesInOtherCase) {
  fs::rename(memberFile(4), folder_ / "STOP.WA_");
  fs::copy_file(folder_ / "STOP.WA_", folder_ / "stop.wa_");
  const Outcome outcome = build();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("row 4, Stop.wa_: "));
  EXPECT_THAT(outcome.err, HasSubstr((folder_ / "STOP.WA_").string()));
  EXPECT_THAT(outcome.err, HasSubstr((folder_ / "stop.wa_").string()));
  EXPECT_THAT(outcome.err, HasSubstr("both could be Stop.wa_"));
  expectNothingWritten();
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

TEST_F(ZevpackBuild, RefusesAMemberThatWouldNotExpandToItsFile) {
  writeFile(memberFile(4), noise(2576, 99));
  Bytes otherMode = made_[placeOf(8)].packed;
  otherMode[8] = 'B';
  writeFile(memberFile(8), otherMode);
  const Outcome outcome = build();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("row 4, Stop.wa_: no header of a packed file\n"));
  EXPECT_THAT(outcome.err, HasSubstr("row 8, Key118m.wa_: unknown compression mode\n"));
  EXPECT_THAT(outcome.err, HasSubstr("nothing was written; --force"));
  expectNothingWritten();
}

TEST_F(ZevpackBuild, RefusesTheLetterThatVerifyWouldRefuse) {
  Bytes upper = made_[placeOf(4)].packed;
  ASSERT_EQ(upper[9], 'v');
  upper[9] = 'V';
  fs::remove(memberFile(4));
  writeFile(folder_ / "STOP.WA_", upper);
  const Outcome outcome = build();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("row 4, Stop.wa_: the header names the character 'V' instead "
                                     "of 'v'"));
  expectNothingWritten();
}

TEST_F(ZevpackBuild, TakesSuchMembersIfAPersonForcesItAndSaysWhatIsWrong) {
  writeFile(memberFile(4), noise(2576, 99));
  const Outcome outcome = buildWith({"--force"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.err, HasSubstr("row 4, Stop.wa_: no header of a packed file\n"));
  EXPECT_EQ(fs::file_size(package_), madeImage().size() + kMembersTogether);
  writeFile(memberFile(4), noise(2575, 99));
  EXPECT_EQ(buildWith({"--force"}).status, 1) << "a size that would move all others";
}

TEST_F(ZevpackBuild, TakesStoredMembersIfToldThatTheyAreRight) {
  writeMembers(folder_, storedMembers());
  EXPECT_EQ(build().status, 1);
  expectNothingWritten();
  const Outcome outcome = buildWith({"--plain-ok"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.err, "");
  EXPECT_TRUE(readFile(package_) == packageOf(madeImage(), storedMembers()));
}

TEST_F(ZevpackBuild, NamesAMemberThatCannotBeReadAndAllOthersBesideIt) {
  fs::remove(memberFile(4));
  fs::create_symlink("/proc/self/mem", memberFile(4));
  fs::remove(memberFile(1));
  writeFile(memberFile(56), Bytes(3));
  const Outcome outcome = build();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("row 4, Stop.wa_: cannot read " + memberFile(4).string()));
  EXPECT_THAT(outcome.err, HasSubstr("row 1, MCD28m.wa_: neither it nor"));
  EXPECT_THAT(outcome.err, HasSubstr("row 56, zeveffs.dl_: the packed file has 3 bytes"));
  expectNothingWritten();
}

class ZevpackBuildImage : public ZevpackBuild {
 protected:
  /// The image is refused in these words, and a person can force it.
  void expectRefused(const Bytes& image, const std::string& why) const {
    writeFile(image_, image);
    const Outcome outcome = build();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "zevpack: " + image_.string() + ": " + why +
                               "\nnothing was written; --force builds it all the same\n");
    expectNothingWritten();
    const Outcome forced = buildWith({"--force"});
    EXPECT_EQ(forced.status, 0);
    EXPECT_THAT(forced.err, HasSubstr(why));
    EXPECT_EQ(fs::file_size(package_), image.size() + kMembersTogether);
    fs::remove(package_);
  }
};

TEST_F(ZevpackBuildImage, ThatIsNoProgramIsRefused) {
  expectRefused(noise(3583, 1), "there is no program in front of the members");
  Bytes otherSystem = madeImage();
  otherSystem[64] = 'N';
  expectRefused(otherSystem, "there is no program in front of the members");
}

TEST_F(ZevpackBuildImage, ThatIsCutShortIsRefused) {
  Bytes image = madeImage();
  image.pop_back();
  expectRefused(image,
                "the program in front of the members is cut short: its header tells of 3583 bytes, "
                "there are 3582");
}

TEST_F(ZevpackBuildImage, ThatIsAPackageAlreadyIsRefused) {
  const std::string why = "the program in front of the members carries members already";
  expectRefused(packageOf(madeImage(), made_), why);
  expectRefused(packageOf(madeImage(), storedMembers()), why);
  expectRefused(test::signedFile(packageOf(madeImage(), made_)), why);
  Bytes cut = packageOf(madeImage(), made_);
  cut.resize(cut.size() - 1000);
  expectRefused(cut, why);
}

TEST_F(ZevpackBuildImage, ThatIsSignedIsRefused) {
  expectRefused(test::signedFile(madeImage()),
                "the program was signed before it got its members, and that signature is void; the "
                "package is built first and signed last");
}

TEST_F(ZevpackBuildImage, WithSomethingElseBehindItIsTaken) {
  Bytes image = madeImage();
  image.resize(image.size() + 100, 0x2A);
  writeFile(image_, image);
  EXPECT_EQ(build().status, 0);
}

TEST_F(ZevpackBuild, DoesNotReplaceItsImageOrAMember) {
  const auto refused = [&](const fs::path& output, const std::string& why) {
    const std::set<std::string> before = namesIn(folder_);
    const Outcome outcome =
        zevpack({"build", "--image", image_, "--members", folder_, "--output", output, "--force"});
    EXPECT_EQ(outcome.status, 1) << output;
    EXPECT_THAT(outcome.err, HasSubstr(output.string())) << output;
    EXPECT_THAT(outcome.err, HasSubstr(why)) << output;
    EXPECT_EQ(namesIn(folder_), before);
    EXPECT_EQ(readFile(memberFile(4)), made_[placeOf(4)].packed);
    EXPECT_EQ(readFile(image_), madeImage());
  };
  refused(image_, "would replace its own image");
  refused(memberFile(4), "would lie among the members");
  refused(folder_ / "package", "would lie among the members");
  refused(folder_ / ".." / "members" / "package", "would lie among the members");
  fs::create_directory_symlink(folder_, at("link"));
  refused(at("link") / "package", "would lie among the members");
  fs::create_hard_link(image_, at("twin"));
  refused(at("twin"), "would replace its own image");
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
