#include "destination/validate_destination.h"
#include "localisation/localise_form.h"
#include "state/product.h"
#include "wizard/wizard.h"

namespace zev {
namespace {

constexpr std::uint8_t welcomePage = 1;
constexpr std::uint8_t agreementPage = 2;
constexpr std::uint8_t missingPage = 3;
constexpr std::uint8_t directoryPage = 4;
constexpr std::uint8_t runPage = 5;

constexpr int welcomeFrame = 1;
constexpr int agreementFrame = 2;
constexpr int directoryFrame = 3;
constexpr int runFrame = 4;

constexpr std::int32_t productFolderLength = 25;
constexpr std::uint8_t iconClicksForSwitch = 5;

}  // namespace

/// Each event is led to the procedure that has its name.
Wizard::Wizard(Program& program, Phrases& phrases, Registry& registry)
    : program_(program),
      globals_(program.globals),
      form1_(program.form1),
      platform_(program.platform),
      phrases_(phrases),
      registry_(registry) {
  form1_.Initialize = [this] { form1_.WS.formLoaded(); };
  form1_.Terminate = [this] { form1_.WS.formUnloaded(); };
  form1_.Load = [this] { Form_Load(); };
  form1_.Unload = [this](std::int16_t& Cancel) { Form_Unload(Cancel); };
  platform_.application.SessionEnds = [this] { endWithSession(); };
  form1_.Command1.Click = [this] { Command1_Click(); };
  form1_.Command2.Click = [this] { Command2_Click(); };
  form1_.Command3.Click = [this] { Command3_Click(); };
  form1_.Command4.Click = [this] { Command4_Click(); };
  form1_.Command6.Click = [this] { Command6_Click(); };
  form1_.Combo1.Click = [this] { Combo1_Click(); };
  form1_.Image1.Click = [this] { Image1_Click(); };
  form1_.Option1.Click = [this] { Option1_Click(); };
  form1_.Option2.Click = [this] { Option2_Click(); };
  form1_.Text2.LostFocus = [this] { Text2_LostFocus(); };
}

bool Wizard::readsFinish() { return form1_.Command2.Caption.get() == Translate(u"Finish"); }

// ---- pages

/// Shows the page of `gCurrentPage`, which on the last one is the run itself. A number without a
/// page shows none.
void Wizard::sayfagoster() {
  for (int frame = welcomeFrame; frame <= runFrame; ++frame) form1_.Frame1(frame).Visible = false;
  switch (globals_.gCurrentPage) {
    case welcomePage:
      return showWelcomePage();
    case agreementPage:
      return showAgreementPage();
    case directoryPage:
      return showDirectoryPage();
    case runPage:
      return startRun();
    default:
      return;
  }
}

void Wizard::showWelcomePage() {
  form1_.Command2.Enabled = true;
  form1_.Frame1(welcomeFrame).Visible = true;
}

/// The page asks for the agreement anew each time.
void Wizard::showAgreementPage() {
  form1_.Option1.Value = false;
  form1_.Option2.Value = false;
  form1_.Command2.Enabled = false;
  form1_.Frame1(agreementFrame).Visible = true;
  form1_.Command2.Caption = Translate(u"Next >>");
}

/// The product's folder is added before the directory is shown, so that the person sees where
/// everything goes.
void Wizard::showDirectoryPage() {
  DizinGuncelle();
  form1_.Text2.Text_ = installDirectory();
  form1_.Command2.Enabled = true;
  form1_.Frame1(directoryFrame).Visible = true;
  form1_.Command2.Caption = Translate(u"Install");
}

/// The path's page stays in sight while the directory is checked, since that can ask; a refused one
/// leads back there.
void Wizard::startRun() {
  form1_.Frame1(directoryFrame).Visible = true;
  globals_.gInstallDir = withoutTrailing(installDirectory(), u'\\');
  form1_.Text2.Text_ = installDirectory();
  std::int16_t ok = 0;
  DestinationCheck(program_, phrases_, registry_, *this).ValidateDestination(ok);
  form1_.Frame1(directoryFrame).Visible = false;
  if (ok == 0) {
    globals_.gCurrentPage = directoryPage;
    sayfagoster();
    return;
  }
  form1_.Frame1(runFrame).Visible = true;
  form1_.Command6.Visible = false;
  InstallRun(program_, phrases_, registry_, *this).RunInstall();
}

/// A directory that does not end in the product's own folder gets it.
void Wizard::DizinGuncelle() {
  globals_.gInstallDir = withoutTrailing(installDirectory(), u'\\');
  const Text directory = installDirectory();
  const Text ending = lowerCase(right(directory, productFolderLength));
  if (inStrText(ending, u"screen recorder") == 0) {
    globals_.gInstallDir = join(directory, u"\\", productFolder);
  }
}

// ---- buttons

/// One page back; the number that has no page is passed over.
void Wizard::Command1_Click() {
  if (globals_.gCurrentPage != welcomePage) {
    --globals_.gCurrentPage;
    if (globals_.gCurrentPage == missingPage) globals_.gCurrentPage = agreementPage;
    sayfagoster();
  }
  if (globals_.gCurrentPage == welcomePage) form1_.Command1.Enabled = false;
}

/// Next, Install and Finish are one button, told apart by caption and page.
void Wizard::Command2_Click() {
  if (readsFinish()) {
    platform_.application.Unload(form1_);
    return;
  }
  if (globals_.gCurrentPage != runPage) {
    ++globals_.gCurrentPage;
    if (globals_.gCurrentPage == missingPage) globals_.gCurrentPage = directoryPage;
    sayfagoster();
  }
  if (!readsFinish() && globals_.gCurrentPage > welcomePage) form1_.Command1.Enabled = true;
}

void Wizard::Command3_Click() { platform_.application.Unload(form1_); }

/// The folder browser gives the form back when it closes; one that cannot open never will.
void Wizard::Command4_Click() {
  form1_.Enabled = false;
  try {
    platform_.application.Show(program_.form3);
  } catch (const RuntimeError&) {
    form1_.Enabled = true;
    throw;
  }
}

/// The options show the form again when they close.
void Wizard::Command6_Click() {
  platform_.application.Hide(form1_);
  platform_.application.Show(program_.form2);
}

void Wizard::Option1_Click() { form1_.Command2.Enabled = true; }

void Wizard::Option2_Click() { form1_.Command2.Enabled = false; }

/// Only English texts can be translated, so a form in another language goes back to English first.
void Wizard::Combo1_Click() {
  const bool showsEnglish = globals_.gLanguage == 0 || globals_.gLanguage == -1;
  if (!showsEnglish) RestoreEnglishTexts(form1_, phrases_);
  globals_.gLanguage = languageOfEntry(form1_.Combo1.text());
  if (!showsEnglish) phrases_.LoadPhrases();
  Translate(Phrases::HafizaTemizle);
  LocaliseForm(form1_, phrases_, globals_.gLanguage);
  form1_.Caption = Translate(form1_.Caption.get());
}

/// The sixth click on the icon switches the redistributable off.
void Wizard::Image1_Click() {
  ++iconClicks_;
  if (iconClicks_ <= iconClicksForSwitch) return;
  form1_.Image1.Tag = u"1";
  platform_.dialogs.MsgBox(Translate(u"Will not install Microsoft Visual C++ 2005 Redistributable"),
                           box_style::information, Translate(u"Install"));
  iconClicks_ = 0;
}

void Wizard::Text2_LostFocus() { globals_.gInstallDir = trim(form1_.Text2.Text_.get()); }

}  // namespace zev
