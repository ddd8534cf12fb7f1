// Holds a file open without sharing until it is ended: holds_file PATH
#include <stdio.h>
#include <windows.h>

int main(int count, char** arguments) {
  if (count != 2) return 2;
  HANDLE file = CreateFileA(arguments[1], GENERIC_READ, 0, NULL, OPEN_EXISTING, 0, NULL);
  puts(file == INVALID_HANDLE_VALUE ? "refused" : "held");
  fflush(stdout);
  if (file == INVALID_HANDLE_VALUE) return 1;
  Sleep(INFINITE);
  return 0;
}
