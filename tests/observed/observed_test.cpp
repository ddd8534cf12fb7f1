#include <gmock/gmock.h>

#include <algorithm>
#include <set>

#include "platform/operations.h"
#include "simulated/bench.h"
#include "simulated/put_text.h"

namespace zev::observed {
namespace {

using simulated::Event;
using test::raisedBy;
using Effect = Fault::Effect;

class InstrumentationTest : public simulated::MachineTest {
 protected:
  void fault(std::string call, Effect effect, std::int32_t code,
             std::optional<std::uint32_t> nth = std::nullopt, Text match = {}) {
    machine.setFaults({{std::move(call), nth, std::move(match), effect, code}});
  }
};

TEST_F(InstrumentationTest, CountsCallsByNameAndAlias) {
  files().OpenOutput(1, u"C:\\f");
  files().Print(1, u"line");
  files().Close(1);
  files().OpenInput(1, u"C:\\f");
  files().Close(1);
  EXPECT_EQ(machine.calls("OpenOutput"), 1u);
  EXPECT_EQ(machine.calls("Open"), 2u);
  EXPECT_EQ(machine.calls("Close"), 2u);
  EXPECT_EQ(machine.calls("MkDir"), 0u);
  machine.startProgram();
  EXPECT_EQ(machine.calls("Open"), 0u);
}

TEST_F(InstrumentationTest, CountsTextsThatArePutAsPutToo) {
  files().OpenBinary(1, u"C:\\f", false);
  files().PutText(1, 1, u"text");
  files().Put(1, 5, bytes("x"));
  EXPECT_EQ(machine.calls("Put"), 2u);
  EXPECT_EQ(machine.calls("PutText"), 1u);
  fault("Put", Effect::Error, 61);
  EXPECT_EQ(raisedBy([&] { files().PutText(1, 1, u"text"); }), 61);
}

TEST_F(InstrumentationTest, CountsCallsThatFailToo) {
  EXPECT_NE(raisedBy([&] { files().Kill(u"C:\\none"); }), 0);
  EXPECT_EQ(machine.calls("Kill"), 1u);
}

TEST_F(InstrumentationTest, StrikesTheNthCallOnly) {
  fault("MkDir", Effect::Error, 5, 2);
  EXPECT_EQ(raisedBy([&] { files().MkDir(u"C:\\a"); }), 0);
  EXPECT_EQ(raisedBy([&] { files().MkDir(u"C:\\b"); }), 75);
  EXPECT_EQ(raisedBy([&] { files().MkDir(u"C:\\c"); }), 0);
  EXPECT_FALSE(machine.disks().exists(u"C:\\b"));
}

TEST_F(InstrumentationTest, CountsOnlyCallsThatMatch) {
  fault("MkDir", Effect::Error, 3, 2, u"zev");
  EXPECT_EQ(raisedBy([&] { files().MkDir(u"C:\\ZEV1"); }), 0);
  EXPECT_EQ(raisedBy([&] { files().MkDir(u"C:\\other"); }), 0);
  EXPECT_EQ(raisedBy([&] { files().MkDir(u"C:\\Zev2"); }), 76);
}

TEST_F(InstrumentationTest, MatchesFilesKnownByNumberByTheirPathAsWell) {
  fault("Print", Effect::Error, 112, std::nullopt, u"second");
  files().OpenOutput(1, u"C:\\first.txt");
  files().OpenOutput(2, u"C:\\second.txt");
  EXPECT_EQ(raisedBy([&] { files().Print(2, u"x"); }), 61);
  EXPECT_EQ(raisedBy([&] { files().Print(1, u"a second line"); }), 61);
  EXPECT_EQ(raisedBy([&] { files().Print(1, u"x"); }), 0);
  fault("Put", Effect::Error, 112, std::nullopt, u"bin");
  files().OpenBinary(3, u"C:\\BIN", false);
  files().OpenBinary(4, u"C:\\other", false);
  EXPECT_EQ(raisedBy([&] { files().Put(4, 1, bytes("x")); }), 0);
  EXPECT_EQ(raisedBy([&] { files().Put(3, 1, bytes("x")); }), 61);
}

TEST_F(InstrumentationTest, SystemNumbersBecomeTheRunTimesAndItsOwnStay) {
  fault("Open", Effect::Error, 32);
  EXPECT_EQ(raisedBy([&] { files().OpenBinary(1, u"C:\\f", false); }), 70);
  fault("Open", Effect::Error, 75);
  EXPECT_EQ(raisedBy([&] { files().OpenOutput(1, u"C:\\f"); }), 75);
  fault("Open", Effect::Error, 53);  // a number of the system's as well
  EXPECT_EQ(raisedBy([&] { files().OpenInput(1, u"C:\\Windows"); }), 53);
  fault("Open", Effect::Error, 5);  // below the file errors: the system's
  EXPECT_EQ(raisedBy([&] { files().OpenOutput(1, u"C:\\f"); }), 75);
  fault("Open", Effect::Error, 1117);
  EXPECT_EQ(raisedBy([&] { files().OpenOutput(1, u"C:\\f"); }), 57);
  EXPECT_FALSE(machine.disks().exists(u"C:\\f"));
}

TEST_F(InstrumentationTest, RaisesRunTimeErrorsAnywhere) {
  fault("GetDriveTypeA", Effect::Raise, 6);
  EXPECT_EQ(raisedBy([&] { platform().drives.GetDriveTypeA(u"C:\\"); }), 6);
  fault("DoEvents", Effect::Raise, 28);
  EXPECT_EQ(raisedBy([&] { platform().application.DoEvents(); }), 28);
}

TEST_F(InstrumentationTest, IgnoredCallsReportSuccessAndDoNothing) {
  fault("MkDir", Effect::Ignore, 0);
  EXPECT_EQ(raisedBy([&] { files().MkDir(u"C:\\a"); }), 0);
  EXPECT_FALSE(machine.disks().exists(u"C:\\a"));
  fault("RegSetValueExA", Effect::Ignore, 0);
  EXPECT_EQ(platform().registry.RegSetValueExA(HKEY_CURRENT_USER, u"x", 4, 1), 0u);
  EXPECT_FALSE(machine.registry().value(HKEY_CURRENT_USER, u"", u"x"));
  fault("SetFileAttributesA", Effect::Ignore, 0);
  EXPECT_TRUE(files().SetFileAttributesA(u"C:\\none", 0));
}

TEST_F(InstrumentationTest, EachKindOfCallFailsInItsOwnShape) {
  Text buffer = blanks(300);
  std::uint32_t size = 300;
  RegistryKey key = 7;
  fault("RegOpenKeyA", Effect::Error, 5);
  EXPECT_EQ(platform().registry.RegOpenKeyA(HKEY_LOCAL_MACHINE, u"Software", key), 5u);
  EXPECT_EQ(key, 0u);
  fault("GetTempPathA", Effect::Error, 5);
  EXPECT_EQ(platform().system.GetTempPathA(300, buffer), 0u);
  fault("GetUserNameA", Effect::Error, 5);
  EXPECT_FALSE(platform().system.GetUserNameA(buffer, size));
  fault("GetDriveTypeA", Effect::Error, 4);
  EXPECT_EQ(platform().drives.GetDriveTypeA(u"C:\\"), 4u);
  fault("SetFileAttributesA", Effect::Error, 5);
  EXPECT_FALSE(files().SetFileAttributesA(u"C:\\Windows", 0));
  fault("Dir", Effect::Error, 5);
  EXPECT_EQ(files().Dir(u"C:\\Windows", 16), u"");
  fault("GetWindow", Effect::Error, 1400);
  EXPECT_EQ(platform().windows.GetWindow(1, 0), 0u);
  fault("Shell", Effect::Error, 2);
  EXPECT_EQ(raisedBy([&] { platform().processes.Shell(u"C:\\x.exe", 1); }), 53);
  fault("Shell", Effect::Error, 53);
  EXPECT_EQ(raisedBy([&] { platform().processes.Shell(u"C:\\x.exe", 1); }), 53);
  fault("Shell", Effect::Error, 8);
  EXPECT_EQ(raisedBy([&] { platform().processes.Shell(u"C:\\x.exe", 1); }), 5);
  fault("CreateObject", Effect::Error, 5);
  EXPECT_EQ(raisedBy([&] { platform().shortcuts.CreateObject(); }), 429);
  fault("CreateObject", Effect::Error, 70);
  EXPECT_EQ(raisedBy([&] { platform().shortcuts.CreateObject(); }), 70);
  fault("LinkExecute", Effect::Error, 5);
  EXPECT_EQ(raisedBy([&] { platform().dde.LinkExecute(u"x"); }), 282);
  ItemIdList list = &buffer;
  fault("SHGetSpecialFolderLocation", Effect::Error, -2147467259);
  EXPECT_EQ(platform().shellFolders.SHGetSpecialFolderLocation(0, 2, list), -2147467259);
  EXPECT_EQ(list, nullptr);
}

TEST_F(InstrumentationTest, WhatAFaultKeepsFromStartingIsOnRecord) {
  fault("Shell", Effect::Raise, 75);
  EXPECT_EQ(raisedBy([&] { platform().processes.Shell(u"a.exe", 1); }), 75);
  fault("Shell", Effect::Ignore, 0);
  EXPECT_EQ(raisedBy([&] { platform().processes.Shell(u"b.exe", 2); }), 0);
  machine.setFaults({});
  EXPECT_EQ(raisedBy([&] { platform().processes.Shell(u"c.exe", 3); }), 53);
  const Text ownFolder = u"C:\\Users\\bob\\Downloads";
  EXPECT_EQ(machine.records().shell,
            (std::vector<simulated::Start>{
                {u"a.exe", 1, ownFolder}, {u"b.exe", 2, ownFolder}, {u"c.exe", 3, ownFolder}}));
  const std::vector<Event> events = log.of("shell");
  ASSERT_EQ(events.size(), 3u);
  EXPECT_EQ(events[0].dump(), R"({"event":"shell","command":"a.exe","style":1,"error":75})");
  EXPECT_EQ(events[1].dump(), R"({"event":"shell","command":"b.exe","style":2,"error":0})");
  EXPECT_EQ(events[2].dump(), R"({"event":"shell","command":"c.exe","style":3,"error":53})");
}

TEST_F(InstrumentationTest, LzFailuresHaveAReasonAndAResult) {
  putText(machine.disks(), u"C:\\a.tx_", "plain");
  OFSTRUCT record;
  fault("LZOpenFileA", Effect::Error, 4, 2);
  const std::int32_t source = platform().lz.LZOpenFileA(u"C:\\a.tx_", record, OF_READ);
  ASSERT_GE(source, 0);
  EXPECT_LT(platform().lz.LZOpenFileA(u"C:\\b", record, OF_CREATE), 0);
  EXPECT_EQ(record.nErrCode, 4);
  const std::int32_t target = platform().lz.LZOpenFileA(u"C:\\b", record, OF_CREATE);
  fault("LZCopy", Effect::Error, -4, 1, u"a.tx_");
  EXPECT_EQ(platform().lz.LZCopy(source, target), -4);
  EXPECT_EQ(platform().lz.LZCopy(source, target), 5);
  platform().lz.LZClose(source);
  platform().lz.LZClose(target);
  EXPECT_EQ(content(u"C:\\b"), "plain");
}

TEST_F(InstrumentationTest, ShortcutsFailWithTheNumbersOfAutomation) {
  const auto shell = platform().shortcuts.CreateObject();
  const auto shortcut = shell->CreateShortcut(u"C:\\a.lnk");
  fault("Save", Effect::Error, 5, 1, u"A.LNK");
  EXPECT_EQ(raisedBy([&] { shortcut->Save(); }), -2147024891);
  EXPECT_EQ(machine.shortcut(u"C:\\a.lnk"), std::nullopt);
  EXPECT_EQ(raisedBy([&] { shortcut->Save(); }), 0);
  fault("CreateShortcut", Effect::Error, 5);
  EXPECT_EQ(raisedBy([&] { shell->CreateShortcut(u"C:\\b.lnk"); }), 440);
}

TEST_F(InstrumentationTest, CallsAreToldWithArgumentsAndResult) {
  files().MkDir(u"C:\\a");
  EXPECT_NE(raisedBy([&] { files().MkDir(u"C:\\a"); }), 0);
  platform().drives.GetDriveTypeA(u"C:\\");
  const std::vector<Event> calls = log.of("call");
  ASSERT_EQ(calls.size(), 3u);
  EXPECT_EQ(calls[0].dump(),
            R"({"event":"call","name":"MkDir","arguments":["C:\\a"],"result":null})");
  EXPECT_EQ(calls[1]["result"].dump(), R"({"raised":75})");
  EXPECT_EQ(calls[2].dump(),
            R"({"event":"call","name":"GetDriveTypeA","arguments":["C:\\"],"result":3})");
}

TEST_F(InstrumentationTest, NamesOfOperationsMatchInAnyLetterCase) {
  fault("mkdir", Effect::Error, 70);
  EXPECT_EQ(raisedBy([&] { files().MkDir(u"C:\\a"); }), 70);
  EXPECT_EQ(machine.calls("MKDIR"), 1u);
}

TEST_F(InstrumentationTest, AFaultOfNoOperationIsRefusedAndTheOthersStay) {
  fault("MkDir", Effect::Error, 70);
  EXPECT_THROW(fault("MakeDir", Effect::Error, 70), std::invalid_argument);
  EXPECT_EQ(raisedBy([&] { files().MkDir(u"C:\\a"); }), 70);
}

TEST(Operations, AreSortedAndNamedOnce) {
  const auto names = operationNames();
  EXPECT_TRUE(std::is_sorted(names.begin(), names.end(), [](auto first, auto second) {
    return lowerCase(fromUtf8(first)) < lowerCase(fromUtf8(second));
  }));
  EXPECT_EQ(std::set(names.begin(), names.end()).size(), names.size());
  EXPECT_EQ(findOperation("lof"), "LOF");
  EXPECT_EQ(findOperation("Lo"), std::nullopt);
}

TEST_F(InstrumentationTest, FaultsCountOnOverANewStart) {
  fault("MkDir", Effect::Error, 5, 2);
  files().MkDir(u"C:\\a");
  machine.startProgram();
  EXPECT_EQ(raisedBy([&] { files().MkDir(u"C:\\b"); }), 75);
}

}  // namespace
}  // namespace zev::observed
