#include "win32/shell.h"

#include <algorithm>
#include <cstring>

#include "win32/ansi.h"
#include "win32/windows_api.h"

// The shell's header needs the system's before it.
#include <objbase.h>
#include <shlobj.h>
#undef SHGetPathFromIDList

namespace zev::win32 {
namespace {

GUID systemGuid(const Guid& identifier) {
  GUID guid{};
  static_assert(sizeof guid == sizeof identifier);
  std::memcpy(&guid, identifier.data(), sizeof guid);
  return guid;
}

Text fromWide(const wchar_t* text) { return reinterpret_cast<const char16_t*>(text); }

}  // namespace

std::int32_t Win32ShellFolders::SHGetSpecialFolderLocation(WindowHandle window, std::int32_t csidl,
                                                           ItemIdList& list) {
  list = nullptr;
  const auto call =
      shell32_.find<decltype(::SHGetSpecialFolderLocation)>("SHGetSpecialFolderLocation");
  if (call == nullptr) return E_NOTIMPL;
  LPITEMIDLIST answer = nullptr;
  const HRESULT result = call(reinterpret_cast<HWND>(window), csidl, &answer);
  if (result == S_OK) list = answer;
  return result;
}

bool Win32ShellFolders::SHGetPathFromIDList(ItemIdList list, Text& buffer) {
  const auto call = shell32_.find<decltype(::SHGetPathFromIDListW)>("SHGetPathFromIDListW");
  wchar_t path[MAX_PATH] = {};
  const bool found =
      call != nullptr && list != nullptr && call(static_cast<LPCITEMIDLIST>(list), path) != FALSE;
  const std::string answer = toAnsi(writablePath(fromWide(path)));
  if (!found || answer.size() >= MAX_PATH) return false;
  writeAnswer(buffer, answer);
  return true;
}

std::int32_t Win32ShellFolders::CLSIDFromString(TextView text, Guid& identifier) {
  const auto call = ole32_.find<decltype(::CLSIDFromString)>("CLSIDFromString");
  if (call == nullptr) return E_NOTIMPL;
  GUID guid{};
  const HRESULT result = call(wide(Text(beforeNul(text))), &guid);
  if (result == S_OK) std::memcpy(identifier.data(), &guid, sizeof guid);
  return result;
}

std::int32_t Win32ShellFolders::SHGetKnownFolderPath(const Guid& folder, std::uint32_t flags,
                                                     std::uintptr_t token, char16_t*& path) {
  path = nullptr;
  const auto call = shell32_.find<decltype(::SHGetKnownFolderPath)>("SHGetKnownFolderPath");
  if (call == nullptr) return E_NOTIMPL;
  wchar_t* answer = nullptr;
  const HRESULT result = call(systemGuid(folder), flags, reinterpret_cast<HANDLE>(token), &answer);
  if (result == S_OK) path = given(answer);
  return result;
}

/// The path itself, or its short form in memory of its own.
char16_t* Win32ShellFolders::given(wchar_t* path) {
  auto* const itself = reinterpret_cast<char16_t*>(path);
  const Text writable = writablePath(itself);
  const auto call = ole32_.find<decltype(::CoTaskMemAlloc)>("CoTaskMemAlloc");
  if (writable == itself || call == nullptr) return itself;
  const std::size_t units = writable.size() + 1;
  auto* const copy = static_cast<char16_t*>(call(units * sizeof(char16_t)));
  if (copy == nullptr) return itself;
  std::copy_n(writable.c_str(), units, copy);
  CoTaskMemFree(path);
  return copy;
}

std::int32_t Win32ShellFolders::lstrlenW(const char16_t* text) {
  return ::lstrlenW(reinterpret_cast<const wchar_t*>(text));
}

void Win32ShellFolders::CoTaskMemFree(void* memory) {
  const auto call = ole32_.find<decltype(::CoTaskMemFree)>("CoTaskMemFree");
  if (call != nullptr) call(memory);
}

// ---- shortcuts

namespace {

/// True if an icon's location ends in the place of the icon within its file, ", 0".
bool namesPlace(TextView location) {
  const std::size_t comma = location.rfind(u',');
  return comma != TextView::npos &&
         location.find_first_not_of(u" -0123456789", comma + 1) == TextView::npos;
}

class Win32Shortcut final : public Shortcut {
 public:
  explicit Win32Shortcut(AutomationObject object) : object_(std::move(object)) {}

  void TargetPath(TextView path) override { object_.put(u"TargetPath", Text(path)); }
  void Arguments(TextView arguments) override { object_.put(u"Arguments", Text(arguments)); }
  void WindowStyle(std::int32_t style) override { object_.put(u"WindowStyle", style); }
  /// A shortcut's file always holds the place of the icon, and some systems do not take a location
  /// without it.
  void IconLocation(TextView location) override {
    object_.put(u"IconLocation", namesPlace(location) ? Text(location) : join(location, u",0"));
  }
  void Description(TextView text) override { object_.put(u"Description", Text(text)); }
  void WorkingDirectory(TextView path) override { object_.put(u"WorkingDirectory", Text(path)); }
  void Save() override { object_.call(u"Save"); }

 private:
  AutomationObject object_;
};

class Win32WScriptShell final : public WScriptShell {
 public:
  std::unique_ptr<Shortcut> CreateShortcut(TextView path) override {
    return std::make_unique<Win32Shortcut>(object_.object(u"CreateShortcut", {Text(path)}));
  }

  Text SpecialFolders(TextView name) override {
    return writablePath(object_.object(u"SpecialFolders").item(Text(name)));
  }

 private:
  AutomationObject object_ = AutomationObject::create(u"WScript.Shell");
};

}  // namespace

std::unique_ptr<WScriptShell> Win32Shortcuts::CreateObject() {
  if (!thread_) thread_.emplace();
  return std::make_unique<Win32WScriptShell>();
}

}  // namespace zev::win32
