#include "simulated/wildcard.h"

namespace zev::simulated {
namespace {

// The system turns what a program writes into these before it matches.
constexpr char16_t anyRun = u'*';
constexpr char16_t anyRunToLastDot = u'<';
constexpr char16_t oneOrNoneAtDot = u'>';
constexpr char16_t dotOrEnd = u'"';

Text translated(TextView pattern) {
  if (pattern == u"*.*") return u"*";
  Text inner(pattern);
  for (std::size_t place = 0; place < pattern.size(); ++place) {
    const bool beforeWildcard = hasWildcards(pattern.substr(place + 1, 1));
    if (pattern[place] == u'.' && beforeWildcard) inner[place] = dotOrEnd;
    if (pattern[place] == u'?') inner[place] = oneOrNoneAtDot;
  }
  if (inner.ends_with(u"*.")) inner.replace(inner.size() - 2, 2, 1, anyRunToLastDot);
  return inner;
}

bool matches(TextView name, TextView pattern);

/// A run of any characters, then the rest of the pattern.
bool matchesRun(TextView name, TextView rest) {
  for (std::size_t skipped = 0; skipped <= name.size(); ++skipped) {
    if (matches(name.substr(skipped), rest)) return true;
  }
  return false;
}

bool matches(TextView name, TextView pattern) {
  if (pattern.empty()) return name.empty();
  const TextView rest = pattern.substr(1);
  const bool atEnd = name.empty();
  switch (pattern.front()) {
    case anyRun:
      return rest.starts_with(anyRun) ? matches(name, rest) : matchesRun(name, rest);
    case anyRunToLastDot:
      return name.find(u'.') == TextView::npos;
    case oneOrNoneAtDot:
      if (atEnd || name.front() == u'.') return matches(name, rest);
      return matches(name.substr(1), rest);
    case dotOrEnd:
      return atEnd ? matches(name, rest) : name.front() == u'.' && matches(name.substr(1), rest);
    default:
      return !atEnd && name.front() == pattern.front() && matches(name.substr(1), rest);
  }
}

}  // namespace

bool hasWildcards(TextView pattern) { return pattern.find_first_of(u"*?") != TextView::npos; }

bool matchesPattern(TextView name, TextView pattern) {
  return matches(upperCase(name), translated(upperCase(pattern)));
}

}  // namespace zev::simulated
