#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/kernel.h"
#include "platform/message_windows.h"
#include "platform/sockets.h"
#include "runtime/text.h"

namespace zev::socket_bench {

/// The calls that went through a set of proxies, and which of them are to fail. One for all proxies
/// of a test, so that its lines show the order of calls across the services.
class Calls {
 public:
  static constexpr int all = 0;

  /// From now on calls of that name fail with that error without being made: all of them, or the
  /// `nth` from here on (1: the next one) alone. Asking anew takes the place of what was asked
  /// before. The error is what WSAGetLastError tells behind it, or the result itself where a call
  /// gives its error; calls of windows and kernel have none.
  void fail(std::string_view name, std::int32_t error = 0, int nth = all) {
    Call& call = calls_[std::string(name)];
    call.failure = Failure{error, nth == all ? all : call.made + nth};
  }
  /// Calls of that name are made again.
  void heal(std::string_view name) { calls_[std::string(name)].failure.reset(); }

  /// Calls of that name so far, those that were made to fail included.
  int count(std::string_view name) const {
    const auto found = calls_.find(name);
    return found == calls_.end() ? 0 : found->second.made;
  }
  /// One line a call in their order: its name and those arguments that a test can know, as in
  /// "connect 97 192.168.1.20:80".
  const std::vector<std::string>& lines() const { return lines_; }
  /// The lines that begin with one of those names.
  std::vector<std::string> linesOf(std::initializer_list<std::string_view> names) const {
    std::vector<std::string> found;
    for (const std::string& line : lines_) {
      const std::string_view name = std::string_view(line).substr(0, line.find(' '));
      if (std::find(names.begin(), names.end(), name) != names.end()) found.push_back(line);
    }
    return found;
  }
  /// Forgets the lines; the counts and the failures stay.
  void clearLines() { lines_.clear(); }

  // ---- for proxies

  /// Notes a call. The error that it is to fail with, if it is to fail.
  template <typename... Arguments>
  std::optional<std::int32_t> note(std::string_view name, const Arguments&... arguments) {
    std::string line(name);
    ((line += ' ', line += written(arguments)), ...);
    lines_.push_back(std::move(line));
    Call& call = calls_[std::string(name)];
    ++call.made;
    const bool fails = call.failure && (call.failure->nth == all || call.failure->nth == call.made);
    return fails ? std::optional(call.failure->error) : std::nullopt;
  }

 private:
  struct Failure {
    std::int32_t error;
    int nth;  ///< counted from the first call of all
  };
  struct Call {
    int made = 0;
    std::optional<Failure> failure;
  };

  template <typename Number>
  requires std::is_integral_v<Number>
  static std::string written(Number number) { return std::to_string(number); }
  static std::string written(std::string_view text) { return std::string(text); }
  static std::string written(TextView text) { return toUtf8(text); }
  static std::string written(const SocketAddress& address) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&address.address);
    const auto* const port = reinterpret_cast<const std::uint8_t*>(&address.port);
    std::string text = address.family == winsock::internet
                           ? std::string()
                           : "family " + std::to_string(address.family) + " ";
    for (int i = 0; i < 4; ++i) text += (i == 0 ? "" : ".") + std::to_string(bytes[i]);
    return text + ':' + std::to_string(port[0] * 256 + port[1]);
  }

  std::map<std::string, Call, std::less<>> calls_;
  std::vector<std::string> lines_;
};

/// Sockets that pass every call on, unless it is to fail. The error of a failure that was made here
/// stays the last one until a call that was passed on fails. WSAGetLastError itself is passed on
/// without a line.
class FailingSockets final : public Sockets {
 public:
  /// Borrows both.
  FailingSockets(Sockets& next, Calls& calls) : next_(next), calls_(calls) {}

  std::int32_t WSAStartup(std::uint16_t version) override {
    if (const auto error = calls_.note("WSAStartup", version)) return *error;
    return next_.WSAStartup(version);
  }
  std::int32_t WSACleanup() override {
    return made([&] { return next_.WSACleanup(); }, "WSACleanup");
  }
  std::int32_t WSAGetLastError() override {
    return lastError_ ? *lastError_ : next_.WSAGetLastError();
  }
  std::int32_t WSAAsyncSelect(std::int32_t socket, WindowHandle window, std::uint32_t message,
                              std::int32_t mask) override {
    return made([&] { return next_.WSAAsyncSelect(socket, window, message, mask); },
                "WSAAsyncSelect", socket, window, message, mask);
  }
  std::int32_t WSAAsyncGetHostByName(WindowHandle window, std::uint32_t message, TextView name,
                                     void* buffer, std::int32_t length) override {
    return made([&] { return next_.WSAAsyncGetHostByName(window, message, name, buffer, length); },
                Refusal<std::int32_t>{0}, "WSAAsyncGetHostByName", window, message, name, length);
  }
  std::int32_t WSACancelAsyncRequest(std::int32_t lookUp) override {
    return made([&] { return next_.WSACancelAsyncRequest(lookUp); }, "WSACancelAsyncRequest",
                lookUp);
  }
  std::int32_t socket(std::int32_t family, std::int32_t type, std::int32_t protocol) override {
    return made([&] { return next_.socket(family, type, protocol); }, "socket", family, type,
                protocol);
  }
  std::int32_t closesocket(std::int32_t socket) override {
    return made([&] { return next_.closesocket(socket); }, "closesocket", socket);
  }
  std::int32_t connect(std::int32_t socket, const SocketAddress& address) override {
    return made([&] { return next_.connect(socket, address); }, "connect", socket, address);
  }
  std::int32_t bind(std::int32_t socket, const SocketAddress& address) override {
    return made([&] { return next_.bind(socket, address); }, "bind", socket, address);
  }
  std::int32_t listen(std::int32_t socket, std::int32_t backlog) override {
    return made([&] { return next_.listen(socket, backlog); }, "listen", socket, backlog);
  }
  std::int32_t accept(std::int32_t socket, SocketAddress& peer) override {
    return made([&] { return next_.accept(socket, peer); }, "accept", socket);
  }
  std::int32_t getpeername(std::int32_t socket, SocketAddress& address) override {
    const std::int32_t result =
        made([&] { return next_.getpeername(socket, address); }, "getpeername", socket);
    if (result != winsock::failed && peer_) address = *peer_;
    return result;
  }
  /// From now on every peer has that address, as behind something that hands connections on.
  void setPeer(const SocketAddress& address) { peer_ = address; }
  std::int32_t getsockname(std::int32_t socket, SocketAddress& address) override {
    return made([&] { return next_.getsockname(socket, address); }, "getsockname", socket);
  }
  std::int32_t getsockopt(std::int32_t socket, std::int32_t level, std::int32_t option,
                          std::int32_t& value) override {
    return made([&] { return next_.getsockopt(socket, level, option, value); }, "getsockopt",
                socket, level, option);
  }
  std::int32_t setsockopt(std::int32_t socket, std::int32_t level, std::int32_t option,
                          std::int32_t value) override {
    return made([&] { return next_.setsockopt(socket, level, option, value); }, "setsockopt",
                socket, level, option, value);
  }
  std::int32_t ioctlsocket(std::int32_t socket, std::int32_t command,
                           std::int32_t& argument) override {
    return made([&] { return next_.ioctlsocket(socket, command, argument); }, "ioctlsocket", socket,
                command);
  }
  /// The line tells the bytes' count, and so do those of the following three.
  std::int32_t send(std::int32_t socket, std::span<const std::uint8_t> bytes,
                    std::int32_t flags) override {
    return made([&] { return next_.send(socket, bytes, flags); }, "send", socket, bytes.size(),
                flags);
  }
  std::int32_t sendto(std::int32_t socket, std::span<const std::uint8_t> bytes, std::int32_t flags,
                      const SocketAddress& receiver) override {
    return made([&] { return next_.sendto(socket, bytes, flags, receiver); }, "sendto", socket,
                bytes.size(), flags, receiver);
  }
  std::int32_t recv(std::int32_t socket, std::span<std::uint8_t> bytes,
                    std::int32_t flags) override {
    return made([&] { return next_.recv(socket, bytes, flags); }, "recv", socket, bytes.size(),
                flags);
  }
  std::int32_t recvfrom(std::int32_t socket, std::span<std::uint8_t> bytes, std::int32_t flags,
                        SocketAddress& sender) override {
    return made([&] { return next_.recvfrom(socket, bytes, flags, sender); }, "recvfrom", socket,
                bytes.size(), flags);
  }
  std::int32_t gethostname(char* buffer, std::int32_t size) override {
    return made([&] { return next_.gethostname(buffer, size); }, "gethostname", size);
  }
  const HostRecord* gethostbyname(TextView name) override {
    return made([&] { return next_.gethostbyname(name); }, Refusal<const HostRecord*>{nullptr},
                "gethostbyname", name);
  }
  std::int32_t inet_addr(TextView text) override {
    return made([&] { return next_.inet_addr(text); }, "inet_addr", text);
  }
  const char* inet_ntoa(std::int32_t address) override {
    return made([&] { return next_.inet_ntoa(address); }, Refusal<const char*>{nullptr},
                "inet_ntoa", address);
  }

 private:
  template <typename Result>
  struct Refusal {
    Result result;
  };

  template <typename Call, typename Result, typename... Arguments>
  Result made(const Call& call, Refusal<Result> refusal, const Arguments&... arguments) {
    if (const auto error = calls_.note(arguments...)) {
      lastError_ = *error;
      return refusal.result;
    }
    const Result result = call();
    if (result == refusal.result) lastError_.reset();
    return result;
  }
  template <typename Call, typename... Arguments>
  std::int32_t made(const Call& call, const char* name, const Arguments&... arguments) {
    return made(call, Refusal<std::int32_t>{winsock::failed}, name, arguments...);
  }

  Sockets& next_;
  Calls& calls_;
  std::optional<std::int32_t> lastError_;  ///< of a failure that was made here
  std::optional<SocketAddress> peer_;
};

/// Windows that pass every call on, unless it is to fail. What is entered without a call of the
/// program, such as posted messages, does not come through here.
class FailingWindows final : public MessageWindows {
 public:
  /// Borrows both.
  FailingWindows(MessageWindows& next, Calls& calls) : next_(next), calls_(calls) {}

  WindowHandle CreateWindowExA(TextView className, TextView caption) override {
    if (calls_.note("CreateWindowExA", className, caption)) return 0;
    return next_.CreateWindowExA(className, caption);
  }
  bool DestroyWindow(WindowHandle window) override {
    if (calls_.note("DestroyWindow", window)) return false;
    return next_.DestroyWindow(window);
  }
  std::uintptr_t GetWindowLongA(WindowHandle window, std::int32_t index) override {
    if (calls_.note("GetWindowLongA", window, index)) return 0;
    return next_.GetWindowLongA(window, index);
  }
  std::uintptr_t SetWindowLongA(WindowHandle window, std::int32_t index,
                                std::uintptr_t procedure) override {
    if (calls_.note("SetWindowLongA", window, index, procedure)) return 0;
    return next_.SetWindowLongA(window, index, procedure);
  }
  std::intptr_t CallWindowProcA(std::uintptr_t procedure, const WindowMessage& message) override {
    if (calls_.note("CallWindowProcA", procedure, message.window, message.message, message.wParam,
                    message.lParam)) {
      return 0;
    }
    return next_.CallWindowProcA(procedure, message);
  }
  bool entersMachineCode() const override { return next_.entersMachineCode(); }
  void standIn(std::uintptr_t address, MessageRoutine* routine) override {
    next_.standIn(address, routine);
  }
  void dropBeforeDispatch(WindowHandle window,
                          std::function<bool(const WindowMessage&)> drops) override {
    next_.dropBeforeDispatch(window, std::move(drops));
  }

 private:
  MessageWindows& next_;
  Calls& calls_;
};

/// A kernel that passes every call on, unless it is to fail. Addresses and blocks are not told in
/// the lines.
class FailingKernel final : public Kernel {
 public:
  /// Borrows both.
  FailingKernel(Kernel& next, Calls& calls) : next_(next), calls_(calls) {}

  std::uint8_t* VirtualAlloc(std::size_t size, std::uint32_t type,
                             std::uint32_t protection) override {
    if (calls_.note("VirtualAlloc", size, type, protection)) return nullptr;
    return next_.VirtualAlloc(size, type, protection);
  }
  bool VirtualLock(std::uint8_t* address, std::size_t size) override {
    return !calls_.note("VirtualLock", size) && next_.VirtualLock(address, size);
  }
  bool VirtualFree(std::uint8_t* address, std::size_t size, std::uint32_t type) override {
    return !calls_.note("VirtualFree", size, type) && next_.VirtualFree(address, size, type);
  }
  GlobalHandle GlobalAlloc(std::uint32_t flags, std::size_t size) override {
    if (calls_.note("GlobalAlloc", flags, size)) return 0;
    return next_.GlobalAlloc(flags, size);
  }
  void* GlobalLock(GlobalHandle block) override {
    if (calls_.note("GlobalLock")) return nullptr;
    return next_.GlobalLock(block);
  }
  bool GlobalUnlock(GlobalHandle block) override {
    return !calls_.note("GlobalUnlock") && next_.GlobalUnlock(block);
  }
  /// The line tells whether there is a block: "GlobalFree 0" or "GlobalFree block".
  GlobalHandle GlobalFree(GlobalHandle block) override {
    if (calls_.note("GlobalFree", block == 0 ? "0" : "block")) return block;
    return next_.GlobalFree(block);
  }
  std::uintptr_t ProcAddress(std::string_view library, std::string_view function) override {
    if (calls_.note("ProcAddress", library, function)) return 0;
    const auto put = functions_.find(std::string(library) + '!' + std::string(function));
    if (put != functions_.end()) return put->second;
    return next_.ProcAddress(library, function);
  }
  /// Puts a function of a library somewhere.
  void setProcAddress(const std::string& library, const std::string& function,
                      std::uintptr_t address) {
    functions_[library + '!' + function] = address;
  }

  std::string toAnsi(TextView text) override { return next_.toAnsi(text); }
  Text fromAnsi(std::string_view bytes) override { return next_.fromAnsi(bytes); }

 private:
  Kernel& next_;
  Calls& calls_;
  std::map<std::string, std::uintptr_t> functions_;
};

/// The three proxies around a machine's services, with one list of calls.
struct FailingServices {
  FailingServices(Sockets& nextSockets, MessageWindows& nextWindows, Kernel& nextKernel)
      : sockets(nextSockets, calls), windows(nextWindows, calls), kernel(nextKernel, calls) {}

  Calls calls;
  FailingSockets sockets;
  FailingWindows windows;
  FailingKernel kernel;
};

}  // namespace zev::socket_bench
