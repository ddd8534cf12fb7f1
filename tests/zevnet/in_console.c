/* in_console ORDERS PROGRAM [ARGUMENT...]: runs a program in a new console, with the streams that
   it has itself, and ends with its exit code. Each letter that is written to the file ORDERS is an
   order: c is Ctrl-C, b Ctrl-Break, x the end of the console. With "-" in place of the file the
   program has no streams at all. */
#include <stdio.h>
#include <string.h>
#include <windows.h>

static BOOL WINAPI stays(DWORD kind) { return kind == CTRL_C_EVENT; }

/* The words behind the first two, as they stand. */
static char* program_of(char* line) {
  for (int word = 0; word < 2; ++word) {
    const int quoted = *line == '"';
    line = strchr(line + quoted, quoted ? '"' : ' ') + quoted;
    line += strspn(line, " ");
  }
  return line;
}

/* Does in the program what the system does there: a new thread that calls the handlers. Wine has no
   other way to the events besides Ctrl-C. */
static void tell(HANDLE process, DWORD event) {
  const HMODULE library = GetModuleHandleA("kernelbase.dll");
  LPTHREAD_START_ROUTINE routine = NULL;
  const FARPROC found = GetProcAddress(library, "CtrlRoutine");
  memcpy(&routine, &found, sizeof routine);
  CreateRemoteThread(process, NULL, 0, routine, (void*)(ULONG_PTR)event, 0, NULL);
}

static void obey(char order, HANDLE process) {
  if (order == 'c') GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
  if (order == 'b') tell(process, CTRL_BREAK_EVENT);
  if (order == 'x') tell(process, CTRL_CLOSE_EVENT);
}

int main(int argc, char** argv) {
  const int ignores = argc > 1 && argv[1][0] == '!';
  STARTUPINFOA start = {.cb = sizeof start, .dwFlags = STARTF_USESTDHANDLES};
  PROCESS_INFORMATION process;
  DWORD status = 0, place = 0;
  if (argc < 3) return 2;
  if (strcmp(argv[1], "-") != 0) {
    start.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    start.hStdOutput = GetStdHandle(STD_OUTPUT_HANDLE);
    start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
  }
  FreeConsole();
  if (!AllocConsole()) return 3;
  SetConsoleCtrlHandler(ignores ? NULL : stays, TRUE);
  if (!CreateProcessA(NULL, program_of(GetCommandLineA()), NULL, NULL, TRUE, 0, NULL, NULL, &start,
                      &process)) {
    return 4;
  }
  while (WaitForSingleObject(process.hProcess, 20) == WAIT_TIMEOUT) {
    FILE* orders = fopen(argv[1] + ignores, "rb");
    if (orders == NULL) continue;
    fseek(orders, (long)place, SEEK_SET);
    for (int order = fgetc(orders); order != EOF; order = fgetc(orders), ++place) {
      obey((char)order, process.hProcess);
    }
    fclose(orders);
  }
  GetExitCodeProcess(process.hProcess, &status);
  return (int)status;
}
