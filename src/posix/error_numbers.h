#pragma once

#include <cstdint>

namespace zev::posix {

/// The Winsock number of an errno of the socket calls. What has no counterpart is 10107, "a system
/// call that should never fail has failed".
std::int32_t winsockError(int error);

/// The Winsock number of a result of getaddrinfo other than 0. For EAI_SYSTEM it is that of
/// `error`, the errno of the moment.
std::int32_t lookUpError(int result, int error);

}  // namespace zev::posix
