// Stands in for a program that somebody has put in another's place: its start leaves a mark.
#include <windows.h>

int WINAPI WinMain(HINSTANCE self, HINSTANCE before, LPSTR line, int show) {
  HANDLE mark =
      CreateFileA("C:\\Test\\started.txt", GENERIC_WRITE, 0, NULL, CREATE_ALWAYS, 0, NULL);
  (void)self, (void)before, (void)line, (void)show;
  CloseHandle(mark);
  return 0;
}
