#pragma once

#include "runtime/text.h"

namespace zev {

/// The maker's addresses. Each is part of a phrase of the catalogue, key and translations alike.
inline constexpr TextView downloadAddress = u"http://www.tavorns.example/zev/";
inline constexpr TextView supportAddress = u"support@tavorns.example";

/// The phrases that end in an address.
inline constexpr TextView downloadRequestPhrase =
    u"Installation file is not complete. Please redownload the file from "
    u"http://www.tavorns.example/zev/";
inline constexpr TextView mailRequestPhrase =
    u"Please email this error message to support@tavorns.example";

static_assert(downloadRequestPhrase.ends_with(downloadAddress));
static_assert(mailRequestPhrase.ends_with(supportAddress));

}  // namespace zev
