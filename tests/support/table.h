#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/text.h"

namespace zev::test {

/// One row of a table of tests/data. Each reader throws std::runtime_error, with file and line, for
/// a column that the table does not have and for a cell that is not of the kind asked for.
class Row {
 public:
  struct Cell {
    std::string text;  ///< UTF-8, without its quotes and escapes
    bool quoted = false;
  };

  Row(std::string where, std::map<std::string, Cell, std::less<>> cells)
      : where_(std::move(where)), cells_(std::move(cells)) {}

  /// File and line, for messages.
  const std::string& where() const { return where_; }

  /// A text: a cell in quotes, as UTF-8 and as the program's text.
  const std::string& quoted(std::string_view column) const;
  Text text(std::string_view column) const { return fromUtf8(quoted(column)); }
  /// A name or keyword: a cell without quotes.
  const std::string& word(std::string_view column) const;
  /// A decimal number.
  std::int32_t number(std::string_view column) const;
  /// A cell that is "yes" or "no".
  bool yes(std::string_view column) const;
  /// "-" without quotes: none, or not looked at.
  bool isNone(std::string_view column) const { return is(column, "-"); }
  /// "*" without quotes: any, or any other.
  bool isAny(std::string_view column) const { return is(column, "*"); }
  /// True if the cell is this word, without quotes.
  bool is(std::string_view column, std::string_view word) const;

 private:
  const Cell& cell(std::string_view column) const;
  [[noreturn]] void fail(const std::string& what) const;

  std::string where_;
  std::map<std::string, Cell, std::less<>> cells_;
};

/// A table of tests/data, in the form that its README tells: the rows in the order of the file.
class Table {
 public:
  /// Reads a file by its name within tests/data.
  static Table read(const std::string& name);
  /// Reads a table from its contents; `name` is for messages. Throws std::runtime_error, with file
  /// and line, for whatever is malformed.
  static Table parse(const std::string& name, std::string_view contents);

  const std::vector<std::string>& columns() const { return columns_; }
  const std::vector<Row>& rows() const { return rows_; }
  auto begin() const { return rows_.begin(); }
  auto end() const { return rows_.end(); }
  std::size_t size() const { return rows_.size(); }

  /// The one row whose unquoted cell in a column is this word; throws for none and for several.
  const Row& row(std::string_view column, std::string_view word) const;

 private:
  std::string name_;
  std::vector<std::string> columns_;
  std::vector<Row> rows_;
};

}  // namespace zev::test
