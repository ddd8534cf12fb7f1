#include "programs/zevpack/partial_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <system_error>
#include <utility>

namespace zev::packing {
namespace {

/// What a signal has to find: a handler knows no object. The list changes with signals held back.
PartialFile* partialFiles = nullptr;

constexpr int endingSignals[] = {SIGHUP,  SIGINT,  SIGQUIT, SIGPIPE,
                                 SIGALRM, SIGTERM, SIGXCPU, SIGXFSZ};

[[noreturn]] void fail(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

/// While it lives, signals wait.
class SignalsHeldBack {
 public:
  SignalsHeldBack() {
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_BLOCK, &all, &before_);
  }
  ~SignalsHeldBack() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
  SignalsHeldBack(const SignalsHeldBack&) = delete;
  SignalsHeldBack& operator=(const SignalsHeldBack&) = delete;

 private:
  sigset_t before_;
};

}  // namespace

/// Calls only what a handler may call.
void removePartialFiles() {
  for (const PartialFile* each = partialFiles; each != nullptr; each = each->next_) {
    ::unlink(each->path_.c_str());
  }
}

namespace {

/// The signal's own effect comes when this returns: it is handled once.
void removeAndEnd(int signal) {
  removePartialFiles();
  ::raise(signal);
}

/// A signal that somebody has chosen to ignore stays ignored.
void handleSignals() {
  struct sigaction removing {};
  removing.sa_handler = removeAndEnd;
  removing.sa_flags = static_cast<int>(SA_RESETHAND);
  sigfillset(&removing.sa_mask);
  for (const int signal : endingSignals) {
    struct sigaction now {};
    if (sigaction(signal, nullptr, &now) == 0 && now.sa_handler == SIG_DFL) {
      sigaction(signal, &removing, nullptr);
    }
  }
}

}  // namespace

PartialFile::PartialFile(std::string path) : path_(std::move(path)) {
  constexpr mode_t anybody = 0666;
  static const bool handled = (handleSignals(), true);
  static_cast<void>(handled);
  const SignalsHeldBack held;
  descriptor_ = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, anybody);
  if (descriptor_ < 0) fail("cannot make " + path_);
  there_ = true;
  next_ = std::exchange(partialFiles, this);
}

PartialFile::~PartialFile() {
  const SignalsHeldBack held;
  if (descriptor_ >= 0) ::close(descriptor_);
  if (!there_) return;
  ::unlink(path_.c_str());
  forget();
}

void PartialFile::forget() {
  PartialFile** place = &partialFiles;
  while (*place != this) place = &(*place)->next_;
  *place = next_;
  there_ = false;
}

void PartialFile::rename(const std::string& path) {
  if (::close(std::exchange(descriptor_, -1)) != 0) fail("cannot write " + path);
  const SignalsHeldBack held;
  if (std::rename(path_.c_str(), path.c_str()) != 0) fail("cannot write " + path);
  forget();
}

}  // namespace zev::packing
