#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <string>

#include "programs/zevpack/package_file.h"

namespace zev::packing {

/// SHA-256 of a product's file, in hexadecimal digits.
struct Digest {
  std::string whole;
  /// Of the sample project: without the path of its video, which a run writes into it. Empty of all
  /// others, and where nobody has told it.
  std::string withoutPath;
};

/// True for the file that a run patches: its bytes are not the package's any more.
bool isPatched(const Member& member);

/// The bytes of the path that a run writes into that file; none if it is too short for one.
std::optional<std::span<const std::uint8_t>> videoPathIn(std::span<const std::uint8_t> project);

Digest digestOf(const Member& member, std::span<const std::uint8_t> expanded);

/// What the files of a product have to be, by their installed names.
using Digests = std::map<std::string, Digest>;

/// Those of all members of a package, which has to be right.
Digests digestsOf(const PackageFile& package);

/// The lines of a list, in the order of the manifest, as sha256sum writes and reads them. What only
/// this tool knows stands in comments.
std::string textOf(const Digests& digests);

/// Reads a list; blank lines and comments are skipped. ToolError with the line for one that is no
/// digest of a member or names one twice, and with their names if members have none.
Digests readDigests(const std::filesystem::path& path);

}  // namespace zev::packing
