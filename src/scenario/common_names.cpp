#include "scenario/common_names.h"

#include <algorithm>
#include <map>
#include <utility>

#include "scenario/written_out.h"

namespace zev::scenario {
namespace {

constexpr Kind allKinds[] = {kind::value, kind::machine, kind::steps, kind::expectations,
                             kind::box};

/// Fails if a file has anything but names of the kinds that there are.
void requireKinds(const Json& document) {
  std::vector<std::string_view> known;
  for (const Kind& each : allKinds) known.push_back(each.key);
  for (const auto& [key, named] : JsonReader(document).members()) {
    if (std::find(known.begin(), known.end(), key) == known.end()) {
      failUnknownKey(named, key, known);
    }
    named.members();  // an object
  }
}

std::shared_ptr<const Json> readNames(const std::string& text) {
  auto document = std::make_shared<const Json>(parseJson(text));
  requireKinds(*document);
  return document;
}

/// A file of names, read. A process that plays many scenarios needs the same one for each: what a
/// file was read to is kept beside its text, for as long as its text stays that.
std::shared_ptr<const Json> namesIn(const std::filesystem::path& file) {
  struct Known {
    std::string text;
    std::shared_ptr<const Json> document;
  };
  thread_local std::map<std::filesystem::path, Known> known;
  const std::string text = readText(file);
  const std::filesystem::path place = file.lexically_normal();
  const auto found = known.find(place);
  if (found != known.end() && found->second.text == text) return found->second.document;
  auto document = readNames(text);
  known.insert_or_assign(place, Known{text, document});
  return document;
}

}  // namespace

std::string inQuotes(std::string_view name) { return "\"" + std::string(name) + "\""; }

CommonNames::Piece CommonNames::piece(const Kind& kind, const std::string& name,
                                      const Place& user) {
  const std::vector<Piece> found = all(kind, name);
  if (found.empty()) user.fail(unknown(kind, name));
  if (found.size() > 1) {
    user.fail(inQuotes(name) + " stands twice: " + found[0].place + " and " + found[1].place);
  }
  return found.front();
}

bool CommonNames::has(const Kind& kind, const std::string& name) {
  return !all(kind, name).empty();
}

std::vector<CommonNames::Piece> CommonNames::all(const Kind& kind, const std::string& name) {
  read();
  std::vector<Piece> found;
  const std::string key(kind.key);
  for (const File& file : files_) {
    const Json& document = *file.document;
    if (!document.contains(key) || !document[key].contains(name)) continue;
    found.push_back({&document[key][name], file.name + ": $" + pathStep(key) + pathStep(name)});
  }
  return found;
}

std::string CommonNames::unknown(const Kind& kind, const std::string& name) const {
  const std::string no = "no " + std::string(kind.called) + " " + inQuotes(name);
  std::string places;
  for (const File& file : files_) places += (places.empty() ? " in " : " or ") + file.name;
  return no + (places.empty() ? ": no common.json is here or in the folder above" : places);
}

void CommonNames::read() {
  if (std::exchange(isRead_, true)) return;
  read(commonFile);
  read(std::string("../") + commonFile);
}

void CommonNames::read(const std::string& name) {
  std::error_code ignored;
  if (!std::filesystem::exists(folder_ / name, ignored)) return;
  try {
    files_.push_back({name, namesIn(folder_ / name)});
  } catch (const ScenarioError& error) {
    throw ScenarioError(name + ": " + error.path(), error.reason());
  }
}

}  // namespace zev::scenario
