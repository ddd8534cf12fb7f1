#include <gmock/gmock.h>

#include <sstream>

#include "support/made_image.h"
#include "support/table.h"
#include "zevpack/made_package.h"
#include "zevpack/tool.h"

namespace zev::packing {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class ZevpackList : public ToolTest {
 protected:
  Outcome list(const Bytes& bytes, const std::vector<std::string>& options = {}) const {
    writeFile(at("package"), bytes);
    std::vector<std::string> arguments = {"list", at("package")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return zevpack(arguments);
  }
};

/// The start of the line of a row: its number and name.
std::string beginning(std::int32_t row, const std::string& name) {
  return (row < 10 ? "  " : " ") + std::to_string(row) + "  " + name + " ";
}

TEST_F(ZevpackList, ShowsOffsetsAndSizesOfEveryMember) {
  const std::vector<MadeMember>& made = packedMembers();
  const Outcome outcome = list(packageOf(madeImage(), made));
  EXPECT_EQ(outcome.status, 0);
  const std::vector<std::string> lines = linesOf(outcome.out);
  ASSERT_EQ(lines.size(), 57u) << outcome.out;
  const std::size_t length = madeImage().size() + 15'246'584;
  for (const test::Row& row : test::Table::read("manifest_packing.tsv")) {
    if (row.isNone("row")) continue;
    const std::string& line = lines[static_cast<std::size_t>(row.number("row"))];
    const std::string start = beginning(row.number("row"), row.quoted("packed_name"));
    EXPECT_THAT(line, StartsWith(start));
    std::istringstream rest(line.substr(start.size()));
    std::size_t offset = 0, toEnd = 0, packed = 0, expanded = 0;
    rest >> offset >> toEnd >> packed >> expanded;
    EXPECT_EQ(toEnd, static_cast<std::size_t>(row.number("tail_offset"))) << line;
    EXPECT_EQ(packed, static_cast<std::size_t>(row.number("size"))) << line;
    EXPECT_EQ(offset, length - toEnd - packed) << line;
    EXPECT_EQ(expanded, made[placeOf(row.number("row"))].plain.size()) << line;
    EXPECT_THAT(line, Not(EndsWith("no header")));
  }
}

TEST_F(ZevpackList, NamesMembersWithoutAHeaderAsWrongUnlessToldOtherwise) {
  std::vector<MadeMember> made = packedMembers();
  made[placeOf(4)].packed = noise(2576, 99);
  const Bytes package = packageOf(madeImage(), made);
  const Outcome outcome = list(package);
  EXPECT_EQ(outcome.status, 1);
  for (const std::string& line : linesOf(outcome.out)) {
    EXPECT_EQ(line.ends_with("2576  no header of a packed file"),
              line.starts_with(beginning(4, "Stop.wa_")))
        << line;
  }
  EXPECT_EQ(list(package, {"--plain-ok"}).status, 0);
}

TEST_F(ZevpackList, ShowsThePlacesInASignedPackage) {
  const Bytes package = packageOf(madeImage(), packedMembers());
  const Outcome outcome = list(package);
  const Outcome withTable = list(test::signedFile(package));
  EXPECT_EQ(withTable.status, 0);
  EXPECT_EQ(withTable.out, outcome.out);
}

TEST_F(ZevpackList, SaysWhatIsNoPackage) {
  const Outcome outcome = list(noise(16'000'000, 3));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, HasSubstr("there is no program in front of the members"));
  for (const std::string& line : linesOf(outcome.out)) {
    if (line.find(".wa_ ") == std::string::npos) continue;
    EXPECT_THAT(line, EndsWith("  no header of a packed file"));
  }
}

TEST_F(ZevpackList, FailsForRightMembersWithoutAProgram) {
  const Outcome outcome = list(packageOf({}, packedMembers()));
  EXPECT_EQ(outcome.status, 1);
  const std::vector<std::string> lines = linesOf(outcome.out);
  ASSERT_EQ(lines.size(), 58u);
  EXPECT_EQ(lines[57], "there is no program in front of the members");
  for (const std::string& line : lines) EXPECT_THAT(line, Not(HasSubstr("header")));
}

TEST_F(ZevpackList, NamesMembersThatBeginInFrontOfTheFile) {
  const Bytes whole = packageOf(madeImage(), packedMembers());
  const Outcome outcome = list(Bytes(whole.end() - 194 - 178, whole.end()));
  EXPECT_EQ(outcome.status, 1);
  const std::vector<std::string> lines = linesOf(outcome.out);
  ASSERT_EQ(lines.size(), 58u);
  EXPECT_EQ(lines[57], "there is no program in front of the members");
  EXPECT_THAT(lines[1], StartsWith(beginning(1, "MCD28m.wa_")));
  EXPECT_THAT(lines[2], StartsWith(beginning(2, "MCU28m.wa_")));
  for (std::size_t row = 3; row <= 56; ++row) {
    EXPECT_THAT(lines[row], HasSubstr("begins in front of the file")) << row;
  }
}

}  // namespace
}  // namespace zev::packing
