#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "programs/zevsim/simulated_stage.h"
#include "scenarios/call_trace.h"

namespace zev {

/// A machine on which the program is run, its package of zeros: members without a head are laid as
/// they are.
struct RunMachine {
  std::string name;
  std::string version;  ///< of the system, as JSON
  std::string machine;  ///< what else differs, as members of JSON, each with a comma in front
  std::string faults;   ///< as JSON, each with a comma behind
  std::string steps;    ///< in front of the clicks, as JSON, each with a comma behind
};

/// Two usual machines, one with settings in profiles and one with settings in the registry. On both
/// the product's file type is there; on the first the user has two folders.
extern const RunMachine profileMachine;
extern const RunMachine registryMachine;

/// What shows that the run has come somewhere: a call in a stretch of it, or the writing of a
/// property with a text.
struct Mark {
  const char* operation = "";  ///< empty: a property is written
  Phase phase = Phase::Load;
  const char* about = "";  ///< a piece of the call's path, or the property, "Label8.Caption"
  const char* text = "";   ///< of the property, or its beginning
  int number = 0;          ///< that the call has; 0 is any
  std::size_t repeat = 0;  ///< which call for its path in the stretch; 0 is any
  int row = 0;             ///< of the manifest; 0 is any
};

inline Mark writing(const char* property, const char* text) {
  return {.about = property, .text = text};
}

/// How an error is brought into a run: a call raises it, or the writing of a property does, or
/// first the one and then, since the run goes on behind it, the other.
struct Strike {
  const Call* call = nullptr;
  std::vector<std::string> boxes{};  ///< pieces of boxes that tell of the failure: they fail, too
  std::optional<Mark> write{};
};

/// One run, up to its last page or to its trap, and what it did.
class WatchedRun {
 public:
  explicit WatchedRun(const RunMachine& machine, const Strike& strike = {});

  const std::vector<simulated::Event>& events() const { return log_.events(); }
  const std::vector<Call>& calls() const { return calls_; }
  /// The first call that fits; null if there is none.
  const Call* call(const Mark& mark) const;
  /// The place of a mark among the events; none if it does not come.
  std::optional<std::size_t> place(const Mark& mark) const;
  /// The step that the run's trap told; 0 if it told none.
  std::int32_t toldStep() const;

 private:
  class Striker final : public scenario::Audience {
   public:
    explicit Striker(std::optional<Mark> write) : write_(write) {}
    void propertyWritten(const Form* form, const PropertyBase& property) override;

   private:
    std::optional<Mark> write_;
  };

  scenario::Scenario scenario_;
  simulated::TranscriptLog log_;
  Striker striker_;
  simulator::SimulatedStage stage_;
  std::vector<Call> calls_;
};

}  // namespace zev
