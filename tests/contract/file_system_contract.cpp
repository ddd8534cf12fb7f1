// What the file calls of every binding do.

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "contract/bench.h"

namespace zev::contract {
namespace {

using namespace system_error;
using testing::ElementsAre;

class FileSystemContract : public ContractTest {
 protected:
  struct Opened {
    SystemError error = 0;
    FileHandle file = 0;
  };

  Opened open(const Text& path, FileAccess access, FileDisposition disposition,
              FileShare share = FileShare::All) {
    Opened opened;
    opened.error = system().CreateFileA(path, access, share, disposition, opened.file);
    return opened;
  }

  struct Held {
    SystemError error = 0;
    std::uint32_t attributes = 0;
    FileHandle entry = 0;
  };

  Held hold(const Text& path, Holding holding) {
    Held held;
    held.error = system().HoldEntryA(path, holding, held.attributes, held.entry);
    return held;
  }

  SystemError write(FileHandle file, std::uint64_t offset, std::string_view bytes) {
    std::size_t written = 0;
    const SystemError error = system().WriteFile(
        file, offset, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}, written);
    EXPECT_EQ(written, bytes.size());
    return error;
  }

  std::string read(FileHandle file, std::uint64_t offset, std::size_t count) {
    std::string bytes(count, '\0');
    std::size_t got = 0;
    EXPECT_EQ(system().ReadFile(file, offset,
                                {reinterpret_cast<std::uint8_t*>(bytes.data()), bytes.size()}, got),
              success);
    bytes.resize(got);
    return bytes;
  }

  std::string contentOf(const Text& path) {
    constexpr std::size_t longest = 1000;
    const Opened opened = open(path, FileAccess::Read, FileDisposition::OpenExisting);
    EXPECT_EQ(opened.error, success);
    const std::string bytes = read(opened.file, 0, longest);
    system().CloseHandle(opened.file);
    return bytes;
  }

  /// Names that a search gives, in its order.
  std::vector<Text> found(const Text& pattern) {
    std::vector<Text> names;
    DirectoryEntry entry;
    FileHandle search = 0;
    if (system().FindFirstFileA(pattern, entry, search) != success) return names;
    do {
      names.push_back(entry.name);
    } while (system().FindNextFileA(search, entry) == success);
    system().FindClose(search);
    return names;
  }

  SystemError searchError(const Text& pattern) {
    DirectoryEntry entry;
    FileHandle search = 0;
    const SystemError error = system().FindFirstFileA(pattern, entry, search);
    if (error == success) system().FindClose(search);
    return error;
  }

  std::uint32_t attributesOf(const Text& path) {
    std::uint32_t attributes = ~0u;
    EXPECT_EQ(system().GetFileAttributesA(path, attributes), success);
    return attributes;
  }

  SystemError lookUpError(const Text& path) {
    std::uint32_t attributes = 0;
    return system().GetFileAttributesA(path, attributes);
  }
};

// ---- opening, reading, writing

TEST_F(FileSystemContract, OpensNoFileThatIsNotThere) {
  const Opened opened = open(in(u"none"), FileAccess::Read, FileDisposition::OpenExisting);
  EXPECT_EQ(opened.error, fileNotFound);
  EXPECT_EQ(open(in(u"no\\none"), FileAccess::Read, FileDisposition::OpenExisting).error,
            pathNotFound);
}

TEST_F(FileSystemContract, CreatesAnEmptyFileWithTheArchiveAttribute) {
  const Opened opened = open(in(u"New.txt"), FileAccess::Write, FileDisposition::OpenAlways);
  ASSERT_EQ(opened.error, success);
  std::uint64_t size = 1;
  EXPECT_EQ(system().GetFileSize(opened.file, size), success);
  EXPECT_EQ(size, 0u);
  system().CloseHandle(opened.file);
  EXPECT_EQ(attributesOf(in(u"new.TXT")), file_attribute::archive);
}

TEST_F(FileSystemContract, KeepsWhatIsThereUnlessItIsToBeReplaced) {
  const Text path = made(u"a.txt", u"12345");
  Opened opened = open(path, FileAccess::ReadWrite, FileDisposition::OpenAlways);
  ASSERT_EQ(opened.error, success);
  EXPECT_EQ(read(opened.file, 0, 100), "12345\r\n");
  system().CloseHandle(opened.file);
  opened = open(path, FileAccess::ReadWrite, FileDisposition::CreateAlways);
  ASSERT_EQ(opened.error, success);
  EXPECT_EQ(read(opened.file, 0, 100), "");
  system().CloseHandle(opened.file);
}

// ---- replacing

TEST_F(FileSystemContract, ReplacesAFileWhenItIsWhole) {
  const Text path = made(u"a.txt", u"what was there");
  const Opened opened = open(path, FileAccess::Write, FileDisposition::Replace);
  ASSERT_EQ(opened.error, success);
  EXPECT_EQ(write(opened.file, 0, "new"), success);
  EXPECT_EQ(contentOf(path), "what was there\r\n");
  EXPECT_EQ(system().CommitFile(opened.file), success);
  EXPECT_EQ(contentOf(path), "new");
  EXPECT_EQ(attributesOf(path), file_attribute::archive);
  EXPECT_THAT(found(in(u"a*")), ElementsAre(u"a.txt"));
}

TEST_F(FileSystemContract, LaysANewFileWhenItIsWhole) {
  const Opened opened = open(in(u"a.txt"), FileAccess::Write, FileDisposition::Replace);
  ASSERT_EQ(opened.error, success);
  EXPECT_EQ(write(opened.file, 0, "new"), success);
  EXPECT_EQ(lookUpError(in(u"a.txt")), fileNotFound);
  EXPECT_EQ(system().CommitFile(opened.file), success);
  EXPECT_EQ(contentOf(in(u"a.txt")), "new");
  EXPECT_THAT(found(in(u"a*")), ElementsAre(u"a.txt"));
}

TEST_F(FileSystemContract, DropsAReplacementThatIsOnlyClosed) {
  for (const Text& path : {made(u"a.txt", u"what was there"), in(u"b.txt")}) {
    const Opened opened = open(path, FileAccess::Write, FileDisposition::Replace);
    ASSERT_EQ(opened.error, success);
    EXPECT_EQ(write(opened.file, 0, "new"), success);
    EXPECT_EQ(system().CloseHandle(opened.file), success);
  }
  EXPECT_EQ(contentOf(in(u"a.txt")), "what was there\r\n");
  EXPECT_THAT(found(in(u"*.txt*")), ElementsAre(u"a.txt"));
}

TEST_F(FileSystemContract, ReplacesNothingThatCannotBeWritten) {
  const auto replaceError = [&](const Text& path) {
    return open(path, FileAccess::Write, FileDisposition::Replace).error;
  };
  const Text fixed = made(u"fixed");
  ASSERT_EQ(system().SetFileAttributesA(fixed, file_attribute::readOnly), success);
  EXPECT_EQ(replaceError(fixed), accessDenied);
  ASSERT_EQ(system().SetFileAttributesA(fixed, file_attribute::normal), success);
  ASSERT_EQ(system().CreateDirectoryA(in(u"folder")), success);
  EXPECT_EQ(replaceError(in(u"folder")), accessDenied);
  EXPECT_EQ(replaceError(in(u"none\\file")), pathNotFound);
  const Opened held =
      open(made(u"held"), FileAccess::Read, FileDisposition::OpenExisting, FileShare::Nothing);
  EXPECT_EQ(replaceError(in(u"held")), sharingViolation);
  system().CloseHandle(held.file);
  EXPECT_THAT(found(in(u"*.~zev")), ElementsAre());
}

// Somebody who reads it keeps nobody from writing it.
TEST_F(FileSystemContract, WritesOverWhatOthersHaveOpen) {
  const Text path = made(u"a.txt", u"what was there");
  const Opened reader = open(path, FileAccess::Read, FileDisposition::OpenExisting);
  const Opened opened = open(path, FileAccess::Write, FileDisposition::Replace);
  ASSERT_EQ(opened.error, success);
  EXPECT_EQ(write(opened.file, 0, "new"), success);
  EXPECT_EQ(system().CommitFile(opened.file), success);
  system().CloseHandle(reader.file);
  EXPECT_EQ(contentOf(path), "new");
  EXPECT_THAT(found(in(u"a*")), ElementsAre(u"a.txt"));
}

TEST_F(FileSystemContract, ReplacesThroughWhatAnEndedProgramHasLeft) {
  made(u"a.txt.~zev", u"much more than what is to be written now");
  const Opened opened = open(in(u"a.txt"), FileAccess::Write, FileDisposition::Replace);
  ASSERT_EQ(opened.error, success);
  EXPECT_EQ(write(opened.file, 0, "new"), success);
  EXPECT_EQ(system().CommitFile(opened.file), success);
  EXPECT_EQ(contentOf(in(u"a.txt")), "new");
  EXPECT_THAT(found(in(u"a*")), ElementsAre(u"a.txt"));
}

TEST_F(FileSystemContract, FillsAGapBehindTheEndWithZeros) {
  const Opened opened = open(in(u"gap"), FileAccess::ReadWrite, FileDisposition::CreateAlways);
  ASSERT_EQ(opened.error, success);
  EXPECT_EQ(write(opened.file, 3, "abc"), success);
  EXPECT_EQ(write(opened.file, 1, "x"), success);
  EXPECT_EQ(read(opened.file, 0, 10), std::string("\0x\0abc", 6));
  EXPECT_EQ(read(opened.file, 4, 10), "bc");
  EXPECT_EQ(read(opened.file, 6, 10), "");
  system().CloseHandle(opened.file);
}

TEST_F(FileSystemContract, OpensNoDirectoryAsAFile) {
  ASSERT_EQ(system().CreateDirectoryA(in(u"dir")), success);
  EXPECT_EQ(open(in(u"dir"), FileAccess::Read, FileDisposition::OpenExisting).error, accessDenied);
  EXPECT_EQ(open(in(u"dir"), FileAccess::Write, FileDisposition::CreateAlways).error, accessDenied);
}

TEST_F(FileSystemContract, WritesNoReadOnlyFile) {
  const Text path = made(u"fixed");
  ASSERT_EQ(system().SetFileAttributesA(path, file_attribute::readOnly), success);
  EXPECT_EQ(open(path, FileAccess::Write, FileDisposition::OpenExisting).error, accessDenied);
  EXPECT_EQ(open(path, FileAccess::Write, FileDisposition::CreateAlways).error, accessDenied);
  const Opened reading = open(path, FileAccess::Read, FileDisposition::OpenExisting);
  EXPECT_EQ(reading.error, success);
  system().CloseHandle(reading.file);
  EXPECT_EQ(system().DeleteFileA(path), accessDenied);
  EXPECT_EQ(system().SetFileAttributesA(path, file_attribute::normal), success);
  EXPECT_EQ(system().DeleteFileA(path), success);
}

TEST_F(FileSystemContract, SharesNoFileThatIsOpenForItself) {
  const Text path = made(u"own");
  const Opened own =
      open(path, FileAccess::Read, FileDisposition::OpenExisting, FileShare::Nothing);
  ASSERT_EQ(own.error, success);
  EXPECT_EQ(open(path, FileAccess::Read, FileDisposition::OpenExisting).error, sharingViolation);
  EXPECT_EQ(system().DeleteFileA(path), sharingViolation);
  system().CloseHandle(own.file);
  const Opened first = open(path, FileAccess::Read, FileDisposition::OpenExisting);
  const Opened second = open(path, FileAccess::ReadWrite, FileDisposition::OpenExisting);
  EXPECT_EQ(first.error, success);
  EXPECT_EQ(second.error, success);
  EXPECT_EQ(open(path, FileAccess::Read, FileDisposition::OpenExisting, FileShare::Nothing).error,
            sharingViolation);
  EXPECT_EQ(system().DeleteFileA(path), sharingViolation);
  system().CloseHandle(first.file);
  system().CloseHandle(second.file);
  EXPECT_EQ(system().DeleteFileA(path), success);
}

// ---- holding

TEST_F(FileSystemContract, KeepsAFileAsItIs) {
  const Text path = made(u"kept", u"as it is");
  const Held kept = hold(path, Holding::ToKeep);
  ASSERT_EQ(kept.error, success);
  EXPECT_EQ(kept.attributes & file_attribute::directory, 0u);
  EXPECT_EQ(read(kept.entry, 3, 2), "it");
  EXPECT_EQ(open(path, FileAccess::Write, FileDisposition::OpenExisting).error, sharingViolation);
  EXPECT_EQ(open(path, FileAccess::Write, FileDisposition::CreateAlways).error, sharingViolation);
  EXPECT_EQ(system().DeleteFileA(path), sharingViolation);
  const Opened reader = open(path, FileAccess::Read, FileDisposition::OpenExisting);
  EXPECT_EQ(reader.error, success);
  const Held another = hold(path, Holding::ToKeep);
  EXPECT_EQ(another.error, success);
  for (const FileHandle each : {kept.entry, reader.file, another.entry}) system().CloseHandle(each);
  EXPECT_EQ(system().DeleteFileA(path), success);
}

TEST_F(FileSystemContract, HoldsNoFileThatSomebodyMayWrite) {
  const Text path = made(u"written");
  const Opened writer = open(path, FileAccess::Write, FileDisposition::OpenExisting);
  EXPECT_EQ(hold(path, Holding::ToKeep).error, sharingViolation);
  system().CloseHandle(writer.file);
  const Held kept = hold(path, Holding::ToKeep);
  EXPECT_EQ(kept.error, success);
  system().CloseHandle(kept.entry);
  EXPECT_EQ(hold(in(u"missing"), Holding::ToKeep).error, fileNotFound);
}

TEST_F(FileSystemContract, KeepsADirectoryWhoseEntriesComeAndGo) {
  for (const Holding holding : {Holding::ToKeep, Holding::ToFill}) {
    const Text folder = in(u"folder");
    ASSERT_EQ(system().CreateDirectoryA(folder), success);
    const Held kept = hold(folder, holding);
    ASSERT_EQ(kept.error, success);
    EXPECT_EQ(kept.attributes & file_attribute::directory, file_attribute::directory);
    made(u"folder\\entry");
    EXPECT_THAT(found(in(u"folder\\*.*")), testing::Contains(Text(u"entry")));
    EXPECT_EQ(system().RemoveDirectoryA(folder), sharingViolation);
    EXPECT_EQ(system().DeleteFileA(in(u"folder\\entry")), success);
    EXPECT_EQ(system().RemoveDirectoryA(folder), sharingViolation);
    system().CloseHandle(kept.entry);
    EXPECT_EQ(system().RemoveDirectoryA(folder), success);
  }
}

TEST_F(FileSystemContract, FillsNothingThatIsBeingEmptied) {
  const Text folder = in(u"folder");
  ASSERT_EQ(system().CreateDirectoryA(folder), success);
  const Held filling = hold(folder, Holding::ToFill);
  const Held also = hold(folder, Holding::ToFill);
  EXPECT_EQ(also.error, success);
  EXPECT_EQ(hold(folder, Holding::ToEmpty).error, sharingViolation);
  for (const FileHandle each : {filling.entry, also.entry}) system().CloseHandle(each);
  const Held kept = hold(folder, Holding::ToKeep);
  const Held emptying = hold(folder, Holding::ToEmpty);
  EXPECT_EQ(emptying.error, success);
  EXPECT_EQ(hold(folder, Holding::ToFill).error, sharingViolation);
  system().CloseHandle(kept.entry);
  EXPECT_EQ(system().RemoveDirectoryA(folder), success);
  system().CloseHandle(emptying.entry);
  EXPECT_FALSE(bench().isThere(folder));
}

// ---- links

TEST_F(FileSystemContract, FollowsALinkOnTheWayToAnEntry) {
  ASSERT_EQ(system().CreateDirectoryA(in(u"target")), success);
  made(u"target\\entry", u"behind");
  ASSERT_TRUE(bench().makeLink(in(u"link"), in(u"target")));
  const Opened behind = open(in(u"link\\entry"), FileAccess::Read, FileDisposition::OpenExisting);
  ASSERT_EQ(behind.error, success);
  EXPECT_EQ(read(behind.file, 0, 6), "behind");
  system().CloseHandle(behind.file);
  EXPECT_THAT(found(in(u"link\\*.*")), testing::Contains(Text(u"entry")));
  EXPECT_EQ(system().DeleteFileA(in(u"link\\entry")), success);
  EXPECT_FALSE(bench().isThere(in(u"target\\entry")));
}

TEST_F(FileSystemContract, MeansALinkItselfByItsName) {
  constexpr std::uint32_t both = file_attribute::directory | file_attribute::link;
  ASSERT_EQ(system().CreateDirectoryA(in(u"target")), success);
  made(u"target\\entry");
  ASSERT_TRUE(bench().makeLink(in(u"link"), in(u"target")));
  std::uint32_t attributes = 0;
  EXPECT_EQ(system().GetFileAttributesA(in(u"link"), attributes), success);
  EXPECT_EQ(attributes & both, both);
  const Held kept = hold(in(u"link"), Holding::ToKeep);
  ASSERT_EQ(kept.error, success);
  EXPECT_EQ(kept.attributes & both, both);
  system().CloseHandle(kept.entry);
  EXPECT_EQ(system().CreateDirectoryA(in(u"link")), alreadyExists);
  EXPECT_TRUE(bench().isThere(in(u"target\\entry")));
  if (bench().isWine()) GTEST_SKIP() << "Wine removes no link";
  EXPECT_EQ(system().RemoveDirectoryA(in(u"link")), success);
  EXPECT_FALSE(bench().isThere(in(u"link")));
  EXPECT_TRUE(bench().isThere(in(u"target\\entry")));
}

// ---- names

TEST_F(FileSystemContract, MatchesNamesWithoutRegardToCaseAndKeepsIt) {
  made(u"MiXed.TxT");
  EXPECT_EQ(lookUpError(in(u"mixed.txt")), success);
  EXPECT_THAT(found(in(u"MIXED.TXT")), ElementsAre(u"MiXed.TxT"));
}

TEST_F(FileSystemContract, TakesASlashForABackslash) {
  ASSERT_EQ(system().CreateDirectoryA(in(u"a")), success);
  EXPECT_EQ(system().CreateDirectoryA(in(u"a/b")), success);
  EXPECT_EQ(lookUpError(in(u"a\\b")), success);
}

TEST_F(FileSystemContract, ResolvesDotsAndDropsThoseAtTheEnd) {
  const Text path = made(u"file");
  EXPECT_EQ(lookUpError(in(u".\\file")), success);
  EXPECT_EQ(lookUpError(in(u"no\\..\\file")), success);
  EXPECT_EQ(lookUpError(path + u" . "), success);
  ASSERT_EQ(system().CreateDirectoryA(in(u"cut. ")), success);
  EXPECT_THAT(found(in(u"cut")), ElementsAre(u"cut"));
}

TEST_F(FileSystemContract, LooksAtNothingBehindANul) {
  made(u"file");
  EXPECT_EQ(lookUpError(in(u"file") + Text(5, u'\0')), success);
  EXPECT_EQ(lookUpError(Text(5, u'\0')), pathNotFound);
}

TEST_F(FileSystemContract, RefusesNamesThatTheSystemDoesNotAllow) {
  for (const TextView name : {u"a<b", u"a>b", u"a\"b", u"a|b", u"a?b", u"a*b"}) {
    EXPECT_EQ(system().CreateDirectoryA(in(name)), invalidName) << toUtf8(name);
    EXPECT_EQ(open(in(name), FileAccess::Write, FileDisposition::CreateAlways).error, invalidName)
        << toUtf8(name);
  }
}

TEST_F(FileSystemContract, FindsNothingOnADriveThatIsNotThere) {
  const Text root = {bench().freeLetter(), u':', u'\\'};
  EXPECT_FALSE(system().rootExists(root));
  EXPECT_EQ(lookUpError(root + u"x"), missingOn(root));
  EXPECT_EQ(system().CreateDirectoryA(root + u"x"), missingOn(root));
  EXPECT_EQ(searchError(root + u"*.*"), pathNotFound);
}

/// What stands before a colon and is no letter names a drive that no machine has.
TEST_F(FileSystemContract, FindsNothingOnADriveThatIsNoLetter) {
  for (const TextView drive : noDrives) {
    const Text root = join(drive, u"\\");
    EXPECT_FALSE(system().rootExists(drive)) << toUtf8(drive);
    EXPECT_FALSE(system().rootExists(root)) << toUtf8(drive);
    EXPECT_EQ(lookUpError(root), missingFolderOn(drive)) << toUtf8(drive);
    EXPECT_EQ(lookUpError(root + u"a"), missingOn(drive)) << toUtf8(drive);
    EXPECT_EQ(searchError(root + u"a"), missingFolderOn(drive)) << toUtf8(drive);
    EXPECT_EQ(searchError(root + u"*.*"), missingFolderOn(drive)) << toUtf8(drive);
    EXPECT_EQ(system().CreateDirectoryA(root + u"a"), missingOn(drive)) << toUtf8(drive);
    EXPECT_EQ(open(root + u"a", FileAccess::Write, FileDisposition::CreateAlways).error,
              missingOn(drive))
        << toUtf8(drive);
  }
}

TEST_F(FileSystemContract, KnowsNoRootBehindABackslash) {
  EXPECT_FALSE(system().rootExists(u"\\:"));
  EXPECT_FALSE(system().rootExists(u"\\:\\"));
}

// ---- directories

TEST_F(FileSystemContract, MakesADirectoryOnceAndOnlyBelowAnother) {
  EXPECT_EQ(system().CreateDirectoryA(in(u"d")), success);
  EXPECT_EQ(system().CreateDirectoryA(in(u"D")), alreadyExists);
  EXPECT_EQ(system().CreateDirectoryA(in(u"no\\d")), pathNotFound);
  made(u"file");
  EXPECT_EQ(system().CreateDirectoryA(in(u"file")), alreadyExists);
  EXPECT_EQ(attributesOf(in(u"d")), file_attribute::directory);
}

TEST_F(FileSystemContract, RemovesOnlyEmptyDirectories) {
  ASSERT_EQ(system().CreateDirectoryA(in(u"d")), success);
  const Text file = made(u"d\\file");
  EXPECT_EQ(system().RemoveDirectoryA(in(u"d")), directoryNotEmpty);
  EXPECT_EQ(system().RemoveDirectoryA(file), directoryInvalid);
  EXPECT_EQ(system().RemoveDirectoryA(in(u"none")), fileNotFound);
  EXPECT_EQ(system().DeleteFileA(file), success);
  EXPECT_EQ(system().RemoveDirectoryA(in(u"d")), success);
  EXPECT_EQ(lookUpError(in(u"d")), fileNotFound);
}

TEST_F(FileSystemContract, DeletesOnlyFiles) {
  ASSERT_EQ(system().CreateDirectoryA(in(u"d")), success);
  EXPECT_EQ(system().DeleteFileA(in(u"d")), accessDenied);
  EXPECT_EQ(system().DeleteFileA(in(u"none")), fileNotFound);
  EXPECT_EQ(system().DeleteFileA(in(u"none\\file")), pathNotFound);
}

TEST_F(FileSystemContract, SetsFourAttributesTogether) {
  if (bench().isWine()) {
    GTEST_SKIP() << "Wine cannot hide a file that it has just made read-only, and calls every file "
                    "an archive";
  }
  constexpr std::uint32_t four = file_attribute::readOnly | file_attribute::hidden |
                                 file_attribute::system | file_attribute::archive;
  const Text path = made(u"file");
  EXPECT_EQ(system().SetFileAttributesA(path, four), success);
  EXPECT_EQ(attributesOf(path), four);
  EXPECT_EQ(system().SetFileAttributesA(path, file_attribute::normal), success);
  EXPECT_EQ(attributesOf(path), file_attribute::normal);
}

TEST_F(FileSystemContract, SetsAttributesAndLeavesADirectoryOne) {
  const Text path = made(u"file");
  for (const std::uint32_t set : {file_attribute::readOnly, file_attribute::hidden,
                                  file_attribute::system, file_attribute::normal}) {
    const std::uint32_t attributes = set | file_attribute::archive;
    EXPECT_EQ(system().SetFileAttributesA(path, attributes), success);
    EXPECT_EQ(attributesOf(path), attributes);
  }
  ASSERT_EQ(system().CreateDirectoryA(in(u"d")), success);
  EXPECT_EQ(system().SetFileAttributesA(in(u"d"), file_attribute::hidden), success);
  EXPECT_EQ(attributesOf(in(u"d")), file_attribute::hidden | file_attribute::directory);
  EXPECT_EQ(system().SetFileAttributesA(in(u"none"), 0), fileNotFound);
}

// ---- searches

TEST_F(FileSystemContract, SearchesWithWildcards) {
  // A longer extension that begins in the same way would match by its short name, on a drive that
  // keeps such names.
  for (const TextView name : {u"b.txt", u"a.TXT", u"plain", u"c.tx", u"d.xtxt"}) made(name);
  EXPECT_THAT(found(in(u"*.txt")), testing::UnorderedElementsAre(u"a.TXT", u"b.txt"));
  EXPECT_THAT(found(in(u"?.txt")), testing::UnorderedElementsAre(u"a.TXT", u"b.txt"));
  EXPECT_THAT(found(in(u"pl*n")), ElementsAre(u"plain"));
  EXPECT_EQ(searchError(in(u"*.none")), fileNotFound);
}

TEST_F(FileSystemContract, FindsEveryNameByStarDotStar) {
  made(u"plain");
  made(u"x.y");
  const std::vector<Text> names = found(in(u"*.*"));
  EXPECT_THAT(names, testing::UnorderedElementsAre(u".", u"..", u"plain", u"x.y"));
  ASSERT_GE(names.size(), 2u);
  EXPECT_EQ(names[0], u".");
  EXPECT_EQ(names[1], u"..");
}

TEST_F(FileSystemContract, TellsSizeAndAttributesOfWhatItFinds) {
  made(u"file", u"1234");
  DirectoryEntry entry;
  FileHandle search = 0;
  ASSERT_EQ(system().FindFirstFileA(in(u"file"), entry, search), success);
  EXPECT_EQ(entry.name, u"file");
  EXPECT_EQ(entry.size, 6u);
  EXPECT_EQ(entry.attributes, file_attribute::archive);
  EXPECT_EQ(system().FindNextFileA(search, entry), noMoreFiles);
  system().FindClose(search);
}

TEST_F(FileSystemContract, FindsNoRootByItsOwnName) {
  const Text drive = bench().folder().substr(0, 2);
  EXPECT_EQ(searchError(drive + u"\\"), fileNotFound);
  EXPECT_TRUE(system().rootExists(drive + u"\\"));
  EXPECT_EQ(attributesOf(drive + u"\\") & file_attribute::directory, file_attribute::directory);
}

TEST_F(FileSystemContract, SearchesNoMissingFolder) {
  EXPECT_EQ(searchError(in(u"none\\*.*")), pathNotFound);
}

}  // namespace
}  // namespace zev::contract
