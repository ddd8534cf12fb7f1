#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/dialogs.h"
#include "platform/kernel.h"
#include "platform/message_windows.h"
#include "platform/sockets.h"
#include "runtime/containers.h"
#include "socket/byte_queue.h"
#include "socket/thunk.h"
#include "socket/trace.h"
#include "socket/winsock_errors.h"
#include "socket/wire_format.h"

namespace zev {

/// What the component needs of a machine; borrowed, outliving every use.
struct SocketServices {
  Sockets& sockets;
  MessageWindows& windows;
  Kernel& kernel;
  Dialogs& dialogs;
};

class CEventSocket;

/// What all sockets of a program share: the start and the end of the system's service, the hidden
/// window that all notifications arrive at, and the routing of each to its instance. One a program,
/// used on the thread that dispatches the program's messages, and outliving its instances.
///
/// Failures are raised with their number, their text and the Source that is named with each.
class modEventSocket {
 public:
  /// Borrows the services. `escape` gets every exception that leaves an event procedure and is not
  /// a run-time error, and has to throw it again from the top of the message loop. Without
  /// `escape` the exception is kept for rethrowEscaped().
  explicit modEventSocket(SocketServices services,
                          std::function<void(std::exception_ptr)> escape = {});
  modEventSocket(const modEventSocket&) = delete;
  modEventSocket& operator=(const modEventSocket&) = delete;

  // ---- the service

  /// Once from every new instance. The first one builds the block of code and starts the service; a
  /// failing start is raised (Source "modEventSocket.InitiateProcesses") and not tried again. Gives
  /// 0.
  std::int32_t InitiateProcesses();
  /// Once from every instance that ends; the last one ends the service. A failure is raised (Source
  /// "modEventSocket.FinalizeProcesses") and leaves the service as started. Gives 0.
  std::int32_t FinalizeProcesses();

  // ---- sockets

  /// Makes a socket known to the routing. The first one creates the window: error 7 (Source
  /// "modEventSocket.RegisterSocket") if that fails. `wantEvents` asks for the socket's
  /// notifications; an accepted socket inherits them. Failures of that, same Source, leave the
  /// socket's entry in the table. True.
  bool RegisterSocket(std::int32_t socket, InstancePointer instance, bool wantEvents);
  /// Forgets a socket; the last one takes the window away: error 7 (Source
  /// "modEventSocket.DestroyWinsockMessageWindow") if that fails.
  void UnregisterSocket(std::int32_t socket);
  /// Whether the socket was registered and not unregistered since.
  bool IsSocketRegistered(std::int32_t socket) const;
  /// Lets the notifications of a socket go to another instance.
  void ReplaceSocketObject(std::int32_t socket, InstancePointer instance);

  // ---- look-ups

  /// Starts a look-up into a buffer of 1024 bytes; its handle, 0 on failure.
  std::int32_t ResolveHostAsync(TextView host, void* buffer, InstancePointer instance);
  /// Forgets a look-up: its notification then reaches nobody. A look-up that still runs is not
  /// ended by it.
  void UnregisterResolution(std::int32_t lookUp);

  // ---- accepted connections

  /// Makes the instance that holds an accepted socket until somebody takes it.
  void RegisterAccept(std::int32_t socket);
  bool IsAcceptRegistered(std::int32_t socket) const;
  /// The instance that holds it; error 5 if none does, error 91 if none holds anything.
  std::shared_ptr<CEventSocket> GetAcceptObject(std::int32_t socket);
  /// Lets go of the instance that holds it; errors as above.
  void UnregisterAccept(std::int32_t socket);

  /// The text that ends in NUL at an address, through the code page; empty for null.
  Text StringFromPointer(const char* address);

  // ---- for instances

  /// The machine that all sockets of the program use.
  SocketServices& services() { return services_; }
  Instances& instances() { return instances_; }
  /// An instance has ended: nothing reaches it any more.
  void instanceEnded(InstancePointer instance);
  /// Bytes that a call fills and its caller takes out before anything else runs.
  std::vector<std::uint8_t>& scratch() { return scratch_; }
  /// Memory that some call may fill next, as that above.
  void giveBack(std::vector<std::uint8_t> memory);
  /// Where sockets leave large memory for each other.
  SpareMemory& spareMemory() { return spareMemory_; }

  // ---- for programs and tests

  Trace& trace() { return trace_; }
  const Trace& trace() const { return trace_; }
  /// Throws what escaped from event procedures, if anything did. To be called from the top of the
  /// message loop.
  void rethrowEscaped();

  std::int32_t InstanceCount() const { return instanceCount_; }
  bool ServiceStarted() const { return serviceStarted_; }
  /// The window's handle; 0 while there is none.
  std::int32_t lngWindowHandle() const { return window_; }
  /// Registered sockets; none while there is no collection.
  std::optional<std::size_t> SocketCollectionCount() const;
  std::optional<std::size_t> AcceptCollectionCount() const;
  const Thunk& thunk() const { return thunk_; }

 private:
  std::int32_t StartWinsock();
  std::int32_t StopWinsock();
  std::int32_t CreateWinsockMessageWindow();
  void DestroyWinsockMessageWindow();
  void requestEvents(std::int32_t socket);
  void dropSocketCollection();

  SocketServices services_;
  Trace trace_;
  std::exception_ptr escaped_;
  Instances instances_;
  Thunk thunk_;

  std::int32_t instanceCount_ = 0;
  bool serviceStarted_ = false;
  std::int32_t window_ = 0;
  std::optional<Collection<InstancePointer>> socketCollection_;
  std::optional<Collection<std::shared_ptr<CEventSocket>>> acceptCollection_;
  std::vector<std::uint8_t> scratch_;
  SpareMemory spareMemory_;
};

}  // namespace zev
