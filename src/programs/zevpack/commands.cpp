#include "programs/zevpack/commands.h"

#include <cinttypes>
#include <cstdio>

#include "lz/compressor.h"
#include "programs/zevpack/member_check.h"
#include "programs/zevpack/package_builder.h"
#include "programs/zevpack/progress.h"
#include "sample/sample_product.h"

namespace zev::packing {
namespace {

namespace fs = std::filesystem;

constexpr int failed = 1;

std::string missing(const Member& member, const PackageFile& package) {
  const std::size_t needed = member.tailOffset + member.size;
  return "begins in front of the file: it needs " + std::to_string(needed) +
         " bytes to the end, the file has " + std::to_string(package.length());
}

void printTrouble(const Member& member, const std::string& trouble) {
  std::printf("row %2d  %-32s  %s\n", member.row, member.packedName.c_str(), trouble.c_str());
}

std::string troubleOf(const PackageFile& package, const Member& member, bool plainOk) {
  if (!package.offsetOf(member)) return missing(member, package);
  return checkMember(package.stored(member), nameByte(member), plainOk);
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
  if (!package.offsetOf(member)) return {{}, missing(member, package)};
  const auto stored = package.stored(member);
  if (packed) return {Bytes(stored.begin(), stored.end()), {}};
  return expandMember(stored);
}

}  // namespace

int build(const fs::path& image, const fs::path& folder, const fs::path& output) {
  buildPackage(image, folder, output);
  std::printf("%s: %ju bytes, 56 members, %d bytes behind the image\n", output.c_str(),
              static_cast<std::uintmax_t>(fs::file_size(output)), packageSize);
  return 0;
}

int list(const fs::path& path) {
  const PackageFile package(path);
  int status = 0;
  std::printf("%3s  %-32s  %10s  %10s  %10s  %10s\n", "row", "packed name", "offset", "to end",
              "packed", "expanded");
  for (const Member& member : members()) {
    const auto offset = package.offsetOf(member);
    if (!offset) {
      printTrouble(member, missing(member, package));
      status = failed;
      continue;
    }
    const auto stored = package.stored(member);
    std::printf("%3d  %-32s  %10zu  %10zu  %10zu  %10zu%s\n", member.row, member.packedName.c_str(),
                *offset, member.tailOffset, member.size, declaredLength(stored),
                isPacked(stored) ? "" : "  no header");
  }
  return status;
}

int verify(const fs::path& path, bool plainOk) {
  const PackageFile package(path);
  const std::vector<Member> all = members();
  std::size_t wrong = 0;
  for (const Member& member : all) {
    const std::string trouble = troubleOf(package, member, plainOk);
    if (trouble.empty()) continue;
    printTrouble(member, trouble);
    ++wrong;
  }
  std::printf("%s: %zu of %zu members are right\n", path.c_str(), all.size() - wrong, all.size());
  return wrong == 0 ? 0 : failed;
}

int extract(const fs::path& path, const fs::path& folder, bool packed) {
  const PackageFile package(path);
  makeFolder(folder);
  const std::vector<Member> all = members();
  Progress progress("Extracting", all.size());
  std::size_t laid = 0;
  for (const Member& member : all) {
    progress.step(member.packedName);
    const Expanded content = contentOf(package, member, packed);
    if (!content.trouble.empty()) {
      printTrouble(member, content.trouble);
      continue;
    }
    writeFile(folder / (packed ? member.packedName : member.installedName), content.bytes);
    ++laid;
  }
  std::printf("%s: %zu of %zu members extracted\n", folder.c_str(), laid, all.size());
  return laid == all.size() ? 0 : failed;
}

int compress(const fs::path& in, const fs::path& out) {
  const Bytes plain = readFile(in);
  const std::string name = in.filename().string();
  const Bytes packed = lz::compress(plain, static_cast<std::uint8_t>(name.back()));
  writeFile(out, packed);
  std::printf("%s: %zu bytes from %zu\n", out.c_str(), packed.size(), plain.size());
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

int sample(const fs::path& folder) {
  makeFolder(folder);
  const SampleProduct product(sampleRows());
  Progress progress("Making", product.count());
  std::size_t total = 0;
  for (std::size_t index = 0; index < product.count(); ++index) {
    progress.step(product.row(index).installedName);
    const SampleFile file = product.make(index);
    writeFile(folder / file.installedName, file.bytes);
    total += file.bytes.size();
  }
  std::printf("%s: %zu files, %zu bytes\n", folder.c_str(), product.count(), total);
  return 0;
}

}  // namespace zev::packing
