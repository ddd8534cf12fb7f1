#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "platform/sockets.h"
#include "runtime/error.h"
#include "runtime/text.h"

namespace zev::observed {

/// One injected fault. It strikes calls of one operation whose first text argument holds `match`,
/// letter case aside; for a file known by number and for an LZ handle the path that it was opened
/// by may hold it as well.
struct Fault {
  enum class Effect {
    Error,   ///< the call fails with `code` in its own shape
    Raise,   ///< the call raises the run-time error `code`
    Ignore,  ///< the call reports success without doing anything
  };

  std::string call{};                  ///< one of operationNames(), letter case aside
  std::optional<std::uint32_t> nth{};  ///< counted from 1 among the calls that match; none: all
  Text match{};
  Effect effect = Effect::Error;
  std::int32_t code = 0;
};

/// One argument of a call as it is reported. A TextView is borrowed from the caller; a Text was
/// made for the report.
using Argument = std::variant<std::int64_t, bool, TextView, Text>;
using Arguments = std::span<const Argument>;

/// An address as a call tells it: "10.0.0.5:80".
Text shownAddress(const SocketAddress& address);

/// A platform operation that is being called: its name, and a name that it shares with others.
struct Operation {
  std::string_view name;
  std::string_view alias = {};
  TextView subject = {};  ///< what `match` of a fault looks at beside the first text argument
};

/// A call ended by raising a run-time error of that number.
struct Raised {
  std::int32_t number;
};

/// What a call returned; monostate for none, and for one that has no readable form.
using Outcome = std::variant<std::monostate, std::int64_t, std::uint64_t, bool, TextView, Raised>;

/// Is told of each call when it ends; of nested calls the inner one ends first.
class Listener {
 public:
  virtual ~Listener() = default;
  /// Whether it wants to be told now. If not, called() is left out.
  virtual bool listens() const = 0;
  /// All that it is given is valid only until it returns.
  virtual void called(const Operation& operation, Arguments arguments, const Outcome& outcome) = 0;
};

/// Whether an injected error number is a run-time error itself, for calls that fail by raising one:
/// those from 52 on (the first of the file errors) that the run-time has a text for. All others are
/// numbers of the system, which the call turns into the run-time error that they lead to.
bool isRuntimeError(std::int32_t code);

/// Counts the calls of the platform's operations, tells a listener of them, and makes those fail
/// that a fault strikes. One object serves all services of a machine, so that a fault counts the
/// calls of an operation wherever they come from.
class Instrumentation {
 public:
  /// Borrows the listener.
  explicit Instrumentation(Listener& listener);

  /// Replaces all faults; they count the calls from here on. Throws std::invalid_argument for one
  /// that names no operation.
  void setFaults(std::vector<Fault> faults);

  /// How often an operation was called, its name in any letter case; 0 for a name that none has.
  std::uint64_t calls(std::string_view name) const;
  /// Every count starts anew; the faults count on.
  void forgetCalls();

  /// Carries out one call: `forward` does it, `fail` turns an error number into a failure in the
  /// call's own shape, `ignore` gives success without doing it. All three return the same type. A
  /// run-time error is reported as the outcome and goes on.
  template <typename Forward, typename Fail, typename Ignore>
  auto perform(const Operation& operation, Arguments arguments, Forward forward, Fail fail,
               Ignore ignore) -> decltype(forward()) {
    try {
      const Fault* fault = begin(operation, arguments);
      if constexpr (std::is_void_v<decltype(forward())>) {
        carryOut(fault, forward, fail, ignore);
        tell(operation, arguments, Outcome());
      } else {
        auto result = carryOut(fault, forward, fail, ignore);
        tell(operation, arguments, outcomeOf(result));
        return result;
      }
    } catch (const RuntimeError& error) {
      tell(operation, arguments, Raised{error.number()});
      throw;
    }
  }

 private:
  struct Armed {
    Fault fault;
    std::uint32_t seen = 0;
  };

  template <typename Forward, typename Fail, typename Ignore>
  static auto carryOut(const Fault* fault, Forward& forward, Fail& fail, Ignore& ignore)
      -> decltype(forward()) {
    if (fault == nullptr) return forward();
    if (fault->effect == Fault::Effect::Ignore) return ignore();
    return fail(fault->code);
  }

  template <typename Result>
  static Outcome outcomeOf(const Result& result) {
    if constexpr (std::is_same_v<Result, Text>) {
      return TextView(result);
    } else if constexpr (std::is_same_v<Result, bool>) {
      return result;
    } else if constexpr (std::is_enum_v<Result> || std::is_signed_v<Result>) {
      return static_cast<std::int64_t>(result);
    } else if constexpr (std::is_unsigned_v<Result>) {
      return static_cast<std::uint64_t>(result);
    } else {
      return Outcome();
    }
  }

  /// Counts the call and gives the fault that strikes it, null if none does. A fault that raises is
  /// raised here. Every fault that matches counts the call, though only the first one strikes.
  const Fault* begin(const Operation& operation, Arguments arguments);
  /// Throws std::logic_error for a name that the list of operations lacks.
  void count(std::string_view name);
  static Armed armed(Fault fault);
  static bool strikes(Armed& armed, const Operation& operation, TextView argument);
  void tell(const Operation& operation, Arguments arguments, const Outcome& outcome);

  Listener& listener_;
  std::map<std::string_view, std::uint64_t> calls_;  ///< all operations, those without a call too
  std::vector<Armed> faults_;
};

}  // namespace zev::observed
