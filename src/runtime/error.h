#pragma once

#include <cstdint>
#include <stdexcept>

#include "runtime/text.h"

namespace zev {

/// Numbers of the run-time errors that the procedures can meet. The values are the run-time's own.
enum class ErrorNumber : std::int32_t {
  InvalidProcedureCall = 5,
  Overflow = 6,
  OutOfMemory = 7,
  SubscriptOutOfRange = 9,
  DivisionByZero = 11,
  TypeMismatch = 13,
  OutOfStackSpace = 28,
  InternalError = 51,
  BadFileNameOrNumber = 52,
  FileNotFound = 53,
  BadFileMode = 54,
  FileAlreadyOpen = 55,
  DeviceIoError = 57,
  FileAlreadyExists = 58,
  DiskFull = 61,
  InputPastEndOfFile = 62,
  BadRecordNumber = 63,
  TooManyFiles = 67,
  DeviceUnavailable = 68,
  PermissionDenied = 70,
  DiskNotReady = 71,
  CannotRenameWithDifferentDrive = 74,
  PathFileAccessError = 75,
  PathNotFound = 76,
  ObjectVariableNotSet = 91,
  InvalidUseOfNull = 94,
  NoForeignApplicationResponded = 282,
  NoSuchControlArrayElement = 340,
  ObjectAlreadyLoaded = 360,
  CannotUnloadDesignTimeControl = 362,
  InvalidPropertyValue = 380,
  InvalidPropertyArrayIndex = 381,
  ObjectRequired = 424,
  CannotCreateObject = 429,
  NoSuchPropertyOrMethod = 438,
  AutomationError = 440,
  ArgumentNotOptional = 449,
  CollectionKeyAlreadyUsed = 457,
};

/// The run-time's English description of an error number; "Application-defined or object-defined
/// error" for a number that it has no text for.
Text errorDescription(std::int32_t number);

/// A run-time error as the language raises it: a number, a description, and the source that
/// raised it. Every trap of the program catches this type and no other.
class RuntimeError : public std::runtime_error {
 public:
  /// An error of the run-time itself, with the run-time's description and no source.
  explicit RuntimeError(ErrorNumber number);
  explicit RuntimeError(std::int32_t number);
  /// An error raised with texts of its own.
  RuntimeError(std::int32_t number, Text description, Text source);

  std::int32_t number() const { return number_; }
  const Text& description() const { return description_; }
  const Text& source() const { return source_; }

 private:
  std::int32_t number_;
  Text description_;
  Text source_;
};

/// How a program comes to its end.
enum class EndKind {
  Unload,  ///< the last form was unloaded
  Exit,    ///< the program ended itself on the spot, with no unload logic
  Error,   ///< a run-time error met no trap
};

/// The unwinding for "the program ends here". It is no RuntimeError, so that no trap catches it.
struct ProgramEnd {
  EndKind kind;
};

/// A run-time error that left an event procedure which the message loop ran. Those are outermost
/// frames of the program: no trap of a procedure below in the stack may catch what left them.
struct UnhandledError {
  RuntimeError error;
};

/// Runs one statement with run-time errors ignored, and tells whether it went through. It guards
/// a single statement: of several in a row, each gets a guard of its own.
template <typename Statement>
bool ignoringErrors(Statement&& statement) {
  try {
    statement();
    return true;
  } catch (const RuntimeError&) {
    return false;
  }
}

}  // namespace zev
