#include "state/socket_host.h"

namespace zev {
namespace {

constexpr std::uint32_t pauseBehindLoad = 300;  ///< milliseconds

}  // namespace

void loadSocket(Program& program, std::int32_t index) {
  program.form1.WS.Load(index);
  program.DoEvents();
  program.platform.processes.Sleep(pauseBehindLoad);
}

void connectSocket(Socket& socket, const Text& host, std::int32_t port) {
  if (socket.State() != sckClosed) socket.CloseSck();
  socket.RemoteHost(host);
  socket.RemotePort(port);
  socket.Connect();
}

bool waitUntilConnected(Program& program, std::int32_t index, std::uint32_t milliseconds) {
  const std::uint32_t start = program.platform.processes.GetTickCount();
  while (program.form1.WS(index).State() != sckConnected) {
    program.DoEvents();
    if (program.platform.processes.GetTickCount() - start >= milliseconds) break;
  }
  return program.form1.WS(index).State() == sckConnected;
}

}  // namespace zev
