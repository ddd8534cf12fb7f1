#include "socket/winsock_errors.h"

#include <algorithm>
#include <array>

#include "runtime/error.h"

namespace zev {
namespace {

struct ErrorText {
  std::int32_t number;
  TextView text;
};

/// In the order of the numbers.
constexpr auto texts = std::to_array<ErrorText>({
    {10004, u"Interrupted function call."},
    {10013, u"Permission denied."},
    {10014, u"Bad address."},
    {10022, u"Invalid argument."},
    {10024, u"Too many open files."},
    {10035, u"Resource temporarily unavailable."},
    {10036, u"Operation now in progress."},
    {10037, u"Operation already in progress."},
    {10038, u"Socket operation on nonsocket."},
    {10039, u"Destination address required."},
    {10040, u"Message too long."},
    {10041, u"Protocol wrong type for socket."},
    {10042, u"Bad protocol option."},
    {10043, u"Protocol not supported."},
    {10044, u"Socket type not supported."},
    {10045, u"Operation not supported."},
    {10046, u"Protocol family not supported."},
    {10047, u"Address family not supported by protocol family."},
    {10048, u"Address already in use."},
    {10049, u"Cannot assign requested address."},
    {10050, u"Network is down."},
    {10051, u"Network is unreachable."},
    {10052, u"Network dropped connection on reset."},
    {10053, u"Software caused connection abort."},
    {10054, u"Connection reset by peer."},
    {10055, u"No buffer space available."},
    {10056, u"Socket is already connected."},
    {10057, u"Socket is not connected."},
    {10058, u"Cannot send after socket shutdown."},
    {10060, u"Connection timed out."},
    {10061, u"Connection refused."},
    {10065, u"No route to host."},
    {10067, u"Too many processes."},
    {10091, u"Network subsystem is unavailable."},
    {10092, u"Winsock.dll version out of range."},
    {10093, u"Successful WSAStartup not yet performed."},
    {11001, u"Host not found."},
    {11002, u"Nonauthoritative host not found."},
    {11003, u"This is a nonrecoverable error."},
    {11004, u"Valid name, no data record of requested type."},
});

constexpr TextView unknown = u"Unknown error.";

[[noreturn]] void raise(std::int32_t number, TextView text, TextView source) {
  throw RuntimeError(number, Text(text), Text(source));
}

}  // namespace

Text WinsockErrorText(std::int32_t number) {
  const auto row = std::find_if(texts.begin(), texts.end(),
                                [&](const ErrorText& each) { return each.number == number; });
  return Text(row == texts.end() ? unknown : row->text);
}

void raiseWinsockError(std::int32_t number, TextView source) {
  raise(number, WinsockErrorText(number), source);
}

void raiseOutOfMemory(TextView source) {
  raise(socket_error::outOfMemory, u"Out of memory", source);
}

void raiseWrongProtocolOrState(TextView source) {
  raise(socket_error::wrongProtocolOrState,
        u"Wrong protocol or connection state for the requested transaction or request", source);
}

void raiseArgumentOutOfRange(TextView source) {
  raise(socket_error::argumentOutOfRange,
        u"The argument passed to a function was not in the correct format or in the specified "
        u"range.",
        source);
}

void raiseInvalidArgument(TextView source) {
  raise(socket_error::invalidArgument, u"Invalid argument", source);
}

void raiseUnsupportedVariant(TextView source) {
  raise(socket_error::unsupportedVariant, u"Unsupported variant type.", source);
}

void raiseInvalidState(TextView source) {
  raise(socket_error::invalidState, u"Invalid operation at current state", source);
}

}  // namespace zev
