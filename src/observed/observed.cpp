#include "observed/observed.h"

#include <cstring>
#include <string>

namespace zev::observed {

Text shownAddress(const SocketAddress& address) {
  std::uint8_t host[4], port[2];
  std::memcpy(host, &address.address, sizeof host);
  std::memcpy(port, &address.port, sizeof port);
  std::string text;
  if (address.family != winsock::internet) {
    text = "family " + std::to_string(address.family) + " ";
  }
  for (const int each : host) text += std::to_string(each) + '.';
  text.back() = ':';
  return fromUtf8(text + std::to_string(port[0] * 256 + port[1]));
}

}  // namespace zev::observed
