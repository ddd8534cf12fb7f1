#include "localisation/phrases.h"

#include <algorithm>

#include "localisation/catalogue.h"
#include "runtime/error.h"

namespace zev {
namespace {

bool isBlank(const Text& text) { return trim(text).empty(); }

}  // namespace

std::int32_t upperBound(const std::vector<Text>& array) {
  if (array.empty()) throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
  return static_cast<std::int32_t>(array.size()) - 1;
}

void Phrases::dimension(std::int32_t upperBound) {
  PhraseKeys_.assign(static_cast<std::size_t>(upperBound) + 1, {});
  PhraseValues_.assign(static_cast<std::size_t>(upperBound) + 1, {});
}

void Phrases::LoadPhrases() {
  dimension(phrase_row::count);
  for (std::size_t row = 1; row <= phrase_row::count; ++row) {
    PhraseKeys_[row] = phraseKey(row);
    PhraseValues_[row] = phraseTranslation(row, gLanguage_);
  }
}

Text Phrases::Translate(TextView phrase) {
  if (trim(phrase).empty()) return {};
  if (phrase == HafizaTemizle) {
    RecentPhrases_.fill({});
    return {};
  }
  if (gLanguage_ == 0 || !tableAnswers()) return Text(phrase);
  const auto recent = std::find_if(RecentPhrases_.begin(), RecentPhrases_.end(),
                                   [&](const Recent& each) { return each.asked == phrase; });
  if (recent != RecentPhrases_.end() && !recent->answer.empty()) return recent->answer;
  try {
    return lookUp(phrase);
  } catch (const RuntimeError&) {
    return Text(phrase);
  }
}

/// Builds the table if need be, and tells whether it may answer. A table that has rows but
/// no translations is built and answers. One that has no rows yet is built and leaves this phrase
/// untranslated: only a table whose two arrays differ would answer then, and they never do.
bool Phrases::tableAnswers() {
  const auto keys = [this] { return upperBound(PhraseKeys_); };
  const auto values = [this] { return upperBound(PhraseValues_); };
  if (keys() == 0 || values() == 0) {
    LoadPhrases();
    return keys() != 0 && values() != 0 && keys() != values();
  }
  if (!isBlank(PhraseKeys_[1]) && !isBlank(PhraseValues_[1])) return true;
  LoadPhrases();
  return keys() != 0 && values() != 0 && keys() == values();
}

/// The first row whose key is the phrase decides, also when it has no translation.
Text Phrases::lookUp(TextView phrase) {
  const Text wanted = lowerCase(phrase);
  for (std::size_t row = 1; row < PhraseKeys_.size(); ++row) {
    if (lowerCase(PhraseKeys_[row]) != wanted) continue;
    const Text& translation = PhraseValues_[row];
    return remember(phrase, isBlank(translation) ? Text(phrase) : translation);
  }
  return Text(phrase);
}

/// First in, first out: a phrase that is already remembered keeps its place.
Text Phrases::remember(TextView phrase, Text answer) {
  const bool known = std::any_of(RecentPhrases_.begin(), RecentPhrases_.end(),
                                 [&](const Recent& each) { return each.asked == phrase; });
  if (known) return answer;
  std::move_backward(RecentPhrases_.begin(), RecentPhrases_.end() - 1, RecentPhrases_.end());
  RecentPhrases_.front() = {Text(phrase), answer};
  return answer;
}

}  // namespace zev
