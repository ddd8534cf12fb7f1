#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zev::benchmarks {

using Bytes = std::vector<std::uint8_t>;

/// Packed files of one kind.
struct Corpus {
  std::string name;
  std::vector<Bytes> packed;
  std::uint64_t expandedSize = 0;  ///< of all files together, in bytes
};

/// The whole of a file; empty if it cannot be read.
Bytes loadFile(const std::string& path);

/// The length that the header of a packed file declares, in bytes.
std::uint32_t declaredLength(const Bytes& packed);

/// All packed files in `folder`, as they are.
Corpus packedFilesIn(const std::string& name, const std::string& folder);

/// A few dozen programs, texts and media files of this machine, packed by the program mscompress.
/// Kinds of which the machine has nothing, and all of them where mscompress is not installed, are
/// left out.
std::vector<Corpus> packFilesOfThisMachine();

}  // namespace zev::benchmarks
