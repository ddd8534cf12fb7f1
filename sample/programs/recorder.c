/* The main program. Without an option that it knows it ends at once. */
#include "note_start.h"
#include "program.h"

static void tell(const char* text) {
  MessageBoxA(NULL, text, PRODUCT_NAME, MB_OK | MB_ICONINFORMATION);
}

void entry(void) {
  noteStart();
  if (hasOption("/about")) tell("ZEV Screen Recorder 6\r\nVersion 6.0.21");
  if (hasOption("/help")) {
    tell("/filmworks\tshow the recorder\r\n/reeldesk\tshow the movie editor\r\n"
         "/about\tshow the version");
  }
  ExitProcess(0);
}
