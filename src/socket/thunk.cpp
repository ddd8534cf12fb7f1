#include "socket/thunk.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstring>

#include "socket/routing_code.h"
#include "socket/winsock_errors.h"

namespace zev {
namespace {

constexpr std::size_t fieldSize = 4;
/// What the jump over the guard becomes when the guard is wanted.
constexpr std::uint8_t noOperation = 0x90;
constexpr std::int32_t freeHandle = -1;

/// Answers of the design environment's EbMode; anything else means that the program runs.
constexpr std::int32_t modeStopped = 0;
constexpr std::int32_t modePaused = 2;
using ModeFunction = std::int32_t();

std::uint32_t low(std::uintptr_t address) { return static_cast<std::uint32_t>(address); }

/// Address of the first cell of a table's column. It holds until the column grows or is shrunk.
std::uint32_t TableBase(const std::vector<std::int32_t>& column) {
  return low(reinterpret_cast<std::uintptr_t>(column.data()));
}

std::int32_t handleOf(const WindowMessage& message) {
  return static_cast<std::int32_t>(message.wParam);
}

}  // namespace

Thunk::~Thunk() {
  if (block_ != nullptr) ReleaseThunk();
}

// ---- the block

/// Writes the addresses that hold for the block's whole life. Those of the tables come with their
/// entries, that of the window's procedure when the window is subclassed.
void Thunk::BuildThunk(bool inDesignEnvironment) {
  const auto code = thunkBytes();
  block_ = kernel_.VirtualAlloc(code.size(), commitPages, readWriteExecute);
  if (block_ == nullptr) raiseOutOfMemory(u"modEventSocket.BuildThunk");
  trace_.line(u"OK Subclass memory allocated at: ", reinterpret_cast<std::uintptr_t>(block_));
  kernel_.VirtualLock(block_, code.size());
  std::copy(code.begin(), code.end(), block_);
  if (inDesignEnvironment) guard();
  PatchRelative(thunk_field::setWindowLong, kernel_.ProcAddress("user32", "SetWindowLongA"));
  PatchRelative(thunk_field::callWindowProc, kernel_.ProcAddress("user32", "CallWindowProcA"));
  if (!windows_.entersMachineCode()) {
    windows_.standIn(reinterpret_cast<std::uintptr_t>(block_), this);
  }
}

/// Takes out the jump over the guard. Either version of the design environment can answer it;
/// without one its address is 0.
void Thunk::guard() {
  block_[thunk_field::guardJump] = block_[thunk_field::guardJump + 1] = noOperation;
  ebMode_ = kernel_.ProcAddress("vba6", "EbMode");
  if (ebMode_ == 0) ebMode_ = kernel_.ProcAddress("vba5", "EbMode");
  PatchRelative(thunk_field::ebMode, ebMode_);
}

/// The window goes first, since no message may enter a block that is freed. The tables keep their
/// memory until here: the block has its addresses.
void Thunk::ReleaseThunk() {
  UnsubclassMessageWindow();
  const auto address = reinterpret_cast<std::uintptr_t>(block_);
  if (!windows_.entersMachineCode()) windows_.standIn(address, nullptr);
  kernel_.VirtualFree(block_, 0, releasePages);
  trace_.line(u"OK Freed subclass memory at: ", address);
  block_ = nullptr;
  resolve_.shrink();
  sockets_.shrink();
  instances_.forgetEnded();
}

void Thunk::PatchValue(std::size_t offset, std::uint32_t value) {
  std::memcpy(block_ + offset, &value, fieldSize);
}

/// A near call counts from the byte after its field. The field is the last part of each call here.
void Thunk::PatchRelative(std::size_t offset, std::uintptr_t target) {
  const auto field = reinterpret_cast<std::uintptr_t>(block_) + offset;
  PatchValue(offset, low(target - field - fieldSize));
}

// ---- the window

/// The procedure is written into the block before the block is put in: the first message may come
/// from within SetWindowLongA.
bool Thunk::SubclassMessageWindow(WindowHandle window) {
  if (window_ != 0) return false;
  window_ = window;
  previous_ = windows_.GetWindowLongA(window, windowProcedureIndex);
  PatchValue(thunk_field::restoreProcedure, low(previous_));
  PatchValue(thunk_field::forwardProcedure, low(previous_));
  forwardTo_ = previous_;
  previous_ = windows_.SetWindowLongA(window, windowProcedureIndex,
                                      reinterpret_cast<std::uintptr_t>(block_));
  if (previous_ == 0) return false;
  previous_ = 0;
  windows_.dropBeforeDispatch(window, [this](const WindowMessage& each) { return drops(each); });
  return true;
}

bool Thunk::UnsubclassMessageWindow() {
  if (window_ == 0) return false;
  resolve_.clear();
  sockets_.clear();
  instances_.forgetEnded();
  PatchValue(thunk_field::resolveCount, 0);
  PatchValue(thunk_field::socketCount, 0);
  windows_.SetWindowLongA(window_, windowProcedureIndex, previous_);
  windows_.dropBeforeDispatch(window_, {});
  window_ = 0;
  return true;
}

/// Two kinds of message must not reach the code's search, since it would enter whatever it finds:
/// - With a count of 0 `repne scasd` compares nothing and leaves the zero flag of the comparison
///   before it, which reads as a hit in the cell before the column.
/// - The handle -1 is found in every free slot, and the instance there is -1 too.
bool Thunk::drops(const WindowMessage& message) const {
  if (message.message == WM_RESOLVE_DONE) {
    return resolve_.count() == 0 || handleOf(message) == freeHandle;
  }
  if (message.message == WM_SOCKET_EVENT) {
    return sockets_.count() == 0 || handleOf(message) == freeHandle;
  }
  return false;
}

// ---- the tables

void Thunk::AddResolveEntry(std::int32_t lookUp, InstancePointer instance) {
  add(resolve_, lookUp, instance);
}

void Thunk::AddSocketEntry(std::int32_t socket, InstancePointer instance) {
  add(sockets_, socket, instance);
}

/// Only an entry at the end changes what the block holds: the count, and perhaps the addresses.
void Thunk::add(HandleTable& table, std::int32_t handle, InstancePointer instance) {
  const HandleTable::Added added = table.add(handle, instance);
  if (added == HandleTable::Added::Known) trace_.line(u"WARNING: Async already registered!");
  if (added != HandleTable::Added::AtTheEnd || block_ == nullptr) return;
  if (&table == &resolve_) {
    PatchResolveTable();
  } else {
    PatchSocketTable();
  }
}

void Thunk::PatchResolveTable() {
  PatchValue(thunk_field::resolveCount, static_cast<std::uint32_t>(resolve_.count()));
  PatchValue(thunk_field::resolveHandles, TableBase(resolve_.handles()));
  PatchValue(thunk_field::resolveObjects, TableBase(resolve_.objects()));
}

void Thunk::PatchSocketTable() {
  PatchValue(thunk_field::socketCount, static_cast<std::uint32_t>(sockets_.count()));
  PatchValue(thunk_field::socketHandles, TableBase(sockets_.handles()));
  PatchValue(thunk_field::socketObjects, TableBase(sockets_.objects()));
}

// ---- what the code does, for windows that cannot enter it

/// Follows the guard's answer: paused, a message goes to the window's own procedure; stopped, the
/// window gets that one back for good; else the program runs.
std::intptr_t Thunk::enter(const WindowMessage& message) {
  if (!guardInForce()) return route(message);
  const std::int32_t mode = std::bit_cast<ModeFunction*>(ebMode_)();
  if (mode == modePaused) return forward(message);
  if (mode != modeStopped) return route(message);
  return static_cast<std::intptr_t>(
      windows_.SetWindowLongA(message.window, windowProcedureIndex, forwardTo_));
}

bool Thunk::guardInForce() const {
  return block_ != nullptr && block_[thunk_field::guardJump] == noOperation;
}

std::intptr_t Thunk::route(const WindowMessage& message) {
  if (message.message == WM_RESOLVE_DONE) return routeTo(resolve_, message);
  if (message.message == WM_SOCKET_EVENT) return routeTo(sockets_, message);
  return forward(message);
}

/// The result of a dropped message is its wParam, since that is what the code leaves in eax.
std::intptr_t Thunk::routeTo(const HandleTable& table, const WindowMessage& message) {
  const InstancePointer instance = drops(message) ? noInstance : table.find(handleOf(message));
  return instance == noInstance ? static_cast<std::intptr_t>(message.wParam)
                                : instances_.enter(instance, message);
}

std::intptr_t Thunk::forward(const WindowMessage& message) {
  return windows_.CallWindowProcA(forwardTo_, message);
}

std::array<std::uint8_t, thunkSize> thunkBytes() {
  std::array<std::uint8_t, thunkSize> bytes{};
  for (std::size_t place = 0; place < thunkSize; ++place) {
    const std::string_view pair = thunkCode.substr(2 * place, 2);
    std::from_chars(pair.data(), pair.data() + pair.size(), bytes[place], 16);
  }
  return bytes;
}

}  // namespace zev
