#pragma once

#include <map>
#include <memory>

#include "runtime/application.h"
#include "runtime/form.h"
#include "win32/form_window.h"
#include "win32/windows_api.h"

namespace zev::win32 {

/// Forms on the screen of Windows.
///
/// Down: the program loads, shows and writes to its forms; the run-time calls the functions of
/// FormEngine, and this passes them on to the FormWindow of the form.
///
/// Up: a window procedure hears of a click, calls FormListener from the midst of a dispatch, and
/// this posts the event to the Application, which runs it from the top of its loop. So no handler
/// runs inside a window procedure, and no exception crosses one. An event whose form is unloaded
/// before its turn comes is dropped.
///
/// Keys that work the whole form (Tab, Enter, Escape, arrows among option buttons, Alt with a
/// letter) are taken out in dispatch() before Windows sees them; see translateKey().
///
/// The focus is kept in two places. Each FormWindow remembers the control of its form that has, or
/// will have, the focus of Windows. `focused_` is the control that the program was last told of by
/// GotFocus. trackFocus() compares it with what Windows says, after each message and wherever else
/// the focus may have moved, and posts LostFocus and GotFocus.
///
/// Who owns what: the engine owns the FormWindow of each loaded form, from loaded() to unloaded();
/// a FormWindow owns its windows and fonts. Forms and controls are the program's and are borrowed.
class Win32FormEngine final : public FormEngine, private FormListener {
 public:
  /// The program whose forms these are, borrowed; to be called before anything else.
  void serve(Application& application) { application_ = &application; }

  // FormEngine
  void loaded(Form& form) override;
  void shown(Form& form) override;
  void hidden(Form& form) override;
  void unloaded(Form& form) override;
  void beginPass() override {}
  bool pump() override;
  bool wait() override;
  std::uintptr_t windowHandle(const Form& form) override;
  double TextWidth(const Form& form, TextView text) override;
  double TwipsPerPixelX() override;
  void propertyWritten(PropertyBase& property) override;
  void refreshed(Component& component) override;
  void focusGiven(Control& control) override;

  /// The window of the topmost enabled form, as the owner of a box; null without one.
  HWND activeWindow() const;
  /// While a box is open the forms take no input. Counted, since a message that arrives while a box
  /// is open can bring up another.
  void boxOpens() { ++openBoxes_; }
  void boxCloses() { --openBoxes_; }

 private:
  /// The base is private: this is how a FormWindow gets to it.
  FormListener& listener() { return *this; }
  // FormListener
  void clicked(Control& control) override;
  void chosen(Control& list, int place) override;
  void closed(Form& form) override;
  std::optional<Text> sessionWaitsFor() override { return application_->busyWith(); }
  void sessionEnds() override { application_->endSession(); }
  void dropsDown(Control& list) override;

  void dispatch(MSG& message);
  bool translateKey(const MSG& message);
  bool pressedKey(FormWindow& window, WPARAM key);
  bool pressedAccessKey(FormWindow& window, char16_t key);
  bool pressCancel(FormWindow& window);
  void press(FormWindow& window, Control* control);
  bool moveWithinOptions(FormWindow& window, Control& from, TabDirection direction);
  bool moveFocus(FormWindow& window, Control* from, TabDirection direction);
  void trackFocus();
  void loseFocus();
  void refocus(FormWindow& window);
  bool takesInput(const Control& control) const;
  void post(Control& control, EventProcedure event);
  FormWindow* windowOf(const Component& component) const;
  FormWindow* windowAround(HWND window) const;
  void click(Control& control);

  Application* application_ = nullptr;
  std::map<const Form*, std::unique_ptr<FormWindow>> windows_;
  std::map<const Component*, Form*> forms_;  ///< of every component of a loaded form
  std::vector<Form*> visible_;               ///< from the bottom to the top
  Control* focused_ = nullptr;               ///< who had the last GotFocus
  int openBoxes_ = 0;
};

}  // namespace zev::win32
