#include "simulated/sharing.h"

#include <algorithm>

namespace zev::simulated {
namespace {

bool within(std::uint8_t access, std::uint8_t shared) { return (access & ~shared) == 0; }

}  // namespace

Opening openingOf(FileAccess access, FileShare share) {
  Opening opening;
  if (access != FileAccess::Write) opening.access |= sharing::reading;
  if (access != FileAccess::Read) opening.access |= sharing::writing;
  if (share == FileShare::All) opening.shared = sharing::reading | sharing::writing;
  return opening;
}

Opening openingOf(Holding holding, bool directory) {
  if (holding == Holding::ToEmpty) {
    return {sharing::writing, sharing::reading | sharing::writing | sharing::deleting};
  }
  const bool emptied = directory && holding == Holding::ToKeep;
  const std::uint8_t shared = emptied ? sharing::reading | sharing::writing : sharing::reading;
  return {sharing::reading, shared};
}

bool Sharing::allows(const Text& entry, Opening wanted) const {
  return std::all_of(open_.begin(), open_.end(), [&](const auto& each) {
    const auto& [theirs, opening] = each.second;
    return theirs != entry ||
           (within(wanted.access, opening.shared) && within(opening.access, wanted.shared));
  });
}

std::uint64_t Sharing::add(const Text& entry, Opening opening) {
  open_[++last_] = {entry, opening};
  return last_;
}

void Sharing::remove(std::uint64_t handle) { open_.erase(handle); }

}  // namespace zev::simulated
