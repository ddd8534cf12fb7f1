#include "win32/machine.h"

#include "win32/system_library.h"
#include "win32/windows_api.h"

namespace zev::win32 {

/// Asking a drive without a medium fails with an error instead of a box of the system's.
Machine::Machine() { ::SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX); }

Platform Machine::platform(Application& application, Dialogs& dialogs) {
  return {application, dialogs,  files_,          holds_,     registry_,     lz_,
          system_,     drives_,  windows_,        processes_, shellFolders_, shortcuts_,
          dde_,        sockets_, messageWindows_, kernel_};
}

// ---- what the process lets in

namespace {

constexpr DWORD searchSystemFolderAlone = 0x800;  // LOAD_LIBRARY_SEARCH_SYSTEM32

/// From a service pack of Windows XP on.
void endOnBrokenHeap() {
  SystemLibrary kernel32("kernel32.dll");
  const auto set = kernel32.find<decltype(::HeapSetInformation)>("HeapSetInformation");
  if (set != nullptr) set(nullptr, HeapEnableTerminationOnCorruption, nullptr, 0);
}

/// From a service pack of Windows XP on.
void leaveOutCurrentFolder() {
  SystemLibrary kernel32("kernel32.dll");
  const auto set = kernel32.find<decltype(::SetDllDirectoryW)>("SetDllDirectoryW");
  if (set != nullptr) set(L"");
}

/// True if the system can keep all searches to its own folder, and does so from now on.
bool restrictSearch() {
  SystemLibrary kernel32("kernel32.dll");
  const auto limit = kernel32.find<BOOL WINAPI(DWORD)>("SetDefaultDllDirectories");
  return limit != nullptr && limit(searchSystemFolderAlone) != 0;
}

/// The manifest names the version of the controls, and the system takes it from the store of its
/// versions. Systems without that store have no themes either.
void loadThemedControls(bool restricted) {
  SystemLibrary kernel32("kernel32.dll");
  if (kernel32.find<void()>("CreateActCtxW") == nullptr) return;
  const DWORD search = restricted ? searchSystemFolderAlone : 0;
  if (restricted) {  // what the controls and the themes look for by its bare name
    LoadLibraryExW(L"msimg32.dll", nullptr, search);
    LoadLibraryExW(L"uxtheme.dll", nullptr, search);
  }
  LoadLibraryExW(L"comctl32.dll", nullptr, search);
}

}  // namespace

void harden() {
  endOnBrokenHeap();
  leaveOutCurrentFolder();
  const bool restricted = restrictSearch();
  loadThemedControls(restricted);
}

}  // namespace zev::win32
