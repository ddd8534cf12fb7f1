// How the tool answers a wrong use, and inputs that it cannot read.

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "zevpack/made_package.h"
#include "zevpack/tool.h"

namespace zev::packing {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

using Arguments = std::vector<std::string>;

/// Of the shell: enough for the tool, and not for a file of 400 MB.
// Of the memory that the tool asks for by itself, as on any machine.
constexpr const char* littleMemory = "unset GLIBC_TUNABLES; ulimit -v 200000";

class ZevpackUse : public ToolTest {
 protected:
  std::set<std::string> names() const { return namesIn(at("")); }

  /// Every command that reads, with `path` in place of what it reads.
  std::vector<Arguments> readers(const std::string& path) const {
    return {{"list", path},
            {"verify", path},
            {"extract", path, "--to", at("to")},
            {"compress", path, at("out")},
            {"expand", path, at("out")},
            {"build", "--image", path, "--members", at(""), "--output", at("out")}};
  }

  void expectUnreadable(const std::string& path, const std::string& what) const {
    const std::set<std::string> before = names();
    for (const Arguments& each : readers(path)) {
      const Outcome outcome = zevpack(each);
      EXPECT_EQ(outcome.status, 1) << each.front();
      EXPECT_THAT(outcome.err, StartsWith("zevpack: ")) << each.front();
      EXPECT_THAT(outcome.err, HasSubstr(path)) << each.front();
      EXPECT_THAT(outcome.err, HasSubstr(what)) << each.front();
      EXPECT_EQ(outcome.out, "") << each.front();
      EXPECT_EQ(names(), before) << each.front();
    }
  }
};

TEST_F(ZevpackUse, HelpTellsEveryCommand) {
  const Outcome outcome = zevpack({"--help"});
  EXPECT_EQ(outcome.status, 0);
  for (const char* command :
       {"build", "list", "verify", "extract", "compress", "expand", "sample"}) {
    EXPECT_THAT(outcome.out, HasSubstr(std::string("\n  ") + command + " ")) << command;
    const Outcome own = zevpack({command, "--help"});
    EXPECT_EQ(own.status, 0) << command;
    EXPECT_THAT(own.out, HasSubstr(std::string("zevpack ") + command)) << command;
  }
}

TEST_F(ZevpackUse, HelpTellsEveryOption) {
  for (const char* option : {"--image", "--members", "--output"}) {
    EXPECT_THAT(zevpack({"build", "--help"}).out, HasSubstr(option));
  }
  EXPECT_THAT(zevpack({"verify", "--help"}).out, HasSubstr("--plain-ok"));
  EXPECT_THAT(zevpack({"extract", "--help"}).out, HasSubstr("--packed"));
  EXPECT_THAT(zevpack({"sample", "--help"}).out, HasSubstr("--to"));
}

TEST_F(ZevpackUse, GivesTwoAndPointsToTheHelp) {
  writeFile(at("file"), Bytes(10));
  const std::string file = at("file");
  const std::vector<Arguments> wrong = {
      {},
      {""},
      {"pack"},
      {"--version"},
      {"build"},
      {"build", "--image", file, "--members", at("")},
      {"build", "--image", file, "--output", at("out")},
      {"build", "--members", at(""), "--output", at("out")},
      {"build", "--image", file, "--members", at(""), "--output"},
      {"list"},
      {"list", file, file},
      {"list", file, "verify", file},
      {"list", file, "--force"},
      {"verify", "--against", file},
      {"verify", "--installed", at("")},
      {"verify", file, "--system", at("")},
      {"verify"},
      {"verify", file, "--packed"},
      {"extract", file},
      {"extract", "--to", at("to")},
      {"extract", file, "--to"},
      {"compress", file},
      {"compress", file, at("out"), at("more")},
      {"expand", file},
      {"expand", file, at("out"), "--to", at("to")},
      {"sample"},
      {"sample", at("to")},
  };
  for (const Arguments& arguments : wrong) {
    const Outcome outcome = zevpack(arguments);
    const std::string shown = testing::PrintToString(arguments);
    EXPECT_EQ(outcome.status, 2) << shown;
    EXPECT_THAT(outcome.err, HasSubstr("--help")) << shown;
    EXPECT_EQ(outcome.out, "") << shown;
    EXPECT_EQ(names(), (std::set<std::string>{"file"})) << shown;
  }
}

TEST_F(ZevpackUse, NamesAFileThatIsMissing) {
  expectUnreadable(at("missing"), "No such file");
  expectUnreadable(at("missing") / "file", "No such file");
}

TEST_F(ZevpackUse, NamesAFolderInPlaceOfAFile) {
  makeFolder(at("folder"));
  expectUnreadable(at("folder"), "is a folder");
}

TEST_F(ZevpackUse, NamesAPipeOrADeviceAndWaitsForNeither) {
  ASSERT_EQ(mkfifo(at("pipe").c_str(), 0600), 0);
  expectUnreadable(at("pipe"), "is a pipe, not a file");
  expectUnreadable("/dev/zero", "is a device, not a file");
}

TEST_F(ZevpackUse, NamesAFileThatIsTooLong) {
  writeFile(at("long"), Bytes(10));
  fs::resize_file(at("long"), std::uintmax_t{1} << 31);
  expectUnreadable(at("long"), "is longer than 2 GiB");
}

TEST_F(ZevpackUse, NamesAFileThatNeedsMoreMemoryThanThereIs) {
  const Outcome probe = zevpack({"--help"}, littleMemory);
  if (probe.status != 0) GTEST_SKIP() << "this build of the tool needs more memory to begin with";
  writeFile(at("big"), Bytes(10));
  fs::resize_file(at("big"), 400'000'000);
  for (const Arguments& each : readers(at("big"))) {
    const Outcome outcome = zevpack(each, littleMemory);
    EXPECT_EQ(outcome.status, 1) << each.front();
    EXPECT_EQ(outcome.err,
              "zevpack: " + at("big").string() + ": there is not enough memory for it\n")
        << each.front();
  }
  EXPECT_EQ(names(), (std::set<std::string>{"big"}));
}

TEST_F(ZevpackUse, NamesAFileThatNeedsMoreMemoryThanThereIsToExpand) {
  if (zevpack({"--help"}, littleMemory).status != 0) GTEST_SKIP() << "as above";
  const MadeMember dense = densestOfSize(14 + 17 * 1'000'000, 'v');  // 144,000,000 bytes
  writeFile(at("dense.wa_"), dense.packed);
  const Outcome outcome = zevpack({"expand", at("dense.wa_"), at("dense.wav")},
                                  "unset GLIBC_TUNABLES; ulimit -v 160000");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err,
            "zevpack: " + at("dense.wa_").string() + ": there is not enough memory to expand it\n");
  EXPECT_EQ(names(), (std::set<std::string>{"dense.wa_"}));
}

TEST_F(ZevpackUse, NamesAWordThatIsNoCommand) {
  for (const Arguments& words :
       {Arguments{"biuld"}, Arguments{"biuld", "--image", "x"}, Arguments{"verifi", "package"}}) {
    const Outcome outcome = zevpack(words);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.err, HasSubstr(words.front()));
  }
}

TEST_F(ZevpackUse, FailsIfWhatItSaysCannotBeWritten) {
  if (!fs::is_character_file("/dev/full")) GTEST_SKIP() << "no device of that name";
  writeFile(at("package"), packageOf(madeImage(), packedMembers()));
  const std::string package = at("package");
  for (const Arguments& each :
       {Arguments{"list", package}, Arguments{"list", "--digests", package},
        Arguments{"verify", package}, Arguments{"--help"}, Arguments{"list", "--help"}}) {
    std::string command = std::string("'") + ZEVPACK_TOOL + "'";
    for (const std::string& word : each) command += " '" + word + "'";
    const Outcome outcome = runProgram("sh", {"-c", command + " >/dev/full"});
    EXPECT_EQ(outcome.status, 1) << each.front();
    EXPECT_THAT(outcome.err, HasSubstr("zevpack: cannot write to standard output: No space left"))
        << each.front();
  }
}

TEST_F(ZevpackUse, NamesAFileInPlaceOfAFolder) {
  writeFile(at("file"), Bytes(10));
  expectUnreadable(at("file") / "inner", "Not a directory");
}

TEST_F(ZevpackUse, NamesAFileThatMayNotBeRead) {
  writeFile(at("locked"), Bytes(10));
  fs::permissions(at("locked"), fs::perms::none);
  if (access(at("locked").c_str(), R_OK) == 0) GTEST_SKIP() << "this user may read everything";
  expectUnreadable(at("locked"), "Permission denied");
}

TEST_F(ZevpackUse, NamesAFileWhoseReadsFail) {
  // The memory of a process can be opened, and nothing lies at its start.
  constexpr const char* memory = "/proc/self/mem";
  if (access(memory, R_OK) != 0) GTEST_SKIP() << memory << " is not there";
  expectUnreadable(memory, "cannot read");
}

TEST_F(ZevpackUse, NamesAFolderOfMembersThatCannotBeListed) {
  writeFile(at("image"), madeImage());
  for (const fs::path& folder : {at("missing"), at("image")}) {
    const Outcome outcome =
        zevpack({"build", "--image", at("image"), "--members", folder, "--output", at("out")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, StartsWith("zevpack: cannot list the folder " + folder.string()));
    EXPECT_EQ(names(), (std::set<std::string>{"image"}));
  }
}

TEST_F(ZevpackUse, NamesAnOutputThatCannotBeWritten) {
  writeFile(at("file"), Bytes(10));
  makeFolder(at("folder"));
  const std::set<std::string> before = names();
  for (const char* command : {"compress", "expand"}) {
    for (const fs::path& out : {at("missing") / "out", at("file") / "out", at("folder")}) {
      const Outcome outcome = zevpack({command, at("file"), out});
      EXPECT_EQ(outcome.status, 1) << command << out;
      EXPECT_THAT(outcome.err, StartsWith("zevpack: cannot ")) << command << out;
      EXPECT_THAT(outcome.err, HasSubstr(out.string())) << command << out;
      EXPECT_EQ(names(), before);
    }
  }
}

TEST_F(ZevpackUse, NamesAFileInPlaceOfTheFolderForTheSample) {
  writeFile(at("file"), Bytes(10));
  for (const fs::path& folder : {at("file"), at("file") / "inner"}) {
    const Outcome outcome = zevpack({"sample", "--to", folder});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr(folder.string()));
    EXPECT_EQ(readFile(at("file")), Bytes(10));
  }
}

}  // namespace
}  // namespace zev::packing
