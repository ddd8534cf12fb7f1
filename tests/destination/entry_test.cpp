#include <gtest/gtest.h>

#include "destination/expected_boxes.h"

namespace zev {
namespace {

using Boxes = std::vector<std::string>;

constexpr TextView allForbidden = u"*?<>\"|/";
constexpr TextView productFolder = u":\\ZEV Screen Recorder 6";

class Entry : public OnThePage, public testing::Test {
 protected:
  std::uint64_t made() const { return machine.calls("MkDir"); }
};

// ---- paths as rows

/// What becomes of an entry on a machine with the fixed drives C: and D: and unsuitable ones.
struct PathRow {
  TextView in;
  bool ok;
  TextView out;   ///< the install directory behind the check
  int made;       ///< folders
  Boxes boxes{};  ///< in order
};

// clang-format off
const PathRow pathRows[] = {
    {u"",                      false, u"",                        0, {emptyBox()}},
    {u"     ",                 false, u"",                        0, {emptyBox()}},
    // Up to three characters are the product's folder on the drive of the first one.
    {u"C",                     true,  u"C:\\ZEV Screen Recorder 6", 1},
    {u"C:",                    true,  u"C:\\ZEV Screen Recorder 6", 1},
    {u"C:\\",                  true,  u"C:\\ZEV Screen Recorder 6", 1},
    {u"CD",                    true,  u"C:\\ZEV Screen Recorder 6", 1},
    {u"C::",                   true,  u"C:\\ZEV Screen Recorder 6", 1},
    {u"C x",                   true,  u"C:\\ZEV Screen Recorder 6", 1},
    {u"  C ",                  true,  u"C:\\ZEV Screen Recorder 6", 1},
    {u"c",                     true,  u"c:\\ZEV Screen Recorder 6", 1},
    {u"D:\\",                  true,  u"D:\\ZEV Screen Recorder 6", 1},
    {u"dir",                   true,  u"d:\\ZEV Screen Recorder 6", 1},
    {u"E:",                    false, u"E:\\ZEV Screen Recorder 6", 0, {driveBox(u"CD")}},
    {u"Q",                     false, u"Q:\\ZEV Screen Recorder 6", 0, {checkDriveBox(u"Q:\\")}},
    {u"1",                     false, u"1:\\ZEV Screen Recorder 6", 0, {checkDriveBox(u"1:\\")}},
    {u"\\",                    false, u"\\:\\ZEV Screen Recorder 6", 0, {checkDriveBox(u"\\:\\")}},
    {u".",                     false, u".:\\ZEV Screen Recorder 6", 0, {checkDriveBox(u".:\\")}},
    {u":",                     false, u"::\\ZEV Screen Recorder 6", 0, {checkDriveBox(u"::\\")}},
    {u"é",                     false, u"é:\\ZEV Screen Recorder 6", 0, {checkDriveBox(u"é:\\")}},
    // From four characters on an entry is taken as it is.
    {u"C:\\x",                 true,  u"C:\\x",                   1},
    {u"D:\\y",                 true,  u"D:\\y",                   1},
    {u"  C:\\x  ",             true,  u"C:\\x",                   1},
    {u"C:\\one\\two\\three",   true,  u"C:\\one\\two\\three",     3},
    {u"D:\\one two\\x.y\\z",   true,  u"D:\\one two\\x.y\\z",     3},
    {u"C:\\Program Files\\ZEV Screen Recorder 6", true, u"C:\\Program Files\\ZEV Screen Recorder 6", 1},
    {u"C:\\Windows",           true,  u"C:\\Windows",             0},
    {u"c:\\windows",           true,  u"c:\\windows",             0},
    {u"C:\\WINDOWS\\rec",      true,  u"C:\\WINDOWS\\rec",        1},
    // A backslash at the end or doubled within is kept.
    {u"C:\\one\\",             true,  u"C:\\one\\",               1},
    {u"C:\\one\\two\\",        true,  u"C:\\one\\two\\",          2},
    {u"C:\\one\\\\two",        true,  u"C:\\one\\\\two",          2},
    {u"C:\\Windows\\",         true,  u"C:\\Windows\\",           0},
    // Without a backslash to climb to it becomes the root of the drive of Windows.
    {u"C:foo",                 true,  u"C:\\",                    0},
    {u"D:foo",                 true,  u"C:\\",                    0},
    {u"C:foo\\bar",            true,  u"C:\\",                    0},
    {u"D:foo\\bar\\baz",       true,  u"C:\\",                    0},
    {u"Cfoo",                  true,  u"C:\\",                    0},
    {u"Recorder",              false, u"Recorder",                0, {driveBox(u"diskette")}},
    {u"folder",                false, u"folder",                  0, {checkDriveBox(u"f:\\")}},
    // A colon in a later place is let through and fails when the folder is made.
    {u"C:\\a:b",               false, u"C:\\a:b",                 1, {notMadeBox(u"C:\\a:b")}},
    {u"C:\\a:b\\c",            false, u"C:\\a:b",                 1, {notMadeBox(u"C:\\a:b")}},
    {u"C:\\one\\a:b",          false, u"C:\\one\\a:b",            2, {notMadeBox(u"C:\\one\\a:b")}},
    // Drives that do not suit, by the first character alone.
    {u"Q:\\Apps",              false, u"Q:\\Apps",                0, {checkDriveBox(u"Q:\\")}},
    {u"q:\\Apps",              false, u"q:\\Apps",                0, {checkDriveBox(u"q:\\")}},
    {u"\\\\server\\share",     false, u"\\\\server\\share",       0, {checkDriveBox(u"\\:\\")}},
    {u"\\\\server\\share\\a",  false, u"\\\\server\\share\\a",    0, {checkDriveBox(u"\\:\\")}},
    {u"\\Windows",             false, u"\\Windows",               0, {checkDriveBox(u"\\:\\")}},
    {u"..\\Apps",              false, u"..\\Apps",                0, {checkDriveBox(u".:\\")}},
    {u":\\Apps",               false, u":\\Apps",                 0, {checkDriveBox(u"::\\")}},
    {u"éa\\b",                 false, u"éa\\b",                   0, {checkDriveBox(u"é:\\")}},
    {u"R:\\Apps",              false, u"R:\\Apps",                0, {driveBox(u"diskette")}},
    {u"N:\\Apps",              false, u"N:\\Apps",                0, {driveBox(u"network")}},
    {u"E:\\Apps",              false, u"E:\\Apps",                0, {driveBox(u"CD")}},
    {u"M:\\Apps",              false, u"M:\\Apps",                0, {driveBox(u"RAM")}},
    {u"m:Apps",                false, u"m:Apps",                  0, {driveBox(u"RAM")}},
    {u"N:\\a/b",               false, u"N:\\a/b",                 0, {forbiddenBox(u"N:\\a/b")}},
};
// clang-format on

TEST(PathRows, LeadWhereTheirTableSays) {
  for (const PathRow& row : pathRows) {
    OnThePage page;
    const std::vector<std::string> before = page.everything();
    EXPECT_EQ(page.check(row.in), row.ok) << toUtf8(row.in);
    EXPECT_EQ(toUtf8(page.directory()), toUtf8(row.out)) << toUtf8(row.in);
    EXPECT_EQ(page.boxes(), row.boxes) << toUtf8(row.in);
    EXPECT_EQ(page.machine.calls("MkDir"), static_cast<std::uint64_t>(row.made)) << toUtf8(row.in);
    EXPECT_TRUE(!row.ok || page.stands(row.out)) << toUtf8(row.in);
    if (row.made == 0) {
      EXPECT_EQ(page.everything(), before) << toUtf8(row.in);
    }
  }
}

// ---- characters

TEST_F(Entry, RefusesEachForbiddenCharacterAtEachPlace) {
  const Text path = u"C:\\one\\two";
  for (const char16_t character : allForbidden) {
    for (std::size_t place = 0; place <= path.size(); ++place) {
      Text entry = path;
      entry.insert(place, 1, character);
      EXPECT_FALSE(check(entry)) << toUtf8(entry);
      EXPECT_EQ(boxes(), Boxes{forbiddenBox(entry)}) << toUtf8(entry);
      EXPECT_EQ(toUtf8(directory()), toUtf8(entry));
    }
  }
  EXPECT_EQ(machine.calls("GetDriveTypeA"), 0u);
  EXPECT_EQ(made(), 0u);
}

TEST_F(Entry, RefusesForbiddenCharactersInShortEntriesToo) {
  for (const char16_t character : allForbidden) {
    for (const TextView front : {u"", u"C", u"C:"}) {
      const Text entry = join(front, TextView(&character, 1));
      EXPECT_FALSE(check(entry)) << toUtf8(entry);
      EXPECT_EQ(boxes(), Boxes{forbiddenBox(entry)}) << toUtf8(entry);
      EXPECT_EQ(toUtf8(directory()), toUtf8(entry));
    }
  }
}

TEST_F(Entry, RefusesNoOtherCharacter) {
  for (char16_t character = u'!'; character <= u'ÿ'; ++character) {
    if (allForbidden.find(character) != TextView::npos) continue;
    const Text entry = join(u"Q:\\a", TextView(&character, 1), u"b");
    EXPECT_FALSE(check(entry)) << toUtf8(entry);
    EXPECT_EQ(boxes(), Boxes{checkDriveBox(u"Q:\\")}) << toUtf8(entry);
  }
}

TEST_F(Entry, ShowsARefusedDirectoryTrimmed) {
  EXPECT_FALSE(check(u"   C:\\a|b   "));
  EXPECT_EQ(boxes(), Boxes{forbiddenBox(u"C:\\a|b")});
}

// ---- short entries

/// Every letter, as one, two, three and four characters.
TEST_F(Entry, CompletesUpToThreeCharactersOnEveryLetter) {
  for (char16_t letter = u'A'; letter <= u'Z'; ++letter) {
    for (const char16_t first : {letter, lowerCase(Text(1, letter)).front()}) {
      const Text drive(1, first);
      for (const TextView rest : {u"", u":", u":\\", u"D", u"::", u"xy"}) {
        check(join(drive, rest));
        EXPECT_EQ(toUtf8(directory()), toUtf8(join(drive, productFolder))) << toUtf8(rest);
      }
      check(join(drive, u":\\x"));
      EXPECT_EQ(toUtf8(directory()), toUtf8(join(drive, u":\\x")));
    }
  }
}

TEST_F(Entry, CompletesWhateverTheFirstCharacterIs) {
  for (char16_t first = u'!'; first <= u'~'; ++first) {
    const bool letter = upperCase(Text(1, first)) >= u"A" && upperCase(Text(1, first)) <= u"Z";
    if (letter || allForbidden.find(first) != TextView::npos) continue;
    const Text entry(1, first);
    EXPECT_FALSE(check(entry));
    EXPECT_EQ(toUtf8(directory()), toUtf8(join(entry, productFolder)));
    EXPECT_EQ(boxes(), Boxes{checkDriveBox(join(entry, u":\\"))});
  }
}

// ---- lengths

TEST_F(Entry, HoldsTwoHundredAndFiftySixCharacters) {
  for (const std::size_t length : {254u, 255u, 256u, 257u, 300u, 1000u}) {
    const Text entry = join(u"Q:\\", Text(length - 3, u'a'));
    EXPECT_FALSE(check(entry)) << length;
    EXPECT_EQ(boxes(), Boxes{checkDriveBox(u"Q:\\")}) << length;
    EXPECT_EQ(toUtf8(directory()), toUtf8(left(entry, 256))) << length;
  }
}

TEST_F(Entry, SeesAForbiddenCharacterUpToTheLastThatItHolds) {
  for (const std::size_t place : {254u, 255u, 256u, 257u}) {
    const Text entry = join(u"Q:\\", Text(place - 4, u'a'), u"?");
    ASSERT_EQ(entry.size(), place);
    EXPECT_FALSE(check(entry));
    EXPECT_EQ(boxes(), Boxes{place <= 256 ? forbiddenBox(entry) : checkDriveBox(u"Q:\\")}) << place;
  }
}

TEST_F(Entry, LosesBlanksThatStandAtTheEndOfWhatItHolds) {
  check(join(u"Q:\\", Text(200, u'a'), Text(60, u' '), u"behind"));
  EXPECT_EQ(toUtf8(directory()), toUtf8(join(u"Q:\\", Text(200, u'a'))));
}

}  // namespace
}  // namespace zev
