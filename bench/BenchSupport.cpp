#include "BenchSupport.h"

#include <cmath>
#include <cstdio>

#include "BenchZorWBx.h"

namespace bench {

volatile double sink = 0.0;

const std::vector<int>& Sizes() {
    static const std::vector<int> sizes = {10, 100, 1000, 10000};
    return sizes;
}

void Fail(benchmark::State& state, const std::string& message) {
    std::fprintf(stderr, "benchmark stopped: %s\n", message.c_str());
    state.SkipWithError(message.c_str());
}

bool Agrees(benchmark::State& state, const std::string& what, double got, double expected,
            double scale) {
    if (std::fabs(got - expected) <= Tolerance * (std::fabs(scale) + 1.0)) return true;
    char text[256];
    std::snprintf(text, sizeof text,
                  "disagrees with the reference on %s: got %.17g, expected %.17g", what.c_str(),
                  got, expected);
    Fail(state, text);
    return false;
}

std::string Name(const std::string& task, const std::string& workload,
                 const std::string& contestant, int size) {
    return task + "/" + workload + "/" + contestant + "/" + std::to_string(size);
}

benchmark::internal::Benchmark* Register(const std::string& task, const std::string& workload,
                                         const std::string& contestant, int size,
                                         benchmark::TimeUnit unit,
                                         std::function<void(benchmark::State&)> fn) {
    std::string name = Name(task, workload, contestant, size);
    return benchmark::RegisterBenchmark(name.c_str(), std::move(fn))->Unit(unit);
}

void RegisterEach(const std::string& task, const std::string& contestant, benchmark::TimeUnit unit,
                  Runner runner, int largestSize) {
    for (Workload workload : {Workload::Chain, Workload::Trig})
        for (int n : Sizes())
            if (n <= largestSize)
                Register(task, WorkloadName(workload), contestant, n, unit,
                         [=](benchmark::State& state) { runner(state, workload, n); });
}

void SetNodes(benchmark::State& state, int nodes) {
    state.counters["nodes"] = benchmark::Counter(static_cast<double>(nodes));
}

const Formula& FormulaFor(Workload workload, int n) {
    return Cached<Formula>(Key(workload, n),
                           [&] { return std::make_unique<Formula>(MakeFormula(workload, n)); });
}

int NodeCount(Workload workload, int n) {
    struct Count {
        int nodes;
    };
    return Cached<Count>(Key(workload, n),
                         [&] {
                             return std::make_unique<Count>(
                                 Count{BuildZorWBx(FormulaFor(workload, n), false)->nodes});
                         })
        .nodes;
}

int RunBenchmarks(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

}  // namespace bench
