#include "win32/shell_folders.h"

#include <algorithm>
#include <cstring>

#include "win32/ansi.h"
#include "win32/windows_api.h"
#include "win32/writable_path.h"
// The shell's functions come behind the system's.
#include <objbase.h>
#include <shlobj.h>
#undef SHGetPathFromIDList

namespace zev::win32 {
namespace {

GUID systemGuid(const Guid& identifier) {
  GUID guid{};
  static_assert(sizeof guid == sizeof identifier);
  std::memcpy(&guid, identifier.data(), sizeof guid);
  return guid;
}

Text textOf(const wchar_t* text) { return reinterpret_cast<const char16_t*>(text); }

}  // namespace

std::int32_t Win32ShellFolders::SHGetSpecialFolderLocation(WindowHandle window, std::int32_t csidl,
                                                           ItemIdList& list) {
  list = nullptr;
  const auto call =
      shell32_.find<decltype(::SHGetSpecialFolderLocation)>("SHGetSpecialFolderLocation");
  if (call == nullptr) return E_NOTIMPL;
  LPITEMIDLIST answer = nullptr;
  const HRESULT result = call(reinterpret_cast<HWND>(window), csidl, &answer);
  if (result == S_OK) list = answer;
  return result;
}

bool Win32ShellFolders::SHGetPathFromIDList(ItemIdList list, Text& buffer) {
  const auto call = shell32_.find<decltype(::SHGetPathFromIDListW)>("SHGetPathFromIDListW");
  wchar_t path[MAX_PATH] = {};
  const bool found =
      call != nullptr && list != nullptr && call(static_cast<LPCITEMIDLIST>(list), path) != FALSE;
  const std::string answer = toAnsi(writablePath(textOf(path)));
  if (!found || answer.size() >= MAX_PATH) return false;
  writeAnswer(buffer, answer);
  return true;
}

std::int32_t Win32ShellFolders::CLSIDFromString(TextView text, Guid& identifier) {
  const auto call = ole32_.find<decltype(::CLSIDFromString)>("CLSIDFromString");
  if (call == nullptr) return E_NOTIMPL;
  GUID guid{};
  const HRESULT result = call(wide(Text(beforeNul(text))), &guid);
  if (result == S_OK) std::memcpy(identifier.data(), &guid, sizeof guid);
  return result;
}

std::int32_t Win32ShellFolders::SHGetKnownFolderPath(const Guid& folder, std::uint32_t flags,
                                                     std::uintptr_t token, char16_t*& path) {
  path = nullptr;
  const auto call = shell32_.find<decltype(::SHGetKnownFolderPath)>("SHGetKnownFolderPath");
  if (call == nullptr) return E_NOTIMPL;
  wchar_t* answer = nullptr;
  const HRESULT result = call(systemGuid(folder), flags, reinterpret_cast<HANDLE>(token), &answer);
  if (result == S_OK) path = given(answer);
  return result;
}

/// The path itself, or its short form in memory of its own.
char16_t* Win32ShellFolders::given(wchar_t* path) {
  auto* const itself = reinterpret_cast<char16_t*>(path);
  const Text writable = writablePath(itself);
  const auto call = ole32_.find<decltype(::CoTaskMemAlloc)>("CoTaskMemAlloc");
  if (writable == itself || call == nullptr) return itself;
  const std::size_t units = writable.size() + 1;
  auto* const copy = static_cast<char16_t*>(call(units * sizeof(char16_t)));
  if (copy == nullptr) return itself;
  std::copy_n(writable.c_str(), units, copy);
  CoTaskMemFree(path);
  return copy;
}

std::int32_t Win32ShellFolders::lstrlenW(const char16_t* text) {
  return ::lstrlenW(reinterpret_cast<const wchar_t*>(text));
}

void Win32ShellFolders::CoTaskMemFree(void* memory) {
  const auto call = ole32_.find<decltype(::CoTaskMemFree)>("CoTaskMemFree");
  if (call != nullptr) call(memory);
}

}  // namespace zev::win32
