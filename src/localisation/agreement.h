#pragma once

#include <cstdint>
#include <span>

#include "runtime/text.h"

namespace zev {

/// The paragraphs of the end-user agreement in a language; none for a number without one.
std::span<const TextView> agreementParagraphs(std::int32_t languageNumber);

/// The whole agreement: its paragraphs with a line end between two of them.
Text agreementText(std::int32_t languageNumber);

}  // namespace zev
