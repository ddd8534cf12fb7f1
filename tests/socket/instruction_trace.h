#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace zev::socket_bench {

/// Whether executedOffsets can follow the processor here.
bool canFollowInstructions();

/// Runs an action step by step and tells which instructions within a block of code the processor
/// has executed meanwhile, as offsets in their order. Empty where it cannot follow.
std::vector<std::size_t> executedOffsets(const std::uint8_t* block, std::size_t size,
                                         const std::function<void()>& action);

}  // namespace zev::socket_bench
