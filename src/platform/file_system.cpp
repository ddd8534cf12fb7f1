#include "platform/file_system.h"

#include <algorithm>
#include <iterator>

namespace zev {
namespace {

constexpr TextView forbidden = u"<>:\"|?*\\/";
constexpr std::size_t longestName = 255;

/// Names of devices; with an extension, whatever it is, they name the device as well.
constexpr TextView devices[] = {
    u"CON",  u"PRN",  u"AUX",  u"NUL",  //
    u"COM1", u"COM2", u"COM3", u"COM4", u"COM5", u"COM6", u"COM7", u"COM8", u"COM9",
    u"LPT1", u"LPT2", u"LPT3", u"LPT4", u"LPT5", u"LPT6", u"LPT7", u"LPT8", u"LPT9",
};

bool isDeviceName(TextView name) {
  const TextView stem = rtrim(name.substr(0, name.find(u'.')));
  return std::any_of(std::begin(devices), std::end(devices),
                     [&](TextView device) { return equalText(stem, device); });
}

}  // namespace

bool validName(TextView name) {
  const bool clean = std::none_of(name.begin(), name.end(), [](char16_t unit) {
    return unit < u' ' || forbidden.find(unit) != TextView::npos;
  });
  return clean && !name.empty() && name.size() <= longestName && !isDeviceName(name);
}

}  // namespace zev
