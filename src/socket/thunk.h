#pragma once

#include <cstdint>

#include "platform/kernel.h"
#include "platform/message_windows.h"
#include "socket/handle_table.h"
#include "socket/routing_code.h"
#include "socket/trace.h"

namespace zev {

/// Messages of the window that notifications arrive with.
inline constexpr std::uint32_t WM_RESOLVE_DONE = 2048;  ///< wParam: handle of the look-up
inline constexpr std::uint32_t WM_SOCKET_EVENT = 2049;  ///< wParam: the socket

/// The block of machine code that serves as the window's procedure, and the two tables that it
/// searches. Each notification enters the instance that its handle belongs to; one with an unknown
/// handle is dropped; every other message goes on to the procedure that the window had before.
/// `routing_code.h` shows the block.
///
/// Where windows cannot enter 32-bit x86 code (MessageWindows::entersMachineCode) the block is
/// built all the same, and this object does what the code would do. The block's fields then hold
/// only the low 32 bits of longer addresses; nothing reads them.
///
/// The life of a notification:
///
///   1. AddSocketEntry or AddResolveEntry notes which instance a handle belongs to. If that takes a
///      new slot, the table's count and addresses are written into the block again.
///   2. The system posts WM_SOCKET_EVENT or WM_RESOLVE_DONE to the window.
///   3. Before the message is dispatched, drops() takes out what the code's search would get wrong.
///   4. The window's procedure runs: the block itself, or enter() in its place. It finds the handle
///      in a table and enters the instance of that slot.
///   5. Instances hands the message to the object's WndProc and keeps the object alive until that
///      returns. An instance that has ended meanwhile takes the message and does nothing.
///
/// The event procedures that run in step 5 may add and remove entries and even unsubclass: by then
/// the code has read the tables for the last time and left only the arguments on the stack.
///
/// Who owns what: this object owns the block and both tables. The window belongs to the module,
/// which has it subclassed right after making it and unsubclassed right before destroying it. The
/// entries that table cells point to belong to `Instances`, the objects behind them to whoever
/// created them.
class Thunk final : private MessageRoutine {
 public:
  /// Borrows all four; they outlive it.
  Thunk(Kernel& kernel, MessageWindows& windows, Instances& instances, const Trace& trace)
      : kernel_(kernel), windows_(windows), instances_(instances), trace_(trace) {}
  ~Thunk() override;
  Thunk(const Thunk&) = delete;
  Thunk& operator=(const Thunk&) = delete;

  /// Makes the block, once before it is used as a procedure. In a design environment it gets a
  /// guard that asks, before each message, whether the program still runs. Error 7 without memory
  /// for it.
  void BuildThunk(bool inDesignEnvironment);
  /// Unsubclasses, then frees the block and the tables' memory.
  void ReleaseThunk();
  /// Always false: this is a built program, so the program itself never has the guard.
  static bool InDesignEnvironment() { return false; }

  /// Makes the block the window's procedure. False if some window has it already, and if the system
  /// refuses; after a refusal the window is noted all the same, so UnsubclassMessageWindow is still
  /// due.
  bool SubclassMessageWindow(WindowHandle window);
  /// Forgets the window and all entries of the tables. The window does not get its old procedure
  /// back but the procedure 0, none, so the caller has to destroy it at once. False if there is no
  /// window.
  bool UnsubclassMessageWindow();

  /// Only after BuildThunk, which does not look at the tables. A handle that has a slot already
  /// keeps it, with a warning in the trace; but if a free slot lies before that one, the handle
  /// gets that too, and is found there from then on.
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
  /// 0 once the window is subclassed: the procedure then lives on in the block's fields alone.
  std::uintptr_t PreviousProcedure() const { return previous_; }
  const HandleTable& resolveTable() const { return resolve_; }
  const HandleTable& socketTable() const { return sockets_; }

 private:
  // What the code does, for windows that cannot enter it. The names are the drawing's.
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

  // What two of the block's fields stand for, in full width, for enter() and forward().
  std::uintptr_t forwardTo_ = 0;
  std::uintptr_t ebMode_ = 0;
};

}  // namespace zev
