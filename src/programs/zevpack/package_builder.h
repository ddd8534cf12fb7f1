#pragma once

#include <filesystem>

#include "programs/zevpack/package_check.h"

namespace zev::packing {

/// Whether work is done although something is wrong with a package.
enum class Force { No, Yes };

/// The stored bytes of all members, taken from a folder: packed members under their packed names,
/// or plain files under their installed names, which are compressed. Names match without regard to
/// case if none matches exactly. ToolError names every member that is missing or cannot be read,
/// whose size is not the manifest's, with both sizes, or, unless that is forced, that an installer
/// would not expand to its file.
std::vector<Bytes> gatherMembers(const std::filesystem::path& folder, Stored stored, Force force);

/// Writes a package: the image, then the members, the last of the manifest first. Unless that is
/// forced the image has to be a program without members, not signed. ToolError if the package would
/// replace the image or lie among the members.
void buildPackage(const std::filesystem::path& image, const std::filesystem::path& folder,
                  const std::filesystem::path& output, Stored stored, Force force);

}  // namespace zev::packing
