#include <algorithm>
#include <cerrno>
#include <fstream>
#include <map>
#include <system_error>

#include "platform/file_system.h"
#include "simulated/volume.h"

namespace zev::simulated {
namespace {

namespace fs = std::filesystem;

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

/// Why a stream of the host has just failed.
SystemError lastRefusal() {
  const SystemError error = refusal({errno, std::generic_category()});
  return error != system_error::success ? error : SystemError{system_error::deviceError};
}

/// A file of the host. It is opened for writing when it is first written. All of the machine's
/// accesses to a file go through one body, so its size needs to be asked for only once. What is
/// written goes to the host at once, so that it is the write that fails there.
class HostBody final : public FileBody {
 public:
  explicit HostBody(fs::path path) : path_(std::move(path)) {
    stream_.rdbuf()->pubsetbuf(nullptr, 0);
  }

  std::uint64_t size() const override {
    if (!size_) {
      std::error_code error;
      const auto size = fs::file_size(path_, error);
      if (error) return 0;
      size_ = size;
    }
    return *size_;
  }

  std::size_t read(std::uint64_t offset, std::span<std::uint8_t> into) override {
    if (!ready(std::ios::in)) return 0;
    stream_.seekg(static_cast<std::streamoff>(offset));
    stream_.read(reinterpret_cast<char*>(into.data()), static_cast<std::streamsize>(into.size()));
    return static_cast<std::size_t>(stream_.gcount());
  }

  SystemError write(std::uint64_t offset, std::span<const std::uint8_t> from) override {
    errno = 0;
    if (!ready(std::ios::in | std::ios::out)) return lastRefusal();
    stream_.seekp(static_cast<std::streamoff>(offset));
    stream_.write(reinterpret_cast<const char*>(from.data()),
                  static_cast<std::streamsize>(from.size()));
    if (!stream_.good()) {
      size_.reset();
      return lastRefusal();
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

  SystemError close() override {
    if (!stream_.is_open()) return system_error::success;
    errno = 0;
    stream_.clear();
    stream_.close();
    return stream_.good() ? SystemError{system_error::success} : lastRefusal();
  }

 private:
  bool ready(std::ios::openmode mode) {
    if (!stream_.is_open() || (mode & ~mode_) != std::ios::openmode{}) {
      stream_.close();
      stream_.open(path_, mode | std::ios::binary);
      mode_ = mode;
    }
    stream_.clear();
    return stream_.is_open();
  }

  fs::path path_;
  std::fstream stream_;
  mutable std::optional<std::uint64_t> size_;  ///< in bytes; none: it has to be asked for
  std::ios::openmode mode_{};
};

class HostVolume final : public Volume {
 public:
  explicit HostVolume(fs::path folder) : folder_(std::move(folder)) {}

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
    if (!host || !host->is_directory(error)) return entries;
    for (const auto& each : fs::directory_iterator(*host, error)) {
      const Text name = nameOf(each.path());
      if (validName(name)) entries.push_back(entry(each, directory.child(name)));
    }
    std::sort(entries.begin(), entries.end(),
              [](const DirectoryEntry& first, const DirectoryEntry& second) {
                return upperCase(first.name) < upperCase(second.name);
              });
    return entries;
  }

  std::shared_ptr<FileBody> open(const Path& file) const override {
    const auto host = onHost(file);
    std::error_code error;
    if (!host || !host->is_regular_file(error)) return nullptr;
    std::weak_ptr<FileBody>& known = bodies_[file.key()];
    std::shared_ptr<FileBody> body = known.lock();
    if (!body) known = body = std::make_shared<HostBody>(*host);
    return body;
  }

  SystemError createFile(const Path& path, std::uint32_t attributes) override {
    const auto parent = onHost(path.parent());
    if (!parent) return system_error::pathNotFound;
    errno = 0;
    if (!std::ofstream(parent->path() / hostName(path.leaf()), std::ios::binary)) {
      return lastRefusal();
    }
    attributes_[path.key()] = attributes;
    return system_error::success;
  }

  SystemError createDirectory(const Path& path) override {
    const auto parent = onHost(path.parent());
    if (!parent) return system_error::pathNotFound;
    std::error_code error;
    const bool made = fs::create_directory(parent->path() / hostName(path.leaf()), error);
    return made || error ? refusal(error) : SystemError{system_error::alreadyExists};
  }

  SystemError replace(const Path& file, const Path& by) override {
    const auto replacement = onHost(by);
    if (!replacement) return system_error::fileNotFound;
    const auto replaced = onHost(file);
    const fs::path beside = replacement->path().parent_path() / hostName(file.leaf());
    std::error_code error;
    fs::rename(replacement->path(), replaced ? replaced->path() : beside, error);
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
    fs::remove_all(*host, error);
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
  static fs::path hostName(const Text& name) { return fs::path(name); }

  static Text nameOf(const fs::path& path) {
    const std::u8string name = path.filename().u8string();
    return fromUtf8({reinterpret_cast<const char*>(name.data()), name.size()});
  }

  /// The real entry, whatever the case of its names; none if there is none. Names as they stand are
  /// tried first, all at once.
  std::optional<fs::directory_entry> onHost(const Path& path) const {
    fs::path exact = folder_;
    for (const Text& name : path.names) exact /= hostName(name);
    std::error_code error;
    fs::directory_entry entry(exact, error);
    if (entry.exists(error)) return entry;
    const auto parent = path.isRoot() ? std::nullopt : onHost(path.parent());
    return parent ? childInAnyCase(*parent, path.leaf()) : std::nullopt;
  }

  static std::optional<fs::directory_entry> childInAnyCase(const fs::directory_entry& folder,
                                                           const Text& name) {
    const fs::path exact = hostName(name);
    std::optional<fs::directory_entry> found;
    std::error_code error;
    for (const auto& each : fs::directory_iterator(folder, error)) {
      if (!mayBeNamed(each, name)) continue;
      const fs::path itsName = each.path().filename();
      if (itsName == exact) return each;
      if (!found && equalText(nameOf(itsName), name)) found = each;
    }
    return found;
  }

  /// False for most of the names that differ from `name`, without a conversion: a name of the host
  /// has one to three units for each of ours.
  static bool mayBeNamed(const fs::directory_entry& entry, const Text& name) {
    const fs::path::string_type& whole = entry.path().native();
    const std::size_t units = whole.size() - (whole.rfind(fs::path::preferred_separator) + 1);
    return units >= name.size() && units <= 3 * name.size();
  }

  DirectoryEntry entry(const fs::directory_entry& host, const Path& path) const {
    std::error_code error;
    DirectoryEntry entry{nameOf(host.path()), file_attribute::archive, 0};
    const bool directory = host.is_directory(error);
    if (directory) entry.attributes = file_attribute::normal;
    const auto known = attributes_.find(path.key());
    if (known != attributes_.end()) entry.attributes = known->second;
    if (host.is_symlink(error)) entry.attributes |= file_attribute::link;
    if (directory) {
      entry.attributes |= file_attribute::directory;
    } else if (const auto body = openBody(path)) {
      entry.size = body->size();
    } else {
      const auto size = host.file_size(error);
      entry.size = error ? 0 : size;
    }
    return entry;
  }

  /// The body of a file that somebody has open: what it was given may not be on the disk yet.
  std::shared_ptr<FileBody> openBody(const Path& path) const {
    const auto known = bodies_.find(path.key());
    return known == bodies_.end() ? nullptr : known->second.lock();
  }

  fs::path folder_;
  std::map<Text, std::uint32_t> attributes_;
  mutable std::map<Text, std::weak_ptr<FileBody>> bodies_;
};

}  // namespace

std::unique_ptr<Volume> makeHostVolume(fs::path folder) {
  return std::make_unique<HostVolume>(std::move(folder));
}

}  // namespace zev::simulated
