#include "programs/zevsim/machine_setup.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "code_page/code_page.h"

namespace zev::simulator {

using scenario::DriveEntry;
using scenario::FaultChange;
using scenario::FileEntry;
using scenario::MachineChange;
using scenario::ScenarioError;

namespace {

using simulated::FolderSettings;
using simulated::SimulatedMachine;

/// Takes over what a change says and leaves the rest.
template <typename T, typename Said>
void take(T& setting, const Said& said) {
  if (said) setting = *said;
}

std::vector<std::uint8_t> bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

// The system.

void changeSystem(simulated::SystemSettings& system, const MachineChange& change) {
  take(system.version.platform, change.version.platform);
  take(system.version.major, change.version.major);
  take(system.version.minor, change.version.minor);
  take(system.version.build, change.version.build);
  take(system.version.csd, change.version.csd);
  take(system.version.suiteMask, change.version.suiteMask);
  take(system.version.productType, change.version.productType);
  take(system.version.fails, change.version.fails);
  take(system.architecture, change.architecture);
  take(system.wow64, change.wow64);
  take(system.productInfo, change.productInfo);
  take(system.uiLanguage, change.uiLanguage);
  take(system.codePage, change.codePage);
  take(system.user, change.user);
  take(system.domain, change.domain);
  for (const auto& [metric, value] : change.metrics) system.metrics[metric] = value;
}

bool saysAnything(const scenario::FoldersChange& change) {
  return change.temp || change.windows || change.system || change.documents ||
         change.localAppData || change.desktop || !change.special.empty();
}

/// The folders with what a change says of them.
FolderSettings changed(FolderSettings folders, const scenario::FoldersChange& change) {
  take(folders.temp, change.temp);
  take(folders.windows, change.windows);
  take(folders.system, change.system);
  take(folders.documents, change.documents);
  take(folders.localAppData, change.localAppData);
  take(folders.desktop, change.desktop);
  for (const auto& [number, folder] : change.special) folders.special[number] = folder;
  return folders;
}

// Drives and files.

/// A drive that is there keeps what the change does not speak of; a new one begins as a usual
/// drive.
void changeDrive(simulated::Disks& disks, const DriveEntry& entry) {
  if (!entry.change) {
    disks.removeDrive(entry.letter);
    return;
  }
  simulated::DriveSettings drive = disks.drive(entry.letter).value_or(simulated::DriveSettings{});
  take(drive.type, entry.change->type);
  take(drive.free, entry.change->free);
  take(drive.sectorsPerCluster, entry.change->sectorsPerCluster);
  take(drive.bytesPerSector, entry.change->bytesPerSector);
  take(drive.label, entry.change->label);
  take(drive.ready, entry.change->ready);
  take(drive.shortNames, entry.change->shortNames);
  take(drive.host, entry.change->host);
  disks.setDrive(entry.letter, std::move(drive));
}

/// Turns the content of a script into what is laid on a drive.
struct ContentLayer {
  simulated::FileSettings& file;
  std::uint32_t codePage;

  void operator()(const scenario::AsItIs&) const {}
  void operator()(const scenario::Directory&) const { file.directory = true; }
  void operator()(const scenario::FileText& content) const {
    file.content = bytesOf(toCodePage(content.text, codePage));
  }
  void operator()(const scenario::FileBytes& content) const { file.content = content.bytes; }
  void operator()(const scenario::FileZeros& content) const {
    file.content = simulated::ZeroBytes{content.size};
  }
  void operator()(const scenario::FileFromHost& content) const { file.content = content.file; }
  void operator()(const scenario::FileLink& content) const {
    file.directory = content.toFolder;
    file.link = content.target;
  }
};

simulated::Denial denial(const std::vector<std::string>& denied) {
  const auto has = [&](std::string_view word) {
    return std::find(denied.begin(), denied.end(), word) != denied.end();
  };
  return {has("create"), has("write"), has("delete"), has("list")};
}

/// An entry of which nothing says what it is stays what it is.
bool isDirectory(const simulated::Disks& disks, const FileEntry& entry) {
  if (!std::holds_alternative<scenario::AsItIs>(entry.change->content)) return false;
  const auto found = disks.find(entry.file);
  return found && (found->attributes & file_attribute::directory) != 0;
}

/// What the change says nothing of stays as it is on an entry that is there.
void changeFile(SimulatedMachine& machine, const FileEntry& entry) {
  if (!entry.change) {
    machine.disks().remove(entry.file);
    return;
  }
  simulated::FileSettings file;
  file.directory = isDirectory(machine.disks(), entry);
  std::visit(ContentLayer{file, machine.settings().system.codePage}, entry.change->content);
  file.attributes = entry.change->attributes;
  file.locked = entry.change->locked;
  file.inUse = entry.change->inUse;
  if (entry.change->deny) file.deny = denial(*entry.change->deny);
  machine.disks().put(entry.file, file);
}

/// Carries out the change of one entry; what the drive refuses is an error of the scenario.
void changeEntry(SimulatedMachine& machine, const FileEntry& entry) {
  const bool present = machine.disks().drive(upperCase(entry.file).front()).has_value();
  if (!present && !entry.change) return;
  if (!present) throw ScenarioError(entry.path, "the machine has no such drive");
  try {
    changeFile(machine, entry);
  } catch (const std::invalid_argument& error) {
    throw ScenarioError(entry.path, error.what());
  } catch (const std::runtime_error& error) {
    throw ScenarioError(entry.path, error.what());
  }
}

// The registry.

/// A text under a type that holds none is stored as the bytes that it has in the machine's code
/// page, NUL included.
simulated::RegistryValue registryValue(const scenario::RegistryData& data, std::uint32_t codePage) {
  using simulated::RegistryValue;
  if (const auto* bytes = std::get_if<std::vector<std::uint8_t>>(&data.data)) {
    return RegistryValue::ofBytes(data.type, *bytes, codePage);
  }
  const Text& text = std::get<Text>(data.data);
  if (RegistryValue::isTextType(data.type)) return RegistryValue::ofText(text, data.type);
  return RegistryValue::ofBytes(data.type, bytesOf(toCodePage(text + u'\0', codePage)), codePage);
}

/// Name and data together tell what is meant: a value written or taken away, a key made or taken
/// away.
void changeRegistry(SimulatedMachine& machine, const scenario::RegistryChange& change) {
  simulated::RegistryTree& registry = machine.registry();
  if (change.name && change.data) {
    registry.setValue(change.hive, change.key, **change.name,
                      registryValue(*change.data, machine.settings().system.codePage));
  } else if (change.name) {
    registry.removeValue(change.hive, change.key, **change.name);
  } else if (change.data) {
    registry.createKey(change.hive, change.key);
  } else {
    registry.removeKey(change.hive, change.key);
  }
}

/// The list is all that is refused from now on. A hive alone is refused as a whole.
void denyKeys(simulated::RegistryTree& registry, const std::vector<Text>& keys) {
  for (const RegistryKey hive : {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
    registry.allowAll(hive);
  }
  for (const Text& key : keys) {
    const std::size_t bar = std::min(key.find(u'\\'), key.size());
    const TextView below = TextView(key).substr(std::min(bar + 1, key.size()));
    registry.deny(hiveNamed(TextView(key).substr(0, bar)).value(), below);
  }
}

// Programs and faults.

/// The settings of a program, which is known by its path in any letter case.
simulated::ProgramSettings& programAt(simulated::MachineSettings& settings, const Text& path) {
  for (auto& [known, program] : settings.programs) {
    if (equalText(known, path)) return program;
  }
  return settings.programs[path];
}

void changeProgram(simulated::MachineSettings& settings, const Text& path,
                   const scenario::ProgramChange& change) {
  simulated::ProgramSettings& program = programAt(settings, path);
  take(program.starts, change.starts);
  take(program.opens, change.opens);
  take(program.running, change.running);
  take(program.exitCode, change.exit);
  take(program.duration, change.duration);
}

simulated::Fault fault(const FaultChange& change) {
  simulated::Fault fault;
  fault.call = change.call;
  fault.nth = change.nth;
  fault.match = change.match.value_or(Text());
  if (change.error) fault.code = *change.error;
  if (change.raise) {
    fault.effect = simulated::Fault::Effect::Raise;
    fault.code = *change.raise;
  }
  if (change.ignore) fault.effect = simulated::Fault::Effect::Ignore;
  return fault;
}

void setFaults(SimulatedMachine& machine, const std::vector<FaultChange>& changes) {
  std::vector<simulated::Fault> faults;
  for (const FaultChange& each : changes) faults.push_back(fault(each));
  machine.setFaults(std::move(faults));
}

void changeSettings(SimulatedMachine& machine, const MachineChange& change) {
  simulated::MachineSettings& settings = machine.settings();
  changeSystem(settings.system, change);
  take(settings.windows, change.windows);
  take(settings.installer, change.installer);
  take(settings.services.shortcuts, change.services.shortcuts);
  take(settings.services.programManager, change.services.programManager);
  for (const auto& [path, program] : change.programs) changeProgram(settings, path, program);
}

/// What stands on the machine: drives first, then what lies on them.
void changeState(SimulatedMachine& machine, const MachineChange& change) {
  for (const FileEntry& each : change.files) changeEntry(machine, each);
  for (const scenario::RegistryChange& each : change.registry) changeRegistry(machine, each);
  if (change.deniedKeys) denyKeys(machine.registry(), *change.deniedKeys);
  if (change.faults) setFaults(machine, *change.faults);
}

/// Lays the folders of the machine anew, after its drives and the name of its user are known. What
/// the usual machine had in their place goes away: folders named otherwise do not exist twice.
void layFolders(SimulatedMachine& machine, const MachineChange& description) {
  simulated::Disks& disks = machine.disks();
  if (disks.drive(u'C') && !disks.drive(u'C')->host) {
    disks.remove(u"C:\\Users");
    disks.remove(u"C:\\Windows");
  }
  FolderSettings folders = simulated::usualFolders(machine.settings().system.user.value_or(u"bob"));
  machine.setFolders(changed(std::move(folders), description.folders));
  simulated::layCommonFolders(disks);
}

}  // namespace

/// Drives come first, then the user's name and the code page, which folders and files depend on.
void setUp(SimulatedMachine& machine, const MachineChange& description) {
  for (const DriveEntry& each : description.drives) changeDrive(machine.disks(), each);
  changeSettings(machine, description);
  layFolders(machine, description);
  changeState(machine, description);
}

namespace {

/// A piece of the host's file stays there until it is read; only with inverted bytes is all of it
/// taken into memory.
simulated::FileContent contentOf(const scenario::InstallerBytes& bytes) {
  using simulated::HostPiece;
  auto piece = bytes.file ? std::make_shared<const HostPiece>(*bytes.file, bytes.offset, bytes.size,
                                                              bytes.zeros)
                          : std::make_shared<const HostPiece>(bytes.zeros);
  if (bytes.inverted.empty()) return piece;
  std::vector<std::uint8_t> whole(static_cast<std::size_t>(piece->size()));
  piece->read(0, whole);
  for (const std::uint64_t offset : bytes.inverted) {
    std::uint8_t& byte = whole[static_cast<std::size_t>(offset)];
    byte = static_cast<std::uint8_t>(~byte);
  }
  return whole;
}

}  // namespace

/// On a machine without that drive nothing is laid: the program then finds no package.
void layInstaller(SimulatedMachine& machine, const scenario::InstallerBytes& bytes) {
  const Text& path = machine.settings().installer;
  if (!machine.disks().drive(upperCase(path).front())) return;
  simulated::FileSettings file;
  file.content = contentOf(bytes);
  try {
    machine.disks().put(path, file);
  } catch (const std::invalid_argument& error) {
    throw ScenarioError("$.machine.installer", error.what());
  }
}

void change(SimulatedMachine& machine, const MachineChange& change) {
  for (const DriveEntry& each : change.drives) changeDrive(machine.disks(), each);
  changeSettings(machine, change);
  if (saysAnything(change.folders)) {
    machine.setFolders(changed(machine.settings().folders, change.folders));
  }
  changeState(machine, change);
}

}  // namespace zev::simulator
