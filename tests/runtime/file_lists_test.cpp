#include "runtime/controls.h"

#include <gtest/gtest.h>

#include "support/raised.h"

namespace zev {
namespace {

using test::raisedBy;
using Texts = std::vector<Text>;

constexpr ControlDesign driveDesign = {.name = u"Drive1", .kind = ControlKind::DriveListBox};
constexpr ControlDesign dirDesign = {.name = u"Dir1", .kind = ControlKind::DirListBox};

/// A list of the drives c: and d:.
struct DriveList {
  DriveList() {
    list.available = [](TextView drive) { return drive == u"c:" || drive == u"d:"; };
    list.Change = [this] { changes.push_back(list.Drive()); };
  }
  DriveListBox list{driveDesign};
  Texts changes;
};

TEST(DriveListBox, HasNoDriveAtFirst) {
  const DriveList drives;
  EXPECT_EQ(drives.list.Drive(), u"");
  EXPECT_TRUE(drives.changes.empty());
}

TEST(DriveListBox, ReadsAsLetterAndColon) {
  for (const TextView chosen : {u"C:", u"c:", u"C", u"C:\\", u"C:\\Windows", u"c: [LABEL]"}) {
    DriveList drives;
    drives.list.setDrive(chosen);
    EXPECT_EQ(toUtf8(drives.list.Drive()), "c:") << toUtf8(chosen);
    EXPECT_EQ(drives.changes, Texts{u"c:"}) << toUtf8(chosen);
  }
}

TEST(DriveListBox, FiresNoChangeForTheDriveThatItHas) {
  DriveList drives;
  drives.list.setDrive(u"c:");
  for (const TextView same : {u"c:", u"C:", u"C:\\Windows"}) drives.list.setDrive(same);
  EXPECT_EQ(drives.changes.size(), 1u);
  drives.list.setDrive(u"D:");
  drives.list.setDrive(u"c:");
  EXPECT_EQ(drives.changes, (Texts{u"c:", u"d:", u"c:"}));
}

TEST(DriveListBox, FiresNoChangeWhenItComesUp) {
  DriveList drives;
  drives.list.comeUpOn(u"C:\\Users\\bob");
  EXPECT_EQ(drives.list.Drive(), u"c:");
  drives.list.setDrive(u"c:");
  EXPECT_TRUE(drives.changes.empty());
}

TEST(DriveListBox, RefusesADriveThatItDoesNotHave) {
  DriveList drives;
  drives.list.setDrive(u"c:");
  for (const TextView missing : {u"x:", u"", u"\\\\server", u"1:"}) {
    EXPECT_EQ(raisedBy([&] { drives.list.setDrive(missing); }), 68) << toUtf8(missing);
  }
  EXPECT_EQ(drives.list.Drive(), u"c:");
  EXPECT_EQ(drives.changes.size(), 1u);
}

TEST(DriveListBox, CanBeSetBackFromInsideItsChange) {
  DriveList drives;
  drives.list.setDrive(u"c:");
  drives.list.Change = [&] {
    drives.changes.push_back(drives.list.Drive());
    drives.list.setDrive(u"c:");
  };
  drives.list.setDrive(u"d:");
  EXPECT_EQ(drives.list.Drive(), u"c:");
  EXPECT_EQ(drives.changes, (Texts{u"c:", u"d:", u"c:"}));
}

TEST(DriveListBox, KeepsTheDriveWhenTheChangeFails) {
  DriveList drives;
  drives.list.Change = [] { throw RuntimeError(ErrorNumber::Overflow); };
  EXPECT_EQ(raisedBy([&] { drives.list.setDrive(u"d:"); }), 6);
  EXPECT_EQ(drives.list.Drive(), u"d:");
}

/// A tree of a few folders.
struct FolderTree {
  FolderTree() {
    tree.exists = [](TextView folder) {
      return folder == u"C:\\" || folder == u"C:\\Windows" || folder == u"D:\\";
    };
    tree.Change = [this] { changes.push_back(tree.Path()); };
  }
  DirListBox tree{dirDesign};
  Texts changes;
};

TEST(DirListBox, ShowsARootWithItsBackslashAndAFolderWithout) {
  struct PathRow {
    TextView set;
    TextView path;
  };
  constexpr PathRow rows[] = {
      {u"C:", u"C:\\"},
      {u"C:\\", u"C:\\"},
      {u"c:", u"C:\\"},
      {u"d:\\", u"D:\\"},
      {u"C:\\Windows", u"C:\\Windows"},
      {u"C:\\Windows\\", u"C:\\Windows"},
  };
  for (const PathRow& row : rows) {
    FolderTree folders;
    folders.tree.setPath(row.set);
    EXPECT_EQ(toUtf8(folders.tree.Path()), toUtf8(row.path)) << toUtf8(row.set);
    EXPECT_EQ(folders.changes, Texts{Text(row.path)}) << toUtf8(row.set);
  }
}

TEST(DirListBox, FiresNoChangeForTheFolderThatIsOpen) {
  FolderTree folders;
  folders.tree.setPath(u"C:\\Windows");
  folders.tree.setPath(u"C:\\Windows\\");
  EXPECT_EQ(folders.changes.size(), 1u);
  folders.tree.setPath(u"C:");
  folders.tree.setPath(u"C:\\");
  EXPECT_EQ(folders.changes.size(), 2u);
}

TEST(DirListBox, StaysWhereItIsForAFolderThatDoesNotExist) {
  FolderTree folders;
  folders.tree.setPath(u"C:\\Windows");
  folders.tree.setPath(u"C:\\nowhere");
  folders.tree.setPath(u"X:");
  EXPECT_EQ(folders.tree.Path(), u"C:\\Windows");
  EXPECT_EQ(folders.changes.size(), 1u);
}

TEST(DirListBox, FiresNoChangeWhenItComesUp) {
  FolderTree folders;
  folders.tree.comeUpOn(u"C:\\Users\\");
  EXPECT_EQ(folders.tree.Path(), u"C:\\Users");
  folders.tree.comeUpOn(u"d:");
  EXPECT_EQ(folders.tree.Path(), u"D:\\");
  EXPECT_TRUE(folders.changes.empty());
}

}  // namespace
}  // namespace zev
