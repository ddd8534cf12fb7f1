/* For tests: a program that is started with ZEV_NOTE_STARTS in its environment notes how, in the
   file of that name. */
#ifndef ZEV_SAMPLE_NOTE_START_H
#define ZEV_SAMPLE_NOTE_START_H

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#define LONGEST_NOTED 2048

static inline void addNoted(HANDLE file, const WCHAR* text) {
  static char bytes[3 * LONGEST_NOTED];
  DWORD written;
  int length = WideCharToMultiByte(CP_UTF8, 0, text, -1, bytes, sizeof bytes, NULL, NULL);
  if (length > 1) WriteFile(file, bytes, (DWORD)length - 1, &written, NULL);
}

/* A line of JSON would need its backslashes doubled: here what tells parts apart is the tabulator.
 */
static inline void noteStart(void) {
  static WCHAR name[LONGEST_NOTED];
  static WCHAR folder[LONGEST_NOTED];
  static STARTUPINFOW start;
  WCHAR style[2] = L"?";
  HANDLE file;
  DWORD length = GetEnvironmentVariableW(L"ZEV_NOTE_STARTS", name, LONGEST_NOTED);
  if (length == 0 || length >= LONGEST_NOTED) return;
  GetStartupInfoW(&start);
  if (start.dwFlags & STARTF_USESHOWWINDOW) style[0] = (WCHAR)(L'0' + start.wShowWindow % 10);
  GetCurrentDirectoryW(LONGEST_NOTED, folder);
  file = CreateFileW(name, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, NULL, OPEN_ALWAYS,
                     FILE_ATTRIBUTE_NORMAL, NULL);
  if (file == INVALID_HANDLE_VALUE) return;
  addNoted(file, style);
  addNoted(file, L"\t");
  addNoted(file, folder);
  addNoted(file, L"\t");
  addNoted(file, GetCommandLineW());
  addNoted(file, L"\n");
  CloseHandle(file);
}

#endif
