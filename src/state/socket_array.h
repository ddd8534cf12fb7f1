#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

#include "socket/socket_control.h"

namespace zev {

struct Program;

/// A control array of sockets on a form. Element 0 stands on the form at design time and lives as
/// long as the form is loaded; the others come and go at run time. Events carry the index of their
/// element first; it is all that tells elements apart.
///
/// On a machine without working sockets the array stands without effect: element 0 has no control
/// in it.
class SocketArray {
 public:
  SocketArray() = default;
  SocketArray(const SocketArray&) = delete;
  SocketArray& operator=(const SocketArray&) = delete;

  /// Event procedures of the form.
  std::function<void(std::int32_t Index)> WS_Connect;
  std::function<void(std::int32_t Index, std::int32_t bytesTotal)> WS_DataArrival;
  std::function<void(std::int32_t Index, const SocketErrorArguments& arguments)> WS_Error;

  /// What its controls are made with; borrowed. Before anything else.
  void serve(modEventSocket& module) { module_ = &module; }

  /// The form is loaded: element 0 gets its control, with the properties as the form stores them.
  void formLoaded(const PropertyBag& stored = {});
  /// The form is gone, and all elements with it.
  void formUnloaded() { elements_.clear(); }

  /// The highest index.
  std::int32_t UBound() const;
  /// Brings an element in. Error 360 if it is there, and what its making raises.
  void Load(std::int32_t index);
  /// Takes an element out. Error 362 for element 0, error 340 for one that is not there.
  void Unload(std::int32_t index);
  /// Error 340 for an element that is not there.
  Socket& operator()(std::int32_t index) const;

 private:
  std::unique_ptr<Socket> make(std::int32_t index);

  modEventSocket* module_ = nullptr;
  std::map<std::int32_t, std::unique_ptr<Socket>> elements_;
};

/// What the form does as the host of its sockets. Nothing of the component happens unless messages
/// are dispatched, so that whoever waits has to let events run.

/// Brings an element of the array in, lets events run and pauses for 300 milliseconds.
void loadSocket(Program& program, std::int32_t index);

/// Uses an element again: closes what it has, then connects to a port (1 to 65535) of a host.
void connectSocket(Socket& socket, const Text& host, std::int32_t port);

/// Lets events run until an element of the array is connected, for `milliseconds` at most. True
/// if it is.
bool waitUntilConnected(Program& program, std::int32_t index, std::uint32_t milliseconds);

}  // namespace zev
