// Shows the welcome page in a language by its number, the one included that the wizard does not
// offer: form_gallery.exe 1. Nothing is behind its buttons.

#include <cstdlib>

#include "localisation/localise_form.h"
#include "runtime/application.h"
#include "state/forms.h"
#include "state/globals.h"
#include "win32/form_engine.h"
#include "win32/windows_api.h"

int main(int argumentCount, char** arguments) {
  using namespace zev;
  std::int32_t gLanguage = argumentCount > 1 ? std::atoi(arguments[1]) : language::English;
  Phrases phrases(gLanguage);
  phrases.dimension(0);
  phrases.LoadPhrases();
  win32::Win32FormEngine engine;
  Application application(engine);
  engine.serve(application);
  Form1 form;
  form.Load = [&] {
    LocaliseForm(form, phrases, gLanguage);
    form.Caption = phrases.Translate(form.Caption.get());
  };
  try {
    application.run([&] { application.Show(form); });
  } catch (const ProgramEnd&) {
    return EXIT_SUCCESS;
  }
}
