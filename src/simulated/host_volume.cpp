#include <algorithm>
#include <fstream>
#include <map>
#include <system_error>

#include "simulated/volume.h"

namespace zev::simulated {
namespace {

namespace fs = std::filesystem;

/// A file of the host. It is opened for writing when it is first written.
class HostBody final : public FileBody {
 public:
  explicit HostBody(fs::path path) : path_(std::move(path)) {}

  std::uint64_t size() const override {
    stream_.flush();
    std::error_code error;
    const auto size = fs::file_size(path_, error);
    return error ? 0 : size;
  }

  std::size_t read(std::uint64_t offset, std::span<std::uint8_t> into) override {
    if (!ready(std::ios::in)) return 0;
    stream_.seekg(static_cast<std::streamoff>(offset));
    stream_.read(reinterpret_cast<char*>(into.data()), static_cast<std::streamsize>(into.size()));
    return static_cast<std::size_t>(stream_.gcount());
  }

  bool write(std::uint64_t offset, std::span<const std::uint8_t> from) override {
    if (!ready(std::ios::in | std::ios::out)) return false;
    stream_.seekp(static_cast<std::streamoff>(offset));
    stream_.write(reinterpret_cast<const char*>(from.data()),
                  static_cast<std::streamsize>(from.size()));
    return stream_.good();
  }

  bool resize(std::uint64_t size) override {
    stream_.flush();
    std::error_code error;
    fs::resize_file(path_, size, error);
    return !error;
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
  mutable std::fstream stream_;
  std::ios::openmode mode_{};
};

class HostVolume final : public Volume {
 public:
  explicit HostVolume(fs::path folder) : folder_(std::move(folder)) {}

  std::optional<DirectoryEntry> find(const Path& path) const override {
    const auto host = hostPath(path);
    if (!host) return std::nullopt;
    DirectoryEntry found = entry(*host, path);
    if (path.isRoot()) found.name.clear();
    return found;
  }

  std::vector<DirectoryEntry> list(const Path& directory) const override {
    std::vector<DirectoryEntry> entries;
    const auto host = hostPath(directory);
    std::error_code error;
    if (!host || !fs::is_directory(*host, error)) return entries;
    for (const auto& each : fs::directory_iterator(*host, error)) {
      const Text name = nameOf(each.path());
      if (validName(name)) entries.push_back(entry(each.path(), directory.child(name)));
    }
    std::sort(entries.begin(), entries.end(),
              [](const DirectoryEntry& first, const DirectoryEntry& second) {
                return upperCase(first.name) < upperCase(second.name);
              });
    return entries;
  }

  std::shared_ptr<FileBody> open(const Path& file) const override {
    const auto host = hostPath(file);
    std::error_code error;
    if (!host || !fs::is_regular_file(*host, error)) return nullptr;
    std::weak_ptr<FileBody>& known = bodies_[file.key()];
    std::shared_ptr<FileBody> body = known.lock();
    if (!body) known = body = std::make_shared<HostBody>(*host);
    return body;
  }

  bool createFile(const Path& path, std::uint32_t attributes) override {
    const auto parent = hostPath(path.parent());
    if (!parent) return false;
    if (!std::ofstream(*parent / hostName(path.leaf()), std::ios::binary)) return false;
    attributes_[path.key()] = attributes;
    return true;
  }

  bool createDirectory(const Path& path) override {
    const auto parent = hostPath(path.parent());
    std::error_code error;
    return parent && fs::create_directory(*parent / hostName(path.leaf()), error) && !error;
  }

  bool remove(const Path& path) override {
    const auto host = path.isRoot() ? std::nullopt : hostPath(path);
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
    if (!hostPath(path)) return false;
    attributes_[path.key()] = attributes & ~file_attribute::directory;
    return true;
  }

 private:
  static fs::path hostName(const Text& name) { return fs::path(name); }

  static Text nameOf(const fs::path& path) {
    const std::u8string name = path.filename().u8string();
    return fromUtf8({reinterpret_cast<const char*>(name.data()), name.size()});
  }

  /// The real path of an entry, whatever the case of its names; none if there is none.
  std::optional<fs::path> hostPath(const Path& path) const {
    std::optional<fs::path> real = folder_;
    for (const Text& name : path.names) {
      if (real) real = childOf(*real, name);
    }
    std::error_code error;
    return real && fs::exists(*real, error) ? real : std::nullopt;
  }

  static std::optional<fs::path> childOf(const fs::path& folder, const Text& name) {
    std::error_code error;
    const fs::path exact = folder / hostName(name);
    if (fs::exists(exact, error)) return exact;
    for (const auto& each : fs::directory_iterator(folder, error)) {
      if (equalText(nameOf(each.path()), name)) return each.path();
    }
    return std::nullopt;
  }

  DirectoryEntry entry(const fs::path& host, const Path& path) const {
    std::error_code error;
    DirectoryEntry entry{nameOf(host), file_attribute::archive, 0};
    const bool directory = fs::is_directory(host, error);
    if (directory) entry.attributes = file_attribute::normal;
    const auto known = attributes_.find(path.key());
    if (known != attributes_.end()) entry.attributes = known->second;
    if (directory) {
      entry.attributes |= file_attribute::directory;
    } else if (const auto body = openBody(path)) {
      entry.size = body->size();
    } else {
      const auto size = fs::file_size(host, error);
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
