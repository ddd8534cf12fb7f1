#pragma once

#include "platform/drives.h"
#include "platform/shell_folders.h"
#include "platform/system_information.h"
#include "platform/windows.h"
#include "simulated/instrumentation.h"

namespace zev::simulated {

/// What the system tells, under observation. A call that fails by injection gives a length of 0,
/// false or 0, whatever the number.
class InstrumentedSystem final : public SystemInformation {
 public:
  /// Borrows both, as do the other classes below.
  InstrumentedSystem(SystemInformation& system, Instrumentation& instrumentation)
      : system_(system), instrumentation_(instrumentation) {}

  std::uint32_t GetTempPathA(std::uint32_t size, Text& buffer) override;
  std::uint32_t GetWindowsDirectoryA(Text& buffer, std::uint32_t size) override;
  std::uint32_t GetSystemDirectoryA(Text& buffer, std::uint32_t size) override;
  std::uint16_t GetSystemDefaultUILanguage() override;
  bool GetUserNameA(Text& buffer, std::uint32_t& size) override;
  bool LookupAccountNameA(TextView account, std::uint32_t sidSize, Text& domain,
                          std::uint32_t& domainSize) override;
  bool GetVersionExA(OSVERSIONINFO& record) override;
  std::int32_t GetSystemMetrics(std::int32_t index) override;
  std::uintptr_t GetCurrentProcess() override;
  bool IsWow64Process(std::uintptr_t process, bool& emulated) override;
  std::uint16_t GetNativeSystemInfo() override;
  std::uint16_t GetSystemInfo() override;
  bool GetProductInfo(std::uint32_t major, std::uint32_t minor, std::uint32_t packMajor,
                      std::uint32_t packMinor, std::uint32_t& code) override;

 private:
  SystemInformation& system_;
  Instrumentation& instrumentation_;
};

/// The drives under observation. GetDriveTypeA answers an injected error with that number.
class InstrumentedDrives final : public Drives {
 public:
  InstrumentedDrives(Drives& drives, Instrumentation& instrumentation)
      : drives_(drives), instrumentation_(instrumentation) {}

  std::uint32_t GetDriveTypeA(TextView root) override;
  bool GetDiskFreeSpaceA(TextView root, DiskSpace& space) override;
  std::uint32_t GetLogicalDrives() override;
  Text volumeLabel(TextView root) override;

 private:
  Drives& drives_;
  Instrumentation& instrumentation_;
};

/// The windows under observation; failures as of the system.
class InstrumentedWindows final : public Windows {
 public:
  InstrumentedWindows(Windows& windows, Instrumentation& instrumentation)
      : windows_(windows), instrumentation_(instrumentation) {}

  WindowHandle GetWindow(WindowHandle window, std::uint32_t command) override;
  std::int32_t GetWindowTextLengthA(WindowHandle window) override;
  std::int32_t GetWindowTextA(WindowHandle window, Text& buffer, std::int32_t size) override;
  bool SetForegroundWindow(WindowHandle window) override;
  bool BringWindowToTop(WindowHandle window) override;

 private:
  Windows& windows_;
  Instrumentation& instrumentation_;
};

/// The shell's folders under observation. Calls that give a result code give the injected one.
class InstrumentedShellFolders final : public ShellFolders {
 public:
  InstrumentedShellFolders(ShellFolders& folders, Instrumentation& instrumentation)
      : folders_(folders), instrumentation_(instrumentation) {}

  std::int32_t SHGetSpecialFolderLocation(WindowHandle window, std::int32_t csidl,
                                          ItemIdList& list) override;
  bool SHGetPathFromIDList(ItemIdList list, Text& buffer) override;
  std::int32_t CLSIDFromString(TextView text, Guid& identifier) override;
  std::int32_t SHGetKnownFolderPath(const Guid& folder, std::uint32_t flags, std::uintptr_t token,
                                    char16_t*& path) override;
  std::int32_t lstrlenW(const char16_t* text) override;
  void CoTaskMemFree(void* memory) override;

 private:
  ShellFolders& folders_;
  Instrumentation& instrumentation_;
};

}  // namespace zev::simulated
