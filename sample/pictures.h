#pragma once

#include <string_view>

#include "sample/bytes.h"
#include "sample/drawing.h"

namespace zev::sample {

/// A mouse cursor of 32 by 32 pixels in 256 colours: the arrow in a disc of `tint`, its hot spot at
/// the arrow's tip. The picture uses the first colours of the palette; `spareColours` replaces the
/// start of the unused rest and is cut where the palette ends.
Bytes makeCursor(Colour tint, const Bytes& spareColours);

/// The recorder's palette of 256 colours as a RIFF palette: the 20 colours of the system and 236
/// that a recording of a desktop needs. `note` is kept behind it, in a chunk of its own.
Bytes makePalette(const Bytes& note);

/// The question mark of the help button as a JPEG file with `comment` in its comment segment of at
/// most 65,533 bytes. Throws std::runtime_error if the encoder fails.
Bytes makeQuestionMark(const Bytes& comment);

}  // namespace zev::sample
