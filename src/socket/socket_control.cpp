#include "socket/socket_control.h"

#include <algorithm>
#include <array>
#include <functional>

namespace zev {

Variant PropertyBag::ReadProperty(TextView name, const Variant& initial) const {
  const auto found = std::find_if(contents_.begin(), contents_.end(),
                                  [&](const auto& each) { return each.first == name; });
  return found == contents_.end() ? initial : found->second;
}

void PropertyBag::WriteProperty(TextView name, const Variant& value, const Variant& initial) {
  std::erase_if(contents_, [&](const auto& each) { return each.first == name; });
  if (!(value == initial)) contents_.emplace_back(name, value);
}

namespace {

using MemberKind = MemberDescription::Kind;

constexpr auto members = std::to_array<MemberDescription>({
    {u"RemotePort", MemberKind::ReadWrite,
     u"Returns/Sets the port to be connected to on the remote computer"},
    {u"RemoteHost", MemberKind::ReadWrite,
     u"Returns/Sets the name used to identify the remote computer"},
    {u"RemoteHostIP", MemberKind::Read, u"Returns the remote host IP address"},
    {u"LocalPort", MemberKind::ReadWrite, u"Returns/Sets the port used on the local computer"},
    {u"State", MemberKind::Read, u"Returns the state of the socket connection"},
    {u"LocalHostName", MemberKind::Read, u"Returns the local machine name"},
    {u"LocalIP", MemberKind::Read, u"Returns the local machine IP address"},
    {u"BytesReceived", MemberKind::Read,
     u"Returns the number of bytes received on this connection"},
    {u"SocketHandle", MemberKind::Read, u"Returns the socket handle"},
    {u"Tag", MemberKind::ReadWrite,
     u"Returns or sets an expression that stores any extra data needed for your program"},
    {u"Protocol", MemberKind::ReadWrite, u"Returns/Sets the socket protocol"},
    {u"Accept", MemberKind::Operation, u"Accept an incoming connection request"},
    {u"Bind", MemberKind::Operation, u"Binds socket to specific port and adapter"},
    {u"CloseSck", MemberKind::Operation, u"Close current connection"},
    {u"Connect", MemberKind::Operation, u"Connect to the remote computer"},
    {u"GetData", MemberKind::Operation, u"Retrieve data sent by the remote computer"},
    {u"Listen", MemberKind::Operation, u"Listen for incoming connection requests"},
    {u"PeekData", MemberKind::Operation,
     u"Look at incoming data without removing it from the buffer"},
    {u"SendData", MemberKind::Operation, u"Send data to remote computer"},
});

constexpr auto eventMembers = std::to_array<MemberDescription>({
    {u"CloseSck", MemberKind::Event, u""},
    {u"Connect", MemberKind::Event, u""},
    {u"ConnectionRequest", MemberKind::Event,
     u"Occurs when a remote client is attempting to connect"},
    {u"DataArrival", MemberKind::Event,
     u"Occurs when data has been received from the remote computer"},
    {u"Error", MemberKind::Event, u"Error occurred"},
    {u"SendComplete", MemberKind::Event, u"Occurs after a send operation has completed"},
    {u"SendProgress", MemberKind::Event, u"Occurs during process of sending data"},
});

/// A stored property: its name, its default, and the member that it is read and assigned by.
struct StoredProperty {
  TextView name;
  Variant (*initial)();
  Variant (*read)(const Socket& control);
  void (*assign)(Socket& control, const Variant& value);
};

Variant zero() { return std::int32_t{0}; }
Variant empty() { return Text(); }

/// In the order in which they are read and written.
constexpr auto storedProperties = std::to_array<StoredProperty>({
    {u"LocalPort", zero, [](const Socket& c) { return Variant(c.LocalPort()); },
     [](Socket& c, const Variant& v) { c.LocalPort(toLong(v)); }},
    {u"Protocol", zero,
     [](const Socket& c) { return Variant(static_cast<std::int32_t>(c.Protocol())); },
     [](Socket& c, const Variant& v) { c.Protocol(static_cast<SocketProtocol>(toLong(v))); }},
    {u"RemoteHost", empty, [](const Socket& c) { return Variant(c.RemoteHost()); },
     [](Socket& c, const Variant& v) { c.RemoteHost(toText(v)); }},
    {u"RemotePort", zero, [](const Socket& c) { return Variant(c.RemotePort()); },
     [](Socket& c, const Variant& v) { c.RemotePort(toLong(v)); }},
    {u"Tag", empty, [](const Socket& c) { return Variant(c.Tag()); },
     [](Socket& c, const Variant& v) { c.Tag(toText(v)); }},
});

/// Raises an event of the control with the arguments of the socket's. A copy of the procedure: it
/// may end the control.
template <typename... Arguments>
std::function<void(Arguments...)> raisedAgain(const std::function<void(Arguments...)>& event) {
  return [&event](Arguments... arguments) {
    const auto procedure = event;
    if (procedure) procedure(arguments...);
  };
}

}  // namespace

std::span<const MemberDescription> socketMembers() { return members; }
std::span<const MemberDescription> socketEventMembers() { return eventMembers; }

Socket::Socket(modEventSocket& module) : cmSocket_(CEventSocket::create(module)) {
  forwardEvents();
}

Socket::~Socket() { cmSocket_->events = {}; }

void Socket::forwardEvents() {
  SocketEvents& from = cmSocket_->events;
  from.CloseSck = raisedAgain(events.CloseSck);
  from.Connect = raisedAgain(events.Connect);
  from.ConnectionRequest = raisedAgain(events.ConnectionRequest);
  from.DataArrival = raisedAgain(events.DataArrival);
  from.Error = raisedAgain(events.Error);
  from.SendComplete = raisedAgain(events.SendComplete);
  from.SendProgress = raisedAgain(events.SendProgress);
}

// ---- members

void Socket::Accept(std::int32_t& requestID) { socket()->Accept(requestID); }

void Socket::Bind(const Variant& LocalPort, const Variant& LocalIP) {
  socket()->Bind(LocalPort, LocalIP);
}

void Socket::CloseSck() { socket()->CloseSck(); }

void Socket::Connect(const Variant& RemoteHost, const Variant& RemotePort) {
  socket()->Connect(RemoteHost, RemotePort);
}

std::int32_t Socket::GetData(Variant& data) { return socket()->GetData(data); }

std::int32_t Socket::GetData(Variant& data, Variant& varType) {
  return socket()->GetData(data, varType);
}

std::int32_t Socket::GetData(Variant& data, Variant& varType, Variant& maxLen) {
  return socket()->GetData(data, varType, maxLen);
}

void Socket::Listen() { socket()->Listen(); }

std::int32_t Socket::PeekData(Variant& data) { return socket()->PeekData(data); }

std::int32_t Socket::PeekData(Variant& data, Variant& varType) {
  return socket()->PeekData(data, varType);
}

std::int32_t Socket::PeekData(Variant& data, Variant& varType, Variant& maxLen) {
  return socket()->PeekData(data, varType, maxLen);
}

void Socket::SendData(const Variant& data) { socket()->SendData(data); }

// ---- the host

void Socket::UserControl_Resize(std::int32_t, std::int32_t) { width_ = height_ = extent; }

void Socket::UserControl_ReadProperties(const PropertyBag& bag) {
  for (const StoredProperty& each : storedProperties) {
    each.assign(*this, bag.ReadProperty(each.name, each.initial()));
  }
}

void Socket::UserControl_WriteProperties(PropertyBag& bag) const {
  for (const StoredProperty& each : storedProperties) {
    bag.WriteProperty(each.name, each.read(*this), each.initial());
  }
}

}  // namespace zev
