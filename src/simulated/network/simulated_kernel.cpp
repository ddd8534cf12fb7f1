#include "simulated/network/simulated_kernel.h"

#include <stdexcept>
#include <utility>

#include "code_page/code_page.h"

namespace zev::simulated {
namespace {

/// The largest memory that is given at a time.
constexpr std::size_t mostBytes = 0x40000000;

std::string keyOf(std::string_view library, std::string_view function) {
  return std::string(library) + "!" + std::string(function);
}

}  // namespace

// ---- pages

std::uint8_t* SimulatedKernel::VirtualAlloc(std::size_t size, std::uint32_t, std::uint32_t) {
  if (size == 0 || size > mostBytes) return nullptr;
  Pages pages;
  pages.count = (size + pageSize - 1) / pageSize;
  pages.bytes.resize((pages.count + 1) * pageSize);
  const auto start = reinterpret_cast<std::uintptr_t>(pages.bytes.data());
  std::uint8_t* const address = pages.bytes.data() + (pageSize - start % pageSize);
  pages_[address] = std::move(pages);
  return address;
}

bool SimulatedKernel::VirtualLock(std::uint8_t* address, std::size_t size) {
  const auto found = pages_.find(address);
  return found != pages_.end() && size > 0 && size <= found->second.count * pageSize;
}

bool SimulatedKernel::VirtualFree(std::uint8_t* address, std::size_t size, std::uint32_t type) {
  if (type != releasePages || size != 0) return false;
  return pages_.erase(address) == 1;
}

std::size_t SimulatedKernel::pages() const {
  std::size_t count = 0;
  for (const auto& [address, pages] : pages_) count += pages.count;
  return count;
}

// ---- blocks

GlobalHandle SimulatedKernel::GlobalAlloc(std::uint32_t, std::size_t size) {
  if (size > mostBytes) return 0;
  auto block = std::make_unique<std::uint64_t[]>(size / sizeof(std::uint64_t) + 1);
  const auto handle = reinterpret_cast<GlobalHandle>(block.get());
  blocks_[handle] = std::move(block);
  return handle;
}

void* SimulatedKernel::GlobalLock(GlobalHandle block) {
  const auto found = blocks_.find(block);
  return found == blocks_.end() ? nullptr : found->second.get();
}

bool SimulatedKernel::GlobalUnlock(GlobalHandle block) { return blocks_.count(block) == 1; }

GlobalHandle SimulatedKernel::GlobalFree(GlobalHandle block) {
  return block == 0 || blocks_.erase(block) == 1 ? 0 : block;
}

// ---- functions

std::uintptr_t SimulatedKernel::ProcAddress(std::string_view library, std::string_view function) {
  const auto found = functions_.find(keyOf(library, function));
  return found == functions_.end() ? 0 : found->second;
}

void SimulatedKernel::setProcAddress(std::string_view library, std::string_view function,
                                     std::uintptr_t address) {
  functions_[keyOf(library, function)] = address;
}

// ---- the code page

std::string SimulatedKernel::toAnsi(TextView text) { return toCodePage(text, codePage_); }

Text SimulatedKernel::fromAnsi(std::string_view bytes) { return fromCodePage(bytes, codePage_); }

void SimulatedKernel::setCodePage(std::uint32_t codePage) {
  if (!isKnownCodePage(codePage)) throw std::invalid_argument("unknown code page");
  codePage_ = codePage;
}

}  // namespace zev::simulated
