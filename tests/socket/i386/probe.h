#pragma once

#include <cstdint>

namespace zev::socket_bench {

/// Registers of the processor that a call has to keep, or may change.
struct Registers {
  std::uint32_t ebx = 0, esi = 0, edi = 0, ebp = 0, ecx = 0, edx = 0;
  bool operator==(const Registers&) const = default;
};

/// One entry of a window procedure, register by register.
struct Probe {
  std::uint32_t procedure = 0;
  std::uint32_t arguments[4] = {};
  std::uint32_t stackShift = 0;  ///< a multiple of 4; moves the stack pointer down
  Registers before;

  // What the entry leaves.
  std::uint32_t result = 0;
  Registers after;
  std::uint32_t stackExpected = 0;  ///< the stack pointer if the four arguments are gone
  std::uint32_t stackFound = 0;
  std::uint32_t flags = 0;
};

/// What the functions below found when they were entered. All arguments stand as on the stack.
struct Found {
  std::uint32_t edi, esi, ebp, esp, ebx, edx, ecx, eax, flags;
  std::uint32_t returnAddress;
  std::uint32_t arguments[5];
};

extern "C" {
/// Fills the registers, enters the procedure and notes what it leaves.
[[gnu::visibility("hidden")]] void zevEnterProbe(Probe* probe);
/// Where a procedure that zevEnterProbe has entered returns to.
[[gnu::visibility("hidden")]] extern const char zevProbeReturn;
/// Functions that take five and three arguments off the stack, note what they find, spoil the
/// registers that a function may change, and give 0x1234.
[[gnu::visibility("hidden")]] void zevTakeFive();
[[gnu::visibility("hidden")]] void zevTakeThree();
[[gnu::visibility("hidden")]] extern Found zevFound;
}

inline constexpr std::uint32_t probeAnswer = 0x1234;

}  // namespace zev::socket_bench
