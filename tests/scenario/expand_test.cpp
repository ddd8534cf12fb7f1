#include "scenario/written_out.h"

#include <gtest/gtest.h>

#include <fstream>

#include "scenario/common_names.h"
#include "scenario/toy_play.h"
#include "support/temporary_folder.h"

namespace zev::scenario {
namespace {

namespace fs = std::filesystem;

/// What the scenarios of these tests name.
constexpr const char* named = R"json({
  "values": {"menu": "C:\\Menu", "inner": "$(menu)\\Inner", "list": ["a", "b"], "loop": "$(loop)",
             "seven": 7},
  "machines": {"vista": {"version": {"minor": 0}}, "vista of bob": ["vista", {"user": "bob"}]},
  "steps": {
    "install": [{"click": "Command2"}, {"click": "Option1"}],
    "install twice": ["install", "install"],
    "type": [{"type": ["Text2", "$(directory)"]}],
    "type in menu": [{"use": "type", "directory": "$(menu)\\$(folder)"}],
    "bad": [{"click": "Command2"}, {"click": 5}],
    "self": ["other"], "other": ["self"]},
  "expect": {
    "finished": {"Form1.Command2.Caption": "Finish"},
    "finished well": [{"boxes": []}, "finished"],
    "boxed": {"boxes": [{"use": "cancel?", "answer": "$(answer)"}]},
    "file": {"file:$(directory)\\$(name)": {"size": "$(size)"}}},
  "boxes": {"cancel?": {"text": "Cancel?"}, "no": {"use": "cancel?", "answer": "no"},
            "told": {"text": "$(text)"}, "two": [{"text": "1"}, {"text": "2"}]}
})json";

/// A folder of scenarios below one that has a file of names.
class Expand : public testing::Test {
 protected:
  Expand() {
    fs::create_directories(above_ / "here");
    write(above_ / commonFile, named);
  }

  static void write(const fs::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
  }

  fs::path here() const { return above_ / "here"; }

  std::string expanded(const std::string& text,
                       const std::optional<std::string>& chosen = std::nullopt) const {
    return writeOut(parseJson(text), here(), chosen).document.dump();
  }

  /// A list of steps written out.
  std::string steps(const std::string& list) const {
    const WrittenOut out = writeOut(parseJson("{\"script\": " + list + "}"), here());
    return out.document["script"].dump();
  }

  /// Why a scenario cannot be read.
  std::string error(const std::string& text,
                    const std::optional<std::string>& chosen = std::nullopt) const {
    write(here() / "a.json", text);
    return errorOf([&] { readScenario(here() / (chosen ? "a.json#" + *chosen : "a.json")); });
  }
  std::string errorOfSteps(const std::string& list) const {
    return error("{\"script\": " + list + "}");
  }

  test::TemporaryFolder temporary_;
  const fs::path& above_ = temporary_.path();
};

/// What was read once is not used any more when the file has another text, be it as long.
TEST_F(Expand, ReadsNamesAnewThatHaveChanged) {
  for (const std::string value : {"one", "two", "one"}) {
    write(above_ / commonFile, R"j({"values": {"which": ")j" + value + R"j("}})j");
    EXPECT_EQ(expanded(R"j({"name": "$(which)"})j"), R"j({"name":")j" + value + R"j("})j");
  }
}

TEST_F(Expand, LeavesAPlainScenarioAsItIs) {
  const std::string plain =
      R"j({"name":"a","machine":{"user":"bob"},"package":{"length":5},"script":[{"click":"A"},)j"
      R"j({"at":{"box":1},"do":[{"expect":{"boxes":[{"text":"x"}],"ended":null}}]}]})j";
  EXPECT_EQ(expanded(plain), plain);
  EXPECT_EQ(expanded("{}"), "{}");
}

TEST_F(Expand, NeedsNoFileOfNamesForAPlainScenario) {
  fs::remove(above_ / commonFile);
  EXPECT_EQ(steps(R"j([{"click": "A"}])j"), R"j([{"click":"A"}])j");
}

TEST_F(Expand, PutsNamedStepsIntoTheList) {
  EXPECT_EQ(steps(R"j(["install", {"click": "A"}])j"),
            R"j([{"click":"Command2"},{"click":"Option1"},{"click":"A"}])j");
  EXPECT_EQ(steps(R"j("install")j"), R"j([{"click":"Command2"},{"click":"Option1"}])j");
  EXPECT_EQ(steps(R"j(["install twice"])j"), steps(R"j(["install", "install"])j"));
  EXPECT_EQ(steps(R"j([{"at": {"box": 1}, "do": ["install"]}])j"),
            R"j([{"at":{"box":1},"do":[{"click":"Command2"},{"click":"Option1"}]}])j");
  EXPECT_EQ(steps(R"j([{"beside": ["install"]}])j"),
            R"j([{"beside":[{"click":"Command2"},{"click":"Option1"}]}])j");
}

TEST_F(Expand, GivesValuesToWhatItUses) {
  EXPECT_EQ(steps(R"j([{"use": "type", "directory": "D:\\"}])j"),
            R"j([{"type":["Text2","D:\\"]}])j");
  EXPECT_EQ(steps(R"j([{"use": "type in menu", "folder": "x"}])j"),
            R"j([{"type":["Text2","C:\\Menu\\x"]}])j");
}

TEST_F(Expand, FillsTextsAndKeysWithNamedValues) {
  EXPECT_EQ(steps(R"j([{"type": ["A", "$(inner)\\x$(seven)"]}])j"),
            R"j([{"type":["A","C:\\Menu\\Inner\\x7"]}])j");
  EXPECT_EQ(steps(R"j([{"expect": {"dir:$(menu)": "$(list)", "size": "$(seven)"}}])j"),
            R"j([{"expect":{"dir:C:\\Menu":["a","b"],"size":7}}])j");
}

TEST_F(Expand, TellsAMistakeBelowAFilledKeyByTheKeyAsItIsWritten) {
  EXPECT_EQ(errorOfSteps(R"j([{"expect": {"dir:$(menu)": {"matches": 1}}}])j"),
            "$.script[0].expect[\"dir:$(menu)\"].matches: a whole number where a text is wanted");
  EXPECT_EQ(error(R"j({"machine": {"files": {"$(menu)": {"text": 1}}}})j"),
            "$.machine.files[\"$(menu)\"].text: a whole number where a text is wanted");
}

TEST_F(Expand, UsesANameOnceForEachOfSeveralValues) {
  EXPECT_EQ(steps(R"j([{"use": "type", "each": {"directory": ["a", "$(menu)"]}}])j"),
            R"j([{"type":["Text2","a"]},{"type":["Text2","C:\\Menu"]}])j");
  EXPECT_EQ(steps(R"j([{"use": "type", "each": {"directory": {"from": "x098", "to": "x100"}}}])j"),
            R"j([{"type":["Text2","x098"]},{"type":["Text2","x099"]},{"type":["Text2","x100"]}])j");
  EXPECT_EQ(steps(R"j([{"expect": {"use": "file", "directory": "C:",
                                   "each": {"name": ["a", "b"], "size": {"from": 9, "to": 10}}}}])j"),
            R"j([{"expect":{"file:C:\\a":{"size":9},"file:C:\\b":{"size":10}}}])j");
}

TEST_F(Expand, RefusesWhatIsNoListOfValues) {
  const auto errorOf = [&](const std::string& each) {
    return errorOfSteps(R"j([{"use": "type", "each": )j" + each + "}]");
  };
  EXPECT_EQ(errorOf("{}"), "$.script[0].each: an object of lists is wanted");
  EXPECT_EQ(errorOf("[]"), "$.script[0].each: an object of lists is wanted");
  for (const char* const list :
       {"5", "[]", R"j({"from": 1})j", R"j({"from": 1, "to": 2, "by": 3})j"}) {
    EXPECT_EQ(errorOf(std::string("{\"directory\": ") + list + "}"),
              "$.script[0].each.directory: a list, or {\"from\": .., \"to\": ..}, is wanted");
  }
  EXPECT_EQ(errorOf(R"j({"directory": ["a"], "more": ["b", "c"]})j"),
            "$.script[0].each.more: a list of 2 beside one of 1");
  EXPECT_EQ(errorOf(R"j({"directory": ["a"], "more": ["b"]})j"),
            "$.script[0].each.more[0]: \"type\" has no $(more) for this value");
  EXPECT_EQ(errorOf(R"j({"directory": ["a", 5]})j"),
            "$.script[0] uses ../common.json: $.steps.type[0].type[1] uses "
            "$.script[0].each.directory[1]: a whole number where a text is wanted");
  struct Range {
    const char* from;
    const char* to;
  };
  for (const auto& [from, to] :
       {Range{"2", "1"}, Range{"\"a1\"", "\"b2\""}, Range{"\"a1\"", "\"a10\""},
        Range{"\"a\"", "\"a\""}, Range{"0", "100000"}, Range{"-1", "1"}, Range{"1", "\"2\""},
        Range{"\"0000001\"", "\"0000002\""}}) {
    EXPECT_EQ(errorOf(std::string("{\"directory\": {\"from\": ") + from + ", \"to\": " + to + "}}"),
              std::string("$.script[0].each.directory: nothing can be counted from ") + from +
                  " to " + to);
  }
}

TEST_F(Expand, AddsTheAnswerOfABox) {
  EXPECT_EQ(steps(R"j([{"expect": {"boxes": [{"use": "two", "answer": "$(seven)"}]}}])j"),
            R"j([{"expect":{"boxes":[{"text":"1"},{"text":"2","answer":7}]}}])j");
  EXPECT_EQ(steps(R"j([{"expect": {"boxes": [{"use": "told", "answer": "ok",
                                              "each": {"text": ["1", "2"]}}]}}])j"),
            R"j([{"expect":{"boxes":[{"text":"1","answer":"ok"},{"text":"2","answer":"ok"}]}}])j");
  EXPECT_EQ(errorOfSteps(R"j([{"expect": {"boxes": [{"use": "no", "answer": "ok"}]}}])j"),
            "$.script[0].expect.boxes[0].answer: the box has no place for an answer");
}

TEST_F(Expand, JoinsExpectationsInTheirOrder) {
  EXPECT_EQ(steps(R"j([{"expect": ["finished well", {"ended": null}]}])j"),
            R"j([{"expect":{"boxes":[],"Form1.Command2.Caption":"Finish","ended":null}}])j");
  EXPECT_EQ(steps(R"j([{"expect": "finished"}])j"),
            R"j([{"expect":{"Form1.Command2.Caption":"Finish"}}])j");
  EXPECT_EQ(steps(R"j([{"expect": {"boxes": ["no", {"text": "x"}]}}])j"),
            R"j([{"expect":{"boxes":[{"text":"Cancel?","answer":"no"},{"text":"x"}]}}])j");
  EXPECT_EQ(steps(R"j([{"expect": {"use": "boxed", "answer": {"not": "no"}}}])j"),
            R"j([{"expect":{"boxes":[{"text":"Cancel?","answer":{"not":"no"}}]}}])j");
}

TEST_F(Expand, JoinsMachinesObjectByObject) {
  EXPECT_EQ(expanded(R"j({"machine": ["vista of bob", {"version": {"build": 1}}]})j"),
            R"j({"machine":{"version":{"minor":0,"build":1},"user":"bob"}})j");
  EXPECT_EQ(steps(R"j([{"change": "vista"}])j"), R"j([{"change":{"version":{"minor":0}}}])j");
}

TEST_F(Expand, JoinsListsOfMachines) {
  EXPECT_EQ(expanded(R"j({"machine": [{"windows": ["a"]}, {"windows": ["$(menu)", "b"]}]})j"),
            R"j({"machine":{"windows":["a","C:\\Menu","b"]}})j");
  EXPECT_EQ(error(R"j({"machine": [{"windows": ["a", "b"]}, {"windows": ["c", 5]}]})j"),
            "$.machine[1].windows[1]: a whole number where a text is wanted");
}

constexpr const char* table = R"json({
  "name": "all", "machine": {"user": "$(user)"},
  "script": [{"expect": {"ended": "$(end)"}}, "$(more)"],
  "cases": {"first": {"user": "a$", "end": null, "more": "install"},
            "second": {"name": "the other", "user": "b", "end": {"error": 5},
                       "more": [{"click": "$(user)"}]}}})json";

TEST_F(Expand, WritesOutTheCaseThatIsMeant) {
  EXPECT_EQ(expanded(table, "first"),
            R"j({"name":"all","machine":{"user":"a$"},"script":[{"expect":{"ended":null}},)j"
            R"j({"click":"Command2"},{"click":"Option1"}]})j");
  EXPECT_EQ(casesOf(parseJson(table)), (std::vector<std::string>{"first", "second"}));
  EXPECT_EQ(casesOf(parseJson("{}")), std::vector<std::string>{});
  EXPECT_EQ(casesOf(parseJson("[]")), std::vector<std::string>{});
}

TEST_F(Expand, FillsTheValuesOfACaseWithNamedOnesAlone) {
  EXPECT_EQ(expanded(R"j({"name": "$(a)", "cases": {"x": {"a": "$(inner)"}}})j", "x"),
            R"j({"name":"C:\\Menu\\Inner"})j");
  EXPECT_EQ(error(table, "second"), "$.cases.second.more[0].click: $(user) is no named value");
}

TEST_F(Expand, NamesTheCaseByItsOwnName) {
  EXPECT_EQ(expanded(R"j({"name": "a", "cases": {"one": {"name": "b"}}})j", "one"),
            R"j({"name":"b"})j");
}

TEST_F(Expand, ReadsACaseByItsAddress) {
  write(here() / "t.json", R"j({"script": [{"click": "$(what)"}], "cases": {
  "a" : { "what" : "B" }
}
})j");
  EXPECT_EQ(writtenOut(here() / "t.json#a").dump(), R"j({"script":[{"click":"B"}]})j");
  EXPECT_EQ(readScenario(here() / "t.json#a").script.size(), 1u);
  const ScenarioAddress plain = addressOf("x#y/t.json");
  EXPECT_EQ(plain.file, "x#y/t.json");
  EXPECT_EQ(plain.chosen, std::nullopt);
  const ScenarioAddress chosen = addressOf("x/t.json#a-1.2");
  EXPECT_EQ(chosen.file, "x/t.json");
  EXPECT_EQ(chosen.chosen, "a-1.2");
}

TEST_F(Expand, RefusesACaseThatIsNotThere) {
  EXPECT_EQ(error(table), "$.cases: one of the cases is wanted: first, second");
  EXPECT_EQ(error(table, "third"), "$.cases: no case \"third\"; there are first, second");
  EXPECT_EQ(error("{}", "third"), "$: no case \"third\": the scenario has no cases");
  EXPECT_EQ(error(R"j({"cases": {}})j", "a"), "$.cases: no case at all");
  EXPECT_EQ(error(R"j({"cases": []})j", "a"), "$.cases: a list where an object is wanted");
  EXPECT_EQ(error(R"j({"cases": {"a": 5}})j", "a"),
            "$.cases.a: a whole number where an object is wanted");
  EXPECT_EQ(error(R"j({"cases": {"a": {}, "a": {}}})j", "a"),
            "$.cases: the key \"a\" stands twice in one object");
  EXPECT_EQ(error(R"j({"cases": {"a": {}, "B c": {}}})j", "a"),
            "$.cases[\"B c\"]: a case is named by small letters, digits, \"-\" and \".\"");
}

TEST_F(Expand, RefusesAValueThatIsMissingOrOfNoUse) {
  EXPECT_EQ(error(R"j({"script": [{"click": "$(a)"}], "cases": {
  "x" : { "b" : "B" }
}
})j",
                  "x"),
            "$.script[0].click: $(a) is neither a value of the case \"x\" nor a named one");
  EXPECT_EQ(error(R"j({"script": [], "cases": {"x": {"b": "B"}}})j", "x"),
            "$.cases.x.b: the scenario has no $(b) for this value");
  EXPECT_EQ(errorOfSteps(R"j(["type"])j"),
            "$.script[0] uses ../common.json: $.steps.type[0].type[1]: $(directory) is neither a "
            "value of \"type\" nor a named one");
  EXPECT_EQ(errorOfSteps(R"j([{"use": "type", "directory": "a", "more": 1}])j"),
            "$.script[0].more: \"type\" has no $(more) for this value");
  EXPECT_EQ(errorOfSteps(R"j([{"click": "$(a)"}])j"), "$.script[0].click: $(a) is no named value");
  EXPECT_EQ(errorOfSteps(R"j([{"click": "x$(menu"}])j"), "$.script[0].click: a $( without its )");
  EXPECT_EQ(errorOfSteps(R"j([{"click": "x$(list)"}])j"),
            "$.script[0].click: $(list) within a text is neither a text nor a whole number");
}

TEST_F(Expand, TellsAMistakeByTheNamesThatLeadToIt) {
  EXPECT_EQ(errorOfSteps(R"j([{"click": "A"}, "bad"])j"),
            "$.script[1] uses ../common.json: $.steps.bad[1].click: a whole number where a text is "
            "wanted");
  EXPECT_EQ(
      errorOfSteps(R"j([{"use": "type", "directory": 7}])j"),
      "$.script[0] uses ../common.json: $.steps.type[0].type[1] uses $.script[0].directory: a "
      "whole number where a text is wanted");
  EXPECT_EQ(errorOfSteps(R"j(["install", {"click": 5}])j"),
            "$.script[1].click: a whole number where a text is wanted");
  EXPECT_EQ(error(R"j({"script": [{"type": ["A", "$(t)"]
  }], "cases": {
    "x" : { "t" : [] }
  }
  })j",
                  "x"),
            "$.script[0].type[1] uses $.cases.x.t: a list where a text is wanted");
  EXPECT_EQ(error(R"j({"machine": ["vista", {"version": {"build": ""}}]})j"),
            "$.machine[1].version.build: a text where a whole number is wanted");
  EXPECT_EQ(errorOfSteps(R"j([{"expect": ["finished", {"nothing": 1}]}])j").substr(0, 48),
            "$.script[0].expect[1].nothing: unknown key \"noth");
}

TEST_F(Expand, TellsWhereAnExpectationOfANameFailed) {
  write(here() / "a.json",
        R"j({"script": ["install", {"expect": ["finished", {"ended": null}]}]})j");
  const Scenario scenario = readScenario(here() / "a.json");
  const auto& expectations = std::get<Expect>(scenario.script.at(2).action).expectations;
  EXPECT_EQ(
      expectations.at(0).path,
      "$.script[1].expect[0] uses ../common.json: $.expect.finished[\"Form1.Command2.Caption\"]");
  EXPECT_EQ(expectations.at(1).path, "$.script[1].expect[1].ended");
}

TEST_F(Expand, RefusesANameThatIsUnknown) {
  EXPECT_EQ(errorOfSteps(R"j(["nothing"])j"),
            "$.script[0]: no steps \"nothing\" in ../common.json");
  EXPECT_EQ(errorOfSteps(R"j([{"expect": "install"}])j"),
            "$.script[0].expect: no expectations \"install\" in ../common.json");
  EXPECT_EQ(errorOfSteps(R"j([{"expect": {"boxes": ["install"]}}])j"),
            "$.script[0].expect.boxes[0]: no box \"install\" in ../common.json");
  EXPECT_EQ(error(R"j({"machine": "nothing"})j"),
            "$.machine: no machine \"nothing\" in ../common.json");
  EXPECT_EQ(errorOfSteps(R"j([{"use": 5}])j"),
            "$.script[0].use: the name of what is used is wanted");
  write(here() / commonFile, "{}");
  EXPECT_EQ(errorOfSteps(R"j(["nothing"])j"),
            "$.script[0]: no steps \"nothing\" in common.json or ../common.json");
  fs::remove(here() / commonFile);
  fs::remove(above_ / commonFile);
  EXPECT_EQ(errorOfSteps(R"j(["install"])j"),
            "$.script[0]: no steps \"install\": no common.json is here or in the folder above");
}

TEST_F(Expand, RefusesANameThatUsesItself) {
  EXPECT_EQ(errorOfSteps(R"j(["self"])j"),
            "$.script[0] uses ../common.json: $.steps.self[0] uses ../common.json: "
            "$.steps.other[0]: \"self\" uses itself");
  EXPECT_EQ(errorOfSteps(R"j([{"click": "$(loop)"}])j"),
            "$.script[0].click uses ../common.json: $.values.loop: \"loop\" uses itself");
}

TEST_F(Expand, RefusesWhatIsSaidTwice) {
  EXPECT_EQ(errorOfSteps(R"j([{"expect": ["finished", {"Form1.Command2.Caption": "x"}]}])j"),
            "$.script[0].expect[1][\"Form1.Command2.Caption\"]: \"Form1.Command2.Caption\" stands "
            "twice");
  EXPECT_EQ(error(R"j({"machine": ["vista", {"version": {"minor": 1}}]})j"),
            "$.machine[1].version.minor: \"minor\" stands twice");
  EXPECT_EQ(errorOfSteps(R"j([{"expect": {"dir:C:\\Menu": [], "dir:$(menu)": []
  }
  }])j"),
            "$.script[0].expect[\"dir:$(menu)\"]: \"dir:C:\\Menu\" stands twice");
  write(here() / commonFile, R"j({"steps": {"install": []}})j");
  EXPECT_EQ(errorOfSteps(R"j(["install"])j"),
            "$.script[0]: \"install\" stands twice: common.json: $.steps.install and "
            "../common.json: $.steps.install");
}

TEST_F(Expand, RefusesAFileOfNamesThatIsNone) {
  write(here() / commonFile, R"j({"stops": {}})j");
  EXPECT_EQ(errorOfSteps(R"j(["install"])j"),
            "common.json: $.stops: unknown key \"stops\"; the keys are values, machines, steps, "
            "expect, boxes");
  write(here() / commonFile, R"j({"steps": []})j");
  EXPECT_EQ(errorOfSteps(R"j(["install"])j"),
            "common.json: $.steps: a list where an object is wanted");
  write(here() / commonFile, "{\n  \"steps\": }");
  EXPECT_TRUE(
      errorOfSteps(R"j(["install"])j").starts_with("common.json: line 2, column 12: syntax error"));
}

TEST_F(Expand, RefusesWhatIsNothingThatCanBeJoined) {
  EXPECT_EQ(errorOfSteps("[5]"), "$.script[0]: a whole number where a step is wanted");
  EXPECT_EQ(errorOfSteps("5"), "$.script: a whole number where a list is wanted");
  EXPECT_EQ(error(R"j({"machine": ["vista", 5]})j"),
            "$.machine[1]: a machine or the name of one is wanted");
  EXPECT_EQ(errorOfSteps(R"j([{"expect": ["finished", 5]}])j"),
            "$.script[0].expect[1]: expectations or the name of some are wanted");
}

TEST(LayOut, KeepsOnALineWhatHasRoomThere) {
  EXPECT_EQ(layOut(parseJson(R"j({"a":[1,{"b":null}],"c":{}})j")),
            "{\"a\": [1, {\"b\": null}], \"c\": {}}\n");
}

TEST(LayOut, BreaksWhatIsLongerThanALine) {
  const std::string wide(60, 'x');
  const std::string half(39, 'y');
  Json document = parseJson(R"j({"a": {"b": ["", "", "c"]}, "d": [[1, 2], {"e": 1, "f": ""}]})j");
  document["a"]["b"][0] = wide;
  document["a"]["b"][1] = half;
  document["d"][1]["f"] = wide + half;
  EXPECT_EQ(layOut(document), "{ \"a\": {\"b\": [\n    \"" + wide + "\",\n    \"" + half +
                                  "\", \"c\" ]},\n  \"d\": [\n    [1, 2],\n    { \"e\": 1,\n" +
                                  "      \"f\": \"" + wide + half + "\" } ] }\n");
}

TEST(LayOut, FillsALineToItsLastColumn) {
  const std::string longest(95, 'x');
  EXPECT_EQ(layOut(Json::list({longest + "y"})), "[\"" + longest + "y\"]\n");
  EXPECT_EQ(layOut(Json::list({longest + "yz"})), "[\n  \"" + longest + "yz\" ]\n");
}

TEST(LayOut, BeginsALineWithEachCaseAndEachName) {
  const std::string wide(90, 'x');
  Json document = parseJson(R"j({"cases": {"a": {}, "b": {}}, "steps": {"c": [], "d": []}})j");
  document["name"] = wide;
  EXPECT_EQ(layOut(document),
            "{ \"cases\": {\n    \"a\": {},\n    \"b\": {}\n  },\n  \"steps\": {\n    \"c\": [],\n"
            "    \"d\": []\n  },\n  \"name\": \"" +
                wide + "\" }\n");
}

}  // namespace
}  // namespace zev::scenario
