// Files of the machine of which the host has the bytes: they are the machine's all the same.

#include "simulated/host_piece.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

#include "simulated/bench.h"
#include "simulated/put_text.h"

namespace zev::simulated {
namespace {

std::string read(const HostPiece& piece, std::uint64_t offset, std::size_t count) {
  std::vector<std::uint8_t> into(count, 'x');
  into.resize(piece.read(offset, into));
  return {into.begin(), into.end()};
}

class HostPieceTest : public MachineTest {
 protected:
  HostPieceTest() { host.write("file", "0123456789"); }

  std::shared_ptr<const HostPiece> piece(std::uint64_t offset, std::uint64_t size,
                                         std::uint64_t zeros = 0) const {
    return std::make_shared<const HostPiece>(host.path() / "file", offset, size, zeros);
  }
  void lay(TextView path, std::shared_ptr<const HostPiece> bytes) {
    FileSettings settings;
    settings.content = std::move(bytes);
    machine.disks().put(path, settings);
  }

  HostFolder host;
};

TEST_F(HostPieceTest, IsZerosAndAPieceOfTheFile) {
  const auto bytes = piece(2, 5, 3);
  EXPECT_EQ(bytes->size(), 8u);
  const std::string whole("\0\0\00023456", 8);
  for (std::uint64_t offset = 0; offset <= 9; ++offset) {
    for (std::size_t count = 0; count <= 9; ++count) {
      const std::string expected = offset < 8 ? whole.substr(offset, count) : "";
      EXPECT_EQ(read(*bytes, offset, count), expected) << offset << ", " << count;
    }
  }
  EXPECT_EQ(read(HostPiece(3), 1, 5), std::string(2, '\0'));
}

TEST_F(HostPieceTest, StaysWhatItWasWhenTheFileIsReplaced) {
  const auto bytes = piece(0, 10);
  host.write("new", "abcdefghij");
  std::filesystem::rename(host.path() / "new", host.path() / "file");
  EXPECT_EQ(read(*bytes, 0, 10), "0123456789");
  std::filesystem::remove(host.path() / "file");
  EXPECT_EQ(read(*bytes, 0, 10), "0123456789");
}

TEST_F(HostPieceTest, GivesNothingOfAFileThatWasWrittenTo) {
  const auto bytes = piece(0, 10);
  host.write("file", "0123");
  EXPECT_THROW(read(*bytes, 0, 10), std::runtime_error);
  EXPECT_THROW(read(*bytes, 0, 2), std::runtime_error);
}

TEST_F(HostPieceTest, ThrowsForAFileThatIsNotThere) {
  EXPECT_THROW(HostPiece(host.path() / "none", 0, 0, 0), std::runtime_error);
}

TEST_F(HostPieceTest, IsAFileOfTheMachineThatCanBeWritten) {
  lay(u"C:\\f", piece(0, 10, 2));
  EXPECT_EQ(files().FileLen(u"C:\\f"), 12);
  EXPECT_EQ(content(u"C:\\f"), std::string(2, '\0') + "0123456789");
  files().OpenBinary(1, u"C:\\f", false);
  files().Put(1, 5, bytes("AB"));
  files().Close(1);
  EXPECT_EQ(content(u"C:\\f"), std::string(2, '\0') + "01AB456789");
  EXPECT_EQ(host.read("file"), "0123456789");
}

/// The most memory that the process has had, in bytes.
std::uint64_t peakMemory() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::uint64_t>(usage.ru_maxrss) * 1024;
}

TEST_F(HostPieceTest, TakesNoMemoryForWhatNobodyWrites) {
  constexpr std::uint64_t length = std::uint64_t{1} << 28;
  std::filesystem::resize_file(host.path() / "file", length);
  const std::uint64_t before = peakMemory();
  lay(u"C:\\f", piece(0, length));
  EXPECT_EQ(machine.disks().read(u"C:\\f", length - 3, 10)->size(), 3u);
  EXPECT_LT(peakMemory(), before + length / 4);
}

TEST_F(HostPieceTest, MakesRoomForWhatIsWrittenAnew) {
  lay(u"C:\\f", piece(0, 10));
  files().OpenOutput(1, u"C:\\f");
  files().Print(1, u"new");
  files().Close(1);
  EXPECT_EQ(content(u"C:\\f"), "new\r\n");
  putText(machine.disks(), u"C:\\g", "long enough to be shortened");
  lay(u"C:\\g", piece(0, 10));
  EXPECT_EQ(content(u"C:\\g"), "0123456789");
  putText(machine.disks(), u"C:\\g", "text");
  EXPECT_EQ(content(u"C:\\g"), "text");
}

TEST_F(HostPieceTest, IsCopiedOntoADriveOfTheHost) {
  HostFolder drive;
  DriveSettings settings;
  settings.host = drive.path();
  machine.disks().setDrive(u'E', settings);
  drive.write("f", "what was there before, and longer");
  lay(u"E:\\f", piece(1, 8, 1));
  EXPECT_EQ(drive.read("f"), std::string(1, '\0') + "12345678");
  host.write("file", std::string(700000, 'b'));
  lay(u"E:\\f", piece(0, 700000));
  EXPECT_EQ(drive.read("f"), std::string(700000, 'b'));
}

}  // namespace
}  // namespace zev::simulated
