#include "simulated/simulated_machine.h"

#include <stdexcept>
#include <utility>

#include "lz/lz_files.h"
#include "observed/files.h"
#include "observed/lz.h"
#include "observed/programs.h"
#include "observed/registry.h"
#include "observed/sockets.h"
#include "observed/system.h"
#include "platform/runtime_files.h"
#include "simulated/network/simulated_kernel.h"
#include "simulated/network/simulated_sockets.h"
#include "simulated/simulated_dialogs.h"
#include "simulated/simulated_file_system.h"
#include "simulated/simulated_processes.h"
#include "simulated/simulated_registry.h"
#include "simulated/simulated_shell_folders.h"
#include "simulated/simulated_shortcuts.h"
#include "simulated/simulated_system.h"
#include "simulated/state_report.h"

namespace zev::simulated {

struct SimulatedMachine::State {
  State(Person& whose, Transcript& transcript)
      : person(whose), machine(transcript), calls(transcript) {}

  Person& person;
  MachineState machine;
  SimulatedFileSystem otherFiles{machine};
  CallEvents calls;
  observed::Instrumentation instrumentation{calls};
};

/// What one process owns: the services themselves and, around each, what observes it.
struct SimulatedMachine::Process {
  explicit Process(State& state)
      : machine(state.machine), watch(state.instrumentation), person(state.person) {
    screen.serve(application, queue);
    plainKernel.setCodePage(machine.codePage());
  }

  MachineState& machine;
  observed::Instrumentation& watch;
  Person& person;

  MessageQueue queue;
  Screen screen{person, machine.transcript, watch};
  Application application{screen};
  Hand hand{screen};

  SimulatedFileSystem fileSystem{machine};
  RuntimeFiles runtimeFiles{fileSystem};
  Holds holds{fileSystem};
  lz::LzFiles lzFiles{fileSystem};
  SimulatedRegistry plainRegistry{machine};
  SimulatedSystem plainSystem{machine};
  SimulatedDrives plainDrives{machine};
  SimulatedWindows plainWindows{machine, screen};
  SimulatedProcesses plainProcesses{machine, fileSystem};
  SimulatedShellFolders plainShellFolders{machine};
  SimulatedShortcuts plainShortcuts{machine, fileSystem};
  SimulatedDde plainDde{machine};
  SimulatedDialogs plainDialogs{machine, person, screen};
  SimulatedSockets plainSockets{machine.network, queue};
  SimulatedKernel plainKernel;

  observed::Files files{runtimeFiles, watch};
  observed::Lz lz{lzFiles, watch};
  observed::Registry registry{plainRegistry, watch};
  observed::System system{plainSystem, watch};
  observed::Drives drives{plainDrives, watch};
  observed::Windows windows{plainWindows, watch};
  observed::Processes processes{
      plainProcesses, watch, [this](TextView commandLine, std::int32_t style, std::int32_t error) {
        plainProcesses.recordShell(commandLine, style, error);
      }};
  observed::ShellFolders shellFolders{plainShellFolders, watch};
  observed::Shortcuts shortcuts{plainShortcuts, watch};
  observed::Dde dde{plainDde, watch};
  observed::Dialogs dialogs{plainDialogs, watch};
  observed::Sockets sockets{plainSockets, watch};
  observed::MessageWindows messageWindows{queue, watch};
  observed::Kernel kernel{plainKernel, watch};

  Platform platform{application, dialogs, files,          holds,     registry,     lz,
                    system,      drives,  windows,        processes, shellFolders, shortcuts,
                    dde,         sockets, messageWindows, kernel};
};

SimulatedMachine::SimulatedMachine(Person& person, Transcript& transcript)
    : state_(std::make_unique<State>(person, transcript)) {
  layUsualMachine(*this);
}

SimulatedMachine::~SimulatedMachine() = default;

// ---- the program

void SimulatedMachine::startProgram() {
  process_.reset();
  if (standing_.empty()) {
    state_->machine.records = {};
    state_->instrumentation.forgetCalls();
  }
  process_ = std::make_unique<Process>(*state_);
  if (state_->machine.transcript.wants("start")) {
    state_->machine.transcript.add({{"event", "start"}});
  }
}

void SimulatedMachine::beginBeside() { standing_.push_back(std::move(process_)); }

void SimulatedMachine::endBeside() {
  process_ = std::move(standing_.back());
  standing_.pop_back();
}

SimulatedMachine::Process& SimulatedMachine::process() const {
  if (!process_) throw std::logic_error("no program was started");
  return *process_;
}

Platform& SimulatedMachine::platform() { return process().platform; }
Screen& SimulatedMachine::screen() { return process().screen; }
Hand& SimulatedMachine::hand() { return process().hand; }
FileSystem& SimulatedMachine::fileSystem() { return process().fileSystem; }
FileSystem& SimulatedMachine::otherFileSystem() { return state_->otherFiles; }

// ---- the state

MachineSettings& SimulatedMachine::settings() { return state_->machine.settings; }
const MachineSettings& SimulatedMachine::settings() const { return state_->machine.settings; }
Disks& SimulatedMachine::disks() { return state_->machine.disks; }
const Disks& SimulatedMachine::disks() const { return state_->machine.disks; }
RegistryTree& SimulatedMachine::registry() { return state_->machine.registry; }
const RegistryTree& SimulatedMachine::registry() const { return state_->machine.registry; }

namespace {

/// Creates a folder unless its drive is missing; a text that is no path of a drive is left alone.
void createFolder(Disks& disks, const std::optional<Text>& folder) {
  Path path;
  const bool parsed = folder && parsePath(*folder, Path{}, path) == system_error::success &&
                      checkNames(path) == system_error::success;
  if (parsed && disks.at(path.drive) != nullptr) disks.putDirectory(path.text());
}

}  // namespace

void SimulatedMachine::setFolders(FolderSettings folders) {
  for (const auto& folder : {folders.temp, folders.windows, folders.system, folders.documents,
                             folders.localAppData, folders.desktop}) {
    createFolder(disks(), folder);
  }
  for (const auto& [number, folder] : folders.special) createFolder(disks(), folder);
  settings().folders = std::move(folders);
}

void SimulatedMachine::setFaults(std::vector<Fault> faults) {
  state_->instrumentation.setFaults(std::move(faults));
}

std::uint64_t SimulatedMachine::clock() const { return state_->machine.clock(); }
SimulatedNetwork& SimulatedMachine::network() { return state_->machine.network; }

// ---- what happened

const Records& SimulatedMachine::records() const { return state_->machine.records; }

std::uint64_t SimulatedMachine::calls(std::string_view operation) const {
  return state_->instrumentation.calls(operation);
}

std::optional<ShortcutProperties> SimulatedMachine::shortcut(TextView path) const {
  const auto found = state_->machine.shortcuts.find(upperCase(path));
  if (found == state_->machine.shortcuts.end() || !disks().exists(path)) return std::nullopt;
  return found->second;
}

std::size_t SimulatedMachine::unfreedMemory() const {
  return process().plainShellFolders.unfreed();
}

OpenHandles SimulatedMachine::openHandles() const {
  return {process().fileSystem.openHandles(), process().plainRegistry.openKeys(),
          process().plainProcesses.openHandles()};
}

// ---- the state as a whole

Value SimulatedMachine::state() const { return stateReport(state_->machine); }

void SimulatedMachine::exportDrive(char16_t letter, const std::filesystem::path& folder) const {
  disks().exportDrive(letter, folder);
}

void SimulatedMachine::exportRegistry(const std::filesystem::path& file) const {
  simulated::exportRegistry(registry(), file);
}

}  // namespace zev::simulated
