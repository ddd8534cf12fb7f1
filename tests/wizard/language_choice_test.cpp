// Which language the wizard begins with, and which one a choice in its list gives.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

#include "state/languages.h"
#include "support/table.h"
#include "system/on_a_machine.h"
#include "wizard/setup.h"

namespace zev {
namespace {

using test::Row;
using test::Table;

/// The wizard on its first page, on a machine with settings in its registry.
class FirstPageIn {
 public:
  explicit FirstPageIn(std::optional<std::int32_t> stored) {
    machine_.settings().system.version.major = 5;
    if (stored) {
      machine_.registry().setValue(
          HKEY_LOCAL_MACHINE, u"Software\\Tavorns\\ZEV5", u"Language",
          simulated::RegistryValue::ofNumber(static_cast<std::uint32_t>(*stored)));
    }
    machine_.startProgram();
    setup_ = std::make_unique<Setup>(machine_.platform());
    machine_.platform().application.run([&] { setup_->start(); });
  }
  ComboBox& list() { return setup_->form1().Combo1; }
  std::int32_t language() { return setup_->globals().gLanguage; }

 private:
  QuietPerson person_;
  simulated::NoTranscript transcript_;
  simulated::SimulatedMachine machine_{person_, transcript_};
  std::unique_ptr<Setup> setup_;
};

// ---- the language of the system

constexpr std::int32_t identifiers = 0x10000;

/// The languages of first_language.tsv by primary language, and that of all others as "".
std::map<Text, std::int32_t> firstLanguages() {
  std::map<Text, std::int32_t> languages;
  for (const Row& row : Table::read("first_language.tsv")) {
    const Text primary = row.isAny("hex") ? Text() : fromUtf8(row.quoted("hex"));
    languages.try_emplace(primary, row.number("gLanguage"));
  }
  return languages;
}

TEST(FirstLanguage, IsThatOfItsTableForEveryIdentifierThatThereIs) {
  OnAMachine usual;
  const std::map<Text, std::int32_t> languages = firstLanguages();
  for (std::int32_t identifier = 0; identifier < identifiers; ++identifier) {
    const auto asked = static_cast<std::uint16_t>(identifier);
    usual.machine.settings().system.uiLanguage = asked;
    const auto named = languages.find(PrimaryLanguage(asked));
    ASSERT_EQ(firstLanguage(usual.program->platform.system),
              named == languages.end() ? languages.at(u"") : named->second)
        << identifier;
  }
}

/// The languages by an identifier that a system in them gives.
const std::map<std::string, std::uint16_t> systems = {
    {"English", 1033}, {"Turkish", 1055}, {"French", 1036}, {"German", 1031}, {"Spanish", 3082}};

TEST(FirstLanguage, KnowsEachLanguageOfItsTableByName) {
  std::map<std::string, std::string> expected;
  for (const auto& [name, identifier] : systems) {
    expected[name] = toUtf8(PrimaryLanguage(identifier));
  }
  std::map<std::string, std::string> found;
  for (const Row& row : Table::read("first_language.tsv")) {
    EXPECT_EQ(row.isNone("language"), row.isAny("hex")) << row.where();
    if (!row.isAny("hex")) found[row.word("language")] = row.quoted("hex");
  }
  EXPECT_EQ(found, expected);
}

// ---- the place in the list

/// Numbers that no row names; -1 is the sign of a first run.
constexpr std::int32_t unnamed[] = {5, 6, 7, 8, 9, 100, -2, 2147483647, -2147483647};

void expectPlace(const Row& row, std::int32_t stored) {
  FirstPageIn page(stored);
  const std::int32_t place = row.isNone("list_index") ? -1 : row.number("list_index");
  EXPECT_EQ(page.list().ListIndex(), place) << row.where() << " " << stored;
  if (place == -1) {
    EXPECT_EQ(page.language(), stored) << row.where();
  }
}

TEST(LanguageSelection, IsThatOfItsTable) {
  for (const Row& row : Table::read("language_selection.tsv")) {
    if (!row.isAny("gLanguage")) {
      expectPlace(row, row.number("gLanguage"));
      continue;
    }
    for (const std::int32_t each : unnamed) expectPlace(row, each);
  }
}

TEST(LanguageSelection, HasARowForEveryLanguageAndOneForTheOthers) {
  const Table table = Table::read("language_selection.tsv");
  for (std::int32_t each = language::English; each <= language::Spanish; ++each) {
    EXPECT_NO_THROW(table.row("gLanguage", std::to_string(each)));
  }
  EXPECT_NO_THROW(table.row("gLanguage", "*"));
  EXPECT_EQ(table.size(), 6u);
}

// ---- the click in the list

TEST(Combo1Click, GivesTheLanguageOfItsTable) {
  FirstPageIn page(std::nullopt);
  ComboBox& list = page.list();
  std::map<std::string, std::int32_t> expected;
  std::int32_t other = -1;
  for (const Row& row : Table::read("combo1_click.tsv")) {
    if (row.isAny("combo_text")) {
      other = row.number("gLanguage");
    } else {
      expected[row.quoted("combo_text")] = row.number("gLanguage");
    }
  }
  std::size_t named = 0;
  for (const char* strange : {"deutsch", "Deutsch ", "Español", "Francais", "Türkçe", "-"}) {
    list.AddItem(fromUtf8(strange));
  }
  // Backwards, so that no language is the one that stands already.
  for (std::int32_t place = list.ListCount() - 1; place >= 0; --place) {
    const std::string item = toUtf8(list.List(place));
    const auto row = expected.find(item);
    list.setListIndex(place);
    EXPECT_EQ(page.language(), row == expected.end() ? other : row->second) << item;
    if (row != expected.end()) ++named;
  }
  EXPECT_EQ(named, expected.size()) << "each text of the table is an item of the list";
}

}  // namespace
}  // namespace zev
