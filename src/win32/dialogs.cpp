#include "win32/dialogs.h"

#include <array>
#include <memory>

#include "win32/ansi.h"
#include "win32/control_windows.h"
#include "win32/form_fonts.h"

namespace zev::win32 {
namespace {

/// A box is open as long as this object lives.
class OpenBox {
 public:
  explicit OpenBox(Win32FormEngine& engine) : engine_(engine) { engine_.boxOpens(); }
  ~OpenBox() { engine_.boxCloses(); }
  OpenBox(const OpenBox&) = delete;
  OpenBox& operator=(const OpenBox&) = delete;

 private:
  Win32FormEngine& engine_;
};

}  // namespace

/// The numbers of styles and answers are the system's own; a box that it cannot show has none of
/// them.
BoxAnswer Win32Dialogs::MsgBox(TextView text, std::int32_t style, TextView title) {
  const OpenBox open(engine_);
  const Text shownText(text);
  const Text shownTitle(title);
  const int answer = MessageBoxW(engine_.activeWindow(), wide(shownText), wide(shownTitle),
                                 static_cast<UINT>(style));
  return answer > 0 ? static_cast<BoxAnswer>(answer) : BoxAnswer::None;
}

Text Win32Dialogs::InputBox(TextView prompt, TextView title, TextView initial) {
  const OpenBox open(engine_);
  return askForText(engine_.activeWindow(), Text(prompt), Text(title), Text(initial));
}

Text Win32Dialogs::defaultTitle() { return u"ZEVSetup"; }

// ---- the box that asks for a text

namespace {

/// Places in twips within the client area.
constexpr int clientWidth = 5400;
constexpr int clientHeight = 1815;

struct Part {
  const wchar_t* className;
  const wchar_t* text;
  DWORD style;
  DWORD extendedStyle;
  int id;
  int left, top, width, height;
};

constexpr Part parts[] = {
    {L"STATIC", L"", SS_LEFT | SS_NOPREFIX, 0, input_box::prompt, 120, 120, 3855, 1080},
    {L"EDIT", L"", WS_TABSTOP | ES_AUTOHSCROLL, WS_EX_CLIENTEDGE, input_box::field, 120, 1350, 5160,
     315},
    {L"BUTTON", L"OK", WS_TABSTOP | BS_DEFPUSHBUTTON, 0, IDOK, 4185, 120, 1095, 375},
    {L"BUTTON", L"", WS_TABSTOP | BS_PUSHBUTTON, 0, IDCANCEL, 4185, 585, 1095, 375},
};

/// A dialog without a template of controls: they are made when it opens.
struct EmptyTemplate {
  DLGTEMPLATE head;
  std::array<WORD, 3> noMenuClassOrTitle;
};

class InputBox {
 public:
  InputBox(const Text& prompt, const Text& title, const Text& initial)
      : prompt_(prompt), title_(title), initial_(initial) {}

  Text ask(HWND owner) {
    EmptyTemplate description{};
    description.head.style = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME;
    DialogBoxIndirectParamW(GetModuleHandleW(nullptr), &description.head, owner, procedure,
                            reinterpret_cast<LPARAM>(this));
    return answer_;
  }

 private:
  static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (message == WM_INITDIALOG) SetWindowLongPtrW(window, GWLP_USERDATA, second);
    auto* self = reinterpret_cast<InputBox*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == WM_INITDIALOG) return self->open(window);
    if (message == WM_COMMAND && (LOWORD(first) == IDOK || LOWORD(first) == IDCANCEL)) {
      if (LOWORD(first) == IDOK) {
        self->answer_ = windowText(GetDlgItem(window, input_box::field));
      }
      EndDialog(window, LOWORD(first));
      return TRUE;
    }
    return FALSE;
  }

  /// The field has the focus: FALSE keeps it there.
  INT_PTR open(HWND window) {
    const int dpi = windowDpi(window);
    fonts_ = std::make_unique<FormFonts>(dpi);
    for (const Part& part : parts) make(window, part, dpi);
    SetWindowTextW(window, wide(title_));
    SetDlgItemTextW(window, input_box::prompt, wide(inLines(prompt_)));
    SetDlgItemTextW(window, input_box::field, wide(initial_));
    SetDlgItemTextW(window, IDCANCEL, wide(cancelText()));
    placeInTheMiddle(window, dpi);
    SetFocus(GetDlgItem(window, input_box::field));
    return FALSE;
  }

  void make(HWND window, const Part& part, int dpi) {
    const HWND made = CreateWindowExW(
        part.extendedStyle, part.className, part.text, WS_CHILD | WS_VISIBLE | part.style,
        pixels(part.left, dpi), pixels(part.top, dpi), pixels(part.width, dpi),
        pixels(part.height, dpi), window, reinterpret_cast<HMENU>(static_cast<INT_PTR>(part.id)),
        GetModuleHandleW(nullptr), nullptr);
    SendMessageW(made, WM_SETFONT, reinterpret_cast<WPARAM>(fonts_->fontFor(prompt_)), TRUE);
  }

  static void placeInTheMiddle(HWND window, int dpi) {
    RECT area{0, 0, pixels(clientWidth, dpi), pixels(clientHeight, dpi)};
    AdjustWindowRectEx(&area, static_cast<DWORD>(GetWindowLongW(window, GWL_STYLE)), FALSE,
                       static_cast<DWORD>(GetWindowLongW(window, GWL_EXSTYLE)));
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    SetWindowPos(window, nullptr, (GetSystemMetrics(SM_CXSCREEN) - width) / 2,
                 (GetSystemMetrics(SM_CYSCREEN) - height) / 2, width, height, SWP_NOZORDER);
  }

  /// A single carriage return is a line end of its own here.
  static Text inLines(const Text& text) {
    Text lines;
    for (std::size_t place = 0; place < text.size(); ++place) {
      lines += text[place];
      const bool ends =
          text[place] == u'\r' && (place + 1 == text.size() || text[place + 1] != u'\n');
      if (ends) lines += u'\n';
    }
    return lines;
  }

  /// The system's own word for it, as its message boxes have it.
  static Text cancelText() {
    std::array<wchar_t, 64> word{};
    constexpr UINT cancelString = 801;
    const int length = LoadStringW(GetModuleHandleW(L"user32.dll"), cancelString, word.data(),
                                   static_cast<int>(word.size()));
    return length == 0 ? Text(u"Cancel") : Text(word.begin(), word.begin() + length);
  }

  const Text& prompt_;
  const Text& title_;
  const Text& initial_;
  Text answer_;
  std::unique_ptr<FormFonts> fonts_;
};

}  // namespace

Text askForText(HWND owner, const Text& prompt, const Text& title, const Text& initial) {
  return InputBox(prompt, title, initial).ask(owner);
}

}  // namespace zev::win32
