#pragma once

#include <cstddef>

#include "simulated/network/name_table.h"

namespace zev::simulated {

/// Bytes that a host record takes with all that it points to.
std::size_t hostRecordSize(const Found& found);
/// Writes it to `buffer`, which has that many bytes: the record, the empty list of aliases, the
/// list of addresses, the addresses, the name.
void writeHostRecord(const Found& found, void* buffer);

}  // namespace zev::simulated
