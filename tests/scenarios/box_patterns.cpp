#include "scenarios/box_patterns.h"

#include <map>
#include <unordered_map>

#include "localisation/catalogue.h"
#include "support/table.h"

namespace zev {
namespace {

using test::Row;
using test::Table;
using Kind = Piece::Kind;

constexpr int systemExclamation = 4144;
const char* const defaultTitle = "ZEVSetup";

/// Rows of the table of phrases by their keys in lower case; the first of two equal ones counts.
std::map<Text, std::size_t> indexKeys() {
  std::map<Text, std::size_t> index;
  for (std::size_t row = 1; row <= phrase_row::count; ++row) {
    index.emplace(lowerCase(phraseKey(row)), row);
  }
  return index;
}

JoinedText whole(const std::string& text, bool isTranslated) {
  return JoinedText({{isTranslated ? Kind::Translated : Kind::Literal, text}});
}

JoinedText titleOf(const Row& row) {
  if (row.isNone("title")) return whole(defaultTitle, false);
  return whole(row.quoted("title"), row.yes("title_translated"));
}

std::vector<Piece> piecesOf(const std::string& box) {
  static const Table table = Table::read("box_pieces.tsv");
  const std::map<std::string, Kind> kinds = {
      {"translated", Kind::Translated}, {"literal", Kind::Literal}, {"variable", Kind::Variable}};
  std::vector<Piece> pieces;
  for (const Row& row : table) {
    if (!row.is("box", box)) continue;
    pieces.push_back({kinds.at(row.word("kind")), row.quoted("text")});
  }
  return pieces;
}

void addNamedBoxes(std::vector<BoxPattern>& patterns) {
  for (const Row& row : Table::read("boxes.tsv")) {
    const std::string& name = row.word("box");
    patterns.push_back({name, row.number("style"), titleOf(row), JoinedText(piecesOf(name))});
  }
}

void addMemberBoxes(std::vector<BoxPattern>& patterns) {
  for (const Row& row : Table::read("manifest_failures.tsv")) {
    for (const std::string what : {"extraction", "expansion"}) {
      const std::string& text = row.quoted(what + "_text");
      if (text.empty()) continue;
      patterns.push_back({what + " of row " + row.word("row"), systemExclamation,
                          whole("Screen Recorder", row.yes(what + "_title_translated")),
                          whole(text, row.yes(what + "_text_translated"))});
    }
  }
}

void addOpenBoxes(std::vector<BoxPattern>& patterns) {
  for (const Row& row : Table::read("expand_open_codes.tsv")) {
    std::vector<Piece> pieces = {{Kind::Literal, row.quoted("text")}};
    if (row.yes("path")) {
      pieces.push_back({Kind::Variable, "{path}"});
      pieces.push_back({Kind::Literal, "'"});
    }
    patterns.push_back({"open failure " + row.word("code"), systemExclamation,
                        whole("ExpandFile - Error!", false), JoinedText(pieces)});
  }
}

/// The text of a drive: what stands beside the root is translated as the row says.
JoinedText driveText(const Row& row) {
  const std::string root = "{root}";
  const std::string& text = row.quoted("text");
  const std::size_t place = text.find(root);
  if (place == std::string::npos) return whole(text, row.yes("text_translated"));
  const Kind before = row.is("text_translated", "before") ? Kind::Translated : Kind::Literal;
  const Kind after = row.is("text_translated", "after") ? Kind::Translated : Kind::Literal;
  return JoinedText({{before, text.substr(0, place)},
                     {Kind::Variable, root},
                     {after, text.substr(place + root.size())}});
}

void addDriveBoxes(std::vector<BoxPattern>& patterns) {
  for (const Row& row : Table::read("drive_types.tsv")) {
    if (row.isNone("style")) continue;
    patterns.push_back({"drive " + row.word("number") + " in " + row.word("dialog"),
                        row.number("style"), titleOf(row), driveText(row)});
  }
}

std::vector<BoxPattern> collectBoxes() {
  std::vector<BoxPattern> patterns;
  addNamedBoxes(patterns);
  addMemberBoxes(patterns);
  addOpenBoxes(patterns);
  addDriveBoxes(patterns);
  return patterns;
}

/// The first line of the prompt is translated, the path behind it is not.
std::vector<BoxPattern> collectInputs() {
  std::vector<BoxPattern> patterns;
  for (const Row& row : Table::read("input_boxes.tsv")) {
    const std::string& prompt = row.quoted("prompt");
    const std::size_t line = prompt.find('\r');
    const std::size_t path = prompt.find('{');
    patterns.push_back({row.word("box"), 0, titleOf(row),
                        JoinedText({{Kind::Translated, prompt.substr(0, line)},
                                    {Kind::Literal, prompt.substr(line, path - line)},
                                    {Kind::Variable, prompt.substr(path)}})});
  }
  return patterns;
}

std::string lookUp(const std::string& english, int language) {
  static const std::map<Text, std::size_t> index = indexKeys();
  const auto found = index.find(lowerCase(fromUtf8(english)));
  if (language == 0 || found == index.end()) return english;
  const Text translation = phraseTranslation(found->second, language);
  return trim(translation).empty() ? english : toUtf8(translation);
}

/// A piece that is not variable.
const std::string& fixedText(const Piece& piece, int language) {
  return piece.kind == Kind::Translated ? translated(piece.text, language) : piece.text;
}

}  // namespace

const std::string& translated(const std::string& english, int language) {
  static std::map<int, std::unordered_map<std::string, std::string>> known;
  auto& texts = known[language];
  const auto found = texts.find(english);
  if (found != texts.end()) return found->second;
  return texts.emplace(english, lookUp(english, language)).first->second;
}

// ---- joined texts

std::string JoinedText::in(int language, const std::vector<std::string>& variables) const {
  std::string text;
  std::size_t variable = 0;
  for (const Piece& piece : pieces_) {
    text += piece.kind == Kind::Variable ? variables.at(variable++) : fixedText(piece, language);
  }
  return text;
}

std::optional<std::vector<std::string>> JoinedText::match(const std::string& text,
                                                          int language) const {
  std::vector<std::string> variables;
  if (!matchFrom(0, text, 0, language, variables)) return std::nullopt;
  return variables;
}

/// A variable piece takes as little as the rest allows.
bool JoinedText::matchFrom(std::size_t piece, const std::string& text, std::size_t place,
                           int language, std::vector<std::string>& variables) const {
  if (piece == pieces_.size()) return place == text.size();
  if (pieces_[piece].kind != Kind::Variable) {
    const std::string& fixed = fixedText(pieces_[piece], language);
    return text.compare(place, fixed.size(), fixed) == 0 &&
           matchFrom(piece + 1, text, place + fixed.size(), language, variables);
  }
  for (std::size_t end = place; end <= text.size(); ++end) {
    variables.push_back(text.substr(place, end - place));
    if (matchFrom(piece + 1, text, end, language, variables)) return true;
    variables.pop_back();
  }
  return false;
}

// ---- the patterns

const std::vector<BoxPattern>& boxPatterns() {
  static const std::vector<BoxPattern> patterns = collectBoxes();
  return patterns;
}

const std::vector<BoxPattern>& inputPatterns() {
  static const std::vector<BoxPattern> patterns = collectInputs();
  return patterns;
}

std::vector<const BoxPattern*> patternsOf(const ToldBox& box, int language) {
  std::vector<const BoxPattern*> fitting;
  for (const BoxPattern& each : boxPatterns()) {
    if (each.style == box.style && each.title.match(box.title, language) &&
        each.text.match(box.text, language)) {
      fitting.push_back(&each);
    }
  }
  return fitting;
}

bool shownByBrowser(const std::vector<simulated::Event>& events, std::size_t place) {
  bool standing = false;
  for (std::size_t each = 0; each < events.size(); ++each) {
    const simulated::Event& event = events[each];
    if (each > place && (standing || event["event"] == "step")) break;
    if (event["event"] == "start") standing = false;
    if (event["event"] == "show" && event["form"] == "Form3") standing = true;
    if (event["event"] == "unload" && event["form"] == "Form3") standing = false;
  }
  return standing;
}

}  // namespace zev
