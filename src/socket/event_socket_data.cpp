#include <algorithm>
#include <new>
#include <string_view>
#include <utility>

#include "socket/event_socket.h"
#include "socket/wire_format.h"

namespace zev {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t longestBuffer = INT32_MAX;

/// Bytes that stay as they are while somebody has them.
struct Shared {
  std::shared_ptr<const void> owner;
  std::span<const std::uint8_t> bytes;
};

template <typename Container>
Shared shared(std::shared_ptr<const Container> owner) {
  const std::span bytes(reinterpret_cast<const std::uint8_t*>(owner->data()), owner->size());
  return {std::move(owner), bytes};
}

template <typename Container>
Shared shared(Container container) {
  return shared(std::make_shared<const Container>(std::move(container)));
}

std::string_view charactersOf(std::span<const std::uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// At most what is at hand, however large the number that is asked for.
std::int32_t amountToFetch(std::int32_t atHand, const Variant& maxLen) {
  return maxLen.isMissing() || toDouble(maxLen) > atHand ? atHand : toLong(maxLen);
}

/// Does something that takes memory; error 7 if there is none.
template <typename Work>
auto withMemory(TextView source, Work work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    raiseOutOfMemory(source);
  }
}

bool holdsMany(VariantType type) {
  return type == VariantType::String || type == VariantType::ByteArray;
}

}  // namespace

// ---- sending

/// A datagram socket binds itself before it sends; a stream has to be connected.
void CEventSocket::SendData(const Variant& data) {
  constexpr TextView source = u"CEventSocket.SendData";
  const auto alive = shared_from_this();
  if (isUdp()) {
    if (!SocketExists() || !BindInternal()) return;
    setState(sckOpen);
  } else if (state_ != sckConnected) {
    raiseWrongProtocolOrState(source);
  }
  withMemory(source, [&] { queueValue(data); });
}

void CEventSocket::queueValue(const Variant& data) {
  Shared given;
  if (const Text* const text = data.get<Text>()) {
    given = shared(module_.services().kernel.toAnsi(*text));
  } else if (data.get<Bytes>() != nullptr) {
    given = shared(data.shareBytes());
  } else if (wireSize(data.type())) {
    given = shared(toWire(data));
  } else {
    raiseUnsupportedVariant(u"CEventSocket.SendData");
  }
  queueBytes(std::move(given.owner), given.bytes);
}

/// Bytes that find others waiting follow them once there is room. Those that find none go out from
/// where they are, without a copy: the owner's variant and the queue share them.
void CEventSocket::queueBytes(std::shared_ptr<const void> owner,
                              std::span<const std::uint8_t> bytes) {
  if (bytes.empty()) return;
  if (bytes.size() > longestBuffer - sendBuffer_.size()) {
    raiseOutOfMemory(u"CEventSocket.SendData");
  }
  const bool waits = !sendBuffer_.empty();
  sendBuffer_.share(std::move(owner), bytes);
  if (!waits) FlushSendBuffer();
}

void CEventSocket::FlushSendBuffer() {
  if (isUdp()) {
    SendBufferedDataUDP();
  } else {
    SendBufferedData();
  }
}

/// Sent or not, the datagram does not wait any more: there is no second try.
void CEventSocket::SendBufferedDataUDP() {
  constexpr TextView source = u"CEventSocket.SendBufferedDataUDP";
  const Address host = HostToAddress(remoteHost_);
  if (host.error != 0) {
    sendBuffer_.clear();
    if (host.error == winsock::error::familyNotSupported) raiseWinsockError(host.error, source);
    raiseInvalidArgument(source);
  }
  SocketAddress receiver;
  receiver.port = htons(UnsignedToInteger(remotePort_));
  receiver.address = host.value;
  const Bytes datagram = sendBuffer_.take(sendBuffer_.size());
  if (sockets_.sendto(socketHandle_, datagram, 0, receiver) == winsock::failed) {
    Report(lastError(), source);
  }
}

void CEventSocket::SendBufferedData() {
  std::int32_t counter = 0;
  while (!sendBuffer_.empty() && sendChunk(counter)) {
  }
}

/// One piece, at most as long as the system's own buffer. False once the system takes no more.
bool CEventSocket::sendChunk(std::int32_t& counter) {
  const std::size_t most =
      sendChunkSize_ > 0 ? static_cast<std::size_t>(sendChunkSize_) : sendBuffer_.size();
  const std::int32_t sent = sockets_.send(socketHandle_, sendBuffer_.front(most), 0);
  if (sent == winsock::failed) {
    chunkRefused(lastError(), counter);
    return false;
  }
  module_.trace().line(u"OK Bytes sent: ", sent);
  chunkSent(sent, counter);
  return true;
}

void CEventSocket::chunkSent(std::int32_t amount, std::int32_t& counter) {
  counter += amount;
  if (sendBufferLength() > amount) return sendBuffer_.drop(static_cast<std::size_t>(amount));
  sendBuffer_.drop(sendBuffer_.size());
  module_.trace().line(u"OK Finished SENDING");
  const std::int32_t whole = std::exchange(counter, 0);
  raiseEvent(events.SendProgress, whole, 0);
  raiseEvent(events.SendComplete);
}

void CEventSocket::chunkRefused(std::int32_t reason, std::int32_t counter) {
  if (reason != winsock::error::wouldBlock) {
    return Report(reason, u"CEventSocket.SendBufferedData");
  }
  module_.trace().line(u"WARNING: Send buffer full, waiting...");
  if (counter >= 1) raiseEvent(events.SendProgress, counter, sendBufferLength());
}

std::int32_t CEventSocket::sendBufferLength() const {
  return static_cast<std::int32_t>(sendBuffer_.size());
}

// ---- receiving

std::int32_t CEventSocket::recvBufferLength() const {
  return static_cast<std::int32_t>(recvBuffer_.size());
}

/// Before bytes leave the system: there they are safe. Much that waits is followed where it lies.
/// Little is copied there, so that nobody holds room for a whole chunk because of it.
std::span<std::uint8_t> CEventSocket::makeRoom(std::size_t most, bool follows) {
  try {
    if (follows) return recvBuffer_.room(most);
    Bytes& scratch = module_.scratch();
    if (scratch.size() < most) scratch.resize(most);
    if (!recvBuffer_.empty()) recvBuffer_.reserve(most);
    return std::span(scratch).first(most);
  } catch (const std::bad_alloc&) {
    setState(sckError);
    raiseOutOfMemory(u"CEventSocket.RecvDataToBuffer");
  }
}

std::int32_t CEventSocket::RecvDataToBuffer() {
  constexpr TextView source = u"CEventSocket.RecvDataToBuffer";
  const auto most = static_cast<std::size_t>(std::max(recvChunkSize_, 1));
  if (most > longestBuffer - recvBuffer_.size()) {
    setState(sckError);
    raiseOutOfMemory(source);
  }
  const bool follows = recvBuffer_.size() >= most;
  const std::int32_t amount = sockets_.recv(socketHandle_, makeRoom(most, follows), 0);
  if (amount == winsock::failed) {
    const std::int32_t reason = lastError();
    setState(sckError);
    raiseWinsockError(reason, source);
  }
  const auto count = static_cast<std::size_t>(amount);
  if (follows) {
    recvBuffer_.filled(count);
  } else {
    recvBuffer_.adopt(module_.scratch(), count);
  }
  return amount;
}

std::int32_t CEventSocket::BytesReceived() const { return available(); }

std::int32_t CEventSocket::available() const {
  return isUdp() ? PendingBytes() : recvBufferLength();
}

std::int32_t CEventSocket::PendingBytes() const {
  std::int32_t bytes = 0;
  const std::int32_t result = sockets_.ioctlsocket(socketHandle_, winsock::bytesWaiting, bytes);
  return result == winsock::failed ? 0 : bytes;
}

void CEventSocket::ClearPendingDatagram() {
  std::uint8_t byte = 0;
  sockets_.recv(socketHandle_, {&byte, 1}, 0);
}

// ---- fetching

std::int32_t CEventSocket::GetData(Variant& data) {
  Variant varType = Variant::missing();
  return GetData(data, varType);
}

std::int32_t CEventSocket::GetData(Variant& data, Variant& varType) {
  Variant maxLen = Variant::missing();
  return GetData(data, varType, maxLen);
}

std::int32_t CEventSocket::GetData(Variant& data, Variant& varType, Variant& maxLen) {
  constexpr TextView source = u"CEventSocket.GetData";
  if (!isUdp() && state_ != sckConnected && !acceptClass_) raiseWrongProtocolOrState(source);
  return fetch(data, varType, maxLen, Peek::No, source);
}

std::int32_t CEventSocket::PeekData(Variant& data) {
  Variant varType = Variant::missing();
  return PeekData(data, varType);
}

std::int32_t CEventSocket::PeekData(Variant& data, Variant& varType) {
  Variant maxLen = Variant::missing();
  return PeekData(data, varType, maxLen);
}

std::int32_t CEventSocket::PeekData(Variant& data, Variant& varType, Variant& maxLen) {
  constexpr TextView source = u"CEventSocket.PeekData";
  if (!isUdp() && state_ != sckConnected) raiseWrongProtocolOrState(source);
  return fetch(data, varType, maxLen, Peek::Yes, source);
}

std::int32_t CEventSocket::fetch(Variant& data, Variant& varType, Variant& maxLen, Peek peek,
                                 TextView source) {
  if (isUdp() && state_ != sckOpen) raiseWrongProtocolOrState(source);
  if (isUdp() && PendingBytes() == 0) return 0;
  if (!maxLen.isMissing()) {
    if (!isNumeric(maxLen)) maxLen = available();
    if (toDouble(maxLen) < 0) raiseArgumentOutOfRange(source);
  }
  return RecvData(data, peek, varType, maxLen);
}

/// The type that the target has already counts more than the one that is asked for.
std::int32_t CEventSocket::RecvData(Variant& data, Peek peek, Variant& varType,
                                    const Variant& maxLen) {
  VariantType type = VariantType::ByteArray;
  if (data.type() != VariantType::Empty) {
    type = data.type();
    if (!varType.isMissing()) varType = static_cast<std::int32_t>(type);
  } else if (!varType.isMissing()) {
    type = static_cast<VariantType>(toLong(varType));
  }
  return withMemory(u"CEventSocket.RecvData", [&] {
    return holdsMany(type) ? fetchBytes(data, type, peek, maxLen) : fetchNumber(data, type, peek);
  });
}

std::int32_t CEventSocket::fetchBytes(Variant& data, VariantType type, Peek peek,
                                      const Variant& maxLen) {
  constexpr TextView source = u"CEventSocket.RecvData";
  const std::int32_t atHand = available();
  const std::int32_t amount = amountToFetch(atHand, maxLen);
  if (amount == 0) {
    data = Bytes();
    if (maxLen.isMissing() || !isUdp()) return 0;
    ClearPendingDatagram();
    raiseWinsockError(winsock::error::messageTooLong, source);
  }
  std::int32_t error = 0;
  Bytes bytes = ReadBytes(amount, peek, error);
  if (type == VariantType::String) {
    data = module_.services().kernel.fromAnsi(charactersOf(bytes));
  } else {
    storeBytes(data, std::move(bytes));
  }
  if (error != 0) raiseWinsockError(error, source);
  return amount;
}

/// The memory of the bytes that were there serves for those that come next: who fetches into the
/// same variant again and again needs no more.
void CEventSocket::storeBytes(Variant& data, std::vector<std::uint8_t> bytes) {
  Bytes former;
  if (data.get<Bytes>() != nullptr) former = data.take<Bytes>();
  data = std::move(bytes);
  module_.giveBack(std::move(former));
}

std::int32_t CEventSocket::fetchNumber(Variant& data, VariantType type, Peek peek) {
  constexpr TextView source = u"CEventSocket.RecvData";
  const auto size = wireSize(type);
  if (!size) raiseUnsupportedVariant(source);
  if (available() < *size) return 0;
  std::int32_t error = 0;
  data = fromWire(type, ReadBytes(*size, peek, error));
  if (error != 0) raiseWinsockError(error, source);
  return *size;
}

std::vector<std::uint8_t> CEventSocket::ReadBytes(std::int32_t count, Peek peek,
                                                  std::int32_t& error) {
  const auto size = static_cast<std::size_t>(count);
  if (isUdp()) {
    Bytes bytes(size);
    SocketAddress sender;
    const std::int32_t flags = peek == Peek::Yes ? winsock::peek : 0;
    if (sockets_.recvfrom(socketHandle_, bytes, flags, sender) == winsock::failed) {
      error = lastError();
    }
    ReadAddressRecord(sender, remotePort_, remoteHostIp_);
    return bytes;
  }
  module_.trace().line(u"OK Bytes obtained from buffer: ", count);
  if (peek == Peek::No) return recvBuffer_.take(size);
  const auto first = recvBuffer_.front(size);
  return Bytes(first.begin(), first.end());
}

}  // namespace zev
