/* Mixing of the sound that the computer plays with the microphone. */
#include "program.h"

SAMPLE_LIBRARY

/* Adds `count` samples of `played` to `recorded` and cuts what leaves 16 bits. */
__declspec(dllexport) void WINAPI MixLoopback(short* recorded, const short* played, int count) {
  for (int i = 0; i < count; ++i) {
    int value = recorded[i] + played[i];
    recorded[i] = (short)(value > 32767 ? 32767 : value < -32768 ? -32768 : value);
  }
}
