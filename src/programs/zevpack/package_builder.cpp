#include "programs/zevpack/package_builder.h"

#include <algorithm>
#include <cstdio>

#include "programs/zevpack/host_file.h"
#include "programs/zevpack/long_work.h"
#include "programs/zevpack/package_check.h"

namespace zev::packing {
namespace {

namespace fs = std::filesystem;

std::string label(const Member& member) {
  return "row " + std::to_string(member.row) + ", " + member.packedName;
}

/// A member as it was found, and what is wrong with it.
struct Found {
  Bytes stored;
  std::string trouble;   ///< that keeps it from its place
  std::string doubtful;  ///< that a person may want all the same
};

std::string wrongSize(const Member& member, const std::string& source, std::size_t size) {
  if (size == member.size) return {};
  return source + std::to_string(size) + " bytes, the manifest says " + std::to_string(member.size);
}

Found takePacked(const Member& member, const fs::path& file, Stored stored) {
  Found found{readFile(file), {}, {}};
  found.trouble = wrongSize(member, "the packed file has ", found.stored.size());
  if (found.trouble.empty()) {
    found.doubtful = checkMember(found.stored, nameByte(member), stored == Stored::Right);
  }
  return found;
}

Found takePlain(const Member& member, const fs::path& file) {
  Found found{compressed(file, nameByte(member)), {}, {}};
  found.trouble = wrongSize(member, member.installedName + " compresses to ", found.stored.size());
  return found;
}

/// The packed file counts before the plain one. A mistake becomes a word about the member, so that
/// all of them are told at once.
Found take(const Member& member, const Folder& folder, Stored stored) {
  try {
    if (const auto packed = folder.find(member.packedName)) {
      return takePacked(member, *packed, stored);
    }
    if (const auto plain = folder.find(member.installedName)) return takePlain(member, *plain);
    return {{}, "neither it nor " + member.installedName + " is there", {}};
  } catch (const ToolError& error) {
    return {{}, error.what(), {}};
  }
}

void note(std::string& list, const Member& member, const std::string& what) {
  if (!what.empty()) list += "  " + label(member) + ": " + what + "\n";
}

/// What a person is told who forces it, and what refuses all others.
void refuseUnless(Force force, const std::string& what) {
  if (force == Force::No) {
    throw ToolError(what + "nothing was written; --force builds it all the same");
  }
  std::fprintf(stderr, "zevpack: %s", what.c_str());
}

void checkProgram(const fs::path& path, const Bytes& image, Force force) {
  if (image.empty()) throw ToolError("the image " + path.string() + " is empty");
  const std::string trouble = troubleOfProgram(image, false);
  if (!trouble.empty()) refuseUnless(force, path.string() + ": " + trouble + "\n");
}

/// The path with all links resolved, as far as it exists, without a separator at its end.
fs::path resolved(const fs::path& path) {
  std::error_code error;
  const fs::path whole = fs::weakly_canonical(fs::absolute(path), error);
  const fs::path& taken = error ? path : whole;
  return taken.has_filename() ? taken : taken.parent_path();
}

bool liesIn(const fs::path& file, const fs::path& folder) {
  const fs::path inner = resolved(file.has_parent_path() ? file.parent_path() : ".");
  const fs::path outer = resolved(folder);
  const auto differing = std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end());
  return differing.first == outer.end();
}

/// What goes into the package is not to be replaced by it.
void checkOutput(const fs::path& output, const fs::path& image, const fs::path& folder) {
  std::error_code ignored;
  if (fs::equivalent(output, image, ignored)) {
    throw ToolError("the package " + output.string() + " would replace its own image");
  }
  if (liesIn(output, folder)) {
    throw ToolError("the package " + output.string() + " would lie among the members in " +
                    folder.string());
  }
  requireWritable(output);
}

}  // namespace

/// What has the wrong size can be forced by nobody: the installer finds members by their sizes.
std::vector<Bytes> gatherMembers(const fs::path& path, Stored stored, Force force) {
  const Folder folder(path);
  const std::vector<Member> all = members();
  Progress progress("Packing", all.size());
  std::vector<Found> found(all.size());
  inParallel(all.size(), [&](std::size_t index) {
    progress.step(all[index].packedName);
    found[index] = take(all[index], folder, stored);
  });
  std::string trouble, doubtful;
  std::vector<Bytes> gathered;
  for (std::size_t index = 0; index < all.size(); ++index) {
    note(trouble, all[index], found[index].trouble);
    note(doubtful, all[index], found[index].doubtful);
    gathered.push_back(std::move(found[index].stored));
  }
  const std::string front = "the members in " + path.string() + " do not fit the manifest:\n";
  if (!trouble.empty()) throw ToolError(front + trouble + doubtful + "nothing was written");
  if (!doubtful.empty()) refuseUnless(force, front + doubtful);
  return gathered;
}

/// All that can be wrong is looked for before the first byte is written.
void buildPackage(const fs::path& image, const fs::path& folder, const fs::path& output,
                  Stored stored, Force force) {
  const Bytes front = readFile(image);
  checkOutput(output, image, folder);
  checkProgram(image, front, force);
  const std::vector<Bytes> gathered = gatherMembers(folder, stored, force);
  NewFile package(output);
  package.append(front);
  std::for_each(gathered.rbegin(), gathered.rend(),
                [&](const Bytes& member) { package.append(member); });
  package.keep();
}

}  // namespace zev::packing
