/* Stands for the redistributable of the run-time library: there is nothing to lay down, as the
   programs of the sample product need no run-time library. */
#include "note_start.h"
#include "program.h"

void entry(void) {
  noteStart();
  ExitProcess(0);
}
