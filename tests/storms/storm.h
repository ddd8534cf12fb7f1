#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "posix/machine.h"
#include "socket/event_socket.h"
#include "support/fake_dialogs.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZEV_STORM_SANITIZED 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define ZEV_STORM_SANITIZED 1
#endif

namespace zev::storms {

#if defined(ZEV_STORM_SANITIZED)
inline constexpr bool sanitized = true;
#else
inline constexpr bool sanitized = false;
#endif

using Bytes = std::vector<std::uint8_t>;

inline std::string_view textOf(const Bytes& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// What a stream carries: the byte at each place says where it is, so that one that is lost,
/// doubled or out of order shows.
inline std::uint8_t patternAt(std::uint64_t place) {
  return static_cast<std::uint8_t>((place * 2654435761u) >> 13 ^ place >> 7);
}

inline Bytes pattern(std::uint64_t from, std::size_t count) {
  Bytes bytes(count);
  for (std::size_t i = 0; i < count; ++i) bytes[i] = patternAt(from + i);
  return bytes;
}

/// A running sum over a stream that depends on the order of its bytes (FNV-1a).
class Checksum {
 public:
  void add(const Bytes& bytes) {
    for (const std::uint8_t each : bytes) value_ = (value_ ^ each) * 1099511628211u;
    count_ += bytes.size();
  }
  std::uint64_t count() const { return count_; }
  bool operator==(const Checksum&) const = default;

 private:
  std::uint64_t value_ = 14695981039346656037u;
  std::uint64_t count_ = 0;
};

inline std::ostream& operator<<(std::ostream& stream, const Checksum& sum) {
  return stream << sum.count() << " bytes";
}

/// Reads a stream of the pattern, in pieces, and holds each byte against its place.
class PatternReader {
 public:
  /// False as soon as a byte is not the one that belongs there.
  bool add(const Bytes& bytes) {
    for (const std::uint8_t each : bytes) right_ = right_ && each == patternAt(place_++);
    return right_;
  }
  std::uint64_t count() const { return place_; }
  bool right() const { return right_; }

 private:
  std::uint64_t place_ = 0;
  bool right_ = true;
};

/// Everything that has arrived, as bytes.
inline Bytes fetch(CEventSocket& socket) {
  Variant data;
  socket.GetData(data);
  return data.take<Bytes>();
}

/// Sockets of the component over the system's own network. Behind each storm nothing may be left,
/// neither in the component nor in the system.
class Storm : public testing::Test {
 protected:
  Storm() : descriptorsBefore_(descriptors()) {
    machine = std::make_unique<posix::Machine>();
    module = std::make_unique<modEventSocket>(
        SocketServices{machine->sockets(), machine->windows(), machine->kernel(), dialogs});
  }

  void TearDown() override {
    EXPECT_EQ(module->InstanceCount(), 0);
    EXPECT_FALSE(module->ServiceStarted());
    EXPECT_EQ(module->lngWindowHandle(), 0);
    EXPECT_EQ(module->thunk().ThunkBlock(), nullptr);
    EXPECT_EQ(module->thunk().resolveTable().count(), 0);
    EXPECT_EQ(module->thunk().socketTable().count(), 0);
    EXPECT_FALSE(module->SocketCollectionCount());
    EXPECT_FALSE(module->AcceptCollectionCount());
    EXPECT_EQ(module->instances().entries(), 0u);
    EXPECT_EQ(machine->sockets().openSockets(), 0u);
    EXPECT_EQ(machine->windows().openWindows(), 0u);
    EXPECT_EQ(machine->kernel().openPages(), 0u);
    EXPECT_NO_THROW(module->rethrowEscaped());
    EXPECT_TRUE(dialogs.boxes.empty());
    module.reset();
    machine.reset();
    EXPECT_EQ(descriptors(), descriptorsBefore_);
  }

  /// What the component holds while so many sockets of so many instances live, and no more: what
  /// leaks while the window stands would be forgotten with it.
  void expectInUse(int sockets, int instances) {
    EXPECT_EQ(module->thunk().socketTable().used(), sockets);
    EXPECT_EQ(module->thunk().resolveTable().used(), 0);
    EXPECT_EQ(module->SocketCollectionCount().value_or(0), static_cast<std::size_t>(sockets));
    EXPECT_FALSE(module->AcceptCollectionCount());
    EXPECT_EQ(module->instances().entries(), static_cast<std::size_t>(instances));
    EXPECT_EQ(module->InstanceCount(), instances);
    EXPECT_EQ(machine->sockets().openSockets(), static_cast<std::size_t>(sockets));
    EXPECT_EQ(machine->windows().openWindows(), sockets == 0 ? 0u : 1u);
    EXPECT_EQ(machine->kernel().openPages(), instances == 0 ? 0u : 1u);
  }

  /// Dispatches until it holds. False if for a minute nothing comes any more.
  bool pumpUntil(const std::function<bool()>& holds) {
    constexpr int minute = 60'000;
    while (!holds()) {
      if (!machine->dispatch(minute)) return false;
    }
    return true;
  }
  /// Dispatches until nothing comes any more.
  void settle() {
    while (machine->dispatch(100)) continue;
  }

  std::shared_ptr<CEventSocket> newSocket() { return CEventSocket::create(*module); }
  std::shared_ptr<CEventSocket> newListener() {
    auto socket = newSocket();
    socket->Bind(0, u"127.0.0.1");
    socket->Listen();
    return socket;
  }
  static std::uint16_t portOf(const CEventSocket& socket) {
    return static_cast<std::uint16_t>(socket.LocalPort());
  }

  test::FakeDialogs dialogs;
  std::unique_ptr<posix::Machine> machine;
  std::unique_ptr<modEventSocket> module;

 private:
  static std::ptrdiff_t descriptors() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return std::distance(begin(files), end(files));
  }

  std::ptrdiff_t descriptorsBefore_;
};

}  // namespace zev::storms
