#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "socket/instances.h"

namespace zev {

/// Which instance a handle belongs to: two columns of numbers, flat in memory for the search of the
/// routing code. Slots count from 1; one is free when both its cells hold -1. The count only grows
/// until the table is cleared. Beside the columns stands where each handle is and which slots are
/// free, so that nothing here takes longer with more of them.
class HandleTable {
 public:
  enum class Added {
    InFreeSlot,
    AtTheEnd,  ///< the columns may have moved
    Known,     ///< the handle has a slot already, which stays as it is
  };

  /// Takes the first slot that is free or that holds the handle, whichever comes first.
  Added add(std::int32_t handle, InstancePointer instance);
  /// Frees the first slot that holds the handle.
  void remove(std::int32_t handle);
  /// Gives the first slot that holds the handle another instance.
  void replace(std::int32_t handle, InstancePointer instance);
  /// The instance of the handle's first slot; noInstance without one.
  InstancePointer find(std::int32_t handle) const;
  bool holds(InstancePointer instance) const;

  std::int32_t count() const { return count_; }
  /// Slots in use.
  std::int32_t used() const { return count_ - static_cast<std::int32_t>(free_.size()); }
  /// The count becomes 0; the columns stay where they are.
  void clear();
  /// The count becomes 0 and the columns single cells.
  void shrink();

  const std::vector<std::int32_t>& handles() const { return handles_; }
  const std::vector<InstancePointer>& objects() const { return objects_; }

 private:
  static constexpr std::int32_t freeCell = -1;
  static constexpr std::size_t none = static_cast<std::size_t>(-1);
  std::size_t slotOf(std::int32_t handle) const;
  void put(std::size_t slot, std::int32_t handle, InstancePointer instance);
  void release(std::size_t slot);
  void forget(std::size_t slot);

  std::int32_t count_ = 0;
  std::vector<std::int32_t> handles_ = {freeCell};
  std::vector<InstancePointer> objects_ = {freeCell};
  std::unordered_multimap<std::int32_t, std::size_t> slots_;  ///< by their handles
  std::unordered_map<InstancePointer, std::size_t> held_;     ///< slots that hold an instance
  std::vector<std::size_t> free_;                             ///< a heap, the first slot on top
};

}  // namespace zev
