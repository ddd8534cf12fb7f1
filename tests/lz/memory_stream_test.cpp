#include "lz/memory_stream.h"

#include <gtest/gtest.h>

#include <array>

#include "lz/streams.h"

namespace zev::lz {
namespace {

TEST(LzMemorySource, GivesItsBytesInOrderAndThenItsEnd) {
  const Bytes bytes{1, 2, 3};
  MemorySource source(bytes);
  std::array<std::uint8_t, 2> into{};
  EXPECT_EQ(source.read(into), 2);
  EXPECT_EQ(into, (std::array<std::uint8_t, 2>{1, 2}));
  EXPECT_EQ(source.read(into), 1);
  EXPECT_EQ(into[0], 3);
  EXPECT_EQ(source.read(into), 0);
  EXPECT_EQ(source.read(into), 0);
}

TEST(LzMemorySource, GivesTheRestWhereItLies) {
  const Bytes bytes{1, 2, 3};
  MemorySource source(bytes);
  std::array<std::uint8_t, 1> into{};
  EXPECT_EQ(source.read(into), 1);
  const auto rest = source.takeRest();
  ASSERT_TRUE(rest);
  EXPECT_EQ(rest->data(), bytes.data() + 1);
  EXPECT_EQ(rest->size(), 2u);
  EXPECT_EQ(source.read(into), 0) << "it counts as read";
}

TEST(LzMemorySink, AppendsToWhatIsThere) {
  Bytes bytes{1};
  MemorySink sink(bytes);
  EXPECT_TRUE(sink.write(Bytes{2, 3}));
  EXPECT_TRUE(sink.write({}));
  EXPECT_EQ(bytes, (Bytes{1, 2, 3}));
}

}  // namespace
}  // namespace zev::lz
