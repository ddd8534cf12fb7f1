#pragma once

#include <cstdint>

#include "localisation/phrases.h"
#include "package/install_run.h"
#include "state/program.h"
#include "system/registry.h"

namespace zev {

/// The event procedures of the wizard's form (Form1), and the procedures that they share.
class Wizard final : public Form1Procedures {
 public:
  /// Hangs the procedures on the form of the program. Borrows all three; they outlive the wizard.
  Wizard(Program& program, Phrases& phrases, Registry& registry);

  void Command1_Click() override;
  void Command4_Click() override;
  void DizinGuncelle() override;
  void RemoveTempFiles() override;

 private:
  // Start-up. wizard_load.cpp
  void Form_Load();
  void loadForm(std::int32_t& stage);
  void findTemporaryFolder();
  void findWindowsFolder();
  void classifyMachine();
  bool readLanguage();
  void selectLanguage();
  void showInstallDirectory();
  void tellLoadFailure(std::int32_t stage, const RuntimeError& error);

  // Pages. wizard_pages.cpp
  void sayfagoster();
  void showWelcomePage();
  void showAgreementPage();
  void showDirectoryPage();
  void startRun();
  void Command2_Click();
  void Command3_Click();
  void Command6_Click();
  void Option1_Click();
  void Option2_Click();
  void Combo1_Click();
  void Image1_Click();
  void Text2_LostFocus();

  // The end. wizard_unload.cpp
  void Form_Unload(std::int16_t& Cancel);
  void closeOrderly();
  void launchProduct();
  bool cancelConfirmed();
  void endWithSession();
  void unloadSockets();
  void showStatus(TextView phrase);

  bool readsFinish();
  Text Translate(TextView phrase) { return phrases_.Translate(phrase); }
  Text installDirectory() const { return globals_.gInstallDir.trimmed(); }

  Program& program_;
  Globals& globals_;
  Form1& form1_;
  Platform& platform_;
  Phrases& phrases_;
  Registry& registry_;
  std::uint8_t iconClicks_ = 0;
};

/// The event procedures of the options dialog (Form2). It has no cancel: however it is closed, the
/// boxes count as they stand.
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
