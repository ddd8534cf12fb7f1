// A server and its client in one program: the client says something, the server answers.

#include "event_socket.h"

#include <chrono>
#include <cstdio>

using namespace zev;

namespace {

Text received(CEventSocket& socket) {
  Variant text = u"";
  socket.GetData(text);
  return text.take<Text>();
}

/// Waits for the end of the talk, ten seconds at most.
bool dispatchUntil(SocketMachine& machine, modEventSocket& module, const bool& over) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!over && std::chrono::steady_clock::now() < end) {
    machine.dispatch(100);
    module.rethrowEscaped();
  }
  return over;
}

bool talk() {
  SocketMachine machine;
  NoBoxes boxes;
  modEventSocket module({machine.sockets(), machine.windows(), machine.kernel(), boxes});
  const auto listener = CEventSocket::create(module);
  const auto server = CEventSocket::create(module);
  const auto client = CEventSocket::create(module);
  bool over = false;
  listener->events.ConnectionRequest = [&](std::int32_t request) { server->Accept(request); };
  server->events.DataArrival = [&](std::int32_t) {
    server->SendData(join(u"You said: ", received(*server)));
  };
  client->events.Connect = [&] { client->SendData(u"Hello"); };
  client->events.DataArrival = [&](std::int32_t) {
    std::puts(toUtf8(received(*client)).c_str());
    over = true;
  };
  client->events.Error = [&](const SocketErrorArguments& error) {
    throw std::runtime_error(toUtf8(error.Description));
  };
  listener->Listen();
  client->Connect(listener->LocalIP(), listener->LocalPort());
  return dispatchUntil(machine, module, over);
}

}  // namespace

int main() {
  try {
    return talk() ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
