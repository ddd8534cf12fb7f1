#include "simulated/network/name_table.h"

#include <algorithm>
#include <utility>

namespace zev::simulated {
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

}  // namespace zev::simulated
