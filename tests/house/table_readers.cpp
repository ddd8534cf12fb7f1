#include "house/table_readers.h"

#include <algorithm>

#include "house/rooms.h"

namespace zev::house {
namespace {

namespace fs = std::filesystem;

bool isWordLetter(char letter) {
  return letter == '_' || (letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'z') ||
         (letter >= 'A' && letter <= 'Z');
}

enum class Tongue { Cpp, Python };

/// Reads a source from its beginning to its end, piece by piece.
class Lexer {
 public:
  Lexer(std::string_view source, Tongue tongue) : source_(source), tongue_(tongue) {}

  std::vector<std::string> texts() {
    while (place_ < source_.size()) takePiece();
    return std::move(texts_);
  }

 private:
  bool at(std::string_view piece) const { return source_.substr(place_).starts_with(piece); }

  void takePiece() {
    if (tongue_ == Tongue::Python) return takePythonPiece();
    if (at("//")) return goBehind("\n");
    if (at("/*")) return goBehind("*/");
    if (at("R\"")) return takeRawText();
    if (at("\"")) return takeText('"');
    if (at("'")) return takeQuoted('\'');
    takeWord();
  }

  void takePythonPiece() {
    constexpr std::string_view threeQuotes[] = {"\"\"\"", "'''"};
    for (const std::string_view quotes : threeQuotes) {
      if (at(quotes)) return skipText(quotes);
    }
    if (at("#")) return goBehind("\n");
    if (at("\"") || at("'")) return takeText(source_[place_]);
    ++place_;
  }

  void skipText(std::string_view quotes) {
    place_ += quotes.size() - 1;
    goBehind(quotes);
  }

  void goBehind(std::string_view end) {
    const std::size_t found = source_.find(end, place_ + 1);
    place_ = found == std::string_view::npos ? source_.size() : found + end.size();
  }

  /// The mark between the digits of a number begins no character; a word can hold none.
  void takeWord() {
    const bool number = source_[place_] >= '0' && source_[place_] <= '9';
    const std::size_t begin = place_++;
    if (!isWordLetter(source_[begin])) return;
    const auto goesOn = [&](char letter) {
      return isWordLetter(letter) || (number && letter == '\'');
    };
    while (place_ < source_.size() && goesOn(source_[place_]) && !at("R\"")) ++place_;
  }

  void takeQuoted(char end) {
    for (++place_; place_ < source_.size() && source_[place_] != end; ++place_) {
      if (source_[place_] == '\\') ++place_;
    }
    place_ = std::min(place_ + 1, source_.size());
  }

  void takeText(char quote) {
    const std::size_t begin = place_ + 1;
    takeQuoted(quote);
    texts_.emplace_back(source_.substr(begin, place_ - begin - 1));
  }

  void takeRawText() {
    const std::size_t open = source_.find('(', place_);
    if (open == std::string_view::npos) return goBehind("\n");
    const std::string mark(source_.substr(place_ + 2, open - place_ - 2));
    const std::size_t close = source_.find(")" + mark + "\"", open);
    texts_.emplace_back(source_.substr(open + 1, close - open - 1));
    place_ = open;
    goBehind(")" + mark + "\"");
  }

  std::string_view source_;
  Tongue tongue_;
  std::size_t place_ = 0;
  std::vector<std::string> texts_;
};

/// The files of programs of tests and the headers that they reach, each once.
class TestSources {
 public:
  explicit TestSources(const fs::path& tests) : tests_(tests) {
    for (const auto& each : fs::directory_iterator(tests)) {
      const fs::path list = each.path() / "CMakeLists.txt";
      if (!fs::exists(list)) continue;
      for (const std::string& file : sourcesOf(contentsOf(list))) take(each.path() / file);
    }
  }

  const std::set<std::string>& texts() const { return texts_; }

 private:
  void take(const fs::path& file) {
    if (!fs::exists(file) || !taken_.insert(fs::weakly_canonical(file)).second) return;
    const std::string source = contentsOf(file);
    const bool python = file.extension() == ".py";
    for (std::string& text : python ? pythonTextsOf(source) : textsOf(source)) {
      texts_.insert(std::move(text));
    }
    if (python) return;
    for (const std::string& header : includesOf(source).own) take(tests_ / header);
  }

  fs::path tests_;
  std::set<fs::path> taken_;
  std::set<std::string> texts_;
};

}  // namespace

std::vector<std::string> textsOf(std::string_view source) {
  return Lexer(source, Tongue::Cpp).texts();
}

std::vector<std::string> pythonTextsOf(std::string_view source) {
  return Lexer(source, Tongue::Python).texts();
}

std::vector<std::string> sourcesOf(std::string_view cmake) {
  constexpr std::string_view between = " \t\n\r()\"";
  std::vector<std::string> sources;
  while (!cmake.empty()) {
    if (cmake.front() == '#') cmake.remove_prefix(std::min(cmake.find('\n'), cmake.size()));
    const std::size_t end = std::min(cmake.find_first_of(between), cmake.size());
    std::string_view word = cmake.substr(0, end);
    if (word.starts_with("${")) word.remove_prefix(std::min(word.find('}') + 2, word.size()));
    const std::string_view ending = word.substr(std::min(word.rfind('.'), word.size()));
    if (word != ending && (ending == ".cpp" || ending == ".py")) sources.emplace_back(word);
    cmake.remove_prefix(std::min(end + 1, cmake.size()));
  }
  return sources;
}

std::set<std::string> unreadTables(const fs::path& tests) {
  const TestSources sources(tests);
  std::set<std::string> unread;
  for (const auto& each : fs::recursive_directory_iterator(tests / "data")) {
    if (each.path().extension() != ".tsv") continue;
    const std::string table = fs::relative(each.path(), tests / "data").generic_string();
    if (sources.texts().count(table) == 0) unread.insert(table);
  }
  return unread;
}

}  // namespace zev::house
