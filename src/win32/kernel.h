#pragma once

#include "platform/kernel.h"

namespace zev::win32 {

/// Whether procedures in machine code can be entered: in a process of 32 bits.
inline constexpr bool entersMachineCode = sizeof(void*) == 4;

/// Memory, loaded libraries and the code page, as Windows has them.
class Win32Kernel final : public Kernel {
 public:
  /// Pages can be executed where machine code is entered, and only there.
  std::uint8_t* VirtualAlloc(std::size_t size, std::uint32_t type,
                             std::uint32_t protection) override;
  bool VirtualLock(std::uint8_t* address, std::size_t size) override;
  bool VirtualFree(std::uint8_t* address, std::size_t size, std::uint32_t type) override;

  GlobalHandle GlobalAlloc(std::uint32_t flags, std::size_t size) override;
  void* GlobalLock(GlobalHandle block) override;
  bool GlobalUnlock(GlobalHandle block) override;
  GlobalHandle GlobalFree(GlobalHandle block) override;

  std::uintptr_t ProcAddress(std::string_view library, std::string_view function) override;

  std::string toAnsi(TextView text) override;
  Text fromAnsi(std::string_view bytes) override;
};

}  // namespace zev::win32
