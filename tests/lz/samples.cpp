#include "lz/samples.h"

#include <algorithm>

namespace zev::lz {
namespace {

Bytes noise(std::size_t length, std::uint32_t seed) {
  std::mt19937 random(seed);
  Bytes bytes(length);
  for (std::uint8_t& value : bytes) value = static_cast<std::uint8_t>(random());
  return bytes;
}

Bytes periodic(std::size_t length, std::size_t period) {
  Bytes bytes = noise(std::min(length, period), static_cast<std::uint32_t>(period));
  while (bytes.size() < length) bytes.push_back(bytes[bytes.size() - period]);
  return bytes;
}

Bytes words(std::size_t length) {
  constexpr const char* kWords[] = {"the ", "recorder ", "window ", "sound ", "of ", "screen.\r\n"};
  std::mt19937 random(7);
  std::string text;
  while (text.size() < length) text += kWords[random() % std::size(kWords)];
  text.resize(length);
  return Bytes(text.begin(), text.end());
}

}  // namespace

Bytes mixture(std::size_t length, std::uint32_t seed) {
  std::mt19937 random(seed);
  Bytes bytes;
  while (bytes.size() < length) {
    const std::size_t count = 1 + random() % 40;
    const std::size_t distance = 1 + random() % (random() % 4 == 0 ? 4200 : 20);
    const bool fresh = bytes.size() < distance || random() % 3 == 0;
    for (std::size_t i = 0; i < count; ++i) {
      bytes.push_back(fresh ? static_cast<std::uint8_t>(random()) : bytes[bytes.size() - distance]);
    }
  }
  bytes.resize(length);
  return bytes;
}

std::vector<Sample> samples() {
  std::vector<Sample> all;
  for (std::size_t length = 0; length <= 40; ++length) {
    all.push_back({"noise of " + std::to_string(length), noise(length, 1)});
    all.push_back({"blanks of " + std::to_string(length), Bytes(length, ' ')});
  }
  for (std::size_t period = 1; period <= 40; ++period) {
    all.push_back({"period " + std::to_string(period), periodic(5000, period)});
  }
  for (std::size_t period = 4070; period <= 4100; ++period) {
    all.push_back({"period " + std::to_string(period), periodic(10000, period)});
  }
  for (const std::size_t length : {4079U, 4080U, 4096U, 4097U, 32768U, 36863U, 65536U, 300000U}) {
    all.push_back({"noise of " + std::to_string(length), noise(length, 2)});
    all.push_back({"zeros of " + std::to_string(length), Bytes(length, 0)});
    all.push_back({"words of " + std::to_string(length), words(length)});
    all.push_back({"mixture of " + std::to_string(length), mixture(length, 3)});
  }
  return all;
}

}  // namespace zev::lz
