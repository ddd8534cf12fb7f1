#pragma once

#include <string>
#include <vector>

#include "sample/bytes.h"

namespace zev::sample {

/// One file inside an archive or a data pack.
struct Entry {
  std::string name;
  Bytes bytes;
};

/// A ZIP archive of `entries` with `comment` (at most 65,535 bytes). All entries bear the same
/// fixed date. Throws std::runtime_error if the archiver fails.
Bytes makeArchive(const std::vector<Entry>& entries, const Bytes& comment);

}  // namespace zev::sample
