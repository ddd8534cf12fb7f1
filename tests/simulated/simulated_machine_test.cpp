#include "simulated/simulated_machine.h"

#include <gmock/gmock.h>

#include "simulated/bench.h"
#include "simulated/put_text.h"

namespace zev::simulated {
namespace {

using testing::ElementsAre;

class SimulatedMachineTest : public MachineTest {
 protected:
  Text answer(std::uint32_t (SystemInformation::*call)(Text&, std::uint32_t)) {
    Text buffer = blanks(260);
    return buffer.substr(0, (platform().system.*call)(buffer, 260));
  }
};

TEST_F(SimulatedMachineTest, IsAUsualOneToBeginWith) {
  Text buffer = blanks(260);
  const std::uint32_t length = platform().system.GetTempPathA(260, buffer);
  EXPECT_EQ(buffer.substr(0, length), u"C:\\Users\\bob\\AppData\\Local\\Temp\\");
  EXPECT_EQ(answer(&SystemInformation::GetWindowsDirectoryA), u"C:\\Windows");
  EXPECT_EQ(answer(&SystemInformation::GetSystemDirectoryA), u"C:\\Windows\\system32");
  for (const TextView folder :
       {u"C:\\Windows\\system32", u"C:\\Users\\bob\\Documents", u"C:\\Users\\bob\\Desktop",
        u"C:\\Users\\bob\\AppData\\Local\\Temp", u"C:\\Program Files",
        u"C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\Programs",
        u"C:\\Users\\bob\\AppData\\Roaming\\Microsoft\\Windows\\Start Menu\\Programs"}) {
    EXPECT_TRUE(machine.disks().exists(folder)) << toUtf8(folder);
  }
  EXPECT_EQ(machine.disks().drive(u'C')->free, std::uint64_t{64} << 30);
  EXPECT_EQ(machine.registry().value(HKEY_CLASSES_ROOT, u"AVIFile\\Extensions\\AU", u"")->text(),
            u"{00020003-0000-0000-C000-000000000046}");
}

TEST_F(SimulatedMachineTest, UserAndDomainAreCountedInLettersAndTakeBytes) {
  machine.settings().system.codePage = 932;
  machine.settings().system.user = u"\u7530\u4E2D";
  machine.settings().system.domain = u"\u80FD\u767B";
  Text buffer = blanks(8);
  std::uint32_t size = 4;
  EXPECT_FALSE(platform().system.GetUserNameA(buffer, size));
  EXPECT_EQ(size, 5u) << "the bytes that are needed";
  ASSERT_TRUE(platform().system.GetUserNameA(buffer, size));
  EXPECT_EQ(size, 3u) << "the letters and the NUL";
  EXPECT_EQ(buffer, Text(u"\u7530\u4E2D\0   ", 6));
  Text domain = blanks(8);
  size = 4;
  EXPECT_FALSE(platform().system.LookupAccountNameA(u"\u7530\u4E2D", 256, domain, size));
  EXPECT_EQ(size, 5u);
  ASSERT_TRUE(platform().system.LookupAccountNameA(u"\u7530\u4E2D", 256, domain, size));
  EXPECT_EQ(size, 2u);
  EXPECT_EQ(beforeNul(domain), u"\u80FD\u767B");
}

TEST_F(SimulatedMachineTest, MachinesLiveSideBySide) {
  ToldPerson someone;
  NoTranscript none;
  SimulatedMachine other(someone, none);
  other.startProgram();
  files().MkDir(u"C:\\only here");
  platform().processes.Sleep(5);
  EXPECT_FALSE(other.disks().exists(u"C:\\only here"));
  EXPECT_EQ(other.clock(), 0u);
  EXPECT_EQ(machine.clock(), 5u);
}

TEST_F(SimulatedMachineTest, ItsDisksWantFullPathsThatAFileCanHave) {
  const Text name(200, u'n');
  for (const Text& path : {Text(), Text(u"name"), Text(u"\\name"), Text(u"\\\\server\\share\\name"),
                           Text(u"C:\\na?me"), u"C:\\" + name + u"\\" + name}) {
    EXPECT_THROW(machine.disks().exists(path), std::invalid_argument) << toUtf8(path);
  }
}

TEST_F(SimulatedMachineTest, HandsOutTheFunctionsThatItsSystemHas) {
  Kernel& kernel = platform().kernel;
  EXPECT_NE(kernel.ProcAddress("user32", "SetWindowLongA"), 0u);
  EXPECT_EQ(kernel.ProcAddress("vba6", "EbMode"), 0u);
}

TEST_F(SimulatedMachineTest, AConversationFailsWhenItsServerHasGone) {
  Dde& dde = platform().dde;
  dde.LinkTopic(u"Progman|progman");
  dde.LinkMode(2);
  EXPECT_EQ(test::raisedBy([&] { dde.LinkExecute(u"[one]"); }), 0);
  machine.settings().services.programManager = false;
  EXPECT_EQ(test::raisedBy([&] { dde.LinkExecute(u"[two]"); }), 282);
  EXPECT_THAT(machine.records().dde, ElementsAre(u"[one]"));
}

TEST_F(SimulatedMachineTest, ANewStartKeepsTheMachineAndDropsTheProcess) {
  files().OpenBinary(1, u"C:\\f", true);
  RegistryKey key = 0;
  platform().registry.RegOpenKeyA(HKEY_LOCAL_MACHINE, u"Software", key);
  EXPECT_NE(test::raisedBy([&] { platform().processes.Shell(u"C:\\none.exe", 1); }), 0);
  EXPECT_EQ(machine.openHandles().files, 1u);
  machine.startProgram();
  EXPECT_EQ(machine.openHandles().files, 0u);
  EXPECT_EQ(machine.openHandles().keys, 0u);
  EXPECT_THAT(machine.records().shell, testing::IsEmpty());
  EXPECT_EQ(test::raisedBy([&] { files().OpenBinary(1, u"C:\\f", true); }), 0);
  EXPECT_EQ(log.of("start").size(), 2u);
}

TEST(SimulatedMachine, HasNoServicesBeforeAProgramRuns) {
  ToldPerson nobody;
  NoTranscript none;
  SimulatedMachine machine(nobody, none);
  EXPECT_THROW(machine.platform(), std::logic_error);
  EXPECT_THROW(machine.hand(), std::logic_error);
}

// ---- what the system tells

TEST_F(SimulatedMachineTest, TellsTheVersionThatIsSet) {
  machine.settings().system.version = {.platform = 2,
                                       .major = 5,
                                       .minor = 2,
                                       .build = 3790,
                                       .csd = u"Service Pack 2",
                                       .suiteMask = 0x80,
                                       .productType = 3};
  OSVERSIONINFO record;
  record.dwOSVersionInfoSize = OSVERSIONINFO::extendedForm;
  ASSERT_TRUE(platform().system.GetVersionExA(record));
  EXPECT_EQ(record.dwMajorVersion, 5u);
  EXPECT_EQ(record.dwMinorVersion, 2u);
  EXPECT_EQ(record.dwBuildNumber, 3790u);
  EXPECT_EQ(record.wSuiteMask, 0x80);
  EXPECT_EQ(record.wProductType, 3);
  EXPECT_EQ(beforeNul(record.szCSDVersion), u"Service Pack 2");
  EXPECT_EQ(record.szCSDVersion.size(), 128u);
  std::uint32_t code = 7;
  EXPECT_FALSE(platform().system.GetProductInfo(6, 0, 0, 0, code));
  EXPECT_EQ(code, 7u);
  machine.settings().system.version.fails = true;
  record.dwMajorVersion = 99;
  EXPECT_FALSE(platform().system.GetVersionExA(record));
  EXPECT_EQ(record.dwMajorVersion, 99u);
}

TEST_F(SimulatedMachineTest, TellsTheUserAndTheDomain) {
  Text domain(256, u'\0');
  std::uint32_t size = 256;
  EXPECT_TRUE(platform().system.LookupAccountNameA(u"BOB", 256, domain, size));
  EXPECT_EQ(beforeNul(domain), u"BOBPC");
  EXPECT_EQ(size, 5u);
  size = 256;
  EXPECT_FALSE(platform().system.LookupAccountNameA(u"alice", 256, domain, size));
  machine.settings().system.domain.reset();
  EXPECT_FALSE(platform().system.LookupAccountNameA(u"bob", 256, domain, size));
  machine.settings().system.user.reset();
  EXPECT_FALSE(platform().system.GetUserNameA(domain, size));
}

TEST_F(SimulatedMachineTest, FoldersThatAreNotThereFail) {
  machine.settings().folders.temp.reset();
  machine.settings().folders.localAppData.reset();
  machine.settings().folders.documents.reset();
  Text buffer = blanks(260);
  EXPECT_EQ(platform().system.GetTempPathA(260, buffer), 0u);
  Guid folder{};
  char16_t* path = nullptr;
  platform().shellFolders.CLSIDFromString(u"{F1B32785-6FBA-4FCF-9D55-7B8E7F157091}", folder);
  EXPECT_NE(platform().shellFolders.SHGetKnownFolderPath(folder, 0, 0, path), 0);
  ItemIdList list = nullptr;
  EXPECT_NE(platform().shellFolders.SHGetSpecialFolderLocation(0, CSIDL_PERSONAL, list), 0);
}

TEST_F(SimulatedMachineTest, OlderSystemsHaveNoKnownFolders) {
  machine.settings().system.version.major = 5;
  Guid folder{};
  char16_t* path = nullptr;
  platform().shellFolders.CLSIDFromString(u"{F1B32785-6FBA-4FCF-9D55-7B8E7F157091}", folder);
  EXPECT_NE(platform().shellFolders.SHGetKnownFolderPath(folder, 0, 0, path), 0);
  EXPECT_EQ(path, nullptr);
}

TEST_F(SimulatedMachineTest, CountsTheMemoryThatWasNotFreed) {
  ItemIdList list = nullptr;
  ASSERT_EQ(platform().shellFolders.SHGetSpecialFolderLocation(0, CSIDL_PROGRAMS, list), 0);
  EXPECT_EQ(machine.unfreedMemory(), 1u);
  platform().shellFolders.CoTaskMemFree(&list);  // not the shell's
  EXPECT_EQ(machine.unfreedMemory(), 1u);
  platform().shellFolders.CoTaskMemFree(list);
  EXPECT_EQ(machine.unfreedMemory(), 0u);
}

TEST_F(SimulatedMachineTest, SettingFoldersCreatesThem) {
  FolderSettings folders = usualFolders(u"alice");
  folders.temp = u"Q:\\Temp\\";  // no such drive
  folders.desktop.reset();
  machine.setFolders(folders);
  EXPECT_TRUE(machine.disks().exists(u"C:\\Users\\alice\\Documents"));
  EXPECT_FALSE(machine.disks().exists(u"C:\\Users\\alice\\Desktop"));
}

// ---- programs

TEST_F(SimulatedMachineTest, FindsTheProgramOfACommandLine) {
  putText(machine.disks(), u"C:\\Some Where\\p.exe", "MZ");
  putText(machine.disks(), u"C:\\Windows\\system32\\tool.exe", "MZ");
  for (const TextView line : {u"C:\\Some Where\\p.exe", u"\"C:\\Some Where\\p.exe\" /x",
                              u"C:\\Some Where\\p.exe /x y", u"C:\\Some Where\\p", u"tool /x"}) {
    EXPECT_EQ(test::raisedBy([&] { platform().processes.Shell(line, 1); }), 0) << toUtf8(line);
  }
  for (const TextView line :
       {u"\"C:\\Some Where\\q.exe\"", u"C:\\Some", u"notool", u"", u"C:\\Windows"}) {
    EXPECT_EQ(test::raisedBy([&] { platform().processes.Shell(line, 1); }), 53) << toUtf8(line);
  }
  EXPECT_EQ(machine.records().shell.size(), 10u);
}

TEST_F(SimulatedMachineTest, ProgramsBehaveAsTheirSettingsSay) {
  putText(machine.disks(), u"C:\\p.exe", "MZ");
  machine.settings().programs[u"c:\\P.exe"] = {.starts = false};
  EXPECT_EQ(test::raisedBy([&] { platform().processes.Shell(u"C:\\p.exe", 1); }), 5);
  machine.settings().programs[u"c:\\P.exe"] = {.opens = false};
  std::int32_t process = platform().processes.Shell(u"C:\\p.exe", 1);
  EXPECT_EQ(platform().processes.OpenProcess(SYNCHRONIZE, false, process), 0u);
  EXPECT_EQ(test::raisedBy([&] { files().OpenBinaryWrite(1, u"C:\\p.exe"); }), 0);
  files().Close(1);
  machine.settings().programs[u"c:\\P.exe"] = {.running = true, .duration = 300};
  process = platform().processes.Shell(u"\"C:\\p.exe\"", 1);
  EXPECT_EQ(test::raisedBy([&] { files().OpenBinaryWrite(1, u"C:\\p.exe"); }), 70);
  EXPECT_EQ(test::raisedBy([&] { files().Kill(u"C:\\p.exe"); }), 75);
  const ProcessHandle handle = platform().processes.OpenProcess(SYNCHRONIZE, false, process);
  EXPECT_EQ(platform().processes.WaitForSingleObject(handle, 100), 258u);
  EXPECT_EQ(machine.clock(), 100u);
  EXPECT_EQ(platform().processes.WaitForSingleObject(handle, INFINITE), 0u);
  EXPECT_EQ(machine.clock(), 300u);
  platform().processes.CloseHandle(handle);
  EXPECT_EQ(platform().processes.WaitForSingleObject(handle, 0), 0xFFFFFFFFu);
}

TEST_F(SimulatedMachineTest, KnowsWhereTheProgramIs) {
  EXPECT_EQ(platform().processes.ownFolder(), u"C:\\Users\\bob\\Downloads");
  EXPECT_EQ(platform().processes.ownName(), u"ZEVSetup");
  machine.settings().installer = u"D:\\setup.v2.exe";
  EXPECT_EQ(platform().processes.ownFolder(), u"D:\\");
  EXPECT_EQ(platform().processes.ownName(), u"setup.v2");
}

// ---- services

TEST_F(SimulatedMachineTest, ShortcutsAreKnownByTheirPath) {
  const auto shell = platform().shortcuts.CreateObject();
  const auto shortcut = shell->CreateShortcut(u"C:\\A.lnk");
  shortcut->TargetPath(u"C:\\p.exe");
  shortcut->Arguments(u" /x");
  shortcut->WindowStyle(3);
  shortcut->IconLocation(u"C:\\p.exe, 0");
  shortcut->Description(u"P");
  shortcut->WorkingDirectory(u"C:\\");
  EXPECT_EQ(machine.shortcut(u"C:\\a.lnk"), std::nullopt);
  shortcut->Save();
  EXPECT_EQ(machine.shortcut(u"c:\\a.LNK"),
            (ShortcutProperties{u"C:\\p.exe", u" /x", 3, u"C:\\p.exe, 0", u"P", u"C:\\"}));
  files().Kill(u"C:\\A.lnk");
  EXPECT_EQ(machine.shortcut(u"C:\\a.lnk"), std::nullopt);
}

TEST_F(SimulatedMachineTest, AShortcutThatCannotBeSavedTellsWhy) {
  machine.disks().put(u"C:\\d", {.directory = true, .deny = Denial{.create = true}});
  const auto shortcut = platform().shortcuts.CreateObject()->CreateShortcut(u"C:\\d\\a.lnk");
  try {
    shortcut->Save();
    FAIL();
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.number(), -2147024891);
    EXPECT_EQ(error.description(), u"Unable to save shortcut \"C:\\d\\a.lnk\".");
    EXPECT_EQ(error.source(), u"WshShortcut.Save");
  }
}

TEST_F(SimulatedMachineTest, ServicesCanBeTakenAway) {
  machine.settings().services = {.shortcuts = false, .programManager = false};
  EXPECT_EQ(test::raisedBy([&] { platform().shortcuts.CreateObject(); }), 429);
  platform().dde.LinkTopic(u"Progman|progman");
  EXPECT_EQ(test::raisedBy([&] { platform().dde.LinkMode(2); }), 282);
  EXPECT_EQ(test::raisedBy([&] { platform().dde.LinkExecute(u"[x]"); }), 282);
  EXPECT_THAT(machine.records().dde, testing::IsEmpty());
}

TEST_F(SimulatedMachineTest, CommandsReachTheProgramManagerDuringAConversation) {
  Dde& dde = platform().dde;
  dde.LinkTopic(u"progman|PROGMAN");
  EXPECT_EQ(test::raisedBy([&] { dde.LinkExecute(u"[early]"); }), 282);
  dde.LinkMode(2);
  dde.LinkExecute(u"[one]");
  dde.LinkMode(0);
  EXPECT_EQ(test::raisedBy([&] { dde.LinkExecute(u"[late]"); }), 282);
  EXPECT_THAT(machine.records().dde, ElementsAre(u"[one]"));
}

TEST_F(SimulatedMachineTest, DrivesAreListedFromTypeTwoOn) {
  machine.disks().setDrive(u'a', {.type = 2});
  machine.disks().setDrive(u'd', {.type = 1});
  machine.disks().setDrive(u'e', {.type = 5, .label = u"DISC"});
  EXPECT_EQ(platform().drives.GetLogicalDrives(), 0b10101u);
  EXPECT_EQ(platform().drives.volumeLabel(u"e:\\"), u"DISC");
  machine.disks().removeDrive(u'C');
  EXPECT_EQ(platform().drives.GetLogicalDrives(), 0b10001u);
  EXPECT_EQ(files().Dir(u"C:\\Windows", 16), u"");
}

}  // namespace
}  // namespace zev::simulated
