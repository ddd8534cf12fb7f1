#include "system/product_settings.h"

#include "runtime/error.h"

namespace zev {
namespace {

constexpr std::int32_t absent = -99;

/// A setting that an upgrade from below a version gets.
struct Upgrade {
  TextView name;
  std::int32_t belowVersion;
  bool onlyIfAbsent;
  std::int32_t value;
};

constexpr Upgrade upgrades[] = {
    {u"AutoCodec", 16, true, 0},
    {u"InterfaceStyle", 17, false, 1},
};

/// A setting that every install writes, in this order, after the version.
struct Standard {
  TextView name;
  std::int32_t value;
  bool onlyIfZero;  ///< written only where it reads as 0, which an absent one does
};

constexpr Standard standards[] = {
    {u"IncCur", 1, false},
    {u"dwKFE", 15, true},
    {u"RecSnd", 1, false},
    {u"CapSpeed", 1, false},
};

}  // namespace

std::vector<TextView> ProductSettings::names() {
  std::vector<TextView> names = {setting::Dizin, setting::Version, setting::Language};
  for (const Upgrade& each : upgrades) names.push_back(each.name);
  for (const Standard& each : standards) names.push_back(each.name);
  return names;
}

template <typename Statement>
void ProductSettings::perform(Statement statement) {
  if (errors_ == Errors::Ignored) {
    ignoringErrors(statement);
  } else {
    statement();
  }
}

std::int32_t ProductSettings::read(TextView name, std::int32_t defaultNumber) {
  std::int32_t number = defaultNumber;
  perform([&] {
    number =
        registry_.GetRegDword(HKEY_LOCAL_MACHINE, settingsKey, name, defaultNumber, normalChoice);
  });
  return number;
}

void ProductSettings::set(TextView name, std::int32_t number) {
  perform(
      [&] { registry_.SetRegDword(HKEY_LOCAL_MACHINE, settingsKey, name, number, normalChoice); });
}

void ProductSettings::writeDirectory(TextView directory) {
  perform([&] {
    registry_.SetRegString(HKEY_LOCAL_MACHINE, settingsKey, setting::Dizin, directory,
                           normalChoice);
  });
}

void ProductSettings::upgrade() {
  const std::int32_t earlier = read(setting::Version, absent);
  if (earlier == absent) return;
  for (const Upgrade& each : upgrades) {
    if (earlier >= each.belowVersion) continue;
    if (each.onlyIfAbsent && read(each.name, absent) != absent) continue;
    set(each.name, each.value);
  }
}

void ProductSettings::write(std::int16_t version) {
  set(setting::Version, version);
  for (const Standard& each : standards) {
    if (!each.onlyIfZero || read(each.name, 0) == 0) set(each.name, each.value);
  }
}

void ProductSettings::writeLanguage(std::int32_t listIndex) {
  if (listIndex > -1) set(setting::Language, listIndex);
}

}  // namespace zev
