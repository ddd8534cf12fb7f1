#pragma once

#include <string>

#include "scenario/json_reader.h"

namespace zev::scenario {

/// A document as people read it: what has room on a line of 100 columns stands on one, of a list of
/// plain values as many as have room, of all else one element or member.
std::string layOut(const Json& document);

}  // namespace zev::scenario
