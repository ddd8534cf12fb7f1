#include "runtime/application.h"

#include <algorithm>

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

/// An event that came in meanwhile may have unloaded it.
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
