#include "socket/handle_table.h"

#include <algorithm>

namespace zev {

HandleTable::Added HandleTable::add(std::int32_t handle, InstancePointer instance) {
  for (std::size_t slot = 0; slot < static_cast<std::size_t>(count_); ++slot) {
    if (handles_[slot] == freeCell) {
      handles_[slot] = handle;
      objects_[slot] = instance;
      return Added::InFreeSlot;
    }
    if (handles_[slot] == handle) return Added::Known;
  }
  ++count_;
  handles_.resize(static_cast<std::size_t>(count_));
  objects_.resize(static_cast<std::size_t>(count_));
  handles_.back() = handle;
  objects_.back() = instance;
  return Added::AtTheEnd;
}

void HandleTable::remove(std::int32_t handle) {
  const std::size_t slot = slotOf(handle);
  if (slot != none) handles_[slot] = objects_[slot] = freeCell;
}

void HandleTable::replace(std::int32_t handle, InstancePointer instance) {
  const std::size_t slot = slotOf(handle);
  if (slot != none) objects_[slot] = instance;
}

InstancePointer HandleTable::find(std::int32_t handle) const {
  const std::size_t slot = slotOf(handle);
  return slot == none ? noInstance : objects_[slot];
}

bool HandleTable::holds(InstancePointer instance) const {
  return std::find(objects_.begin(), objects_.begin() + count_, instance) !=
         objects_.begin() + count_;
}

std::int32_t HandleTable::used() const {
  return count_ - static_cast<std::int32_t>(
                      std::count(handles_.begin(), handles_.begin() + count_, freeCell));
}

void HandleTable::shrink() {
  clear();
  handles_.assign(1, freeCell);
  objects_.assign(1, freeCell);
  handles_.shrink_to_fit();
  objects_.shrink_to_fit();
}

std::size_t HandleTable::slotOf(std::int32_t handle) const {
  const auto end = handles_.begin() + count_;
  const auto found = std::find(handles_.begin(), end, handle);
  return found == end ? none : static_cast<std::size_t>(found - handles_.begin());
}

}  // namespace zev
