#pragma once

#include <map>
#include <optional>

#include "runtime/text.h"
#include "simulated/path.h"
#include "simulated/volume.h"

namespace zev::simulated {

/// Short names of the entries on one drive: up to eight letters, a dot and up to three, in ASCII.
///
/// A name that is one already, letter case aside, has no other. Any other gets one from the first
/// six letters of what stands before its last dot, "~", a number, and the first three letters
/// after that dot, in upper case. Blanks and other dots are left out; what no short name can have,
/// and every letter beyond ASCII, becomes "_". The number is the first from 1 that makes a name of
/// the folder's own. An entry is named when names of its folder are first asked for, in the order
/// of the folder's list, and keeps its short name.
class ShortNames {
 public:
  /// The short name of an entry, which is there.
  Text of(const Volume& volume, const Path& entry);
  /// The name of the entry that has this short name in a folder; none if none has.
  std::optional<Text> nameOf(const Volume& volume, const Path& folder, TextView shortName);

 private:
  void nameEntries(const Volume& volume, const Path& folder);

  std::map<Text, Text> names_;  ///< by Path::key
};

}  // namespace zev::simulated
