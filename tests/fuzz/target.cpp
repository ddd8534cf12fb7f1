#include "fuzz/target.h"

#include <iterator>
#include <ostream>

namespace zev::fuzz {
namespace {

// clang-format off
constexpr Target rows[] = {
    {"package_end", tryPackageEnd, 1024, 2000},
    {"extraction", tryExtraction, 512, 40},
    {"expansion", tryExpansion, 4096, 1000},
    {"expansion_with_faults", tryExpansionWithFaults, 4096, 1000},
    {"value_file", tryValueFile, 256, 100},
    {"project", tryProject, 1200, 40},
    {"registry_text", tryRegistryText, 512, 300},
    {"scenario", tryScenario, 2048, 300},
    {"destination", tryDestination, 128, 20},
    {"shortcut", tryShortcut, 512, 500},
    {"host_record", tryHostRecord, 256, 2000},
    {"byte_stream", tryByteStream, 1024, 1000},
    {"wizard", tryWizard, 128, 12},
};
// clang-format on

}  // namespace

void PrintTo(const Target& target, std::ostream* out) { *out << target.name; }

std::span<const Target> targets() { return rows; }

const Target& target(std::string_view name) {
  for (const Target& each : rows) {
    if (each.name == name) return each;
  }
  throw std::out_of_range("no target " + std::string(name));
}

}  // namespace zev::fuzz
