#include "win32/form_metrics.h"

#include "win32/system_library.h"

namespace zev::win32 {
namespace {

constexpr int fontPoints = 8;
constexpr int pointsPerInch = 72;

/// Letters of Turkish that the western set lacks.
constexpr TextView turkishLetters = u"ĞğİıŞş";

HFONT makeFont(int dpi, DWORD charset) {
  return CreateFontW(-MulDiv(fontPoints, dpi, pointsPerInch), 0, 0, 0, FW_NORMAL, FALSE, FALSE,
                     FALSE, charset, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY,
                     DEFAULT_PITCH | FF_DONTCARE, L"MS Sans Serif");
}

}  // namespace

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

FormFonts::FormFonts(int dpi)
    : usual_(makeFont(dpi, DEFAULT_CHARSET)), turkish_(makeFont(dpi, TURKISH_CHARSET)) {}

FormFonts::~FormFonts() {
  DeleteObject(usual_);
  DeleteObject(turkish_);
}

HFONT FormFonts::fontFor(TextView text) const {
  return text.find_first_of(turkishLetters) == TextView::npos ? usual_ : turkish_;
}

int textWidth(HFONT font, TextView text) {
  const HDC canvas = CreateCompatibleDC(nullptr);  // as the screen, but nothing is drawn there
  const HGDIOBJ before = SelectObject(canvas, font);
  SIZE size{};
  GetTextExtentPoint32W(canvas, reinterpret_cast<const wchar_t*>(text.data()),
                        static_cast<int>(text.size()), &size);
  SelectObject(canvas, before);
  DeleteDC(canvas);
  return size.cx;
}

Text windowText(HWND window) {
  std::wstring buffer(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  const int length = GetWindowTextW(window, buffer.data(), static_cast<int>(buffer.size()));
  return Text(buffer.begin(), buffer.begin() + length);
}

}  // namespace zev::win32
