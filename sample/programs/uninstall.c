/* The uninstallers. They leave everything in place and report success. */
#include "note_start.h"
#include "program.h"

void entry(void) {
  noteStart();
  if (hasOption("/about")) MessageBoxA(NULL, "Removes " PRODUCT_NAME ".", PRODUCT_NAME, MB_OK);
  ExitProcess(0);
}
