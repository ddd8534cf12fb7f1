#pragma once

#include <chrono>
#include <string>

#include "programs/zevdrive/program_windows.h"

namespace zev::drive {

/// zevdrive itself cannot go on, such as with a program that does not come to rest.
class DriveError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What a program has come to.
enum class Course { AtRest, BoxOpen, Ended };

/// The program under test, from its start to its end. It ends with this object at the latest.
class RunningProgram {
 public:
  using Clock = std::chrono::steady_clock;

  /// Starts the program. Borrows the forms.
  RunningProgram(const Text& path, std::vector<Form*> forms, Clock::time_point deadline);
  ~RunningProgram();
  RunningProgram(const RunningProgram&) = delete;
  RunningProgram& operator=(const RunningProgram&) = delete;

  /// Waits until nothing moves any more: no message is in work and what is to be seen has stayed
  /// the same over a short while; or until a box is open, or the program is over.
  Course settle();
  /// Waits until a box is gone from the screen.
  void waitUntilGone(HWND box);
  /// Waits until the process has ended. DriveError, as of all that waits here, when the deadline
  /// has passed.
  void waitForEnd();
  bool over() const;

  /// Its windows as they were found last.
  ProgramWindows& windows() { return windows_; }
  /// What was to be seen when the program last settled.
  scenario::Sight sight() const { return windows_.withPlaces(sight_); }

 private:
  void requireTime(const char* what) const;
  void requireWindow();
  bool looksTheSame();

  PROCESS_INFORMATION process_;
  ProgramWindows windows_;
  scenario::Sight sight_;
  Clock::time_point deadline_;
  Clock::time_point lastShown_ = Clock::now();
};

}  // namespace zev::drive
