/* Effects between two scenes. */
#include "program.h"

SAMPLE_LIBRARY

/* Mixes `count` bytes of two pictures; `alpha` from 0 (first) to 256 (second). */
__declspec(dllexport) void WINAPI CrossFade(const BYTE* first, const BYTE* second, BYTE* mixed,
                                            int count, int alpha) {
  for (int i = 0; i < count; ++i) {
    mixed[i] = (BYTE)((first[i] * (256 - alpha) + second[i] * alpha) / 256);
  }
}
