#include "scenario/common_names.h"

#include <algorithm>
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
    if (!file.document.contains(key) || !file.document[key].contains(name)) continue;
    found.push_back(
        {&file.document[key][name], file.name + ": $" + pathStep(key) + pathStep(name)});
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
    files_.push_back({name, readDocument(folder_ / name)});
    requireKinds(files_.back().document);
  } catch (const ScenarioError& error) {
    throw ScenarioError(name + ": " + error.path(), error.reason());
  }
}

}  // namespace zev::scenario
