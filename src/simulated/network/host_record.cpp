#include "simulated/network/host_record.h"

#include <cstring>

namespace zev::simulated {
namespace {

/// Where the parts of a record lie, in bytes from its start.
struct Layout {
  explicit Layout(const Found& found)
      : aliases(sizeof(HostRecord)),
        list(aliases + sizeof(char*)),
        addresses(list + (found.addresses.size() + 1) * sizeof(char*)),
        name(addresses + found.addresses.size() * sizeof(HostAddress)),
        end(name + found.name.size() + 1) {}

  std::size_t aliases;
  std::size_t list;
  std::size_t addresses;
  std::size_t name;
  std::size_t end;
};

/// Writes a value of any type to a place of any alignment.
template <typename Value>
void put(char* at, const Value& value) {
  std::memcpy(at, &value, sizeof(Value));
}

}  // namespace

std::size_t hostRecordSize(const Found& found) { return Layout(found).end; }

void writeHostRecord(const Found& found, void* buffer) {
  const Layout layout(found);
  char* const start = static_cast<char*>(buffer);
  std::memset(start, 0, layout.end);
  HostRecord record;
  record.name = start + layout.name;
  // The lists hold pointers, and their places are as well aligned as the buffer is.
  record.aliases = static_cast<char**>(static_cast<void*>(start + layout.aliases));
  record.addressType = winsock::internet;
  record.addressLength = sizeof(HostAddress);
  record.addresses = static_cast<char**>(static_cast<void*>(start + layout.list));
  put(start, record);
  for (std::size_t index = 0; index < found.addresses.size(); ++index) {
    char* const address = start + layout.addresses + index * sizeof(HostAddress);
    put(address, found.addresses[index]);
    put(start + layout.list + index * sizeof(char*), address);
  }
  std::memcpy(start + layout.name, found.name.data(), found.name.size());
}

}  // namespace zev::simulated
