// A library that is planted beside a program: it leaves a file that tells that it was loaded.
#include <windows.h>

BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID reserved) {
  (void)reserved;
  if (reason == DLL_PROCESS_ATTACH) {
    char path[MAX_PATH + 8];
    const DWORD length = GetModuleFileNameA(library, path, MAX_PATH);
    lstrcpyA(path + length, ".ran");
    CloseHandle(CreateFileA(path, GENERIC_WRITE, 0, NULL, CREATE_ALWAYS, 0, NULL));
  }
  return TRUE;
}
