#pragma once

#include <map>
#include <memory>
#include <vector>

#include "platform/kernel.h"

namespace zev::simulated {

/// Memory, functions and code page of a process of the simulated machine. Memory comes from the
/// heap, belongs to this object and ends with it; the pages are those of data and cannot run.
class SimulatedKernel final : public Kernel {
 public:
  static constexpr std::size_t pageSize = 4096;

  std::uint8_t* VirtualAlloc(std::size_t size, std::uint32_t type,
                             std::uint32_t protection) override;
  bool VirtualLock(std::uint8_t* address, std::size_t size) override;
  bool VirtualFree(std::uint8_t* address, std::size_t size, std::uint32_t type) override;

  GlobalHandle GlobalAlloc(std::uint32_t flags, std::size_t size) override;
  void* GlobalLock(GlobalHandle block) override;
  bool GlobalUnlock(GlobalHandle block) override;
  GlobalHandle GlobalFree(GlobalHandle block) override;

  /// "user32" has SetWindowLongA and CallWindowProcA, at numbers that lead nowhere.
  std::uintptr_t ProcAddress(std::string_view library, std::string_view function) override;
  /// Puts a function of a library somewhere; 0 takes it out.
  void setProcAddress(std::string_view library, std::string_view function, std::uintptr_t address);

  std::string toAnsi(TextView text) override;
  Text fromAnsi(std::string_view bytes) override;
  /// 1252 unless told otherwise. An unknown page throws std::invalid_argument.
  void setCodePage(std::uint32_t codePage);

  /// Blocks that have not been freed.
  std::size_t blocks() const { return blocks_.size(); }
  /// Pages that have not been given back.
  std::size_t pages() const;

 private:
  struct Pages {
    std::vector<std::uint8_t> bytes;  ///< one page more than `size`, to begin at a page
    std::size_t count = 0;
  };

  std::map<std::uint8_t*, Pages> pages_;  ///< by address
  std::map<GlobalHandle, std::unique_ptr<std::uint64_t[]>> blocks_;
  std::map<std::string, std::uintptr_t, std::less<>> functions_ = {
      {"user32!SetWindowLongA", 0x77D4C29D},
      {"user32!CallWindowProcA", 0x77D4A31E},
  };
  std::uint32_t codePage_ = 1252;
};

}  // namespace zev::simulated
