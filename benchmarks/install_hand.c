/* Somebody in front of the setup program, up to the click on Install.
 *
 *     install_hand.exe
 *
 * Goes through the pages of the program that runs, tells "ready" where a click on Install begins the
 * run, waits for a line, clicks and ends: what the run costs is then the run's alone. */
#include <stdio.h>
#include <windows.h>

typedef struct {
  const wchar_t* caption;
  HWND found;
} Search;

static BOOL CALLBACK look(HWND window, LPARAM given) {
  Search* search = (Search*)given;
  wchar_t caption[64] = L"";
  GetWindowTextW(window, caption, 64);
  if (lstrcmpW(caption, search->caption) != 0 || !IsWindowVisible(window) || !IsWindowEnabled(window))
    return TRUE;
  search->found = window;
  return FALSE;
}

/* The button of that caption, once it can be clicked. */
static HWND button(const wchar_t* caption) {
  Search search = {caption, NULL};
  for (int tries = 0; tries < 600 && search.found == NULL; ++tries) {
    const HWND form = FindWindowW(L"ZEV.Form1", NULL);
    if (form != NULL) EnumChildWindows(form, look, (LPARAM)&search);
    if (search.found == NULL) Sleep(50);
  }
  if (search.found == NULL) {
    printf("no button %ls\n", caption);
    ExitProcess(1);
  }
  return search.found;
}

static void click(const wchar_t* caption) {
  PostMessageW(button(caption), BM_CLICK, 0, 0);
}

int main(void) {
  char line[8];
  click(L"Next >>");
  click(L"Yes I Agree.");
  click(L"Next >>");
  button(L"Install");
  Sleep(500); /* until the page is painted */
  puts("ready");
  fflush(stdout);
  if (fgets(line, sizeof line, stdin) == NULL) return 1;
  click(L"Install");
  return 0;
}
