#pragma once

#include <cstdint>
#include <string_view>

#include "sample/bytes.h"
#include "sample/noise.h"

namespace zev::sample {

struct Colour {
  std::uint8_t red, green, blue;
  friend bool operator==(const Colour&, const Colour&) = default;
};

/// The colour `part` / `whole` of the way from `from` to `to`.
Colour blend(Colour from, Colour to, int part, int whole);

/// A rectangle in pixels, `left` and `top` inclusive.
struct Area {
  int left, top, width, height;
};

/// A picture of 24-bit pixels with its origin at the top left. Every drawing operation is clipped
/// to the picture.
class Drawing {
 public:
  Drawing(int width, int height, Colour background = {255, 255, 255});

  int width() const { return width_; }
  int height() const { return height_; }
  Colour at(int x, int y) const { return pixels_[index(x, y)]; }

  void set(int x, int y, Colour colour);
  void fill(Area area, Colour colour);
  void frame(Area area, Colour colour);
  /// From `top` above to `bottom` below.
  void gradient(Area area, Colour top, Colour bottom);
  void disc(int centreX, int centreY, int radius, Colour colour);
  /// A triangle that points right, as on a play button.
  void pointer(Area area, Colour colour);
  /// The arrow of the mouse with its tip at (x, y).
  void mouseArrow(int x, int y);
  /// Rows of short bars that look like text from afar.
  void writing(Area area, Colour colour, Noise& noise);
  /// Brightens or darkens each pixel by up to `strength`.
  void grain(Area area, int strength, Noise& noise);
  /// Shifts each part of each pixel by up to `strength`, as the sensor of a camera does.
  void sensorNoise(Area area, int strength, Noise& noise);
  void place(const Drawing& other, int left, int top);

 private:
  std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
           static_cast<std::size_t>(x);
  }
  bool inside(int x, int y) const { return x >= 0 && y >= 0 && x < width_ && y < height_; }

  int width_;
  int height_;
  std::vector<Colour> pixels_;
};

/// A window of a desktop program: frame, title bar with its three buttons, tool bar and writing.
void drawWindow(Drawing& drawing, Area area, Colour theme, Noise& noise);

/// A desktop with one or two windows on a grained background, as a recorder sees it.
Drawing drawDesktop(int width, int height, Noise& noise);

/// The rows from bottom to top, blue first, each padded to a multiple of four bytes.
Bytes bottomUpRows(const Drawing& drawing);

/// The picture as a Windows bitmap file of 24 bits a pixel.
Bytes toBitmap(const Drawing& drawing);

/// The picture as a PNG file. Throws std::runtime_error if the encoder fails.
Bytes toPng(const Drawing& drawing);

}  // namespace zev::sample
