#pragma once

#include "runtime/text.h"
#include "win32/windows_api.h"

namespace zev::win32 {

/// The form font, MS Sans Serif 8, in two sets of letters: that of the system, and the Turkish one
/// for texts that need it.
class FormFonts {
 public:
  /// Makes both fonts for a screen of that many dots an inch. They are freed with this object, so
  /// no window may have them any more then.
  explicit FormFonts(int dpi);
  ~FormFonts();
  FormFonts(const FormFonts&) = delete;
  FormFonts& operator=(const FormFonts&) = delete;

  /// The font for a text: the Turkish one if the text has letters that the other lacks.
  HFONT fontFor(TextView text) const;

 private:
  HFONT usual_;
  HFONT turkish_;
};

/// Width of a text in a font, in pixels.
int textWidth(HFONT font, TextView text);

}  // namespace zev::win32
