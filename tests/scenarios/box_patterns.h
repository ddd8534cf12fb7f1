#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "scenarios/told_boxes.h"

namespace zev {

/// A text in a language by the table of phrases: the first row whose key reads so, letter case
/// aside. A text without a row, or a row without a translation, stays English. It stays where it is
/// as long as the process lives.
const std::string& translated(const std::string& english, int language);

/// One piece of a text that is joined of several.
struct Piece {
  enum class Kind { Translated, Literal, Variable };
  Kind kind = Kind::Literal;
  std::string text;

  bool operator==(const Piece&) const = default;
};

/// A text that is joined of pieces.
class JoinedText {
 public:
  JoinedText() = default;
  explicit JoinedText(std::vector<Piece> pieces) : pieces_(std::move(pieces)) {}
  bool operator==(const JoinedText&) const = default;

  /// What stands in the places of the variable pieces if a text reads so in a language.
  std::optional<std::vector<std::string>> match(const std::string& text, int language) const;
  /// The text in a language, its variable pieces given.
  std::string in(int language, const std::vector<std::string>& variables) const;

 private:
  bool matchFrom(std::size_t piece, const std::string& text, std::size_t place, int language,
                 std::vector<std::string>& variables) const;

  std::vector<Piece> pieces_;
};

/// One kind of message box.
struct BoxPattern {
  std::string name;  ///< of its row: "load.trap", "extraction of row 3"
  int style = 0;
  JoinedText title;
  JoinedText text;
};

/// Every kind of message box that there is: boxes.tsv, manifest_failures.tsv, expand_open_codes.tsv
/// and drive_types.tsv. The input box of input_boxes.tsv is none of them.
const std::vector<BoxPattern>& boxPatterns();

/// The input box: its title, and its prompt as text.
const std::vector<BoxPattern>& inputPatterns();

/// The patterns that a box fits in a language.
std::vector<const BoxPattern*> patternsOf(const ToldBox& box, int language);

/// Whether the box at a place of a transcript is shown by the folder browser: that stands, or opens
/// before anything else is done.
bool shownByBrowser(const std::vector<simulated::Event>& events, std::size_t place);

}  // namespace zev
