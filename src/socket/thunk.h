#pragma once

#include <cstdint>

#include "platform/kernel.h"
#include "platform/message_windows.h"
#include "socket/handle_table.h"
#include "socket/thunk_code.h"
#include "socket/trace.h"

namespace zev {

/// Messages of the window that notifications arrive with.
inline constexpr std::uint32_t WM_RESOLVE_DONE = 2048;  ///< wParam: handle of the look-up
inline constexpr std::uint32_t WM_SOCKET_EVENT = 2049;  ///< wParam: the socket

/// The block of machine code that stands in as the window's procedure, and the two tables that it
/// searches. Each notification enters the instance that its handle belongs to; one with an unknown
/// handle is dropped; every other message goes on to the procedure that the window had before.
///
/// Where windows do not enter 32-bit x86 code the block is made all the same, and this object does
/// what the code says. Cells of the block then hold the low halves of addresses that have more
/// than 32 bits.
class Thunk final : private MessageRoutine {
 public:
  /// Borrows all four.
  Thunk(Kernel& kernel, MessageWindows& windows, Instances& instances, const Trace& trace)
      : kernel_(kernel), windows_(windows), instances_(instances), trace_(trace) {}
  ~Thunk() override;
  Thunk(const Thunk&) = delete;
  Thunk& operator=(const Thunk&) = delete;

  /// Makes the block. In a design environment it gets a guard that asks, before each message,
  /// whether the program still runs. Error 7 without memory for it.
  void BuildThunk(bool inDesignEnvironment);
  /// Gives the block back, and the tables' memory.
  void ReleaseThunk();
  /// False: this is a built program.
  static bool InDesignEnvironment() { return false; }

  /// Puts the block in as the window's procedure. False if some window has it already, and if the
  /// system refuses.
  bool SubclassMessageWindow(WindowHandle window);
  /// Forgets the window and all entries of the tables. The window's procedure becomes 0, none: it
  /// is to be destroyed at once. False if there is no window.
  bool UnsubclassMessageWindow();

  void AddResolveEntry(std::int32_t lookUp, InstancePointer instance);
  void AddSocketEntry(std::int32_t socket, InstancePointer instance);
  void DeleteResolveEntry(std::int32_t lookUp) { resolve_.remove(lookUp); }
  void DeleteSocketEntry(std::int32_t socket) { sockets_.remove(socket); }
  void ReplaceSocketEntry(std::int32_t socket, InstancePointer instance) {
    sockets_.replace(socket, instance);
  }

  /// Null while there is none.
  const std::uint8_t* ThunkBlock() const { return block_; }
  /// 0 while there is none.
  WindowHandle SubclassedWindow() const { return window_; }
  std::uintptr_t PreviousProcedure() const { return previous_; }
  const HandleTable& resolveTable() const { return resolve_; }
  const HandleTable& socketTable() const { return sockets_; }

 private:
  // The routine that stands in for the code.
  std::intptr_t enter(const WindowMessage& message) override;
  std::intptr_t route(const WindowMessage& message);
  std::intptr_t routeTo(const HandleTable& table, const WindowMessage& message);
  std::intptr_t forward(const WindowMessage& message);
  bool guardInForce() const;

  bool drops(const WindowMessage& message) const;
  void guard();
  void add(HandleTable& table, std::int32_t handle, InstancePointer instance);
  void PatchResolveTable();
  void PatchSocketTable();
  void PatchValue(std::size_t offset, std::uint32_t value);
  void PatchRelative(std::size_t offset, std::uintptr_t target);

  Kernel& kernel_;
  MessageWindows& windows_;
  Instances& instances_;
  const Trace& trace_;

  std::uint8_t* block_ = nullptr;
  WindowHandle window_ = 0;
  std::uintptr_t previous_ = 0;
  HandleTable resolve_;
  HandleTable sockets_;

  // The block's fields in full width, for the routine.
  std::uintptr_t forwardTo_ = 0;
  std::uintptr_t ebMode_ = 0;
};

}  // namespace zev
