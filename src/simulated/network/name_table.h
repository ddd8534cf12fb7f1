#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "simulated/network/address.h"

namespace zev::simulated {

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

}  // namespace zev::simulated
