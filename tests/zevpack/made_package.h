#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

#include "programs/zevpack/package_file.h"

namespace zev::packing {

/// A member made for a test: as it stands in a package, and the file that it becomes.
struct MadeMember {
  Bytes packed;
  Bytes plain;
};

/// Bytes that do not compress; the same for the same seed.
Bytes noise(std::size_t length, std::uint64_t seed);

/// A packed file of exactly `size` bytes, at least 24: literals, and one match where literals alone
/// do not come to that size.
MadeMember packedOfSize(std::size_t size, std::uint8_t nameByte, std::uint64_t seed);

/// A packed file of exactly `size` bytes in which every token is a match of the greatest length, so
/// that no other data of that size expands to as much. `size` is 14 more than a multiple of 17.
MadeMember densestOfSize(std::size_t size, std::uint8_t nameByte);

/// All members of the manifest in its sizes, in its order: packed files, or files that are stored
/// without compression. A process makes them once.
const std::vector<MadeMember>& packedMembers();
const std::vector<MadeMember>& storedMembers();

/// The image of a made package: a program's, of an odd length.
Bytes madeImage();

/// The package as it must come out: the image, then the members from the last one to the first.
Bytes packageOf(const Bytes& image, const std::vector<MadeMember>& made);

/// Writes the members under their packed names into a new folder.
void writeMembers(const std::filesystem::path& folder, const std::vector<MadeMember>& made);

/// The place of a row's member in the vectors above; rows count from 1.
inline std::size_t placeOf(std::int32_t row) { return static_cast<std::size_t>(row) - 1; }

/// Offset of a row's first byte in a made package.
std::size_t startOf(std::int32_t row);

}  // namespace zev::packing
