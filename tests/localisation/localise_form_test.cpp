#include "localisation/localise_form.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <sstream>

#include "localisation/catalogue.h"
#include "localisation/languages.h"
#include "support/raised.h"
#include "support/table.h"

namespace zev {
namespace {

using test::raisedBy;
using test::Row;
using test::Table;
using Kind = ControlKind;

/// The settled width of the agreement's lines at design time, in characters.
constexpr std::size_t agreementWidth = 50;

const std::map<std::string, Kind> kinds = {
    {"Label", Kind::Label},           {"CommandButton", Kind::CommandButton},
    {"PictureBox", Kind::PictureBox}, {"Image", Kind::Image},
    {"ComboBox", Kind::ComboBox},     {"OptionButton", Kind::OptionButton},
    {"CheckBox", Kind::CheckBox},     {"TextBox", Kind::TextBox},
    {"Frame", Kind::Frame},           {"Menu", Kind::Menu},
};

/// Notes each write of a text, and can refuse one as a toolkit does.
struct Watcher final : FormObserver {
  std::vector<std::string> writes;
  std::string refused;  ///< "Label2.Caption"; empty: none

  void propertyWritten(PropertyBase& property) override {
    const std::string name = toUtf8(property.owner().name()) + "." + std::string(property.name());
    if (name == refused) throw RuntimeError(ErrorNumber::InvalidPropertyValue);
    writes.push_back(name);
  }
  void refreshed(Component&) override {}
  void focusGiven(Control&) override {}
};

class LocaliseTest : public testing::Test {
 protected:
  void load(std::int32_t language) {
    gLanguage = language;
    phrases.dimension(0);
    phrases.LoadPhrases();
  }
  std::int32_t localise(Form& form) { return LocaliseForm(form, phrases, gLanguage); }
  Text german5() { return phraseTranslation(5, german); }

  std::int32_t gLanguage = english;
  Phrases phrases{gLanguage};
  Watcher watcher;
};

/// One control of a kind on a form of its own, with a key in each of its texts.
class Lone {
 public:
  explicit Lone(Kind kind) {
    design_.kind = kind;
    form_.emplace(FormDesign{.name = u"Lone", .caption = u"Cancel", .controls = {&design_, 1}});
    for (const std::string_view name : {"Caption", "Text", "ToolTipText"}) {
      PropertyBase* property = control().findProperty(name);
      if (property != nullptr) property->write(PropertyValue(Text(u"Cancel")));
    }
    if (kind != Kind::ComboBox) return;
    auto& combo = form_->control<ComboBox>(u"Control");
    combo.AddItem(u"Finish");
    combo.AddItem(u"Cancel");
    combo.setListIndex(1);
  }

  Form& form() { return *form_; }
  Control& control() { return *form_->Controls()[0]; }
  Text text(std::string_view property) {
    return std::get<Text>(control().property(property).value());
  }

 private:
  ControlDesign design_{.name = u"Control"};
  std::optional<Form> form_;
};

std::vector<std::string> writesOf(const Row& row) {
  std::vector<std::string> writes;
  std::istringstream properties(row.word("properties"));
  for (std::string each; std::getline(properties, each, ',');) {
    writes.push_back("Control." + (each == "List(ListIndex)" ? "Text" : each));
  }
  return writes;
}

TEST_F(LocaliseTest, TranslatesOfEachKindItsPropertiesInOrder) {
  load(german);
  const Table table = Table::read("localise_order.tsv");
  ASSERT_EQ(table.size(), kinds.size() + 1);
  for (const Row& each : table) {
    if (each.isAny("kind")) continue;
    Lone lone(kinds.at(each.word("kind")));
    watcher.writes.clear();
    lone.form().observeAll(&watcher);
    EXPECT_EQ(localise(lone.form()), 0) << each.where();
    EXPECT_EQ(watcher.writes, writesOf(each)) << each.where();
    for (const std::string& write : watcher.writes) {
      EXPECT_EQ(lone.text(write.substr(write.find('.') + 1)), german5()) << each.where();
    }
  }
}

TEST_F(LocaliseTest, LeavesEveryOtherKindAlone) {
  load(german);
  EXPECT_TRUE(Table::read("localise_order.tsv").row("kind", "*").isNone("properties"));
  for (const Kind kind : {Kind::Line, Kind::DriveListBox, Kind::DirListBox}) {
    Lone lone(kind);
    lone.form().observeAll(&watcher);
    EXPECT_EQ(localise(lone.form()), 0);
    EXPECT_TRUE(watcher.writes.empty());
  }
}

TEST_F(LocaliseTest, ChangesNothingUnderEnglish) {
  load(english);
  for (const auto& [name, kind] : kinds) {
    Lone lone(kind);
    lone.form().observeAll(&watcher);
    EXPECT_EQ(localise(lone.form()), 0) << name;
    EXPECT_TRUE(watcher.writes.empty()) << name;
  }
}

TEST_F(LocaliseTest, LooksAtNoTableUnderEnglish) {
  Lone lone(Kind::Label);
  EXPECT_EQ(localise(lone.form()), 0);
}

TEST_F(LocaliseTest, EndsWithAnErrorIfTheTableWasNeverDimensioned) {
  gLanguage = german;
  Lone lone(Kind::Label);
  EXPECT_EQ(localise(lone.form()), -1);
  EXPECT_EQ(lone.text("Caption"), u"Cancel");
}

TEST_F(LocaliseTest, LeavesTheToolTipOfAFrame) {
  load(german);
  Lone lone(Kind::Frame);
  localise(lone.form());
  EXPECT_EQ(lone.text("Caption"), german5());
  EXPECT_EQ(lone.text("ToolTipText"), u"Cancel");
}

TEST_F(LocaliseTest, LeavesAMenuWithABlankCaption) {
  load(german);
  for (const TextView caption : {u"", u"  "}) {
    Lone lone(Kind::Menu);
    lone.control().property("Caption").write(PropertyValue(Text(caption)));
    watcher.writes.clear();
    lone.form().observeAll(&watcher);
    EXPECT_EQ(localise(lone.form()), 0);
    EXPECT_TRUE(watcher.writes.empty());
    EXPECT_EQ(lone.text("Caption"), caption);
  }
}

TEST_F(LocaliseTest, EmptiesABlankTextOfAnyOtherKind) {
  load(german);
  Lone lone(Kind::Label);
  lone.control().property("Caption").write(PropertyValue(Text(u"  ")));
  lone.control().property("ToolTipText").write(PropertyValue(Text()));
  lone.form().observeAll(&watcher);
  localise(lone.form());
  EXPECT_EQ(lone.text("Caption"), u"");
  EXPECT_EQ(watcher.writes, (std::vector<std::string>{"Control.Caption", "Control.ToolTipText"}));
}

TEST_F(LocaliseTest, KeepsATextThatIsNoKey) {
  load(german);
  Lone lone(Kind::Label);
  lone.control().property("Caption").write(PropertyValue(Text(u"Version 6.1.8 (XP)")));
  localise(lone.form());
  EXPECT_EQ(lone.text("Caption"), u"Version 6.1.8 (XP)");
}

TEST_F(LocaliseTest, TranslatesOnlyTheSelectedEntryOfAListAndFiresNothing) {
  load(german);
  Lone lone(Kind::ComboBox);
  auto& combo = lone.form().control<ComboBox>(u"Control");
  bool clicked = false;
  combo.Click = [&] { clicked = true; };
  localise(lone.form());
  EXPECT_EQ(combo.List(0), u"Finish");
  EXPECT_EQ(combo.List(1), german5());
  EXPECT_EQ(combo.text(), german5());
  EXPECT_EQ(combo.ListIndex(), 1);
  EXPECT_FALSE(clicked);
}

TEST_F(LocaliseTest, LeavesTheToolTipOfAListWithoutSelection) {
  load(german);
  Lone lone(Kind::ComboBox);
  lone.form().control<ComboBox>(u"Control").setListIndex(-1);
  EXPECT_EQ(localise(lone.form()), 0);
  EXPECT_EQ(lone.text("ToolTipText"), u"Cancel");
}

TEST_F(LocaliseTest, LeavesTheToolTipOfAnEmptyList) {
  load(german);
  constexpr ControlDesign design[] = {{.name = u"Combo1", .kind = Kind::ComboBox}};
  Form form({.name = u"F", .caption = u"", .controls = design});
  auto& combo = form.control<ComboBox>(u"Combo1");
  combo.ToolTipText = u"Cancel";
  EXPECT_EQ(localise(form), 0);
  EXPECT_EQ(combo.ToolTipText.get(), u"Cancel");
}

TEST_F(LocaliseTest, LeavesTheCaptionOfTheForm) {
  load(german);
  Lone lone(Kind::Label);
  localise(lone.form());
  EXPECT_EQ(lone.form().Caption.get(), u"Cancel");
}

constexpr ControlDesign three[] = {
    {.name = u"Label1", .kind = Kind::Label, .text = u"Cancel"},
    {.name = u"Label2", .kind = Kind::Label, .text = u"Cancel"},
    {.name = u"Label3", .kind = Kind::Label, .text = u"Cancel"},
};

TEST_F(LocaliseTest, EndsAtTheFirstControlThatRaises) {
  load(german);
  Form form({.name = u"F", .caption = u"", .controls = three});
  form.observeAll(&watcher);
  watcher.refused = "Label2.Caption";
  EXPECT_EQ(localise(form), -1);
  EXPECT_EQ(watcher.writes, (std::vector<std::string>{"Label1.Caption", "Label1.ToolTipText"}));
  EXPECT_EQ(form.control<Label>(u"Label1").Caption.get(), german5());
  EXPECT_EQ(form.control<Label>(u"Label3").Caption.get(), u"Cancel");
}

TEST_F(LocaliseTest, TranslatesTheWizardsForm) {
  load(german);
  Form1 form;
  form.Combo1.setListIndex(1);
  EXPECT_EQ(localise(form), 0);
  EXPECT_EQ(form.Label1.Caption.get(), phraseTranslation(1, german));
  EXPECT_EQ(toUtf8(form.Label2.Caption.get()), "Sprache :");
  EXPECT_EQ(toUtf8(form.Label4.Caption.get()), "ZEV Bildschirm Recorder");
  EXPECT_EQ(form.Label5.Caption.get(), u"Version 6.1.8 (XP)");
  EXPECT_EQ(toUtf8(form.Command1.Caption.get()), "<< Zurück");
  EXPECT_EQ(toUtf8(form.Command2.Caption.get()), "Weiter >>");
  EXPECT_EQ(toUtf8(form.Command3.Caption.get()), "Abbrechen");
  EXPECT_EQ(form.Option1.Caption.get(), phraseTranslation(10, german));
  EXPECT_EQ(form.Check1.Caption.get(), phraseTranslation(12, german));
  EXPECT_EQ(form.Caption.get(), u"ZEV Screen Recorder - Install");
}

TEST_F(LocaliseTest, NeverChangesTheEntriesOfTheLanguageList) {
  for (const std::int32_t language : {1, 2, 3, 4}) {
    load(language);
    phrases.Translate(Phrases::HafizaTemizle);
    for (std::int32_t place = 0; place < 4; ++place) {
      Form1 form;
      form.Combo1.setListIndex(place);
      const Text entry = form.Combo1.text();
      localise(form);
      EXPECT_EQ(form.Combo1.text(), entry);
    }
  }
}

// ---- back to English

class RestoreTest : public LocaliseTest {
 protected:
  Form1 form;
};

TEST_F(RestoreTest, WritesTheKeysOfItsRowsInOrder) {
  load(german);
  const Table table = Table::read("restore_rows.tsv");
  form.observeAll(&watcher);
  RestoreEnglishTexts(form, phrases);
  ASSERT_EQ(watcher.writes.size(), table.size());
  for (std::size_t place = 0; place < table.size(); ++place) {
    const Row& each = table.rows()[place];
    ASSERT_EQ(each.number("order"), static_cast<std::int32_t>(place + 1)) << each.where();
    const std::string& target = each.word("target");
    EXPECT_EQ(watcher.writes[place], target) << each.where();
    const std::string control = target.substr(0, target.find('.'));
    const std::string property = target.substr(target.find('.') + 1);
    Component& component = control == "Form1" ? static_cast<Component&>(form)
                                              : form.control<Control>(fromUtf8(control));
    EXPECT_EQ(std::get<Text>(component.property(property).value()),
              phraseKey(static_cast<std::size_t>(each.number("row"))))
        << each.where();
  }
}

TEST_F(RestoreTest, RestoresNoOtherControl) {
  load(german);
  form.Label11.Caption = u"Fehler";
  form.Label12.Caption = u"Fehler";
  form.Command6.Caption = u"Optionen";
  RestoreEnglishTexts(form, phrases);
  EXPECT_EQ(form.Label11.Caption.get(), u"Fehler");
  EXPECT_EQ(form.Label12.Caption.get(), u"Fehler");
  EXPECT_EQ(form.Command6.Caption.get(), u"Optionen");
}

TEST_F(RestoreTest, DoesNothingWhileTheTableHasNoRows) {
  phrases.dimension(0);
  form.observeAll(&watcher);
  RestoreEnglishTexts(form, phrases);
  EXPECT_TRUE(watcher.writes.empty());
}

TEST_F(RestoreTest, WorksWithATableOfEnglishToo) {
  load(english);
  form.Label2.Caption = u"x";
  RestoreEnglishTexts(form, phrases);
  EXPECT_EQ(form.Label2.Caption.get(), u"Language :");
}

TEST_F(RestoreTest, LetsErrorsReachTheCaller) {
  EXPECT_EQ(raisedBy([&] { RestoreEnglishTexts(form, phrases); }), 9);
  load(german);
  form.observeAll(&watcher);
  watcher.refused = "Label4.Caption";
  EXPECT_EQ(raisedBy([&] { RestoreEnglishTexts(form, phrases); }), 380);
  EXPECT_EQ(watcher.writes, (std::vector<std::string>{"Label1.Caption", "Label2.Caption"}));
}

/// The wizard's form with the agreement as it stands at design time.
class AgreementTest : public RestoreTest {
 protected:
  AgreementTest() {
    load(english);
    form.Text1.Text_.design(hardWrapped(agreementText(english), agreementWidth));
  }

  /// A change of language as the list of languages makes it.
  void change(std::int32_t language) {
    const bool restores = gLanguage != english && gLanguage != -1;
    if (restores) RestoreEnglishTexts(form, phrases);
    gLanguage = language;
    if (restores) phrases.LoadPhrases();
    phrases.Translate(Phrases::HafizaTemizle);
    LocaliseForm(form, phrases, gLanguage);
  }
  const Text& agreement() { return form.Text1.Text_.get(); }
};

TEST_F(AgreementTest, IsHardWrappedAndThereforeNoKey) {
  EXPECT_NE(agreement(), agreementText(english));
  gLanguage = german;
  EXPECT_EQ(phrases.Translate(agreement()), agreement());
}

TEST_F(AgreementTest, StaysInEnglishWhenTheLanguageChangesFromEnglish) {
  const Text before = agreement();
  change(german);
  EXPECT_EQ(agreement(), before);
  EXPECT_EQ(toUtf8(form.Label2.Caption.get()), "Sprache :");
}

TEST_F(AgreementTest, IsTranslatedWhenTheLanguageChangesFromAnother) {
  change(german);
  change(french);
  EXPECT_EQ(agreement(), agreementText(french));
  change(german);
  EXPECT_EQ(agreement(), agreementText(german));
}

TEST_F(AgreementTest, GoesBackToLongLinesWithEnglish) {
  change(german);
  change(english);
  EXPECT_EQ(agreement(), agreementText(english));
  EXPECT_EQ(form.Label2.Caption.get(), u"Language :");
  change(german);
  EXPECT_EQ(agreement(), agreementText(german));
}

TEST_F(AgreementTest, IsTranslatedAtAStartInAnotherLanguage) {
  load(german);
  change(german);
  EXPECT_EQ(agreement(), agreementText(german));
}

}  // namespace
}  // namespace zev
