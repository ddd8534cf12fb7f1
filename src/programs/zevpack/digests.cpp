#include "programs/zevpack/digests.h"

#include <algorithm>
#include <array>
#include <sstream>

#include "digest/sha256.h"
#include "package/projects.h"
#include "programs/zevpack/package_check.h"

namespace zev::packing {
namespace {

constexpr std::size_t digestSize = 64;
/// What stands between a digest and the name of its file: read as text, or as bytes.
constexpr std::array<std::string_view, 2> separators = {"  ", " *"};
constexpr std::string_view withoutPathMark = "# without the path of the video: ";

constexpr std::size_t pathEnd = videoPathOffset + videoPathSize;

bool isDigest(std::string_view text) {
  return text.size() == digestSize &&
         text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

std::string withoutPath(std::span<const std::uint8_t> project) {
  if (project.size() < pathEnd) return {};
  Sha256 digest;
  digest.add(project.first(videoPathOffset));
  digest.add(project.subspan(pathEnd));
  return digest.hex();
}

std::string lineOf(std::string_view mark, const std::string& digest, const std::string& name) {
  return std::string(mark) + digest + std::string(separators[0]) + name + "\n";
}

/// The lines of a list as they are read, one after the other.
class ListReader {
 public:
  explicit ListReader(const std::filesystem::path& path) : path_(path) {
    for (const Member& member : members()) names_.push_back(member.installedName);
  }

  void take(const std::string& line) {
    ++number_;
    const bool partly = line.starts_with(withoutPathMark);
    if (!partly && (line.empty() || line.starts_with('#'))) return;
    const std::string_view entry =
        std::string_view(line).substr(partly ? withoutPathMark.size() : 0);
    Digest& digest = digests_[nameIn(entry)];
    std::string& place = partly ? digest.withoutPath : digest.whole;
    if (!place.empty()) refuse("names a file again");
    place = entry.substr(0, digestSize);
  }

  Digests all() const {
    std::string without;
    for (const std::string& name : names_) {
      const auto found = digests_.find(name);
      if (found == digests_.end() || found->second.whole.empty()) without += "\n  " + name;
    }
    if (!without.empty()) throw ToolError(path_.string() + " has no digest of" + without);
    return digests_;
  }

 private:
  std::string nameIn(std::string_view entry) const {
    const std::string_view separator = entry.substr(std::min(digestSize, entry.size()), 2);
    const bool known =
        std::find(separators.begin(), separators.end(), separator) != separators.end();
    if (!isDigest(entry.substr(0, digestSize)) || !known) refuse("is no digest of a file");
    std::string name(entry.substr(digestSize + separator.size()));
    if (std::find(names_.begin(), names_.end(), name) == names_.end()) {
      refuse("names \"" + name + "\", which is no file of the product");
    }
    return name;
  }

  [[noreturn]] void refuse(const std::string& why) const {
    throw ToolError(path_.string() + ": line " + std::to_string(number_) + " " + why);
  }

  const std::filesystem::path& path_;
  std::vector<std::string> names_;
  Digests digests_;
  std::size_t number_ = 0;
};

}  // namespace

bool isPatched(const Member& member) { return member.condition == Condition::ProjectsFolder; }

std::optional<std::span<const std::uint8_t>> videoPathIn(std::span<const std::uint8_t> project) {
  if (project.size() < pathEnd) return std::nullopt;
  return project.subspan(videoPathOffset, videoPathSize);
}

Digest digestOf(const Member& member, std::span<const std::uint8_t> expanded) {
  return {sha256Hex(expanded), isPatched(member) ? withoutPath(expanded) : std::string()};
}

Digests digestsOf(const PackageFile& package) {
  Digests digests;
  for (const Member& member : members()) {
    digests[member.installedName] = digestOf(member, expandMember(package.stored(member)).bytes);
  }
  return digests;
}

std::string textOf(const Digests& digests) {
  std::string text;
  for (const Member& member : members()) {
    const Digest& digest = digests.at(member.installedName);
    text += lineOf("", digest.whole, member.installedName);
    if (!digest.withoutPath.empty()) {
      text += lineOf(withoutPathMark, digest.withoutPath, member.installedName);
    }
  }
  return text;
}

Digests readDigests(const std::filesystem::path& path) {
  const Bytes bytes = readFile(path);
  std::istringstream lines(std::string(bytes.begin(), bytes.end()));
  ListReader reader(path);
  for (std::string line; std::getline(lines, line);) reader.take(line);
  return reader.all();
}

}  // namespace zev::packing
