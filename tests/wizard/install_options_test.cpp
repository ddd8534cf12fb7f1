#include "wizard/wizard.h"

#include <gtest/gtest.h>

#include <map>

#include "runtime/error.h"
#include "support/table.h"
#include "system/on_a_machine.h"
#include "wizard/setup.h"

namespace zev {
namespace {

using test::Row;
using test::Table;

/// The byte that a row of options.tsv names.
std::uint8_t Globals::*byteOf(const Row& row) {
  static const std::map<std::string, std::uint8_t Globals::*> bytes = {
      {"gOptRedist", &Globals::gOptRedist},
      {"gOptStartMenu", &Globals::gOptStartMenu},
      {"gOptDesktop", &Globals::gOptDesktop}};
  return bytes.at(row.word("global"));
}

/// The dialog on a machine, its wizard hidden behind it.
class OptionsDialog : public OnAMachine, public testing::Test {
 protected:
  Form2& dialog() { return program->form2; }
  Application& application() { return program->platform.application; }
  CheckBox& boxOf(const Row& row) {
    return dialog().control<CheckBox>(fromUtf8(row.word("check_box")));
  }
  /// Each byte gets one bit of the choice.
  void choose(int choice) {
    int bit = 1;
    for (const Row& row : table) {
      globals().*byteOf(row) = (choice & bit) != 0;
      bit *= 2;
    }
  }
  void open() {
    application().Hide(program->form1);
    application().Show(dialog());
  }

  Table table = Table::read("options.tsv");
  InstallOptions options{*program, *phrases};
};

TEST_F(OptionsDialog, EachBoxShowsItsByteAndGivesItBack) {
  for (int choice = 0; choice < 8; ++choice) {
    choose(choice);
    open();
    int bit = 1;
    for (const Row& row : table) {
      EXPECT_EQ(boxOf(row).Value, (choice & bit) != 0 ? 1 : 0) << row.where() << " " << choice;
      boxOf(row).Value = 1 - boxOf(row).Value;
      bit *= 2;
    }
    EXPECT_TRUE(application().Unload(dialog(), UnloadMode::ControlMenu));
    bit = 1;
    for (const Row& row : table) {
      EXPECT_EQ(globals().*byteOf(row), (choice & bit) != 0 ? 0 : 1)
          << row.where() << " " << choice;
      bit *= 2;
    }
  }
}

TEST_F(OptionsDialog, OKUnloadsItAndShowsTheWizard) {
  open();
  EXPECT_FALSE(program->form1.Visible);
  dialog().Command1.Click();
  EXPECT_FALSE(dialog().loaded());
  EXPECT_TRUE(program->form1.Visible);
  EXPECT_EQ(application().forms().size(), 1u);
}

/// None of the dialog's own texts is a known phrase; whatever stands there is translated all the
/// same.
TEST_F(OptionsDialog, TranslatesItsCaptionAndItsControlsAsItLoads) {
  globals().gLanguage = language::German;
  phrases->LoadPhrases();
  open();
  EXPECT_EQ(dialog().Caption.get(), u"Install Options");
  dialog().Caption = u"Install";
  dialog().Command1.Caption = u"Cancel";
  dialog().Check2.Caption = u"Finish";
  dialog().Load();
  EXPECT_EQ(dialog().Caption.get(), u"Installiere");
  EXPECT_EQ(dialog().Command1.Caption.get(), u"Abbrechen");
  EXPECT_EQ(dialog().Check2.Caption.get(), u"Ende");
}

/// The program whole, as far as its first page.
class FirstPage {
 public:
  FirstPage(std::uint32_t platform, std::uint32_t major, std::uint32_t minor) {
    auto& version = machine_.settings().system.version;
    version.platform = platform;
    version.major = major;
    version.minor = minor;
    machine_.startProgram();
    setup_ = std::make_unique<Setup>(machine_.platform());
    machine_.platform().application.run([&] { setup_->start(); });
  }
  Globals& globals() { return setup_->globals(); }
  Form1& form1() { return setup_->form1(); }

 private:
  QuietPerson person_;
  simulated::NoTranscript transcript_;
  simulated::SimulatedMachine machine_{person_, transcript_};
  std::unique_ptr<Setup> setup_;
};

TEST(FirstOptions, AreThoseOfTheirTableOnNt62) {
  FirstPage page(2, 6, 2);
  EXPECT_EQ(page.globals().gVersionNT62, 1);
  EXPECT_TRUE(page.form1().Command6.Visible);
  for (const Row& row : Table::read("options.tsv")) {
    EXPECT_EQ(page.globals().*byteOf(row), row.number("default_nt62")) << row.where();
  }
}

struct OtherVersion {
  std::uint32_t platform, major, minor;
};

constexpr OtherVersion otherVersions[] = {{1, 4, 10}, {1, 4, 90}, {1, 6, 2}, {2, 4, 0}, {2, 5, 0},
                                          {2, 5, 1},  {2, 5, 2},  {2, 6, 0}, {2, 6, 1}, {2, 6, 3},
                                          {2, 6, 4},  {2, 7, 2},  {2, 10, 0}};

TEST(FirstOptions, AreThoseOfTheirTableElsewhere) {
  for (const OtherVersion& each : otherVersions) {
    FirstPage page(each.platform, each.major, each.minor);
    const std::string version = std::to_string(each.major) + "." + std::to_string(each.minor);
    EXPECT_EQ(page.globals().gVersionNT62, 0) << version;
    EXPECT_FALSE(page.form1().Command6.Visible) << version;
    for (const Row& row : Table::read("options.tsv")) {
      EXPECT_EQ(page.globals().*byteOf(row), row.number("otherwise")) << row.where() << version;
    }
  }
}

}  // namespace
}  // namespace zev
