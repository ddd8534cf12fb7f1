// A program that loads each library of its command line by the bare name: what is planted beside it
// runs.
#include <windows.h>

int WINAPI WinMain(HINSTANCE instance, HINSTANCE previous, LPSTR commandLine, int show) {
  (void)instance, (void)previous, (void)show;
  for (char* name = commandLine; *name != '\0';) {
    char* end = name;
    while (*end != '\0' && *end != ' ') ++end;
    const char last = *end;
    *end = '\0';
    LoadLibraryA(name);
    name = last == '\0' ? end : end + 1;
  }
  return 0;
}
