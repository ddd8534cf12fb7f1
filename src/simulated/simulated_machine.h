#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "observed/instrumentation.h"
#include "platform/platform.h"
#include "simulated/disks.h"
#include "simulated/machine_settings.h"
#include "simulated/machine_state.h"
#include "simulated/person.h"
#include "simulated/registry_tree.h"
#include "simulated/screen.h"
#include "simulated/shell_link.h"
#include "simulated/transcript.h"

namespace zev::simulated {

using observed::Fault;

/// Handles that the running program has opened and not closed.
struct OpenHandles {
  std::size_t files = 0;  ///< and searches
  std::size_t keys = 0;
  std::size_t processes = 0;
};

/// A whole machine as far as the program can see one. Any number of them live side by side.
///
/// The state (settings, drives, registry, shortcuts, clock) belongs to the machine and outlives the
/// program; it can be changed at any time, also during a run. Everything that a process
/// owns (its forms, open files, registry handles, its message loop, the records and the counts of
/// calls) belongs to the running program and is made anew by startProgram().
class SimulatedMachine {
 public:
  /// A usual machine: see layUsualMachine. Borrows both, which outlive it. No program runs yet.
  SimulatedMachine(Person& person, Transcript& transcript);
  ~SimulatedMachine();
  SimulatedMachine(const SimulatedMachine&) = delete;
  SimulatedMachine& operator=(const SimulatedMachine&) = delete;

  // ---- the program

  /// Makes a new process: what platform(), screen() and hand() gave before is gone, and with it
  /// every handle. All objects of the former program must be gone as well. Tells the transcript
  /// `start`.
  void startProgram();
  /// Until endBeside the programs that are started run beside the one that runs now, which stands
  /// still meanwhile. What happened, and the counts of calls, are then those of all.
  void beginBeside();
  /// The program that was started last is gone, and the one before runs again.
  void endBeside();
  /// The services for the running program. This and the following throw std::logic_error before the
  /// first start.
  Platform& platform();
  /// What the running program shows, and the hand that works at it.
  Screen& screen();
  Hand& hand();
  /// The file calls below the statements, unobserved.
  FileSystem& fileSystem();
  /// Those of another program, which runs as long as the machine.
  FileSystem& otherFileSystem();

  // ---- the state

  /// What is written here counts from the program's next call on. Folders are set by setFolders,
  /// which makes them too.
  MachineSettings& settings();
  const MachineSettings& settings() const;
  /// Sets the folders that the system names and creates those that lie on a drive which is there.
  void setFolders(FolderSettings folders);
  /// What lies on the drives, and the registry, to set up and to look at: neither counts as a call.
  Disks& disks();
  const Disks& disks() const;
  RegistryTree& registry();
  const RegistryTree& registry() const;
  /// Replaces all faults; they count the calls from here on.
  void setFaults(std::vector<Fault> faults);
  /// Milliseconds since the machine was made; moves by sleeping, waiting and asking for it only.
  std::uint64_t clock() const;
  /// What is around the machine. Its clock is the machine's own.
  SimulatedNetwork& network();

  // ---- what happened

  /// The programs that were started, the commands that servers got, and what was opened, since the
  /// program was started.
  const Records& records() const;
  /// How often an operation was called since the program was started.
  std::uint64_t calls(std::string_view operation) const;
  /// The shortcut that was saved at a path and is still there.
  std::optional<ShortcutProperties> shortcut(TextView path) const;
  /// Memory of the shell that the program was given and has not freed.
  std::size_t unfreedMemory() const;
  /// What the running program has open now.
  OpenHandles openHandles() const;

  // ---- the state as a whole

  /// Files (with size, SHA-256, attributes, and text where it is short and plain), registry and
  /// shortcuts as one JSON object, equal for equal states.
  Value state() const;
  /// Lays a drive out as real files in a folder of the host.
  void exportDrive(char16_t letter, const std::filesystem::path& folder) const;
  /// Writes the registry in the format that registry editors import: UTF-16 with a byte order mark.
  void exportRegistry(const std::filesystem::path& file) const;

 private:
  struct State;
  struct Process;
  Process& process() const;

  std::unique_ptr<State> state_;
  std::unique_ptr<Process> process_;
  std::vector<std::unique_ptr<Process>> standing_;
};

/// Creates the folders of every machine that belong to no user, as far as they are missing and
/// drive C: is there.
void layCommonFolders(Disks& disks);

/// Makes the drives, folders and registry of a usual machine: drive C: in memory with the folders
/// that `usualFolders` names, the common folders of every machine, and the values of the AVI file
/// services as they should be.
void layUsualMachine(SimulatedMachine& machine);

}  // namespace zev::simulated
