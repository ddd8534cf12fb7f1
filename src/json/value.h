#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace zev::json {

/// What JSON can say: nothing, a flag, a whole number, a fraction, a UTF-8 text, a list of values,
/// or members by their names in the order in which they were added. Who only tells and asks does
/// not compile the library that reads it.
///
/// Asking for what a value is not is std::logic_error: a text of a number, a member of a list.
class Value {
 public:
  struct Member;

  Value();
  Value(std::nullptr_t);
  Value(bool flag);
  template <std::integral Number>
  Value(Number number) : Value(Exact(), fit(number)) {}
  Value(double number);
  Value(std::string text);
  Value(std::string_view text);
  Value(const char* text);
  Value(std::initializer_list<Member> members);
  Value(const Value& other);
  Value(Value&& other) noexcept;
  Value& operator=(const Value& other);
  Value& operator=(Value&& other) noexcept;
  ~Value();

  /// A list, empty or of some values; no members yet.
  static Value list(std::vector<Value> values = {});
  static Value members();

  bool isNull() const;
  bool isFlag() const;
  bool isNumber() const;      ///< a whole one
  bool isBeyondSign() const;  ///< one that no type with a sign holds
  bool isFraction() const;
  bool isText() const;
  bool isList() const;
  bool isMembers() const;
  bool isStructured() const { return isList() || isMembers(); }

  /// How many values a list or members have; nothing has none, anything else is one.
  std::size_t size() const;
  bool empty() const { return size() == 0; }

  const std::string& text() const;
  double fraction() const;
  /// The text, number or flag, where the type has to be named.
  template <typename Wanted>
  Wanted get() const {
    if constexpr (std::integral<Wanted>)
      return static_cast<Wanted>(number());
    else
      return Wanted(text());
  }

  /// A member; for a name that is not there nothing, which a value that can be changed then gets.
  const Value& operator[](std::string_view name) const;
  Value& operator[](std::string_view name);
  bool contains(std::string_view name) const;
  /// A member that has to be there.
  const Value& at(std::string_view name) const;
  /// All members, in their order.
  const std::vector<Member>& items() const;
  std::vector<Member>& items();

  /// Takes a member away, if it is there.
  void erase(std::string_view name);
  /// Takes members over, each in place of the one of its name.
  void update(const Value& members);

  /// A value of a list, counted from 0.
  template <std::integral Place>
  const Value& operator[](Place place) const {
    return at(place);
  }
  template <std::integral Place>
  Value& operator[](Place place) {
    return const_cast<Value&>(element(static_cast<std::size_t>(place)));
  }
  template <std::integral Place>
  const Value& at(Place place) const {
    return element(static_cast<std::size_t>(place));
  }
  std::vector<Value>::const_iterator begin() const;
  std::vector<Value>::const_iterator end() const;
  std::vector<Value>::iterator begin();
  std::vector<Value>::iterator end();
  /// Adds to a list; nothing becomes one.
  void push_back(Value value);

  /// The value as JSON: on one line, or with members and elements on lines of their own, each level
  /// indented by so many blanks more.
  std::string dump(int indent = -1) const;

  // Numbers are equal if they say the same, members only in the same order.
  // Within the class, where nothing but a value finds them: a text would else become one.
  friend bool operator==(const Value& first, const Value& second) { return first.equals(second); }
  friend bool operator==(const Value& value, std::string_view text) { return value.says(text); }
  friend bool operator==(const Value& value, const std::string& text) { return value.says(text); }
  friend bool operator==(const Value& value, const char* text) { return value.says(text); }
  friend bool operator==(const Value& value, bool flag) { return value.equals(flag); }
  template <std::integral Number>
  friend bool operator==(const Value& value, Number number) {
    return value.equals(number);
  }

  /// Calls with what the value is: std::monostate, bool, std::int64_t, std::uint64_t, double,
  /// std::string, std::vector<Value> or std::vector<Member>.
  template <typename Visitor>
  decltype(auto) visit(Visitor&& visitor) const {
    return std::visit(std::forward<Visitor>(visitor), content_);
  }

 private:
  struct Exact {};
  /// A number without a sign only where one with a sign does not hold it: equal ones are alike.
  using Whole = std::variant<std::int64_t, std::uint64_t>;
  using Content = std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double,
                               std::string, std::vector<Value>, std::vector<Member>>;

  template <std::integral Number>
  static Whole fit(Number number) {
    if (std::in_range<std::int64_t>(number)) return static_cast<std::int64_t>(number);
    return static_cast<std::uint64_t>(number);
  }
  Value(Exact, Whole number);
  bool equals(const Value& other) const;
  bool says(std::string_view text) const;
  std::uint64_t number() const;
  double wholeAsFraction() const;
  const Value& element(std::size_t place) const;
  const Value* find(std::string_view name) const;

  Content content_;
};

struct Value::Member {
  std::string name;
  Value value;

  bool operator==(const Member&) const = default;
};

/// As dump(), for the messages of tests.
std::ostream& operator<<(std::ostream& out, const Value& value);

}  // namespace zev::json
