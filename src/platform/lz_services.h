#pragma once

#include <cstdint>

#include "runtime/text.h"

namespace zev {

/// The record of one open; of its fields only the reason of a failure is of use.
struct OFSTRUCT {
  std::int16_t nErrCode = 0;  ///< the system's error number, 0 for success
};

inline constexpr std::int32_t OF_READ = 0;
inline constexpr std::int32_t OF_CREATE = 4096;

/// Results of LZCopy below 0.
namespace lz_error {
inline constexpr std::int32_t badSourceHandle = -1;
inline constexpr std::int32_t badDestinationHandle = -2;
inline constexpr std::int32_t badSourceData = -3;
inline constexpr std::int32_t writeFailure = -4;
inline constexpr std::int32_t outOfMemory = -5;
inline constexpr std::int32_t badLock = -6;
inline constexpr std::int32_t badValue = -7;
inline constexpr std::int32_t unknownMode = -8;
}  // namespace lz_error

/// The services that expand a compressed file.
class LzServices {
 public:
  virtual ~LzServices() = default;

  /// Opens a file for reading (OF_READ) or creates or empties it (OF_CREATE). A handle, not
  /// negative, or a negative number with the reason in `record.nErrCode`.
  virtual std::int32_t LZOpenFileA(TextView path, OFSTRUCT& record, std::int32_t style) = 0;
  /// Expands the whole source into the destination; a source that is not compressed is copied. The
  /// number of bytes written, or one of `lz_error`.
  virtual std::int32_t LZCopy(std::int32_t source, std::int32_t destination) = 0;
  /// Closes what LZOpenFileA opened; any other number does nothing.
  virtual void LZClose(std::int32_t handle) = 0;
};

}  // namespace zev
