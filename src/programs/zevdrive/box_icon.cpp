#include "programs/zevdrive/box_icon.h"

#include "programs/zevdrive/screen_picture.h"

namespace zev::drive {
namespace {

constexpr int tries = 50;
constexpr DWORD iconPause = 10;  // milliseconds

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
  for (int each = 0; each < tries; ++each, Sleep(iconPause)) {
    const Pixels shown = shownPixels(window, width, height);
    for (const IconRow& row : iconRows) {
      if (iconPixels(row.name, shown.front(), width, height) == shown) return row.style;
    }
  }
  return 0;
}

}  // namespace zev::drive
