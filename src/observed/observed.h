#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <type_traits>

#include "observed/instrumentation.h"
#include "platform/sockets.h"

namespace zev::observed {

/// A service under observation: each call is counted, reported with its arguments, and made to fail
/// if a fault strikes it. Borrows the service and the instrumentation; both outlive it.
///
/// A call on its way:
///
///     the program
///       operation of Observed<Service>   one line each, in files.h, registry.h and the others
///         Instrumentation::perform       counts, and looks for a fault that strikes
///           no fault        the service itself: `forward`
///           fault, Error    a failure in the operation's own shape: `fail`
///           fault, Raise    a RuntimeError
///           fault, Ignore   success, though nothing was done: `done`
///         Listener::called               name, arguments, outcome
///
/// An operation's line has its name, the member that carries it out, and its arguments; the
/// function it calls says what a failure looks like:
///
///     withCode       the error number itself is returned
///     withNothing    0, null, false or an empty text is returned
///     pass           `fail` and `done` are given
///     call           the deed is given too, for one that is more than a member
///
/// A new operation needs its line here and its name in operationNames(): a name that is missing
/// there throws std::logic_error at the first call.
template <typename Watched>
class Observed : public Watched {
 public:
  Observed(Watched& next, Instrumentation& watch) : next_(next), watch_(watch) {}

 protected:
  using Service = Watched;

  /// A call that is carried out by `forward`. `fail` makes the failure from the injected number,
  /// `done` gives success without doing anything. `shown` are the arguments as reported.
  template <typename Forward, typename Fail, typename Done, typename... Shown>
  auto call(const Operation& operation, Forward forward, Fail fail, Done done,
            const Shown&... shown) -> decltype(forward()) {
    const std::array<Argument, sizeof...(Shown)> arguments{argument(shown)...};
    return watch_.perform(operation, arguments, forward, fail, done);
  }

  /// A call of one member. Reported are its numbers, flags, texts and addresses, and of bytes how
  /// many there are; pointers and what the call fills in are not.
  template <typename Result, typename... Parameters, typename Fail, typename Done,
            typename... Given>
  Result pass(const Operation& operation, Result (Service::*forward)(Parameters...), Fail fail,
              Done done, Given&&... given) {
    std::array<Argument, (0 + ... + isTold<Parameters>)> told;
    [[maybe_unused]] auto next = told.begin();
    ((isTold<Parameters> ? void(*next++ = argument<std::remove_cvref_t<Parameters>>(given))
                         : void()),
     ...);
    return watch_.perform(
        operation, told, [&] { return (next_.*forward)(given...); }, fail, done);
  }

  /// Fails with the injected number itself.
  template <typename Result, typename... Parameters, typename... Given>
  Result withCode(const Operation& operation, Result (Service::*forward)(Parameters...),
                  Given&&... given) {
    return pass(operation, forward, giveCode<Result>, giveDone<Result>, given...);
  }

  /// Fails with nothing: 0, null, false, an empty text.
  template <typename Result, typename... Parameters, typename... Given>
  Result withNothing(const Operation& operation, Result (Service::*forward)(Parameters...),
                     Given&&... given) {
    return pass(operation, forward, giveNothing<Result>, giveDone<Result>, given...);
  }

  /// The same two for an overloaded member, or one that reports other arguments than it is given:
  /// `shown` are those.
  template <std::invocable Forward, typename... Shown>
  auto withCode(const Operation& operation, Forward forward, const Shown&... shown) {
    using Result = decltype(forward());
    return call(operation, forward, giveCode<Result>, giveDone<Result>, shown...);
  }
  template <std::invocable Forward, typename... Shown>
  auto withNothing(const Operation& operation, Forward forward, const Shown&... shown) {
    using Result = decltype(forward());
    return call(operation, forward, giveNothing<Result>, giveDone<Result>, shown...);
  }

  template <typename Result>
  static Result giveCode(std::int32_t code) {
    return static_cast<Result>(code);
  }
  template <typename Result>
  static Result giveNothing(std::int32_t) {
    return Result();
  }
  /// Success though nothing was done: true, or what the type holds by default.
  template <typename Result>
  static Result giveDone() {
    if constexpr (std::is_same_v<Result, bool>) return true;
    return Result();
  }

  Service& next_;
  Instrumentation& watch_;

 private:
  template <typename T>
  static constexpr bool isBytes = std::is_same_v<T, std::span<std::uint8_t>> ||
                                  std::is_same_v<T, std::span<const std::uint8_t>>;
  template <typename T>
  static constexpr bool isTold = std::is_integral_v<T> || std::is_same_v<T, TextView> ||
                                 std::is_same_v<T, const SocketAddress&> || isBytes<T>;

  template <typename T>
  static Argument argument(const T& value) {
    if constexpr (std::is_same_v<T, bool> || std::is_same_v<T, TextView>) {
      return value;
    } else if constexpr (std::is_integral_v<T>) {
      return static_cast<std::int64_t>(value);
    } else if constexpr (std::is_same_v<T, SocketAddress>) {
      return shownAddress(value);
    } else if constexpr (isBytes<T>) {
      return static_cast<std::int64_t>(value.size());
    } else {
      return Argument();
    }
  }
};

}  // namespace zev::observed
