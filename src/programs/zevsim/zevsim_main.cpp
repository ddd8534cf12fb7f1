#include "programs/zevsim/zevsim_main.h"

#include <chrono>
#include <fstream>
#include <iomanip>
#include <memory>
#include <optional>
#include <stdexcept>

#include "programs/zevsim/event_writer.h"
#include "programs/zevsim/progress.h"
#include "programs/zevsim/prompt.h"
#include "programs/zevsim/simulated_stage.h"
#include "programs/zevsim/zevsim_options.h"
#include "scenario/outside_view.h"
#include "scenario/script.h"

namespace zev::simulator {

using scenario::Scenario;

namespace {

using RealClock = std::chrono::steady_clock;

std::ofstream openForWriting(const std::filesystem::path& file) {
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  if (!out) throw UsageError("cannot write " + file.string());
  return out;
}

/// What could not be written is no result.
void requireWritten(std::ostream& out, const std::string& what) {
  if (!out.flush()) throw std::runtime_error("cannot write " + what);
}

/// A file that was asked for or not: an unopened one has nothing to be written.
void requireFileWritten(std::ofstream& out, const std::optional<std::filesystem::path>& file) {
  if (file) requireWritten(out, file->string());
}

/// Prints failed expectations, and hands on to the progress and the prompt as far as they are
/// wanted.
class Companion final : public scenario::Audience {
 public:
  /// Borrows the console and the stage.
  Companion(const ZevsimOptions& options, const Console& console, SimulatedStage& stage)
      : console_(console), stage_(stage) {
    if (options.progress || options.interactive) {
      progress_.emplace(console.out, console.terminal, options.columns);
    }
    if (options.interactive) prompt_.emplace(console.in, console.out, options.columns);
  }

  void finish() {
    if (progress_) progress_->finish();
  }

  void propertyWritten(const Form* form, const PropertyBase& property) override {
    if (progress_ && form != nullptr) progress_->propertyWritten(*form, property);
  }

  void boxAnswered(const scenario::Box& box, BoxAnswer answer) override {
    if (progress_ && !prompt_) progress_->boxAnswered(box, answer);
  }

  void judged(const scenario::KeyedValue& expectation, const scenario::Verdict* verdict) override {
    if (prompt_) prompt_->judged(expectation, *verdict);
    if (verdict->held) return;
    finish();
    console_.err << failureText(expectation, *verdict) << std::endl;
  }

  std::optional<scenario::Step> goOn() override {
    finish();
    return prompt_ ? std::optional(prompt_->nextStep(stage_)) : std::nullopt;
  }

  std::optional<scenario::Answer> answer(const scenario::Box& box) override {
    finish();
    return prompt_ ? prompt_->answer(box) : std::nullopt;
  }

  std::optional<scenario::Answer> input(TextView prompt, TextView title,
                                        TextView initial) override {
    finish();
    return prompt_ ? prompt_->input(prompt, title, initial) : std::nullopt;
  }

  bool refused(const scenario::ScenarioError& error) override {
    if (prompt_) prompt_->refused(error);
    return prompt_.has_value();
  }

 private:
  const Console& console_;
  SimulatedStage& stage_;
  std::optional<Progress> progress_;
  std::optional<Prompt> prompt_;
};

/// The folder of the product's settings where they are files, one a value: its path ends so. In
/// upper case, with the backslash that a path below it has.
constexpr TextView settingsFolder = u"\\TAVORNS\\ZEV5\\";

/// Files that were written and still stand, and their bytes; those that are settings apart.
struct Laid {
  std::size_t files = 0;
  std::uint64_t bytes = 0;
  std::size_t settings = 0;
};

/// A file that was deleted again, as the work files are, is none that was laid.
Laid laid(const Tally& tally, const simulated::Disks& disks) {
  Laid all;
  for (const Text& path : tally.written) {
    const auto entry = disks.find(path);
    if (!entry) continue;
    if (path.find(settingsFolder) != Text::npos) {
      ++all.settings;
      continue;
    }
    ++all.files;
    all.bytes += entry->size;
  }
  return all;
}

/// Both times: the machine's own clock, and what the play took here.
void printSummary(SimulatedStage& stage, const Tally& tally, RealClock::duration real,
                  std::ostream& out) {
  const Laid files = laid(tally, stage.machine().disks());
  const double simulated = static_cast<double>(stage.machine().clock()) / 1000;
  const double seconds = std::chrono::duration<double>(real).count();
  out << "files laid:       " << files.files << ", " << files.bytes << " bytes\n"
      << "settings written: " << tally.settings + files.settings << "\n"
      << "message boxes:    " << tally.boxes << "\n"
      << "time:             " << std::fixed << std::setprecision(2) << simulated
      << " s on the simulated machine, " << seconds << " s here\n"
      << std::defaultfloat
      << "end:              " << (stage.ended().isNull() ? "still running" : stage.ended().dump())
      << std::endl;
}

/// What is asked for as files is written after the end, the state first.
void writeResults(const ZevsimOptions& options, SimulatedStage& stage) {
  if (options.state) {
    std::ofstream out = openForWriting(*options.state);
    out << stage.machine().state().dump(2) << '\n';
    requireFileWritten(out, options.state);
  }
  if (!options.exportFolder) return;
  std::filesystem::create_directories(*options.exportFolder);
  stage.machine().exportDrive(u'C', *options.exportFolder / "C");
  stage.machine().exportRegistry(*options.exportFolder / "registry.reg");
}

/// The scenario that is named, or an empty one to be played by hand. A package given beside it
/// takes the place of its own.
Scenario scenarioOf(const ZevsimOptions& options) {
  Scenario scenario = options.scenario ? scenario::readScenario(*options.scenario) : Scenario{};
  if (!options.package) return scenario;
  if (!std::filesystem::is_regular_file(*options.package)) {
    throw UsageError("no file " + options.package->string());
  }
  scenario.package.file = *options.package;
  if (scenario.package.path.empty()) scenario.package.path = "--package";
  return scenario;
}

/// The scenario is read as well, though only its text is shown: a mistake in it is told as when it
/// is played.
int expand(const ZevsimOptions& options, const Console& console) {
  const scenario::Json document = scenario::writtenOut(*options.scenario);
  scenario::readScenario(*options.scenario);  // tells what is wrong with it
  console.out << scenario::layOut(document);
  requireWritten(console.out, "standard output");
  return exit_status::held;
}

/// The transcript goes to standard output only if nothing else is written there.
int play(const ZevsimOptions& options, const ProgramFactory& factory, const Console& console) {
  if (options.expand) return expand(options, console);
  const Scenario scenario = scenarioOf(options);
  std::ofstream file;
  if (options.transcript) file = openForWriting(*options.transcript);
  const bool outputTaken = options.interactive || options.progress || options.summary;
  std::ostream* lines = options.transcript ? &file : outputTaken ? nullptr : &console.out;
  EventWriter transcript(lines, options.events);
  std::ofstream outside;
  if (options.outside) outside = openForWriting(*options.outside);
  const auto begin = RealClock::now();
  SimulatedStage stage(scenario, factory, transcript);
  scenario::OutsideAudience outsider(stage, outside);
  Companion companion(options, console, stage);
  std::vector<scenario::Audience*> audience{&companion};
  if (options.outside) audience.insert(audience.begin(), &outsider);
  stage.perform(audience);
  companion.finish();
  const auto real = RealClock::now() - begin;

  requireFileWritten(file, options.transcript);
  requireFileWritten(outside, options.outside);
  if (options.summary) printSummary(stage, transcript.tally(), real, console.out);
  writeResults(options, stage);
  requireWritten(console.out, "standard output");
  return stage.judgements().failed == 0 ? exit_status::held : exit_status::failed;
}

int playReporting(const ZevsimOptions& options, const ProgramFactory& factory,
                  const Console& console) {
  const std::string file = options.scenario ? options.scenario->string() : "scenario";
  try {
    return play(options, factory, console);
  } catch (const scenario::ScenarioError& error) {
    console.err << file << ": " << error.path() << ": " << error.reason() << std::endl;
    return exit_status::unusable;
  }
}

}  // namespace

/// Whatever goes wrong is told in one line on standard error and by the exit status: nothing leaves
/// as an exception.
int zevsimMain(const std::vector<std::string>& arguments, const ProgramFactory& factory,
               const Console& console) {
  try {
    int status = exit_status::held;
    const auto options = readOptions(arguments, console.out, console.err, status);
    if (options) return playReporting(*options, factory, console);
    requireWritten(console.out, "standard output");
    return status;
  } catch (const UsageError& error) {
    console.err << "zevsim: " << error.what() << std::endl;
    return exit_status::unusable;
  } catch (const std::filesystem::filesystem_error& error) {
    console.err << "zevsim: " << error.what() << std::endl;
    return exit_status::unusable;
  } catch (const std::exception& error) {
    console.err << "zevsim: " << error.what() << std::endl;
    return exit_status::broken;
  }
}

}  // namespace zev::simulator
