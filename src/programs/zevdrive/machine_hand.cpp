#include "programs/zevdrive/machine_hand.h"

#include <filesystem>
#include <fstream>

#include "programs/zevdrive/windows_witness.h"
#include "win32/control_windows.h"

namespace zev::drive {
namespace {

using scenario::FileChange;
using scenario::FileEntry;
using scenario::MachineChange;
using scenario::RegistryChange;
using scenario::ScenarioError;
using win32::wide;
namespace fs = std::filesystem;

constexpr DWORD settable = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_SYSTEM;

fs::path hostPath(const Text& path) { return fs::path(wide(path)); }

// Files.

std::optional<std::string> refusal(const FileChange& file) {
  if (file.locked && *file.locked) return "a file whose attributes cannot change";
  if (std::holds_alternative<scenario::FileLink>(file.content)) return "a link";
  if (file.deny && !file.deny->empty()) return "what is refused on a file or folder";
  return std::nullopt;
}

struct ContentWriter {
  const fs::path& path;

  void write(const char* bytes, std::size_t size) const {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes, static_cast<std::streamsize>(size));
  }

  void operator()(const scenario::AsItIs&) const {
    if (!fs::exists(path)) write("", 0);
  }
  void operator()(const scenario::Directory&) const { fs::create_directories(path); }
  void operator()(const scenario::FileText& content) const {
    const std::string bytes = win32::toAnsi(content.text);
    write(bytes.data(), bytes.size());
  }
  void operator()(const scenario::FileBytes& content) const {
    write(reinterpret_cast<const char*>(content.bytes.data()), content.bytes.size());
  }
  void operator()(const scenario::FileZeros& content) const {
    write("", 0);
    fs::resize_file(path, content.size);
  }
  void operator()(const scenario::FileLink&) const {}  // refused before
  void operator()(const scenario::FileFromHost& content) const {
    fs::copy_file(content.file, path, fs::copy_options::overwrite_existing);
  }
};

/// Takes attributes away, so that the entry can be written and removed.
void unlock(const Text& path) {
  const DWORD attributes = GetFileAttributesW(wide(path));
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & settable) == 0) return;
  SetFileAttributesW(wide(path), attributes & ~settable);
}

void remove(const Text& path) {
  std::error_code ignored;
  unlock(path);
  for (fs::recursive_directory_iterator each(hostPath(path), ignored), end; each != end;
       each.increment(ignored)) {
    const std::wstring name = each->path().wstring();
    unlock(Text(name.begin(), name.end()));
  }
  fs::remove_all(hostPath(path));
}

/// Read-only comes last: what a file may keep beside it is no longer taken then on some systems.
void setAttributes(const Text& path, std::uint32_t wanted) {
  const DWORD present = GetFileAttributesW(wide(path)) & ~settable;
  const DWORD others = wanted & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY);
  SetFileAttributesW(wide(path), present | others);
  if (others != wanted) SetFileAttributesW(wide(path), present | wanted);
}

// The registry.

void failRegistry(const RegistryChange& change, LSTATUS error) {
  throw ScenarioError(change.path, "the registry refuses it: error " + std::to_string(error));
}

std::vector<std::uint8_t> bytesOf(const scenario::RegistryData& data) {
  if (const auto* bytes = std::get_if<std::vector<std::uint8_t>>(&data.data)) return *bytes;
  const Text& text = std::get<Text>(data.data);
  const auto* first = reinterpret_cast<const std::uint8_t*>(text.c_str());
  return {first, first + (text.size() + 1) * sizeof(char16_t)};
}

bool holdsText(const scenario::RegistryData& data) {
  return std::holds_alternative<Text>(data.data);
}

/// A text is handed over as it is; bytes of a text type are meant in the code page.
LSTATUS store(HKEY key, const Text& name, const scenario::RegistryData& data) {
  const std::vector<std::uint8_t> bytes = bytesOf(data);
  const auto size = static_cast<DWORD>(bytes.size());
  if (holdsText(data)) return RegSetValueExW(key, wide(name), 0, data.type, bytes.data(), size);
  const std::string ansi = win32::toAnsi(name);
  return RegSetValueExA(key, ansi.c_str(), 0, data.type, bytes.data(), size);
}

/// A key that is not there is as good as one that was taken away.
void removeKey(const RegistryChange& change) {
  const LSTATUS error = RegDeleteTreeW(hiveHandle(change.hive), wide(change.key));
  if (error != ERROR_SUCCESS && error != ERROR_FILE_NOT_FOUND) failRegistry(change, error);
}

void changeValue(HKEY key, const RegistryChange& change) {
  if (!change.name || !*change.name) return;  // the key alone
  const Text& name = **change.name;
  LSTATUS error = ERROR_SUCCESS;
  if (change.data) error = store(key, name, *change.data);
  if (!change.data) error = RegDeleteValueW(key, wide(name));
  if (error != ERROR_SUCCESS && error != ERROR_FILE_NOT_FOUND) failRegistry(change, error);
}

void apply(const RegistryChange& change) {
  const bool wholeKey = !change.name;
  if (wholeKey && !change.data) return removeKey(change);
  HKEY key = nullptr;
  const LSTATUS error = RegCreateKeyExW(hiveHandle(change.hive), wide(change.key), 0, nullptr, 0,
                                        MAXIMUM_ALLOWED, nullptr, &key, nullptr);
  if (error != ERROR_SUCCESS) failRegistry(change, error);
  changeValue(key, change);
  RegCloseKey(key);
}

struct SavedKey {
  RegistryKey hive;
  const wchar_t* file;
};

constexpr SavedKey savedKeys[] = {
    {HKEY_LOCAL_MACHINE, L"machine.reg"},
    {HKEY_CURRENT_USER, L"user.reg"},
};

/// Whole keys can be saved by who may make backups.
void takePrivilege() {
  HANDLE token = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, &token)) return;
  TOKEN_PRIVILEGES wanted{};
  wanted.PrivilegeCount = 1;
  wanted.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
  LookupPrivilegeValueW(nullptr, L"SeBackupPrivilege", &wanted.Privileges[0].Luid);
  AdjustTokenPrivileges(token, FALSE, &wanted, 0, nullptr, nullptr);
  CloseHandle(token);
}

bool saysAnything(const scenario::VersionChange& version) {
  return version.platform || version.major || version.minor || version.build || version.csd ||
         version.suiteMask || version.productType || version.fails;
}

bool saysAnything(const scenario::FoldersChange& folders) {
  return folders.temp || folders.windows || folders.system || folders.documents ||
         folders.localAppData || folders.desktop || !folders.special.empty();
}

struct RefusedSide {
  const char* name;
  bool (*named)(const MachineChange& change);
};

constexpr RefusedSide refusedSides[] = {
    {"faults",
     [](const MachineChange& change) { return change.faults && !change.faults->empty(); }},
    {"the version", [](const MachineChange& change) { return saysAnything(change.version); }},
    {"the architecture",
     [](const MachineChange& change) { return change.architecture || change.wow64; }},
    {"metrics", [](const MachineChange& change) { return !change.metrics.empty(); }},
    {"the edition", [](const MachineChange& change) { return change.productInfo.has_value(); }},
    {"the language",
     [](const MachineChange& change) { return change.uiLanguage || change.codePage; }},
    {"the account", [](const MachineChange& change) { return change.user || change.domain; }},
    {"the system's folders",
     [](const MachineChange& change) { return saysAnything(change.folders); }},
    {"drives", [](const MachineChange& change) { return !change.drives.empty(); }},
    {"denied keys",
     [](const MachineChange& change) { return change.deniedKeys && !change.deniedKeys->empty(); }},
    {"the installer's place",
     [](const MachineChange& change) { return change.installer.has_value(); }},
    {"services",
     [](const MachineChange& change) {
       return change.services.shortcuts || change.services.programManager;
     }},
    {"programs", [](const MachineChange& change) { return !change.programs.empty(); }},
};

/// On another code page a scenario could hold by chance.
void requireCodePage(const MachineChange& machine) {
  if (machine.codePage.value_or(GetACP()) == GetACP()) return;
  throw ScenarioError("$.machine.codePage",
                      "this Windows has the code page " + std::to_string(GetACP()));
}

}  // namespace

std::optional<std::string> refusal(const MachineChange& change) {
  for (const RefusedSide& side : refusedSides) {
    if (side.named(change)) return side.name;
  }
  for (const FileEntry& entry : change.files) {
    if (!entry.change) continue;
    if (auto reason = refusal(*entry.change)) return reason;
  }
  return std::nullopt;
}

void saveRegistry(const fs::path& folder) {
  takePrivilege();
  for (const SavedKey& saved : savedKeys) {
    const fs::path file = folder / saved.file;
    fs::remove(file);
    HKEY key = nullptr;
    // All of it: what programs of 32 bits see of it is a part, and lies below a key of its own.
    RegOpenKeyExW(hiveHandle(saved.hive), L"Software", 0, MAXIMUM_ALLOWED | KEY_WOW64_64KEY, &key);
    const LSTATUS error = RegSaveKeyW(key, file.c_str(), nullptr);
    RegCloseKey(key);
    if (error == ERROR_SUCCESS) continue;
    throw std::runtime_error("the registry cannot be saved: error " + std::to_string(error));
  }
}

/// Windows come last and all anew: their titles are the whole set.
void MachineHand::change(const MachineChange& change) {
  for (const FileEntry& entry : change.files) this->change(entry);
  for (const RegistryChange& each : change.registry) apply(each);
  if (!change.windows) return;
  windows_.reset();
  windows_ = std::make_unique<OtherWindows>(*change.windows);
}

/// Programs have their temporary folder from the environment, which they inherit from here.
void MachineHand::prepare(const MachineChange& machine) {
  requireCodePage(machine);
  change(machine);
  if (!machine.folders.temp || !*machine.folders.temp) return;
  const Text& temp = **machine.folders.temp;
  for (const wchar_t* name : {L"TMP", L"TEMP"}) SetEnvironmentVariableW(name, wide(temp));
}

/// A file that is held is let go of first: nothing could be done to it. Whether it is in use
/// afterwards the change says anew.
void MachineHand::change(const FileEntry& entry) {
  try {
    occupied_.erase(upperCase(entry.file));
    if (!entry.change) return remove(entry.file);
    const fs::path path = hostPath(entry.file);
    fs::create_directories(path.parent_path());
    if (!std::holds_alternative<scenario::AsItIs>(entry.change->content)) unlock(entry.file);
    std::visit(ContentWriter{path}, entry.change->content);
    if (entry.change->attributes) setAttributes(entry.file, *entry.change->attributes);
    occupy(entry.file, entry.change->inUse.value_or(false));
  } catch (const fs::filesystem_error& error) {
    throw ScenarioError(entry.path, error.what());
  }
}

/// In use means open without sharing, for as long as the handle is kept.
void MachineHand::occupy(const Text& path, bool inUse) {
  if (!inUse) return;
  const HANDLE file = CreateFileW(wide(path), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  if (file != INVALID_HANDLE_VALUE) occupied_[upperCase(path)].reset(file);
}

// ---- windows of another program

namespace {

constexpr const wchar_t* className = L"ZevdriveOther";
constexpr DWORD kForever = 0xFFFFFFFF;

void makeWindow(const Text& title) {
  CreateWindowExW(WS_EX_NOACTIVATE, className, win32::wide(title), WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                  0, 0, 200, 40, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
}

}  // namespace

/// A thread of their own dispatches their messages, so that they answer while zevdrive waits for
/// something else.
OtherWindows::OtherWindows(std::vector<Text> titles) : titles_(std::move(titles)) {
  if (titles_.empty()) return;
  WNDCLASSW description{};
  description.lpfnWndProc = DefWindowProcW;
  description.hInstance = GetModuleHandleW(nullptr);
  description.lpszClassName = className;
  RegisterClassW(&description);
  ready_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  thread_ = CreateThread(nullptr, 0, thread, this, 0, &threadId_);
  WaitForSingleObject(ready_, kForever);
  CloseHandle(ready_);
}

OtherWindows::~OtherWindows() {
  if (thread_ == nullptr) return;
  PostThreadMessageW(threadId_, WM_QUIT, 0, 0);
  WaitForSingleObject(thread_, kForever);
  CloseHandle(thread_);
}

DWORD WINAPI OtherWindows::thread(void* self) {
  static_cast<const OtherWindows*>(self)->run();
  return 0;
}

/// The one made last lies on top, so that they are made from the last to the first.
void OtherWindows::run() const {
  for (auto title = titles_.rbegin(); title != titles_.rend(); ++title) makeWindow(*title);
  SetEvent(ready_);
  MSG message{};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
}

}  // namespace zev::drive
