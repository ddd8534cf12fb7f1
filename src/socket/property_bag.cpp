#include "socket/property_bag.h"

#include <algorithm>

namespace zev {

Variant PropertyBag::ReadProperty(TextView name, const Variant& initial) const {
  const auto found = std::find_if(contents_.begin(), contents_.end(),
                                  [&](const auto& each) { return each.first == name; });
  return found == contents_.end() ? initial : found->second;
}

void PropertyBag::WriteProperty(TextView name, const Variant& value, const Variant& initial) {
  std::erase_if(contents_, [&](const auto& each) { return each.first == name; });
  if (!(value == initial)) contents_.emplace_back(name, value);
}

}  // namespace zev
