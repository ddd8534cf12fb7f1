#pragma once

#include <cstdint>

#include "localisation/phrases.h"
#include "runtime/form.h"
#include "state/forms.h"

namespace zev {

/// Puts the visible texts of a form's controls through `Translate`, in the order of its controls;
/// under English nothing changes. The form's own caption is not among them. 0, or -1 if a run-time
/// error ended the walk at some control.
std::int32_t LocaliseForm(Form& form, Phrases& phrases, std::int32_t gLanguage);

/// Puts the wizard form's texts back to English, from which alone they can be translated again.
/// Nothing happens while the table has no rows. Errors reach the caller.
void RestoreEnglishTexts(Form1& form, const Phrases& phrases);

}  // namespace zev
