#include "simulated/shell_link.h"

#include <gtest/gtest.h>

#include <string>

namespace zev::simulated {
namespace {

class ShellLink : public testing::Test {
 protected:
  std::uint32_t number(std::size_t offset, int count = 4) const {
    std::uint32_t value = 0;
    for (int each = count - 1; each >= 0; --each) {
      value = value << 8 | link.at(offset + static_cast<std::size_t>(each));
    }
    return value;
  }
  std::string ansi(std::size_t offset) const {
    return reinterpret_cast<const char*>(link.data()) + offset;
  }
  /// The counted string at a place, which moves behind it.
  Text string(std::size_t& place) const {
    Text text;
    const std::uint32_t count = number(place, 2);
    for (place += 2; text.size() < count; place += 2) {
      text += static_cast<char16_t>(number(place, 2));
    }
    return text;
  }

  ShortcutProperties properties{u"C:\\P\u00FC\\p.exe", u" /x",      7,
                                u"C:\\i.dll, 3",       u"A \u015F", u"C:\\P\u00FC"};
  std::vector<std::uint8_t> link = shellLink(properties, 1252);
};

TEST_F(ShellLink, BeginsWithTheHeaderOfItsClass) {
  EXPECT_EQ(number(0), 0x4Cu);
  EXPECT_EQ(number(4), 0x00021401u);
  EXPECT_EQ(number(16), 0x46000000u);
  EXPECT_EQ(number(20), 0x02u | 0x04u | 0x10u | 0x20u | 0x40u | 0x80u);
  EXPECT_EQ(number(56), 3u);  // icon
  EXPECT_EQ(number(60), 7u);  // show command
}

TEST_F(ShellLink, HoldsTheTargetAndTheStringsInTheirOrder) {
  const std::size_t info = 0x4C;
  const std::uint32_t infoBytes = number(info);
  EXPECT_EQ(number(info + 8), 1u);
  EXPECT_EQ(number(info + number(info + 12)), 0x11u);  // size of the volume's identifier
  EXPECT_EQ(ansi(info + number(info + 16)), "C:\\P\xFC\\p.exe");
  EXPECT_EQ(ansi(info + number(info + 24)), "");
  std::size_t place = info + infoBytes;
  EXPECT_EQ(string(place), u"A \u015F");
  EXPECT_EQ(string(place), u"C:\\P\u00FC");
  EXPECT_EQ(string(place), u" /x");
  EXPECT_EQ(string(place), u"C:\\i.dll");
  EXPECT_EQ(number(place), 0u);
  EXPECT_EQ(place + 4, link.size());
}

TEST_F(ShellLink, LeavesOutWhatIsEmpty) {
  link = shellLink({.TargetPath = u"C:\\p.exe"}, 1252);
  EXPECT_EQ(number(20), 0x02u | 0x80u);
  EXPECT_EQ(number(0x4C + number(0x4C)), 0u);
}

}  // namespace
}  // namespace zev::simulated
