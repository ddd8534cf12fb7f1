// A whole install against its reads and writes alone. The program runs on the simulated machine,
// whose drive C: lies over a folder in memory of the host; beside it the same members are read and
// written without expansion (plain_install.h). Both alternate in this process, each round in fresh
// folders, and the medians are compared:
//
//   cmake --preset release && cmake --build build/release --target whole_run_benchmark zevpack
//   tools/package        makes the package once
//   build/release/benchmarks/whole_run_benchmark [package [rounds [folder]]]
//
// The package can also be named in ZEV_PACKAGE; without either it is the one of the build. 41
// rounds and /dev/shm are usual. Timed is what lies between the start of the program and its last
// page: making the machine and laying the package on it are told by themselves and count on neither
// side. Expansion in memory, by itself, is told for comparison.

#include <time.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "lz_corpus.h"
#include "plain_install.h"
#include "programs/zevsim/setup_program.h"
#include "programs/zevsim/simulated_stage.h"

namespace zev::benchmarks {
namespace {

namespace fs = std::filesystem;

constexpr int kUsualRounds = 41;
constexpr const char* kUsualFolder = "/dev/shm";
constexpr const char* kProject = "SampleProject.zrd";

/// Keeps what happened to files.
class FileEvents final : public simulated::Transcript {
 public:
  bool wants(std::string_view kind) const override { return kind == "file"; }
  void add(simulated::Event event) override { events_.push_back(std::move(event)); }
  const std::vector<simulated::Event>& events() const { return events_; }

 private:
  std::vector<simulated::Event> events_;
};

/// A folder of its own, gone with all that it holds at the end.
class WorkFolder {
 public:
  explicit WorkFolder(const fs::path& parent) {
    std::string name = (parent / "zev-whole-run-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot make " + name);
    path_ = name;
  }
  ~WorkFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

  /// An empty folder in it.
  fs::path fresh(const char* name) const {
    fs::remove_all(path_ / name);
    fs::create_directory(path_ / name);
    return path_ / name;
  }

 private:
  fs::path path_;
};

/// What a piece of work took, in milliseconds: on the clock on the wall, and of the processor
/// alone, which other programs disturb less.
struct Time {
  double wall = 0;
  double processor = 0;
};

double milliseconds(clockid_t clock) {
  timespec now{};
  ::clock_gettime(clock, &now);
  return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

template <typename Work>
Time timed(const Work& work) {
  const Time begin{milliseconds(CLOCK_MONOTONIC), milliseconds(CLOCK_PROCESS_CPUTIME_ID)};
  work();
  return {milliseconds(CLOCK_MONOTONIC) - begin.wall,
          milliseconds(CLOCK_PROCESS_CPUTIME_ID) - begin.processor};
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// The times of one kind of work over all rounds.
struct Times {
  std::vector<double> wall;
  std::vector<double> processor;

  void add(Time time) {
    wall.push_back(time.wall);
    processor.push_back(time.processor);
  }
};

std::vector<double> quotients(const std::vector<double>& over, const std::vector<double>& under) {
  std::vector<double> each;
  for (std::size_t round = 0; round < over.size(); ++round) {
    each.push_back(over[round] / under[round]);
  }
  return each;
}

scenario::Scenario installOver(const fs::path& package, const fs::path& drive) {
  const nlohmann::json scenario = {
      {"machine", {{"drives", {{"C", {{"host", drive.string()}}}}}}},
      {"package", {{"file", package.string()}}},
      {"script",
       {{{"click", "Command2"}},
        {{"click", "Option1"}},
        {{"click", "Command2"}},
        {{"click", "Command2"}},
        {{"expect", {{"Form1.Label8.Caption", "100%"}, {"Form1.Command2.Caption", "Finish"}}}}}}};
  return scenario::parseScenario(scenario.dump());
}

/// A whole install. The times of setting up and of the run.
struct InstallTimes {
  Time setUp;
  Time run;
};

InstallTimes install(const fs::path& package, const fs::path& drive,
                     simulated::Transcript& transcript) {
  InstallTimes times;
  const scenario::Scenario scenario = installOver(package, drive);
  std::unique_ptr<simulator::SimulatedStage> stage;
  times.setUp = timed([&] {
    stage = std::make_unique<simulator::SimulatedStage>(scenario, simulator::makeSetupProgram,
                                                        transcript);
  });
  times.run = timed([&] { stage->perform(); });
  if (stage->judgements().failed != 0)
    throw std::runtime_error("the install did not come to its end");
  return times;
}

/// The files under a folder, by their names. Of the project only the length counts: an install
/// writes its own folder into it.
std::map<std::string, Bytes> filesUnder(const fs::path& folder) {
  std::map<std::string, Bytes> files;
  for (const auto& each : fs::recursive_directory_iterator(folder)) {
    if (each.is_regular_file()) files[each.path().filename()] = loadFile(each.path());
  }
  Bytes& project = files[kProject];
  std::fill(project.begin(), project.end(), std::uint8_t{0});
  return files;
}

struct Measured {
  Times setUp;
  Times run;
  Times plain;
  Times expansion;
};

Measured measure(const fs::path& package, const WorkFolder& folder, const PlainInstall& plain,
                 int rounds) {
  Measured measured;
  simulated::NoTranscript nothing;
  for (int round = 0; round < rounds; ++round) {
    const InstallTimes times = install(package, folder.fresh("drive"), nothing);
    measured.setUp.add(times.setUp);
    measured.run.add(times.run);
    const fs::path beside = folder.fresh("plain");
    plain.prepare(beside);
    measured.plain.add(timed([&] { plain.play(beside); }));
    measured.expansion.add(timed([&] { plain.expandOnly(); }));
  }
  return measured;
}

void tell(const char* what, const Times& times) {
  std::printf("%-40s %8.1f ms %8.1f ms\n", what, median(times.wall), median(times.processor));
}

void report(const PlainInstall& plain, const Measured& measured) {
  std::printf("%zu members, %.2f MB packed, %.2f MB expanded; medians of %zu rounds\n\n",
              plain.members(), static_cast<double>(plain.packedBytes()) / 1e6,
              static_cast<double>(plain.expandedBytes()) / 1e6, measured.run.wall.size());
  std::printf("%-40s %11s %11s\n", "", "wall", "processor");
  tell("making the machine (not counted)", measured.setUp);
  tell("whole run", measured.run);
  tell("the same reads and writes alone", measured.plain);
  tell("expansion in memory alone", measured.expansion);
  std::printf("\n%-40s %8.2f    %8.2f\n", "whole run / reads and writes",
              median(quotients(measured.run.wall, measured.plain.wall)),
              median(quotients(measured.run.processor, measured.plain.processor)));
}

/// Both must make the same of each member before either is timed. A run lays the values of its
/// settings besides.
PlainInstall learn(const fs::path& package, const WorkFolder& folder) {
  FileEvents log;
  const fs::path drive = folder.fresh("drive");
  install(package, drive, log);
  PlainInstall plain(loadFile(package), log.events());
  const fs::path beside = folder.fresh("plain");
  plain.prepare(beside);
  plain.play(beside);
  const std::map<std::string, Bytes> laid = filesUnder(drive);
  for (const auto& [name, bytes] : filesUnder(beside)) {
    const auto found = laid.find(name);
    if (found == laid.end() || found->second != bytes) {
      throw std::runtime_error("the two sides make different files of " + name);
    }
  }
  return plain;
}

fs::path packageOf(int argc, char** argv) {
  const char* const named = argc > 1 ? argv[1] : std::getenv("ZEV_PACKAGE");
  return fs::absolute(named != nullptr ? named : ZEV_PACKAGE);
}

int run(int argc, char** argv) {
  const fs::path package = packageOf(argc, argv);
  const int rounds = argc > 2 ? std::max(1, std::atoi(argv[2])) : kUsualRounds;
  if (!fs::is_regular_file(package)) {
    std::fprintf(stderr, "no package at %s\n", package.c_str());
    return 2;
  }
  const WorkFolder folder(argc > 3 ? argv[3] : kUsualFolder);
  const PlainInstall plain = learn(package, folder);
  report(plain, measure(package, folder, plain, rounds));
  return 0;
}

}  // namespace
}  // namespace zev::benchmarks

int main(int argc, char** argv) {
  try {
    return zev::benchmarks::run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
