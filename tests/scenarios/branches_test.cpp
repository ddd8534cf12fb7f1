// Plays that branch: what a copy of the process finds, tells, and how it may end.

#include "scenarios/branches.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

namespace zev {
namespace {

/// Branches at each of some points, and does something in the second of the copies.
std::vector<std::string> failuresOf(const std::function<void()>& inTheSecond,
                                    Branches::Told& heard) {
  testing::TestPartResultArray failures;
  const testing::ScopedFakeTestPartResultReporter reporter(&failures);
  Branches branches;
  int point = 0;
  const auto play = [&] {
    for (int each = 1; each <= 3; ++each) {
      if (!branches.branch("point " + std::to_string(each))) continue;
      point = each;
      if (each == 2) inTheSecond();
    }
  };
  const auto judge = [&] { return Branches::Told{"was at " + std::to_string(point), ""}; };
  branches.play(play, judge, [&](const Branches::Told& told) {
    heard.insert(heard.end(), told.begin(), told.end());
  });
  std::vector<std::string> messages;
  for (int each = 0; each < failures.size(); ++each) {
    messages.emplace_back(failures.GetTestPartResult(each).message());
  }
  return messages;
}

const Branches::Told ofAll = {"was at 1", "", "was at 2", "", "was at 3", ""};
const Branches::Told withoutTheSecond = {"was at 1", "", "was at 3", ""};

TEST(Branches, EachCopyTellsWhereItWas) {
  const pid_t self = ::getpid();
  Branches::Told heard;
  EXPECT_EQ(failuresOf([] {}, heard), std::vector<std::string>());
  EXPECT_EQ(heard, ofAll);
  EXPECT_EQ(::getpid(), self);
}

TEST(Branches, AFailureOfACopyIsOneOfTheTest) {
  Branches::Told heard;
  const auto failures = failuresOf([] { ADD_FAILURE() << "found in\nthe copy"; }, heard);
  ASSERT_EQ(failures.size(), 1u);
  EXPECT_NE(failures[0].find("found in\nthe copy"), std::string::npos) << failures[0];
  EXPECT_EQ(heard, ofAll);
}

TEST(Branches, WhatACopyThrowsIsAFailure) {
  Branches::Told heard;
  const auto failures = failuresOf([] { throw std::runtime_error("lost its way"); }, heard);
  ASSERT_EQ(failures.size(), 1u);
  EXPECT_NE(failures[0].find("thrown: lost its way"), std::string::npos) << failures[0];
  EXPECT_EQ(heard, withoutTheSecond);
}

TEST(Branches, ACopyThatIsKilledIsAFailureByItsName) {
  Branches::Told heard;
  const auto failures = failuresOf([] { ::raise(SIGKILL); }, heard);
  ASSERT_EQ(failures.size(), 1u);
  EXPECT_NE(failures[0].find("point 2: the process that played it was ended by signal 9"),
            std::string::npos)
      << failures[0];
  EXPECT_EQ(heard, withoutTheSecond);
}

TEST(Branches, ACopyThatLeavesByItselfIsAFailureByItsName) {
  Branches::Told heard;
  const auto failures = failuresOf([] { ::_exit(0); }, heard);
  ASSERT_EQ(failures.size(), 1u);
  EXPECT_NE(failures[0].find("point 2: the process that played it ended with status 0"),
            std::string::npos)
      << failures[0];
  EXPECT_EQ(heard, withoutTheSecond);
}

}  // namespace
}  // namespace zev
