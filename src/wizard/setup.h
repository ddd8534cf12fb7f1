#pragma once

#include <vector>

#include "destination/folder_browser.h"
#include "localisation/phrases.h"
#include "state/program.h"
#include "system/registry.h"
#include "wizard/wizard.h"

namespace zev {

/// The setup program on one machine, whole: as many as there are machines can live side by side.
class Setup {
 public:
  /// Borrows the services of the machine, which outlive it.
  explicit Setup(Platform& platform);

  /// The entry procedure: shows the wizard. To be run by Application::run.
  void start();

  Globals& globals() { return program_.globals; }
  Form1& form1() { return program_.form1; }
  Program& program() { return program_; }
  Phrases& phrases() { return phrases_; }
  Registry& registry() { return registry_; }
  /// All forms, loaded or not.
  std::vector<Form*> forms() { return {&program_.form1, &program_.form2, &program_.form3}; }

 private:
  Program program_;
  Phrases phrases_;
  Registry registry_;
  Wizard wizard_;
  InstallOptions options_;
  FolderBrowser browser_;
};

}  // namespace zev
