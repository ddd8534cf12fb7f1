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

/// An address as a call tells it: "10.0.0.5:80".
Text shownAddress(const SocketAddress& address);

/// A service under observation: each call is counted, told with its arguments, and fails in its own
/// shape if a fault strikes it. An operation is a line: its name, the member that carries it out,
/// its arguments, and by the name of the helper the shape of its failure. Borrows the service and
/// the instrumentation.
template <typename Watched>
class Observed : public Watched {
 public:
  Observed(Watched& next, Instrumentation& watch) : next_(next), watch_(watch) {}

 protected:
  using Service = Watched;

  /// A call whose deed and arguments are given by themselves. `fail` makes the failure out of the
  /// injected number; `done` is success without the deed.
  template <typename Forward, typename Fail, typename Done, typename... Shown>
  auto call(const Operation& operation, Forward forward, Fail fail, Done done,
            const Shown&... shown) -> decltype(forward()) {
    const std::array<Argument, sizeof...(Shown)> arguments{argument(shown)...};
    return watch_.perform(operation, arguments, forward, fail, done);
  }

  /// A call as it stands. Told are what it is given as numbers, flags, texts and addresses, and of
  /// bytes how many; pointers and what it gives back are not.
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

  /// Both for a call that has namesakes, or tells something else: what it tells stands behind it.
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
  /// Success without the deed: true, or nothing.
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
