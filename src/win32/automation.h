#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <variant>

#include "runtime/text.h"

struct IDispatch;

namespace zev::win32 {

/// A value that is handed to an object.
using Argument = std::variant<Text, std::int32_t>;

/// An automation object, bound late: members are looked up by their names at each use. What an
/// object or the system refuses is a run-time error with its number, description and source.
class AutomationObject {
 public:
  /// Takes the object over; null is none, and every use of it is error 91.
  explicit AutomationObject(IDispatch* object) : object_(object) {}

  /// Creates an object by the name of its class; error 429 if it cannot be created.
  static AutomationObject create(TextView className);

  /// Writes a property, with the object's own conversion of the value.
  void put(TextView property, const Argument& value);
  /// Calls a method without arguments; what it gives is dropped.
  void call(TextView method);
  /// An object that a method or property gives.
  AutomationObject object(TextView member, std::initializer_list<Argument> arguments = {});
  /// The object's default property for an argument, if that is a text; else empty.
  Text item(const Argument& argument);

 private:
  struct Releaser {
    void operator()(IDispatch* object) const;
  };
  std::unique_ptr<IDispatch, Releaser> object_;
};

/// Keeps automation started on this thread: made before the first object and destroyed after the
/// last.
class AutomationThread {
 public:
  AutomationThread();
  ~AutomationThread();
  AutomationThread(const AutomationThread&) = delete;
  AutomationThread& operator=(const AutomationThread&) = delete;

 private:
  bool begun_ = false;
};

}  // namespace zev::win32
