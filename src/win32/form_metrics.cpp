#include "win32/form_metrics.h"

#include "win32/system_library.h"

namespace zev::win32 {

RECT pixelPlace(const Control& control, int dpi) {
  return {pixels(control.Left, dpi), pixels(control.Top, dpi),
          pixels(control.Left + control.Width, dpi), pixels(control.Top + control.Height, dpi)};
}

int systemDpi() {
  const HDC screen = GetDC(nullptr);
  const int dpi = screen == nullptr ? usualDpi : GetDeviceCaps(screen, LOGPIXELSX);
  if (screen != nullptr) ReleaseDC(nullptr, screen);
  return dpi > 0 ? dpi : usualDpi;
}

int windowDpi(HWND window) {
  SystemLibrary user32("user32.dll");
  const auto ask = user32.find<UINT WINAPI(HWND)>("GetDpiForWindow");
  const UINT dpi = ask == nullptr ? 0 : ask(window);
  return dpi == 0 ? systemDpi() : static_cast<int>(dpi);
}

Text windowText(HWND window) {
  std::wstring buffer(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  const int length = GetWindowTextW(window, buffer.data(), static_cast<int>(buffer.size()));
  return Text(buffer.begin(), buffer.begin() + length);
}

}  // namespace zev::win32
