#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "runtime/text.h"

namespace zev {

/// Where a member is laid.
enum class Target {
  None,      ///< the empty slot
  Install,   ///< the install directory
  System,    ///< the system directory
  Projects,  ///< the folder of the user's projects
};

/// Whether a member is laid on a machine, and what its failure means.
enum class Condition {
  Always,
  Mandatory,        ///< always; its failure ends the program
  OtherClasses,     ///< not on machines of `profileClass`
  ProfileClass,     ///< only on machines of `profileClass`
  ProjectsFolder,   ///< if the folder of the projects could be had
  Redistributable,  ///< unless it is switched off; it is run, waited for and deleted
};

/// What a failed extraction's box leaves in English.
enum class Plain { Nowhere, InTitle, InText };

/// One slot of the package, in the order of the run. A package has no directory: this table is the
/// only description of it, and a size that is wrong by one byte shifts every member after it.
struct ManifestRow {
  std::int32_t row = 0;      ///< 1 to 56; 0 for the empty slot
  TextView packedName = {};  ///< file name of the compressed member
  TextView installedName = {};
  Target target = Target::None;
  std::int32_t size = 0;         ///< bytes in the package
  std::int32_t tick = 0;         ///< of the progress display, shown before the member
  std::int32_t extractStep = 0;  ///< diagnostic step while it is copied out
  std::int32_t expandStep = 0;   ///< diagnostic step while it is expanded
  Condition condition = Condition::Always;
  TextView extractionText = {};  ///< of the failure's box, if it is not the usual one
  TextView expansionText = {};
  Plain plain = Plain::Nowhere;
};

inline constexpr std::size_t manifestSlots = 57;         ///< 56 members and one empty slot
inline constexpr std::int32_t packageSize = 15'246'584;  ///< bytes of all members together

/// The slots in the order of the run. In the package file they lie the other way round: the first
/// one ends at the file's last byte.
std::span<const ManifestRow, manifestSlots> manifest();

/// The text of the box for a member that could not be copied out, or not be expanded.
Text extractionFailure(const ManifestRow& row);
Text expansionFailure(const ManifestRow& row);

/// Bytes between the end of a slot and the end of the package file.
std::int32_t tailOffset(std::size_t slot);

}  // namespace zev
