/* Stands for the program that shows a folder: it notes what it was started with, and ends. */
#include "../../sample/programs/note_start.h"

int WINAPI WinMain(HINSTANCE self, HINSTANCE before, LPSTR line, int show) {
  (void)self, (void)before, (void)line, (void)show;
  noteStart();
  return 0;
}
