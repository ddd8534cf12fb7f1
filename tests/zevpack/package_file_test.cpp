#include "programs/zevpack/package_file.h"

#include <gtest/gtest.h>

#include "lz/encoder.h"
#include "programs/zevpack/package_check.h"
#include "support/table.h"
#include "support/temporary_folder.h"
#include "zevpack/made_package.h"

namespace zev::packing {
namespace {

TEST(Members, AreThoseOfTheTableWithTheirPlaces) {
  const test::Table packing = test::Table::read("manifest_packing.tsv");
  const test::Table targets = test::Table::read("manifest_targets.tsv");
  std::size_t place = 0;
  const std::vector<Member> all = members();
  for (const test::Row& expected : packing) {
    if (expected.isNone("row")) continue;
    ASSERT_LT(place, all.size()) << expected.where();
    const Member& member = all[place++];
    EXPECT_EQ(member.row, expected.number("row")) << expected.where();
    EXPECT_EQ(member.packedName, expected.quoted("packed_name")) << expected.where();
    EXPECT_EQ(member.size, static_cast<std::size_t>(expected.number("size"))) << expected.where();
    EXPECT_EQ(member.tailOffset, static_cast<std::size_t>(expected.number("tail_offset")))
        << expected.where();
    EXPECT_EQ(member.installedName,
              targets.row("row", expected.word("row")).quoted("installed_name"));
  }
  EXPECT_EQ(place, all.size());
}

TEST(Members, HaveTheCharacterThatTheUnderscoreReplaced) {
  const std::vector<Member> all = members();
  EXPECT_EQ(nameByte(all[placeOf(1)]), 'v');   // MCD28m.wav
  EXPECT_EQ(nameByte(all[placeOf(3)]), 'e');   // Screen Recorder 6.exe
  EXPECT_EQ(nameByte(all[placeOf(29)]), 'd');  // SampleProject.zrd
  EXPECT_EQ(nameByte(all[placeOf(48)]), 'n');  // Screen Recorder 6.exe.manifest as .ma_
}

TEST(PackageFile, CountsBackFromTheEnd) {
  const test::TemporaryFolder folder;
  const Bytes bytes = noise(194 + 178 + 5, 1);
  writeFile(folder.path() / "package", bytes);
  const PackageFile package(folder.path() / "package");
  const std::vector<Member> all = members();
  EXPECT_EQ(package.length(), bytes.size());
  EXPECT_EQ(package.offsetOf(all[0]), 178u + 5u);
  EXPECT_EQ(package.offsetOf(all[1]), 5u);
  EXPECT_EQ(package.offsetOf(all[2]), std::nullopt);
  const auto stored = package.stored(all[1]);
  EXPECT_EQ(Bytes(stored.begin(), stored.end()), Bytes(bytes.begin() + 5, bytes.begin() + 183));
}

TEST(PackageFile, FindsAMemberThatBeginsWithTheFile) {
  const test::TemporaryFolder folder;
  const std::vector<Member> all = members();
  writeFile(folder.path() / "whole", Bytes(194));
  EXPECT_EQ(PackageFile(folder.path() / "whole").offsetOf(all[0]), 0u);
  writeFile(folder.path() / "short", Bytes(193));
  EXPECT_EQ(PackageFile(folder.path() / "short").offsetOf(all[0]), std::nullopt);
}

TEST(MadeMembers, ExpandToTheirPlainFiles) {
  const std::vector<Member> all = members();
  const std::vector<MadeMember>& made = packedMembers();
  for (const Member& member : all) {
    const MadeMember& each = made[placeOf(member.row)];
    ASSERT_EQ(each.packed.size(), member.size);
    EXPECT_EQ(checkMember(each.packed, nameByte(member), false), "") << member.packedName;
    EXPECT_TRUE(expandMember(each.packed).bytes == each.plain) << member.packedName;
    EXPECT_EQ(declaredLength(each.packed), each.plain.size());
  }
  const MadeMember dense = densestOfSize(677, 'v');
  ASSERT_EQ(dense.packed.size(), 677u);
  EXPECT_EQ(expandMember(dense.packed).bytes, dense.plain);
}

TEST(CheckMember, TellsWhatIsWrong) {
  const Bytes packed = lz::compress(noise(100, 1), 'v');
  EXPECT_EQ(checkMember(packed, 'v', false), "");
  EXPECT_EQ(checkMember(packed, 'e', false), "the header names the character 'v' instead of 'e'");
  const std::span<const std::uint8_t> whole = packed;
  EXPECT_EQ(checkMember(whole.first(7), 'v', false), "no header of a packed file");
  EXPECT_EQ(checkMember(whole.first(7), 'v', true), "");
  EXPECT_EQ(checkMember(whole.first(13), 'v', true), "the header is cut short");
  EXPECT_EQ(checkMember(whole.first(packed.size() - 1), 'v', true),
            "the data ends before the declared length");
  Bytes otherMode = packed;
  otherMode[8] = 'B';
  EXPECT_EQ(checkMember(otherMode, 'v', true), "unknown compression mode");
}

TEST(CheckMember, TakesAHeaderThatNamesNoCharacter) {
  EXPECT_EQ(checkMember(lz::compress(noise(100, 1), 0), 'v', false), "");
}

TEST(DeclaredLength, IsTheHeadersOrThatOfTheFileWithoutOne) {
  EXPECT_EQ(declaredLength(lz::compress(Bytes(1000, 'a'), 'v')), 1000u);
  EXPECT_EQ(declaredLength(noise(14, 1)), 14u);
  EXPECT_EQ(declaredLength(Bytes{}), 0u);
}

}  // namespace
}  // namespace zev::packing
