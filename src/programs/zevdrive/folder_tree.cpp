#include "programs/zevdrive/folder_tree.h"

#include <algorithm>

namespace zev::drive {
namespace {

/// The names on the way to a folder, the root ("C:\") first.
std::vector<Text> levelsOf(const Text& folder) {
  std::vector<Text> levels;
  const Text path(withoutTrailing(folder, u'\\'));
  std::size_t end = std::min(path.find(u'\\'), path.size());
  levels.push_back(path.substr(0, end) + u'\\');
  while (end < path.size()) {
    const std::size_t start = end + 1;
    end = std::min(path.find(u'\\', start), path.size());
    levels.push_back(path.substr(start, end - start));
  }
  return levels;
}

}  // namespace

FolderTree::FolderTree(std::vector<Text> lines, int chosen)
    : lines_(std::move(lines)), levels_(static_cast<std::size_t>(chosen + 1)) {
  for (Text& each : lines_) each = Text(ltrim(each));
  levels_ = std::min(levels_, lines_.size());
}

Text FolderTree::path() const {
  Text path;
  for (std::size_t level = 0; level < levels_; ++level) {
    const bool first = level == 0;
    path = first ? lines_[level] : join(withoutTrailing(path, u'\\'), u"\\", lines_[level]);
  }
  return path;
}

bool FolderTree::opened(const Text& folder) const {
  return equalText(withoutTrailing(path(), u'\\'), withoutTrailing(folder, u'\\'));
}

bool FolderTree::onDriveOf(const Text& folder) const {
  return !lines_.empty() && equalText(left(lines_.front(), 1), left(folder, 1));
}

std::optional<int> FolderTree::towards(const Text& folder) const {
  const std::vector<Text> wanted = levelsOf(folder);
  std::size_t common = 0;
  while (common < std::min(levels_, wanted.size()) && equalText(lines_[common], wanted[common])) {
    ++common;
  }
  if (common == 0) return std::nullopt;
  if (common < levels_) return static_cast<int>(common) - 1;
  if (common == wanted.size()) return std::nullopt;
  for (std::size_t place = levels_; place < lines_.size(); ++place) {
    if (equalText(lines_[place], wanted[common])) return static_cast<int>(place);
  }
  return std::nullopt;
}

}  // namespace zev::drive
