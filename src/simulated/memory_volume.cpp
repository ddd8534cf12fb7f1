#include <algorithm>
#include <cstring>
#include <map>
#include <utility>
#include <vector>

#include "simulated/volume.h"

namespace zev::simulated {
namespace {

bool areZeros(std::span<const std::uint8_t> bytes) {
  return bytes.empty() ||
         (bytes.front() == 0 && std::memcmp(bytes.data(), bytes.data() + 1, bytes.size() - 1) == 0);
}

/// A stretch of a file's bytes. Those past the last one that is kept are zeros.
class Block {
 public:
  void read(std::size_t start, std::span<std::uint8_t> into) const {
    const std::size_t first = std::min(start, bytes_.size());
    const std::size_t stored = std::min(into.size(), bytes_.size() - first);
    const auto end =
        std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(first), stored, into.begin());
    std::fill(end, into.end(), std::uint8_t{0});
  }

  void write(std::size_t start, std::span<const std::uint8_t> from) {
    if (start >= bytes_.size() && areZeros(from)) return;
    if (start > bytes_.size()) bytes_.resize(start);
    const std::size_t over = std::min(from.size(), bytes_.size() - start);
    std::copy_n(from.begin(), over, bytes_.begin() + static_cast<std::ptrdiff_t>(start));
    bytes_.insert(bytes_.end(), from.begin() + static_cast<std::ptrdiff_t>(over), from.end());
  }

  void cut(std::size_t size) {
    if (size < bytes_.size()) bytes_.resize(size);
  }

 private:
  std::vector<std::uint8_t> bytes_;
};

/// Bytes in memory, block by block: a file that grows is not copied. Zeros take no memory where
/// nothing else stands behind them in their block, nor does a piece of the host until it is written
/// to.
class MemoryBody final : public FileBody {
 public:
  std::uint64_t size() const override { return piece_ ? piece_->size() : size_; }

  std::size_t read(std::uint64_t offset, std::span<std::uint8_t> into) override {
    if (piece_) return piece_->read(offset, into);
    if (offset >= size_) return 0;
    const auto count =
        static_cast<std::size_t>(std::min<std::uint64_t>(into.size(), size_ - offset));
    forEachBlock(offset, into.first(count),
                 [this](std::size_t index, std::size_t start, auto part) {
                   static const Block zeros;
                   (index < blocks_.size() ? blocks_[index] : zeros).read(start, part);
                 });
    return count;
  }

  SystemError write(std::uint64_t offset, std::span<const std::uint8_t> from) override {
    takeOver();
    forEachBlock(offset, from, [this](std::size_t index, std::size_t start, auto part) {
      if (index >= blocks_.size()) blocks_.resize(index + 1);
      blocks_[index].write(start, part);
    });
    size_ = std::max(size_, offset + from.size());
    return system_error::success;
  }

  SystemError resize(std::uint64_t size) override {
    takeOver();
    const auto whole = static_cast<std::size_t>(size / blockSize);
    if (whole < blocks_.size()) {
      blocks_.resize(whole + 1);
      blocks_.back().cut(static_cast<std::size_t>(size % blockSize));
    }
    size_ = size;
    return system_error::success;
  }

  SystemError fill(const std::shared_ptr<const HostPiece>& piece) override {
    blocks_ = {};
    piece_ = piece;
    return system_error::success;
  }

  SystemError close() override { return system_error::success; }

 private:
  static constexpr std::size_t blockSize = 65536;

  /// Calls a function with each block that bytes at an offset lie in: its index, where in it they
  /// start, and those of them that lie in it.
  template <typename Bytes, typename Function>
  static void forEachBlock(std::uint64_t offset, Bytes bytes, const Function& function) {
    while (!bytes.empty()) {
      const auto start = static_cast<std::size_t>(offset % blockSize);
      const std::size_t count = std::min(bytes.size(), blockSize - start);
      function(static_cast<std::size_t>(offset / blockSize), start, bytes.first(count));
      bytes = bytes.subspan(count);
      offset += count;
    }
  }

  /// The bytes of the piece become the file's own, since they change.
  void takeOver() {
    if (!piece_) return;
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(piece_->size()));
    piece_->read(0, bytes);
    piece_.reset();
    size_ = 0;
    write(0, bytes);
  }

  std::shared_ptr<const HostPiece> piece_;  ///< all of the file; none once that is in `blocks_`
  std::vector<Block> blocks_;
  std::uint64_t size_ = 0;
};

struct Node {
  Text name;
  std::uint32_t attributes = file_attribute::normal;
  std::shared_ptr<MemoryBody> body;                ///< of a file
  std::map<Text, std::unique_ptr<Node>> children;  ///< of a directory, by upper-case name

  bool isDirectory() const { return (attributes & file_attribute::directory) != 0; }
  DirectoryEntry entry() const { return {name, attributes, body ? body->size() : 0}; }
};

class MemoryVolume final : public Volume {
 public:
  MemoryVolume() { root_.attributes = file_attribute::directory; }

  std::optional<DirectoryEntry> find(const Path& path) const override {
    const Node* node = at(path);
    return node == nullptr ? std::nullopt : std::optional(node->entry());
  }

  std::vector<DirectoryEntry> list(const Path& directory) const override {
    std::vector<DirectoryEntry> entries;
    if (const Node* node = at(directory)) {
      for (const auto& [key, child] : node->children) entries.push_back(child->entry());
    }
    return entries;
  }

  std::shared_ptr<FileBody> open(const Path& file) const override {
    const Node* node = at(file);
    return node == nullptr ? nullptr : node->body;
  }

  SystemError createFile(const Path& path, std::uint32_t attributes) override {
    Node* node = create(path, attributes);
    if (node == nullptr) return system_error::accessDenied;
    node->body = std::make_shared<MemoryBody>();
    return system_error::success;
  }

  SystemError createDirectory(const Path& path) override {
    return create(path, file_attribute::directory) != nullptr ? system_error::success
                                                              : system_error::accessDenied;
  }

  SystemError replace(const Path& file, const Path& by) override {
    Node* replaced = at(file);
    Node* replacement = at(by);
    if (replacement == nullptr) return system_error::fileNotFound;
    if (replaced == nullptr) replaced = create(file, replacement->attributes);
    if (replaced == nullptr) return system_error::accessDenied;
    replaced->body = std::move(replacement->body);
    remove(by);
    return system_error::success;
  }

  bool remove(const Path& path) override {
    Node* parent = path.isRoot() ? nullptr : at(path.parent());
    return parent != nullptr && parent->children.erase(upperCase(path.leaf())) > 0;
  }

  bool setAttributes(const Path& path, std::uint32_t attributes) override {
    Node* node = at(path);
    if (node == nullptr) return false;
    node->attributes = attributes | (node->attributes & file_attribute::directory);
    return true;
  }

 private:
  const Node* at(const Path& path) const {
    const Node* node = &root_;
    for (const Text& name : path.names) {
      const auto found = node->children.find(upperCase(name));
      if (found == node->children.end()) return nullptr;
      node = found->second.get();
    }
    return node;
  }
  Node* at(const Path& path) { return const_cast<Node*>(std::as_const(*this).at(path)); }

  Node* create(const Path& path, std::uint32_t attributes) {
    Node* parent = path.isRoot() ? nullptr : at(path.parent());
    if (parent == nullptr || !parent->isDirectory()) return nullptr;
    auto node = std::make_unique<Node>();
    node->name = path.leaf();
    node->attributes = attributes;
    const auto [place, added] = parent->children.emplace(upperCase(path.leaf()), std::move(node));
    return added ? place->second.get() : nullptr;
  }

  Node root_;
};

}  // namespace

std::unique_ptr<Volume> makeMemoryVolume() { return std::make_unique<MemoryVolume>(); }

}  // namespace zev::simulated
