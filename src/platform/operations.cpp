#include "platform/operations.h"

#include <algorithm>
#include <iterator>

#include "runtime/text.h"

namespace zev {
namespace {

constexpr std::string_view names[] = {
    "Arguments",
    "BringWindowToTop",
    "Close",
    "CloseHandle",
    "CLSIDFromString",
    "CoTaskMemFree",
    "CreateObject",
    "CreateShortcut",
    "Description",
    "Dir",
    "DoEvents",
    "Eof",
    "FileLen",
    "FreeFile",
    "Get",
    "GetAttr",
    "GetCurrentProcess",
    "GetDiskFreeSpaceA",
    "GetDriveTypeA",
    "GetLogicalDrives",
    "GetNativeSystemInfo",
    "GetProductInfo",
    "GetSystemDefaultUILanguage",
    "GetSystemDirectoryA",
    "GetSystemInfo",
    "GetSystemMetrics",
    "GetTempPathA",
    "GetUserNameA",
    "GetVersionExA",
    "GetWindow",
    "GetWindowsDirectoryA",
    "GetWindowTextA",
    "GetWindowTextLengthA",
    "IconLocation",
    "Input",
    "InputBox",
    "IsWow64Process",
    "Kill",
    "LinkExecute",
    "LinkItem",
    "LinkMode",
    "LinkTimeout",
    "LinkTopic",
    "LOF",
    "LookupAccountNameA",
    "lstrlenW",
    "LZClose",
    "LZCopy",
    "LZOpenFileA",
    "MkDir",
    "MsgBox",
    "Open",
    "OpenBinary",
    "OpenBinaryWrite",
    "OpenInput",
    "OpenOutput",
    "OpenProcess",
    "ownFolder",
    "ownName",
    "Print",
    "Put",
    "PutText",
    "RegCloseKey",
    "RegCreateKeyA",
    "RegDeleteKeyA",
    "RegDeleteValueA",
    "RegEnumKeyA",
    "RegOpenKeyA",
    "RegQueryValueExA",
    "RegSetValueExA",
    "RmDir",
    "Save",
    "SetFileAttributesA",
    "SetForegroundWindow",
    "Shell",
    "ShellExecuteA",
    "SHGetKnownFolderPath",
    "SHGetPathFromIDList",
    "SHGetSpecialFolderLocation",
    "Sleep",
    "SpecialFolders",
    "TargetPath",
    "volumeLabel",
    "WaitForSingleObject",
    "WindowStyle",
    "WorkingDirectory",
};

}  // namespace

std::span<const std::string_view> operationNames() { return names; }

std::optional<std::string_view> findOperation(std::string_view written) {
  const Text wanted = fromUtf8(written);
  const auto found = std::find_if(std::begin(names), std::end(names), [&](std::string_view each) {
    return equalText(fromUtf8(each), wanted);
  });
  return found == std::end(names) ? std::nullopt : std::optional(*found);
}

}  // namespace zev
