#include "win32/dialogs.h"

#include "win32/input_box.h"

namespace zev::win32 {
namespace {

/// A box is open as long as this object lives.
class OpenBox {
 public:
  explicit OpenBox(WindowsEngine& engine) : engine_(engine) { engine_.boxOpens(); }
  ~OpenBox() { engine_.boxCloses(); }
  OpenBox(const OpenBox&) = delete;
  OpenBox& operator=(const OpenBox&) = delete;

 private:
  WindowsEngine& engine_;
};

}  // namespace

/// The numbers of styles and answers are the system's own; a box that it cannot show has none of
/// them.
BoxAnswer WindowsDialogs::MsgBox(TextView text, std::int32_t style, TextView title) {
  const OpenBox open(engine_);
  const Text shownText(text);
  const Text shownTitle(title);
  const int answer = MessageBoxW(engine_.activeWindow(), wide(shownText), wide(shownTitle),
                                 static_cast<UINT>(style));
  return answer > 0 ? static_cast<BoxAnswer>(answer) : BoxAnswer::None;
}

Text WindowsDialogs::InputBox(TextView prompt, TextView title, TextView initial) {
  const OpenBox open(engine_);
  return askForText(engine_.activeWindow(), Text(prompt), Text(title), Text(initial));
}

Text WindowsDialogs::defaultTitle() { return u"ZEVSetup"; }

}  // namespace zev::win32
