#include "posix/kernel.h"

#include <sys/mman.h>

#include <new>

#include "code_page/code_page.h"
#include "posix/code_queue.h"

namespace zev::posix {
namespace {

/// Larger than any block that the system of these calls, a 32-bit one, could give.
constexpr std::size_t tooLargeABlock = 0x80000000;

}  // namespace

PosixKernel::~PosixKernel() {
  for (const auto& [address, size] : pages_) ::munmap(address, size);
}

// ---- pages

std::uint8_t* PosixKernel::VirtualAlloc(std::size_t size, std::uint32_t type,
                                        std::uint32_t protection) {
  if (size == 0 || (type & commitPages) == 0) return nullptr;
  const bool executable = entersCode && protection == readWriteExecute;
  const int access = PROT_READ | PROT_WRITE | (executable ? PROT_EXEC : 0);
  void* const pages = ::mmap(nullptr, size, access, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (pages == MAP_FAILED) return nullptr;
  auto* const address = static_cast<std::uint8_t*>(pages);
  pages_[address] = size;
  return address;
}

bool PosixKernel::VirtualLock(std::uint8_t* address, std::size_t size) {
  return ::mlock(address, size) == 0;
}

bool PosixKernel::VirtualFree(std::uint8_t* address, std::size_t size, std::uint32_t type) {
  const auto found = pages_.find(address);
  if (found == pages_.end() || type != releasePages || size != 0) return false;
  ::munmap(address, found->second);
  pages_.erase(found);
  return true;
}

// ---- blocks

GlobalHandle PosixKernel::GlobalAlloc(std::uint32_t, std::size_t size) {
  if (size >= tooLargeABlock) return 0;
  std::unique_ptr<std::uint8_t[]> block(new (std::nothrow) std::uint8_t[size]());
  if (block == nullptr) return 0;
  const auto handle = reinterpret_cast<GlobalHandle>(block.get());
  blocks_[handle] = std::move(block);
  return handle;
}

void* PosixKernel::GlobalLock(GlobalHandle block) {
  const auto found = blocks_.find(block);
  return found == blocks_.end() ? nullptr : found->second.get();
}

bool PosixKernel::GlobalUnlock(GlobalHandle block) { return blocks_.count(block) != 0; }

GlobalHandle PosixKernel::GlobalFree(GlobalHandle block) {
  return block == 0 || blocks_.erase(block) != 0 ? 0 : block;
}

// ---- libraries and texts

std::uintptr_t PosixKernel::ProcAddress(std::string_view library, std::string_view function) {
  return codeOf(library, function);
}

std::string PosixKernel::toAnsi(TextView text) { return toCodePage(text, codePage_); }

Text PosixKernel::fromAnsi(std::string_view bytes) { return fromCodePage(bytes, codePage_); }

}  // namespace zev::posix
