#include "posix/socket_table.h"

#include <utility>

namespace zev::posix {
namespace {

// A handle has the number of the place, from 1 on, in its low word and above it how many sockets
// have been there before; it is never negative.
constexpr std::int32_t placeMask = 0xFFFF;
constexpr std::int32_t oneGeneration = 0x10000;
constexpr std::int32_t handleMask = 0x7FFFFFFF;

std::size_t placeOf(std::int32_t handle) { return static_cast<std::size_t>(handle & placeMask); }

/// The handle one generation on; after the last one comes the first.
std::int32_t following(std::int32_t handle) {
  return static_cast<std::int32_t>(
      (static_cast<std::uint32_t>(handle) + static_cast<std::uint32_t>(oneGeneration)) &
      static_cast<std::uint32_t>(handleMask));
}

}  // namespace

OpenSocket* SocketTable::add(Descriptor descriptor, bool stream) {
  Place* const place = freePlace();
  if (place == nullptr) return nullptr;
  static_cast<OpenSocket&>(*place) = OpenSocket{};
  place->handle = place->next;
  place->descriptor = std::move(descriptor);
  place->stream = stream;
  return place;
}

OpenSocket* SocketTable::find(std::int32_t handle) {
  const std::size_t number = placeOf(handle);
  if (handle <= 0 || number == 0 || number > places_.size()) return nullptr;
  OpenSocket& socket = places_[number - 1];
  return socket.handle == handle ? &socket : nullptr;
}

int SocketTable::remove(OpenSocket& socket) {
  Place& place = static_cast<Place&>(socket);
  place.next = following(socket.handle);
  free_.push_back(placeOf(socket.handle) - 1);
  socket.handle = winsock::noSocket;
  return socket.descriptor.close();
}

void SocketTable::removeAll() {
  for (OpenSocket& each : places_) {
    if (each.handle != winsock::noSocket) remove(each);
  }
}

bool SocketTable::full() const {
  return free_.empty() && places_.size() == static_cast<std::size_t>(placeMask);
}

/// The place that has been free for longest, or a new one.
SocketTable::Place* SocketTable::freePlace() {
  if (!free_.empty()) {
    Place& place = places_[free_.front()];
    free_.pop_front();
    return &place;
  }
  if (full()) return nullptr;
  Place& place = places_.emplace_back();
  place.next = static_cast<std::int32_t>(places_.size());
  return &place;
}

}  // namespace zev::posix
