// What the sockets keep: the record of a host, and bytes that wait.

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "fuzz/target.h"
#include "posix/look_ups.h"
#include "socket/byte_queue.h"
#include "socket/wire_format.h"

namespace zev::fuzz {
namespace {

using Bytes = std::vector<std::uint8_t>;

bool same(Data data, const Bytes& bytes) { return Bytes(data.begin(), data.end()) == bytes; }

/// A number of any type that travels comes back from the wire as it went.
void tryWire(Input& input) {
  static constexpr VariantType types[] = {VariantType::Integer, VariantType::Long,
                                          VariantType::Currency, VariantType::Byte};
  const VariantType type = types[input.below(std::size(types))];
  Bytes bytes(static_cast<std::size_t>(*wireSize(type)));
  for (std::uint8_t& each : bytes) each = input.byte();
  require(toWire(fromWire(type, bytes)) == bytes, "another number");
}

Bytes firstOf(const Bytes& all, std::size_t count) {
  return {all.begin(), all.begin() + static_cast<std::ptrdiff_t>(std::min(count, all.size()))};
}

}  // namespace

/// A record of any name and any addresses, in memory of exactly its size that begins anywhere.
void tryHostRecord(Data data) {
  Input input(data);
  posix::Host host;
  for (std::size_t left = input.below(20); left > 0; --left) {
    host.addresses.push_back({input.number()});
  }
  const std::size_t shift = input.below(alignof(HostRecord));
  for (const std::uint8_t each : input.rest()) {
    if (each != 0) host.name += static_cast<char>(each);
  }
  Bytes memory(shift + posix::recordSize(host));
  posix::writeRecord(host, memory.data() + shift);
  HostRecord record;
  std::memcpy(&record, memory.data() + shift, sizeof record);
  require(record.name == host.name, "another name");
  require(*record.aliases == nullptr, "an alias");
  for (std::size_t each = 0; each < host.addresses.size(); ++each) {
    require(std::memcmp(record.addresses[each], &host.addresses[each], 4) == 0, "another address");
  }
  require(record.addresses[host.addresses.size()] == nullptr, "more addresses");
}

/// A stream that comes and is taken in any pieces: what is taken is what came, in its order.
void tryByteStream(Data data) {
  Input input(data);
  ByteQueue queue;
  Bytes all;
  while (!input.empty()) {
    const std::uint8_t deed = input.byte() % 8;
    const std::size_t count = input.below(64);
    const Data bytes = input.bytes(count);
    if (deed == 0) tryWire(input);
    if (deed == 1) queue.append(bytes);
    if (deed == 2) {
      Bytes moved(bytes.begin(), bytes.end());
      queue.adopt(moved, bytes.size());
    }
    if (deed == 3) {
      const auto shared = std::make_shared<const Bytes>(bytes.begin(), bytes.end());
      queue.share(shared, *shared);
    }
    const bool fills = deed == 7 && count != 0;
    if (fills) {
      std::copy(bytes.begin(), bytes.end(), queue.room(count).begin());
      queue.filled(bytes.size());
    }
    if (fills || (deed >= 1 && deed <= 3)) all.insert(all.end(), bytes.begin(), bytes.end());
    if (deed == 4) {
      require(queue.take(count) == firstOf(all, count), "other bytes are taken");
    } else if (deed == 5) {
      queue.drop(count);
    } else if (deed == 6) {
      require(same(queue.front(count), firstOf(all, count)), "other bytes in front");
      continue;
    } else if (deed == 7 && count == 0) {
      queue.clear();
      all.clear();
    }
    if (deed == 4 || deed == 5) {
      all.erase(all.begin(),
                all.begin() + static_cast<std::ptrdiff_t>(std::min(count, all.size())));
    }
    require(queue.size() == all.size(), "another length");
  }
  require(same(queue.front(all.size()), all), "other bytes at the end");
}

}  // namespace zev::fuzz
