// Expands packed files in memory, each a number of times, for instruments that count what a program
// does:
//
//   cmake --preset release && cmake --build build/release --target lz_expand_once
//   build/release/benchmarks/lz_expand_once times file...
//
// The number of bytes that one round expands goes to the standard output.
// benchmarks/instructions.sh counts instructions with it.

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "lz/expand.h"
#include "lz/memory_stream.h"
#include "lz_corpus.h"

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: lz_expand_once times file...\n");
    return 2;
  }
  const long times = std::strtol(argv[1], nullptr, 10);
  std::uint64_t total = 0;
  for (int i = 2; i < argc; ++i) {
    const zev::benchmarks::Bytes packed = zev::benchmarks::loadFile(argv[i]);
    zev::benchmarks::Bytes expanded;
    expanded.reserve(zev::benchmarks::declaredLength(packed));
    total += zev::benchmarks::declaredLength(packed);
    for (long round = 0; round < times; ++round) {
      expanded.clear();
      zev::lz::MemorySource source(packed);
      zev::lz::MemorySink sink(expanded);
      if (zev::lz::expand(source, sink) < 0) {
        std::fprintf(stderr, "cannot expand %s\n", argv[i]);
        return 1;
      }
    }
  }
  std::printf("%llu\n", static_cast<unsigned long long>(total));
  return 0;
}
