#include "programs/zevsim/meant.h"

#include <algorithm>
#include <iterator>

#include "programs/zevsim/form_pieces.h"
#include "scenario/json_reader.h"

namespace zev::simulator {
namespace {

/// Letters that are one letter to who leaves its accents out, in lower case.
struct Accents {
  char16_t plain;
  TextView letters;
};

constexpr Accents accents[] = {
    {u'a', u"àáâãäåāăą"}, {u'c', u"çćĉċč"}, {u'd', u"ďđ"},        {u'e', u"èéêëēĕėęě"},
    {u'g', u"ĝğġģ"},      {u'h', u"ĥħ"},    {u'i', u"ìíîïĩīĭįı"}, {u'j', u"ĵ"},
    {u'k', u"ķ"},         {u'l', u"ĺļľŀł"}, {u'n', u"ñńņňŉ"},     {u'o', u"òóôõöøōŏő"},
    {u'r', u"ŕŗř"},       {u's', u"śŝşšſ"}, {u't', u"ţťŧ"},       {u'u', u"ùúûüũūŭůűų"},
    {u'w', u"ŵ"},         {u'y', u"ýÿŷ"},   {u'z', u"źżž"},
};

constexpr char16_t dottedI = u'\u0130';

char16_t plain(char16_t letter) {
  if (letter == dottedI) return u'i';
  for (const Accents& each : accents) {
    if (each.letters.find(letter) != TextView::npos) return each.plain;
  }
  return letter;
}

/// Accents that are characters of their own follow their letter.
bool combines(char16_t unit) { return unit >= 0x300 && unit <= 0x36F; }

bool isWordUnit(char16_t unit) {
  const bool digit = unit >= u'0' && unit <= u'9';
  return digit || (unit >= u'a' && unit <= u'z') || unit >= 0x80;
}

/// What both have to be: texts that are folded.
using Likeness = bool (*)(const Text& text, const Text& written);

bool endsWord(const Text& text, std::size_t place) {
  return place == text.size() || !isWordUnit(text[place]);
}

bool is(const Text& text, const Text& written) { return text == written; }

bool begins(const Text& text, const Text& written) { return text.starts_with(written); }

bool beginsWithWord(const Text& text, const Text& written) {
  return begins(text, written) && endsWord(text, written.size());
}

bool hasWordThatBegins(const Text& text, const Text& written) {
  for (std::size_t at = text.find(written); at != Text::npos; at = text.find(written, at + 1)) {
    if (at == 0 || !isWordUnit(text[at - 1])) return true;
  }
  return false;
}

/// From what is surely meant to what may be.
constexpr Likeness likenesses[] = {is, beginsWithWord, begins, hasWordThatBegins};

/// Whether a person can name the control by what stands on it.
bool hasCaption(const Control& control) {
  switch (control.kind()) {
    case ControlKind::CommandButton:
    case ControlKind::OptionButton:
    case ControlKind::CheckBox:
      return true;
    default:
      return false;
  }
}

[[noreturn]] void failSeveral(TextView written, const std::string& all) {
  throw scenario::ScenarioError("prompt", "\"" + toUtf8(written) + "\" may be " + all);
}

}  // namespace

Text folded(TextView text) {
  Text letters;
  for (const char16_t each : lowerCase(text)) {
    if (!combines(each)) letters += plain(each);
  }
  const auto first = std::find_if(letters.begin(), letters.end(), isWordUnit);
  const auto last = std::find_if(letters.rbegin(), letters.rend(), isWordUnit).base();
  return first == letters.end() ? letters : Text(first, last);
}

std::vector<std::size_t> meantOf(TextView written, const std::vector<Text>& texts) {
  const Text wanted = folded(written);
  std::vector<std::size_t> found;
  if (wanted.empty()) return found;
  for (const Likeness isLike : likenesses) {
    for (std::size_t place = 0; place < texts.size(); ++place) {
      if (isLike(folded(texts[place]), wanted)) found.push_back(place);
    }
    if (!found.empty()) break;
  }
  return found;
}

std::optional<std::size_t> meantOne(TextView written, const std::vector<Text>& texts) {
  const auto found = meantOf(written, texts);
  if (found.size() > 1) {
    std::vector<Text> all;
    for (const std::size_t each : found) all.push_back(texts[each]);
    failSeveral(written, enumerated(all));
  }
  return found.empty() ? std::nullopt : std::optional(found.front());
}

Control* meantControl(std::string_view written, const Form& form) {
  const Text wanted = fromUtf8(written);
  if (Control* named = form.findControl(wanted)) return named;
  const std::vector<Control*> controls = shownOf(form, hasCaption);
  std::vector<Text> captions;
  for (const Control* each : controls) captions.push_back(shownText(*each));
  const auto found = meantOf(wanted, captions);
  if (found.size() < 2) return found.empty() ? nullptr : controls[found.front()];
  std::string all;
  for (const std::size_t each : found) {
    all += (all.empty() ? "" : " or ") + calledBy(*controls[each]);
  }
  failSeveral(wanted, all);
}

std::vector<Control*> shownOf(const Form& form, bool (*isOfSort)(const Control& control)) {
  std::vector<Control*> shown;
  for (Control* each : form.Controls()) {
    if (each->showing() && isOfSort(*each)) shown.push_back(each);
  }
  return shown;
}

std::vector<Text> entriesOf(const ComboBox& combo) {
  std::vector<Text> entries;
  for (std::int32_t at = 0; at < combo.ListCount(); ++at) entries.push_back(combo.List(at));
  return entries;
}

std::string enumerated(const std::vector<Text>& texts) {
  std::string all;
  for (const Text& each : texts) all += (all.empty() ? "" : ", ") + toUtf8(each);
  return all;
}

std::string calledBy(const Control& control) {
  const std::string name = toUtf8(control.name());
  return hasCaption(control) ? name + " \"" + toUtf8(shownText(control)) + "\"" : name;
}

}  // namespace zev::simulator
