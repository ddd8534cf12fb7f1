#include "simulated/network/address.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

namespace zev::simulated {
namespace {

std::string through(std::string_view text) {
  const auto address = parseAddress(text);
  return address ? dotted(*address) : "none";
}

TEST(Address, HasOneToFourParts) {
  EXPECT_EQ(through("1.2.3.4"), "1.2.3.4");
  EXPECT_EQ(through("1.2.772"), "1.2.3.4");
  EXPECT_EQ(through("1.131844"), "1.2.3.4");
  EXPECT_EQ(through("16909060"), "1.2.3.4");
  EXPECT_EQ(through("1"), "0.0.0.1");
  EXPECT_EQ(through("1.2.3.4.5"), "none");
}

TEST(Address, HasPartsInThreeSystems) {
  EXPECT_EQ(through("0x7F.0.0.0x01"), "127.0.0.1");
  EXPECT_EQ(through("0177.0.0.01"), "127.0.0.1");
  EXPECT_EQ(through("0.0.0.0"), "0.0.0.0");
  EXPECT_EQ(through("08.0.0.1"), "none");
  EXPECT_EQ(through("0xG.0.0.1"), "none");
}

TEST(Address, HasPartsThatFit) {
  EXPECT_EQ(through("255.255.255.255"), "255.255.255.255");
  EXPECT_EQ(through("256.0.0.1"), "none");
  EXPECT_EQ(through("1.2.3.256"), "none");
  EXPECT_EQ(through("1.2.65536"), "none");
  EXPECT_EQ(through("1.16777216"), "none");
  EXPECT_EQ(through("4294967295"), "255.255.255.255");
  EXPECT_EQ(through("4294967296"), "none");
}

TEST(Address, IsNothingElse) {
  for (const char* text :
       {"", ".", "1.", ".1", "1..2", "localhost", "-1", "1.2.3.4 ", " 1.2.3.4"}) {
    EXPECT_EQ(through(text), "none") << text;
  }
  EXPECT_THROW(addressOf("localhost"), std::invalid_argument);
}

TEST(Address, CrossesTheCallsInNetworkOrder) {
  const SocketAddress address = toSocketAddress({addressOf("192.168.1.20"), 0x1234});
  std::uint8_t bytes[sizeof(SocketAddress)] = {};
  std::memcpy(bytes, &address, sizeof(bytes));
  EXPECT_EQ(bytes[2], 0x12);
  EXPECT_EQ(bytes[3], 0x34);
  EXPECT_EQ(bytes[4], 192);
  EXPECT_EQ(bytes[7], 20);
  EXPECT_EQ(toEndpoint(address), (Endpoint{addressOf("192.168.1.20"), 0x1234}));
}

TEST(Address, OfLoopbackBeginsWith127) {
  EXPECT_TRUE(isLoopback(addressOf("127.0.0.1")));
  EXPECT_TRUE(isLoopback(addressOf("127.8.9.10")));
  EXPECT_FALSE(isLoopback(addressOf("192.168.1.127")));
}

}  // namespace
}  // namespace zev::simulated
