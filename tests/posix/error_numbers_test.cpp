#include "posix/translation.h"

#include <gtest/gtest.h>
#include <netdb.h>

#include <cerrno>
#include <map>

namespace zev::posix {
namespace {

TEST(ErrorNumbers, OfTheSocketCalls) {
  // By the names that the numbers have in Winsock, from the lowest to the highest.
  const std::map<std::int32_t, std::vector<int>> expected = {
      {10004, {EINTR}},
      {10013, {EACCES, EPERM}},
      {10014, {EFAULT}},
      {10022, {EINVAL}},
      {10024, {EMFILE, ENFILE}},
      {10035, {EWOULDBLOCK, EAGAIN, EINPROGRESS}},
      {10037, {EALREADY}},
      {10038, {ENOTSOCK, EBADF}},
      {10039, {EDESTADDRREQ}},
      {10040, {EMSGSIZE}},
      {10041, {EPROTOTYPE}},
      {10042, {ENOPROTOOPT}},
      {10043, {EPROTONOSUPPORT}},
      {10044, {ESOCKTNOSUPPORT}},
      {10045, {EOPNOTSUPP, ENOTSUP}},
      {10046, {EPFNOSUPPORT}},
      {10047, {EAFNOSUPPORT}},
      {10048, {EADDRINUSE}},
      {10049, {EADDRNOTAVAIL}},
      {10050, {ENETDOWN}},
      {10051, {ENETUNREACH}},
      {10052, {ENETRESET}},
      {10053, {ECONNABORTED}},
      {10054, {ECONNRESET, EPIPE}},
      {10055, {ENOBUFS, ENOMEM, ENOSPC}},
      {10056, {EISCONN}},
      {10057, {ENOTCONN}},
      {10058, {ESHUTDOWN}},
      {10059, {ETOOMANYREFS}},
      {10060, {ETIMEDOUT}},
      {10061, {ECONNREFUSED}},
      {10062, {ELOOP}},
      {10063, {ENAMETOOLONG}},
      {10064, {EHOSTDOWN}},
      {10065, {EHOSTUNREACH}},
      {10068, {EUSERS}},
      {10069, {EDQUOT}},
      {10070, {ESTALE}},
      {10107, {EXDEV, ENOTTY}},
  };
  for (const auto& [number, errors] : expected) {
    for (const int error : errors) EXPECT_EQ(winsockError(error), number) << "errno " << error;
  }
}

TEST(ErrorNumbers, OfLookUps) {
  const std::map<int, std::int32_t> expected = {
      {EAI_NONAME, 11001}, {EAI_ADDRFAMILY, 11001}, {EAI_AGAIN, 11002},  {EAI_FAIL, 11003},
      {EAI_NODATA, 11004}, {EAI_FAMILY, 10047},     {EAI_MEMORY, 10055}, {EAI_SERVICE, 11003},
  };
  for (const auto& [result, number] : expected) {
    EXPECT_EQ(lookUpError(result, EACCES), number) << ::gai_strerror(result);
  }
  EXPECT_EQ(lookUpError(EAI_SYSTEM, EMFILE), 10024);
}

}  // namespace
}  // namespace zev::posix
