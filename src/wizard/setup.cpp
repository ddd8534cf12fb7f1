#include "wizard/setup.h"

#include "localisation/catalogue.h"

namespace zev {
namespace {

/// Characters of a line of the agreement as the form carries it at design time.
constexpr std::size_t agreementWidth = 50;

}  // namespace

Setup::Setup(Platform& platform)
    : program_{.platform = platform},
      phrases_(program_.globals.gLanguage),
      registry_(program_, phrases_),
      wizard_(program_, phrases_, registry_),
      options_(program_, phrases_),
      browser_(program_, phrases_, wizard_) {
  program_.form1.WS.serve(program_.sockets);
  program_.form1.Text1.Text_.design(hardWrapped(agreementText(language::English), agreementWidth));
}

void Setup::start() { program_.platform.application.Show(program_.form1); }

}  // namespace zev
