#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "programs/zevpack/package_file.h"

namespace zev::packing {

/// Whether members that are stored without compression count as right. An installer lays them as
/// they are, which is also what becomes of bytes that are no member.
enum class Stored { Wrong, Right };

/// What is wrong with the program that the members are to stand behind, or stand behind; empty if
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
