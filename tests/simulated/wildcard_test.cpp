#include "simulated/path.h"

#include <gtest/gtest.h>

namespace zev::simulated {
namespace {

struct Row {
  TextView pattern;
  TextView name;
  bool matches;
};

TEST(Wildcard, MatchesAsTheSystemDoes) {
  constexpr Row rows[] = {
      {u"*.*", u"plain", true},
      {u"*.*", u"a.b", true},
      {u"*", u"a.b.c", true},
      {u"*.txt", u"A.TXT", true},
      {u"*.txt", u"a.txtx", false},
      {u"*.txt", u"txt", false},
      {u"a*c", u"abbc", true},
      {u"a*c", u"abbd", false},
      {u"?", u"a", true},
      {u"?", u"ab", false},
      {u"??", u"a", true},
      {u"a?.txt", u"a.txt", true},
      {u"a?.txt", u"ab.txt", true},
      {u"a?.txt", u"abc.txt", false},
      {u"a.*", u"a", true},
      {u"a.*", u"a.b", true},
      {u"a.*", u"ab", false},
      {u"*.", u"plain", true},
      {u"*.", u"a.b", false},
      {u"a*.", u"abc", true},
      {u"a*.", u"b", false},
      {u"plain", u"PLAIN", true},
      {u"plain", u"plai", false},
      {u"**x**", u"axb", true},
      {u"?*", u"a", true},
      {u"*a*b*", u"xxaxxbxx", true},
      {u"*a*b*", u"xxbxxaxx", false},
      {u"a.?", u"a", true},
      {u"a.?", u"a.b", true},
      {u"a.?", u"a.bc", false},
      {u"*.tx?", u"a.tx", true},
      {u".*", u".a", true},
      {u".*", u"a", false},
      {u".?", u".a", true},
      {u"a..*", u"a", false},
      {u"a.*.b", u"a.b", false},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(matchesPattern(row.name, row.pattern), row.matches)
        << toUtf8(row.pattern) << " on " << toUtf8(row.name);
  }
}

TEST(Wildcard, IsAStarOrAQuestionMark) {
  EXPECT_TRUE(hasWildcards(u"a*"));
  EXPECT_TRUE(hasWildcards(u"?"));
  EXPECT_FALSE(hasWildcards(u"a.b"));
}

}  // namespace
}  // namespace zev::simulated
