#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "runtime/application.h"

namespace zev::test {

/// A toolkit without a screen: it notes what it is told, and its messages are procedures that a
/// test puts in line. Every character of its font is equally wide.
class FakeFormEngine final : public FormEngine {
 public:
  /// What was told of forms, properties and passes, in order: "loaded Form1", "Label1.Caption",
  /// "refreshed Label1", "focus Text1", "pass".
  std::vector<std::string> log;
  /// What the system has for the program; pump() and wait() run one each.
  std::deque<std::function<void()>> messages;
  /// Called for each property that was written, before it is noted.
  std::function<void(PropertyBase&)> onWrite;

  std::int32_t pixelsPerCharacter = 6;
  std::int32_t twipsPerPixel = 15;

  void loaded(Form& form) override { note("loaded", form); }
  void shown(Form& form) override { note("shown", form); }
  void hidden(Form& form) override { note("hidden", form); }
  void unloaded(Form& form) override { note("unloaded", form); }
  void beginPass() override { log.emplace_back("pass"); }
  bool pump() override { return takeMessage(); }
  bool wait() override { return takeMessage(); }
  std::uintptr_t windowHandle(const Form& form) override { return form.loaded() ? 1 : 0; }

  double TextWidth(const Form& form, TextView text) override {
    const std::int32_t pixels = len(text) * pixelsPerCharacter;
    return form.ScaleMode == 1 ? pixels * twipsPerPixel : pixels;
  }
  double TwipsPerPixelX() override { return twipsPerPixel; }

  void propertyWritten(PropertyBase& property) override {
    if (onWrite) onWrite(property);
    log.push_back(toUtf8(property.owner().name()) + "." + std::string(property.name()));
  }
  void refreshed(Component& component) override { note("refreshed", component); }
  void focusGiven(Control& control) override { note("focus", control); }

 private:
  void note(const char* what, const Component& component) {
    log.push_back(std::string(what) + " " + toUtf8(component.name()));
  }

  bool takeMessage() {
    if (messages.empty()) return false;
    const auto message = std::move(messages.front());
    messages.pop_front();
    message();
    return true;
  }
};

}  // namespace zev::test
