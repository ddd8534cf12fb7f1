#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "scenario/json_reader.h"

namespace zev::scenario {

/// What scenarios name stands in files of this name.
inline constexpr const char* commonFile = "common.json";

/// What can be named: the key in such a file, and how a message calls one of them.
struct Kind {
  std::string_view key;
  std::string_view called;
};

namespace kind {
inline constexpr Kind value = {"values", "value"};
inline constexpr Kind machine = {"machines", "machine"};
inline constexpr Kind steps = {"steps", "steps"};
inline constexpr Kind expectations = {"expect", "expectations"};
inline constexpr Kind box = {"boxes", "box"};
}  // namespace kind

/// A place in the scenario written out, and where it was written.
struct Place {
  std::string at;
  std::string written;

  Place member(const std::string& key) const { return child(pathStep(key)); }
  Place element(std::size_t index) const { return child("[" + std::to_string(index) + "]"); }
  /// What is written elsewhere and gets this place.
  Place put(const std::string& elsewhere) const { return {at, written + " uses " + elsewhere}; }
  /// Fails with a ScenarioError at the place where it was written.
  [[noreturn]] void fail(const std::string& reason) const { throw ScenarioError(written, reason); }

 private:
  Place child(const std::string& step) const { return {at + step, written + step}; }
};

/// A name as a message writes it.
std::string inQuotes(std::string_view name);

/// What the scenarios of a folder can name: by the file of the folder itself, and by that of the
/// folder above. The files are read when the first name is looked up; a file that is none fails
/// with a ScenarioError, whose path begins with the name of the file.
class CommonNames {
 public:
  explicit CommonNames(const std::filesystem::path& folder) : folder_(folder) {}

  struct Piece {
    const Json* json;   ///< of the file, as long as these names live
    std::string place;  ///< file and path
  };

  /// Fails at `user` if there is not exactly one of that name.
  Piece piece(const Kind& kind, const std::string& name, const Place& user);
  bool has(const Kind& kind, const std::string& name);

 private:
  struct File {
    std::string name;
    std::shared_ptr<const Json> document;
  };

  std::vector<Piece> all(const Kind& kind, const std::string& name);
  std::string unknown(const Kind& kind, const std::string& name) const;
  void read();
  void read(const std::string& name);

  std::filesystem::path folder_;
  std::vector<File> files_;
  bool isRead_ = false;
};

}  // namespace zev::scenario
