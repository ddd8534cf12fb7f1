#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "runtime/text.h"

namespace zev {

/// The phrases of the program in the language in force. All text that the program shows is English
/// in the code and passes through `Translate` when it is shown: the English sentence is the key.
class Phrases {
 public:
  /// Reads the language in force through the reference, at every use.
  explicit Phrases(const std::int32_t& gLanguage) : gLanguage_(gLanguage) {}

  /// The command word that makes `Translate` forget the answers that it remembers.
  static constexpr TextView HafizaTemizle = u"HafizaTemizle";

  /// The phrase in the language in force, or the phrase itself where the table knows no better.
  /// Case does not matter to the lookup, blanks do. Never fails towards its caller but for a table
  /// that was never dimensioned: error 9.
  Text Translate(TextView phrase);

  /// Gives both arrays slots 0 to `upperBound`, all empty.
  void dimension(std::int32_t upperBound);

  /// Builds the table anew for the language in force, in row order, key before translation.
  void LoadPhrases();

  /// Slot 0 stays empty; the rows start at 1.
  const std::vector<Text>& PhraseKeys() const { return PhraseKeys_; }
  const std::vector<Text>& PhraseValues() const { return PhraseValues_; }

  struct Recent {
    Text asked;
    Text answer;
  };
  /// The last ten known phrases that were asked for, newest first; a free entry has no texts.
  const std::array<Recent, 10>& RecentPhrases() const { return RecentPhrases_; }

 private:
  bool tableAnswers();
  Text lookUp(TextView phrase);
  Text remember(TextView phrase, Text answer);

  const std::int32_t& gLanguage_;
  std::vector<Text> PhraseKeys_;
  std::vector<Text> PhraseValues_;
  std::array<Recent, 10> RecentPhrases_;
};

/// The upper bound of an array indexed from 0; error 9 for one that was never dimensioned.
std::int32_t upperBound(const std::vector<Text>& array);

}  // namespace zev
