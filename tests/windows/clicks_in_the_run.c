// Plays a person who presses Cancel while the run is on:
//
//   clicks_in_the_run PROGRAM yes|no GO [FILE]
//
// Starts the setup program, goes to the page of the directory and presses Install. Cancel is posted
// together with Install, or, if a file is named, as soon as that file is there. The box that opens
// is told on standard output and stays until the file GO is there; then it gets the answer. If the
// run ends in Finish, that is told and pressed. The end of the program is told last.
#include <stdio.h>
#include <string.h>
#include <windows.h>

static const DWORD pause = 1;                // between two looks, in milliseconds
static const DWORD longestWait = 60 * 1000;  // for anything, in milliseconds

static const char* const wayToTheDirectory[] = {"Next >>", "Yes I Agree.", "Next >>"};

static PROCESS_INFORMATION program;

struct Search {
  const char* text;
  HWND found;
};

static void giveUp(const char* missing) {
  printf("in time there was no %s\n", missing);
  fflush(stdout);
  TerminateProcess(program.hProcess, 1);
  ExitProcess(1);
}

static int lives(void) { return WaitForSingleObject(program.hProcess, 0) != WAIT_OBJECT_0; }

// Buttons that can be pressed are known by their texts.
static BOOL CALLBACK isSought(HWND window, LPARAM parameter) {
  struct Search* search = (struct Search*)parameter;
  char text[64];
  GetWindowTextA(window, text, sizeof text);
  if (strcmp(text, search->text) != 0 || !IsWindowVisible(window) || !IsWindowEnabled(window)) {
    return TRUE;
  }
  search->found = window;
  return FALSE;
}

static HWND button(const char* text) {
  struct Search search = {text, NULL};
  HWND form = FindWindowA("ZEV.Form1", NULL);
  if (form != NULL) EnumChildWindows(form, isSought, (LPARAM)&search);
  return search.found;
}

static HWND waitForButton(const char* text) {
  const DWORD begin = GetTickCount();
  HWND found;
  while ((found = button(text)) == NULL) {
    if (!lives() || GetTickCount() - begin > longestWait) giveUp(text);
    Sleep(pause);
  }
  return found;
}

static void waitForFile(const char* path) {
  const DWORD begin = GetTickCount();
  while (GetFileAttributesA(path) == INVALID_FILE_ATTRIBUTES) {
    if (GetTickCount() - begin > longestWait) giveUp(path);
    Sleep(pause);
  }
}

static void press(HWND window) { PostMessageA(window, BM_CLICK, 0, 0); }

// Without a file the program sees neither click before both are posted.
static void pressBoth(HWND first, HWND second, const char* file) {
  if (file == NULL) SuspendThread(program.hThread);
  press(first);
  if (file != NULL) waitForFile(file);
  press(second);
  if (file == NULL) ResumeThread(program.hThread);
}

static void start(const char* path) {
  STARTUPINFOA startup = {sizeof startup};
  if (!CreateProcessA(path, NULL, NULL, NULL, FALSE, 0, NULL, NULL, &startup, &program)) {
    giveUp(path);
  }
}

static BOOL CALLBACK isBox(HWND window, LPARAM found) {
  char name[16];
  GetClassNameA(window, name, sizeof name);
  if (strcmp(name, "#32770") != 0 || !IsWindowVisible(window)) return TRUE;
  *(HWND*)found = window;
  return FALSE;
}

static HWND waitForBox(void) {
  const DWORD begin = GetTickCount();
  HWND box = NULL;
  while (EnumThreadWindows(program.dwThreadId, isBox, (LPARAM)&box), box == NULL) {
    if (!lives() || GetTickCount() - begin > longestWait) giveUp("box");
    Sleep(pause);
  }
  return box;
}

static BOOL CALLBACK tellPart(HWND window, LPARAM unused) {
  char text[256];
  GetWindowTextA(window, text, sizeof text);
  if (text[0] != '\0' && IsWindowVisible(window)) printf("|%s", text);
  return TRUE;
}

static void answerBox(const char* answer, const char* go) {
  HWND box = waitForBox();
  char title[64];
  GetWindowTextA(box, title, sizeof title);
  printf("box|%s", title);
  EnumChildWindows(box, tellPart, 0);
  printf("\n");
  fflush(stdout);
  waitForFile(go);
  PostMessageA(box, WM_COMMAND, strcmp(answer, "yes") == 0 ? IDYES : IDNO, 0);
}

int main(int count, char** arguments) {
  if (count < 4) return 2;
  start(arguments[1]);
  for (int step = 0; step < 3; ++step) press(waitForButton(wayToTheDirectory[step]));
  HWND install = waitForButton("Install");
  HWND cancel = waitForButton("Cancel");
  pressBoth(install, cancel, count > 4 ? arguments[4] : NULL);
  answerBox(arguments[2], arguments[3]);
  if (strcmp(arguments[2], "no") == 0) {
    press(waitForButton("Finish"));
    puts("finish");
  }
  if (WaitForSingleObject(program.hProcess, longestWait) != WAIT_OBJECT_0) giveUp("end");
  puts("ended");
  return 0;
}
