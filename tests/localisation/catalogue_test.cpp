#include "localisation/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "localisation/languages.h"
#include "support/table.h"

namespace zev {
namespace {

using test::Row;
using test::Table;

constexpr std::size_t rowCount = 191;
constexpr std::size_t agreementRow = 9;

/// The two rows without a translation in one language, as they are meant to be.
bool isGap(std::size_t row, std::int32_t language) {
  return (row == 30 && language == german) || (row == 29 && language == french);
}

TextView endOf(TextView text) { return text.substr(rtrim(text).size()); }
TextView beginningOf(TextView text) { return text.substr(0, text.size() - ltrim(text).size()); }

TEST(Catalogue, HasEveryKeyLetterByLetter) {
  const Table table = Table::read("phrases.tsv");
  ASSERT_EQ(table.size(), rowCount);
  EXPECT_EQ(phrase_row::count, rowCount);
  for (std::size_t row = 1; row <= rowCount; ++row) {
    const Row& expected = table.rows()[row - 1];
    ASSERT_EQ(expected.number("number"), static_cast<std::int32_t>(row)) << expected.where();
    if (row == agreementRow) continue;
    EXPECT_EQ(toUtf8(phraseKey(row)), expected.quoted("english")) << expected.where();
  }
}

TEST(Catalogue, HasEveryQuotedTranslationLetterByLetter) {
  for (const Row& each : Table::read("phrases_translations.tsv")) {
    const auto row = static_cast<std::size_t>(each.number("row"));
    EXPECT_EQ(toUtf8(phraseTranslation(row, each.number("language"))), each.quoted("text"))
        << each.where();
  }
}

/// Words that are wrong in their language, or mean something else: a dossier is a folder, a Treiber
/// and a pilote are software. They stand in some texts that are settled, and in no other.
struct WrongWord {
  std::int32_t language;
  TextView word;
};

constexpr WrongWord wrongWords[] = {
    {french, u"dossier"},   {french, u"etre"},       {french, u"meme "},
    {french, u"etes-vous"}, {french, u"caracteres"}, {french, u"pilote"},
    {german, u" treiber"},  {german, u"charaktere"}, {german, u"leerplatz"},
    {spanish, u"carácter"}, {spanish, u"invalido"},
};

TEST(Catalogue, HasWrongWordsInSettledTranslationsAlone) {
  std::set<std::pair<std::size_t, std::int32_t>> settled;
  for (const Row& each : Table::read("phrases_translations.tsv")) {
    settled.emplace(each.number("row"), each.number("language"));
  }
  for (std::size_t row = 1; row <= rowCount; ++row) {
    for (const WrongWord& each : wrongWords) {
      if (settled.count({row, each.language}) == 1) continue;
      const Text text = lowerCase(phraseTranslation(row, each.language));
      EXPECT_EQ(text.find(each.word), Text::npos) << row << ": " << toUtf8(text);
    }
  }
}

TEST(Catalogue, HasNoBlankKey) {
  for (std::size_t row = 1; row <= rowCount; ++row) {
    EXPECT_FALSE(trim(phraseKey(row)).empty()) << row;
  }
}

TEST(Catalogue, HasATranslationEverywhereButInTheTwoGaps) {
  for (std::size_t row = 1; row <= rowCount; ++row) {
    for (const std::int32_t language : {turkish, german, french, spanish}) {
      EXPECT_EQ(trim(phraseTranslation(row, language)).empty(), isGap(row, language))
          << row << " " << language;
    }
  }
}

TEST(Catalogue, HasTheBlanksOfTheKeyAtTheEndsOfEveryTranslation) {
  for (std::size_t row = 1; row <= rowCount; ++row) {
    const Text key = phraseKey(row);
    for (const std::int32_t language : {turkish, german, french, spanish}) {
      if (isGap(row, language)) continue;
      const Text translation = phraseTranslation(row, language);
      EXPECT_EQ(beginningOf(translation), beginningOf(key)) << row << " " << language;
      EXPECT_EQ(endOf(translation), endOf(key)) << row << " " << language;
    }
  }
}

/// Rows that no other test holds against a text of its own are at least translations of their own:
/// a row that slipped in a column would stand beside the same translation as its neighbour.
TEST(Catalogue, TranslatesNoTwoNeighboursAlike) {
  for (std::size_t row = 2; row <= rowCount; ++row) {
    for (const std::int32_t language : {turkish, german, french, spanish}) {
      EXPECT_NE(phraseTranslation(row, language), phraseTranslation(row - 1, language))
          << row << " " << language;
    }
  }
}

/// What a phrase names in quotes, a file above all, its translations name, too.
TEST(Catalogue, NamesTheSameFileInEveryTranslationOfAMembersFailure) {
  constexpr TextView front = u"File '";
  for (std::size_t row = 1; row <= rowCount; ++row) {
    const Text key = phraseKey(row);
    const std::size_t end = key.find(u"' could not be ");
    if (!key.starts_with(front) || end == Text::npos) continue;
    const Text name = key.substr(front.size(), end - front.size());
    for (const std::int32_t language : {turkish, german, french, spanish}) {
      if (isGap(row, language)) continue;
      EXPECT_NE(phraseTranslation(row, language).find(join(u"'", name, u"'")), Text::npos)
          << row << " " << language;
    }
  }
}

TEST(Catalogue, HasTwoKeysTwiceAndNoOther) {
  std::map<Text, std::size_t> seen;
  std::set<std::pair<std::size_t, std::size_t>> twice;
  for (std::size_t row = 1; row <= rowCount; ++row) {
    const auto [place, isNew] = seen.emplace(lowerCase(phraseKey(row)), row);
    if (!isNew) twice.emplace(place->second, row);
  }
  const std::set<std::pair<std::size_t, std::size_t>> expected = {{5, 181}, {148, 180}};
  EXPECT_EQ(twice, expected);
  EXPECT_EQ(phraseKey(5), phraseKey(181));
  EXPECT_EQ(phraseKey(148), phraseKey(180));
}

TEST(Catalogue, TranslatesItsDuplicatesDifferentlyInGerman) {
  EXPECT_NE(phraseTranslation(5, german), phraseTranslation(181, german));
  EXPECT_NE(phraseTranslation(148, german), phraseTranslation(180, german));
}

TEST(Catalogue, HasAnAgreementOfTheSettledLengthInEveryLanguage) {
  const Table table = Table::read("agreement_lengths.tsv");
  ASSERT_EQ(table.size(), 5u);
  for (const Row& each : table) {
    const std::int32_t language = each.number("language");
    const Text agreement =
        language == 0 ? phraseKey(agreementRow) : phraseTranslation(agreementRow, language);
    EXPECT_EQ(len(agreement), each.number("characters")) << each.where();
    EXPECT_EQ(agreement, agreementText(language)) << each.where();
  }
}

TEST(Catalogue, PartsTheParagraphsOfTheAgreementByLineEnds) {
  const auto count = [](const Text& text, TextView wanted) {
    std::size_t found = 0;
    for (std::size_t at = text.find(wanted); at != Text::npos; at = text.find(wanted, at + 1)) {
      ++found;
    }
    return found;
  };
  for (std::int32_t language = 0; language <= spanish; ++language) {
    const Text agreement = agreementText(language);
    const std::size_t paragraphs = agreementParagraphs(language).size();
    EXPECT_EQ(count(agreement, lineEnd), paragraphs - 1) << language;
    EXPECT_EQ(count(agreement, u"\n"), paragraphs - 1) << language;
    EXPECT_EQ(count(agreement, u"\r"), paragraphs - 1) << language;
    EXPECT_EQ(paragraphs, agreementParagraphs(0).size()) << language;
  }
  EXPECT_TRUE(agreementParagraphs(5).empty());
  EXPECT_TRUE(agreementParagraphs(-1).empty());
}

TEST(Catalogue, HasNoTranslationUnderEnglish) {
  for (std::size_t row = 1; row <= rowCount; ++row) EXPECT_EQ(phraseTranslation(row, 0), u"");
}

TEST(Catalogue, HasOneTranslationForAllRowsUnderANumberWithoutALanguage) {
  const Table table = Table::read("languages_without_table.tsv");
  const Text other = table.row("number", "*").text("every_translation");
  for (const std::int32_t number : {-2147483647, -99, -1, 5, 6, 7, 8, 9, 100, 2147483647}) {
    const auto listed = std::find_if(table.begin(), table.end(), [&](const Row& each) {
      return each.is("number", std::to_string(number));
    });
    const Text expected = listed == table.end() ? other : listed->text("every_translation");
    for (std::size_t row = 1; row <= rowCount; ++row) {
      EXPECT_EQ(phraseTranslation(row, number), expected) << row << " " << number;
    }
  }
}

TEST(Catalogue, EndsInTheAddressWhereAPhraseHasOne) {
  struct Addressed {
    std::size_t row;
    TextView phrase;
    TextView address;
  };
  constexpr Addressed rows[] = {{27, downloadRequestPhrase, u"http://www.tavorns.example/zev/"},
                                {165, mailRequestPhrase, u"support@tavorns.example"}};
  for (const Addressed& each : rows) {
    EXPECT_EQ(phraseKey(each.row), each.phrase);
    EXPECT_TRUE(phraseKey(each.row).ends_with(join(u" ", each.address))) << each.row;
    for (const std::int32_t language : {turkish, german, french, spanish}) {
      EXPECT_TRUE(phraseTranslation(each.row, language).ends_with(join(u" ", each.address)))
          << each.row << " " << language;
    }
  }
}

}  // namespace
}  // namespace zev
