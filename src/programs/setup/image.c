// Stand-in for the image of the Windows program: it says that it is none.

#include <windows.h>

void WINAPI entry(void) {
  MessageBoxW(NULL, L"This package is for the simulated machine; it has no Windows program yet.",
              L"ZEV Screen Recorder", MB_OK | MB_ICONINFORMATION);
  ExitProcess(1);
}
