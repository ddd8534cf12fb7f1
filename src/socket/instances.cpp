#include "socket/instances.h"

#include <array>
#include <utility>

#include "runtime/error.h"

// The calling convention of window procedures and of methods on 32-bit x86: the function called
// takes its arguments off the stack. The routing code keeps the stack aligned to four bytes only,
// where this compiler counts on sixteen: hence force_align_arg_pointer. Other processors have a
// single convention.
#if defined(__i386__)
#define ZEV_STDCALL __attribute__((stdcall, force_align_arg_pointer))
#else
#define ZEV_STDCALL
#endif

namespace zev {
namespace {

constexpr bool addressesFit = sizeof(void*) == sizeof(InstancePointer);

}  // namespace

/// The methods of an entry. The routing code enters the eighth; nobody calls the seven before it.
struct MethodTable {
  static std::int32_t ZEV_STDCALL wndProc(void* instance, std::int32_t hwnd, std::int32_t uMsg,
                                          std::int32_t wParam, std::int32_t lParam) {
    const WindowMessage message{static_cast<std::uint32_t>(hwnd), static_cast<std::uint32_t>(uMsg),
                                static_cast<std::uint32_t>(wParam), lParam};
    return Instances::enterEntry(*static_cast<Instances::Entry*>(instance), message);
  }
  static std::int32_t ZEV_STDCALL reserved(void*) { return 0; }

  static const void* const* methods() {
    static const std::array<const void*, 8> table = {
        address(&reserved), address(&reserved), address(&reserved), address(&reserved),
        address(&reserved), address(&reserved), address(&reserved), address(&wndProc)};
    return table.data();
  }

  template <typename Function>
  static const void* address(Function* function) {
    return reinterpret_cast<const void*>(function);
  }
};

/// Free entries are used first, so there are never more than were in use at one time.
InstancePointer Instances::add(std::weak_ptr<NotificationTarget> target) {
  if (free_.empty()) {
    free_.push_back(entries_.size());
    entries_.emplace_back();
    if constexpr (addressesFit) places_[pointerTo(free_.back())] = free_.back();
  }
  const std::size_t place = free_.back();
  free_.pop_back();
  entries_[place] = {MethodTable::methods(), this, std::move(target), place};
  return pointerTo(place);
}

InstancePointer Instances::pointerTo(std::size_t place) {
  if constexpr (addressesFit) {
    return static_cast<InstancePointer>(reinterpret_cast<std::uintptr_t>(&entries_[place]));
  } else {
    return static_cast<InstancePointer>(place + 1);
  }
}

/// A pointer comes out of a table or a message, so it can be anything: only one that was given out
/// is followed.
Instances::Entry* Instances::find(InstancePointer pointer) {
  if constexpr (addressesFit) {
    const auto found = places_.find(pointer);
    return found == places_.end() ? nullptr : &entries_[found->second];
  } else {
    if (pointer < 1 || static_cast<std::size_t>(pointer) > entries_.size()) return nullptr;
    return &entries_[static_cast<std::size_t>(pointer) - 1];
  }
}

/// Lets go of the object at once, even while the entry has to wait for the tables.
void Instances::ended(InstancePointer pointer, bool held) {
  Entry* const entry = find(pointer);
  if (entry == nullptr) return;
  entry->target.reset();
  (held ? ended_ : free_).push_back(entry->place);
}

void Instances::forgetEnded() {
  free_.insert(free_.end(), ended_.begin(), ended_.end());
  ended_.clear();
}

std::int32_t Instances::enter(InstancePointer pointer, const WindowMessage& message) {
  Entry* const entry = find(pointer);
  return entry == nullptr ? 0 : enterEntry(*entry, message);
}

/// A run-time error of an event procedure has no caller to go to: it ends the notification and
/// nothing else.
std::int32_t Instances::enterEntry(Entry& entry, const WindowMessage& message) {
  const std::shared_ptr<NotificationTarget> target = entry.target.lock();
  if (!target) return 0;
  Instances& owner = *entry.owner;
  try {
    return target->WndProc(
        static_cast<std::int32_t>(message.window), static_cast<std::int32_t>(message.message),
        static_cast<std::int32_t>(message.wParam), static_cast<std::int32_t>(message.lParam));
  } catch (const RuntimeError&) {
    return 0;
  } catch (...) {
    owner.escape_(std::current_exception());
    return 0;
  }
}

}  // namespace zev
