/* The path of the mouse between two positions. */
#include "program.h"

SAMPLE_LIBRARY

/* The coordinate at `step` of `steps` on the way from `from` to `to`. */
__declspec(dllexport) int WINAPI PointerAt(int from, int to, int step, int steps) {
  return steps <= 0 ? to : from + (int)((long long)(to - from) * step / steps);
}
