#pragma once

#include <string_view>

#include "sample/bytes.h"

namespace zev::sample {

/// The sound called `installedName` ("Key1216m.wav") as a WAV file of `samples` samples, mono,
/// 8 or 16 bits. The sound keeps its shape at every length; `take` varies its noise.
/// Throws std::invalid_argument for an unknown name, std::runtime_error if the encoder fails.
Bytes makeSound(std::string_view installedName, std::size_t samples, unsigned take);

}  // namespace zev::sample
