#include "package/extract_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "lz/encoder.h"
#include "package/manifest.h"
#include "package/projects.h"
#include "simulated/put_text.h"
#include "support/made_image.h"
#include "system/on_a_machine.h"

namespace zev {
namespace {

using simulated::Fault;
using testing::StartsWith;

constexpr TextView package = u"C:\\p.exe";
constexpr TextView work = u"C:\\work.wa_";

class ExtractFileTest : public OnAMachine, public testing::Test {
 protected:
  ExtractFileTest() : OnAMachine(true) { putText(machine.disks(), package, "0123456789"); }
  bool extract(std::int32_t size, std::int32_t tailOffset) {
    return ExtractFile(*program, *phrases, join(package, u"  "), join(u" ", work), size,
                       tailOffset);
  }
  /// The files in the order in which they were closed.
  std::vector<std::string> closed() const {
    std::map<int, std::string> opened;
    std::vector<std::string> files;
    for (const simulated::Event& call : transcript.of("call")) {
      const simulated::Event& arguments = call["arguments"];
      if (call["name"] == "OpenBinary") opened[arguments[0].get<int>()] = arguments[1].text();
      if (call["name"] == "Close") files.push_back(opened[arguments[0].get<int>()]);
    }
    return files;
  }
  std::vector<std::string> boxTexts() const {
    std::vector<std::string> texts;
    for (const auto& box : person.boxes) texts.push_back(toUtf8(box.text));
    return texts;
  }
};

TEST_F(ExtractFileTest, CountsBackFromTheEnd) {
  EXPECT_TRUE(extract(3, 0));
  EXPECT_EQ(textOf(work), "789");
  EXPECT_TRUE(extract(2, 3));
  EXPECT_EQ(textOf(work), "56");
  EXPECT_TRUE(person.boxes.empty());
}

/// What the disk had no room for may be missing at the end.
TEST_F(ExtractFileTest, HeldFileHasWhatWasWrittenAndNothingElse) {
  const auto holds = [&](std::string_view found, std::string_view written) {
    putText(machine.disks(), work, std::string(found));
    const Hold held = program->platform.holds.hold(work, Holding::ToKeep);
    return holdsNothingBut(held, test::Bytes(written.begin(), written.end()));
  };
  EXPECT_TRUE(holds("789", "789"));
  EXPECT_TRUE(holds("78", "789"));
  EXPECT_FALSE(holds("7x9", "789"));
  EXPECT_FALSE(holds("7890", "789"));
  EXPECT_FALSE(holdsNothingBut(Hold(), {}));
}

TEST_F(ExtractFileTest, HeldFileIsAllOfWhatThePackedOneExpandsTo) {
  constexpr TextView laid = u"C:\\laid.exe";
  const std::string_view plain = "a program, and what it is made of";
  const auto packed =
      lz::compress({reinterpret_cast<const std::uint8_t*>(plain.data()), plain.size()}, 0);
  putText(machine.disks(), work, std::string(packed.begin(), packed.end()));
  const Hold heldWork = program->platform.holds.hold(work, Holding::ToKeep);
  const auto holds = [&](const std::string& found) {
    putText(machine.disks(), laid, found);
    return holdsExpanded(program->platform.holds.hold(laid, Holding::ToKeep), heldWork);
  };
  const std::string whole(plain);
  EXPECT_TRUE(holds(whole));
  EXPECT_FALSE(holds(whole + "!"));
  EXPECT_FALSE(holds(whole.substr(1)));
  EXPECT_FALSE(holds(whole.substr(0, whole.size() - 1)));
  EXPECT_FALSE(holds("A" + whole.substr(1)));
  EXPECT_FALSE(holds(""));
}

TEST_F(ExtractFileTest, PositionOneIsTheFirstByte) {
  EXPECT_TRUE(extract(4, 6));
  EXPECT_EQ(textOf(work), "0123");
}

TEST_F(ExtractFileTest, CountsBackFromTheTableThatSigningLeaves) {
  test::Bytes file = test::madeImage();
  file.resize(file.size() + packageSize - 10);
  for (const char digit : {'0', '1', '2', '3', '4', '5', '6', '7', '8', '9'}) {
    file.push_back(static_cast<std::uint8_t>(digit));
  }
  const test::Bytes withTable = test::signedFile(file);
  putText(machine.disks(), package, std::string(withTable.begin(), withTable.end()));
  EXPECT_TRUE(extract(3, 0));
  EXPECT_EQ(textOf(work), "789");
  EXPECT_TRUE(extract(2, 3));
  EXPECT_EQ(textOf(work), "56");
  EXPECT_EQ(machine.openHandles().files, 1u);  // the work file, until it is expanded
  program->workFile.release();
  EXPECT_EQ(machine.openHandles().files, 0u);
}

TEST_F(ExtractFileTest, LooksForTheTableWithoutAStatement) {
  EXPECT_TRUE(extract(3, 0));
  std::vector<std::string> calls;
  for (const simulated::Event& call : transcript.of("call")) calls.push_back(call["name"].text());
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "OpenBinary"), 2);
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "LOF"), 1);
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "Get"), 1);
}

TEST_F(ExtractFileTest, PositionZeroIsToldTwice) {
  EXPECT_FALSE(extract(5, 6));
  EXPECT_THAT(boxTexts(), testing::ElementsAre(
                              "Installation file is not complete! You should download the whole "
                              "installation file to install ZEV.",
                              "Error in Extract File - 63 : File 'C:\\work.wa_' could not be "
                              "written!Bad record number"));
  EXPECT_EQ(person.boxes[0].title, u"ZEV");
  EXPECT_EQ(person.boxes[0].style, 48);
  EXPECT_EQ(person.boxes[1].title, u"Error");
  EXPECT_EQ(person.boxes[1].style, 4144);
}

TEST_F(ExtractFileTest, ArithmeticThatOverflowsIsError6) {
  EXPECT_FALSE(extract(12, 2147483647));
  EXPECT_THAT(boxTexts(), testing::ElementsAre(StartsWith("Error in Extract File - 6 : File '")));
}

TEST_F(ExtractFileTest, ALongerOldFileLeavesNoTail) {
  putText(machine.disks(), work, "a much longer file");
  EXPECT_TRUE(extract(3, 0));
  EXPECT_EQ(textOf(work), "789");
}

TEST_F(ExtractFileTest, AnOldFileThatStaysIsToldAndThenTheTrapsBox) {
  putText(machine.disks(), work, "old");
  files().SetFileAttributesA(work, 1);
  EXPECT_FALSE(extract(3, 0));
  EXPECT_THAT(boxTexts(), testing::ElementsAre("Couldn't delete the file C:\\work.wa_",
                                               StartsWith("Error in Extract File - 75 : File '")));
  EXPECT_EQ(person.boxes[0].title, u"ZEV");
  EXPECT_EQ(person.boxes[0].style, 48);
}

TEST_F(ExtractFileTest, AHiddenOldFileIsReplaced) {
  putText(machine.disks(), work, "old and long");
  files().SetFileAttributesA(work, 2);
  EXPECT_TRUE(extract(3, 0));
  EXPECT_EQ(textOf(work), "789");
}

TEST_F(ExtractFileTest, AMissingPackageIsMadeEmptyAndFails) {
  machine.disks().remove(package);
  EXPECT_FALSE(extract(3, 0));
  EXPECT_EQ(person.boxes.size(), 2u);
}

TEST_F(ExtractFileTest, FilesAreClosedWhateverHappens) {
  for (const char* call : {"Get", "Put", "LOF"}) {
    machine.setFaults({{.call = call, .effect = Fault::Effect::Raise, .code = 57}});
    EXPECT_FALSE(extract(3, 0)) << call;
    EXPECT_EQ(files().FreeFile(), 1) << call;
  }
}

TEST_F(ExtractFileTest, TheWorkFileIsClosedBeforeThePackage) {
  EXPECT_TRUE(extract(3, 0));
  EXPECT_EQ(closed(), (std::vector<std::string>{toUtf8(work), toUtf8(package)}));
}

TEST_F(ExtractFileTest, AFailureClosesThePackageBeforeTheWorkFile) {
  machine.setFaults({{.call = "Put", .effect = Fault::Effect::Raise, .code = 57}});
  EXPECT_FALSE(extract(3, 0));
  EXPECT_EQ(closed(), (std::vector<std::string>{toUtf8(package), toUtf8(work)}));
}

TEST_F(ExtractFileTest, AFullDiskIsError61) {
  machine.setFaults({{.call = "Put", .effect = Fault::Effect::Error, .code = 112}});
  EXPECT_FALSE(extract(3, 0));
  EXPECT_THAT(boxTexts(), testing::ElementsAre("Error in Extract File - 61 : File 'C:\\work.wa_' "
                                               "could not be written!Disk full"));
}

TEST_F(ExtractFileTest, TheProjectsPathIs512BytesInAnyCodePage) {
  machine.settings().system.codePage = 65001;
  putText(machine.disks(), u"C:\\SampleProject.zrd", std::string(600, 'x'));
  globals().gInstallDir = u"C:\\Pr\u00F6gram";
  patchSampleProject(*program, u"C:");
  const std::string patched = textOf(u"C:\\SampleProject.zrd");
  EXPECT_EQ(patched.size(), 600u);
  EXPECT_EQ(patched.substr(0, 25), std::string(25, 'x'));
  EXPECT_THAT(patched.substr(25), StartsWith("C:\\Pr\xC3\xB6gram\\SampleAVI.avi   "));
  EXPECT_EQ(patched.substr(537), std::string(63, 'x'));
  EXPECT_EQ(patched[536], ' ');
}

}  // namespace
}  // namespace zev
