/* Loudness of recorded sound. */
#include "program.h"

SAMPLE_LIBRARY

/* Multiplies `count` samples by `percent` / 100 and cuts what leaves 16 bits. */
__declspec(dllexport) void WINAPI AmplifySamples(short* samples, int count, int percent) {
  for (int i = 0; i < count; ++i) {
    int value = samples[i] * percent / 100;
    samples[i] = (short)(value > 32767 ? 32767 : value < -32768 ? -32768 : value);
  }
}
