// What the calls of every binding do with letters of several bytes, and with those that the code
// page of the system does not have. Each binding runs all contracts on several code pages; which
// one it should be the environment says.

#include <gmock/gmock.h>

#include <cstdlib>

#include "contract/bench.h"

namespace zev::contract {
namespace {

/// Words for a code page: one that it can write, with letters that take as many bytes as letters of
/// the page can, and second bytes that are a backslash elsewhere; and one of which it has no
/// letter.
struct Words {
  std::uint32_t codePage;
  TextView inside;
  std::size_t bytes;  ///< of `inside`
  TextView outside;   ///< empty for a page that has every letter
};

// clang-format off
constexpr Words words[] = {
    {1252,  u"\u00DCbung",                   5,  u"\u65E5\u672C"},
    {932,   u"\u7530\u8868\uFF71",           5,  u"\uD55C\uAD6D"},
    {936,   u"\u4E34\u65F6",                 4,  u"\uD55C\uAD6D"},
    {949,   u"\uC784\uC2DC",                 4,  u"\u0E44\u0E17"},
    {950,   u"\u8A31\u529F",                 4,  u"\uD55C\uAD6D"},
    {65001, u"\u7530\u4E2D\u00FC\U0001F600", 12, u""},
};
// clang-format on

class CodePageContract : public ContractTest {
 protected:
  void SetUp() override {
    for (const Words& each : words) {
      if (each.codePage == bench().codePage()) words_ = each;
    }
    ASSERT_NE(words_.codePage, 0u) << "no words for the code page " << bench().codePage();
    const char* wanted = std::getenv("ZEV_CODE_PAGE");
    if (wanted != nullptr) {
      ASSERT_EQ(std::to_string(bench().codePage()), wanted);
    }
  }

  Text inside() const { return Text(words_.inside); }
  Text outside() const { return Text(words_.outside); }
  std::uint32_t bytesOfInside() const { return static_cast<std::uint32_t>(words_.bytes); }

  /// The temporary folder as its length cuts it.
  Text temporaryFolder() {
    Text buffer = blanks(260);
    const std::uint32_t length = platform().system.GetTempPathA(260, buffer);
    EXPECT_EQ(buffer[length], u'\0');
    return buffer.substr(0, length);
  }

  Text documentsByNumber() {
    ItemIdList list = nullptr;
    EXPECT_EQ(platform().shellFolders.SHGetSpecialFolderLocation(0, CSIDL_PERSONAL, list), 0);
    Text buffer = blanks(260);
    EXPECT_TRUE(platform().shellFolders.SHGetPathFromIDList(list, buffer));
    platform().shellFolders.CoTaskMemFree(list);
    return Text(withoutTrailing(beforeNul(buffer), u'\\'));
  }

  Text documentsByIdentifier() {
    Guid folder{};
    platform().shellFolders.CLSIDFromString(u"{FDD39AD0-238F-46AF-ADB4-6C85480369C7}", folder);
    char16_t* path = nullptr;
    EXPECT_EQ(platform().shellFolders.SHGetKnownFolderPath(folder, 0, 0, path), 0);
    const Text text = path == nullptr ? Text() : Text(path);
    platform().shellFolders.CoTaskMemFree(path);
    return Text(withoutTrailing(text, u'\\'));
  }

  /// Whether a path of letters of the page leads to the folder: what is made there shows it.
  void expectLeadsTo(const Text& path, const Text& folder, TextView name) {
    EXPECT_EQ(system().fromAnsi(system().toAnsi(path)), path) << toUtf8(path);
    EXPECT_EQ(test::raisedBy([&] { files().MkDir(join(path, u"\\", name)); }), 0) << toUtf8(path);
    EXPECT_TRUE(bench().isThere(join(folder, u"\\", name))) << toUtf8(path);
  }

 private:
  Words words_{};
};

/// Of a page that has every letter there is nothing to be seen here.
class OutsideTheCodePageContract : public CodePageContract {
 protected:
  void SetUp() override {
    CodePageContract::SetUp();
    if (outside().empty()) GTEST_SKIP() << "the page has every letter";
  }
};

// ---- letters of the page

TEST_F(CodePageContract, LettersHaveTheBytesOfThePage) {
  EXPECT_EQ(system().toAnsi(u"plain"), "plain");
  EXPECT_EQ(system().fromAnsi("plain"), u"plain");
  EXPECT_EQ(system().toAnsi(inside()).size(), bytesOfInside());
  EXPECT_EQ(system().fromAnsi(system().toAnsi(inside())), inside());
  EXPECT_EQ(platform().kernel.toAnsi(inside()), system().toAnsi(inside()));
}

TEST_F(CodePageContract, TheLengthOfAPathCutsItsText) {
  const Text folder = join(in(inside()), u"\\");
  bench().makeFolder(folder);
  bench().nameTemporaryFolder(folder);
  EXPECT_EQ(temporaryFolder(), folder);
}

TEST_F(CodePageContract, AnAnswerTakesItsBytesFromTheBuffer) {
  const Text folder = join(in(inside()), u"\\");
  bench().makeFolder(folder);
  bench().nameTemporaryFolder(folder);
  const auto bytes = static_cast<std::uint32_t>(system().toAnsi(folder).size());
  Text small = blanks(bytes);
  EXPECT_EQ(platform().system.GetTempPathA(bytes, small), bytes + 1);
  EXPECT_EQ(small, blanks(bytes));
  Text buffer = blanks(bytes + 4);
  platform().system.GetTempPathA(bytes + 4, buffer);
  EXPECT_EQ(buffer, join(folder, TextView(u"\0   ", 4)));
}

TEST_F(CodePageContract, ATextOfTheRegistryIsReadByItsBytes) {
  RegistryApi& registry = platform().registry;
  RegistryKey key = 0;
  ASSERT_EQ(registry.RegCreateKeyA(HKEY_CURRENT_USER, bench().key(), key), system_error::success);
  registry.RegSetValueExA(key, inside(), registry_type::text, inside(), bytesOfInside());
  std::uint32_t type = 0;
  std::uint32_t size = 0;
  registry.RegQueryValueExA(key, inside(), type, size);
  EXPECT_EQ(size, bytesOfInside() + 1);
  Text buffer = blanks(size);
  ASSERT_EQ(registry.RegQueryValueExA(key, inside(), type, buffer, size), system_error::success);
  EXPECT_EQ(buffer, inside() + u'\0');
  EXPECT_EQ(size, bytesOfInside() + 1);
  registry.RegCloseKey(key);
}

TEST_F(CodePageContract, ATextIsWrittenToTheRegistryByItsBytes) {
  RegistryApi& registry = platform().registry;
  RegistryKey key = 0;
  ASSERT_EQ(registry.RegCreateKeyA(HKEY_CURRENT_USER, bench().key(), key), system_error::success);
  const auto first = static_cast<std::uint32_t>(system().toAnsi(inside().substr(0, 1)).size());
  registry.RegSetValueExA(key, u"x", registry_type::text, inside(), first);
  std::uint32_t type = 0;
  std::uint32_t size = 64;
  Text buffer = blanks(64);
  ASSERT_EQ(registry.RegQueryValueExA(key, u"x", type, buffer, size), system_error::success);
  EXPECT_EQ(beforeNul(buffer), inside().substr(0, 1));
  registry.RegCloseKey(key);
}

TEST_F(CodePageContract, ASubkeyIsListedIntoItsBytes) {
  RegistryApi& registry = platform().registry;
  RegistryKey key = 0;
  registry.RegCreateKeyA(HKEY_CURRENT_USER, join(bench().key(), u"\\", inside()), key);
  registry.RegCloseKey(key);
  registry.RegOpenKeyA(HKEY_CURRENT_USER, bench().key(), key);
  Text buffer = blanks(32);
  EXPECT_EQ(registry.RegEnumKeyA(key, 0, buffer, bytesOfInside()), moreData);
  ASSERT_EQ(registry.RegEnumKeyA(key, 0, buffer, bytesOfInside() + 1), system_error::success);
  EXPECT_EQ(beforeNul(buffer), inside());
  registry.RegCloseKey(key);
}

TEST_F(CodePageContract, FilesHaveNamesOfItsLetters) {
  const Text folder = in(inside());
  files().MkDir(folder);
  EXPECT_TRUE(bench().isThere(folder));
  EXPECT_EQ(files().Dir(in(u"*.*"), dir_mask::directories), u".");
  EXPECT_EQ(files().Dir(), u"..");
  EXPECT_EQ(files().Dir(), inside());
  const std::int32_t number = files().FreeFile();
  files().OpenOutput(number, join(folder, u"\\", inside(), u".txt"));
  files().Print(number, inside());
  files().Close(number);
  EXPECT_EQ(files().FileLen(join(folder, u"\\", inside(), u".txt")),
            static_cast<std::int32_t>(bytesOfInside()) + 2);
  files().Kill(join(folder, u"\\*.*"));
  files().RmDir(folder);
  EXPECT_FALSE(bench().isThere(folder));
}

TEST_F(CodePageContract, GivesFoldersOfItsLettersByTheirOwnNames) {
  const Text folder = in(join(inside(), u" and more"));
  bench().makeFolder(folder);
  bench().nameDocuments(folder);
  EXPECT_EQ(documentsByNumber(), folder);
  EXPECT_EQ(documentsByIdentifier(), folder);
}

// ---- letters that it does not have

TEST_F(OutsideTheCodePageContract, LosesTheLettersThatItDoesNotHave) {
  EXPECT_EQ(system().toAnsi(outside()), std::string(outside().size(), '?'));
}

TEST_F(OutsideTheCodePageContract, ShowsASignForEachLetterThatANameLoses) {
  bench().makeFolder(in(join(u"x", outside())));
  EXPECT_EQ(files().Dir(in(u"x*"), dir_mask::directories),
            join(u"x", Text(outside().size(), u'?')));
}

TEST_F(OutsideTheCodePageContract, GivesTheTemporaryFolderByItsShortName) {
  const Text folder = in(join(outside(), u" and more"));
  bench().makeFolder(folder);
  bench().nameTemporaryFolder(folder + u"\\");
  const Text given = temporaryFolder();
  EXPECT_EQ(given.back(), u'\\');
  expectLeadsTo(given.substr(0, given.size() - 1), folder, u"made");
}

TEST_F(OutsideTheCodePageContract, LeavesATemporaryFolderWithoutAShortNameAsItIs) {
  bench().nameTemporaryFolder(join(in(outside()), u"\\"));
  EXPECT_EQ(temporaryFolder(), join(in(Text(outside().size(), u'?')), u"\\"));
}

TEST_F(OutsideTheCodePageContract, GivesFoldersOfTheShellByTheirShortNames) {
  const Text folder = in(join(outside(), u" and more"));
  bench().makeFolder(folder);
  bench().nameDocuments(folder);
  expectLeadsTo(documentsByNumber(), folder, u"number");
  expectLeadsTo(documentsByIdentifier(), folder, u"id");
}

}  // namespace
}  // namespace zev::contract
