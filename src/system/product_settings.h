#pragma once

#include <cstdint>
#include <vector>

#include "runtime/text.h"
#include "state/product.h"
#include "system/registry.h"

namespace zev {

/// Names of the settings that others read, too.
namespace setting {
inline constexpr TextView Dizin = u"Dizin";
inline constexpr TextView Language = u"Language";
inline constexpr TextView Version = u"Version";
}  // namespace setting

/// The generation that the run stores as `Version`.
inline constexpr std::int16_t productVersion = 21;

/// Writes the product's settings through the normal choice of store: what the run does for its own
/// user, and for every other profile. All calls in this order make one whole set.
class ProductSettings {
 public:
  /// What becomes of a run-time error: it reaches the caller, or it is ignored together with the
  /// read or write that it came from.
  enum class Errors { Raised, Ignored };

  /// The names of all settings that are read or written here.
  static std::vector<TextView> names();

  /// Borrows the registry.
  ProductSettings(Registry& registry, Errors errors) : registry_(registry), errors_(errors) {}

  void writeDirectory(TextView directory);
  /// Brings the settings of an earlier version along, by the version on record.
  void upgrade();
  /// The version and what every install sets.
  void write(std::int16_t version);
  /// The place in the list of languages; none if nothing is selected (-1).
  void writeLanguage(std::int32_t listIndex);

 private:
  std::int32_t read(TextView name, std::int32_t defaultNumber);
  void set(TextView name, std::int32_t number);

  template <typename Statement>
  void perform(Statement statement);

  Registry& registry_;
  Errors errors_;
};

}  // namespace zev
