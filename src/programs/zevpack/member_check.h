#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "programs/zevpack/host_file.h"

namespace zev::packing {

/// A member brought back to the file that it was: its bytes, or what is wrong with it.
struct Expanded {
  Bytes bytes;
  std::string trouble;  ///< empty if nothing is
};

/// Expands a packed file as the installer would; a file without the header is taken as it is.
Expanded expandMember(std::span<const std::uint8_t> stored);

/// The packed file of a plain one. ToolError names that if it cannot be read, is too long to be
/// packed and expanded again, or needs more memory than there is.
Bytes compressed(const std::filesystem::path& plain, std::uint8_t nameByte);

/// What is wrong with a stored member: its header, or its data. A member without a header is wrong
/// too, unless `plainOk`: an installer would lay it as it is, which is what a misplaced member
/// looks like. Empty if nothing is.
std::string checkMember(std::span<const std::uint8_t> stored, std::uint8_t nameByte, bool plainOk);

/// Bytes that a stored member declares to have when expanded; its own length if it has no header.
std::size_t declaredLength(std::span<const std::uint8_t> stored);

/// True if the member has the whole header of a packed file.
bool isPacked(std::span<const std::uint8_t> stored);

}  // namespace zev::packing
