#pragma once

#include <utility>
#include <vector>

#include "runtime/variant.h"

namespace zev {

/// Properties of a control as a form stores them, in the order of their first writing.
class PropertyBag {
 public:
  /// What is stored under a name, else `initial`.
  Variant ReadProperty(TextView name, const Variant& initial) const;
  /// Stores a value; one that equals `initial` is not stored.
  void WriteProperty(TextView name, const Variant& value, const Variant& initial);

  const std::vector<std::pair<Text, Variant>>& contents() const { return contents_; }

 private:
  std::vector<std::pair<Text, Variant>> contents_;
};

}  // namespace zev
