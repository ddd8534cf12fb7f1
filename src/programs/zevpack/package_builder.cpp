#include "programs/zevpack/package_builder.h"

#include <algorithm>
#include <map>

#include "lz/compressor.h"
#include "programs/zevpack/progress.h"

namespace zev::packing {
namespace {

namespace fs = std::filesystem;

/// The files of a folder, found by name without regard to case where no exact match is there.
class Folder {
 public:
  explicit Folder(const fs::path& path) : path_(path) {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(path, error)) {
      if (!entry.is_regular_file()) continue;
      const std::string name = entry.path().filename().string();
      byFoldedName_.emplace(toUtf8(lowerCase(fromUtf8(name))), entry.path());
    }
    if (error) throw ToolError("cannot list the folder " + path.string() + ": " + error.message());
  }

  std::optional<fs::path> find(const std::string& name) const {
    const fs::path exact = path_ / name;
    if (fs::is_regular_file(exact)) return exact;
    const auto found = byFoldedName_.find(toUtf8(lowerCase(fromUtf8(name))));
    if (found == byFoldedName_.end()) return std::nullopt;
    return found->second;
  }

 private:
  fs::path path_;
  std::map<std::string, fs::path> byFoldedName_;
};

std::string label(const Member& member) {
  return "row " + std::to_string(member.row) + ", " + member.packedName;
}

/// Takes one member from the folder; what is wrong with it goes to `trouble`.
Bytes gather(const Member& member, const Folder& folder, std::string& trouble) {
  Bytes stored;
  std::string source;
  if (const auto packed = folder.find(member.packedName)) {
    stored = readFile(*packed);
    source = "the packed file has ";
  } else if (const auto plain = folder.find(member.installedName)) {
    stored = lz::compress(readFile(*plain), nameByte(member));
    source = member.installedName + " compresses to ";
  } else {
    trouble += "  " + label(member) + ": neither it nor " + member.installedName + " is there\n";
    return {};
  }
  if (stored.size() != member.size) {
    trouble += "  " + label(member) + ": " + source + std::to_string(stored.size()) +
               " bytes, the manifest says " + std::to_string(member.size) + "\n";
  }
  return stored;
}

}  // namespace

std::vector<Bytes> gatherMembers(const fs::path& path) {
  const Folder folder(path);
  const std::vector<Member> all = members();
  Progress progress("Packing", all.size());
  std::string trouble;
  std::vector<Bytes> gathered;
  for (const Member& member : all) {
    progress.step(member.packedName);
    gathered.push_back(gather(member, folder, trouble));
  }
  if (!trouble.empty()) {
    throw ToolError("the members in " + path.string() + " do not fit the manifest:\n" + trouble +
                    "nothing was written");
  }
  return gathered;
}

void buildPackage(const fs::path& image, const fs::path& folder, const fs::path& output) {
  const Bytes front = readFile(image);
  if (front.empty()) throw ToolError("the image " + image.string() + " is empty");
  const std::vector<Bytes> gathered = gatherMembers(folder);
  NewFile package(output);
  package.append(front);
  std::for_each(gathered.rbegin(), gathered.rend(),
                [&](const Bytes& member) { package.append(member); });
  package.keep();
}

}  // namespace zev::packing
