#include "win32/hardening.h"

#include "win32/windows_api.h"

namespace zev::win32 {
namespace {

constexpr DWORD searchSystemFolderAlone = 0x800;  // LOAD_LIBRARY_SEARCH_SYSTEM32

template <typename Function>
Function newerCall(const char* name) {
  return reinterpret_cast<Function>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), name)));
}

/// True if the system can keep all searches to its own folder, and does so from now on.
bool restrictSearch() {
  using SetDefaultDllDirectories = BOOL(WINAPI*)(DWORD);
  const auto limit = newerCall<SetDefaultDllDirectories>("SetDefaultDllDirectories");
  return limit != nullptr && limit(searchSystemFolderAlone) != 0;
}

/// The manifest names the version of the controls, and the system takes it from the store of its
/// versions. Systems without that store have no themes either.
void loadThemedControls(bool restricted) {
  if (newerCall<void*>("CreateActCtxW") == nullptr) return;
  const DWORD search = restricted ? searchSystemFolderAlone : 0;
  if (restricted) {  // what the controls and the themes look for by its bare name
    LoadLibraryExW(L"msimg32.dll", nullptr, search);
    LoadLibraryExW(L"uxtheme.dll", nullptr, search);
  }
  LoadLibraryExW(L"comctl32.dll", nullptr, search);
}

}  // namespace

void harden() {
  HeapSetInformation(nullptr, HeapEnableTerminationOnCorruption, nullptr, 0);
  SetDllDirectoryW(L"");
  const bool restricted = restrictSearch();
  loadThemedControls(restricted);
}

}  // namespace zev::win32
