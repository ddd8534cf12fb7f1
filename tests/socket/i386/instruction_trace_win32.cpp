#include <array>
#include <stdexcept>

#include "socket/instruction_trace.h"
#include "win32/windows_api.h"

namespace zev::socket_bench {
namespace {

/// What the handler of the trap after each instruction works on: it must not allocate.
struct Watch {
  std::uintptr_t begin = 0;
  std::uintptr_t end = 0;
  std::array<std::uint8_t, 65536> offsets;
  std::size_t count = 0;
  bool on = false;
};
Watch watch;

constexpr DWORD trapFlag = 0x100;  // the processor traps after each instruction

/// The context names the instruction that comes next.
LONG CALLBACK onTrap(EXCEPTION_POINTERS* trap) {
  if (trap->ExceptionRecord->ExceptionCode != EXCEPTION_SINGLE_STEP)
    return EXCEPTION_CONTINUE_SEARCH;
  const std::uintptr_t next = trap->ContextRecord->Eip;
  const bool within = next >= watch.begin && next < watch.end;
  if (within && watch.count < watch.offsets.size()) {
    watch.offsets[watch.count++] = static_cast<std::uint8_t>(next - watch.begin);
  }
  if (watch.on) trap->ContextRecord->EFlags |= trapFlag;
  return EXCEPTION_CONTINUE_EXECUTION;
}

void stepOn() {
  watch.on = true;
  asm volatile("pushfl; orl $0x100, (%%esp); popfl" ::: "memory", "cc");
}

}  // namespace

bool canFollowInstructions() { return true; }

std::vector<std::size_t> executedOffsets(const std::uint8_t* block, std::size_t size,
                                         const std::function<void()>& action) {
  if (size > 256) throw std::invalid_argument("the block is too long");
  watch.begin = reinterpret_cast<std::uintptr_t>(block);
  watch.end = watch.begin + size;
  watch.count = 0;
  void* const handler = AddVectoredExceptionHandler(1, onTrap);
  stepOn();
  action();
  watch.on = false;  // the next trap is the last one
  RemoveVectoredExceptionHandler(handler);
  return {watch.offsets.begin(), watch.offsets.begin() + static_cast<std::ptrdiff_t>(watch.count)};
}

}  // namespace zev::socket_bench
