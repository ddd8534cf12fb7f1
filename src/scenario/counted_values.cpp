#include "scenario/counted_values.h"

#include <algorithm>
#include <string>

namespace zev::scenario {
namespace {

constexpr int longestCount = 100'000;
constexpr std::size_t mostDigits = 6;

struct Numbered {
  std::string text;        ///< in front of the number
  std::size_t digits = 0;  ///< that a text has at its end; 0 of a number
  int number = -1;         ///< none: -1
};

bool isCount(const Json& value) {
  return value.isNumber() && !value.isBeyondSign() && value.get<std::int64_t>() >= 0 &&
         value.get<std::int64_t>() < longestCount;
}

Numbered numbered(const Json& value) {
  if (isCount(value)) return {{}, 0, value.get<int>()};
  if (!value.isText()) return {};
  const auto text = value.text();
  const std::size_t place = text.find_last_not_of("0123456789") + 1;  // npos + 1 is 0
  const std::string digits = text.substr(place);
  if (digits.empty() || digits.size() > mostDigits) return {};
  return {text.substr(0, place), digits.size(), std::stoi(digits)};
}

bool canCount(const Numbered& first, const Numbered& last) {
  return first.text == last.text && first.digits == last.digits && first.number >= 0 &&
         first.number <= last.number && last.number - first.number < longestCount;
}

Json written(const Numbered& model, int number) {
  if (model.digits == 0) return number;
  std::string digits = std::to_string(number);
  digits.insert(0, model.digits - std::min(model.digits, digits.size()), '0');
  return model.text + digits;
}

}  // namespace

std::optional<std::vector<Json>> countedUp(const Json& from, const Json& to) {
  const Numbered first = numbered(from);
  const Numbered last = numbered(to);
  if (!canCount(first, last)) return std::nullopt;
  std::vector<Json> all;
  for (int number = first.number; number <= last.number; ++number) {
    all.push_back(written(first, number));
  }
  return all;
}

}  // namespace zev::scenario
