#include "win32/system_information.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "win32/ansi.h"
#include "win32/system_library.h"
#include "win32/windows_api.h"

namespace zev::win32 {
namespace {

/// A function of kernel32 that older systems do not have; null there.
template <typename Function>
Function* kernelFunction(const char* name) {
  return SystemLibrary("kernel32.dll").find<Function>(name);
}

std::vector<char> bytesFor(std::uint32_t size) {
  return std::vector<char>(std::max<std::size_t>(size, 1));
}

/// Hands a path on that `call` writes into a buffer of wide units, given with its size.
template <typename Call>
std::uint32_t givePath(Call call, Text& buffer, std::uint32_t size) {
  Text path(longestPath, u'\0');
  const DWORD length = call(reinterpret_cast<wchar_t*>(path.data()), longestPath);
  if (length == 0 || length >= longestPath) return 0;
  path.resize(length);
  const std::string answer = toAnsi(writablePath(path));
  const auto needed = static_cast<std::uint32_t>(answer.size() + 1);
  return needed > size ? needed : writeAnswer(buffer, answer);
}

void copyRecord(const OSVERSIONINFOEXA& system, OSVERSIONINFO& record) {
  record.dwMajorVersion = system.dwMajorVersion;
  record.dwMinorVersion = system.dwMinorVersion;
  record.dwBuildNumber = system.dwBuildNumber;
  record.dwPlatformId = system.dwPlatformId;
  record.szCSDVersion.assign(sizeof system.szCSDVersion, u'\0');
  writeAnswer(record.szCSDVersion, system.szCSDVersion);
  if (record.dwOSVersionInfoSize != OSVERSIONINFO::extendedForm) return;
  record.wSuiteMask = system.wSuiteMask;
  record.wProductType = system.wProductType;
}

static_assert(sizeof(OSVERSIONINFOA) == OSVERSIONINFO::shortForm);
static_assert(sizeof(OSVERSIONINFOEXA) == OSVERSIONINFO::extendedForm);

}  // namespace

// ---- folders

std::uint32_t Win32System::GetTempPathA(std::uint32_t size, Text& buffer) {
  return givePath([](wchar_t* path, DWORD room) { return ::GetTempPathW(room, path); }, buffer,
                  size);
}

std::uint32_t Win32System::GetWindowsDirectoryA(Text& buffer, std::uint32_t size) {
  return givePath(::GetWindowsDirectoryW, buffer, size);
}

std::uint32_t Win32System::GetSystemDirectoryA(Text& buffer, std::uint32_t size) {
  return givePath(::GetSystemDirectoryW, buffer, size);
}

// ---- the user

/// Systems that do not tell the language of their own texts have one language for all.
std::uint16_t Win32System::GetSystemDefaultUILanguage() {
  const auto call =
      kernelFunction<decltype(::GetSystemDefaultUILanguage)>("GetSystemDefaultUILanguage");
  return call != nullptr ? call() : ::GetSystemDefaultLangID();
}

bool Win32System::GetUserNameA(Text& buffer, std::uint32_t& size) {
  std::vector<char> answer = bytesFor(size);
  DWORD bytes = size;
  const bool found = ::GetUserNameA(answer.data(), &bytes) != FALSE;
  size = found ? writeAnswer(buffer, answer.data()) + 1 : bytes;
  return found;
}

bool Win32System::LookupAccountNameA(TextView account, std::uint32_t sidSize, Text& domain,
                                     std::uint32_t& domainSize) {
  std::vector<char> identifier = bytesFor(sidSize);
  std::vector<char> answer = bytesFor(domainSize);
  DWORD identifierBytes = sidSize;
  DWORD bytes = domainSize;
  SID_NAME_USE use{};
  const bool found = ::LookupAccountNameA(nullptr, ansiArgument(account).c_str(), identifier.data(),
                                          &identifierBytes, answer.data(), &bytes, &use) != FALSE;
  domainSize = found ? writeAnswer(domain, answer.data()) : bytes;
  return found;
}

// ---- the system

bool Win32System::GetVersionExA(OSVERSIONINFO& record) {
  OSVERSIONINFOEXA system{};
  system.dwOSVersionInfoSize = record.dwOSVersionInfoSize;
  if (!::GetVersionExA(reinterpret_cast<OSVERSIONINFOA*>(&system))) return false;
  copyRecord(system, record);
  return true;
}

std::int32_t Win32System::GetSystemMetrics(std::int32_t index) { return ::GetSystemMetrics(index); }

std::uintptr_t Win32System::GetCurrentProcess() {
  return reinterpret_cast<std::uintptr_t>(::GetCurrentProcess());
}

bool Win32System::IsWow64Process(std::uintptr_t process, bool& emulated) {
  const auto call = kernelFunction<decltype(::IsWow64Process)>("IsWow64Process");
  BOOL answer = FALSE;
  if (call == nullptr || !call(reinterpret_cast<HANDLE>(process), &answer)) return false;
  emulated = answer != FALSE;
  return true;
}

std::uint16_t Win32System::GetNativeSystemInfo() {
  const auto call = kernelFunction<decltype(::GetNativeSystemInfo)>("GetNativeSystemInfo");
  if (call == nullptr) return GetSystemInfo();
  SYSTEM_INFO information{};
  call(&information);
  return information.wProcessorArchitecture;
}

std::uint16_t Win32System::GetSystemInfo() {
  SYSTEM_INFO information{};
  ::GetSystemInfo(&information);
  return information.wProcessorArchitecture;
}

bool Win32System::GetProductInfo(std::uint32_t major, std::uint32_t minor, std::uint32_t packMajor,
                                 std::uint32_t packMinor, std::uint32_t& code) {
  const auto call =
      kernelFunction<BOOL WINAPI(DWORD, DWORD, DWORD, DWORD, PDWORD)>("GetProductInfo");
  DWORD answer = 0;
  if (call == nullptr || !call(major, minor, packMajor, packMinor, &answer)) return false;
  code = answer;
  return true;
}

// ---- drives

namespace {

/// A size that the interface's number cannot hold becomes the largest that it can.
std::int32_t number(DWORD value) {
  constexpr DWORD most = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::min(value, most));
}

}  // namespace

std::uint32_t Win32Drives::GetDriveTypeA(TextView root) {
  return ::GetDriveTypeA(ansiArgument(root).c_str());
}

bool Win32Drives::GetDiskFreeSpaceA(TextView root, DiskSpace& space) {
  DWORD sectors = 0;
  DWORD bytes = 0;
  DWORD free = 0;
  DWORD total = 0;
  if (!::GetDiskFreeSpaceA(ansiArgument(root).c_str(), &sectors, &bytes, &free, &total)) {
    return false;
  }
  space = {number(sectors), number(bytes), number(free), number(total)};
  return true;
}

std::uint32_t Win32Drives::GetLogicalDrives() { return ::GetLogicalDrives(); }

Text Win32Drives::volumeLabel(TextView root) {
  char label[MAX_PATH + 1] = {};
  const BOOL asked = ::GetVolumeInformationA(ansiArgument(root).c_str(), label, sizeof label,
                                             nullptr, nullptr, nullptr, nullptr, 0);
  return asked != FALSE ? fromAnsi(label) : Text();
}

}  // namespace zev::win32
