#pragma once

#include <map>

#include "platform/lz_services.h"
#include "simulated/instrumentation.h"

namespace zev::simulated {

/// The LZ services under observation. An injected error is the reason of a failing open and the
/// result, below 0, of a failing copy. A copy is matched by the path of its source.
class InstrumentedLz final : public LzServices {
 public:
  /// Borrows both.
  InstrumentedLz(LzServices& lz, Instrumentation& instrumentation)
      : lz_(lz), instrumentation_(instrumentation) {}

  std::int32_t LZOpenFileA(TextView path, OFSTRUCT& record, std::int32_t style) override;
  std::int32_t LZCopy(std::int32_t source, std::int32_t destination) override;
  void LZClose(std::int32_t handle) override;

 private:
  TextView pathOf(std::int32_t handle) const;

  LzServices& lz_;
  Instrumentation& instrumentation_;
  std::map<std::int32_t, Text> paths_;  ///< of open handles
};

}  // namespace zev::simulated
