#include "programs/zevpack/installed_product.h"

#include "package/projects.h"
#include "programs/zevpack/host_file.h"

namespace zev::packing {
namespace {

namespace fs = std::filesystem;
using State = LaidFile::State;

/// The folders by target, as far as anybody knows them.
class Folders {
 public:
  explicit Folders(const InstalledFolders& named) : directory_(named.directory) {
    if (named.system) system_.emplace(*named.system);
    const fs::path projects = named.projects.value_or(named.directory / "Projects");
    if (named.projects || fs::is_directory(projects)) projects_.emplace(projects);
  }

  /// Null if it is not known.
  const Folder* of(Target target) const {
    if (target == Target::System) return system_ ? &*system_ : nullptr;
    if (target == Target::Projects) return projects_ ? &*projects_ : nullptr;
    return &directory_;
  }

 private:
  Folder directory_;
  std::optional<Folder> system_;
  std::optional<Folder> projects_;
};

/// A file whose folder is known may be missing: some machines do not get it, and the
/// redistributable is deleted once it has run.
bool mayBeAbsent(Condition condition) {
  return condition == Condition::OtherClasses || condition == Condition::ProfileClass ||
         condition == Condition::Redistributable;
}

LaidFile patched(const Member& member, std::span<const std::uint8_t> bytes,
                 const Digest& expected) {
  const auto path = videoPathIn(bytes);
  if (!path) return {member, State::Wrong, "is too short for the path of its video"};
  if (expected.withoutPath.empty()) {
    return {member, State::Wrong, "differs, and nothing tells its digest without its path"};
  }
  if (digestOf(member, bytes).withoutPath != expected.withoutPath) {
    return {member, State::Wrong, "differs, and not only in the path of its video"};
  }
  std::string video(path->begin(), path->end());
  video.erase(video.find_last_not_of(' ') + 1);
  if (!video.ends_with(toUtf8(sampleVideo))) {
    return {member, State::Wrong, "holds no path of its video where that belongs"};
  }
  return {member, State::Patched, "the path of its video is " + video};
}

LaidFile hold(const Member& member, const fs::path& file, const Digest& expected) {
  const Bytes bytes = readFile(file);
  if (digestOf(member, bytes).whole == expected.whole) return {member, State::Right, {}};
  if (isPatched(member)) return patched(member, bytes, expected);
  return {member, State::Wrong, "differs: " + file.string()};
}

LaidFile look(const Member& member, const Folders& folders, const Digest& expected) {
  const Folder* folder = folders.of(member.target);
  if (folder == nullptr) return {member, State::NotLookedAt, "its folder is not named"};
  const auto file = folder->find(member.installedName);
  if (file) return hold(member, *file, expected);
  if (mayBeAbsent(member.condition))
    return {member, State::Absent, "is not there, and need not be"};
  return {member, State::Wrong, "is not there"};
}

}  // namespace

std::vector<LaidFile> holdInstalled(const InstalledFolders& named, const Digests& digests) {
  const Folders folders(named);
  std::vector<LaidFile> files;
  for (const Member& member : members()) {
    try {
      files.push_back(look(member, folders, digests.at(member.installedName)));
    } catch (const ToolError& error) {
      files.push_back({member, State::Wrong, error.what()});
    }
  }
  return files;
}

}  // namespace zev::packing
