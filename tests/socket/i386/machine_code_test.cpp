// The routing code as the processor runs it: registers, stack, each of its instructions and each of
// its bytes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <set>

#include "posix/code_queue.h"
#include "posix/kernel.h"
#include "runtime/error.h"
#include "socket/i386/probe.h"
#include "socket/instruction_trace.h"
#include "socket/thunk.h"
#include "socket/watched_services.h"

namespace zev::socket_bench {
namespace {

using testing::ElementsAreArray;

using Offsets = std::vector<std::size_t>;

constexpr Registers marks{0xB0B0B0B1, 0x51515152, 0xD1D1D1D3, 0xEB0EB0E4, 0xC0C0C0C5, 0xD0D0D0D6};
constexpr std::uint32_t direction = 0x400;  ///< the flag that makes string instructions go down
constexpr std::uintptr_t previous = 0x00401000;
constexpr std::uint32_t windowMark = 0x10062;
constexpr std::uint32_t lParamMark = 0x00010020;

/// Where the instructions of the code begin, but for the question that the guard in force asks.
constexpr std::size_t instructions[] = {
    0,   1,   2,   3,   4,   6,   7,   8,   9,   10,  12,  28,  31,  36,  38,  43,  45,
    50,  51,  52,  53,  54,  55,  58,  63,  65,  70,  72,  75,  80,  82,  85,  88,  91,
    94,  99,  104, 105, 110, 113, 118, 120, 122, 124, 126, 127, 134, 136, 141, 144, 149,
    151, 153, 155, 157, 158, 165, 168, 170, 173, 175, 176, 177, 178, 179, 180};

std::uint32_t addressOf(void (*function)()) { return reinterpret_cast<std::uint32_t>(function); }

std::int32_t mode = 1;
std::uintptr_t askedFrom = 0;

std::int32_t ebMode() {
  askedFrom = reinterpret_cast<std::uintptr_t>(__builtin_return_address(0));
  return mode;
}

/// Something with a table of methods, as the code takes an instance for.
struct Object {
  const std::uint32_t* methods;
};

class Code {
 public:
  explicit Code(bool guarded) {
    methods_.fill(0);
    methods_[7] = addressOf(&zevTakeFive);
    kernel_.setProcAddress("user32", "CallWindowProcA", addressOf(&zevTakeFive));
    kernel_.setProcAddress("user32", "SetWindowLongA", addressOf(&zevTakeThree));
    kernel_.setProcAddress("vba6", "EbMode", reinterpret_cast<std::uintptr_t>(&ebMode));
    thunk_.BuildThunk(guarded);
    queue_.SetWindowLongA(window_, windowProcedureIndex, previous);
    thunk_.SubclassMessageWindow(window_);
    for (std::int32_t i = 0; i < handles; ++i) {
      thunk_.AddResolveEntry(resolveHandle(i), pointerTo(i));
      thunk_.AddSocketEntry(socketHandle(i), pointerTo(handles + i));
    }
  }

  static constexpr std::int32_t handles = 5;
  static constexpr std::int32_t resolveHandle(std::int32_t i) { return 700 + i; }
  static constexpr std::int32_t socketHandle(std::int32_t i) { return 900 + i; }

  InstancePointer pointerTo(std::int32_t i) const {
    return reinterpret_cast<InstancePointer>(&objects_[static_cast<std::size_t>(i)]);
  }
  std::uint32_t address() const { return reinterpret_cast<std::uint32_t>(thunk_.ThunkBlock()); }
  std::uint8_t* bytes() const { return const_cast<std::uint8_t*>(thunk_.ThunkBlock()); }

  /// Enters the block. Allocates nothing.
  Probe enter(std::uint32_t message, std::int32_t wParam, std::uint32_t shift = 0) const {
    Probe probe;
    probe.procedure = address();
    const std::uint32_t arguments[] = {windowMark, message, static_cast<std::uint32_t>(wParam),
                                       lParamMark};
    std::copy(std::begin(arguments), std::end(arguments), probe.arguments);
    probe.stackShift = shift;
    probe.before = marks;
    std::memset(&zevFound, 0, sizeof zevFound);
    askedFrom = 0;
    zevEnterProbe(&probe);
    return probe;
  }

 private:
  std::array<std::uint32_t, 8> methods_;
  std::array<Object, 2 * handles> objects_ = [this] {
    std::array<Object, 2 * handles> all;
    all.fill({methods_.data()});
    return all;
  }();
  posix::CodeQueue queue_;
  posix::PosixKernel posixKernel_{1252};
  Calls calls_;
  WatchedKernel kernel_{posixKernel_, calls_};
  Instances instances_{[](std::exception_ptr) {}};
  Trace trace_;
  const WindowHandle window_ = queue_.CreateWindowExA(u"STATIC", u"TEST");
  Thunk thunk_{kernel_, queue_, instances_, trace_};
};

// ---- what each way through the code has to come to; none of this allocates

bool standsAsItWas(const Probe& probe) {
  return probe.after.ebx == marks.ebx && probe.after.esi == marks.esi &&
         probe.after.edi == marks.edi && probe.after.ebp == marks.ebp &&
         probe.stackFound == probe.stackExpected && (probe.flags & direction) == 0;
}

bool keptEverything(const Probe& probe) { return standsAsItWas(probe) && probe.after == marks; }

bool foundArguments(std::uint32_t first, std::uint32_t message, std::int32_t wParam) {
  const std::uint32_t expected[] = {first, windowMark, message, static_cast<std::uint32_t>(wParam),
                                    lParamMark};
  return std::equal(std::begin(expected), std::end(expected), zevFound.arguments);
}

bool nobodyWasEntered() { return zevFound.returnAddress == 0; }

/// The instance is entered by a jump: all registers stand as the caller had them, and its return
/// goes past the code.
bool hits(const Code& code, std::uint32_t message, std::int32_t handle, InstancePointer instance,
          std::uint32_t shift = 0) {
  const Probe probe = code.enter(message, handle, shift);
  const Registers found{zevFound.ebx, zevFound.esi, zevFound.edi,
                        zevFound.ebp, zevFound.ecx, zevFound.edx};
  return standsAsItWas(probe) && probe.result == probeAnswer && found == marks &&
         zevFound.returnAddress == reinterpret_cast<std::uint32_t>(&zevProbeReturn) &&
         foundArguments(static_cast<std::uint32_t>(instance), message, handle);
}

bool misses(const Code& code, std::uint32_t message, std::int32_t handle, std::uint32_t shift = 0) {
  const Probe probe = code.enter(message, handle, shift);
  return keptEverything(probe) && probe.result == static_cast<std::uint32_t>(handle) &&
         nobodyWasEntered();
}

bool forwards(const Code& code, std::uint32_t message, std::int32_t wParam,
              std::uint32_t shift = 0) {
  constexpr std::uint32_t behindTheCall = 104;
  const Probe probe = code.enter(message, wParam, shift);
  return keptEverything(probe) && probe.result == probeAnswer &&
         zevFound.returnAddress == code.address() + behindTheCall &&
         foundArguments(previous, message, wParam);
}

bool restores(const Code& code, std::uint32_t message, std::int32_t wParam,
              std::uint32_t shift = 0) {
  constexpr std::uint32_t behindTheCall = 80;
  const Probe probe = code.enter(message, wParam, shift);
  return keptEverything(probe) && probe.result == probeAnswer &&
         zevFound.returnAddress == code.address() + behindTheCall &&
         zevFound.arguments[0] == windowMark &&
         zevFound.arguments[1] == static_cast<std::uint32_t>(windowProcedureIndex) &&
         zevFound.arguments[2] == previous;
}

bool wasAsked(const Code& code) { return askedFrom == code.address() + 19; }

bool routes(const Code& code, std::uint32_t shift) {
  for (std::int32_t i = 0; i < Code::handles; ++i) {
    if (!hits(code, WM_RESOLVE_DONE, Code::resolveHandle(i), code.pointerTo(i), shift) ||
        !hits(code, WM_SOCKET_EVENT, Code::socketHandle(i), code.pointerTo(Code::handles + i),
              shift)) {
      return false;
    }
  }
  for (const std::int32_t unknown : {0, 1, 699, 705, 899, 905, 0x7FFFFFFF}) {
    if (!misses(code, WM_RESOLVE_DONE, unknown, shift) ||
        !misses(code, WM_SOCKET_EVENT, unknown, shift)) {
      return false;
    }
  }
  return misses(code, WM_RESOLVE_DONE, Code::socketHandle(0), shift) &&
         misses(code, WM_SOCKET_EVENT, Code::resolveHandle(0), shift);
}

bool forwardsTheRest(const Code& code, std::uint32_t shift) {
  for (const std::uint32_t message :
       {0u, 1u, 2047u, 2050u, 2304u, 0x10800u, 0x10801u, 0x80000800u, 0x1000801u, 0xFFFFFFFFu}) {
    if (!forwards(code, message, Code::socketHandle(0), shift) ||
        !forwards(code, message, -1, shift)) {
      return false;
    }
  }
  return true;
}

bool guards(const Code& code, std::uint32_t shift) {
  for (const std::int32_t running : {1, 3, -1, 256, 0x7FFFFFFF}) {
    mode = running;
    if (!routes(code, shift) || !wasAsked(code) || !forwardsTheRest(code, shift) ||
        !wasAsked(code)) {
      return false;
    }
  }
  for (const std::uint32_t message : {WM_RESOLVE_DONE, WM_SOCKET_EVENT, 1u}) {
    mode = 2;
    if (!forwards(code, message, Code::socketHandle(0), shift) || !wasAsked(code)) return false;
    mode = 0;
    if (!restores(code, message, Code::socketHandle(0), shift) || !wasAsked(code)) return false;
  }
  return true;
}

bool behaves(const Code& plain, const Code& guarded, std::uint32_t shift = 0) {
  mode = 2;  // which nobody is to ask for
  return routes(plain, shift) && forwardsTheRest(plain, shift) && askedFrom == 0 &&
         guards(guarded, shift);
}

// ---- tests

TEST(MachineCode, KeepsRegistersAndStackOnEveryWay) {
  const Code plain(false);
  const Code guarded(true);
  for (const std::uint32_t shift : {0u, 4u, 8u, 12u}) {
    mode = 2;
    EXPECT_TRUE(routes(plain, shift)) << shift;
    EXPECT_TRUE(forwardsTheRest(plain, shift)) << shift;
    EXPECT_EQ(askedFrom, 0u);
    EXPECT_TRUE(guards(guarded, shift)) << shift;
  }
}

/// The instructions of an action in their order, the turns of a repeated one as one.
Offsets wayOf(const Code& code, const std::function<void()>& action) {
  Offsets way = executedOffsets(code.bytes(), thunkSize, action);
  way.erase(std::unique(way.begin(), way.end()), way.end());
  return way;
}

TEST(MachineCode, GoesItsWayThroughTheBlock) {
  const Code code(false);
  const Offsets hit = {0,   1,   2,   3,   4,   6,   7,   8,   9,   10,  12,  28,
                       31,  36,  105, 110, 113, 118, 120, 122, 124, 126, 127, 134,
                       165, 168, 170, 173, 175, 176, 177, 178, 179, 180};
  EXPECT_THAT(wayOf(code, [&] { code.enter(WM_RESOLVE_DONE, Code::resolveHandle(4)); }),
              ElementsAreArray(hit));
  const Offsets miss = {0,  1,  2,   3,   4,   6,   7,   8,   9,  10, 12, 28, 31, 36,
                        38, 43, 136, 141, 144, 149, 151, 153, 50, 51, 52, 53, 54, 55};
  EXPECT_THAT(wayOf(code, [&] { code.enter(WM_SOCKET_EVENT, 1); }), ElementsAreArray(miss));
  const Offsets forward = {0,  1,  2,  3,  4,  6,  7,  8,  9,   10, 12, 28, 31, 36, 38,
                           43, 45, 82, 85, 88, 91, 94, 99, 104, 50, 51, 52, 53, 54, 55};
  EXPECT_THAT(wayOf(code, [&] { code.enter(1, 1); }), ElementsAreArray(forward));
}

TEST(MachineCode, RunsEveryInstruction) {
  const Code plain(false);
  const Code guarded(true);
  std::set<std::size_t> run;
  for (const Code* code : {&plain, &guarded}) {
    const Offsets way = executedOffsets(code->bytes(), thunkSize, [&] {
      for (const std::int32_t each : {1, 2, 0}) {
        mode = each;
        code->enter(WM_RESOLVE_DONE, Code::resolveHandle(0));
        code->enter(WM_SOCKET_EVENT, Code::socketHandle(0));
        code->enter(1, 0);
      }
    });
    run.insert(way.begin(), way.end());
  }
  std::set<std::size_t> all(std::begin(instructions), std::end(instructions));
  all.insert({13, 14, 19, 22, 24, 26});
  EXPECT_EQ(run, all);
}

/// A living instance finds a stack that suits its compiler, whatever the caller's was.
TEST(MachineCode, EntersInstancesWithAnAlignedStack) {
  struct Aligned final : NotificationTarget {
    std::uintptr_t remainder = 99;
    std::int32_t WndProc(std::int32_t, std::int32_t, std::int32_t, std::int32_t) override {
      alignas(16) volatile char here[16] = {};
      volatile std::uintptr_t place = reinterpret_cast<std::uintptr_t>(&here[0]);
      remainder = place % 16;
      return 77;
    }
  };
  posix::CodeQueue queue;
  posix::PosixKernel kernel(1252);
  Instances instances([](std::exception_ptr) {});
  const Trace trace;
  Thunk thunk(kernel, queue, instances, trace);
  thunk.BuildThunk(false);
  thunk.SubclassMessageWindow(queue.CreateWindowExA(u"STATIC", u"TEST"));
  const auto target = std::make_shared<Aligned>();
  thunk.AddSocketEntry(97, instances.add(target));
  for (const std::uint32_t shift : {0u, 4u, 8u, 12u}) {
    Probe probe;
    probe.procedure = reinterpret_cast<std::uint32_t>(thunk.ThunkBlock());
    const std::uint32_t arguments[] = {windowMark, WM_SOCKET_EVENT, 97, 1};
    std::copy(std::begin(arguments), std::end(arguments), probe.arguments);
    probe.stackShift = shift;
    probe.before = marks;
    zevEnterProbe(&probe);
    EXPECT_EQ(probe.result, 77u);
    EXPECT_TRUE(standsAsItWas(probe)) << shift;
    EXPECT_EQ(target->remainder, 0u) << shift;
  }
}

// ---- a policy

/// Under a policy that forbids memory which can be written and executed: 7 if that is what a new
/// block is refused with, 100 if the system knows no such policy.
int refusalUnderPolicy() {
  constexpr int setPolicy = 65;  // PR_SET_MDWE
  constexpr unsigned long refuseToBecomeExecutable = 1;
  const pid_t child = fork();
  if (child == 0) {
    if (prctl(setPolicy, refuseToBecomeExecutable, 0ul, 0ul, 0ul) != 0) _exit(100);
    posix::CodeQueue queue;
    posix::PosixKernel kernel(1252);
    Instances instances([](std::exception_ptr) {});
    const Trace trace;
    Thunk thunk(kernel, queue, instances, trace);
    try {
      thunk.BuildThunk(false);
    } catch (const RuntimeError& error) {
      _exit(error.number());
    }
    _exit(0);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) throw std::runtime_error("no process");
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(MachineCode, APolicyThatForbidsItsMemoryIsErrorSeven) {
  const int refusal = refusalUnderPolicy();
  if (refusal == 100) GTEST_SKIP() << "this system knows no such policy";
  EXPECT_EQ(refusal, 7);
}

// ---- each byte

/// Whether a process of its own, which can do nothing but compute, finds the code to behave.
bool behavesApart(const Code& plain, const Code& guarded) {
  const pid_t child = fork();
  if (child == 0) {
    alarm(2);
    if (prctl(PR_SET_SECCOMP, SECCOMP_MODE_STRICT) != 0) syscall(SYS_exit, 3);
    syscall(SYS_exit, behaves(plain, guarded) ? 0 : 1);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) throw std::runtime_error("no process");
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST(MachineCode, EachByteCounts) {
  const Code plain(false);
  const Code guarded(true);
  ASSERT_TRUE(behavesApart(plain, guarded));
  Offsets unnoticed;
  for (std::size_t offset = 0; offset < thunkSize; ++offset) {
    for (const Code* code : {&plain, &guarded}) code->bytes()[offset] ^= 0xFF;
    if (behavesApart(plain, guarded)) unnoticed.push_back(offset);
    for (const Code* code : {&plain, &guarded}) code->bytes()[offset] ^= 0xFF;
  }
  EXPECT_THAT(unnoticed, testing::IsEmpty());
  EXPECT_TRUE(behavesApart(plain, guarded));
}

}  // namespace
}  // namespace zev::socket_bench
