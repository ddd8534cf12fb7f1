#include "posix/translation.h"

#include <netdb.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace zev::posix {

sockaddr_in toSystem(const SocketAddress& address) {
  sockaddr_in result{};
  result.sin_family = AF_INET;
  result.sin_port = address.port;
  result.sin_addr.s_addr = static_cast<in_addr_t>(address.address);
  return result;
}

SocketAddress fromSystem(const sockaddr_in& address) {
  SocketAddress result;
  result.port = address.sin_port;
  result.address = static_cast<std::int32_t>(address.sin_addr.s_addr);
  return result;
}

bool isDestination(const SocketAddress& address) {
  return address.port != 0 && address.address != 0;
}

bool overlap(const SocketAddress& first, const SocketAddress& second) {
  const bool anyInterface = first.address == 0 || second.address == 0;
  return first.port == second.port && (anyInterface || first.address == second.address);
}

// ---- error numbers

namespace {

struct Row {
  int system;
  std::int32_t winsock;
};

constexpr std::int32_t systemCallFailure = 10107;

constexpr Row errors[] = {
    {EINTR, 10004},           {EBADF, 10038},           {EPERM, 10013},
    {EACCES, 10013},          {EFAULT, 10014},          {EINVAL, 10022},
    {EMFILE, 10024},          {ENFILE, 10024},          {EAGAIN, 10035},
    {EINPROGRESS, 10035},  // a non-blocking connect, which Winsock lets wait like all others
    {EALREADY, 10037},        {ENOTSOCK, 10038},        {EDESTADDRREQ, 10039},
    {EMSGSIZE, 10040},        {EPROTOTYPE, 10041},      {ENOPROTOOPT, 10042},
    {EPROTONOSUPPORT, 10043}, {ESOCKTNOSUPPORT, 10044}, {EOPNOTSUPP, 10045},
    {EPFNOSUPPORT, 10046},    {EAFNOSUPPORT, 10047},    {EADDRINUSE, 10048},
    {EADDRNOTAVAIL, 10049},   {ENETDOWN, 10050},        {ENETUNREACH, 10051},
    {ENETRESET, 10052},       {ECONNABORTED, 10053},    {ECONNRESET, 10054},
    {EPIPE, 10054},  // nobody shuts an own direction down here, so the peer has reset
    {ENOBUFS, 10055},         {ENOMEM, 10055},          {ENOSPC, 10055},  // of what can be watched
    {EISCONN, 10056},         {ENOTCONN, 10057},        {ESHUTDOWN, 10058},
    {ETOOMANYREFS, 10059},    {ETIMEDOUT, 10060},       {ECONNREFUSED, 10061},
    {ELOOP, 10062},           {ENAMETOOLONG, 10063},    {EHOSTDOWN, 10064},
    {EHOSTUNREACH, 10065},    {EUSERS, 10068},          {EDQUOT, 10069},
    {ESTALE, 10070},
};

constexpr Row lookUpErrors[] = {
    {EAI_NONAME, 11001},  //
    {EAI_ADDRFAMILY, 11001}, {EAI_AGAIN, 11002},  {EAI_FAIL, 11003},
    {EAI_NODATA, 11004},     {EAI_FAMILY, 10047}, {EAI_MEMORY, 10055},
};
constexpr std::int32_t noRecovery = 11003;

template <std::size_t size>
std::int32_t find(const Row (&rows)[size], int number, std::int32_t otherwise) {
  const auto row = std::find_if(std::begin(rows), std::end(rows),
                                [&](const Row& each) { return each.system == number; });
  return row == std::end(rows) ? otherwise : row->winsock;
}

}  // namespace

std::int32_t winsockError(int error) { return find(errors, error, systemCallFailure); }

std::int32_t lookUpError(int result, int error) {
  return result == EAI_SYSTEM ? winsockError(error) : find(lookUpErrors, result, noRecovery);
}

}  // namespace zev::posix
