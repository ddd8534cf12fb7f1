#include "simulated/instrumented_system.h"

namespace zev::simulated {
namespace {

std::int64_t shownHandle(std::uintptr_t handle) { return static_cast<std::int64_t>(handle); }

/// A call whose failure is the zero of its result, and whose success without the deed is `done`.
template <typename Forward>
auto call(Instrumentation& instrumentation, std::string_view name, Arguments arguments,
          Forward forward, decltype(forward()) done = {}) {
  using Result = decltype(forward());
  return instrumentation.perform(
      {name}, arguments, forward, [](std::int32_t) { return Result{}; }, [&] { return done; });
}

/// A call whose failure is the injected number.
template <typename Forward>
auto callWithCode(Instrumentation& instrumentation, std::string_view name, Arguments arguments,
                  Forward forward) {
  using Result = decltype(forward());
  return instrumentation.perform(
      {name}, arguments, forward, [](std::int32_t code) { return static_cast<Result>(code); },
      [] { return Result{}; });
}

}  // namespace

// ---- the system

std::uint32_t InstrumentedSystem::GetTempPathA(std::uint32_t size, Text& buffer) {
  return call(instrumentation_, "GetTempPathA", {size},
              [&] { return system_.GetTempPathA(size, buffer); });
}

std::uint32_t InstrumentedSystem::GetWindowsDirectoryA(Text& buffer, std::uint32_t size) {
  return call(instrumentation_, "GetWindowsDirectoryA", {size},
              [&] { return system_.GetWindowsDirectoryA(buffer, size); });
}

std::uint32_t InstrumentedSystem::GetSystemDirectoryA(Text& buffer, std::uint32_t size) {
  return call(instrumentation_, "GetSystemDirectoryA", {size},
              [&] { return system_.GetSystemDirectoryA(buffer, size); });
}

std::uint16_t InstrumentedSystem::GetSystemDefaultUILanguage() {
  return call(instrumentation_, "GetSystemDefaultUILanguage", {},
              [&] { return system_.GetSystemDefaultUILanguage(); });
}

bool InstrumentedSystem::GetUserNameA(Text& buffer, std::uint32_t& size) {
  return call(
      instrumentation_, "GetUserNameA", {size}, [&] { return system_.GetUserNameA(buffer, size); },
      true);
}

bool InstrumentedSystem::LookupAccountNameA(TextView account, std::uint32_t sidSize, Text& domain,
                                            std::uint32_t& domainSize) {
  return call(
      instrumentation_, "LookupAccountNameA", {account, sidSize, domainSize},
      [&] { return system_.LookupAccountNameA(account, sidSize, domain, domainSize); }, true);
}

bool InstrumentedSystem::GetVersionExA(OSVERSIONINFO& record) {
  return call(
      instrumentation_, "GetVersionExA", {record.dwOSVersionInfoSize},
      [&] { return system_.GetVersionExA(record); }, true);
}

std::int32_t InstrumentedSystem::GetSystemMetrics(std::int32_t index) {
  return call(instrumentation_, "GetSystemMetrics", {index},
              [&] { return system_.GetSystemMetrics(index); });
}

std::uintptr_t InstrumentedSystem::GetCurrentProcess() {
  return call(instrumentation_, "GetCurrentProcess", {},
              [&] { return system_.GetCurrentProcess(); });
}

bool InstrumentedSystem::IsWow64Process(std::uintptr_t process, bool& emulated) {
  return call(
      instrumentation_, "IsWow64Process", {shownHandle(process)},
      [&] { return system_.IsWow64Process(process, emulated); }, true);
}

std::uint16_t InstrumentedSystem::GetNativeSystemInfo() {
  return call(instrumentation_, "GetNativeSystemInfo", {},
              [&] { return system_.GetNativeSystemInfo(); });
}

std::uint16_t InstrumentedSystem::GetSystemInfo() {
  return call(instrumentation_, "GetSystemInfo", {}, [&] { return system_.GetSystemInfo(); });
}

bool InstrumentedSystem::GetProductInfo(std::uint32_t major, std::uint32_t minor,
                                        std::uint32_t packMajor, std::uint32_t packMinor,
                                        std::uint32_t& code) {
  return call(
      instrumentation_, "GetProductInfo", {major, minor, packMajor, packMinor},
      [&] { return system_.GetProductInfo(major, minor, packMajor, packMinor, code); }, true);
}

// ---- drives

std::uint32_t InstrumentedDrives::GetDriveTypeA(TextView root) {
  return callWithCode(instrumentation_, "GetDriveTypeA", {root},
                      [&] { return drives_.GetDriveTypeA(root); });
}

bool InstrumentedDrives::GetDiskFreeSpaceA(TextView root, DiskSpace& space) {
  return call(
      instrumentation_, "GetDiskFreeSpaceA", {root},
      [&] { return drives_.GetDiskFreeSpaceA(root, space); }, true);
}

std::uint32_t InstrumentedDrives::GetLogicalDrives() {
  return call(instrumentation_, "GetLogicalDrives", {}, [&] { return drives_.GetLogicalDrives(); });
}

Text InstrumentedDrives::volumeLabel(TextView root) {
  return call(instrumentation_, "volumeLabel", {root}, [&] { return drives_.volumeLabel(root); });
}

// ---- windows

WindowHandle InstrumentedWindows::GetWindow(WindowHandle window, std::uint32_t command) {
  return call(instrumentation_, "GetWindow", {shownHandle(window), command},
              [&] { return windows_.GetWindow(window, command); });
}

std::int32_t InstrumentedWindows::GetWindowTextLengthA(WindowHandle window) {
  return call(instrumentation_, "GetWindowTextLengthA", {shownHandle(window)},
              [&] { return windows_.GetWindowTextLengthA(window); });
}

std::int32_t InstrumentedWindows::GetWindowTextA(WindowHandle window, Text& buffer,
                                                 std::int32_t size) {
  return call(instrumentation_, "GetWindowTextA", {shownHandle(window), size},
              [&] { return windows_.GetWindowTextA(window, buffer, size); });
}

bool InstrumentedWindows::SetForegroundWindow(WindowHandle window) {
  return call(
      instrumentation_, "SetForegroundWindow", {shownHandle(window)},
      [&] { return windows_.SetForegroundWindow(window); }, true);
}

bool InstrumentedWindows::BringWindowToTop(WindowHandle window) {
  return call(
      instrumentation_, "BringWindowToTop", {shownHandle(window)},
      [&] { return windows_.BringWindowToTop(window); }, true);
}

// ---- folders of the shell

std::int32_t InstrumentedShellFolders::SHGetSpecialFolderLocation(WindowHandle window,
                                                                  std::int32_t csidl,
                                                                  ItemIdList& list) {
  list = nullptr;
  return callWithCode(instrumentation_, "SHGetSpecialFolderLocation", {shownHandle(window), csidl},
                      [&] { return folders_.SHGetSpecialFolderLocation(window, csidl, list); });
}

bool InstrumentedShellFolders::SHGetPathFromIDList(ItemIdList list, Text& buffer) {
  return call(
      instrumentation_, "SHGetPathFromIDList", {},
      [&] { return folders_.SHGetPathFromIDList(list, buffer); }, true);
}

std::int32_t InstrumentedShellFolders::CLSIDFromString(TextView text, Guid& identifier) {
  return callWithCode(instrumentation_, "CLSIDFromString", {text},
                      [&] { return folders_.CLSIDFromString(text, identifier); });
}

std::int32_t InstrumentedShellFolders::SHGetKnownFolderPath(const Guid& folder, std::uint32_t flags,
                                                            std::uintptr_t token, char16_t*& path) {
  path = nullptr;
  return callWithCode(instrumentation_, "SHGetKnownFolderPath", {flags, shownHandle(token)},
                      [&] { return folders_.SHGetKnownFolderPath(folder, flags, token, path); });
}

std::int32_t InstrumentedShellFolders::lstrlenW(const char16_t* text) {
  return call(instrumentation_, "lstrlenW", {}, [&] { return folders_.lstrlenW(text); });
}

void InstrumentedShellFolders::CoTaskMemFree(void* memory) {
  instrumentation_.perform(
      {"CoTaskMemFree"}, {}, [&] { folders_.CoTaskMemFree(memory); }, [](std::int32_t) {}, [] {});
}

}  // namespace zev::simulated
