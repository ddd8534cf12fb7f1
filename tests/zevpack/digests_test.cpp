// Digests of a package, and packages and products held against them.

#include <gmock/gmock.h>

#include "digest/sha256.h"
#include "package/projects.h"
#include "programs/zevpack/digests.h"
#include "support/made_image.h"
#include "zevpack/made_package.h"
#include "zevpack/tool.h"

namespace zev::packing {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

constexpr std::int32_t kProject = 29;

std::string textOf(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }
Bytes bytesOf(const std::string& text) { return {text.begin(), text.end()}; }

class ZevpackDigests : public ToolTest {
 protected:
  ZevpackDigests() {
    writeFile(package_, packageOf(madeImage(), made_));
    writeFile(list_, bytesOf(zevpack({"list", "--digests", package_}).out));
  }

  std::string listed() const { return textOf(readFile(list_)); }

  Outcome verifyPackage() const { return zevpack({"verify", package_, "--against", list_}); }

  const fs::path package_ = at("package");
  const fs::path list_ = at("list");
  const std::vector<MadeMember>& made_ = packedMembers();
};

TEST_F(ZevpackDigests, AreThoseOfTheExpandedMembersInTheOrderOfTheManifest) {
  std::vector<std::string> lines = linesOf(listed());
  std::erase_if(lines, [](const std::string& line) { return line.starts_with('#'); });
  ASSERT_EQ(lines.size(), 56u);
  for (const Member& member : members()) {
    EXPECT_EQ(lines[placeOf(member.row)],
              sha256Hex(made_[placeOf(member.row)].plain) + "  " + member.installedName);
  }
}

TEST_F(ZevpackDigests, AreReadBySha256sum) {
  ASSERT_EQ(zevpack({"extract", package_, "--to", at("files")}).status, 0);
  const std::string there = "cd '" + at("files").string() + "'";
  const Outcome right = runProgram("sha256sum", {"-c", "--strict", list_}, there);
  EXPECT_EQ(right.status, 0) << right.err;
  EXPECT_EQ(linesOf(right.out).size(), 56u);
  writeFile(at("files") / "Stop.wav", Bytes(1));
  EXPECT_EQ(runProgram("sha256sum", {"-c", "--strict", list_}, there).status, 1);
}

TEST_F(ZevpackDigests, AreNotToldOfAPackageThatIsNotRight) {
  Bytes bytes = readFile(package_);
  bytes[startOf(8) + 8] = 'B';
  writeFile(package_, bytes);
  const Outcome outcome = zevpack({"list", "--digests", package_});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_THAT(outcome.err, HasSubstr("row  8  Key118m.wa_"));
}

TEST_F(ZevpackDigests, AreThoseOfTheSignedPackageToo) {
  writeFile(package_, test::signedFile(readFile(package_)));
  EXPECT_EQ(zevpack({"list", "--digests", package_}).out, listed());
  EXPECT_EQ(verifyPackage().status, 0);
}

TEST_F(ZevpackDigests, HoldForTheirPackage) {
  const Outcome outcome = verifyPackage();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, package_.string() + ": 56 of 56 members are right\n");
}

TEST_F(ZevpackDigests, FindAFlippedBitOfALiteralWhichExpandsAsWellAsEver) {
  for (const std::int32_t row : {1, 24, 56}) {
    Bytes bytes = packageOf(madeImage(), made_);
    bytes[startOf(row) + members()[placeOf(row)].size - 1] ^= 1;
    writeFile(package_, bytes);
    ASSERT_EQ(zevpack({"verify", package_}).status, 0) << row;
    const Outcome outcome = verifyPackage();
    EXPECT_EQ(outcome.status, 1) << row;
    const std::vector<std::string> lines = linesOf(outcome.out);
    ASSERT_EQ(lines.size(), 2u) << outcome.out;
    EXPECT_THAT(lines[0], HasSubstr(members()[placeOf(row)].packedName));
    EXPECT_THAT(lines[0], HasSubstr("its digest is another one"));
    EXPECT_THAT(lines[1], HasSubstr("55 of 56 members are right"));
  }
}

TEST_F(ZevpackDigests, AreNotComparedForAPackageThatIsNotRight) {
  Bytes bytes = readFile(package_);
  bytes[startOf(8) + 8] = 'B';
  writeFile(package_, bytes);
  const Outcome outcome = verifyPackage();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, HasSubstr("digests were not compared"));
}

TEST_F(ZevpackDigests, OfAListThatIsNoneAreRefusedByLine) {
  const auto refused = [&](const std::string& list, const std::string& why) {
    writeFile(list_, bytesOf(list));
    const Outcome outcome = verifyPackage();
    EXPECT_EQ(outcome.status, 1) << why;
    EXPECT_THAT(outcome.err, HasSubstr("zevpack: " + list_.string()));
    EXPECT_THAT(outcome.err, HasSubstr(why));
    EXPECT_EQ(outcome.out, "") << why;
  };
  const std::string all = listed();
  const std::string digest(64, 'a');
  refused("", " has no digest of\n  MCD28m.wav\n  MCU28m.wav\n");
  refused("nonsense\n" + all, "line 1 is no digest of a file");
  refused("# mine\n\n" + digest + "\n" + all, "line 3 is no digest of a file");
  refused(digest + " Stop.wav\n" + all, "line 1 is no digest of a file");
  refused(std::string(64, 'g') + "  Stop.wav\n" + all, "line 1 is no digest of a file");
  refused(digest + "  stop.wav\n" + all,
          "line 1 names \"stop.wav\", which is no file of the product");
  refused(all + digest + "  Stop.wav\n", "line 58 names a file again");
  refused(all.substr(all.find('\n') + 1), " has no digest of\n  MCD28m.wav\n");
  refused("# without the path of the video: x\n" + all, "line 1 is no digest of a file");
}

TEST_F(ZevpackDigests, MayStandInAnyOrderAndBeReadAsBytes) {
  std::string turned;
  for (std::string line : linesOf(listed())) {
    if (!line.starts_with('#')) line[65] = '*';
    turned = line + "\n" + turned;
  }
  writeFile(list_, bytesOf("# a comment\n\n" + turned));
  EXPECT_EQ(verifyPackage().status, 0) << verifyPackage().err;
}

/// A product as a run leaves it, in three folders.
class ZevpackInstalled : public ZevpackDigests {
 protected:
  ZevpackInstalled() {
    for (const Member& member : members()) {
      writeFile(fileOf(member.row), made_[placeOf(member.row)].plain);
    }
    writeFile(product_ / "UserF.dat", Bytes(3));
    patch("C:\\ZEV");
  }

  fs::path fileOf(std::int32_t row) const {
    const Member member = members()[placeOf(row)];
    const fs::path folder = member.target == Target::System     ? system_
                            : member.target == Target::Projects ? projects_
                                                                : product_;
    makeFolder(folder);
    return folder / member.installedName;
  }

  void patch(std::string directory) const {
    Bytes project = made_[placeOf(kProject)].plain;
    directory += "\\SampleAVI.avi";
    directory.resize(videoPathSize, ' ');
    std::copy(directory.begin(), directory.end(), project.begin() + videoPathOffset);
    writeFile(fileOf(kProject), project);
  }

  Outcome verify(const std::vector<std::string>& with) const {
    std::vector<std::string> arguments = {"verify", "--installed", product_, "--system",
                                          system_,  "--projects",  projects_};
    arguments.insert(arguments.end(), with.begin(), with.end());
    return zevpack(arguments);
  }

  /// One row is wrong, whatever the product is held against.
  void expectWrong(std::int32_t row, const std::string& what) const {
    for (const std::vector<std::string>& with :
         {std::vector<std::string>{"--against", list_}, std::vector<std::string>{package_}}) {
      const Outcome outcome = verify(with);
      EXPECT_EQ(outcome.status, 1);
      EXPECT_THAT(outcome.out, HasSubstr("row " + std::string(row < 10 ? " " : "") +
                                         std::to_string(row) + "  "));
      EXPECT_THAT(outcome.out, HasSubstr(what));
      EXPECT_THAT(outcome.out, HasSubstr(", 1 wrong\n"));
    }
  }

  void flip(std::int32_t row, std::size_t offset) const {
    Bytes bytes = readFile(fileOf(row));
    bytes.at(offset) ^= 0x40;
    writeFile(fileOf(row), bytes);
  }

  const fs::path product_ = at("product");
  const fs::path system_ = at("system");
  const fs::path projects_ = at("projects");
};

TEST_F(ZevpackInstalled, IsRightWithItsPatchedProjectToldApart) {
  const std::string counts =
      ": 55 of 56 files are right, 1 patched, 0 absent, 0 not looked at, 0 wrong\n";
  const Outcome byList = verify({"--against", list_});
  EXPECT_EQ(byList.status, 0);
  EXPECT_EQ(byList.out,
            "row 29  SampleProject.zrd                 the path of its video is "
            "C:\\ZEV\\SampleAVI.avi\n" +
                product_.string() + counts);
  const Outcome byPackage = verify({package_});
  EXPECT_EQ(byPackage.status, 0);
  EXPECT_THAT(byPackage.out, HasSubstr("56 of 56 members are right\n"));
  EXPECT_THAT(byPackage.out, HasSubstr(counts));
}

TEST_F(ZevpackInstalled, NeedNotHaveWhatNotEveryMachineGetsOrKeeps) {
  for (const std::int32_t row : {25, 31, 48}) fs::remove(fileOf(row));
  const Outcome outcome = verify({"--against", list_});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, HasSubstr("52 of 56 files are right, 1 patched, 3 absent"));
  EXPECT_THAT(outcome.out, HasSubstr("row 31  vcredist_x86.exe"));
}

TEST_F(ZevpackInstalled, IsWrongWithoutAnyOtherFile) {
  for (const std::int32_t row : {3, 27, kProject}) {
    const Bytes before = readFile(fileOf(row));
    fs::remove(fileOf(row));
    expectWrong(row, "is not there");
    writeFile(fileOf(row), before);
  }
}

TEST_F(ZevpackInstalled, IsWrongWithAFlippedBit) {
  for (const std::int32_t row : {1, 25, 31, 48, 56}) {
    flip(row, 3);
    expectWrong(row, "differs: " + fileOf(row).string());
    flip(row, 3);
  }
}

TEST_F(ZevpackInstalled, IsWrongWithAFlippedBitOfTheProjectBesideThePath) {
  for (const std::size_t offset :
       {std::size_t{0}, videoPathOffset - 1, videoPathOffset + videoPathSize}) {
    flip(kProject, offset);
    expectWrong(kProject, "differs, and not only in the path of its video");
    flip(kProject, offset);
  }
}

TEST_F(ZevpackInstalled, IsWrongIfTheProjectHoldsNoPath) {
  flip(kProject, videoPathOffset + std::string("C:\\ZEV\\SampleA").size());
  expectWrong(kProject, "holds no path of its video");
  patch("");
  EXPECT_EQ(verify({"--against", list_}).status, 0);
  flip(kProject, videoPathOffset + videoPathSize - 1);
  expectWrong(kProject, "holds no path of its video");
  writeFile(fileOf(kProject), Bytes(videoPathOffset + videoPathSize - 1));
  expectWrong(kProject, "is too short for the path of its video");
}

TEST_F(ZevpackInstalled, CannotTellAPatchedProjectByAListOfOnlyWholeDigests) {
  std::string whole;
  for (const std::string& line : linesOf(listed())) {
    if (!line.starts_with('#')) whole += line + "\n";
  }
  writeFile(list_, bytesOf(whole));
  const Outcome outcome = verify({"--against", list_});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, HasSubstr("differs, and nothing tells its digest without its path"));
  writeFile(fileOf(kProject), made_[placeOf(kProject)].plain);
  EXPECT_EQ(verify({"--against", list_}).status, 0);
}

TEST_F(ZevpackInstalled, SaysWhichFoldersNobodyNamed) {
  const Outcome outcome = zevpack({"verify", "--installed", product_, "--against", list_});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out,
              HasSubstr("48 of 56 files are right, 0 patched, 0 absent, 8 not looked at"));
  EXPECT_THAT(outcome.out,
              HasSubstr("row 27  zevatswf.dll                      its folder is not named"));
  fs::rename(projects_, product_ / "Projects");
  EXPECT_THAT(zevpack({"verify", "--installed", product_, "--against", list_}).out,
              HasSubstr("1 patched, 0 absent, 7 not looked at"));
}

TEST_F(ZevpackInstalled, HasItsFilesInAnyLetterCase) {
  fs::rename(fileOf(4), product_ / "STOP.WAV");
  EXPECT_EQ(verify({"--against", list_}).status, 0);
}

TEST_F(ZevpackInstalled, NamesAFileThatCannotBeReadBesideTheOthers) {
  fs::remove(fileOf(4));
  fs::create_symlink("/proc/self/mem", fileOf(4));
  expectWrong(4, "cannot read " + fileOf(4).string());
}

TEST_F(ZevpackInstalled, NamesAFolderThatIsNotThere) {
  const Outcome outcome = zevpack({"verify", "--installed", at("missing"), "--against", list_});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("cannot list the folder " + at("missing").string()));
}

TEST_F(ZevpackInstalled, IsNotHeldAgainstAPackageThatIsNotRight) {
  Bytes bytes = readFile(package_);
  bytes[startOf(8) + 8] = 'B';
  writeFile(package_, bytes);
  const Outcome outcome = verify({package_});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr("nothing can be held against it"));
  EXPECT_THAT(outcome.out, Not(HasSubstr("files are right")));
}

}  // namespace
}  // namespace zev::packing
