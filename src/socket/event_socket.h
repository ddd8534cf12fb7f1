#pragma once

#include <cstdint>
#include <memory>

#include "runtime/containers.h"
#include "runtime/variant.h"
#include "socket/byte_queue.h"
#include "socket/event_socket_module.h"
#include "socket/socket_events.h"

namespace zev {

enum SocketState : std::int32_t {
  sckClosed = 0,         ///< no connection
  sckOpen = 1,           ///< bound, or UDP ready
  sckListening = 2,      ///< TCP listening
  sckResolvingHost = 4,  ///< a look-up runs
  sckHostResolved = 5,   ///< the look-up is done; passes at once
  sckConnecting = 6,     ///< TCP connecting runs
  sckConnected = 7,      ///< TCP connected
  sckClosing = 8,        ///< the peer has closed, or CloseSck is at work
  sckError = 9,          ///< a failure was reported
};

enum SocketProtocol : std::int32_t { ProtocolTCP = 0, ProtocolUDP = 1 };

/// Largest number of a port.
inline constexpr std::int32_t highestPort = 65535;

/// Bytes of the block that a look-up fills.
inline constexpr std::int32_t resolveBufferSize = 1024;

/// A socket that tells of everything by events: one TCP connection, one TCP listener, or one UDP
/// socket. It never waits for the network, except for look-ups of names that Bind, Listen and
/// SendData over UDP need and for that of the machine's own name.
///
/// A failure is raised (RuntimeError with number, text and a Source "CEventSocket." and the
/// operation's name) where there is a caller, and reported by the event `Error` where there is
/// none; a reported one leaves the socket in sckError. An operation in a state that does not allow
/// it raises 40020.
///
/// All on the one thread that dispatches messages. Instances are shared: the routing keeps one
/// alive while it handles a notification, so that an event procedure may drop the last reference to
/// it.
class CEventSocket final : public NotificationTarget,
                           public std::enable_shared_from_this<CEventSocket> {
  struct Key {};

 public:
  /// Borrows the module, which outlives the instance. Raises what InitiateProcesses raises.
  static std::shared_ptr<CEventSocket> create(modEventSocket& module);
  CEventSocket(Key, modEventSocket& module);
  /// Closes the socket without an event, unless this instance only holds it.
  ~CEventSocket() override;
  CEventSocket(const CEventSocket&) = delete;
  CEventSocket& operator=(const CEventSocket&) = delete;

  SocketEvents events;

  std::int32_t WndProc(std::int32_t hwnd, std::int32_t uMsg, std::int32_t wParam,
                       std::int32_t lParam) override;

  // ---- properties

  /// 0 to 65535; error 40014 outside. TCP: error 40020 unless the socket is closed.
  std::int32_t RemotePort() const { return remotePort_; }
  void RemotePort(std::int32_t lngPort);
  /// A name or a dotted address. TCP: error 40020 unless the socket is closed. Empty once the
  /// peer's address was read from the system.
  const Text& RemoteHost() const { return remoteHost_; }
  void RemoteHost(Text strHost);
  /// The peer's dotted address.
  const Text& RemoteHostIP() const { return remoteHostIp_; }
  /// The port that the system chose, if it did, else the one asked for: 0 to 65535, error 40014
  /// outside. Error 40020 unless the socket is closed.
  std::int32_t LocalPort() const { return boundLocalPort_ != 0 ? boundLocalPort_ : localPort_; }
  void LocalPort(std::int32_t lngPort);
  SocketState State() const { return state_; }
  /// The machine's name.
  Text LocalHostName() const;
  /// The address bound to while the socket is open or listening, else the machine's first one.
  Text LocalIP() const;
  /// TCP: bytes that have arrived and wait. UDP: the size of the datagram that waits.
  std::int32_t BytesReceived() const;
  /// The system's handle; -1 while there is no socket.
  std::int32_t SocketHandle() const { return socketHandle_; }
  /// Free use of the owner.
  const Text& Tag() const { return tag_; }
  void Tag(Text strTag) { tag_ = std::move(strTag); }
  /// Error 40020 unless the socket is closed. The value is not examined.
  SocketProtocol Protocol() const { return protocol_; }
  void Protocol(SocketProtocol enmProtocol);

  // ---- operations

  /// Closes the socket, if there is one: buffers and what is known of the peer's address are gone,
  /// what was set for the next connection stays. No event.
  void CloseSck();
  /// TCP: looks the host up and connects; the event `Connect` or `Error` tells the end. UDP: binds.
  /// A missing argument keeps the property; a port has to be within 1 to 65535 (error 40014) and a
  /// number (error 40018).
  void Connect(const Variant& RemoteHost = Variant::missing(),
               const Variant& RemotePort = Variant::missing());
  /// Binds to a port (0: one of the system's choice) and an address of this machine; the properties
  /// and the machine's first address if they are missing. Error 40014 and 40018 as for Connect.
  void Bind(const Variant& LocalPort = Variant::missing(),
            const Variant& LocalIP = Variant::missing());
  /// Queues bytes and begins to send them, unless others wait already: those follow when there is
  /// room. Numbers go low byte first, texts through the code page; error 40018 for every other
  /// type. UDP: one datagram to RemoteHost, at once.
  void SendData(const Variant& data);
  /// Fetches what has arrived. `data` gets a value of the type that it has, else of `varType`, else
  /// bytes; texts and bytes as many as there are or as `maxLen` says, a number only once all its
  /// bytes are there. The amount fetched. Given arguments that are overwritten are written back:
  /// `varType` with the type of `data`, a `maxLen` that is no number with the amount at hand.
  std::int32_t GetData(Variant& data);
  std::int32_t GetData(Variant& data, Variant& varType);
  std::int32_t GetData(Variant& data, Variant& varType, Variant& maxLen);
  /// The same without removing it.
  std::int32_t PeekData(Variant& data);
  std::int32_t PeekData(Variant& data, Variant& varType);
  std::int32_t PeekData(Variant& data, Variant& varType, Variant& maxLen);
  /// Waits for connections on the local port; each is told by `ConnectionRequest`.
  void Listen();
  /// Takes the connection of a request over. Only within `ConnectionRequest`: a connection that
  /// nobody has taken is closed behind it.
  void Accept(std::int32_t& requestID);

 private:
  enum class Peek : bool { No, Yes };
  struct Address {
    std::int32_t value;
    Text text;
    std::int32_t error = 0;
  };

  // Life and closing. event_socket.cpp
  void terminate();
  bool SocketExists();
  void ProcessOptions();
  std::int32_t optionOf(std::int32_t option);
  void DestroySocket();
  void setState(SocketState state);
  void Report(std::int32_t number, TextView source);
  bool isUdp() const { return protocol_ == ProtocolUDP; }
  std::int32_t lastError() const { return sockets_.WSAGetLastError(); }
  /// Runs an event procedure, if there is one. A copy of it: it may take its own place.
  template <typename Event, typename... Arguments>
  static void raiseEvent(const Event& event, Arguments&&... arguments) {
    const Event procedure = event;
    if (procedure) procedure(std::forward<Arguments>(arguments)...);
  }

  // Addresses, look-ups, binding and connecting. event_socket_connecting.cpp
  std::int32_t ResolveIfHostname(const Text& host, std::int32_t destination);
  void PostHostResolved(std::int32_t lookUp, std::int32_t errorCode);
  void ConnectToIP(std::int32_t address, std::int32_t errorCode);
  bool BindInternal(const Variant& port = Variant::missing(),
                    const Variant& address = Variant::missing());
  std::int32_t portToBind(const Variant& port) const;
  void bindTo(std::int32_t port, const Address& address);
  void takeBoundPort(std::int32_t port);
  bool AllocateResolveBuffer();
  void FreeResolveBuffer();
  void CancelResolves();
  Text GetLocalHostName() const;
  Text GetLocalIP() const;
  Address HostToAddress(const Text& text) const;
  std::int32_t QueryBoundPort(std::int32_t socket) const;
  bool GetPeerInfo(std::int32_t socket, std::int32_t& port, Text& address, Text& host);
  void ReadAddressRecord(const SocketAddress& record, std::int32_t& port, Text& address);
  void storeRemoteEnd(const Variant& host, const Variant& port);
  void rememberLookUp(std::int32_t lookUp, std::int32_t destination);

  // Notifications, and the connections that they bring. event_socket_notifications.cpp
  void PostSocket(std::int32_t event, std::int32_t errorCode);
  bool actsOn(std::int32_t event) const;
  void dispatch(std::int32_t event);
  void onRead();
  void onDatagram();
  void onAccept();
  void offerConnection(std::int32_t socket);
  void closeUnlessTaken(std::int32_t accepted);
  void onConnect();
  void onClose();
  void holdAccepted(std::int32_t requestID);
  void takeAccepted(std::int32_t requestID);
  void takeLocalEnd(std::int32_t requestID);
  void takeWhatCame(CEventSocket& holding);

  // Data. event_socket_data.cpp
  void FlushSendBuffer();
  void SendBufferedDataUDP();
  void SendBufferedData();
  bool sendChunk(std::int32_t& counter);
  void queueValue(const Variant& data);
  void queueBytes(std::shared_ptr<const void> owner, std::span<const std::uint8_t> bytes);
  void chunkSent(std::int32_t amount, std::int32_t& counter);
  void chunkRefused(std::int32_t reason, std::int32_t counter);
  std::int32_t RecvDataToBuffer();
  std::span<std::uint8_t> makeRoom(std::size_t most, bool follows);
  std::int32_t RecvData(Variant& data, Peek peek, Variant& varType, const Variant& maxLen);
  std::int32_t fetchBytes(Variant& data, VariantType type, Peek peek, const Variant& maxLen);
  void storeBytes(Variant& data, std::vector<std::uint8_t> bytes);
  std::int32_t fetchNumber(Variant& data, VariantType type, Peek peek);
  std::int32_t fetch(Variant& data, Variant& varType, Variant& maxLen, Peek peek, TextView source);
  std::vector<std::uint8_t> ReadBytes(std::int32_t count, Peek peek, std::int32_t& error);
  std::int32_t available() const;
  std::int32_t PendingBytes() const;
  void ClearPendingDatagram();
  std::int32_t sendBufferLength() const;
  std::int32_t recvBufferLength() const;

  modEventSocket& module_;
  Sockets& sockets_;
  InstancePointer pointer_ = noInstance;

  std::int32_t socketHandle_ = winsock::noSocket;
  SocketState state_ = sckClosed;
  Text tag_;
  Text remoteHost_;
  std::int32_t remotePort_ = 0;
  Text remoteHostIp_;
  std::int32_t localPort_ = 0;       ///< asked for, or bound when asked for explicitly
  std::int32_t boundLocalPort_ = 0;  ///< that the system chose; 0 if none
  Text localIp_;
  SocketProtocol protocol_ = ProtocolTCP;
  void* resolveBufferPointer_ = nullptr;  ///< block of a running look-up
  GlobalHandle resolveBufferHandle_ = 0;
  std::int32_t sendChunkSize_ = 0;  ///< largest piece for one `send`
  std::int32_t recvChunkSize_ = 0;  ///< size of one `recv`
  ByteQueue sendBuffer_{module_.spareMemory()};
  ByteQueue recvBuffer_{module_.spareMemory()};
  bool acceptClass_ = false;                  ///< holds a connection until somebody takes it
  Collection<std::int32_t> pendingResolves_;  ///< destinations by look-up
  std::int32_t runningLookUp_ = 0;            ///< 0 while there is none
};

}  // namespace zev
