#include <chrono>
#include <cstdio>

#include "event_socket.h"

const char* greeting();

/// Sends a greeting from one socket to another and prints what has arrived.
int main() {
  using Clock = std::chrono::steady_clock;
  zev::SocketMachine machine;
  zev::NoBoxes boxes;
  zev::modEventSocket module({machine.sockets(), machine.windows(), machine.kernel(), boxes});
  const auto listener = zev::CEventSocket::create(module);
  const auto server = zev::CEventSocket::create(module);
  const auto client = zev::CEventSocket::create(module);
  bool over = false;
  listener->events.ConnectionRequest = [&](std::int32_t request) { server->Accept(request); };
  client->events.Connect = [&] { client->SendData(zev::fromUtf8(greeting())); };
  server->events.DataArrival = [&](std::int32_t) {
    zev::Variant text = u"";
    server->GetData(text);
    std::printf("%s\n", zev::toUtf8(text.take<zev::Text>()).c_str());
    over = true;
  };
  listener->Listen();
#ifdef NARROW_NAME
  client->Connect("localhost", listener->LocalPort());
#elif defined(WIDE_NAME)
  client->Connect(L"localhost", listener->LocalPort());
#else
  client->Connect(listener->LocalIP(), listener->LocalPort());
#endif
  const auto end = Clock::now() + std::chrono::seconds(10);
  while (!over && Clock::now() < end) machine.dispatch(100);
  return over ? 0 : 1;
}
