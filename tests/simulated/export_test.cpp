#include <gmock/gmock.h>

#include "simulated/bench.h"
#include "simulated/put_text.h"
#include "simulated/state_report.h"

namespace zev::simulated {
namespace {

TEST(RegistryExport, WritesWhatEditorsImport) {
  RegistryTree registry;
  registry.removeKey(HKEY_LOCAL_MACHINE, u"Software");
  constexpr TextView key = u"Software\\ZEV \"6\"";
  registry.setValue(HKEY_CURRENT_USER, key, u"", RegistryValue::ofText(u"C:\\a\\\"b\""));
  registry.setValue(HKEY_CURRENT_USER, key, u"bin", RegistryValue::ofBytes(3, {1, 0xAB}, 1252));
  registry.setValue(HKEY_CURRENT_USER, key, u"exp", RegistryValue::ofText(u"%x", 2));
  registry.setValue(HKEY_CURRENT_USER, key, u"n\\1", RegistryValue::ofNumber(0xFFFFFFFE));
  registry.setValue(HKEY_CURRENT_USER, key, u"open", RegistryValue::ofBytes(1, {'a'}, 1252));
  registry.setValue(HKEY_CURRENT_USER, key, u"two", RegistryValue::ofText(u"a\r\nb"));
  registry.createKey(HKEY_CURRENT_USER, u"Empty");
  EXPECT_EQ(toUtf8(registryEditorText(registry)),
            "Windows Registry Editor Version 5.00\r\n"
            "\r\n[HKEY_CURRENT_USER\\Empty]\r\n"
            "\r\n[HKEY_CURRENT_USER\\Software\\ZEV \"6\"]\r\n"
            "@=\"C:\\\\a\\\\\\\"b\\\"\"\r\n"
            "\"bin\"=hex:01,ab\r\n"
            "\"exp\"=hex(2):25,00,78,00,00,00\r\n"
            "\"n\\\\1\"=dword:fffffffe\r\n"
            "\"open\"=hex(1):61,00\r\n"
            "\"two\"=hex(1):61,00,0d,00,0a,00,62,00,00,00\r\n"
            "\r\n[HKEY_LOCAL_MACHINE]\r\n\r\n");
}

TEST(RegistryExport, WrapsLongData) {
  RegistryTree registry;
  registry.setValue(HKEY_CURRENT_USER, u"K", u"v",
                    RegistryValue::ofBytes(3, std::vector<std::uint8_t>(40, 0x11), 1252));
  const std::string text = toUtf8(registryEditorText(registry));
  EXPECT_NE(text.find(",\\\r\n  11"), std::string::npos);
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = text.find("\r\n", start);
    EXPECT_LE(end - start, 80u);
    start = end + 2;
  }
}

class ExportTest : public MachineTest {
 protected:
  HostFolder host;
};

TEST_F(ExportTest, TheRegistryFileIsUtf16WithItsMark) {
  machine.exportRegistry(host.path() / "registry.reg");
  const std::string file = host.read("registry.reg");
  EXPECT_TRUE(file.starts_with(std::string("\xFF\xFEW\0i\0", 6)));
  EXPECT_EQ(file.size() % 2, 0u);
  EXPECT_THROW(machine.exportRegistry(host.path() / "none" / "x.reg"), std::runtime_error);
}

TEST_F(ExportTest, ADriveIsLaidOutAsRealFiles) {
  putText(machine.disks(), u"C:\\Prog\\\u00FC.txt", "abc");
  machine.disks().put(u"C:\\Prog\\zeros", {.content = ZeroBytes{3000000}});
  machine.exportDrive(u'C', host.path() / "C");
  EXPECT_EQ(host.read(std::u8string(u8"C/Prog/\u00FC.txt")), "abc");
  EXPECT_EQ(host.read("C/Prog/zeros"), std::string(3000000, '\0'));
  EXPECT_TRUE(std::filesystem::is_directory(host.path() / "C/Windows/system32"));
  EXPECT_THROW(machine.exportDrive(u'X', host.path()), std::invalid_argument);
}

TEST_F(ExportTest, TheStateHoldsFilesRegistryAndShortcuts) {
  putText(machine.disks(), u"C:\\a.txt", "abc\r\n");
  machine.disks().put(u"C:\\b.bin",
                      {.content = ZeroBytes{2}, .attributes = file_attribute::hidden});
  machine.registry().setValue(HKEY_CURRENT_USER, u"K", u"n", RegistryValue::ofNumber(5));
  platform().shortcuts.CreateObject()->CreateShortcut(u"C:\\a.lnk")->Save();
  const Value state = machine.state();
  EXPECT_EQ(
      state["files"]["C:\\a.txt"].dump(),
      R"({"size":5,"sha256":"552bab6864c7a7b69a502ed1854b9245c0e1a30f008aaa0b281da62585fdb025",)"
      R"("text":"abc\r\n"})");
  EXPECT_EQ(state["files"]["C:\\b.bin"]["attributes"].dump(), R"(["hidden"])");
  EXPECT_FALSE(state["files"]["C:\\b.bin"].contains("text"));
  EXPECT_EQ(state["files"]["C:\\Windows"].dump(), R"({"directory":true})");
  EXPECT_EQ(state["registry"]["HKEY_CURRENT_USER"]["K"].dump(), R"({"n":{"type":4,"value":5}})");
  EXPECT_EQ(state["shortcuts"].size(), 1u);
}

/// A program that could not be started was not, and the start of the own program begins nothing
/// anew.
TEST_F(ExportTest, TheStateTellsWhatWasStartedAndOpened) {
  putText(machine.disks(), u"C:\\p.exe", "MZ");
  platform().processes.Shell(u"C:\\p.exe /a", 2);
  EXPECT_THROW(platform().processes.Shell(u"C:\\none.exe", 1), RuntimeError);
  platform().processes.ShellExecuteA(0, u"open", u"C:\\Windows", u"", u"C:", 1);
  platform().processes.ShellExecuteA(0, u"open", u"C:\\none", u"", u"C:", 1);
  machine.startProgram();
  const Value state = machine.state();
  EXPECT_EQ(state["started"].dump(),
            R"([{"command":"C:\\p.exe /a","style":2,"directory":"C:\\Users\\bob\\Downloads"}])");
  EXPECT_EQ(state["opened"].dump(), R"([{"path":"C:\\Windows","style":1,"directory":"C:"}])");
}

TEST_F(ExportTest, EqualMachinesHaveEqualStates) {
  ToldPerson nobody;
  NoTranscript none;
  SimulatedMachine other(nobody, none);
  EXPECT_EQ(machine.state(), other.state());
  other.registry().setValue(HKEY_CURRENT_USER, u"K", u"n", RegistryValue::ofNumber(5));
  EXPECT_NE(machine.state(), other.state());
}

}  // namespace
}  // namespace zev::simulated
