/* Tells whether the settings of the current user are there: with /check the exit code is 0 if they
   are and 2 if not, otherwise it is 0. */
#include "note_start.h"
#include "program.h"

void entry(void) {
  HKEY key;
  UINT result = 0;
  noteStart();
  if (hasOption("/check")) {
    if (RegOpenKeyA(HKEY_CURRENT_USER, "Software\\Tavorns\\ZEV5", &key) == ERROR_SUCCESS) {
      RegCloseKey(key);
    } else {
      result = 2;
    }
  }
  ExitProcess(result);
}
