#include <gmock/gmock.h>

#include "simulated/bench.h"
#include "simulated/put_text.h"

namespace zev::simulated {
namespace {

using namespace system_error;
using testing::ElementsAre;

class SimulatedFileSystemTest : public MachineTest {
 protected:
  SystemError openError(const Text& path, FileAccess access = FileAccess::Read,
                        FileDisposition disposition = FileDisposition::OpenExisting) {
    FileHandle file = 0;
    const SystemError error = system().CreateFileA(path, access, FileShare::All, disposition, file);
    if (error == success) system().CloseHandle(file);
    return error;
  }

  SystemError replaceError(const Text& path) {
    return openError(path, FileAccess::Write, FileDisposition::CreateAlways);
  }

  struct Written {
    SystemError error;
    std::size_t bytes;
    bool operator==(const Written&) const = default;
  };
  Written write(const Text& path, std::size_t count, std::uint64_t offset = 0) {
    FileHandle file = 0;
    EXPECT_EQ(system().CreateFileA(path, FileAccess::Write, FileShare::All,
                                   FileDisposition::OpenAlways, file),
              success);
    Written written{};
    written.error =
        system().WriteFile(file, offset, std::vector<std::uint8_t>(count, 7), written.bytes);
    system().CloseHandle(file);
    return written;
  }

  void setFree(std::uint64_t bytes) {
    DriveSettings settings = *machine.disks().drive(u'C');
    settings.free = bytes;
    machine.disks().setDrive(u'C', settings);
  }
  std::uint64_t free() { return machine.disks().drive(u'C')->free; }
};

// ---- order and place

TEST_F(SimulatedFileSystemTest, ListsNamesSortedByTheirUpperCase) {
  for (const TextView name : {u"b", u"A", u"_x", u"C"}) {
    putText(machine.disks(), join(u"C:\\d\\", name), "");
  }
  EXPECT_THAT(*machine.disks().names(u"C:\\d"), ElementsAre(u"A", u"b", u"C", u"_x"));
  EXPECT_EQ(files().Dir(u"C:\\d\\*.*", 0), u"A");
}

TEST_F(SimulatedFileSystemTest, PatternsOfWildcardsAloneFindEverything) {
  putText(machine.disks(), u"C:\\d\\ab", "");
  EXPECT_EQ(files().Dir(u"C:\\d\\*", 0), u"ab");
  EXPECT_EQ(files().Dir(u"C:\\d\\??", 0), u"ab");
  EXPECT_EQ(files().Dir(u"C:\\d\\?", 0), u"");
}

TEST_F(SimulatedFileSystemTest, RelativePathsStartInTheFolderOfTheProgram) {
  putText(machine.disks(), u"C:\\Users\\bob\\Downloads\\near.txt", "x");
  EXPECT_EQ(openError(u"near.txt"), success);
  EXPECT_EQ(openError(u"C:near.txt"), success);
  EXPECT_EQ(openError(u"\\near.txt"), fileNotFound);
}

/// Of a file that it does not open it tells where the call was to make one or to empty it.
TEST_F(SimulatedFileSystemTest, TellsOfTheFilesThatItDoesNotMake) {
  machine.disks().put(u"C:\\closed", {.directory = true, .deny = Denial{.create = true}});
  putText(machine.disks(), u"C:\\closed\\fixed", "x");
  machine.disks().put(u"C:\\closed\\fixed", {.attributes = file_attribute::readOnly});
  struct Refusal {
    FileDisposition disposition;
    TextView path;
    bool told;
  };
  constexpr Refusal refusals[] = {
      {FileDisposition::OpenExisting, u"C:\\closed\\new", false},
      {FileDisposition::OpenExisting, u"C:\\closed\\fixed", false},
      {FileDisposition::OpenAlways, u"C:\\closed\\new", true},
      {FileDisposition::OpenAlways, u"C:\\closed\\fixed", false},
      {FileDisposition::CreateAlways, u"C:\\closed\\new", true},
      {FileDisposition::CreateAlways, u"C:\\closed\\fixed", true},
  };
  std::vector<Event> told;
  for (const Refusal& each : refusals) {
    EXPECT_NE(openError(Text(each.path), FileAccess::Write, each.disposition), success);
    if (!each.told) continue;
    told.push_back({{"event", "file"},
                    {"op", "create"},
                    {"path", toUtf8(each.path)},
                    {"error", accessDenied}});
  }
  EXPECT_EQ(log.of("file"), told);
}

TEST_F(SimulatedFileSystemTest, RefusesSharesDevicesAndLongPaths) {
  EXPECT_EQ(openError(u"\\\\machine\\share\\x"), badNetworkPath);
  EXPECT_EQ(replaceError(u"C:\\NUL.txt"), invalidName);
  EXPECT_EQ(replaceError(u"C:\\a:b"), invalidName);
  EXPECT_EQ(replaceError(u"C:\\" + Text(256, u'a')), invalidName);
  EXPECT_EQ(replaceError(u"C:\\" + Text(257, u'a')), pathNotFound);
  EXPECT_EQ(system().CreateDirectoryA(u"C:\\" + Text(244, u'a')), success);
  EXPECT_EQ(system().CreateDirectoryA(u"C:\\" + Text(245, u'a')), fileNameTooLong);
}

TEST_F(SimulatedFileSystemTest, NamesPassThroughTheCodePage) {
  files().MkDir(u"C:\\\u00FCber");
  EXPECT_TRUE(machine.disks().exists(u"C:\\\u00DCBER"));
  EXPECT_EQ(test::raisedBy([&] { files().MkDir(u"C:\\\u4E2D"); }), 52);  // "?" is no name
  machine.settings().system.codePage = 1254;
  files().OpenOutput(1, u"C:\\t.txt");
  files().Print(1, u"\u015F");
  files().Close(1);
  EXPECT_EQ(content(u"C:\\t.txt"), "\xFE\r\n");
}

// ---- refusals

TEST_F(SimulatedFileSystemTest, DeniedDirectoriesRefuseWhatTheyName) {
  putText(machine.disks(), u"C:\\d\\file", "x");
  machine.disks().putDirectory(u"C:\\d\\sub");
  machine.disks().put(u"C:\\d", {.directory = true, .deny = Denial{.create = true}});
  EXPECT_EQ(replaceError(u"C:\\d\\new"), accessDenied);
  EXPECT_EQ(system().CreateDirectoryA(u"C:\\d\\new"), accessDenied);
  EXPECT_EQ(replaceError(u"C:\\d\\file"), success);
  EXPECT_EQ(system().CreateDirectoryA(u"C:\\d\\sub\\new"), success);

  machine.disks().put(u"C:\\d", {.directory = true, .deny = Denial{.write = true}});
  EXPECT_EQ(replaceError(u"C:\\d\\file"), accessDenied);
  EXPECT_EQ(openError(u"C:\\d\\file"), success);
  EXPECT_EQ(replaceError(u"C:\\d\\new"), success);

  machine.disks().put(u"C:\\d", {.directory = true, .deny = Denial{.remove = true}});
  EXPECT_EQ(system().DeleteFileA(u"C:\\d\\file"), accessDenied);
  EXPECT_EQ(system().RemoveDirectoryA(u"C:\\d\\sub"), accessDenied);

  machine.disks().put(u"C:\\d", {.directory = true, .deny = Denial{.list = true}});
  EXPECT_EQ(files().Dir(u"C:\\d\\*.*", 55), u"");
  EXPECT_EQ(openError(u"C:\\d\\file"), success);
  machine.disks().put(u"C:\\d", {.directory = true, .deny = Denial{}});
  EXPECT_EQ(system().DeleteFileA(u"C:\\d\\file"), success);
}

TEST_F(SimulatedFileSystemTest, DeniedFilesRefuseWhatTheyName) {
  machine.disks().put(u"C:\\f", {.content = ZeroBytes{3}, .deny = Denial{.write = true}});
  EXPECT_EQ(replaceError(u"C:\\f"), accessDenied);
  EXPECT_EQ(test::raisedBy([&] { files().OpenOutput(1, u"C:\\f"); }), 75);
  machine.disks().put(u"C:\\f", denying({.remove = true}));
  EXPECT_EQ(system().DeleteFileA(u"C:\\f"), accessDenied);
  EXPECT_EQ(machine.disks().find(u"C:\\f")->size, 3u);
}

TEST_F(SimulatedFileSystemTest, LockedAttributesDoNotChange) {
  machine.disks().put(
      u"C:\\f", {.content = ZeroBytes{1}, .attributes = file_attribute::hidden, .locked = true});
  EXPECT_EQ(system().SetFileAttributesA(u"C:\\f", 0), accessDenied);
  EXPECT_FALSE(files().SetFileAttributesA(u"C:\\f", 0));
  EXPECT_EQ(machine.disks().find(u"C:\\f")->attributes, file_attribute::hidden);
}

TEST_F(SimulatedFileSystemTest, FilesInUseAreNotShared) {
  machine.disks().put(u"C:\\f", {.content = ZeroBytes{1}, .inUse = true});
  EXPECT_EQ(openError(u"C:\\f"), sharingViolation);
  EXPECT_EQ(replaceError(u"C:\\f"), sharingViolation);
  EXPECT_EQ(system().DeleteFileA(u"C:\\f"), sharingViolation);
  EXPECT_EQ(test::raisedBy([&] { files().Kill(u"C:\\f"); }), 70);
  machine.disks().put(u"C:\\f", {.inUse = false});
  EXPECT_EQ(system().DeleteFileA(u"C:\\f"), success);
}

TEST_F(SimulatedFileSystemTest, TheProgramsOwnFileCanOnlyBeRead) {
  const Text own = machine.settings().installer;
  putText(machine.disks(), own, "MZ");
  EXPECT_EQ(openError(own), success);
  EXPECT_EQ(openError(own, FileAccess::Write), sharingViolation);
  EXPECT_EQ(system().DeleteFileA(own), accessDenied);
  files().OpenBinary(1, own, false);  // falls back to reading
  EXPECT_EQ(files().LOF(1), 2);
}

TEST_F(SimulatedFileSystemTest, HiddenAndSystemFilesAreNotReplaced) {
  for (const std::uint32_t attribute : {file_attribute::hidden, file_attribute::system}) {
    machine.disks().put(u"C:\\f", {.content = ZeroBytes{1}, .attributes = attribute});
    EXPECT_EQ(replaceError(u"C:\\f"), accessDenied);
    EXPECT_EQ(openError(u"C:\\f", FileAccess::Write), success);
  }
}

TEST_F(SimulatedFileSystemTest, ACdRefusesEveryChange) {
  machine.disks().setDrive(u'D', {.type = 5});
  putText(machine.disks(), u"D:\\f", "x");
  EXPECT_EQ(openError(u"D:\\f"), success);
  EXPECT_EQ(replaceError(u"D:\\f"), writeProtect);
  EXPECT_EQ(replaceError(u"D:\\new"), writeProtect);
  EXPECT_EQ(system().CreateDirectoryA(u"D:\\d"), writeProtect);
  EXPECT_EQ(system().DeleteFileA(u"D:\\f"), writeProtect);
  EXPECT_EQ(system().SetFileAttributesA(u"D:\\f", 1), writeProtect);
}

TEST_F(SimulatedFileSystemTest, ADriveWithoutAMediumIsNotReady) {
  machine.disks().setDrive(u'A', {.type = 2, .ready = false});
  EXPECT_EQ(openError(u"A:\\f"), notReady);
  EXPECT_EQ(system().CreateDirectoryA(u"A:\\d"), notReady);
  EXPECT_FALSE(system().rootExists(u"A:\\"));
  EXPECT_EQ(platform().drives.GetDriveTypeA(u"A:\\"), 2u);
}

TEST_F(SimulatedFileSystemTest, AFileThatIsOpenIsNotReadyWithoutItsMedium) {
  machine.disks().setDrive(u'A', {.type = 2});
  FileHandle file = 0;
  ASSERT_EQ(system().CreateFileA(u"A:\\f", FileAccess::Write, FileShare::All,
                                 FileDisposition::OpenAlways, file),
            success);
  machine.disks().setDrive(u'A', {.type = 2, .ready = false});
  const std::uint8_t byte[] = {7};
  std::size_t written = 0;
  EXPECT_EQ(system().WriteFile(file, 0, byte, written), notReady);
  EXPECT_EQ(written, 0u);
  machine.disks().setDrive(u'A', {.type = 2});
  EXPECT_EQ(system().WriteFile(file, 0, byte, written), success);
  EXPECT_EQ(written, 1u);
  system().CloseHandle(file);
}

// ---- space

TEST_F(SimulatedFileSystemTest, SpaceGoesInWholeClusters) {
  setFree(100 * 4096);
  EXPECT_EQ(write(u"C:\\f", 1), (Written{success, 1}));
  EXPECT_EQ(free(), 99u * 4096);
  EXPECT_EQ(write(u"C:\\f", 4095, 1), (Written{success, 4095}));
  EXPECT_EQ(free(), 99u * 4096);
  EXPECT_EQ(write(u"C:\\f", 1, 4096), (Written{success, 1}));
  EXPECT_EQ(free(), 98u * 4096);
  EXPECT_EQ(replaceError(u"C:\\f"), success);
  EXPECT_EQ(free(), 100u * 4096);
}

TEST_F(SimulatedFileSystemTest, AFullDiskTakesWhatFits) {
  setFree(2 * 4096 + 100);
  EXPECT_EQ(write(u"C:\\f", 10000), (Written{diskFull, 8192}));
  EXPECT_EQ(machine.disks().find(u"C:\\f")->size, 8192u);
  EXPECT_EQ(free(), 100u);
  EXPECT_EQ(write(u"C:\\g", 1), (Written{diskFull, 0}));
  EXPECT_EQ(write(u"C:\\f", 10, 100), (Written{success, 10}));
  EXPECT_EQ(system().DeleteFileA(u"C:\\f"), success);
  EXPECT_EQ(free(), 2u * 4096 + 100);
}

TEST_F(SimulatedFileSystemTest, AFullDiskIsErrorSixtyOne) {
  setFree(0);
  files().OpenOutput(1, u"C:\\f");
  EXPECT_EQ(test::raisedBy([&] { files().Print(1, u"x"); }), 61);
}

TEST_F(SimulatedFileSystemTest, DriveSpaceIsToldInClusters) {
  setFree(10 * 4096 + 5);
  machine.disks().put(u"C:\\f", {.content = ZeroBytes{4097}});
  DiskSpace space;
  ASSERT_TRUE(platform().drives.GetDiskFreeSpaceA(u"C:\\", space));
  EXPECT_EQ(space.sectorsPerCluster, 8);
  EXPECT_EQ(space.bytesPerSector, 512);
  EXPECT_EQ(space.freeClusters, 10);
  EXPECT_EQ(space.totalClusters, 12);
}

TEST_F(SimulatedFileSystemTest, ManyClustersAreToldAsTheMostThatFits) {
  setFree(std::uint64_t{1} << 62);
  DiskSpace space;
  ASSERT_TRUE(platform().drives.GetDiskFreeSpaceA(u"C:\\", space));
  EXPECT_EQ(space.freeClusters, 0x7FFFFFFF);
}

// ---- content

TEST_F(SimulatedFileSystemTest, ZerosTakeNoMemoryUntilTheyAreWritten) {
  constexpr std::uint64_t huge = std::uint64_t{1} << 45;
  machine.disks().put(u"C:\\huge", {.content = ZeroBytes{huge}});
  EXPECT_EQ(machine.disks().find(u"C:\\huge")->size, huge);
  EXPECT_THAT(*machine.disks().read(u"C:\\huge", huge - 2, 10), ElementsAre(0, 0));
  machine.disks().put(u"C:\\z", {.content = ZeroBytes{6}});
  EXPECT_EQ(write(u"C:\\z", 2, 1), (Written{success, 2}));
  EXPECT_EQ(content(u"C:\\z"), std::string("\0\7\7\0\0\0", 6));
}

TEST_F(SimulatedFileSystemTest, WritingSetsTheArchiveAttribute) {
  machine.disks().put(u"C:\\f", {.content = ZeroBytes{1}, .attributes = 0u});
  EXPECT_EQ(openError(u"C:\\f", FileAccess::Write), success);
  EXPECT_EQ(machine.disks().find(u"C:\\f")->attributes, 0u);
  write(u"C:\\f", 1);
  EXPECT_EQ(machine.disks().find(u"C:\\f")->attributes, file_attribute::archive);
}

TEST_F(SimulatedFileSystemTest, LayingAnEntryChangesOnlyWhatIsGiven) {
  putText(machine.disks(), u"C:\\f", "abc");
  machine.disks().put(u"C:\\F", {.attributes = file_attribute::readOnly});
  EXPECT_EQ(content(u"C:\\f"), "abc");
  EXPECT_EQ(machine.disks().find(u"C:\\f")->name, u"f");
  EXPECT_EQ(machine.disks().find(u"C:\\f")->attributes, file_attribute::readOnly);
  machine.disks().putDirectory(u"C:\\f\\g");
  EXPECT_EQ(machine.disks().find(u"C:\\f")->attributes, file_attribute::directory);
}

TEST_F(SimulatedFileSystemTest, RemovingADirectoryTakesItsContentAlong) {
  putText(machine.disks(), u"C:\\d\\e\\f", "abc");
  machine.disks().remove(u"C:\\d");
  EXPECT_FALSE(machine.disks().exists(u"C:\\d\\e\\f"));
  EXPECT_FALSE(machine.disks().exists(u"C:\\d"));
  machine.disks().putDirectory(u"C:\\d");
  EXPECT_THAT(*machine.disks().names(u"C:\\d"), testing::IsEmpty());
}

TEST_F(SimulatedFileSystemTest, LayingIsRefusedWhereTheSystemHasNoPath) {
  EXPECT_THROW(putText(machine.disks(), u"f", ""), std::invalid_argument);
  EXPECT_THROW(putText(machine.disks(), u"C:\\a*b", ""), std::invalid_argument);
  EXPECT_THROW(putText(machine.disks(), u"X:\\f", ""), std::invalid_argument);
}

TEST_F(SimulatedFileSystemTest, TellsItsDigest) {
  putText(machine.disks(), u"C:\\f", "abc");
  EXPECT_EQ(*machine.disks().sha256(u"C:\\f"),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(machine.disks().sha256(u"C:\\none"), std::nullopt);
}

}  // namespace
}  // namespace zev::simulated
