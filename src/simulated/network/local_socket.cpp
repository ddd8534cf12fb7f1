#include "simulated/network/local_socket.h"

#include <algorithm>

namespace zev::simulated {
namespace {

constexpr std::int32_t everyEvent = -1;

}  // namespace

LocalSocket::LocalSocket(SimulatedNetwork& network, MessageQueue& queue, Transport transport,
                         std::int32_t handle)
    : network_(network),
      queue_(queue),
      transport_(transport),
      handle_(handle),
      sendBuffer_(network.settings.sendBuffer),
      receiveBuffer_(network.settings.receiveBuffer),
      maximumMessage_(network.settings.maximumMessage) {}

LocalSocket::~LocalSocket() {
  if (taken_.port != 0) network_.giveBackPort(transport_, taken_);
}

// ---- the address

std::int32_t LocalSocket::bind(Endpoint wanted) {
  if (isBound()) return winsock::error::invalidArgument;
  if (wanted.address != anyAddress && !network_.isOwn(wanted.address)) {
    return winsock::error::addressNotAvailable;
  }
  const std::int32_t error = network_.takePort(transport_, wanted, *this);
  if (error == 0) local_ = taken_ = wanted;
  return error;
}

std::int32_t LocalSocket::bindFor(const Endpoint& to) {
  if (isBound()) return 0;
  return bind({transport_ == Transport::Stream ? network_.senderFor(to.address) : anyAddress, 0});
}

std::int32_t LocalSocket::ownName(Endpoint& endpoint) const {
  if (!isBound()) return winsock::error::invalidArgument;
  endpoint = local_;
  return 0;
}

// ---- the selection

void LocalSocket::select(const Selection& selection) {
  selection_ = selection;
  armed_ = everyEvent;
  blocks_ = false;
  examine();
}

void LocalSocket::post(std::int32_t event, std::int32_t error) {
  if (!isArmed(event)) return;
  armed_ &= ~event;
  queue_.post({selection_.window, selection_.message, static_cast<std::uintptr_t>(handle_),
               winsock::reply(error, static_cast<std::uint32_t>(event))});
}

// ---- options

std::int32_t LocalSocket::getOption(std::int32_t option, std::int32_t& value) const {
  const bool datagrams = transport_ == Transport::Datagram;
  if (option == winsock::sendBufferSize) {
    value = static_cast<std::int32_t>(sendBuffer_);
  } else if (option == winsock::receiveBufferSize) {
    value = static_cast<std::int32_t>(receiveBuffer_);
  } else if (option == winsock::maximumMessage && datagrams) {
    value = static_cast<std::int32_t>(maximumMessage_);
  } else if (option == winsock::broadcast && datagrams) {
    value = broadcasts_ ? 1 : 0;
  } else {
    return winsock::error::badProtocolOption;
  }
  return 0;
}

std::int32_t LocalSocket::setOption(std::int32_t option, std::int32_t value) {
  const auto size = static_cast<std::size_t>(std::max(value, 0));
  if (option == winsock::sendBufferSize) {
    sendBuffer_ = size;
  } else if (option == winsock::receiveBufferSize) {
    receiveBuffer_ = size;
  } else if (option == winsock::broadcast && transport_ == Transport::Datagram) {
    broadcasts_ = value != 0;
  } else {
    return winsock::error::badProtocolOption;
  }
  return 0;
}

}  // namespace zev::simulated
