#include "support/table.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace zev::test {
namespace {

[[noreturn]] void failAt(const std::string& where, const std::string& what) {
  throw std::runtime_error(where + ": " + what);
}

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  for (std::size_t end = text.find(separator); end != std::string_view::npos;
       end = text.find(separator)) {
    pieces.push_back(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  pieces.push_back(text);
  return pieces;
}

char escaped(char letter, const std::string& where) {
  switch (letter) {
    case 't':
      return '\t';
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case '\\':
      return '\\';
    default:
      failAt(where, std::string("unknown escape \\") + letter);
  }
}

/// Takes the quotes off a cell that has them. Inside, a quote is doubled.
std::string_view withoutQuotes(std::string_view raw, const std::string& where) {
  if (raw.size() < 2 || !raw.ends_with('"')) failAt(where, "quote without an end");
  return raw.substr(1, raw.size() - 2);
}

std::string unescaped(std::string_view raw, bool quoted, const std::string& where) {
  std::string text;
  for (std::size_t place = 0; place < raw.size(); ++place) {
    const bool pair = raw[place] == '\\' || raw[place] == '"';
    if (!pair) {
      text += raw[place];
      continue;
    }
    const char first = raw[place++];
    if (first == '"' && !quoted) failAt(where, "quote inside a cell without quotes");
    if (place == raw.size()) failAt(where, first == '"' ? "single quote in quotes" : "lone \\");
    if (first == '"' && raw[place] != '"') failAt(where, "single quote in quotes");
    text += first == '"' ? '"' : escaped(raw[place], where);
  }
  return text;
}

Row::Cell parseCell(std::string_view raw, const std::string& where) {
  if (raw.empty()) failAt(where, "empty cell");
  const bool quoted = raw.front() == '"';
  const std::string_view inner = quoted ? withoutQuotes(raw, where) : raw;
  Row::Cell cell{unescaped(inner, quoted, where), quoted};
  if (toUtf8(fromUtf8(cell.text)) != cell.text) failAt(where, "not UTF-8");
  return cell;
}

std::vector<std::string> parseColumns(std::string_view line, const std::string& where) {
  std::vector<std::string> columns;
  for (const std::string_view name : split(line, '\t')) {
    if (name.empty() || name.front() == '"') failAt(where, "bad column name");
    if (std::find(columns.begin(), columns.end(), name) != columns.end()) {
      failAt(where, "two columns " + std::string(name));
    }
    columns.emplace_back(name);
  }
  return columns;
}

Row parseRow(std::string_view line, const std::vector<std::string>& columns,
             const std::string& where) {
  const auto raw = split(line, '\t');
  if (raw.size() != columns.size()) {
    failAt(where, std::to_string(raw.size()) + " cells for " + std::to_string(columns.size()) +
                      " columns");
  }
  std::map<std::string, Row::Cell, std::less<>> cells;
  for (std::size_t each = 0; each < raw.size(); ++each) {
    cells.emplace(columns[each], parseCell(raw[each], where + ", " + columns[each]));
  }
  return {where, std::move(cells)};
}

}  // namespace

const Row::Cell& Row::cell(std::string_view column) const {
  const auto found = cells_.find(column);
  if (found == cells_.end()) fail("no column " + std::string(column));
  return found->second;
}

void Row::fail(const std::string& what) const { failAt(where_, what); }

const std::string& Row::quoted(std::string_view column) const {
  const Cell& found = cell(column);
  if (!found.quoted) fail(std::string(column) + " has no quotes");
  return found.text;
}

const std::string& Row::word(std::string_view column) const {
  const Cell& found = cell(column);
  if (found.quoted) fail(std::string(column) + " has quotes");
  return found.text;
}

std::int32_t Row::number(std::string_view column) const {
  const std::string& digits = word(column);
  std::int32_t value = 0;
  const char* end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value);
  if (error != std::errc() || stop != end) fail(std::string(column) + " is no number: " + digits);
  return value;
}

bool Row::yes(std::string_view column) const {
  if (is(column, "yes")) return true;
  if (!is(column, "no")) fail(std::string(column) + " is neither yes nor no");
  return false;
}

bool Row::is(std::string_view column, std::string_view word) const {
  const Cell& found = cell(column);
  return !found.quoted && found.text == word;
}

Table Table::read(const std::string& name) {
  std::ifstream file(std::string(ZEV_TEST_DATA) + "/" + name, std::ios::binary);
  if (!file) failAt(name, "cannot be opened");
  return parse(name, std::string(std::istreambuf_iterator<char>(file), {}));
}

Table Table::parse(const std::string& name, std::string_view contents) {
  if (!contents.ends_with('\n')) failAt(name, "no line end at the end of the file");
  contents.remove_suffix(1);
  Table table;
  table.name_ = name;
  int number = 0;
  for (const std::string_view line : split(contents, '\n')) {
    const std::string where = name + ":" + std::to_string(++number);
    if (line.find('\r') != std::string_view::npos) failAt(where, "carriage return");
    if (number == 1) {
      table.columns_ = parseColumns(line, where);
    } else if (!line.starts_with('#')) {
      table.rows_.push_back(parseRow(line, table.columns_, where));
    }
  }
  if (table.rows_.empty()) failAt(name, "no rows");
  return table;
}

const Row& Table::row(std::string_view column, std::string_view word) const {
  const Row* found = nullptr;
  for (const Row& each : rows_) {
    if (!each.is(column, word)) continue;
    if (found != nullptr) failAt(each.where(), "a second row for " + std::string(word));
    found = &each;
  }
  if (found == nullptr) failAt(name_, "no row for " + std::string(word));
  return *found;
}

}  // namespace zev::test
