// A drive over a folder of a host that refuses: what it cannot keep is an error of the call that
// learns of it, and no file is there by halves.

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <string_view>

#include "simulated/bench.h"

namespace zev::simulated {
namespace {

namespace fs = std::filesystem;

/// Until its end no file of the host can grow beyond so many bytes, as on a drive that is full.
class SmallFiles {
 public:
  explicit SmallFiles(rlim_t bytes) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    handler_ = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{bytes, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
  }
  ~SmallFiles() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  SmallFiles(const SmallFiles&) = delete;
  SmallFiles& operator=(const SmallFiles&) = delete;

 private:
  rlimit before_{};
  void (*handler_)(int) = nullptr;
};

class HostRefusalsTest : public MachineTest {
 protected:
  HostRefusalsTest() {
    host.write("value", "what was there\r\n");
    DriveSettings settings;
    settings.host = host.path();
    machine.disks().setDrive(u'E', settings);
  }

  /// Takes the descriptor of an open file away, so that the system refuses to close it.
  void loseDescriptorOf(const std::string& name) const {
    for (const auto& each : fs::directory_iterator("/proc/self/fd")) {
      std::error_code error;
      if (fs::read_symlink(each.path(), error) == host.path() / name) {
        ::close(std::stoi(each.path().filename().string()));
        return;
      }
    }
    FAIL() << name << " is not open";
  }

  HostFolder host;
};

TEST_F(HostRefusalsTest, AFullDriveIsErrorSixtyOne) {
  files().OpenBinary(1, u"E:\\f", false);
  {
    const SmallFiles full(3);
    EXPECT_EQ(test::raisedBy([&] { files().Put(1, 1, bytes("abcdef")); }), 61);
    EXPECT_EQ(files().LOF(1), 3);
  }
  files().Close(1);
  EXPECT_EQ(host.read("f"), "abc");
}

TEST_F(HostRefusalsTest, AWriteThatFitsInPartTellsWhatFitted) {
  FileHandle file = 0;
  ASSERT_EQ(system().CreateFileA(u"E:\\f", FileAccess::Write, FileShare::All,
                                 FileDisposition::CreateAlways, file),
            system_error::success);
  std::size_t written = 0;
  {
    const SmallFiles full(3);
    EXPECT_EQ(system().WriteFile(file, 0, bytes("abcdef"), written), system_error::diskFull);
    EXPECT_EQ(written, 3u);
    EXPECT_EQ(system().WriteFile(file, 3, bytes("d"), written), system_error::diskFull);
    EXPECT_EQ(written, 0u);
  }
  EXPECT_EQ(system().WriteFile(file, 3, bytes("d"), written), system_error::success);
  system().CloseHandle(file);
  EXPECT_EQ(host.read("f"), "abcd");
  EXPECT_EQ(log.of("file").at(1).dump(),
            R"({"event":"file","op":"write","path":"E:\\f","bytes":3,"error":112})");
}

TEST_F(HostRefusalsTest, AValueThatFindsNoRoomIsAnErrorAndLeavesTheOldOne) {
  const SmallFiles full(0);
  files().OpenOutput(1, u"E:\\value");
  EXPECT_EQ(test::raisedBy([&] { files().Print(1, u"21"); }), 61);
  files().Close(1);
  EXPECT_EQ(host.read("value"), "what was there\r\n");
  EXPECT_THAT(host.names(), testing::ElementsAre("value"));
}

TEST_F(HostRefusalsTest, AFileThatCannotBeClosedIsAnError) {
  files().OpenBinary(1, u"E:\\f", false);
  files().Put(1, 1, bytes("abc"));
  loseDescriptorOf("f");
  EXPECT_EQ(test::raisedBy([&] { files().Close(1); }), 75);
  EXPECT_EQ(files().FreeFile(), 1) << "it is closed all the same";
}

TEST_F(HostRefusalsTest, AValueThatCannotBeClosedIsAnErrorAndLeavesTheOldOne) {
  files().OpenOutput(1, u"E:\\value");
  files().Print(1, u"21");
  loseDescriptorOf("value.~zev");
  EXPECT_EQ(test::raisedBy([&] { files().Close(1); }), 75);
  EXPECT_EQ(host.read("value"), "what was there\r\n");
  EXPECT_THAT(host.names(), testing::ElementsAre("value"));
}

TEST_F(HostRefusalsTest, AnExpansionThatFindsNoRoomIsAWriteFailure) {
  host.write("packed", "not compressed, so it is copied");
  OFSTRUCT record;
  const std::int32_t from = platform().lz.LZOpenFileA(u"E:\\packed", record, OF_READ);
  const std::int32_t to = platform().lz.LZOpenFileA(u"E:\\out", record, OF_CREATE);
  const SmallFiles full(10);
  EXPECT_EQ(platform().lz.LZCopy(from, to), lz_error::writeFailure);
}

TEST_F(HostRefusalsTest, AShortcutThatFindsNoRoomIsNotSaved) {
  const auto shell = platform().shortcuts.CreateObject();
  const auto link = shell->CreateShortcut(u"E:\\link.lnk");
  const SmallFiles full(0);
  EXPECT_NE(test::raisedBy([&] { link->Save(); }), 0);
  EXPECT_FALSE(machine.shortcut(u"E:\\link.lnk").has_value());
}

}  // namespace
}  // namespace zev::simulated
