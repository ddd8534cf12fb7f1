#include "destination/folder_browser.h"

#include <gtest/gtest.h>

#include <map>

#include "destination/expected_boxes.h"
#include "support/raised.h"
#include "support/table.h"

namespace zev {
namespace {

using Boxes = std::vector<std::string>;
using Effect = simulated::Fault::Effect;
using test::raisedBy;
using test::Row;
using test::Table;

const std::string spaceBox = told(u"Warning", 48,
                                  u"Space in drive is less than 5.000.000 bytes.\rYou need more "
                                  u"space to install Screen Recorder.");

class FolderBrowserTest : public OnThePage, public testing::Test {
 protected:
  void open(TextView directory) {
    globals().gInstallDir = directory;
    program->platform.application.Show(form);
  }
  void close(UnloadMode mode) { program->platform.application.Unload(form, mode); }
  std::string figure() const { return toUtf8(form.Label3.Caption.get()); }

  Form3& form = program->form3;
  FolderBrowser browser{*program, *phrases, wizard};
};

// ---- the form

const std::map<std::string, ControlKind> kinds = {
    {"CommandButton", ControlKind::CommandButton},
    {"DriveListBox", ControlKind::DriveListBox},
    {"DirListBox", ControlKind::DirListBox},
    {"Label", ControlKind::Label},
};

TEST_F(FolderBrowserTest, HasTheControlsOfItsTableInTheirOrder) {
  const Table table = Table::read("form3_controls.tsv");
  ASSERT_EQ(form.Controls().size(), table.size());
  for (const Row& row : table) {
    const Control& found = *form.Controls()[static_cast<std::size_t>(row.number("order") - 1)];
    EXPECT_EQ(toUtf8(found.name()), row.word("control")) << row.where();
    EXPECT_EQ(found.kind(), kinds.at(row.word("kind"))) << row.where();
    EXPECT_TRUE(found.Visible && found.Enabled) << row.where();
  }
  EXPECT_EQ(form.Caption.get(), u"Screen Recorder");
}

TEST_F(FolderBrowserTest, HasTheTextsOfItsTableInEachLanguage) {
  for (std::int32_t spoken = language::English; spoken <= language::Spanish; ++spoken) {
    speak(spoken);
    open(u"C:\\Windows");
    for (const Row& row : Table::read("form3_controls.tsv")) {
      if (row.isNone("text")) continue;
      const PropertyBase& caption =
          form.findControl(fromUtf8(row.word("control")))->property("Caption");
      EXPECT_EQ(toUtf8(std::get<Text>(caption.value())),
                toUtf8(phrases->Translate(row.text("text"))))
          << row.where() << " " << spoken;
    }
    EXPECT_EQ(form.Caption.get(), phrases->Translate(u"Screen Recorder"));
    close(UnloadMode::Code);
  }
}

TEST_F(FolderBrowserTest, TakesTheIconOfTheWizard) {
  program->form1.Icon = u"an icon";
  open(u"C:\\Windows");
  EXPECT_EQ(form.Icon.get(), u"an icon");
}

// ---- opening

/// Where the browser opens for a directory, on a machine with the drives C: and D:.
struct OpeningRow {
  TextView directory;
  TextView left;  ///< the directory behind the opening
  TextView drive;
  TextView folder;
  bool repaired;  ///< the page shows the directory anew
};

// clang-format off
constexpr OpeningRow openings[] = {
    {u"C:\\Windows",           u"C:\\Windows", u"c:", u"C:\\Windows", false},
    {u"C:\\Windows\\a\\b\\c",  u"C:\\Windows", u"c:", u"C:\\Windows", false},
    {u"C:\\Windows\\",         u"C:\\Windows\\", u"c:", u"C:\\Windows", false},
    {u"  C:\\Windows  ",       u"C:\\Windows", u"c:", u"C:\\Windows", false},
    {u"C:\\a",                 u"C:",          u"c:", u"C:\\",        false},
    {u"C:\\a\\b",              u"C:",          u"c:", u"C:\\",        false},
    {u"C:\\",                  u"C:\\",        u"c:", u"C:\\",        false},
    {u"C:",                    u"C:",          u"c:", u"C:\\",        false},
    {u"D:\\a\\b",              u"D:",          u"d:", u"D:\\",        false},
    {u"d:\\a",                 u"d:",          u"d:", u"D:\\",        false},
    {u"Q:\\a\\b",              u"C:\\",        u"c:", u"C:\\",        false},
    {u"Q:",                    u"C:\\",        u"c:", u"C:\\",        false},
    {u"word",                  u"C:\\",        u"c:", u"C:\\",        false},
    {u"word\\",                u"C:\\",        u"c:", u"C:\\",        false},
    {u"",                      u"C:\\",        u"c:", u"C:\\",        true},
    {u"   ",                   u"C:\\",        u"c:", u"C:\\",        true},
    {u":",                     u"C:\\",        u"c:", u"C:\\",        true},
    {u":\\Windows",            u"C:\\",        u"c:", u"C:\\",        true},
    {u"\\",                    u"C:\\",        u"c:", u"C:\\",        true},
    {u"\\Windows",             u"C:\\",        u"c:", u"C:\\",        true},
    {u"\\\\server\\share",     u"C:\\",        u"c:", u"C:\\",        true},
};
// clang-format on

TEST_F(FolderBrowserTest, OpensWhereItsTableSays) {
  for (const OpeningRow& row : openings) {
    program->form1.Text2.Text_ = u"as it was";
    open(row.directory);
    EXPECT_EQ(toUtf8(directory()), toUtf8(row.left)) << toUtf8(row.directory);
    EXPECT_EQ(toUtf8(form.Drive1.Drive()), toUtf8(row.drive)) << toUtf8(row.directory);
    EXPECT_EQ(toUtf8(form.Dir1.Path()), toUtf8(row.folder)) << toUtf8(row.directory);
    EXPECT_EQ(toUtf8(program->form1.Text2.Text_.get()), row.repaired ? "C:\\" : "as it was");
    EXPECT_EQ(figure(), "65,536 MB") << toUtf8(row.directory);
    EXPECT_EQ(boxes(), Boxes());
    close(UnloadMode::Code);
  }
}

TEST_F(FolderBrowserTest, RepairsWithTheDriveOfWindows) {
  globals().gWinDir = u"D:\\Windows";
  for (const TextView directory : {u"", u":a", u"\\a", u"Q:\\a", u"word"}) {
    open(directory);
    EXPECT_EQ(globals().gInstallDir.trimmed(), u"D:\\") << toUtf8(directory);
    EXPECT_EQ(form.Drive1.Drive(), u"d:") << toUtf8(directory);
    close(UnloadMode::Code);
  }
}

TEST_F(FolderBrowserTest, DoesNotStayOnADiskette) {
  for (const TextView drive : {u"A:", u"B:"}) {
    machine.disks().setDrive(drive.front(), {.type = 2});
    open(join(drive, u"\\nowhere"));
    EXPECT_EQ(boxes(), Boxes{driveBox(u"diskette")}) << toUtf8(drive);
    EXPECT_EQ(form.Drive1.Drive(), u"c:") << toUtf8(drive);
    EXPECT_EQ(form.Dir1.Path(), u"C:\\") << toUtf8(drive);
    EXPECT_EQ(directory(), drive);
    close(UnloadMode::Code);
  }
}

TEST_F(FolderBrowserTest, LeavesADisketteForTheDriveOfWindows) {
  globals().gWinDir = u"  D:\\Windows  ";
  machine.disks().setDrive(u'A', {.type = 2});
  open(u"A:\\nowhere");
  EXPECT_EQ(boxes(), Boxes{driveBox(u"diskette")});
  EXPECT_EQ(form.Drive1.Drive(), u"d:");
  EXPECT_EQ(form.Dir1.Path(), u"D:\\");
  EXPECT_EQ(directory(), u"A:");
}

// ---- choosing drives

TEST_F(FolderBrowserTest, OpensTheDirectoryOnItsDriveAndTheRootElsewhere) {
  for (const TextView chosen : {u"C:\\Windows", u"c:\\Windows"}) {
    open(chosen);
    form.Drive1.setDrive(u"d:");
    EXPECT_EQ(form.Dir1.Path(), u"D:\\");
    form.Drive1.setDrive(u"c:");
    EXPECT_EQ(toUtf8(form.Dir1.Path()), toUtf8(chosen));
    EXPECT_EQ(directory(), chosen);
    close(UnloadMode::Code);
  }
}

/// The change of the drive that it goes back to is handled inside that of the refused one.
TEST_F(FolderBrowserTest, GoesBackThroughANestedChange) {
  machine.disks().putDirectory(u"R:\\Apps");
  open(u"R:\\Apps");
  EXPECT_EQ(boxes(), Boxes{driveBox(u"diskette")});
  const std::pair<TextView, TextView> refused[] = {
      {u"e:", u"CD"}, {u"n:", u"network"}, {u"m:", u"RAM"}};
  for (const auto& [drive, kind] : refused) {
    form.Drive1.setDrive(drive);
    EXPECT_EQ(boxes(), (Boxes{driveBox(kind), driveBox(u"diskette")})) << toUtf8(drive);
    EXPECT_EQ(form.Drive1.Drive(), u"r:");
    EXPECT_EQ(form.Dir1.Path(), u"R:\\Apps");
  }
}

// ---- free space

TEST(Megabytes, AreWholeWithThousandsSeparators) {
  struct MegabytesRow {
    std::int32_t kilobytes;
    TextView figure;
  };
  // clang-format off
  constexpr MegabytesRow rows[] = {
      {0, u" MB"}, {1, u" MB"}, {511, u" MB"}, {513, u"1 MB"}, {1023, u"1 MB"}, {1024, u"1 MB"},
      {1025, u"1 MB"}, {1535, u"1 MB"}, {1537, u"2 MB"}, {2047, u"2 MB"}, {10 * 1024, u"10 MB"},
      {999 * 1024, u"999 MB"}, {999 * 1024 + 511, u"999 MB"}, {999 * 1024 + 513, u"1,000 MB"},
      {1000 * 1024, u"1,000 MB"}, {12345 * 1024, u"12,345 MB"}, {123456 * 1024, u"123,456 MB"},
      {999999 * 1024, u"999,999 MB"}, {1000000 * 1024, u"1,000,000 MB"},
      {2097151 * 1024, u"2,097,151 MB"}, {2147483647, u"2,097,152 MB"},
  };
  // clang-format on
  for (const MegabytesRow& row : rows) {
    EXPECT_EQ(toUtf8(megabytes(row.kilobytes)), toUtf8(row.figure)) << row.kilobytes;
  }
}

/// A drive as it tells its clusters, and whether there is enough on it.
struct SpaceRow {
  std::uint32_t sectorsPerCluster;
  std::uint32_t bytesPerSector;
  std::uint32_t freeClusters;
  bool suffices;
  const char* figure;
};

// clang-format off
constexpr SpaceRow spaces[] = {
    {2, 512, 4882, false, "5 MB"},           // 4,882 KB
    {2, 512, 4883, true, "5 MB"},            // 4,883 KB
    {1, 512, 9764, false, "5 MB"},           // 4,882 KB
    {1, 512, 9766, true, "5 MB"},            // 4,883 KB
    {1, 768, 6509, false, "5 MB"},           // 4,881.75 KB
    {1, 768, 6511, true, "5 MB"},            // 4,883.25 KB
    {8, 512, 1220, false, "5 MB"},           // 4,880 KB
    {8, 512, 1221, true, "5 MB"},            // 4,884 KB
    {64, 512, 152, false, "5 MB"},           // 4,864 KB
    {64, 512, 153, true, "5 MB"},            // 4,896 KB
    {1, 512, 0, false, " MB"},
    {1, 512, 1, false, " MB"},
    {1, 1, 1023, false, " MB"},
    {1, 1, 1048576, false, "1 MB"},
    {1, 1, 5000000, true, "5 MB"},           // 4,882.8125 KB are 4,883
    {1, 1, 4999424, false, "5 MB"},           // 4,882.25 KB are 4,882
    {8, 512, 262144, true, "1,024 MB"},
    {128, 512, 33554431, true, "2,097,152 MB"},
    {65536, 32767, 1000, true, "2,047,938 MB"},
};
// clang-format on

TEST_F(FolderBrowserTest, WantsFiveMillionBytes) {
  for (const SpaceRow& row : spaces) {
    const std::uint64_t cluster = std::uint64_t{row.sectorsPerCluster} * row.bytesPerSector;
    machine.disks().setDrive(u'D', {.free = cluster * row.freeClusters,
                                    .sectorsPerCluster = row.sectorsPerCluster,
                                    .bytesPerSector = row.bytesPerSector});
    open(u"D:\\");
    SCOPED_TRACE(testing::Message() << cluster << " times " << row.freeClusters);
    EXPECT_EQ(figure(), row.figure);
    program->form1.Enabled = false;
    form.Command2.Click();
    EXPECT_EQ(boxes(), row.suffices ? Boxes() : Boxes{spaceBox});
    EXPECT_EQ(form.loaded(), !row.suffices);
    EXPECT_EQ(program->form1.Enabled.get(), row.suffices);
    EXPECT_EQ(directory(), row.suffices ? u"D:" : u"D:\\");
    close(UnloadMode::Code);
  }
}

TEST_F(FolderBrowserTest, CountsADriveThatCannotBeAskedAsFull) {
  open(u"C:\\Windows");
  machine.setFaults({fault("GetDiskFreeSpaceA", u"", Effect::Error, 21)});
  form.Drive1.setDrive(u"d:");
  EXPECT_EQ(figure(), " MB");
  form.Command2.Click();
  EXPECT_EQ(boxes(), Boxes{spaceBox});
}

TEST_F(FolderBrowserTest, RaisesAnErrorForClustersBeyondTheArithmetic) {
  machine.disks().setDrive(u'D', {.sectorsPerCluster = 65536, .bytesPerSector = 32768});
  open(u"C:\\Windows");
  EXPECT_EQ(raisedBy([&] { form.Drive1.setDrive(u"d:"); }), 6);
}

TEST_F(FolderBrowserTest, AsksForTheSpaceByTheRoot) {
  open(u"C:\\Windows\\system32");
  machine.setFaults({fault("GetDiskFreeSpaceA", u"system32", Effect::Error, 21)});
  form.Command2.Click();
  EXPECT_EQ(boxes(), Boxes());
}

// ---- closing

TEST_F(FolderBrowserTest, GivesTheWizardBackHoweverItCloses) {
  const std::map<std::string, std::function<void()>> ways = {
      {"accept", [&] { form.Command2.Click(); }},
      {"cancel", [&] { form.Command3.Click(); }},
      {"close box", [&] { close(UnloadMode::ControlMenu); }},
  };
  for (const auto& [name, leave] : ways) {
    open(u"C:\\Windows");
    program->form1.Enabled = false;
    wizard.completions = 0;
    leave();
    EXPECT_FALSE(form.loaded()) << name;
    EXPECT_TRUE(program->form1.Enabled.get()) << name;
    EXPECT_EQ(wizard.completions, name == "accept" ? 2 : 1) << name;
  }
}

/// By the wizard as it goes away itself.
TEST_F(FolderBrowserTest, LeavesTheWizardAloneWhenCodeUnloadsIt) {
  open(u"C:\\Windows");
  program->form1.Enabled = false;
  close(UnloadMode::Code);
  EXPECT_FALSE(program->form1.Enabled.get());
  EXPECT_EQ(wizard.completions, 1);
}

TEST_F(FolderBrowserTest, GivesItsFolderBackWithOk) {
  open(u"C:\\Windows");
  for (const auto& [folder, given] :
       std::map<Text, Text>{{u"C:\\Windows\\system32", u"C:\\Windows\\system32"},
                            {u"C:\\", u"C:"},
                            {u"D:\\", u"D:"}}) {
    open(u"C:\\Windows");
    form.Dir1.setPath(folder);
    form.Command2.Click();
    EXPECT_EQ(toUtf8(directory()), toUtf8(given));
    EXPECT_EQ(program->form1.Text2.Text_.get(), given);
  }
}

TEST_F(FolderBrowserTest, GivesNothingBackWithCancel) {
  open(u"C:\\Windows\\nothing");
  program->form1.Text2.Text_ = u"as it was";
  form.Dir1.setPath(u"C:\\Users");
  form.Command3.Click();
  EXPECT_EQ(directory(), u"C:\\Windows");
  EXPECT_EQ(program->form1.Text2.Text_.get(), u"as it was");
}

// ---- new folders

/// Notes what is painted anew.
class Painter final : public FormObserver {
 public:
  void propertyWritten(PropertyBase&) override {}
  void refreshed(Component& component) override { painted.push_back(toUtf8(component.name())); }
  void focusGiven(Control&) override {}
  std::vector<std::string> painted;
};

/// A name entered for a folder in C:\Windows.
struct NameRow {
  TextView entered;
  TextView opened;  ///< behind it
  int made;
  bool refused;  ///< with the box
};

// clang-format off
constexpr NameRow names[] = {
    {u"New",        u"C:\\Windows\\New",      1, false},
    {u"  New  ",    u"C:\\Windows\\New",      1, false},
    {u"New one",    u"C:\\Windows\\New one",  1, false},
    {u"a,b",        u"C:\\Windows\\a,b",      1, false},
    {u"x.y",        u"C:\\Windows\\x.y",      1, false},
    {u"system32",   u"C:\\Windows\\system32", 0, false},
    {u"",           u"C:\\Windows",           0, false},
    {u"   ",        u"C:\\Windows",           0, false},
    {u"a?b",        u"C:\\Windows",           0, true},
    {u"a*b",        u"C:\\Windows",           0, true},
    {u"a\\b",       u"C:\\Windows",           0, true},
    {u"?",          u"C:\\Windows",           0, true},
    {u"*",          u"C:\\Windows",           0, true},
    {u"\\",         u"C:\\Windows",           0, true},
    {u"*\\?",       u"C:\\Windows",           0, true},
    {u"\\New",      u"C:\\Windows",           0, true},
    {u"New\\",      u"C:\\Windows",           0, true},
};
// clang-format on

TEST(NewFolders, AreMadeAsTheirTableSays) {
  for (const NameRow& row : names) {
    OnThePage page;
    const FolderBrowser browser(*page.program, *page.phrases, page.wizard);
    Form3& form = page.program->form3;
    page.globals().gInstallDir = u"C:\\Windows";
    page.program->platform.application.Show(form);
    page.person.entered = row.entered;
    form.Command1.Click();
    SCOPED_TRACE(toUtf8(row.entered));
    EXPECT_EQ(toUtf8(form.Dir1.Path()), toUtf8(row.opened));
    EXPECT_TRUE(page.stands(row.opened));
    EXPECT_EQ(page.machine.calls("MkDir"), static_cast<std::uint64_t>(row.made));
    EXPECT_EQ(page.boxes(), row.refused ? Boxes{told(u"Invalid Characters", 48,
                                                     u"Characters, like '\\*?,:' are invalid.")}
                                        : Boxes());
  }
}

TEST_F(FolderBrowserTest, RaisesTheErrorOfANameThatTheSystemRefuses) {
  open(u"C:\\Windows");
  for (const TextView name : {u"a:b", u"a<b", u"a|b", u"a\"b"}) {
    person.entered = name;
    EXPECT_NE(raisedBy([&] { form.Command1.Click(); }), 0) << toUtf8(name);
    EXPECT_EQ(boxes(), Boxes()) << toUtf8(name);
    EXPECT_EQ(form.Dir1.Path(), u"C:\\Windows") << toUtf8(name);
  }
}

TEST_F(FolderBrowserTest, PaintsTheTreeAnewBehindANewFolder) {
  open(u"C:\\Windows");
  Painter painter;
  form.Dir1.observe(&painter);
  for (const TextView name : {u"", u"a?b", u"New", u"system32"}) {
    person.entered = name;
    form.Dir1.setPath(u"C:\\Windows");
    form.Command1.Click();
  }
  EXPECT_EQ(painter.painted, (std::vector<std::string>{"Dir1", "Dir1"}));
  form.Dir1.observe(&machine.screen());
}

}  // namespace
}  // namespace zev
