#pragma once

#include <netinet/in.h>

#include <cstddef>
#include <string>
#include <vector>

#include "platform/sockets.h"

namespace zev::posix {

/// What a look-up has found.
struct Host {
  std::int32_t error = 0;  ///< a Winsock number; 0: the rest is there
  std::string name;
  std::vector<in_addr> addresses;
};

/// Bytes of a host's record with all that it points to, wherever it begins.
std::size_t recordSize(const Host& host);

/// Lays a host's record down in at least that many bytes. The record stands at their beginning.
void writeRecord(const Host& host, void* buffer);

}  // namespace zev::posix
