#pragma once

#include <filesystem>
#include <optional>

#include "programs/zevpack/installed_product.h"
#include "programs/zevpack/package_builder.h"

namespace zev::packing {

/// What a verification is to look at.
struct Verification {
  std::optional<std::filesystem::path> package;
  std::optional<std::filesystem::path> against;  ///< a list of digests
  std::optional<InstalledFolders> installed;
  Stored stored = Stored::Wrong;
};

/// The commands of the tool. Each prints what it did to standard output and returns the exit
/// status: 0, or 1 if something in a package is wrong. ToolError for everything that keeps it from
/// its work.
int build(const std::filesystem::path& image, const std::filesystem::path& folder,
          const std::filesystem::path& output, Stored stored, Force force);
int list(const std::filesystem::path& package, Stored stored);
int listDigests(const std::filesystem::path& package, Stored stored);
int verify(const Verification& wanted);
int extract(const std::filesystem::path& package, const std::filesystem::path& folder, bool packed,
            Stored stored, Force force);
int compress(const std::filesystem::path& in, const std::filesystem::path& out);
int expand(const std::filesystem::path& in, const std::filesystem::path& out);
int sample(const std::filesystem::path& folder);

}  // namespace zev::packing
