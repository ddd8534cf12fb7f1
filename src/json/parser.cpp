#include "json/parser.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

namespace zev::json {
namespace {

using Library = nlohmann::json;

bool isIdentifier(std::string_view key) {
  const auto letter = [](char each) {
    return (each >= 'a' && each <= 'z') || (each >= 'A' && each <= 'Z') || each == '_';
  };
  return !key.empty() && letter(key.front()) && std::all_of(key.begin(), key.end(), [&](char each) {
    return letter(each) || (each >= '0' && each <= '9');
  });
}

/// The reason of a syntax error without the parser's own number and place.
std::string syntaxReason(std::string_view what) {
  const std::size_t place = what.find("syntax error");
  return std::string(place == std::string_view::npos ? what : what.substr(place));
}

/// Makes a value of what the library reads, piece by piece.
class Builder final : public nlohmann::json_sax<Library> {
 public:
  bool null() override { return add(nullptr); }
  bool boolean(bool flag) override { return add(flag); }
  bool number_integer(std::int64_t number) override { return add(number); }
  bool number_unsigned(std::uint64_t number) override { return add(number); }
  bool number_float(double number, const std::string&) override { return add(number); }
  bool string(std::string& text) override { return add(std::move(text)); }
  bool binary(Library::binary_t&) override { return false; }
  bool start_object(std::size_t) override { return open(Value::members()); }
  bool end_object() override { return close(); }
  bool start_array(std::size_t) override { return open(Value::list()); }
  bool end_array() override { return close(); }

  bool key(std::string& name) override {
    Open& object = open_.back();
    if (object.value.contains(name)) throw TwiceError(name, path());
    object.key = std::move(name);
    return true;
  }

  bool parse_error(std::size_t position, const std::string& token,
                   const Library::exception& error) override {
    if (dynamic_cast<const Library::out_of_range*>(&error) != nullptr) {
      throw ParseError("the number " + token + " is beyond every type", position - token.size());
    }
    throw ParseError(syntaxReason(error.what()), position == 0 ? 0 : position - 1);
  }

  Value take() { return std::move(whole_); }

 private:
  /// A list or an object that is being read.
  struct Open {
    Value value;
    std::string key = {};  ///< of the member that comes next
  };

  bool open(Value value) {
    open_.push_back({std::move(value)});
    return true;
  }

  bool close() {
    Value value = std::move(open_.back().value);
    open_.pop_back();
    return add(std::move(value));
  }

  bool add(Value value) {
    if (open_.empty()) {
      whole_ = std::move(value);
    } else if (Open& owner = open_.back(); owner.value.isList()) {
      owner.value.push_back(std::move(value));
    } else {
      owner.value.items().push_back({std::move(owner.key), std::move(value)});
    }
    return true;
  }

  /// Of the innermost of all that are open.
  std::string path() const {
    std::string path = "$";
    for (std::size_t place = 0; place + 1 < open_.size(); ++place) {
      const Open& each = open_[place];
      path +=
          each.value.isList() ? "[" + std::to_string(each.value.size()) + "]" : pathStep(each.key);
    }
    return path;
  }

  std::vector<Open> open_;
  Value whole_;
};

}  // namespace

Value parse(std::string_view text) {
  Builder builder;
  Library::sax_parse(text, &builder);
  return builder.take();
}

std::string pathStep(const std::string& key) {
  return isIdentifier(key) ? "." + key : "[" + Value(key).dump() + "]";
}

}  // namespace zev::json
