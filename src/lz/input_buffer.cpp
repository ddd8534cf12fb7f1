#include "lz/input_buffer.h"

namespace zev::lz {
namespace {

constexpr std::size_t kInputPiece = std::size_t{32} << 10;

}  // namespace

InputBuffer::InputBuffer(ByteSource& source) : source_(source) {
  if (const auto whole = source.takeRest()) {
    rest_ = *whole;
  } else {
    bytes_ = std::make_unique_for_overwrite<std::uint8_t[]>(kInputPiece);
  }
}

int InputBuffer::refill() {
  if (!bytes_) return kEnd;
  const std::ptrdiff_t count = source_.read({bytes_.get(), kInputPiece});
  if (count < 0) return kFailed;
  if (count == 0) return kEnd;
  rest_ = {bytes_.get(), static_cast<std::size_t>(count)};
  return next();
}

}  // namespace zev::lz
