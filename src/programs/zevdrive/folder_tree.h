#pragma once

#include <optional>
#include <vector>

#include "runtime/text.h"

namespace zev::drive {

/// A directory tree as its lines show it: the levels of the opened folder from the root down, of
/// which the last is chosen, and after them its own folders, each line indented by its level.
class FolderTree {
 public:
  /// `chosen` is the place of the opened folder.
  FolderTree(std::vector<Text> lines, int chosen);

  /// The opened folder; empty if the tree shows none.
  Text path() const;
  /// Whether that folder is the opened one, letter case and a last backslash aside.
  bool opened(const Text& folder) const;
  bool onDriveOf(const Text& folder) const;
  /// The line to open next on the way to a folder; none if the tree does not show the way.
  std::optional<int> towards(const Text& folder) const;

 private:
  std::vector<Text> lines_;
  std::size_t levels_;
};

}  // namespace zev::drive
