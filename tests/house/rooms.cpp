#include "house/rooms.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace zev::house {
namespace {

/// Names of operating systems and compilers, as the preprocessor knows them.
const std::set<std::string> systemNames = {
    "_WIN32",      "_WIN64",      "WIN32",         "_WINDOWS",       "__linux__",
    "__linux",     "linux",       "__unix__",      "__APPLE__",      "_MSC_VER",
    "__MINGW32__", "__MINGW64__", "__has_include", "_POSIX_VERSION",
};

/// The words of a text: stretches of letters, digits, underscores and colons.
std::vector<std::string> wordsOf(std::string_view text) {
  constexpr std::string_view letters =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_:";
  std::vector<std::string> words;
  for (std::size_t begin = text.find_first_of(letters); begin != std::string_view::npos;
       begin = text.find_first_of(letters)) {
    text.remove_prefix(begin);
    const std::size_t end = std::min(text.find_first_not_of(letters), text.size());
    words.emplace_back(text.substr(0, end));
    text.remove_prefix(end);
  }
  return words;
}

/// The preprocessor's lines, without what stands in front of and behind the "#".
std::vector<std::string> directivesOf(std::string_view source) {
  constexpr std::string_view space = " \t";
  std::vector<std::string> directives;
  std::istringstream lines{std::string(source)};
  for (std::string line; std::getline(lines, line);) {
    const std::size_t mark = line.find_first_not_of(space);
    if (mark == std::string::npos || line[mark] != '#') continue;
    const std::size_t word = line.find_first_not_of(space, mark + 1);
    if (word != std::string::npos) directives.push_back(line.substr(word));
  }
  return directives;
}

bool isCondition(const std::string& directive) {
  return directive.starts_with("if") || directive.starts_with("elif");
}

/// Takes the name between two marks out of a directive, if it is an #include of that kind.
void takeInclude(const std::string& directive, char open, char close,
                 std::vector<std::string>& into) {
  const std::size_t begin = directive.find(open);
  if (!directive.starts_with("include") || begin == std::string::npos) return;
  const std::size_t end = directive.find(close, begin + 1);
  if (end != std::string::npos) into.push_back(directive.substr(begin + 1, end - begin - 1));
}

}  // namespace

Includes includesOf(std::string_view source) {
  Includes includes;
  for (const std::string& each : directivesOf(source)) {
    takeInclude(each, '<', '>', includes.system);
    takeInclude(each, '"', '"', includes.own);
  }
  return includes;
}

std::vector<std::string> systemsAskedFor(std::string_view source) {
  std::vector<std::string> found;
  for (const std::string& each : directivesOf(source)) {
    if (!isCondition(each)) continue;
    for (const std::string& word : wordsOf(each)) {
      if (systemNames.count(word) == 1) found.push_back(word);
    }
  }
  return found;
}

std::vector<std::string> namespacesOf(std::string_view source) {
  std::vector<std::string> found;
  std::istringstream lines{std::string(source)};
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with("namespace") || line.find('=') != std::string::npos) continue;
    const std::vector<std::string> words = wordsOf(line.substr(0, line.find('{')));
    if (words.size() != 2) continue;
    if (words[1] == "zev" || words[1].starts_with("zev::")) found.push_back(words[1]);
  }
  return found;
}

std::set<std::string> knownRooms(std::string_view cmake) {
  constexpr std::string_view keyword = "KNOWS";
  const std::size_t begin = cmake.find(keyword);
  if (begin == std::string_view::npos) return {};
  std::string_view list = cmake.substr(begin + keyword.size());
  list = list.substr(0, list.find(')'));
  std::set<std::string> rooms;
  for (const std::string& name : wordsOf(list)) {
    if (name.find("::") == std::string::npos) rooms.insert(name);
  }
  return rooms;
}

std::set<std::string> reach(const Arrows& arrows, const std::string& room) {
  std::set<std::string> reached;
  std::vector<std::string> open = {room};
  while (!open.empty()) {
    const std::string next = open.back();
    open.pop_back();
    if (!reached.insert(next).second) continue;
    const auto known = arrows.find(next);
    if (known == arrows.end()) continue;
    open.insert(open.end(), known->second.begin(), known->second.end());
  }
  return reached;
}

Arrows readArrows(const std::filesystem::path& src) {
  Arrows arrows;
  for (const auto& each : std::filesystem::directory_iterator(src)) {
    const std::filesystem::path list = each.path() / "CMakeLists.txt";
    if (!std::filesystem::exists(list)) continue;
    const std::string cmake = contentsOf(list);
    if (cmake.find("zev_room(") == std::string::npos) continue;
    arrows[each.path().filename().string()] = knownRooms(cmake);
  }
  return arrows;
}

std::vector<SourceFile> filesOf(const std::filesystem::path& src, const std::string& room) {
  std::vector<SourceFile> files;
  for (const auto& each : std::filesystem::recursive_directory_iterator(src / room)) {
    const auto ending = each.path().extension();
    if (ending != ".h" && ending != ".cpp") continue;
    files.push_back(
        {std::filesystem::relative(each.path(), src).generic_string(), contentsOf(each.path())});
  }
  return files;
}

std::string contentsOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot open " + file.string());
  return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace zev::house
