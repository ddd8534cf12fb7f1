#pragma once

#include <map>
#include <memory>

#include "runtime/application.h"
#include "runtime/tab_order.h"
#include "win32/form_window.h"
#include "win32/windows_api.h"

namespace zev::win32 {

/// Forms on the screen of Windows. Window procedures queue what happened; the handlers run from the
/// top of the message loop.
class WindowsEngine final : public FormEngine, private FormListener {
 public:
  /// The program whose forms these are; before anything else is called.
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

  /// The window of the form that is in use; null without one.
  HWND activeWindow() const;
  /// While a box is open the forms take no input.
  void boxOpens() { ++openBoxes_; }
  void boxCloses() { --openBoxes_; }

 private:
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
  std::vector<Form*> visible_;               ///< the one shown last last
  Control* focused_ = nullptr;
  int openBoxes_ = 0;
};

}  // namespace zev::win32
