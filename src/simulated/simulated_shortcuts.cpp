#include "simulated/simulated_shortcuts.h"

#include "runtime/error.h"
#include "simulated/shell_link.h"

namespace zev::simulated {

// ---- Program Manager

namespace {

constexpr TextView programManager = u"Progman|progman";

}  // namespace

void SimulatedDde::requireServer() const {
  const bool served =
      machine_.settings.services.programManager && equalText(topic_, programManager);
  if (!served) throw RuntimeError(ErrorNumber::NoForeignApplicationResponded);
}

/// A new topic ends the conversation.
void SimulatedDde::LinkTopic(TextView topic) {
  topic_ = topic;
  linked_ = false;
}

void SimulatedDde::LinkMode(std::int32_t mode) {
  linked_ = false;
  if (mode == 0) return;
  requireServer();
  linked_ = true;
}

void SimulatedDde::LinkExecute(TextView command) {
  if (!linked_) throw RuntimeError(ErrorNumber::NoForeignApplicationResponded);
  requireServer();
  machine_.records.dde.emplace_back(command);
  if (!machine_.transcript.wants("dde")) return;
  machine_.transcript.add(
      {{"event", "dde"}, {"topic", toUtf8(topic_)}, {"command", toUtf8(command)}});
}

// ---- shortcuts

namespace {

constexpr std::int32_t programsFolder = 2;
constexpr std::uint32_t facilityWin32 = 0x80070000;

/// The number by which automation tells an error of the system.
std::int32_t automationError(SystemError error) {
  return static_cast<std::int32_t>(facilityWin32 | error);
}

Text fullPath(const MachineState& machine, TextView text) {
  Path path;
  const SystemError error = parsePath(machine.throughAnsi(text), machine.currentFolder(), path);
  return error == system_error::success ? path.text() : Text(text);
}

/// What a shortcut is known by, whether its path was given by short names or not.
Text keyOf(MachineState& machine, const Text& fullPath) {
  Path path;
  parsePath(fullPath, Path{}, path);
  Drive* drive = machine.disks.at(path.drive);
  return upperCase(drive != nullptr ? drive->longPath(path).text() : fullPath);
}

class SimulatedShortcut final : public Shortcut {
 public:
  SimulatedShortcut(MachineState& machine, FileSystem& files, TextView path)
      : machine_(machine),
        files_(files),
        path_(fullPath(machine, path)),
        key_(keyOf(machine, path_)) {
    const auto known = machine.shortcuts.find(key_);
    if (known != machine.shortcuts.end()) properties_ = known->second;
  }

  void TargetPath(TextView path) override { properties_.TargetPath = path; }
  void Arguments(TextView arguments) override { properties_.Arguments = arguments; }
  void WindowStyle(std::int32_t style) override { properties_.WindowStyle = style; }
  void IconLocation(TextView location) override { properties_.IconLocation = location; }
  void Description(TextView text) override { properties_.Description = text; }
  void WorkingDirectory(TextView path) override { properties_.WorkingDirectory = path; }

  void Save() override {
    if (const SystemError error = writeFile()) {
      throw RuntimeError(automationError(error), join(u"Unable to save shortcut \"", path_, u"\"."),
                         u"WshShortcut.Save");
    }
    machine_.shortcuts[key_] = properties_;
    if (!machine_.transcript.wants("shortcut")) return;
    machine_.transcript.add(
        {{"event", "shortcut"}, {"path", toUtf8(path_)}, {"properties", told(properties_)}});
  }

 private:
  SystemError writeFile() {
    FileHandle file = 0;
    SystemError error = files_.CreateFileA(path_, FileAccess::Write, FileShare::Nothing,
                                           FileDisposition::CreateAlways, file);
    if (error != system_error::success) return error;
    std::size_t written = 0;
    error = files_.WriteFile(file, 0, shellLink(properties_, machine_.codePage()), written);
    const SystemError closed = files_.CloseHandle(file);
    return error != system_error::success ? error : closed;
  }

  MachineState& machine_;
  FileSystem& files_;
  Text path_;
  Text key_;
  ShortcutProperties properties_;
};

class SimulatedWScriptShell final : public WScriptShell {
 public:
  SimulatedWScriptShell(MachineState& machine, FileSystem& files)
      : machine_(machine), files_(files) {}

  std::unique_ptr<Shortcut> CreateShortcut(TextView path) override {
    const Text name = lowerCase(path);
    if (!name.ends_with(u".lnk") && !name.ends_with(u".url")) {
      throw RuntimeError(ErrorNumber::AutomationError);
    }
    return std::make_unique<SimulatedShortcut>(machine_, files_, path);
  }

  Text SpecialFolders(TextView name) override { return machine_.givenPath(folder(name)); }

 private:
  Text folder(TextView name) const {
    const FolderSettings& folders = machine_.settings.folders;
    if (equalText(name, u"Desktop")) return folders.desktop.value_or(Text());
    if (equalText(name, u"MyDocuments")) return folders.documents.value_or(Text());
    const auto programs = folders.special.find(programsFolder);
    const bool known = equalText(name, u"Programs") && programs != folders.special.end();
    return known ? programs->second.value_or(Text()) : Text();
  }

  MachineState& machine_;
  FileSystem& files_;
};

}  // namespace

Value told(const ShortcutProperties& properties) {
  return {{"TargetPath", toUtf8(properties.TargetPath)},
          {"Arguments", toUtf8(properties.Arguments)},
          {"WindowStyle", properties.WindowStyle},
          {"IconLocation", toUtf8(properties.IconLocation)},
          {"Description", toUtf8(properties.Description)},
          {"WorkingDirectory", toUtf8(properties.WorkingDirectory)}};
}

std::unique_ptr<WScriptShell> SimulatedShortcuts::CreateObject() {
  if (!machine_.settings.services.shortcuts) throw RuntimeError(ErrorNumber::CannotCreateObject);
  return std::make_unique<SimulatedWScriptShell>(machine_, files_);
}

}  // namespace zev::simulated
