#include "scenario/prompt.h"

#include <algorithm>

#include "scenario/boxes.h"
#include "scenario/form_drawing.h"

namespace zev::scenario {
namespace {

constexpr std::string_view helpText =
    "click NAME            click a control, by its name or its caption: click Command2, click "
    "Next\n"
    "select NAME ENTRY     choose an entry of a list: select Combo1 Deutsch\n"
    "type NAME TEXT        replace the text of a text box: type Text2 D:\\Apps\n"
    "focus NAME            move the focus\n"
    "drive D:              choose in the drive list\n"
    "folder C:\\Temp        choose in the directory tree\n"
    "close [FORM]          the close box of the title bar\n"
    "answer WORD ...       answers for the boxes to come: ok cancel abort retry ignore yes no\n"
    "answer text TEXT      a text for an input box to come\n"
    "set KEY VALUE         write a global or a property: set global.gLanguage 2\n"
    "show KEY              what an expectation of that key would find: show Form1.Text2.Text\n"
    "change {..}           change the machine, with the keys of a machine object\n"
    "expect {..}           hold expectations\n"
    "{..}                  any step of a script as it stands in a scenario\n"
    "restart               start the program anew\n"
    "state                 the machine as a whole, in JSON\n"
    "screen                draw the form again\n"
    "help                  this text\n"
    "quit                  leave\n";

constexpr std::string_view place = "prompt";

[[noreturn]] void fail(const std::string& reason) {
  throw ScenarioError(std::string(place), reason);
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blank = " \t\r";
  const std::size_t first = std::min(text.find_first_not_of(blank), text.size());
  return text.substr(first, text.find_last_not_of(blank) + 1 - first);
}

/// Takes the first word off a text.
std::string_view takeWord(std::string_view& text) {
  const std::size_t end = std::min(text.find_first_of(" \t"), text.size());
  const std::string_view word = text.substr(0, end);
  text = trimmed(text.substr(end));
  return word;
}

bool startsWith(TextView text, TextView start) {
  return text.size() >= start.size() && equalText(text.substr(0, start.size()), start);
}

/// The control that a person means: by its name, by its caption, or by the beginning of it.
std::string meantControl(std::string_view written, const Form* active) {
  const Text wanted = fromUtf8(written);
  if (active == nullptr || active->findControl(wanted) != nullptr) return std::string(written);
  for (const Control* each : active->Controls()) {
    if (each->showing() && equalText(shownText(*each), wanted)) return toUtf8(each->name());
  }
  for (const Control* each : active->Controls()) {
    if (each->showing() && startsWith(shownText(*each), wanted)) return toUtf8(each->name());
  }
  return std::string(written);
}

Json jsonOf(std::string_view text) {
  try {
    return parseJson(text);
  } catch (const ScenarioError& error) {
    fail(error.what());
  }
}

/// A value as it is typed: in JSON if it is some, and else a text.
Json valueOf(std::string_view text) {
  Json value = Json::parse(text, nullptr, false);
  return value.is_discarded() ? Json(text) : value;
}

Json answersOf(std::string_view rest) {
  Json answers = Json::array();
  std::string_view probe = rest;
  if (takeWord(probe) == "text") return Json::array({{{"text", probe}}});
  while (!rest.empty()) answers.push_back(takeWord(rest));
  return answers;
}

struct TypedVerb {
  std::string_view word;
  Json (*value)(std::string_view rest, const Form* active);
};

Json controlArgument(std::string_view rest, const Form* active) {
  return meantControl(rest, active);
}

Json controlAndText(std::string_view rest, const Form* active) {
  const std::string control = meantControl(takeWord(rest), active);
  return Json::array({control, rest});
}

Json textArgument(std::string_view rest, const Form*) { return rest; }

Json formArgument(std::string_view rest, const Form* active) {
  if (!rest.empty()) return rest;
  if (active == nullptr) fail("no form is active; name the form");
  return toUtf8(active->name());
}

Json keyAndValue(std::string_view rest, const Form*) {
  const std::string key(takeWord(rest));
  return Json{{key, valueOf(rest)}};
}

constexpr TypedVerb typedVerbs[] = {
    {"click", controlArgument},
    {"select", controlAndText},
    {"type", controlAndText},
    {"focus", controlArgument},
    {"drive", textArgument},
    {"folder", textArgument},
    {"close", formArgument},
    {"answer", [](std::string_view rest, const Form*) { return answersOf(rest); }},
    {"set", keyAndValue},
    {"change", [](std::string_view rest, const Form*) { return jsonOf(rest); }},
    {"expect", [](std::string_view rest, const Form*) { return jsonOf(rest); }},
    {"restart", [](std::string_view, const Form*) { return Json(true); }},
};

/// Whether a person who types a button's word, or the beginning of it, means that button.
std::optional<std::string> meantButton(std::string_view typed, std::int32_t style) {
  for (const std::string_view each : buttonsOf(style)) {
    if (!typed.empty() && each.starts_with(typed)) return std::string(each);
  }
  return std::nullopt;
}

void printIndented(std::ostream& out, TextView text) {
  std::string lines = toUtf8(text);
  for (std::size_t at = 0; (at = lines.find('\r', at)) != std::string::npos;) {
    if (lines.compare(at, 2, "\r\n") == 0) {
      lines.erase(at, 1);
    } else {
      lines[at] = '\n';
    }
  }
  out << "  ";
  for (const char each : lines) out << each << (each == '\n' ? "  " : "");
  out << "\n";
}

std::string buttonRow(std::int32_t style) {
  const std::string_view byDefault = answerWord(simulated::defaultAnswer(style));
  std::string row;
  for (const std::string_view each : buttonsOf(style)) {
    row += "  [ " + std::string(each) + (each == byDefault ? " *" : "") + " ]";
  }
  return row;
}

/// The folders of the machine, those that a person does not see left out.
FolderNames foldersOf(const simulated::SimulatedMachine& machine) {
  return [&disks = machine.disks()](const Text& folder) {
    std::vector<Text> folders;
    for (const Text& name : disks.names(folder).value_or(std::vector<Text>())) {
      const auto entry = disks.find(join(withoutTrailing(folder, u'\\'), u"\\", name));
      constexpr std::uint32_t shown = file_attribute::directory;
      constexpr std::uint32_t hidden = file_attribute::hidden | file_attribute::system;
      if (entry && (entry->attributes & (shown | hidden)) == shown) folders.push_back(name);
    }
    return folders;
  };
}

}  // namespace

Step parseLine(const std::string& line, const Form* active) {
  std::string_view rest = trimmed(line);
  if (rest.starts_with('{')) {
    const Json step = jsonOf(rest);
    return readStep(JsonReader(step, {}, std::string(place)));
  }
  const std::string_view word = takeWord(rest);
  for (const TypedVerb& verb : typedVerbs) {
    if (verb.word != word) continue;
    const Json step{{word, verb.value(rest, active)}};
    return readStep(JsonReader(step, {}, std::string(place)));
  }
  fail("no verb \"" + std::string(word) + "\"; help lists them");
}

bool Prompt::readLine(std::string_view prompt, std::string& line) {
  out_ << prompt << std::flush;
  if (std::getline(in_, line)) return true;
  out_ << "\n";
  over_ = true;
  return false;
}

void Prompt::drawScreen(Player& player) {
  if (!player.ended().is_null()) {
    out_ << "The program has ended: " << player.ended().dump() << "\n";
    return;
  }
  const Form* form = player.machine().screen().activeForm();
  if (form == nullptr) {
    out_ << "No form is shown.\n";
    return;
  }
  out_ << drawForm(*form, foldersOf(player.machine()))
       << listControls(*form, player.machine().screen().focused(*form));
}

void Prompt::show(const std::string& key, Player& player) {
  const Json nothing = nullptr;
  const std::string path(place);
  if (key != "boxes" && key != "ended") checkExpectation(key, JsonReader(nothing, {}, path));
  const Verdict verdict = judge({key, nothing, path}, player.scene());
  out_ << verdict.found.dump(2) << "\n";
}

/// Does what a line asks of the prompt itself; false if it is meant for the player.
bool Prompt::obey(const std::string& line, Player& player) {
  std::string_view rest = trimmed(line);
  const std::string_view word = takeWord(rest);
  if (word == "help") {
    out_ << helpText;
  } else if (word == "state") {
    out_ << player.machine().state().dump(2) << "\n";
  } else if (word == "screen") {
    drawScreen(player);
  } else if (word == "show") {
    show(std::string(rest), player);
  } else if (word == "quit" || word == "exit") {
    over_ = true;
  } else {
    return word.empty();
  }
  return true;
}

std::optional<Step> Prompt::nextStep(Player& player) {
  if (!over_) drawScreen(player);
  std::string line;
  while (!over_ && readLine("> ", line)) {
    try {
      if (!obey(line, player)) return parseLine(line, player.machine().screen().activeForm());
    } catch (const ScenarioError& error) {
      refused(error);
    }
  }
  return std::nullopt;
}

std::optional<Answer> Prompt::answer(const simulated::Box& box) {
  out_ << "+- " << toUtf8(box.title) << "\n";
  printIndented(out_, box.text);
  out_ << buttonRow(box.style) << "\n";
  std::string line;
  while (!over_ && readLine("answer> ", line)) {
    const std::string typed(trimmed(line));
    if (typed.empty()) return std::nullopt;
    if (auto button = meantButton(typed, box.style)) return Answer{*button, {}, std::string(place)};
  }
  return std::nullopt;
}

std::optional<Answer> Prompt::input(TextView prompt, TextView title, TextView initial) {
  out_ << "+- " << toUtf8(title) << "\n";
  printIndented(out_, prompt);
  out_ << "  [" << toUtf8(initial) << "]  (an empty line cancels)\n";
  std::string line;
  if (over_ || !readLine("text> ", line)) return Answer{"cancel", {}, std::string(place)};
  return Answer{{}, fromUtf8(trimmed(line)), std::string(place)};
}

void Prompt::judged(const KeyedValue& expectation, const Verdict& verdict) {
  out_ << (verdict.held ? "held: " : "does not hold: ") << expectation.key << "\n";
}

void Prompt::refused(const ScenarioError& error) { out_ << error.reason() << "\n"; }

}  // namespace zev::scenario
