#pragma once

#include "programs/zevdrive/program_windows.h"
#include "win32/windows_api.h"

namespace zev::drive {

/// A click with the left button of the mouse at a point of the screen.
void clickAt(POINT point);

/// The same on a button there: false if it does not go down and up again in time.
bool clickButtonAt(POINT point, HWND button);

/// A key, down and up, for whichever window has the focus.
void pressKey(WORD virtualKey);

/// True if the mouse would reach the window there: nothing of another one lies in front of it.
bool reachedAt(POINT point, HWND window);

/// What a person does to the windows of a program. Nothing at all happens on a control that is
/// disabled or hidden or lies in such a container or form, and while a box is open. What sets the
/// program to work is posted, so that it can open a box.
class WindowHand {
 public:
  /// Borrows the windows, which whoever owns them keeps up to date.
  explicit WindowHand(const ProgramWindows& windows) : windows_(windows) {}

  /// Whether an act would do anything: the window is to be seen and enabled, so is all that it lies
  /// in, and no box is open.
  bool reaches(const Form& form) const;
  bool reaches(const Form& form, const Control& control) const;

  /// By the mouse, at the middle of the control. DriveError if it lies under other windows or does
  /// not hear the mouse. A list or a text box only gets the focus.
  void click(const Form& form, const Control& control) const;
  void focus(const Form& form, const Control& control) const;
  /// Replaces the text of a text box that is not locked.
  void type(const Form& form, const Control& control, const Text& text) const;
  /// The close box of the form's title bar.
  void close(const Form& form) const;

  /// Entries of a list that drops down, or of a list box.
  std::vector<Text> entries(const Form& form, const Control& control) const;
  /// The chosen place; -1 for none.
  int chosen(const Form& form, const Control& control) const;
  /// Chooses a place of a list that drops down.
  void select(const Form& form, const Control& control, int place) const;
  /// Chooses a place of a list box and double-clicks it.
  void open(const Form& form, const Control& control, int place) const;

 private:
  void notify(HWND window, int code) const;

  const ProgramWindows& windows_;
};

}  // namespace zev::drive
