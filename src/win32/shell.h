#pragma once

#include <optional>

#include "platform/shell.h"
#include "win32/automation.h"
#include "win32/system_library.h"

namespace zev::win32 {

/// The folders that the shell of Windows knows.
class Win32ShellFolders final : public ShellFolders {
 public:
  std::int32_t SHGetSpecialFolderLocation(WindowHandle window, std::int32_t csidl,
                                          ItemIdList& list) override;
  bool SHGetPathFromIDList(ItemIdList list, Text& buffer) override;
  std::int32_t CLSIDFromString(TextView text, Guid& identifier) override;
  std::int32_t SHGetKnownFolderPath(const Guid& folder, std::uint32_t flags, std::uintptr_t token,
                                    char16_t*& path) override;
  std::int32_t lstrlenW(const char16_t* text) override;
  void CoTaskMemFree(void* memory) override;

 private:
  char16_t* given(wchar_t* path);

  SystemLibrary shell32_{"shell32.dll"};
  SystemLibrary ole32_{"ole32.dll"};
};

/// Shortcuts by the automation object of Windows. Its objects are gone before this is.
class Win32Shortcuts final : public Shortcuts {
 public:
  std::unique_ptr<WScriptShell> CreateObject() override;

 private:
  std::optional<AutomationThread> thread_;
};

}  // namespace zev::win32
