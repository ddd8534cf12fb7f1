#include "system/registry_entries.h"

#include <gtest/gtest.h>

#include <utility>

#include "runtime/error.h"
#include "system/watched_machine.h"

namespace zev {
namespace {

using simulated::Fault;
using simulated::RegistryValue;
using test::Row;
using test::Table;
using Lines = std::vector<std::string>;

constexpr TextView extension = u".zrd";
constexpr TextView programId = u"ZEV.ReelDeskProject";
const std::string status = "Status | '.zrd' file type registry...";

class FileTypes : public WatchedMachine, public testing::Test {
 protected:
  void run() {
    FileType(*registry, globals(), program->platform.dialogs, *phrases, report).registerType();
  }
  void own(TextView text) {
    machine.registry().setValue(HKEY_CLASSES_ROOT, extension, u"", RegistryValue::ofText(text));
  }
  bool written() {
    for (const Row& row : table) {
      const std::string found = valueOf(HKEY_CLASSES_ROOT, row.text("key"), u"");
      if (found != filled(row.quoted("contents"))) return false;
    }
    return true;
  }
  bool untouched(const std::string& owner) {
    return valueOf(HKEY_CLASSES_ROOT, extension, u"") == owner &&
           machine.registry().find(HKEY_CLASSES_ROOT, programId) == nullptr;
  }
  Lines steps() { return trace({"RunStep", "Status", "MsgBox"}); }

  Table table = Table::read("file_type.tsv");
};

std::string question() {
  const Table boxes = Table::read("boxes.tsv");
  const Row& row = boxes.row("box", "association.question");
  return "MsgBox | " + row.quoted("text") + " | " + std::to_string(row.number("style")) + " | " +
         row.quoted("title");
}

TEST_F(FileTypes, WritesItsTableInOrderEachKeyMadeFirst) {
  run();
  Lines expected = {"RunStep | 156", status, "RunStep | 157", "RunStep | 158"};
  for (const Row& row : table) {
    const std::string made = "RegCreateKeyA | 2147483648 | " + row.quoted("key");
    const std::string contents = filled(row.quoted("contents"));
    expected.push_back(made);
    expected.push_back(made);
    expected.push_back("RegSetValueExA |  | 1 | " + contents + " | " +
                       std::to_string(contents.size()));
  }
  EXPECT_EQ(trace({"RunStep", "Status", "MsgBox", "RegCreateKeyA", "RegSetValueExA"}), expected);
  EXPECT_TRUE(written());
}

TEST_F(FileTypes, ListsTheTypesInTheFirstStepAndReadsTheOwnerInTheSecond) {
  own(u"Other.Editor");
  run();
  const Lines expected = {"RunStep | 156",
                          status,
                          "RegOpenKeyA | 2147483648 | ",
                          "RunStep | 157",
                          "RegOpenKeyA | 2147483648 | .zrd",
                          question(),
                          "RunStep | 158"};
  EXPECT_EQ(trace({"RunStep", "Status", "MsgBox", "RegOpenKeyA"}), expected);
}

TEST_F(FileTypes, AsksNobodyForItsOwnType) {
  own(programId);
  run();
  EXPECT_TRUE(person.boxes.empty());
  EXPECT_TRUE(written());
}

TEST_F(FileTypes, AsksForEveryOtherOwnerOnce) {
  for (const TextView owner :
       {TextView(u"Other.Editor"), TextView(u""), TextView(u" ZEV.ReelDeskProject"),
        TextView(u"ZEV.ReelDeskProject "), TextView(u"zev.reeldeskproject")}) {
    person.boxes.clear();
    own(owner);
    run();
    ASSERT_EQ(person.boxes.size(), 1u) << toUtf8(owner);
    EXPECT_TRUE(written());
  }
}

TEST_F(FileTypes, OnlyNoLeavesTheTypeToTheOther) {
  for (const BoxAnswer answer : {BoxAnswer::OK, BoxAnswer::Cancel, BoxAnswer::Abort,
                                 BoxAnswer::Retry, BoxAnswer::Ignore, BoxAnswer::Yes}) {
    machine.registry().removeKey(HKEY_CLASSES_ROOT, programId);
    own(u"Other.Editor");
    person.reply = answer;
    run();
    EXPECT_TRUE(written()) << static_cast<std::int32_t>(answer);
  }
  machine.registry().removeKey(HKEY_CLASSES_ROOT, programId);
  own(u"Other.Editor");
  person.reply = BoxAnswer::No;
  run();
  EXPECT_TRUE(untouched("Other.Editor"));
}

TEST_F(FileTypes, NoEndsInTheStepOfTheQuestion) {
  own(u"Other.Editor");
  person.reply = BoxAnswer::No;
  run();
  EXPECT_EQ(steps(), (Lines{"RunStep | 156", status, "RunStep | 157", question()}));
  EXPECT_EQ(machine.calls("RegSetValueExA"), 0u);
  EXPECT_EQ(machine.calls("RegCreateKeyA"), 0u);
}

TEST_F(FileTypes, AKeyOfOtherCaseDoesNotCount) {
  for (const TextView name : {TextView(u".ZRD"), TextView(u".Zrd"), TextView(u".zrD")}) {
    machine.registry().removeKey(HKEY_CLASSES_ROOT, extension);
    machine.registry().setValue(HKEY_CLASSES_ROOT, name, u"",
                                RegistryValue::ofText(u"Other.Editor"));
    run();
    EXPECT_TRUE(written());
  }
  EXPECT_TRUE(person.boxes.empty());
}

/// Lays types until there are `count`; those whose names begin with "+" come before all others.
void fill(simulated::SimulatedMachine& machine, TextView prefix, int count) {
  for (int each = 0; each < count; ++each) {
    machine.registry().createKey(HKEY_CLASSES_ROOT, join(prefix, decimal(each)));
  }
}

TEST_F(FileTypes, IsFoundAtBothEndsOfAFullList) {
  for (const TextView prefix : {TextView(u"+"), TextView(u"z")}) {
    machine.registry().removeKey(HKEY_LOCAL_MACHINE, u"Software\\Classes");
    own(u"Other.Editor");
    fill(machine, prefix, 1023);
    const KeyList list = registry->EnumRegKeys(HKEY_CLASSES_ROOT, u"");
    const auto& names = std::get<std::vector<Text>>(list);
    ASSERT_EQ(names.size(), 1024u);
    ASSERT_EQ(prefix == u"+" ? names.back() : names.front(), extension);
    person.boxes.clear();
    person.reply = BoxAnswer::No;
    run();
    EXPECT_EQ(person.boxes.size(), 1u) << toUtf8(prefix);
    EXPECT_TRUE(untouched("Other.Editor"));
  }
}

TEST_F(FileTypes, IsNotFoundWhereTheListIsGivenUp) {
  own(u"Other.Editor");
  machine.registry().removeKey(HKEY_CLASSES_ROOT, u"AVIFile");
  fill(machine, u"z", 1024);
  ASSERT_EQ(std::get<std::int32_t>(registry->EnumRegKeys(HKEY_CLASSES_ROOT, u"")), -2);
  run();
  EXPECT_TRUE(person.boxes.empty());
  EXPECT_TRUE(written());
}

TEST_F(FileTypes, IsNotFoundAmongNone) {
  machine.registry().removeKey(HKEY_LOCAL_MACHINE, u"Software\\Classes");
  run();
  EXPECT_TRUE(person.boxes.empty());
  EXPECT_TRUE(written());
}

TEST_F(FileTypes, StandsInTheRegistryOnEveryClass) {
  for (std::int32_t osClass = 0; osClass <= 4; ++osClass) {
    globals().gOSClass = osClass;
    globals().gUserData = u"C:\\Users\\bob\\AppData\\Local";
    machine.registry().removeKey(HKEY_CLASSES_ROOT, extension);
    machine.registry().removeKey(HKEY_CLASSES_ROOT, programId);
    run();
    EXPECT_TRUE(written()) << osClass;
    person.boxes.clear();
    own(u"Other.Editor");
    run();
    EXPECT_EQ(person.boxes.size(), 1u) << osClass;
  }
  EXPECT_EQ(machine.calls("OpenOutput"), 0u);
}

TEST_F(FileTypes, AsksInTheLanguageInForce) {
  globals().gLanguage = language::German;
  phrases->LoadPhrases();
  own(u"Other.Editor");
  run();
  ASSERT_EQ(person.boxes.size(), 1u);
  EXPECT_EQ(person.boxes[0].title, u"Bildschirm Recorder");
  EXPECT_NE(join(u"MsgBox | ", person.boxes[0].text, u" | 36 | Screen Recorder"),
            fromUtf8(question()));
  EXPECT_EQ(person.boxes[0].style, 36);
}

TEST_F(FileTypes, ErrorsOfTheReadsHaveTheirBoxesAndTheReadsTheirDefaults) {
  own(programId);
  machine.setFaults({{.call = "RegOpenKeyA",
                      .match = Text(extension),
                      .effect = Fault::Effect::Raise,
                      .code = 7}});
  run();
  ASSERT_EQ(person.boxes.size(), 2u);
  EXPECT_EQ(person.boxes[0].text, u"Error : 8-7 Out of memory");
  EXPECT_EQ(person.boxes[1].style, 36);
  machine.setFaults({{.call = "RegEnumKeyA", .effect = Fault::Effect::Raise, .code = 7}});
  own(u"Other.Editor");
  run();
  ASSERT_EQ(person.boxes.size(), 3u);
  EXPECT_EQ(person.boxes[2].text, u"Error : 7-7 Out of memory");
  EXPECT_TRUE(written());
}

TEST_F(FileTypes, AnErrorOfAWriteReachesTheCallerAndWhatWasWrittenStays) {
  machine.setFaults(
      {{.call = "RegSetValueExA", .nth = 3, .effect = Fault::Effect::Raise, .code = 7}});
  EXPECT_THROW(run(), RuntimeError);
  EXPECT_EQ(valueOf(HKEY_CLASSES_ROOT, extension, u""), "ZEV.ReelDeskProject");
  EXPECT_EQ(valueOf(HKEY_CLASSES_ROOT, programId, u""), "ZEV ReelDesk Project File");
  EXPECT_EQ(machine.registry().find(HKEY_CLASSES_ROOT, join(programId, u"\\DefaultIcon")), nullptr);
  EXPECT_EQ(steps().back(), "RunStep | 158");
}

}  // namespace
}  // namespace zev
