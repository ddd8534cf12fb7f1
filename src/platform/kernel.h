#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "runtime/text.h"

namespace zev {

/// A block of movable memory; 0 is none.
using GlobalHandle = std::uintptr_t;

inline constexpr std::uint32_t commitPages = 4096;     ///< MEM_COMMIT
inline constexpr std::uint32_t releasePages = 32768;   ///< MEM_RELEASE
inline constexpr std::uint32_t readWriteExecute = 64;  ///< PAGE_EXECUTE_READWRITE

/// What the process has of the system's kernel: memory, loaded libraries and the code page.
/// Addresses are those of the process itself and can be read and written as they stand.
class Kernel {
 public:
  virtual ~Kernel() = default;

  /// Pages of at least `size` bytes, all 0, at an address of the system's choice; null on failure.
  /// `readWriteExecute` gives pages that can be executed only where machine code is entered;
  /// elsewhere they are plain memory.
  virtual std::uint8_t* VirtualAlloc(std::size_t size, std::uint32_t type,
                                     std::uint32_t protection) = 0;
  /// Keeps pages in memory. False if the system refuses, which does no harm.
  virtual bool VirtualLock(std::uint8_t* address, std::size_t size) = 0;
  /// Gives back what VirtualAlloc gave. With `releasePages` the size has to be 0.
  virtual bool VirtualFree(std::uint8_t* address, std::size_t size, std::uint32_t type) = 0;

  /// A block of `size` bytes; 0 on failure. A block that nobody frees lives as long as the process.
  virtual GlobalHandle GlobalAlloc(std::uint32_t flags, std::size_t size) = 0;
  /// The block's address; null on failure. For a block of flags 0 it stays valid until
  /// the block is freed, also after GlobalUnlock.
  virtual void* GlobalLock(GlobalHandle block) = 0;
  /// Ends a lock. False when no lock is left, and for what is no block.
  virtual bool GlobalUnlock(GlobalHandle block) = 0;
  /// 0 on success, and for the block 0, which does nothing; else the block.
  virtual GlobalHandle GlobalFree(GlobalHandle block) = 0;

  /// Entry of a function in a library that the process has loaded; 0 if there is no such library
  /// or function (GetProcAddress of GetModuleHandleA).
  virtual std::uintptr_t ProcAddress(std::string_view library, std::string_view function) = 0;

  /// Texts through the system's 8-bit code page. What the page cannot represent becomes its default
  /// character.
  virtual std::string toAnsi(TextView text) = 0;
  virtual Text fromAnsi(std::string_view bytes) = 0;
};

}  // namespace zev
