#pragma once

#include <map>
#include <memory>
#include <utility>

#include "platform/message_windows.h"

namespace zev::socket_bench {

/// Windows that count how often a routine that stands in is entered. Everything is passed on.
class WatchedWindows final : public MessageWindows {
 public:
  /// Borrows them.
  explicit WatchedWindows(MessageWindows& next) : next_(next) {}

  /// Entries of the routine that stands in for that address.
  int entries(std::uintptr_t address) const {
    const auto found = routines_.find(address);
    return found == routines_.end() ? 0 : found->second->entries;
  }

  WindowHandle CreateWindowExA(TextView className, TextView caption) override {
    return next_.CreateWindowExA(className, caption);
  }
  bool DestroyWindow(WindowHandle window) override { return next_.DestroyWindow(window); }
  std::uintptr_t GetWindowLongA(WindowHandle window, std::int32_t index) override {
    return next_.GetWindowLongA(window, index);
  }
  std::uintptr_t SetWindowLongA(WindowHandle window, std::int32_t index,
                                std::uintptr_t procedure) override {
    return next_.SetWindowLongA(window, index, procedure);
  }
  std::intptr_t CallWindowProcA(std::uintptr_t procedure, const WindowMessage& message) override {
    return next_.CallWindowProcA(procedure, message);
  }
  bool entersMachineCode() const override { return next_.entersMachineCode(); }
  void dropBeforeDispatch(WindowHandle window,
                          std::function<bool(const WindowMessage&)> drops) override {
    next_.dropBeforeDispatch(window, std::move(drops));
  }
  /// Counters stay until the end: one can be running when it is taken out.
  void standIn(std::uintptr_t address, MessageRoutine* routine) override {
    if (routine == nullptr) return next_.standIn(address, nullptr);
    std::unique_ptr<Counter>& counter = routines_[address];
    if (!counter) counter = std::make_unique<Counter>();
    counter->routine = routine;
    next_.standIn(address, counter.get());
  }

 private:
  struct Counter final : MessageRoutine {
    MessageRoutine* routine = nullptr;
    int entries = 0;

    std::intptr_t enter(const WindowMessage& message) override {
      ++entries;
      return routine->enter(message);
    }
  };

  MessageWindows& next_;
  std::map<std::uintptr_t, std::unique_ptr<Counter>> routines_;
};

}  // namespace zev::socket_bench
