// What one step of the sockets costs with many connections beside it:
//
//   socket_steps CONNECTIONS ROUNDS     ROUNDS times: a byte arrives at one of them, is fetched and
//                                       answered; a caller comes, is taken, and goes
//   socket_steps CONNECTIONS idle       what that many idle connections hold and use
//
// The peers are a process of their own. Instructions are counted by socket_steps.sh.

#include <arpa/inet.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <unordered_map>

#include "posix/machine.h"
#include "socket/event_socket.h"
#include "support/fake_dialogs.h"

namespace zev::benchmarks {
namespace {

using posix::Descriptor;

constexpr int patience = 60'000;

int check(int result, const char* what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
  return result;
}

// ---- the peers

Descriptor connectTo(std::uint16_t port) {
  Descriptor stream(check(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket"));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = ::htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  check(::connect(stream.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
        "connect");
  return stream;
}

void ask(const Descriptor& stream) {
  char byte = 'q';
  if (::write(stream.get(), &byte, 1) != 1 || ::read(stream.get(), &byte, 1) != 1) {
    throw std::runtime_error("no answer");
  }
}

/// Connects, asks, calls anew as often as told, and waits for the end of its input.
void bePeers(std::uint16_t port, std::size_t connections, int rounds) {
  std::vector<Descriptor> streams;
  while (streams.size() < connections) streams.push_back(connectTo(port));
  for (const Descriptor& each : streams) ask(each);
  for (int i = 0; i < rounds; ++i) {
    ask(streams[streams.size() / 2]);
    const Descriptor caller = connectTo(port);
    ask(caller);
  }
}

// ---- the component

class Server {
 public:
  Server() {
    listener_->events.ConnectionRequest = [this](std::int32_t request) { take(request); };
    listener_->Bind(0, u"127.0.0.1");
    listener_->Listen();
  }
  std::uint16_t port() const { return static_cast<std::uint16_t>(listener_->LocalPort()); }
  /// Until so many bytes have been answered.
  void serve(std::size_t bytes) {
    while (answered_ < bytes) {
      if (!machine_.dispatch(patience)) throw std::runtime_error("nobody asks any more");
    }
  }
  bool dispatch(int milliseconds) { return machine_.dispatch(milliseconds); }

 private:
  void take(std::int32_t request) {
    const auto socket = CEventSocket::create(module_);
    CEventSocket* const stream = socket.get();
    streams_[stream] = socket;
    stream->events.DataArrival = [this, stream](std::int32_t) {
      Variant bytes;
      stream->GetData(bytes);
      answered_ += static_cast<std::size_t>(bytes.get<std::vector<std::uint8_t>>()->size());
      stream->SendData(bytes);
    };
    stream->events.CloseSck = [this, stream] { streams_.erase(stream); };
    stream->Accept(request);
  }

  posix::Machine machine_;
  test::FakeDialogs dialogs_;
  modEventSocket module_{{machine_.sockets(), machine_.windows(), machine_.kernel(), dialogs_}};
  std::shared_ptr<CEventSocket> listener_ = CEventSocket::create(module_);
  std::unordered_map<CEventSocket*, std::shared_ptr<CEventSocket>> streams_;
  std::size_t answered_ = 0;
};

long residentKilobytes() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmRSS:")) return std::atol(line.c_str() + std::strlen("VmRSS:"));
  }
  return 0;
}

double processorSeconds() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// The peers stay as they are while nobody reads the pipe.
int run(std::size_t connections, int rounds, bool idle) {
  Server server;
  int pipe[2] = {};
  check(::pipe(pipe), "pipe");
  const pid_t peers = check(::fork(), "fork");
  if (peers == 0) {
    ::close(pipe[1]);
    bePeers(server.port(), connections, rounds);
    char end = 0;
    ::_exit(::read(pipe[0], &end, 1) == 0 ? 0 : 1);
  }
  ::close(pipe[0]);
  const long before = residentKilobytes();
  server.serve(connections + 2 * static_cast<std::size_t>(rounds));
  if (idle) {
    const long held = residentKilobytes() - before;
    const double busy = processorSeconds();
    server.dispatch(2000);
    std::printf("%zu idle connections: %ld KB, %ld bytes each, %.4f s of processor time in 2 s\n",
                connections, held, held * 1024 / static_cast<long>(connections),
                processorSeconds() - busy);
  }
  ::close(pipe[1]);
  int status = 0;
  ::waitpid(peers, &status, 0);
  return status;
}

}  // namespace
}  // namespace zev::benchmarks

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const bool idle = std::strcmp(argv[2], "idle") == 0;
  try {
    return zev::benchmarks::run(static_cast<std::size_t>(std::atol(argv[1])),
                                idle ? 0 : std::atoi(argv[2]), idle);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
