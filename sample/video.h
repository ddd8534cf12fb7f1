#pragma once

#include <cstdint>

#include "sample/bytes.h"

namespace zev::sample {

/// The sample video: a little recording of a desktop, 24-bit frames in an AVI file, as many frames
/// as stay within `packedSize` bytes once the file is packed.
Bytes makeVideo(std::uint8_t nameByte, std::size_t packedSize);

/// `riff` with one more chunk behind its last one; players skip it. `riff` is a whole RIFF file.
Bytes withJunkChunk(Bytes riff, const Bytes& junk);

}  // namespace zev::sample
