#pragma once

#include "runtime/controls.h"
#include "runtime/file_lists.h"
#include "win32/windows_api.h"

namespace zev::win32 {

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
