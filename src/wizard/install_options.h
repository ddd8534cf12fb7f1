#pragma once

#include "localisation/phrases.h"
#include "state/program.h"

namespace zev {

/// The event procedures of the options dialog. It has no cancel: however it is closed, the boxes
/// count as they stand.
class InstallOptions {
 public:
  /// Hangs the procedures on the form of the program. Borrows both; they outlive this.
  InstallOptions(Program& program, Phrases& phrases);

 private:
  void Form_Load();
  void Form_Unload();
  void Command1_Click();

  Program& program_;
  Globals& globals_;
  Form2& form2_;
  Phrases& phrases_;
};

}  // namespace zev
