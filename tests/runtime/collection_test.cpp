#include "runtime/containers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "support/raised.h"

namespace zev {
namespace {

using test::raisedBy;
using testing::ElementsAre;

constexpr std::int32_t invalidCall = 5;
constexpr std::int32_t keyTaken = 457;

Collection<std::int32_t> filled() {
  Collection<std::int32_t> collection;
  collection.Add(10, u"S1");
  collection.Add(20, u"S2");
  collection.Add(30, u"S3");
  return collection;
}

TEST(Collection, BeginsEmpty) {
  const Collection<std::int32_t> collection;
  EXPECT_EQ(collection.Count(), 0u);
  EXPECT_FALSE(collection.contains(u""));
  EXPECT_TRUE(collection.begin() == collection.end());
}

TEST(Collection, FindsItemsByTheirKeys) {
  Collection<std::int32_t> collection = filled();
  EXPECT_EQ(collection.Count(), 3u);
  EXPECT_EQ(collection.Item(u"S1"), 10);
  EXPECT_EQ(collection.Item(u"S3"), 30);
  EXPECT_TRUE(collection.contains(u"S2"));
  EXPECT_FALSE(collection.contains(u"S4"));
}

TEST(Collection, KeepsTheOrderOfAdding) {
  Collection<std::int32_t> collection = filled();
  collection.Remove(u"S2");
  collection.Add(40, u"S0");
  EXPECT_THAT(std::vector<std::int32_t>(collection.begin(), collection.end()),
              ElementsAre(10, 30, 40));
}

TEST(Collection, RefusesAKeyThatIsTaken) {
  Collection<std::int32_t> collection = filled();
  EXPECT_EQ(raisedBy([&] { collection.Add(99, u"S2"); }), keyTaken);
  EXPECT_EQ(collection.Count(), 3u);
  EXPECT_EQ(collection.Item(u"S2"), 20);
}

TEST(Collection, KnowsNoOtherKey) {
  Collection<std::int32_t> collection = filled();
  EXPECT_EQ(raisedBy([&] { collection.Item(u"S4"); }), invalidCall);
  EXPECT_EQ(raisedBy([&] { collection.Remove(u"S4"); }), invalidCall);
  EXPECT_EQ(raisedBy([&] { collection.Item(u""); }), invalidCall);
  EXPECT_EQ(collection.Count(), 3u);
}

TEST(Collection, GivesAKeyFreeThatIsRemoved) {
  Collection<std::int32_t> collection = filled();
  collection.Remove(u"S2");
  EXPECT_EQ(collection.Count(), 2u);
  EXPECT_FALSE(collection.contains(u"S2"));
  EXPECT_EQ(raisedBy([&] { collection.Item(u"S2"); }), invalidCall);
  collection.Add(21, u"S2");
  EXPECT_EQ(collection.Item(u"S2"), 21);
}

TEST(Collection, LetsAnItemBeChanged) {
  Collection<std::int32_t> collection = filled();
  collection.Item(u"S2") = 22;
  EXPECT_EQ(collection.Item(u"S2"), 22);
}

TEST(Collection, LetsGoOfReferences) {
  Collection<std::shared_ptr<int>> collection;
  const auto item = std::make_shared<int>(1);
  collection.Add(item, u"S1");
  EXPECT_EQ(item.use_count(), 2);
  EXPECT_EQ(collection.Item(u"S1"), item);
  collection.Remove(u"S1");
  EXPECT_EQ(item.use_count(), 1);
}

}  // namespace
}  // namespace zev
