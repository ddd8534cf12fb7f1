#include "posix/look_ups.h"

#include <atomic>
#include <condition_variable>
#include <cstring>
#include <mutex>

#include "posix/on_the_machine.h"

namespace zev::posix {
namespace {

using namespace std::chrono_literals;

// ---- with the system's own answers

class LookingUp : public OnTheMachine {
 protected:
  using OnTheMachine::OnTheMachine;

  std::int32_t start(TextView name) {
    return sockets().WSAAsyncGetHostByName(window, lookUpMessage, name, buffer, sizeof buffer);
  }
  /// The error in the message of a look-up; -1 if none comes.
  std::int32_t errorOf(std::int32_t lookUp) {
    const auto isIt = [&](const WindowMessage& each) {
      return each.wParam == static_cast<std::uintptr_t>(lookUp);
    };
    if (!pumpUntil([&] { return std::any_of(others.begin(), others.end(), isIt); })) return -1;
    const auto found = std::find_if(others.begin(), others.end(), isIt);
    EXPECT_EQ(found->message, lookUpMessage);
    return static_cast<std::int32_t>(found->lParam >> 16);
  }

  alignas(HostRecord) char buffer[1024] = {};
};

TEST_F(LookingUp, FillsTheBufferWithAllThatTheRecordPointsTo) {
  const std::int32_t lookUp = start(u"localhost");
  ASSERT_GT(lookUp, 0);
  EXPECT_EQ(errorOf(lookUp), 0);
  HostRecord host;
  std::memcpy(&host, buffer, sizeof host);
  EXPECT_STREQ(host.name, "localhost");
  EXPECT_EQ(host.addressType, ws::internet);
  EXPECT_EQ(host.addressLength, 4);
  EXPECT_EQ(std::string(host.addresses[0], 4), std::string("\x7F\0\0\1", 4));
  EXPECT_EQ(host.addresses[1], nullptr);
  EXPECT_EQ(host.aliases[0], nullptr);
  for (const void* place :
       {static_cast<const void*>(host.name), static_cast<const void*>(host.aliases),
        static_cast<const void*>(host.addresses), static_cast<const void*>(host.addresses[0])}) {
    EXPECT_GE(place, static_cast<const void*>(buffer));
    EXPECT_LT(place, static_cast<const void*>(buffer + sizeof buffer));
  }
}

TEST_F(LookingUp, TellsWhatIsNotThere) {
  std::fill(std::begin(buffer), std::end(buffer), 'u');
  EXPECT_EQ(errorOf(start(u"nowhere.example")), ws::error::hostNotFound);
  EXPECT_EQ(buffer[0], 'u');
  EXPECT_EQ(errorOf(start(u"no\u20ACwhere")), ws::error::hostNotFound);
  EXPECT_EQ(errorOf(start(u"127.0.0.2")), 0);
}

TEST_F(LookingUp, WantsAWindowAndABuffer) {
  EXPECT_EQ(sockets().WSAAsyncGetHostByName(0, 1, u"localhost", buffer, sizeof buffer), 0);
  EXPECT_EQ(lastError(), ws::error::invalidArgument);
  EXPECT_EQ(sockets().WSAAsyncGetHostByName(window, 1, u"localhost", nullptr, 0), 0);
  const std::int32_t lookUp =
      sockets().WSAAsyncGetHostByName(window, lookUpMessage, u"localhost", buffer, 20);
  EXPECT_EQ(errorOf(lookUp), ws::error::noBuffers);
  EXPECT_EQ(buffer[0], 0);
}

TEST_F(LookingUp, HasAHandleForEach) {
  std::int32_t last = 0;
  for (int i = 0; i < 50; ++i) {
    const std::int32_t next = start(u"localhost");
    EXPECT_GT(next, last);
    last = next;
  }
  EXPECT_TRUE(pumpUntil([&] { return others.size() == 50; }));
}

// ---- with answers that can be held back

/// Answers nothing until it is opened.
class Gate {
 public:
  Host ask(const std::string& name) {
    std::unique_lock lock(mutex_);
    asked_.push_back(name);
    most_ = std::max(most_, ++inside_);
    changed_.notify_all();
    changed_.wait(lock, [&] { return open_; });
    --inside_;
    return {0, name, {in_addr{htonl(INADDR_LOOPBACK)}}};
  }
  void open() {
    const std::lock_guard lock(mutex_);
    open_ = true;
    changed_.notify_all();
  }
  bool awaitAsked(std::size_t count) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, 5s, [&] { return asked_.size() >= count; });
  }
  std::size_t asked() {
    const std::lock_guard lock(mutex_);
    return asked_.size();
  }
  std::size_t most() {
    const std::lock_guard lock(mutex_);
    return most_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<std::string> asked_;
  std::size_t inside_ = 0;
  std::size_t most_ = 0;
  bool open_ = false;
};

class HeldLookUps : public LookingUp {
 protected:
  HeldLookUps() : HeldLookUps(std::make_shared<Gate>()) {}
  explicit HeldLookUps(const std::shared_ptr<Gate>& shared)
      : LookingUp([shared](const std::string& name) { return shared->ask(name); }), gate(shared) {}

  std::shared_ptr<Gate> gate;
};

TEST_F(HeldLookUps, RunBesideTheThread) {
  const std::int32_t lookUp = start(u"slow");
  settle();
  EXPECT_TRUE(others.empty());
  EXPECT_EQ(buffer[0], 0);
  gate->open();
  EXPECT_EQ(errorOf(lookUp), 0);
}

TEST_F(HeldLookUps, RunAFewAtOnce) {
  for (int i = 0; i < 20; ++i) EXPECT_GT(start(u"slow"), 0);
  EXPECT_TRUE(gate->awaitAsked(LookUps::mostThreads));
  std::this_thread::sleep_for(50ms);
  EXPECT_EQ(gate->asked(), LookUps::mostThreads);
  gate->open();
  EXPECT_TRUE(pumpUntil([&] { return others.size() == 20; }));
  EXPECT_LE(gate->most(), LookUps::mostThreads);
}

TEST_F(HeldLookUps, CanBeTakenBack) {
  const std::int32_t first = start(u"slow");
  EXPECT_TRUE(gate->awaitAsked(1));
  EXPECT_EQ(sockets().WSACancelAsyncRequest(first), 0);
  EXPECT_EQ(sockets().WSACancelAsyncRequest(first), ws::failed);
  EXPECT_EQ(lastError(), ws::error::invalidArgument);
  EXPECT_EQ(sockets().WSACancelAsyncRequest(0), ws::failed);
  gate->open();
  const std::int32_t second = start(u"slow");
  EXPECT_EQ(errorOf(second), 0);
  settle();
  EXPECT_EQ(others.size(), 1u);  // of the second alone
}

TEST_F(HeldLookUps, AreTakenBackByTheEndOfTheService) {
  start(u"slow");
  EXPECT_EQ(sockets().WSACleanup(), 0);
  gate->open();
  settle();
  EXPECT_TRUE(others.empty());
  EXPECT_EQ(buffer[0], 0);
}

TEST_F(HeldLookUps, ThatWaitAreNotAskedBehindTheEndOfTheService) {
  for (int i = 0; i < 20; ++i) start(u"slow");
  EXPECT_TRUE(gate->awaitAsked(LookUps::mostThreads));
  EXPECT_EQ(sockets().WSACleanup(), 0);
  gate->open();
  settle();
  std::this_thread::sleep_for(100ms);
  EXPECT_EQ(gate->asked(), LookUps::mostThreads);
}

TEST_F(HeldLookUps, DoNotHoldUpTheEnd) {
  start(u"stuck");
  EXPECT_TRUE(gate->awaitAsked(1));
  for (int i = 0; i < 10; ++i) start(u"waiting");
  const auto begin = std::chrono::steady_clock::now();
  machine.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, 4s);
  gate->open();
  std::this_thread::sleep_for(100ms);  // what is left ends by itself, and asks nothing more
  EXPECT_LE(gate->asked(), LookUps::mostThreads);
}

TEST(LookUpThreads, EndWithTheObject) {
  std::atomic<int> running = 0;
  {
    LookUps lookUps([&](const std::string& name) {
      ++running;
      std::this_thread::sleep_for(20ms);
      --running;
      return Host{0, name, {}};
    });
    for (int i = 0; i < 3; ++i) lookUps.start("x");
  }
  EXPECT_EQ(running, 0);
}

}  // namespace
}  // namespace zev::posix
