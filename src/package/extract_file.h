#pragma once

#include <cstdint>
#include <span>

#include "localisation/phrases.h"
#include "platform/holds.h"
#include "state/program.h"

namespace zev {

/// Whether a file is held and has these bytes, or their beginning, and nothing else.
bool holdsNothingBut(const Hold& file, std::span<const std::uint8_t> bytes);

/// Whether a file is held and, if the packed one is held too, is all of what that expands to.
bool holdsExpanded(const Hold& file, const Hold& packed);

/// Copies one member out of the package: `size` bytes that end `tailOffset` bytes before the end of
/// the package in the file `source` (packageEnd), with one read and one write, to the new file
/// `destination`. Both paths are trimmed. False after the box of a failure; the file may then be
/// there, empty or partial. The work file is held in `program.workFile`, and is refused there if it
/// is not what was written.
bool ExtractFile(Program& program, Phrases& phrases, TextView source, TextView destination,
                 std::int32_t size, std::int32_t tailOffset);

}  // namespace zev
