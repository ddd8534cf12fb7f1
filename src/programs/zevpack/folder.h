#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zev::packing {

/// The files of a folder by their names, as Windows finds them: without regard to letter case where
/// no exact match is there.
class Folder {
 public:
  /// ToolError if it cannot be listed.
  explicit Folder(const std::filesystem::path& path);

  /// None if no file has the name. ToolError if several have it in other cases and none exactly.
  std::optional<std::filesystem::path> find(const std::string& name) const;

 private:
  std::filesystem::path path_;
  std::map<std::string, std::vector<std::filesystem::path>> byFoldedName_;
};

}  // namespace zev::packing
