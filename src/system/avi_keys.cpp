#include "system/avi_keys.h"

#include <algorithm>

#include "runtime/error.h"

namespace zev {
namespace {

/// A key under HKEY_CLASSES_ROOT and its default value.
struct AviKey {
  TextView key;
  TextView expected;
};

constexpr AviKey aviKeys[] = {
    {u"AVIFile\\Compressors\\vids", u"{00020001-0000-0000-C000-000000000046}"},
    {u"AVIFile\\Compressors\\auds", u"{0002000F-0000-0000-C000-000000000046}"},
    {u"AVIFile\\Extensions\\WAV", u"{00020003-0000-0000-C000-000000000046}"},
    {u"AVIFile\\Extensions\\AVI", u"{00020000-0000-0000-C000-000000000046}"},
    {u"AVIFile\\Extensions\\AU", u"{00020003-0000-0000-C000-000000000046}"},
    {u"AVIFile\\Extensions\\BMP", u"{00020006-0000-0000-C000-000000000046}"},
    {u"AVIFile\\Extensions\\DIB", u"{00020006-0000-0000-C000-000000000046}"},
    {u"AVIFile\\RIFFHandlers\\AVI", u"{00020000-0000-0000-C000-000000000046}"},
    {u"AVIFile\\RIFFHandlers\\WAVE", u"{00020003-0000-0000-C000-000000000046}"},
    {u"AVIFile\\CLSID", u"{00022602-0000-0000-C000-000000000046}"},
};

}  // namespace

bool CheckAviRegistry(Registry& registry) {
  return std::all_of(std::begin(aviKeys), std::end(aviKeys), [&](const AviKey& each) {
    const Text found =
        registry.GetRegString(HKEY_CLASSES_ROOT, each.key, defaultValue, u"", ForceRegistry);
    return trim(found) == each.expected;
  });
}

bool RepairAviRegistry(Registry& registry) {
  return ignoringErrors([&] {
    for (const AviKey& each : aviKeys) {
      registry.SetRegString(HKEY_CLASSES_ROOT, each.key, defaultValue, each.expected,
                            ForceRegistry);
    }
  });
}

}  // namespace zev
