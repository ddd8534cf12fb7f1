#pragma once

#include <memory>

#include "lz_corpus.h"

namespace zev::benchmarks {

/// The SZDD decompressor of libmspack, from memory to memory.
class MspackExpander {
 public:
  MspackExpander();
  ~MspackExpander();

  /// Expands `packed` into `expanded`, whose old contents go. False if the library reports an
  /// error.
  bool expand(const Bytes& packed, Bytes& expanded);

 private:
  struct Memory;
  std::unique_ptr<Memory> memory_;
};

}  // namespace zev::benchmarks
