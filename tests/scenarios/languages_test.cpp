// Every scenario once more in each other language: the same happens, and what is shown is the
// translation of what was shown, piece by piece.

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>

#include "scenarios/box_patterns.h"
#include "scenarios/sanitized.h"
#include "scenarios/scenario_files.h"

namespace zev {
namespace {

using scenario::Json;
using simulated::Event;

constexpr std::size_t shards = 8;

/// All languages but English, by their numbers. The second one cannot be chosen in the wizard.
constexpr int languages[] = {1, 2, 3, 4};

const char* const userPhrase = "Registering user : ";

// ---- what cannot be carried over

/// True if a step chooses a language, or writes one.
bool choosesLanguage(const Json& step) {
  const auto names = [](const Json& value, const std::string& part) {
    return value.dump().find(part) != std::string::npos;
  };
  return (step.contains("select") && names(step["select"], "Combo1")) ||
         (step.contains("set") &&
          (names(step["set"], "gLanguage") || names(step["set"], "Combo1"))) ||
         (step.contains("focus") && names(step["focus"], "Combo1"));
}

/// A status line is known by its whole text, or by a part that is a phrase of its own.
bool waitsForPart(const Json& step) {
  if (!step.contains("at") || !step["at"].contains("set")) return false;
  const Json& awaited = step["at"]["set"];
  if (awaited[0].text().find("Label11") == std::string::npos) return false;
  if (awaited[1].isText()) return false;
  return !awaited[1].contains("contains") || awaited[1]["contains"] != userPhrase;
}

/// A second program begins in a language of its own.
bool startsAnother(const Json& step) { return step.contains("beside"); }

/// A fault, at the start or of a later change, that strikes boxes by their text knows the English
/// one alone.
bool strikesText(const Json& value) {
  if (value.isList()) return std::any_of(value.begin(), value.end(), strikesText);
  if (!value.isMembers()) return false;
  if (value.contains("match") && value["call"] == "MsgBox") return true;
  return std::any_of(value.items().begin(), value.items().end(),
                     [](const Json::Member& each) { return strikesText(each.value); });
}

/// True if the start came to no page: what fails in it is told before there are phrases.
bool failsAtStart(const PlayedStory& english) {
  const auto failed =
      std::find_if(english.events.begin(), english.events.end(), [](const Event& event) {
        return event["event"] == "box" &&
               event["text"].text().starts_with("Error occured during loading");
      });
  return failed != english.events.end();
}

bool anyStep(Json document, bool (*test)(const Json&)) {
  bool found = false;
  forEachSteps(document, [&](Json& steps) {
    found = found || std::any_of(steps.begin(), steps.end(), test);
  });
  return found;
}

/// The steps that only prepare are done before the program starts.
std::vector<Json>::iterator firstStep(std::vector<Json>& script) {
  return std::find_if(script.begin(), script.end(), [](const Json& step) {
    return !step.contains("answer") && !step.contains("at");
  });
}

bool endsAtStart(const PlayedStory& english) {
  for (const Event& event : english.events) {
    if (event["event"] == "end") return true;
    if (event["event"] == "step" && !event["step"].contains("answer") &&
        !event["step"].contains("at")) {
      return false;
    }
  }
  return false;
}

/// Why a scenario says nothing in another language; empty if it does.
std::string reasonToLeave(const Json& document, const PlayedStory& english) {
  if (!english.refusal.empty()) return "cannot be played so: " + english.refusal;
  if (anyStep(document, choosesLanguage)) return "chooses a language itself";
  if (english.language != 0) return "its machine has another language";
  if (strikesText(document)) return "strikes a box by its English text";
  if (failsAtStart(english)) return "fails at the start";
  if (anyStep(document, waitsForPart)) return "waits for a part of an English text";
  if (anyStep(document, startsAnother)) return "starts a second program";
  if (endsAtStart(english)) return "ends before the first page";
  return {};
}

// ---- the other language

const JoinedText& installedLine() {
  using Kind = Piece::Kind;
  static const JoinedText line({{Kind::Translated, "ZEV has been sucessfully installed into '"},
                                {Kind::Variable, ""},
                                {Kind::Translated, "' directory."},
                                {Kind::Literal, "\r\n\r\n"},
                                {Kind::Translated, "Now creating shortcuts..."}});
  return line;
}

const JoinedText& userLine() {
  using Kind = Piece::Kind;
  static const JoinedText line({{Kind::Translated, userPhrase}, {Kind::Variable, ""}});
  return line;
}

/// A caption, or a text that a caption is awaited to have, in a language.
std::string captionIn(int language, const std::string& english) {
  for (const JoinedText* line : {&installedLine(), &userLine()}) {
    if (const auto variables = line->match(english, 0)) return line->in(language, *variables);
  }
  return translated(english, language);
}

/// Names of files are shown as they are, whatever phrases they may be.
bool showsPhrases(const std::string& property) {
  return property.ends_with(".Caption") && property.find("Label12") == std::string::npos;
}

/// The texts that a step waits for, or writes into captions, in a language.
void stepIn(int language, Json& step) {
  if (step.contains("set")) {
    for (auto& [key, value] : step["set"].items()) {
      if (value.isText() && showsPhrases(key)) value = captionIn(language, value.text());
    }
  }
  if (!step.contains("at") || !step["at"].contains("set")) return;
  Json& awaited = step["at"]["set"];
  if (!showsPhrases("." + awaited[0].text())) return;
  Json& text = awaited[1].isMembers() ? awaited[1]["contains"] : awaited[1];
  if (text.isText()) text = captionIn(language, text.text());
}

Json languageStep(int language) { return {{"set", {{"global.gLanguage", language}}}}; }

/// The scenario with the language put in force on the first page of each start.
Json storyIn(int language, Json document) {
  forEachSteps(document, [&](Json& steps) {
    Json own = Json::list();
    for (Json& step : steps) {
      stepIn(language, step);
      own.push_back(step);
      if (step.contains("restart")) own.push_back(languageStep(language));
    }
    steps = std::move(own);
  });
  Json& script = document["script"];
  std::vector<Json> steps;
  if (!script.isNull()) steps.assign(script.begin(), script.end());
  steps.insert(firstStep(steps), languageStep(language));
  script = Json::list(std::move(steps));
  return document;
}

// ---- the comparison

/// Whether one play shows in a language what the other shows in English. From its first step to its
/// next start it is in the language; before that, and while it starts anew, it is in English.
class Comparison {
 public:
  Comparison(const PlayedStory& english, const PlayedStory& other, int language)
      : english_(english), other_(other), chosen_(language) {}

  /// What differs first; empty if nothing does.
  std::string difference() {
    for (const Event& event : other_.events) {
      if (event["event"] == "start") language_ = 0;
      if (isLanguageStep(event)) {
        language_ = chosen_;
      } else if (!localises(event)) {
        if (place_ == english_.events.size()) return "more happens: " + event.dump();
        const std::string found = compare(english_.events[place_], event);
        if (!found.empty()) return found;
        ++place_;
      }
    }
    if (place_ < english_.events.size()) return "missing: " + english_.events[place_].dump();
    if (english_.state != other_.state) return "the machine is left in another state";
    return {};
  }

  std::size_t sameBoxes = 0;   ///< that read as they do in English
  std::size_t otherBoxes = 0;  ///< that read otherwise

 private:
  bool isLanguageStep(const Event& event) const {
    return event["event"] == "step" && event["step"] == languageStep(chosen_);
  }

  /// A dialog that is opened anew is localised control by control, which English leaves out.
  bool localises(const Event& event) const {
    if (language_ == 0 || event["event"] != "set") return false;
    const std::string control = event["control"].text();
    const std::string property = event["property"].text();
    const bool inDialog = control.starts_with("Form2.") || control.starts_with("Form3.");
    const bool text = property == "Caption" || property == "ToolTipText";
    return inDialog && text && !isNext(control, property);
  }

  /// Whether the English play writes that property next.
  bool isNext(const std::string& control, const std::string& property) const {
    if (place_ == english_.events.size()) return false;
    const Event& next = english_.events[place_];
    return next["event"] == "set" && next["control"] == control && next["property"] == property;
  }

  std::string compare(const Event& english, const Event& other) {
    const std::string kind = english["event"].text();
    if (kind == "box" && other["event"] == "box") return compareBox(english, other);
    Event expected = english;
    if (kind == "set" && showsPhrases(propertyOf(english)) && english["value"].isText()) {
      expected["value"] = captionIn(language_, english["value"].text());
    }
    if (kind == "input") expectInput(expected);
    if (kind == "step") {
      stepIn(chosen_, expected["step"]);
    }
    if (kind == "step" && expected["step"].contains("at")) return {};  // holds steps of its own
    return expected == other ? "" : "expected " + expected.dump() + "\n   found " + other.dump();
  }

  static std::string propertyOf(const Event& event) {
    return event["control"].text() + "." + event["property"].text();
  }

  void expectInput(Event& event) const {
    for (const BoxPattern& each : inputPatterns()) {
      const auto variables = each.text.match(event["prompt"].text(), 0);
      if (!variables) continue;
      event["prompt"] = each.text.in(language_, *variables);
      event["title"] = each.title.in(language_, {});
    }
  }

  /// Boxes of the same English words may be translated in other pieces: those of a drive depend on
  /// who shows them.
  std::string compareBox(const Event& english, const Event& other) {
    const ToldBox box = shownBox(english);
    const ToldBox found = shownBox(other);
    const bool browser = shownByBrowser(english_.events, place_);
    std::string wanted;
    for (const BoxPattern* each : patternsOf(box, 0)) {
      if (each->name.ends_with(browser ? " in validate" : " in browser")) continue;
      const auto variables = each->text.match(box.text, 0);
      const ToldBox expected = {each->text.in(language_, *variables), each->title.in(language_, {}),
                                each->style};
      if (expected == found && english["answer"] == other["answer"]) {
        (expected.text == box.text ? sameBoxes : otherBoxes)++;
        return {};
      }
      wanted += "\n   expected " + each->name + ": " + expected.text + " [" + expected.title + "]";
    }
    return "box " + english.dump() + wanted + "\n   found " + other.dump();
  }

  const PlayedStory& english_;
  const PlayedStory& other_;
  const int chosen_;
  int language_ = 0;
  std::size_t place_ = 0;  ///< in the English play
};

/// With a sanitizer every fourth scenario is carried.
constexpr std::size_t everyScenario = sanitized ? 4 : 1;

/// The language whose turn it is with the n-th scenario.
std::vector<int> languageInTurn(std::size_t place) {
  return {languages[place % std::size(languages)]};
}

/// Scenarios of a shard, each carried into some languages.
class Carrying {
 public:
  explicit Carrying(std::vector<int> (*languagesFor)(std::size_t place))
      : languagesFor_(languagesFor) {}

  void carryShard(std::size_t shard) {
    const auto& files = scenarioFiles();
    for (std::size_t place = shard; place < files.size(); place += shards * everyScenario) {
      carry(files[place]);
    }
    std::cout << carried_ << " scenarios carried over, into " << languagesFor_(0).size() << " of "
              << std::size(languages) << " languages each; of their boxes " << otherBoxes_
              << " read otherwise, " << sameBoxes_ << " as in English" << std::endl;
    EXPECT_GT(otherBoxes_, 0u);
  }

 private:
  void carry(const std::string& file) {
    const Json document = readStory(file);
    const PlayedStory english = playToState(document, file);
    if (const std::string reason = reasonToLeave(document, english); !reason.empty()) {
      std::cout << "left out: " << file << ": " << reason << "\n";
      return;
    }
    for (const int language : languagesFor_(carried_++)) {
      const PlayedStory other = playToState(storyIn(language, document), file);
      EXPECT_EQ(other.refusal, "") << file << " in language " << language;
      Comparison comparison(english, other, language);
      EXPECT_EQ(comparison.difference(), "") << file << " in language " << language;
      sameBoxes_ += comparison.sameBoxes;
      otherBoxes_ += comparison.otherBoxes;
    }
  }

  std::vector<int> (*languagesFor_)(std::size_t);
  std::size_t carried_ = 0;
  std::size_t sameBoxes_ = 0;
  std::size_t otherBoxes_ = 0;
};

class Languages : public testing::TestWithParam<std::size_t> {};

TEST_P(Languages, EveryScenarioShowsTheSameInTranslation) {
  Carrying(languageInTurn).carryShard(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Shard, Languages, testing::Range(std::size_t{0}, shards));

#ifndef ZEV_SANITIZED
std::vector<int> otherLanguages(std::size_t place) {
  std::vector<int> others(std::begin(languages), std::end(languages));
  others.erase(others.begin() + static_cast<std::ptrdiff_t>(place % std::size(languages)));
  return others;
}

/// In those languages whose turn it was not.
class OtherLanguages : public testing::TestWithParam<std::size_t> {};

TEST_P(OtherLanguages, EveryScenarioShowsTheSameInTranslation) {
  Carrying(otherLanguages).carryShard(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Shard, OtherLanguages, testing::Range(std::size_t{0}, shards));
#endif

}  // namespace
}  // namespace zev
