#pragma once

#include <cstdint>
#include <map>
#include <set>

#include "code_page/code_page.h"
#include "simulated/disks.h"
#include "simulated/machine_settings.h"
#include "simulated/network/simulated_network.h"
#include "simulated/registry_tree.h"
#include "simulated/sharing.h"
#include "simulated/shell_link.h"
#include "simulated/transcript.h"

namespace zev::simulated {

/// What was to be started, or opened: how its window was to stand, and the folder that it was to
/// begin in.
struct Start {
  Text what;
  std::int32_t style = 0;
  Text directory;

  bool operator==(const Start&) const = default;
};

/// What the running program has asked of other programs since it was started.
struct Records {
  std::vector<Start> shell;   ///< command lines, started or not
  std::vector<Text> dde;      ///< commands that reached a server
  std::vector<Start> opened;  ///< files and folders opened with the program of their type
};

/// What became of it, since the machine was made.
struct Happened {
  std::vector<Start> started;  ///< command lines of programs that were started
  std::vector<Start> opened;
};

/// All that the services of one machine share. It outlives the programs that run on it.
struct MachineState {
  explicit MachineState(Transcript& whereTo) : transcript(whereTo) {}

  Transcript& transcript;
  MachineSettings settings;
  Disks disks;
  Sharing sharing;  ///< of all processes
  RegistryTree registry;
  std::map<Text, ShortcutProperties> shortcuts;  ///< by upper-case path of the file
  std::set<Text> running;                        ///< upper-case paths of programs in use
  Records records;
  Happened happened;
  SimulatedNetwork network;  ///< and the clock of the machine

  /// Milliseconds since the machine was made.
  std::uint64_t clock() const { return network.now(); }

  std::uint32_t codePage() const { return settings.system.codePage; }
  std::string toAnsi(TextView text) const { return toCodePage(text, codePage()); }
  Text fromAnsi(std::string_view bytes) const { return fromCodePage(bytes, codePage()); }
  Text throughAnsi(TextView text) const { return throughCodePage(text, codePage()); }

  /// A path as the system gives it to programs of the code page: itself, or, if the page cannot
  /// write it, its short form. Where there is none, or the page cannot write that either, the path
  /// itself.
  Text givenPath(const Text& path);

  /// The folder that the program was started in, from which relative paths start.
  Path currentFolder() const;
  /// The settings of a program, by its path; none if the machine says nothing of it.
  const ProgramSettings* program(TextView path) const;
};

/// Writes a call's answer and a NUL over the beginning of a buffer and leaves the rest. The buffer
/// stands for as many bytes; what they cannot hold is dropped. Returns the units of the whole
/// answer, without the NUL.
std::uint32_t writeAnswer(Text& buffer, const std::string& answer, std::uint32_t codePage);

}  // namespace zev::simulated
