// Peers that are slow, and peers that end in every way, on threads of their own.

#include <netinet/tcp.h>
#include <sys/socket.h>

#include <array>
#include <atomic>
#include <optional>
#include <random>
#include <thread>

#include "posix/peer.h"
#include "storms/storm.h"

namespace zev::storms {
namespace {

using posix::Peer;
using Random = std::minstd_rand;

Bytes bytesOf(const std::string& text) { return {text.begin(), text.end()}; }

void dawdle(Random& random) {
  if (random() % 8 == 0) std::this_thread::sleep_for(std::chrono::microseconds(random() % 300));
}

// ---- slow ones

constexpr std::size_t slowPeers = 8;
constexpr std::size_t slowBytes = 16'000'000;  ///< more than the system keeps by itself

/// What the thread of a peer has come to.
struct Report {
  Checksum sum;
  std::string failure;
};

template <typename Work>
std::thread onThread(Report& report, Work work) {
  return std::thread([&report, work] {
    try {
      work();
    } catch (const std::exception& error) {
      report.failure = error.what();
    }
  });
}

class SlowPeers : public Storm {
 protected:
  void SetUp() override {
    listener = newListener();
    listener->events.ConnectionRequest = [this](std::int32_t request) {
      ends.push_back(newSocket());
      begin(ends.size() - 1);
      ends.back()->Accept(request);
      if (accepted) accepted(ends.size() - 1);
    };
  }
  void TearDown() override {
    ends.clear();
    expectInUse(1, 1);
    listener.reset();
    Storm::TearDown();
  }
  void begin(std::size_t number) {
    ends[number]->events.CloseSck = [this, number] {
      ++closed;
      ends[number]->CloseSck();
    };
    if (prepare) prepare(number);
  }
  Checksum expected() const {
    Checksum sum;
    sum.add(pattern(0, slowBytes));
    return sum;
  }

  std::shared_ptr<CEventSocket> listener;
  std::vector<std::shared_ptr<CEventSocket>> ends;
  std::function<void(std::size_t)> prepare;
  std::function<void(std::size_t)> accepted;
  std::size_t closed = 0;
};

TEST_F(SlowPeers, GetEverythingInOrderHoweverSlowlyTheyRead) {
  std::array<std::uint64_t, slowPeers> progress{};
  std::array<int, slowPeers> complete{};
  prepare = [&](std::size_t i) {
    ends[i]->events.SendProgress = [&, i](std::int32_t sent, std::int32_t) {
      progress[i] += static_cast<std::uint64_t>(sent);
    };
    ends[i]->events.SendComplete = [&, i] { ++complete[i]; };
  };
  // Given in pieces, of which the later ones wait behind the first.
  accepted = [&](std::size_t i) {
    Random random(static_cast<unsigned>(i + 1));
    for (std::size_t at = 0; at < slowBytes;) {
      const std::size_t size = std::min<std::size_t>(slowBytes - at, 1 + random() % 900'000);
      ends[i]->SendData(pattern(at, size));
      at += size;
    }
  };
  std::array<Report, slowPeers> reports;
  std::vector<std::thread> readers;
  for (std::size_t i = 0; i < slowPeers; ++i) {
    readers.push_back(onThread(reports[i], [&, i, port = portOf(*listener)] {
      Random random(static_cast<unsigned>(100 + i));
      const Peer peer = Peer::connectedTo(port);
      while (reports[i].sum.count() < slowBytes) {
        const std::size_t left = slowBytes - reports[i].sum.count();
        const std::string part = peer.receive(std::min<std::size_t>(left, 1 + random() % 20'000));
        if (part.empty()) return;
        reports[i].sum.add(bytesOf(part));
        dawdle(random);
      }
    }));
  }
  EXPECT_TRUE(pumpUntil([&] { return closed == slowPeers; }));
  for (std::thread& each : readers) each.join();
  for (std::size_t i = 0; i < slowPeers; ++i) {
    EXPECT_EQ(reports[i].failure, "");
    EXPECT_EQ(reports[i].sum, expected());
    EXPECT_EQ(progress[i], slowBytes) << "told in all";
    EXPECT_GE(complete[i], 1);
  }
}

TEST_F(SlowPeers, AreHeardInOrderHoweverSlowlyTheyWriteAndTheyAreFetched) {
  std::array<Checksum, slowPeers> got;
  std::array<Random, slowPeers> randoms;
  prepare = [&](std::size_t i) {
    ends[i]->events.DataArrival = [&, i](std::int32_t waiting) {
      const bool last = got[i].count() + static_cast<std::uint64_t>(waiting) == slowBytes;
      if (!last && randoms[i]() % 3 == 0) return;
      Variant peeked, data, type = Variant::missing();
      Variant most = last ? waiting : static_cast<std::int32_t>(1 + randoms[i]() % 6'000);
      ends[i]->PeekData(peeked, type, most);
      ends[i]->GetData(data, type, most);
      EXPECT_TRUE(peeked == data);
      got[i].add(*data.get<Bytes>());
      if (last) ends[i]->SendData(u"!");
    };
  };
  std::array<Report, slowPeers> reports;
  std::vector<std::thread> writers;
  for (std::size_t i = 0; i < slowPeers; ++i) {
    writers.push_back(onThread(reports[i], [i, port = portOf(*listener)] {
      Random random(static_cast<unsigned>(200 + i));
      const Peer peer = Peer::connectedTo(port);
      for (std::size_t at = 0; at < slowBytes;) {
        const std::size_t size = std::min<std::size_t>(slowBytes - at, 1 + random() % 5'000);
        peer.send(textOf(pattern(at, size)));
        at += size;
        dawdle(random);
      }
      if (peer.receive(1) != "!") throw std::runtime_error("no answer");
    }));
  }
  EXPECT_TRUE(pumpUntil([&] { return closed == slowPeers; }));
  for (std::thread& each : writers) each.join();
  for (std::size_t i = 0; i < slowPeers; ++i) EXPECT_EQ(reports[i].failure, "");
  for (const Checksum& each : got) EXPECT_EQ(each, expected());
}

// ---- those that end in every way

enum class Ending {
  closes,      ///< when it has sent and heard all
  halfCloses,  ///< when it has sent all; hears on until the end
  resets,      ///< when what it has sent has arrived
  breaksOff,   ///< resets in the middle, whatever is under way
  leaves,      ///< closes with something unheard, which makes it a reset
  vanishes,    ///< without a word when what it has sent has arrived
};
constexpr std::array endings = {Ending::closes,    Ending::halfCloses, Ending::resets,
                                Ending::breaksOff, Ending::leaves,     Ending::vanishes};

constexpr std::size_t peersOfAStorm = 300;
constexpr std::size_t threadsOfAStorm = 4;
constexpr std::size_t headerSize = 2;  ///< the number of the peer, low byte first

/// What a peer does, and what comes of it there.
struct Plan {
  Ending ending = Ending::closes;
  std::size_t says = 0;
  std::size_t hears = 0;
  unsigned seed = 0;
  PatternReader heard;
  std::string failure;
};

/// What the component is told of a peer.
struct Told {
  PatternReader got;
  int closed = 0;
  int errors = 0;
  std::int32_t error = 0;
  int complete = 0;
};

struct End {
  std::shared_ptr<CEventSocket> socket;
  Bytes header;
  std::optional<std::size_t> peer;
};

/// Any size up to 2^bits, small ones as often as large ones.
std::size_t anySize(Random& random, unsigned bits) {
  return random() % (std::size_t{1} << random() % (bits + 1));
}

class PeerStorm : public Storm, public testing::WithParamInterface<unsigned> {
 protected:
  void SetUp() override {
    std::printf("seed %u\n", GetParam());
    Random random(GetParam());
    for (Plan& each : plans) {
      each.ending = endings[random() % endings.size()];
      each.says = anySize(random, 19);
      each.hears = random() % 2 == 0 ? 0 : anySize(random, 22);
      each.seed = static_cast<unsigned>(random());
      // There has to be something that it does not hear.
      if (each.ending == Ending::leaves) each.hears += 1;
    }
    listener = newListener();
    listener->events.ConnectionRequest = [this](std::int32_t request) { take(request); };
  }

  // The component's side.

  void take(std::int32_t request) {
    ends.push_back(std::make_unique<End>());
    End& end = *ends.back();
    end.socket = newSocket();
    SocketEvents& events = end.socket->events;
    events.DataArrival = [this, &end](std::int32_t) { hear(end, fetch(*end.socket)); };
    events.SendComplete = [this, &end] { ++told[*end.peer].complete; };
    events.CloseSck = [this, &end] {
      ++over;
      if (end.peer) ++told[*end.peer].closed;
      end.socket->CloseSck();
    };
    events.Error = [this, &end](const SocketErrorArguments& arguments) {
      ++over;
      if (end.peer) ++told[*end.peer].errors;
      if (end.peer) told[*end.peer].error = arguments.Number;
      end.socket->CloseSck();
    };
    end.socket->Accept(request);
  }

  void hear(End& end, Bytes bytes) {
    if (end.peer) {
      told[*end.peer].got.add(bytes);
      return;
    }
    end.header.insert(end.header.end(), bytes.begin(), bytes.end());
    if (end.header.size() < headerSize) return;
    end.peer = end.header[0] + end.header[1] * std::size_t{256};
    told[*end.peer].got.add(Bytes(end.header.begin() + headerSize, end.header.end()));
    end.socket->SendData(pattern(0, plans[*end.peer].hears));
  }

  /// Those that have gone without a word are found out as soon as somebody talks to them.
  void talkToTheVanished() {
    for (const auto& end : ends) {
      if (end->socket->State() == sckConnected) end->socket->SendData(u"anybody there?");
    }
  }

  // The peers' side.

  void play(std::size_t number, std::uint16_t port) {
    Plan& plan = plans[number];
    Random random(plan.seed);
    Peer peer = Peer::connectedTo(port);
    const std::array<char, headerSize> header = {static_cast<char>(number % 256),
                                                 static_cast<char>(number / 256)};
    peer.send({header.data(), header.size()});
    say(peer, plan, random);
    end(peer, plan);
  }
  static void say(const Peer& peer, const Plan& plan, Random& random) {
    const std::size_t most = plan.ending == Ending::breaksOff ? plan.says / 2 : plan.says;
    for (std::size_t at = 0; at < most;) {
      const std::size_t size = std::min<std::size_t>(most - at, 1 + random() % 30'000);
      peer.send(textOf(pattern(at, size)));
      at += size;
      dawdle(random);
    }
  }
  void end(Peer& peer, Plan& plan) {
    switch (plan.ending) {
      case Ending::closes:
        plan.heard.add(bytesOf(peer.receive(plan.hears)));
        return;
      case Ending::halfCloses:
        peer.halfClose();
        plan.heard.add(bytesOf(peer.receive(plan.hears + 1)));
        return;
      case Ending::resets:
        peer.awaitArrival();
        return peer.reset();
      case Ending::breaksOff:
        return peer.reset();
      case Ending::leaves:
        // The first byte that comes is looked at and left.
        char byte;
        ::recv(peer.descriptor(), &byte, 1, MSG_PEEK);
        return peer.close();
      case Ending::vanishes:
        peer.awaitArrival();
        return vanish(peer);
    }
  }
  /// Closes a socket in a mode in which the system says nothing about it.
  static void vanish(Peer& peer) {
    const int on = 1;
    if (::setsockopt(peer.descriptor(), IPPROTO_TCP, TCP_REPAIR, &on, sizeof on) != 0) {
      throw std::runtime_error("the system lets nobody vanish");
    }
    peer.close();
  }

  void playAll() {
    std::vector<std::thread> threads;
    std::atomic<std::size_t> next = 0;
    std::atomic<std::size_t> through = 0;
    for (std::size_t i = 0; i < threadsOfAStorm; ++i) {
      threads.emplace_back([&, port = portOf(*listener)] {
        for (std::size_t number = next++; number < peersOfAStorm; number = next++) {
          try {
            play(number, port);
          } catch (const std::exception& error) {
            plans[number].failure = error.what();
          }
          ++through;
        }
      });
    }
    while (through != peersOfAStorm) machine->dispatch(20);
    for (std::thread& each : threads) each.join();
  }

  // What has to have come of it.

  void check(std::size_t number) {
    const Plan& plan = plans[number];
    const Told& what = told[number];
    SCOPED_TRACE(testing::Message()
                 << "peer " << number << ", ending " << static_cast<int>(plan.ending) << ", says "
                 << plan.says << ", hears " << plan.hears);
    EXPECT_TRUE(what.got.right()) << "a byte is not where it belongs";
    EXPECT_TRUE(plan.heard.right()) << "a byte is not where it belongs";
    EXPECT_LE(what.got.count(), plan.says);
    switch (plan.ending) {
      case Ending::closes:
        EXPECT_EQ(plan.heard.count(), plan.hears);
        EXPECT_EQ(what.complete, plan.hears == 0 ? 0 : 1);
        [[fallthrough]];
      case Ending::halfCloses:
        EXPECT_EQ(plan.failure, "");
        EXPECT_EQ(what.got.count(), plan.says) << "told of the end before the last byte";
        EXPECT_EQ(what.closed, 1);
        EXPECT_EQ(what.errors, 0);
        return;
      case Ending::resets:
      case Ending::vanishes:
        EXPECT_EQ(plan.failure, "");
        // Sending, where there is something to send, meets the end before reading does.
        if (plan.hears == 0) {
          EXPECT_EQ(what.got.count(), plan.says);
        }
        EXPECT_EQ(what.errors, 1);
        EXPECT_EQ(what.error, winsock::error::connectionReset);
        EXPECT_EQ(what.closed, 0);
        return;
      case Ending::breaksOff:
      case Ending::leaves:
        EXPECT_LE(what.errors, 1);
        EXPECT_EQ(what.closed, 0);
        if (what.errors != 0) {
          EXPECT_EQ(what.error, winsock::error::connectionReset);
        }
    }
  }

  std::vector<Plan> plans{peersOfAStorm};
  std::vector<Told> told{peersOfAStorm};
  std::shared_ptr<CEventSocket> listener;
  std::vector<std::unique_ptr<End>> ends;
  std::size_t over = 0;
};

TEST_P(PeerStorm, LosesNothingHoweverTheyEnd) {
  playAll();
  settle();
  talkToTheVanished();
  EXPECT_TRUE(pumpUntil([&] { return ends.size() == peersOfAStorm && over == ends.size(); }));
  for (std::size_t i = 0; i < peersOfAStorm; ++i) check(i);
  expectInUse(1, 1 + static_cast<int>(ends.size()));
  ends.clear();
  expectInUse(1, 1);
  listener.reset();
}

INSTANTIATE_TEST_SUITE_P(Seeds, PeerStorm, testing::Range(1u, 7u));

}  // namespace
}  // namespace zev::storms
