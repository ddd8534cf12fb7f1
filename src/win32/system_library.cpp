#include "win32/system_library.h"

#include <string>

#include "win32/windows_api.h"

namespace zev::win32 {
namespace {

std::wstring systemPath(const char* name) {
  wchar_t folder[MAX_PATH] = {};
  const UINT length = GetSystemDirectoryW(folder, MAX_PATH);
  std::wstring path(folder, length < MAX_PATH ? length : 0);
  path += L'\\';
  while (*name != '\0') path += static_cast<wchar_t>(*name++);
  return path;
}

}  // namespace

/// The libraries that it needs are searched for in its folder too, not in the program's.
SystemLibrary::Address SystemLibrary::address(const char* name) {
  if (module_ == nullptr) {
    module_ = LoadLibraryExW(systemPath(name_).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  }
  if (module_ == nullptr) return nullptr;
  return reinterpret_cast<Address>(GetProcAddress(static_cast<HMODULE>(module_), name));
}

}  // namespace zev::win32
