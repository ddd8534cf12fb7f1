#pragma once

#include "runtime/text.h"

namespace zev {

/// Folders of a user's profile, each behind the path of what it lies in.
namespace profile_folder {
inline constexpr TextView data = u"\\AppData";           ///< behind the profile
inline constexpr TextView local = u"\\AppData\\Local";   ///< behind the profile: a user's root
inline constexpr TextView maker = u"\\Tavorns";          ///< behind a user's root
inline constexpr TextView product = u"\\Tavorns\\ZEV5";  ///< behind a user's root: the value files
}  // namespace profile_folder

}  // namespace zev
