#include "scenario/zevsim_main.h"

#include <chrono>
#include <fstream>
#include <iomanip>
#include <memory>
#include <optional>
#include <stdexcept>

#include "scenario/boxes.h"
#include "scenario/event_writer.h"
#include "scenario/player.h"
#include "scenario/progress.h"
#include "scenario/prompt.h"
#include "scenario/zevsim_options.h"
#include "script/layout.h"
#include "script/outside_view.h"

namespace zev::scenario {
namespace {

using RealClock = std::chrono::steady_clock;

/// Longest value that a failed expectation prints; the transcript has all of it.
constexpr std::size_t longestShown = 2000;

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

std::string shown(const Json& value) {
  std::string text = value.dump(-1, ' ', false, Json::error_handler_t::replace);
  if (text.size() > longestShown) {
    text = text.substr(0, longestShown) + "... (" + std::to_string(text.size()) + " characters)";
  }
  return text;
}

/// Prints failed expectations, and hands on to the progress, the prompt and the view from outside
/// as far as they are wanted.
class ZevsimCompanion final : public Companion {
 public:
  /// `outside` null: nobody looks from outside.
  ZevsimCompanion(const ZevsimOptions& options, const Console& console, std::ostream* outside)
      : console_(console) {
    if (outside != nullptr) outside_.emplace(*outside);
    if (options.progress || options.interactive) {
      progress_.emplace(console.out, console.terminal, options.columns);
    }
    if (options.interactive) prompt_.emplace(console.in, console.out, options.columns);
  }

  void finish() {
    if (progress_) progress_->finish();
  }

  void starts() override {
    if (outside_) outside_->start();
  }

  void stepBegins(Player& player, const Step& step) override {
    if (!outside_) return;
    outside_->look(sightOf(player.forms()), false);
    outside_->step(step.source);
  }

  void boxOpens(Player& player) override {
    if (outside_) outside_->look(sightOf(player.forms()), true);
  }

  void ended(const Json& how) override {
    if (outside_) outside_->end(how);
  }

  void propertyWritten(const Form* form, const PropertyBase& property) override {
    if (progress_ && form != nullptr) progress_->propertyWritten(*form, property);
  }

  void boxAnswered(const simulated::Box& box, BoxAnswer answer) override {
    if (progress_ && !prompt_) progress_->boxAnswered(box, answer);
    if (outside_) outside_->box(box.text, box.title, box.style, answerWord(answer));
  }

  void inputAnswered(TextView prompt, TextView title, TextView answer) override {
    if (outside_) outside_->input(prompt, title, answer);
  }

  void judged(const KeyedValue& expectation, const Verdict& verdict) override {
    if (prompt_) prompt_->judged(expectation, verdict);
    if (verdict.held) return;
    finish();
    console_.err << "FAILED " << expectation.path << "\n  expected: " << shown(expectation.value)
                 << "\n  found:    " << shown(verdict.found) << std::endl;
  }

  std::optional<Step> goOn(Player& player) override {
    finish();
    if (outside_) outside_->look(sightOf(player.forms()), false);
    return prompt_ ? std::optional(prompt_->nextStep(player)) : std::nullopt;
  }

  std::optional<Answer> answer(const simulated::Box& box) override {
    finish();
    return prompt_ ? prompt_->answer(box) : std::nullopt;
  }

  std::optional<Answer> input(TextView prompt, TextView title, TextView initial) override {
    finish();
    return prompt_ ? prompt_->input(prompt, title, initial) : std::nullopt;
  }

  bool refused(const ScenarioError& error) override {
    if (prompt_) prompt_->refused(error);
    return prompt_.has_value();
  }

 private:
  const Console& console_;
  std::optional<Progress> progress_;
  std::optional<Prompt> prompt_;
  std::optional<OutsideView> outside_;
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

void printSummary(Player& player, const Tally& tally, RealClock::duration real, std::ostream& out) {
  const Laid files = laid(tally, player.machine().disks());
  const double simulated = static_cast<double>(player.machine().clock()) / 1000;
  const double seconds = std::chrono::duration<double>(real).count();
  out << "files laid:       " << files.files << ", " << files.bytes << " bytes\n"
      << "settings written: " << tally.settings + files.settings << "\n"
      << "message boxes:    " << tally.boxes << "\n"
      << "time:             " << std::fixed << std::setprecision(2) << simulated
      << " s on the simulated machine, " << seconds << " s here\n"
      << std::defaultfloat << "end:              "
      << (player.ended().is_null() ? "still running" : player.ended().dump()) << std::endl;
}

void writeResults(const ZevsimOptions& options, Player& player) {
  if (options.state) {
    std::ofstream out = openForWriting(*options.state);
    out << player.machine().state().dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    requireFileWritten(out, options.state);
  }
  if (!options.exportFolder) return;
  std::filesystem::create_directories(*options.exportFolder);
  player.machine().exportDrive(u'C', *options.exportFolder / "C");
  player.machine().exportRegistry(*options.exportFolder / "registry.reg");
}

Scenario scenarioOf(const ZevsimOptions& options) {
  Scenario scenario = options.scenario ? readScenario(*options.scenario) : Scenario{};
  if (!options.package) return scenario;
  if (!std::filesystem::is_regular_file(*options.package)) {
    throw UsageError("no file " + options.package->string());
  }
  scenario.package.file = *options.package;
  if (scenario.package.path.empty()) scenario.package.path = "--package";
  return scenario;
}

int expand(const ZevsimOptions& options, const Console& console) {
  const Json document = writtenOut(*options.scenario);
  readScenario(*options.scenario);  // tells what is wrong with it
  console.out << layOut(document);
  requireWritten(console.out, "standard output");
  return exit_status::held;
}

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
  ZevsimCompanion companion(options, console, options.outside ? &outside : nullptr);

  const auto begin = RealClock::now();
  Player player(scenario, factory, transcript, companion);
  player.play();
  companion.finish();
  const auto real = RealClock::now() - begin;

  requireFileWritten(file, options.transcript);
  requireFileWritten(outside, options.outside);
  if (options.summary) printSummary(player, transcript.tally(), real, console.out);
  writeResults(options, player);
  requireWritten(console.out, "standard output");
  return player.failures() == 0 ? exit_status::held : exit_status::failed;
}

int playReporting(const ZevsimOptions& options, const ProgramFactory& factory,
                  const Console& console) {
  const std::string file = options.scenario ? options.scenario->string() : "scenario";
  try {
    return play(options, factory, console);
  } catch (const ScenarioError& error) {
    console.err << file << ": " << error.path() << ": " << error.reason() << std::endl;
    return exit_status::unusable;
  }
}

}  // namespace

int zevsimMain(const std::vector<std::string>& arguments, const ProgramFactory& factory,
               const Console& console) {
  try {
    const ZevsimOptions options = parseOptions(arguments);
    if (options.help) {
      console.out << zevsimUsage;
      requireWritten(console.out, "standard output");
      return exit_status::held;
    }
    return playReporting(options, factory, console);
  } catch (const UsageError& error) {
    console.err << "zevsim: " << error.what() << "\n\n" << zevsimUsage;
    return exit_status::unusable;
  } catch (const std::filesystem::filesystem_error& error) {
    console.err << "zevsim: " << error.what() << std::endl;
    return exit_status::unusable;
  } catch (const std::exception& error) {
    console.err << "zevsim: " << error.what() << std::endl;
    return exit_status::broken;
  }
}

}  // namespace zev::scenario
