#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "scenario/json_reader.h"

namespace zev::scenario {

/// Where the parts of a scenario that is written out stand in the files that it was written out of.
class Origins {
 public:
  /// What has the path `at` in the scenario written out stands at `written`, and so does all below.
  void note(const std::string& at, const std::string& written);
  /// The place of a path as a person finds it: the path itself where nothing was put in, else the
  /// place of the name and, after "uses", that of what it names:
  /// `$.script[0] uses ../common.json: $.steps.install[2].click`.
  std::string written(const std::string& at) const;

 private:
  std::map<std::string, std::string> places_;
};

/// A scenario in which nothing is named any more: what a reader of scenarios takes.
struct WrittenOut {
  Json document;
  std::shared_ptr<const Origins> origins;
};

/// A scenario's file, and which of its cases is meant if it has several: `pages/forward.json`,
/// `pages/directory.json#empty`.
struct ScenarioAddress {
  std::filesystem::path file;
  std::optional<std::string> chosen;
};
ScenarioAddress addressOf(const std::filesystem::path& written);

/// The names of the cases of a document, in their order; none for a plain scenario.
std::vector<std::string> casesOf(const Json& document);

/// Writes a scenario out: one of its cases if it has some, with all that it names by `common.json`
/// of its folder and of the one above. Fails with a ScenarioError for a name that is unknown,
/// stands in both or uses itself, for a case that is not there, for a value that is missing or of
/// no use, and for what is said twice.
WrittenOut writeOut(const Json& document, const std::filesystem::path& folder,
                    const std::optional<std::string>& chosen = std::nullopt);

/// The bytes of a file. One that cannot be read is a ScenarioError.
std::string readText(const std::filesystem::path& file);

/// The text of a file as a document; fails as its reader and `parseJson` do.
Json readDocument(const std::filesystem::path& file);

}  // namespace zev::scenario
