// What every binding does about other programs: starting them, shortcuts, DDE.

#include "contract/bench.h"

namespace zev::contract {
namespace {

using ProcessesContract = ContractTest;
using ShortcutsContract = ContractTest;
using DdeContract = ContractTest;

TEST_F(ProcessesContract, StartsAProgramAndWaitsForItsEnd) {
  Processes& processes = platform().processes;
  const std::int32_t process = processes.Shell(bench().program(), 1);
  ASSERT_NE(process, 0);
  const ProcessHandle handle = processes.OpenProcess(SYNCHRONIZE, false, process);
  if (handle == 0) return;  // it may have ended already
  EXPECT_EQ(processes.WaitForSingleObject(handle, INFINITE), 0u);
  processes.CloseHandle(handle);
}

TEST_F(ProcessesContract, StartsAQuotedCommandLineWithArguments) {
  EXPECT_NE(platform().processes.Shell(join(u"\"", bench().program(), u"\" /?"), 1), 0);
}

TEST_F(ProcessesContract, CannotStartWhatIsNotThere) {
  EXPECT_EQ(test::raisedBy([&] { platform().processes.Shell(in(u"none.exe"), 1); }), 53);
}

TEST_F(ProcessesContract, OpensNoProcessThatIsNone) {
  EXPECT_EQ(platform().processes.OpenProcess(SYNCHRONIZE, false, 0x7FFFFFFC), 0u);
}

TEST_F(ProcessesContract, OpensNoFileThatIsNotThere) {
  EXPECT_LE(platform().processes.ShellExecuteA(0, u"", in(u"none"), u"", u"", 1), 32);
}

TEST_F(ProcessesContract, KnowsItsOwnFile) {
  const Text folder = platform().processes.ownFolder();
  EXPECT_TRUE(system().rootExists(folder.substr(0, 3)));
  EXPECT_FALSE(folder.size() > 3 && folder.back() == u'\\');
  EXPECT_FALSE(lowerCase(platform().processes.ownName()).ends_with(u".exe"));
}

TEST_F(ShortcutsContract, SavesAFile) {
  const auto shell = platform().shortcuts.CreateObject();
  const auto shortcut = shell->CreateShortcut(in(u"One.lnk"));
  shortcut->TargetPath(bench().program());
  shortcut->Arguments(u" /x");
  shortcut->WindowStyle(1);
  shortcut->IconLocation(bench().program() + u", 0");
  shortcut->Description(u"One");
  shortcut->WorkingDirectory(bench().folder());
  EXPECT_EQ(files().Dir(in(u"One.lnk"), 38), u"");
  shortcut->Save();
  EXPECT_EQ(files().Dir(in(u"One.lnk"), 38), u"One.lnk");
  EXPECT_GT(files().FileLen(in(u"One.lnk")), 76);
}

TEST_F(ShortcutsContract, SavesNothingInAMissingFolder) {
  const auto shell = platform().shortcuts.CreateObject();
  const auto shortcut = shell->CreateShortcut(in(u"none\\One.lnk"));
  shortcut->TargetPath(bench().program());
  EXPECT_NE(test::raisedBy([&] { shortcut->Save(); }), 0);
}

TEST_F(ShortcutsContract, KnowsShortcutsByTheirExtension) {
  if (bench().isWine()) GTEST_SKIP() << "Wine makes a shortcut of any name";
  const auto shell = platform().shortcuts.CreateObject();
  EXPECT_NE(test::raisedBy([&] { shell->CreateShortcut(in(u"One.txt")); }), 0);
}

TEST_F(ShortcutsContract, KnowsTheDesktop) {
  const auto shell = platform().shortcuts.CreateObject();
  EXPECT_EQ(shell->SpecialFolders(u"Desktop").substr(1, 2), u":\\");
}

TEST_F(ShortcutsContract, KnowsNoFolderOfNoName) {
  if (bench().isWine()) GTEST_SKIP() << "Wine raises an error for a folder that it does not know";
  const auto shell = platform().shortcuts.CreateObject();
  EXPECT_EQ(shell->SpecialFolders(u"NoSuchFolder"), u"");
}

TEST_F(DdeContract, AServerThatIsNotThereDoesNotAnswer) {
  Dde& dde = platform().dde;
  dde.LinkTopic(u"NoSuchService|topic");
  dde.LinkTimeout(1);
  EXPECT_EQ(test::raisedBy([&] { dde.LinkMode(2); }), 282);
  EXPECT_EQ(test::raisedBy([&] { dde.LinkMode(0); }), 0);
}

TEST_F(DdeContract, AProgramManagerTakesCommandsUntilTheConversationEnds) {
  Dde& dde = platform().dde;
  dde.LinkTopic(u"Progman|progman");
  dde.LinkItem(u"");
  EXPECT_EQ(test::raisedBy([&] { dde.LinkExecute(u"[CreateGroup(Contract)]"); }), 282);
  ASSERT_EQ(test::raisedBy([&] { dde.LinkMode(2); }), 0);
  dde.LinkTimeout(100);
  EXPECT_EQ(test::raisedBy([&] { dde.LinkExecute(u"[CreateGroup(Contract)]"); }), 0);
  dde.LinkMode(0);
  EXPECT_EQ(test::raisedBy([&] { dde.LinkExecute(u"[CreateGroup(Contract)]"); }), 282);
}

TEST_F(DdeContract, ANewTopicEndsTheConversation) {
  Dde& dde = platform().dde;
  dde.LinkTopic(u"Progman|progman");
  ASSERT_EQ(test::raisedBy([&] { dde.LinkMode(2); }), 0);
  dde.LinkTopic(u"Progman|progman");
  EXPECT_EQ(test::raisedBy([&] { dde.LinkExecute(u"[CreateGroup(Contract)]"); }), 282);
}

}  // namespace
}  // namespace zev::contract
