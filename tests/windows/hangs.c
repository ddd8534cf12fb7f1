/* A program that does not end. */
#include <windows.h>

int WINAPI WinMain(HINSTANCE self, HINSTANCE before, LPSTR line, int show) {
  (void)self, (void)before, (void)line, (void)show;
  for (;;) Sleep(1000);
}
