#include "sample/embedded.h"

#include <stdexcept>
#include <string>

namespace {

/// A row of the table that the build writes; the last row has no name.
struct EmbeddedRow {
  const char* name;
  const std::uint8_t* begin;
  const std::uint8_t* end;
};

}  // namespace

extern "C" const EmbeddedRow zevSampleEmbedded[];

namespace zev::sample {

std::span<const std::uint8_t> embeddedFile(std::string_view name) {
  for (const EmbeddedRow* row = zevSampleEmbedded; row->name != nullptr; ++row) {
    if (name == row->name) return {row->begin, row->end};
  }
  throw std::invalid_argument("no embedded file " + std::string(name));
}

}  // namespace zev::sample
