#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <string>
#include <system_error>
#include <utility>

#include "platform/file_system.h"
#include "simulated/host_names.h"
#include "simulated/volume.h"

namespace zev::simulated {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t pieceBytes = std::size_t{256} << 10;

/// What the host's refusal is on the machine.
SystemError refusal(const std::error_code& error) {
  if (!error) return system_error::success;
  for (const std::errc full : {std::errc::no_space_on_device, std::errc::file_too_large}) {
    if (error == full) return system_error::diskFull;
  }
#if defined(EDQUOT)
  if (error.value() == EDQUOT) return system_error::diskFull;
#endif
  if (error == std::errc::io_error) return system_error::deviceError;
  if (error == std::errc::read_only_file_system) return system_error::writeProtect;
  if (error == std::errc::too_many_files_open) return system_error::tooManyOpenFiles;
  return system_error::accessDenied;
}

/// Why a call of the host has just failed.
SystemError lastRefusal() { return refusal({errno, std::generic_category()}); }

/// A file of the host. It is opened for writing when it is first written. All of the machine's
/// accesses to a file go through one body, so its size needs to be asked for only once. What is
/// written goes to the host at once, so that it is the write that fails there.
class HostBody final : public FileBody {
 public:
  explicit HostBody(std::string path) : path_(std::move(path)) {}
  ~HostBody() override { close(); }
  HostBody(const HostBody&) = delete;
  HostBody& operator=(const HostBody&) = delete;

  std::uint64_t size() const override {
    if (!size_) {
      struct stat status {};
      if (::stat(path_.c_str(), &status) != 0) return 0;
      size_ = static_cast<std::uint64_t>(status.st_size);
    }
    return *size_;
  }

  std::size_t read(std::uint64_t offset, std::span<std::uint8_t> into) override {
    if (!ready(O_RDONLY)) return 0;
    std::size_t done = 0;
    while (done < into.size()) {
      const ssize_t count =
          ::pread(file_, into.data() + done, into.size() - done, static_cast<off_t>(offset + done));
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) break;
      done += static_cast<std::size_t>(count);
    }
    return done;
  }

  SystemError write(std::uint64_t offset, std::span<const std::uint8_t> from) override {
    if (!ready(O_RDWR)) return lastRefusal();
    for (std::size_t done = 0; done < from.size();) {
      const ssize_t count = ::pwrite(file_, from.data() + done, from.size() - done,
                                     static_cast<off_t>(offset + done));
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) {
        size_.reset();
        return lastRefusal();
      }
      done += static_cast<std::size_t>(count);
    }
    if (size_ && !from.empty()) size_ = std::max<std::uint64_t>(*size_, offset + from.size());
    return system_error::success;
  }

  SystemError resize(std::uint64_t size) override {
    std::error_code error;
    fs::resize_file(path_, size, error);
    size_.reset();
    return refusal(error);
  }

  SystemError fill(const std::shared_ptr<const HostPiece>& piece) override {
    if (const SystemError error = resize(0)) return error;
    std::vector<std::uint8_t> bytes(pieceBytes);
    for (std::uint64_t offset = 0; const std::size_t count = piece->read(offset, bytes);) {
      if (const SystemError error = write(offset, std::span(bytes).first(count))) return error;
      offset += count;
    }
    return system_error::success;
  }

  SystemError close() override {
    if (file_ < 0) return system_error::success;
    return ::close(std::exchange(file_, -1)) == 0 ? SystemError{system_error::success}
                                                  : lastRefusal();
  }

 private:
  /// The file is open for that, or for more.
  bool ready(int mode) {
    if (file_ < 0 || (mode == O_RDWR && mode_ != O_RDWR)) {
      close();
      file_ = ::open(path_.c_str(), mode | O_CLOEXEC);
      mode_ = mode;
    }
    return file_ >= 0;
  }

  std::string path_;
  int file_ = -1;
  int mode_ = O_RDONLY;
  mutable std::optional<std::uint64_t> size_;  ///< in bytes; none: it has to be asked for
};

/// An entry of the host.
struct HostEntry {
  std::string path;
  struct stat status {};  ///< of what a link leads to, and of the link itself if that is nothing
  bool link = false;

  bool isDirectory() const { return S_ISDIR(status.st_mode); }
  bool isFile() const { return S_ISREG(status.st_mode); }
  HostNames::Identity identity() const { return {status.st_dev, status.st_ino}; }
  /// Looks at the path; false if nothing is there, or only a link that leads nowhere.
  bool look() {
    if (::lstat(path.c_str(), &status) != 0) return false;
    link = S_ISLNK(status.st_mode);
    return !link || ::stat(path.c_str(), &status) == 0;
  }
};

class HostVolume final : public Volume {
 public:
  explicit HostVolume(const fs::path& folder) : folder_(folder.native()) {}

  std::optional<DirectoryEntry> find(const Path& path) const override {
    const auto host = onHost(path);
    if (!host) return std::nullopt;
    DirectoryEntry found = entry(*host, path);
    if (path.isRoot()) found.name.clear();
    return found;
  }

  std::vector<DirectoryEntry> list(const Path& directory) const override {
    std::vector<DirectoryEntry> entries;
    const auto host = onHost(directory);
    std::error_code error;
    if (!host || !host->isDirectory()) return entries;
    for (const auto& each : fs::directory_iterator(host->path, error)) {
      HostEntry one{each.path().native()};
      one.look();
      const Text name = nameOf(one);
      if (validName(name)) entries.push_back(entry(one, directory.child(name)));
    }
    std::sort(entries.begin(), entries.end(),
              [](const DirectoryEntry& first, const DirectoryEntry& second) {
                return upperCase(first.name) < upperCase(second.name);
              });
    return entries;
  }

  std::shared_ptr<FileBody> open(const Path& file) const override {
    const auto host = onHost(file);
    if (!host || !host->isFile()) return nullptr;
    std::weak_ptr<FileBody>& known = bodies_[file.key()];
    std::shared_ptr<FileBody> body = known.lock();
    if (!body) known = body = std::make_shared<HostBody>(host->path);
    return body;
  }

  SystemError createFile(const Path& path, std::uint32_t attributes) override {
    constexpr mode_t anybody = 0666;
    const auto parent = onHost(path.parent());
    if (!parent) return system_error::pathNotFound;
    const int made = ::open(below(*parent, path.leaf()).c_str(),
                            O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, anybody);
    if (made < 0 || ::close(made) != 0) return lastRefusal();
    attributes_[path.key()] = attributes;
    return system_error::success;
  }

  SystemError createDirectory(const Path& path) override {
    const auto parent = onHost(path.parent());
    if (!parent) return system_error::pathNotFound;
    std::error_code error;
    const bool made = fs::create_directory(below(*parent, path.leaf()), error);
    return made || error ? refusal(error) : SystemError{system_error::alreadyExists};
  }

  SystemError replace(const Path& file, const Path& by) override {
    const auto replacement = onHost(by);
    if (!replacement) return system_error::fileNotFound;
    const auto replaced = onHost(file);
    const fs::path beside = fs::path(replacement->path).parent_path() / toUtf8(file.leaf());
    std::error_code error;
    fs::rename(replacement->path, replaced ? fs::path(replaced->path) : beside, error);
    if (error) return refusal(error);
    const auto attributes = attributes_.extract(by.key());
    if (!replaced && attributes) attributes_[file.key()] = attributes.mapped();
    bodies_.erase(file.key());
    bodies_.erase(by.key());
    return system_error::success;
  }

  bool remove(const Path& path) override {
    const auto host = path.isRoot() ? std::nullopt : onHost(path);
    if (!host) return false;
    std::error_code error;
    fs::remove_all(host->path, error);
    if (error) return false;
    const Text key = path.key();
    std::erase_if(attributes_, [&](const auto& each) {
      return each.first == key || each.first.starts_with(key + u"\\");
    });
    bodies_.erase(key);
    return true;
  }

  bool setAttributes(const Path& path, std::uint32_t attributes) override {
    if (!onHost(path)) return false;
    attributes_[path.key()] = attributes & ~file_attribute::directory;
    return true;
  }

 private:
  static std::string below(const HostEntry& folder, const Text& name) {
    return folder.path + '/' + toUtf8(name);
  }

  static Text nameOf(const HostEntry& entry) {
    return fromUtf8(std::string_view(entry.path).substr(entry.path.rfind('/') + 1));
  }

  /// The real entry, whatever the case of its names; none if there is none. Names as they stand are
  /// tried first, all at once.
  std::optional<HostEntry> onHost(const Path& path) const {
    HostEntry exact{folder_};
    for (const Text& name : path.names) exact.path = below(exact, name);
    if (exact.look()) return exact;
    const auto parent = path.isRoot() ? std::nullopt : onHost(path.parent());
    const auto name =
        parent ? names_.find(parent->path, parent->identity(), path.leaf()) : std::nullopt;
    if (!name) return std::nullopt;
    HostEntry found{parent->path + '/' + *name};
    found.look();
    return found;
  }

  DirectoryEntry entry(const HostEntry& host, const Path& path) const {
    DirectoryEntry entry{nameOf(host), file_attribute::archive, 0};
    if (host.isDirectory()) entry.attributes = file_attribute::normal;
    const Text key = path.key();
    const auto known = attributes_.find(key);
    if (known != attributes_.end()) entry.attributes = known->second;
    if (host.link) entry.attributes |= file_attribute::link;
    if (host.isDirectory()) {
      entry.attributes |= file_attribute::directory;
    } else if (const auto body = openBody(key)) {
      entry.size = body->size();
    } else if (host.isFile()) {
      entry.size = static_cast<std::uint64_t>(host.status.st_size);
    }
    return entry;
  }

  /// The body of a file that somebody has open: its size needs not be asked for.
  std::shared_ptr<FileBody> openBody(const Text& key) const {
    const auto known = bodies_.find(key);
    return known == bodies_.end() ? nullptr : known->second.lock();
  }

  std::string folder_;  ///< absolute or relative to the host's current folder, as it was given
  mutable HostNames names_;
  std::map<Text, std::uint32_t> attributes_;
  mutable std::map<Text, std::weak_ptr<FileBody>> bodies_;
};

}  // namespace

std::unique_ptr<Volume> makeHostVolume(std::filesystem::path folder) {
  return std::make_unique<HostVolume>(std::move(folder));
}

}  // namespace zev::simulated
