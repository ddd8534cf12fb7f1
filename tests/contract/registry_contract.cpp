// What the registry calls of every binding do.

#include <gmock/gmock.h>

#include <vector>

#include "contract/bench.h"

namespace zev::contract {
namespace {

using namespace system_error;

class RegistryContract : public ContractTest {
 protected:
  RegistryApi& registry() { return platform().registry; }
  Text below(TextView name) { return join(bench().key(), u"\\", name); }

  RegistryKey created(const Text& key) {
    RegistryKey handle = 0;
    EXPECT_EQ(registry().RegCreateKeyA(HKEY_CURRENT_USER, key, handle), success);
    EXPECT_NE(handle, 0u);
    return handle;
  }

  SystemError openError(const Text& key) {
    RegistryKey handle = 0;
    const SystemError error = registry().RegOpenKeyA(HKEY_CURRENT_USER, key, handle);
    if (error == success) registry().RegCloseKey(handle);
    EXPECT_EQ(handle != 0, error == success);
    return error;
  }

  std::vector<Text> subkeys(RegistryKey handle) {
    std::vector<Text> names;
    Text buffer = blanks(255);
    for (std::uint32_t index = 0; registry().RegEnumKeyA(handle, index, buffer, 255) == success;
         ++index) {
      names.emplace_back(beforeNul(buffer));
    }
    return names;
  }
};

TEST_F(RegistryContract, CreatesAKeyWithItsParents) {
  EXPECT_EQ(openError(bench().key()), fileNotFound);
  registry().RegCloseKey(created(below(u"A\\B")));
  EXPECT_EQ(openError(bench().key()), success);
  EXPECT_EQ(openError(below(u"a\\b")), success);
}

TEST_F(RegistryContract, AHandleThatIsNoneFailsByItself) {
  std::uint32_t type = 0;
  std::uint32_t size = 0;
  std::int32_t number = 0;
  EXPECT_EQ(registry().RegQueryValueExA(0, u"x", type, size), invalidHandle);
  EXPECT_EQ(registry().RegQueryValueExA(0, u"x", type, number, size), invalidHandle);
  EXPECT_EQ(registry().RegSetValueExA(0, u"x", 1, u"y", 1), invalidHandle);
  EXPECT_EQ(registry().RegDeleteValueA(0, u"x"), invalidHandle);
  EXPECT_EQ(registry().RegCloseKey(0), invalidHandle);
}

TEST_F(RegistryContract, TextIsStoredWithANulOfTheSystemsOwn) {
  const RegistryKey key = created(bench().key());
  ASSERT_EQ(registry().RegSetValueExA(key, u"Name", registry_type::text, u"abcdef", 4), success);
  std::uint32_t type = 0;
  std::uint32_t size = 0;
  ASSERT_EQ(registry().RegQueryValueExA(key, u"NAME", type, size), success);
  EXPECT_EQ(type, registry_type::text);
  EXPECT_EQ(size, 5u);
  Text buffer = blanks(8);
  size = 8;
  ASSERT_EQ(registry().RegQueryValueExA(key, u"name", type, buffer, size), success);
  EXPECT_EQ(buffer, Text(u"abcd\0   ", 8));
  EXPECT_EQ(size, 5u);
  registry().RegCloseKey(key);
}

TEST_F(RegistryContract, NoTextIsANulAlone) {
  const RegistryKey key = created(bench().key());
  ASSERT_EQ(registry().RegSetValueExA(key, u"Empty", registry_type::text, u"", 0), success);
  std::uint32_t type = 0;
  std::uint32_t size = 0;
  ASSERT_EQ(registry().RegQueryValueExA(key, u"Empty", type, size), success);
  EXPECT_EQ(size, 1u);
  registry().RegCloseKey(key);
}

TEST_F(RegistryContract, ABufferTooSmallGetsNothingButTheSize) {
  const RegistryKey key = created(bench().key());
  ASSERT_EQ(registry().RegSetValueExA(key, u"x", registry_type::text, u"abcdef", 6), success);
  std::uint32_t type = 0;
  std::uint32_t size = 3;
  Text buffer = blanks(3);
  EXPECT_EQ(registry().RegQueryValueExA(key, u"x", type, buffer, size), moreData);
  EXPECT_EQ(size, 7u);
  std::int32_t number = 5;
  size = 4;
  EXPECT_EQ(registry().RegQueryValueExA(key, u"x", type, number, size), moreData);
  EXPECT_EQ(type, registry_type::text);
  registry().RegCloseKey(key);
}

TEST_F(RegistryContract, NumbersHaveFourBytes) {
  const RegistryKey key = created(bench().key());
  ASSERT_EQ(registry().RegSetValueExA(key, u"n", registry_type::number, -2), success);
  std::uint32_t type = 0;
  std::uint32_t size = 4;
  std::int32_t number = 0;
  ASSERT_EQ(registry().RegQueryValueExA(key, u"n", type, number, size), success);
  EXPECT_EQ(type, registry_type::number);
  EXPECT_EQ(number, -2);
  EXPECT_EQ(size, 4u);
  registry().RegCloseKey(key);
}

TEST_F(RegistryContract, TheEmptyNameIsTheDefaultValue) {
  const RegistryKey key = created(bench().key());
  std::uint32_t type = 0;
  std::uint32_t size = 0;
  EXPECT_EQ(registry().RegQueryValueExA(key, u"", type, size), fileNotFound);
  ASSERT_EQ(registry().RegSetValueExA(key, u"", registry_type::text, u"d", 1), success);
  EXPECT_EQ(registry().RegQueryValueExA(key, u"", type, size), success);
  EXPECT_EQ(size, 2u);
  EXPECT_EQ(registry().RegDeleteValueA(key, u""), success);
  EXPECT_EQ(registry().RegDeleteValueA(key, u""), fileNotFound);
  registry().RegCloseKey(key);
}

TEST_F(RegistryContract, ListsSubkeysOneByOne) {
  const RegistryKey key = created(bench().key());
  EXPECT_THAT(subkeys(key), testing::IsEmpty());
  for (const TextView name : {u"beta", u"Alpha"}) registry().RegCloseKey(created(below(name)));
  EXPECT_THAT(subkeys(key), testing::UnorderedElementsAre(u"Alpha", u"beta"));
  Text small = blanks(3);
  EXPECT_EQ(registry().RegEnumKeyA(key, 0, small, 3), moreData);
  EXPECT_EQ(registry().RegEnumKeyA(key, 2, small, 3), noMoreItems);
  registry().RegCloseKey(key);
}

TEST_F(RegistryContract, DeletesAKeyOnlyIfItIsThere) {
  registry().RegCloseKey(created(below(u"A")));
  EXPECT_EQ(registry().RegDeleteKeyA(HKEY_CURRENT_USER, below(u"A")), success);
  EXPECT_EQ(registry().RegDeleteKeyA(HKEY_CURRENT_USER, below(u"A")), fileNotFound);
  EXPECT_EQ(openError(below(u"A")), fileNotFound);
}

}  // namespace
}  // namespace zev::contract
