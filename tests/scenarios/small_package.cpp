#include "scenarios/small_package.h"

#include <cstdint>
#include <stdexcept>
#include <vector>

#include "lz/encoder.h"
#include "package/manifest.h"

namespace zev {
namespace {

constexpr std::size_t smallImageSize = 1000;
constexpr std::size_t usualLength = 150;
/// The sample project has room for the path of its video.
constexpr int sampleProject = 29;
constexpr std::size_t projectLength = 600;

std::vector<std::uint8_t> packed(const ManifestRow& row) {
  const std::string plain = smallMember(row.row);
  std::vector<std::uint8_t> bytes =
      lz::compress({reinterpret_cast<const std::uint8_t*>(plain.data()), plain.size()}, 'x');
  if (bytes.size() > static_cast<std::size_t>(row.size)) throw std::length_error("a member");
  return bytes;
}

/// A member's bytes, and where they stand in the package.
struct Placed {
  std::uint64_t offset;
  std::vector<std::uint8_t> bytes;
};

constexpr std::uint64_t packageLength = smallImageSize + packageSize;

/// The members, in descending order behind the image; all else is zeros.
std::vector<Placed> placedMembers() {
  std::vector<Placed> members;
  for (std::size_t slot = 0; slot < manifest().size(); ++slot) {
    const ManifestRow& row = manifest()[slot];
    if (row.row == 0) continue;
    const auto behind = static_cast<std::uint64_t>(tailOffset(slot) + row.size);
    members.push_back({packageLength - behind, packed(row)});
  }
  return members;
}

}  // namespace

std::string smallMember(int row) {
  const std::string line = "member " + std::to_string(row) + " of the package\r\n";
  const std::size_t length = row == sampleProject ? projectLength : usualLength;
  std::string text;
  while (text.size() < length) text += line;
  return text;
}

void laySmallPackage(simulated::SimulatedMachine& machine) {
  static const std::vector<Placed> members = placedMembers();
  const Text& path = machine.settings().installer;
  machine.disks().put(path, {.content = simulated::ZeroBytes{packageLength}});
  simulated::Path place;
  simulated::parsePath(path, {}, place);
  const auto package = machine.disks().at(place.drive)->volume->open(place);
  for (const Placed& each : members) package->write(each.offset, each.bytes);
}

}  // namespace zev
