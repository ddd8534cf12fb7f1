// Tries one target with bytes that its coverage leads to. ZEV_TARGET names it.

#include <cstdio>
#include <cstdlib>

#include "fuzz/target.h"

namespace {

const zev::fuzz::Target& chosen() {
  const char* name = std::getenv("ZEV_TARGET");
  return zev::fuzz::target(name == nullptr ? "" : name);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const zev::fuzz::Target& target = chosen();
  try {
    target.run({data, std::min(size, target.longest)});
  } catch (const zev::fuzz::Broken& broken) {
    std::fprintf(stderr, "%s: %s\n", target.name, broken.what());
    std::abort();
  }
  return 0;
}
