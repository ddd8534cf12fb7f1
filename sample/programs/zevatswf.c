/* Arithmetic of the Flash export. */
#include "program.h"

SAMPLE_LIBRARY

/* A pixel is 20 twips. */
__declspec(dllexport) int WINAPI SwfTwipsFromPixels(int pixels) { return pixels * 20; }

/* The number of bits that hold `value` with its sign. */
__declspec(dllexport) int WINAPI SwfSignedBits(int value) {
  unsigned magnitude = value < 0 ? ~(unsigned)value : (unsigned)value;
  int bits = 1;
  for (; magnitude != 0; magnitude >>= 1) ++bits;
  return bits;
}
