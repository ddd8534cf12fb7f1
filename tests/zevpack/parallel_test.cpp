#include "programs/zevpack/long_work.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <vector>

namespace zev::packing {
namespace {

TEST(InParallel, CallsOnceForEachNumber) {
  for (const std::size_t count : {0u, 1u, 2u, 56u, 1000u}) {
    std::vector<std::atomic<int>> calls(count);
    inParallel(count, [&](std::size_t number) { ++calls[number]; });
    for (const std::atomic<int>& each : calls) EXPECT_EQ(each, 1);
  }
}

TEST(InParallel, ThrowsWhatTheLowestNumberThrew) {
  for (int again = 0; again < 50; ++again) {
    try {
      inParallel(40, [](std::size_t number) {
        if (number >= 5) throw std::runtime_error(std::to_string(number));
      });
      FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), "5");
    }
  }
}

TEST(InParallel, BeginsNothingBehindAnException) {
  std::atomic<std::size_t> calls = 0;
  const auto fail = [&](std::size_t) {
    ++calls;
    throw std::runtime_error("");
  };
  EXPECT_THROW(inParallel(100'000, fail), std::runtime_error);
  EXPECT_LT(calls, 1000u);
}

}  // namespace
}  // namespace zev::packing
