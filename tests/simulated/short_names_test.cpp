#include <gmock/gmock.h>

#include "simulated/bench.h"
#include "simulated/put_text.h"

namespace zev::simulated {
namespace {

using testing::ElementsAre;

class ShortNamesTest : public MachineTest {
 protected:
  /// The short path of an entry that is laid for it.
  std::string shortOf(TextView path) {
    putText(machine.disks(), path, "x");
    return toUtf8(machine.disks().shortPath(path).value_or(u"(none)"));
  }

  void keepNoShortNames() {
    DriveSettings drive = *machine.disks().drive(u'C');
    drive.shortNames = false;
    machine.disks().setDrive(u'C', drive);
  }

  std::uint32_t attributes(TextView path) {
    std::uint32_t found = 0;
    return system().GetFileAttributesA(path, found) == 0 ? found : 0;
  }
};

struct ShortNameRow {
  TextView name;
  const char* shortName;
};

TEST_F(ShortNamesTest, AreMadeOfTheBeginningOfTheName) {
  constexpr ShortNameRow rows[] = {
      {u"Users", "Users"},
      {u"README.TXT", "README.TXT"},
      {u"readme.txt", "readme.txt"},
      {u"a~1", "a~1"},
      {u"Program Files", "PROGRA~1"},
      {u"longextension.html", "LONGEX~1.HTM"},
      {u"a.html", "A~1.HTM"},
      {u"two.dots.txt", "TWODOT~1.TXT"},
      {u".profile", "PROFIL~1"},
      {u"a b", "AB~1"},
      {u"a+b;c.t,t", "A_B_C~1.T_T"},
      {u"\u65E5\u672C\u8A9E", "___~1"},
      {u"\u0423\u0441\u0442\u0430\u043D\u043E\u0432\u043A\u0430.exe", "______~1.EXE"},
      {u"\u00DCber.\u00E4", "_BER~1._"},
  };
  for (const ShortNameRow& row : rows) {
    EXPECT_EQ(shortOf(join(u"C:\\n\\", row.name)), std::string("C:\\n\\") + row.shortName);
    machine.disks().remove(u"C:\\n");
  }
}

TEST_F(ShortNamesTest, CountOnWhereAnotherIsTaken) {
  EXPECT_EQ(shortOf(u"C:\\n\\Program Files"), "C:\\n\\PROGRA~1");
  EXPECT_EQ(shortOf(u"C:\\n\\Program Data"), "C:\\n\\PROGRA~2");
  EXPECT_EQ(shortOf(u"C:\\n\\progra~3"), "C:\\n\\progra~3");
  EXPECT_EQ(shortOf(u"C:\\n\\Programs of mine"), "C:\\n\\PROGRA~4");
  for (int number = 5; number < 10; ++number) {
    shortOf(join(u"C:\\n\\Program number ", decimal(number)));
  }
  EXPECT_EQ(shortOf(u"C:\\n\\Program number 10"), "C:\\n\\PROGR~10");
}

TEST_F(ShortNamesTest, StayWhenOthersComeAndGo) {
  EXPECT_EQ(shortOf(u"C:\\n\\Program Files"), "C:\\n\\PROGRA~1");
  EXPECT_EQ(shortOf(u"C:\\n\\Program Aims"), "C:\\n\\PROGRA~2");
  machine.disks().remove(u"C:\\n\\Program Files");
  EXPECT_EQ(shortOf(u"C:\\n\\Program Aims"), "C:\\n\\PROGRA~2");
  EXPECT_EQ(toUtf8(*machine.disks().shortPath(u"c:\\N\\PROGRAM AIMS")), "C:\\N\\PROGRA~2");
}

TEST_F(ShortNamesTest, MakeAPathOfEveryFolder) {
  putText(machine.disks(), u"C:\\First folder\\Second folder\\file.text", "x");
  EXPECT_EQ(machine.disks().shortPath(u"C:\\First folder\\Second folder\\file.text"),
            u"C:\\FIRSTF~1\\SECOND~1\\FILE~1.TEX");
  EXPECT_EQ(machine.disks().shortPath(u"C:\\First folder\\"), u"C:\\FIRSTF~1\\");
  EXPECT_EQ(machine.disks().shortPath(u"C:\\"), u"C:\\");
}

TEST_F(ShortNamesTest, AreNotThereWithoutAnEntryOrOnADriveThatKeepsNone) {
  putText(machine.disks(), u"C:\\First folder\\x", "x");
  EXPECT_EQ(machine.disks().shortPath(u"C:\\First folder\\none"), std::nullopt);
  EXPECT_EQ(machine.disks().shortPath(u"Q:\\First folder"), std::nullopt);
  EXPECT_EQ(machine.disks().shortPath(u""), std::nullopt);
  EXPECT_NE(attributes(u"C:\\FIRSTF~1"), 0u);
  keepNoShortNames();
  EXPECT_EQ(machine.disks().shortPath(u"C:\\First folder"), std::nullopt);
  EXPECT_EQ(attributes(u"C:\\FIRSTF~1"), 0u);
}

TEST_F(ShortNamesTest, LeadCallsToTheEntry) {
  putText(machine.disks(), u"C:\\First folder\\some file.text", "12345");
  EXPECT_EQ(files().FileLen(u"C:\\firstf~1\\SOMEFI~1.TEX"), 5);
  EXPECT_EQ(files().Dir(u"C:\\FIRSTF~1", dir_mask::directories), u"First folder");
  EXPECT_EQ(files().Dir(u"C:\\FIRSTF~1\\*.text", dir_mask::normal), u"some file.text");
  files().MkDir(u"C:\\FIRSTF~1\\New");
  EXPECT_THAT(*machine.disks().names(u"C:\\First folder"), ElementsAre(u"New", u"some file.text"));
  files().Kill(u"C:\\FIRSTF~1\\SOMEFI~1.TEX");
  files().RmDir(u"C:\\FIRSTF~1\\NEW");
  files().RmDir(u"C:\\FIRSTF~1");
  EXPECT_FALSE(machine.disks().exists(u"C:\\First folder"));
}

TEST_F(ShortNamesTest, GiveWayToANameThatIsWrittenSo) {
  putText(machine.disks(), u"C:\\First folder\\x", "long");
  EXPECT_NE(attributes(u"C:\\FIRSTF~1\\x"), 0u);
  putText(machine.disks(), u"C:\\FIRSTF~1\\y", "itself");
  EXPECT_NE(attributes(u"C:\\FIRSTF~1\\y"), 0u);
  EXPECT_EQ(attributes(u"C:\\FIRSTF~1\\x"), 0u);
}

TEST_F(ShortNamesTest, AreThereOnADriveOfTheHostToo) {
  const HostFolder host;
  host.write(u8"\u65E5\u672C/x.txt", "x");
  DriveSettings drive;
  drive.host = host.path();
  machine.disks().setDrive(u'D', drive);
  EXPECT_EQ(machine.disks().shortPath(u"D:\\\u65E5\u672C\\x.txt"), u"D:\\__~1\\x.txt");
  EXPECT_EQ(files().FileLen(u"D:\\__~1\\X.TXT"), 1);
}

// ---- what the system gives

TEST_F(ShortNamesTest, StandForWhatTheCodePageCannotWrite) {
  machine.disks().putDirectory(u"C:\\Temp of \u65E5\u672C");
  machine.settings().folders.temp = u"C:\\Temp of \u65E5\u672C\\";
  Text buffer = blanks(145);
  EXPECT_EQ(platform().system.GetTempPathA(145, buffer), 12u);
  EXPECT_EQ(beforeNul(buffer), u"C:\\TEMPOF~1\\");
  machine.settings().system.codePage = 932;
  EXPECT_EQ(platform().system.GetTempPathA(145, buffer), 14u);
  EXPECT_EQ(beforeNul(buffer), u"C:\\Temp of \u65E5\u672C\\");
}

TEST_F(ShortNamesTest, StandForTheProgramsOwnFile) {
  machine.settings().installer = u"C:\\Loads of \u65E5\u672C\\\u65E5\u672C.exe";
  EXPECT_EQ(platform().processes.ownFolder(), u"C:\\Loads of ??");
  EXPECT_EQ(platform().processes.ownName(), u"??");
  putText(machine.disks(), machine.settings().installer, "MZ");
  EXPECT_EQ(platform().processes.ownFolder(), u"C:\\LOADSO~1");
  EXPECT_EQ(platform().processes.ownName(), u"__~1");
}

TEST_F(ShortNamesTest, StandForTheDesktopAndItsShortcuts) {
  machine.disks().putDirectory(u"C:\\\u65E5\u672C");
  machine.settings().folders.desktop = u"C:\\\u65E5\u672C";
  const auto shell = platform().shortcuts.CreateObject();
  const Text desktop = shell->SpecialFolders(u"Desktop");
  EXPECT_EQ(desktop, u"C:\\__~1");
  const auto shortcut = shell->CreateShortcut(desktop + u"\\One.lnk");
  shortcut->Arguments(u"1");
  shortcut->Save();
  EXPECT_EQ(machine.shortcut(u"C:\\\u65E5\u672C\\One.lnk")->Arguments, u"1");
}

}  // namespace
}  // namespace zev::simulated
