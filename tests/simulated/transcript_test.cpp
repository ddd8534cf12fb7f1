#include <gmock/gmock.h>

#include "simulated/bench.h"

namespace zev::simulated {
namespace {

class TranscriptTest : public MachineTest {
 protected:
  std::vector<std::string> lines(std::string_view kind) {
    std::vector<std::string> told;
    for (const Event& event : log.of(kind)) told.push_back(event.dump());
    return told;
  }
};

using testing::ElementsAre;

TEST_F(TranscriptTest, TellsWhatBecomesOfFiles) {
  files().MkDir(u"C:\\d");
  files().OpenBinary(1, u"C:\\d\\f", false);
  files().Put(1, 1, bytes("abc"));
  files().Put(1, 4, bytes("de"));
  files().Close(1);
  files().SetFileAttributesA(u"C:\\d\\f", 0);
  files().Kill(u"C:\\d\\f");
  files().RmDir(u"C:\\d");
  EXPECT_NE(test::raisedBy([&] { files().MkDir(u"C:\\x\\y"); }), 0);
  EXPECT_THAT(lines("file"),
              ElementsAre(R"({"event":"file","op":"mkdir","path":"C:\\d","error":0})",
                          R"({"event":"file","op":"create","path":"C:\\d\\f","error":0})",
                          R"({"event":"file","op":"write","path":"C:\\d\\f","bytes":5,"error":0})",
                          R"({"event":"file","op":"attributes","path":"C:\\d\\f","error":0})",
                          R"({"event":"file","op":"delete","path":"C:\\d\\f","error":0})",
                          R"({"event":"file","op":"rmdir","path":"C:\\d","error":0})",
                          R"({"event":"file","op":"mkdir","path":"C:\\x\\y","error":3})"));
}

TEST_F(TranscriptTest, TellsAFailingWriteAtOnce) {
  DriveSettings settings = *machine.disks().drive(u'C');
  settings.free = 4096;
  machine.disks().setDrive(u'C', settings);
  files().OpenOutput(1, u"C:\\f");
  EXPECT_NE(test::raisedBy([&] { files().Print(1, Text(5000, u'x')); }), 0);
  EXPECT_EQ(lines("file").back(),
            R"({"event":"file","op":"write","path":"C:\\f","bytes":4096,"error":112})");
  files().Close(1);
  EXPECT_EQ(lines("file").size(), 2u);
}

TEST_F(TranscriptTest, TellsWhatIsWrittenIntoTheRegistry) {
  RegistryApi& registry = platform().registry;
  RegistryKey key = 0;
  registry.RegCreateKeyA(HKEY_CURRENT_USER, u"K", key);
  registry.RegSetValueExA(key, u"t", 1, u"abc", 3);
  registry.RegSetValueExA(key, u"n", 4, -1);
  registry.RegDeleteValueA(key, u"t");
  registry.RegCreateKeyA(HKEY_CURRENT_USER, u"K", key);
  registry.RegDeleteKeyA(HKEY_CURRENT_USER, u"K");
  EXPECT_THAT(
      lines("registry"),
      ElementsAre(
          R"({"event":"registry","op":"create","hive":"HKEY_CURRENT_USER","key":"K","error":0})",
          R"({"event":"registry","op":"set","hive":"HKEY_CURRENT_USER","key":"K","name":"t",)"
          R"("type":1,"value":"abc","error":0})",
          R"({"event":"registry","op":"set","hive":"HKEY_CURRENT_USER","key":"K","name":"n",)"
          R"("type":4,"value":4294967295,"error":0})",
          R"({"event":"registry","op":"delete","hive":"HKEY_CURRENT_USER","key":"K","name":"t",)"
          R"("error":0})",
          R"({"event":"registry","op":"deleteKey","hive":"HKEY_CURRENT_USER","key":"K",)"
          R"("error":0})"));
}

TEST_F(TranscriptTest, TellsOfProgramsAndTime) {
  machine.settings().programs[u"C:\\p.exe"] = {};
  const std::int32_t process = platform().processes.Shell(u"C:\\p.exe /x", 1);
  const ProcessHandle handle = platform().processes.OpenProcess(SYNCHRONIZE, false, process);
  platform().processes.WaitForSingleObject(handle, INFINITE);
  platform().processes.Sleep(500);
  platform().processes.ShellExecuteA(0, u"", u"C:\\Windows", u"", u"C:", 1);
  EXPECT_NE(test::raisedBy([&] { platform().processes.Shell(u"C:\\none.exe", 2); }), 0);
  EXPECT_THAT(lines("shell"),
              ElementsAre(R"({"event":"shell","command":"C:\\p.exe /x","style":1,"error":0})",
                          R"({"event":"shell","command":"C:\\none.exe","style":2,"error":53})"));
  EXPECT_THAT(lines("wait"), ElementsAre(R"({"event":"wait","command":"C:\\p.exe /x"})"));
  EXPECT_THAT(lines("sleep"), ElementsAre(R"({"event":"sleep","ms":500})"));
  EXPECT_THAT(lines("open"), ElementsAre(R"({"event":"open","path":"C:\\Windows"})"));
}

TEST_F(TranscriptTest, TellsOfShortcutsAndCommands) {
  const auto shortcut = platform().shortcuts.CreateObject()->CreateShortcut(u"C:\\a.lnk");
  shortcut->TargetPath(u"C:\\p.exe");
  shortcut->Description(u"P");
  shortcut->Save();
  platform().dde.LinkTopic(u"Progman|progman");
  platform().dde.LinkMode(2);
  platform().dde.LinkExecute(u"[CreateGroup(P)]");
  EXPECT_THAT(lines("shortcut"),
              ElementsAre(R"({"event":"shortcut","path":"C:\\a.lnk","properties":{)"
                          R"("TargetPath":"C:\\p.exe","Arguments":"","WindowStyle":1,)"
                          R"("IconLocation":",0","Description":"P","WorkingDirectory":""}})"));
  EXPECT_THAT(
      lines("dde"),
      ElementsAre(R"({"event":"dde","topic":"Progman|progman","command":"[CreateGroup(P)]"})"));
}

TEST_F(TranscriptTest, TellsOfBoxesWithTheirAnswers) {
  person.answers = {BoxAnswer::Yes};
  person.inputs = {u"New"};
  EXPECT_EQ(platform().dialogs.MsgBox(u"Sure?", 292, u"ZEV"), BoxAnswer::Yes);
  EXPECT_EQ(platform().dialogs.MsgBox(u"Sure?", 292, u"ZEV"), BoxAnswer::No);
  EXPECT_EQ(platform().dialogs.InputBox(u"Name", u"Folder", u""), u"New");
  EXPECT_THAT(lines("box"),
              ElementsAre(R"({"event":"box","text":"Sure?","title":"ZEV","style":292,)"
                          R"("answer":"yes"})",
                          R"({"event":"box","text":"Sure?","title":"ZEV","style":292,)"
                          R"("answer":"no"})"));
  EXPECT_THAT(lines("input"),
              ElementsAre(R"({"event":"input","prompt":"Name","title":"Folder","answer":"New"})"));
}

struct DefaultRow {
  std::int32_t style;
  BoxAnswer answer;
};

TEST(Person, TakesTheDefaultButtonOfTheStyle) {
  constexpr DefaultRow rows[] = {
      {0, BoxAnswer::OK},    {36, BoxAnswer::Yes},     {48, BoxAnswer::OK},
      {64, BoxAnswer::OK},   {292, BoxAnswer::No},     {305, BoxAnswer::Cancel},
      {308, BoxAnswer::No},  {4144, BoxAnswer::OK},    {4388, BoxAnswer::No},
      {2, BoxAnswer::Abort}, {515, BoxAnswer::Cancel}, {256, BoxAnswer::OK},
      {5, BoxAnswer::Retry},
  };
  for (const DefaultRow& row : rows) EXPECT_EQ(defaultAnswer(row.style), row.answer) << row.style;
  EXPECT_TRUE(hasButton(36, BoxAnswer::No));
  EXPECT_FALSE(hasButton(36, BoxAnswer::Cancel));
}

TEST(TranscriptLog, KeepsCallsAndRefreshesOnlyOnDemand) {
  const TranscriptLog usual;
  const TranscriptLog whole(true);
  for (const char* kind : {"call", "refresh"}) {
    EXPECT_FALSE(usual.wants(kind)) << kind;
    EXPECT_TRUE(whole.wants(kind)) << kind;
  }
  EXPECT_TRUE(usual.wants("set"));
}

TEST_F(TranscriptTest, CallsAreMadeOnlyWhenWanted) {
  TranscriptLog quiet;
  SimulatedMachine other(person, quiet);
  other.startProgram();
  other.platform().files.MkDir(u"C:\\a");
  EXPECT_TRUE(quiet.of("call").empty());
  EXPECT_EQ(quiet.of("file").size(), 1u);
  EXPECT_EQ(quiet.of("start").size(), 1u);
}

}  // namespace
}  // namespace zev::simulated
