#include "simulated/network/look_ups.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "simulated/network/simulated_network.h"

namespace zev::simulated {

// ---- the record of a host

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

// ---- names

namespace {

std::string small(std::string_view name) {
  std::string letters(name);
  for (char& each : letters) {
    if (each >= 'A' && each <= 'Z') each = static_cast<char>(each - 'A' + 'a');
  }
  return letters;
}

}  // namespace

bool sameName(std::string_view first, std::string_view second) {
  return small(first) == small(second);
}

void NameTable::add(std::string_view name, std::vector<HostAddress> addresses) {
  entries_[small(name)] = {std::move(addresses), 0};
}

void NameTable::fail(std::string_view name, std::int32_t error) {
  entries_[small(name)] = {{}, error};
}

void NameTable::remove(std::string_view name) { entries_.erase(small(name)); }

bool NameTable::has(std::string_view name) const { return entries_.count(small(name)) == 1; }

Found NameTable::find(std::string_view name) const {
  Found found{std::string(name), {}, winsock::error::hostNotFound};
  const auto entry = entries_.find(small(name));
  if (entry != entries_.end()) {
    found.addresses = entry->second.addresses;
    found.error = entry->second.error;
  } else if (const auto address = parseAddress(name)) {
    found.addresses = {*address};
    found.error = 0;
  }
  return found;
}

bool NameTable::knows(HostAddress address) const {
  return std::any_of(entries_.begin(), entries_.end(), [&](const auto& each) {
    const std::vector<HostAddress>& all = each.second.addresses;
    return std::find(all.begin(), all.end(), address) != all.end();
  });
}

std::int32_t LookUps::begin(Request request) {
  const std::int32_t handle = ++lastHandle_;
  running_[handle] = std::move(request);
  network_.after(network_.settings.lookUpTime, [weak = weak_from_this(), handle] {
    if (const auto self = weak.lock()) self->end(handle);
  });
  return handle;
}

/// The name is looked up at the end, so that names can change while a look-up runs.
void LookUps::end(std::int32_t handle) {
  const auto running = running_.extract(handle);
  if (running.empty()) return;
  const Request& request = running.mapped();
  const Found found = network_.find(request.name);
  const std::size_t size = found.error == 0 ? hostRecordSize(found) : 0;
  const std::int32_t error = size > request.length ? winsock::error::noBuffers : found.error;
  if (error == 0) writeHostRecord(found, request.buffer);
  queue_.post({request.window, request.message, static_cast<std::uintptr_t>(handle),
               winsock::reply(error, static_cast<std::uint32_t>(size))});
}

}  // namespace zev::simulated
