#include "package/held_files.h"

#include <algorithm>
#include <vector>

#include "lz/byte_stream.h"
#include "lz/expand.h"

namespace zev {
namespace {

constexpr std::size_t pieceSize = 65536;

class HeldSource final : public lz::ByteSource {
 public:
  explicit HeldSource(const Hold& file) : file_(file) {}

  std::ptrdiff_t read(std::span<std::uint8_t> into) override {
    const std::size_t count = file_.read(place_, into);
    place_ += count;
    return static_cast<std::ptrdiff_t>(count);
  }

 private:
  const Hold& file_;
  std::uint64_t place_ = 0;
};

/// Takes what a held file has at the same place, and nothing else.
class HeldTwin final : public lz::ByteSink {
 public:
  explicit HeldTwin(const Hold& file) : file_(file), piece_(pieceSize) {}

  bool write(std::span<const std::uint8_t> from) override {
    for (std::size_t done = 0; done < from.size(); done += pieceSize) {
      if (!takes(from.subspan(done, std::min(pieceSize, from.size() - done)))) return false;
    }
    return true;
  }

  bool atEnd() { return file_.read(place_, std::span(piece_).first(1)) == 0; }

 private:
  bool takes(std::span<const std::uint8_t> bytes) {
    const auto found = std::span(piece_).first(bytes.size());
    place_ += bytes.size();
    return file_.read(place_ - bytes.size(), found) == bytes.size() &&
           std::equal(bytes.begin(), bytes.end(), found.begin());
  }

  const Hold& file_;
  std::uint64_t place_ = 0;
  std::vector<std::uint8_t> piece_;
};

}  // namespace

bool holdsNothingBut(const Hold& file, std::span<const std::uint8_t> bytes) {
  if (!file.held()) return false;
  std::vector<std::uint8_t> piece(pieceSize);
  std::size_t count = piece.size();
  for (std::size_t place = 0; count == piece.size(); place += count) {
    count = file.read(place, piece);
    const auto written = bytes.subspan(std::min(place, bytes.size()));
    if (count > written.size() || !std::equal(piece.data(), piece.data() + count, written.data())) {
      return false;
    }
  }
  return true;
}

bool holdsExpanded(const Hold& file, const Hold& packed) {
  if (!file.held() || !packed.held()) return file.held();
  HeldSource source(packed);
  HeldTwin twin(file);
  return lz::expand(source, twin) >= 0 && twin.atEnd();
}

}  // namespace zev
