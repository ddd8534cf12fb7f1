#include <sys/resource.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "posix/machine.h"
#include "socket/bench.h"

namespace zev::socket_bench {
namespace {

/// Real sockets on the loopback of this machine.
class PosixBench final : public Bench {
 public:
  std::string name() const override { return "posix"; }
  Sockets& sockets() override { return machine_.sockets(); }
  MessageWindows& windows() override { return machine_.windows(); }
  Kernel& kernel() override { return machine_.kernel(); }

  bool pump(int milliseconds) override { return machine_.dispatch(milliseconds); }
  void post(const WindowMessage& message) override { machine_.windows().post(message); }

  void setFull(bool full) override {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = full ? firstFree() : limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
  }

  bool isExecutable(const std::uint8_t* address) override {
    const auto place = reinterpret_cast<std::uintptr_t>(address);
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
      std::uintptr_t begin = 0, end = 0;
      char dash = 0;
      std::string rights;
      std::istringstream(line) >> std::hex >> begin >> dash >> end >> rights;
      if (begin <= place && place < end) return rights.find('x') != std::string::npos;
    }
    return false;
  }

  int openSockets() override { return static_cast<int>(machine_.sockets().openSockets()); }
  int openWindows() override { return static_cast<int>(machine_.windows().openWindows()); }

 private:
  /// The number that the next descriptor would have.
  static rlim_t firstFree() {
    const posix::Descriptor probe(::dup(STDERR_FILENO));
    return static_cast<rlim_t>(probe.get());
  }

  posix::Machine machine_;
};

}  // namespace

std::unique_ptr<Bench> makeBench() { return std::make_unique<PosixBench>(); }

}  // namespace zev::socket_bench
