#include "runtime/error.h"
#include "state/product.h"
#include "wizard/wizard.h"

namespace zev {
namespace {

constexpr std::int16_t keepOpen = -1;
constexpr std::int32_t boxChecked = 1;

}  // namespace

/// Every way out passes here. The button's caption tells the orderly end from a cancel.
void Wizard::Form_Unload(std::int16_t& Cancel) {
  if (readsFinish()) {
    closeOrderly();
    return;
  }
  if (!cancelConfirmed()) {
    Cancel = keepOpen;
    return;
  }
  showStatus(u"Deleting temporary files...");
  RemoveTempFiles();
  platform_.application.Unload(program_.form3);
  unloadSockets();
}

/// The end of the session is a cancel that nobody is asked about, unless the run is over.
void Wizard::endWithSession() {
  if (!readsFinish()) RemoveTempFiles();
}

/// Element 0 goes with the form.
void Wizard::unloadSockets() {
  SocketArray& sockets = form1_.WS;
  if (sockets.UBound() >= 2) sockets.Unload(2);
  if (sockets.UBound() >= 1) sockets.Unload(1);
}

void Wizard::closeOrderly() {
  if (form1_.Check1.Value == boxChecked) ignoringErrors([&] { launchProduct(); });
  ignoringErrors([&] { program_.DoEvents(); });
  ignoringErrors([&] { platform_.application.Unload(program_.form3); });
  ignoringErrors([&] { program_.DoEvents(); });
}

void Wizard::launchProduct() {
  platform_.processes.Shell(join(u"\"", mainProgram(globals_), u"\""), normalWindow);
}

bool Wizard::cancelConfirmed() {
  return platform_.dialogs.MsgBox(Translate(u"Do you want to cancel the installation?"),
                                  box_style::systemYesNoDefaultNo,
                                  Translate(u"Screen Recorder")) != BoxAnswer::No;
}

/// A folder that still holds something stays behind without a word. What is no folder of the run's
/// own is left alone: a link, which leads to somebody's files, and the folder of another wizard
/// that is running.
void Wizard::RemoveTempFiles() {
  ignoringErrors([&] { showStatus(u"Temporary files are being deleted..."); });
  const Text folder = join(globals_.gTempDir.trimmed(), u"\\ZEVTMP");
  program_.workFile.release();
  program_.temporaryFolder.release();
  const Hold emptied = platform_.holds.hold(folder, Holding::ToEmpty);
  if (emptied.refused()) return;
  ignoringErrors([&] { platform_.files.Kill(join(folder, u"\\*.*")); });
  ignoringErrors([&] { platform_.files.RmDir(folder); });
}

void Wizard::showStatus(TextView phrase) {
  form1_.Label11.Caption = Translate(phrase);
  form1_.Label11.Refresh();
}

}  // namespace zev
