#include "posix/descriptors.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace zev::posix {

Descriptor::~Descriptor() { close(); }

int Descriptor::close() {
  if (number_ < 0) return 0;
  const int result = ::close(std::exchange(number_, -1));
  return result == 0 ? 0 : errno;
}

namespace {

/// As many as one wait reports; what is left comes with the next.
constexpr std::size_t batch = 512;
constexpr int numberBits = 32;

std::uint64_t pack(Token token) {
  return static_cast<std::uint64_t>(token.subject) << numberBits | token.number;
}

Token unpack(std::uint64_t packed) {
  return {static_cast<Subject>(packed >> numberBits), static_cast<std::uint32_t>(packed)};
}

}  // namespace

Poller::Poller() : epoll_(::epoll_create1(EPOLL_CLOEXEC)), events_(batch) {
  if (epoll_.get() < 0) throw std::system_error(errno, std::generic_category(), "epoll_create1");
  ready_.reserve(batch);
}

bool Poller::add(int descriptor, std::uint32_t events, Token token) {
  return control(EPOLL_CTL_ADD, descriptor, events, token);
}

bool Poller::renew(int descriptor, std::uint32_t events, Token token) {
  return control(EPOLL_CTL_MOD, descriptor, events, token);
}

void Poller::remove(int descriptor) { control(EPOLL_CTL_DEL, descriptor, 0, {}); }

std::span<const Readiness> Poller::wait(int milliseconds) {
  const int count =
      ::epoll_wait(epoll_.get(), events_.data(), static_cast<int>(batch), milliseconds);
  ready_.clear();
  for (std::size_t i = 0; static_cast<int>(i) < count; ++i) {
    ready_.push_back({unpack(events_[i].data.u64), events_[i].events});
  }
  return ready_;
}

bool Poller::control(int operation, int descriptor, std::uint32_t events, Token token) {
  epoll_event event{};
  event.events = events;
  event.data.u64 = pack(token);
  return ::epoll_ctl(epoll_.get(), operation, descriptor, &event) == 0;
}

}  // namespace zev::posix
