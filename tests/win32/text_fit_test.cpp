// Whether each text fits its control, in every language, measured with the font that is on the
// machine.

#include <gtest/gtest.h>

#include <iostream>
#include <set>
#include <string>

#include "localisation/localise_form.h"
#include "state/forms.h"
#include "state/globals.h"
#include "win32/ansi.h"
#include "win32/control_windows.h"
#include "win32/form_fonts.h"

namespace zev::win32 {
namespace {

constexpr int buttonMargin = 4;  ///< pixels at 96 dots an inch, at each side
constexpr int choiceMark = 18;   ///< the mark of an option button or check box, with its gap
constexpr TextView directory = u"C:\\Program Files\\ZEV Screen Recorder 6";

struct Language {
  std::int32_t number;
  const char* name;
};

constexpr Language languages[] = {{language::English, "English"},
                                  {language::Turkish, "Turkish"},
                                  {language::German, "German"},
                                  {language::French, "French"},
                                  {language::Spanish, "Spanish"}};

/// Texts that the program writes into controls of the wizard while it runs.
constexpr TextView statuses[] = {
    u"Copying files into temporary folder and expanding into install directory...",
    u"Registry settings are being done...",
    u"'.zrd' file type registry...",
    u"Temporary files are being deleted...",
    u"Deleting temporary files...",
    u"Installation of ZEV Screen Recorder has been successfully completed! You can launch ZEV from "
    u"the Start Menu.",
};

constexpr TextView mainButton[] = {u"Next >>", u"Install", u"Finish"};

/// Layout and text of these are both fixed: they are told, and no failure.
const std::set<std::string> knownTight = {"Form1.Check1"};

class TextFit : public testing::TestWithParam<int> {
 protected:
  int dpi() const { return GetParam(); }

  void measure(const Language& language) {
    gLanguage_ = language.number;
    phrases_.dimension(0);
    phrases_.LoadPhrases();
    phrases_.Translate(Phrases::HafizaTemizle);
    where_ = language.name;
    measureWizard();
    measureOptions();
    measureBrowser();
  }

  Text Translate(TextView phrase) { return phrases_.Translate(phrase); }

  void measureWizard() {
    Form1 form;
    LocaliseForm(form, phrases_, gLanguage_);
    measureAll(form);
    for (const TextView text : mainButton) check(form, form.Command2, Translate(text));
    for (const TextView text : statuses) check(form, form.Label11, Translate(text));
    check(form, form.Label11,
          join(Translate(u"ZEV has been sucessfully installed into '"), directory,
               Translate(u"' directory."), lineEnd, lineEnd,
               Translate(u"Now creating shortcuts...")));
  }

  void measureOptions() {
    Form2 form;
    LocaliseForm(form, phrases_, gLanguage_);
    measureAll(form);
  }

  void measureBrowser() {
    Form3 form;
    LocaliseForm(form, phrases_, gLanguage_);
    check(form, form.Label1, Translate(u"Select a destination for Screen Recorder"));
    check(form, form.Label2, Translate(u"Free Space"));
    check(form, form.Label3, u"2,097,152 MB");
    check(form, form.Command1, Translate(u"&New Folder"));
    check(form, form.Command2, Translate(u"&Ok"));
    check(form, form.Command3, Translate(u"Cancel"));
  }

  void measureAll(const Form& form) {
    for (const Control* each : form.Controls()) {
      if (each->kind() != ControlKind::TextBox) check(form, *each, contentText(*each));
    }
  }

  void check(const Form& form, const Control& control, const Text& text) {
    const SIZE needed = neededBy(control, text);
    const RECT place = pixelPlace(control, dpi());
    const bool fits =
        needed.cx <= place.right - place.left && needed.cy <= place.bottom - place.top;
    ++measured_;
    if (fits) return;
    const std::string name = toUtf8(join(form.name(), u".", control.name()));
    if (knownTight.contains(name)) {
      std::cout << "does not fit, as laid out: " << where_ << " " << name << " \"" << toUtf8(text)
                << "\"\n";
      return;
    }
    ADD_FAILURE() << where_ << " " << name << " at " << dpi() << " dots an inch: \"" << toUtf8(text)
                  << "\" takes " << needed.cx << " x " << needed.cy << " of "
                  << place.right - place.left << " x " << place.bottom - place.top << " pixels";
  }

  /// The size that a text takes in a control of that kind, its margins and marks included.
  SIZE neededBy(const Control& control, const Text& text) const {
    const FormFonts fonts(dpi());
    const HDC screen = GetDC(nullptr);
    const HGDIOBJ before = SelectObject(screen, fonts.fontFor(text));
    RECT area{0, 0, pixels(control.Width, dpi()), 0};
    const bool label = control.kind() == ControlKind::Label;
    DrawTextW(
        screen, wide(text), static_cast<int>(text.size()), &area,
        static_cast<UINT>(DT_CALCRECT | (label ? DT_WORDBREAK | DT_NOPREFIX : DT_SINGLELINE)));
    SelectObject(screen, before);
    ReleaseDC(nullptr, screen);
    const int extra = MulDiv(extraOf(control), dpi(), usualDpi);
    return {text.empty() ? 0 : area.right + extra, text.empty() ? 0 : area.bottom};
  }

  static int extraOf(const Control& control) {
    switch (control.kind()) {
      case ControlKind::CommandButton:
        return 2 * buttonMargin;
      case ControlKind::OptionButton:
      case ControlKind::CheckBox:
        return choiceMark;
      default:
        return 0;
    }
  }

  std::int32_t gLanguage_ = language::English;
  Phrases phrases_{gLanguage_};
  std::string where_;
  int measured_ = 0;
};

TEST_P(TextFit, NoTextIsCutInAnyLanguage) {
  for (const Language& language : languages) measure(language);
  EXPECT_GT(measured_, 200);
}

TEST_P(TextFit, WouldFindATextThatIsCut) {
  Form3 form;
  const SIZE needed = neededBy(form.Command2, u"A caption that no such button can hold");
  EXPECT_GT(needed.cx, pixels(form.Command2.Width, dpi()));
}

INSTANTIATE_TEST_SUITE_P(Screens, TextFit, testing::Values(96, 144, 192));

}  // namespace
}  // namespace zev::win32
