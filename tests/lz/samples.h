#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "lz/streams.h"

namespace zev::lz {

struct Sample {
  std::string name;
  Bytes bytes;
};

/// Contents of many kinds and of lengths around every limit of the format.
std::vector<Sample> samples();

/// `length` bytes that mix noise, repeats at all distances and runs.
Bytes mixture(std::size_t length, std::uint32_t seed);

}  // namespace zev::lz
