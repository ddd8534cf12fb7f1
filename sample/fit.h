#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

#include "sample/bytes.h"

namespace zev::sample {

/// Builds one file. The packed size grows with `room` (in whatever unit the format offers: bytes
/// of a comment, samples of a sound); `take` changes the contents a little at the same room, which
/// reaches the sizes that no room hits by itself.
using Build = std::function<Bytes(std::size_t room, unsigned take)>;

/// The length of `plain` once it is packed.
std::size_t packedSize(std::span<const std::uint8_t> plain, std::uint8_t nameByte);

/// What a file is built with.
struct Fit {
  std::size_t room = 0;
  unsigned take = 0;
  bool operator==(const Fit&) const = default;
};

struct Fitted {
  Bytes plain;
  Fit fit;
};

/// The file whose packed form is exactly `target` bytes long: as it is with `guess` if that gives
/// the size, else as a search finds it, which packs it many times.
/// Throws std::length_error if the file is too long with no room at all, or if no room and take
/// within reach give the size.
Fitted fitToPackedSize(const Build& build, std::uint8_t nameByte, std::size_t target,
                       std::optional<Fit> guess = std::nullopt);

/// Every byte value.
inline constexpr std::string_view kAnyByte{};
/// Text that every code page and markup leaves alone.
inline constexpr std::string_view kPlainLetters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// `length` bytes for the room of a format, taken from `alphabet`: bytes that do not pack, and
/// among them up to `take` short repeats, each of which the packer turns into one match.
Bytes filler(std::size_t length, unsigned take, std::string_view alphabet = kAnyByte);

}  // namespace zev::sample
