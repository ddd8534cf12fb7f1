#include "programs/zevsim/zevsim_main.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "programs/zevsim/zevsim_options.h"
#include "scenario/json_reader.h"
#include "scenario/toy_program.h"
#include "support/temporary_folder.h"

namespace zev::scenario {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// A program without forms that writes a file, two settings as files and one into the registry, and
/// takes a third file of settings back.
class SettingsWriter final : public simulator::PlayedProgram {
 public:
  explicit SettingsWriter(Platform& platform) : platform_(platform) {}

  void start() override {
    platform_.files.MkDir(u"C:\\Conf");
    platform_.files.MkDir(u"C:\\Conf\\Tavorns");
    platform_.files.MkDir(u"C:\\Conf\\Tavorns\\ZEV5");
    for (const TextView file : {u"ZEV5.txt", u"Tavorns\\ZEV5\\Name", u"tavorns\\zev5\\Language",
                                u"Tavorns\\ZEV5\\gone"}) {
      write(join(u"C:\\Conf\\", file));
    }
    platform_.files.Kill(u"C:\\Conf\\Tavorns\\ZEV5\\gone");
    platform_.registry.RegSetValueExA(HKEY_CURRENT_USER, u"n", 4, 1);
  }
  std::vector<Form*> forms() override { return {}; }
  std::optional<PropertyValue> global(std::string_view) override { return std::nullopt; }
  bool setGlobal(std::string_view, const PropertyValue&) override { return false; }

 private:
  void write(const Text& path) {
    platform_.files.OpenBinaryWrite(1, path);
    platform_.files.PutText(1, 1, u"x");
    platform_.files.Close(1);
  }

  Platform& platform_;
};

/// Runs zevsim with files in a folder of its own.
class Zevsim : public testing::Test {
 protected:
  std::string file(const std::string& name) const { return (folder_ / name).string(); }

  std::string write(const std::string& name, const std::string& text) const {
    std::ofstream(file(name), std::ios::binary) << text;
    return file(name);
  }

  std::string read(const std::string& name) const {
    std::ifstream in(file(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  int run(const std::vector<std::string>& arguments, const std::string& typed = "") {
    std::istringstream in(typed);
    std::ostringstream out;
    std::ostringstream err;
    const int status = zevsimMain(arguments, factory_, {in, out, err, terminal_});
    out_ = out.str();
    err_ = err.str();
    return status;
  }

  test::TemporaryFolder temporary_;
  const fs::path& folder_ = temporary_.path();
  simulator::ProgramFactory factory_ = makeToyProgram;
  bool terminal_ = false;
  std::string out_;
  std::string err_;
};

TEST_F(Zevsim, Gives0IfAllHolds) {
  EXPECT_EQ(run({write("a.json", R"({"script": [{"expect": {"Form1.Caption": "Toy"}}]})")}), 0);
  EXPECT_THAT(out_, StartsWith("{\"event\":\"start\"}\n"));
  EXPECT_EQ(err_, "");
}

TEST_F(Zevsim, Gives1AndSaysWhatDidNotHold) {
  EXPECT_EQ(run({write("a.json", R"({"script": [{"expect": {"Form1.Caption": "Tin"}}]})")}), 1);
  EXPECT_EQ(err_,
            "FAILED $.script[0].expect[\"Form1.Caption\"]\n  expected: \"Tin\"\n"
            "  found:    \"Toy\"\n");
}

TEST_F(Zevsim, Gives2WithFilePathAndReason) {
  const std::string bad = write("bad.json", R"({"script": [{"click": 1}]})");
  EXPECT_EQ(run({bad}), 2);
  EXPECT_EQ(err_, bad + ": $.script[0].click: a whole number where a text is wanted\n");
  const std::string broken = write("broken.json", "{\n");
  EXPECT_EQ(run({broken}), 2);
  EXPECT_THAT(err_, StartsWith(broken + ": line 2, column 1: syntax error"));
  EXPECT_EQ(run({file("none.json")}), 2);
  EXPECT_EQ(err_, file("none.json") + ": $: cannot be read\n");
  const std::string late = write("late.json", R"({"script": [{"click": "Command99"}]})");
  EXPECT_EQ(run({late}), 2);
  EXPECT_EQ(err_, late + ": $.script[0].click: Form1 has no control Command99\n");
}

TEST_F(Zevsim, NamesAWrongUser) {
  for (const char* user :
       {" ", "", "a\\\\b", "a/b", "a:b", "*", "..", "bob.", "bob ", "con", "\\u0000"}) {
    const std::string quoted = "\"" + std::string(user) + "\"";
    const std::string first = write("a.json", R"({"machine": {"user": )" + quoted + "}}");
    EXPECT_EQ(run({first}), 2) << user;
    EXPECT_EQ(err_, first + ": $.machine.user: " + quoted + " is no name of a user\n");
    const std::string later =
        write("b.json", R"({"script": [{"change": {"user": )" + quoted + "}}]}");
    EXPECT_EQ(run({later}), 2) << user;
    EXPECT_EQ(err_, later + ": $.script[0].change.user: " + quoted + " is no name of a user\n");
  }
  for (const char* user : {"null", "\"Ay\u015Fe\"", "\"J. R. \u6F22\""}) {
    EXPECT_EQ(run({write("c.json", R"({"machine": {"user": )" + std::string(user) + "}}")}), 0);
  }
}

TEST_F(Zevsim, NamesANumberBeyondEveryType) {
  const std::string overflow = write("a.json", "{\n \"name\": \"1e999\",\n \"script\": [-1e999]}");
  EXPECT_EQ(run({overflow}), 2);
  EXPECT_EQ(err_, overflow + ": line 3, column 13: the number -1e999 is beyond every type\n");
  const std::string whole = write("b.json", R"({"machine": {"wow64": 1, "uiLanguage": 0}})");
  EXPECT_EQ(run({whole}), 2);
  const std::string large = write("c.json", R"({"machine": {"uiLanguage": 99999999999999999999}})");
  EXPECT_EQ(run({large}), 2);
  EXPECT_EQ(err_, large +
                      ": $.machine.uiLanguage: a number beyond every type where a whole number "
                      "is wanted\n");
}

TEST_F(Zevsim, NamesThePlaceWhereADocumentIsTooDeep) {
  constexpr int steps = 5000;
  std::string script;
  for (int step = 0; step < steps; ++step) script += R"({"at": {"yield": 1}, "do": [)";
  for (int step = 0; step < steps; ++step) script += "]}";
  const std::string deep =
      write("a.json", "{\n\"name\": \"[\\\"[\",\n\"script\": [" + script + "]}");
  EXPECT_EQ(run({deep}), 2);
  EXPECT_EQ(err_, deep + ": line 3, column 1384: more than 100 levels within one another\n");
}

TEST_F(Zevsim, NamesANumberThatNoPropertyTakes) {
  const std::string range = " is not within -2147483648 to 2147483647\n";
  const std::string set = write("a.json", R"({"script": [{"set": {"global.gPage": 4294967297}}]})");
  EXPECT_EQ(run({set}), 2);
  EXPECT_EQ(err_, set + ": $.script[0].set[\"global.gPage\"]: 4294967297" + range);
  const std::string expected =
      write("b.json", R"({"script": [{"expect": {"Form1.Check1.Value": {"not": 2147483648}}}]})");
  EXPECT_EQ(run({expected}), 2);
  EXPECT_EQ(err_,
            expected + ": $.script[0].expect[\"Form1.Check1.Value\"].not: 2147483648" + range);
  const std::string awaited =
      write("c.json", R"({"script": [{"at": {"set": ["Check1.Value", 2147483648]}, "do": []}]})");
  EXPECT_EQ(run({awaited}), 2);
  EXPECT_EQ(err_, awaited + ": $.script[0].at.set[1]: 2147483648" + range);
}

TEST_F(Zevsim, NamesANumberThatNoValueOfTheRegistryHolds) {
  const std::string file = write("a.json", R"({"machine": {"registry": {"HKCU": {"T": {"n": 0}}}},
                    "script": [{"expect": {"registry:HKCU\\T|n": 4294967296}}]})");
  EXPECT_EQ(run({file}), 2);
  EXPECT_EQ(err_, file +
                      ": $.script[0].expect[\"registry:HKCU\\\\T|n\"]: 4294967296 is not within "
                      "-2147483648 to 4294967295\n");
}

TEST_F(Zevsim, NamesAControlThatNoFormHas) {
  const auto reasonOf = [&](const std::string& step) {
    EXPECT_EQ(run({write("a.json", R"({"script": [)" + step + "]}")}), 2) << step;
    const std::string start = file("a.json") + ": ";
    EXPECT_THAT(err_, StartsWith(start));
    return err_.substr(std::min(start.size(), err_.size()));
  };
  EXPECT_EQ(reasonOf(R"({"click": "None"})"), "$.script[0].click: Form1 has no control None\n");
  EXPECT_EQ(reasonOf(R"({"set": {"None.Caption": "x"}})"),
            "$.script[0].set[\"None.Caption\"]: the program has no form None, and Form1 has no "
            "control None\n");
  EXPECT_EQ(reasonOf(R"({"at": {"set": ["None.Caption", "x"]}, "do": []}, {"click": "Command2"})"),
            "$.script[0].at.set[0]: the program has no property None.Caption\n");
  EXPECT_EQ(reasonOf(R"({"click": "Command2"}, {"at": {"set": ["Label8.None", ""]}, "do": []})"),
            "$.script[1].at.set[0]: the program has no property Label8.None\n");
  EXPECT_EQ(reasonOf(R"({"at": {"set": ["Form3.Label8.Caption", ""]}, "do": []}, {"expect": {}})"),
            "$.script[0].at.set[0]: the program has no property Form3.Label8.Caption\n");
  EXPECT_EQ(reasonOf(R"({"at": {"set": ["Form2.Label8.Caption", ""]}, "do": []}, {"expect": {}})"),
            "$.script[0].at.set[0]: the program has no property Form2.Label8.Caption\n");
}

TEST_F(Zevsim, WaitsForPropertiesOfFormsAndControls) {
  for (const char* property : {"Form1.Caption", "form2.caption", "Form1.Label8.Caption",
                               "label8.CAPTION", "Frame1(2).Visible", "Drive1.Drive"}) {
    const std::string script = R"({"script": [{"at": {"set": [")" + std::string(property) +
                               R"(", "x"]}, "do": []}, {"click": "Command2"}]})";
    EXPECT_EQ(run({write("a.json", script)}), 0) << err_;
  }
}

TEST_F(Zevsim, NamesAFormThatIsNotThere) {
  const std::string visible =
      write("a.json", R"({"script": [{"expect": {"Form9.Visible": {"not": true}}}]})");
  EXPECT_EQ(run({visible}), 2);
  EXPECT_EQ(err_, visible +
                      ": $.script[0].expect[\"Form9.Visible\"]: the program has no form Form9, "
                      "and Form1 has no control Form9\n");
  const std::string control =
      write("b.json", R"({"script": [{"expect": {"Form9.Command1.Caption": "x"}}]})");
  EXPECT_EQ(run({control}), 2);
  EXPECT_EQ(err_, control +
                      ": $.script[0].expect[\"Form9.Command1.Caption\"]: the program has no "
                      "form Form9\n");
  factory_ = [](Platform& platform) { return std::make_unique<SettingsWriter>(platform); };
  EXPECT_EQ(run({visible}), 2);
  EXPECT_EQ(err_, visible +
                      ": $.script[0].expect[\"Form9.Visible\"]: the program has no form Form9, "
                      "and no form is active that could have such a control\n");
}

TEST_F(Zevsim, NamesAnOperationThatIsNotThere) {
  const std::string file =
      write("a.json", R"({"script": [{"expect": {"calls:Kil": 0, "calls:kill": 0}}]})");
  EXPECT_EQ(run({file}), 2);
  EXPECT_EQ(err_, file + ": $.script[0].expect[\"calls:Kil\"]: no operation \"Kil\"\n");
}

TEST_F(Zevsim, Gives2ForABadCommandLine) {
  EXPECT_EQ(run({"--nonsense"}), 2);
  EXPECT_THAT(err_, HasSubstr("--nonsense"));
  EXPECT_EQ(run({"a.json", "--state"}), 2);
  EXPECT_THAT(err_, HasSubstr("--state"));
  EXPECT_EQ(run({"a.json", "b.json"}), 2);
  EXPECT_THAT(err_, HasSubstr("b.json"));
  EXPECT_EQ(run({"a.json", "--events", "boxes"}), 2);
  EXPECT_THAT(err_, HasSubstr("boxes"));
  EXPECT_EQ(run({write("a.json", "{}"), "--package", file("none")}), 2);
  EXPECT_EQ(run({write("a.json", "{}"), "--transcript", file("no/such/folder")}), 2);
}

TEST_F(Zevsim, Gives3ForAFailureOfItsOwn) {
  factory_ = [](Platform&) -> std::unique_ptr<simulator::PlayedProgram> {
    throw std::logic_error("out of order");
  };
  EXPECT_EQ(run({write("a.json", "{}")}), 3);
  EXPECT_EQ(err_, "zevsim: out of order\n");
}

TEST_F(Zevsim, TakesAnUntrappedErrorAsAnEndOfTheProgram) {
  EXPECT_EQ(run({write("a.json", R"({"script": [{"click": "Command7"}]})")}), 0);
  EXPECT_THAT(out_, HasSubstr(R"("how":"error","error":75)"));
}

TEST_F(Zevsim, WritesAScenarioOut) {
  write("common.json", R"({"steps": {"start": [{"click": "Command1"}]}})");
  const std::string table =
      write("a.json", R"j({"script": ["start", {"expect": {"Form1.Caption": "$(title)"}}],
                           "cases": {"toy": {"title": "Toy"}, "tin": {"title": "Tin"}}})j");
  EXPECT_EQ(run({table + "#tin", "--expand"}), 0) << err_;
  EXPECT_EQ(out_,
            "{\"script\": [{\"click\": \"Command1\"}, {\"expect\": {\"Form1.Caption\": "
            "\"Tin\"}}]}\n");
  EXPECT_EQ(run({write("out.json", out_), "--expand"}), 0) << err_;
  EXPECT_EQ(run({table + "#tin"}), 1);
  EXPECT_EQ(err_,
            "FAILED $.script[1].expect[\"Form1.Caption\"] uses $.cases.tin.title\n"
            "  expected: \"Tin\"\n  found:    \"Toy\"\n");
  EXPECT_EQ(run({table + "#toy"}), 0) << err_;
  EXPECT_EQ(run({table}), 2);
  EXPECT_EQ(err_, table + ": $.cases: one of the cases is wanted: toy, tin\n");
  EXPECT_EQ(run({write("bad.json", R"({"script": [{"click": 5}]})"), "--expand"}), 2);
  EXPECT_EQ(run({"--expand"}), 2);
}

TEST_F(Zevsim, Helps) {
  EXPECT_EQ(run({"--help"}), 0);
  EXPECT_EQ(err_, "");
  for (const char* option :
       {"SCENARIO", "--package", "--transcript", "--events", "--outside", "--state", "--export",
        "--progress", "--summary", "--interactive", "--width", "--help", "Exit status"}) {
    EXPECT_THAT(out_, HasSubstr(option));
  }
  const std::string help = out_;
  EXPECT_EQ(run({"-h"}), 0);
  EXPECT_EQ(out_, help);
}

TEST_F(Zevsim, Gives3ForResultsThatCannotBeWritten) {
  if (!fs::is_character_file("/dev/full")) GTEST_SKIP() << "no device of that name";
  const std::string scenario = write("a.json", R"({"script": [{"click": "Command6"}]})");
  for (const char* option : {"--transcript", "--outside", "--state"}) {
    EXPECT_EQ(run({scenario, option, "/dev/full"}), 3) << option;
    EXPECT_EQ(err_, "zevsim: cannot write /dev/full\n") << option;
  }
}

TEST_F(Zevsim, Gives3IfStandardOutputCannotBeWritten) {
  if (!fs::is_character_file("/dev/full")) GTEST_SKIP() << "no device of that name";
  const std::string scenario = write("a.json", R"({"script": [{"click": "Command6"}]})");
  for (const std::vector<std::string>& arguments :
       std::vector<std::vector<std::string>>{{scenario}, {scenario, "--summary"}, {"--help"}}) {
    std::istringstream in;
    std::ofstream out("/dev/full");
    std::ostringstream err;
    EXPECT_EQ(zevsimMain(arguments, factory_, {in, out, err, false}), 3) << arguments.back();
    EXPECT_EQ(err.str(), "zevsim: cannot write standard output\n") << arguments.back();
  }
}

TEST_F(Zevsim, WaitsForNoPipe) {
  ASSERT_EQ(mkfifo(file("pipe").c_str(), 0600), 0);
  EXPECT_EQ(run({file("pipe")}), 2);
  EXPECT_EQ(err_, file("pipe") + ": $: cannot be read\n");
  EXPECT_EQ(run({write("a.json", "{}"), "--package", file("pipe")}), 2);
}

TEST_F(Zevsim, WritesTheTranscriptToAFile) {
  const std::string scenario = write("a.json", R"({"script": [{"click": "Command6"}]})");
  EXPECT_EQ(run({scenario, "--transcript", file("t"), "--events", "start,end"}), 0);
  EXPECT_EQ(out_, "");
  EXPECT_EQ(read("t"), "{\"event\":\"start\"}\n{\"event\":\"end\",\"how\":\"exit\"}\n");
}

TEST_F(Zevsim, WritesWhatIsSeenFromOutsideBeforeEachStepAndBox) {
  const std::string scenario = write("a.json", R"({"script": [{"answer": ["no"]},
      {"focus": "Command3"}, {"click": "Command3"}, {"click": "Command6"}]})");
  EXPECT_EQ(run({scenario, "--transcript", file("t"), "--outside", file("o")}), 0);
  const std::string lines = read("o");
  const std::size_t firstStep = lines.find(R"({"event":"step","step":{"focus":"Command3"}})");
  ASSERT_NE(firstStep, std::string::npos);
  EXPECT_THAT(lines, StartsWith(R"({"event":"step","step":{"answer":["no"]}})"
                                "\n"
                                R"({"event":"show","form":"Form1"})"
                                "\n"
                                R"({"event":"set","control":"Form1","property":"Caption",)"));
  EXPECT_EQ(lines.substr(firstStep),
            R"({"event":"step","step":{"focus":"Command3"}})"
            "\n"
            R"({"event":"step","step":{"click":"Command3"}})"
            "\n"
            R"({"event":"box","text":"Do you want to leave?","title":"Toy","style":36,)"
            R"("answer":"no"})"
            "\n"
            R"({"event":"step","step":{"click":"Command6"}})"
            "\n"
            R"({"event":"end"})"
            "\n");
}

TEST_F(Zevsim, WritesInputBoxesAsTheyAreSeenFromOutside) {
  const std::string scenario =
      write("a.json", R"({"script": [{"answer": [{"text": "Eve"}]}, {"click": "Command5"}]})");
  EXPECT_EQ(run({scenario, "--transcript", file("t"), "--outside", file("o")}), 0);
  EXPECT_THAT(
      read("o"),
      HasSubstr(R"({"event":"input","prompt":"Your name:","title":"Name","answer":"Eve"})"));
}

/// Whether a form is enabled is not told while a box is open: this one went with its program.
TEST_F(Zevsim, ForgetsABoxThatWasOpenWhenTheProgramStartsAnew) {
  const std::string scenario = write("a.json", R"({"script": [
      {"at": {"box": 1}, "do": [{"restart": true}]},
      {"click": "Command3"}, {"click": "Command4"}, {"click": "Form2.Command1"}]})");
  EXPECT_EQ(run({scenario, "--transcript", file("t"), "--outside", file("o")}), 0);
  EXPECT_THAT(read("o"),
              HasSubstr(R"({"event":"set","control":"Form1","property":"Enabled","value":false})"));
}

TEST_F(Zevsim, WritesTheStateOfTheMachine) {
  const std::string scenario = write("a.json", R"({"machine": {"files": {"C:\\a.txt": "hello"}}})");
  EXPECT_EQ(run({scenario, "--state", file("state.json")}), 0);
  EXPECT_NO_THROW(parseJson(read("state.json")));
  EXPECT_THAT(read("state.json"), HasSubstr("hello"));
}

TEST_F(Zevsim, ExportsTheDriveAndTheRegistry) {
  const std::string scenario = write("a.json", R"({"machine": {"files": {"C:\\a\\b.txt": "hello"},
      "registry": {"HKEY_CURRENT_USER": {"Software\\T": {"n": 1}}}}})");
  EXPECT_EQ(run({scenario, "--export", file("out")}), 0);
  EXPECT_EQ(read("out/C/a/b.txt"), "hello");
  EXPECT_THAT(read("out/registry.reg"), StartsWith("\xFF\xFE"));
}

TEST_F(Zevsim, PutsAnotherPackageInPlace) {
  const std::string scenario = write("a.json", R"({"machine": {"installer": "C:\\s.exe"},
      "package": {"cutEnd": 1}, "script": [{"expect": {"file:C:\\s.exe": "012"}}]})");
  write("package", "0123");
  EXPECT_EQ(run({scenario, "--package", file("package")}), 0) << err_;
}

TEST_F(Zevsim, PutsAPackageInPlaceOfOneThatIsNotThere) {
  const std::string scenario = write("a.json", R"({"machine": {"installer": "C:\\s.exe"},
      "package": {"file": "none.exe", "cutEnd": 1},
      "script": [{"expect": {"file:C:\\s.exe": "012"}}]})");
  write("package", "0123");
  EXPECT_EQ(run({scenario, "--package", file("package")}), 0) << err_;
  EXPECT_EQ(run({scenario}), 2);
  EXPECT_EQ(err_, scenario + ": $.package.file: no file " + file("none.exe") + "\n");
}

TEST_F(Zevsim, SumsUpSettingsThatAreFilesApart) {
  factory_ = [](Platform& platform) { return std::make_unique<SettingsWriter>(platform); };
  EXPECT_EQ(run({write("a.json", "{}"), "--summary"}), 0) << err_;
  EXPECT_THAT(out_, StartsWith("files laid:       1, 1 bytes\nsettings written: 3\n"));
}

TEST_F(Zevsim, SumsUp) {
  const std::string scenario =
      write("a.json", R"({"script": [{"click": "Command2"}, {"click": "Command2"}]})");
  EXPECT_EQ(run({scenario, "--summary"}), 0);
  EXPECT_THAT(
      out_, StartsWith("files laid:       8, 48 bytes\nsettings written: 0\n"
                       "message boxes:    1\ntime:             0.00 s on the simulated machine, "));
  EXPECT_THAT(out_, HasSubstr("end:              still running\n"));
}

TEST_F(Zevsim, ShowsTheProgressLineByLine) {
  const std::string scenario =
      write("a.json", R"({"script": [{"click": "Command2"}, {"click": "Command2"}]})");
  EXPECT_EQ(run({scenario, "--progress"}), 0);
  EXPECT_THAT(out_, StartsWith("0%  file1\n12%  file2\n24%  file3\n"));
  EXPECT_THAT(out_, HasSubstr("\n[Toy] Done.  -> ok\n"));
  EXPECT_THAT(out_, Not(HasSubstr("event")));
}

TEST_F(Zevsim, DrawsTheProgressOnATerminal) {
  terminal_ = true;
  const std::string scenario =
      write("a.json", R"({"script": [{"click": "Command2"}, {"click": "Command2"}]})");
  EXPECT_EQ(run({scenario, "--progress"}), 0);
  EXPECT_THAT(out_, HasSubstr("\r[####################....................] 48%  file4\x1b[K"));
  EXPECT_THAT(
      out_,
      HasSubstr("\r[########################################] 96%  file8\x1b[K\n[Toy] Done."));
}

TEST_F(Zevsim, CutsTheProgressToTheWidth) {
  terminal_ = true;
  const std::string scenario = write("a.json",
                                     R"({"script": [{"click": "Command2"},
          {"set": {"Form1.Label12.Caption": "C:\\a folder of a rather long name\\a file"}}]})");
  EXPECT_EQ(run({scenario, "--progress", "--width", "40"}), 0);
  EXPECT_EQ(out_, "\r[.....................]   ...name\\a file\x1b[K\n");
}

TEST_F(Zevsim, ShowsTheProgressOfAHandsRun) {
  terminal_ = true;
  EXPECT_EQ(run({}, "click Next\nclick Run\n\n"), 0);
  EXPECT_THAT(out_, HasSubstr("] 48%  file4\x1b[K"));
  EXPECT_THAT(out_, HasSubstr("] 96%  file8\x1b[K\n+- Toy ----+\n| Done.    |\n"));
  terminal_ = false;
  EXPECT_EQ(run({}, "click Next\nclick Run\n\n"), 0);
  EXPECT_THAT(out_, HasSubstr("> 0%  file1\n12%  file2\n"));
}

TEST_F(Zevsim, ShowsNoProgressOfWhatIsHidden) {
  const std::string scenario =
      write("a.json", R"({"script": [{"set": {"Form1.Label12.Caption": "hidden"}}]})");
  EXPECT_EQ(run({scenario, "--progress"}), 0);
  EXPECT_EQ(out_, "");
}

TEST_F(Zevsim, TakesAWidthFromFortyColumns) {
  for (const char* width : {"39", "1001", "-50", "50x", ""}) {
    EXPECT_EQ(run({"--width", width}), 2);
    EXPECT_THAT(err_, HasSubstr("--width"));
  }
  EXPECT_EQ(run({"--width", "40"}), 0);
  EXPECT_THAT(out_, StartsWith("+- Toy --------------------------------+\n"));
  EXPECT_EQ(run({"--width", "1000"}), 0);
}

TEST_F(Zevsim, IsPlayedByHand) {
  EXPECT_EQ(run({}, "click Command2\nclick Check1\nshow Form1.Check1.Value\nclick Stop\nquit\n"),
            0);
  EXPECT_THAT(out_, HasSubstr("[x] Launch"));
  EXPECT_THAT(out_, HasSubstr("The program has ended: \"exit\""));
}

TEST_F(Zevsim, GoesOnByHandWhereAScenarioEnds) {
  const std::string scenario = write("a.json", R"({"script": [{"click": "Command2"}]})");
  EXPECT_EQ(run({"--interactive", scenario}, "show global.gPage\n"), 0);
  EXPECT_THAT(out_, HasSubstr("> 2\n"));
}

}  // namespace
}  // namespace zev::scenario
