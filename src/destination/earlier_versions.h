#pragma once

#include <array>
#include <cstdint>

#include "localisation/phrases.h"
#include "state/program.h"
#include "system/registry.h"

namespace zev {

/// Keeps the new version out of the folders of the three older generations.
class EarlierVersions {
 public:
  /// Borrows all of them.
  EarlierVersions(Program& program, Phrases& phrases, Registry& registry, Form1Procedures& form)
      : program_(program), phrases_(phrases), registry_(registry), form_(form) {}

  /// `ok` becomes -1 if the install directory is none of those folders, letter by letter; else 0.
  /// Version 4 on record leads to the folder browser, an older one to the offer of its uninstaller,
  /// both by what is on record and not by whose folder the directory is. Errors reach the caller.
  void CheckEarlierVersions(std::int16_t& ok);

 private:
  static constexpr std::size_t generationCount = 3;

  void readDirectories();
  bool destinationIsTaken() const;
  void refuseForVersion4();
  void offerUninstall();
  void startUninstaller();

  Program& program_;
  Phrases& phrases_;
  Registry& registry_;
  Form1Procedures& form_;
  std::array<Text, generationCount> directories_;  ///< oldest first; empty: none, or gone
};

}  // namespace zev
