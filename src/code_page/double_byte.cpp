#include "code_page/page_tables.h"

#include <iconv.h>

#include <iterator>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <vector>

namespace zev {
namespace {

constexpr std::size_t allPairs = 0x10000;
constexpr unsigned char firstTrail = 1;  // a NUL is never the second byte of a character

/// A conversion of the C library.
class Conversion {
 public:
  Conversion(const char* to, const char* from) : handle_(iconv_open(to, from)) {
    if (reinterpret_cast<std::intptr_t>(handle_) == -1) {
      throw std::runtime_error(std::string("the C library cannot convert ") + from + " to " + to);
    }
  }
  ~Conversion() { iconv_close(handle_); }
  Conversion(const Conversion&) = delete;
  Conversion& operator=(const Conversion&) = delete;

  /// What one character becomes; empty if it is none, or has no counterpart.
  std::string operator()(std::string bytes) {
    char made[8] = {};
    char* from = bytes.data();
    char* to = made;
    std::size_t left = bytes.size();
    std::size_t room = sizeof made;
    iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    const bool converted = iconv(handle_, &from, &left, &to, &room) != std::size_t(-1);
    return converted ? std::string(made, to) : std::string();
  }

 private:
  iconv_t handle_;
};

/// A character's bytes as one number: the single one, or the lead byte above the other.
std::string bytesOfPair(std::size_t pair) {
  std::string bytes;
  if (pair > 0xFF) bytes += static_cast<char>(pair >> 8);
  return bytes + static_cast<char>(pair & 0xFF);
}

std::size_t pairOf(const std::string& bytes) {
  std::size_t pair = 0;
  for (const char byte : bytes) pair = pair << 8 | static_cast<unsigned char>(byte);
  return pair;
}

bool isLead(const DoubleBytePage& page, unsigned char byte) {
  for (const ByteRange& range : page.leads) {
    if (byte >= range.first && byte <= range.last) return true;
  }
  return false;
}

/// All of a page, both ways; 0 where there is nothing.
class PageTables {
 public:
  explicit PageTables(const DoubleBytePage& page) : units_(allPairs), pairs_(allPairs) {
    Conversion fromPage("UTF-16LE", page.name);
    for (std::size_t byte = firstTrail; byte <= 0xFF; ++byte) {
      if (!isLead(page, static_cast<unsigned char>(byte))) {
        readUnit(fromPage, byte);
        continue;
      }
      for (std::size_t trail = firstTrail; trail <= 0xFF; ++trail) {
        readUnit(fromPage, byte << 8 | trail);
      }
    }
    readPairs(page);
  }

  char16_t unit(std::size_t pair) const { return units_[pair]; }
  std::size_t pair(char16_t unit) const { return pairs_[unit]; }

 private:
  void readUnit(Conversion& fromPage, std::size_t pair) {
    const std::string unit = fromPage(bytesOfPair(pair));
    if (unit.size() != sizeof(char16_t)) return;
    units_[pair] = static_cast<char16_t>(static_cast<unsigned char>(unit[0]) |
                                         static_cast<unsigned char>(unit[1]) << 8);
  }

  /// Characters that have more than one place in the page go to the one that the library prefers.
  /// Those that it puts in another's place for their looks do not come back as themselves.
  void readPairs(const DoubleBytePage& page) {
    Conversion toPage(page.name, "UTF-16LE");
    for (std::size_t pair = 1; pair < allPairs; ++pair) {
      const char16_t unit = units_[pair];
      if (unit == 0 || pairs_[unit] != 0) continue;
      const std::string bytes = {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
      const std::size_t preferred = pairOf(toPage(bytes));
      pairs_[unit] = static_cast<std::uint16_t>(units_[preferred] == unit ? preferred : pair);
    }
  }

  std::vector<char16_t> units_;
  std::vector<std::uint16_t> pairs_;
};

/// The tables of a page, made when they are first asked for.
const PageTables& tablesOf(const DoubleBytePage& page) {
  static std::once_flag made[std::size(doubleBytePages)];
  static std::unique_ptr<const PageTables> tables[std::size(doubleBytePages)];
  const auto place = static_cast<std::size_t>(&page - doubleBytePages);
  std::call_once(made[place], [&] { tables[place] = std::make_unique<PageTables>(page); });
  return *tables[place];
}

/// Takes one character from bytes and moves past it.
char16_t takeUnit(const PageTables& tables, const DoubleBytePage& page, std::string_view bytes,
                  std::size_t& place) {
  std::size_t pair = static_cast<unsigned char>(bytes[place++]);
  const bool followed = place < bytes.size() && bytes[place] != '\0';
  if (isLead(page, static_cast<unsigned char>(pair)) && followed) {
    pair = pair << 8 | static_cast<unsigned char>(bytes[place++]);
  }
  const char16_t unit = tables.unit(pair);
  return unit != 0 || pair == 0 ? unit : page.unknown;
}

}  // namespace

std::string toDoubleByte(TextView text, const DoubleBytePage& page) {
  const PageTables& tables = tablesOf(page);
  std::string bytes;
  bytes.reserve(text.size());
  for (const char16_t unit : text) {
    const std::size_t pair = tables.pair(unit);
    bytes += pair != 0 || unit == 0 ? bytesOfPair(pair) : std::string(1, defaultCharacter);
  }
  return bytes;
}

Text fromDoubleByte(std::string_view bytes, const DoubleBytePage& page) {
  const PageTables& tables = tablesOf(page);
  Text text;
  text.reserve(bytes.size());
  for (std::size_t place = 0; place < bytes.size();) {
    text += takeUnit(tables, page, bytes, place);
  }
  return text;
}

}  // namespace zev
