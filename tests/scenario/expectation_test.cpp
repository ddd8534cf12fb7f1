#include "scenario/expectation.h"

#include <gtest/gtest.h>

#include "scenario/toy_play.h"
#include "simulated/put_text.h"

namespace zev::scenario {
namespace {

constexpr std::string_view files = R"("codePage": 1254, "files": {
    "C:\\d\\b.txt": "Işık", "C:\\d\\A.txt": {"size": 40, "attributes": ["hidden", "readonly"]},
    "C:\\d\\c": {"directory": true}, "C:\\hex.bin": {"base64": "AAECAwT/"}})";

TEST(Expectation, TakesPropertiesInTheirOwnTypes) {
  EXPECT_TRUE(holds("", R"("Form1.Command2.Caption": "&Next >>", "Form1.Command2.Enabled": true,
      "Form1.Check1.Value": 0, "Form1.Option1.Value": false, "Form1.Combo1.ListIndex": -1,
      "Form1.Text1.Text": "first", "Form1.Frame1(2).Visible": false)"));
  EXPECT_FALSE(holds("", R"("Form1.Check1.Value": false)"));
  EXPECT_FALSE(holds("", R"("Form1.Option1.Value": 0)"));
}

TEST(Expectation, TakesPropertiesOfAFormAndNamesInAnyCase) {
  EXPECT_TRUE(holds("", R"("Form1.Visible": true, "form1.CAPTION": "Toy", "Form2.Visible": false,
                            "FORM1.command2.caption": "&Next >>",
                            "Form2.Command1.Caption": "OK")"));
}

TEST(Expectation, MeansTheActiveFormWithoutAForm) {
  EXPECT_TRUE(holds("", R"("Command2.Caption": "&Next >>")"));
}

TEST(Expectation, TellsTheEntriesOfAList) {
  EXPECT_TRUE(holds("", R"("Form1.Combo1.ListCount": 3,
                            "Form1.Combo1.List": ["English", "Deutsch", "Français"])"));
}

TEST(Expectation, TellsTheActiveFormAndTheFocus) {
  EXPECT_TRUE(holds("", R"("active": "Form1", "focus": "Form1.Command2")"));
}

TEST(Expectation, RefusesNamesThatTheProgramDoesNotHave) {
  const auto error = [](const char* key) {
    return errorOf([&] { holds("", "\"" + std::string(key) + "\": 1"); });
  };
  EXPECT_EQ(error("Form9.A.Caption"),
            "$.script[0].expect[\"Form9.A.Caption\"]: the program has no form Form9");
  EXPECT_EQ(error("Form1.A.Caption"),
            "$.script[0].expect[\"Form1.A.Caption\"]: Form1 has no control A");
  EXPECT_EQ(error("Form1.Text1.Value"),
            "$.script[0].expect[\"Form1.Text1.Value\"]: Text1 has no property Value");
  EXPECT_EQ(error("global.gNone"),
            "$.script[0].expect[\"global.gNone\"]: the program has no global gNone");
}

TEST(Expectation, TrimsGlobals) {
  EXPECT_TRUE(holds("", R"("global.gName": "", "global.gPage": 1)"));
  const ToyPlay play = playScript(R"({"set": {"global.gName": "  two words  "}},
                                  {"expect": {"global.gName": "two words"}})");
  EXPECT_EQ(play.verdicts.failures, std::vector<std::string>{});
}

TEST(Expectation, ReadsAFileAsTextInTheCodePage) {
  EXPECT_TRUE(holds(files, R"("file:C:\\d\\b.txt": "Işık")"));
  EXPECT_TRUE(holds(files, R"("file:c:/D/B.TXT": {"contains": "şı"})"));
  EXPECT_TRUE(holds(files, R"("file:C:\\d\\b.txt": {"not": "Isik"})"));
  EXPECT_FALSE(holds(files, R"("file:C:\\d\\b.txt": "Işık\r\n")"));
  EXPECT_FALSE(holds(files, R"("file:C:\\d\\none.txt": "")"));
  EXPECT_TRUE(holds(files, R"("file:C:\\d\\none.txt": null)"));
}

TEST(Expectation, TellsFactsOfAFile) {
  EXPECT_TRUE(holds(files, R"("file:C:\\d\\A.txt": {"exists": true, "size": 40,
                                                   "attributes": ["readonly", "hidden"]})"));
  EXPECT_FALSE(holds(files, R"("file:C:\\d\\A.txt": {"exists": true, "size": 41})"));
  EXPECT_FALSE(holds(files, R"("file:C:\\d\\A.txt": {"attributes": ["hidden"]})"));
  EXPECT_TRUE(holds(files, R"("file:C:\\d\\A.txt": {"attributes": {"contains": "hidden"}})"));
  EXPECT_FALSE(
      holds(files, R"("file:C:\\d\\A.txt": {"attributes": {"not": ["readonly", "hidden"]}})"));
  EXPECT_TRUE(holds(files, R"("file:C:\\d\\b.txt": {"attributes": []})"));
  EXPECT_TRUE(holds(files, R"("file:C:\\d\\none": {"exists": false})"));
  EXPECT_FALSE(holds(files, R"("file:C:\\d\\b.txt": {"exists": false})"));
  EXPECT_TRUE(holds(files, R"("file:C:\\d\\c": {"exists": true, "size": null})"));
  EXPECT_TRUE(
      holds(files, R"("file:C:\\hex.bin": {"text": {"contains": ""}, "size": {"not": 0}})"));
}

TEST(Expectation, DeniesFactsOfAFile) {
  EXPECT_TRUE(holds(files, R"("file:C:\\d\\A.txt": {"not": {"size": 41}})"));
  EXPECT_FALSE(holds(files, R"("file:C:\\d\\A.txt": {"not": {"size": 40}})"));
  EXPECT_TRUE(holds(files, R"("file:C:\\d\\A.txt": {"not": {"not": {"size": 40}}})"));
  EXPECT_TRUE(holds(files, R"("file:C:\\d\\b.txt": {"not": {"attributes": ["hidden"]}})"));
  EXPECT_FALSE(holds(files, R"("dir:C:\\d": {"not": {"exists": true}})"));
  EXPECT_TRUE(holds(files, R"("dir:C:\\none": {"not": {"exists": true}})"));
  EXPECT_TRUE(errorOf([] {
                holds("", R"("file:C:\\a": {"not": {"bytes": 1}})");
              }).starts_with("$.script[0].expect[\"file:C:\\\\a\"].not.bytes: unknown key"));
}

TEST(Expectation, TellsTheSumOfAFileInEitherCase) {
  EXPECT_TRUE(holds(R"("files": {"C:\\e": {"base64": "YWJj"}})",
                    R"("file:C:\\e": {"sha256":
        "BA7816BF8F01CFEA414140DE5DAE2223B00361A396177A9CB410FF61F20015AD"})"));
  EXPECT_FALSE(holds(R"("files": {"C:\\e": ""})", R"("file:C:\\e": {"sha256": "00"})"));
  EXPECT_FALSE(holds(R"("files": {"C:\\e": {"base64": "YWJj"}})",
                     R"("file:C:\\e": {"sha256": {"not":
        "BA7816BF8F01CFEA414140DE5DAE2223B00361A396177A9CB410FF61F20015AD"}})"));
}

TEST(Expectation, TellsBytesAtAPlace) {
  EXPECT_TRUE(holds(files, R"("file:C:\\hex.bin": {"hexAt": [3, "0304FF"]})"));
  EXPECT_FALSE(holds(files, R"("file:C:\\hex.bin": {"hexAt": [4, "0304"]})"));
  EXPECT_FALSE(holds(files, R"("file:C:\\hex.bin": {"hexAt": [5, "ff00"]})"));
  EXPECT_FALSE(holds(files, R"("file:C:\\none.bin": {"hexAt": [0, "00"]})"));
}

TEST(Expectation, ListsADirectoryInAnyOrder) {
  EXPECT_TRUE(holds(files, R"("dir:C:\\d": ["A.txt", "b.txt", "c"])"));
  EXPECT_TRUE(holds(files, R"("dir:C:\\D\\": ["c", "b.txt", "A.txt"])"));
  EXPECT_FALSE(holds(files, R"("dir:C:\\d": ["A.txt", "b.txt"])"));
  EXPECT_TRUE(holds(files, R"("dir:C:\\d": {"contains": "b.txt"})"));
  EXPECT_FALSE(holds(files, R"("dir:C:\\d": {"not": ["c", "b.txt", "A.txt"]})"));
  EXPECT_TRUE(holds(files, R"("dir:C:\\d": [{"matches": "^A"}, "b.txt", {"not": "d"}])"));
  EXPECT_TRUE(holds(files, R"("dir:C:\\d\\c": [])"));
  EXPECT_TRUE(holds(files, R"("dir:C:\\none": null)"));
  EXPECT_FALSE(holds(files, R"("dir:C:\\none": [])"));
  EXPECT_TRUE(holds(files, R"("dir:C:\\none": {"exists": false})"));
}

TEST(Expectation, RefusesAPathThatNoFileCanHave) {
  EXPECT_TRUE(errorOf([] {
                holds("", R"("file:C:\\a?b": {"exists": false})");
              }).starts_with("$.script[0].expect[\"file:C:\\\\a?b\"]: "));
}

constexpr std::string_view registry = R"("registry": {"HKEY_CURRENT_USER": {"Software\\T": {
    "": "default", "text": "abc", "number": -1, "long": {"type": 2, "text": "%X%"},
    "bytes": {"type": 3, "hex": "00FF"}}}})";

TEST(Expectation, ReadsRegistryValuesAsAMachineWritesThem) {
  EXPECT_TRUE(holds(registry, R"("registry:HKEY_CURRENT_USER\\Software\\T|text": "abc",
      "registry:HKEY_CURRENT_USER\\Software\\T|": "default",
      "registry:HKCU\\software\\t|TEXT": {"contains": "b"},
      "registry:HKEY_CURRENT_USER\\Software\\T|number": 4294967295,
      "registry:HKEY_CURRENT_USER\\Software\\T|long": {"type": 2, "text": "%X%"},
      "registry:HKEY_CURRENT_USER\\Software\\T|bytes": {"type": 3, "hex": "00fF"},
      "registry:HKEY_CURRENT_USER\\Software\\T|none": null,
      "registry:HKEY_CURRENT_USER\\Software\\None|x": null)"));
}

TEST(Expectation, TakesANegativeRegistryNumberAsItsBits) {
  EXPECT_TRUE(holds(registry, R"("registry:HKEY_CURRENT_USER\\Software\\T|number": -1)"));
  EXPECT_FALSE(holds(registry, R"("registry:HKEY_CURRENT_USER\\Software\\T|number": {"not": -1})"));
  EXPECT_FALSE(holds(registry, R"("registry:HKEY_CURRENT_USER\\Software\\T|number": -2)"));
}

TEST(Expectation, TellsTheTypeOfARegistryValueWhereItIsAsked) {
  EXPECT_TRUE(holds(
      registry, R"("registry:HKEY_CURRENT_USER\\Software\\T|text": {"type": 1, "text": "abc"})"));
  EXPECT_FALSE(holds(
      registry, R"("registry:HKEY_CURRENT_USER\\Software\\T|text": {"type": 2, "text": "abc"})"));
  EXPECT_TRUE(
      holds(registry,
            R"("registry:HKEY_CURRENT_USER\\Software\\T|text": {"type": 1, "hex": "61626300"})"));
  EXPECT_FALSE(holds(registry, R"("registry:HKEY_CURRENT_USER\\Software\\T|long": "%X%")"));
}

TEST(Expectation, TellsTheTextOrTheBytesOfARegistryValueWhereTheyAreAsked) {
  EXPECT_TRUE(holds(registry, R"("registry:HKCU\\Software\\T|text": {"hex": "61626300"},
                                 "registry:HKCU\\Software\\T|TEXT": {"text": "abc"},
                                 "registry:HKCU\\Software\\T|number": {"hex": "FFFFFFFF"},
                                 "registry:HKCU\\Software\\T|long": {"text": "%X%"})"));
  EXPECT_FALSE(holds(registry, R"("registry:HKCU\\Software\\T|text": {"hex": "616263"})"));
}

TEST(Expectation, ReadsAWholeRegistryKey) {
  EXPECT_TRUE(
      holds(registry, R"("registry:HKEY_CURRENT_USER\\Software\\T": {"text": "abc", "number": -1},
                                 "registry:HKEY_CURRENT_USER\\Software\\None": null)"));
  EXPECT_FALSE(holds(registry, R"("registry:HKEY_CURRENT_USER\\Software\\T": {"text": "abd"})"));
  EXPECT_TRUE(holds(registry, R"("registry:HKEY_CURRENT_USER\\Software\\T": {
      "text": {"type": 1, "text": "abc"}, "number": {"not": -2}})"));
  EXPECT_FALSE(holds(registry, R"("registry:HKEY_CURRENT_USER\\Software\\T": {
      "text": {"type": 2, "text": "abc"}})"));
  EXPECT_FALSE(holds(registry, R"("registry:HKEY_CURRENT_USER\\Software\\None": {})"));
}

TEST(Expectation, FindsNoShortcutWhereNoneWasMade) {
  EXPECT_TRUE(holds("", R"("shortcut:C:\\a.lnk": null)"));
  EXPECT_FALSE(holds("", R"("shortcut:C:\\a.lnk": {"targetpath": "C:\\a.exe"})"));
  EXPECT_TRUE(errorOf([] {
                holds("", R"("shortcut:C:\\a.lnk": {"not": {"target": "C:\\a.exe"}})");
              }).ends_with("IconLocation, Description, WorkingDirectory"));
}

TEST(Expectation, StartsWithNothingHappened) {
  EXPECT_TRUE(holds("", R"("boxes": [], "shell": [], "dde": [], "opened": [], "ended": null,
                            "calls:MsgBox": 0)"));
}

/// Whether a key holds against what a toy at rest has started.
class StartExpectation : public testing::Test {
 protected:
  StartExpectation() {
    simulated::SimulatedMachine& machine = play.stage->machine();
    putText(machine.disks(), u"C:\\a.exe", "MZ");
    machine.platform().processes.Shell(u"C:\\a.exe /x", 1);
    EXPECT_THROW(machine.platform().processes.Shell(u"\"C:\\none.exe\"", 7), RuntimeError);
    machine.disks().putDirectory(u"C:\\Some Where");
    machine.platform().processes.ShellExecuteA(0, u"", u"C:\\Some Where", u"", u"C:", 3);
  }
  bool found(const std::string& key, std::string_view written) {
    const Json value = parseJson(written);
    checkExpectation(key, JsonReader(value));
    return play.stage->play().verdictOn({key, value, "$"}).value().held;
  }
  std::string foundAs(const std::string& key, std::string_view written) {
    return play.stage->play().verdictOn({key, parseJson(written), "$"}).value().found.dump();
  }

  ToyPlay play{"{}"};
};

TEST_F(StartExpectation, TellsWhatWasStartedByItsWords) {
  EXPECT_TRUE(found("shell", R"(["C:\\a.exe /x", "\"C:\\none.exe\""])"));
  EXPECT_TRUE(found("shell", R"([{"contains": "a.exe"}, {"not": "C:\\none.exe"}])"));
  EXPECT_TRUE(found("shell", R"({"contains": "C:\\a.exe /x"})"));
  EXPECT_FALSE(found("shell", R"(["C:\\a.exe /x"])"));
  EXPECT_TRUE(found("opened", R"(["C:\\Some Where"])"));
  EXPECT_EQ(foundAs("shell", "[]"), R"(["C:\\a.exe /x","\"C:\\none.exe\""])");
}

TEST_F(StartExpectation, TellsWindowAndFolderToAnObject) {
  EXPECT_TRUE(found("shell", R"([
      {"command": "C:\\a.exe /x", "style": 1, "directory": "C:\\Users\\bob\\Downloads"},
      {"command": {"contains": "none"}, "style": 7}])"));
  EXPECT_FALSE(found("shell", R"([{"style": 1}, {"style": 1}])"));
  EXPECT_FALSE(found("shell", R"([{"style": 1}, {"directory": "C:\\"}])"));
  EXPECT_TRUE(found("shell", R"({"contains": {"style": 7}})"));
  EXPECT_FALSE(found("shell", R"({"contains": {"command": "C:\\a.exe /x", "style": 7}})"));
  EXPECT_TRUE(found("shell", R"({"not": {"contains": {"style": 2}}})"));
  EXPECT_TRUE(found("opened", R"([{"path": "C:\\Some Where", "style": 3, "directory": "C:"}])"));
  EXPECT_FALSE(found("opened", R"([{"directory": ""}])"));
  EXPECT_EQ(foundAs("opened", R"([{"style": 1}])"),
            R"([{"path":"C:\\Some Where","style":3,"directory":"C:"}])");
}

TEST_F(StartExpectation, RefusesOtherKeysAndTextsBesideObjects) {
  const auto error = [&](const char* key, std::string_view written) {
    return errorOf([&] { found(key, written); });
  };
  EXPECT_EQ(error("shell", R"([{"path": "C:\\a.exe"}])"),
            "$[0].path: unknown key \"path\"; the keys are command, style, directory");
  EXPECT_EQ(
      error("opened", R"({"not": {"contains": [{"command": "C:\\"}]}})"),
      "$.not.contains[0].command: unknown key \"command\"; the keys are path, style, directory");
  EXPECT_EQ(error("shell", R"([{"style": 1}, {"not": "C:\\a.exe"}])"),
            "$: texts beside objects: give each as an object with its command");
  EXPECT_EQ(error("opened", R"({"contains": ["C:\\a", {"style": 1}]})"),
            "$: texts beside objects: give each as an object with its path");
}

TEST(Expectation, CountsTheCallsOfAnOperation) {
  const ToyPlay play = playScript(R"({"answer": ["no", "no"]}, {"click": "Command3"},
      {"click": "Command3"}, {"expect": {"calls:MsgBox": 2, "calls:InputBox": 0}})");
  EXPECT_EQ(play.verdicts.failures, std::vector<std::string>{});
}

TEST(Expectation, TakesBoxesByTheKeysThatAreGivenAndForgetsThem) {
  const ToyPlay play = playScript(R"({"answer": ["no", "no"]}, {"click": "Command3"},
      {"expect": {"boxes": [{"text": "Do you want to leave?", "style": 36, "title": "Toy"}]}},
      {"expect": {"boxes": []}}, {"click": "Command3"},
      {"expect": {"boxes": [{"text": {"contains": "leave"}, "answer": "no"}]}})");
  EXPECT_EQ(play.verdicts.failures, std::vector<std::string>{});
}

TEST(Expectation, TellsHowTheProgramEnded) {
  const auto ends = [](std::string_view step, std::string_view expected) {
    const ToyPlay play = playScript(std::string(step) +
                                    ", {\"expect\": {\"ended\": " + std::string(expected) + "}}");
    return play.verdicts.failures.empty();
  };
  EXPECT_TRUE(ends(R"({"click": "Command3"})", R"("unload")"));
  EXPECT_TRUE(ends(R"({"click": "Command6"})", R"("exit")"));
  EXPECT_TRUE(ends(R"({"click": "Command7"})", R"("error")"));
  EXPECT_TRUE(ends(R"({"click": "Command7"})", R"({"error": 75})"));
  EXPECT_FALSE(ends(R"({"click": "Command7"})", R"({"error": 76})"));
  EXPECT_TRUE(ends(R"({"click": "Command7"})", R"({"not": "unload"})"));
  EXPECT_FALSE(ends(R"({"click": "Command7"})", R"({"not": "error"})"));
  EXPECT_FALSE(ends(R"({"click": "Command6"})", R"("unload")"));
  EXPECT_FALSE(ends(R"({"click": "Command6"})", "null"));
}

}  // namespace
}  // namespace zev::scenario
