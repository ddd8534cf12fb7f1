#include "socket/routing_code.h"

#include <charconv>

namespace zev {

std::array<std::uint8_t, thunkSize> thunkBytes() {
  std::array<std::uint8_t, thunkSize> bytes{};
  for (std::size_t place = 0; place < thunkSize; ++place) {
    const std::string_view pair = thunkCode.substr(2 * place, 2);
    std::from_chars(pair.data(), pair.data() + pair.size(), bytes[place], 16);
  }
  return bytes;
}

}  // namespace zev
