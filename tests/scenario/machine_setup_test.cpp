#include "programs/zevsim/machine_setup.h"

#include <gtest/gtest.h>

#include "scenario/toy_play.h"
#include "simulated/nobody.h"

namespace zev::scenario {
namespace {

using simulated::Disks;
using simulated::SimulatedMachine;

/// A machine as a `machine` object describes it; the object's inside is given.
struct Built {
  explicit Built(std::string_view description) {
    simulator::setUp(machine, parseScenario(document(description)).machine);
  }

  void change(std::string_view keys) {
    simulator::change(machine, parseScenario(document(keys)).machine);
  }

  static std::string document(std::string_view keys) {
    return "{\"machine\": {" + std::string(keys) + "}}";
  }

  const Disks& disks() const { return machine.disks(); }
  const simulated::SystemSettings& system() const { return machine.settings().system; }
  const simulated::FolderSettings& folders() const { return machine.settings().folders; }
  simulated::Guard guard(TextView path) const {
    simulated::Path place;
    simulated::parsePath(path, {}, place);
    return disks().at(place.drive)->guard(place);
  }
  bool directory(TextView path) const {
    const auto entry = disks().find(path);
    return entry && (entry->attributes & file_attribute::directory) != 0;
  }
  std::string text(TextView path) const {
    const auto bytes = disks().read(path);
    return bytes ? std::string(bytes->begin(), bytes->end()) : "none";
  }
  std::optional<simulated::RegistryValue> value(TextView key, TextView name) const {
    return machine.registry().value(HKEY_LOCAL_MACHINE, key, name);
  }

  simulated::Nobody nobody;
  simulated::NoTranscript transcript;
  SimulatedMachine machine{nobody, transcript};
};

TEST(MachineSetup, MakesAUsualMachineByDefault) {
  const Built built("");
  EXPECT_EQ(built.system().version.platform, 2u);
  EXPECT_EQ(built.system().version.major, 6u);
  EXPECT_EQ(built.system().version.minor, 1u);
  EXPECT_EQ(built.system().version.build, 7601u);
  EXPECT_EQ(built.system().version.csd, u"");
  EXPECT_EQ(built.system().version.suiteMask, 256);
  EXPECT_EQ(built.system().version.productType, 1);
  EXPECT_EQ(built.system().architecture, 9);
  EXPECT_FALSE(built.system().wow64);
  EXPECT_EQ(built.system().productInfo, 0u);
  EXPECT_EQ(built.system().uiLanguage, 1033);
  EXPECT_EQ(built.system().codePage, 1252u);
  EXPECT_EQ(built.system().user, u"bob");
  EXPECT_EQ(built.system().domain, u"BOBPC");
  EXPECT_EQ(built.machine.settings().installer, u"C:\\Users\\bob\\Downloads\\ZEVSetup.exe");
  EXPECT_TRUE(built.machine.settings().services.shortcuts);
  EXPECT_TRUE(built.machine.settings().services.programManager);
}

TEST(MachineSetup, NamesAndCreatesTheUsualFolders) {
  const Built built("");
  EXPECT_EQ(built.folders().temp, u"C:\\Users\\bob\\AppData\\Local\\Temp\\");
  EXPECT_EQ(built.folders().windows, u"C:\\Windows");
  EXPECT_EQ(built.folders().system, u"C:\\Windows\\system32");
  EXPECT_EQ(built.folders().documents, u"C:\\Users\\bob\\Documents");
  EXPECT_EQ(built.folders().localAppData, u"C:\\Users\\bob\\AppData\\Local");
  EXPECT_EQ(built.folders().desktop, u"C:\\Users\\bob\\Desktop");
  for (const TextView each :
       {u"C:\\Users\\bob\\AppData\\Local\\Temp", u"C:\\Windows\\system32",
        u"C:\\Users\\bob\\Documents", u"C:\\Users\\bob\\Desktop", u"C:\\Program Files",
        u"C:\\Users\\bob\\AppData\\Roaming\\Microsoft\\Windows\\Start Menu\\Programs",
        u"C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\Programs"}) {
    EXPECT_TRUE(built.directory(each)) << toUtf8(each);
  }
  const auto drive = built.disks().drive(u'C');
  ASSERT_TRUE(drive.has_value());
  EXPECT_EQ(drive->type, 3u);
  EXPECT_EQ(drive->free, std::uint64_t{64} << 30);
}

TEST(MachineSetup, LetsFoldersFollowTheUser) {
  const Built built(R"("user": "ayşe", "codePage": 1254)");
  EXPECT_EQ(built.folders().documents, u"C:\\Users\\ayşe\\Documents");
  EXPECT_TRUE(built.directory(u"C:\\Users\\ayşe\\AppData\\Local\\Temp"));
  EXPECT_FALSE(built.disks().exists(u"C:\\Users\\bob"));
}

TEST(MachineSetup, CreatesTheFoldersThatAreNamed) {
  const Built built(R"("drives": {"D": {}},
      "folders": {"temp": "D:\\T\\", "documents": null,
                  "special": {"2": "D:\\Menu", "16": null}})");
  EXPECT_TRUE(built.directory(u"D:\\T"));
  EXPECT_TRUE(built.directory(u"D:\\Menu"));
  EXPECT_EQ(built.folders().temp, u"D:\\T\\");
  EXPECT_EQ(built.folders().documents, std::nullopt);
  EXPECT_EQ(built.folders().special.at(2), u"D:\\Menu");
  EXPECT_EQ(built.folders().special.at(16), std::nullopt);
  EXPECT_FALSE(built.disks().exists(u"C:\\Users\\bob\\AppData\\Local\\Temp"));
}

TEST(MachineSetup, LetsTheFifthSpecialFolderFollowTheDocuments) {
  const Built built(R"("folders": {"documents": "C:\\Papers"})");
  const auto& special = built.folders().special;
  EXPECT_TRUE(!special.contains(5) || special.at(5) == u"C:\\Papers");
  EXPECT_EQ(built.folders().documents, u"C:\\Papers");
}

TEST(MachineSetup, TakesASystemApart) {
  const Built built(
      R"("version": {"platform": 1, "major": 4, "minor": 10, "csd": "SP", "fails": true},
      "architecture": 0, "wow64": true, "metrics": {"87": 1, "89": -2}, "productInfo": 48,
      "uiLanguage": 1055, "codePage": 1254, "user": null, "domain": null,
      "installer": "C:\\setup.exe", "windows": ["A", "B"], "services": {"shortcuts": false})");
  EXPECT_EQ(built.system().version.platform, 1u);
  EXPECT_EQ(built.system().version.minor, 10u);
  EXPECT_EQ(built.system().version.build, 7601u);
  EXPECT_EQ(built.system().version.csd, u"SP");
  EXPECT_TRUE(built.system().version.fails);
  EXPECT_EQ(built.system().architecture, 0);
  EXPECT_TRUE(built.system().wow64);
  EXPECT_EQ(built.system().metrics.at(87), 1);
  EXPECT_EQ(built.system().metrics.at(89), -2);
  EXPECT_EQ(built.system().productInfo, 48u);
  EXPECT_EQ(built.system().user, std::nullopt);
  EXPECT_EQ(built.system().domain, std::nullopt);
  EXPECT_EQ(built.machine.settings().windows, (std::vector<Text>{u"A", u"B"}));
  EXPECT_FALSE(built.machine.settings().services.shortcuts);
  EXPECT_TRUE(built.machine.settings().services.programManager);
}

TEST(MachineSetup, PutsDrivesInAndTakesThemAway) {
  const Built built(R"("drives": {"C": null, "e:": {"type": 5, "free": 0, "label": "DISC"},
                                    "F": {"type": 2, "ready": false}})");
  EXPECT_EQ(built.disks().letters(), (std::vector<char16_t>{u'E', u'F'}));
  EXPECT_EQ(built.disks().drive(u'E')->type, 5u);
  EXPECT_EQ(built.disks().drive(u'E')->free, 0u);
  EXPECT_EQ(built.disks().drive(u'E')->label, u"DISC");
  EXPECT_TRUE(built.disks().drive(u'E')->ready);
  EXPECT_FALSE(built.disks().drive(u'F')->ready);
}

TEST(MachineSetup, ChangesOneSideOfADriveAndLeavesTheOthers) {
  Built built(R"("drives": {"D": {"type": 2, "sectorsPerCluster": 1}})");
  built.change(R"("drives": {"D": {"free": 1024}})");
  EXPECT_EQ(built.disks().drive(u'D')->type, 2u);
  EXPECT_EQ(built.disks().drive(u'D')->sectorsPerCluster, 1u);
  EXPECT_EQ(built.disks().drive(u'D')->free, 1024u);
}

TEST(MachineSetup, LaysFilesOfEveryKind) {
  const Built built(R"("codePage": 1254, "files": {
      "C:\\a\\b\\text.txt": "Işık\r\n", "C:\\dir": {"directory": true},
      "C:\\base64.bin": {"base64": "TVo="}, "C:\\zeros.bin": {"size": 3000000},
      "C:\\marked.txt": {"text": "x", "attributes": ["hidden", "readonly"], "locked": true,
                         "inUse": true, "deny": ["write", "delete"]}})");
  EXPECT_EQ(built.text(u"C:\\A\\B\\TEXT.TXT"), "I\xFE\xFDk\r\n");
  EXPECT_TRUE(built.directory(u"C:\\dir"));
  EXPECT_EQ(built.text(u"C:\\base64.bin"), "MZ");
  EXPECT_EQ(built.disks().find(u"C:\\zeros.bin")->size, 3000000u);
  EXPECT_EQ(built.disks().find(u"C:\\marked.txt")->attributes & 7u,
            file_attribute::hidden | file_attribute::readOnly);
  const simulated::Guard guard = built.guard(u"C:\\marked.txt");
  EXPECT_TRUE(guard.locked);
  EXPECT_TRUE(guard.inUse);
  EXPECT_TRUE(guard.deny.write);
  EXPECT_TRUE(guard.deny.remove);
  EXPECT_FALSE(guard.deny.create);
  EXPECT_FALSE(guard.deny.list);
}

TEST(MachineSetup, LaysLinksToFoldersAndToFiles) {
  const Built built(R"("files": {"C:\\F": {"junction": "C:\\Windows"},
                                 "C:\\f.txt": {"symlink": "C:\\Windows\\win.ini"}})");
  EXPECT_EQ(built.disks().link(u"C:\\F"), u"C:\\Windows");
  EXPECT_TRUE(built.directory(u"C:\\F"));
  EXPECT_EQ(built.disks().link(u"C:\\f.txt"), u"C:\\Windows\\win.ini");
  EXPECT_TRUE(built.disks().exists(u"C:\\f.txt"));
  EXPECT_FALSE(built.directory(u"C:\\f.txt"));
}

TEST(MachineSetup, TakesADefaultFolderAwayWithItsContents) {
  const Built built(R"("files": {"C:\\Program Files\\x\\y.txt": "y", "C:\\Program Files": null})");
  EXPECT_FALSE(built.disks().exists(u"C:\\Program Files"));
}

TEST(MachineSetup, ChangesTheAttributesOfWhatIsThere) {
  Built built(R"("files": {"C:\\a.txt": "kept"})");
  built.change(R"("files": {"C:\\a.txt": {"attributes": ["system"]},
                            "C:\\Windows": {"deny": ["create"]}})");
  EXPECT_EQ(built.text(u"C:\\a.txt"), "kept");
  EXPECT_EQ(built.disks().find(u"C:\\a.txt")->attributes & 7u, file_attribute::system);
  EXPECT_TRUE(built.directory(u"C:\\Windows"));
  EXPECT_TRUE(built.guard(u"C:\\Windows").deny.create);
}

TEST(MachineSetup, RefusesAFileOnADriveThatIsNotThere) {
  EXPECT_EQ(errorOf([] { Built(R"("files": {"Q:\\a.txt": "a"})"); }),
            "$.machine.files[\"Q:\\\\a.txt\"]: the machine has no such drive");
}

TEST(MachineSetup, RefusesAFileThatItsDriveCannotHave) {
  EXPECT_EQ(errorOf([] { Built(R"("files": {"C:\\a?": "a"})"); }),
            "$.machine.files[\"C:\\\\a?\"]: no absolute path of the system: C:\\a?");
  // Names of the machine have up to 255 characters, those of the host so many bytes.
  std::string name;
  while (name.size() < 400) name += "\u00FC";
  EXPECT_EQ(errorOf([&] {
              Built(R"("drives": {"D": {"host": ")" + testing::TempDir() +
                    R"("}}, "files": {"D:\\)" + name + R"(": "a"})");
            }),
            "$.machine.files[\"D:\\\\" + name + "\"]: cannot lay D:\\" + name);
}

TEST(MachineSetup, WritesRegistryValuesOfEveryType) {
  const Built built(R"("registry": {"HKEY_LOCAL_MACHINE": {"Software\\Test": {
      "": "default", "text": "Işık", "number": 7, "minus": -1,
      "long": {"type": 2, "text": "%TEMP%"}, "raw": {"type": 1, "hex": "4142"},
      "bytes": {"type": 3, "hex": "00ff"}}}}, "codePage": 1254)");
  const auto key = u"software\\test";
  EXPECT_EQ(built.value(key, u"")->text(), u"default");
  EXPECT_EQ(built.value(key, u"TEXT")->text(), u"Işık");
  EXPECT_EQ(built.value(key, u"text")->type, 1u);
  EXPECT_EQ(built.value(key, u"number")->number(), 7u);
  EXPECT_EQ(built.value(key, u"number")->type, 4u);
  EXPECT_EQ(built.value(key, u"minus")->number(), 0xffffffffu);
  EXPECT_EQ(built.value(key, u"long")->type, 2u);
  EXPECT_EQ(built.value(key, u"long")->text(), u"%TEMP%");
  EXPECT_EQ(built.value(key, u"raw")->ansiBytes(1254), (std::vector<std::uint8_t>{0x41, 0x42}));
  EXPECT_EQ(built.value(key, u"bytes")->type, 3u);
  EXPECT_EQ(built.value(key, u"bytes")->bytes, (std::vector<std::uint8_t>{0, 0xff}));
}

TEST(MachineSetup, RemovesValuesAndKeys) {
  Built built(R"("registry": {"HKLM": {"A\\B": {"x": 1, "y": 2}, "C": {}}})");
  EXPECT_NE(built.machine.registry().find(HKEY_LOCAL_MACHINE, u"C"), nullptr);
  built.change(R"("registry": {"HKLM": {"A\\B": {"x": null}, "C": null}})");
  EXPECT_FALSE(built.value(u"A\\B", u"x").has_value());
  EXPECT_TRUE(built.value(u"A\\B", u"y").has_value());
  EXPECT_EQ(built.machine.registry().find(HKEY_LOCAL_MACHINE, u"C"), nullptr);
}

TEST(MachineSetup, RemovesAValueWhateverIsNamedBeforeIt) {
  Built built(R"("registry": {"HKLM": {"A": {"x": 1, "y": 2, "z": "three"}}})");
  built.change(R"("registry": {"HKLM": {"A": {"x": 5, "y": null, "z": "six"}}})");
  EXPECT_EQ(built.value(u"A", u"x")->number(), 5u);
  EXPECT_FALSE(built.value(u"A", u"y").has_value());
  EXPECT_EQ(built.value(u"A", u"z")->text(), u"six");
}

TEST(MachineSetup, DeniesKeysAndAllowsThemAgain) {
  Built built(
      R"("registry": {"deny": ["HKEY_LOCAL_MACHINE\\Software\\X"], "HKCU": {"deny": ["Y"]}})");
  const auto& registry = built.machine.registry();
  EXPECT_TRUE(registry.denied(HKEY_LOCAL_MACHINE, u"Software\\X\\below"));
  EXPECT_TRUE(registry.denied(HKEY_CURRENT_USER, u"Y"));
  EXPECT_FALSE(registry.denied(HKEY_LOCAL_MACHINE, u"Software\\Z"));
  built.change(R"("registry": {"deny": []})");
  EXPECT_FALSE(registry.denied(HKEY_LOCAL_MACHINE, u"Software\\X"));
}

TEST(MachineSetup, KeepsWhatAChangeDoesNotName) {
  Built built(
      R"("user": "eve", "windows": ["A"], "programs": {"C:\\a.exe": {"exit": 3, "duration": 40}})");
  built.change(R"("programs": {"c:\\A.EXE": {"running": true}}, "codePage": 1250)");
  EXPECT_EQ(built.system().user, u"eve");
  EXPECT_EQ(built.machine.settings().windows, std::vector<Text>{u"A"});
  ASSERT_EQ(built.machine.settings().programs.size(), 1u);
  EXPECT_EQ(built.machine.settings().programs.begin()->second.exitCode, 3);
  EXPECT_EQ(built.machine.settings().programs.begin()->second.duration, 40u);
  EXPECT_TRUE(built.machine.settings().programs.begin()->second.running);
}

TEST(MachineSetup, LaysTheInstallerWhereTheMachineHasIt) {
  const ToyPlay usual("{}");
  const auto entry =
      usual.stage->machine().disks().find(u"C:\\Users\\bob\\Downloads\\ZEVSetup.exe");
  ASSERT_TRUE(entry.has_value());
  EXPECT_EQ(entry->size, 1'000'000u);
  const ToyPlay own(R"({"machine": {"installer": "C:\\s.exe", "files": {"C:\\s.exe": "own"}}})");
  EXPECT_EQ(own.stage->machine().disks().find(u"C:\\s.exe")->size, 3u);
}

}  // namespace
}  // namespace zev::scenario
