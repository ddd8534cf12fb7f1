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

bool isIdentifier(std::string_view key) {
  const auto letter = [](char each) {
    return (each >= 'a' && each <= 'z') || (each >= 'A' && each <= 'Z') || each == '_';
  };
  return !key.empty() && letter(key.front()) && std::all_of(key.begin(), key.end(), [&](char each) {
    return letter(each) || (each >= '0' && each <= '9');
  });
}

std::string_view kindOf(const Json& value) {
  switch (value.type()) {
    case Json::value_t::null:
      return "null";
    case Json::value_t::object:
      return "an object";
    case Json::value_t::array:
      return "a list";
    case Json::value_t::string:
      return "a text";
    case Json::value_t::boolean:
      return "true or false";
    case Json::value_t::number_float:
      return std::abs(value.get<double>()) < beyondWhole ? "a fraction"
                                                         : "a number beyond every type";
    default:
      return "a whole number";
  }
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

/// Watches a parse for objects that name a key twice: the later value would silently win.
class KeyWatch {
 public:
  bool operator()(int /*depth*/, Json::parse_event_t event, Json& parsed) {
    using Event = Json::parse_event_t;
    if (event == Event::object_start || event == Event::array_start) {
      open_.push_back({.isList = event == Event::array_start});
      return true;
    }
    if (event == Event::key) {
      takeKey(parsed);
      return true;
    }
    if (event != Event::value) open_.pop_back();
    if (!open_.empty()) ++open_.back().count;
    return true;
  }

 private:
  /// A list or an object that is being read.
  struct Open {
    bool isList = false;
    std::size_t count = 0;  ///< of the values read
    std::set<std::string> keys = {};
    std::string key = {};  ///< the last one
  };

  void takeKey(const Json& key) {
    Open& object = open_.back();
    if (!object.keys.insert(key).second) {
      throw ScenarioError(path(), "the key " + key.dump() + " stands twice in one object");
    }
    object.key = key;
  }

  /// Of the innermost of all that are open.
  std::string path() const {
    std::string path = "$";
    for (std::size_t place = 0; place + 1 < open_.size(); ++place) {
      const Open& each = open_[place];
      path += each.isList ? "[" + std::to_string(each.count) + "]" : pathStep(each.key);
    }
    return path;
  }

  std::vector<Open> open_;
};

/// Reads a document for nothing but the number in it that is beyond every type, where the parser
/// stops, and tells where that is.
class NumberFinder final : public nlohmann::json_sax<Json> {
 public:
  bool null() override { return true; }
  bool boolean(bool) override { return true; }
  bool number_integer(std::int64_t) override { return true; }
  bool number_unsigned(std::uint64_t) override { return true; }
  bool number_float(double, const std::string&) override { return true; }
  bool string(std::string&) override { return true; }
  bool binary(Json::binary_t&) override { return true; }
  bool start_object(std::size_t) override { return true; }
  bool key(std::string&) override { return true; }
  bool end_object() override { return true; }
  bool start_array(std::size_t) override { return true; }
  bool end_array() override { return true; }
  bool parse_error(std::size_t position, const std::string& token,
                   const Json::exception&) override {
    number = token;
    offset = position - token.size();
    return false;
  }

  std::string number;
  std::size_t offset = 0;
};

[[noreturn]] void failAtNumber(std::string_view text) {
  NumberFinder finder;
  Json::sax_parse(text, &finder);
  throw ScenarioError(lineAndColumn(text, finder.offset),
                      "the number " + finder.number + " is beyond every type");
}

/// The reason of a syntax error without the parser's own number and place.
std::string syntaxReason(const Json::parse_error& error) {
  const std::string_view what = error.what();
  const std::size_t place = what.find("syntax error");
  return std::string(place == std::string_view::npos ? what : what.substr(place));
}

}  // namespace

ScenarioError::ScenarioError(std::string path, std::string reason)
    : std::runtime_error(path + ": " + reason),
      path_(std::move(path)),
      reason_(std::move(reason)) {}

std::string pathStep(const std::string& key) {
  return isIdentifier(key) ? "." + key : "[" + Json(key).dump() + "]";
}

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
  if (!value_->is_array()) failWanted("a list");
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
  if (!value_->is_object()) failWanted("an object");
  std::vector<std::pair<std::string, JsonReader>> all;
  for (const auto& each : value_->items()) all.emplace_back(each.key(), member(each.key()));
  return all;
}

std::string JsonReader::utf8() const {
  if (!value_->is_string()) failWanted("a text");
  return value_->get<std::string>();
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
  if (!value_->is_number_integer()) failWanted("a whole number");
  const bool tooLarge =
      value_->is_number_unsigned() &&
      value_->get<std::uint64_t>() > std::uint64_t{std::numeric_limits<std::int64_t>::max()};
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
  if (!value_->is_boolean()) failWanted("true or false");
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
    return Json::parse(text, KeyWatch());
  } catch (const Json::parse_error& error) {
    throw ScenarioError(lineAndColumn(text, error.byte == 0 ? 0 : error.byte - 1),
                        syntaxReason(error));
  } catch (const Json::out_of_range&) {
    failAtNumber(text);
  }
}

}  // namespace zev::scenario
