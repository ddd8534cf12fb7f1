// What the file statements of every binding do.

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "contract/bench.h"

namespace zev::contract {
namespace {

class FilesContract : public ContractTest {
 protected:
  std::vector<Text> all(const Text& pattern, std::int32_t mask) {
    std::vector<Text> names;
    for (Text name = files().Dir(pattern, mask); !name.empty(); name = files().Dir()) {
      names.push_back(name);
    }
    return names;
  }

  void put(std::int32_t position, std::string_view bytes) {
    files().Put(1, position, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
  }

  std::string get(std::int32_t position, std::size_t count) {
    std::string bytes(count, 'x');
    files().Get(1, position, {reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()});
    return bytes;
  }
};

// ---- Dir

TEST_F(FilesContract, DirShowsWhatTheMaskAllows) {
  made(u"a_plain");
  ASSERT_TRUE(files().SetFileAttributesA(made(u"b_hidden"), 2));
  ASSERT_TRUE(files().SetFileAttributesA(made(u"c_system"), 4));
  ASSERT_TRUE(files().SetFileAttributesA(made(u"d_fixed"), 1));
  files().MkDir(in(u"e_dir"));
  const Text pattern = in(u"?_*");
  using testing::UnorderedElementsAre;
  EXPECT_THAT(all(pattern, 0), UnorderedElementsAre(u"a_plain", u"d_fixed"));
  EXPECT_THAT(all(pattern, 16), UnorderedElementsAre(u"a_plain", u"d_fixed", u"e_dir"));
  EXPECT_THAT(all(pattern, 38),
              UnorderedElementsAre(u"a_plain", u"b_hidden", u"c_system", u"d_fixed"));
  EXPECT_THAT(all(pattern, 55),
              UnorderedElementsAre(u"a_plain", u"b_hidden", u"c_system", u"d_fixed", u"e_dir"));
  ASSERT_TRUE(files().SetFileAttributesA(in(u"d_fixed"), 0));
}

TEST_F(FilesContract, DirAnswersForARootAndForNothingThatIsMissing) {
  const Text drive = bench().folder().substr(0, 2);
  EXPECT_NE(files().Dir(drive, 16), u"");
  EXPECT_NE(files().Dir(drive + u"\\", 16), u"");
  EXPECT_EQ(files().Dir(Text{bench().freeLetter(), u':', u'\\'}, 16), u"");
  EXPECT_EQ(files().Dir(in(u"none"), 55), u"");
  EXPECT_EQ(files().Dir(in(u"none\\none"), 55), u"");
  EXPECT_EQ(files().Dir(in(u"<>|"), 55), u"");
}

TEST_F(FilesContract, ADriveThatIsNoLetterHoldsNothing) {
  for (const TextView drive : noDrives) {
    for (const std::int32_t mask : {16, 55}) {
      EXPECT_EQ(files().Dir(drive, mask), u"") << toUtf8(drive);
      EXPECT_EQ(files().Dir(join(drive, u"\\"), mask), u"") << toUtf8(drive);
      EXPECT_EQ(files().Dir(join(drive, u"\\a"), mask), u"") << toUtf8(drive);
      EXPECT_EQ(files().Dir(join(drive, u"a"), mask), u"") << toUtf8(drive);
    }
    const std::int32_t missing = runtimeErrorOf(missingOn(drive));
    EXPECT_EQ(test::raisedBy([&] { files().MkDir(join(drive, u"\\a")); }), missing)
        << toUtf8(drive);
    EXPECT_EQ(test::raisedBy([&] { files().GetAttr(join(drive, u"\\a")); }), missing)
        << toUtf8(drive);
    EXPECT_EQ(test::raisedBy([&] { files().OpenOutput(1, join(drive, u"\\a")); }), missing)
        << toUtf8(drive);
  }
}

TEST_F(FilesContract, DirListsAFolderThatEndsInABackslash) {
  made(u"one");
  EXPECT_THAT(all(bench().folder() + u"\\", 0), testing::ElementsAre(u"one"));
}

TEST_F(FilesContract, DirIsOverWhenItHasGivenAll) {
  made(u"one");
  EXPECT_EQ(files().Dir(in(u"one"), 0), u"one");
  EXPECT_EQ(files().Dir(), u"");
  EXPECT_EQ(test::raisedBy([&] { files().Dir(); }), 5);
}

TEST_F(FilesContract, DirForgetsTheQueryBefore) {
  made(u"a1");
  made(u"a2");
  made(u"b1");
  files().Dir(in(u"a*"), 0);
  EXPECT_EQ(files().Dir(in(u"b*"), 0), u"b1");
  EXPECT_EQ(files().Dir(), u"");
}

// ---- by name

TEST_F(FilesContract, KillTakesAllThatMatch) {
  for (const TextView name : {u"a.tmp", u"b.tmp", u"c.txt"}) made(name);
  files().MkDir(in(u"d.tmp"));
  files().Kill(in(u"*.tmp"));
  EXPECT_THAT(all(in(u"*.*"), 0), testing::ElementsAre(u"c.txt"));
  EXPECT_NE(files().Dir(in(u"d.tmp"), 16), u"");
}

TEST_F(FilesContract, KillTakesWhatItCanBesideWhatItCannot) {
  const Text kept = made(u"b.tmp");
  made(u"a.tmp");
  made(u"c.tmp");
  files().SetFileAttributesA(kept, file_attribute::readOnly);
  EXPECT_EQ(test::raisedBy([&] { files().Kill(in(u"*.tmp")); }), 75);
  EXPECT_EQ(files().Dir(in(u"*.tmp"), 38), u"b.tmp");
  EXPECT_EQ(files().Dir(), u"");
  files().SetFileAttributesA(kept, file_attribute::normal);
}

TEST_F(FilesContract, KillTellsWhyItCannot) {
  EXPECT_EQ(test::raisedBy([&] { files().Kill(in(u"none")); }), 53);
  EXPECT_EQ(test::raisedBy([&] { files().Kill(in(u"*.none")); }), 53);
  const Text fixed = made(u"fixed");
  ASSERT_TRUE(files().SetFileAttributesA(fixed, 1));
  EXPECT_EQ(test::raisedBy([&] { files().Kill(fixed); }), 75);
  ASSERT_TRUE(files().SetFileAttributesA(fixed, 0));
  files().OpenBinary(1, fixed, true);
  EXPECT_EQ(test::raisedBy([&] { files().Kill(fixed); }), 70);
  files().Close(1);
}

TEST_F(FilesContract, DirectoriesAreMadeAndRemoved) {
  files().MkDir(in(u"d"));
  EXPECT_EQ(test::raisedBy([&] { files().MkDir(in(u"d")); }), 75);
  EXPECT_EQ(test::raisedBy([&] { files().MkDir(in(u"no\\d")); }), 76);
  made(u"d\\file");
  EXPECT_EQ(test::raisedBy([&] { files().RmDir(in(u"d")); }), 75);
  files().Kill(in(u"d\\file"));
  files().RmDir(in(u"d"));
  EXPECT_EQ(test::raisedBy([&] { files().RmDir(in(u"d")); }), 76);
}

TEST_F(FilesContract, AttributesAndLengthAreThoseOfTheFile) {
  const Text path = made(u"file", u"123");
  EXPECT_EQ(files().GetAttr(path), 32);
  EXPECT_EQ(files().GetAttr(bench().folder()) & 16, 16);
  EXPECT_EQ(files().FileLen(path), 5);
  EXPECT_EQ(test::raisedBy([&] { files().GetAttr(in(u"none")); }), 53);
  EXPECT_EQ(test::raisedBy([&] { files().FileLen(in(u"none")); }), 53);
  EXPECT_FALSE(files().SetFileAttributesA(in(u"none"), 0));
}

TEST_F(FilesContract, AFileIsPeekedIntoByItsNameAtAnyPlace) {
  const Text path = made(u"file", u"12345");
  std::vector<std::uint8_t> piece(4, std::uint8_t{'-'});
  EXPECT_EQ(files().peek(path, 1, piece), 4u);
  EXPECT_EQ(std::string(piece.begin(), piece.end()), "2345");
  EXPECT_EQ(files().peek(path, 4, piece), 3u);
  EXPECT_EQ(std::string(piece.begin(), piece.end()), "5\r\n5");
  EXPECT_EQ(files().peek(path, 100, piece), 0u);
  EXPECT_EQ(test::raisedBy([&] { files().peek(in(u"none"), 0, piece); }), 53);
  EXPECT_EQ(files().FreeFile(), 1);
  files().Kill(path);  // nobody has it open
}

TEST_F(FilesContract, AFileIsPeekedIntoWhileItIsOpenUnlessItIsLocked) {
  const Text path = made(u"file", u"12345");
  std::vector<std::uint8_t> piece(2);
  files().OpenBinary(1, path, false);
  EXPECT_EQ(files().peek(path, 0, piece), 2u);
  files().Close(1);
  files().OpenBinary(1, path, true);
  EXPECT_EQ(test::raisedBy([&] { files().peek(path, 0, piece); }), 70);
  files().Close(1);
}

TEST_F(FilesContract, AnOpenFileIsPeekedIntoByItsNumberEvenIfItIsLocked) {
  const Text path = made(u"file", u"12345");
  std::vector<std::uint8_t> piece(4, std::uint8_t{'-'});
  files().OpenBinary(1, path, true);
  EXPECT_EQ(files().peek(1, 1, piece), 4u);
  EXPECT_EQ(std::string(piece.begin(), piece.end()), "2345");
  EXPECT_EQ(files().peek(1, 100, piece), 0u);
  EXPECT_EQ(files().LOF(1), 7);
  files().Close(1);
  EXPECT_EQ(test::raisedBy([&] { files().peek(1, 0, piece); }), 52);
}

// ---- numbers

TEST_F(FilesContract, NumbersAreGivenFromTheLowestOn) {
  EXPECT_EQ(files().FreeFile(), 1);
  files().OpenOutput(1, in(u"one"));
  files().OpenOutput(2, in(u"two"));
  EXPECT_EQ(files().FreeFile(), 3);
  files().Close(1);
  EXPECT_EQ(files().FreeFile(), 1);
  EXPECT_EQ(test::raisedBy([&] { files().OpenOutput(2, in(u"three")); }), 55);
  EXPECT_EQ(test::raisedBy([&] { files().OpenOutput(512, in(u"three")); }), 52);
  EXPECT_EQ(test::raisedBy([&] { files().LOF(1); }), 52);
  EXPECT_EQ(test::raisedBy([&] { files().Close(77); }), 0);
}

// ---- binary files

TEST_F(FilesContract, BinaryFilesAreWrittenAndReadByPosition) {
  files().OpenBinary(1, in(u"bin"), false);
  put(1, "abcdef");
  put(3, "XY");
  EXPECT_EQ(files().LOF(1), 6);
  EXPECT_EQ(get(2, 3), "bXY");
  EXPECT_EQ(get(5, 4), std::string("ef\0\0", 4));
  EXPECT_EQ(get(100, 2), std::string("\0\0", 2));
  EXPECT_EQ(test::raisedBy([&] { get(0, 1); }), 63);
  EXPECT_EQ(test::raisedBy([&] { put(0, "x"); }), 63);
  files().Close(1);
  EXPECT_EQ(files().FileLen(in(u"bin")), 6);
}

TEST_F(FilesContract, ALockedFileIsNobodyElses) {
  const Text path = made(u"file");
  files().OpenBinary(1, path, true);
  EXPECT_EQ(test::raisedBy([&] { files().OpenBinary(2, path, false); }), 70);
  EXPECT_EQ(test::raisedBy([&] { files().OpenInput(2, path); }), 70);
  files().Close(1);
  EXPECT_EQ(test::raisedBy([&] { files().OpenInput(2, path); }), 0);
}

TEST_F(FilesContract, AReadOnlyFileOpensForReading) {
  const Text path = made(u"fixed", u"abc");
  ASSERT_TRUE(files().SetFileAttributesA(path, 1));
  files().OpenBinary(1, path, false);
  EXPECT_EQ(get(1, 3), "abc");
  files().Close(1);
  EXPECT_EQ(test::raisedBy([&] { files().OpenBinaryWrite(1, path); }), 75);
  EXPECT_EQ(test::raisedBy([&] { files().OpenOutput(1, path); }), 75);
  ASSERT_TRUE(files().SetFileAttributesA(path, 0));
}

// ---- text files

TEST_F(FilesContract, InputReadsItemsAsTheyWerePrinted) {
  files().OpenOutput(1, in(u"items"));
  files().Print(1, u"  first, second");
  files().Print(1, u"\"quoted, with a comma\"");
  files().Print(1, u"");
  files().Print(1, u"last");
  files().Close(1);
  files().OpenInput(1, in(u"items"));
  for (const TextView item : {u"first", u"second", u"quoted, with a comma", u"", u"last"}) {
    EXPECT_FALSE(files().Eof(1));
    EXPECT_EQ(files().Input(1), item);
  }
  EXPECT_TRUE(files().Eof(1));
  EXPECT_EQ(test::raisedBy([&] { files().Input(1); }), 62);
  files().Close(1);
}

TEST_F(FilesContract, OutputReplacesWhatIsThere) {
  made(u"file", u"a long line of text");
  made(u"file", u"x");
  EXPECT_EQ(files().FileLen(in(u"file")), 3);
}

TEST_F(FilesContract, OutputTakesItsPlaceWhenItIsClosed) {
  const Text path = made(u"file", u"what was there");
  files().OpenOutput(1, path);
  files().Print(1, u"new");
  files().OpenInput(2, path);
  EXPECT_EQ(files().Input(2), u"what was there");
  files().Close(2);
  files().Close(1);
  EXPECT_EQ(files().FileLen(path), 5);
  EXPECT_THAT(all(in(u"*.*"), 38), testing::ElementsAre(u"file"));
}

TEST_F(FilesContract, OutputThatNothingWasPrintedIntoLeavesWhatIsThere) {
  const Text path = made(u"file", u"what was there");
  for (const Text& each : {path, in(u"new")}) {
    files().OpenOutput(1, each);
    files().Close(1);
  }
  EXPECT_EQ(files().FileLen(path), 16);
  EXPECT_THAT(all(in(u"*.*"), 38), testing::ElementsAre(u"file"));
}

TEST_F(FilesContract, AFileIsUsedInTheModeItWasOpenedFor) {
  files().OpenOutput(1, in(u"file"));
  EXPECT_EQ(test::raisedBy([&] { get(1, 1); }), 54);
  EXPECT_EQ(test::raisedBy([&] { files().Input(1); }), 54);
  files().Close(1);
  EXPECT_EQ(test::raisedBy([&] { files().OpenInput(1, in(u"none")); }), 53);
  EXPECT_EQ(test::raisedBy([&] { files().OpenInput(1, in(u"no\\none")); }), 76);
  EXPECT_EQ(test::raisedBy([&] { files().OpenOutput(1, in(u"no\\none")); }), 76);
}

}  // namespace
}  // namespace zev::contract
