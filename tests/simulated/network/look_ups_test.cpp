#include "simulated/network/look_ups.h"

#include <cstring>

#include "simulated/network/process.h"

namespace zev::simulated {
namespace {

namespace error = winsock::error;

constexpr std::uint32_t lookUpMessage = 0x800;

class LookUpsTest : public NetworkTest {
 protected:
  std::int32_t begin(TextView name, std::int32_t length = 1024) {
    return sockets.WSAAsyncGetHostByName(window, lookUpMessage, name, buffer_.data(), length);
  }
  /// Dotted addresses of a record, joined by blanks.
  static std::string addressesOf(const HostRecord& record) {
    std::string all;
    for (char** each = record.addresses; *each != nullptr; ++each) {
      HostAddress address = 0;
      std::memcpy(&address, *each, sizeof(address));
      all += (all.empty() ? "" : " ") + dotted(address);
    }
    return all;
  }
  /// What a look-up finds, or its error number.
  std::string answer(TextView name) {
    heard.clear();
    const std::int32_t handle = begin(name);
    pass(network.settings.lookUpTime);
    if (heard.size() != 1 || heard[0].wParam != static_cast<std::uintptr_t>(handle)) return "none";
    const auto words = static_cast<std::uint32_t>(heard[0].lParam);
    return words >> 16 != 0 ? std::to_string(words >> 16) : addressesOf(record());
  }
  std::string blocking(TextView name) {
    const HostRecord* const found = sockets.gethostbyname(name);
    return found == nullptr ? std::to_string(lastError()) : addressesOf(*found);
  }
  const HostRecord& record() const { return *reinterpret_cast<const HostRecord*>(buffer_.data()); }

 private:
  alignas(16) std::array<char, 1024> buffer_ = {};
};

TEST_F(LookUpsTest, FindWhatTheNetworkKnows) {
  network.addHost("server.example", {"10.0.0.1", "10.0.0.2"});
  EXPECT_EQ(answer(u"server.example"), "10.0.0.1 10.0.0.2");
  EXPECT_EQ(blocking(u"server.example"), "10.0.0.1 10.0.0.2");
  EXPECT_STREQ(record().name, "server.example");
}

TEST_F(LookUpsTest, DoNotMindTheCaseOfAName) {
  network.addHost("Server.Example", {"10.0.0.1"});
  EXPECT_EQ(answer(u"sERVER.eXAMPLE"), "10.0.0.1");
}

TEST_F(LookUpsTest, FindTheMachineItself) {
  for (const TextView name : {u"BOBPC", u"bobpc", u""}) {
    EXPECT_EQ(answer(name), "192.168.1.20");
    EXPECT_EQ(blocking(name), "192.168.1.20");
  }
  EXPECT_EQ(answer(u"localhost"), "127.0.0.1");
  EXPECT_EQ(answer(u"10.1.2.3"), "10.1.2.3");
  EXPECT_EQ(blocking(u"255.255.255.255"), "255.255.255.255");
}

TEST_F(LookUpsTest, FollowTheMachinesNameAndAddresses) {
  network.settings.machineName = "ALICEPC";
  network.settings.machineAddresses = {addressOf("10.9.8.7"), addressOf("10.9.8.6")};
  std::array<char, 16> name = {};
  EXPECT_EQ(sockets.gethostname(name.data(), 16), 0);
  EXPECT_STREQ(name.data(), "ALICEPC");
  EXPECT_EQ(blocking(u"alicepc"), "10.9.8.7 10.9.8.6");
  EXPECT_EQ(blocking(u"BOBPC"), "11001");
}

TEST_F(LookUpsTest, FailAsTheNetworkSays) {
  EXPECT_EQ(answer(u"nobody.example"), "11001");
  EXPECT_EQ(blocking(u"nobody.example"), "11001");
  for (const std::int32_t number : {error::tryAgain, error::noRecovery, error::noData}) {
    network.failName("bad.example", number);
    EXPECT_EQ(answer(u"bad.example"), std::to_string(number));
    EXPECT_EQ(blocking(u"bad.example"), std::to_string(number));
  }
  network.failName("BOBPC", error::hostNotFound);
  EXPECT_EQ(blocking(u"bobpc"), "11001");
  network.removeName("BOBPC");
  EXPECT_EQ(blocking(u"bobpc"), "192.168.1.20");
}

TEST_F(LookUpsTest, TakeTheirTime) {
  network.settings.lookUpTime = 300;
  EXPECT_NE(begin(u"localhost"), 0);
  EXPECT_EQ(sockets.runningLookUps(), 1u);
  pass(299);
  EXPECT_TRUE(heard.empty());
  pass(1);
  EXPECT_EQ(heard.size(), 1u);
  EXPECT_EQ(sockets.runningLookUps(), 0u);
}

TEST_F(LookUpsTest, TakeTheirTimeWhenTheyBlock) {
  const std::uint64_t before = network.now();
  blocking(u"localhost");
  EXPECT_EQ(network.now(), before + network.settings.lookUpTime);
}

TEST_F(LookUpsTest, WriteNothingBeforeTheyAreDone) {
  begin(u"localhost");
  EXPECT_EQ(record().addresses, nullptr);
  pass(1000);
  EXPECT_NE(record().addresses, nullptr);
}

TEST_F(LookUpsTest, CannotBeStoppedByAWrongHandle) {
  const std::int32_t handle = begin(u"localhost");
  for (const std::int32_t wrong : {0, -1, handle + 1}) {
    EXPECT_EQ(sockets.WSACancelAsyncRequest(wrong), winsock::failed);
    EXPECT_EQ(lastError(), error::invalidArgument);
  }
  pass(1000);
  EXPECT_EQ(heard.size(), 1u);
}

TEST_F(LookUpsTest, LeaveTheBufferAloneWhenCancelled) {
  EXPECT_EQ(sockets.WSACancelAsyncRequest(begin(u"localhost")), 0);
  pass(1000);
  EXPECT_TRUE(heard.empty());
  EXPECT_EQ(record().addresses, nullptr);
}

TEST_F(LookUpsTest, CannotBeCancelledBehindTheirEnd) {
  const std::int32_t handle = begin(u"localhost");
  pass(1000);
  EXPECT_EQ(sockets.WSACancelAsyncRequest(handle), winsock::failed);
  EXPECT_EQ(lastError(), error::invalidArgument);
}

TEST_F(LookUpsTest, EndWithTheService) {
  begin(u"localhost");
  EXPECT_EQ(sockets.WSACleanup(), 0);
  pass(1000);
  EXPECT_TRUE(heard.empty());
}

TEST_F(LookUpsTest, FailWithoutRoomForTheRecord) {
  begin(u"localhost", 16);
  pass(1000);
  ASSERT_EQ(heard.size(), 1u);
  const auto words = static_cast<std::uint32_t>(heard[0].lParam);
  EXPECT_EQ(words >> 16, static_cast<std::uint32_t>(error::noBuffers));
  EXPECT_GT(words & 0xFFFF, 16u);  // what it would have needed
  EXPECT_EQ(record().addresses, nullptr);
}

TEST_F(LookUpsTest, NeedAWindow) {
  EXPECT_EQ(sockets.WSAAsyncGetHostByName(0, lookUpMessage, u"localhost", this, 1024), 0);
  EXPECT_EQ(lastError(), error::invalidArgument);
}

TEST_F(LookUpsTest, DoNotOutliveTheirProcess) {
  SimulatedNetwork other;
  {
    SimulatedSockets brief(other, queue);
    ASSERT_EQ(brief.WSAStartup(winsock::version), 0);
    std::array<char, 256> buffer = {};
    EXPECT_NE(brief.WSAAsyncGetHostByName(window, lookUpMessage, u"localhost", buffer.data(), 256),
              0);
  }
  other.advance(1000);
  EXPECT_EQ(queue.waiting(), 0u);
}

}  // namespace
}  // namespace zev::simulated
