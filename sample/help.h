#pragma once

#include "sample/bytes.h"

namespace zev::sample {

/// The help file, compiled HTML, without the time of its compilation. `unused` is kept in the
/// content section behind the last page, where no entry of the directory refers to it.
/// Throws std::runtime_error if the embedded file is not the expected kind of help file.
Bytes makeHelp(const Bytes& unused);

}  // namespace zev::sample
