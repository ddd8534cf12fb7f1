#pragma once

#include <cstdint>
#include <functional>

#include "runtime/text.h"

namespace zev {

/// Arguments of the event `Error`.
struct SocketErrorArguments {
  std::int16_t Number;       ///< of Winsock
  Text& Description;         ///< its text; the handler may write it
  std::int32_t sCode;        ///< 0
  const Text& Source;        ///< which operation failed
  const Text& HelpFile;      ///< empty
  std::int32_t HelpContext;  ///< 0
  /// True. A handler that sets it False gets a message box with the text of the number.
  bool& CancelDisplay;
};

/// The event procedures of a socket, run while a notification is dispatched. They may call
/// any socket, and drop their own.
struct SocketEvents {
  std::function<void()> CloseSck;                                 ///< the peer has closed
  std::function<void()> Connect;                                  ///< the connection stands
  std::function<void(std::int32_t requestID)> ConnectionRequest;  ///< somebody calls
  std::function<void(std::int32_t bytesTotal)> DataArrival;       ///< bytes that wait
  std::function<void(const SocketErrorArguments&)> Error;
  std::function<void()> SendComplete;
  std::function<void(std::int32_t bytesSent, std::int32_t bytesRemaining)> SendProgress;
};

}  // namespace zev
