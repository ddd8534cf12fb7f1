#pragma once

#include <cstdint>

#include "runtime/text.h"

namespace zev {

/// What the pieces of a run tell it on their way.
class RunReport {
 public:
  virtual ~RunReport() = default;
  /// The diagnostic step that begins, printed by the trap of the run.
  virtual void setRunStep(std::int32_t step) = 0;
  /// The status line, shown at once.
  virtual void showStatus(TextView text) = 0;
};

}  // namespace zev
