// Shows the two windows by which the product counts as running, and lets no message box come up in any
// program, until it is ended: rundll32 refuses_boxes.dll,refuse FILE
// The file is made when all that is so.
#include <windows.h>

static HINSTANCE self;

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* reserved) {
  (void)reason, (void)reserved;
  self = module;
  return TRUE;
}

static LRESULT CALLBACK mayBeMade(int code, WPARAM window, LPARAM details) {
  char name[16] = "";
  if (code == HCBT_CREATEWND) GetClassNameA((HWND)window, name, sizeof name);
  if (lstrcmpA(name, "#32770") == 0) return 1;
  return CallNextHookEx(NULL, code, window, details);
}

__declspec(dllexport) void CALLBACK refuse(HWND owner, HINSTANCE module, char* file, int show) {
  (void)owner, (void)module, (void)show;
  CreateWindowA("STATIC", "ZEV Screen Recorder", WS_OVERLAPPED, 0, 0, 9, 9, 0, 0, self, 0);
  CreateWindowA("STATIC", "Screen Recorder Settings", WS_OVERLAPPED, 0, 0, 9, 9, 0, 0, self, 0);
  if (SetWindowsHookExA(WH_CBT, mayBeMade, self, 0) == NULL) return;
  CloseHandle(CreateFileA(file, GENERIC_WRITE, 0, NULL, CREATE_ALWAYS, 0, NULL));
  MSG message;
  while (GetMessageA(&message, NULL, 0, 0) > 0) DispatchMessageA(&message);
}
