#include "socket/handle_table.h"

#include <algorithm>
#include <functional>

namespace zev {

/// The free slot that comes first is used, even for a handle that has a slot further on.
HandleTable::Added HandleTable::add(std::int32_t handle, InstancePointer instance) {
  const std::size_t known = slotOf(handle);
  if (!free_.empty() && free_.front() <= known) {
    const std::size_t slot = free_.front();
    std::pop_heap(free_.begin(), free_.end(), std::greater<>());
    free_.pop_back();
    forget(slot);
    put(slot, handle, instance);
    return Added::InFreeSlot;
  }
  if (known != none) return Added::Known;
  const auto slot = static_cast<std::size_t>(count_++);
  handles_.resize(slot + 1);
  objects_.resize(slot + 1);
  put(slot, handle, instance);
  return Added::AtTheEnd;
}

/// A slot that takes the handle of free ones is one of them.
void HandleTable::put(std::size_t slot, std::int32_t handle, InstancePointer instance) {
  handles_[slot] = handle;
  objects_[slot] = instance;
  ++held_[instance];
  if (handle == freeCell) return release(slot);
  slots_.emplace(handle, slot);
}

void HandleTable::release(std::size_t slot) {
  free_.push_back(slot);
  std::push_heap(free_.begin(), free_.end(), std::greater<>());
}

/// The instance of a slot stands there no more.
void HandleTable::forget(std::size_t slot) {
  const auto held = held_.find(objects_[slot]);
  if (held != held_.end() && --held->second == 0) held_.erase(held);
}

void HandleTable::remove(std::int32_t handle) {
  const std::size_t slot = slotOf(handle);
  if (slot == none) return;
  forget(slot);
  handles_[slot] = objects_[slot] = freeCell;
  ++held_[freeCell];
  if (handle == freeCell) return;
  const auto [begin, end] = slots_.equal_range(handle);
  slots_.erase(std::find_if(begin, end, [&](const auto& each) { return each.second == slot; }));
  release(slot);
}

void HandleTable::replace(std::int32_t handle, InstancePointer instance) {
  const std::size_t slot = slotOf(handle);
  if (slot == none) return;
  forget(slot);
  objects_[slot] = instance;
  ++held_[instance];
}

InstancePointer HandleTable::find(std::int32_t handle) const {
  const std::size_t slot = slotOf(handle);
  return slot == none ? noInstance : objects_[slot];
}

bool HandleTable::holds(InstancePointer instance) const { return held_.count(instance) != 0; }

void HandleTable::clear() {
  count_ = 0;
  slots_.clear();
  held_.clear();
  free_.clear();
}

void HandleTable::shrink() {
  clear();
  handles_.assign(1, freeCell);
  objects_.assign(1, freeCell);
  handles_.shrink_to_fit();
  objects_.shrink_to_fit();
}

/// The first one, if the handle has several.
std::size_t HandleTable::slotOf(std::int32_t handle) const {
  if (handle == freeCell) return free_.empty() ? none : free_.front();
  std::size_t first = none;
  const auto [begin, end] = slots_.equal_range(handle);
  for (auto each = begin; each != end; ++each) first = std::min(first, each->second);
  return first;
}

}  // namespace zev
