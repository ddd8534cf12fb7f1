#include "wizard/wizard.h"

#include "localisation/localise_form.h"

namespace zev {

InstallOptions::InstallOptions(Program& program, Phrases& phrases)
    : program_(program), globals_(program.globals), form2_(program.form2), phrases_(phrases) {
  form2_.Load = [this] { Form_Load(); };
  form2_.Unload = [this](std::int16_t&) { Form_Unload(); };
  form2_.Command1.Click = [this] { Command1_Click(); };
}

void InstallOptions::Form_Load() {
  LocaliseForm(form2_, phrases_, globals_.gLanguage);
  form2_.Caption = phrases_.Translate(form2_.Caption.get());
  form2_.Check1.Value = globals_.gOptRedist;
  form2_.Check2.Value = globals_.gOptStartMenu;
  form2_.Check3.Value = globals_.gOptDesktop;
}

void InstallOptions::Command1_Click() { program_.platform.application.Unload(form2_); }

void InstallOptions::Form_Unload() {
  globals_.gOptRedist = static_cast<std::uint8_t>(form2_.Check1.Value.get());
  globals_.gOptStartMenu = static_cast<std::uint8_t>(form2_.Check2.Value.get());
  globals_.gOptDesktop = static_cast<std::uint8_t>(form2_.Check3.Value.get());
  program_.platform.application.Show(program_.form1);
}

}  // namespace zev
