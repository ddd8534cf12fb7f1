/* A form of the program's size with its icon and manifest and nothing on it, which stays until it is
 * ended: what any program with a form of today's look costs. Linked with the program's resources. */
#include <windows.h>

int WINAPI WinMain(HINSTANCE program, HINSTANCE before, LPSTR line, int show) {
  WNDCLASSW description = {0};
  MSG message;
  (void)before, (void)line, (void)show;
  LoadLibraryW(L"comctl32.dll"); /* in the version that the manifest names */
  description.lpfnWndProc = DefWindowProcW;
  description.hInstance = program;
  description.hIcon = LoadIconW(program, MAKEINTRESOURCEW(1));
  description.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
  description.lpszClassName = L"EmptyForm";
  RegisterClassW(&description);
  CreateWindowExW(0, L"EmptyForm", L"Empty", WS_CAPTION | WS_SYSMENU | WS_VISIBLE, 300, 300, 436, 338,
                  NULL, NULL, program, NULL);
  while (GetMessageW(&message, NULL, 0, 0) > 0) DispatchMessageW(&message);
  return 0;
}
