#include "socket/event_socket_module.h"

#include <string_view>
#include <utility>

#include "socket/event_socket.h"

namespace zev {
namespace {

/// The notifications that every socket is selected for: 59.
constexpr std::int32_t eventMask =
    winsock::fdRead | winsock::fdWrite | winsock::fdAccept | winsock::fdConnect | winsock::fdClose;
static_assert(eventMask == 59);

Text socketKey(std::int32_t socket) { return join(u"S", decimal(socket)); }

}  // namespace

modEventSocket::modEventSocket(SocketServices services,
                               std::function<void(std::exception_ptr)> escape)
    : services_(services),
      instances_(escape ? std::move(escape)
                        : [this](std::exception_ptr error) { if (!escaped_) escaped_ = std::move(error); }),
      thunk_(services_.kernel, services_.windows, instances_, trace_) {}

void modEventSocket::rethrowEscaped() {
  if (escaped_) std::rethrow_exception(std::exchange(escaped_, nullptr));
}

// ---- the service

std::int32_t modEventSocket::InitiateProcesses() {
  ++instanceCount_;
  if (serviceStarted_) return 0;
  thunk_.BuildThunk(Thunk::InDesignEnvironment());
  serviceStarted_ = true;
  const std::int32_t result = StartWinsock();
  if (result != 0) {
    trace_.line(u"ERROR trying to initiate winsock service");
    raiseWinsockError(result, u"modEventSocket.InitiateProcesses");
  }
  trace_.line(u"OK Winsock service initiated");
  return 0;
}

std::int32_t modEventSocket::FinalizeProcesses() {
  --instanceCount_;
  if (!serviceStarted_ || instanceCount_ != 0) return 0;
  if (StopWinsock() == winsock::failed) {
    raiseWinsockError(services_.sockets.WSAGetLastError(), u"modEventSocket.FinalizeProcesses");
  }
  trace_.line(u"OK Winsock service finalized");
  thunk_.ReleaseThunk();
  serviceStarted_ = false;
  return 0;
}

std::int32_t modEventSocket::StartWinsock() {
  return services_.sockets.WSAStartup(winsock::version);
}

std::int32_t modEventSocket::StopWinsock() { return services_.sockets.WSACleanup(); }

void modEventSocket::instanceEnded(InstancePointer instance) {
  instances_.ended(instance,
                   thunk_.resolveTable().holds(instance) || thunk_.socketTable().holds(instance));
}

/// Small memory stays here for the next call, large memory goes to whichever socket needs it next.
void modEventSocket::giveBack(std::vector<std::uint8_t> memory) {
  constexpr std::size_t worthKeeping = std::size_t{1} << 20;
  if (memory.capacity() > worthKeeping) {
    spareMemory_.give(memory);
  } else if (memory.capacity() > scratch_.capacity()) {
    scratch_ = std::move(memory);
  }
}

// ---- the window

std::int32_t modEventSocket::CreateWinsockMessageWindow() {
  window_ =
      static_cast<std::int32_t>(services_.windows.CreateWindowExA(u"STATIC", u"SOCKET_WINDOW"));
  if (window_ <= 0) return socket_error::outOfMemory;
  trace_.line(u"OK Created winsock message window ", window_);
  return 0;
}

void modEventSocket::DestroyWinsockMessageWindow() {
  if (window_ == 0) {
    trace_.line(u"WARNING lngWindowHandle is ZERO");
    return;
  }
  if (!services_.windows.DestroyWindow(static_cast<std::uint32_t>(window_))) {
    raiseOutOfMemory(u"modEventSocket.DestroyWinsockMessageWindow");
  }
  trace_.line(u"OK Destroyed winsock message window ", window_);
  window_ = 0;
}

// ---- sockets

/// The routing learns of the socket before its events are asked for: the first may be posted within
/// that very call.
bool modEventSocket::RegisterSocket(std::int32_t socket, InstancePointer instance,
                                    bool wantEvents) {
  if (!socketCollection_) {
    socketCollection_.emplace();
    trace_.line(u"OK Created socket collection");
    if (CreateWinsockMessageWindow() != 0) raiseOutOfMemory(u"modEventSocket.RegisterSocket");
    thunk_.SubclassMessageWindow(static_cast<std::uint32_t>(window_));
  }
  thunk_.AddSocketEntry(socket, instance);
  if (wantEvents) requestEvents(socket);
  socketCollection_->Add(instance, socketKey(socket));
  return true;
}

void modEventSocket::requestEvents(std::int32_t socket) {
  const std::int32_t result = services_.sockets.WSAAsyncSelect(
      socket, static_cast<std::uint32_t>(window_), WM_SOCKET_EVENT, eventMask);
  if (result != winsock::failed) {
    trace_.line(u"OK Registered events from socket ", socket);
    return;
  }
  const std::int32_t reason = services_.sockets.WSAGetLastError();
  trace_.line(u"ERROR trying to register events from socket ", socket);
  raiseWinsockError(reason, u"modEventSocket.RegisterSocket");
}

/// The routing forgets the socket first: what is on its way reaches nobody from here on.
void modEventSocket::UnregisterSocket(std::int32_t socket) {
  thunk_.DeleteSocketEntry(socket);
  if (IsSocketRegistered(socket)) socketCollection_->Remove(socketKey(socket));
  if (!socketCollection_ || socketCollection_->Count() == 0) dropSocketCollection();
}

/// Without its procedure the window has none at all, so it is destroyed right after.
void modEventSocket::dropSocketCollection() {
  if (socketCollection_) trace_.line(u"OK Destroyed socket collection");
  socketCollection_.reset();
  thunk_.UnsubclassMessageWindow();
  DestroyWinsockMessageWindow();
}

bool modEventSocket::IsSocketRegistered(std::int32_t socket) const {
  return socketCollection_ && socketCollection_->contains(socketKey(socket));
}

void modEventSocket::ReplaceSocketObject(std::int32_t socket, InstancePointer instance) {
  thunk_.ReplaceSocketEntry(socket, instance);
}

std::optional<std::size_t> modEventSocket::SocketCollectionCount() const {
  if (!socketCollection_) return std::nullopt;
  return socketCollection_->Count();
}

// ---- look-ups

std::int32_t modEventSocket::ResolveHostAsync(TextView host, void* buffer,
                                              InstancePointer instance) {
  const std::int32_t lookUp = services_.sockets.WSAAsyncGetHostByName(
      static_cast<std::uint32_t>(window_), WM_RESOLVE_DONE, host, buffer, resolveBufferSize);
  if (lookUp != 0) thunk_.AddResolveEntry(lookUp, instance);
  return lookUp;
}

void modEventSocket::UnregisterResolution(std::int32_t lookUp) {
  thunk_.DeleteResolveEntry(lookUp);
}

// ---- accepted connections

void modEventSocket::RegisterAccept(std::int32_t socket) {
  if (!acceptCollection_) {
    acceptCollection_.emplace();
    trace_.line(u"OK Created accept collection");
  }
  const auto holding = CEventSocket::create(*this);
  std::int32_t request = socket;
  holding->Accept(request);
  acceptCollection_->Add(holding, socketKey(socket));
}

bool modEventSocket::IsAcceptRegistered(std::int32_t socket) const {
  return acceptCollection_ && acceptCollection_->contains(socketKey(socket));
}

std::shared_ptr<CEventSocket> modEventSocket::GetAcceptObject(std::int32_t socket) {
  if (!acceptCollection_) throw RuntimeError(ErrorNumber::ObjectVariableNotSet);
  return acceptCollection_->Item(socketKey(socket));
}

/// The instance ends behind the collection, which its end may look at.
void modEventSocket::UnregisterAccept(std::int32_t socket) {
  if (!acceptCollection_) throw RuntimeError(ErrorNumber::ObjectVariableNotSet);
  const std::shared_ptr<CEventSocket> holding = acceptCollection_->Item(socketKey(socket));
  acceptCollection_->Remove(socketKey(socket));
  if (acceptCollection_->Count() != 0) return;
  acceptCollection_.reset();
  trace_.line(u"OK Destroyed accept collection");
}

std::optional<std::size_t> modEventSocket::AcceptCollectionCount() const {
  if (!acceptCollection_) return std::nullopt;
  return acceptCollection_->Count();
}

Text modEventSocket::StringFromPointer(const char* address) {
  return address == nullptr ? Text() : services_.kernel.fromAnsi(std::string_view(address));
}

}  // namespace zev
