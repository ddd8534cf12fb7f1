// ZEVSetup.exe: the wizard on the Windows that it runs on.

#include <cstdlib>
#include <exception>

#include "win32/dialogs.h"
#include "win32/form_engine.h"
#include "win32/machine.h"
#include "win32/windows_api.h"
#include "wizard/setup.h"

namespace zev {
namespace {

/// A run-time error that met no trap ends the program, after the words that the run-time has for
/// it.
void tellError(Dialogs& dialogs, const RuntimeError& error) {
  dialogs.MsgBox(join(u"Run-time error '", decimal(error.number()), u"':", lineEnd, lineEnd,
                      error.description()),
                 box_style::exclamation, dialogs.defaultTitle());
}

void runSetup() {
  win32::Win32FormEngine engine;
  Application application(engine);
  engine.serve(application);
  win32::Win32Dialogs dialogs(engine);
  win32::Machine machine;
  Platform platform = machine.platform(application, dialogs);
  Setup setup(platform);
  try {
    application.run([&] { setup.start(); });
  } catch (const ProgramEnd&) {
    return;
  } catch (const UnhandledError& unhandled) {
    tellError(dialogs, unhandled.error);
  }
}

}  // namespace
}  // namespace zev

// What an exception that nobody caught comes to. The library's own one would bring 46 KB that spell
// its type's name on a console, which this program does not have.
void __gnu_cxx::__verbose_terminate_handler() { std::abort(); }

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  zev::win32::harden();
  zev::runSetup();
  return 0;
}
