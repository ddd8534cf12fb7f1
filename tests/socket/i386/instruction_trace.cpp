#include "socket/instruction_trace.h"

#include <signal.h>
#include <ucontext.h>

#include <array>
#include <stdexcept>

namespace zev::socket_bench {
namespace {

/// What the handler of the trap after each instruction works on: it must not allocate.
struct Watch {
  std::uintptr_t begin = 0;
  std::uintptr_t end = 0;
  std::array<std::uint8_t, 65536> offsets;
  std::size_t count = 0;
};
Watch watch;

/// The context names the instruction that comes next.
void onTrap(int, siginfo_t*, void* context) {
  const auto* const state = static_cast<const ucontext_t*>(context);
  const auto next = static_cast<std::uintptr_t>(state->uc_mcontext.gregs[REG_EIP]);
  const bool within = next >= watch.begin && next < watch.end;
  if (within && watch.count < watch.offsets.size()) {
    watch.offsets[watch.count++] = static_cast<std::uint8_t>(next - watch.begin);
  }
}

/// The flag of the processor that makes it trap after each instruction.
void stepOn() { asm volatile("pushfl; orl $0x100, (%%esp); popfl" ::: "memory", "cc"); }
void stepOff() { asm volatile("pushfl; andl $~0x100, (%%esp); popfl" ::: "memory", "cc"); }

}  // namespace

bool canFollowInstructions() { return true; }

std::vector<std::size_t> executedOffsets(const std::uint8_t* block, std::size_t size,
                                         const std::function<void()>& action) {
  if (size > 256) throw std::invalid_argument("the block is too long");
  watch.begin = reinterpret_cast<std::uintptr_t>(block);
  watch.end = watch.begin + size;
  watch.count = 0;
  struct sigaction trap = {};
  struct sigaction before = {};
  trap.sa_sigaction = onTrap;
  trap.sa_flags = SA_SIGINFO;
  sigaction(SIGTRAP, &trap, &before);
  stepOn();
  action();
  stepOff();
  sigaction(SIGTRAP, &before, nullptr);
  return {watch.offsets.begin(), watch.offsets.begin() + static_cast<std::ptrdiff_t>(watch.count)};
}

}  // namespace zev::socket_bench
