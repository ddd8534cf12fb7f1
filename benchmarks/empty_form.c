/* A window without anything on it, which stays until it is ended: what any program with a form costs. */
#include <windows.h>

int WINAPI WinMain(HINSTANCE program, HINSTANCE before, LPSTR line, int show) {
  WNDCLASSW description = {0};
  MSG message;
  (void)before, (void)line;
  description.lpfnWndProc = DefWindowProcW;
  description.hInstance = program;
  description.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
  description.lpszClassName = L"EmptyForm";
  RegisterClassW(&description);
  CreateWindowExW(0, L"EmptyForm", L"Empty", WS_CAPTION | WS_SYSMENU | WS_VISIBLE, 300, 300, 430, 310,
                  NULL, NULL, program, NULL);
  (void)show;
  while (GetMessageW(&message, NULL, 0, 0) > 0) DispatchMessageW(&message);
  return 0;
}
