#pragma once

#include <map>
#include <memory>

#include "platform/kernel.h"

namespace zev::posix {

/// The kernel's memory and code page on a POSIX system. Pages and blocks that nobody has given back
/// end with the object.
class PosixKernel final : public Kernel {
 public:
  explicit PosixKernel(std::uint32_t codePage) : codePage_(codePage) {}
  PosixKernel(const PosixKernel&) = delete;
  PosixKernel& operator=(const PosixKernel&) = delete;
  ~PosixKernel() override;

  /// Pages can be executed where procedures are entered as machine code, and only there.
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

  /// Blocks of pages that nobody has given back yet.
  std::size_t openPages() const { return pages_.size(); }

 private:
  const std::uint32_t codePage_;
  std::map<std::uint8_t*, std::size_t> pages_;
  std::map<GlobalHandle, std::unique_ptr<std::uint8_t[]>> blocks_;
};

}  // namespace zev::posix
