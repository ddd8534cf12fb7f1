#pragma once

#include <cstdint>
#include <string>

#include "posix/descriptors.h"

namespace zev::storms {

/// A caller that closes first, from another address of loopback than those before it: each address
/// has ports of its own for the connections of the past.
class Wanderer {
 public:
  Wanderer(int number, std::uint16_t port);
  /// Says something and waits for an answer that is as long.
  std::string ask(const std::string& text) const;

 private:
  posix::Descriptor socket_;
};

}  // namespace zev::storms
