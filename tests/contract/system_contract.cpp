// What the calls of every binding tell of the system, its drives, windows and folders.

#include <gmock/gmock.h>

#include "contract/bench.h"

namespace zev::contract {
namespace {

using SystemContract = ContractTest;
using DrivesContract = ContractTest;
using WindowsContract = ContractTest;
using ShellFoldersContract = ContractTest;

// ---- the system

TEST_F(SystemContract, PathsAreWrittenOverTheBeginningOfTheBuffer) {
  Text buffer = blanks(256);
  const std::uint32_t length = platform().system.GetWindowsDirectoryA(buffer, 256);
  ASSERT_GT(length, 3u);
  EXPECT_EQ(buffer.size(), 256u);
  EXPECT_EQ(buffer.substr(1, 2), u":\\");
  EXPECT_EQ(buffer[length], u'\0');
  EXPECT_EQ(buffer[length - 1] == u'\\', false);
  EXPECT_EQ(buffer.back(), u' ');
}

TEST_F(SystemContract, ABufferTooSmallIsToldTheSizeItNeeds) {
  Text buffer = blanks(256);
  const std::uint32_t length = platform().system.GetSystemDirectoryA(buffer, 256);
  Text small = blanks(2);
  EXPECT_EQ(platform().system.GetSystemDirectoryA(small, 2), length + 1);
  EXPECT_EQ(small, u"  ");
}

TEST_F(SystemContract, TheTemporaryFolderEndsInABackslash) {
  Text buffer = blanks(260);
  const std::uint32_t length = platform().system.GetTempPathA(260, buffer);
  ASSERT_GT(length, 3u);
  EXPECT_EQ(buffer[length - 1], u'\\');
}

TEST_F(SystemContract, TheUserNameIsCountedWithItsNul) {
  Text buffer = blanks(256);
  std::uint32_t size = 256;
  ASSERT_TRUE(platform().system.GetUserNameA(buffer, size));
  EXPECT_EQ(beforeNul(buffer).size() + 1, size);
}

TEST_F(SystemContract, TheUsersAccountHasADomain) {
  Text user = blanks(256);
  std::uint32_t size = 256;
  ASSERT_TRUE(platform().system.GetUserNameA(user, size));
  Text domain(256, u'\0');
  size = 256;
  ASSERT_TRUE(platform().system.LookupAccountNameA(beforeNul(user), 256, domain, size));
  EXPECT_GT(size, 0u);
  EXPECT_EQ(beforeNul(domain).size(), size);
  size = 256;
  EXPECT_FALSE(platform().system.LookupAccountNameA(u"nobody of that name", 256, domain, size));
}

TEST_F(SystemContract, TheVersionFillsTheFormThatIsAskedFor) {
  OSVERSIONINFO record;
  ASSERT_TRUE(platform().system.GetVersionExA(record));
  EXPECT_GE(record.dwMajorVersion, 3u);
  EXPECT_EQ(record.wProductType, 0);
  record.dwOSVersionInfoSize = OSVERSIONINFO::extendedForm;
  ASSERT_TRUE(platform().system.GetVersionExA(record));
  EXPECT_NE(record.wProductType, 0);
  record.dwOSVersionInfoSize = 1;
  EXPECT_FALSE(platform().system.GetVersionExA(record));
}

TEST_F(SystemContract, KnowsItsArchitecture) {
  bool emulated = true;
  ASSERT_TRUE(platform().system.IsWow64Process(platform().system.GetCurrentProcess(), emulated));
  EXPECT_THAT(platform().system.GetSystemInfo(), testing::AnyOf(0, 6, 9));
  EXPECT_THAT(platform().system.GetNativeSystemInfo(), testing::AnyOf(0, 6, 9));
}

// ---- drives

TEST_F(DrivesContract, KnowsAFixedDriveAndAMissingOne) {
  const Text root = bench().folder().substr(0, 3);
  const Text missing = {bench().freeLetter(), u':', u'\\'};
  EXPECT_EQ(platform().drives.GetDriveTypeA(root), drive_type::fixed);
  EXPECT_EQ(platform().drives.GetDriveTypeA(missing), drive_type::noRootDirectory);
  EXPECT_EQ(platform().drives.GetDriveTypeA(u"\\:\\"), drive_type::noRootDirectory);
  const std::uint32_t bits = platform().drives.GetLogicalDrives();
  EXPECT_NE(bits & (1u << (upperCase(root).front() - u'A')), 0u);
  EXPECT_EQ(bits & (1u << (bench().freeLetter() - u'A')), 0u);
}

TEST_F(DrivesContract, HasNoDriveButLetters) {
  for (const TextView drive : noDrives) {
    const Text root = join(drive, u"\\");
    DiskSpace untouched;
    EXPECT_EQ(platform().drives.GetDriveTypeA(root), drive_type::noRootDirectory) << toUtf8(drive);
    EXPECT_FALSE(platform().drives.GetDiskFreeSpaceA(root, untouched)) << toUtf8(drive);
    EXPECT_EQ(platform().drives.volumeLabel(root), u"") << toUtf8(drive);
  }
}

TEST_F(DrivesContract, TellsTheSpaceOfADrive) {
  DiskSpace space;
  ASSERT_TRUE(platform().drives.GetDiskFreeSpaceA(bench().folder().substr(0, 3), space));
  EXPECT_GT(space.sectorsPerCluster, 0);
  EXPECT_GT(space.bytesPerSector, 0);
  EXPECT_GT(space.freeClusters, 0);
  EXPECT_GE(space.totalClusters, space.freeClusters);
  DiskSpace untouched;
  const Text missing = {bench().freeLetter(), u':', u'\\'};
  EXPECT_FALSE(platform().drives.GetDiskFreeSpaceA(missing, untouched));
  EXPECT_EQ(untouched.freeClusters, 0);
}

TEST_F(DrivesContract, HasNoLabelForAMissingDrive) {
  EXPECT_EQ(platform().drives.volumeLabel(Text{bench().freeLetter(), u':', u'\\'}), u"");
}

// ---- windows

TEST_F(WindowsContract, NoWindowHasNoNeighbours) {
  EXPECT_EQ(platform().windows.GetWindow(0, GW_HWNDFIRST), 0u);
  EXPECT_EQ(platform().windows.GetWindowTextLengthA(0), 0);
  EXPECT_FALSE(platform().windows.SetForegroundWindow(0));
  EXPECT_FALSE(platform().windows.BringWindowToTop(0));
}

// ---- folders of the shell

TEST_F(ShellFoldersContract, ASpecialFolderHasAPath) {
  ItemIdList list = nullptr;
  ASSERT_EQ(platform().shellFolders.SHGetSpecialFolderLocation(0, CSIDL_PERSONAL, list), 0);
  ASSERT_NE(list, nullptr);
  Text buffer = blanks(260);
  EXPECT_TRUE(platform().shellFolders.SHGetPathFromIDList(list, buffer));
  EXPECT_NE(buffer.find(u'\0'), Text::npos);
  EXPECT_EQ(buffer.substr(1, 2), u":\\");
  platform().shellFolders.CoTaskMemFree(list);
}

TEST_F(ShellFoldersContract, AnUnknownSpecialFolderHasNone) {
  ItemIdList list = nullptr;
  EXPECT_NE(platform().shellFolders.SHGetSpecialFolderLocation(0, 9999, list), 0);
  EXPECT_EQ(list, nullptr);
}

TEST_F(ShellFoldersContract, AKnownFolderIsFoundByItsIdentifier) {
  Guid folder{};
  ASSERT_EQ(
      platform().shellFolders.CLSIDFromString(u"{F1B32785-6FBA-4FCF-9D55-7B8E7F157091}", folder),
      0);
  EXPECT_THAT(folder, testing::ElementsAre(0x85, 0x27, 0xB3, 0xF1, 0xBA, 0x6F, 0xCF, 0x4F, 0x9D,
                                           0x55, 0x7B, 0x8E, 0x7F, 0x15, 0x70, 0x91));
  char16_t* path = nullptr;
  ASSERT_EQ(platform().shellFolders.SHGetKnownFolderPath(folder, 0, 0, path), 0);
  ASSERT_NE(path, nullptr);
  EXPECT_EQ(platform().shellFolders.lstrlenW(path), static_cast<std::int32_t>(Text(path).size()));
  EXPECT_EQ(Text(path).substr(1, 2), u":\\");
  platform().shellFolders.CoTaskMemFree(path);
}

TEST_F(ShellFoldersContract, ATextThatIsNoIdentifierFails) {
  Guid folder{};
  EXPECT_NE(platform().shellFolders.CLSIDFromString(u"{F1B32785}", folder), 0);
  EXPECT_NE(
      platform().shellFolders.CLSIDFromString(u"{F1B32785-6FBA-4FCF-9D55-7B8E7F15709X}", folder),
      0);
}

TEST_F(ShellFoldersContract, NoTextHasNoLength) {
  EXPECT_EQ(platform().shellFolders.lstrlenW(nullptr), 0);
}

}  // namespace
}  // namespace zev::contract
