#include "platform/message_queue.h"
#include "simulated/network/simulated_kernel.h"
#include "simulated/network/simulated_network.h"
#include "simulated/network/simulated_sockets.h"
#include "socket/bench.h"

namespace zev::socket_bench {
namespace {

class SimulatedBench final : public Bench {
 public:
  std::string name() const override { return "simulated"; }
  Sockets& sockets() override { return sockets_; }
  MessageWindows& windows() override { return queue_; }
  Kernel& kernel() override { return kernel_; }

  bool pump(int milliseconds) override {
    const std::uint64_t limit = network_.now() + static_cast<std::uint64_t>(milliseconds);
    while (!queue_.dispatch()) {
      if (!network_.advanceToNext(limit)) return false;
    }
    return true;
  }

  void post(const WindowMessage& message) override { queue_.post(message); }
  void setFull(bool full) override {
    network_.settings.maximumSockets = full ? sockets_.openSockets() : usual_;
  }

  bool isExecutable(const std::uint8_t*) override { return false; }
  int openSockets() override { return static_cast<int>(sockets_.openSockets()); }
  int openWindows() override { return static_cast<int>(queue_.openWindows()); }

 private:
  MessageQueue queue_;
  simulated::SimulatedNetwork network_;
  const std::size_t usual_ = network_.settings.maximumSockets;
  simulated::SimulatedSockets sockets_{network_, queue_};
  simulated::SimulatedKernel kernel_;
};

}  // namespace

std::unique_ptr<Bench> makeBench() { return std::make_unique<SimulatedBench>(); }

}  // namespace zev::socket_bench
