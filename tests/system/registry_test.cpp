#include "system/registry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "simulated/put_text.h"
#include "system/attributes.h"
#include "system/on_a_machine.h"

namespace zev {
namespace {

using simulated::Fault;
using simulated::RegistryValue;
using testing::HasSubstr;

constexpr TextView key = u"Software\\Tavorns\\ZEV5";
constexpr TextView first = u"C:\\Users\\bob\\AppData\\Local\\Tavorns\\ZEV5";
constexpr TextView second = u"C:\\Users\\bob.PC\\AppData\\Local\\Tavorns\\ZEV5";
constexpr std::int32_t normal = 0;

Fault raising(std::string call, std::int32_t number) {
  return {.call = std::move(call), .effect = Fault::Effect::Raise, .code = number};
}

Fault failing(std::string call, std::int32_t error) {
  return {.call = std::move(call), .effect = Fault::Effect::Error, .code = error};
}

/// The registry itself: machines of another class, and ForceRegistry.
class RegistryStore : public OnAMachine, public testing::Test {
 protected:
  RegistryStore() { globals().gOSClass = 3; }
  void set(TextView name, RegistryValue value) {
    machine.registry().setValue(HKEY_LOCAL_MACHINE, key, name, std::move(value));
  }
  Text text(TextView name) {
    return registry->GetRegString(HKEY_LOCAL_MACHINE, key, name, u"default", normal);
  }
  std::int32_t number(TextView name) {
    return registry->GetRegDword(HKEY_LOCAL_MACHINE, key, name, -5, normal);
  }
};

/// The value files, with both folders there.
class ValueFileStore : public OnAMachine, public testing::Test {
 protected:
  ValueFileStore() : OnAMachine(true) {
    globals().gOSClass = 4;
    machine.disks().putDirectory(first);
    machine.disks().putDirectory(second);
    globals().gUserData = first;
    globals().gUserDataAlt = second;
  }
  void put(TextView folder, TextView name, std::string_view content) {
    putText(machine.disks(), join(folder, u"\\", name), content);
  }
  std::string content(TextView folder, TextView name) { return textOf(join(folder, u"\\", name)); }
  Text text(TextView name) {
    return registry->GetRegString(HKEY_LOCAL_MACHINE, key, name, u"default", normal);
  }
  std::int32_t number(TextView name) {
    return registry->GetRegDword(HKEY_LOCAL_MACHINE, key, name, -5, normal);
  }

  /// What has its attributes changed, in order, by an act that finds the first folder read-only
  /// and its value hidden as well.
  std::vector<std::string> attributesChanged(const std::function<void()>& act) {
    files().SetFileAttributesA(first, 1 | 16);
    files().SetFileAttributesA(join(first, u"\\Dizin"), 1 | 2 | 32);
    const std::size_t before = attributeCalls().size();
    act();
    const std::vector<std::string> all = attributeCalls();
    return {all.begin() + static_cast<std::ptrdiff_t>(before), all.end()};
  }

 private:
  std::vector<std::string> attributeCalls() const {
    std::vector<std::string> paths;
    for (const simulated::Event& call : transcript.of("call")) {
      if (call.at("name") == "SetFileAttributesA")
        paths.push_back(call.at("arguments").at(0).text());
    }
    return paths;
  }
};

TEST_F(RegistryStore, AMissingKeyGivesTheDefaults) {
  EXPECT_EQ(text(u"Dizin"), u"default");
  EXPECT_EQ(number(u"Version"), -5);
  EXPECT_EQ(std::get<std::int32_t>(registry->EnumRegKeys(HKEY_LOCAL_MACHINE, key)), -2);
}

TEST_F(RegistryStore, AMissingValueGivesTheDefaults) {
  machine.registry().createKey(HKEY_LOCAL_MACHINE, key);
  EXPECT_EQ(text(u"Dizin"), u"default");
  EXPECT_EQ(number(u"Version"), -5);
}

TEST_F(RegistryStore, ReadsTextsOfTheTextTypeAlone) {
  set(u"Plain", RegistryValue::ofText(u"C:\\ZEV"));
  set(u"Expandable", RegistryValue::ofText(u"C:\\ZEV", registry_type::expandableText));
  set(u"Number", RegistryValue::ofNumber(7));
  EXPECT_EQ(text(u"Plain"), u"C:\\ZEV");
  EXPECT_EQ(text(u"Expandable"), u"default");
  EXPECT_EQ(text(u"Number"), u"default");
}

TEST_F(RegistryStore, ReadsATextWithoutATerminatingNulWhole) {
  set(u"Bare", RegistryValue::ofBytes(registry_type::text, {'a', 'b', 'c'}, 1252));
  set(u"Inner", RegistryValue::ofBytes(registry_type::text, {'a', 0, 'c', 0}, 1252));
  EXPECT_EQ(text(u"Bare"), u"abc");
  EXPECT_EQ(text(u"Inner"), u"a");
}

TEST_F(RegistryStore, ReadsNumbersOfTheNumberTypeAlone) {
  set(u"Number", RegistryValue::ofNumber(0xFFFFFFFF));
  set(u"Text", RegistryValue::ofText(u"7"));
  set(u"Long", RegistryValue::ofBytes(registry_type::binary, {1, 2, 3, 4, 5}, 1252));
  EXPECT_EQ(number(u"Number"), -1);
  EXPECT_EQ(number(u"Text"), -5);
  EXPECT_EQ(number(u"Long"), -5);
}

TEST_F(RegistryStore, WritesThroughTheRegistryWithAnySelector) {
  registry->SetRegString(HKEY_LOCAL_MACHINE, key, u"Dizin", u"C:\\Z", normal);
  registry->SetRegDword(HKEY_LOCAL_MACHINE, key, u"Version", 21, ForceRegistry);
  EXPECT_EQ(machine.registry().value(HKEY_LOCAL_MACHINE, key, u"Dizin"),
            RegistryValue::ofText(u"C:\\Z"));
  EXPECT_EQ(machine.registry().value(HKEY_LOCAL_MACHINE, key, u"Version"),
            RegistryValue::ofNumber(21));
}

TEST_F(RegistryStore, ARefusedWriteIsLostWithoutAWord) {
  machine.registry().createKey(HKEY_LOCAL_MACHINE, key);
  machine.registry().deny(HKEY_LOCAL_MACHINE, key);
  registry->SetRegString(HKEY_LOCAL_MACHINE, key, u"Dizin", u"C:\\Z", normal);
  EXPECT_EQ(text(u"Dizin"), u"default");
  EXPECT_TRUE(person.boxes.empty());
}

TEST_F(RegistryStore, CreatesAndDeletesKeysAndValues) {
  registry->CreateRegKey(HKEY_LOCAL_MACHINE, key, normal);
  EXPECT_NE(machine.registry().find(HKEY_LOCAL_MACHINE, key), nullptr);
  set(u"Dizin", RegistryValue::ofText(u"x"));
  registry->DeleteRegValue(HKEY_LOCAL_MACHINE, key, u"Dizin", normal);
  EXPECT_EQ(text(u"Dizin"), u"default");
  registry->DeleteRegKey(HKEY_LOCAL_MACHINE, key, normal);
  EXPECT_EQ(machine.registry().find(HKEY_LOCAL_MACHINE, key), nullptr);
}

TEST_F(RegistryStore, ListsUpTo1024Keys) {
  for (int index = 1; index <= 1024; ++index) {
    machine.registry().createKey(HKEY_LOCAL_MACHINE, join(u"Many\\Key", decimal(index)));
  }
  const KeyList list = registry->EnumRegKeys(HKEY_LOCAL_MACHINE, u"Many");
  EXPECT_EQ(std::get<std::vector<Text>>(list).size(), 1024u);
  machine.registry().createKey(HKEY_LOCAL_MACHINE, u"Many\\One more");
  EXPECT_EQ(std::get<std::int32_t>(registry->EnumRegKeys(HKEY_LOCAL_MACHINE, u"Many")), -2);
}

TEST_F(RegistryStore, LeavesTheKeyThatItListsOpen) {
  machine.registry().createKey(HKEY_LOCAL_MACHINE, u"One\\Two");
  registry->EnumRegKeys(HKEY_LOCAL_MACHINE, u"One");
  EXPECT_EQ(machine.openHandles().keys, 1u);
}

TEST_F(RegistryStore, TellsRunTimeErrorsByTheirOperation) {
  machine.setFaults({raising("RegQueryValueExA", 13), raising("RegEnumKeyA", 6)});
  set(u"Version", RegistryValue::ofNumber(1));
  EXPECT_EQ(number(u"Version"), -5);
  EXPECT_EQ(text(u"Version"), u"default");
  EXPECT_TRUE(std::holds_alternative<std::monostate>(
      registry->EnumRegKeys(HKEY_LOCAL_MACHINE, u"Software")));
  machine.setFaults({raising("RegSetValueExA", 5)});
  registry->SetRegDword(HKEY_LOCAL_MACHINE, key, u"Version", 1, normal);
  ASSERT_EQ(person.boxes.size(), 4u);
  EXPECT_EQ(person.boxes[0].text, u"Error : 5-13 Type mismatch");
  EXPECT_EQ(person.boxes[1].text, u"Error : 8-13 Type mismatch");
  EXPECT_EQ(person.boxes[2].text, u"Error : 7-6 Overflow");
  EXPECT_EQ(person.boxes[3].text, u"Error : 6-5 Invalid procedure call or argument");
  for (const auto& box : person.boxes) EXPECT_EQ(box.style, 0);
}

TEST_F(RegistryStore, ATextThatCannotBeWrittenReachesTheCaller) {
  machine.setFaults({raising("RegSetValueExA", 5)});
  EXPECT_THROW(registry->SetRegString(HKEY_LOCAL_MACHINE, key, u"Dizin", u"x", normal),
               RuntimeError);
}

TEST_F(ValueFileStore, WritesBothFilesAndReadsTheFirst) {
  registry->SetRegString(HKEY_LOCAL_MACHINE, key, u"Dizin", u"C:\\Z", normal);
  EXPECT_EQ(content(first, u"Dizin"), "C:\\Z\r\n");
  EXPECT_EQ(content(second, u"Dizin"), "C:\\Z\r\n");
  put(first, u"Dizin", "one\r\n");
  put(second, u"Dizin", "two\r\n");
  EXPECT_EQ(text(u"Dizin"), u"one");
}

TEST_F(ValueFileStore, ATextComesFromTheSecondFolderOnlyWhereTheFirstIsBlank) {
  put(first, u"Dizin", "  \r\n");
  put(second, u"Dizin", "two\r\n");
  EXPECT_EQ(text(u"Dizin"), u"two");
  EXPECT_EQ(text(u"Missing"), u"default");
}

TEST_F(ValueFileStore, ANumberComesFromTheSecondFolder) {
  put(first, u"Version", "15\r\n");
  put(second, u"Version", "16\r\n");
  EXPECT_EQ(number(u"Version"), 16);
  machine.disks().remove(join(second, u"\\Version"));
  EXPECT_EQ(number(u"Version"), -5);
}

TEST_F(ValueFileStore, WithoutAFolderTheDefaultsCountForNothing) {
  globals().gUserData.clear();
  globals().gUserDataAlt = u"C:\\nowhere";
  EXPECT_EQ(text(u"Dizin"), u"");
  EXPECT_EQ(number(u"Version"), 0);
}

TEST_F(ValueFileStore, ForceRegistryLeavesTheFoldersAlone) {
  registry->SetRegString(HKEY_LOCAL_MACHINE, key, u"Dizin", u"reg", ForceRegistry);
  EXPECT_EQ(content(first, u"Dizin"), "(no file)");
  EXPECT_EQ(registry->GetRegString(HKEY_LOCAL_MACHINE, key, u"Dizin", u"", ForceRegistry), u"reg");
  registry->CreateRegKey(HKEY_LOCAL_MACHINE, u"Software\\Forced", ForceRegistry);
  EXPECT_NE(machine.registry().find(HKEY_LOCAL_MACHINE, u"Software\\Forced"), nullptr);
}

TEST_F(ValueFileStore, CreatesNoKey) {
  registry->CreateRegKey(HKEY_LOCAL_MACHINE, key, normal);
  EXPECT_EQ(machine.registry().find(HKEY_LOCAL_MACHINE, key), nullptr);
}

TEST_F(ValueFileStore, ValuesOfAllKeysShareOneNameSpace) {
  registry->SetRegString(HKEY_LOCAL_MACHINE, u"One", u"Dizin", u"1", normal);
  registry->SetRegString(HKEY_CURRENT_USER, u"Two", u"Dizin", u"2", normal);
  EXPECT_EQ(registry->GetRegString(HKEY_LOCAL_MACHINE, u"One", u"Dizin", u"", normal), u"2");
}

TEST_F(ValueFileStore, ACommaIsLostOnTheWayBack) {
  registry->SetRegString(HKEY_LOCAL_MACHINE, key, u"Dizin", u"C:\\a , b", normal);
  EXPECT_EQ(content(first, u"Dizin"), "C:\\a , b\r\n");
  EXPECT_EQ(text(u"Dizin"), u"C:\\ab");
}

TEST_F(ValueFileStore, QuotesAreStrippedAndLinesJoined) {
  put(first, u"Dizin", "\"C:\\a, b\"\r\n  c \r\n");
  EXPECT_EQ(text(u"Dizin"), u"C:\\a, bc");
}

TEST_F(ValueFileStore, AHiddenReadOnlyFileIsReadAndStaysVisible) {
  const Text path = join(first, u"\\Dizin");
  putText(machine.disks(), path, "x\r\n");
  files().SetFileAttributesA(path, 1 | 2 | 32);
  EXPECT_EQ(text(u"Dizin"), u"x");
  EXPECT_EQ(files().GetAttr(path) & 3, 0);
  files().SetFileAttributesA(path, 1 | 2 | 32);
  registry->SetRegString(HKEY_LOCAL_MACHINE, key, u"Dizin", u"y", normal);
  EXPECT_EQ(content(first, u"Dizin"), "y\r\n");
}

TEST_F(ValueFileStore, TheFoldersAttributesAreClearedBeforeTheFiles) {
  put(first, u"Dizin", "x\r\n");
  const std::string folder = toUtf8(first);
  const std::string file = folder + "\\Dizin";
  const std::vector<std::string> order = {folder, file, file};
  EXPECT_EQ(attributesChanged([&] { text(u"Dizin"); }), order);
  EXPECT_EQ(attributesChanged(
                [&] { registry->SetRegString(HKEY_LOCAL_MACHINE, key, u"Dizin", u"y", normal); }),
            order);
  EXPECT_EQ(attributesChanged(
                [&] { registry->DeleteRegValue(HKEY_LOCAL_MACHINE, key, u"Dizin", normal); }),
            order);
}

TEST_F(ValueFileStore, DeletesAValueInBothFolders) {
  put(first, u"Dizin", "1");
  put(second, u"Dizin", "2");
  registry->DeleteRegValue(HKEY_LOCAL_MACHINE, key, u"Dizin", normal);
  EXPECT_FALSE(machine.disks().exists(join(first, u"\\Dizin")));
  EXPECT_FALSE(machine.disks().exists(join(second, u"\\Dizin")));
}

TEST_F(ValueFileStore, DeletesTheFoldersWithAllThatIsInThem) {
  put(first, u"a", "1");
  put(first, u"b", "2");
  files().SetFileAttributesA(join(first, u"\\b"), 1 | 2);
  registry->DeleteRegKey(HKEY_LOCAL_MACHINE, key, normal);
  EXPECT_FALSE(machine.disks().exists(first));
  EXPECT_FALSE(machine.disks().exists(second));
}

TEST_F(ValueFileStore, ATextThatIsNoNumberIsTold) {
  put(first, u"Version", "twelve\r\n");
  EXPECT_EQ(number(u"Version"), 0);
  ASSERT_EQ(person.boxes.size(), 1u);
  EXPECT_EQ(person.boxes[0].text, u"Error : 5-13 Type mismatch");
  EXPECT_EQ(person.boxes[0].style, 0);
}

TEST_F(ValueFileStore, AFileThatCannotBeReadIsToldAndGivesNothing) {
  globals().gUserDataAlt.clear();
  put(first, u"Dizin", "x");
  machine.setFaults({raising("OpenInput", 70)});
  EXPECT_EQ(text(u"Dizin"), u"");
  ASSERT_EQ(person.boxes.size(), 1u);
  EXPECT_EQ(person.boxes[0].text,
            u"Error in ReadConf : 70: Permission denied\r\n\r\nPlease email this error message to "
            u"support@tavorns.example");
  EXPECT_EQ(person.boxes[0].style, 48);
}

TEST_F(ValueFileStore, AnUnreadableNumberIsToldTwice) {
  globals().gUserDataAlt.clear();
  put(first, u"Version", "21");
  machine.setFaults({raising("OpenInput", 70)});
  EXPECT_EQ(number(u"Version"), 0);
  ASSERT_EQ(person.boxes.size(), 2u);
  EXPECT_THAT(toUtf8(person.boxes[0].text), HasSubstr("Error in ReadConf : 70"));
  EXPECT_EQ(person.boxes[1].text, u"Error : 5-13 Type mismatch");
}

TEST_F(ValueFileStore, AFileThatCannotBeWrittenIsToldWithWhatItWas) {
  globals().gUserDataAlt.clear();
  machine.setFaults({raising("OpenOutput", 75)});
  registry->SetRegString(HKEY_LOCAL_MACHINE, key, u"Dizin", u"C:\\Z", normal);
  ASSERT_EQ(person.boxes.size(), 1u);
  EXPECT_EQ(person.boxes[0].text,
            join(u"Error in WriteConf : 75: Path/File access error\r\n\r\n", first,
                 u" - Dizin - C:\\Z\r\n\r\nPlease email this error message to "
                 u"support@tavorns.example"));
  EXPECT_EQ(person.boxes[0].style, 48);
}

TEST_F(ValueFileStore, AFileThatCannotBeDeletedIsTold) {
  globals().gUserDataAlt.clear();
  put(first, u"Dizin", "x");
  machine.setFaults({raising("Kill", 70)});
  registry->DeleteRegValue(HKEY_LOCAL_MACHINE, key, u"Dizin", normal);
  ASSERT_EQ(person.boxes.size(), 1u);
  EXPECT_EQ(
      person.boxes[0].text,
      u"Error in DeleteConf : 70: Permission denied\r\n\r\nPlease email this error message to "
      u"support@tavorns.example");
}

TEST_F(ValueFileStore, AttributesThatStayAreAnswered) {
  put(first, u"a", "1");
  const Text path = join(first, u"\\a");
  EXPECT_EQ(ClearHiddenAttribute(files(), path), 0);
  files().SetFileAttributesA(path, 1 | 2);
  machine.setFaults({failing("SetFileAttributesA", 5)});
  EXPECT_EQ(ClearHiddenAttribute(files(), path), -1);
  EXPECT_EQ(ClearReadOnlyAttribute(files(), path), -1);
  machine.setFaults({});
  EXPECT_EQ(ClearHiddenAttribute(files(), path), 0);
  EXPECT_EQ(files().GetAttr(path) & 3, 1);
  EXPECT_EQ(ClearHiddenAttribute(files(), u"C:\\nowhere"), 0);
  EXPECT_EQ(ClearHiddenAttribute(files(), u"   "), 0);
}

}  // namespace
}  // namespace zev
