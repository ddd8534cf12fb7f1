#include "scenario/expectation.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "code_page/code_page.h"
#include "script/matcher.h"

namespace zev::scenario {
namespace {

/// A simulated machine as expectations ask it.
class SimulatedWitness final : public Witness {
 public:
  explicit SimulatedWitness(const simulated::SimulatedMachine& machine) : machine_(machine) {}

  Text fromAnsi(std::string_view bytes) const override { return fromCodePage(bytes, codePage()); }

  std::optional<Entry> entry(const Text& path) const override {
    const auto found = machine_.disks().find(path);
    if (!found) return std::nullopt;
    return Entry{found->attributes, found->size};
  }

  std::optional<std::vector<std::uint8_t>> read(const Text& path, std::uint64_t offset,
                                                std::uint64_t count) const override {
    return machine_.disks().read(path, offset, count);
  }

  std::optional<std::string> sha256(const Text& path) const override {
    return machine_.disks().sha256(path);
  }

  std::optional<std::vector<Text>> names(const Text& folder) const override {
    return machine_.disks().names(folder);
  }

  std::optional<Value> value(RegistryKey hive, const Text& key, const Text& name) const override {
    const auto found = machine_.registry().value(hive, key, name);
    if (!found) return std::nullopt;
    return told(*found);
  }

  std::optional<std::map<Text, Value>> values(RegistryKey hive, const Text& key) const override {
    const auto node = machine_.registry().find(hive, key);
    if (!node) return std::nullopt;
    std::map<Text, Value> all;
    for (const auto& [upper, named] : node->values) all[named.name] = told(named.value);
    return all;
  }

 private:
  Value told(const simulated::RegistryValue& value) const {
    Value all{value.type, std::nullopt, value.ansiBytes(codePage())};
    if (value.isText()) all.text = value.text();
    return all;
  }

  std::uint32_t codePage() const { return machine_.settings().system.codePage; }

  const simulated::SimulatedMachine& machine_;
};

/// The kinds of key that files and registry answer, and the kinds that ask for more.
using WitnessJudge = Verdict (*)(std::string_view rest, const Json& expected,
                                 const Witness& witness);
using SceneJudge = Verdict (*)(std::string_view rest, const KeyedValue& expectation,
                               const Scene& scene);

Json listOf(const std::vector<Text>& texts) {
  Json list = Json::array();
  for (const Text& each : texts) list.push_back(toUtf8(each));
  return list;
}

bool isName(std::string_view wanted, std::string_view name) {
  return equalText(fromUtf8(wanted), fromUtf8(name));
}

Verdict judgeShortcut(std::string_view path, const KeyedValue& expectation, const Scene& scene) {
  const auto properties = scene.machine.shortcut(fromUtf8(path));
  const Json found = properties ? simulated::toJson(*properties) : Json(nullptr);
  return verdict(normalShortcut(expectation.value), found);
}

// What happened.

Verdict judgeBoxes(std::string_view, const KeyedValue& expectation, const Scene& scene) {
  return verdict(expectation.value, scene.boxes);
}

/// Each by its words, or as an object with its window and folder: as the expectation is written.
Verdict judgeStarts(const Json& expected, const std::vector<simulated::Start>& starts,
                    const char* what) {
  const bool parts = wantsParts(expected);
  Json found = Json::array();
  for (const simulated::Start& each : starts) {
    const Json words = toUtf8(each.what);
    const Json all = {{what, words}, {"style", each.style}, {"directory", toUtf8(each.directory)}};
    found.push_back(parts ? all : words);
  }
  return verdict(expected, std::move(found));
}

Verdict judgeShell(std::string_view, const KeyedValue& expectation, const Scene& scene) {
  return judgeStarts(expectation.value, scene.machine.records().shell, "command");
}

Verdict judgeDde(std::string_view, const KeyedValue& expectation, const Scene& scene) {
  return verdict(expectation.value, listOf(scene.machine.records().dde));
}

Verdict judgeOpened(std::string_view, const KeyedValue& expectation, const Scene& scene) {
  return judgeStarts(expectation.value, scene.machine.records().opened, "path");
}

Verdict judgeCalls(std::string_view name, const KeyedValue& expectation, const Scene& scene) {
  return verdict(expectation.value, scene.machine.calls(name));
}

Verdict judgeEnded(std::string_view, const KeyedValue& expectation, const Scene& scene) {
  return judgeEnd(expectation.value, scene.ended);
}

// The program.

Json activeForm(const Scene& scene) {
  const Form* active = scene.machine.screen().activeForm();
  return active == nullptr ? Json(nullptr) : Json(toUtf8(active->name()));
}

Verdict judgeActive(std::string_view, const KeyedValue& expectation, const Scene& scene) {
  return verdict(expectation.value, activeForm(scene));
}

/// The control with the focus on the active form, as "Form1.Command2".
Verdict judgeFocus(std::string_view, const KeyedValue& expectation, const Scene& scene) {
  const Form* active = scene.machine.screen().activeForm();
  const Control* focused = active == nullptr ? nullptr : scene.machine.screen().focused(*active);
  if (focused == nullptr) return verdict(expectation.value, nullptr);
  return verdict(expectation.value, toUtf8(join(active->name(), u".", focused->name())));
}

Verdict judgeGlobal(std::string_view name, const KeyedValue& expectation, const Scene& scene) {
  auto value = scene.program.global(name);
  if (!value) {
    throw ScenarioError(expectation.path, "the program has no global " + std::string(name));
  }
  if (Text* text = std::get_if<Text>(&*value)) *text = trim(beforeNul(*text));
  return verdict(expectation.value, toJson(*value));
}

/// What a list offers beside its properties.
std::optional<Json> listFact(const Control& control, std::string_view name) {
  const auto* combo = dynamic_cast<const ComboBox*>(&control);
  if (combo == nullptr) return std::nullopt;
  if (isName(name, "ListCount")) return combo->ListCount();
  if (!isName(name, "List")) return std::nullopt;
  Json entries = Json::array();
  for (std::int32_t place = 0; place < combo->ListCount(); ++place) {
    entries.push_back(toUtf8(combo->List(place)));
  }
  return entries;
}

struct Found {
  Component* component = nullptr;
  std::string_view property;
};

/// The form that a control is looked for on whose form is not named.
Form& requireActiveForm(const Scene& scene, const Name& name, const std::string& path) {
  Form* active = scene.machine.screen().activeForm();
  if (active != nullptr) return *active;
  throw ScenarioError(path, "the program has no form " + name.parts.front() +
                                ", and no form is active that could have such a control");
}

Found findComponent(const Name& name, const Scene& scene, const std::string& path) {
  Form* form = findForm(scene.program, name.parts.front());
  if (form != nullptr && name.parts.size() == 2) return {form, name.parts[1]};
  if (form == nullptr && name.parts.size() == 3) {
    throw ScenarioError(path, "the program has no form " + name.parts.front());
  }
  if (form == nullptr) form = &requireActiveForm(scene, name, path);
  const std::string& control = name.parts[name.parts.size() - 2];
  Control* found = form->findControl(fromUtf8(control));
  if (found == nullptr) {
    const std::string noForm =
        name.parts.size() == 2 ? "the program has no form " + control + ", and " : "";
    throw ScenarioError(path, noForm + toUtf8(form->name()) + " has no control " + control);
  }
  return {found, name.parts.back()};
}

PropertyBase& propertyOf(const Found& found, const std::string& path) {
  PropertyBase* property = found.component->findProperty(found.property);
  if (property == nullptr) {
    throw ScenarioError(
        path, toUtf8(found.component->name()) + " has no property " + std::string(found.property));
  }
  return *property;
}

Name splitName(std::string_view key, const std::string& path) {
  const Json name = std::string(key);
  return readName(JsonReader(name, {}, path), 3);
}

Verdict judgeProperty(std::string_view, const KeyedValue& expectation, const Scene& scene) {
  const Name name = splitName(expectation.key, expectation.path);
  const Found found = findComponent(name, scene, expectation.path);
  if (const auto* control = dynamic_cast<const Control*>(found.component)) {
    if (auto fact = listFact(*control, found.property)) return verdict(expectation.value, *fact);
  }
  return verdict(expectation.value, toJson(propertyOf(found, expectation.path).value()));
}

struct WitnessRow {
  std::string_view kind;
  WitnessJudge judge;
};

constexpr WitnessRow witnessRows[] = {
    {"file:", judgeFile},
    {"dir:", judgeDirectory},
    {"registry:", judgeRegistry},
};

struct SceneRow {
  std::string_view kind;
  SceneJudge judge;
};

constexpr SceneRow sceneRows[] = {
    {"shortcut:", judgeShortcut}, {"calls:", judgeCalls}, {"global.", judgeGlobal},
    {"boxes", judgeBoxes},        {"shell", judgeShell},  {"dde", judgeDde},
    {"opened", judgeOpened},      {"ended", judgeEnded},  {"active", judgeActive},
    {"focus", judgeFocus},        {"", judgeProperty},
};

Verdict judgeKind(const KeyedValue& expectation, const Scene& scene) {
  const std::string_view kind = kindOfKey(expectation.key);
  const auto rest = std::string_view(expectation.key).substr(kind.size());
  for (const WitnessRow& row : witnessRows) {
    if (row.kind == kind)
      return row.judge(rest, expectation.value, SimulatedWitness(scene.machine));
  }
  for (const SceneRow& row : sceneRows) {
    if (row.kind == kind) return row.judge(rest, expectation, scene);
  }
  throw std::logic_error("a kind of expectation that nobody judges");
}

}  // namespace

Verdict judge(const KeyedValue& expectation, const Scene& scene) {
  try {
    return judgeKind(expectation, scene);
  } catch (const std::invalid_argument& error) {  // a path that no file can have
    throw ScenarioError(expectation.path, error.what());
  }
}

Form* findForm(PlayedProgram& program, std::string_view name) {
  for (Form* each : program.forms()) {
    if (equalText(each->name(), fromUtf8(name))) return each;
  }
  return nullptr;
}

PropertyBase& findProperty(const Name& name, const Scene& scene, const std::string& path) {
  return propertyOf(findComponent(name, scene, path), path);
}

}  // namespace zev::scenario
