#include "scenario/outside_view.h"

#include <cmath>

#include "scenario/expectation.h"

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

constexpr std::int32_t twipsAPixel = 15;  // of 1440 an inch, at 96 pixels an inch

/// As windows are placed: to the nearest pixel, a half away from 0.
std::int32_t onPixels(std::int32_t twips) {
  return twipsOfPixels(static_cast<std::int32_t>(std::lround(twips / double{twipsAPixel})));
}

SeenForm sightOf(const Form& form) {
  SeenForm seen;
  seen.form = &form;
  seen.visible = form.loaded() && form.Visible;
  seen.caption = Text(beforeNul(form.Caption.get()));
  seen.enabled = form.Enabled;
  seen.width = onPixels(form.design().width);
  seen.height = onPixels(form.design().height);
  for (std::size_t place = 0; place < form.Controls().size(); ++place) {
    const Control& control = *form.Controls()[place];
    if (!isSeen(control)) continue;
    seen.controls[place] = {shownText(control), control.Enabled, control.Visible,
                            seenPlace(control)};
  }
  return seen;
}

}  // namespace

bool isSeen(const Control& control) {
  return control.kind() != ControlKind::Line && control.kind() != ControlKind::Menu &&
         !control.design().bar;
}

std::int32_t twipsOfPixels(std::int32_t pixels) { return pixels * twipsAPixel; }

SeenPlace seenPlace(const Control& control) {
  const std::int32_t left = onPixels(control.Left);
  const std::int32_t top = onPixels(control.Top);
  return {left, top, onPixels(control.Left + control.Width) - left,
          control.dropsDown() ? 0 : onPixels(control.Top + control.Height) - top};
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
  lookAtFrame(now, before);
  for (const auto& [place, control] : now.controls) {
    lookAt(*now.form, place, control, before.controls[place]);
  }
}

void OutsideView::lookAtFrame(const SeenForm& now, SeenForm& before) {
  const Text& form = now.form->name();
  if (now.width != before.width) tellSet(form, "Width", now.width);
  if (now.height != before.height) tellSet(form, "Height", now.height);
  before.width = now.width;
  before.height = now.height;
}

void OutsideView::lookAt(const Form& form, std::size_t place, const SeenControl& now,
                         SeenControl& before) {
  if (now == before) return;
  const Control& control = *form.Controls()[place];
  const Text name = join(form.name(), u".", control.name());
  if (now.text != before.text) tellSet(name, textPropertyOf(control), toUtf8(now.text));
  if (now.enabled != before.enabled) tellSet(name, "Enabled", now.enabled);
  if (now.visible != before.visible) tellSet(name, "Visible", now.visible);
  if (now.place != before.place) {
    tellSet(name, "Place",
            Json::list({now.place.left, now.place.top, now.place.width, now.place.height}));
  }
  if (now.inSight != before.inSight) tellSet(name, "InSight", now.inSight);
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
  if (ended.isMembers()) {
    event["how"] = "error";
    event["error"] = ended.at("error");
  }
  tell(event);
}

void OutsideView::tell(const Json& event) { out_ << event.dump() << '\n'; }

}  // namespace zev::scenario
