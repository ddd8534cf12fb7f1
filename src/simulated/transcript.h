#pragma once

#include <nlohmann/json.hpp>
#include <string_view>
#include <vector>

#include "observed/instrumentation.h"

namespace zev::simulated {

/// One event of a run: an object whose first member `event` names its kind.
using Event = nlohmann::ordered_json;

/// Whether a kind of event is told only to whoever asks for it by name, since a run has thousands.
bool onDemandOnly(std::string_view kind);

/// Takes the events of a run in the order of happening. The machine writes these kinds:
///
///   start {}                      the program is started
///   show / hide / unload          {form}
///   set                           {control, property, value}; the control "Form1.Label12", "Form1"
///   refresh                       {control}: painted at once; only if wanted
///   box                           {text, title, style, answer}; the answer in words: "yes"
///   input                         {prompt, title, answer}
///   file                          {op, path, bytes, error}; op is create, write, delete, mkdir,
///                                 rmdir or attributes. Writes to an open file are summed up and
///                                 told when it is closed, a failing write at once. `bytes` stands
///                                 with write only. `error` is the system's number, 0 for success
///   registry                      {op, hive, key, name, type, value, error}; op is create, set,
///                                 delete (a value) or deleteKey; name, type and value where they
///                                 apply
///   shortcut                      {path, properties}
///   dde                           {topic, command}
///   shell                         {command, style, error}; a run-time error number or 0
///   wait                          {command}: for a process that was started so
///   open                          {path}
///   sleep                         {ms}
///   call                          {name, arguments, result}, only if wanted
class Transcript {
 public:
  virtual ~Transcript() = default;
  /// Whether events of this kind are wanted. An event that is not is never made.
  virtual bool wants(std::string_view kind) const = 0;
  virtual void add(Event event) = 0;
};

/// Tells each call as an event `call`, where those are wanted.
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
