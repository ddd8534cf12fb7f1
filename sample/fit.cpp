#include "sample/fit.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <stdexcept>
#include <string>

#include "lz/encoder.h"
#include "sample/noise.h"

namespace zev::sample {
namespace {

constexpr unsigned kTakes = 64;
constexpr int kStepsPerTake = 24;
constexpr double kRoomPerPackedByte = 8.0 / 9.0;  // eight literals and their flag byte

// The filler's tail in slots: a repeat stands at the start of a slot, and what it repeats is in the
// second half of the slot before, where no other repeat writes.
constexpr std::size_t kSlot = 16;
constexpr std::size_t kShortestRepeat = 4;

/// Follows the packed size as a function of the room by secants.
class Search {
 public:
  Search(const Build& build, std::uint8_t nameByte, std::size_t target)
      : build_(build), nameByte_(nameByte), target_(static_cast<std::ptrdiff_t>(target)) {}

  /// True once `found()` has the wanted size; false when this take circles around it.
  bool run(unsigned take) {
    std::set<std::ptrdiff_t> visited;
    for (int step = 0; step < kStepsPerTake && visited.insert(room_).second; ++step) {
      const std::ptrdiff_t gap = measure(take);
      if (gap == 0) return true;
      if (gap < 0 && room_ == 0) return false;
      room_ = std::max<std::ptrdiff_t>(0, room_ + stepFor(gap));
    }
    return false;
  }

  Fitted found(unsigned take) {
    return {std::move(plain_), {static_cast<std::size_t>(room_), take}};
  }
  bool tooLongWithoutRoom() const { return tooLongWithoutRoom_; }

 private:
  std::ptrdiff_t measure(unsigned take) {
    plain_ = build_(static_cast<std::size_t>(room_), take);
    const auto size = static_cast<std::ptrdiff_t>(packedSize(plain_, nameByte_));
    if (lastSize_ != 0 && std::abs(size - lastSize_) > 8 && room_ != lastRoom_) {
      const double slope =
          static_cast<double>(room_ - lastRoom_) / static_cast<double>(size - lastSize_);
      roomPerPackedByte_ = std::clamp(slope, 0.1, 16.0);
    }
    lastRoom_ = room_;
    lastSize_ = size;
    tooLongWithoutRoom_ = room_ == 0 && size > target_;
    return target_ - size;
  }

  std::ptrdiff_t stepFor(std::ptrdiff_t gap) const {
    const double step = std::trunc(static_cast<double>(gap) * roomPerPackedByte_);
    if (step == 0.0) return gap > 0 ? 1 : -1;
    return static_cast<std::ptrdiff_t>(step);
  }

  const Build& build_;
  std::uint8_t nameByte_;
  std::ptrdiff_t target_;
  Bytes plain_;
  double roomPerPackedByte_ = kRoomPerPackedByte;
  std::ptrdiff_t room_ = 0;
  std::ptrdiff_t lastRoom_ = 0;
  std::ptrdiff_t lastSize_ = 0;
  bool tooLongWithoutRoom_ = false;
};

}  // namespace

std::size_t packedSize(std::span<const std::uint8_t> plain, std::uint8_t nameByte) {
  return lz::compress(plain, nameByte).size();
}

Fitted fitToPackedSize(const Build& build, std::uint8_t nameByte, std::size_t target,
                       std::optional<Fit> guess) {
  if (guess) {
    Bytes plain = build(guess->room, guess->take);
    if (packedSize(plain, nameByte) == target) return {std::move(plain), *guess};
  }
  Search search(build, nameByte, target);
  for (unsigned take = 0; take < kTakes; ++take) {
    if (search.run(take)) return search.found(take);
    if (search.tooLongWithoutRoom()) break;
  }
  throw std::length_error("no contents of this file pack to " + std::to_string(target) + " bytes");
}

Bytes filler(std::size_t length, unsigned take, std::string_view alphabet) {
  Noise noise("filler");
  Bytes out(length);
  for (std::uint8_t& value : out) {
    value = alphabet.empty()
                ? noise.byte()
                : static_cast<std::uint8_t>(
                      alphabet[noise.below(static_cast<std::uint32_t>(alphabet.size()))]);
  }
  for (std::size_t i = 1; i <= take && (i + 1) * kSlot <= length; ++i) {
    const auto repeat = out.end() - static_cast<std::ptrdiff_t>(i * kSlot);
    std::copy_n(repeat - static_cast<std::ptrdiff_t>(kSlot / 2), kShortestRepeat + i % 3, repeat);
  }
  return out;
}

}  // namespace zev::sample
