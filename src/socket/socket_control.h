#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "runtime/variant.h"
#include "socket/event_socket.h"

namespace zev {

/// Properties of a control as a form stores them, in the order of their first writing.
class PropertyBag {
 public:
  /// What is stored under a name, else `initial`.
  Variant ReadProperty(TextView name, const Variant& initial) const;
  /// Stores a value; one that equals `initial` is not stored.
  void WriteProperty(TextView name, const Variant& value, const Variant& initial);

  const std::vector<std::pair<Text, Variant>>& contents() const { return contents_; }

 private:
  std::vector<std::pair<Text, Variant>> contents_;
};

/// A member of the control as the host's property browser shows it.
struct MemberDescription {
  enum class Kind { ReadWrite, Read, Operation, Event };
  TextView name;
  Kind kind;
  TextView description;  ///< empty for none
};

/// Properties and operations in the order of the control, then its events.
std::span<const MemberDescription> socketMembers();
std::span<const MemberDescription> socketEventMembers();

/// The control that a form carries a socket by: each member is that of the socket in it, and each
/// of the socket's events is raised again as the control's own. What the members mean, and what
/// they raise, stands with CEventSocket.
class Socket {
 public:
  /// Width and height, twips: whatever the host asks for.
  static constexpr std::int32_t extent = 420;

  /// Borrows the module, which outlives the control. Creates the socket and so starts the service;
  /// raises what that raises.
  explicit Socket(modEventSocket& module);
  /// The socket in it ends and closes without an event.
  ~Socket();
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;

  SocketEvents events;

  // In the order in which the host shows them.
  std::int32_t RemotePort() const { return cmSocket_->RemotePort(); }
  void RemotePort(std::int32_t port) { cmSocket_->RemotePort(port); }
  Text RemoteHost() const { return cmSocket_->RemoteHost(); }
  void RemoteHost(Text host) { cmSocket_->RemoteHost(std::move(host)); }
  Text RemoteHostIP() const { return cmSocket_->RemoteHostIP(); }
  std::int32_t LocalPort() const { return cmSocket_->LocalPort(); }
  void LocalPort(std::int32_t port) { cmSocket_->LocalPort(port); }
  SocketState State() const { return cmSocket_->State(); }
  Text LocalHostName() const { return cmSocket_->LocalHostName(); }
  Text LocalIP() const { return cmSocket_->LocalIP(); }
  std::int32_t BytesReceived() const { return cmSocket_->BytesReceived(); }
  std::int32_t SocketHandle() const { return cmSocket_->SocketHandle(); }
  Text Tag() const { return cmSocket_->Tag(); }
  void Tag(Text tag) { cmSocket_->Tag(std::move(tag)); }
  SocketProtocol Protocol() const { return cmSocket_->Protocol(); }
  void Protocol(SocketProtocol protocol) { cmSocket_->Protocol(protocol); }

  void Accept(std::int32_t& requestID);
  void Bind(const Variant& LocalPort = Variant::missing(),
            const Variant& LocalIP = Variant::missing());
  void CloseSck();
  void Connect(const Variant& RemoteHost = Variant::missing(),
               const Variant& RemotePort = Variant::missing());
  std::int32_t GetData(Variant& data);
  std::int32_t GetData(Variant& data, Variant& varType);
  std::int32_t GetData(Variant& data, Variant& varType, Variant& maxLen);
  void Listen();
  std::int32_t PeekData(Variant& data);
  std::int32_t PeekData(Variant& data, Variant& varType);
  std::int32_t PeekData(Variant& data, Variant& varType, Variant& maxLen);
  void SendData(const Variant& data);

  // What the host does with the control.
  std::int32_t Width() const { return width_; }
  std::int32_t Height() const { return height_; }
  /// The host has given the control a size; it goes back to its own.
  void UserControl_Resize(std::int32_t width, std::int32_t height);
  /// Takes the five stored properties through the control's own members, in their order: the first
  /// that is refused is raised.
  void UserControl_ReadProperties(const PropertyBag& bag);
  void UserControl_WriteProperties(PropertyBag& bag) const;
  /// The picture of the control: a bitmap file of 28 by 28 pixels in 24 bits.
  static std::vector<std::uint8_t> picture();

 private:
  /// A reference for the time of a call: an event procedure may end the control meanwhile.
  std::shared_ptr<CEventSocket> socket() const { return cmSocket_; }
  void forwardEvents();

  std::shared_ptr<CEventSocket> cmSocket_;
  std::int32_t width_ = extent;
  std::int32_t height_ = extent;
};

}  // namespace zev
