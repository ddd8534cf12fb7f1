#include "programs/zevpack/commands.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>

#include "programs/zevpack/long_work.h"
#include "programs/zevpack/package_check.h"
#include "sample/sample_product.h"

namespace zev::packing {
namespace {

namespace fs = std::filesystem;

constexpr int failed = 1;

void printRow(const Member& member, const std::string& what) {
  std::printf("row %2d  %-32s  %s\n", member.row, member.packedName.c_str(), what.c_str());
}

/// A package that has to be right for what is to be done with it.
void requireRight(const fs::path& path, const PackageFile& package, Stored stored,
                  const char* otherwise) {
  const PackageTrouble trouble = troubleOf(package, stored);
  if (trouble.any()) {
    throw ToolError(path.string() + " is not right:\n" + trouble.text() + otherwise);
  }
}

std::vector<SampleRow> sampleRows() {
  std::vector<SampleRow> rows;
  for (const Member& member : members()) {
    rows.push_back({member.packedName, member.installedName, member.size});
  }
  return rows;
}

/// The bytes to lay for a member: as they stand in the package, or expanded.
Expanded contentOf(const PackageFile& package, const Member& member, bool packed) {
  if (!package.offsetOf(member)) {
    return {{}, troubleOfMember(package, member, Stored::Right)};
  }
  const auto stored = package.stored(member);
  if (packed) return {Bytes(stored.begin(), stored.end()), {}};
  return expandMember(stored);
}

}  // namespace

int build(const fs::path& image, const fs::path& folder, const fs::path& output, Stored stored,
          Force force) {
  buildPackage(image, folder, output, stored, force);
  std::printf("%s: %ju bytes, 56 members, %d bytes behind the image\n", output.c_str(),
              static_cast<std::uintmax_t>(fs::file_size(output)), packageSize);
  return 0;
}

// ---- list

namespace {

void printPlace(const PackageFile& package, const Member& member, const std::string& trouble) {
  const auto stored = package.stored(member);
  std::printf("%3d  %-32s  %10zu  %10zu  %10zu  %10zu%s%s\n", member.row, member.packedName.c_str(),
              *package.offsetOf(member), member.tailOffset, member.size, declaredLength(stored),
              trouble.empty() ? "" : "  ", trouble.c_str());
}

}  // namespace

/// A member that is damaged is listed with what is wrong with it, and the others as ever.
int list(const fs::path& path, Stored stored) {
  const PackageFile package(path);
  std::printf("%3s  %-32s  %10s  %10s  %10s  %10s\n", "row", "packed name", "offset", "to end",
              "packed", "expanded");
  for (const Member& member : members()) {
    const std::string trouble = troubleOfMember(package, member, stored);
    if (package.offsetOf(member)) {
      printPlace(package, member, trouble);
    } else {
      printRow(member, trouble);
    }
  }
  const PackageTrouble trouble = troubleOf(package, stored);
  if (!trouble.program.empty()) std::printf("%s\n", trouble.program.c_str());
  return trouble.any() ? failed : 0;
}

int listDigests(const fs::path& path, Stored stored) {
  const PackageFile package(path);
  requireRight(path, package, stored, "no digests of it are told");
  std::fputs(textOf(digestsOf(package)).c_str(), stdout);
  return 0;
}

// ---- verify

namespace {

/// Members whose digests are others than they have to be join what is wrong with the package.
void compare(const PackageFile& package, const Digests& expected, PackageTrouble& trouble) {
  const Digests found = digestsOf(package);
  for (const Member& member : members()) {
    if (found.at(member.installedName).whole == expected.at(member.installedName).whole) continue;
    trouble.rows.push_back({member, "its digest is another one"});
  }
}

/// Digests are only compared where every member can be expanded.
int verifyPackage(const fs::path& path, const PackageFile& package, Stored stored,
                  const std::optional<Digests>& expected) {
  PackageTrouble trouble = troubleOf(package, stored);
  const bool whole = trouble.rows.empty();
  if (whole && expected) compare(package, *expected, trouble);
  std::fputs(trouble.text().c_str(), stdout);
  const std::size_t all = members().size();
  std::printf("%s: %zu of %zu members are right%s%s\n", path.c_str(), all - trouble.rows.size(),
              all, trouble.program.empty() ? "" : ", the program is not",
              package.isSigned() ? ", with a certificate table behind them" : "");
  if (!whole && expected) std::printf("digests were not compared\n");
  return trouble.any() ? failed : 0;
}

std::size_t countOf(const std::vector<LaidFile>& files, LaidFile::State state) {
  return static_cast<std::size_t>(std::count_if(
      files.begin(), files.end(), [&](const LaidFile& each) { return each.state == state; }));
}

int verifyInstalled(const InstalledFolders& folders, const Digests& expected) {
  using State = LaidFile::State;
  const std::vector<LaidFile> files = holdInstalled(folders, expected);
  for (const LaidFile& each : files) {
    if (each.what.empty()) continue;
    std::printf("row %2d  %-32s  %s\n", each.member.row, each.member.installedName.c_str(),
                each.what.c_str());
  }
  const std::size_t wrong = countOf(files, State::Wrong);
  std::printf(
      "%s: %zu of %zu files are right, %zu patched, %zu absent, %zu not looked at, %zu wrong\n",
      folders.directory.c_str(), countOf(files, State::Right), files.size(),
      countOf(files, State::Patched), countOf(files, State::Absent),
      countOf(files, State::NotLookedAt), wrong);
  return wrong == 0 ? 0 : failed;
}

}  // namespace

/// Without a list an installed product is held against the package, which then has to be right
/// itself.
int verify(const Verification& wanted) {
  std::optional<Digests> expected;
  if (wanted.against) expected = readDigests(*wanted.against);
  int status = 0;
  if (wanted.package) {
    const PackageFile package(*wanted.package);
    status = verifyPackage(*wanted.package, package, wanted.stored, expected);
    if (wanted.installed && !expected) {
      requireRight(*wanted.package, package, wanted.stored, "nothing can be held against it");
      expected = digestsOf(package);
    }
  }
  if (!wanted.installed) return status;
  return std::max(status, verifyInstalled(*wanted.installed, expected.value()));
}

// ---- extract

namespace {

/// What can be known before anything is laid: no file may be the package itself, and each can be
/// written.
void checkTarget(const fs::path& package, const fs::path& file) {
  std::error_code ignored;
  if (fs::equivalent(package, file, ignored)) {
    throw ToolError(file.string() + " is the package itself, and would be replaced");
  }
  requireWritable(file);
}

fs::path laidAs(const fs::path& folder, const Member& member, bool packed) {
  return folder / (packed ? member.packedName : member.installedName);
}

/// True if nothing is wrong with the package; a person who forces it is told.
bool check(const fs::path& path, const PackageFile& package, Stored stored, Force force) {
  if (force == Force::No) {
    requireRight(path, package, stored,
                 "nothing was written; --force takes out what is there all the same");
  }
  const PackageTrouble trouble = troubleOf(package, stored);
  std::fputs(trouble.text().c_str(), stdout);
  return !trouble.any();
}

}  // namespace

/// All that could refuse a file is asked before the first is written.
int extract(const fs::path& path, const fs::path& folder, bool packed, Stored stored, Force force) {
  const PackageFile package(path);
  const bool right = check(path, package, stored, force);
  const std::vector<Member> all = members();
  for (const Member& member : all) checkTarget(path, laidAs(folder, member, packed));
  makeFolder(folder);
  Progress progress("Extracting", all.size());
  std::size_t laid = 0;
  for (const Member& member : all) {
    progress.step(member.packedName);
    const Expanded content = contentOf(package, member, packed);
    if (!content.trouble.empty()) continue;
    writeFile(laidAs(folder, member, packed), content.bytes);
    ++laid;
  }
  std::printf("%s: %zu of %zu members extracted\n", folder.c_str(), laid, all.size());
  return right ? 0 : failed;
}

// ---- single files, and the sample

int compress(const fs::path& in, const fs::path& out) {
  const std::string name = in.filename().string();
  const Bytes packed = compressed(in, static_cast<std::uint8_t>(name.empty() ? 0 : name.back()));
  writeFile(out, packed);
  std::printf("%s: %zu bytes from %ju\n", out.c_str(), packed.size(),
              static_cast<std::uintmax_t>(declaredLength(packed)));
  return 0;
}

int expand(const fs::path& in, const fs::path& out) {
  const Bytes packed = readFile(in);
  const Expanded content = expandMember(packed);
  if (!content.trouble.empty()) throw ToolError(in.string() + ": " + content.trouble);
  writeFile(out, content.bytes);
  std::printf("%s: %zu bytes from %zu\n", out.c_str(), content.bytes.size(), packed.size());
  return 0;
}

/// Made side by side, written one after the other, out of memory.
int sample(const fs::path& folder) {
  makeFolder(folder);
  const SampleProduct product(sampleRows());
  Progress progress("Making", product.count());
  std::vector<SampleFile> files(product.count());
  inParallel(product.count(), [&](std::size_t index) {
    progress.step(product.row(index).installedName);
    files[index] = product.make(index);
  });
  std::size_t total = 0;
  for (const SampleFile& file : files) {
    writeFile(folder / file.installedName, file.bytes);
    total += file.bytes.size();
  }
  std::printf("%s: %zu files, %zu bytes\n", folder.c_str(), product.count(), total);
  return 0;
}

}  // namespace zev::packing
