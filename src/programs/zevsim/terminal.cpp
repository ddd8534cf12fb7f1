#include "programs/zevsim/terminal.h"

#include <algorithm>

#include "programs/zevsim/simulated_stage.h"
#include "programs/zevsim/text_block.h"
#include "programs/zevsim/typed_line.h"

namespace zev::simulator {
namespace {

constexpr std::string_view pageHelp =
    "Enter shows the next page, back the one before, done ends the reading.\n"
    "quit leaves.\n";

/// Lines of a page: below it are its place in the whole, and where one types.
constexpr std::size_t pageLines = Terminal::lines - 2;

bool isTyped(std::string_view word, std::string_view typed) {
  return !typed.empty() && word.starts_with(typed);
}

}  // namespace

void Terminal::tell(std::string_view text) {
  for (const Text& line : wrapped(fromUtf8(text), columns_)) out_ << toUtf8(line) << "\n";
}

std::string Terminal::ask(std::string_view prompt, std::string_view help) {
  std::string line;
  while (out_ << prompt << std::flush, std::getline(in_, line)) {
    const std::string_view typed = trimmed(line);
    if (typed == "quit" || typed == "exit") throw scenario::PlayLeft{};
    if (typed != "help") return std::string(typed);
    show(help);
  }
  out_ << "\n";
  throw scenario::PlayLeft{};
}

void Terminal::page(const std::vector<Text>& text) {
  for (std::size_t from = 0; from < text.size();) {
    const std::size_t end = std::min(from + pageLines, text.size());
    for (std::size_t at = from; at < end; ++at) out_ << toUtf8(text[at]) << "\n";
    tell("-- " + std::to_string(end) + " of " + std::to_string(text.size()) +
         " lines; Enter, back or done --");
    std::string typed = ask("more> ", pageHelp);
    while (!typed.empty() && !isTyped("back", typed) && !isTyped("done", typed)) {
      tell("no \"" + typed + "\"; there are Enter, back, done");
      typed = ask("more> ", pageHelp);
    }
    if (isTyped("done", typed)) return;
    from = typed.empty() ? end : from - std::min(from, pageLines);
  }
}

}  // namespace zev::simulator
