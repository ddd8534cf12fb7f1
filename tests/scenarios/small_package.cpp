#include "scenarios/small_package.h"

#include <algorithm>
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

/// The package: members in descending order behind the image.
std::vector<std::uint8_t> madePackage() {
  std::vector<std::uint8_t> bytes(smallImageSize + packageSize);
  for (std::size_t slot = 0; slot < manifest().size(); ++slot) {
    const ManifestRow& row = manifest()[slot];
    if (row.row == 0) continue;
    const auto behind = static_cast<std::ptrdiff_t>(tailOffset(slot) + row.size);
    std::ranges::copy(packed(row), bytes.end() - behind);
  }
  return bytes;
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
  static const std::vector<std::uint8_t> package = madePackage();
  const Text& path = machine.settings().installer;
  machine.disks().put(path, {.content = simulated::ZeroBytes{0}});
  simulated::Path place;
  simulated::parsePath(path, {}, place);
  machine.disks().at(place.drive)->volume->open(place)->write(0, package);
}

}  // namespace zev
