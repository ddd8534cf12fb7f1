#pragma once

#include <cstdint>

#include "runtime/controls.h"
#include "runtime/form.h"
#include "win32/windows_api.h"

namespace zev::win32 {

inline constexpr int twipsPerInch = 1440;
inline constexpr int usualDpi = 96;

/// Twips in pixels of a screen of `dpi` dots an inch.
inline int pixels(std::int32_t twips, int dpi) { return MulDiv(twips, dpi, twipsPerInch); }

/// The place of a control within its container, in pixels.
RECT pixelPlace(const Control& control, int dpi);

/// Dots an inch of the whole system, and of the screen on which a window lies where the system
/// tells them apart.
int systemDpi();
int windowDpi(HWND window);

/// The text of a window.
Text windowText(HWND window);

/// The number of a control's window: its place among the controls of its form, counted from here.
/// Who drives the program from outside finds the controls by it.
inline constexpr int firstControlId = 1000;

/// Makes the window of a control; null for a kind that has none of its own (a line, a bar), which
/// its container draws.
HWND makeControlWindow(const Control& control, HWND parent, int id);

/// The height of a control's window in pixels where it differs from the control's: a list that
/// drops down counts its list.
int windowHeight(const Control& control, const RECT& place, int dpi);

/// Shows the caption, text, state or entry that a control has now.
void showContent(const Control& control, HWND window);

/// The program's icon, `size` pixels wide and high; null if the image has none. The system owns it.
HICON programIcon(int size);

/// Draws a control whose window leaves drawing to its form: a picture, a text on a progress bar.
void drawControl(const Form& form, const Control& control, const DRAWITEMSTRUCT& item, int dpi,
                 HFONT font);

/// The text by which a control is found and measured: caption, text or chosen entry.
Text contentText(const Control& control);

/// The access key in a caption, in lower case; 0 if it has none.
char16_t accessKey(TextView caption);

/// Registers the class of the windows that hold other controls: they hand what they hear to the
/// form.
void registerContainerClass();
inline constexpr const wchar_t* containerClass = L"ZEV.Container";

/// Shows the entries of a list and the chosen one.
void showList(const ComboBox& combo, HWND window);

/// Shows the drives of the machine with their labels, and the chosen one: "c: [LABEL]".
void showDrives(const DriveListBox& drives, HWND window);

/// The drive, as letter and colon, that a place of that list stands for.
Text driveAt(HWND window, int place);

/// Shows the opened folder, what it lies in, and its own folders.
void showFolders(const DirListBox& folders, HWND window);

/// Full path of the folder that a place of that list stands for.
Text folderAt(const DirListBox& folders, HWND window, int place);

}  // namespace zev::win32
