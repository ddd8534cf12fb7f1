#include "runtime/error.h"

#include <gtest/gtest.h>

#include <string>

namespace zev {
namespace {

struct Described {
  std::int32_t number;
  ErrorNumber name;
  const char* description;
};

constexpr const char* unknown = "Application-defined or object-defined error";

constexpr Described rows[] = {
    {5, ErrorNumber::InvalidProcedureCall, "Invalid procedure call or argument"},
    {6, ErrorNumber::Overflow, "Overflow"},
    {7, ErrorNumber::OutOfMemory, "Out of memory"},
    {9, ErrorNumber::SubscriptOutOfRange, "Subscript out of range"},
    {11, ErrorNumber::DivisionByZero, "Division by zero"},
    {13, ErrorNumber::TypeMismatch, "Type mismatch"},
    {28, ErrorNumber::OutOfStackSpace, "Out of stack space"},
    {51, ErrorNumber::InternalError, "Internal error"},
    {52, ErrorNumber::BadFileNameOrNumber, "Bad file name or number"},
    {53, ErrorNumber::FileNotFound, "File not found"},
    {54, ErrorNumber::BadFileMode, "Bad file mode"},
    {55, ErrorNumber::FileAlreadyOpen, "File already open"},
    {57, ErrorNumber::DeviceIoError, "Device I/O error"},
    {58, ErrorNumber::FileAlreadyExists, "File already exists"},
    {61, ErrorNumber::DiskFull, "Disk full"},
    {62, ErrorNumber::InputPastEndOfFile, "Input past end of file"},
    {63, ErrorNumber::BadRecordNumber, "Bad record number"},
    {67, ErrorNumber::TooManyFiles, "Too many files"},
    {68, ErrorNumber::DeviceUnavailable, "Device unavailable"},
    {70, ErrorNumber::PermissionDenied, "Permission denied"},
    {71, ErrorNumber::DiskNotReady, "Disk not ready"},
    {74, ErrorNumber::CannotRenameWithDifferentDrive, "Can't rename with different drive"},
    {75, ErrorNumber::PathFileAccessError, "Path/File access error"},
    {76, ErrorNumber::PathNotFound, "Path not found"},
    {91, ErrorNumber::ObjectVariableNotSet, "Object variable or With block variable not set"},
    {282, ErrorNumber::NoForeignApplicationResponded,
     "No foreign application responded to a DDE initiate"},
    {380, ErrorNumber::InvalidPropertyValue, "Invalid property value"},
    {381, ErrorNumber::InvalidPropertyArrayIndex, "Invalid property array index"},
    {424, ErrorNumber::ObjectRequired, "Object required"},
    {429, ErrorNumber::CannotCreateObject, "ActiveX component can't create object"},
    {438, ErrorNumber::NoSuchPropertyOrMethod, "Object doesn't support this property or method"},
    {440, ErrorNumber::AutomationError, "Automation error"},
    {449, ErrorNumber::ArgumentNotOptional, "Argument not optional"},
    {457, ErrorNumber::CollectionKeyAlreadyUsed,
     "This key is already associated with an element of this collection"},
};

TEST(RuntimeError, HasTheNumberAndTheDescriptionOfTheRunTime) {
  for (const Described& each : rows) {
    const RuntimeError error(each.name);
    EXPECT_EQ(error.number(), each.number);
    EXPECT_EQ(toUtf8(error.description()), each.description) << each.number;
    EXPECT_EQ(error.source(), u"");
    EXPECT_EQ(toUtf8(errorDescription(each.number)), each.description) << each.number;
  }
}

TEST(RuntimeError, HasOneDescriptionForAllOtherNumbers) {
  for (const std::int32_t number : {-1, 0, 1, 10, 12, 56, 1000, 32000, -2147467259}) {
    EXPECT_EQ(toUtf8(errorDescription(number)), unknown) << number;
    EXPECT_EQ(toUtf8(RuntimeError(number).description()), unknown) << number;
  }
}

TEST(RuntimeError, CarriesTextsOfItsOwn) {
  const RuntimeError error(10048, u"Address is in use", u"CEventSocket.Bind");
  EXPECT_EQ(error.number(), 10048);
  EXPECT_EQ(error.description(), u"Address is in use");
  EXPECT_EQ(error.source(), u"CEventSocket.Bind");
  EXPECT_STREQ(error.what(), "run-time error 10048: Address is in use");
}

TEST(IgnoringErrors, GuardsOneStatement) {
  bool second = false;
  EXPECT_FALSE(ignoringErrors([] { throw RuntimeError(ErrorNumber::DiskFull); }));
  EXPECT_TRUE(ignoringErrors([&] { second = true; }));
  EXPECT_TRUE(second);
}

TEST(IgnoringErrors, LetsTheEndOfTheProgramThrough) {
  EXPECT_THROW(ignoringErrors([] { throw ProgramEnd{EndKind::Unload}; }), ProgramEnd);
  EXPECT_THROW(ignoringErrors([] { throw UnhandledError{RuntimeError(ErrorNumber::Overflow)}; }),
               UnhandledError);
}

}  // namespace
}  // namespace zev
