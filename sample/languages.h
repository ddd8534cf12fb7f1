#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "sample/bytes.h"

namespace zev::sample {

enum class Language { kGerman, kFrench, kSpanish };

/// The sections of a language file in code page 1252: first the head, then one section for each
/// command of the recorder and the editor with its menu text, hint, question and messages. A
/// section ends in an empty line.
std::vector<std::string> languageSections(Language language);

}  // namespace zev::sample
