#pragma once

#include <cstdint>

#include "lz/byte_stream.h"

namespace zev::lz {

enum class DecodeResult {
  complete,
  dataEnds,      ///< the source ended first
  sourceFailed,  ///< a read failed
  sinkFailed,    ///< a write failed
};

/// Expands LZSS data from `source` into exactly `length` bytes for `sink`. Data after them
/// is ignored: the source is asked for more only as long as bytes are missing. Unless
/// the sink fails, it gets all bytes that come of the data before the end or failure. Works
/// in less than 100 KiB of memory whatever the length; throws std::bad_alloc if it lacks that.
DecodeResult decode(ByteSource& source, ByteSink& sink, std::uint64_t length);

}  // namespace zev::lz
