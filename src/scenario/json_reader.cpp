#include "scenario/json_reader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>

#include "scenario/written_out.h"

namespace zev::scenario {
namespace {

constexpr std::string_view base64Digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// From here on a whole number has no type and is read as a fraction.
constexpr double beyondWhole = 9223372036854775808.0;

std::string_view kindOf(const Json& value) {
  if (value.isNull()) return "null";
  if (value.isMembers()) return "an object";
  if (value.isList()) return "a list";
  if (value.isText()) return "a text";
  if (value.isFlag()) return "true or false";
  if (value.isNumber()) return "a whole number";
  return std::abs(value.fraction()) < beyondWhole ? "a fraction" : "a number beyond every type";
}

int hexDigit(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  return -1;
}

/// The place of a byte in a text as a person counts: lines and columns from 1.
std::string lineAndColumn(std::string_view text, std::size_t offset) {
  const std::string_view before = text.substr(0, offset);
  const auto lines = std::count(before.begin(), before.end(), '\n');
  const std::size_t lineStart = before.rfind('\n') + 1;  // npos + 1 is 0
  return "line " + std::to_string(lines + 1) + ", column " +
         std::to_string(before.size() - lineStart + 1);
}

/// A document is read, and written again, level by level. Its levels are counted before anything
/// follows them down; no scenario comes near that many.
constexpr int mostLevels = 100;

/// Where a document opens a level too many; npos if it does not. What stands in texts opens none.
std::size_t tooDeepAt(std::string_view text) {
  int levels = 0;
  bool inText = false;
  for (std::size_t place = 0; place < text.size(); ++place) {
    const char each = text[place];
    if (inText && each == '\\') {
      ++place;
    } else if (each == '"') {
      inText = !inText;
    } else if (!inText && (each == '{' || each == '[')) {
      if (++levels > mostLevels) return place;
    } else if (!inText && (each == '}' || each == ']')) {
      --levels;
    }
  }
  return std::string_view::npos;
}

void requireFewLevels(std::string_view text) {
  const std::size_t place = tooDeepAt(text);
  if (place == std::string_view::npos) return;
  throw ScenarioError(lineAndColumn(text, place),
                      "more than " + std::to_string(mostLevels) + " levels within one another");
}

}  // namespace

ScenarioError::ScenarioError(std::string path, std::string reason)
    : std::runtime_error(path + ": " + reason),
      path_(std::move(path)),
      reason_(std::move(reason)) {}

JsonReader::JsonReader(const Json& document, const std::filesystem::path& folder, std::string path,
                       std::shared_ptr<const Origins> origins)
    : value_(&document),
      folder_(std::make_shared<const std::filesystem::path>(folder)),
      path_(std::move(path)),
      origins_(std::move(origins)) {}

std::string JsonReader::path() const { return origins_ ? origins_->written(path_) : path_; }

void JsonReader::fail(const std::string& reason) const { throw ScenarioError(path(), reason); }

void JsonReader::failWanted(std::string_view wanted) const {
  fail(std::string(kindOf(*value_)) + " where " + std::string(wanted) + " is wanted");
}

JsonReader JsonReader::element(std::size_t index) const {
  return {value_->at(index), *this, "[" + std::to_string(index) + "]"};
}

JsonReader JsonReader::member(const std::string& key) const {
  return {value_->at(key), *this, pathStep(key)};
}

std::vector<JsonReader> JsonReader::elements() const {
  if (!value_->isList()) failWanted("a list");
  std::vector<JsonReader> all;
  for (std::size_t index = 0; index < value_->size(); ++index) all.push_back(element(index));
  return all;
}

std::vector<JsonReader> JsonReader::elements(std::size_t count) const {
  auto all = elements();
  if (all.size() != count) {
    fail("a list of " + std::to_string(all.size()) + " where " + std::to_string(count) +
         " elements are wanted");
  }
  return all;
}

std::vector<std::pair<std::string, JsonReader>> JsonReader::members() const {
  if (!value_->isMembers()) failWanted("an object");
  std::vector<std::pair<std::string, JsonReader>> all;
  for (const auto& [key, value] : value_->items()) all.emplace_back(key, member(key));
  return all;
}

std::string JsonReader::utf8() const {
  if (!value_->isText()) failWanted("a text");
  return value_->text();
}

std::vector<std::uint8_t> JsonReader::hex() const {
  const std::string digits = utf8();
  std::vector<std::uint8_t> bytes;
  if (digits.size() % 2 != 0) fail("an odd number of hexadecimal digits");
  for (std::size_t place = 0; place < digits.size(); place += 2) {
    const int high = hexDigit(digits[place]);
    const int low = hexDigit(digits[place + 1]);
    if (high < 0 || low < 0) fail("a character that is no hexadecimal digit");
    bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
  }
  return bytes;
}

std::vector<std::uint8_t> JsonReader::base64() const {
  std::string digits = utf8();
  if (digits.size() % 4 != 0) fail("base 64 comes in groups of four characters");
  for (int padding = 0; padding < 2 && digits.ends_with('='); ++padding) digits.pop_back();
  std::vector<std::uint8_t> bytes;
  std::uint32_t bits = 0;
  unsigned count = 0;
  for (const char digit : digits) {
    const std::size_t value = base64Digits.find(digit);
    if (value == std::string_view::npos) fail("a character that is no digit of base 64");
    bits = (bits << 6) | static_cast<std::uint32_t>(value);
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes.push_back(static_cast<std::uint8_t>(bits >> count));
  }
  return bytes;
}

std::int64_t JsonReader::whole(std::int64_t least, std::int64_t most) const {
  if (!value_->isNumber()) failWanted("a whole number");
  const bool tooLarge = value_->isBeyondSign();
  const std::int64_t number = tooLarge ? most : value_->get<std::int64_t>();
  if (tooLarge || number < least || number > most) {
    fail(value_->dump() + " is not within " + std::to_string(least) + " to " +
         std::to_string(most));
  }
  return number;
}

std::filesystem::path JsonReader::hostPath() const {
  return *folder_ / std::filesystem::path(fromUtf8(utf8()));
}

std::filesystem::path JsonReader::hostFile() const {
  std::filesystem::path path = hostPath();
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) fail("no file " + path.string());
  return path;
}

std::filesystem::path JsonReader::hostFolder() const {
  std::filesystem::path path = hostPath();
  std::error_code ignored;
  if (!std::filesystem::is_directory(path, ignored)) fail("no folder " + path.string());
  return path;
}

bool JsonReader::truth() const {
  if (!value_->isFlag()) failWanted("true or false");
  return value_->get<bool>();
}

void JsonReader::requireTrue() const {
  if (!truth()) fail("only true has a meaning here");
}

void failUnknownKey(const JsonReader& value, std::string_view key,
                    const std::vector<std::string_view>& known) {
  std::string reason = "unknown key \"" + std::string(key) + "\"; the keys are";
  for (std::size_t place = 0; place < known.size(); ++place) {
    reason += (place == 0 ? " " : ", ") + std::string(known[place]);
  }
  value.fail(reason);
}

Json parseJson(std::string_view text) {
  requireFewLevels(text);
  try {
    return json::parse(text);
  } catch (const json::ParseError& error) {
    throw ScenarioError(lineAndColumn(text, error.offset()), error.what());
  } catch (const json::TwiceError& error) {
    throw ScenarioError(error.path(), error.what());
  }
}

}  // namespace zev::scenario
