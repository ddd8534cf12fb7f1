#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <vector>

#include "platform/message_queue.h"
#include "runtime/application.h"
#include "simulated/person.h"
#include "simulated/transcript.h"

namespace zev::simulated {

/// The screen of a simulated machine: the toolkit of one running program. It measures text at 6
/// pixels a character and 15 twips a pixel, keeps the focus, and writes the transcript of the
/// forms.
class Screen final : public FormEngine {
 public:
  /// Borrows all three.
  Screen(Person& person, Transcript& transcript, observed::Instrumentation& instrumentation)
      : person_(person), transcript_(transcript), instrumentation_(instrumentation) {}
  /// The program whose screen this is, and the messages of its hidden windows; before anything else
  /// is called.
  void serve(Application& application, MessageQueue& queue) {
    application_ = &application;
    queue_ = &queue;
  }

  // FormEngine
  void loaded(Form& form) override;
  void shown(Form& form) override;
  void hidden(Form& form) override;
  void unloaded(Form& form) override;
  void beginPass() override;
  bool pump() override;
  bool wait() override;
  std::uintptr_t windowHandle(const Form& form) override;
  double TextWidth(const Form& form, TextView text) override;
  double TwipsPerPixelX() override;
  void propertyWritten(PropertyBase& property) override;
  void refreshed(Component& component) override;
  void focusGiven(Control& control) override;

  Application& application() const { return *application_; }
  /// The form that a control lies on; null if it is not loaded.
  Form* formOf(const Component& component) const;
  /// The visible form on top, of the enabled ones if there is any; null without a visible form.
  Form* activeForm() const;
  /// The control of the form that has the focus when the form is active; null if none can.
  Control* focused(const Form& form) const;
  /// Moves the focus within the control's form and makes that form the active one. The focus events
  /// are posted, that of the loser first.
  void moveFocus(Control& control);

  /// While a box is open the forms take no input.
  bool boxOpen() const { return openBoxes_ > 0; }
  void boxOpens() { ++openBoxes_; }
  void boxCloses() { --openBoxes_; }

 private:
  void setFocus(Form& form, Control* control);
  void refocus(Form& form);
  void post(const Component& component, const EventProcedure& event);
  void raise(Form& form);
  void lower(Form& form);
  void tell(std::string_view kind, const Form& form);
  void tellWritten(PropertyBase& property);
  Text toldName(const Component& component) const;

  Person& person_;
  Transcript& transcript_;
  observed::Instrumentation& instrumentation_;
  Application* application_ = nullptr;
  MessageQueue* queue_ = nullptr;
  std::map<const Component*, Form*> forms_;  ///< of every component of a loaded form
  std::map<const Form*, std::uintptr_t> handles_;
  std::map<const Form*, Control*> focus_;
  std::set<Text> everShown_;  ///< by name: the object may be made anew
  std::vector<Form*> visible_;
  std::uintptr_t lastHandle_ = 0x20010;
  int openBoxes_ = 0;
};

}  // namespace zev::simulated
