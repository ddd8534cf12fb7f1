#include <gmock/gmock.h>

#include "lz/encoder.h"
#include "lz/szdd_header.h"
#include "zevpack/made_package.h"
#include "zevpack/tool.h"

namespace zev::packing {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// Text with repeats near and far, and bytes of every value.
Bytes someContents() {
  Bytes bytes;
  for (int line = 0; line < 400; ++line) {
    const std::string text = "line " + std::to_string(line * line) + " of the file\r\n";
    bytes.insert(bytes.end(), text.begin(), text.end());
  }
  const Bytes more = noise(3000, 5);
  bytes.insert(bytes.end(), more.begin(), more.end());
  return bytes;
}

class ZevpackCompress : public ToolTest {
 protected:
  Outcome compress(const fs::path& in, const fs::path& out) const {
    return zevpack({"compress", in, out});
  }
  Outcome expand(const fs::path& in, const fs::path& out) const {
    return zevpack({"expand", in, out});
  }

  /// The programs mscompress and msexpand work beside the file that they are given.
  bool runOther(const std::string& program, const std::string& name) const {
    return runProgram(program, {name}, "cd '" + at("").string() + "'").status == 0;
  }
  static bool isInstalled(const std::string& program) {
    return runProgram("sh", {"-c", "command -v " + program}).status == 0;
  }
};

TEST_F(ZevpackCompress, IsUndoneByExpand) {
  for (const Bytes& contents : {someContents(), Bytes{}, Bytes{'a'}, Bytes(100000, ' ')}) {
    writeFile(at("plain.txt"), contents);
    ASSERT_EQ(compress(at("plain.txt"), at("plain.tx_")).status, 0);
    ASSERT_EQ(expand(at("plain.tx_"), at("again.txt")).status, 0);
    EXPECT_EQ(readFile(at("again.txt")), contents);
  }
}

TEST_F(ZevpackCompress, GivesWhatThePackageWouldHold) {
  writeFile(at("plain.txt"), someContents());
  const Outcome outcome = compress(at("plain.txt"), at("plain.tx_"));
  ASSERT_EQ(outcome.status, 0);
  const Bytes packed = readFile(at("plain.tx_"));
  EXPECT_EQ(packed, lz::compress(someContents(), 't'));
  EXPECT_EQ(outcome.out, at("plain.tx_").string() + ": " + std::to_string(packed.size()) +
                             " bytes from " + std::to_string(someContents().size()) + "\n");
  EXPECT_LT(packed.size(), someContents().size());
}

TEST_F(ZevpackCompress, NamesTheLastCharacterOfTheFile) {
  for (const char last : {'v', 'E', '7'}) {
    const fs::path plain = at(std::string("file.w") + last);
    writeFile(plain, noise(50, 3));
    ASSERT_EQ(compress(plain, at("file.w_")).status, 0);
    EXPECT_EQ(readFile(at("file.w_")).at(9), static_cast<std::uint8_t>(last));
  }
}

TEST_F(ZevpackCompress, IsUndoneByMsexpand) {
  if (!isInstalled("msexpand")) GTEST_SKIP() << "msexpand is not installed";
  writeFile(at("plain.txt"), someContents());
  ASSERT_EQ(compress(at("plain.txt"), at("other.txt_")).status, 0);
  ASSERT_TRUE(runOther("msexpand", "other.txt_"));
  EXPECT_EQ(readFile(at("other.txt")), someContents());
}

TEST_F(ZevpackCompress, ExpandUndoesMscompress) {
  if (!isInstalled("mscompress")) GTEST_SKIP() << "mscompress is not installed";
  writeFile(at("plain.txt"), someContents());
  ASSERT_TRUE(runOther("mscompress", "plain.txt"));
  ASSERT_EQ(expand(at("plain.txt_"), at("again.txt")).status, 0);
  EXPECT_EQ(readFile(at("again.txt")), someContents());
}

TEST_F(ZevpackCompress, ExpandCopiesAFileWithoutTheHeader) {
  writeFile(at("plain.txt"), someContents());
  ASSERT_EQ(expand(at("plain.txt"), at("copy.txt")).status, 0);
  EXPECT_EQ(readFile(at("copy.txt")), someContents());
}

TEST_F(ZevpackCompress, ExpandNamesADamagedFileAndWritesNothing) {
  const Bytes packed = lz::compress(someContents(), 't');
  writeFile(at("cut.tx_"), std::span(packed).first(packed.size() - 1));
  writeFile(at("header.tx_"), std::span(packed).first(lz::kHeaderSize - 1));
  Bytes otherMode = packed;
  otherMode[8] = 'B';
  writeFile(at("mode.tx_"), otherMode);
  const std::set<std::string> before = namesIn(at(""));
  for (const std::string& name : before) {
    const Outcome outcome = expand(at(name), at("out"));
    EXPECT_EQ(outcome.status, 1) << name;
    EXPECT_THAT(outcome.err, HasSubstr("zevpack: " + at(name).string() + ": ")) << name;
    EXPECT_EQ(namesIn(at("")), before);
  }
}

TEST_F(ZevpackCompress, ExpandLeavesTheFileThatWasThereIfTheSourceIsDamaged) {
  const Bytes packed = lz::compress(someContents(), 't');
  writeFile(at("cut.tx_"), std::span(packed).first(packed.size() - 1));
  writeFile(at("out"), noise(10, 1));
  EXPECT_EQ(expand(at("cut.tx_"), at("out")).status, 1);
  EXPECT_EQ(readFile(at("out")), noise(10, 1));
}

TEST_F(ZevpackCompress, WorksOnAFileInItsOwnPlace) {
  writeFile(at("file"), someContents());
  ASSERT_EQ(compress(at("file"), at("file")).status, 0);
  EXPECT_EQ(readFile(at("file")), lz::compress(someContents(), 'e'));
  ASSERT_EQ(expand(at("file"), at("file")).status, 0);
  EXPECT_EQ(readFile(at("file")), someContents());
}

}  // namespace
}  // namespace zev::packing
