#include "lz/input_buffer.h"

#include "lz/group_expander.h"

namespace zev::lz {
namespace {

constexpr std::size_t kPiece = std::size_t{32} << 10;

}  // namespace

InputBuffer::InputBuffer(ByteSource& source)
    : source_(source),
      bytes_(std::make_unique_for_overwrite<std::uint8_t[]>(kPiece + kInputSlack)) {}

int InputBuffer::refill() {
  const std::ptrdiff_t count = source_.read({bytes_.get(), kPiece});
  if (count < 0) return kFailed;
  if (count == 0) return kEnd;
  begin_ = 1;
  end_ = static_cast<std::size_t>(count);
  return bytes_[0];
}

}  // namespace zev::lz
