#pragma once

#include <istream>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/text.h"

namespace zev::simulator {

/// A person at a terminal of 24 lines: what is told, and what is typed.
class Terminal {
 public:
  static constexpr int lines = 24;

  /// Borrows both streams. What is told is `columns` wide.
  Terminal(std::istream& in, std::ostream& out, int columns)
      : in_(in), out_(out), columns_(columns) {}

  int columns() const { return columns_; }
  void setColumns(int columns) { columns_ = columns; }

  /// A block as it is.
  void show(std::string_view block) { out_ << block; }
  /// A text in as many lines as it takes.
  void tell(std::string_view text);

  /// The line that is typed after a prompt, without blanks at its ends. "help" shows a block and
  /// asks again; at "quit" or "exit", and at the end of the input, the play is left (PlayLeft).
  std::string ask(std::string_view prompt, std::string_view help);

  /// Shows lines page by page, to and fro, until the person has read enough.
  void page(const std::vector<Text>& text);

 private:
  std::istream& in_;
  std::ostream& out_;
  int columns_;
};

}  // namespace zev::simulator
