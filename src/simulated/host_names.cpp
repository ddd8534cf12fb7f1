#include "simulated/host_names.h"

#include <dirent.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>

namespace zev::simulated {
namespace {

/// What changes the names of a folder, or takes it away.
constexpr std::uint32_t telling =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF | IN_ONLYDIR;

/// File systems that nobody changes but through this system, by the numbers that it has for them.
constexpr std::uint32_t ownFileSystems[] = {
    0x0000EF53,  // ext2 to ext4
    0x01021994,  // tmpfs
    0x58465342,  // xfs
    0x794C7630,  // overlay
    0x858458F6,  // ramfs
    0x9123683E,  // btrfs
    0xF2F52010,  // f2fs
};

bool isOwn(const std::string& folder) {
  struct statfs system {};
  if (::statfs(folder.c_str(), &system) != 0) return false;
  const auto kind = static_cast<std::uint32_t>(system.f_type);
  return std::find(std::begin(ownFileSystems), std::end(ownFileSystems), kind) !=
         std::end(ownFileSystems);
}

/// Nobody has put another folder in its place meanwhile.
bool isStill(const std::string& folder, const HostNames::Identity& identity) {
  struct stat status {};
  return ::stat(folder.c_str(), &status) == 0 &&
         HostNames::Identity(status.st_dev, status.st_ino) == identity;
}

Text keyOf(const std::string& name) { return lowerCase(fromUtf8(name)); }

}  // namespace

void HostNames::Listing::add(const std::string& name) {
  std::vector<std::string>& equal = names[keyOf(name)];
  if (std::find(equal.begin(), equal.end(), name) == equal.end()) equal.push_back(name);
}

void HostNames::Listing::drop(const std::string& name) {
  const auto found = names.find(keyOf(name));
  if (found == names.end()) return;
  std::erase(found->second, name);
  if (found->second.empty()) names.erase(found);
}

HostNames::~HostNames() {
  if (changes_ >= 0) ::close(changes_);
}

bool HostNames::watches() {
  if (changes_ < 0 && !none_) {
    changes_ = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    none_ = changes_ < 0;
  }
  return !none_;
}

void HostNames::forgetAll() {
  if (changes_ >= 0) ::close(changes_);
  changes_ = -1;
  listings_.clear();
  watched_.clear();
}

/// The watch has gone with its folder.
void HostNames::forget(int watch) {
  const auto found = watched_.find(watch);
  if (found == watched_.end()) return;
  listings_.erase(found->second);
  watched_.erase(found);
}

void HostNames::take(const inotify_event& event) {
  if ((event.mask & IN_Q_OVERFLOW) != 0) return forgetAll();
  if ((event.mask & (IN_DELETE_SELF | IN_IGNORED | IN_UNMOUNT)) != 0) return forget(event.wd);
  const auto place = watched_.find(event.wd);
  if (place == watched_.end() || event.len == 0) return;
  Listing& listing = listings_[place->second];
  if ((event.mask & (IN_CREATE | IN_MOVED_TO)) != 0) listing.add(event.name);
  if ((event.mask & (IN_DELETE | IN_MOVED_FROM)) != 0) listing.drop(event.name);
}

/// Takes over all that has changed. The system tells of a change before the call that makes it
/// returns, and in the order of the changes.
void HostNames::follow() {
  alignas(inotify_event) std::array<char, 4096> told;
  while (changes_ >= 0) {
    const ssize_t size = ::read(changes_, told.data(), told.size());
    if (size < 0 && errno == EINTR) continue;
    if (size < 0 && errno != EAGAIN) forgetAll();
    if (size <= 0) return;
    for (const char* at = told.data(); at < told.data() + size;) {
      const auto& event = *reinterpret_cast<const inotify_event*>(at);
      at += sizeof(inotify_event) + event.len;
      take(event);
    }
  }
}

HostNames::Listing HostNames::read(const std::string& folder) {
  ++reads_;
  Listing listing;
  const std::unique_ptr<DIR, int (*)(DIR*)> open(::opendir(folder.c_str()), &::closedir);
  if (!open) return listing;
  errno = 0;
  while (const dirent* each = ::readdir(open.get())) {
    const std::string_view name = each->d_name;
    if (name != "." && name != "..") listing.add(std::string(name));
    errno = 0;
  }
  listing.whole = errno == 0;
  return listing;
}

/// The names as they stand now; null of a folder that cannot be watched. It is watched before it is
/// read, so that no change falls between.
HostNames::Listing* HostNames::known(const std::string& folder, const Identity& identity) {
  follow();
  const auto found = listings_.find(identity);
  if (found != listings_.end()) return &found->second;
  if (!isOwn(folder) || !watches()) return nullptr;
  const int watch = ::inotify_add_watch(changes_, folder.c_str(), telling);
  if (watch < 0) return nullptr;
  Listing listing = read(folder);
  if (!listing.whole || !isStill(folder, identity)) {
    forgetAll();
    return nullptr;
  }
  watched_[watch] = identity;
  return &(listings_[identity] = std::move(listing));
}

/// The name as it stands, or else the first that is equal.
std::optional<std::string> HostNames::Listing::find(const Text& name) const {
  const auto found = names.find(lowerCase(name));
  if (found == names.end()) return std::nullopt;
  const std::vector<std::string>& equal = found->second;
  const auto exact = std::find(equal.begin(), equal.end(), toUtf8(name));
  return exact == equal.end() ? equal.front() : *exact;
}

std::optional<std::string> HostNames::find(const std::string& folder, const Identity& identity,
                                           const Text& name) {
  const Listing* listing = known(folder, identity);
  return listing == nullptr ? read(folder).find(name) : listing->find(name);
}

}  // namespace zev::simulated
