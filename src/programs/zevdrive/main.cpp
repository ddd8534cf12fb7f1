// zevdrive: plays a scenario on the real program, through its windows.

#include <fstream>
#include <iostream>

#include "programs/zevdrive/windows_stage.h"
#include "programs/zevdrive/zevdrive_options.h"
#include "state/forms.h"

namespace zev::drive {
namespace {

/// Prints failed expectations.
class FailureTeller final : public scenario::Audience {
 public:
  void judged(const scenario::KeyedValue& expectation, const scenario::Verdict* verdict) override {
    if (verdict == nullptr || verdict->held) return;
    std::cerr << scenario::failureText(expectation, *verdict) << std::endl;
  }
};

int report(const scenario::Judgements& judgements) {
  std::cerr << "held: " << judgements.held << ", failed: " << judgements.failed << '\n';
  for (const auto& [key, count] : judgements.notSeen) {
    std::cerr << "not seen: " << key << " (" << count << ")\n";
  }
  return judgements.failed == 0 ? exit_status::held : exit_status::failed;
}

Text pathText(const std::filesystem::path& path) {
  const std::wstring name = std::filesystem::absolute(path).wstring();
  return Text(name.begin(), name.end());
}

int play(const scenario::Scenario& scenario, const DriveOptions& options, MachineHand& machine) {
  std::ofstream file;
  if (options.transcript) {
    file.open(*options.transcript, std::ios::binary | std::ios::trunc);
    if (!file) throw UsageError("cannot write " + options.transcript->string());
  } else {
    std::ios::sync_with_stdio(false);
  }
  Form1 form1;
  Form2 form2;
  Form3 form3;
  const auto length = std::chrono::duration_cast<RunningProgram::Clock::duration>(
      std::chrono::duration<double>(options.timeout));
  WindowsStage stage(pathText(*options.program), {&form1, &form2, &form3}, machine,
                     RunningProgram::Clock::now() + length);
  std::ostream& lines = options.transcript ? static_cast<std::ostream&>(file) : std::cout;
  scenario::OutsideAudience outsider(stage, lines);
  FailureTeller failures;
  return report(stage.perform(scenario, {&outsider, &failures}));
}

/// Saves the registry in the end, whatever came of the play.
struct RegistrySaver {
  const DriveOptions& options;

  ~RegistrySaver() {
    try {
      if (options.registry) saveRegistry(*options.registry);
    } catch (const std::exception& error) {
      std::cerr << "zevdrive: " << error.what() << '\n';
    }
  }
};

int drive(const DriveOptions& options) {
  const scenario::Scenario scenario = scenario::readScenario(options.scenario);
  if (const auto reason = refusal(scenario)) {
    std::cerr << "not played: " << *reason << '\n';
    return exit_status::refused;
  }
  if (options.check) return exit_status::held;
  MachineHand machine;
  if (options.prepare) machine.prepare(scenario.machine);
  const RegistrySaver saver{options};
  return options.program ? play(scenario, options, machine) : exit_status::held;
}

int driveReporting(const DriveOptions& options) {
  try {
    return drive(options);
  } catch (const scenario::Refused& reason) {
    std::cerr << "not played: " << reason.what() << '\n';
    return exit_status::refused;
  } catch (const scenario::ScenarioError& error) {
    std::cerr << options.scenario.string() << ": " << error.path() << ": " << error.reason()
              << '\n';
    return exit_status::unusable;
  }
}

int driveMain(const std::vector<std::string>& arguments) {
  try {
    int status = exit_status::held;
    const auto options = readOptions(arguments, std::cout, std::cerr, status);
    return options ? driveReporting(*options) : status;
  } catch (const UsageError& error) {
    std::cerr << "zevdrive: " << error.what() << '\n';
    return exit_status::unusable;
  } catch (const std::exception& error) {
    std::cerr << "zevdrive: " << error.what() << '\n';
    return exit_status::broken;
  }
}

}  // namespace
}  // namespace zev::drive

/// Wide, since a path may have letters that the code page does not have.
int wmain(int argumentCount, wchar_t** arguments) {
  std::vector<std::string> utf8;
  for (int place = 1; place < argumentCount; ++place) {
    utf8.push_back(zev::toUtf8(reinterpret_cast<const char16_t*>(arguments[place])));
  }
  return zev::drive::driveMain(utf8);
}
