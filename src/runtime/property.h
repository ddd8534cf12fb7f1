#pragma once

#include <cstdint>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "runtime/text.h"

namespace zev {

/// What a property can hold. Whole numbers serve check boxes, list indexes and positions.
using PropertyValue = std::variant<bool, std::int32_t, Text>;

class Component;
class Control;

/// One property of a form or control, reached by its name at run time.
class PropertyBase {
 public:
  PropertyBase(Component& owner, std::string_view name);
  virtual ~PropertyBase() = default;
  PropertyBase(const PropertyBase&) = delete;
  PropertyBase& operator=(const PropertyBase&) = delete;

  std::string_view name() const { return name_; }
  Component& owner() const { return owner_; }

  virtual PropertyValue value() const = 0;
  /// Writes the property as the code of a program does. A value of another type is error 13.
  virtual void write(const PropertyValue& value) = 0;
  /// Goes back to the state at design time, unseen: the form is about to be loaded anew.
  virtual void restore() = 0;

 private:
  Component& owner_;
  std::string_view name_;
};

/// Learns of what the program does to its forms and shows it: the binding of a toolkit, or the
/// simulated screen. Borrowed by the components; outlives them.
class FormObserver {
 public:
  virtual ~FormObserver() = default;
  /// A property was written, by the program or by the person.
  virtual void propertyWritten(PropertyBase& property) = 0;
  /// A component is to be painted at once.
  virtual void refreshed(Component& component) = 0;
  /// The program gives the focus to a control that can take it. It has it now if its form is the
  /// one in use, and else as soon as it is.
  virtual void focusGiven(Control& control) = 0;
};

/// What forms and controls have in common: a name, properties, and somebody who shows them.
class Component {
 public:
  explicit Component(Text name) : name_(std::move(name)) {}
  virtual ~Component() = default;
  Component(const Component&) = delete;
  Component& operator=(const Component&) = delete;

  const Text& name() const { return name_; }
  /// The properties in the order in which the kind declares them.
  const std::vector<PropertyBase*>& properties() const { return properties_; }
  /// The property of that name, letter case aside; null if this kind has none.
  PropertyBase* findProperty(std::string_view name) const;
  /// The same; error 438 if this kind has none.
  PropertyBase& property(std::string_view name) const;

  /// Goes back to the state at design time, unseen.
  virtual void restoreDesign();

  /// From now on writes are shown to the observer, borrowed; null: to nobody.
  void observe(FormObserver* observer) { observer_ = observer; }
  /// Paints the component at once.
  void Refresh();

 protected:
  FormObserver* observer() const { return observer_; }

 private:
  friend class PropertyBase;
  template <typename T>
  friend class Property;
  void written(PropertyBase& property);

  Text name_;
  std::vector<PropertyBase*> properties_;
  FormObserver* observer_ = nullptr;
};

/// A property of one type. Assigning to it writes it and shows it; it fires no event of its own.
template <typename T>
class Property final : public PropertyBase {
 public:
  /// Registers itself with its owner, in whose list it stands from then on: it cannot be moved.
  Property(Component& owner, std::string_view name, T initial = {})
      : PropertyBase(owner, name), design_(initial), value_(std::move(initial)) {}

  const T& get() const { return value_; }
  operator const T&() const { return value_; }

  Property& operator=(T value) {
    value_ = std::move(value);
    owner().written(*this);
    return *this;
  }

  /// Sets the state at design time, before anything shows it.
  void design(T value) { value_ = design_ = std::move(value); }
  /// Takes over a state that is already on the screen: nobody is told of it.
  void follow(T value) { value_ = std::move(value); }

  PropertyValue value() const override { return value_; }
  void write(const PropertyValue& value) override;
  void restore() override { value_ = design_; }

 private:
  T design_;
  T value_;
};

extern template class Property<bool>;
extern template class Property<std::int32_t>;
extern template class Property<Text>;

}  // namespace zev
