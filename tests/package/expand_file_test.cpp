#include "package/expand_file.h"

#include <gtest/gtest.h>

#include <map>

#include "localisation/catalogue.h"
#include "support/fake_dialogs.h"
#include "support/raised.h"
#include "support/table.h"

namespace zev {
namespace {

using test::FakeDialogs;
using test::raisedBy;
using test::Row;
using test::Table;

constexpr std::int32_t systemExclamation = 4144;
constexpr std::int32_t readStyle = 0;
constexpr std::int32_t createStyle = 4096;
constexpr std::int32_t sourceHandle = 11;
constexpr std::int32_t destinationHandle = 12;
constexpr std::int16_t success = 0;

/// Services that answer as a test wants and note what is asked of them.
struct FakeLz final : LzServices {
  std::int16_t sourceError = success;
  std::int16_t destinationError = success;
  std::int32_t copied = 100;
  std::vector<std::string> log;

  std::int32_t LZOpenFileA(TextView path, OFSTRUCT& record, std::int32_t style) override {
    log.push_back("open " + toUtf8(path) + " " + std::to_string(style));
    EXPECT_TRUE(style == readStyle || style == createStyle) << style;
    EXPECT_EQ(record.nErrCode, success);
    record.nErrCode = style == readStyle ? sourceError : destinationError;
    if (record.nErrCode != success) return -1;
    return style == readStyle ? sourceHandle : destinationHandle;
  }
  std::int32_t LZCopy(std::int32_t source, std::int32_t destination) override {
    log.push_back("copy " + std::to_string(source) + " " + std::to_string(destination));
    return copied;
  }
  void LZClose(std::int32_t handle) override { log.push_back("close " + std::to_string(handle)); }
};

const std::vector<std::string> wholeRun = {"open C:\\t\\a.wa_ 0", "open C:\\z\\a.wav 4096",
                                           "copy 11 12", "close 11", "close 12"};

class ExpandFileTest : public testing::Test {
 protected:
  std::int32_t expand(bool showErrors = true) {
    return ExpandFile(lz, dialogs, phrases, u"  C:\\t\\a.wa_ ", u" C:\\z\\a.wav  ", showErrors);
  }

  /// The decompression box with a detail text, in the language in force.
  std::string copyBox(const std::string& detail) {
    Phrases fresh(gLanguage);
    fresh.dimension(0);
    fresh.LoadPhrases();
    return toUtf8(fresh.Translate(u"Error in ExpandFile: Couldn't decompress the file! ")) +
           detail + "\r\n\r\nC:\\t\\a.wa_\r\n\r\n" +
           toUtf8(fresh.Translate(u"Please email this error message to support@tavorns.example"));
  }

  void expectOneBox(const std::string& text) {
    ASSERT_EQ(dialogs.boxes.size(), 1u);
    EXPECT_EQ(toUtf8(dialogs.boxes[0].text), text);
    EXPECT_EQ(dialogs.boxes[0].style, systemExclamation);
    EXPECT_EQ(toUtf8(dialogs.boxes[0].title), "ExpandFile - Error!");
  }

  std::int32_t gLanguage = 0;
  Phrases phrases{gLanguage};
  FakeLz lz;
  FakeDialogs dialogs;
};

/// The text of the box for a failed open, of a row of expand_open_codes.tsv.
std::string openBox(const Row& row, const std::string& path) {
  return row.quoted("text") + (row.yes("path") ? path + "'" : "");
}

/// The system's error number of a row; one that no row names for "any other".
std::int16_t errorOf(const Row& row) {
  return static_cast<std::int16_t>(row.isAny("nErrCode") ? 1 : row.number("nErrCode"));
}

TEST_F(ExpandFileTest, GivesTheNumberOfBytesWritten) {
  lz.copied = 4096;
  EXPECT_EQ(expand(), 4096);
  EXPECT_EQ(lz.log, wholeRun);
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(ExpandFileTest, TellsEveryReasonOfASourceThatCannotBeOpened) {
  for (const Row& each : Table::read("expand_open_codes.tsv")) {
    SCOPED_TRACE(each.where());
    lz.log.clear();
    dialogs.boxes.clear();
    lz.sourceError = errorOf(each);
    EXPECT_EQ(expand(), each.number("code"));
    EXPECT_EQ(lz.log, std::vector<std::string>{wholeRun[0]});
    expectOneBox(openBox(each, "C:\\t\\a.wa_"));
  }
}

TEST_F(ExpandFileTest, TellsEveryReasonOfADestinationThatCannotBeOpened) {
  for (const Row& each : Table::read("expand_open_codes.tsv")) {
    SCOPED_TRACE(each.where());
    lz.log.clear();
    dialogs.boxes.clear();
    lz.destinationError = errorOf(each);
    EXPECT_EQ(expand(), each.number("code"));
    EXPECT_EQ(lz.log, (std::vector<std::string>{wholeRun[0], wholeRun[1], "close 11"}));
    expectOneBox(openBox(each, "C:\\z\\a.wav"));
  }
}

TEST_F(ExpandFileTest, TellsEveryFailureOfTheCopy) {
  const Table details = Table::read("expand_copy_codes.tsv");
  for (const Row& each : Table::read("lz_results.tsv")) {
    SCOPED_TRACE(each.where());
    lz.log.clear();
    dialogs.boxes.clear();
    lz.copied = each.number("lz_copy");
    EXPECT_EQ(expand(), each.number("expand_file"));
    EXPECT_EQ(lz.log, wholeRun);
    expectOneBox(copyBox(details.row("value", each.word("expand_file")).quoted("detail")));
  }
}

TEST_F(ExpandFileTest, HasABoxForEveryResultOfTheCopy) {
  const Table results = Table::read("lz_results.tsv");
  for (const Row& each : Table::read("expand_copy_codes.tsv")) {
    EXPECT_NO_THROW(results.row("expand_file", each.word("value"))) << each.where();
  }
}

TEST_F(ExpandFileTest, WritesTheDecompressionBoxLetterByLetter) {
  lz.copied = -3;
  expand();
  expectOneBox(
      "Error in ExpandFile: Couldn't decompress the file! Invalid source file format.\r\n\r\n"
      "C:\\t\\a.wa_\r\n\r\nPlease email this error message to support@tavorns.example");
}

TEST_F(ExpandFileTest, LeavesTheDetailOutForResultsWithoutOne) {
  for (const std::int32_t result : {0, -4, -6, -7, -9, -50}) {
    dialogs.boxes.clear();
    lz.copied = result;
    EXPECT_EQ(expand(), result * 100);
    expectOneBox(
        "Error in ExpandFile: Couldn't decompress the file! \r\n\r\nC:\\t\\a.wa_\r\n\r\n"
        "Please email this error message to support@tavorns.example");
  }
}

TEST_F(ExpandFileTest, TranslatesTheDecompressionBoxButNotItsDetailAndTitle) {
  phrases.dimension(0);
  for (const std::int32_t language : {1, 2, 3, 4}) {
    gLanguage = language;
    phrases.LoadPhrases();
    phrases.Translate(Phrases::HafizaTemizle);
    dialogs.boxes.clear();
    lz.copied = -2;
    expand();
    expectOneBox(copyBox("Invalid handle number for the destionation file."));
    EXPECT_FALSE(dialogs.boxes[0].text.starts_with(u"Error in ExpandFile: Couldn't"));
  }
}

TEST_F(ExpandFileTest, DoesNotTranslateTheBoxesOfAFailedOpen) {
  gLanguage = 2;
  phrases.dimension(0);
  phrases.LoadPhrases();
  lz.sourceError = 2;
  expand();
  expectOneBox("File not found : 'C:\\t\\a.wa_'");
}

TEST_F(ExpandFileTest, ShowsNoBoxUnlessAskedFor) {
  lz.copied = -4;
  EXPECT_EQ(expand(false), -400);
  lz.copied = 0;
  EXPECT_EQ(expand(false), 0);
  lz.destinationError = 32;
  EXPECT_EQ(expand(false), -12);
  lz.sourceError = 2;
  EXPECT_EQ(expand(false), -1);
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(ExpandFileTest, OverflowsOnAResultThatAHundredTimesIsOutOfRange) {
  lz.copied = -21'474'837;
  EXPECT_EQ(raisedBy([&] { expand(); }), 6);
  lz.copied = -21'474'836;
  EXPECT_EQ(expand(), -2'147'483'600);
}

TEST(MapOpenError, IsZeroForAHandleThatIsNotNegative) {
  for (const std::int32_t handle : {0, 1, 2147483647}) {
    EXPECT_EQ(MapOpenError(handle, 0), 0);
    EXPECT_EQ(MapOpenError(handle, 2), 0);
  }
}

TEST(MapOpenError, HasACodeForEveryNumber) {
  std::map<int, std::int32_t> codes;
  std::int32_t other = 0;
  for (const Row& each : Table::read("expand_open_codes.tsv")) {
    (each.isAny("nErrCode") ? other : codes[each.number("nErrCode")]) = each.number("code");
  }
  for (int error = -32768; error <= 32767; ++error) {
    const auto listed = codes.find(error);
    const std::int32_t expected = listed == codes.end() ? other : listed->second;
    ASSERT_EQ(MapOpenError(-1, static_cast<std::int16_t>(error)), expected) << error;
    ASSERT_EQ(MapOpenError(-2147483647, static_cast<std::int16_t>(error)), expected) << error;
  }
}

TEST(ShowExpandError, HasABoxForEveryCodeAndForNoOther) {
  const Table table = Table::read("expand_open_codes.tsv");
  for (std::int32_t code = -30; code <= 30; ++code) {
    FakeDialogs dialogs;
    ShowExpandError(dialogs, code, u" C:\\a b.wav  ");
    const bool known = code >= -16 && code <= -1;
    ASSERT_EQ(dialogs.boxes.size(), known ? 1u : 0u) << code;
    if (!known) continue;
    const Row& row = table.row("code", std::to_string(code));
    EXPECT_EQ(toUtf8(dialogs.boxes[0].text), openBox(row, "C:\\a b.wav")) << row.where();
    EXPECT_EQ(dialogs.boxes[0].style, systemExclamation);
    EXPECT_EQ(toUtf8(dialogs.boxes[0].title), "ExpandFile - Error!");
  }
}

}  // namespace
}  // namespace zev
