#include "scenario/scenario.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

#include "scenario/toy_play.h"
#include "support/temporary_folder.h"

namespace zev::scenario {
namespace {

namespace fs = std::filesystem;

std::string readError(std::string_view text) {
  return errorOf([&] { parseScenario(text); });
}

/// A folder of the host for one test, removed behind it.
class ScenarioFiles : public testing::Test {
 protected:
  fs::path write(const std::string& name, const std::string& bytes) const {
    std::ofstream(folder_ / name, std::ios::binary) << bytes;
    return folder_ / name;
  }

  Package package(const std::string& json) const {
    return parseScenario("{\"package\": " + json + "}", folder_).package;
  }

  std::string installer(const std::string& json) const {
    const InstallerBytes bytes = makeInstaller(package(json));
    std::string whole(static_cast<std::size_t>(bytes.zeros), '\0');
    if (bytes.file) {
      std::ifstream in(*bytes.file, std::ios::binary);
      const std::string all{std::istreambuf_iterator<char>(in), {}};
      whole +=
          all.substr(static_cast<std::size_t>(bytes.offset), static_cast<std::size_t>(bytes.size));
    }
    for (const std::uint64_t offset : bytes.inverted) {
      char& byte = whole.at(static_cast<std::size_t>(offset));
      byte = static_cast<char>(~byte);
    }
    return whole;
  }

  test::TemporaryFolder temporary_;
  const fs::path& folder_ = temporary_.path();
};

TEST(Scenario, CanBeEmpty) {
  const Scenario scenario = parseScenario("{}");
  EXPECT_TRUE(scenario.script.empty());
  EXPECT_EQ(makeInstaller(scenario.package).length(), bareImageLength);
}

TEST(Scenario, ReadsEveryVerb) {
  const Scenario scenario = parseScenario(R"json({"name": "all", "script": [
    {"click": "Form2.Command1"}, {"click": "Frame1(2)"}, {"select": ["Combo1", "Deutsch"]},
    {"type": ["Text2", "D:\\Apps"]}, {"focus": "Command2"}, {"drive": "d:"}, {"folder": "C:\\Temp"},
    {"close": "Form1"}, {"answer": ["yes", "cancel", {"text": "New one"}]},
    {"at": {"yield": 7}, "do": [{"close": "Form1"}]},
    {"at": {"set": ["Label12.Caption", "Stop.wa_"]}, "do": []},
    {"at": {"box": 1}, "do": [{"expect": {"ended": null}}]},
    {"change": {"codePage": 1254}}, {"restart": true}, {"expect": {"ended": "unload"}},
    {"set": {"global.gLanguage": 1}}]})json");
  EXPECT_EQ(scenario.name, "all");
  ASSERT_EQ(scenario.script.size(), 16u);
  EXPECT_EQ(scenario.script[9].path, "$.script[9].at");
  EXPECT_EQ(std::get<Click>(scenario.script[0].action).control.parts,
            (std::vector<std::string>{"Form2", "Command1"}));
  EXPECT_EQ(std::get<GiveAnswers>(scenario.script[8].action).answers[2].text, u"New one");
  EXPECT_EQ(std::get<At>(scenario.script[9].action).steps.size(), 1u);
}

struct BadScript {
  const char* script;
  const char* error;
};

/// Names the test: by the error that it waits for.
void PrintTo(const BadScript& bad, std::ostream* stream) { *stream << bad.error; }

class BadScripts : public testing::TestWithParam<BadScript> {};

TEST_P(BadScripts, AreToldWithTheirPlaceAndReason) {
  EXPECT_EQ(readError("{\"script\": [" + std::string(GetParam().script) + "]}"), GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Scenario, BadScripts,
    testing::Values(
        BadScript{
            R"({"klick": "A"})",
            "$.script[0].klick: unknown key \"klick\"; the keys are click, select, type, focus, "
            "drive, folder, close, answer, change, restart, endSession, other, beside, expect, "
            "set, at"},
        BadScript{R"("click")",
                  "$.script[0]: no steps \"click\": no common.json is here or in the folder above"},
        BadScript{"{}", "$.script[0]: a step without a verb"},
        BadScript{R"({"click": "A", "focus": "B"})", "$.script[0]: a step has one verb, not 2"},
        BadScript{R"({"click": 5})", "$.script[0].click: a whole number where a text is wanted"},
        BadScript{R"({"click": "A.B.C"})",
                  "$.script[0].click: \"A.B.C\" is no name such as Form1.Command2"},
        BadScript{R"({"click": ""})", "$.script[0].click: \"\" is no name such as Form1.Command2"},
        BadScript{R"({"close": "Form1.X"})",
                  "$.script[0].close: \"Form1.X\" is no name such as Form1"},
        BadScript{R"({"select": ["Combo1"]})",
                  "$.script[0].select: a list of 1 where 2 elements are wanted"},
        BadScript{R"({"type": ["Text1", 5]})",
                  "$.script[0].type[1]: a whole number where a text is wanted"},
        BadScript{R"({"answer": "yes"})", "$.script[0].answer: a text where a list is wanted"},
        BadScript{R"({"answer": ["maybe"]})",
                  "$.script[0].answer[0]: no answer \"maybe\"; there are ok, cancel, abort, retry, "
                  "ignore, yes, no and {\"text\": ..}"},
        BadScript{R"({"answer": [{}]})", "$.script[0].answer[0]: the answer has no text"},
        BadScript{R"({"at": {"yield": 0}, "do": []})",
                  "$.script[0].at.yield: 0 is not within 1 to 1000000000"},
        BadScript{R"({"at": {"yield": 1}})", "$.script[0]: an \"at\" without its \"do\""},
        BadScript{R"({"do": []})", "$.script[0]: a \"do\" without its \"at\""},
        BadScript{R"({"at": {}, "do": []})", "$.script[0].at: one of yield, set and box is wanted"},
        BadScript{R"({"at": {"yield": 1, "box": 1}, "do": []})",
                  "$.script[0].at: one of yield, set and box is wanted"},
        BadScript{R"({"at": {"set": ["Label1", "x"]}, "do": []})",
                  "$.script[0].at.set[0]: a control and its property are wanted"},
        BadScript{R"({"at": {"yield": 1}, "do": [{"click": 1}]})",
                  "$.script[0].do[0].click: a whole number where a text is wanted"},
        BadScript{R"({"restart": false})", "$.script[0].restart: only true has a meaning here"},
        BadScript{
            R"({"expect": {"boxxes": []}})",
            "$.script[0].expect.boxxes: unknown key \"boxxes\"; the keys are "
            "Form.Control.Property, global., file:, dir:, registry:, shortcut:, boxes, shell, "
            "dde, opened, calls:, ended, active, focus"},
        BadScript{R"({"expect": {"file:x": "a"}})",
                  "$.script[0].expect[\"file:x\"]: \"x\" is no full path of the machine"},
        BadScript{
            R"({"expect": {"file:C:\\x": {"sice": 1}}})",
            "$.script[0].expect[\"file:C:\\\\x\"].sice: unknown key \"sice\"; the keys are exists, "
            "size, sha256, attributes, hexAt, text, contains, matches, not"},
        BadScript{R"({"expect": {"registry:HKEY_USERS\\x|y": 1}})",
                  "$.script[0].expect[\"registry:HKEY_USERS\\\\x|y\"]: the key is written as "
                  "HKEY_LOCAL_MACHINE\\Software\\Key|Name"},
        BadScript{R"({"expect": {"boxes": {"text": "a"}}})",
                  "$.script[0].expect.boxes: an object where a list of boxes is wanted"},
        BadScript{R"({"expect": {"boxes": [{"txt": "a"}]}})",
                  "$.script[0].expect.boxes[0].txt: unknown key \"txt\"; the keys are text, title, "
                  "style, answer"},
        BadScript{R"({"expect": {"ended": "crash"}})",
                  "$.script[0].expect.ended: an end is null, \"unload\", \"exit\", \"error\" or "
                  "{\"error\": number}"},
        BadScript{
            R"({"expect": {"shortcut:C:\\a.lnk": {"Target": "x"}}})",
            "$.script[0].expect[\"shortcut:C:\\\\a.lnk\"].Target: unknown key \"Target\"; the keys "
            "are TargetPath, Arguments, WindowStyle, IconLocation, Description, "
            "WorkingDirectory"},
        BadScript{R"({"set": {"gLanguage": 1}})",
                  "$.script[0].set.gLanguage: \"gLanguage\" is no global and no property"},
        BadScript{R"({"set": {"global.gLanguage": [1]}})",
                  "$.script[0].set[\"global.gLanguage\"]: a list where a text, a whole number, or "
                  "true or false is wanted"},
        BadScript{R"({"set": {"Label1.Caption": null}})",
                  "$.script[0].set[\"Label1.Caption\"]: null where a text, a whole number, or true "
                  "or false is wanted"},
        BadScript{R"({"set": {"Label1.Tag": 1.5}})",
                  "$.script[0].set[\"Label1.Tag\"]: a fraction where a text, a whole "
                  "number, or true or false is wanted"},
        BadScript{
            R"({"change": {"users": "x"}})",
            "$.script[0].change.users: unknown key \"users\"; the keys are version, architecture, "
            "wow64, metrics, productInfo, uiLanguage, codePage, user, domain, folders, drives, "
            "files, registry, windows, installer, services, programs, faults"}));

class BadMachines : public testing::TestWithParam<BadScript> {};

TEST_P(BadMachines, AreToldWithTheirPlaceAndReason) {
  EXPECT_EQ(readError("{\"machine\": {" + std::string(GetParam().script) + "}}"), GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Scenario, BadMachines,
    testing::Values(
        BadScript{R"("version": {"major": -1})",
                  "$.machine.version.major: -1 is not within 0 to 4294967295"},
        BadScript{R"("version": {"fails": 1})",
                  "$.machine.version.fails: a whole number where true or false is wanted"},
        BadScript{R"("metrics": {"x": 1})", "$.machine.metrics.x: the key \"x\" is no number"},
        BadScript{R"("codePage": 1361)", "$.machine.codePage: no code page that is known here"},
        BadScript{R"("user": 5)", "$.machine.user: a whole number where a text is wanted"},
        BadScript{
            R"("folders": {"home": "C:\\"})",
            "$.machine.folders.home: unknown key \"home\"; the keys are temp, windows, system, "
            "documents, localAppData, desktop, special"},
        BadScript{R"("drives": {"CD": {}})", "$.machine.drives.CD: \"CD\" is no letter of a drive"},
        BadScript{R"("drives": {"C": {"host": "nowhere"}})",
                  "$.machine.drives.C.host: no folder nowhere"},
        BadScript{R"("drives": {"C": {"bytesPerSector": 0}})",
                  "$.machine.drives.C.bytesPerSector: 0 is not within 1 to 1048576"},
        BadScript{R"("files": {"x.txt": "a"})",
                  "$.machine.files[\"x.txt\"]: \"x.txt\" is no full path of the machine, such as "
                  "C:\\Temp"},
        BadScript{R"("files": {"C:\\x": 5})",
                  "$.machine.files[\"C:\\\\x\"]: a whole number where a text, an object or null is "
                  "wanted"},
        BadScript{R"("files": {"C:\\x": {"text": "a", "size": 1}})",
                  "$.machine.files[\"C:\\\\x\"].size: one of directory, text, base64, size, host, "
                  "junction and symlink is "
                  "enough"},
        BadScript{R"("files": {"C:\\x": {"directory": false}})",
                  "$.machine.files[\"C:\\\\x\"].directory: only true has a meaning here"},
        BadScript{R"("files": {"C:\\x": {"directory": 1}})",
                  "$.machine.files[\"C:\\\\x\"].directory: a whole number where true or false is "
                  "wanted"},
        BadScript{R"("files": {"C:\\x": {"attributes": ["archive"]}})",
                  "$.machine.files[\"C:\\\\x\"].attributes[0]: no attribute \"archive\"; there are "
                  "hidden, "
                  "readonly, system"},
        BadScript{R"("files": {"C:\\x": {"deny": ["read"]}})",
                  "$.machine.files[\"C:\\\\x\"].deny[0]: \"read\" cannot be denied; create, write, "
                  "delete, "
                  "list can"},
        BadScript{
            R"("registry": {"HKEY_USERS": {}})",
            "$.machine.registry.HKEY_USERS: no hive \"HKEY_USERS\"; there are HKEY_CLASSES_ROOT, "
            "HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE"},
        BadScript{
            R"("registry": {"HKEY_CURRENT_USER": {"A": {"b": 4294967296}}})",
            "$.machine.registry.HKEY_CURRENT_USER.A.b: 4294967296 is not within -2147483648 to "
            "4294967295"},
        BadScript{
            R"("registry": {"HKEY_CURRENT_USER": {"A": {"b": {"type": 1}}}})",
            "$.machine.registry.HKEY_CURRENT_USER.A.b: a type and one of text and hex are wanted"},
        BadScript{R"("registry": {"deny": ["Software"]})",
                  "$.machine.registry.deny[0]: a key begins with its hive, such as "
                  "HKEY_LOCAL_MACHINE\\Software"},
        BadScript{R"("windows": "ZEV")", "$.machine.windows: a text where a list is wanted"},
        BadScript{R"("faults": [{"call": "Kill"}])",
                  "$.machine.faults[0]: a fault has one of error, raise and ignore"},
        BadScript{R"("faults": [{"call": "Kill", "error": 4294967296}])",
                  "$.machine.faults[0].error: 4294967296 is not within -2147483648 to 4294967295"},
        BadScript{R"("faults": [{"error": 5}])",
                  "$.machine.faults[0]: a fault names the call that it hits"},
        BadScript{R"("faults": [{"call": "Kill", "nth": 0, "error": 5}])",
                  "$.machine.faults[0].nth: 0 is not within 1 to 2147483647"},
        BadScript{R"("faults": [{"call": "Kill", "nth": "each", "error": 5}])",
                  "$.machine.faults[0].nth: a text where a number from 1 or \"all\" is wanted"}));

TEST(Scenario, RefusesAFaultOfAnOperationThatThereIsNot) {
  const std::string error =
      readError(R"({"script": [{"change": {"faults": [{"call": "NoSuchCall", "error": 5}]}}]})");
  EXPECT_TRUE(
      error.starts_with("$.script[0].change.faults[0].call: no operation \"NoSuchCall\"; "
                        "there are accept, Arguments, bind, BringWindowToTop, "))
      << error;
  EXPECT_TRUE(
      error.ends_with(", WorkingDirectory, WSAAsyncGetHostByName, WSAAsyncSelect, "
                      "WSACancelAsyncRequest, WSACleanup, WSAStartup"))
      << error;
}

TEST(Scenario, ReadsErrorNumbersByTheirBits) {
  const Scenario scenario = parseScenario(R"({"machine": {"faults": [
      {"call": "getusernamea", "error": 2147942405}, {"call": "Save", "raise": -2147024891}]}})");
  const std::vector<FaultChange>& faults = *scenario.machine.faults;
  EXPECT_EQ(faults[0].call, "GetUserNameA");
  EXPECT_EQ(faults[0].error, -2147024891);
  EXPECT_EQ(faults[1].raise, -2147024891);
}

TEST(Scenario, RefusesAnUnknownKeyOfItsOwn) {
  EXPECT_EQ(readError(R"({"scripts": []})"),
            "$.scripts: unknown key \"scripts\"; the keys are name, machine, package, script");
}

TEST_F(ScenarioFiles, FindsThePackageBesideTheScenario) {
  write("setup.bin", "0123456789");
  const fs::path file = write("one.json", R"({"package": {"file": "setup.bin"}})");
  EXPECT_EQ(makeInstaller(readScenario(file).package).length(), 10u);
  EXPECT_EQ(errorOf([&] { installer(R"({"file": "other.bin"})"); }),
            "$.package.file: no file " + (folder_ / "other.bin").string());
}

TEST_F(ScenarioFiles, TellsAFileThatCannotBeRead) {
  EXPECT_EQ(errorOf([&] { readScenario(folder_ / "none.json"); }), "$: cannot be read");
  EXPECT_EQ(errorOf([&] { readScenario(folder_); }), "$: cannot be read");
}

TEST_F(ScenarioFiles, CutsLengthensAndInvertsThePackage) {
  write("p", "0123456789");
  EXPECT_EQ(installer(R"({"file": "p", "cutEnd": 3})"), "0123456");
  EXPECT_EQ(installer(R"({"file": "p", "cutStart": 2, "cutEnd": 1})"), "2345678");
  EXPECT_EQ(installer(R"({"file": "p", "keepEnd": 3})"), "789");
  EXPECT_EQ(installer(R"({"file": "p", "keepEnd": 3, "length": 4})"), std::string("\0", 1) + "789");
  EXPECT_EQ(installer(R"({"file": "p", "length": 4})"), "0123");
  EXPECT_EQ(installer(R"({"file": "p", "length": 12})"), std::string("\0\0", 2) + "0123456789");
  EXPECT_EQ(installer(R"({"file": "p", "cutEnd": 9, "length": 2})"), std::string("\0", 1) + "0");
  EXPECT_EQ(installer(R"({"file": "p", "length": 2, "flip": [1]})"), "0\xCE");
}

TEST_F(ScenarioFiles, TakesNumbersOfBytesUpToTwoGigabytes) {
  EXPECT_EQ(package(R"({"length": 2147483648})").length, std::uint64_t{2147483648});
  EXPECT_EQ(errorOf([&] { package(R"({"length": 2147483649})"); }),
            "$.package.length: 2147483649 is not within 0 to 2147483648");
}

TEST_F(ScenarioFiles, RefusesToCutMoreThanThereIs) {
  write("p", "0123456789");
  EXPECT_EQ(errorOf([&] { installer(R"({"file": "p", "cutEnd": 11})"); }),
            "$.package: more is cut off than the 10 bytes that the file has");
  EXPECT_EQ(errorOf([&] { installer(R"({"file": "p", "flip": [10]})"); }),
            "$.package.flip: 10 is behind the end of 10 bytes");
}

}  // namespace
}  // namespace zev::scenario
