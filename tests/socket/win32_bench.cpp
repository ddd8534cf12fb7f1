#include <algorithm>
#include <set>

#include "socket/bench.h"
#include "win32/kernel.h"
#include "win32/message_windows.h"
#include "win32/sockets.h"
#include "win32/windows_api.h"

namespace zev::socket_bench {
namespace {

/// The system's sockets, which it does not count itself.
class CountedSockets final : public win32::Win32Sockets {
 public:
  std::int32_t WSAStartup(std::uint16_t versionWanted) override {
    const std::int32_t error = Win32Sockets::WSAStartup(versionWanted);
    if (error == 0) ++starts_;
    return error;
  }

  std::int32_t WSACleanup() override {
    const std::int32_t answer = Win32Sockets::WSACleanup();
    if (answer == 0 && --starts_ == 0) open_.clear();
    return answer;
  }

  std::int32_t socket(std::int32_t family, std::int32_t type, std::int32_t protocol) override {
    return counted(Win32Sockets::socket(family, type, protocol));
  }

  std::int32_t accept(std::int32_t socket, SocketAddress& peer) override {
    return counted(Win32Sockets::accept(socket, peer));
  }

  std::int32_t closesocket(std::int32_t socket) override {
    const std::int32_t answer = Win32Sockets::closesocket(socket);
    if (answer == 0) open_.erase(socket);
    return answer;
  }

  int open() const { return static_cast<int>(open_.size()); }
  void setFull(bool full) { most_ = full ? open_.size() : unbounded; }

 protected:
  /// The system's own bound is far away.
  std::int32_t takeConnection(std::int32_t socket, SocketAddress& peer,
                              std::int32_t& error) override {
    if (open_.size() < most_) return Win32Sockets::takeConnection(socket, peer, error);
    error = winsock::error::tooManyFiles;
    return winsock::noSocket;
  }

 private:
  static constexpr std::size_t unbounded = static_cast<std::size_t>(-1);
  std::int32_t counted(std::int32_t socket) {
    if (socket != winsock::noSocket) open_.insert(socket);
    return socket;
  }

  std::set<std::int32_t> open_;
  std::size_t most_ = unbounded;
  int starts_ = 0;
};

bool dispatchOne() {
  MSG message;
  if (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) == FALSE) return false;
  DispatchMessageA(&message);
  return true;
}

class Win32Bench final : public Bench {
 public:
  std::string name() const override {
    const HMODULE system = GetModuleHandleA("ntdll.dll");
    return GetProcAddress(system, "wine_get_version") == nullptr ? "win32" : "wine";
  }
  Sockets& sockets() override { return sockets_; }
  MessageWindows& windows() override { return windows_; }
  Kernel& kernel() override { return kernel_; }

  /// A wait also ends with messages that are sent, which are no message to dispatch.
  bool pump(int milliseconds) override {
    const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(std::max(milliseconds, 0));
    while (!dispatchOne()) {
      const ULONGLONG now = GetTickCount64();
      if (now >= end) return false;
      MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(end - now), QS_ALLINPUT);
    }
    return true;
  }

  void post(const WindowMessage& message) override {
    PostMessageA(reinterpret_cast<HWND>(message.window), message.message, message.wParam,
                 message.lParam);
  }

  void setFull(bool full) override { sockets_.setFull(full); }
  bool isExecutable(const std::uint8_t* address) override {
    MEMORY_BASIC_INFORMATION page{};
    VirtualQuery(address, &page, sizeof page);
    return page.Protect == PAGE_EXECUTE_READWRITE;
  }
  int openSockets() override { return sockets_.open(); }
  int openWindows() override { return static_cast<int>(windows_.openWindows()); }

 private:
  win32::Win32Kernel kernel_;
  win32::Win32MessageWindows windows_;
  CountedSockets sockets_;
};

}  // namespace

std::unique_ptr<Bench> makeBench() { return std::make_unique<Win32Bench>(); }

}  // namespace zev::socket_bench
