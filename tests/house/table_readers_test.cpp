#include "house/table_readers.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace zev::house {
namespace {

namespace fs = std::filesystem;

TEST(House, ReadsEveryTableOfTheTests) {
  EXPECT_EQ(unreadTables(fs::path(ZEV_TEST_DATA).parent_path()), std::set<std::string>());
}

// ---- the check itself

TEST(HouseChecks, FindTextsAndNoComments) {
  EXPECT_EQ(textsOf("f(\"a.tsv\", u\"b\"); // g(\"c\")\n/* \"d\"\n\"e\" */ h(\"f\\\"g\")"),
            (std::vector<std::string>{"a.tsv", "b", "f\\\"g"}));
  EXPECT_EQ(textsOf("char q = '\"'; int n = 9'000'000; char m = '\\''; \"x\""),
            std::vector<std::string>{"x"});
  EXPECT_EQ(textsOf("R\"(one \"two\" // three)\" \"four\" uR\"z(a)\")z\""),
            (std::vector<std::string>{"one \"two\" // three", "four", "a)\""}));
  EXPECT_TRUE(textsOf("").empty());
  EXPECT_TRUE(textsOf("a / b * c").empty());
}

TEST(HouseChecks, FindTextsOfPython) {
  EXPECT_EQ(pythonTextsOf("\"\"\"Reads \"a.tsv\".\"\"\"\nx = D / \"b.tsv\"  # 'c'\ny = 'd\\'e'\n"),
            (std::vector<std::string>{"b.tsv", "d\\'e"}));
  EXPECT_EQ(pythonTextsOf("'''a 'b' ''' 'c'"), std::vector<std::string>{"c"});
  EXPECT_TRUE(pythonTextsOf("\"\"\"no end").empty());
}

TEST(HouseChecks, FindTheFilesThatCMakeNames) {
  EXPECT_EQ(sourcesOf("zev_tests(a SOURCES b.cpp\n  ../c/d.cpp # e.cpp\n KNOWS f)\n# g.cpp\n"),
            (std::vector<std::string>{"b.cpp", "../c/d.cpp"}));
  EXPECT_EQ(sourcesOf("zev_suite(x COMMAND ${here}/a_test.py ${b}.py $<TARGET_FILE:c> d.py)"),
            (std::vector<std::string>{"a_test.py", "d.py"}));
  EXPECT_TRUE(sourcesOf("target(.cpp ${b} ${)").empty());
}

/// A small tree of tests, gone behind the test.
class SmallTree : public testing::Test {
 protected:
  ~SmallTree() override { fs::remove_all(root); }

  void write(const std::string& file, const std::string& contents) const {
    fs::create_directories((root / file).parent_path());
    std::ofstream(root / file) << contents;
  }

  static fs::path made() {
    std::string name = (fs::temp_directory_path() / "zev-tables-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    return name;
  }

  /// Joined, since a whole name in quotes would make this file a reader.
  static std::string tsv(const std::string& name) { return name + ".tsv"; }

  const fs::path root = made();
};

TEST_F(SmallTree, TellsTheTablesThatNobodyReads) {
  for (const char* table :
       {"direct", "header", "deep/one", "python", "comment", "notcompiled", "orphan"}) {
    write("data/" + tsv(table), "a\n1\n");
  }
  write("room/CMakeLists.txt",
        "zev_tests(t SOURCES first.cpp second.cpp)\n# third.cpp\nzev_suite(p ${here}/fourth.py)\n");
  write("room/first.cpp", "#include \"room/help.h\"\nread(\"direct.tsv\"); // \"comment.tsv\"\n");
  write("room/help.h", "read(\"header.tsv\");\n");
  write("room/second.cpp", "read(\"deep/one.tsv\"); read(\"data of orphan.tsv\");\n");
  write("room/third.cpp", "read(\"notcompiled.tsv\");\n");
  write("room/fourth.py", "read('python.tsv')  # 'comment.tsv'\n");
  std::set<std::string> unread;
  for (const char* table : {"comment", "notcompiled", "orphan"}) unread.insert(tsv(table));
  EXPECT_EQ(unreadTables(root), unread);
}

}  // namespace
}  // namespace zev::house
