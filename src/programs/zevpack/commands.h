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
/// The members with their places and sizes; each one's digests as a list that `verify` takes.
int list(const std::filesystem::path& package, Stored stored);
int listDigests(const std::filesystem::path& package, Stored stored);
/// Holds a package, or what was installed from one, against the manifest or a list of digests.
int verify(const Verification& wanted);
/// Writes all members into a folder, expanded unless `packed`.
int extract(const std::filesystem::path& package, const std::filesystem::path& folder, bool packed,
            Stored stored, Force force);
/// One file into the compressed form and back; `out` is replaced.
int compress(const std::filesystem::path& in, const std::filesystem::path& out);
int expand(const std::filesystem::path& in, const std::filesystem::path& out);
/// Writes the files of the sample product into a folder, from which `build` makes a package.
int sample(const std::filesystem::path& folder);

}  // namespace zev::packing
