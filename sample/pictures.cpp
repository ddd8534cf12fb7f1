#include "sample/pictures.h"

#include <cstdio>

#include <jpeglib.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <stdexcept>

#include "sample/noise.h"
#include "sample/video.h"

namespace zev::sample {
namespace {

constexpr int kCursorSide = 32;
constexpr int kTipX = 12;
constexpr int kTipY = 10;
constexpr int kRadius = 15;
constexpr std::size_t kPaletteBytes = 256 * 4;

void appendColour(Bytes& out, Colour c) { out.insert(out.end(), {c.blue, c.green, c.red, 0}); }

/// The picture on a background that stands for "transparent".
Drawing drawCursor(Colour tint, Colour transparent) {
  Drawing picture(kCursorSide, kCursorSide, transparent);
  for (int radius = kRadius; radius > 0; --radius) {
    picture.disc(16, 16, radius, blend({255, 255, 255}, tint, radius + 3, kRadius + 3));
  }
  picture.mouseArrow(kTipX, kTipY);
  return picture;
}

/// The distinct colours in order of their first appearance; `first` comes first.
std::vector<Colour> coloursOf(const Drawing& picture, Colour first) {
  std::vector<Colour> colours{first};
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      if (std::ranges::find(colours, picture.at(x, y)) == colours.end()) {
        colours.push_back(picture.at(x, y));
      }
    }
  }
  return colours;
}

Bytes cursorPalette(const std::vector<Colour>& colours, const Bytes& spareColours) {
  Bytes out;
  append(out,
         std::uint32_t{0});  // the transparent pixels are black, so that the mask shows through
  for (std::size_t i = 1; i < colours.size(); ++i) appendColour(out, colours[i]);
  append(out,
         std::span(spareColours).first(std::min(spareColours.size(), kPaletteBytes - out.size())));
  out.resize(kPaletteBytes);
  return out;
}

Bytes colourIndices(const Drawing& picture, const std::vector<Colour>& colours) {
  Bytes out;
  for (int y = kCursorSide - 1; y >= 0; --y) {
    for (int x = 0; x < kCursorSide; ++x) {
      const auto found = std::ranges::find(colours, picture.at(x, y));
      out.push_back(static_cast<std::uint8_t>(found - colours.begin()));
    }
  }
  return out;
}

/// One bit a pixel, set where the screen shows through.
Bytes transparencyMask(const Drawing& picture, Colour transparent) {
  Bytes out;
  for (int y = kCursorSide - 1; y >= 0; --y) {
    for (int x = 0; x < kCursorSide; x += 8) {
      unsigned bits = 0;
      for (int i = 0; i < 8; ++i)
        bits = bits << 1 | (picture.at(x + i, y) == transparent ? 1u : 0u);
      out.push_back(static_cast<std::uint8_t>(bits));
    }
  }
  return out;
}

void appendBitmapHeader(Bytes& out, std::size_t pictureBytes) {
  append(out, std::uint32_t{40});
  append(out, std::uint32_t{kCursorSide});
  append(out, std::uint32_t{2 * kCursorSide});  // colours and mask count as one picture
  append(out, std::uint16_t{1});
  append(out, std::uint16_t{8});
  append(out, std::uint32_t{0});
  append(out, static_cast<std::uint32_t>(pictureBytes));
  for (int i = 0; i < 4; ++i) append(out, std::uint32_t{0});
}

// The colours that the system keeps at the ends of every palette.
constexpr std::array<Colour, 20> kSystemColours = {{
    {0, 0, 0},       {128, 0, 0},     {0, 128, 0},     {128, 128, 0},   {0, 0, 128},
    {128, 0, 128},   {0, 128, 128},   {192, 192, 192}, {192, 220, 192}, {166, 202, 240},
    {255, 251, 240}, {160, 160, 164}, {128, 128, 128}, {255, 0, 0},     {0, 255, 0},
    {255, 255, 0},   {0, 0, 255},     {255, 0, 255},   {0, 255, 255},   {255, 255, 255},
}};

Drawing drawQuestionMark() {
  constexpr Colour kPaper{236, 240, 248};
  constexpr Colour kInk{20, 60, 150};
  Drawing picture(24, 24, kPaper);
  picture.disc(12, 8, 7, kInk);
  picture.disc(12, 8, 3, kPaper);
  picture.fill({4, 9, 8, 7}, kPaper);
  picture.fill({10, 11, 4, 6}, kInk);
  picture.fill({10, 19, 4, 4}, kInk);
  return picture;
}

[[noreturn]] void throwJpegError(j_common_ptr) {
  throw std::runtime_error("the JPEG encoder failed");
}

}  // namespace

Bytes makeCursor(Colour tint, const Bytes& spareColours) {
  constexpr Colour kTransparent{1, 2, 3};
  constexpr std::uint32_t kHeaders = 6 + 16;
  const Drawing picture = drawCursor(tint, kTransparent);
  const std::vector<Colour> colours = coloursOf(picture, kTransparent);
  Bytes image;
  const Bytes indices = colourIndices(picture, colours);
  const Bytes mask = transparencyMask(picture, kTransparent);
  appendBitmapHeader(image, indices.size() + mask.size());
  append(image, cursorPalette(colours, spareColours));
  append(image, indices);
  append(image, mask);

  Bytes out;
  for (const unsigned field : {0u, 2u, 1u}) {  // a cursor file of one picture
    append(out, static_cast<std::uint16_t>(field));
  }
  out.insert(out.end(), {kCursorSide, kCursorSide, 0, 0});
  append(out, std::uint16_t{kTipX});
  append(out, std::uint16_t{kTipY});
  append(out, static_cast<std::uint32_t>(image.size()));
  append(out, kHeaders);
  append(out, image);
  return out;
}

Bytes makePalette(const Bytes& note) {
  constexpr std::uint16_t kVersion = 0x0300;
  Noise noise("ZEVDefault.pal");
  Bytes out;
  append(out, "RIFF");
  append(out, std::uint32_t{0});  // set by the chunk behind
  append(out, "PAL data");
  append(out, std::uint32_t{4 + kPaletteBytes});
  append(out, kVersion);
  append(out, std::uint16_t{256});
  for (std::size_t i = 0; i < 256; ++i) {
    const bool ends = i < 10 || i >= 246;
    const Colour colour = ends ? kSystemColours[i < 10 ? i : i - 236]
                               : Colour{noise.byte(), noise.byte(), noise.byte()};
    out.insert(out.end(), {colour.red, colour.green, colour.blue, 0});
  }
  return withJunkChunk(std::move(out), note);
}

Bytes makeQuestionMark(const Bytes& comment) {
  const Drawing picture = drawQuestionMark();
  jpeg_error_mgr errors{};
  jpeg_compress_struct encoder{};
  encoder.err = jpeg_std_error(&errors);
  errors.error_exit = throwJpegError;
  jpeg_create_compress(&encoder);
  unsigned char* buffer = nullptr;
  unsigned long length = 0;
  jpeg_mem_dest(&encoder, &buffer, &length);
  encoder.image_width = static_cast<JDIMENSION>(picture.width());
  encoder.image_height = static_cast<JDIMENSION>(picture.height());
  encoder.input_components = 1;
  encoder.in_color_space = JCS_GRAYSCALE;
  jpeg_set_defaults(&encoder);
  encoder.optimize_coding = TRUE;
  jpeg_start_compress(&encoder, TRUE);
  jpeg_write_marker(&encoder, JPEG_COM, comment.data(), static_cast<unsigned>(comment.size()));
  for (int y = 0; y < picture.height(); ++y) {
    Bytes row;
    for (int x = 0; x < picture.width(); ++x) row.push_back(picture.at(x, y).green);
    JSAMPROW rows[] = {row.data()};
    jpeg_write_scanlines(&encoder, rows, 1);
  }
  jpeg_finish_compress(&encoder);
  jpeg_destroy_compress(&encoder);
  Bytes out(buffer, buffer + length);
  std::free(buffer);
  return out;
}

}  // namespace zev::sample
