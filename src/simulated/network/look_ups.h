#pragma once

#include <map>

#include "platform/message_queue.h"
#include "simulated/network/simulated_network.h"

namespace zev::simulated {

/// Look-ups that run. Is held by a shared pointer, since one may end when the process has.
class LookUps : public std::enable_shared_from_this<LookUps> {
 public:
  struct Request {
    WindowHandle window = 0;
    std::uint32_t message = 0;
    std::string name;
    void* buffer = nullptr;
    std::size_t length = 0;
  };

  /// Borrows both.
  LookUps(SimulatedNetwork& network, MessageQueue& queue) : network_(network), queue_(queue) {}

  /// The handle of the look-up that has begun.
  std::int32_t begin(Request request);
  /// False if no such look-up runs.
  bool cancel(std::int32_t handle) { return running_.erase(handle) == 1; }
  void cancelAll() { running_.clear(); }
  std::size_t running() const { return running_.size(); }

 private:
  void end(std::int32_t handle);

  SimulatedNetwork& network_;
  MessageQueue& queue_;
  std::map<std::int32_t, Request> running_;
  std::int32_t lastHandle_ = 0x100;
};

}  // namespace zev::simulated
