#include "localisation/phrases.h"

#include <gtest/gtest.h>

#include "localisation/catalogue.h"
#include "localisation/languages.h"
#include "support/raised.h"
#include "support/table.h"

namespace zev {
namespace {

using test::raisedBy;

constexpr std::int32_t rows = 191;

class PhrasesTest : public testing::Test {
 protected:
  /// Loads the table as start-up does.
  void load(std::int32_t language) {
    gLanguage = language;
    phrases.dimension(0);
    phrases.LoadPhrases();
  }

  std::string translate(TextView phrase) { return toUtf8(phrases.Translate(phrase)); }

  /// The phrases that are remembered, newest first.
  std::vector<Text> remembered() const {
    std::vector<Text> asked;
    for (const Phrases::Recent& each : phrases.RecentPhrases()) {
      if (!each.asked.empty()) asked.push_back(each.asked);
    }
    return asked;
  }

  /// Shows whether the next call builds the table: the values of the former language go.
  bool rebuilds(TextView phrase) {
    const std::int32_t language = gLanguage;
    gLanguage = 5;
    phrases.Translate(phrase);
    const bool rebuilt = phrases.PhraseValues()[1] == u"Dil :";
    gLanguage = language;
    return rebuilt;
  }

  std::int32_t gLanguage = english;
  Phrases phrases{gLanguage};
};

TEST_F(PhrasesTest, GivesNothingForBlanksInEveryLanguage) {
  for (const std::int32_t language : {0, 1, 2, 3, 4, 5, 9}) {
    load(language);
    EXPECT_EQ(translate(u"   "), "") << language;
    EXPECT_EQ(translate(u""), "") << language;
  }
}

TEST_F(PhrasesTest, GivesTheWordsOfAPhraseInAnyCase) {
  load(german);
  EXPECT_EQ(translate(u"Cancel"), "Abbrechen");
  EXPECT_EQ(translate(u"CANCEL"), "Abbrechen");
  EXPECT_EQ(remembered(), (std::vector<Text>{u"CANCEL", u"Cancel"}));
  EXPECT_EQ(phrases.RecentPhrases()[0].answer, u"Abbrechen");
}

TEST_F(PhrasesTest, LooksAtBlanksOfAPhrase) {
  for (const std::int32_t language : {0, 1, 2, 3, 4, 5, 9}) {
    load(language);
    EXPECT_EQ(translate(u"Cancel "), "Cancel ") << language;
    EXPECT_EQ(translate(u" Cancel"), " Cancel") << language;
  }
  load(german);
  EXPECT_EQ(phraseKey(191), u"Registering user : ");
  EXPECT_EQ(translate(u"Registering user : "), toUtf8(phraseTranslation(191, german)));
  EXPECT_EQ(translate(u"Registering user :"), "Registering user :");
}

TEST_F(PhrasesTest, GivesBackAnUnknownPhraseAndForgetsIt) {
  load(german);
  EXPECT_EQ(translate(u"No such phrase"), "No such phrase");
  EXPECT_TRUE(remembered().empty());
}

TEST_F(PhrasesTest, RemembersTheLastTenKnownPhrasesNewestFirst) {
  load(german);
  std::vector<Text> expected;
  for (std::size_t row = 2; row <= 13; ++row) {
    if (row == phrase_row::agreement) continue;
    phrases.Translate(phraseKey(row));
    expected.insert(expected.begin(), phraseKey(row));
  }
  ASSERT_EQ(expected.size(), 11u);
  expected.pop_back();
  EXPECT_EQ(remembered(), expected);
}

TEST_F(PhrasesTest, GivesAPhraseThatIsAskedTwiceOneEntry) {
  load(german);
  phrases.Translate(u"Cancel");
  phrases.Translate(u"Finish");
  phrases.Translate(u"Cancel");
  EXPECT_EQ(remembered(), (std::vector<Text>{u"Finish", u"Cancel"}));
}

TEST_F(PhrasesTest, DropsTheOldestEvenIfItWasAskedForJustNow) {
  load(german);
  for (std::size_t row = 10; row <= 19; ++row) phrases.Translate(phraseKey(row));
  phrases.Translate(phraseKey(10));
  phrases.Translate(phraseKey(20));
  const std::vector<Text> asked = remembered();
  ASSERT_EQ(asked.size(), 10u);
  EXPECT_EQ(asked.front(), phraseKey(20));
  EXPECT_EQ(asked.back(), phraseKey(11));
}

TEST_F(PhrasesTest, AnswersFromItsMemoryBeforeTheTable) {
  load(german);
  phrases.Translate(u"Cancel");
  load(french);
  EXPECT_EQ(translate(u"Cancel"), "Abbrechen");
  EXPECT_EQ(translate(u"cancel"), "Annuler");
  phrases.Translate(Phrases::HafizaTemizle);
  EXPECT_EQ(translate(u"Cancel"), "Annuler");
}

TEST_F(PhrasesTest, DoesNotUseItsMemoryUnderEnglish) {
  load(german);
  phrases.Translate(u"Cancel");
  gLanguage = english;
  EXPECT_EQ(translate(u"Cancel"), "Cancel");
}

TEST_F(PhrasesTest, ForgetsAtTheCommandWord) {
  load(german);
  for (std::size_t row = 10; row <= 19; ++row) phrases.Translate(phraseKey(row));
  const std::vector<Text> values = phrases.PhraseValues();
  EXPECT_EQ(translate(u"HafizaTemizle"), "");
  for (const Phrases::Recent& each : phrases.RecentPhrases()) {
    EXPECT_EQ(each.asked, u"");
    EXPECT_EQ(each.answer, u"");
  }
  EXPECT_EQ(phrases.PhraseValues(), values);
  EXPECT_EQ(phrases.PhraseKeys()[1], phraseKey(1));
}

TEST_F(PhrasesTest, ForgetsAtTheCommandWordUnderEnglishToo) {
  load(german);
  phrases.Translate(u"Cancel");
  gLanguage = english;
  EXPECT_EQ(translate(u"HafizaTemizle"), "");
  EXPECT_TRUE(remembered().empty());
}

TEST_F(PhrasesTest, TakesTheCommandWordInOtherCaseOrWithBlanksForAPhrase) {
  load(german);
  phrases.Translate(u"Cancel");
  EXPECT_EQ(translate(u"hafizatemizle"), "hafizatemizle");
  EXPECT_EQ(translate(u"HafizaTemizle "), "HafizaTemizle ");
  EXPECT_EQ(remembered(), std::vector<Text>{u"Cancel"});
}

TEST_F(PhrasesTest, GivesOneWordForEveryKnownPhraseUnderTheNumbersFiveToSeven) {
  for (const std::int32_t number : {5, 6, 7}) {
    phrases.Translate(Phrases::HafizaTemizle);
    load(number);
    for (std::size_t row = 1; row <= rows; ++row) {
      EXPECT_EQ(translate(phraseKey(row)), "Dil :") << number << " " << row;
    }
    EXPECT_EQ(translate(u"No such phrase"), "No such phrase");
  }
}

TEST_F(PhrasesTest, GivesKnownPhrasesBackUnderAnyOtherNumberAndBuildsTheTableEachTime) {
  for (const std::int32_t number : {-1, 8, 9}) {
    phrases.Translate(Phrases::HafizaTemizle);
    load(number);
    EXPECT_EQ(translate(u"Cancel"), "Cancel") << number;
    EXPECT_EQ(remembered(), std::vector<Text>{u"Cancel"}) << number;
    EXPECT_TRUE(rebuilds(u"Finish")) << number;
    load(number);
    EXPECT_TRUE(rebuilds(u"No such phrase")) << number;
  }
}

TEST_F(PhrasesTest, DoesNotBuildALoadedTableAgain) {
  load(german);
  EXPECT_FALSE(rebuilds(u"Cancel"));
}

TEST_F(PhrasesTest, BuildsATableThatHasNoTranslationsAndAnswersAtOnce) {
  load(english);
  gLanguage = german;
  EXPECT_EQ(translate(u"Cancel"), "Abbrechen");
}

TEST_F(PhrasesTest, BuildsATableWithoutRowsAndAnswersOnlyTheNextTime) {
  gLanguage = german;
  phrases.dimension(0);
  EXPECT_EQ(translate(u"Cancel"), "Cancel");
  EXPECT_TRUE(remembered().empty());
  EXPECT_EQ(upperBound(phrases.PhraseKeys()), rows);
  EXPECT_EQ(translate(u"Cancel"), "Abbrechen");
}

TEST_F(PhrasesTest, RaisesAnErrorIfTheTableWasNeverDimensioned) {
  gLanguage = german;
  EXPECT_EQ(raisedBy([&] { phrases.Translate(u"Cancel"); }), 9);
  EXPECT_EQ(raisedBy([&] { upperBound(phrases.PhraseKeys()); }), 9);
}

TEST_F(PhrasesTest, LooksAtTheTableOnlyWhenItNeedsIt) {
  EXPECT_EQ(translate(u"Cancel"), "Cancel");  // under English
  gLanguage = german;
  EXPECT_EQ(translate(u"  "), "");
  EXPECT_EQ(translate(u"HafizaTemizle"), "");
}

TEST_F(PhrasesTest, GivesTheEnglishPhraseForAGapAndRemembersIt) {
  load(german);
  EXPECT_EQ(translate(u"File 'MCU28m.wav' could not be extracted!"),
            "File 'MCU28m.wav' could not be extracted!");
  EXPECT_EQ(remembered().size(), 1u);
  EXPECT_EQ(translate(u"File 'MCU28m.wav' could not be expanded!"),
            "Die Datei 'MCU28m.wav' konnte nicht geöffnet werden!");
  load(french);
  phrases.Translate(Phrases::HafizaTemizle);
  EXPECT_EQ(translate(u"File 'MCD28m.wav' could not be expanded!"),
            "File 'MCD28m.wav' could not be expanded!");
  EXPECT_EQ(translate(u"FILE 'MCD28m.wav' could not be expanded!"),
            "FILE 'MCD28m.wav' could not be expanded!");
}

TEST_F(PhrasesTest, GivesTheFirstOfTwoRowsWithTheSameKey) {
  load(german);
  EXPECT_EQ(translate(phraseKey(181)), "Abbrechen");
  EXPECT_EQ(translate(phraseKey(180)),
            "ZEV Bildschirm Recorder kann nicht auf den Netzwerk Treiber installiert werden.");
}

TEST_F(PhrasesTest, FindsEveryKeyAsItStandsAndInCapitals) {
  for (const std::int32_t language : {1, 2, 3, 4}) {
    phrases.Translate(Phrases::HafizaTemizle);
    load(language);
    for (std::size_t row = 1; row <= rows; ++row) {
      if (row == 180 || row == 181) continue;  // an earlier row has the same key
      const Text key = phraseKey(row);
      const Text translation = phraseTranslation(row, language);
      const auto expected = [&](const Text& asked) {
        return toUtf8(translation.empty() ? asked : translation);
      };
      EXPECT_EQ(translate(key), expected(key)) << language << " " << row;
      EXPECT_EQ(translate(upperCase(key)), expected(upperCase(key))) << language << " " << row;
      EXPECT_EQ(translate(lowerCase(key)), expected(lowerCase(key))) << language << " " << row;
    }
  }
}

TEST_F(PhrasesTest, LoadsEveryRowBehindAnEmptySlot) {
  for (const std::int32_t language : {0, 1, 2, 3, 4, 5, 9}) {
    load(language);
    ASSERT_EQ(phrases.PhraseKeys().size(), 192u);
    ASSERT_EQ(phrases.PhraseValues().size(), 192u);
    EXPECT_EQ(upperBound(phrases.PhraseKeys()), rows);
    EXPECT_EQ(phrases.PhraseKeys()[0], u"");
    EXPECT_EQ(phrases.PhraseValues()[0], u"");
    for (std::size_t row = 1; row <= rows; ++row) {
      EXPECT_EQ(phrases.PhraseKeys()[row], phraseKey(row)) << row;
      EXPECT_EQ(phrases.PhraseValues()[row], phraseTranslation(row, language)) << row;
    }
  }
}

TEST_F(PhrasesTest, DropsItsContentsWhenItIsDimensionedAnew) {
  load(german);
  phrases.dimension(0);
  EXPECT_EQ(phrases.PhraseKeys(), std::vector<Text>{u""});
  EXPECT_EQ(phrases.PhraseValues(), std::vector<Text>{u""});
  phrases.dimension(3);
  EXPECT_EQ(phrases.PhraseKeys(), std::vector<Text>(4));
}

TEST_F(PhrasesTest, BuildsATableOfBlankRowsBeforeItAnswers) {
  gLanguage = german;
  phrases.dimension(3);
  EXPECT_EQ(translate(u"Cancel"), "Abbrechen");
}

TEST_F(PhrasesTest, TranslatesTheAgreement) {
  load(french);
  EXPECT_EQ(phrases.Translate(phraseKey(phrase_row::agreement)),
            phraseTranslation(phrase_row::agreement, french));
}

}  // namespace
}  // namespace zev
