#include "posix/look_up.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <memory>

#include "posix/error_numbers.h"

namespace zev::posix {
namespace {

constexpr const char* loopbackName = "localhost";

in_addr addressOf(const sockaddr* address) {
  sockaddr_in whole{};
  std::memcpy(&whole, address, sizeof whole);
  return whole.sin_addr;
}

bool isLoopback(in_addr address) {
  return ntohl(address.s_addr) >> IN_CLASSA_NSHIFT == IN_LOOPBACKNET;
}

Host ask(const std::string& name) {
  addrinfo hints{};
  hints.ai_family = AF_INET;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_CANONNAME;
  addrinfo* found = nullptr;
  const int result = ::getaddrinfo(name.c_str(), nullptr, &hints, &found);
  if (result != 0) return {lookUpError(result, errno), name, {}};
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(found, ::freeaddrinfo);
  Host host;
  host.name = found->ai_canonname == nullptr ? name : found->ai_canonname;
  for (const addrinfo* each = found; each != nullptr; each = each->ai_next) {
    host.addresses.push_back(addressOf(each->ai_addr));
  }
  return host;
}

/// Addresses under which other machines reach this one.
std::vector<in_addr> interfaceAddresses() {
  ifaddrs* list = nullptr;
  std::vector<in_addr> addresses;
  if (::getifaddrs(&list) != 0) return addresses;
  const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> owner(list, ::freeifaddrs);
  for (const ifaddrs* each = list; each != nullptr; each = each->ifa_next) {
    const bool internet = each->ifa_addr != nullptr && each->ifa_addr->sa_family == AF_INET;
    if (!internet || (each->ifa_flags & IFF_UP) == 0) continue;
    const in_addr address = addressOf(each->ifa_addr);
    if (!isLoopback(address)) addresses.push_back(address);
  }
  return addresses;
}

/// Many systems keep their own name at an address of the loopback net, or nowhere.
Host askForOwn(const std::string& name) {
  Host host = ask(name);
  const bool reachable = !std::all_of(host.addresses.begin(), host.addresses.end(), isLoopback);
  if (reachable || name == loopbackName) return host;
  const std::vector<in_addr> addresses = interfaceAddresses();
  if (!addresses.empty()) return {0, name, addresses};
  return host.error == 0 ? host : Host{0, name, {in_addr{htonl(INADDR_LOOPBACK)}}};
}

}  // namespace

Host lookUp(const std::string& name) {
  const std::string own = ownName();
  return name.empty() || name == own ? askForOwn(own) : ask(name);
}

std::string ownName() {
  char name[HOST_NAME_MAX + 1] = {};
  if (::gethostname(name, sizeof name) != 0) return loopbackName;
  return name;
}

}  // namespace zev::posix
