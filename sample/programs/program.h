/* What the programs and libraries of the sample product share. They are linked without a run-time
   library, so that an image of a few thousand bytes is a whole program. */
#ifndef ZEV_SAMPLE_PROGRAM_H
#define ZEV_SAMPLE_PROGRAM_H

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#define PRODUCT_NAME "ZEV Screen Recorder 6"

/* True if the command line holds `option`, which begins with a slash, as a word of its own. */
static inline int hasOption(const char* option) {
  const char* line = GetCommandLineA();
  for (; *line != 0; ++line) {
    int i = 0;
    while (option[i] != 0 && line[i] == option[i]) ++i;
    if (option[i] == 0 && (line[i] == 0 || line[i] == ' ')) return 1;
  }
  return 0;
}

/* Defines the entry of a library, which keeps no state, and the version that it reports. */
#define SAMPLE_LIBRARY                                                 \
  BOOL WINAPI DllMain(HINSTANCE self, DWORD reason, LPVOID reserved) { \
    (void)reserved;                                                    \
    if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(self); \
    return TRUE;                                                       \
  }                                                                    \
  __declspec(dllexport) int WINAPI LibraryVersion(void) { return 0x0600; }

#endif
