#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "programs/zevsim/simulated_stage.h"
#include "scenarios/call_trace.h"
#include "scenarios/fault_ends.h"
#include "scenarios/snapshot.h"

namespace zev {

/// No error code: any number makes the operation fail in its own shape.
inline constexpr int none = -1;
inline constexpr int cannotOpen = 5;
inline constexpr int badFormat = 3;
inline constexpr int noRoot = 1;

/// True if a name is one of several that are separated by bars; "*" is any name.
bool isAmong(const std::string& name, const std::string& list);

/// The number that a fault gives to the calls of an operation, or `none`.
int codeOf(const std::string& operation);

/// The machines that runs are failed on: with value files in the user's profile, and with settings
/// in the registry.
extern const std::string profileVersion;
extern const std::string registryVersion;

/// The fault that makes a call fail, as a scenario writes it.
std::string faultOf(const Call& call);

/// A person who looks at the wizard: presses Finish where that is offered, otherwise Cancel, with
/// Yes behind it.
class Leaver final : public scenario::Audience {
 public:
  std::optional<scenario::Step> goOn() override;
  std::optional<scenario::Answer> answer(const scenario::Box& box) override {
    if (box.style != cancelStyle) return std::nullopt;
    return scenario::Answer{"yes", std::nullopt, "$"};
  }

  /// Of a program that has ended before it could be used.
  bool refused(const scenario::ScenarioError&) override { return !stage->ended().isNull(); }

  simulator::SimulatedStage* stage = nullptr;  ///< that the person looks at
  bool finished = false;

 private:
  static constexpr std::int32_t cancelStyle = 4388;

  bool left_ = false;
};

/// Bytes of the longest file that is laid; the packed ones are longer.
inline constexpr std::uint64_t longestFile = 1000;

/// All that happens on a machine.
class Onlooker final : public simulated::Transcript {
 public:
  explicit Onlooker(bool withCalls) : withCalls_(withCalls) {}

  /// In front of these events something is done, which gets their place.
  void pauseAt(std::set<std::size_t> places, std::function<void(std::size_t place)> what);
  /// From here on no call is told of, and nothing is done in front of events.
  void leaveCallsOut() {
    withCalls_ = false;
    places_.clear();
  }

  bool wants(std::string_view kind) const override {
    return withCalls_ || !simulated::onDemandOnly(kind);
  }
  void add(simulated::Event event) override;
  std::vector<simulated::Event> boxes() const;

  std::vector<simulated::Event> events;

 private:
  void reach(std::size_t place);

  bool withCalls_;
  std::set<std::size_t> places_;
  std::function<void(std::size_t place)> pause_;
};

struct FaultRun;

/// Where in a run's events, its calls among them, it stands still, and what is done there.
struct Pauses {
  std::set<std::size_t> places{};
  std::function<void(FaultRun& run, std::size_t place)> what{};
};

/// One run on a machine, to its very end.
struct FaultRun {
  /// With calls the onlooker is told of every one. A directory is typed on its page.
  FaultRun(const std::string& version, const std::string& faults, bool withCalls = false,
           const Pauses& pauses = {}, const std::string& directory = {});

  /// In front of a call, the next one of its operation: it will fail, and no calls are told of.
  void fail(const Call& call);

  /// What the machine keeps, but for what the program has still open at its end.
  Snapshot left();
  simulated::SimulatedMachine& machine() { return stage.machine(); }
  const scenario::Json& ended() const { return stage.ended(); }
  bool has(const std::string& path) { return machine().disks().exists(fromUtf8(path)); }

  bool closes;  ///< no call fails that closes a file
  scenario::Scenario scenario;
  Onlooker log;
  Leaver person;
  simulator::SimulatedStage stage;
};

/// The calls of a run without failures.
const std::vector<Call>& callsOf(const std::string& version);

}  // namespace zev
