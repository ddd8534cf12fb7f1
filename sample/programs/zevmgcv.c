/* Conversion of colours for the encoders. */
#include "program.h"

SAMPLE_LIBRARY

/* The brightness, 16 to 235, of a colour of 8-bit parts. */
__declspec(dllexport) int WINAPI LumaFromRgb(int red, int green, int blue) {
  return (66 * red + 129 * green + 25 * blue + 128) / 256 + 16;
}

/* The nearest colour of 15 bits. */
__declspec(dllexport) int WINAPI Rgb15FromRgb(int red, int green, int blue) {
  return (red >> 3) << 10 | (green >> 3) << 5 | blue >> 3;
}
