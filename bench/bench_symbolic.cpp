// Time to transform a generated sparse system: n linear equalities, each over
// three nearby variables, and n inequalities between two variables anywhere,
// eliminated and substituted (mode 2) or also simplified first (mode 6).

#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <vector>

#include "expressions/ZorWBFactory.h"
#include "symbolic/ZorWBSymbolicTransformations.h"

namespace {

void BuildSystem(ZorWBFactory& f, int n) {
    std::mt19937 random(12345);
    std::vector<ZorWBVariable*> x;
    for (int i = 0; i < n + 10; ++i)
        x.push_back(f.CreateVariable());
    for (int i = 0; i < n; ++i) {
        int band[3] = {i, i + 1, i + 2 + int(random() % 5)};
        std::vector<ZorWBExpression*> terms;
        for (int v : band)
            terms.push_back(
                f.CreateProduct(f.CreateIntegerConstant(1 + int(random() % 9)), x[std::size_t(v)]));
        f.AddEquation(f.CreateSum(3, terms.data()), ZorWBEqualZero,
                      f.CreateIntegerConstant(int(random() % 100)));
    }
    for (int i = 0; i < n; ++i) {
        ZorWBVariable* a = x[random() % x.size()];
        ZorWBVariable* b = x[random() % x.size()];
        f.AddEquation(f.CreateSub(a, f.CreateProduct(f.CreateIntegerConstant(2), b)),
                      ZorWBLessEqualZero, f.CreateIntegerConstant(int(random() % 50)));
    }
}

void TransformSparseSystem(benchmark::State& state) {
    int n = static_cast<int>(state.range(0));
    unsigned int mode = static_cast<unsigned int>(state.range(1));
    for (auto _ : state) {
        state.PauseTiming();
        auto f = std::make_unique<ZorWBFactory>();
        BuildSystem(*f, n);
        state.ResumeTiming();
        ZorWBSymbolicTransformations* st = ZorCreateWBSymbolicTransformations(0, *f);
        st->SetMode(mode);
        st->Run();
        ZorRemove(st);
        state.PauseTiming();
        benchmark::DoNotOptimize(f->GetNbOfEquations());
        f.reset();
        state.ResumeTiming();
    }
    state.SetComplexityN(n);
}

}  // namespace

BENCHMARK(TransformSparseSystem)
    ->Args({250, 2})
    ->Args({500, 2})
    ->Args({1000, 2})
    ->Args({1000, 6})
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
