#include "sample/drawing.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace zev::sample {
namespace {

constexpr Colour kBlack{0, 0, 0};
constexpr Colour kWhite{255, 255, 255};
constexpr Colour kFace{240, 240, 236};
constexpr Colour kShadow{120, 124, 130};

std::uint8_t blendByte(int from, int to, int part, int whole) {
  return static_cast<std::uint8_t>(from + (to - from) * part / std::max(1, whole));
}

std::uint8_t shifted(std::uint8_t value, int by) {
  return static_cast<std::uint8_t>(std::clamp(value + by, 0, 255));
}

int shiftWithin(int strength, Noise& noise) {
  return static_cast<int>(noise.below(static_cast<std::uint32_t>(2 * strength + 1))) - strength;
}

void appendPngBytes(png_structp png, png_bytep data, png_size_t length) {
  append(*static_cast<Bytes*>(png_get_io_ptr(png)), std::span<const std::uint8_t>(data, length));
}

[[noreturn]] void throwPngError(png_structp, png_const_charp message) {
  throw std::runtime_error(message);
}

std::vector<std::uint8_t> topDownRow(const Drawing& drawing, int y) {
  std::vector<std::uint8_t> row;
  row.reserve(static_cast<std::size_t>(drawing.width()) * 3);
  for (int x = 0; x < drawing.width(); ++x) {
    const Colour c = drawing.at(x, y);
    row.insert(row.end(), {c.red, c.green, c.blue});
  }
  return row;
}

}  // namespace

Colour blend(Colour from, Colour to, int part, int whole) {
  return {blendByte(from.red, to.red, part, whole), blendByte(from.green, to.green, part, whole),
          blendByte(from.blue, to.blue, part, whole)};
}

Drawing::Drawing(int width, int height, Colour background)
    : width_(width),
      height_(height),
      pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), background) {}

void Drawing::set(int x, int y, Colour colour) {
  if (inside(x, y)) pixels_[index(x, y)] = colour;
}

void Drawing::fill(Area area, Colour colour) { gradient(area, colour, colour); }

void Drawing::frame(Area area, Colour colour) {
  fill({area.left, area.top, area.width, 1}, colour);
  fill({area.left, area.top + area.height - 1, area.width, 1}, colour);
  fill({area.left, area.top, 1, area.height}, colour);
  fill({area.left + area.width - 1, area.top, 1, area.height}, colour);
}

void Drawing::gradient(Area area, Colour top, Colour bottom) {
  for (int y = 0; y < area.height; ++y) {
    const Colour colour = blend(top, bottom, y, area.height - 1);
    for (int x = 0; x < area.width; ++x) set(area.left + x, area.top + y, colour);
  }
}

void Drawing::disc(int centreX, int centreY, int radius, Colour colour) {
  for (int y = -radius; y <= radius; ++y) {
    for (int x = -radius; x <= radius; ++x) {
      if (x * x + y * y <= radius * radius) set(centreX + x, centreY + y, colour);
    }
  }
}

void Drawing::pointer(Area area, Colour colour) {
  for (int y = 0; y < area.height; ++y) {
    const int fromEdge = std::min(y, area.height - 1 - y);
    fill({area.left, area.top + y, area.width * 2 * fromEdge / std::max(1, area.height), 1},
         colour);
  }
}

void Drawing::mouseArrow(int x, int y) {
  static constexpr std::array<std::string_view, 17> kArrow = {
      "#",        "##",       "#.#",       "#..#",       "#...#",      "#....#",
      "#.....#",  "#......#", "#.......#", "#........#", "#.....####", "#..#..#",
      "#.# #..#", "##  #..#", "#    #..#", "     #..#",  "      ##"};
  for (std::size_t row = 0; row < kArrow.size(); ++row) {
    for (std::size_t column = 0; column < kArrow[row].size(); ++column) {
      const char dot = kArrow[row][column];
      if (dot == ' ') continue;
      set(x + static_cast<int>(column), y + static_cast<int>(row), dot == '#' ? kBlack : kWhite);
    }
  }
}

void Drawing::writing(Area area, Colour colour, Noise& noise) {
  for (int y = area.top; y + 3 <= area.top + area.height; y += 8) {
    int x = area.left;
    while (x < area.left + area.width) {
      const int word = 4 + static_cast<int>(noise.below(20));
      fill({x, y, std::min(word, area.left + area.width - x), 3}, colour);
      x += word + 4;
      if (noise.below(9) == 0) break;
    }
  }
}

void Drawing::grain(Area area, int strength, Noise& noise) {
  for (int y = area.top; y < area.top + area.height; ++y) {
    for (int x = area.left; x < area.left + area.width; ++x) {
      if (!inside(x, y)) continue;
      const int by = shiftWithin(strength, noise);
      Colour& c = pixels_[index(x, y)];
      c = {shifted(c.red, by), shifted(c.green, by), shifted(c.blue, by)};
    }
  }
}

void Drawing::sensorNoise(Area area, int strength, Noise& noise) {
  for (int y = area.top; y < area.top + area.height; ++y) {
    for (int x = area.left; x < area.left + area.width; ++x) {
      if (!inside(x, y)) continue;
      Colour& c = pixels_[index(x, y)];
      c.red = shifted(c.red, shiftWithin(strength, noise));
      c.green = shifted(c.green, shiftWithin(strength, noise));
      c.blue = shifted(c.blue, shiftWithin(strength, noise));
    }
  }
}

void Drawing::place(const Drawing& other, int left, int top) {
  for (int y = 0; y < other.height(); ++y) {
    for (int x = 0; x < other.width(); ++x) set(left + x, top + y, other.at(x, y));
  }
}

void drawWindow(Drawing& drawing, Area area, Colour theme, Noise& noise) {
  drawing.fill(area, kFace);
  drawing.gradient({area.left, area.top, area.width, 14}, blend(theme, kWhite, 1, 3), theme);
  for (int button = 0; button < 3; ++button) {
    const int left = area.left + area.width - 14 * (button + 1);
    drawing.fill({left, area.top + 3, 10, 8}, blend(theme, kWhite, button + 1, 4));
  }
  for (int tool = 0; tool * 18 + 18 < area.width; ++tool) {
    const Colour face = blend(theme, {static_cast<std::uint8_t>(40 * tool), 180, 90}, 1, 2);
    drawing.gradient({area.left + 4 + tool * 18, area.top + 18, 14, 12}, kWhite, face);
    drawing.frame({area.left + 4 + tool * 18, area.top + 18, 14, 12}, kShadow);
  }
  const Area page{area.left + 4, area.top + 34, area.width - 8, area.height - 38};
  drawing.fill(page, kWhite);
  drawing.writing({page.left + 6, page.top + 6, page.width - 12, page.height - 10}, {50, 52, 60},
                  noise);
  drawing.frame(area, kShadow);
}

Drawing drawDesktop(int width, int height, Noise& noise) {
  Drawing desktop(width, height);
  const Colour sky{static_cast<std::uint8_t>(40 + noise.below(60)), 110, 170};
  desktop.gradient({0, 0, width, height}, sky, {30, 50, 80});
  desktop.grain({0, 0, width, height}, 6, noise);
  drawWindow(desktop, {width / 12, height / 10, width * 5 / 8, height * 2 / 3}, {30, 90, 160},
             noise);
  drawWindow(desktop, {width * 2 / 5, height / 3, width / 2, height / 2},
             {static_cast<std::uint8_t>(90 + noise.below(120)), 60, 50}, noise);
  desktop.gradient({0, height - 16, width, 16}, {70, 76, 90}, {30, 32, 40});
  desktop.mouseArrow(width / 2 + static_cast<int>(noise.below(40)), height / 2);
  return desktop;
}

Bytes bottomUpRows(const Drawing& drawing) {
  Bytes rows;
  for (int y = drawing.height() - 1; y >= 0; --y) {
    for (int x = 0; x < drawing.width(); ++x) {
      const Colour c = drawing.at(x, y);
      rows.insert(rows.end(), {c.blue, c.green, c.red});
    }
    while (rows.size() % 4 != 0) rows.push_back(0);
  }
  return rows;
}

Bytes toBitmap(const Drawing& drawing) {
  constexpr std::uint32_t kHeaders = 14 + 40;
  const Bytes rows = bottomUpRows(drawing);
  Bytes out;
  append(out, "BM");
  append(out, static_cast<std::uint32_t>(kHeaders + rows.size()));
  append(out, std::uint32_t{0});
  append(out, kHeaders);
  append(out, std::uint32_t{40});
  append(out, static_cast<std::uint32_t>(drawing.width()));
  append(out, static_cast<std::uint32_t>(drawing.height()));
  append(out, std::uint16_t{1});
  append(out, std::uint16_t{24});
  append(out, std::uint32_t{0});
  append(out, static_cast<std::uint32_t>(rows.size()));
  for (int i = 0; i < 4; ++i) append(out, std::uint32_t{0});  // resolution and palette: none
  append(out, rows);
  return out;
}

Bytes toPng(const Drawing& drawing) {
  Bytes out;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, throwPngError, nullptr);
  if (png == nullptr) throw std::runtime_error("no PNG encoder");
  png_infop info = png_create_info_struct(png);
  png_set_write_fn(png, &out, appendPngBytes, nullptr);
  png_set_IHDR(png, info, static_cast<png_uint_32>(drawing.width()),
               static_cast<png_uint_32>(drawing.height()), 8, PNG_COLOR_TYPE_RGB,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_write_info(png, info);
  for (int y = 0; y < drawing.height(); ++y) png_write_row(png, topDownRow(drawing, y).data());
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return out;
}

}  // namespace zev::sample
