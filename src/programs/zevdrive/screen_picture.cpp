#include "programs/zevdrive/screen_picture.h"

#include <algorithm>

namespace zev::drive {
namespace {

constexpr std::uint32_t colourMask = 0xFFFFFF;

}  // namespace

Canvas::Canvas(int width, int height)
    : size_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {
  BITMAPINFO description{};
  description.bmiHeader.biSize = sizeof description.bmiHeader;
  description.bmiHeader.biWidth = width;
  description.bmiHeader.biHeight = -height;
  description.bmiHeader.biPlanes = 1;
  description.bmiHeader.biBitCount = 32;
  context_ = CreateCompatibleDC(nullptr);
  bitmap_ = CreateDIBSection(context_, &description, DIB_RGB_COLORS, &bits_, nullptr, 0);
  before_ = SelectObject(context_, bitmap_);
}

Canvas::~Canvas() {
  SelectObject(context_, before_);
  DeleteObject(bitmap_);
  DeleteDC(context_);
}

Pixels Canvas::pixels() const {
  GdiFlush();
  const auto* first = static_cast<const std::uint32_t*>(bits_);
  Pixels all(first, first + size_);
  for (std::uint32_t& each : all) each &= colourMask;
  return all;
}

Pixels shownPixels(HWND window, int width, int height) {
  const Canvas canvas(width, height);
  POINT corner{0, 0};
  ClientToScreen(window, &corner);
  const HDC screen = GetDC(nullptr);
  BitBlt(canvas.context(), 0, 0, width, height, screen, corner.x, corner.y, SRCCOPY);
  ReleaseDC(nullptr, screen);
  return canvas.pixels();
}

ScreenPicture::ScreenPicture(HWND window) {
  RECT area{};
  GetClientRect(window, &area);
  ClientToScreen(window, &corner_);
  width_ = area.right;
  height_ = area.bottom;
  pixels_ = shownPixels(window, static_cast<int>(width_), static_cast<int>(height_));
}

bool ScreenPicture::plain(const RECT& part) const {
  const LONG left = std::max<LONG>(part.left - corner_.x, 0);
  const LONG right = std::min(part.right - corner_.x, width_);
  const LONG bottom = std::min(part.bottom - corner_.y, height_);
  std::uint32_t first = 0;
  bool any = false;
  for (LONG y = std::max<LONG>(part.top - corner_.y, 0); y < bottom; ++y) {
    for (LONG x = left; x < right; ++x) {
      const std::uint32_t colour = pixels_[static_cast<std::size_t>(y * width_ + x)];
      if (any && colour != first) return false;
      first = colour;
      any = true;
    }
  }
  return true;
}

}  // namespace zev::drive
