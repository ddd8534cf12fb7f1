#include "lz/expand.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <new>
#include <ostream>
#include <string>
#include <vector>

#include "lz/encoder.h"
#include "lz/memory_stream.h"
#include "lz/reference.h"
#include "lz/samples.h"

namespace zev::lz {
namespace {

constexpr std::int32_t kMostBytes = std::numeric_limits<std::int32_t>::max();

Bytes operator+(Bytes front, const Bytes& back) {
  front.insert(front.end(), back.begin(), back.end());
  return front;
}

Bytes text(const std::string& characters) { return Bytes(characters.begin(), characters.end()); }

const Bytes kMagic{0x53, 0x5A, 0x44, 0x44, 0x88, 0xF0, 0x27, 0x33};

Bytes header(std::uint32_t length, std::uint8_t mode = 'A') {
  Bytes bytes = kMagic + Bytes{mode, 't'};
  for (unsigned shift = 0; shift < 32; shift += 8) {
    bytes.push_back(static_cast<std::uint8_t>(length >> shift));
  }
  return bytes;
}

struct FileCase {
  const char* name;
  Bytes file;
  std::int32_t result;
  Bytes written;
};

const std::vector<FileCase> kFiles = {
    // Files without the magic are copied.
    {"Empty", {}, 0, {}},
    {"OneByte", {0x53}, 1, {0x53}},
    {"MagicWithoutItsLastByte",
     {0x53, 0x5A, 0x44, 0x44, 0x88, 0xF0, 0x27},
     7,
     {0x53, 0x5A, 0x44, 0x44, 0x88, 0xF0, 0x27}},
    {"MagicWithAWrongFirstByte", text("sZDD\x88\xF0'3A"), 9, text("sZDD\x88\xF0'3A")},
    {"MagicWithAWrongLastByte", text("SZDD\x88\xF0'4A"), 9, text("SZDD\x88\xF0'4A")},
    {"AsLongAsAHeader", text("fourteen bytes"), 14, text("fourteen bytes")},
    {"LongerThanAHeader", text("fifteen bytes.."), 15, text("fifteen bytes..")},

    // The header.
    {"MagicAlone", kMagic, -3, {}},
    {"MagicAndMode", kMagic + text("A"), -3, {}},
    {"MagicAndUnknownModeAlone", kMagic + text("B"), -3, {}},
    {"HeaderWithoutItsLastByte", kMagic + Bytes{'A', 't', 1, 0, 0}, -3, {}},
    {"UnknownMode", header(1, 'B') + Bytes{1, 'x'}, -8, {}},
    {"ModeZero", header(1, 0) + Bytes{1, 'x'}, -8, {}},
    {"ModeInLowerCase", header(1, 'a') + Bytes{1, 'x'}, -8, {}},
    {"LengthZero", header(0), 0, {}},
    {"LengthZeroWithData", header(0) + Bytes{1, 'x'}, 0, {}},

    // Whole data.
    {"OneLiteral", header(1) + Bytes{1, 'x'}, 1, text("x")},
    {"LiteralsAreTheSetBits", header(2) + Bytes{0b11, 'x', 'y'}, 2, text("xy")},
    {"FirstTokenIsTheLowestBit", header(4) + Bytes{0b0001, 'x', 0xF0, 0xF0}, 4, text("xxxx")},
    {"EightLiteralsAndANinth", header(9) + Bytes{0xFF} + text("12345678") + Bytes{1, '9'}, 9,
     text("123456789")},
    {"MatchOfTheBlanksBeforeTheStart", header(3) + Bytes{0, 0x00, 0x00}, 3, text("   ")},
    {"MatchOfFullLength", header(18) + Bytes{0, 0x00, 0x0F}, 18, text(std::string(18, ' '))},
    {"MatchThatReachesItself", header(8) + Bytes{0b01, 'x', 0xED, 0xF4}, 8, text("x   x   ")},
    {"MatchAcrossTheEndOfTheRing",
     header(20) + Bytes{0xFF} + text("01234567") + Bytes{0xFF} + text("89abcdef") +
         Bytes{0b01, 'g', 0xFE, 0xF0},
     20, text("0123456789abcdefgefg")},
    {"MatchOfItself", header(7) + Bytes{0b011, 'x', 'y', 0xF0, 0xF2}, 7, text("xyxyxyx")},
    {"MatchAtTheFullDistance", header(4) + Bytes{0b01, 'x', 0xF1, 0xF0}, 4, text("x   ")},
    {"MatchCutByTheLength", header(4) + Bytes{0b01, 'x', 0xF0, 0xFF}, 4, text("xxxx")},

    // Data behind the declared length is left alone.
    {"LiteralsBehindTheLength", header(1) + Bytes{0xFF} + text("xyz"), 1, text("x")},
    {"HalfAMatchBehindTheLength", header(1) + Bytes{0b01, 'x', 0xF0}, 1, text("x")},
    {"OtherFileBehindTheLength", header(1) + Bytes{1, 'x'} + header(1) + Bytes{1, 'y'}, 1,
     text("x")},

    // Data that ends first.
    {"NoData", header(1), -3, {}},
    {"FlagByteAlone", header(1) + Bytes{1}, -3, {}},
    {"LiteralMissing", header(2) + Bytes{0b11, 'x'}, -3, text("x")},
    {"MatchMissing", header(4) + Bytes{0b01, 'x'}, -3, text("x")},
    {"HalfAMatch", header(4) + Bytes{0b01, 'x', 0xF0}, -3, text("x")},
    {"SecondFlagByteMissing", header(9) + Bytes{0xFF} + text("12345678"), -3, text("12345678")},
    {"MatchTooShortForTheLength", header(5) + Bytes{0b01, 'x', 0xF0, 0xF0}, -3, text("xxxx")},
    {"LengthOf2GiBWithoutData", header(0x80000000U), -3, {}},
    {"LengthOf4GiBWithAByte", header(0xFFFFFFFFU) + Bytes{1, 'x'}, -3, text("x")},
};

std::ostream& operator<<(std::ostream& out, const FileCase& tested) { return out << tested.name; }

class LzExpandFile : public testing::TestWithParam<FileCase> {};

TEST_P(LzExpandFile, HasItsResult) {
  const Expanded expected{GetParam().result, GetParam().written};
  EXPECT_EQ(expandBySteps(GetParam().file), expected);
}

TEST_P(LzExpandFile, HasItsResultFromReadsOfAnySize) {
  const Expanded expected{GetParam().result, GetParam().written};
  for (std::size_t step = 1; step <= GetParam().file.size(); ++step) {
    EXPECT_EQ(expandBySteps(GetParam().file, step), expected) << "reads of " << step;
  }
}

TEST_P(LzExpandFile, HasItsResultInMemory) {
  EXPECT_EQ(expandInMemory(GetParam().file), (Expanded{GetParam().result, GetParam().written}));
}

TEST_P(LzExpandFile, HasItsResultByTheSlowWayToo) {
  EXPECT_EQ(expandByRing(GetParam().file), (Expanded{GetParam().result, GetParam().written}));
}

INSTANTIATE_TEST_SUITE_P(All, LzExpandFile, testing::ValuesIn(kFiles),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(LzExpand, CopiesAPlainFileOfAnyLength) {
  for (const Sample& sample : samples()) {
    const auto length = static_cast<std::int32_t>(sample.bytes.size());
    EXPECT_EQ(expandBySteps(sample.bytes), (Expanded{length, sample.bytes})) << sample.name;
  }
}

// A group of them is 144 bytes, and no more than three are looked at together: behind that the same
// comes again.
TEST(LzExpand, EndsWithAGroupOfTheLongestMatches) {
  for (std::size_t zeros = 0; zeros < 1000; ++zeros) {
    Bytes plain = text("literals");
    plain.resize(plain.size() + zeros);
    Bytes written;
    const Bytes packed = compress(plain, 't');
    MemorySource source(packed);
    MemorySink sink(written);
    ASSERT_EQ(expand(source, sink), static_cast<std::int32_t>(plain.size())) << zeros;
    ASSERT_EQ(written, plain);
  }
}

TEST(LzExpand, ReadsPiecesOfAnySize) {
  const Bytes plain = mixture(150000, 11);
  const Bytes packed = compress(plain, 'x');
  for (const std::size_t step : {1U, 2U, 3U, 16U, 17U, 18U, 1000U, 4096U, 32767U, 32768U, 40000U}) {
    EXPECT_EQ(expandBySteps(packed, step), (Expanded{150000, plain})) << "reads of " << step;
    EXPECT_EQ(expandBySteps(plain, step), (Expanded{150000, plain})) << "reads of " << step;
  }
}

TEST(LzExpand, MakesPiecesOfAnyFileInMemory) {
  for (const std::size_t size : {4095U, 4096U, 4240U, 4241U, 41000U, 150000U, 1000000U}) {
    const Bytes plain = mixture(size, 13);
    EXPECT_EQ(expandInMemory(compress(plain, 'x')),
              (Expanded{static_cast<std::int32_t>(size), plain}));
    EXPECT_EQ(expandInMemory(plain), (Expanded{static_cast<std::int32_t>(size), plain}));
  }
}

TEST(LzExpand, AppendsToWhatIsInMemory) {
  const Bytes front = text("there before");
  const Bytes plain = mixture(150000, 14);
  const Bytes packed = compress(plain, 'x');
  Bytes written = front;
  MemorySource source(packed);
  MemorySink sink(written);
  EXPECT_EQ(expand(source, sink), 150000);
  EXPECT_EQ(written, front + plain);
}

TEST(LzExpand, ReadsNoFurtherThanTheDeclaredLengthAsks) {
  const Bytes packed = compress(mixture(150000, 12), 'x');
  for (const std::size_t step : {1U, 1000U, 100000U}) {
    SteppingSource source(packed, step, packed.size());
    CountingSink sink;
    EXPECT_EQ(expand(source, sink), 150000) << "reads of " << step;
  }
}

TEST(LzExpand, TellsAFailedRead) {
  const Bytes packed = compress(mixture(100000, 13), 'x');
  const Bytes plain = mixture(100000, 14);
  for (const Bytes& file : {packed, plain}) {
    for (std::size_t failAfter = 0; failAfter < file.size(); failAfter += 1 + failAfter / 8) {
      SteppingSource source(file, file.size(), failAfter);
      CountingSink sink;
      EXPECT_EQ(expand(source, sink), lz_error::badSourceHandle) << "after " << failAfter;
    }
  }
}

TEST(LzExpand, LeavesWhatCameBeforeAFailedRead) {
  const Bytes plain = mixture(100000, 13);
  const Bytes packed = compress(plain, 'x');
  SteppingSource source(packed, packed.size(), packed.size() - 1);
  Bytes written;
  MemorySink sink(written);
  EXPECT_EQ(expand(source, sink), lz_error::badSourceHandle);
  EXPECT_GT(written.size(), plain.size() - 20);
  EXPECT_TRUE(std::equal(written.begin(), written.end(), plain.begin()));
}

TEST(LzExpand, TellsAFailedWrite) {
  const Bytes plain = mixture(100000, 15);
  const Bytes packed = compress(plain, 'x');
  for (const Bytes& file : {packed, plain}) {
    for (std::size_t capacity = 0; capacity < plain.size(); capacity += 1 + capacity / 4) {
      MemorySource source(file);
      CountingSink sink(capacity);
      EXPECT_EQ(expand(source, sink), lz_error::writeFailure) << "capacity " << capacity;
    }
  }
}

TEST(LzExpand, TellsAFailedWriteBeforeTheEndOfTheDataBehindIt) {
  const Bytes packed = compress(mixture(1000, 16), 'x');
  MemorySource source{std::span(packed).first(packed.size() - 1)};
  CountingSink sink(10);
  EXPECT_EQ(expand(source, sink), lz_error::writeFailure);
}

TEST(LzExpand, TellsThatMemoryRanOut) {
  class Exhausted final : public ByteSink {
    bool write(std::span<const std::uint8_t>) override { throw std::bad_alloc(); }
  };
  const Bytes file = text("plain");
  MemorySource source(file);
  Exhausted sink;
  EXPECT_EQ(expand(source, sink), lz_error::outOfMemory);
}

// Of the byte 0Fh each group is four literals and four matches of full length.
constexpr std::uint8_t kManyBytesEach = 0x0F;

TEST(LzExpand, ReachesTheMostThatAResultCanTell) {
  EndlessSource source(header(static_cast<std::uint32_t>(kMostBytes)), kManyBytesEach);
  CountingSink sink;
  EXPECT_EQ(expand(source, sink), kMostBytes);
  EXPECT_EQ(sink.count(), static_cast<std::uint64_t>(kMostBytes));
}

TEST(LzExpand, RefusesMoreThanAResultCanTell) {
  EndlessSource source(header(static_cast<std::uint32_t>(kMostBytes) + 1), kManyBytesEach);
  CountingSink sink;
  EXPECT_EQ(expand(source, sink), lz_error::badValue);
}

TEST(LzExpand, CopiesAPlainFileOfTheMostThatAResultCanTell) {
  LongSource source(kMostBytes);
  CountingSink sink;
  EXPECT_EQ(expand(source, sink), kMostBytes);
  EXPECT_EQ(sink.count(), static_cast<std::uint64_t>(kMostBytes));
}

TEST(LzExpand, RefusesAPlainFileLongerThanAResultCanTell) {
  LongSource source(std::uint64_t{kMostBytes} + 1);
  CountingSink sink;
  EXPECT_EQ(expand(source, sink), lz_error::badValue);
  EXPECT_LE(sink.count(), static_cast<std::uint64_t>(kMostBytes));
}

}  // namespace
}  // namespace zev::lz
