#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "programs/zevnet/terminal.h"
#include "socket/event_socket_module.h"

namespace zev::netcat {

/// What a person asks of zevnet.
struct Wishes {
  bool listen = false;    ///< wait for others instead of connecting
  std::string host;       ///< whom to connect to
  std::int32_t port = 0;  ///< to connect to or to listen on; 0 for one of the system's choice
  std::string address = "127.0.0.1";  ///< to listen on
  bool udp = false;
  bool keep = false;           ///< go on listening behind a connection
  bool close = false;          ///< close once the whole input is sent
  std::optional<double> idle;  ///< seconds without traffic after which all ends
  double timeout = 30;         ///< seconds for a connection to come about, or its peer to close
  bool trace = false;
};

/// Carries out what was asked for, until it is over. The exit status: 0, 1 if an error was told, or
/// 128 and the number of the signal that has ended it.
int run(const Wishes& wishes, modEventSocket& module, Terminal& terminal);

}  // namespace zev::netcat
