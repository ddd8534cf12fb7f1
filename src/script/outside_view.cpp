#include "script/outside_view.h"

#include "script/expectation.h"

namespace zev::scenario {
namespace {

constexpr std::int32_t buttonsAndIcon = 0xFF;
constexpr std::int32_t defaultButton = 0x300;

/// A window's text ends at the first NUL.
Text shownText(const Control& control) {
  const PropertyBase* property = control.findProperty(textPropertyOf(control));
  if (property == nullptr) return {};
  return Text(beforeNul(std::get<Text>(property->value())));
}

/// A single carriage return is a line end of its own on the screen.
Text inLines(TextView text) {
  Text lines;
  for (std::size_t place = 0; place < text.size(); ++place) {
    lines += text[place];
    const bool alone = text[place] == u'\r' && text.substr(place + 1, 1) != u"\n";
    if (alone) lines += u'\n';
  }
  return lines;
}

SeenForm sightOf(const Form& form) {
  SeenForm seen{
      &form, form.loaded() && form.Visible, Text(beforeNul(form.Caption.get())), form.Enabled, {}};
  for (std::size_t place = 0; place < form.Controls().size(); ++place) {
    const Control& control = *form.Controls()[place];
    if (!isSeen(control)) continue;
    seen.controls[place] = {shownText(control), control.Enabled, control.Visible};
  }
  return seen;
}

}  // namespace

bool isSeen(const Control& control) {
  return control.kind() != ControlKind::Line && control.kind() != ControlKind::Menu &&
         !control.design().bar;
}

std::string_view textPropertyOf(const Control& control) {
  for (const std::string_view name : {"Caption", "Text"}) {
    if (control.findProperty(name) != nullptr) return name;
  }
  return {};
}

Sight sightOf(const std::vector<Form*>& forms) {
  Sight sight;
  for (const Form* form : forms) sight.push_back(sightOf(*form));
  return sight;
}

std::int32_t visibleStyle(std::int32_t style) { return style & (buttonsAndIcon | defaultButton); }

void OutsideView::look(const Sight& sight, bool boxOpen) {
  for (const SeenForm& each : sight) lookAt(each, boxOpen);
}

void OutsideView::lookAt(const SeenForm& now, bool boxOpen) {
  SeenForm& before = seen_[now.form->name()];
  const Json form = toUtf8(now.form->name());
  if (before.visible && !now.visible) tell({{"event", "hide"}, {"form", form}});
  if (!before.visible && now.visible) tell({{"event", "show"}, {"form", form}});
  before.visible = now.visible;
  if (!now.visible) return;
  if (now.caption != before.caption) tellSet(now.form->name(), "Caption", toUtf8(now.caption));
  if (!boxOpen && now.enabled != before.enabled) {
    tellSet(now.form->name(), "Enabled", now.enabled);
    before.enabled = now.enabled;
  }
  before.caption = now.caption;
  for (const auto& [place, control] : now.controls) {
    lookAt(*now.form, place, control, before.controls[place]);
  }
}

void OutsideView::lookAt(const Form& form, std::size_t place, const SeenControl& now,
                         SeenControl& before) {
  if (now == before) return;
  const Control& control = *form.Controls()[place];
  const Text name = join(form.name(), u".", control.name());
  if (now.text != before.text) tellSet(name, textPropertyOf(control), toUtf8(now.text));
  if (now.enabled != before.enabled) tellSet(name, "Enabled", now.enabled);
  if (now.visible != before.visible) tellSet(name, "Visible", now.visible);
  before = now;
}

void OutsideView::tellSet(const Text& control, std::string_view property, Json value) {
  tell({{"event", "set"},
        {"control", toUtf8(control)},
        {"property", property},
        {"value", std::move(value)}});
}

void OutsideView::step(const Json& step) { tell({{"event", "step"}, {"step", step}}); }

void OutsideView::box(TextView text, TextView title, std::int32_t style, std::string_view answer) {
  tell({{"event", "box"},
        {"text", toUtf8(beforeNul(text))},
        {"title", toUtf8(beforeNul(title))},
        {"style", visibleStyle(style)},
        {"answer", answer}});
}

void OutsideView::input(TextView prompt, TextView title, TextView answer) {
  tell({{"event", "input"},
        {"prompt", toUtf8(inLines(beforeNul(prompt)))},
        {"title", toUtf8(beforeNul(title))},
        {"answer", toUtf8(answer)}});
}

void OutsideView::end(const Json& ended) {
  Json event{{"event", "end"}};
  if (ended.is_object()) {
    event["how"] = "error";
    event["error"] = ended.at("error");
  }
  tell(event);
}

void OutsideView::tell(const Json& event) {
  out_ << event.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace zev::scenario
