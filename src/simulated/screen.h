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

/// The screen of a simulated machine: the toolkit of one running program, in place of Windows. It
/// measures text at 6 pixels a character and 15 twips a pixel, keeps the focus, and writes the
/// transcript of the forms.
///
/// How a click gets to its handler: the program waits, so wait() asks the Person for the next
/// thing; the person uses a Hand, which calls moveFocus() and posts the click to the Application;
/// the application runs LostFocus, GotFocus and Click from the top of its loop. No handler of the
/// program ever runs inside a call of this class.
///
/// Forms are known from loaded() to unloaded(); a call about any other form or its controls is
/// ignored. The visible ones form a stack, the last shown or clicked on top. Each form has a focus
/// of its own, which only counts, and only fires focus events, while the form is the active one.
///
/// Owns nothing but this bookkeeping: forms and controls are the program's.
class Screen final : public FormEngine {
 public:
  /// Borrows all three; they outlive it.
  Screen(Person& person, Transcript& transcript, observed::Instrumentation& instrumentation)
      : person_(person), transcript_(transcript), instrumentation_(instrumentation) {}
  /// The program whose screen this is, and the messages of its hidden windows; both borrowed. To be
  /// called before anything else.
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
  /// The form that a control lies on, or the form itself; null if it is not loaded.
  Form* formOf(const Component& component) const;
  /// The topmost enabled form; the topmost one if all are disabled; null if none is visible.
  Form* activeForm() const;
  /// The control that has the focus whenever the form is active; null if none can.
  Control* focused(const Form& form) const;
  /// Gives a control the focus as a person does, which also brings its form to the top. The focus
  /// events are posted, LostFocus before GotFocus.
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
  std::map<const Form*, Control*> focus_;  ///< null: nothing on it can take the focus
  std::set<Text> everShown_;               ///< names; `set` is not written before the first showing
  std::vector<Form*> visible_;             ///< from the bottom to the top
  std::uintptr_t lastHandle_ = 0x20010;
  int openBoxes_ = 0;
};

}  // namespace zev::simulated
