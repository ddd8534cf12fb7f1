#include <gtest/gtest.h>

#include "runtime/error.h"
#include "simulated/put_text.h"
#include "system/on_a_machine.h"
#include "system/special_folders.h"
#include "system/user_folders.h"

namespace zev {
namespace {

using simulated::Fault;

class Folders : public OnAMachine, public testing::Test {};

TEST_F(Folders, KnownFoldersGoByTheirKindOnMachinesOfProfiles) {
  globals().gOSClass = 4;
  EXPECT_EQ(GetKnownFolder(*program, 1), u"C:\\Users\\bob\\Documents");
  EXPECT_EQ(GetKnownFolder(*program, 2), u"C:\\Users\\bob\\AppData\\Local");
  EXPECT_EQ(GetKnownFolder(*program, 0), u"");
  EXPECT_EQ(GetKnownFolder(*program, 3), u"");
  EXPECT_EQ(machine.unfreedMemory(), 0u);
}

TEST_F(Folders, OtherMachinesAnswerWithTheDocumentsWhateverTheKind) {
  globals().gOSClass = 3;
  for (std::uint8_t kind = 0; kind <= 3; ++kind) {
    EXPECT_EQ(GetKnownFolder(*program, kind), u"C:\\Users\\bob\\Documents");
  }
  EXPECT_EQ(machine.unfreedMemory(), 0u);
}

TEST_F(Folders, AnUnknownSpecialFolderIsEmpty) {
  EXPECT_EQ(GetSpecialFolder(*program, 99), u"");
  EXPECT_EQ(WideToString(program->platform.shellFolders, nullptr), u"");
}

TEST_F(Folders, TheProbeIsWrittenAsOneLine) {
  EXPECT_TRUE(WriteProbeFile(files(), u"C:\\Users\\bob", u"deneme_sil", u"deneme_sil"));
  EXPECT_EQ(textOf(u"C:\\Users\\bob\\deneme_sil"), "deneme_sil\r\n");
  EXPECT_TRUE(DeleteProbeFile(files(), u"C:\\Users\\bob", u"deneme_sil"));
  EXPECT_FALSE(machine.disks().exists(u"C:\\Users\\bob\\deneme_sil"));
}

TEST_F(Folders, TheProbeTellsWhereItCannotBeWritten) {
  EXPECT_FALSE(WriteProbeFile(files(), u"C:\\nowhere", u"a", u"a"));
  EXPECT_FALSE(WriteProbeFile(files(), u"", u"a", u"a"));
  EXPECT_FALSE(WriteProbeFile(files(), u"C:\\Users", u"", u"a"));
}

TEST_F(Folders, DeletingAProbeThatIsNotThereIsRight) {
  EXPECT_TRUE(DeleteProbeFile(files(), u"C:\\Users", u"deneme_sil"));
  EXPECT_TRUE(DeleteProbeFile(files(), u"", u""));
  putText(machine.disks(), u"C:\\Users\\deneme_sil", "x");
  machine.setFaults({{.call = "Kill", .effect = Fault::Effect::Raise, .code = 70}});
  EXPECT_FALSE(DeleteProbeFile(files(), u"C:\\Users", u"deneme_sil"));
}

TEST_F(Folders, TheFolderOfTheProductsOwnIsMadeLevelByLevel) {
  machine.disks().remove(u"C:\\Program Files");
  std::int16_t result = 9;
  CreateConfFolder(*program, result);
  EXPECT_EQ(result, 0);
  EXPECT_TRUE(machine.disks().exists(u"C:\\Program Files\\ZEVConf\\Tavorns\\ZEV5"));
  EXPECT_EQ(globals().gUserDir, u"C:\\Program Files\\ZEVConf");
  EXPECT_EQ(globals().gUserData, u"C:\\Program Files\\ZEVConf\\Tavorns\\ZEV5");
}

TEST_F(Folders, AFolderOfTheProductsOwnThatCannotBeMadeLeavesTheGlobalsAlone) {
  for (const Fault::Effect effect : {Fault::Effect::Raise, Fault::Effect::Ignore}) {
    machine.setFaults({{.call = "MkDir", .match = u"ZEV5", .effect = effect, .code = 75}});
    std::int16_t result = 9;
    CreateConfFolder(*program, result);
    EXPECT_EQ(result, -1);
    EXPECT_EQ(globals().gUserDir, u"");
  }
}

}  // namespace
}  // namespace zev
