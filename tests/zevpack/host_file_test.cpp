#include "programs/zevpack/host_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "zevpack/made_package.h"
#include "zevpack/tool.h"

namespace zev::packing {
namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

using Names = std::set<std::string>;

class NewFileTest : public ToolTest {
 protected:
  Names names() const { return namesIn(at("")); }

  /// The next call for a file that is open here fails.
  static void closeBehindItsBack(const std::filesystem::path& path) {
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
      std::error_code ignored;
      if (std::filesystem::read_symlink(entry.path(), ignored) != path) continue;
      close(std::stoi(entry.path().filename().string()));
      return;
    }
    FAIL() << path << " is not open";
  }
};

TEST_F(NewFileTest, TakesItsNameWhenItIsKept) {
  NewFile file(at("out"));
  file.append(Bytes{1, 2});
  file.append(Bytes{3});
  EXPECT_EQ(names(), (Names{"out.partial"}));
  file.keep();
  EXPECT_EQ(names(), (Names{"out"}));
  EXPECT_EQ(readFile(at("out")), (Bytes{1, 2, 3}));
}

TEST_F(NewFileTest, LeavesNothingIfItIsNotKept) {
  { NewFile(at("out")).append(noise(100000, 1)); }
  EXPECT_EQ(names(), Names{});
}

TEST_F(NewFileTest, LeavesWhatWasThereIfItIsNotKept) {
  writeFile(at("out"), Bytes{1});
  { NewFile(at("out")).append(noise(100000, 1)); }
  EXPECT_EQ(names(), (Names{"out"}));
  EXPECT_EQ(readFile(at("out")), Bytes{1});
}

TEST_F(NewFileTest, ReplacesWhatWasThereIfItIsKept) {
  writeFile(at("out"), noise(1000, 1));
  writeFile(at("out"), Bytes{2});
  EXPECT_EQ(readFile(at("out")), Bytes{2});
}

TEST_F(NewFileTest, LeavesAFileOfThePersonsWithTheNameInTheMaking) {
  writeFile(at("out"), Bytes{1});
  writeFile(at("mine"), Bytes{7});
  std::filesystem::rename(at("mine"), at("out.partial"));
  EXPECT_THAT([&] { NewFile(at("out")); },
              ThrowsMessage<ToolError>(HasSubstr(at("out.partial").string() + " is there")));
  EXPECT_EQ(readFile(at("out.partial")), Bytes{7});
  EXPECT_EQ(readFile(at("out")), Bytes{1});
}

TEST_F(NewFileTest, WritesThroughNoLink) {
  writeFile(at("other"), Bytes{7});
  for (const char* target : {"other", "missing"}) {
    std::filesystem::create_symlink(at(target), at("out.partial"));
    EXPECT_THROW(writeFile(at("out"), Bytes{1}), ToolError);
    EXPECT_TRUE(std::filesystem::is_symlink(at("out.partial")));
    std::filesystem::remove(at("out.partial"));
  }
  EXPECT_EQ(names(), Names{"other"});
  EXPECT_EQ(readFile(at("other")), Bytes{7});
}

TEST_F(NewFileTest, KeepsTheModeOfWhatItReplaces) {
  namespace fs = std::filesystem;
  for (const int mode : {0755, 0600, 0664}) {
    writeFile(at("out"), Bytes{1});
    fs::permissions(at("out"), static_cast<fs::perms>(mode));
    writeFile(at("out"), Bytes{2});
    EXPECT_EQ(fs::status(at("out")).permissions(), static_cast<fs::perms>(mode));
  }
}

TEST_F(NewFileTest, GivesANewFileTheModeThatThePersonGivesFiles) {
  const mode_t before = umask(027);
  writeFile(at("out"), Bytes{1});
  umask(before);
  EXPECT_EQ(std::filesystem::status(at("out")).permissions(),
            static_cast<std::filesystem::perms>(0640));
}

TEST_F(NewFileTest, RefusesAFileThatIsReadOnly) {
  writeFile(at("out"), Bytes{1});
  std::filesystem::permissions(at("out"), static_cast<std::filesystem::perms>(0444));
  EXPECT_THAT([&] { writeFile(at("out"), Bytes{2}); },
              ThrowsMessage<ToolError>("cannot write " + at("out").string() + ": it is read-only"));
  EXPECT_EQ(readFile(at("out")), Bytes{1});
  EXPECT_EQ(names(), Names{"out"});
}

TEST_F(NewFileTest, FailsIfTheCloseFails) {
  writeFile(at("out"), Bytes{1});
  {
    NewFile file(at("out"));
    file.append(Bytes{2});
    closeBehindItsBack(at("out.partial"));
    EXPECT_THAT([&] { file.keep(); },
                ThrowsMessage<ToolError>(HasSubstr("cannot write " + at("out").string() + ": ")));
  }
  EXPECT_EQ(readFile(at("out")), Bytes{1});
  EXPECT_EQ(names(), Names{"out"});
}

TEST_F(NewFileTest, FailsIfAWriteFails) {
  NewFile file(at("out"));
  closeBehindItsBack(at("out.partial"));
  EXPECT_THROW(file.append(Bytes{2}), ToolError);
}

constexpr int endingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE};

/// Who starts the tests in the background may have them ignore what comes from a keyboard, and what
/// is ignored at the first file stays so.
const bool signalsEnd = [] {
  for (const int signal : endingSignals) std::signal(signal, SIG_DFL);
  return true;
}();

TEST_F(NewFileTest, LeavesNothingBehindASignal) {
  ASSERT_TRUE(signalsEnd);
  for (const int signal : endingSignals) {
    const pid_t child = fork();
    if (child == 0) {
      NewFile other(at("other"));
      NewFile file(at("out"));
      file.append(Bytes{1});
      raise(signal);
      _exit(0);
    }
    int ended = 0;
    ASSERT_EQ(waitpid(child, &ended, 0), child);
    EXPECT_TRUE(WIFSIGNALED(ended) && WTERMSIG(ended) == signal) << signal << " " << ended;
    EXPECT_EQ(names(), Names{}) << signal;
  }
}

TEST_F(NewFileTest, IsMadeUnderANameThatNobodyTakesMeanwhile) {
  writeFile(at("file"), Bytes{7});
  std::filesystem::create_symlink(at("missing"), at("link"));
  for (const char* taken : {"file", "link"}) {
    EXPECT_THAT([&] { PartialFile(at(taken).string()); },
                testing::Throws<std::system_error>(
                    testing::Property(&std::system_error::code, std::errc::file_exists)));
  }
  EXPECT_EQ(names(), (Names{"file", "link"}));
  EXPECT_EQ(readFile(at("file")), Bytes{7});
}

TEST_F(NewFileTest, RefusesAFolderThatIsMissing) {
  EXPECT_THROW(NewFile(at("missing") / "out"), ToolError);
}

TEST_F(NewFileTest, RefusesAFolderInItsPlaceAndLeavesNothing) {
  makeFolder(at("out"));
  EXPECT_THROW(writeFile(at("out"), Bytes{1}), ToolError);
  EXPECT_EQ(names(), (Names{"out"}));
}

TEST_F(NewFileTest, MakeFolderMakesItsParentsAndTakesOneThatIsThere) {
  makeFolder(at("a") / "b" / "c");
  EXPECT_NO_THROW(makeFolder(at("a") / "b" / "c"));
  EXPECT_TRUE(std::filesystem::is_directory(at("a") / "b" / "c"));
}

}  // namespace
}  // namespace zev::packing
