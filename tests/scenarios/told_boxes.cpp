#include "scenarios/told_boxes.h"

#include <ostream>

#include "support/table.h"

namespace zev {
namespace {

using test::Row;
using test::Table;

/// The title of a box to which the program gives none: that of the program.
const std::string defaultTitle = "ZEVSetup";
constexpr int systemExclamation = 4144;

const Row& rowOf(const Table& table, const char* column, int number) {
  return table.row(column, std::to_string(number));
}

ToldBox memberBox(int row, const char* column) {
  static const Table table = Table::read("manifest_failures.tsv");
  return {rowOf(table, "row", row).quoted(column), "Screen Recorder", systemExclamation};
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const ToldBox& box) {
  return out << "[" << box.title << "] (" << box.style << ") " << box.text;
}

std::string filled(const std::string& text, const Filling& filling) {
  std::string result;
  std::size_t place = 0;
  while (place < text.size()) {
    const std::size_t open = text.find('{', place);
    const std::size_t close = text.find('}', open);
    result += text.substr(place, open - place);
    if (close == std::string::npos) break;
    result += filling.at(text.substr(open + 1, close - open - 1));
    place = close + 1;
  }
  return result;
}

ToldBox toldBox(const std::string& name, const Filling& filling) {
  static const Table table = Table::read("boxes.tsv");
  const Row& row = table.row("box", name);
  return {filled(row.quoted("text"), filling),
          row.isNone("title") ? defaultTitle : row.quoted("title"), row.number("style")};
}

ToldBox extractionBox(int row) { return memberBox(row, "extraction_text"); }
ToldBox expansionBox(int row) { return memberBox(row, "expansion_text"); }

ToldBox openBox(int error, const std::string& path) {
  static const Table table = Table::read("expand_open_codes.tsv");
  const Row& row = rowOf(table, "nErrCode", error);
  return {row.quoted("text") + (row.yes("path") ? path + "'" : ""), "ExpandFile - Error!",
          systemExclamation};
}

ToldBox copyBox(int value, const std::string& source) {
  static const Table table = Table::read("expand_copy_codes.tsv");
  const std::string& detail = rowOf(table, "value", value).quoted("detail");
  return toldBox("expand.copy_failed", {{"detail", detail}, {"source", source}});
}

ToldBox driveBox(int type, const std::string& root) {
  static const Table table = Table::read("drive_types.tsv");
  for (const Row& row : table) {
    if (!row.is("dialog", "validate") || !row.is("number", std::to_string(type))) continue;
    return {filled(row.quoted("text"), {{"root", root}}), row.quoted("title"), row.number("style")};
  }
  throw std::out_of_range("no drive of type " + std::to_string(type));
}

ToldBox shownBox(const simulated::Event& box) {
  return {box["text"].text(), box["title"].text(), box["style"].get<int>()};
}

std::vector<ToldBox> shownBoxes(const std::vector<simulated::Event>& boxes) {
  std::vector<ToldBox> shown;
  for (const simulated::Event& each : boxes) shown.push_back(shownBox(each));
  return shown;
}

}  // namespace zev
