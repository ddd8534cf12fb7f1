#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "runtime/text.h"

namespace zev::fuzz {

using Data = std::span<const std::uint8_t>;

/// One thing that is tried with any bytes. It throws, or a sanitizer ends it, where something is
/// wrong.
struct Target {
  const char* name;
  void (*run)(Data data);
  std::size_t longest;  ///< bytes of an input that are worth trying
  std::size_t runs;     ///< how often ./test tries it; ./test all thirty times as often
};

/// How a test tells of it.
void PrintTo(const Target& target, std::ostream* out);

/// All of them.
std::span<const Target> targets();
/// Throws std::out_of_range for a name that none has.
const Target& target(std::string_view name);

struct Broken : std::logic_error {
  using std::logic_error::logic_error;
};

inline void require(bool holds, const std::string& what) {
  if (!holds) throw Broken(what);
}

/// Takes an input apart; behind its end everything is 0.
class Input {
 public:
  explicit Input(Data data) : data_(data) {}

  bool empty() const { return place_ >= data_.size(); }
  std::uint8_t byte() { return empty() ? std::uint8_t{0} : data_[place_++]; }
  std::uint32_t number() {
    std::uint32_t number = 0;
    for (int shift = 0; shift < 32; shift += 8) number |= std::uint32_t{byte()} << shift;
    return number;
  }
  /// 0 to limit - 1; limits are at most 65536.
  std::size_t below(std::size_t limit) {
    const std::size_t low = byte();
    return (low + byte() * std::size_t{256}) % limit;
  }
  bool flag() { return (byte() & 1) != 0; }
  Data bytes(std::size_t count) {
    const std::size_t start = std::min(place_, data_.size());
    const Data taken = data_.subspan(start, std::min(count, data_.size() - start));
    place_ = start + taken.size();
    return taken;
  }
  Data rest() { return bytes(data_.size()); }
  /// Letters of which any may stand in a text of the system.
  Text text(std::size_t longest) {
    constexpr TextView odd = u"\\/:*?\"<>|.,;= ~%&'[]{}()+\u00FC\u015F\u4E2D\u00DF\t-_0Aa";
    Text out;
    for (std::size_t left = below(longest + 1); left > 0 && !empty(); --left) {
      const std::uint8_t each = byte();
      out += each < 128 ? odd[each % odd.size()] : static_cast<char16_t>(32 + each % 95);
    }
    return out;
  }

 private:
  Data data_;
  std::size_t place_ = 0;
};

// One function a target.
void tryPackageEnd(Data data);
void tryExtraction(Data data);
void tryExpansion(Data data);
void tryExpansionWithFaults(Data data);
void tryValueFile(Data data);
void tryProject(Data data);
void tryRegistryText(Data data);
void tryScenario(Data data);
void tryDestination(Data data);
void tryShortcut(Data data);
void tryHostRecord(Data data);
void tryByteStream(Data data);
void tryWizard(Data data);

}  // namespace zev::fuzz
