#include "posix/look_ups.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <netdb.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <deque>
#include <memory>
#include <mutex>
#include <system_error>
#include <utility>

#include "posix/descriptors.h"
#include "posix/translation.h"

namespace zev::posix {

// ---- the record of a host

namespace {

/// The aliases, of which there are none, and the addresses; each list is ended by null.
std::size_t pointerCount(const Host& host) { return 1 + host.addresses.size() + 1; }

/// The next place from `place` on where a pointer may stand.
char* aligned(char* place) {
  constexpr std::uintptr_t step = alignof(char*);
  const std::uintptr_t over = reinterpret_cast<std::uintptr_t>(place) % step;
  return over == 0 ? place : place + (step - over);
}

}  // namespace

std::size_t recordSize(const Host& host) {
  return sizeof(HostRecord) + alignof(char*) + pointerCount(host) * sizeof(char*) +
         host.addresses.size() * sizeof(in_addr) + host.name.size() + 1;
}

void writeRecord(const Host& host, void* buffer) {
  char* const pointers = aligned(static_cast<char*>(buffer) + sizeof(HostRecord));
  char* next = pointers + pointerCount(host) * sizeof(char*);
  std::vector<char*> lists = {nullptr};
  for (const in_addr& each : host.addresses) {
    std::memcpy(next, &each, sizeof each);
    lists.push_back(next);
    next += sizeof each;
  }
  lists.push_back(nullptr);
  std::memcpy(next, host.name.c_str(), host.name.size() + 1);
  std::memcpy(pointers, lists.data(), lists.size() * sizeof(char*));

  HostRecord record;
  record.name = next;
  record.aliases = reinterpret_cast<char**>(pointers);
  record.addressType = winsock::internet;
  record.addressLength = sizeof(in_addr);
  record.addresses = record.aliases + 1;
  std::memcpy(buffer, &record, sizeof record);
}

// ---- one look-up

namespace {

constexpr const char* loopbackName = "localhost";

in_addr addressOf(const sockaddr* address) {
  sockaddr_in whole{};
  std::memcpy(&whole, address, sizeof whole);
  return whole.sin_addr;
}

bool isLoopback(in_addr address) {
  return ntohl(address.s_addr) >> IN_CLASSA_NSHIFT == IN_LOOPBACKNET;
}

Host ask(const std::string& name) {
  addrinfo hints{};
  hints.ai_family = AF_INET;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_CANONNAME;
  addrinfo* found = nullptr;
  const int result = ::getaddrinfo(name.c_str(), nullptr, &hints, &found);
  if (result != 0) return {lookUpError(result, errno), name, {}};
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(found, ::freeaddrinfo);
  Host host;
  host.name = found->ai_canonname == nullptr ? name : found->ai_canonname;
  for (const addrinfo* each = found; each != nullptr; each = each->ai_next) {
    host.addresses.push_back(addressOf(each->ai_addr));
  }
  return host;
}

/// Addresses under which other machines reach this one.
std::vector<in_addr> interfaceAddresses() {
  ifaddrs* list = nullptr;
  std::vector<in_addr> addresses;
  if (::getifaddrs(&list) != 0) return addresses;
  const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> owner(list, ::freeifaddrs);
  for (const ifaddrs* each = list; each != nullptr; each = each->ifa_next) {
    const bool internet = each->ifa_addr != nullptr && each->ifa_addr->sa_family == AF_INET;
    if (!internet || (each->ifa_flags & IFF_UP) == 0) continue;
    const in_addr address = addressOf(each->ifa_addr);
    if (!isLoopback(address)) addresses.push_back(address);
  }
  return addresses;
}

/// Many systems keep their own name at an address of the loopback net, or nowhere.
Host askForOwn(const std::string& name) {
  Host host = ask(name);
  const bool reachable = !std::all_of(host.addresses.begin(), host.addresses.end(), isLoopback);
  if (reachable || name == loopbackName) return host;
  const std::vector<in_addr> addresses = interfaceAddresses();
  if (!addresses.empty()) return {0, name, addresses};
  return host.error == 0 ? host : Host{0, name, {in_addr{htonl(INADDR_LOOPBACK)}}};
}

}  // namespace

Host lookUp(const std::string& name) {
  const std::string own = ownName();
  return name.empty() || name == own ? askForOwn(own) : ask(name);
}

std::string ownName() {
  char name[HOST_NAME_MAX + 1] = {};
  if (::gethostname(name, sizeof name) != 0) return loopbackName;
  return name;
}

// ---- look-ups beside the thread that dispatches

namespace {

constexpr std::chrono::seconds patience(2);

}  // namespace

/// What the threads and the object have in common. It lives as long as the last one of them.
struct LookUps::Shared {
  struct Job {
    std::int32_t handle = 0;
    std::string name;
  };

  const Resolver resolver;
  Descriptor answered{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};

  std::mutex mutex;
  // All below is guarded by it.
  std::condition_variable wanted;
  std::condition_variable ended;
  std::deque<Job> jobs;
  std::vector<Answer> answers;
  std::size_t threads = 0;
  std::size_t idle = 0;
  bool stopping = false;

  explicit Shared(Resolver how) : resolver(std::move(how)) {
    if (answered.get() < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
  }

  /// Takes the next job; false if the thread is to end.
  bool next(Job& job) {
    std::unique_lock lock(mutex);
    ++idle;
    wanted.wait(lock, [&] { return stopping || !jobs.empty(); });
    --idle;
    if (stopping) return false;
    job = std::move(jobs.front());
    jobs.pop_front();
    return true;
  }

  void put(Answer answer) {
    const std::lock_guard lock(mutex);
    answers.push_back(std::move(answer));
    ::eventfd_write(answered.get(), 1);
  }

  void leave() {
    const std::lock_guard lock(mutex);
    --threads;
    ended.notify_all();
  }
};

LookUps::LookUps(Resolver resolver) : shared_(std::make_shared<Shared>(std::move(resolver))) {}

LookUps::~LookUps() {
  std::unique_lock lock(shared_->mutex);
  shared_->stopping = true;
  shared_->wanted.notify_all();
  const bool all = shared_->ended.wait_for(lock, patience, [&] { return shared_->threads == 0; });
  lock.unlock();
  for (std::thread& each : threads_) {
    if (all) {
      each.join();
    } else {
      each.detach();
    }
  }
}

int LookUps::descriptor() const { return shared_->answered.get(); }

std::int32_t LookUps::start(std::string name) {
  if (!provideThread()) return 0;
  const std::lock_guard lock(shared_->mutex);
  shared_->jobs.push_back({++lastHandle_, std::move(name)});
  shared_->wanted.notify_one();
  return lastHandle_;
}

void LookUps::forget(std::int32_t handle) {
  const std::lock_guard lock(shared_->mutex);
  std::erase_if(shared_->jobs, [&](const Shared::Job& each) { return each.handle == handle; });
}

std::vector<LookUps::Answer> LookUps::take() {
  const std::lock_guard lock(shared_->mutex);
  eventfd_t count = 0;
  ::eventfd_read(shared_->answered.get(), &count);
  return std::exchange(shared_->answers, {});
}

void LookUps::work(const std::shared_ptr<Shared>& shared) {
  for (Shared::Job job; shared->next(job);) {
    Host host = shared->resolver(job.name);
    shared->put({job.handle, std::move(host)});
  }
  shared->leave();
}

/// Makes sure that a thread will take one more job. False if there is no thread at all.
bool LookUps::provideThread() {
  std::unique_lock lock(shared_->mutex);
  const bool enough = shared_->idle > shared_->jobs.size() || threads_.size() == mostThreads;
  if (enough) return true;
  ++shared_->threads;
  lock.unlock();
  try {
    threads_.emplace_back(work, shared_);
  } catch (const std::system_error&) {
    shared_->leave();
  }
  return !threads_.empty();
}

}  // namespace zev::posix
