#include "win32/kernel.h"

#include "win32/ansi.h"
#include "win32/windows_api.h"

namespace zev::win32 {
namespace {

HGLOBAL blockOf(GlobalHandle block) { return reinterpret_cast<HGLOBAL>(block); }

}  // namespace

// ---- pages

std::uint8_t* Win32Kernel::VirtualAlloc(std::size_t size, std::uint32_t type,
                                        std::uint32_t protection) {
  const bool plain = !entersMachineCode && protection == readWriteExecute;
  return static_cast<std::uint8_t*>(
      ::VirtualAlloc(nullptr, size, type, plain ? PAGE_READWRITE : protection));
}

bool Win32Kernel::VirtualLock(std::uint8_t* address, std::size_t size) {
  return ::VirtualLock(address, size) != FALSE;
}

bool Win32Kernel::VirtualFree(std::uint8_t* address, std::size_t size, std::uint32_t type) {
  return ::VirtualFree(address, size, type) != FALSE;
}

// ---- blocks

GlobalHandle Win32Kernel::GlobalAlloc(std::uint32_t flags, std::size_t size) {
  return reinterpret_cast<GlobalHandle>(::GlobalAlloc(flags, size));
}

void* Win32Kernel::GlobalLock(GlobalHandle block) { return ::GlobalLock(blockOf(block)); }

bool Win32Kernel::GlobalUnlock(GlobalHandle block) {
  return ::GlobalUnlock(blockOf(block)) != FALSE;
}

GlobalHandle Win32Kernel::GlobalFree(GlobalHandle block) {
  return reinterpret_cast<GlobalHandle>(::GlobalFree(blockOf(block)));
}

// ---- libraries

std::uintptr_t Win32Kernel::ProcAddress(std::string_view library, std::string_view function) {
  const HMODULE loaded = ::GetModuleHandleA(std::string(library).c_str());
  if (loaded == nullptr) return 0;
  return reinterpret_cast<std::uintptr_t>(::GetProcAddress(loaded, std::string(function).c_str()));
}

// ---- the code page

std::string Win32Kernel::toAnsi(TextView text) { return win32::toAnsi(text); }

Text Win32Kernel::fromAnsi(std::string_view bytes) { return win32::fromAnsi(bytes); }

}  // namespace zev::win32
