#include "platform/holds.h"

namespace zev {

// ---- one entry

Hold& Hold::operator=(Hold&& other) noexcept {
  if (this == &other) return *this;
  release();
  system_ = other.system_;
  handle_ = std::exchange(other.handle_, 0);
  refused_ = std::exchange(other.refused_, false);
  link_ = std::exchange(other.link_, false);
  return *this;
}

void Hold::release() {
  if (held()) system_->CloseHandle(handle_);
  handle_ = 0;
  refused_ = link_ = false;
}

void Hold::refuse() {
  release();
  refused_ = true;
}

std::size_t Hold::read(std::uint64_t offset, std::span<std::uint8_t> into) const {
  std::size_t count = 0;
  const bool read =
      held() && system_->ReadFile(handle_, offset, into, count) == system_error::success;
  return read ? count : 0;
}

// ---- all of them

Hold Holds::hold(TextView path, Holding holding) {
  Hold hold;
  std::uint32_t attributes = 0;
  hold.system_ = &system_;
  const SystemError error = system_.HoldEntryA(path, holding, attributes, hold.handle_);
  if (error != system_error::success) hold.handle_ = 0;
  const bool link = hold.held() ? (attributes & file_attribute::link) != 0 : isLink(path);
  if (link || error == system_error::sharingViolation) hold.refuse();
  hold.link_ = link;
  return hold;
}

bool Holds::isLink(TextView path) {
  std::uint32_t attributes = 0;
  return system_.GetFileAttributesA(path, attributes) == system_error::success &&
         (attributes & file_attribute::link) != 0;
}

}  // namespace zev
