#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "runtime/error.h"
#include "runtime/form.h"

namespace zev {

/// What the run-time needs of a toolkit to put forms on a screen and to hear what the person does.
/// A binding implements it; all calls come on the one user-interface thread.
class FormEngine : public FormObserver {
 public:
  /// The form was loaded; its controls can be created. Called once a load.
  virtual void loaded(Form& form) = 0;
  /// The form becomes visible, on top of all others.
  virtual void shown(Form& form) = 0;
  /// The form goes from the screen and stays loaded.
  virtual void hidden(Form& form) = 0;
  /// The form is gone; its window can be destroyed.
  virtual void unloaded(Form& form) = 0;

  /// One pass of the message loop begins.
  virtual void beginPass() = 0;
  /// Dispatches one thing that waits and queues the events that come of it (Application::post),
  /// without running any handler. False if nothing waited.
  virtual bool pump() = 0;
  /// Waits for the next message and does as pump(). False if none will ever come.
  virtual bool wait() = 0;

  /// The handle of the form's window; 0 before it is loaded.
  virtual std::uintptr_t windowHandle(const Form& form) = 0;
  /// Width of a text in the form's font, in the form's scale (twips).
  virtual double TextWidth(const Form& form, TextView text) = 0;
  /// Width of one pixel of the screen in twips.
  virtual double TwipsPerPixelX() = 0;
};

/// The program as the run-time runs it: its loaded forms, its queue of events and its message loop.
///
/// Handlers run from the top of the loop, never inside a dispatch: a binding posts what happened,
/// and run() and DoEvents() run it. A run-time error that leaves a handler ends the program.
class Application {
 public:
  /// While one lives, the program asks the end of the person's session to wait, and says why. None
  /// lies within another.
  class Busy {
   public:
    /// `reason` is what the person reads who wants to end the session.
    Busy(Application& application, Text reason) : application_(application) {
      application_.busyWith_ = std::move(reason);
    }
    ~Busy() { application_.busyWith_.reset(); }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;

   private:
    Application& application_;
  };

  /// Borrows the engine, which outlives the application.
  explicit Application(FormEngine& engine) : engine_(engine) {}

  /// Runs the program: the entry procedure, then the message loop until the last form is gone.
  /// Leaves by ProgramEnd or UnhandledError for every end but one: it returns when the engine has
  /// no more messages, with forms still open.
  void run(const EventProcedure& entry);

  /// Loads the form unless it is loaded (its Load event runs before it is visible) and shows it. A
  /// form that unloads itself in its Load is not shown. A run-time error of Load unloads the form
  /// again and reaches the caller.
  void Show(Form& form);
  /// Takes the form from the screen; it stays loaded, with all that was written to it.
  void Hide(Form& form);
  /// Unloads a form: QueryUnload, Unload, then it is gone. False if one of the two refused; true
  /// for a form that was not loaded, too.
  bool Unload(Form& form, UnloadMode mode = UnloadMode::Code);

  /// One pass of the message loop: runs all that is queued and all that waits for dispatch. Throws
  /// ProgramEnd if no form is loaded any more.
  void DoEvents();

  /// The language's statement that ends the program on the spot: no form is asked or unloaded.
  [[noreturn]] static void End() { throw ProgramEnd{EndKind::Exit}; }

  /// Queues an event procedure to be run from the top of the message loop. What it refers to may be
  /// gone by then: the caller sees to that.
  void post(EventProcedure event) { queue_.push_back(std::move(event)); }

  /// What the end of the session has to wait for; none: it may come.
  const std::optional<Text>& busyWith() const { return busyWith_; }
  /// The session of the person ends: `SessionEnds` runs at once, since the system waits no longer
  /// than that, and the program ends at the next turn of its loop, without a question.
  void endSession();
  /// Tidies up before the session ends. It passes no message loop; run-time errors are ignored.
  EventProcedure SessionEnds;

  /// The loaded forms, the one loaded first in front. The program is over when there are none.
  const std::vector<Form*>& forms() const { return forms_; }
  FormEngine& engine() const { return engine_; }

 private:
  void load(Form& form);
  void discard(Form& form);
  void runQueue();
  void leaveIfOver() const;

  FormEngine& engine_;
  std::vector<Form*> forms_;  ///< loaded, oldest first
  std::deque<EventProcedure> queue_;
  std::optional<Text> busyWith_;
};

}  // namespace zev
