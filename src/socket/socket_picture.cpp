#include <array>
#include <string_view>

#include "socket/socket_control.h"

namespace zev {
namespace {

constexpr std::size_t side = 28;          ///< pixels
constexpr std::size_t bytesPerPixel = 3;  ///< blue, green, red
constexpr std::size_t headerSize = 54;    ///< of file and bitmap
constexpr std::size_t rowSize = side * bytesPerPixel;
static_assert(rowSize % 4 == 0, "rows of a bitmap file fill whole groups of four bytes");

/// A plug that goes into its socket, within a frame; the bottom row of the file is the last one
/// here.
constexpr std::array<std::string_view, side> pixels = {
    "++++++++++++++++++++++++++++", "+..........................+", "+..........................+",
    "+..........................+", "+..........................+", "+..............#######.....+",
    "+..............#.....##....+", "+..............#......#....+", "+...........####......#....+",
    "+..............#......#....+", "+..............#......#....+", "+......oo......#......##...+",
    "+.....oooo.....#......##...+", "+ooooooooo.....#......#####+", "+ooooooooo.....#......#####+",
    "+.....oooo.....#......##...+", "+......oo......#......##...+", "+..............#......#....+",
    "+..............#......#....+", "+...........####......#....+", "+..............#......#....+",
    "+..............#.....##....+", "+..............#######.....+", "+..........................+",
    "+..........................+", "+..........................+", "+..........................+",
    "++++++++++++++++++++++++++++",
};

struct Colour {
  std::uint8_t blue, green, red;
};

Colour colourOf(char pixel) {
  switch (pixel) {
    case '+':
      return {128, 128, 128};
    case '#':
      return {96, 32, 0};
    case 'o':
      return {0, 96, 192};
    default:
      return {192, 192, 192};
  }
}

void putNumber(std::vector<std::uint8_t>& bytes, std::size_t place, std::size_t value) {
  for (std::size_t index = 0; index < 4; ++index) {
    bytes[place + index] = static_cast<std::uint8_t>(value >> 8 * index);
  }
}

std::vector<std::uint8_t> header() {
  std::vector<std::uint8_t> bytes(headerSize);
  bytes[0] = 'B';
  bytes[1] = 'M';
  putNumber(bytes, 2, headerSize + side * rowSize);  // of the file
  putNumber(bytes, 10, headerSize);                  // where the pixels begin
  putNumber(bytes, 14, 40);                          // of the bitmap's own header
  putNumber(bytes, 18, side);
  putNumber(bytes, 22, side);
  bytes[26] = 1;                  // planes
  bytes[28] = 8 * bytesPerPixel;  // bits a pixel
  putNumber(bytes, 34, side * rowSize);
  return bytes;
}

}  // namespace

std::vector<std::uint8_t> Socket::picture() {
  std::vector<std::uint8_t> bytes = header();
  for (std::size_t row = side; row-- > 0;) {
    for (const char pixel : pixels[row]) {
      const Colour colour = colourOf(pixel);
      bytes.insert(bytes.end(), {colour.blue, colour.green, colour.red});
    }
  }
  return bytes;
}

}  // namespace zev
