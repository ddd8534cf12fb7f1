#pragma once

#include <concepts>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "json/parser.h"
#include "runtime/text.h"

namespace zev::scenario {

/// Objects keep the order in which they are written.
using Json = json::Value;

/// What is wrong with a scenario: where in it, as a JSON path such as `$.script[3].click`, and why.
/// It is no run-time error of the played program, so no trap of that program catches it.
class ScenarioError : public std::runtime_error {
 public:
  ScenarioError(std::string path, std::string reason);
  const std::string& path() const { return path_; }
  const std::string& reason() const { return reason_; }

 private:
  std::string path_;
  std::string reason_;
};

class Origins;

using json::pathStep;

/// A value that may be absent (nothing is said of it), null, or there.
template <typename T>
using Nullable = std::optional<std::optional<T>>;

/// One place in a JSON document: the value there and the path to it. It reads the value as what it
/// has to be and fails with a ScenarioError for anything else. The document is borrowed. Names of
/// the host's files in it are relative to a folder. Of a document that is written out of several
/// places the origins tell the path to a value as it was written.
class JsonReader {
 public:
  explicit JsonReader(const Json& document, const std::filesystem::path& folder = {},
                      std::string path = "$", std::shared_ptr<const Origins> origins = nullptr);

  /// The value itself, which the document owns.
  const Json& json() const { return *value_; }
  /// The path to it, as it was written where the document has origins.
  std::string path() const;
  bool isNull() const { return value_->isNull(); }
  bool isText() const { return value_->isText(); }
  bool isObject() const { return value_->isMembers(); }
  bool isNumber() const { return value_->isNumber(); }

  [[noreturn]] void fail(const std::string& reason) const;
  /// Fails because the value is something else than what is wanted, such as "a list of texts".
  [[noreturn]] void failWanted(std::string_view wanted) const;

  /// The parts of a list or an object, in the order in which they are written. Fails for any other
  /// value. Asked for by its place or key, a part has to be there.
  std::vector<JsonReader> elements() const;
  std::vector<std::pair<std::string, JsonReader>> members() const;
  JsonReader element(std::size_t index) const;
  JsonReader member(const std::string& key) const;
  /// The elements of a list that has exactly `count`.
  std::vector<JsonReader> elements(std::size_t count) const;

  std::string utf8() const;
  Text text() const { return fromUtf8(utf8()); }
  /// Bytes written as pairs of hexadecimal digits, or in base 64.
  std::vector<std::uint8_t> hex() const;
  std::vector<std::uint8_t> base64() const;
  /// A whole number within these bounds, both counted in.
  std::int64_t whole(std::int64_t least, std::int64_t most) const;
  bool truth() const;
  /// Reads a value that says something by being there, and so can only be true.
  void requireTrue() const;
  /// A place of the host, which need not exist.
  std::filesystem::path hostPath() const;
  /// A file or folder of the host, which must exist.
  std::filesystem::path hostFile() const;
  std::filesystem::path hostFolder() const;

  void read(bool& into) const { into = truth(); }
  void read(Text& into) const { into = text(); }
  void read(std::string& into) const { into = utf8(); }
  template <std::integral T>
  void read(T& into) const;
  template <typename T>
  void read(std::optional<T>& into) const;
  template <typename T>
  void read(Nullable<T>& into) const;
  template <typename T>
  void read(std::vector<T>& into) const;

 private:
  JsonReader(const Json& value, const JsonReader& parent, const std::string& step)
      : value_(&value),
        folder_(parent.folder_),
        path_(parent.path_ + step),
        origins_(parent.origins_) {}

  const Json* value_;
  std::shared_ptr<const std::filesystem::path> folder_;
  std::string path_;
  std::shared_ptr<const Origins> origins_;
};

/// One key that an object may have, and what reads its value into the target.
template <typename Target>
struct KeyRow {
  std::string_view key;
  void (*read)(const JsonReader& value, Target& target);
};

/// Reads a value into a member of the target, by the member's own type.
template <auto Member, typename Target>
void into(const JsonReader& value, Target& target) {
  value.read(target.*Member);
}

/// Fails at `value` because no row of a table has its key.
[[noreturn]] void failUnknownKey(const JsonReader& value, std::string_view key,
                                 const std::vector<std::string_view>& known);

/// Reads an object whose keys are those of a table and no others.
template <typename Target, std::size_t N>
void readObject(const JsonReader& object, const KeyRow<Target> (&rows)[N], Target& target) {
  for (const auto& [key, value] : object.members()) {
    const KeyRow<Target>* found = nullptr;
    for (const KeyRow<Target>& row : rows) {
      if (row.key == key) found = &row;
    }
    if (found == nullptr) {
      std::vector<std::string_view> known;
      for (const KeyRow<Target>& row : rows) known.push_back(row.key);
      failUnknownKey(value, key, known);
    }
    found->read(value, target);
  }
}

/// Parses a document. Bad syntax, a number that no type can hold, more than 100 levels of lists and
/// objects, and an object that names a key twice are ScenarioErrors, their place given as line and
/// column.
Json parseJson(std::string_view text);

/// A document as people read it: what has room on a line of 100 columns stands on one, of a list of
/// plain values as many as have room, of all else one element or member.
std::string layOut(const Json& document);

template <std::integral T>
void JsonReader::read(T& into) const {
  static_assert(sizeof(T) < 8 || std::signed_integral<T>, "64 bits are read with a sign");
  into = static_cast<T>(whole(std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

template <typename T>
void JsonReader::read(std::optional<T>& into) const {
  T value{};
  read(value);
  into = std::move(value);
}

template <typename T>
void JsonReader::read(Nullable<T>& into) const {
  if (isNull()) {
    into.emplace(std::nullopt);
    return;
  }
  std::optional<T> value;
  read(value);
  into = std::move(value);
}

template <typename T>
void JsonReader::read(std::vector<T>& into) const {
  into.clear();
  for (const JsonReader& each : elements()) {
    T value{};
    each.read(value);
    into.push_back(std::move(value));
  }
}

}  // namespace zev::scenario
