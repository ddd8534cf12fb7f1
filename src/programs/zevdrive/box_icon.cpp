#include "programs/zevdrive/box_icon.h"

#include <algorithm>
#include <vector>

namespace zev::drive {
namespace {

using Pixels = std::vector<std::uint32_t>;

constexpr int tries = 50;
constexpr DWORD pause = 10;  // milliseconds
constexpr std::uint32_t colourMask = 0xFFFFFF;

struct IconRow {
  std::int32_t style;
  LPCWSTR name;
};

// clang-format off
const IconRow iconRows[] = {
    {MB_ICONHAND, reinterpret_cast<LPCWSTR>(IDI_HAND)},
    {MB_ICONQUESTION, reinterpret_cast<LPCWSTR>(IDI_QUESTION)},
    {MB_ICONEXCLAMATION, reinterpret_cast<LPCWSTR>(IDI_EXCLAMATION)},
    {MB_ICONASTERISK, reinterpret_cast<LPCWSTR>(IDI_ASTERISK)},
};
// clang-format on

/// A picture in memory that can be drawn on and read.
class Canvas {
 public:
  Canvas(int width, int height)
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
  ~Canvas() {
    SelectObject(context_, before_);
    DeleteObject(bitmap_);
    DeleteDC(context_);
  }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  HDC context() const { return context_; }
  Pixels pixels() const {
    GdiFlush();
    const auto* first = static_cast<const std::uint32_t*>(bits_);
    Pixels all(first, first + size_);
    for (std::uint32_t& each : all) each &= colourMask;
    return all;
  }

 private:
  std::size_t size_;
  void* bits_ = nullptr;
  HDC context_ = nullptr;
  HBITMAP bitmap_ = nullptr;
  HGDIOBJ before_ = nullptr;
};

/// Read from the screen as a whole: a window of another program need not give its picture.
Pixels shownPixels(HWND window, int width, int height) {
  const Canvas canvas(width, height);
  POINT corner{0, 0};
  ClientToScreen(window, &corner);
  const HDC screen = GetDC(nullptr);
  BitBlt(canvas.context(), 0, 0, width, height, screen, corner.x, corner.y, SRCCOPY);
  ReleaseDC(nullptr, screen);
  return canvas.pixels();
}

Pixels iconPixels(LPCWSTR icon, std::uint32_t background, int width, int height) {
  const Canvas canvas(width, height);
  const RECT area{0, 0, width, height};
  const HBRUSH brush =
      CreateSolidBrush(RGB(background >> 16 & 0xFF, background >> 8 & 0xFF, background & 0xFF));
  FillRect(canvas.context(), &area, brush);
  DeleteObject(brush);
  DrawIconEx(canvas.context(), 0, 0, LoadIconW(nullptr, icon), width, height, 0, nullptr,
             DI_NORMAL);
  return canvas.pixels();
}

}  // namespace

/// The corner of each icon is clear, so that it shows the background of the box.
std::int32_t iconShownBy(HWND window) {
  RECT area{};
  GetClientRect(window, &area);
  const int width = static_cast<int>(area.right);
  const int height = static_cast<int>(area.bottom);
  if (width <= 0 || height <= 0) return 0;
  for (int each = 0; each < tries; ++each, Sleep(pause)) {
    const Pixels shown = shownPixels(window, width, height);
    for (const IconRow& row : iconRows) {
      if (iconPixels(row.name, shown.front(), width, height) == shown) return row.style;
    }
  }
  return 0;
}

}  // namespace zev::drive
