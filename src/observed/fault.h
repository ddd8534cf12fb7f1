#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "runtime/text.h"

namespace zev::observed {

/// One injected fault. It strikes calls of one operation whose first text argument holds `match`,
/// letter case aside; for a file known by number and for an LZ handle the path that it was opened
/// by may hold it as well.
struct Fault {
  enum class Effect {
    Error,   ///< the call fails with `code` in its own shape
    Raise,   ///< the call raises the run-time error `code`
    Ignore,  ///< the call reports success without doing anything
  };

  std::string call{};                  ///< one of operationNames(), letter case aside
  std::optional<std::uint32_t> nth{};  ///< counted from 1 among the calls that match; none: all
  Text match{};
  Effect effect = Effect::Error;
  std::int32_t code = 0;
};

}  // namespace zev::observed
