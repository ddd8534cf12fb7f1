// Any bytes as a file: expanding it, in reads of a size that its last byte gives, comes to the same
// as the slow way. Run it with a folder of packed files as its corpus.

#include <cstdlib>

#include "lz/reference.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::uint8_t> file(data, size);
  const std::size_t step = size == 0 ? 1 : std::size_t{1} + file.back() * std::size_t{16};
  if (zev::lz::expandBySteps(file, step) != zev::lz::expandByRing(file)) std::abort();
  return 0;
}
