#include "zevpack/tool.h"

#include <sys/wait.h>

#include <cstdlib>
#include <sstream>

namespace zev::packing {
namespace {

namespace fs = std::filesystem;

/// A text as one word of the shell.
std::string shellWord(const std::string& text) {
  std::string word = "'";
  for (const char each : text) {
    if (each == '\'') {
      word += "'\\''";
    } else {
      word += each;
    }
  }
  return word + "'";
}

std::string textOf(const fs::path& path) {
  const Bytes bytes = readFile(path);
  return {bytes.begin(), bytes.end()};
}

}  // namespace

Outcome runProgram(const std::string& program, const std::vector<std::string>& arguments,
                   const std::string& before) {
  const test::TemporaryFolder folder;
  const fs::path out = folder.path() / "out";
  const fs::path err = folder.path() / "err";
  std::string command = before.empty() ? "" : before + "; ";
  command += shellWord(program);
  for (const std::string& each : arguments) command += " " + shellWord(each);
  command += " >" + shellWord(out.string()) + " 2>" + shellWord(err.string()) + " </dev/null";
  const int ended = std::system(command.c_str());
  return {WIFEXITED(ended) ? WEXITSTATUS(ended) : -1, textOf(out), textOf(err)};
}

std::set<std::string> namesIn(const fs::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    names.insert(entry.path().filename().string());
  }
  return names;
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream rest(text);
  for (std::string line; std::getline(rest, line);) lines.push_back(line);
  return lines;
}

}  // namespace zev::packing
