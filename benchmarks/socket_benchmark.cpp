// The sockets of the house beside a plain loop over epoll, on loopback in one run:
//
//   cmake --preset release && cmake --build build/release --target socket_benchmark
//   build/release/benchmarks/socket_benchmark [rounds]
//
// What is measured takes turns, each over new connections to a peer of the same kind, and all cut
// what they send and receive into pieces of the size of the system's own buffers. Told are the
// medians of the rounds' ratios of bytes per second, by the clock and by the processor time of the
// measured thread: component / plain loop, and, to show what such a ratio can tell, a second plain
// loop / plain loop. Behind them, what a byte costs the component when many bytes are given or wait
// at once: as it is, and when it keeps all memory that it has had. Every byte is counted.

#include <sys/resource.h>
#include <time.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "component_streams.h"
#include "plain_streams.h"

namespace zev::benchmarks {
namespace {

constexpr int usualRounds = 41;
constexpr std::size_t mega = 1'000'000;
constexpr std::size_t pieceOfFetching = std::size_t{64} << 10;

double processorSeconds() {
  timespec time{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double userSeconds() {
  rusage usage{};
  ::getrusage(RUSAGE_THREAD, &usage);
  return static_cast<double>(usage.ru_utime.tv_sec) +
         static_cast<double>(usage.ru_utime.tv_usec) * 1e-6;
}

struct Seconds {
  double wall = 0;
  double processor = 0;
  double user = 0;
};

Seconds measure(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  const double processor = processorSeconds();
  const double user = userSeconds();
  work();
  const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
  return {wall.count(), processorSeconds() - processor, userSeconds() - user};
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

/// One end of measure with its peer.
template <typename End>
struct Line {
  explicit Line(std::size_t streams) : peer(end.port(), streams) { end.accept(streams); }

  Seconds sends(const Load& load) {
    return measure([&] {
      peer.beginToReceive(load);
      end.send(load);
      peer.join();
    });
  }
  Seconds receives(const Load& load) {
    return measure([&] {
      peer.beginToSend(load);
      end.receive(load);
      peer.join();
    });
  }

  End end;
  StreamPeer peer;
};

// ---- beside the plain loop

/// Of what is measured over the plain loop, round by round.
struct Ratios {
  std::vector<double> wall, processor;

  void add(const Seconds& measured, const Seconds& plain) {
    wall.push_back(plain.wall / measured.wall);
    processor.push_back(plain.processor / measured.processor);
  }
  void print(const Load& load, const char* direction, const char* what) const {
    const auto [least, most] = std::minmax_element(wall.begin(), wall.end());
    std::printf("%5zu x %9zu bytes  %-9s  %-11s  %5.2f  (%.2f to %.2f)  %5.2f\n", load.streams,
                load.bytesEach, direction, what, median(wall), *least, *most, median(processor));
  }
};

/// One of each kind, on connections of their own, which are new in each round: two that are the
/// same in every way differ by more than what is measured here, and go on differing.
struct Trio {
  explicit Trio(std::size_t streams) : component(streams), plain(streams), again(streams) {}

  /// What each of them takes, in an order that goes round.
  std::array<Seconds, 3> measureEach(int round, const Load& load, bool sends) {
    std::array<Seconds, 3> taken;
    for (int turn = 0; turn < 3; ++turn) {
      const int which = (round + turn) % 3;
      taken[static_cast<std::size_t>(which)] = which == 0   ? measureOne(component, load, sends)
                                               : which == 1 ? measureOne(plain, load, sends)
                                                            : measureOne(again, load, sends);
    }
    return taken;
  }
  template <typename End>
  static Seconds measureOne(Line<End>& line, const Load& load, bool sends) {
    return sends ? line.sends(load) : line.receives(load);
  }

  Line<ComponentStreams> component;
  Line<PlainStreams> plain;
  Line<PlainStreams> again;
};

void compare(const Load& load, int rounds) {
  const Load warming{load.streams, load.bytesEach / 4};
  for (const bool sends : {true, false}) {
    Ratios component, again;
    for (int round = 0; round < rounds; ++round) {
      Trio trio(load.streams);
      trio.measureEach(round, warming, sends);
      const auto [ours, plain, second] = trio.measureEach(round, load, sends);
      component.add(ours, plain);
      again.add(second, plain);
    }
    const char* const direction = sends ? "sending" : "receiving";
    component.print(load, direction, "component");
    again.print(load, direction, "plain again");
  }
}

// ---- what a byte costs

/// Processor time for each byte, of what was done several times.
class Cost {
 public:
  void add(std::size_t bytes, const Seconds& seconds) {
    bytes_ += static_cast<double>(bytes);
    processor_ += seconds.processor;
    user_ += seconds.user;
  }
  void print() const {
    constexpr double nano = 1e9;
    std::printf("  %6.3f (%5.3f)", processor_ / bytes_ * nano, user_ / bytes_ * nano);
  }

 private:
  double bytes_ = 0;
  double processor_ = 0;
  double user_ = 0;
};

/// The first two times need memory of their own: who fetches keeps what he has got until the next
/// time.
constexpr std::size_t firstTimes = 2;

std::size_t repeats(std::size_t bytes) { return std::max(2 * firstTimes, 512 * mega / bytes); }

void costOfSending(std::size_t bytes) {
  const Load load{1, bytes};
  Line<ComponentStreams> component(1);
  Line<PlainStreams> plain(1);
  Cost ours, theirs;
  const Variant data = std::vector<std::uint8_t>(bytes, 's');
  for (std::size_t i = 0; i < repeats(bytes); ++i) {
    component.peer.beginToReceive(load);
    ours.add(bytes, measure([&] { component.end.sendAtOnce(data); }));
    component.peer.join();
    theirs.add(bytes, plain.sends(load));
  }
  std::printf("%11zu  one SendData  ", bytes);
  ours.print();
  theirs.print();
  std::printf("\n");
}

/// `kept`: memory that the component may keep for what waits next.
void costOfWaiting(std::size_t bytes, bool whole, std::size_t kept) {
  const Load load{1, bytes};
  Line<ComponentStreams> component(1);
  component.end.keepAtMost(kept);
  Line<PlainStreams> plain(1);
  Cost first, again, fetches, theirs;
  for (std::size_t i = 0; i < repeats(bytes); ++i) {
    component.peer.beginToSend(load);
    (i < firstTimes ? first : again).add(bytes, measure([&] { component.end.letWait(bytes); }));
    component.peer.join();
    std::size_t fetched = 0;
    fetches.add(bytes, measure([&] {
                  fetched = component.end.fetchInPieces(whole ? bytes : pieceOfFetching);
                }));
    if (fetched != bytes) throw std::runtime_error("bytes are missing");
    theirs.add(bytes, plain.receives(load));
  }
  std::printf("%11zu  %s", bytes, whole ? "one GetData   " : "64 KB GetData ");
  for (const Cost* each : {&again, &theirs, &first, &fetches}) each->print();
  std::printf("\n");
}

void printCosts() {
  constexpr std::size_t sizes[] = {mega, 10 * mega, 100 * mega, 1000 * mega};
  std::printf("\nnanoseconds of processor time a byte (in user mode), one stream\n");
  std::printf("%11s  %-12s    %-14s  %-14s\n", "bytes", "", "sent", "plain");
  for (const std::size_t bytes : sizes) costOfSending(bytes);
  for (const std::size_t kept : {SpareMemory::usual, 1200 * mega}) {
    std::printf("\nat most %zu bytes of memory kept\n", kept);
    std::printf("%11s  %-12s    %-14s  %-14s  %-14s  %-14s\n", "bytes", "", "arrive, wait", "plain",
                "first times", "fetched");
    for (const std::size_t bytes : sizes) {
      for (const bool whole : {true, false}) costOfWaiting(bytes, whole, kept);
    }
  }
}

void printLoad(const char* when) {
  double load[1] = {};
  ::getloadavg(load, 1);
  std::printf("load of the machine %s: %.2f\n", when, load[0]);
}

void run(int rounds) {
  printLoad("at the start");
  std::printf("%-24s  %-9s  %-11s  %-22s  %s\n", "streams", "", "", "ratio by the clock",
              "processor");
  compare({1, 200 * mega}, rounds);
  compare({1000, mega / 5}, (rounds + 2) / 3);
  printCosts();
  printLoad("at the end");
}

}  // namespace
}  // namespace zev::benchmarks

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::atoi(argv[1]) : zev::benchmarks::usualRounds;
  if (rounds < 1 || argc > 2) {
    std::fprintf(stderr, "usage: socket_benchmark [rounds, at least 1]\n");
    return 2;
  }
  try {
    zev::benchmarks::run(rounds);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
