// Takes away the Program Manager that Wine's desktop answers for: closes the windows that answer
// when somebody calls for a DDE server. Exit code 0 if it answered before and no longer does.
#include <stdio.h>
#include <windows.h>
// The DDE management library comes behind the system's header.
#include <ddeml.h>

static const char* const serverClass = "WineDdeServerName";

static HDDEDATA CALLBACK ignore(UINT type, UINT format, HCONV conversation, HSZ first, HSZ second,
                                HDDEDATA data, ULONG_PTR one, ULONG_PTR other) {
  return NULL;
}

static int answers(DWORD instance) {
  HSZ name = DdeCreateStringHandleA(instance, "progman", CP_WINANSI);
  HCONV conversation = DdeConnect(instance, name, name, NULL);
  if (conversation != NULL) DdeDisconnect(conversation);
  DdeFreeStringHandle(instance, name);
  return conversation != NULL;
}

int main(void) {
  DWORD instance = 0;
  DdeInitializeA(&instance, ignore, APPCMD_CLIENTONLY, 0);
  const int before = answers(instance);
  HWND window;
  while ((window = FindWindowA(serverClass, NULL)) != NULL) SendMessageA(window, WM_CLOSE, 0, 0);
  const int after = answers(instance);
  printf("answered %s and %s\n", before ? "before" : "never", after ? "still" : "no more");
  DdeUninitialize(instance);
  return before && !after ? 0 : 1;
}
