#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "programs/zevpack/host_file.h"
#include "programs/zevpack/package_file.h"

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

/// Whether members that are stored without compression count as right. An installer lays them as
/// they are, which is also what becomes of bytes that are no member.
enum class Stored { Wrong, Right };

/// What is wrong with the program that the members are to follow, or follow; empty if
/// nothing is. It is wrong if it is none, is cut short, or carries members already. With `isSigned`
/// its header may name a table of certificates.
std::string troubleOfProgram(std::span<const std::uint8_t> front, bool isSigned);

/// What is wrong with one member of a package; empty if nothing is.
std::string troubleOfMember(const PackageFile& package, const Member& member, Stored stored);

/// What is wrong with a package.
struct PackageTrouble {
  struct Row {
    Member member;
    std::string what;
  };
  std::string program;
  std::vector<Row> rows;

  bool any() const { return !program.empty() || !rows.empty(); }
  /// A line for each.
  std::string text() const;
};

PackageTrouble troubleOf(const PackageFile& package, Stored stored);

}  // namespace zev::packing
