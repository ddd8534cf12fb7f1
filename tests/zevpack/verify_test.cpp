#include <gmock/gmock.h>

#include "support/made_image.h"
#include "zevpack/made_package.h"
#include "zevpack/tool.h"

namespace zev::packing {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// The rows that the tool names as wrong.
std::set<std::int32_t> rowsNamed(const std::string& out) {
  std::set<std::int32_t> rows;
  for (const std::string& line : linesOf(out)) {
    if (line.starts_with("row ")) rows.insert(std::stoi(line.substr(4)));
  }
  return rows;
}

std::set<std::int32_t> rows(std::int32_t first, std::int32_t last) {
  std::set<std::int32_t> all;
  for (std::int32_t row = first; row <= last; ++row) all.insert(row);
  return all;
}

class ZevpackVerify : public ToolTest {
 protected:
  Outcome verify(const Bytes& bytes, bool plainOk = false) const {
    writeFile(package_, bytes);
    std::vector<std::string> arguments = {"verify", package_};
    if (plainOk) arguments.emplace_back("--plain-ok");
    return zevpack(arguments);
  }

  /// Verifies the package with one row wrong, which alone must be named, with what is wrong.
  void expectWrong(std::int32_t row, const Bytes& bytes, const std::string& what) const {
    const Outcome outcome = verify(bytes);
    EXPECT_EQ(outcome.status, 1) << row;
    EXPECT_EQ(rowsNamed(outcome.out), (std::set<std::int32_t>{row}));
    EXPECT_THAT(outcome.out, HasSubstr(members()[placeOf(row)].packedName));
    EXPECT_THAT(outcome.out, HasSubstr(what)) << row;
    EXPECT_THAT(outcome.out, HasSubstr("55 of 56 members are right"));
  }

  /// The package with one byte of a row's member changed.
  Bytes with(std::int32_t row, std::size_t offset, std::uint8_t value) const {
    Bytes bytes = right_;
    EXPECT_NE(bytes.at(startOf(row) + offset), value);
    bytes.at(startOf(row) + offset) = value;
    return bytes;
  }

  static constexpr std::int32_t kSomeRows[] = {1, 3, 24, 48, 56};

  const fs::path package_ = at("package");
  const Bytes right_ = packageOf(madeImage(), packedMembers());
};

TEST_F(ZevpackVerify, FindsNothingWrongWithARightPackage) {
  const Outcome outcome = verify(right_);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out, package_.string() + ": 56 of 56 members are right\n");
  EXPECT_EQ(outcome.err, "");
}

TEST_F(ZevpackVerify, FindsNothingWrongWithASignedPackage) {
  const Outcome outcome = verify(test::signedFile(right_));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(
      outcome.out,
      package_.string() + ": 56 of 56 members are right, with a certificate table behind them\n");
}

TEST_F(ZevpackVerify, FindsAByteBehindTheTableWrong) {
  Bytes bytes = test::signedFile(right_);
  bytes.push_back(0);
  const Outcome outcome = verify(bytes);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(rowsNamed(outcome.out), rows(1, 56));
}

TEST_F(ZevpackVerify, FindsMembersWithoutAProgramWrong) {
  const Bytes bare(right_.begin() + static_cast<std::ptrdiff_t>(startOf(56)), right_.end());
  const Outcome outcome = verify(bare);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "there is no program in front of the members\n" + package_.string() +
                             ": 56 of 56 members are right, the program is not\n");
}

TEST_F(ZevpackVerify, FindsMembersBehindAPackageWrong) {
  const std::string why = "the program in front of the members carries members already\n";
  EXPECT_THAT(verify(packageOf(right_, packedMembers())).out, HasSubstr(why));
  EXPECT_EQ(verify(packageOf(right_, packedMembers())).status, 1);
  EXPECT_EQ(verify(packageOf(packageOf(madeImage(), storedMembers()), packedMembers())).status, 1);
}

TEST_F(ZevpackVerify, FindsAProgramThatWasSignedBeforeItGotItsMembersWrong) {
  const Outcome outcome = verify(packageOf(test::signedFile(madeImage()), packedMembers()));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, HasSubstr("built first and signed last"));
}

TEST_F(ZevpackVerify, FindsAByteMoreOrLessAmongStoredMembersWrong) {
  Bytes bytes = packageOf(madeImage(), storedMembers());
  bytes.push_back(0);
  const Outcome more = verify(bytes, true);
  EXPECT_EQ(more.status, 1);
  EXPECT_THAT(more.out, HasSubstr("1 bytes lie between the program and the members"));
  bytes.resize(bytes.size() - 2);
  const Outcome less = verify(bytes, true);
  EXPECT_EQ(less.status, 1);
  EXPECT_THAT(less.out, HasSubstr("cut short"));
}

TEST_F(ZevpackVerify, FindsTheFirstByteMissing) {
  const Bytes bytes(right_.begin() + static_cast<std::ptrdiff_t>(startOf(56)) + 1, right_.end());
  expectWrong(56, bytes,
              "begins in front of the file: it needs 15246584 bytes to the end, the file has "
              "15246583");
}

TEST_F(ZevpackVerify, FindsMembersWithoutCompressionWrongUnlessToldOtherwise) {
  const Bytes plain = packageOf(madeImage(), storedMembers());
  const Outcome outcome = verify(plain);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(rowsNamed(outcome.out), rows(1, 56));
  EXPECT_THAT(outcome.out, HasSubstr("no header of a packed file"));
  EXPECT_THAT(outcome.out, HasSubstr("0 of 56 members are right"));
  EXPECT_EQ(verify(plain, true).status, 0);
}

TEST_F(ZevpackVerify, StillChecksPlaceAndPackedMembersIfPlainOnesAreRight) {
  const Outcome damaged = verify(with(8, 8, 'B'), true);
  EXPECT_EQ(damaged.status, 1);
  EXPECT_EQ(rowsNamed(damaged.out), rows(8, 8));
  const Outcome tooShort = verify(Bytes(194 + 178), true);
  EXPECT_EQ(tooShort.status, 1);
  EXPECT_EQ(rowsNamed(tooShort.out), rows(3, 56));
}

TEST_F(ZevpackVerify, NamesEveryRowOfAPackageThatWasCut) {
  // Members are counted back from the end, so that all of them move.
  for (const std::size_t missing : {1u, 193u, 194u, 372u, 6'000'000u, 15'000'000u}) {
    const Bytes cut(right_.begin(), right_.end() - static_cast<std::ptrdiff_t>(missing));
    const Outcome outcome = verify(cut);
    EXPECT_EQ(outcome.status, 1) << missing;
    EXPECT_EQ(rowsNamed(outcome.out), rows(1, 56)) << missing;
    EXPECT_THAT(outcome.out, HasSubstr("0 of 56 members are right"));
  }
}

TEST_F(ZevpackVerify, NamesEveryRowOfAPackageWithOneByteMore) {
  Bytes longer = right_;
  longer.push_back(0);
  EXPECT_EQ(rowsNamed(verify(longer).out), rows(1, 56));
}

TEST_F(ZevpackVerify, NamesTheRowsThatBeginInFrontOfTheFile) {
  const auto tail = [&](std::size_t length) {
    return Bytes(right_.end() - static_cast<std::ptrdiff_t>(length), right_.end());
  };
  EXPECT_EQ(rowsNamed(verify(tail(0)).out), rows(1, 56));
  EXPECT_EQ(rowsNamed(verify(tail(193)).out), rows(1, 56));
  EXPECT_EQ(rowsNamed(verify(tail(194)).out), rows(2, 56));
  EXPECT_EQ(rowsNamed(verify(tail(194 + 178)).out), rows(3, 56));
  EXPECT_EQ(rowsNamed(verify(tail(9'000'000)).out), rows(24, 56));
  EXPECT_EQ(verify(tail(194)).status, 1);
}

TEST_F(ZevpackVerify, NamesTheRowOfAnotherMagic) {
  for (const std::int32_t row : kSomeRows) {
    expectWrong(row, with(row, 0, 'M'), "no header of a packed file");
  }
  expectWrong(8, with(8, 7, 0x32), "no header of a packed file");
}

TEST_F(ZevpackVerify, NamesTheRowOfAnotherMode) {
  for (const std::int32_t row : kSomeRows) {
    expectWrong(row, with(row, 8, 'B'), "unknown compression mode");
  }
}

TEST_F(ZevpackVerify, NamesTheRowOfAnotherCharacter) {
  expectWrong(1, with(1, 9, 'e'), "names the character 'e' instead of 'v'");
  expectWrong(48, with(48, 9, 't'), "names the character 't' instead of 'n'");
}

TEST_F(ZevpackVerify, TakesAHeaderThatNamesNoCharacter) {
  EXPECT_EQ(verify(with(1, 9, 0)).status, 0);
}

TEST_F(ZevpackVerify, NamesTheRowThatDeclaresMoreThanThereIs) {
  for (const std::int32_t row : kSomeRows) {
    expectWrong(row, with(row, 13, 0x7F), "the data ends before the declared length");
  }
}

TEST_F(ZevpackVerify, NamesTheRowOfAChangedByteInTheData) {
  std::vector<MadeMember> made = packedMembers();
  made[placeOf(8)] = densestOfSize(677, 'v');
  const Bytes dense = packageOf(madeImage(), made);
  ASSERT_EQ(verify(dense).status, 0);
  // Flag bytes: eight matches become literals. Then a match that becomes a shorter one.
  constexpr struct {
    std::size_t offset;
    std::uint8_t value;
  } changes[] = {{14, 0xFF}, {14 + 17, 0x01}, {14 + 38 * 17, 0x80}, {676, 0x0E}};
  for (const auto& [offset, value] : changes) {
    Bytes bytes = dense;
    bytes.at(startOf(8) + offset) = value;
    expectWrong(8, bytes, "the data ends before the declared length");
  }
}

TEST_F(ZevpackVerify, NamesTheRowsOfGarbage) {
  std::vector<MadeMember> made = packedMembers();
  made[placeOf(4)].packed = noise(2576, 99);
  made[placeOf(31)].packed = Bytes(2973945);
  const Outcome outcome = verify(packageOf(madeImage(), made));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(rowsNamed(outcome.out), (std::set<std::int32_t>{4, 31}));
  EXPECT_THAT(outcome.out, HasSubstr("54 of 56 members are right"));
}

TEST_F(ZevpackVerify, ChangesNothing) {
  verify(right_);
  EXPECT_TRUE(readFile(package_) == right_);
  EXPECT_EQ(namesIn(package_.parent_path()), (std::set<std::string>{"package"}));
}

}  // namespace
}  // namespace zev::packing
