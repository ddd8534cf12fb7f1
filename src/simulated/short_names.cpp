#include "simulated/short_names.h"

#include <algorithm>
#include <set>

namespace zev::simulated {
namespace {

constexpr std::size_t longestBase = 8;
constexpr std::size_t longestExtension = 3;
constexpr std::size_t keptLetters = 6;
constexpr TextView others = u"!#$%&'()-@^_`{}~";

/// A name in two halves, the dot between them left out.
struct Halves {
  TextView base;
  TextView extension;
};

Halves halvesOf(TextView name) {
  const std::size_t dot = name.rfind(u'.');
  if (dot == TextView::npos || dot == 0) return {name, {}};
  return {name.substr(0, dot), name.substr(dot + 1)};
}

bool isShortLetter(char16_t unit) {
  const bool letter = (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
  const bool digit = unit >= u'0' && unit <= u'9';
  return letter || digit || others.find(unit) != TextView::npos;
}

bool isShort(TextView name) {
  const Halves halves = halvesOf(name);
  const auto fits = [](TextView half, std::size_t longest) {
    return half.size() <= longest && std::all_of(half.begin(), half.end(), isShortLetter);
  };
  return fits(halves.base, longestBase) && fits(halves.extension, longestExtension);
}

/// The first letters of half a name, as a short name can have them.
Text shortened(TextView half, std::size_t longest) {
  Text letters;
  for (const char16_t unit : half) {
    if (unit == u' ' || unit == u'.') continue;
    if (letters.size() == longest) break;
    letters += isShortLetter(unit) ? unit : u'_';
  }
  return upperCase(letters);
}

Text numbered(TextView name, int number) {
  const Halves halves = halvesOf(name);
  const Text digits = decimal(number);
  const Text base = shortened(halves.base, keptLetters + 1 - digits.size());
  const Text extension = shortened(halves.extension, longestExtension);
  return join(base, u"~", digits, extension.empty() ? u"" : u".", extension);
}

Text freeName(TextView name, const std::set<Text>& taken) {
  int number = 1;
  while (taken.contains(numbered(name, number))) ++number;
  return numbered(name, number);
}

}  // namespace

void ShortNames::nameEntries(const Volume& volume, const Path& folder) {
  const std::vector<DirectoryEntry> entries = volume.list(folder);
  std::set<Text> taken;
  for (const DirectoryEntry& entry : entries) {
    taken.insert(upperCase(entry.name));
    const auto named = names_.find(folder.child(entry.name).key());
    if (named != names_.end()) taken.insert(named->second);
  }
  for (const DirectoryEntry& entry : entries) {
    const Text key = folder.child(entry.name).key();
    if (isShort(entry.name) || names_.contains(key)) continue;
    taken.insert(names_[key] = freeName(entry.name, taken));
  }
}

Text ShortNames::of(const Volume& volume, const Path& entry) {
  if (isShort(entry.leaf())) return entry.leaf();
  nameEntries(volume, entry.parent());
  return names_.at(entry.key());
}

std::optional<Text> ShortNames::nameOf(const Volume& volume, const Path& folder,
                                       TextView shortName) {
  nameEntries(volume, folder);
  for (const DirectoryEntry& entry : volume.list(folder)) {
    const auto named = names_.find(folder.child(entry.name).key());
    if (named != names_.end() && equalText(named->second, shortName)) return entry.name;
  }
  return std::nullopt;
}

}  // namespace zev::simulated
