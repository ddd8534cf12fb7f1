#include "scenarios/branches.h"

#include <gtest/gtest.h>
#include <malloc.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <iostream>
#include <string_view>
#include <system_error>

namespace zev {
namespace {

constexpr int orderly = 0;
constexpr int cutShort = 1;

[[noreturn]] void throwSystemError(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// ---- what a copy hands back: the number of its failures, each in three texts, and what it tells

void put(std::string& bytes, std::string_view text) {
  bytes += std::to_string(text.size()) + " ";
  bytes += text;
}

/// Takes the first text away.
std::string take(std::string_view& bytes) {
  const std::size_t blank = bytes.find(' ');
  const std::size_t size = std::stoul(std::string(bytes.substr(0, blank)));
  std::string text(bytes.substr(blank + 1, size));
  bytes.remove_prefix(blank + 1 + size);
  return text;
}

std::string packed(const testing::TestPartResultArray& failures, const Branches::Told& told) {
  std::string bytes;
  put(bytes, std::to_string(failures.size()));
  for (int each = 0; each < failures.size(); ++each) {
    const testing::TestPartResult& failure = failures.GetTestPartResult(each);
    put(bytes, failure.file_name() == nullptr ? "" : failure.file_name());
    put(bytes, std::to_string(failure.line_number()));
    put(bytes, failure.message());
  }
  for (const std::string& line : told) put(bytes, line);
  return bytes;
}

Branches::Told unpack(std::string_view bytes) {
  for (unsigned long left = std::stoul(take(bytes)); left > 0; --left) {
    const std::string file = take(bytes);
    const int line = std::stoi(take(bytes));
    ADD_FAILURE_AT(file.c_str(), line) << take(bytes);
  }
  Branches::Told told;
  while (!bytes.empty()) told.push_back(take(bytes));
  return told;
}

bool writeAll(int pipe, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(pipe, bytes.data(), bytes.size());
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

std::string readAll(int pipe) {
  std::string bytes;
  std::array<char, 65536> buffer;
  for (ssize_t count; (count = ::read(pipe, buffer.data(), buffer.size())) > 0;) {
    bytes.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return bytes;
}

/// How a process ended.
int awaited(pid_t process) {
  int status = 0;
  while (::waitpid(process, &status, 0) < 0) {
    if (errno != EINTR) throwSystemError("waitpid");
  }
  return status;
}

std::string shownStatus(int status) {
  if (WIFSIGNALED(status)) return "was ended by signal " + std::to_string(WTERMSIG(status));
  return "ended with status " + std::to_string(WEXITSTATUS(status));
}

/// What a process has written and not yet handed on would else be written by its copy too.
void flushOutput() {
  std::cout.flush();
  std::fflush(nullptr);
}

}  // namespace

bool Branches::branch(const std::string& name) {
  if (isCopy_) return false;
  flushOutput();
  ::malloc_trim(
      0);  // else a copy takes over, page by page, what is free as soon as it writes there
  std::array<int, 2> ends;
  if (::pipe(ends.data()) != 0) throwSystemError("pipe");
  const pid_t copy = ::fork();
  if (copy < 0) throwSystemError("fork");
  ::close(ends[copy == 0 ? 0 : 1]);
  if (copy == 0) {
    become(ends[1]);
    return true;
  }
  listen(copy, ends[0], name);
  return false;
}

/// A copy does not outlive the process that it was made by.
void Branches::become(int pipe) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  isCopy_ = true;
  pipe_ = pipe;
  reporter_ = std::make_unique<testing::ScopedFakeTestPartResultReporter>(&failures_);
}

void Branches::listen(int copy, int pipe, const std::string& name) {
  const std::string bytes = readAll(pipe);
  ::close(pipe);
  const int status = awaited(copy);
  if (status != orderly || bytes.empty()) {
    ADD_FAILURE() << name << ": the process that played it " << shownStatus(status);
    return;
  }
  const Told told = unpack(bytes);
  if (hear_ && !told.empty()) hear_(told);
}

void Branches::play(const std::function<void()>& whole, const std::function<Told()>& judge,
                    const std::function<void(const Told& told)>& hear) {
  hear_ = hear;
  try {
    whole();
    if (isCopy_) endCopy(judge());
  } catch (const std::exception& error) {
    if (!isCopy_) throw;
    ADD_FAILURE() << "thrown: " << error.what();
  } catch (...) {
    if (!isCopy_) throw;
    ADD_FAILURE() << "thrown, and no error";
  }
  if (isCopy_) endCopy({});
}

/// Nothing that belongs to the process itself is ended with its copy.
void Branches::endCopy(const Told& told) {
  flushOutput();
  ::_exit(writeAll(pipe_, packed(failures_, told)) ? orderly : cutShort);
}

}  // namespace zev
