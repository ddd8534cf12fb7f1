// Whole runs: any machine, any person, any calls that fail.

#include <nlohmann/json.hpp>

#include "fuzz/target.h"
#include "package/manifest.h"
#include "platform/operations.h"
#include "programs/zevsim/setup_program.h"
#include "programs/zevsim/simulated_stage.h"
#include "scenarios/small_package.h"

namespace zev::fuzz {
namespace {

using nlohmann::json;

json anyMachine(Input& input) {
  static const json versions[] = {
      {{"platform", 2}, {"major", 6}, {"minor", 1}}, {{"platform", 2}, {"major", 5}, {"minor", 1}},
      {{"platform", 2}, {"major", 6}, {"minor", 2}}, {{"platform", 1}, {"major", 4}, {"minor", 10}},
      {{"platform", 2}, {"major", 6}, {"minor", 0}}, {{"fails", true}}};
  static constexpr std::uint64_t spaces[] = {0, 4096, 100000, 10000000, 40000000, 1ull << 36};
  static const json languages[] = {1033, 1031, 1036, 3082, 1055, 0};
  json machine = {{"version", versions[input.below(std::size(versions))]},
                  {"uiLanguage", languages[input.below(std::size(languages))]}};
  if (input.flag()) machine["drives"]["C"]["free"] = spaces[input.below(std::size(spaces))];
  if (input.flag()) machine["drives"]["D"] = {{"type", 2 + input.below(5)}};
  if (input.flag()) machine["user"] = nullptr;
  const std::string local = "C:\\Users\\bob\\AppData\\Local\\Tavorns\\ZEV5\\";
  static const json values[] = {"15\r\n", "21\r\n",         "", "x", "1,2\r\n",
                                "-1\r\n", "99999999999\r\n"};
  static const char* const names[] = {"Version", "Language", "Dizin", "dwKFE", "AutoCodec"};
  for (std::size_t left = input.below(4); left > 0; --left) {
    const std::string name = names[input.below(std::size(names))];
    machine["files"][local + name] = values[input.below(std::size(values))];
  }
  if (input.flag()) machine["files"]["C:\\Users\\anna\\AppData\\Local"] = {{"directory", true}};
  static const json folders[] = {"windows",      "system",  "documents",
                                 "localAppData", "desktop", "temp"};
  if (input.byte() % 4 == 0)
    machine["folders"][folders[input.below(6)].get<std::string>()] = nullptr;
  return machine;
}

json anyFaults(Input& input) {
  json faults = json::array();
  const auto names = operationNames();
  static constexpr int codes[] = {2, 5, 32, 53, 61, 70, 75, 112, -3};
  for (std::size_t left = input.below(4); left > 0; --left) {
    json fault = {{"call", std::string(names[input.below(names.size())])},
                  {"nth", 1 + input.below(input.flag() ? 20 : 200)}};
    if (input.byte() % 5 == 0) {
      fault["ignore"] = true;
    } else {
      fault["error"] = codes[input.below(std::size(codes))];
    }
    faults.push_back(fault);
  }
  return faults;
}

/// A step that a person can take; most lead onwards.
json anyStep(Input& input) {
  static const json steps[] = {{{"click", "Form1.Command2"}},
                               {{"click", "Form1.Command2"}},
                               {{"click", "Form1.Option1"}},
                               {{"click", "Form1.Command2"}},
                               {{"click", "Form1.Option1"}},
                               {{"click", "Form1.Command2"}},
                               {{"click", "Form1.Command1"}},
                               {{"click", "Form1.Command3"}},
                               {{"click", "Form1.Command4"}},
                               {{"click", "Form1.Command6"}},
                               {{"click", "Form2.Command1"}},
                               {{"click", "Form2.Check1"}},
                               {{"click", "Form3.Command1"}},
                               {{"click", "Form3.Command2"}},
                               {{"close", "Form1"}},
                               {{"select", {"Form1.Combo1", "Deutsch"}}},
                               {{"select", {"Form1.Combo1", "Espanol"}}},
                               {{"type", {"Form1.Text2", "C:\\Tools"}}},
                               {{"type", {"Form1.Text2", "D:\\x\\y"}}},
                               {{"type", {"Form1.Text2", "C:\\?"}}},
                               {{"answer", {"yes"}}},
                               {{"answer", {"no"}}}};
  json step = steps[input.below(std::size(steps))];
  if (input.byte() % 6 != 0) return step;
  return {{"at", {{"yield", 1 + input.below(70)}}}, {"do", json::array({step})}};
}

/// Looks on, and does nothing about what cannot be done.
class Patient final : public scenario::Audience {
 public:
  bool refused(const scenario::ScenarioError&) override { return true; }
};

/// What is laid is a member as far as there was room for it, and a value is whole.
void requireWholeThings(const simulated::Disks& disks, const Text& folder) {
  const auto names = disks.names(folder);
  for (const Text& name : names.value_or(std::vector<Text>())) {
    const Text path = join(folder, u"\\", name);
    const auto bytes = disks.read(path);
    if (!bytes) continue;
    const std::string content(bytes->begin(), bytes->end());
    for (const ManifestRow& row : manifest()) {
      if (row.row == 0 || row.installedName != name) continue;
      require(smallMember(row.row).starts_with(content), toUtf8(path) + " is no member");
    }
  }
}

}  // namespace

void tryWizard(Data data) {
  Input input(data);
  json document = {{"machine", anyMachine(input)}};
  document["machine"]["faults"] = anyFaults(input);
  json& script = document["script"] = json::array();
  while (!input.empty() && script.size() < 24) script.push_back(anyStep(input));
  const scenario::Scenario scenario = scenario::parseScenario(document.dump());
  simulated::NoTranscript nobody;
  Patient person;
  simulator::SimulatedStage stage(scenario, simulator::makeSetupProgram, nobody);
  laySmallPackage(stage.machine());
  try {
    stage.perform({&person});
  } catch (const scenario::ScenarioError&) {
  }
  requireWholeThings(stage.machine().disks(), u"C:\\Program Files\\ZEV Screen Recorder 6");
  requireWholeThings(stage.machine().disks(), u"C:\\Windows\\system32");
}

}  // namespace zev::fuzz
