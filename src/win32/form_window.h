#pragma once

#include <map>
#include <memory>
#include <optional>

#include "runtime/form.h"
#include "win32/control_windows.h"
#include "win32/form_fonts.h"
#include "win32/windows_api.h"

namespace zev::win32 {

/// Is told what a person does at a form. The calls come from within a dispatch, so they must only
/// queue what happened and run nothing.
class FormListener {
 public:
  virtual ~FormListener() = default;
  /// By mouse or key. The control can have been disabled meanwhile.
  virtual void clicked(Control& control) = 0;
  /// A place of the list was chosen, counted from 0; -1 for none.
  virtual void chosen(Control& list, int place) = 0;
  /// The close box, Alt+F4 or the menu of the title bar. The window stays until the program unloads
  /// the form.
  virtual void closed(Form& form) = 0;
  /// What the end of the session has to wait for; none: it may come. Then it comes, or not.
  virtual std::optional<Text> sessionWaitsFor() = 0;
  /// The session does end; the process may be ended as soon as this returns.
  virtual void sessionEnds() = 0;
  /// The list of a drive list is about to drop down.
  virtual void dropsDown(Control& list) = 0;
};

/// The window of one loaded form with the windows of its controls.
class FormWindow {
 public:
  /// Makes the form's window and those of its controls, hidden. Borrows both, which outlive this.
  FormWindow(Form& form, FormListener& listener);
  ~FormWindow();
  FormWindow(const FormWindow&) = delete;
  FormWindow& operator=(const FormWindow&) = delete;

  /// The window itself, which lives as long as this object, its dots per inch, and the font of all
  /// texts but Turkish ones.
  HWND handle() const { return window_; }
  Form& form() const { return form_; }
  int dpi() const { return dpi_; }
  HFONT font() const { return fonts_->fontFor({}); }

  /// Shows the window above `owner`, which may be null and counts the first time alone. The focus
  /// goes to the first control that can take it.
  void show(HWND owner);
  void hide();
  /// Takes a property over to the screen.
  void showProperty(const PropertyBase& property);
  /// Paints the form or one of its controls at once, not when the loop comes to it.
  void refresh(const Component& component);

  /// The window of a control of this form; null for one that has none.
  HWND windowOf(const Control& control) const;
  /// The control of a window of this form; null for any other.
  Control* controlOf(HWND window) const;
  /// Gives a control the focus, now if the form is in use, else when it will be.
  void setFocus(Control* control);
  /// The control that has the focus, or will have it when the form is in use; null without one.
  Control* focused() const { return focused_; }
  /// The person moved the focus there.
  void followFocus(Control& control) { focused_ = &control; }

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM first, LPARAM second);
  bool sessionMayEnd();
  LRESULT handle(UINT message, WPARAM first, LPARAM second);
  void makeControls();
  void layOut();
  void place(const Control& control);
  bool takeFont(const Control& control);
  void centre();
  void enable();
  void command(int id, int code, HWND from);
  void drawItem(const DRAWITEMSTRUCT& item);
  void drawContainer(HDC canvas, HWND window);
  void changeDpi(int dpi, const RECT& suggested);
  HWND parentOf(const Control& control) const;
  HWND pictureOf(const Control& control) const;
  Control* controlOf(int id) const;

  Form& form_;
  FormListener& listener_;
  HWND window_ = nullptr;
  int dpi_ = usualDpi;
  std::unique_ptr<FormFonts> fonts_;
  std::map<const Control*, HWND> windows_;
  Control* focused_ = nullptr;
  bool everShown_ = false;
};

}  // namespace zev::win32
