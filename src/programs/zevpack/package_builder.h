#pragma once

#include <filesystem>

#include "programs/zevpack/package_file.h"

namespace zev::packing {

/// The stored bytes of all members, taken from a folder: packed members under their packed names,
/// or plain files under their installed names, which are compressed. Names match without regard to
/// case if none matches exactly. ToolError names every member that is missing or whose size is not
/// the manifest's, with both sizes.
std::vector<Bytes> gatherMembers(const std::filesystem::path& folder);

/// Writes a package: the image, then the members, the last of the manifest first.
void buildPackage(const std::filesystem::path& image, const std::filesystem::path& folder,
                  const std::filesystem::path& output);

}  // namespace zev::packing
