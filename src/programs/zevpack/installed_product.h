#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "programs/zevpack/digests.h"

namespace zev::packing {

/// The folders that a product was laid into, as the host has them.
struct InstalledFolders {
  std::filesystem::path directory;                ///< the install directory
  std::optional<std::filesystem::path> system;    ///< of the seven libraries
  std::optional<std::filesystem::path> projects;  ///< of the sample project; "Projects" in the
                                                  ///< install directory if that is there
};

/// What became of one file of the product.
struct LaidFile {
  enum class State {
    Right,
    Patched,      ///< right but for what a run writes into it
    Absent,       ///< not there, which is right: not every machine gets it, or keeps it
    NotLookedAt,  ///< nobody has named its folder
    Wrong,
  };
  Member member;
  State state = State::Wrong;
  std::string what;  ///< for a person; empty if it is right
};

/// Holds what was laid against what it has to be, in the order of the manifest. ToolError if a
/// folder cannot be listed.
std::vector<LaidFile> holdInstalled(const InstalledFolders& folders, const Digests& digests);

}  // namespace zev::packing
