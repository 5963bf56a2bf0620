// Building, closing, saving and loading models by size. Sizes are numbers of expressions; times per expression should
// stay flat.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "quvex.h"
#include "qvm/binaryreader.h"
#include "qvm/textreader.h"
#include "support/problems.h"

namespace bench {
namespace {

/// A knapsack has about three expressions per item.
Knapsack problemOf(std::int64_t nbExpressions) { return {static_cast<std::uint32_t>(nbExpressions / 3), 1}; }

void perExpression(benchmark::State& state, std::int64_t nbExpressions) {
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * nbExpressions);
  state.counters["expressions"] = static_cast<double>(nbExpressions);
}

void build(benchmark::State& state) {
  const Knapsack problem = problemOf(state.range(0));
  int nbExpressions = 0;
  for (auto _ : state) {
    quvex::Quvex quvex;
    problem.build(*quvex.getModel());
    nbExpressions = quvex.getModel()->getNbExpressions();
  }
  perExpression(state, nbExpressions);
}

void close(benchmark::State& state) {
  quvex::Quvex quvex;
  problemOf(state.range(0)).build(*quvex.getModel());
  for (auto _ : state) {
    quvex.getModel()->close();
    state.PauseTiming();
    quvex.getModel()->open();
    state.ResumeTiming();
  }
  perExpression(state, quvex.getModel()->getNbExpressions());
}

class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& ending)
      : path(std::filesystem::temp_directory_path() / ("quvex-bench" + ending)) {}
  ~TemporaryFile() { std::filesystem::remove(path); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  const std::filesystem::path path;
};

/// Writes the open model, so that nothing but the stream is measured.
void save(benchmark::State& state, const std::string& ending) {
  const TemporaryFile file(ending);
  quvex::Quvex quvex;
  problemOf(state.range(0)).build(*quvex.getModel());
  for (auto _ : state) quvex.saveEnvironment(file.path);
  perExpression(state, quvex.getModel()->getNbExpressions());
  state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(file.path));
}

/// Reads the model and closes it; `close` above tells how much of this is compilation.
void load(benchmark::State& state, const std::string& ending) {
  const TemporaryFile file(ending);
  {
    quvex::Quvex quvex;
    problemOf(state.range(0)).build(*quvex.getModel());
    quvex.saveEnvironment(file.path);
  }
  int nbExpressions = 0;
  for (auto _ : state) {
    quvex::Quvex quvex;
    quvex.loadEnvironment(file.path);
    nbExpressions = quvex.getModel()->getNbExpressions();
  }
  perExpression(state, nbExpressions);
}

/// Reads every token of the file and makes nothing of any: the price of the form alone.
template <class Reader>
void scan(benchmark::State& state, const std::string& ending) {
  const TemporaryFile file(ending);
  quvex::Quvex quvex;
  problemOf(state.range(0)).build(*quvex.getModel());
  quvex.saveEnvironment(file.path);
  for (auto _ : state) {
    Reader reader(file.path);
    reader.skipValue();
    benchmark::DoNotOptimize(&reader);
  }
  perExpression(state, quvex.getModel()->getNbExpressions());
  state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(file.path));
}

void scanText(benchmark::State& state, const std::string& ending) { scan<quvex::TextReader>(state, ending); }
void scanBinary(benchmark::State& state, const std::string& ending) { scan<quvex::BinaryReader>(state, ending); }

void bySize(benchmark::internal::Benchmark* benchmark) {
  benchmark->RangeMultiplier(10)->Range(10000, 1000000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(build)->Apply(bySize);
BENCHMARK(close)->Apply(bySize);
BENCHMARK_CAPTURE(save, qvm, ".qvm")->Apply(bySize);
BENCHMARK_CAPTURE(save, qvm_gz, ".qvm.gz")->Apply(bySize);
BENCHMARK_CAPTURE(save, qvb, ".qvb")->Apply(bySize);
BENCHMARK_CAPTURE(save, qvb_gz, ".qvb.gz")->Apply(bySize);
BENCHMARK_CAPTURE(scanText, qvm, ".qvm")->Apply(bySize);
BENCHMARK_CAPTURE(scanText, qvm_gz, ".qvm.gz")->Apply(bySize);
BENCHMARK_CAPTURE(scanBinary, qvb, ".qvb")->Apply(bySize);
BENCHMARK_CAPTURE(scanBinary, qvb_gz, ".qvb.gz")->Apply(bySize);
BENCHMARK_CAPTURE(load, qvm, ".qvm")->Apply(bySize);
BENCHMARK_CAPTURE(load, qvm_gz, ".qvm.gz")->Apply(bySize);
BENCHMARK_CAPTURE(load, qvb, ".qvb")->Apply(bySize);
BENCHMARK_CAPTURE(load, qvb_gz, ".qvb.gz")->Apply(bySize);

}  // namespace
}  // namespace bench
