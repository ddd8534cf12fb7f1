#include <algorithm>

#include "scenario/json_reader.h"

namespace zev::scenario {
namespace {

constexpr std::size_t lineWidth = 100;

/// Members of a document each member of which begins a line.
constexpr std::string_view linesOfTheirOwn[] = {"cases", "values", "machines",
                                                "steps", "expect", "boxes"};

/// An element of a list, or a member with its key as it is written in front of it.
struct Piece {
  std::string key;
  const Json* value;
};

std::string writtenKey(const std::string& name) { return Json(name).dump() + ": "; }

std::vector<Piece> piecesOf(const Json& value) {
  std::vector<Piece> pieces;
  if (value.isMembers()) {
    for (const auto& [name, each] : value.items()) pieces.push_back({writtenKey(name), &each});
  } else {
    for (const Json& each : value) pieces.push_back({"", &each});
  }
  return pieces;
}

/// On one line, blanks after colons and commas.
std::string onOneLine(const Json& value) {
  if (!value.isStructured()) return value.dump();
  std::string out;
  for (const Piece& each : piecesOf(value)) {
    out += (out.empty() ? "" : ", ") + each.key + onOneLine(*each.value);
  }
  return value.isMembers() ? "{" + out + "}" : "[" + out + "]";
}

/// Writes a document piece by piece; what has no room after a piece goes to the next line.
class Layout {
 public:
  /// `behind`: how many characters still follow on the last line.
  void write(const Json& value, std::size_t indent, std::size_t behind) {
    const std::string line = onOneLine(value);
    if (!value.isStructured() || column() + line.size() + behind <= lineWidth) {
      text_ += line;
    } else if (value.size() == 1 && piecesOf(value).front().value->isStructured()) {
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
      text_ += writtenKey(key);
      --left;
      const bool lineByLine = std::find(std::begin(linesOfTheirOwn), std::end(linesOfTheirOwn),
                                        key) != std::end(linesOfTheirOwn);
      if (lineByLine && value.isMembers()) {
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

  void writeAround(const Json& value, std::size_t indent, std::size_t behind) {
    const Piece only = piecesOf(value).front();
    text_ += (value.isMembers() ? "{" : "[") + only.key;
    write(*only.value, indent, behind + 1);
    text_ += value.isMembers() ? "}" : "]";
  }

  void writePieces(const Json& value, std::size_t indent, std::size_t behind) {
    text_ += value.isMembers() ? "{" : "[";
    bool goesOn = false;  // the line is one of short pieces
    std::size_t left = value.size();
    for (const Piece& each : piecesOf(value)) {
      const bool opens = value.isMembers() && left == value.size();
      --left;
      const std::size_t follows = left > 0 ? 1 : closing + behind;
      const std::size_t size = each.key.size() + onOneLine(*each.value).size() + follows;
      const bool isShort = indent + size <= lineWidth;
      const bool fits = column() + 1 + size <= lineWidth;
      if ((opens && (fits || !isShort)) || (goesOn && fits)) {
        text_ += " ";
      } else {
        breakLine(indent);
      }
      goesOn = isShort;
      text_ += each.key;
      write(*each.value, indent, follows);
      if (left > 0) text_ += ",";
    }
    text_ += value.isMembers() ? " }" : " ]";
  }

  void writeMembers(const Json& members) {
    text_ += "{";
    std::size_t left = members.size();
    for (const auto& [name, value] : members.items()) {
      breakLine(4);
      text_ += writtenKey(name);
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
  if (document.isMembers() && onOneLine(document).size() > lineWidth) {
    layout.writeDocument(document);
  } else {
    layout.write(document, 0, 0);
  }
  return layout.take();
}

}  // namespace zev::scenario
