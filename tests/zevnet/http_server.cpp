// http_server FILE: serves that file to whoever asks for anything, on a port of the system's choice
// that it prints.

#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>

#include "posix/machine.h"
#include "socket/event_socket.h"
#include "support/fake_dialogs.h"

namespace {

using namespace zev;
using Bytes = std::vector<std::uint8_t>;

Bytes contentsOf(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(file), {});
}

/// The calls that are being answered. One that is over is let go of outside its own events.
class Server {
 public:
  Server(modEventSocket& module, Bytes file) : module_(module), file_(std::move(file)) {
    listener_->events.ConnectionRequest = [this](std::int32_t request) { answer(request); };
    listener_->Bind(0, u"127.0.0.1");
    listener_->Listen();
    std::printf("%d\n", listener_->LocalPort());
    std::fflush(stdout);
  }

  void dropEnded() {
    std::erase_if(calls_, [](const Call& call) { return call.socket->State() == sckClosed; });
  }

 private:
  struct Call {
    std::shared_ptr<CEventSocket> socket;
    std::shared_ptr<Text> asked = std::make_shared<Text>();
  };

  void answer(std::int32_t request) {
    const Call call = calls_.emplace_back(Call{CEventSocket::create(module_)});
    CEventSocket& socket = *call.socket;
    socket.events.DataArrival = [this, &socket, asked = call.asked](std::int32_t) {
      Variant text = u"";
      socket.GetData(text);
      *asked += text.take<Text>();
      if (!asked->ends_with(u"\r\n\r\n")) return;
      socket.SendData(join(u"HTTP/1.0 200 OK\r\nContent-Length: ",
                           decimal(static_cast<std::int64_t>(file_.size())), u"\r\n\r\n"));
      socket.events.SendComplete = [&socket] { socket.CloseSck(); };
      socket.SendData(file_);
    };
    socket.events.CloseSck = [&socket] { socket.CloseSck(); };
    socket.events.Error = [&socket](const SocketErrorArguments&) { socket.CloseSck(); };
    socket.Accept(request);
  }

  modEventSocket& module_;
  const Bytes file_;
  std::shared_ptr<CEventSocket> listener_ = CEventSocket::create(module_);
  std::vector<Call> calls_;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  posix::Machine machine;
  test::FakeDialogs dialogs;
  modEventSocket module({machine.sockets(), machine.windows(), machine.kernel(), dialogs});
  Server server(module, contentsOf(argv[1]));
  for (;;) {
    machine.dispatch(-1);
    server.dropEnded();
  }
}
