#pragma once

#include <cstdint>

#include "runtime/text.h"

namespace zev {

/// The client end of one DDE conversation, as a control of the run-time offers it. A server that is
/// not there or does not answer within the time-out is error 282.
class Dde {
 public:
  virtual ~Dde() = default;
  /// Service and topic, joined by "|".
  virtual void LinkTopic(TextView topic) = 0;
  virtual void LinkItem(TextView item) = 0;
  /// 0 ends the conversation, 2 begins one without automatic updates.
  virtual void LinkMode(std::int32_t mode) = 0;
  /// In tenths of a second.
  virtual void LinkTimeout(std::int32_t tenths) = 0;
  virtual void LinkExecute(TextView command) = 0;
};

}  // namespace zev
