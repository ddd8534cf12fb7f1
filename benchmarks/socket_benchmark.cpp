// The sockets of the house beside a plain loop over epoll, on loopback in one run:
//
//   cmake --preset release && cmake --build build/release --target socket_benchmark
//   build/release/benchmarks/socket_benchmark [rounds]
//
// Both ends of measure take turns, each over connections of its own to a peer of the same kind, and
// both cut what they send and receive into pieces of the size of the system's own buffers. Told are
// the medians of the rounds' ratios of bytes per second, by the clock and by the processor time of
// the measured thread: component / plain loop. Behind them, what a byte costs the component when
// many bytes are given or wait at once. Every byte is counted.

#include <sys/resource.h>
#include <time.h>

#include <algorithm>
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

constexpr int usualRounds = 15;
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

struct Ratios {
  std::vector<double> wall, processor, component, plain;

  void add(const Load& load, const Seconds& ours, const Seconds& theirs) {
    const double megabytes = static_cast<double>(load.total()) / static_cast<double>(mega);
    wall.push_back(theirs.wall / ours.wall);
    processor.push_back(theirs.processor / ours.processor);
    component.push_back(megabytes / ours.wall);
    plain.push_back(megabytes / theirs.wall);
  }
  void print(const Load& load, const char* direction, double wanted) const {
    std::printf("%5zu x %9zu bytes  %-9s  %8.0f %8.0f   %5.2f  (%.2f to %.2f)  %5.2f   %.1f\n",
                load.streams, load.bytesEach, direction, median(component), median(plain),
                median(wall), *std::min_element(wall.begin(), wall.end()),
                *std::max_element(wall.begin(), wall.end()), median(processor), wanted);
  }
};

void compare(const Load& load, int rounds, double wanted) {
  Line<ComponentStreams> component(load.streams);
  Line<PlainStreams> plain(load.streams);
  Ratios sending;
  Ratios receiving;
  component.sends(load);
  plain.sends(load);
  for (int round = 0; round < rounds; ++round) {
    const Seconds ours = component.sends(load);
    sending.add(load, ours, plain.sends(load));
    const Seconds oursBack = component.receives(load);
    receiving.add(load, oursBack, plain.receives(load));
  }
  sending.print(load, "sending", wanted);
  receiving.print(load, "receiving", wanted);
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

std::size_t repeats(std::size_t bytes) { return std::max<std::size_t>(1, 512 * mega / bytes); }

void costOf(std::size_t bytes) {
  const Load load{1, bytes};
  Line<ComponentStreams> component(1);
  Line<PlainStreams> plain(1);
  Cost sendsPlain, sends, receivesPlain, waits, fetchesWhole, fetchesPieces;
  const Variant data = std::vector<std::uint8_t>(bytes, 's');
  for (std::size_t i = 0; i < repeats(bytes); ++i) {
    component.peer.beginToReceive(load);
    sends.add(bytes, measure([&] { component.end.sendAtOnce(data); }));
    component.peer.join();
    sendsPlain.add(bytes, plain.sends(load));
    for (const bool whole : {true, false}) {
      component.peer.beginToSend(load);
      waits.add(bytes, measure([&] { component.end.letWait(bytes); }));
      component.peer.join();
      std::size_t fetched = 0;
      const auto fetch = [&] {
        fetched = component.end.fetchInPieces(whole ? bytes : pieceOfFetching);
      };
      (whole ? fetchesWhole : fetchesPieces).add(bytes, measure(fetch));
      if (fetched != bytes) throw std::runtime_error("bytes are missing");
    }
    receivesPlain.add(bytes, plain.receives(load));
  }
  std::printf("%11zu", bytes);
  for (const Cost* each :
       {&sends, &sendsPlain, &waits, &receivesPlain, &fetchesWhole, &fetchesPieces}) {
    each->print();
  }
  std::printf("\n");
}

void printLoad(const char* when) {
  double load[1] = {};
  ::getloadavg(load, 1);
  std::printf("load of the machine %s: %.2f\n", when, load[0]);
}

void run(int rounds) {
  printLoad("at the start");
  std::printf("%-24s  %-9s  %8s %8s   %-23s  %s  %s\n", "streams", "", "ours", "plain",
              "ratio by the clock", "processor", "wanted");
  std::printf("%-24s  %-9s  %8s %8s\n", "", "", "MB/s", "MB/s");
  compare({1, 512 * mega}, rounds, 0.8);
  compare({1000, mega / 2}, rounds, 0.7);
  std::printf("\nnanoseconds of processor time a byte (in user mode), one stream\n");
  std::printf("%11s  %-14s  %-14s  %-14s  %-14s  %-14s  %-14s\n", "bytes", "one SendData",
              "plain sending", "arrive, wait", "plain receive", "one GetData", "64 KB GetData");
  for (const std::size_t bytes : {mega, 10 * mega, 100 * mega, 1000 * mega}) costOf(bytes);
  printLoad("at the end");
}

}  // namespace
}  // namespace zev::benchmarks

int main(int argc, char** argv) {
  try {
    zev::benchmarks::run(argc > 1 ? std::atoi(argv[1]) : zev::benchmarks::usualRounds);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
