// Expanding packed files in memory, beside libmspack on the same files in the same run. A folder of
// packed members can be given as the argument or in ZEV_MEMBERS:
//
//   cmake --preset release && cmake --build build/release --target lz_benchmark
//   build/release/benchmarks/lz_benchmark [options of Google Benchmark] [folder]

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "lz/expand.h"
#include "lz/memory_stream.h"
#include "lz_corpus.h"
#include "mspack_expander.h"

namespace zev::benchmarks {
namespace {

constexpr const char* kHere = "zev";
constexpr const char* kThere = "libmspack";

std::int32_t expandHere(const Bytes& packed, Bytes& expanded) {
  expanded.clear();
  lz::MemorySource source(packed);
  lz::MemorySink sink(expanded);
  return lz::expand(source, sink);
}

// Both must make the same of each file before either is timed.
bool agree(const Corpus& corpus) {
  MspackExpander mspack;
  for (const Bytes& packed : corpus.packed) {
    Bytes here;
    Bytes there;
    if (expandHere(packed, here) < 0 || !mspack.expand(packed, there) || here != there)
      return false;
  }
  return true;
}

void runHere(benchmark::State& state, const Corpus& corpus) {
  Bytes expanded;
  for (auto pass : state) {
    for (const Bytes& packed : corpus.packed)
      benchmark::DoNotOptimize(expandHere(packed, expanded));
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(corpus.expandedSize) * state.iterations());
}

void runThere(benchmark::State& state, const Corpus& corpus) {
  MspackExpander mspack;
  Bytes expanded;
  for (auto pass : state) {
    for (const Bytes& packed : corpus.packed) {
      benchmark::DoNotOptimize(mspack.expand(packed, expanded));
    }
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(corpus.expandedSize) * state.iterations());
}

// The usual table, and below it how many times as fast as libmspack each corpus expanded. Of
// repeated runs the fastest counts, which is the one least disturbed.
class RatioReporter final : public benchmark::ConsoleReporter {
 public:
  explicit RatioReporter(const std::vector<Corpus>& corpora)
      : ConsoleReporter(OO_Tabular), corpora_(corpora) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
      double& rate = rates_[run.run_name.function_name];
      rate = std::max(rate, run.counters.at("bytes_per_second").value);
    }
    ConsoleReporter::ReportRuns(runs);
  }

  void Finalize() override {
    std::printf("\n");
    for (const Corpus& corpus : corpora_) {
      const double here = rates_[kHere + ("/" + corpus.name)];
      const double there = rates_[kThere + ("/" + corpus.name)];
      if (here <= 0 || there <= 0) continue;
      std::printf("%-10s %3zu files, %6.2f MB: %5.1f times libmspack\n", corpus.name.c_str(),
                  corpus.packed.size(), static_cast<double>(corpus.expandedSize) / 1e6,
                  here / there);
    }
    ConsoleReporter::Finalize();
  }

 private:
  const std::vector<Corpus>& corpora_;
  std::map<std::string, double> rates_;
};

int run(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  std::vector<Corpus> corpora = packFilesOfThisMachine();
  const char* const folder = argc > 1 ? argv[1] : std::getenv("ZEV_MEMBERS");
  if (folder != nullptr) corpora.push_back(packedFilesIn("members", folder));
  for (const Corpus& corpus : corpora) {
    if (!agree(corpus)) {
      std::fprintf(stderr, "libmspack makes something else of the %s\n", corpus.name.c_str());
      return 1;
    }
    benchmark::RegisterBenchmark((kHere + ("/" + corpus.name)).c_str(), runHere, corpus);
    benchmark::RegisterBenchmark((kThere + ("/" + corpus.name)).c_str(), runThere, corpus);
  }
  RatioReporter reporter(corpora);
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return 0;
}

}  // namespace
}  // namespace zev::benchmarks

int main(int argc, char** argv) { return zev::benchmarks::run(argc, argv); }
