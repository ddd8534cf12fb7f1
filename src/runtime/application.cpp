#include "runtime/application.h"

#include <algorithm>

// The message loop, and the life of a form within it:
//
//   Show      load: design state, Initialize, Load; then visible
//   Unload    QueryUnload, Unload (either may refuse); then gone: Terminate
//
// Every event procedure runs from runQueue(), which runs from run() or from DoEvents(). DoEvents is
// called by event procedures, so these frames nest; there is one queue, and whichever frame comes
// to it first takes the next event.
//
// The program is over when no form is loaded. That is looked at after each event, and it ends all
// nested frames at once, by ProgramEnd: code after the Unload of the last form still runs up to
// the end of its procedure, or to its next DoEvents.

namespace zev {
namespace {

/// Runs an event procedure as the outermost frame of the program.
void runEvent(const EventProcedure& event) {
  try {
    event();
  } catch (const RuntimeError& error) {
    throw UnhandledError{error};
  }
}

}  // namespace

void Application::run(const EventProcedure& entry) {
  runEvent(entry);
  leaveIfOver();
  while (engine_.wait()) {
    runQueue();
    leaveIfOver();
  }
}

void Application::DoEvents() {
  engine_.beginPass();
  do {
    runQueue();
    leaveIfOver();
  } while (engine_.pump());
}

void Application::endSession() {
  if (SessionEnds) ignoringErrors(SessionEnds);
  post([] { End(); });
}

/// An event is taken off the queue before it runs, since it may call DoEvents and so come back
/// here.
void Application::runQueue() {
  while (!queue_.empty()) {
    const EventProcedure event = std::move(queue_.front());
    queue_.pop_front();
    runEvent(event);
    leaveIfOver();
  }
}

void Application::leaveIfOver() const {
  if (forms_.empty()) throw ProgramEnd{EndKind::Unload};
}

/// The form counts as loaded before its Load runs: Load may use its controls, and may unload it.
void Application::load(Form& form) {
  if (form.loaded_) return;
  form.restoreDesign();
  form.loaded_ = true;
  forms_.push_back(&form);
  form.observeAll(&engine_);
  engine_.loaded(form);
  try {
    if (form.Initialize) form.Initialize();
    if (form.Load) form.Load();
  } catch (const RuntimeError&) {
    discard(form);
    throw;
  }
}

// Visible is followed, not assigned: assigning would tell the engine, which would show or hide the
// form a second time.

void Application::Show(Form& form) {
  load(form);
  if (!form.loaded_ || form.Visible) return;
  form.Visible.follow(true);
  engine_.shown(form);
}

void Application::Hide(Form& form) {
  if (!form.loaded_ || !form.Visible) return;
  form.Visible.follow(false);
  engine_.hidden(form);
}

bool Application::Unload(Form& form, UnloadMode mode) {
  if (!form.loaded_) return true;
  std::int16_t Cancel = 0;
  if (form.QueryUnload) form.QueryUnload(Cancel, mode);
  if (Cancel == 0 && form.Unload) form.Unload(Cancel);
  if (Cancel != 0) return false;
  discard(form);
  return true;
}

/// Nothing if the form is gone already: its own Load, QueryUnload or Unload may have unloaded it.
/// Terminate runs last, when the form is off the screen and observed no more.
void Application::discard(Form& form) {
  if (!form.loaded_) return;
  form.loaded_ = false;
  form.Visible.follow(false);
  std::erase(forms_, &form);
  engine_.unloaded(form);
  form.observeAll(nullptr);
  if (form.Terminate) form.Terminate();
}

}  // namespace zev
