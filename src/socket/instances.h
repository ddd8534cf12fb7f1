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

/// An object that notifications are routed to.
class NotificationTarget {
 public:
  virtual ~NotificationTarget() = default;
  /// Takes a notification; the four arguments of a window procedure. The result is always 0.
  virtual std::int32_t WndProc(std::int32_t hwnd, std::int32_t uMsg, std::int32_t wParam,
                               std::int32_t lParam) = 0;
};

/// An instance as a cell of a table names it. Where addresses have 32 bits it is the address of the
/// instance's entry in `Instances`, which machine code can follow; elsewhere it is the entry's
/// place counted from 1.
using InstancePointer = std::int32_t;

/// No instance: what free cells hold. No entry ever has this pointer.
inline constexpr InstancePointer noInstance = -1;

/// The instances of the process by their pointers. An entry is all that machine code ever sees of
/// an instance:
///
///     cell of a table       entry                     methods, one table for all entries
///     instance pointer ---> methods ----------------> reserved (seven of them)
///                           owner, target, place      wndProc
///
/// `target` is a weak reference: an entry does not keep its object alive, except while a message is
/// in it.
///
/// Entries never move and are never freed, since a pointer may lie in a table, or in a message that
/// is on its way, longer than its object lives. The places of an entry's life:
///
///   add()            takes a free entry, or makes one
///   ended()          the object is gone; entering does nothing now. If no table holds the pointer,
///                    the entry is free at once
///   forgetEnded()    the tables were emptied: the entries that had to wait are free too
class Instances {
 public:
  /// No exception may cross a window procedure. A run-time error of an event procedure is dropped;
  /// every other exception, such as the end of the program, is handed to `escape`, which keeps it
  /// to be thrown again from the top of the message loop.
  explicit Instances(std::function<void(std::exception_ptr)> escape) : escape_(std::move(escape)) {}
  Instances(const Instances&) = delete;
  Instances& operator=(const Instances&) = delete;

  /// Makes an instance known and gives its pointer, by which it is entered until it has ended. The
  /// object is not kept alive.
  InstancePointer add(std::weak_ptr<NotificationTarget> target);
  /// The instance has ended. `held`: some table still has the pointer, so its entry must not go
  /// to another instance yet.
  void ended(InstancePointer pointer, bool held);
  /// To be called once the tables are empty: no pointer of an ended instance is left in them.
  void forgetEnded();

  /// Hands a message to the instance, which stays alive until it returns. Gives 0, also for an
  /// unknown pointer.
  std::int32_t enter(InstancePointer pointer, const WindowMessage& message);

  /// Entries in use, those of ended instances included.
  std::size_t entries() const { return entries_.size() - free_.size(); }

 private:
  /// The routing code relies on this layout: the first word is the address of a table of methods,
  /// whose eighth one takes the instance and the four arguments and clears them off the stack.
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
  std::deque<Entry> entries_;       ///< a deque, so that entries never move
  std::vector<std::size_t> free_;   ///< places in entries_
  std::vector<std::size_t> ended_;  ///< places whose pointers some table still has
  std::unordered_map<InstancePointer, std::size_t> places_;  ///< of pointers that are addresses
};

}  // namespace zev
