#include "programs/zevpack/folder.h"

#include <algorithm>

#include "programs/zevpack/host_file.h"
#include "runtime/text.h"

namespace zev::packing {
namespace fs = std::filesystem;

namespace {

std::string folded(const std::string& name) { return toUtf8(lowerCase(fromUtf8(name))); }

/// A link to a file is one; an entry that nobody may look at is none.
bool isFile(const fs::directory_entry& entry) {
  std::error_code ignored;
  return entry.is_regular_file(ignored);
}

}  // namespace

Folder::Folder(const fs::path& path) : path_(path) {
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(path, error)) {
    if (isFile(entry))
      byFoldedName_[folded(entry.path().filename().string())].push_back(entry.path());
  }
  if (error) throw ToolError("cannot list the folder " + path.string() + ": " + error.message());
}

std::optional<fs::path> Folder::find(const std::string& name) const {
  const auto found = byFoldedName_.find(folded(name));
  if (found == byFoldedName_.end()) return std::nullopt;
  const std::vector<fs::path>& all = found->second;
  const auto exact = std::find(all.begin(), all.end(), path_ / name);
  if (exact != all.end()) return *exact;
  if (all.size() > 1) {
    throw ToolError(all[0].string() + " and " + all[1].string() + " both could be " + name);
  }
  return all.front();
}

}  // namespace zev::packing
