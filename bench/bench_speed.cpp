// Speed of the hot paths on the chain and trig workloads (speed_workloads.h)
// of 1,000 terms: real evaluation with Eval(), interval evaluation through
// GetValue, the update of one variable in a system of one equation per
// term, differentiation, and the parser on 10,000 short equations. The
// "node" counters give the time per node of the evaluated graph.

#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "speed_workloads.h"

namespace {

constexpr int NbOfTerms = 1000;

struct Workload {
    ZorWBFactory factory;
    std::vector<ZorWBExpression*> roots;
    int nodes = 0;
};

std::string WorkloadText(bool trig, bool system) {
    if (trig)
        return system ? speed::SystemText(NbOfTerms, speed::TrigTerm)
                      : speed::SumText(NbOfTerms, speed::TrigTerm);
    return system ? speed::SystemText(NbOfTerms, speed::ChainTerm)
                  : speed::SumText(NbOfTerms, speed::ChainTerm);
}

void Prepare(Workload& workload, bool trig, bool system, bool intervals) {
    workload.roots = speed::Fill(workload.factory, WorkloadText(trig, system));
    speed::SetVariables(workload.factory, intervals);
    for (ZorWBExpression* root : workload.roots)
        workload.nodes += speed::CountNodes(root);
}

void PerNode(benchmark::State& state, int nodes) {
    state.counters["node"] = benchmark::Counter(
        nodes, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void RealEval(benchmark::State& state) {
    Workload workload;
    Prepare(workload, state.range(0) != 0, false, false);
    const ZorWBExpression* root = workload.roots.front();
    for (auto _ : state)
        benchmark::DoNotOptimize(root->Eval());
    PerNode(state, workload.nodes);
}

// Every iteration invalidates all buffers first, so the whole graph is
// evaluated again.
void IntervalEval(benchmark::State& state) {
    Workload workload;
    Prepare(workload, state.range(0) != 0, false, true);
    const ZorWBExpression* root = workload.roots.front();
    for (auto _ : state) {
        workload.factory.ResetBuffer(nullptr);
        benchmark::DoNotOptimize(root->GetValue().GetAsRealInterval());
    }
    PerNode(state, workload.nodes);
}

// One variable takes a new real value, then every root is read.
void SystemUpdate(benchmark::State& state) {
    Workload workload;
    Prepare(workload, false, true, false);
    ZorWBVariable* x = workload.factory.GetVariable(ZorQelString("x500"));
    double sum = 0.0;
    int i = 0;
    for (auto _ : state) {
        x->SetExprValue(ZorWBValue(0.25 + 0.001 * (i++ & 15)));
        for (const ZorWBExpression* root : workload.roots)
            sum += root->GetValue().GetAsReal();
    }
    benchmark::DoNotOptimize(sum);
}

// The derivative of the chain by one variable; the nodes it made are removed
// again outside the timing.
void Derivative(benchmark::State& state) {
    Workload workload;
    Prepare(workload, false, false, false);
    ZorWBVariable* x = workload.factory.GetVariable(ZorQelString("x500"));
    for (auto _ : state) {
        ZorWBExpression* derivative = workload.factory.CreateDerivative(workload.roots.front(), x);
        benchmark::DoNotOptimize(derivative);
        state.PauseTiming();
        workload.factory.RemoveExpression(derivative);
        state.ResumeTiming();
    }
}

std::string ShortEquations(int n) {
    std::mt19937 random(7);
    auto index = [&random]() { return std::to_string(random() % 1000); };
    std::string text;
    for (int i = 0; i < n; ++i)
        text +=
            "x" + index() + " + 2*y" + index() + " - sin(a" + index() + ")*z" + index() + " = 4;\n";
    return text;
}

void ParseShort(benchmark::State& state) {
    const std::string text = ShortEquations(10000);
    bool fill = state.range(0) != 0;
    for (auto _ : state) {
        ZorWBModel model;
        ZorQelIntArray ids;
        ZorWBParserMessenger messenger;
        ZorWBParser::Parse(text.c_str(), model, ids, messenger);
        if (fill) {
            ZorWBFactory factory;
            ZorQelIntArray equationIds;
            model.FillFactory(factory, equationIds);
        }
        benchmark::DoNotOptimize(model.GetNbOfEquations());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(text.size()));
}

}  // namespace

BENCHMARK(RealEval)->ArgName("trig")->Arg(0)->Arg(1);
BENCHMARK(IntervalEval)->ArgName("trig")->Arg(0)->Arg(1);
BENCHMARK(SystemUpdate);
BENCHMARK(Derivative)->Unit(benchmark::kMicrosecond);
BENCHMARK(ParseShort)->ArgName("fill")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
