#pragma once

#include <cstdint>

#include "runtime/text.h"
#include "state/languages.h"

namespace zev {

/// The class of machine on which the product's values live in files of the user's profile.
inline constexpr std::int32_t profileClass = 4;

/// What start-up discovers and the whole program reads. One struct a program, handed by reference.
struct Globals {
  std::uint8_t gCurrentPage = 0;  ///< the page now shown: 1, 2, 4 or 5; there is no page 3

  FixedText<256> gInstallDir;  ///< the install directory; readers trim it
  FixedText<256> gTempDir;     ///< the temporary folder of the system, without trailing backslash
  Text gWinDir;                ///< the Windows directory, without trailing backslash
  Text gProductExe;            ///< base name of the main executable

  std::int32_t gOSClass = 0;      ///< 0 to 4; 4 is `profileClass`
  std::uint8_t gVersionNT62 = 0;  ///< 1 on NT 6.2, where the options count
  std::uint8_t gOptRedist = 0;    ///< the Install Options: 0 or 1
  std::uint8_t gOptStartMenu = 0;
  std::uint8_t gOptDesktop = 0;

  Text gUserDir;      ///< primary per-user root; the four are empty unless the class is 4
  Text gUserData;     ///< its product folder, where the value files are
  Text gUserDirAlt;   ///< second per-user root
  Text gUserDataAlt;  ///< its product folder

  std::int32_t gLanguage = 0;  ///< of `language`; other numbers can be read from the machine

  Text gInstalledDir;                ///< directory of the installed current generation
  Text gStartMenuDir;                ///< folder of the Start Menu shortcuts
  std::int16_t gProductVersion = 0;  ///< what the run stores as the version
};

}  // namespace zev
