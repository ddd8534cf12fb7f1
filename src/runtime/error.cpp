#include "runtime/error.h"

#include <algorithm>
#include <array>

namespace zev {
namespace {

struct Description {
  ErrorNumber number;
  TextView text;
};

constexpr auto descriptions = std::to_array<Description>({
    {ErrorNumber::InvalidProcedureCall, u"Invalid procedure call or argument"},
    {ErrorNumber::Overflow, u"Overflow"},
    {ErrorNumber::OutOfMemory, u"Out of memory"},
    {ErrorNumber::SubscriptOutOfRange, u"Subscript out of range"},
    {ErrorNumber::DivisionByZero, u"Division by zero"},
    {ErrorNumber::TypeMismatch, u"Type mismatch"},
    {ErrorNumber::OutOfStackSpace, u"Out of stack space"},
    {ErrorNumber::InternalError, u"Internal error"},
    {ErrorNumber::BadFileNameOrNumber, u"Bad file name or number"},
    {ErrorNumber::FileNotFound, u"File not found"},
    {ErrorNumber::BadFileMode, u"Bad file mode"},
    {ErrorNumber::FileAlreadyOpen, u"File already open"},
    {ErrorNumber::DeviceIoError, u"Device I/O error"},
    {ErrorNumber::FileAlreadyExists, u"File already exists"},
    {ErrorNumber::DiskFull, u"Disk full"},
    {ErrorNumber::InputPastEndOfFile, u"Input past end of file"},
    {ErrorNumber::BadRecordNumber, u"Bad record number"},
    {ErrorNumber::TooManyFiles, u"Too many files"},
    {ErrorNumber::DeviceUnavailable, u"Device unavailable"},
    {ErrorNumber::PermissionDenied, u"Permission denied"},
    {ErrorNumber::DiskNotReady, u"Disk not ready"},
    {ErrorNumber::CannotRenameWithDifferentDrive, u"Can't rename with different drive"},
    {ErrorNumber::PathFileAccessError, u"Path/File access error"},
    {ErrorNumber::PathNotFound, u"Path not found"},
    {ErrorNumber::ObjectVariableNotSet, u"Object variable or With block variable not set"},
    {ErrorNumber::InvalidUseOfNull, u"Invalid use of Null"},
    {ErrorNumber::NoForeignApplicationResponded,
     u"No foreign application responded to a DDE initiate"},
    {ErrorNumber::NoSuchControlArrayElement, u"Control array element doesn't exist"},
    {ErrorNumber::ObjectAlreadyLoaded, u"Object already loaded"},
    {ErrorNumber::CannotUnloadDesignTimeControl, u"Can't unload controls created at design time"},
    {ErrorNumber::InvalidPropertyValue, u"Invalid property value"},
    {ErrorNumber::InvalidPropertyArrayIndex, u"Invalid property array index"},
    {ErrorNumber::ObjectRequired, u"Object required"},
    {ErrorNumber::CannotCreateObject, u"ActiveX component can't create object"},
    {ErrorNumber::NoSuchPropertyOrMethod, u"Object doesn't support this property or method"},
    {ErrorNumber::AutomationError, u"Automation error"},
    {ErrorNumber::ArgumentNotOptional, u"Argument not optional"},
    {ErrorNumber::CollectionKeyAlreadyUsed,
     u"This key is already associated with an element of this collection"},
});

constexpr TextView unknownDescription = u"Application-defined or object-defined error";

}  // namespace

Text errorDescription(std::int32_t number) {
  const auto row = std::find_if(
      descriptions.begin(), descriptions.end(),
      [&](const Description& each) { return static_cast<std::int32_t>(each.number) == number; });
  return Text(row == descriptions.end() ? unknownDescription : row->text);
}

RuntimeError::RuntimeError(ErrorNumber number) : RuntimeError(static_cast<std::int32_t>(number)) {}

RuntimeError::RuntimeError(std::int32_t number)
    : RuntimeError(number, errorDescription(number), {}) {}

RuntimeError::RuntimeError(std::int32_t number, Text description, Text source)
    : std::runtime_error("run-time error " + std::to_string(number) + ": " + toUtf8(description)),
      number_(number),
      description_(std::move(description)),
      source_(std::move(source)) {}

}  // namespace zev
