#include "posix/machine.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <system_error>

#include "posix/on_the_machine.h"

namespace zev::posix {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class TheMachine : public OnTheMachine {
 protected:
  struct Pipe {
    Pipe() {
      int ends[2] = {};
      EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
      reading = Descriptor(ends[0]);
      writing = Descriptor(ends[1]);
    }
    Descriptor reading;
    Descriptor writing;
  };

  /// Copies a descriptor to a text until it ends.
  void copy(int descriptor, std::string& text, bool& ended) {
    machine->watch(descriptor, Watch::reading, [&text, &ended, descriptor, this] {
      char bytes[100];
      const ssize_t count = ::read(descriptor, bytes, sizeof bytes);
      if (count > 0) {
        text.append(bytes, static_cast<std::size_t>(count));
      } else {
        ended = true;
        machine->unwatch(descriptor);
      }
    });
  }
};

TEST_F(TheMachine, WaitsNoLongerThanItIsTold) {
  auto begin = Clock::now();
  EXPECT_FALSE(machine->dispatch(0));
  EXPECT_LT(Clock::now() - begin, 40ms);
  begin = Clock::now();
  EXPECT_FALSE(machine->dispatch(50));
  EXPECT_GE(Clock::now() - begin, 50ms);
  EXPECT_LT(Clock::now() - begin, 500ms);
}

TEST_F(TheMachine, WaitsForEverForWhatComes) {
  const std::int32_t socket = newDatagramSocket();
  const std::uint16_t port = portOf(socket);
  std::thread later([&] {
    std::this_thread::sleep_for(50ms);
    Peer::forDatagrams().sendTo(port, "x");
  });
  EXPECT_TRUE(machine->dispatch(-1));
  EXPECT_TRUE(wasTold(socket, ws::fdRead));
  later.join();
}

TEST_F(TheMachine, DispatchesOneMessageAtATime) {
  for (std::uintptr_t i = 0; i < 3; ++i) windows().post({window, 1, i, 0});
  for (std::size_t i = 1; i <= 3; ++i) {
    EXPECT_TRUE(machine->dispatch(0));
    EXPECT_EQ(others.size(), i);
  }
  EXPECT_FALSE(machine->dispatch(0));
}

TEST_F(TheMachine, HearsTheSocketsWhileWindowsTalk) {
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  peer->send("x");
  int dispatched = 0;
  while (!wasTold(socket, ws::fdRead) && dispatched < 5000) {
    windows().post({window, 1, 0, 0});
    EXPECT_TRUE(machine->dispatch(0));
    ++dispatched;
  }
  EXPECT_TRUE(wasTold(socket, ws::fdRead));
}

TEST_F(TheMachine, EndsItsWaitingAtASignal) {
  struct sigaction action {};
  action.sa_handler = [](int) {};
  struct sigaction before {};
  ::sigaction(SIGUSR1, &action, &before);
  const pthread_t self = ::pthread_self();
  std::thread later([&] {
    std::this_thread::sleep_for(50ms);
    ::pthread_kill(self, SIGUSR1);
  });
  EXPECT_FALSE(machine->dispatch(5000));
  later.join();
  ::sigaction(SIGUSR1, &before, nullptr);
}

TEST_F(TheMachine, AllowsAsManyFilesAsItMay) {
  rlimit limit{};
  ::getrlimit(RLIMIT_NOFILE, &limit);
  const rlimit low{64, limit.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &low), 0);
  const Machine another;
  ::getrlimit(RLIMIT_NOFILE, &limit);
  EXPECT_EQ(limit.rlim_cur, std::min<rlim_t>(limit.rlim_max, 65536));
}

// ---- watches

TEST_F(TheMachine, CopiesAPipe) {
  Pipe pipe;
  std::string text;
  bool ended = false;
  copy(pipe.reading.get(), text, ended);
  EXPECT_FALSE(machine->dispatch(0));
  EXPECT_EQ(::write(pipe.writing.get(), "hello", 5), 5);
  EXPECT_TRUE(machine->dispatch(1000));
  EXPECT_EQ(text, "hello");
  EXPECT_FALSE(machine->dispatch(0));
  pipe.writing.close();
  EXPECT_TRUE(pumpUntil([&] { return ended; }));
  EXPECT_FALSE(machine->dispatch(10));
}

TEST_F(TheMachine, CopiesAPlainFile) {
  char path[] = "/tmp/zev-machine-test-XXXXXX";
  const Descriptor file(::mkstemp(path));
  ::unlink(path);
  const std::string contents(1000, 'f');
  ASSERT_EQ(::write(file.get(), contents.data(), contents.size()), 1000);
  ::lseek(file.get(), 0, SEEK_SET);
  std::string text;
  bool ended = false;
  copy(file.get(), text, ended);
  EXPECT_TRUE(pumpUntil([&] { return ended; }));
  EXPECT_EQ(text, contents);
  EXPECT_FALSE(machine->dispatch(10));
}

TEST_F(TheMachine, TellsOfADescriptorThatIsClosed) {
  Pipe pipe;
  const int closed = pipe.reading.get();
  pipe.reading.close();
  std::string text;
  bool ended = false;
  copy(closed, text, ended);
  EXPECT_TRUE(machine->dispatch(-1));
  EXPECT_TRUE(ended);
  EXPECT_EQ(text, "");
}

TEST_F(TheMachine, TellsWhenThereIsRoomToWrite) {
  Pipe pipe;
  int times = 0;
  machine->watch(pipe.writing.get(), Watch::writing, [&] { ++times; });
  EXPECT_TRUE(machine->dispatch(0));
  EXPECT_TRUE(machine->dispatch(0));
  EXPECT_EQ(times, 2);
  machine->unwatch(pipe.writing.get());
  EXPECT_FALSE(machine->dispatch(10));
  machine->unwatch(pipe.writing.get());
}

TEST_F(TheMachine, HasOneWatchForEachDescriptor) {
  Pipe pipe;
  const Descriptor file(::open("/proc/self/exe", O_RDONLY | O_CLOEXEC));
  for (const int descriptor : {pipe.reading.get(), file.get()}) {
    machine->watch(descriptor, Watch::reading, [] {});
    EXPECT_THROW(machine->watch(descriptor, Watch::writing, [] {}), std::system_error);
    machine->unwatch(descriptor);
    machine->watch(descriptor, Watch::reading, [] {});
  }
}

TEST_F(TheMachine, ServesSocketsBesideAWatchThatIsAlwaysReady) {
  const Descriptor file(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  machine->watch(file.get(), Watch::reading, [] {});
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  peer->send("x");
  EXPECT_TRUE(pumpUntil([&] { return wasTold(socket, ws::fdRead); }));
}

TEST_F(TheMachine, LetsACallbackUseTheSockets) {
  Pipe pipe;
  EXPECT_EQ(::write(pipe.writing.get(), "x", 1), 1);
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  machine->watch(pipe.reading.get(), Watch::reading, [&] {
    machine->unwatch(pipe.reading.get());
    EXPECT_EQ(sockets().closesocket(socket), 0);
  });
  peer->send("x");
  settle();
  EXPECT_EQ(sockets().openSockets(), 0u);
  EXPECT_FALSE(machine->dispatch(10));
}

}  // namespace
}  // namespace zev::posix
