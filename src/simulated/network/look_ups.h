#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/message_queue.h"
#include "simulated/network/address.h"

namespace zev::simulated {

class SimulatedNetwork;

/// What a look-up finds: addresses, or an error number.
struct Found {
  std::string name;  ///< as it was asked for
  std::vector<HostAddress> addresses;
  std::int32_t error = 0;
};

/// Whether two names differ in nothing but the case of the letters A to Z.
bool sameName(std::string_view first, std::string_view second);

/// Names of hosts. They match without regard to the case of the letters A to Z.
class NameTable {
 public:
  /// Gives a name addresses, in the order in which they are found.
  void add(std::string_view name, std::vector<HostAddress> addresses);
  /// From now on looking the name up fails with that number.
  void fail(std::string_view name, std::int32_t error);
  /// Takes a name out, so that it is unknown.
  void remove(std::string_view name);

  /// Whether somebody has said something of the name.
  bool has(std::string_view name) const;
  /// An unknown name is 11001; an address is found as it stands.
  Found find(std::string_view name) const;
  /// Whether some name has that address.
  bool knows(HostAddress address) const;

 private:
  struct Entry {
    std::vector<HostAddress> addresses;
    std::int32_t error = 0;
  };
  std::map<std::string, Entry> entries_;  ///< by name in small letters
};

/// Bytes that a host record takes with all that it points to.
std::size_t hostRecordSize(const Found& found);
/// Writes it to `buffer`, which has that many bytes: the record, the empty list of aliases, the
/// list of addresses, the addresses, the name.
void writeHostRecord(const Found& found, void* buffer);

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
