#include "script/layout.h"

#include <algorithm>

namespace zev::scenario {
namespace {

constexpr std::size_t lineWidth = 100;

/// On one line, blanks behind colons and commas.
std::string onOneLine(const Json& value) {
  if (!value.is_structured()) return value.dump();
  std::string out;
  for (const auto& [key, each] : value.items()) {
    out += out.empty() ? "" : ", ";
    out += (value.is_object() ? Json(key).dump() + ": " : "") + onOneLine(each);
  }
  return value.is_object() ? "{" + out + "}" : "[" + out + "]";
}

/// Writes values line by line; `column` is where a line has got to.
class Layout {
 public:
  /// `behind`: how many characters still follow on the last line.
  void write(const Json& value, std::size_t indent, std::size_t behind) {
    const std::string line = onOneLine(value);
    if (!value.is_structured() || column() + line.size() + behind <= lineWidth) {
      text_ += line;
      return;
    }
    text_ += value.is_object() ? "{" : "[";
    if (value.size() == 1 && value.front().is_structured()) {
      writeKey(value, value.items().begin().key());
      write(value.front(), indent, behind + 1);
    } else {
      writeLines(value, indent + 2);
      breakLine(indent);
    }
    text_ += value.is_object() ? "}" : "]";
  }

  std::string take() { return std::move(text_) + "\n"; }

 private:
  std::size_t column() const { return text_.size() - (text_.rfind('\n') + 1); }

  void breakLine(std::size_t indent) { text_ += "\n" + std::string(indent, ' '); }

  void writeKey(const Json& owner, const std::string& key) {
    if (owner.is_object()) text_ += Json(key).dump() + ": ";
  }

  void writeLines(const Json& value, std::size_t indent) {
    bool goesOn = false;  // the line before is one of plain values
    std::size_t left = value.size();
    for (const auto& [key, each] : value.items()) {
      const bool plain = value.is_array() && !each.is_structured();
      if (goesOn && plain && column() + each.dump().size() + 2 <= lineWidth) {
        text_ += " ";
      } else {
        breakLine(indent);
      }
      --left;
      writeKey(value, key);
      write(each, indent, left > 0 ? 1 : 0);
      if (left > 0) text_ += ",";
      goesOn = plain;
    }
  }

  std::string text_;
};

}  // namespace

std::string layOut(const Json& document) {
  Layout layout;
  layout.write(document, 0, 0);
  return layout.take();
}

}  // namespace zev::scenario
