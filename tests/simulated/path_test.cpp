#include "simulated/path.h"

#include <gtest/gtest.h>

#include "platform/file_system.h"

namespace zev::simulated {
namespace {

Path currentFolder() { return {u'C', {u"Users", u"bob"}, false}; }

struct Row {
  TextView written;
  TextView resolved;
};

TEST(Path, IsResolvedAsTheSystemDoes) {
  constexpr Row rows[] = {
      {u"C:\\Windows", u"C:\\Windows"},
      {u"c:/windows/system32/", u"C:\\windows\\system32"},
      {u"C:\\", u"C:\\"},
      {u"C:", u"C:\\Users\\bob"},
      {u"C:x", u"C:\\Users\\bob\\x"},
      {u"D:x", u"D:\\x"},
      {u"D:", u"D:\\"},
      {u"\\x", u"C:\\x"},
      {u"x\\y", u"C:\\Users\\bob\\x\\y"},
      {u"..\\x", u"C:\\Users\\x"},
      {u"C:\\a\\.\\b\\..\\c", u"C:\\a\\c"},
      {u"C:\\..\\..\\a", u"C:\\a"},
      {u"C:\\\\a\\\\\\b", u"C:\\a\\b"},
      {u"C:\\a. . ", u"C:\\a"},
      {u"C:\\a.\\b", u"C:\\a\\b"},
      {u"C:\\a \\b", u"C:\\a \\b"},
      {u"C:\\...", u"C:\\"},
      {u"9:\\x", u"9:\\x"},
      {u"9:x", u"9:\\x"},
      {u".:", u".:\\"},
      {u"::\\x", u"::\\x"},
      {u"`:\\x", u"`:\\x"},
      {u"{:\\x", u"{:\\x"},
      {u"\u00E9:\\x", u"\u00E9:\\x"},
      {u"\u0131:\\x", u"\u0131:\\x"},
      {u"\u6F22:\\x", u"\u6F22:\\x"},
      {u" 9:x", u"C:\\Users\\bob\\ 9:x"},
      {u"\\:\\x", u"C:\\:\\x"},
  };
  for (const Row& row : rows) {
    Path path;
    EXPECT_EQ(parsePath(row.written, currentFolder(), path), system_error::success)
        << toUtf8(row.written);
    EXPECT_EQ(toUtf8(path.text()), toUtf8(row.resolved)) << toUtf8(row.written);
  }
}

TEST(Path, EndsAtANul) {
  Path path;
  EXPECT_EQ(parsePath(TextView(u"C:\\a\0b", 6), {}, path), system_error::success);
  EXPECT_EQ(path.text(), u"C:\\a");
}

TEST(Path, KnowsWhetherItWasClosed) {
  Path path;
  parsePath(u"C:\\a\\", {}, path);
  EXPECT_TRUE(path.closed);
  parsePath(u"C:\\a", {}, path);
  EXPECT_FALSE(path.closed);
}

TEST(Path, IsRefusedWhenEmptyTooLongOrAShares) {
  Path path;
  const Text longest = u"C:\\" + Text(256, u'a');
  EXPECT_EQ(parsePath(u"", {}, path), system_error::pathNotFound);
  EXPECT_EQ(parsePath(u"\\\\machine\\share\\x", {}, path), system_error::badNetworkPath);
  EXPECT_EQ(parsePath(longest, {}, path), system_error::success);
  EXPECT_EQ(parsePath(longest + u"a", {}, path), system_error::pathNotFound);
}

TEST(Path, NamesAreCheckedOneByOne) {
  for (const TextView name : {u"a", u"a b", u"\u00FC", u".hidden", u"CONX", u"COM", u"COM10",
                              u"a.con", u"LPT0", u"{x}", u"a+b,c;d=[e]"}) {
    EXPECT_TRUE(validName(name)) << toUtf8(name);
  }
  for (const TextView name :
       {u"", u"a:b", u"a\\b", u"a/b", u"a*", u"a?", u"<", u">", u"|", u"\"", u"a\tb", u"con",
        u"Nul.txt", u"AUX", u"prn.a.b", u"COM1", u"lpt9.x", u"con .txt"}) {
    EXPECT_FALSE(validName(name)) << toUtf8(name);
  }
  EXPECT_TRUE(validName(Text(255, u'a')));
  EXPECT_FALSE(validName(Text(256, u'a')));
}

TEST(Path, HasOneKeyForAllCases) {
  Path first;
  Path second;
  parsePath(u"C:\\a\\\u00FC", {}, first);
  parsePath(u"c:\\A\\\u00DC\\", {}, second);
  EXPECT_EQ(first.key(), second.key());
}

}  // namespace
}  // namespace zev::simulated
