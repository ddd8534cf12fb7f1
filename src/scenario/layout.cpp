#include <algorithm>

#include "scenario/json_reader.h"

namespace zev::scenario {
namespace {

constexpr std::size_t lineWidth = 100;

/// Members of a document each member of which begins a line.
constexpr std::string_view linesOfTheirOwn[] = {"cases", "values", "machines",
                                                "steps", "expect", "boxes"};

/// On one line, blanks after colons and commas.
std::string onOneLine(const Json& value) {
  if (!value.is_structured()) return value.dump();
  std::string out;
  for (const auto& [key, each] : value.items()) {
    out += out.empty() ? "" : ", ";
    out += (value.is_object() ? Json(key).dump() + ": " : "") + onOneLine(each);
  }
  return value.is_object() ? "{" + out + "}" : "[" + out + "]";
}

/// Writes a document piece by piece; what has no room after a piece goes to the next line.
class Layout {
 public:
  /// `behind`: how many characters still follow on the last line.
  void write(const Json& value, std::size_t indent, std::size_t behind) {
    const std::string line = onOneLine(value);
    if (!value.is_structured() || column() + line.size() + behind <= lineWidth) {
      text_ += line;
    } else if (value.size() == 1 && value.front().is_structured()) {
      writeAround(value, indent, behind);
    } else {
      writePieces(value, indent + 2, behind);
    }
  }

  /// Each member of the document itself, each case and each named thing begins a line.
  void writeDocument(const Json& document) {
    text_ = "{ ";
    std::size_t left = document.size();
    for (const auto& [key, value] : document.items()) {
      if (left < document.size()) breakLine(2);
      writeKey(document, key);
      --left;
      const bool lineByLine = std::find(std::begin(linesOfTheirOwn), std::end(linesOfTheirOwn),
                                        key) != std::end(linesOfTheirOwn);
      if (lineByLine && value.is_object()) {
        writeMembers(value);
      } else {
        write(value, 2, left > 0 ? 1 : 2);
      }
      text_ += left > 0 ? "," : " }";
    }
  }

  std::string take() { return std::move(text_) + "\n"; }

 private:
  static constexpr std::size_t closing = 2;  // a blank and a bracket

  std::size_t column() const { return text_.size() - (text_.rfind('\n') + 1); }

  void breakLine(std::size_t indent) { text_ += "\n" + std::string(indent, ' '); }

  static std::string keyOf(const Json& owner, const std::string& key) {
    return owner.is_object() ? Json(key).dump() + ": " : "";
  }
  void writeKey(const Json& owner, const std::string& key) { text_ += keyOf(owner, key); }

  void writeAround(const Json& value, std::size_t indent, std::size_t behind) {
    text_ += value.is_object() ? "{" : "[";
    writeKey(value, value.items().begin().key());
    write(value.front(), indent, behind + 1);
    text_ += value.is_object() ? "}" : "]";
  }

  void writePieces(const Json& value, std::size_t indent, std::size_t behind) {
    text_ += value.is_object() ? "{" : "[";
    bool goesOn = false;  // the line is one of short pieces
    std::size_t left = value.size();
    for (const auto& [key, each] : value.items()) {
      const bool opens = value.is_object() && left == value.size();
      --left;
      const std::size_t follows = left > 0 ? 1 : closing + behind;
      const std::size_t size = keyOf(value, key).size() + onOneLine(each).size() + follows;
      const bool isShort = indent + size <= lineWidth;
      const bool fits = column() + 1 + size <= lineWidth;
      if ((opens && (fits || !isShort)) || (goesOn && fits)) {
        text_ += " ";
      } else {
        breakLine(indent);
      }
      goesOn = isShort;
      writeKey(value, key);
      write(each, indent, follows);
      if (left > 0) text_ += ",";
    }
    text_ += value.is_object() ? " }" : " ]";
  }

  void writeMembers(const Json& members) {
    text_ += "{";
    std::size_t left = members.size();
    for (const auto& [name, value] : members.items()) {
      breakLine(4);
      writeKey(members, name);
      --left;
      write(value, 4, left > 0 ? 1 : 0);
      if (left > 0) text_ += ",";
    }
    breakLine(2);
    text_ += "}";
  }

  std::string text_;
};

}  // namespace

std::string layOut(const Json& document) {
  Layout layout;
  if (document.is_object() && onOneLine(document).size() > lineWidth) {
    layout.writeDocument(document);
  } else {
    layout.write(document, 0, 0);
  }
  return layout.take();
}

}  // namespace zev::scenario
