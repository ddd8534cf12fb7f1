#include <array>
#include <filesystem>
#include <optional>
#include <string_view>

#include "contract/bench.h"
#include "win32/ansi.h"
#include "win32/control_windows.h"
#include "win32/dialogs.h"
#include "win32/form_engine.h"
#include "win32/machine.h"
#include "win32/windows_api.h"

namespace zev::contract {
namespace {

namespace fs = std::filesystem;

/// Where the shell looks up the folders of the user.
constexpr const wchar_t* shellFolders =
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders";

const HKEY currentUser = reinterpret_cast<HKEY>(static_cast<LONG_PTR>(LONG(0x80000001)));

/// A name that no other run of these tests has at the same time.
Text uniqueName() { return join(u"ZevContract", decimal(GetCurrentProcessId())); }

/// Names may have letters that the code page does not have.
void removeFolder(const Text& folder) {
  const fs::path path(win32::wide(folder));
  std::error_code refused;
  for (const auto& entry : fs::recursive_directory_iterator(path, refused)) {
    SetFileAttributesW(entry.path().c_str(), FILE_ATTRIBUTE_NORMAL);
  }
  fs::remove_all(path, refused);
}

/// Wine makes and removes no links, and takes those of the host for what they are: there it is
/// programs of the host that make and remove one. Paths are those that Wine's library gives for
/// Windows's.
std::wstring onHost(const Text& path) {
  using NameOnHost = char*(CDECL*)(const wchar_t*);
  const auto call = reinterpret_cast<NameOnHost>(reinterpret_cast<void*>(
      GetProcAddress(GetModuleHandleA("kernel32"), "wine_get_unix_file_name")));
  const std::string name = call == nullptr ? "" : call(win32::wide(path));
  return L'"' + std::wstring(name.begin(), name.end()) + L'"';
}

/// Such a program is no process of Windows's: whether there is an entry behind it tells that it has
/// run. False if it has not in a few seconds.
bool runOnHost(const wchar_t* program, std::wstring line, const Text& entry, bool there) {
  constexpr int tries = 200;
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION made{};
  if (!CreateProcessW(program, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                      &made)) {
    return false;
  }
  const auto isThere = [&] {
    return GetFileAttributesW(win32::wide(entry)) != INVALID_FILE_ATTRIBUTES;
  };
  for (int each = 0; each < tries && isThere() != there; ++each) Sleep(20);
  return isThere() == there;
}

bool makeLinkOnHost(const Text& path, const Text& folder) {
  const std::size_t name = path.find_last_of(u'\\') + 1;
  const std::wstring link =
      onHost(path.substr(0, name - 1)) + L"/" + std::wstring(win32::wide(path.substr(name)));
  return runOnHost(L"\\\\?\\unix\\bin\\ln", L"ln -s " + onHost(folder) + L" " + link, path, true);
}

void removeLinkOnHost(const Text& path) {
  runOnHost(L"\\\\?\\unix\\bin\\rm", L"rm -f " + onHost(path), path, false);
}

std::vector<Text> subkeysOf(RegistryApi& registry, const Text& key) {
  std::vector<Text> names;
  RegistryKey handle = 0;
  if (registry.RegOpenKeyA(HKEY_CURRENT_USER, key, handle) != 0) return names;
  Text name = blanks(MAX_PATH);
  while (registry.RegEnumKeyA(handle, static_cast<std::uint32_t>(names.size()), name, MAX_PATH) ==
         0) {
    names.emplace_back(beforeNul(name));
  }
  registry.RegCloseKey(handle);
  return names;
}

void removeKey(RegistryApi& registry, const Text& key) {
  for (const Text& name : subkeysOf(registry, key)) removeKey(registry, join(key, u"\\", name));
  registry.RegDeleteKeyA(HKEY_CURRENT_USER, key);
}

/// What one process owns; it goes before the test is tidied up, so that no file is open then.
struct Process {
  Process() { engine.serve(application); }

  win32::Win32FormEngine engine;
  Application application{engine};
  win32::Win32Dialogs dialogs{engine};
  win32::Machine machine;
  Platform platform = machine.platform(application, dialogs);
};

/// As long as it lives, no window of this thread can be made that is a box.
class NoBoxes {
 public:
  NoBoxes() : hook_(SetWindowsHookExW(WH_CBT, refuse, nullptr, GetCurrentThreadId())) {}
  ~NoBoxes() { UnhookWindowsHookEx(hook_); }
  NoBoxes(const NoBoxes&) = delete;
  NoBoxes& operator=(const NoBoxes&) = delete;

 private:
  static LRESULT CALLBACK refuse(int code, WPARAM window, LPARAM details) {
    std::array<wchar_t, 16> name{};
    if (code == HCBT_CREATEWND) {
      GetClassNameW(reinterpret_cast<HWND>(window), name.data(), static_cast<int>(name.size()));
    }
    const bool box = std::wstring_view(name.data()) == L"#32770";
    return box ? 1 : CallNextHookEx(nullptr, code, window, details);
  }

  HHOOK hook_;
};

class Win32Bench final : public Bench {
 public:
  Win32Bench() { platform().files.MkDir(folder_); }
  ~Win32Bench() override {
    process_.reset();
    win32::Win32Registry registry;
    nameTemporaryFolder(temporaryFolder_);
    if (documents_) nameDocuments(*documents_);
    for (const Text& link : linksOnHost_) removeLinkOnHost(link);
    removeFolder(folder_);
    removeKey(registry, key());
  }

  Platform& platform() override { return process_->platform; }
  FileSystem& fileSystem() override { return process_->machine.fileSystem(); }
  Text folder() override { return folder_; }
  Text key() override { return join(u"Software\\", uniqueName()); }
  Text program() override { return join(systemFolder(), u"\\hostname.exe"); }

  char16_t freeLetter() override {
    const std::uint32_t taken = platform().drives.GetLogicalDrives();
    char16_t letter = u'Q';
    while ((taken & (1u << (letter - u'A'))) != 0) ++letter;
    return letter;
  }

  const Control* focused(const Form& form) override {
    const auto window = reinterpret_cast<HWND>(process_->engine.windowHandle(form));
    const HWND focus = GetFocus();
    if (focus == nullptr || !IsChild(window, focus)) return nullptr;
    const int place = GetDlgCtrlID(focus) - win32::firstControlId;
    const Control* control = form.Controls().at(static_cast<std::size_t>(place));
    return control->canTakeFocus() ? control : nullptr;
  }

  bool endSession(const Form& form) override {
    const auto window = reinterpret_cast<HWND>(process_->engine.windowHandle(form));
    const bool ends = SendMessageW(window, WM_QUERYENDSESSION, 0, 0) != FALSE;
    SendMessageW(window, WM_ENDSESSION, ends ? TRUE : FALSE, 0);
    return ends;
  }

  void refuseBoxes() override { noBoxes_ = std::make_unique<NoBoxes>(); }

  std::uint32_t codePage() override { return GetACP(); }
  void makeFolder(const Text& path) override { fs::create_directories(win32::wide(path)); }
  bool makeLink(const Text& path, const Text& folder) override {
    if (isWine()) {
      linksOnHost_.push_back(path);
      return makeLinkOnHost(path, folder);
    }
    return CreateSymbolicLinkW(win32::wide(path), win32::wide(folder),
                               SYMBOLIC_LINK_FLAG_DIRECTORY) != 0;
  }
  bool isThere(const Text& path) override { return fs::exists(win32::wide(path)); }

  void nameTemporaryFolder(const Text& path) override {
    for (const wchar_t* name : {L"TMP", L"TEMP"}) SetEnvironmentVariableW(name, win32::wide(path));
  }

  void nameDocuments(const Text& path) override {
    if (!documents_) documents_ = namedDocuments();
    const auto size = static_cast<DWORD>((path.size() + 1) * sizeof(wchar_t));
    RegSetKeyValueW(currentUser, shellFolders, L"Personal", REG_EXPAND_SZ, path.c_str(), size);
  }

  bool isWine() override {
    return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
  }

 private:
  Text temporaryFolder() {
    Text buffer = blanks(MAX_PATH);
    const std::uint32_t length = platform().system.GetTempPathA(MAX_PATH, buffer);
    return buffer.substr(0, length);
  }

  static Text namedDocuments() {
    wchar_t path[MAX_PATH] = {};
    DWORD size = sizeof path;
    RegGetValueW(currentUser, shellFolders, L"Personal", RRF_RT_ANY | RRF_NOEXPAND, nullptr, path,
                 &size);
    return reinterpret_cast<const char16_t*>(path);
  }

  Text systemFolder() {
    Text buffer = blanks(MAX_PATH);
    const std::uint32_t length = platform().system.GetSystemDirectoryA(buffer, MAX_PATH);
    return buffer.substr(0, length);
  }

  std::unique_ptr<Process> process_ = std::make_unique<Process>();
  Text temporaryFolder_ = temporaryFolder();
  Text folder_ = join(temporaryFolder_, uniqueName());
  std::unique_ptr<NoBoxes> noBoxes_;
  std::vector<Text> linksOnHost_;
  std::optional<Text> documents_;  ///< as they were named before the test named others
};

}  // namespace

std::unique_ptr<Bench> makeBench() { return std::make_unique<Win32Bench>(); }

}  // namespace zev::contract
