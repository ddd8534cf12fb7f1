#pragma once

#include <string_view>
#include <vector>

#include "json/value.h"
#include "observed/instrumentation.h"

namespace zev::simulated {

using json::Value;

/// One event of a run: members, of which the first, `event`, names its kind.
using Event = Value;

/// Whether a kind of event is written only where it is asked for by name, since a run has
/// thousands.
bool onDemandOnly(std::string_view kind);

/// Takes the events of a run in the order in which they happen. The machine writes these kinds:
///
///   Event      Members                      What happened
///   start                                   the program was started
///   show       form                         a form came on the screen
///   hide       form                         a form left the screen and stays loaded
///   unload     form                         a form was unloaded
///   set        control, property, value     a property was written; control is "Form1.Label12",
///                                           or "Form1" for the form itself
///   refresh *  control                      a form or control was painted at once
///   box        text, title, style, answer   a message box was answered; answer is a word: "yes"
///   input      prompt, title, answer        an input box was answered
///   file       op, path, bytes, error       op: create, write, delete, mkdir, rmdir, attributes;
///                                           bytes: with write only; error: the system's number,
///                                           0 for success. The writes to an open file are one
///                                           event when it is closed, a failing one its own at once
///   registry   op, hive, key, name,         op: create, set, delete (a value), deleteKey; name,
///              type, value, error           type and value only where the op has them
///   shortcut   path, properties             a shortcut was saved
///   dde        topic, command               a command was sent to a DDE server
///   shell      command, style, error        a program was to be started; error: the number of a
///                                           run-time error, 0 for success
///   wait       command                      the program waits for a process; command started it
///   open       path                         a file or folder was opened by its type
///   sleep      ms                           the program paused
///   call *     name, arguments, result      a platform operation was called
///
/// Those with a star are many: they are written only where `wants` says so by name
/// (onDemandOnly()).
class Transcript {
 public:
  virtual ~Transcript() = default;
  /// Whether events of this kind are wanted. An event that is not is never made.
  virtual bool wants(std::string_view kind) const = 0;
  /// Takes an event that is wanted.
  virtual void add(Event event) = 0;
};

/// Writes each platform operation as an event `call`, where those are wanted.
class CallEvents final : public observed::Listener {
 public:
  /// Borrows the transcript.
  explicit CallEvents(Transcript& transcript) : transcript_(transcript) {}

  bool listens() const override { return transcript_.wants("call"); }
  void called(const observed::Operation& operation, observed::Arguments arguments,
              const observed::Outcome& outcome) override;

 private:
  Transcript& transcript_;
};

/// Keeps nothing.
class NoTranscript final : public Transcript {
 public:
  bool wants(std::string_view) const override { return false; }
  void add(Event) override {}
};

/// Keeps all events, those on demand only when asked to.
class TranscriptLog final : public Transcript {
 public:
  explicit TranscriptLog(bool withCalls = false) : withCalls_(withCalls) {}
  bool wants(std::string_view kind) const override { return withCalls_ || !onDemandOnly(kind); }
  void add(Event event) override { events_.push_back(std::move(event)); }

  const std::vector<Event>& events() const { return events_; }
  /// The events of one kind.
  std::vector<Event> of(std::string_view kind) const;

 private:
  bool withCalls_;
  std::vector<Event> events_;
};

}  // namespace zev::simulated
