#include "win32/form_fonts.h"

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

}  // namespace zev::win32
