#include "localisation/catalogue.h"
#include "runtime/error.h"
#include "state/languages.h"
#include "state/product.h"
#include "system/attributes.h"
#include "system/get_os.h"
#include "system/product_settings.h"
#include "system/user_folders.h"
#include "wizard/running_product.h"
#include "wizard/wizard.h"

namespace zev {
namespace {

constexpr std::size_t startPathSize = 145;
constexpr TextView mainExecutable = u"Screen Recorder 6";
constexpr std::int32_t noLanguage = -1;

// ---- the install directory that is proposed

/// That of a machine without the product: under "Program Files" on the drive of the Windows
/// directory.
Text defaultDirectory(const Globals& globals) {
  return join(left(trim(globals.gWinDir), 2), defaultFolder());
}

/// The directory of the last install; the default where none is on record.
Text recordedDirectory(const Globals& globals, Registry& registry) {
  return registry.GetRegString(HKEY_LOCAL_MACHINE, settingsKey, setting::Dizin,
                               defaultDirectory(globals), normalChoice);
}

/// The directory on record counts if the product's key is listed, and if it still exists.
void proposeByRegistry(Program& program, Registry& registry) {
  Globals& globals = program.globals;
  const KeyList keys = registry.EnumRegKeys(HKEY_LOCAL_MACHINE, makerKey);
  if (std::holds_alternative<std::int32_t>(keys)) {
    const std::int32_t code = std::get<std::int32_t>(keys);
    if (code == -1 || code == -2) globals.gInstallDir = defaultDirectory(globals);
    return;
  }
  if (!lists(keys, productKey)) return;
  globals.gInstallDir = recordedDirectory(globals, registry);
  if (!folderExists(program.platform.files, globals.gInstallDir.trimmed())) {
    globals.gInstallDir = defaultDirectory(globals);
  }
}

/// The directory on record can only be read where the folder of the value files exists.
void proposeByProfile(Program& program, Registry& registry) {
  Globals& globals = program.globals;
  Files& files = program.platform.files;
  const bool readable =
      folderExists(files, globals.gUserData) || folderExists(files, globals.gUserDataAlt);
  globals.gInstallDir = readable ? recordedDirectory(globals, registry) : defaultDirectory(globals);
}

/// Puts that of the last install into `gInstallDir`, as far as the machine has one on record, else
/// the default.
void proposeInstallDirectory(Program& program, Registry& registry) {
  Globals& globals = program.globals;
  if (globals.gOSClass == profileClass) {
    proposeByProfile(program, registry);
  } else {
    proposeByRegistry(program, registry);
  }
  if (globals.gInstallDir.neverSet() || globals.gInstallDir.trimmed().empty()) {
    globals.gInstallDir = defaultDirectory(globals);
  }
}

}  // namespace

/// The outermost trap of the load: it knows by the stage how far that came.
void Wizard::Form_Load() {
  std::int32_t stage = 0;
  try {
    loadForm(stage);
  } catch (const RuntimeError& error) {
    tellLoadFailure(stage, error);
  }
}

/// The stage numbers are printed by the trap. It never prints 21, since loading the phrases cannot
/// fail, nor 25, since the scan ignores its errors (and so has no use for numbers within).
void Wizard::loadForm(std::int32_t& stage) {
  const auto setStage = [&stage](std::int32_t number) { stage = number; };
  stage = 1;
  findTemporaryFolder();
  stage = 2;
  findWindowsFolder();
  globals_.gProductExe = mainExecutable;
  stage = 3;
  classifyMachine();
  if (globals_.gOSClass == profileClass) {
    UserFolderChain(program_, phrases_, setStage).run();
  }
  stage = 20;
  const bool firstRun = !readLanguage();
  phrases_.dimension(0);
  stage = 21;
  phrases_.LoadPhrases();
  stage = 22;
  form1_.Text1.Text_ = phrases_.PhraseKeys().at(phrase_row::agreement);
  stage = 23;
  proposeInstallDirectory(program_, registry_);
  if (!RunningProduct(program_, phrases_, setStage).waitUntilClosed()) {
    ignoringErrors([&] { form1_.Command2.Caption = Translate(u"Finish"); });
    ignoringErrors([&] { platform_.application.Unload(form1_); });
    return;
  }
  stage = 28;
  if (firstRun) globals_.gLanguage = firstLanguage(platform_.system);
  stage = 29;
  selectLanguage();
  stage = 30;
  globals_.gCurrentPage = 1;
  form1_.Image1.Picture = form1_.Icon.get();
  showInstallDirectory();
}

/// Kept without the backslash that the system gives it. Where the system has none it is empty.
void Wizard::findTemporaryFolder() {
  Text buffer = blanks(startPathSize);
  const std::uint32_t length =
      platform_.system.GetTempPathA(static_cast<std::uint32_t>(startPathSize), buffer);
  globals_.gTempDir = left(buffer, static_cast<std::int32_t>(length));
  globals_.gTempDir = withoutTrailing(globals_.gTempDir.trimmed(), u'\\');
}

void Wizard::findWindowsFolder() {
  Text buffer = blanks(startPathSize);
  const std::uint32_t length =
      platform_.system.GetWindowsDirectoryA(buffer, static_cast<std::uint32_t>(startPathSize));
  globals_.gWinDir = withoutTrailing(trim(left(buffer, static_cast<std::int32_t>(length))), u'\\');
}

/// On NT 6.2 the options of the install begin with values of their own, and the button that opens
/// them appears.
void Wizard::classifyMachine() {
  globals_.gOSClass = GetOSClass(platform_.system, globals_.gVersionNT62);
  if (globals_.gVersionNT62 != 1) return;
  globals_.gOptRedist = 0;
  globals_.gOptStartMenu = 1;
  globals_.gOptDesktop = 1;
  form1_.Command6.Visible = true;
}

/// False on a first run, when the machine has no language on record.
bool Wizard::readLanguage() {
  globals_.gLanguage = registry_.GetRegDword(HKEY_LOCAL_MACHINE, settingsKey, setting::Language,
                                             noLanguage, normalChoice);
  if (globals_.gLanguage != noLanguage) return true;
  globals_.gLanguage = language::English;
  return false;
}

/// Choosing a place fires the list's click, which localises the form. A number without a place
/// leaves the form as it is.
void Wizard::selectLanguage() {
  if (const auto place = listPlaceOf(globals_.gLanguage)) form1_.Combo1.setListIndex(*place);
}

/// The caret goes to the end of the text, where a person would go on typing.
void Wizard::showInstallDirectory() {
  form1_.Text2.Text_ = installDirectory();
  form1_.Text2.SelStart = len(trim(form1_.Text2.Text_.get()));
}

/// The form is shown all the same, with Next disabled: what is left is to cancel.
void Wizard::tellLoadFailure(std::int32_t stage, const RuntimeError& error) {
  platform_.dialogs.MsgBox(
      join(u"Error occured during loading the installer. Error No.", decimal(stage), u"-",
           decimal(error.number()), u": ", error.description()),
      box_style::exclamation, u"ZEV Screen Recorder");
  platform_.application.Show(form1_);
  form1_.Command2.Enabled = false;
}

}  // namespace zev
