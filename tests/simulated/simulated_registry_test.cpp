#include <gmock/gmock.h>

#include "simulated/bench.h"

namespace zev::simulated {
namespace {

using namespace system_error;

class SimulatedRegistryTest : public MachineTest {
 protected:
  RegistryApi& api() { return platform().registry; }

  RegistryKey opened(RegistryKey hive, TextView key) {
    RegistryKey handle = 0;
    EXPECT_EQ(api().RegOpenKeyA(hive, key, handle), success) << toUtf8(key);
    return handle;
  }
  SystemError createError(RegistryKey hive, TextView key) {
    RegistryKey handle = 0;
    const SystemError error = api().RegCreateKeyA(hive, key, handle);
    EXPECT_EQ(handle != 0, error == success);
    return error;
  }
  SystemError setError(RegistryKey key, TextView name, TextView text) {
    return api().RegSetValueExA(key, name, 1, text, static_cast<std::uint32_t>(text.size()));
  }
};

TEST_F(SimulatedRegistryTest, ClassesAreAKeyOfTheMachine) {
  const RegistryKey key = opened(HKEY_CLASSES_ROOT, u"AVIFile\\CLSID");
  EXPECT_EQ(machine.registry().value(HKEY_LOCAL_MACHINE, u"software\\classes\\avifile\\clsid", u""),
            RegistryValue::ofText(u"{00022602-0000-0000-C000-000000000046}"));
  EXPECT_EQ(setError(key, u"", u"x"), success);
  EXPECT_EQ(machine.registry().value(HKEY_CLASSES_ROOT, u"AVIFile\\CLSID", u"")->text(), u"x");
}

TEST_F(SimulatedRegistryTest, SubkeysAreListedSorted) {
  for (const TextView name : {u"b", u"A", u"c"}) {
    machine.registry().createKey(HKEY_CURRENT_USER, join(u"K\\", name));
  }
  const RegistryKey key = opened(HKEY_CURRENT_USER, u"K");
  Text names;
  Text buffer = blanks(255);
  for (std::uint32_t index = 0; api().RegEnumKeyA(key, index, buffer, 255) == success; ++index) {
    names += beforeNul(buffer);
  }
  EXPECT_EQ(names, u"Abc");
}

TEST_F(SimulatedRegistryTest, DeniedKeysRefuseWritesAndLetReadersIn) {
  machine.registry().setValue(HKEY_LOCAL_MACHINE, u"Software\\K", u"v", RegistryValue::ofNumber(1));
  machine.registry().deny(HKEY_LOCAL_MACHINE, u"software\\k");
  const RegistryKey key = opened(HKEY_LOCAL_MACHINE, u"Software\\K");
  EXPECT_EQ(setError(key, u"x", u"y"), accessDenied);
  EXPECT_EQ(api().RegDeleteValueA(key, u"v"), accessDenied);
  EXPECT_EQ(createError(HKEY_LOCAL_MACHINE, u"Software\\K\\Sub"), accessDenied);
  EXPECT_EQ(createError(HKEY_LOCAL_MACHINE, u"Software\\K"), success);
  EXPECT_EQ(api().RegDeleteKeyA(HKEY_LOCAL_MACHINE, u"Software\\K"), accessDenied);
  EXPECT_EQ(createError(HKEY_LOCAL_MACHINE, u"Software\\Kin"), success);
  machine.registry().deny(HKEY_LOCAL_MACHINE, u"Software\\K", false);
  EXPECT_EQ(setError(key, u"x", u"y"), success);
}

TEST_F(SimulatedRegistryTest, AKeyCanBeDeniedBeforeItIsThere) {
  machine.registry().deny(HKEY_CLASSES_ROOT, u".zrd");
  EXPECT_EQ(createError(HKEY_CLASSES_ROOT, u".zrd"), accessDenied);
  EXPECT_EQ(createError(HKEY_LOCAL_MACHINE, u"Software\\Classes\\.zrd\\x"), accessDenied);
  machine.registry().allowAll(HKEY_LOCAL_MACHINE);
  EXPECT_EQ(createError(HKEY_CLASSES_ROOT, u".zrd"), success);
}

TEST_F(SimulatedRegistryTest, KeysWithSubkeysAreDeletedOnTheOldSystemsOnly) {
  machine.registry().createKey(HKEY_CURRENT_USER, u"K\\Sub");
  EXPECT_EQ(api().RegDeleteKeyA(HKEY_CURRENT_USER, u"K"), accessDenied);
  machine.settings().system.version.platform = 1;
  EXPECT_EQ(api().RegDeleteKeyA(HKEY_CURRENT_USER, u"K"), success);
  EXPECT_EQ(machine.registry().find(HKEY_CURRENT_USER, u"K"), nullptr);
}

TEST_F(SimulatedRegistryTest, AHandleOfADeletedKeyIsOfNoUse) {
  machine.registry().createKey(HKEY_CURRENT_USER, u"K");
  const RegistryKey key = opened(HKEY_CURRENT_USER, u"K");
  machine.registry().removeKey(HKEY_CURRENT_USER, u"K");
  EXPECT_EQ(setError(key, u"x", u"y"), 1018u);
  EXPECT_EQ(api().RegCloseKey(key), success);
}

TEST_F(SimulatedRegistryTest, ValuesOfOtherTypesAreSeenAsTheyAre) {
  machine.registry().setValue(HKEY_CURRENT_USER, u"K", u"b",
                              RegistryValue::ofBytes(3, {1, 2, 3}, 1252));
  machine.registry().setValue(HKEY_CURRENT_USER, u"K", u"open",
                              RegistryValue::ofBytes(1, {'a', 'b'}, 1252));
  const RegistryKey key = opened(HKEY_CURRENT_USER, u"K");
  std::uint32_t type = 0;
  std::uint32_t size = 4;
  std::int32_t number = 0x7F000000;
  EXPECT_EQ(api().RegQueryValueExA(key, u"b", type, number, size), success);
  EXPECT_EQ(type, 3u);
  EXPECT_EQ(size, 3u);
  EXPECT_EQ(number, 0x7F030201);
  Text buffer = blanks(4);
  size = 4;
  EXPECT_EQ(api().RegQueryValueExA(key, u"open", type, buffer, size), success);
  EXPECT_EQ(buffer, u"ab  ");
  EXPECT_EQ(size, 2u);
}

TEST_F(SimulatedRegistryTest, TextsPassThroughTheCodePage) {
  machine.registry().createKey(HKEY_CURRENT_USER, u"K");
  const RegistryKey key = opened(HKEY_CURRENT_USER, u"K");
  EXPECT_EQ(setError(key, u"v\u015F", u"\u00FC\u015F"), success);
  EXPECT_EQ(machine.registry().value(HKEY_CURRENT_USER, u"K", u"v?")->text(), u"\u00FC?");
}

TEST_F(SimulatedRegistryTest, BadKeyNamesAreRefused) {
  EXPECT_EQ(createError(HKEY_CURRENT_USER, u"\\K"), 161u);
  EXPECT_EQ(createError(HKEY_CURRENT_USER, Text(256, u'k')), invalidParameter);
  EXPECT_EQ(createError(HKEY_CURRENT_USER, Text(255, u'k')), success);
  EXPECT_EQ(createError(HKEY_CURRENT_USER, u"a\\" + Text(255, u'k')), success);
  EXPECT_EQ(createError(HKEY_CURRENT_USER, u"a\\" + Text(256, u'k')), invalidParameter);
  EXPECT_EQ(createError(HKEY_CURRENT_USER, u"K\\"), success);
  EXPECT_NE(machine.registry().find(HKEY_CURRENT_USER, u"K"), nullptr);
}

TEST_F(SimulatedRegistryTest, OpenKeysAreCounted) {
  machine.registry().createKey(HKEY_CURRENT_USER, u"K");
  const RegistryKey key = opened(HKEY_CURRENT_USER, u"K");
  EXPECT_EQ(machine.openHandles().keys, 1u);
  EXPECT_EQ(api().RegCloseKey(key), success);
  EXPECT_EQ(api().RegCloseKey(key), invalidHandle);
  EXPECT_EQ(machine.openHandles().keys, 0u);
}

TEST_F(SimulatedRegistryTest, HivesAreKnownByTheirNames) {
  EXPECT_EQ(hiveNamed(u"hkey_local_machine"), HKEY_LOCAL_MACHINE);
  EXPECT_EQ(hiveNamed(u"HKCR"), HKEY_CLASSES_ROOT);
  EXPECT_EQ(hiveNamed(u"HKEY_USERS"), std::nullopt);
  EXPECT_THROW(machine.registry().createKey(7, u"K"), std::invalid_argument);
  EXPECT_EQ(machine.registry().find(7, u"K"), nullptr);
}

}  // namespace
}  // namespace zev::simulated
