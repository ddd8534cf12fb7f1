#pragma once

#include <cstdint>
#include <random>
#include <string_view>

namespace zev::sample {

/// Numbers that look random and are the same in every run and on every machine: the engine's
/// sequence is fixed by the language, the distributions of the standard library are not and are
/// therefore not used.
class Noise {
 public:
  explicit Noise(std::string_view seed, std::uint64_t variant = 0) : engine_(hash(seed, variant)) {}

  std::uint8_t byte() { return static_cast<std::uint8_t>(engine_() >> 56); }

  /// A number from 0 to `limit` - 1; `limit` is above 0.
  std::uint32_t below(std::uint32_t limit) {
    return static_cast<std::uint32_t>(((engine_() >> 32) * limit) >> 32);
  }

  /// A number from -1 (inclusive) to 1 (exclusive).
  double signedUnit() { return static_cast<double>(engine_() >> 11) * 0x1p-52 - 1.0; }

 private:
  static std::uint64_t hash(std::string_view seed, std::uint64_t variant) {
    std::uint64_t value = 0xcbf29ce484222325u ^ variant;  // FNV-1a
    for (const char c : seed) value = (value ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
    return value;
  }

  std::mt19937_64 engine_;
};

}  // namespace zev::sample
