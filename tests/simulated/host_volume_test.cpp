#include <gmock/gmock.h>

#include "simulated/bench.h"

namespace zev::simulated {
namespace {

class HostVolumeTest : public MachineTest {
 protected:
  HostVolumeTest() {
    host.write("Sub/MiXed.txt", "abc");
    DriveSettings settings;
    settings.host = host.path();
    machine.disks().setDrive(u'E', settings);
  }
  HostFolder host;
};

TEST_F(HostVolumeTest, FindsFilesWhateverTheirCase) {
  EXPECT_EQ(files().FileLen(u"e:\\SUB\\mixed.TXT"), 3);
  EXPECT_EQ(files().Dir(u"E:\\sub\\*.*", 0), u"MiXed.txt");
  EXPECT_EQ(content(u"E:\\sub\\MIXED.txt"), "abc");
}

TEST_F(HostVolumeTest, WritesRealFiles) {
  files().MkDir(u"E:\\Neu\u00FC");
  files().OpenOutput(1, u"E:\\Neu\u00DC\\a.txt");
  files().Print(1, u"line");
  EXPECT_EQ(files().LOF(1), 6);
  files().Close(1);
  EXPECT_EQ(host.read(std::u8string(u8"Neu\u00FC/a.txt")), "line\r\n");
  files().OpenOutput(1, u"E:\\sub\\mixed.txt");
  files().Print(1, u"new");
  EXPECT_EQ(host.read("Sub/MiXed.txt"), "abc");
  files().Close(1);
  EXPECT_EQ(host.read("Sub/MiXed.txt"), "new\r\n");
  EXPECT_THAT(host.names("Sub"), testing::ElementsAre("MiXed.txt"));
}

TEST_F(HostVolumeTest, ReadsWhatWasJustWritten) {
  files().OpenBinary(1, u"E:\\f", false);
  files().Put(1, 1, bytes("abcdef"));
  std::vector<std::uint8_t> got(3);
  files().Get(1, 2, got);
  EXPECT_THAT(got, testing::ElementsAre('b', 'c', 'd'));
  files().Put(1, 3, bytes("XY"));
  files().Get(1, 3, got);
  EXPECT_THAT(got, testing::ElementsAre('X', 'Y', 'e'));
  EXPECT_EQ(files().FileLen(u"E:\\f"), 6);
  files().Close(1);
  EXPECT_EQ(host.read("f"), "abXYef");
}

TEST_F(HostVolumeTest, SeesWhatOthersDoToTheFolder) {
  EXPECT_EQ(files().Dir(u"E:\\sub\\other.txt", 0), u"");
  host.write("Sub/Other.txt", "of others");
  EXPECT_EQ(files().Dir(u"E:\\sub\\other.txt", 0), u"Other.txt");
  EXPECT_EQ(content(u"E:\\SUB\\OTHER.TXT"), "of others");
  std::filesystem::rename(host.path() / "Sub", host.path() / "SUB2");
  EXPECT_EQ(files().Dir(u"E:\\sub\\other.txt", 0), u"");
  EXPECT_EQ(files().Dir(u"E:\\sub2\\other.txt", 0), u"Other.txt");
  std::filesystem::remove(host.path() / "SUB2" / "Other.txt");
  EXPECT_EQ(files().Dir(u"E:\\sub2\\other.txt", 0), u"");
}

TEST_F(HostVolumeTest, FindsWhatItMadeInAnyCase) {
  for (int each = 0; each < 50; ++each) {
    const Text name = join(u"E:\\SUB\\File", decimal(each));
    EXPECT_EQ(files().Dir(lowerCase(name), 0), u"");
    files().OpenOutput(1, name);
    files().Print(1, u"text");
    files().Close(1);
    EXPECT_EQ(files().Dir(lowerCase(name), 0), join(u"File", decimal(each)));
    files().Kill(lowerCase(name));
    EXPECT_EQ(files().Dir(lowerCase(name), 0), u"");
  }
}

TEST_F(HostVolumeTest, KeepsAttributesBesideTheFolder) {
  EXPECT_TRUE(files().SetFileAttributesA(u"E:\\Sub", 2));
  EXPECT_EQ(files().GetAttr(u"E:\\sub"), 18);
  EXPECT_TRUE(files().SetFileAttributesA(u"E:\\Sub\\MiXed.txt", 1));
  EXPECT_EQ(test::raisedBy([&] { files().Kill(u"E:\\Sub\\MiXed.txt"); }), 75);
  EXPECT_TRUE(files().SetFileAttributesA(u"E:\\Sub\\MiXed.txt", 0));
  files().Kill(u"E:\\Sub\\MiXed.txt");
  files().RmDir(u"E:\\Sub");
  EXPECT_FALSE(std::filesystem::exists(host.path() / "Sub"));
}

TEST_F(HostVolumeTest, HasTheSpaceThatTheMachineSays) {
  DriveSettings settings = *machine.disks().drive(u'E');
  settings.free = 4096;
  machine.disks().setDrive(u'E', settings);
  files().OpenBinaryWrite(1, u"E:\\f");
  EXPECT_EQ(test::raisedBy([&] { files().PutText(1, 1, Text(5000, u'x')); }), 61);
  files().Close(1);
  EXPECT_EQ(host.read("f").size(), 4096u);
  EXPECT_EQ(machine.disks().drive(u'E')->free, 0u);
}

TEST_F(HostVolumeTest, LeavesNothingOfATextThatHasNoSpace) {
  DriveSettings settings = *machine.disks().drive(u'E');
  settings.free = 4096;
  machine.disks().setDrive(u'E', settings);
  files().OpenOutput(1, u"E:\\Sub\\MiXed.txt");
  EXPECT_EQ(test::raisedBy([&] { files().Print(1, Text(5000, u'x')); }), 61);
  files().Close(1);
  EXPECT_EQ(host.read("Sub/MiXed.txt"), "abc");
  EXPECT_THAT(host.names("Sub"), testing::ElementsAre("MiXed.txt"));
  EXPECT_EQ(machine.disks().drive(u'E')->free, 4096u);
}

TEST_F(HostVolumeTest, ChangingSettingsKeepsTheFolder) {
  DriveSettings settings = *machine.disks().drive(u'E');
  settings.label = u"DATA";
  machine.disks().setDrive(u'E', settings);
  EXPECT_TRUE(machine.disks().exists(u"E:\\Sub\\MiXed.txt"));
  EXPECT_EQ(platform().drives.volumeLabel(u"E:\\"), u"DATA");
}

}  // namespace
}  // namespace zev::simulated
