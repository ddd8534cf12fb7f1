#pragma once

#include <cstdint>

#include "lz/byte_stream.h"
#include "platform/lz_services.h"

namespace zev::lz {

/// Expands the packed file that `source` holds into `sink`. A file without the whole magic of a
/// packed one is copied as it is.
///
/// Returns the number of bytes written, or one of `lz_error`:
/// - badSourceHandle: a read failed;
/// - badSourceData: the file ends inside its header or before its declared length is reached;
/// - writeFailure: the sink failed;
/// - outOfMemory: less than 100 KiB were to be had;
/// - badValue: more than 2,147,483,647 bytes came, which no result can tell;
/// - unknownMode: packed, but not in the one known mode.
///
/// Data past the declared length is ignored. A failure leaves in the sink what was expanded
/// before.
std::int32_t expand(ByteSource& source, ByteSink& sink);

}  // namespace zev::lz
