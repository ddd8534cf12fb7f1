#pragma once

#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

#include "platform/message_windows.h"

namespace zev {

/// Whoever notifications are routed to.
class NotificationTarget {
 public:
  virtual ~NotificationTarget() = default;
  /// Takes a notification; the four arguments of a window procedure. The result is always 0.
  virtual std::int32_t WndProc(std::int32_t hwnd, std::int32_t uMsg, std::int32_t wParam,
                               std::int32_t lParam) = 0;
};

/// A living instance as the cells of the tables hold it: 32 bits that stand for it. Where addresses
/// have 32 bits it is the address of the instance's entry, which machine code can follow; elsewhere
/// it is a number.
using InstancePointer = std::int32_t;

/// Neither table nor code has ever a living instance under this one.
inline constexpr InstancePointer noInstance = -1;

/// The instances of the process by their pointers. The pointer of an instance that has ended stays
/// known as such, and entering it does nothing, until nobody can hold it any more.
class Instances {
 public:
  /// `escape` gets what an event procedure lets out beside run-time errors, such as the end of the
  /// program: nothing but the result may cross the window procedure.
  explicit Instances(std::function<void(std::exception_ptr)> escape) : escape_(std::move(escape)) {}
  Instances(const Instances&) = delete;
  Instances& operator=(const Instances&) = delete;

  InstancePointer add(std::weak_ptr<NotificationTarget> target);
  /// The instance has ended. `held`: some table still has the pointer.
  void ended(InstancePointer pointer, bool held);
  /// No table has a pointer of an ended instance any more.
  void forgetEnded();

  /// Hands a message to the instance, which stays alive meanwhile. 0, also for an unknown pointer.
  std::int32_t enter(InstancePointer pointer, const WindowMessage& message);

  /// Entries in use, those of ended instances included.
  std::size_t entries() const { return entries_.size() - free_.size(); }

 private:
  /// What the routing code finds at an instance's address: the address of a table of methods, whose
  /// eighth one takes the instance and the four arguments and clears them off the stack itself.
  struct Entry {
    const void* const* methods = nullptr;
    Instances* owner = nullptr;
    std::weak_ptr<NotificationTarget> target;
    std::size_t place = 0;  ///< in entries_
  };

  static std::int32_t enterEntry(Entry& entry, const WindowMessage& message);
  Entry* find(InstancePointer pointer);
  InstancePointer pointerTo(std::size_t place);
  friend struct MethodTable;

  std::function<void(std::exception_ptr)> escape_;
  std::deque<Entry> entries_;       ///< never moved
  std::vector<std::size_t> free_;   ///< places in entries_
  std::vector<std::size_t> ended_;  ///< places whose pointers some table still has
  std::unordered_map<InstancePointer, std::size_t> places_;  ///< of pointers that are addresses
};

}  // namespace zev
