#pragma once

#include <vector>

#include "platform/file_system.h"
#include "runtime/text.h"

namespace zev::simulated {

/// An absolute path of the system, taken apart: a drive letter and the names below its root.
struct Path {
  char16_t drive = 0;  ///< upper case; no letter for a drive that no machine has
  std::vector<Text> names;
  bool closed = false;  ///< it was written with a separator at its end

  bool isRoot() const { return names.empty(); }
  /// The last name, and the path without it. Neither is there for a root.
  const Text& leaf() const { return names.back(); }
  Path parent() const;
  /// The path of an entry in this one, by one name, which is not checked.
  Path child(Text name) const;
  /// "C:\Windows\system32"; a root is "C:\".
  Text text() const;
  /// What equal paths have in common: the names in upper case, without the drive.
  Text key() const;
};

/// A letter in upper case, as drives are known by; any other character as it is.
char16_t upperLetter(char16_t unit);

/// Longest path that the calls of the system take, in characters.
inline constexpr std::size_t longestPath = 259;
inline constexpr std::size_t longestDirectoryPath = 247;

/// Takes a path apart as the system does: a slash is a backslash, "." and ".." are resolved, blanks
/// and dots at the end of the last name and one dot at the end of a name before it are dropped,
/// what follows a NUL does not count. Any character before a colon names a drive, though only
/// letters ever are some. A path without a drive starts at the current folder's drive, a relative
/// one in `current` if that lies on its drive, and else in the root. Characters are not checked
/// here, so that a search can hand its pattern in.
///
/// pathNotFound for an empty and for a too long path, badNetworkPath for a machine's share.
SystemError parsePath(TextView text, const Path& current, Path& path);

/// success, or invalidName: a character that no name can have, a name of a device, a name too long.
SystemError checkNames(const Path& path);

/// Whether a pattern names entries by wildcards.
bool hasWildcards(TextView pattern);

/// Whether a name matches the last component of a search as the system matches it: letter case
/// aside;
/// "*" is any run of characters, "?" one character or, before a dot and at the end, none; "*.*" is
/// every name; a dot before a wildcard also matches the end of a name without one; a pattern that
/// ends in "*." matches names without an extension.
bool matchesPattern(TextView name, TextView pattern);

}  // namespace zev::simulated
