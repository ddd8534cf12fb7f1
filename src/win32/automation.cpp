#include "win32/automation.h"

#include <vector>

#include "runtime/error.h"
#include "win32/ansi.h"
#include "win32/system_library.h"
#include "win32/windows_api.h"
// Automation's header needs the system's before it.
#include <objbase.h>
#include <oleauto.h>

namespace zev::win32 {
namespace {

/// The system's functions of automation. Only their types are used here: the libraries are loaded
/// when the first object is wanted.
template <typename Function>
Function* ole32(const char* name) {
  return SystemLibrary("ole32.dll").find<Function>(name);
}

template <typename Function>
Function* oleaut32(const char* name) {
  return SystemLibrary("oleaut32.dll").find<Function>(name);
}

BSTR newString(const Text& text) {
  const auto call = oleaut32<decltype(::SysAllocStringLen)>("SysAllocStringLen");
  return call == nullptr ? nullptr : call(wide(text), static_cast<UINT>(text.size()));
}

void freeString(BSTR text) {
  const auto call = oleaut32<decltype(::SysFreeString)>("SysFreeString");
  if (call != nullptr) call(text);
}

Text textOf(BSTR text) {
  if (text == nullptr) return {};
  const auto call = oleaut32<decltype(::SysStringLen)>("SysStringLen");
  const UINT length = call == nullptr ? 0 : call(text);
  return Text(reinterpret_cast<const char16_t*>(text), length);
}

/// One value of automation, cleared when it goes.
class Variant {
 public:
  Variant() = default;
  explicit Variant(const Argument& argument) {
    if (const auto* text = std::get_if<Text>(&argument)) {
      V_VT(&value_) = VT_BSTR;
      V_BSTR(&value_) = newString(*text);
    } else {
      V_VT(&value_) = VT_I4;
      V_I4(&value_) = std::get<std::int32_t>(argument);
    }
  }
  ~Variant() {
    const auto call = oleaut32<decltype(::VariantClear)>("VariantClear");
    if (call != nullptr) call(&value_);
  }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;

  VARIANT* get() { return &value_; }

  Text text() const { return V_VT(&value_) == VT_BSTR ? textOf(V_BSTR(&value_)) : Text(); }

  /// The object, which is the caller's from then on; null if the value is none.
  IDispatch* takeObject() {
    if (V_VT(&value_) != VT_DISPATCH) return nullptr;
    V_VT(&value_) = VT_EMPTY;
    return V_DISPATCH(&value_);
  }

 private:
  VARIANT value_{};
};

// ---- failures

struct ErrorRow {
  HRESULT system;
  ErrorNumber runtime;
};

/// Failures of automation itself that the run-time has numbers of its own for.
constexpr ErrorRow errorRows[] = {
    {DISP_E_UNKNOWNNAME, ErrorNumber::NoSuchPropertyOrMethod},
    {DISP_E_MEMBERNOTFOUND, ErrorNumber::NoSuchPropertyOrMethod},
    {DISP_E_TYPEMISMATCH, ErrorNumber::TypeMismatch},
    {DISP_E_OVERFLOW, ErrorNumber::Overflow},
    {DISP_E_PARAMNOTOPTIONAL, ErrorNumber::ArgumentNotOptional},
    {DISP_E_EXCEPTION, ErrorNumber::AutomationError},
    {E_OUTOFMEMORY, ErrorNumber::OutOfMemory},
};

std::int32_t numberOf(HRESULT result) {
  constexpr HRESULT facilityControl = 10;
  for (const ErrorRow& row : errorRows) {
    if (row.system == result) return static_cast<std::int32_t>(row.runtime);
  }
  return HRESULT_FACILITY(result) == facilityControl ? HRESULT_CODE(result) : result;
}

/// The object's own description, and the run-time's where it gives none.
Text descriptionOf(std::int32_t number, const Text& given) {
  if (!given.empty()) return given;
  constexpr auto automation = static_cast<std::int32_t>(ErrorNumber::AutomationError);
  return errorDescription(number < 0 ? automation : number);
}

[[noreturn]] void raise(HRESULT result, const Text& description, const Text& source) {
  const std::int32_t number = numberOf(result);
  throw RuntimeError(number, descriptionOf(number, description), source);
}

/// What an object says about its own failure; its texts are freed with this.
class Exception {
 public:
  Exception() = default;
  ~Exception() {
    freeString(info_.bstrDescription);
    freeString(info_.bstrSource);
    freeString(info_.bstrHelpFile);
  }
  Exception(const Exception&) = delete;
  Exception& operator=(const Exception&) = delete;

  EXCEPINFO* get() { return &info_; }

  [[noreturn]] void raise(HRESULT result) {
    if (result == DISP_E_EXCEPTION) {
      if (info_.pfnDeferredFillIn != nullptr) info_.pfnDeferredFillIn(&info_);
      if (info_.wCode != 0) result = info_.wCode;
      if (info_.scode != 0) result = info_.scode;
    }
    win32::raise(result, textOf(info_.bstrDescription), textOf(info_.bstrSource));
  }

 private:
  EXCEPINFO info_{};
};

// ---- calls

const IID noInterface{};

DISPID memberOf(IDispatch& object, TextView member) {
  const Text name(member);
  auto* text = const_cast<wchar_t*>(wide(name));
  DISPID number = 0;
  const HRESULT result = object.GetIDsOfNames(noInterface, &text, 1, LOCALE_USER_DEFAULT, &number);
  if (FAILED(result)) raise(result, {}, {});
  return number;
}

void invoke(IDispatch& object, DISPID member, WORD kind, DISPPARAMS& parameters, Variant* answer) {
  Exception exception;
  const HRESULT result =
      object.Invoke(member, noInterface, LOCALE_USER_DEFAULT, kind, &parameters,
                    answer == nullptr ? nullptr : answer->get(), exception.get(), nullptr);
  if (FAILED(result)) exception.raise(result);
}

IDispatch& required(IDispatch* object) {
  if (object == nullptr) throw RuntimeError(ErrorNumber::ObjectVariableNotSet);
  return *object;
}

IDispatch* createDispatch(TextView className) {
  const auto find = ole32<decltype(::CLSIDFromProgID)>("CLSIDFromProgID");
  const auto make = ole32<decltype(::CoCreateInstance)>("CoCreateInstance");
  // IDispatch's own identifier, which no import library has to be linked for.
  constexpr IID dispatch = {0x00020400, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
  CLSID identifier{};
  void* object = nullptr;
  const bool made = find != nullptr && make != nullptr &&
                    SUCCEEDED(find(wide(Text(className)), &identifier)) &&
                    SUCCEEDED(make(identifier, nullptr, CLSCTX_SERVER, dispatch, &object));
  return made ? static_cast<IDispatch*>(object) : nullptr;
}

}  // namespace

// ---- objects

void AutomationObject::Releaser::operator()(IDispatch* object) const { object->Release(); }

AutomationObject AutomationObject::create(TextView className) {
  IDispatch* object = createDispatch(className);
  if (object == nullptr) throw RuntimeError(ErrorNumber::CannotCreateObject);
  return AutomationObject(object);
}

void AutomationObject::put(TextView property, const Argument& value) {
  IDispatch& object = required(object_.get());
  Variant given(value);
  DISPID named = DISPID_PROPERTYPUT;
  DISPPARAMS parameters = {given.get(), &named, 1, 1};
  invoke(object, memberOf(object, property), DISPATCH_PROPERTYPUT, parameters, nullptr);
}

void AutomationObject::call(TextView method) {
  IDispatch& object = required(object_.get());
  DISPPARAMS parameters = {nullptr, nullptr, 0, 0};
  invoke(object, memberOf(object, method), DISPATCH_METHOD, parameters, nullptr);
}

AutomationObject AutomationObject::object(TextView member,
                                          std::initializer_list<Argument> arguments) {
  IDispatch& object = required(object_.get());
  std::vector<std::unique_ptr<Variant>> owners;
  std::vector<VARIANT> values;  // the last argument first
  for (auto each = std::rbegin(arguments); each != std::rend(arguments); ++each) {
    values.push_back(*owners.emplace_back(std::make_unique<Variant>(*each))->get());
  }
  DISPPARAMS parameters = {values.data(), nullptr, static_cast<UINT>(values.size()), 0};
  Variant answer;
  invoke(object, memberOf(object, member), DISPATCH_METHOD | DISPATCH_PROPERTYGET, parameters,
         &answer);
  return AutomationObject(answer.takeObject());
}

Text AutomationObject::item(const Argument& argument) {
  Variant given(argument);
  DISPPARAMS parameters = {given.get(), nullptr, 1, 0};
  Variant answer;
  invoke(required(object_.get()), DISPID_VALUE, DISPATCH_METHOD | DISPATCH_PROPERTYGET, parameters,
         &answer);
  return answer.text();
}

// ---- the thread

AutomationThread::AutomationThread() {
  const auto call = ole32<decltype(::CoInitialize)>("CoInitialize");
  begun_ = call != nullptr && SUCCEEDED(call(nullptr));
}

AutomationThread::~AutomationThread() {
  const auto call = ole32<decltype(::CoUninitialize)>("CoUninitialize");
  if (begun_ && call != nullptr) call();
}

}  // namespace zev::win32
