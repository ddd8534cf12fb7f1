#pragma once

#include <gtest/gtest-spi.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zev {

/// A play that goes on in several ways, each from a point of its own: a copy of this process takes
/// it, and is gone before this process plays on. So what stands in front of them all is played
/// once. The process must have one thread only.
///
/// A failure that a copy finds is one of the running test, and so is a copy that comes to no
/// orderly end.
class Branches {
 public:
  /// Told in lines of the test's own making.
  using Told = std::vector<std::string>;

  /// Plays. Within that branch() may be called; in each copy `judge` looks at what came of it when
  /// the play is over, and the process itself then hears what it tells, if it tells something. What
  /// is thrown in a copy is a failure.
  void play(const std::function<void()>& whole, const std::function<Told()>& judge,
            const std::function<void(const Told& told)>& hear = {});

  /// True in a copy, which goes its own way from here on; false in this process, behind the end of
  /// that copy. In a copy there are no further ones. The name says in a failure which one it was.
  bool branch(const std::string& name);

 private:
  void become(int pipe);
  [[noreturn]] void endCopy(const Told& told);
  void listen(int copy, int pipe, const std::string& name);

  std::function<void(const Told&)> hear_;
  // Of a copy:
  bool isCopy_ = false;
  int pipe_ = -1;
  testing::TestPartResultArray failures_;
  std::unique_ptr<testing::ScopedFakeTestPartResultReporter> reporter_;
};

}  // namespace zev
