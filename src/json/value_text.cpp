// Values as JSON.

#include <algorithm>
#include <array>
#include <charconv>
#include <ostream>

#include "json/value.h"
#include "runtime/text.h"

namespace zev::json {
namespace {

constexpr std::string_view escaped = "\"\\\b\f\n\r\t";
constexpr std::string_view escapes = "\"\\bfnrt";
constexpr char lowerDigits[] = "0123456789abcdef";

bool isControl(char character) { return static_cast<unsigned char>(character) < ' '; }
bool isAscii(char character) { return static_cast<unsigned char>(character) < 0x80; }

/// Writes a value, piece by piece, at the end of a text.
class Writer {
 public:
  Writer(std::string& out, int indent) : out_(out), indent_(indent) {}

  void operator()(std::monostate) { out_ += "null"; }
  void operator()(bool flag) { out_ += flag ? "true" : "false"; }
  void operator()(double number) {
    const std::size_t before = out_.size();
    writeNumber(number);
    // A whole one stays a number with a fraction.
    if (out_.find_first_of(".en", before) == std::string::npos) out_ += ".0";
  }
  template <std::integral Number>
  void operator()(Number number) {
    writeNumber(number);
  }
  void operator()(const std::string& text) { writeText(text); }

  void operator()(const std::vector<Value>& list) {
    writeAll('[', list, ']', [this](const Value& each) { each.visit(*this); });
  }
  void operator()(const std::vector<Value::Member>& members) {
    writeAll('{', members, '}', [this](const Value::Member& each) {
      writeText(each.name);
      out_ += indent_ < 0 ? ":" : ": ";
      each.value.visit(*this);
    });
  }

 private:
  template <typename Number>
  void writeNumber(Number number) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    out_.append(digits.data(), end.ptr);
  }

  /// What is no UTF-8 is written as U+FFFD.
  void writeText(const std::string& text) {
    const bool plain = std::all_of(text.begin(), text.end(), isAscii);
    const std::string valid = plain ? std::string() : toUtf8(fromUtf8(text));
    out_ += '"';
    for (const char character : plain ? text : valid) writeCharacter(character);
    out_ += '"';
  }

  void writeCharacter(char character) {
    if (const std::size_t place = escaped.find(character); place != std::string_view::npos) {
      out_ += '\\';
      out_ += escapes[place];
    } else if (isControl(character)) {
      out_ += "\\u00";
      out_ += lowerDigits[character >> 4];
      out_ += lowerDigits[character & 15];
    } else {
      out_ += character;
    }
  }

  template <typename All, typename Write>
  void writeAll(char open, const All& all, char close, Write write) {
    out_ += open;
    ++depth_;
    for (std::size_t place = 0; place < all.size(); ++place) {
      if (place > 0) out_ += ',';
      beginLine();
      write(all[place]);
    }
    --depth_;
    if (!all.empty()) beginLine();
    out_ += close;
  }

  void beginLine() {
    if (indent_ < 0) return;
    out_ += '\n';
    out_.append(static_cast<std::size_t>(indent_ * depth_), ' ');
  }

  std::string& out_;
  int indent_;
  int depth_ = 0;
};

}  // namespace

std::string Value::dump(int indent) const {
  std::string text;
  visit(Writer(text, indent));
  return text;
}

std::ostream& operator<<(std::ostream& out, const Value& value) { return out << value.dump(); }

}  // namespace zev::json
