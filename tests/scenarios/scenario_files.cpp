#include "scenarios/scenario_files.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "package/manifest.h"
#include "programs/zevsim/setup_program.h"
#include "scenario/common_names.h"
#include "scenario/written_out.h"
#include "simulated/put_text.h"

namespace zev {
namespace {

namespace fs = std::filesystem;
using scenario::Json;

constexpr std::int64_t imageSize = 1000;
const std::string usualInstaller = "C:\\Users\\bob\\Downloads\\ZEVSetup.exe";

fs::path scenarioFolder() { return ZEV_SCENARIOS; }

/// The scenarios of a file: that itself, or each of its cases.
std::vector<std::string> scenariosIn(const fs::path& file) {
  const std::string name = fs::relative(file, scenarioFolder()).generic_string();
  std::vector<std::string> all = scenario::casesOf(scenario::readDocument(file));
  for (std::string& each : all) each = name + "#" + each;
  return all.empty() ? std::vector<std::string>{name} : all;
}

std::vector<std::string> findFiles() {
  const fs::path scenarios = scenarioFolder();
  std::vector<std::string> files;
  for (const fs::directory_entry& each : fs::recursive_directory_iterator(scenarios)) {
    if (each.path().extension() != ".json" || each.path().filename() == scenario::commonFile) {
      continue;
    }
    for (std::string& name : scenariosIn(each.path())) files.push_back(std::move(name));
  }
  std::sort(files.begin(), files.end());
  return files;
}

/// An expectation still stands between the steps around it, and nothing is expected there.
void emptyExpectations(Json& steps) {
  for (Json& step : steps) {
    if (step.contains("expect")) step["expect"] = Json::members();
  }
}

/// What a document says of a thing; no members if it says nothing.
Json membersOf(const Json& document, std::string_view name) {
  return document.contains(name) ? document.at(name) : Json::members();
}

/// The length of a package of which nothing else is said; none for one whose bytes matter.
std::optional<std::int64_t> lengthAlone(const Json& document) {
  Json package = membersOf(document, "package");
  const auto length = package.contains("length") ? package["length"].get<std::int64_t>()
                                                 : std::int64_t{packageSize + imageSize};
  package.erase("file");
  package.erase("length");
  return package.empty() ? std::optional(length) : std::nullopt;
}

bool liesOnSystemDrive(const Json& machine, const std::string& installer) {
  const Json drives = membersOf(machine, "drives");
  return installer.starts_with("C:") && (!drives.contains("C") || !drives["C"].isNull());
}

/// The entries of the scenario's own come later and win.
void layZeros(Json& document, const std::string& installer, std::int64_t length) {
  document.erase("package");
  Json& machine = document["machine"];
  if (machine.isNull()) machine = Json::members();
  Json files = {{installer, {{"size", length}}}};
  const Json own = membersOf(machine, "files");
  for (const auto& [path, entry] : own.items()) files[path] = entry;
  machine["files"] = std::move(files);
}

void layPackage(Json& document) {
  const Json machine = membersOf(document, "machine");
  const std::string installer =
      machine.contains("installer") ? machine["installer"].text() : usualInstaller;
  const auto length = lengthAlone(document);
  if (length && liesOnSystemDrive(machine, installer)) {
    layZeros(document, installer, *length);
  } else {
    document["package"]["file"] = ZEV_PACKAGE;
  }
}

/// Files that nobody reads: their size is kept instead of their bytes, so that a state is had
/// without digests of them.
void shrinkFiles(simulated::Disks& disks, const Text& folder) {
  constexpr std::uint64_t largest = 65536;
  for (const Text& name : disks.names(folder).value_or(std::vector<Text>())) {
    const Text path = folder + (folder.back() == u'\\' ? u"" : u"\\") + name;
    const auto entry = disks.find(path);
    if (!entry) continue;
    if ((entry->attributes & file_attribute::directory) != 0) {
      shrinkFiles(disks, path);
    } else if (entry->size > largest) {
      putText(disks, path, "of " + std::to_string(entry->size) + " bytes");
    }
  }
}

simulated::Value stateOf(simulated::SimulatedMachine& machine) {
  for (const char16_t letter : machine.disks().letters()) {
    const bool onHost = machine.disks().drive(letter)->host.has_value();
    if (!onHost) shrinkFiles(machine.disks(), Text{letter} + u":\\");
  }
  return machine.state();
}

void playInto(PlayedStory& story, const Json& document, const std::string& file, bool toState) {
  const auto scenario =
      scenario::parseScenario(document.dump(), (scenarioFolder() / file).parent_path());
  simulated::TranscriptLog log;
  simulator::SimulatedStage stage(scenario, simulator::makeSetupProgram, log);
  stage.perform();
  story.events = log.events();
  if (toState) story.state = stateOf(stage.machine());
  const auto language = stage.program().global("gLanguage");
  story.language = std::get<std::int32_t>(language.value());
}

PlayedStory playStory(Json document, const std::string& file, bool toState) {
  PlayedStory story;
  try {
    layPackage(document);
    playInto(story, document, file, toState);
  } catch (const scenario::ScenarioError& error) {
    story.refusal = error.what();
  }
  return story;
}

}  // namespace

const std::vector<std::string>& scenarioFiles() {
  static const std::vector<std::string> files = findFiles();
  return files;
}

void forEachSteps(Json& document, const std::function<void(Json&)>& change) {
  const std::function<void(Json&)> visit = [&](Json& steps) {
    change(steps);
    for (Json& step : steps) {
      if (step.contains("at")) visit(step["do"]);
    }
  };
  if (document.contains("script")) visit(document["script"]);
}

Json readStory(const std::string& file) {
  Json document = scenario::writtenOut(scenarioFolder() / file);
  forEachSteps(document, emptyExpectations);
  return document;
}

PlayedStory play(Json document, const std::string& file) {
  return playStory(std::move(document), file, false);
}

PlayedStory playToState(Json document, const std::string& file) {
  return playStory(std::move(document), file, true);
}

}  // namespace zev
