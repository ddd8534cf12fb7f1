#include "json/value.h"

#include <algorithm>
#include <stdexcept>

namespace zev::json {
namespace {

[[noreturn]] void isNo(const char* wanted, const Value& value) {
  throw std::logic_error("no " + std::string(wanted) + ": " + value.dump());
}

/// Whole numbers and flags as the bits of a number; a fraction is cut off.
struct AsNumber {
  const Value& value;

  std::uint64_t operator()(bool flag) const { return flag ? 1 : 0; }
  std::uint64_t operator()(std::int64_t number) const { return static_cast<std::uint64_t>(number); }
  std::uint64_t operator()(std::uint64_t number) const { return number; }
  std::uint64_t operator()(double number) const {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(number));
  }
  template <typename Other>
  std::uint64_t operator()(const Other&) const {
    isNo("number", value);
  }
};

}  // namespace

Value::Value() = default;
Value::Value(std::nullptr_t) {}
Value::Value(bool flag) : content_(flag) {}
Value::Value(double number) : content_(number) {}
Value::Value(std::string text) : content_(std::move(text)) {}
Value::Value(std::string_view text) : content_(std::string(text)) {}
Value::Value(const char* text) : content_(std::string(text)) {}
Value::Value(std::initializer_list<Member> members) : content_(std::vector<Member>(members)) {}
Value::Value(const Value& other) = default;
Value::Value(Value&& other) noexcept = default;
Value& Value::operator=(const Value& other) = default;
Value& Value::operator=(Value&& other) noexcept = default;
Value::~Value() = default;

Value::Value(Exact, Whole number) {
  std::visit([this](auto exact) { content_ = exact; }, number);
}

Value Value::list(std::vector<Value> values) {
  Value list;
  list.content_ = std::move(values);
  return list;
}

Value Value::members() {
  Value value;
  value.content_.emplace<std::vector<Member>>();
  return value;
}

bool Value::isNull() const { return std::holds_alternative<std::monostate>(content_); }
bool Value::isFlag() const { return std::holds_alternative<bool>(content_); }
bool Value::isFraction() const { return std::holds_alternative<double>(content_); }
bool Value::isText() const { return std::holds_alternative<std::string>(content_); }
bool Value::isNumber() const {
  return std::holds_alternative<std::int64_t>(content_) ||
         std::holds_alternative<std::uint64_t>(content_);
}
bool Value::isBeyondSign() const { return std::holds_alternative<std::uint64_t>(content_); }
bool Value::isMembers() const { return std::holds_alternative<std::vector<Member>>(content_); }
bool Value::isList() const { return std::holds_alternative<std::vector<Value>>(content_); }

std::size_t Value::size() const {
  if (isNull()) return 0;
  if (isMembers()) return items().size();
  return isList() ? std::get<std::vector<Value>>(content_).size() : 1;
}

// ---- texts and numbers

const std::string& Value::text() const {
  if (!isText()) isNo("text", *this);
  return std::get<std::string>(content_);
}

double Value::fraction() const {
  if (!isFraction()) isNo("fraction", *this);
  return std::get<double>(content_);
}

std::uint64_t Value::number() const { return std::visit(AsNumber{*this}, content_); }

// ---- members

const std::vector<Value::Member>& Value::items() const {
  if (!isMembers()) isNo("value with members", *this);
  return std::get<std::vector<Member>>(content_);
}

std::vector<Value::Member>& Value::items() {
  if (!isMembers()) isNo("value with members", *this);
  return std::get<std::vector<Member>>(content_);
}

const Value* Value::find(std::string_view name) const {
  if (isNull()) return nullptr;
  for (const Member& each : items()) {
    if (each.name == name) return &each.value;
  }
  return nullptr;
}

const Value& Value::operator[](std::string_view name) const {
  static const Value nothing;
  const Value* found = find(name);
  return found != nullptr ? *found : nothing;
}

Value& Value::operator[](std::string_view name) {
  if (const Value* found = find(name)) return const_cast<Value&>(*found);
  if (isNull()) *this = members();
  auto& all = std::get<std::vector<Member>>(content_);
  return all.emplace_back(Member{std::string(name), {}}).value;
}

bool Value::contains(std::string_view name) const { return isMembers() && find(name) != nullptr; }

const Value& Value::at(std::string_view name) const {
  const Value* found = find(name);
  if (found == nullptr) isNo(("member " + std::string(name)).c_str(), *this);
  return *found;
}

void Value::erase(std::string_view name) {
  std::erase_if(items(), [name](const Member& each) { return each.name == name; });
}

void Value::update(const Value& members) {
  for (const auto& [name, value] : members.items()) (*this)[name] = value;
}

// ---- lists

std::vector<Value>::const_iterator Value::begin() const {
  if (!isList()) isNo("list", *this);
  return std::get<std::vector<Value>>(content_).begin();
}

std::vector<Value>::const_iterator Value::end() const {
  return begin() + static_cast<std::ptrdiff_t>(size());
}

std::vector<Value>::iterator Value::begin() {
  if (!isList()) isNo("list", *this);
  return std::get<std::vector<Value>>(content_).begin();
}

std::vector<Value>::iterator Value::end() { return begin() + static_cast<std::ptrdiff_t>(size()); }

const Value& Value::element(std::size_t place) const {
  const auto first = begin();
  if (place >= size()) isNo(("element " + std::to_string(place)).c_str(), *this);
  return *(first + static_cast<std::ptrdiff_t>(place));
}

void Value::push_back(Value value) {
  if (isNull()) content_.emplace<std::vector<Value>>();
  if (!isList()) isNo("list", *this);
  std::get<std::vector<Value>>(content_).push_back(std::move(value));
}

// ---- comparison

bool Value::equals(const Value& other) const {
  if (isFraction() && other.isNumber()) return fraction() == other.wholeAsFraction();
  if (isNumber() && other.isFraction()) return wholeAsFraction() == other.fraction();
  return content_ == other.content_;
}

double Value::wholeAsFraction() const {
  const auto* exact = std::get_if<std::uint64_t>(&content_);
  return exact != nullptr ? static_cast<double>(*exact)
                          : static_cast<double>(std::get<std::int64_t>(content_));
}

bool Value::says(std::string_view text) const {
  const std::string* own = std::get_if<std::string>(&content_);
  return own != nullptr && *own == text;
}

}  // namespace zev::json
