#pragma once

#include <cstdint>
#include <vector>

#include "localisation/phrases.h"
#include "state/program.h"
#include "system/product_settings.h"

namespace zev {

/// Lays the product's settings into every other profile of a machine of `profileClass`. A profile
/// that cannot be written to is passed over without a word; none stops the walk. The setup has more
/// rights than the users whose folders it writes to, so a profile with a link where the setup would
/// write is passed over likewise, and its folders are held meanwhile.
class UserRegistration {
 public:
  /// Borrows all of them. The report gets the status line of each profile.
  UserRegistration(Program& program, Phrases& phrases, Registry& registry, RunReport& report)
      : program_(program),
        globals_(program.globals),
        files_(program.platform.files),
        holds_(program.platform.holds),
        phrases_(phrases),
        report_(report),
        settings_(registry, ProductSettings::Errors::Ignored) {}

  /// `result` becomes -1 if there was nothing to walk, else 0. `gUserData` and `gUserDataAlt` are
  /// borrowed for the walk and put back. Errors before the first profile reach the caller.
  void RegisterUsers(std::int16_t& result);

 private:
  Text baseFolder();
  std::vector<Text> entriesOf(TextView folder);
  void serve(TextView base, TextView name);
  bool readyFolders(std::vector<Hold>& way, TextView local);
  bool keep(std::vector<Hold>& way, TextView path);
  bool noLinksAmong(TextView folder);
  bool writable(TextView folder);
  void makeFolder(TextView folder);
  bool exists(TextView path);
  void clearAttributes(TextView path);
  void writeSettings();

  Program& program_;
  Globals& globals_;
  Files& files_;
  Holds& holds_;
  Phrases& phrases_;
  RunReport& report_;
  ProductSettings settings_;
};

}  // namespace zev
