#include "scenario/judge.h"

#include <stdexcept>

#include "scenario/finding.h"

namespace zev::scenario {
namespace {

using Judged = std::optional<Verdict>;

Judged ifSeen(const Json& expected, std::optional<Json> found) {
  return found ? Judged(verdict(expected, std::move(*found))) : std::nullopt;
}

/// An expectation of one kind; `rest` is what follows the kind in its key.
struct Question {
  std::string_view kind;
  std::string_view rest;
  const KeyedValue& expectation;
  const Scene& scene;

  const Json& expected() const { return expectation.value; }
  std::optional<Json> found() const { return scene.stage.find(kind, rest); }
};

template <Verdict (*Judge)(std::string_view, const Json&, const Witness&)>
Judged byWitness(const Question& asked) {
  return Judge(asked.rest, asked.expected(), asked.scene.stage.witness());
}

Judged asFound(const Question& asked) { return ifSeen(asked.expected(), asked.found()); }

Judged shortcut(const Question& asked) {
  return ifSeen(normalShortcut(asked.expected()), asked.found());
}

/// Each by its words, which stand first, or as an object with its window and folder: as the
/// expectation is written.
Judged starts(const Question& asked) {
  auto found = asked.found();
  if (found && !wantsParts(asked.expected())) {
    for (Json& each : *found) each = Json(each.items().front().value);
  }
  return ifSeen(asked.expected(), std::move(found));
}

/// Styles in an expectation of boxes, brought to the part of them that shows.
Json visibleStyles(Json boxes) {
  if (!boxes.isList()) return boxes;
  for (Json& each : boxes) {
    if (!each.isMembers() || !each.contains("style")) continue;
    Json& style = each["style"];
    if (style.isNumber()) style = visibleStyle(style.get<std::int32_t>());
  }
  return boxes;
}

Judged boxes(const Question& asked) {
  const bool inside = asked.scene.stage.seesInside();
  return verdict(inside ? asked.expected() : visibleStyles(asked.expected()), asked.scene.boxes);
}

/// From outside one end looks like the other, unless it is an error's.
Judged ended(const Question& asked) {
  const Json& expected = asked.expected();
  const Json& found = asked.scene.ended;
  if (found != endedSomehow) return judgeEnd(expected, found);
  if (expected == "unload" || expected == "exit") return Verdict{true, expected};
  const bool wrong = expected.isNull() || expected == "error" || expected.contains("error");
  return wrong ? Judged(Verdict{false, found}) : std::nullopt;
}

/// After the end only the inside has forms.
bool hasForms(const Scene& scene) { return scene.stage.seesInside() || scene.ended.isNull(); }

Judged active(const Question& asked) {
  if (!hasForms(asked.scene)) return std::nullopt;
  const Form* form = asked.scene.stage.activeForm();
  return verdict(asked.expected(), form == nullptr ? Json(nullptr) : Json(toUtf8(form->name())));
}

/// The control with the focus on the active form, as "Form1.Command2".
Judged focus(const Question& asked) {
  if (!hasForms(asked.scene)) return std::nullopt;
  const Form* form = asked.scene.stage.activeForm();
  const Control* control = form == nullptr ? nullptr : asked.scene.stage.focused();
  if (control == nullptr) return verdict(asked.expected(), nullptr);
  return verdict(asked.expected(), toUtf8(join(form->name(), u".", control->name())));
}

/// Two parts mean a control of the active form, unless a form is called as the first one says.
Judged property(const Question& asked) {
  Stage& stage = asked.scene.stage;
  const Json key = asked.expectation.key;
  const Name name = readName(JsonReader(key, {}, asked.expectation.path), 3);
  const bool ofActive = name.parts.size() == 2 && findForm(stage, name.parts.front()) == nullptr;
  if (ofActive && !hasForms(asked.scene)) return std::nullopt;
  const FoundProperty found = propertyOf(name, stage, asked.expectation.path);
  return ifSeen(asked.expected(), stage.value(found.component, found.name));
}

struct KindRow {
  std::string_view kind;
  Judged (*judge)(const Question& asked);
};

constexpr KindRow kindRows[] = {
    {"file:", byWitness<judgeFile>},
    {"dir:", byWitness<judgeDirectory>},
    {"registry:", byWitness<judgeRegistry>},
    {"shortcut:", shortcut},
    {"calls:", asFound},
    {"global.", asFound},
    {"boxes", boxes},
    {"shell", starts},
    {"dde", asFound},
    {"opened", starts},
    {"ended", ended},
    {"active", active},
    {"focus", focus},
    {"", property},
};

Judged judgeKind(const KeyedValue& expectation, const Scene& scene) {
  const std::string_view kind = kindOfKey(expectation.key);
  const auto rest = std::string_view(expectation.key).substr(kind.size());
  for (const KindRow& row : kindRows) {
    if (row.kind == kind) return row.judge({kind, rest, expectation, scene});
  }
  throw std::logic_error("a kind of expectation that nobody judges");
}

}  // namespace

std::optional<Verdict> judge(const KeyedValue& expectation, const Scene& scene) {
  try {
    return judgeKind(expectation, scene);
  } catch (const InUse&) {
    return std::nullopt;
  } catch (const std::invalid_argument& error) {  // a path that no file can have, or no global
    throw ScenarioError(expectation.path, error.what());
  }
}

}  // namespace zev::scenario
