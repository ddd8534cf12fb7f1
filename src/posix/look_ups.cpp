#include "posix/look_ups.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <utility>

#include "posix/descriptor.h"

namespace zev::posix {
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
