// Which settings a run reads, and what stands for one that is absent.

#include "system/product_settings.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "simulated/put_text.h"
#include "system/watched_machine.h"

namespace zev {
namespace {

using test::Row;
using test::Table;

using Numbers = std::map<std::string, std::int32_t>;

/// A machine of one class with settings on record, on which a run writes its own.
class MachineWithSettings : public WatchedMachine {
 public:
  MachineWithSettings(bool profiles, const Numbers& stored) : profiles_(profiles) {
    if (profiles) {
      globals().gOSClass = profileClass;
      globals().gUserData = folder;
      machine.disks().putDirectory(folder);
    }
    for (const auto& [name, number] : stored) store(name, number);
    ProductSettings settings(*registry, ProductSettings::Errors::Raised);
    settings.writeDirectory(install);
    settings.upgrade();
    settings.write(productVersion);
    settings.writeLanguage(0);
  }

  /// The settings that were looked up in the registry, once each, in the order of the first time.
  std::vector<std::string> looked() const {
    std::vector<std::string> names;
    for (const simulated::Event& event : transcript.of("call")) {
      if (event.at("name") != "RegQueryValueExA") continue;
      const std::string name = event.at("arguments").at(1).text();
      if (names.empty() || names.back() != name) names.push_back(name);
    }
    return names;
  }

  /// The settings that the run wrote, in its order.
  std::vector<std::string> written() const {
    std::vector<std::string> names;
    for (const simulated::Event& event : transcript.of("call")) {
      const auto& arguments = event.at("arguments");
      if (event.at("name") == "RegSetValueExA") names.push_back(arguments.at(1).text());
      if (event.at("name") == "OpenOutput") names.push_back(arguments.at(1).text());
    }
    return names;
  }

  /// The settings as they are now.
  std::map<std::string, std::string> now() {
    std::map<std::string, std::string> found;
    for (const char* name : {"Version", "AutoCodec", "InterfaceStyle", "dwKFE", "IncCur"}) {
      found[name] = profiles_ ? textOf(join(folder, u"\\", fromUtf8(name))) : number(name);
    }
    return found;
  }

  static constexpr TextView folder = u"C:\\Users\\bob\\AppData\\Local\\Tavorns\\ZEV5";

 private:
  void store(const std::string& name, std::int32_t number) {
    if (profiles_) {
      putText(machine.disks(), join(folder, u"\\", fromUtf8(name)),
              std::to_string(number) + "\r\n");
      return;
    }
    machine.registry().setValue(
        HKEY_LOCAL_MACHINE, settingsKey, fromUtf8(name),
        simulated::RegistryValue::ofNumber(static_cast<std::uint32_t>(number)));
  }
  std::string number(const char* name) {
    const auto value = machine.registry().value(HKEY_LOCAL_MACHINE, settingsKey, fromUtf8(name));
    return value ? std::to_string(value->number()) : "(none)";
  }

  bool profiles_;
};

/// The other settings as they are where each row makes a difference: an earlier version that gets
/// all that upgrades give.
Numbers othersOf(const Row& row) {
  return row.is("value", "Version") ? Numbers{} : Numbers{{"Version", 15}};
}

TEST(SettingsReads, AreThoseOfTheirTableInItsOrder) {
  std::vector<std::string> expected;
  for (const Row& row : Table::read("run_settings_reads.tsv")) {
    expected.push_back(row.word("value"));
  }
  EXPECT_EQ(MachineWithSettings(false, {{"Version", 15}}).looked(), expected);
}

/// The default on record counts as nothing on record; the next number does not.
TEST(SettingsReads, TakeTheDefaultOfTheirTableForAnAbsentOne) {
  for (const Row& row : Table::read("run_settings_reads.tsv")) {
    for (const bool profiles : {false, true}) {
      Numbers stored = othersOf(row);
      const std::string& name = row.word("value");
      MachineWithSettings absent(profiles, stored);
      stored[name] = row.number("default");
      MachineWithSettings asDefault(profiles, stored);
      stored[name] = row.number("default") + 1;
      MachineWithSettings present(profiles, stored);
      EXPECT_EQ(asDefault.now(), absent.now()) << row.where() << " " << profiles;
      EXPECT_EQ(asDefault.written(), absent.written()) << row.where() << " " << profiles;
      EXPECT_NE(present.written(), absent.written()) << row.where() << " " << profiles;
    }
  }
}

}  // namespace
}  // namespace zev
