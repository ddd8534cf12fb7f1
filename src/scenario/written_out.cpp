#include "scenario/written_out.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <utility>

#include "scenario/common_names.h"
#include "scenario/counted_values.h"

namespace zev::scenario {
namespace {

constexpr std::string_view openingMark = "$(";

std::string listed(const std::vector<std::string>& names) {
  std::string all;
  for (const std::string& each : names) all += (all.empty() ? "" : ", ") + each;
  return all;
}

/// Values by name, where each was written, and whether a text has asked for it.
class Values {
 public:
  struct Value {
    Json json;
    std::string written;
    bool used = false;
  };

  void give(const std::string& name, Json json, std::string written) {
    values_.insert_or_assign(name, Value{std::move(json), std::move(written)});
  }

  /// Null for a name without a value.
  const Value* use(const std::string& name) {
    const auto found = values_.find(name);
    if (found == values_.end()) return nullptr;
    found->second.used = true;
    return &found->second;
  }

  void requireUsed(const std::string& owner) const {
    for (const auto& [name, value] : values_) {
      if (!value.used) {
        throw ScenarioError(value.written, owner + " has no $(" + name + ") for this value");
      }
    }
  }

 private:
  std::map<std::string, Value> values_;
};

/// What is known where something is written: the values that its owner was given, and the names in
/// use there, from the outermost on.
struct Scope {
  std::string owner;  ///< as messages call who gives the values; empty: nobody
  Values values;
  std::vector<std::string> within;
};

bool isCall(const Json& written) { return written.isMembers() && written.contains("use"); }
bool isNamed(const Json& written) { return written.isText() || isCall(written); }

/// The name in a text that is nothing but `$(name)`; none of another one.
std::optional<std::string> nameAlone(const Json& written) {
  if (!written.isText()) return std::nullopt;
  const auto text = written.text();
  if (!text.starts_with(openingMark) || text.find(')') != text.size() - 1) return std::nullopt;
  return text.substr(openingMark.size(), text.size() - openingMark.size() - 1);
}

/// Writes one scenario out. Each function that takes something `written` takes the place where it
/// goes, and the scope in which it was written.
class Expander {
 public:
  explicit Expander(const std::filesystem::path& folder) : commons_(folder) {}

  Json scenario(const Json& document, Scope& scope) {
    const Place root = {"$", "$"};
    Json out = Json::members();
    for (const auto& [key, written] : document.items()) {
      const Place place = root.member(key);
      if (key == "cases") continue;
      out[key] = key == "machine"  ? machine(written, place, scope)
                 : key == "script" ? stepsOf(written, place, scope)
                                   : filled(written, place, scope);
    }
    return out;
  }

  /// The values of a case are filled with named values alone.
  Scope scopeOfCase(const Json& document, const std::string& chosen) {
    Scope scope{"the case " + inQuotes(chosen), {}, {}};
    Scope nothing;
    const JsonReader values = JsonReader(document).member("cases").member(chosen);
    for (const auto& [key, value] : values.members()) {
      const Place place = {value.path(), value.path()};
      if (key != "name")
        scope.values.give(key, filled(value.json(), place, nothing), place.written);
    }
    return scope;
  }

  Origins takeOrigins() { return std::move(origins_); }

 private:
  // ---- values

  /// The value of a name in a scope, or a named one.
  Values::Value value(const std::string& name, const Place& place, Scope& scope) {
    if (const auto* own = scope.values.use(name)) return *own;
    if (!commons_.has(kind::value, name)) {
      place.fail("$(" + name + ") is " +
                 (scope.owner.empty() ? "no named value"
                                      : "neither a value of " + scope.owner + " nor a named one"));
    }
    const CommonNames::Piece piece = commons_.piece(kind::value, name, place);
    Scope inner = enter(kind::value, name, place, scope);
    return {filled(*piece.json, place.put(piece.place), inner), piece.place};
  }

  std::string filledText(const std::string& text, const Place& place, Scope& scope) {
    std::string out;
    std::size_t done = 0;
    for (std::size_t open = text.find(openingMark); open != std::string::npos;
         open = text.find(openingMark, done)) {
      const std::size_t close = text.find(')', open);
      if (close == std::string::npos) place.fail("a $( without its )");
      const std::string name =
          text.substr(open + openingMark.size(), close - open - openingMark.size());
      out += text.substr(done, open - done) + pieceOfText(name, place, scope);
      done = close + 1;
    }
    return out + text.substr(done);
  }

  std::string pieceOfText(const std::string& name, const Place& place, Scope& scope) {
    const Json found = value(name, place, scope).json;
    if (found.isText()) return found.text();
    if (!found.isNumber()) {
      place.fail("$(" + name + ") within a text is neither a text nor a whole number");
    }
    return found.dump();
  }

  Json filled(const Json& written, const Place& place, Scope& scope) {
    origins_.note(place.at, place.written);
    if (const auto name = nameAlone(written)) {
      const Values::Value found = value(*name, place, scope);
      origins_.note(place.at, place.put(found.written).written);
      return found.json;
    }
    if (written.isText()) {
      const Json text = filledText(written.text(), place, scope);
      origins_.note(place.at, place.written);
      return text;
    }
    if (!written.isStructured()) return written;
    Json out = written.isList() ? Json::list() : Json::members();
    if (written.isList()) {
      for (const Json& each : written)
        out.push_back(filled(each, place.element(out.size()), scope));
    } else {
      fillMembers(written, place, scope, out);
    }
    return out;
  }

  void fillMembers(const Json& written, const Place& place, Scope& scope, Json& out) {
    for (const auto& [key, each] : written.items()) {
      const std::string name = newKey(key, place, scope, out);
      out[name] = filled(each, target(place, name, key), scope);
    }
  }

  /// A key of an object that the object written out does not have yet.
  std::string newKey(const std::string& key, const Place& place, Scope& scope, const Json& out) {
    std::string name = filledText(key, place.member(key), scope);
    if (out.contains(name)) place.member(key).fail(inQuotes(name) + " stands twice");
    return name;
  }

  static Place target(const Place& place, const std::string& name, const std::string& key) {
    return {place.member(name).at, place.member(key).written};
  }

  // ---- names

  /// What is in force within a named piece.
  static Scope enter(const Kind& kind, const std::string& name, const Place& user,
                     const Scope& outer) {
    Scope inner{inQuotes(name), {}, outer.within};
    const std::string own = std::string(kind.key) + ":" + name;
    if (std::find(inner.within.begin(), inner.within.end(), own) != inner.within.end()) {
      user.fail(inQuotes(name) + " uses itself");
    }
    inner.within.push_back(own);
    return inner;
  }

  /// Hands what a name stands for to a function, with its place and scope. A placeholder alone
  /// stands for whatever its value is.
  template <typename Function>
  void named(const Kind& kind, const Json& written, const Place& place, Scope& scope,
             const Function& take) {
    if (const auto name = nameAlone(written)) {
      const Values::Value found = value(*name, place, scope);
      Scope nothing{{}, {}, scope.within};
      return take(found.json, place.put(found.written), nothing);
    }
    const std::string name = nameIn(written, place, scope);
    const CommonNames::Piece piece = commons_.piece(kind, name, place);
    Scope inner = enter(kind, name, place, scope);
    if (written.isMembers()) giveValues(written, place, scope, inner);
    for (const Row& row : rowsOf(written, place, scope)) {
      Scope one = inner;
      for (const auto& [key, value] : row) one.values.give(key, value.json, value.written);
      take(*piece.json, place.put(piece.place), one);
      one.values.requireUsed(one.owner);
    }
  }

  std::string nameIn(const Json& written, const Place& place, Scope& scope) {
    const Json& name = written.isMembers() ? written["use"] : written;
    if (!name.isText()) place.member("use").fail("the name of what is used is wanted");
    return filledText(name.text(), place, scope);
  }

  void giveValues(const Json& call, const Place& place, Scope& outer, Scope& inner) {
    for (const auto& [key, each] : call.items()) {
      if (key == "use" || key == "each") continue;
      const Place own = place.member(key);
      inner.values.give(key, filled(each, own, outer), own.written);
    }
  }

  /// The values of one of several times that something is used.
  using Row = std::map<std::string, Values::Value>;

  /// Once without any, or once for each place of the lists in `each`.
  std::vector<Row> rowsOf(const Json& written, const Place& place, Scope& scope) {
    if (!written.isMembers() || !written.contains("each")) return {Row()};
    const Place each = place.member("each");
    if (!written["each"].isMembers() || written["each"].empty()) {
      each.fail("an object of lists is wanted");
    }
    std::vector<Row> rows;
    for (const auto& [name, list] : written["each"].items()) {
      addColumn(name, listOf(filled(list, each.member(name), scope), each.member(name)),
                each.member(name), rows);
    }
    return rows;
  }

  static void addColumn(const std::string& name, const std::vector<Json>& list, const Place& place,
                        std::vector<Row>& rows) {
    if (rows.empty()) rows.resize(list.size());
    if (list.size() != rows.size()) {
      place.fail("a list of " + std::to_string(list.size()) + " beside one of " +
                 std::to_string(rows.size()));
    }
    for (std::size_t index = 0; index < list.size(); ++index) {
      rows[index].emplace(name, Values::Value{list[index], place.element(index).written});
    }
  }

  /// The elements of a list, or those from one text or number to another.
  static std::vector<Json> listOf(const Json& list, const Place& place) {
    if (list.isList() && !list.empty()) return {list.begin(), list.end()};
    if (!list.isMembers() || list.size() != 2 || !list.contains("from") || !list.contains("to")) {
      place.fail("a list, or {\"from\": .., \"to\": ..}, is wanted");
    }
    const auto counted = countedUp(list["from"], list["to"]);
    if (!counted) {
      place.fail("nothing can be counted from " + list["from"].dump() + " to " + list["to"].dump());
    }
    return *counted;
  }

  // ---- steps

  Json stepsOf(const Json& written, const Place& place, Scope& scope) {
    if (!isNamed(written) && !written.isList()) return filled(written, place, scope);
    Json out = Json::list();
    joinSteps(written, place, scope, out);
    return out;
  }

  /// `place.at` is that of the whole list, and `place.written` that of what is written.
  void joinSteps(const Json& written, const Place& place, Scope& scope, Json& out) {
    if (isNamed(written)) {
      return named(kind::steps, written, place, scope,
                   [&](const Json& found, const Place& there, Scope& inner) {
                     joinSteps(found, there, inner, out);
                   });
    }
    if (!written.isList()) return joinStep(written, place, scope, out);
    for (std::size_t index = 0; index < written.size(); ++index) {
      joinSteps(written[index], {place.at, place.element(index).written}, scope, out);
    }
  }

  void joinStep(const Json& written, const Place& place, Scope& scope, Json& out) {
    const Place own = {place.element(out.size()).at, place.written};
    origins_.note(own.at, own.written);
    if (!written.isMembers()) {
      out.push_back(filled(written, own, scope));
      return;
    }
    Json step = Json::members();
    for (const auto& [key, each] : written.items()) {
      step[key] = actionOf(key, each, own.member(key), scope);
    }
    out.push_back(std::move(step));
  }

  Json actionOf(const std::string& key, const Json& written, const Place& place, Scope& scope) {
    if (key == "expect") return expected(written, place, scope);
    if (key == "change") return machine(written, place, scope);
    if (key == "do" || key == "beside") return stepsOf(written, place, scope);
    return filled(written, place, scope);
  }

  // ---- machines

  Json machine(const Json& written, const Place& place, Scope& scope) {
    if (!isNamed(written) && !written.isList()) return filled(written, place, scope);
    Json out = Json::members();
    joinMachine(written, place, scope, out);
    return out;
  }

  void joinMachine(const Json& written, const Place& place, Scope& scope, Json& out) {
    if (isNamed(written)) {
      return named(kind::machine, written, place, scope,
                   [&](const Json& found, const Place& there, Scope& inner) {
                     joinMachine(found, there, inner, out);
                   });
    }
    if (written.isList()) {
      for (std::size_t index = 0; index < written.size(); ++index) {
        joinMachine(written[index], {place.at, place.element(index).written}, scope, out);
      }
      return;
    }
    if (!written.isMembers()) place.fail("a machine or the name of one is wanted");
    merge(written, place, scope, out);
  }

  /// Objects grow together, and so do lists; anything else can be said once.
  void merge(const Json& written, const Place& place, Scope& scope, Json& out) {
    for (const auto& [key, each] : written.items()) {
      const std::string name = filledText(key, place.member(key), scope);
      const Place own = target(place, name, key);
      if (!out.contains(name)) {
        out[name] = filled(each, own, scope);
      } else if (out[name].isMembers() && each.isMembers()) {
        merge(each, own, scope, out[name]);
      } else if (out[name].isList() && each.isList()) {
        append(each, own, scope, out[name]);
      } else {
        own.fail(inQuotes(name) + " stands twice");
      }
    }
  }

  void append(const Json& written, const Place& place, Scope& scope, Json& out) {
    for (std::size_t index = 0; index < written.size(); ++index) {
      const Place own = {place.element(out.size()).at, place.element(index).written};
      out.push_back(filled(written[index], own, scope));
    }
  }

  // ---- expectations

  Json expected(const Json& written, const Place& place, Scope& scope) {
    if (!isNamed(written) && !written.isStructured()) return filled(written, place, scope);
    Json out = Json::members();
    joinExpected(written, place, scope, out);
    return out;
  }

  void joinExpected(const Json& written, const Place& place, Scope& scope, Json& out) {
    if (isNamed(written)) {
      return named(kind::expectations, written, place, scope,
                   [&](const Json& found, const Place& there, Scope& inner) {
                     joinExpected(found, there, inner, out);
                   });
    }
    if (written.isList()) {
      for (std::size_t index = 0; index < written.size(); ++index) {
        joinExpected(written[index], {place.at, place.element(index).written}, scope, out);
      }
      return;
    }
    if (!written.isMembers()) place.fail("expectations or the name of some are wanted");
    for (const auto& [key, each] : written.items()) {
      const std::string name = newKey(key, place, scope, out);
      const Place own = target(place, name, key);
      out[name] = name == "boxes" ? boxesOf(each, own, scope) : filled(each, own, scope);
    }
  }

  Json boxesOf(const Json& written, const Place& place, Scope& scope) {
    if (!isNamed(written) && !written.isList()) return filled(written, place, scope);
    origins_.note(place.at, place.written);
    Json out = Json::list();
    joinBoxes(written, place, scope, out);
    return out;
  }

  void joinBoxes(const Json& written, const Place& place, Scope& scope, Json& out) {
    if (isNamed(written)) return joinNamedBoxes(written, place, scope, out);
    if (!written.isList()) {
      out.push_back(filled(written, {place.element(out.size()).at, place.written}, scope));
      return;
    }
    for (std::size_t index = 0; index < written.size(); ++index) {
      joinBoxes(written[index], {place.at, place.element(index).written}, scope, out);
    }
  }

  /// An answer beside the name of a box is that of the box.
  void joinNamedBoxes(const Json& written, const Place& place, Scope& scope, Json& out) {
    Json call = written;
    if (call.isMembers()) call.erase("answer");
    named(kind::box, call, place, scope, [&](const Json& found, const Place& there, Scope& inner) {
      joinBoxes(found, there, inner, out);
      if (call.size() < written.size()) giveAnswer(written["answer"], place, scope, out);
    });
  }

  static Json& last(Json& list) { return list[list.size() - 1]; }

  void giveAnswer(const Json& written, const Place& place, Scope& scope, Json& out) {
    const Place own = {place.element(out.size() - 1).member("answer").at,
                       place.member("answer").written};
    if (out.empty() || !last(out).isMembers() || last(out).contains("answer")) {
      own.fail("the box has no place for an answer");
    }
    last(out)["answer"] = filled(written, own, scope);
  }

  CommonNames commons_;
  Origins origins_;
};

// ---- cases

void requireNameOfCase(const std::string& name, const JsonReader& reader) {
  const bool plain = !name.empty() && std::all_of(name.begin(), name.end(), [](char each) {
    return (each >= 'a' && each <= 'z') || (each >= '0' && each <= '9') || each == '-' ||
           each == '.';
  });
  if (!plain) reader.fail("a case is named by small letters, digits, \"-\" and \".\"");
}

/// A case can have a name of its own.
void takeName(const Json& chosen, Json& document) {
  if (chosen.contains("name")) document["name"] = chosen["name"];
}

void requireCase(const Json& document, const std::optional<std::string>& chosen) {
  const JsonReader reader(document);
  if (!document.contains("cases")) {
    if (chosen) reader.fail("no case " + inQuotes(*chosen) + ": the scenario has no cases");
    return;
  }
  const JsonReader cases = reader.member("cases");
  const auto known = casesOf(document);
  for (const auto& [name, value] : cases.members()) requireNameOfCase(name, value);
  if (known.empty()) cases.fail("no case at all");
  if (!chosen) cases.fail("one of the cases is wanted: " + listed(known));
  if (std::find(known.begin(), known.end(), *chosen) == known.end()) {
    cases.fail("no case " + inQuotes(*chosen) + "; there are " + listed(known));
  }
}

}  // namespace

void Origins::note(const std::string& at, const std::string& place) {
  if (written(at) != place) places_.insert_or_assign(at, place);
}

std::string Origins::written(const std::string& at) const {
  for (std::size_t length = at.size(); length > 0; length = at.find_last_of(".[", length - 1),
                   length = length == std::string::npos ? 0 : length) {
    const auto found = places_.find(at.substr(0, length));
    if (found != places_.end()) return found->second + at.substr(length);
  }
  return at;
}

ScenarioAddress addressOf(const std::filesystem::path& written) {
  constexpr std::string_view between = ".json#";
  const std::u8string name = written.filename().u8string();
  const std::string bytes(name.begin(), name.end());
  const std::size_t place = bytes.rfind(between);
  if (place == std::string::npos) return {written, std::nullopt};
  const std::size_t length = place + between.size() - 1;
  return {written.parent_path() / name.substr(0, length), bytes.substr(length + 1)};
}

std::vector<std::string> casesOf(const Json& document) {
  std::vector<std::string> names;
  if (!document.isMembers() || !document["cases"].isMembers()) return names;
  for (const auto& [name, value] : document["cases"].items()) names.push_back(name);
  return names;
}

WrittenOut writeOut(const Json& document, const std::filesystem::path& folder,
                    const std::optional<std::string>& chosen) {
  if (!document.isMembers()) return {document, nullptr};
  requireCase(document, chosen);
  Expander expander(folder);
  Scope scope;
  if (chosen) scope = expander.scopeOfCase(document, *chosen);
  WrittenOut out{expander.scenario(document, scope), nullptr};
  scope.values.requireUsed("the scenario");
  if (chosen) takeName(document["cases"][*chosen], out.document);
  out.origins = std::make_shared<const Origins>(expander.takeOrigins());
  return out;
}

std::string readText(const std::filesystem::path& file) {
  // A pipe would be waited for.
  std::error_code ignored;
  const bool isFile = std::filesystem::is_regular_file(file, ignored);
  std::ifstream in;
  if (isFile) in.open(file, std::ios::binary);
  std::ostringstream text;
  if (!isFile || !in) throw ScenarioError("$", "cannot be read");
  text << in.rdbuf();
  return text.str();
}

Json readDocument(const std::filesystem::path& file) { return parseJson(readText(file)); }

}  // namespace zev::scenario
