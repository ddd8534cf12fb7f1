#include "win32/file_list_windows.h"

#include <algorithm>
#include <vector>

#include "win32/form_metrics.h"

namespace zev::win32 {
namespace {

constexpr int letters = 26;
constexpr std::size_t driveLength = 2;
constexpr std::size_t labelSize = 64;
constexpr TextView levelIndent = u"  ";

WPARAM asPlace(std::size_t place) { return static_cast<WPARAM>(place); }

LPARAM asText(const Text& text) { return reinterpret_cast<LPARAM>(text.c_str()); }

// ---- drives

Text labelOf(const Text& drive) {
  wchar_t label[labelSize] = {};
  const Text root = join(drive, u"\\");
  if (!GetVolumeInformationW(wide(root), label, labelSize, nullptr, nullptr, nullptr, nullptr, 0)) {
    return {};
  }
  return Text(label, label + wcslen(label));
}

bool listed(const Text& drive) {
  const Text root = join(drive, u"\\");
  return GetDriveTypeW(wide(root)) >= DRIVE_REMOVABLE;
}

std::vector<Text> listedDrives() {
  std::vector<Text> drives;
  const DWORD present = GetLogicalDrives();
  for (int place = 0; place < letters; ++place) {
    const Text drive{static_cast<char16_t>(u'a' + place), u':'};
    if ((present >> place & 1) != 0 && listed(drive)) drives.push_back(drive);
  }
  return drives;
}

/// A drive that waits for its medium is not asked for a label.
Text entryOf(const Text& drive) {
  const Text root = join(drive, u"\\");
  const Text label = GetDriveTypeW(wide(root)) == DRIVE_FIXED ? labelOf(drive) : Text();
  return label.empty() ? drive : join(drive, u" [", label, u"]");
}

// ---- folders

/// The opened folder's levels, from the root down.
std::vector<Text> levelsOf(const Text& path) {
  std::vector<Text> levels;
  std::size_t end = std::min(path.find(u'\\'), path.size());
  levels.push_back(path.substr(0, end + 1));
  while (end + 1 < path.size()) {
    const std::size_t start = end + 1;
    end = std::min(path.find(u'\\', start), path.size());
    levels.push_back(path.substr(start, end - start));
  }
  return levels;
}

bool shown(const WIN32_FIND_DATAA& entry) {
  const std::string name = entry.cFileName;
  const DWORD hidden = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
  return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
         (entry.dwFileAttributes & hidden) == 0 && name != "." && name != ".." &&
         name.find('?') == std::string::npos;  // a name that the code page cannot write
}

std::vector<Text> foldersIn(const Text& path) {
  std::vector<Text> names;
  WIN32_FIND_DATAA entry{};
  const std::string pattern = toAnsi(join(withoutTrailing(path, u'\\'), u"\\*"));
  const HANDLE search = FindFirstFileA(pattern.c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) return names;
  do {
    if (shown(entry)) names.push_back(fromAnsi(entry.cFileName));
  } while (FindNextFileA(search, &entry));
  FindClose(search);
  std::sort(names.begin(), names.end(), [](const Text& first, const Text& second) {
    return upperCase(first) < upperCase(second);
  });
  return names;
}

Text indented(std::size_t level, const Text& name) {
  Text line;
  for (std::size_t each = 0; each < level; ++each) line += levelIndent;
  return line + name;
}

}  // namespace

void showList(const ComboBox& combo, HWND window) {
  SendMessageW(window, CB_RESETCONTENT, 0, 0);
  for (std::int32_t place = 0; place < combo.ListCount(); ++place) {
    SendMessageW(window, CB_ADDSTRING, 0, asText(combo.List(place)));
  }
  SendMessageW(window, CB_SETCURSEL, static_cast<WPARAM>(combo.ListIndex()), 0);
}

void showDrives(const DriveListBox& drives, HWND window) {
  SendMessageW(window, CB_RESETCONTENT, 0, 0);
  const std::vector<Text> present = listedDrives();
  for (const Text& drive : present) SendMessageW(window, CB_ADDSTRING, 0, asText(entryOf(drive)));
  const auto chosen = std::find(present.begin(), present.end(), drives.Drive());
  const bool known = chosen != present.end();
  SendMessageW(
      window, CB_SETCURSEL,
      known ? asPlace(static_cast<std::size_t>(chosen - present.begin())) : static_cast<WPARAM>(-1),
      0);
}

Text driveAt(HWND window, int place) {
  const LRESULT length = SendMessageW(window, CB_GETLBTEXTLEN, static_cast<WPARAM>(place), 0);
  if (length == CB_ERR) return {};
  std::wstring entry(static_cast<std::size_t>(length) + 1, L'\0');
  SendMessageW(window, CB_GETLBTEXT, static_cast<WPARAM>(place),
               reinterpret_cast<LPARAM>(entry.data()));
  return Text(entry.begin(), entry.begin() + driveLength);
}

void showFolders(const DirListBox& folders, HWND window) {
  SendMessageW(window, WM_SETREDRAW, FALSE, 0);
  SendMessageW(window, LB_RESETCONTENT, 0, 0);
  std::size_t level = 0;
  if (!folders.Path().empty()) {
    for (const Text& name : levelsOf(folders.Path())) {
      SendMessageW(window, LB_ADDSTRING, 0, asText(indented(level++, name)));
    }
    SendMessageW(window, LB_SETCURSEL, asPlace(level - 1), 0);
    for (const Text& name : foldersIn(folders.Path())) {
      SendMessageW(window, LB_ADDSTRING, 0, asText(indented(level, name)));
    }
  }
  SendMessageW(window, WM_SETREDRAW, TRUE, 0);
  InvalidateRect(window, nullptr, TRUE);
}

Text folderAt(const DirListBox& folders, HWND window, int place) {
  const std::vector<Text> levels = levelsOf(folders.Path());
  Text path = levels.front();
  for (std::size_t level = 1; level < levels.size() && level <= static_cast<std::size_t>(place);
       ++level) {
    path = join(withoutTrailing(path, u'\\'), u"\\", levels[level]);
  }
  if (static_cast<std::size_t>(place) < levels.size()) return path;
  const LRESULT length = SendMessageW(window, LB_GETTEXTLEN, static_cast<WPARAM>(place), 0);
  if (length == LB_ERR) return path;
  std::wstring entry(static_cast<std::size_t>(length) + 1, L'\0');
  SendMessageW(window, LB_GETTEXT, static_cast<WPARAM>(place),
               reinterpret_cast<LPARAM>(entry.data()));
  const std::size_t indent = levels.size() * levelIndent.size();
  return join(withoutTrailing(path, u'\\'), u"\\",
              Text(entry.begin() + static_cast<std::ptrdiff_t>(indent), entry.end() - 1));
}

}  // namespace zev::win32
