#include "posix/host_record.h"

#include <cstdint>
#include <cstring>

namespace zev::posix {
namespace {

/// The aliases, of which there are none, and the addresses; each list is ended by null.
std::size_t pointerCount(const Host& host) { return 1 + host.addresses.size() + 1; }

/// The next place behind `place` where a pointer may stand.
char* aligned(char* place) {
  constexpr std::uintptr_t step = alignof(char*);
  const std::uintptr_t over = reinterpret_cast<std::uintptr_t>(place) % step;
  return over == 0 ? place : place + (step - over);
}

}  // namespace

std::size_t recordSize(const Host& host) {
  return sizeof(HostRecord) + alignof(char*) + pointerCount(host) * sizeof(char*) +
         host.addresses.size() * sizeof(in_addr) + host.name.size() + 1;
}

void writeRecord(const Host& host, void* buffer) {
  char* const pointers = aligned(static_cast<char*>(buffer) + sizeof(HostRecord));
  char* next = pointers + pointerCount(host) * sizeof(char*);
  std::vector<char*> lists = {nullptr};
  for (const in_addr& each : host.addresses) {
    std::memcpy(next, &each, sizeof each);
    lists.push_back(next);
    next += sizeof each;
  }
  lists.push_back(nullptr);
  std::memcpy(next, host.name.c_str(), host.name.size() + 1);
  std::memcpy(pointers, lists.data(), lists.size() * sizeof(char*));

  HostRecord record;
  record.name = next;
  record.aliases = reinterpret_cast<char**>(pointers);
  record.addressType = winsock::internet;
  record.addressLength = sizeof(in_addr);
  record.addresses = record.aliases + 1;
  std::memcpy(buffer, &record, sizeof record);
}

}  // namespace zev::posix
