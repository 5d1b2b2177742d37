#ifndef ZORWB_BENCH_SUPPORT_H
#define ZORWB_BENCH_SUPPORT_H

// What every comparison benchmark shares: the sink that keeps results alive,
// the check of a contestant against the reference, the naming of the
// benchmarks that the table tool reads, and caches of the workloads.
//
// Names are "task/workload/contestant/size"; the table tool groups the
// medians by them. Per-node figures divide by the counter "nodes": the
// number of distinct operator and leaf nodes of the formula as ZorWBx holds
// it, the same count for every contestant.

#include <benchmark/benchmark.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "BenchFormula.h"

namespace bench {

// Results go to a volatile store of our own rather than through
// benchmark::DoNotOptimize, which g++ 12 at -O2 has been seen to miscompile
// with Google Benchmark 1.7.1 (the variable given to it was corrupted).
extern volatile double sink;
inline void Keep(double value) {
    sink = value;
}

// The term counts of the formula workloads.
const std::vector<int>& Sizes();
// Relative tolerance of the checks against the reference.
constexpr double Tolerance = 1e-9;
// Half-width of the input intervals is Width / 2: inputs are [v, v + Width].
constexpr double Width = 1e-3;

// Whether got agrees with expected within Tolerance * scale; when it does
// not, the benchmark is stopped with a message naming the contestant and
// what was checked, and false is returned (the caller then returns).
bool Agrees(benchmark::State& state, const std::string& what, double got, double expected,
            double scale);
// Stops the benchmark with message (a contestant that failed to set up).
void Fail(benchmark::State& state, const std::string& message);

std::string Name(const std::string& task, const std::string& workload,
                 const std::string& contestant, int size);
// Registers fn under Name(...) with the time unit; the benchmark's counter
// "nodes" is set by the caller.
benchmark::internal::Benchmark* Register(const std::string& task, const std::string& workload,
                                         const std::string& contestant, int size,
                                         benchmark::TimeUnit unit,
                                         std::function<void(benchmark::State&)> fn);
void SetNodes(benchmark::State& state, int nodes);
// Registers runner for both formula workloads at every size up to
// largestSize (a contestant whose call takes minutes beyond it stops there).
using Runner = void (*)(benchmark::State&, Workload, int);
void RegisterEach(const std::string& task, const std::string& contestant, benchmark::TimeUnit unit,
                  Runner runner, int largestSize = 10000);

// The formula of a workload and size, generated on first use.
const Formula& FormulaFor(Workload workload, int n);
// Its node count as ZorWBx holds it (built once).
int NodeCount(Workload workload, int n);

// A cache of fixtures by key: each is made on first use and kept, so the
// repeated runs of a benchmark do not rebuild it.
template <class T>
T& Cached(const std::string& key, const std::function<std::unique_ptr<T>()>& make) {
    static std::map<std::string, std::unique_ptr<T>> cache;
    std::unique_ptr<T>& slot = cache[key];
    if (!slot) slot = make();
    return *slot;
}
inline std::string Key(Workload workload, int n) {
    return std::string(WorkloadName(workload)) + "/" + std::to_string(n);
}

// Initialises Google Benchmark with the command line, runs what was
// registered and shuts it down.
int RunBenchmarks(int argc, char** argv);

}  // namespace bench

#endif
