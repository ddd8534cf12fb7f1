// What people call the numbers of the interfaces: buttons of a box, and hives of the registry.

#include <algorithm>
#include <iterator>

#include "platform/dialogs.h"
#include "platform/registry_api.h"

namespace zev {
namespace {

/// By the button's number, from 0 on.
constexpr std::string_view answers[] = {"none",  "ok",     "cancel", "abort",
                                        "retry", "ignore", "yes",    "no"};

struct HiveRow {
  RegistryKey hive;
  TextView name;
  TextView brief;
};

constexpr HiveRow hives[] = {
    {HKEY_CLASSES_ROOT, u"HKEY_CLASSES_ROOT", u"HKCR"},
    {HKEY_CURRENT_USER, u"HKEY_CURRENT_USER", u"HKCU"},
    {HKEY_LOCAL_MACHINE, u"HKEY_LOCAL_MACHINE", u"HKLM"},
};

}  // namespace

std::string_view answerName(BoxAnswer answer) {
  const auto number = static_cast<std::size_t>(answer);
  return number < std::size(answers) ? answers[number] : answers[0];
}

std::optional<BoxAnswer> answerNamed(std::string_view word) {
  const auto found = std::find(std::next(std::begin(answers)), std::end(answers), word);
  if (found == std::end(answers)) return std::nullopt;
  return static_cast<BoxAnswer>(found - std::begin(answers));
}

TextView hiveName(RegistryKey hive) {
  for (const HiveRow& row : hives) {
    if (row.hive == hive) return row.name;
  }
  return {};
}

std::optional<RegistryKey> hiveNamed(TextView name) {
  for (const HiveRow& row : hives) {
    if (equalText(row.name, name) || equalText(row.brief, name)) return row.hive;
  }
  return std::nullopt;
}

}  // namespace zev
