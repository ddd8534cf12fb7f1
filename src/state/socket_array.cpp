#include "state/socket_array.h"

#include "runtime/error.h"
#include "state/program.h"

namespace zev {

void SocketArray::formLoaded(const PropertyBag& stored) {
  if (module_ == nullptr) return;
  ignoringErrors([&] {
    auto control = make(0);
    control->UserControl_ReadProperties(stored);
    elements_[0] = std::move(control);
  });
}

std::int32_t SocketArray::UBound() const {
  return elements_.empty() ? 0 : elements_.rbegin()->first;
}

void SocketArray::Load(std::int32_t index) {
  if (module_ == nullptr) throw RuntimeError(ErrorNumber::ObjectVariableNotSet);
  if (index == 0 || elements_.count(index) != 0) {
    throw RuntimeError(ErrorNumber::ObjectAlreadyLoaded);
  }
  elements_[index] = make(index);
}

void SocketArray::Unload(std::int32_t index) {
  if (index == 0) throw RuntimeError(ErrorNumber::CannotUnloadDesignTimeControl);
  const auto element = elements_.find(index);
  if (element == elements_.end()) throw RuntimeError(ErrorNumber::NoSuchControlArrayElement);
  elements_.erase(element);
}

Socket& SocketArray::operator()(std::int32_t index) const {
  const auto element = elements_.find(index);
  if (element == elements_.end()) throw RuntimeError(ErrorNumber::NoSuchControlArrayElement);
  return *element->second;
}

/// Each procedure is copied before it runs: it may unload the element.
std::unique_ptr<Socket> SocketArray::make(std::int32_t index) {
  auto control = std::make_unique<Socket>(*module_);
  control->events.Connect = [this, index] {
    if (const auto procedure = WS_Connect) procedure(index);
  };
  control->events.DataArrival = [this, index](std::int32_t bytesTotal) {
    if (const auto procedure = WS_DataArrival) procedure(index, bytesTotal);
  };
  control->events.Error = [this, index](const SocketErrorArguments& arguments) {
    if (const auto procedure = WS_Error) procedure(index, arguments);
  };
  return control;
}

// ---- the form as the host of its sockets

namespace {

constexpr std::uint32_t pauseBehindLoad = 300;  ///< milliseconds

}  // namespace

void loadSocket(Program& program, std::int32_t index) {
  program.form1.WS.Load(index);
  program.DoEvents();
  program.platform.processes.Sleep(pauseBehindLoad);
}

void connectSocket(Socket& socket, const Text& host, std::int32_t port) {
  if (socket.State() != sckClosed) socket.CloseSck();
  socket.RemoteHost(host);
  socket.RemotePort(port);
  socket.Connect();
}

bool waitUntilConnected(Program& program, std::int32_t index, std::uint32_t milliseconds) {
  const std::uint32_t start = program.platform.processes.GetTickCount();
  while (program.form1.WS(index).State() != sckConnected) {
    program.DoEvents();
    if (program.platform.processes.GetTickCount() - start >= milliseconds) break;
  }
  return program.form1.WS(index).State() == sckConnected;
}

}  // namespace zev
