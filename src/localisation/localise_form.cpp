#include "localisation/localise_form.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "runtime/error.h"

namespace zev {
namespace {

using Kind = ControlKind;

/// Which properties of a kind of control are translated.
struct KindRule {
  ControlKind kind;
  std::array<std::string_view, 2> properties;  ///< in order; an empty name is none
};

constexpr KindRule kindRules[] = {
    {Kind::Label, {"Caption", "ToolTipText"}},
    {Kind::CommandButton, {"Caption", "ToolTipText"}},
    {Kind::PictureBox, {"ToolTipText"}},
    {Kind::Image, {"ToolTipText"}},
    {Kind::ComboBox, {"ToolTipText"}},
    {Kind::OptionButton, {"Caption", "ToolTipText"}},
    {Kind::CheckBox, {"Caption", "ToolTipText"}},
    {Kind::TextBox, {"Text", "ToolTipText"}},
    {Kind::Frame, {"Caption"}},
    {Kind::Menu, {"Caption"}},
};

void translateProperty(Control& control, std::string_view name, Phrases& phrases) {
  PropertyBase& property = control.property(name);
  property.write(phrases.Translate(std::get<Text>(property.value())));
}

/// The selected entry of a list; the other entries stay as they are. False for a list without one,
/// whose tool tip stays as it is, too.
bool translateSelection(ComboBox& combo, Phrases& phrases) {
  const std::int32_t selected = combo.ListIndex();
  if (combo.ListCount() <= 0 || selected == -1) return false;
  combo.setList(selected, phrases.Translate(combo.List(selected)));
  return true;
}

bool hasBlankCaption(const Control& control) {
  return trim(std::get<Text>(control.property("Caption").value())).empty();
}

void localiseControl(Control& control, Phrases& phrases) {
  const auto rule = std::find_if(std::begin(kindRules), std::end(kindRules),
                                 [&](const KindRule& each) { return each.kind == control.kind(); });
  if (rule == std::end(kindRules)) return;
  if (rule->kind == Kind::Menu && hasBlankCaption(control)) return;
  if (rule->kind == Kind::ComboBox &&
      !translateSelection(dynamic_cast<ComboBox&>(control), phrases)) {
    return;
  }
  for (const std::string_view property : rule->properties) {
    if (!property.empty()) translateProperty(control, property, phrases);
  }
}

/// A text of the wizard's form that goes back to English, and the row that holds it.
struct EnglishText {
  TextView control;  ///< empty: the form itself
  std::string_view property;
  std::size_t row;
};

// clang-format off
constexpr EnglishText englishTexts[] = {
    {u"Label1",   "Caption",  1},
    {u"Label2",   "Caption",  2},
    {u"Label4",   "Caption",  3},
    {u"Command3", "Caption",  5},
    {u"Command1", "Caption",  6},
    {u"Command2", "Caption",  7},
    {u"",         "Caption",  4},
    {u"Label3",   "Caption",  8},
    {u"Text1",    "Text",     9},
    {u"Option1",  "Caption", 10},
    {u"Option2",  "Caption", 11},
    {u"Check1",   "Caption", 12},
    {u"Label9",   "Caption", 13},
    {u"Command4", "Caption", 14},
};
// clang-format on

}  // namespace

std::int32_t LocaliseForm(Form& form, Phrases& phrases, std::int32_t gLanguage) {
  if (gLanguage == 0) return 0;
  try {
    for (Control* each : form.Controls()) localiseControl(*each, phrases);
    return 0;
  } catch (const RuntimeError&) {
    return -1;
  }
}

void RestoreEnglishTexts(Form1& form, const Phrases& phrases) {
  if (upperBound(phrases.PhraseKeys()) < 1) return;
  for (const EnglishText& each : englishTexts) {
    Component& target =
        each.control.empty() ? static_cast<Component&>(form) : form.control<Control>(each.control);
    target.property(each.property).write(phrases.PhraseKeys().at(each.row));
  }
}

}  // namespace zev
