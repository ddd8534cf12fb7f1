#include "runtime/property.h"

#include <algorithm>

#include "runtime/error.h"

namespace zev {

PropertyBase::PropertyBase(Component& owner, std::string_view name) : owner_(owner), name_(name) {
  owner.properties_.push_back(this);
}

PropertyBase* Component::findProperty(std::string_view name) const {
  const Text wanted = fromUtf8(name);
  const auto found = std::find_if(
      properties_.begin(), properties_.end(),
      [&](const PropertyBase* each) { return equalText(fromUtf8(each->name()), wanted); });
  return found == properties_.end() ? nullptr : *found;
}

PropertyBase& Component::property(std::string_view name) const {
  PropertyBase* found = findProperty(name);
  if (found == nullptr) throw RuntimeError(ErrorNumber::NoSuchPropertyOrMethod);
  return *found;
}

void Component::restoreDesign() {
  for (PropertyBase* each : properties_) each->restore();
}

void Component::Refresh() {
  if (observer_ != nullptr) observer_->refreshed(*this);
}

void Component::written(PropertyBase& property) {
  if (observer_ != nullptr) observer_->propertyWritten(property);
}

template <typename T>
void Property<T>::write(const PropertyValue& value) {
  const T* typed = std::get_if<T>(&value);
  if (typed == nullptr) throw RuntimeError(ErrorNumber::TypeMismatch);
  *this = *typed;
}

template class Property<bool>;
template class Property<std::int32_t>;
template class Property<Text>;

}  // namespace zev
