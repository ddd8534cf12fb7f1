#pragma once

#include <filesystem>

namespace zev::packing {

/// The commands of the tool. Each prints what it did to standard output and returns the exit
/// status: 0, or 1 if something in a package is wrong. ToolError for everything that keeps it from
/// its work.
int build(const std::filesystem::path& image, const std::filesystem::path& folder,
          const std::filesystem::path& output);
int list(const std::filesystem::path& package);
int verify(const std::filesystem::path& package, bool plainOk);
int extract(const std::filesystem::path& package, const std::filesystem::path& folder, bool packed);
int compress(const std::filesystem::path& in, const std::filesystem::path& out);
int expand(const std::filesystem::path& in, const std::filesystem::path& out);
int sample(const std::filesystem::path& folder);

}  // namespace zev::packing
