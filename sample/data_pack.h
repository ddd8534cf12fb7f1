#pragma once

#include <cstdint>
#include <string_view>

#include "sample/bytes.h"

namespace zev::sample {

/// The data that a program of the product carries behind its image: skins, messages, curves of its
/// effects, sounds and pictures.
///
///     offset  size  contents
///          0     8  "ZEVDATA1"
///          8     -  entries: 16 bytes name padded with zeroes, length (32 bits, little-endian),
///                   bytes
///
/// `subject` names the program and seeds everything in it. Entries are added, a full turn of kinds
/// being tried for the last of them, as long as the whole stays within `packedSize` bytes once
/// packed.
Bytes makeDataPack(std::string_view subject, std::uint8_t nameByte, std::size_t packedSize);

/// Appends one entry to a pack. `name` has at most 16 bytes.
void appendPackEntry(Bytes& pack, std::string_view name, const Bytes& contents);

}  // namespace zev::sample
