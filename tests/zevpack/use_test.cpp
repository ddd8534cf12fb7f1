// How the tool answers a wrong use, and inputs that it cannot read.

#include <gmock/gmock.h>
#include <unistd.h>

#include "zevpack/tool.h"

namespace zev::packing {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

using Arguments = std::vector<std::string>;

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
      {"list", file, "--plain-ok"},
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
  writeFile(at("image"), Bytes(10));
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
