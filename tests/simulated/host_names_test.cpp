// Names of folders of the host, which others change too: what was read once and is answered from
// memory has to be what stands there now.

#include "simulated/host_names.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <random>

#include "simulated/bench.h"

namespace zev::simulated {
namespace {

namespace fs = std::filesystem;

class HostNamesTest : public testing::Test {
 protected:
  std::optional<std::string> find(const Text& name, const fs::path& folder = {}) {
    const std::string path = (host.path() / folder).native();
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return std::nullopt;
    return names.find(path, {status.st_dev, status.st_ino}, name);
  }
  void remove(const fs::path& file) const { fs::remove_all(host.path() / file); }
  void rename(const fs::path& from, const fs::path& to) const {
    fs::rename(host.path() / from, host.path() / to);
  }

  HostFolder host;
  HostNames names;
};

TEST_F(HostNamesTest, FindsANameWhateverItsCase) {
  host.write("MiXed.txt", "");
  EXPECT_EQ(find(u"mixed.TXT"), "MiXed.txt");
  EXPECT_EQ(find(u"mixed.tx"), std::nullopt);
}

TEST_F(HostNamesTest, PrefersTheNameAsItStands) {
  for (const char* name : {"aa", "Aa", "aA", "AA"}) host.write(name, "");
  for (const char16_t* name : {u"aa", u"Aa", u"aA", u"AA"}) EXPECT_EQ(find(name), toUtf8(name));
}

TEST_F(HostNamesTest, ReadsAFolderOnce) {
  host.write("a", "");
  find(u"A");
  for (int times = 0; times < 100; ++times) {
    EXPECT_EQ(find(u"A"), "a");
    EXPECT_EQ(find(u"b"), std::nullopt);
  }
  EXPECT_EQ(names.reads(), 1u);
}

TEST_F(HostNamesTest, SeesWhatOthersAdd) {
  EXPECT_EQ(find(u"new"), std::nullopt);
  host.write("New", "");
  EXPECT_EQ(find(u"new"), "New");
  fs::create_directory(host.path() / "Folder");
  EXPECT_EQ(find(u"folder"), "Folder");
  fs::create_symlink("nowhere", host.path() / "Link");
  EXPECT_EQ(find(u"link"), "Link");
  EXPECT_EQ(names.reads(), 1u);
}

TEST_F(HostNamesTest, SeesWhatOthersTakeAway) {
  host.write("Old", "");
  EXPECT_EQ(find(u"old"), "Old");
  remove("Old");
  EXPECT_EQ(find(u"old"), std::nullopt);
}

TEST_F(HostNamesTest, SeesWhatOthersRename) {
  host.write("One", "");
  fs::create_directory(host.path() / "Sub");
  EXPECT_EQ(find(u"one"), "One");
  EXPECT_EQ(find(u"one", "Sub"), std::nullopt);
  rename("One", "oNE");
  EXPECT_EQ(find(u"one"), "oNE");
  rename("oNE", "Sub/Two");
  EXPECT_EQ(find(u"one"), std::nullopt);
  EXPECT_EQ(find(u"two", "Sub"), "Two");
}

TEST_F(HostNamesTest, SeesAFolderThatTakesThePlaceOfAnother) {
  host.write("Sub/Old", "");
  host.write("Other/New", "");
  EXPECT_EQ(find(u"old", "Sub"), "Old");
  rename("Sub", "Away");
  rename("Other", "Sub");
  EXPECT_EQ(find(u"old", "Sub"), std::nullopt);
  EXPECT_EQ(find(u"new", "Sub"), "New");
  EXPECT_EQ(find(u"old", "Away"), "Old");
}

TEST_F(HostNamesTest, SeesAFolderThatWasMadeAnew) {
  for (int times = 0; times < 20; ++times) {
    host.write("Sub/Old", "");
    EXPECT_EQ(find(u"old", "Sub"), "Old");
    remove("Sub");
    EXPECT_EQ(find(u"old", "Sub"), std::nullopt);
    fs::create_directory(host.path() / "Sub");
    EXPECT_EQ(find(u"old", "Sub"), std::nullopt);
    remove("Sub");
  }
}

TEST_F(HostNamesTest, SeesWhatHappenedWhileMoreHappenedThanTheSystemTellsOf) {
  EXPECT_EQ(find(u"last"), std::nullopt);
  const fs::path names[] = {host.path() / "0", host.path() / "1"};
  fs::create_directory(names[0]);
  for (int each = 0; each < 9000; ++each) {
    ASSERT_EQ(::rename(names[each % 2].c_str(), names[(each + 1) % 2].c_str()), 0);
  }
  host.write("Last", "");
  EXPECT_EQ(find(u"last"), "Last");
}

TEST_F(HostNamesTest, KeepsNothingOfAFolderThatIsNotTheOneThatWasMeant) {
  host.write("One/a", "");
  host.write("Two/b", "");
  struct stat one {};
  ASSERT_EQ(::stat((host.path() / "One").c_str(), &one), 0);
  EXPECT_EQ(names.find((host.path() / "Two").native(), {one.st_dev, one.st_ino}, u"B"), "b");
  EXPECT_EQ(find(u"B", "One"), std::nullopt);
  EXPECT_EQ(find(u"A", "One"), "a");
}

/// What a walk through the folder gives.
TEST_F(HostNamesTest, IsWhatAWalkGivesWhateverHappens) {
  std::mt19937 random(7);
  for (int step = 0; step < 3000; ++step) {
    const std::string name(1, static_cast<char>((random() % 2 == 0 ? 'a' : 'A') + random() % 8));
    const std::string other(1, static_cast<char>((random() % 2 == 0 ? 'a' : 'A') + random() % 8));
    const unsigned act = random() % 4;
    std::error_code ignored;
    if (act == 0) host.write(name, "");
    if (act == 1) remove(name);
    if (act == 2) fs::rename(host.path() / name, host.path() / other, ignored);
    const std::vector<std::string> all = host.names();
    const Text wanted = fromUtf8(other);
    const auto found = find(wanted);
    const bool there = std::any_of(all.begin(), all.end(), [&](const std::string& each) {
      return equalText(fromUtf8(each), wanted);
    });
    const bool asItStands = std::find(all.begin(), all.end(), other) != all.end();
    ASSERT_EQ(found.has_value(), there) << "step " << step;
    if (!found) continue;
    ASSERT_TRUE(equalText(fromUtf8(*found), wanted));
    ASSERT_NE(std::find(all.begin(), all.end(), *found), all.end());
    if (asItStands) {
      ASSERT_EQ(*found, other);
    }
  }
}

}  // namespace
}  // namespace zev::simulated
