#include "storms/wanderer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>
#include <system_error>

namespace zev::storms {
namespace {

constexpr int addresses = 50;

ssize_t check(ssize_t result) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), "wanderer");
  return result;
}

sockaddr_in addressOf(std::uint32_t address, std::uint16_t port) {
  sockaddr_in whole{};
  whole.sin_family = AF_INET;
  whole.sin_port = htons(port);
  whole.sin_addr.s_addr = htonl(address);
  return whole;
}

const sockaddr* general(const sockaddr_in& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}

}  // namespace

Wanderer::Wanderer(int number, std::uint16_t port)
    : socket_(static_cast<int>(check(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)))) {
  const int on = 1;
  check(::setsockopt(socket_.get(), IPPROTO_IP, IP_BIND_ADDRESS_NO_PORT, &on, sizeof on));
  const auto next = static_cast<std::uint32_t>(1 + number % addresses);
  const sockaddr_in from = addressOf(INADDR_LOOPBACK + next, 0);
  check(::bind(socket_.get(), general(from), sizeof from));
  const timeval patience{60, 0};
  check(::setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience));
  const sockaddr_in to = addressOf(INADDR_LOOPBACK, port);
  check(::connect(socket_.get(), general(to), sizeof to));
}

std::string Wanderer::ask(const std::string& text) const {
  check(::send(socket_.get(), text.data(), text.size(), MSG_NOSIGNAL));
  std::string answer(text.size(), '\0');
  const ssize_t count = check(::recv(socket_.get(), answer.data(), answer.size(), MSG_WAITALL));
  answer.resize(static_cast<std::size_t>(count));
  return answer;
}

}  // namespace zev::storms
