#pragma once

#include <map>
#include <optional>
#include <string_view>
#include <vector>

#include "scenario/outside_view.h"
#include "win32/windows_api.h"

namespace zev::drive {

/// Longest that a window is waited for before it counts as busy, in milliseconds.
inline constexpr UINT patience = 50;

/// Sends a message and waits for its answer; none if the window's program is busy or gone.
std::optional<DWORD_PTR> ask(HWND window, UINT message, WPARAM first = 0, LPARAM second = 0);

/// The name of a window's class.
Text classOf(HWND window);

/// The text of a window of another program, whatever kind of control it is; none if it is busy.
std::optional<Text> textOf(HWND window);

/// The windows of a running program, found anew by each look().
class ProgramWindows {
 public:
  /// The forms serve for names, kinds and places alone. Borrows them.
  ProgramWindows(DWORD thread, std::vector<Form*> forms);

  /// Finds the windows anew: what was known of those that are gone is forgotten.
  void look();

  /// The window of a form or control; null if the form is not loaded, or the control has none.
  HWND windowOf(const Form& form) const;
  HWND windowOf(const Form& form, const Control& control) const;
  /// The open message box or input box; null if there is none.
  HWND box() const { return box_; }
  /// The visible form on top, of the enabled ones if there are any; null without one.
  Form* activeForm() const;
  const std::vector<Form*>& forms() const { return forms_; }

  /// True while some window of a visible form waits to be painted.
  bool paints() const;
  /// What the forms show, places left out; none if the program is too busy to tell.
  std::optional<scenario::Sight> sight() const;
  /// The same with places, for a program at rest: they take long to ask.
  scenario::Sight withPlaces(scenario::Sight sight) const;

 private:
  struct FormWindow {
    HWND window = nullptr;
    std::map<int, HWND> controls{};  ///< by their numbers
    bool whole = false;              ///< none will be added: the form has been shown
  };
  void add(HWND window);
  static BOOL CALLBACK addWindow(HWND window, LPARAM self);
  static BOOL CALLBACK addControl(HWND window, LPARAM controls);
  std::optional<scenario::SeenForm> sightOf(const Form& form) const;
  void addPlaces(scenario::SeenForm& seen) const;
  void lookForBlanks(scenario::SeenForm& seen) const;
  std::vector<std::size_t> blanksOf(const scenario::SeenForm& seen) const;

  DWORD thread_;
  std::vector<Form*> forms_;
  std::vector<HWND> order_;  ///< of the forms, the one on top first
  std::map<const Form*, FormWindow> windows_;
  HWND box_ = nullptr;
};

/// A property of a control as its window shows it, in the property's own type; none if the control
/// has no window, or nothing of the property shows.
std::optional<scenario::Json> shownProperty(const ProgramWindows& windows, const Form& form,
                                            const Control& control, std::string_view property);

/// Where a control's window is in what it lies in. `dropsDown`: the system gives it its height.
scenario::SeenPlace placeOf(HWND control, bool dropsDown);

/// Size of what lies within a window's frame, in pixels.
SIZE insideOf(HWND window);

/// True if a control that is visible can be seen: it is not empty, lies within its form and what is
/// between, and is not all covered by its neighbours; what takes the focus is covered nowhere.
bool inSight(HWND control, HWND form, bool takesFocus);

/// The middle of a window, as the screen counts.
POINT middleOf(HWND window);

}  // namespace zev::drive
