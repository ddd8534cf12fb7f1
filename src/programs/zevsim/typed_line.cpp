#include "programs/zevsim/typed_line.h"

#include <algorithm>

#include "programs/zevsim/meant.h"
#include "runtime/controls.h"

namespace zev::simulator {

using scenario::Json;

namespace {

/// What a line is typed for.
struct Desk {
  const Form* active;
  const FolderNames& folderNames;
};

Json jsonOf(std::string_view text) {
  try {
    return scenario::parseJson(text);
  } catch (const scenario::ScenarioError& error) {
    failTyped(error.what());
  }
}

/// A value as it is typed: in JSON if it is some, and else a text.
Json valueOf(std::string_view text) {
  try {
    return scenario::parseJson(text);
  } catch (const scenario::ScenarioError&) {
    return text;
  }
}

// Controls and what is in them.

/// The control that is meant; null if none is.
const Control* controlMeant(std::string_view written, const Desk& desk) {
  return desk.active == nullptr ? nullptr : meantControl(written, *desk.active);
}

/// A control by its own name, which the player looks up; as it is written if none is meant.
std::string controlNamed(std::string_view written, const Desk& desk) {
  const Control* meant = controlMeant(written, desk);
  return meant == nullptr ? std::string(written) : toUtf8(meant->name());
}

bool isCombo(const Control& control) { return control.kind() == ControlKind::ComboBox; }

/// Takes the name of a list off a line. Without one the only list that is to be seen is meant.
std::string takeList(std::string_view& rest, const Desk& desk) {
  std::string_view behind = rest;
  const std::string_view word = takeWord(behind);
  const auto lists =
      desk.active == nullptr ? std::vector<Control*>() : shownOf(*desk.active, isCombo);
  if (lists.size() == 1 && controlMeant(word, desk) == nullptr) return toUtf8(lists[0]->name());
  rest = behind;
  return controlNamed(word, desk);
}

/// The entry that is meant, if the control is a list.
std::string entryNamed(std::string_view written, const std::string& control, const Desk& desk) {
  const Control* found =
      desk.active == nullptr ? nullptr : desk.active->findControl(fromUtf8(control));
  const auto* combo = dynamic_cast<const ComboBox*>(found);
  if (combo == nullptr) return std::string(written);
  const std::vector<Text> entries = entriesOf(*combo);
  const auto meant = meantOne(fromUtf8(written), entries);
  if (meant) return toUtf8(entries[*meant]);
  failTyped(control + " has no entry \"" + std::string(written) + "\"; there are " +
            enumerated(entries));
}

const DirListBox* treeOn(const Form* form) {
  for (const Control* each : form == nullptr ? std::vector<Control*>() : form->Controls()) {
    if (const auto* tree = dynamic_cast<const DirListBox*>(each)) return tree;
  }
  return nullptr;
}

/// The folder that lies above another one, which may be a root.
Text folderAbove(const Text& folder) {
  const std::size_t backslash = folder.rfind(u'\\');
  if (backslash == Text::npos || backslash + 1 == folder.size()) return folder;
  return folder.substr(0, folder.find(u'\\') == backslash ? backslash + 1 : backslash);
}

/// A folder in the opened one, or the one above that.
std::string folderIn(const Text& opened, std::string_view written, const Desk& desk) {
  if (written == "..") return toUtf8(folderAbove(opened));
  const std::vector<Text> names = desk.folderNames ? desk.folderNames(opened) : std::vector<Text>();
  const auto meant = meantOne(fromUtf8(written), names);
  if (meant) return toUtf8(join(withoutTrailing(opened, u'\\'), u"\\", names[*meant]));
  failTyped("no folder \"" + std::string(written) + "\" in " + toUtf8(opened));
}

// The arguments of each verb.

Json controlArgument(std::string_view rest, const Desk& desk) { return controlNamed(rest, desk); }

Json controlAndEntry(std::string_view rest, const Desk& desk) {
  const std::string control = takeList(rest, desk);
  return Json::list({control, entryNamed(rest, control, desk)});
}

Json controlAndText(std::string_view rest, const Desk& desk) {
  const std::string control = controlNamed(takeWord(rest), desk);
  return Json::list({control, rest});
}

Json textArgument(std::string_view rest, const Desk&) { return rest; }

Json folderArgument(std::string_view rest, const Desk& desk) {
  const DirListBox* tree = treeOn(desk.active);
  const bool full = rest.find(':') != std::string_view::npos || rest.starts_with('\\');
  return tree == nullptr || full || rest.empty() ? std::string(rest)
                                                 : folderIn(tree->Path(), rest, desk);
}

Json formArgument(std::string_view rest, const Desk& desk) {
  if (!rest.empty()) return rest;
  if (desk.active == nullptr) failTyped("no form is active; name the form");
  return toUtf8(desk.active->name());
}

Json answersArgument(std::string_view rest, const Desk&) {
  Json answers = Json::list();
  std::string_view probe = rest;
  if (takeWord(probe) == "text") return Json::list({Json{{"text", probe}}});
  while (!rest.empty()) answers.push_back(takeWord(rest));
  return answers;
}

Json keyAndValue(std::string_view rest, const Desk&) {
  const std::string key(takeWord(rest));
  return Json{{key, valueOf(rest)}};
}

Json jsonArgument(std::string_view rest, const Desk&) { return jsonOf(rest); }

Json nothing(std::string_view, const Desk&) { return true; }

struct TypedVerb {
  std::string_view word;
  Json (*value)(std::string_view rest, const Desk& desk);
};

constexpr TypedVerb typedVerbs[] = {
    {"click", controlArgument}, {"select", controlAndEntry}, {"type", controlAndText},
    {"focus", controlArgument}, {"drive", textArgument},     {"folder", folderArgument},
    {"close", formArgument},    {"answer", answersArgument}, {"set", keyAndValue},
    {"change", jsonArgument},   {"expect", jsonArgument},    {"restart", nothing},
};

/// Drives and folders are entries of lists to a person, and have verbs of their own.
std::string_view verbMeant(std::string_view word, std::string_view& rest, const Desk& desk) {
  std::string_view behind = rest;
  const Control* list = word == "select" ? controlMeant(takeWord(behind), desk) : nullptr;
  const bool drives = list != nullptr && list->kind() == ControlKind::DriveListBox;
  const bool folders = list != nullptr && list->kind() == ControlKind::DirListBox;
  if (drives || folders) rest = behind;
  return drives ? "drive" : folders ? "folder" : word;
}

scenario::Step stepOf(const Json& step) {
  return readStep(scenario::JsonReader(step, {}, std::string(typedPlace)));
}

/// Who types a caption alone means to click it.
[[noreturn]] void failUnknown(std::string_view word, const std::string& line, const Desk& desk) {
  const std::string written(trimmed(line));
  const Control* meant = controlMeant(written, desk);
  failTyped("no verb \"" + std::string(word) + "\"; " +
            (meant == nullptr ? "help lists them" : "is it \"click " + written + "\"?"));
}

}  // namespace

void failTyped(const std::string& reason) {
  throw scenario::ScenarioError(std::string(typedPlace), reason);
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blank = " \t\r";
  const std::size_t first = std::min(text.find_first_not_of(blank), text.size());
  return text.substr(first, text.find_last_not_of(blank) + 1 - first);
}

std::string_view takeWord(std::string_view& text) {
  const std::size_t end = std::min(text.find_first_of(" \t"), text.size());
  const std::string_view word = text.substr(0, end);
  text = trimmed(text.substr(end));
  return word;
}

scenario::Step parseLine(const std::string& line, const Form* active,
                         const FolderNames& folderNames) {
  const Desk desk{active, folderNames};
  std::string_view rest = trimmed(line);
  if (rest.starts_with('{')) return stepOf(jsonOf(rest));
  const std::string_view word = verbMeant(takeWord(rest), rest, desk);
  for (const TypedVerb& verb : typedVerbs) {
    if (verb.word == word) return stepOf(Json{{std::string(word), verb.value(rest, desk)}});
  }
  failUnknown(word, line, desk);
}

}  // namespace zev::simulator
