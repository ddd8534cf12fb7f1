#include "simulated/path.h"

#include <algorithm>

#include "platform/file_system.h"

namespace zev::simulated {
namespace {

constexpr char16_t separator = u'\\';
bool isLetter(char16_t unit) {
  return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
}

bool namesDrive(TextView text) {
  return text.size() >= 2 && text[1] == u':' && text[0] != separator;
}

/// Takes the drive off the front and tells where the rest starts from.
Path startOf(TextView& text, const Path& current) {
  Path start = current;
  if (namesDrive(text)) {
    const char16_t drive = upperLetter(text[0]);
    if (drive != current.drive) start = Path{drive, {}, false};
    text.remove_prefix(2);
  }
  if (text.starts_with(separator)) start.names.clear();
  return start;
}

void addName(Path& path, TextView name) {
  if (name.empty() || name == u".") return;
  if (name != u"..") {
    path.names.emplace_back(name);
  } else if (!path.names.empty()) {
    path.names.pop_back();
  }
}

TextView withoutDotsAndBlanks(TextView name) {
  return name.substr(0, name.find_last_not_of(u". ") + 1);
}

bool onlyDots(TextView name) { return name == u"." || name == u".."; }

/// Splits at the separators and adds name by name.
void addNames(Path& path, TextView text) {
  while (!text.empty()) {
    const std::size_t end = text.find(separator);
    const bool last = end == TextView::npos;
    TextView name = text.substr(0, end);
    if (!onlyDots(name)) name = last ? withoutDotsAndBlanks(name) : withoutTrailing(name, u'.');
    addName(path, name);
    text = last ? TextView() : text.substr(end + 1);
  }
}

}  // namespace

char16_t upperLetter(char16_t unit) {
  return isLetter(unit) ? upperCase(TextView(&unit, 1)).front() : unit;
}

Path Path::parent() const {
  Path above = *this;
  above.closed = false;
  if (!above.names.empty()) above.names.pop_back();
  return above;
}

Path Path::child(Text name) const {
  Path below = *this;
  below.closed = false;
  below.names.push_back(std::move(name));
  return below;
}

Text Path::text() const {
  Text whole = {drive, u':'};
  for (const Text& name : names) whole.append(1, separator).append(name);
  return names.empty() ? whole + separator : whole;
}

Text Path::key() const {
  Text whole;
  for (const Text& name : names) whole.append(1, separator).append(name);
  return upperCase(whole);
}

SystemError parsePath(TextView text, const Path& current, Path& path) {
  Text clean(beforeNul(text));
  if (clean.empty()) return system_error::pathNotFound;
  std::replace(clean.begin(), clean.end(), u'/', separator);
  if (clean.starts_with(u"\\\\")) return system_error::badNetworkPath;
  TextView rest = clean;
  path = startOf(rest, current);
  path.closed = rest.ends_with(separator);
  addNames(path, rest);
  return path.text().size() > longestPath ? system_error::pathNotFound : system_error::success;
}

SystemError checkNames(const Path& path) {
  const bool valid = std::all_of(path.names.begin(), path.names.end(), validName);
  return valid ? system_error::success : system_error::invalidName;
}

// ---- wildcards

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
