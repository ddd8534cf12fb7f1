#include "support/table.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <stdexcept>

namespace zev::test {
namespace {

std::string failureOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "no failure";
}

TEST(Table, TakesColumnsFromTheFirstLineAndSkipsComments) {
  const Table table = Table::parse("t", "name\tplace\n# a comment\none\t1\ntwo\t2\n");
  EXPECT_EQ(table.columns(), (std::vector<std::string>{"name", "place"}));
  ASSERT_EQ(table.size(), 2u);
  EXPECT_EQ(table.rows()[1].word("name"), "two");
  EXPECT_EQ(table.rows()[1].number("place"), 2);
  EXPECT_EQ(table.rows()[1].where(), "t:4");
}

TEST(Table, KeepsBlanksAndDoubledQuotesOfAQuotedCell) {
  const Row row = Table::parse("t", "a\tb\n\" say \"\"hi\"\" \"\t\"\"\n").rows()[0];
  EXPECT_EQ(row.quoted("a"), " say \"hi\" ");
  EXPECT_EQ(row.quoted("b"), "");
}

TEST(Table, ResolvesEscapesInEveryCell) {
  const Row row = Table::parse("t", "a\tb\n\"1\\t2\\n3\\r4\\\\5\"\tx\\\\y\n").rows()[0];
  EXPECT_EQ(row.quoted("a"), "1\t2\n3\r4\\5");
  EXPECT_EQ(row.word("b"), "x\\y");
}

TEST(Table, GivesTextsAsUtf16) {
  EXPECT_EQ(Table::parse("t", "a\n\"\u0130ptal\"\n").rows()[0].text("a"), u"\u0130ptal");
}

TEST(Table, TellsNoneAndAnyFromQuotedTexts) {
  const Row row = Table::parse("t", "a\tb\tc\td\n-\t\"-\"\t*\tyes\n").rows()[0];
  EXPECT_TRUE(row.isNone("a"));
  EXPECT_FALSE(row.isNone("b"));
  EXPECT_TRUE(row.isAny("c"));
  EXPECT_TRUE(row.yes("d"));
}

TEST(Table, FindsTheOneRowWithAWord) {
  const Table table = Table::parse("t", "a\tb\nx\t1\ny\t2\ny\t3\n");
  EXPECT_EQ(table.row("a", "x").number("b"), 1);
  EXPECT_EQ(failureOf([&] { table.row("a", "y"); }), "t:4: a second row for y");
  EXPECT_EQ(failureOf([&] { table.row("a", "z"); }), "t: no row for z");
}

TEST(Table, NamesFileAndLineOfWhatIsMalformed) {
  struct Malformed {
    const char* contents;
    const char* failure;
  };
  constexpr Malformed rows[] = {
      {"a\tb\n1\t2", "t: no line end at the end of the file"},
      {"a\tb\n", "t: no rows"},
      {"a\tb\n# only this\n", "t: no rows"},
      {"a\ta\n1\t2\n", "t:1: two columns a"},
      {"a\t\n1\t2\n", "t:1: bad column name"},
      {"a\tb\n1\n", "t:2: 1 cells for 2 columns"},
      {"a\tb\n1\t2\t3\n", "t:2: 3 cells for 2 columns"},
      {"a\tb\n\n", "t:2: 1 cells for 2 columns"},
      {"a\tb\n1\t\n", "t:2, b: empty cell"},
      {"a\tb\r\n1\t2\r\n", "t:1: carriage return"},
      {"a\tb\n1\t\"2\n", "t:2, b: quote without an end"},
      {"a\tb\n1\t\"\n", "t:2, b: quote without an end"},
      {"a\tb\n1\t\"2\"3\"\n", "t:2, b: single quote in quotes"},
      {"a\tb\n1\t\"2\"\"\n", "t:2, b: single quote in quotes"},
      {"a\tb\n1\t2\"\n", "t:2, b: quote inside a cell without quotes"},
      {"a\tb\n1\t2\\x\n", "t:2, b: unknown escape \\x"},
      {"a\tb\n1\t2\\\n", "t:2, b: lone \\"},
      {"a\tb\n1\t\xFF\n", "t:2, b: not UTF-8"},
  };
  for (const Malformed& each : rows) {
    EXPECT_EQ(failureOf([&] { Table::parse("t", each.contents); }), each.failure) << each.contents;
  }
}

TEST(Table, NamesFileAndLineOfACellThatIsNotOfTheKindAskedFor) {
  const Row row = Table::parse("t", "a\tb\n1x\t\"2\"\n").rows()[0];
  EXPECT_EQ(failureOf([&] { row.number("a"); }), "t:2: a is no number: 1x");
  EXPECT_EQ(failureOf([&] { row.quoted("a"); }), "t:2: a has no quotes");
  EXPECT_EQ(failureOf([&] { row.word("b"); }), "t:2: b has quotes");
  EXPECT_EQ(failureOf([&] { row.yes("a"); }), "t:2: a is neither yes nor no");
  EXPECT_EQ(failureOf([&] { row.word("c"); }), "t:2: no column c");
}

TEST(Table, SaysWhichFileIsNotThere) {
  EXPECT_EQ(failureOf([] { Table::read("nowhere.tsv"); }), "nowhere.tsv: cannot be opened");
}

TEST(TestData, EveryTableIsWellFormed) {
  int tables = 0;
  for (const auto& each : std::filesystem::directory_iterator(ZEV_TEST_DATA)) {
    if (each.path().extension() != ".tsv") continue;
    EXPECT_NO_THROW(Table::read(each.path().filename().string())) << each.path();
    ++tables;
  }
  EXPECT_GT(tables, 40);
}

}  // namespace
}  // namespace zev::test
