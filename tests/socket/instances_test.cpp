#include "socket/instances.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>

#include "runtime/error.h"
#include "socket/targets.h"

namespace zev {
namespace {

using socket_bench::Target;

class InstancesTest : public testing::Test {
 protected:
  static constexpr WindowMessage message{0x10062, 2049, 77, 1};

  std::vector<std::exception_ptr> escaped;
  Instances instances{[this](std::exception_ptr error) { escaped.push_back(error); }};
};

TEST_F(InstancesTest, HandTheFourArgumentsOver) {
  const auto target = std::make_shared<Target>();
  const InstancePointer pointer = instances.add(target);
  target->answer = 5;
  EXPECT_EQ(instances.enter(pointer, {0x10062, 2049, 77, -3}), 5);
  ASSERT_EQ(target->taken.size(), 1u);
  EXPECT_EQ(target->taken[0], (Target::Arguments{0x10062, 2049, 77, -3}));
}

TEST_F(InstancesTest, HaveEachAPointerOfItsOwn) {
  std::vector<std::shared_ptr<Target>> targets;
  std::set<InstancePointer> pointers;
  for (int i = 0; i < 1000; ++i) {
    targets.push_back(std::make_shared<Target>());
    pointers.insert(instances.add(targets.back()));
  }
  EXPECT_EQ(pointers.size(), 1000u);
  EXPECT_EQ(pointers.count(noInstance), 0u);
  EXPECT_EQ(pointers.count(0), 0u);
  EXPECT_EQ(instances.entries(), 1000u);
}

TEST_F(InstancesTest, KeepTheirPointersWhileOthersCome) {
  const auto target = std::make_shared<Target>();
  const InstancePointer pointer = instances.add(target);
  std::vector<std::shared_ptr<Target>> others;
  for (int i = 0; i < 1000; ++i) {
    others.push_back(std::make_shared<Target>());
    instances.add(others.back());
  }
  instances.enter(pointer, message);
  EXPECT_EQ(target->taken.size(), 1u);
}

TEST_F(InstancesTest, NobodyIsEnteredUnderAnUnknownPointer) {
  const auto target = std::make_shared<Target>();
  target->answer = 5;
  const InstancePointer pointer = instances.add(target);
  for (const InstancePointer unknown : {noInstance, 0, -2, pointer + 1, pointer - 1}) {
    EXPECT_EQ(instances.enter(unknown, message), 0);
    instances.ended(unknown, false);
  }
  EXPECT_TRUE(target->taken.empty());
  EXPECT_EQ(instances.entries(), 1u);
}

TEST_F(InstancesTest, OneThatIsGoneIsNotEntered) {
  auto target = std::make_shared<Target>();
  const InstancePointer pointer = instances.add(target);
  target.reset();
  EXPECT_EQ(instances.enter(pointer, message), 0);
}

TEST_F(InstancesTest, OneThatEndedUnheldMakesRoomAtOnce) {
  const auto target = std::make_shared<Target>();
  const InstancePointer pointer = instances.add(target);
  instances.ended(pointer, false);
  EXPECT_EQ(instances.entries(), 0u);
  EXPECT_EQ(instances.enter(pointer, message), 0);
  EXPECT_TRUE(target->taken.empty());
  EXPECT_EQ(instances.add(target), pointer);
}

TEST_F(InstancesTest, OneThatEndedHeldKeepsItsPointerUntilForgotten) {
  const auto target = std::make_shared<Target>();
  const InstancePointer pointer = instances.add(target);
  instances.ended(pointer, true);
  EXPECT_EQ(instances.entries(), 1u);
  EXPECT_EQ(instances.enter(pointer, message), 0);
  EXPECT_TRUE(target->taken.empty());

  const auto another = std::make_shared<Target>();
  EXPECT_NE(instances.add(another), pointer);
  instances.forgetEnded();
  EXPECT_EQ(instances.entries(), 1u);
  EXPECT_EQ(instances.add(another), pointer);
  instances.forgetEnded();
  EXPECT_EQ(instances.entries(), 2u);
}

TEST_F(InstancesTest, OneStaysAliveWhileItIsEntered) {
  auto target = std::make_shared<Target>();
  const std::weak_ptr<Target> seen = target;
  bool alive = false;
  const InstancePointer pointer = instances.add(target);
  target->during = [&] {
    target.reset();
    alive = !seen.expired();
    instances.ended(pointer, false);
  };
  EXPECT_EQ(instances.enter(pointer, message), 0);
  EXPECT_TRUE(alive);
  EXPECT_TRUE(seen.expired());
}

TEST_F(InstancesTest, RunTimeErrorsReachNobody) {
  const auto target = std::make_shared<Target>();
  target->answer = 5;
  target->during = [] { throw RuntimeError(ErrorNumber::TypeMismatch); };
  EXPECT_EQ(instances.enter(instances.add(target), message), 0);
  EXPECT_TRUE(escaped.empty());
}

TEST_F(InstancesTest, OtherExceptionsEscape) {
  const auto target = std::make_shared<Target>();
  target->answer = 5;
  target->during = [] { throw std::runtime_error("out of here"); };
  EXPECT_EQ(instances.enter(instances.add(target), message), 0);
  ASSERT_EQ(escaped.size(), 1u);
  EXPECT_THROW(std::rethrow_exception(escaped[0]), std::runtime_error);
}

TEST_F(InstancesTest, CanBeEnteredWhileAnotherOneIs) {
  const auto outer = std::make_shared<Target>();
  const auto inner = std::make_shared<Target>();
  const InstancePointer innerPointer = instances.add(inner);
  inner->answer = 3;
  std::int32_t within = 0;
  outer->during = [&] { within = instances.enter(innerPointer, message); };
  outer->answer = 4;
  EXPECT_EQ(instances.enter(instances.add(outer), message), 4);
  EXPECT_EQ(within, 3);
}

}  // namespace
}  // namespace zev
