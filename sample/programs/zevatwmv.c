/* Arithmetic of the Windows Media export. */
#include "program.h"

SAMPLE_LIBRARY

/* Bits a second for a picture of the given size, `quality` from 1 to 100. */
__declspec(dllexport) int WINAPI WmvBitRate(int width, int height, int framesPerSecond,
                                            int quality) {
  return (int)((long long)width * height * framesPerSecond * quality / 1000);
}
