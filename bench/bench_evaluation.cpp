// Evaluation of a whole workload formula, the chain and the trig sums, at
// every size: with reals (ZorWBx's Eval() to a double and GetValue() to a
// value, a ZorWBx compiled function at a point, the compiled loop,
// muparser, GiNaC's subs + evalf) and with inputs of width 1e-3 (ZorWBx's
// real intervals through GetValue and a compiled function over a box,
// Boost.Interval in the compiled loop). Each iteration changes every input
// first; the compiled loops switch between two input arrays, the others are
// given the new values through their own API, which is part of what they
// cost (the compiled function copies the point given into its registers).

#include "BenchInputs.h"
#include "BenchLoops.h"
#include "BenchSupport.h"
#include "BenchZorWBx.h"

#ifdef ZORWBX_BENCH_MUPARSER
#include "BenchMuparser.h"
#endif
#ifdef ZORWBX_BENCH_GINAC
#include "BenchGinac.h"
#endif
#ifdef ZORWBX_BENCH_BOOST
#include "BenchBoostInterval.h"
#endif

namespace {

using namespace bench;

ZorWBxFormula& ZorWBxSum(Workload workload, int n) {
    return Cached<ZorWBxFormula>(Key(workload, n),
                                 [&] { return BuildZorWBx(FormulaFor(workload, n), false); });
}

double LoopSum(Workload workload, const double* v, int n) {
    return workload == Workload::Chain ? ChainSum(v, n) : TrigSum(v, n);
}

bool AgreesOnWhole(benchmark::State& state, const Formula& formula, double got) {
    return Agrees(state, "the whole formula", got, Evaluate(formula, formula.root, formula.base),
                  Magnitude(formula));
}

bool AgreesOnInterval(benchmark::State& state, const Formula& formula, Range got) {
    Range expected = Evaluate(formula, formula.root, IntervalInputs(formula.base, Width));
    double scale = Magnitude(formula);
    return Agrees(state, "the lower bound", got.low, expected.low, scale) &&
           Agrees(state, "the upper bound", got.high, expected.high, scale);
}

// ------------------------------------------------------------ reals
void ZorWBxEval(benchmark::State& state, Workload workload, int n) {
    const Formula& formula = FormulaFor(workload, n);
    ZorWBxFormula& z = ZorWBxSum(workload, n);
    SetNodes(state, z.nodes);
    SetReals(z.variables, formula.base);
    if (!AgreesOnWhole(state, formula, z.root->Eval())) return;
    Alternation inputs(formula);
    for (auto _ : state) {
        SetReals(z.variables, inputs.Next());
        Keep(z.root->Eval());
    }
}

void ZorWBxValue(benchmark::State& state, Workload workload, int n) {
    const Formula& formula = FormulaFor(workload, n);
    ZorWBxFormula& z = ZorWBxSum(workload, n);
    SetNodes(state, z.nodes);
    SetReals(z.variables, formula.base);
    if (!AgreesOnWhole(state, formula, z.root->GetValue().GetAsReal())) return;
    Alternation inputs(formula);
    for (auto _ : state) {
        SetReals(z.variables, inputs.Next());
        Keep(z.root->GetValue().GetAsReal());
    }
}

ZorWBCompiledFunction& ZorWBxCompiledSum(Workload workload, int n) {
    return Cached<ZorWBCompiledFunction>(Key(workload, n),
                                         [&] { return CompileZorWBx(ZorWBxSum(workload, n)); });
}

void ZorWBxFunction(benchmark::State& state, Workload workload, int n) {
    const Formula& formula = FormulaFor(workload, n);
    SetNodes(state, ZorWBxSum(workload, n).nodes);
    ZorWBCompiledFunction& function = ZorWBxCompiledSum(workload, n);
    double result = 0.0;
    if (function.Evaluate(formula.base.data(), &result) != ZorWBCompiledStatus::Ok)
        return Fail(state, "the compiled function refused to run");
    if (!AgreesOnWhole(state, formula, result)) return;
    Alternation inputs(formula);
    for (auto _ : state) {
        function.Evaluate(inputs.Next().data(), &result);
        Keep(result);
    }
}

// The input changes alone (no buffer being valid, as in the Eval() loop):
// how much of the Eval() time goes to SetValue.
void ZorWBxSetInputs(benchmark::State& state, Workload workload, int n) {
    const Formula& formula = FormulaFor(workload, n);
    ZorWBxFormula& z = ZorWBxSum(workload, n);
    SetNodes(state, z.nodes);
    Alternation inputs(formula);
    for (auto _ : state)
        SetReals(z.variables, inputs.Next());
    Keep(z.variables[0]->GetExprValue().GetAsReal());
}

void CompiledLoop(benchmark::State& state, Workload workload, int n) {
    const Formula& formula = FormulaFor(workload, n);
    SetNodes(state, NodeCount(workload, n));
    if (!AgreesOnWhole(state, formula, LoopSum(workload, formula.base.data(), n))) return;
    Alternation inputs(formula);
    for (auto _ : state)
        Keep(LoopSum(workload, inputs.Next().data(), n));
}

#ifdef ZORWBX_BENCH_MUPARSER
struct MuparserFixture {
    std::vector<double> inputs;
    std::unique_ptr<MuparserSum> sum;
    std::string error;
};

void Muparser(benchmark::State& state, Workload workload, int n) {
    const Formula& formula = FormulaFor(workload, n);
    MuparserFixture& m = Cached<MuparserFixture>(Key(workload, n), [&] {
        auto fixture = std::make_unique<MuparserFixture>();
        fixture->inputs = formula.base;
        fixture->sum = std::make_unique<MuparserSum>(formula, formula.terms, fixture->inputs.data(),
                                                     fixture->error);
        return fixture;
    });
    SetNodes(state, NodeCount(workload, n));
    if (!m.error.empty()) return Fail(state, m.error);
    m.inputs = formula.base;
    if (!AgreesOnWhole(state, formula, m.sum->Evaluate())) return;
    Alternation inputs(formula);
    for (auto _ : state) {
        const std::vector<double>& next = inputs.Next();
        std::copy(next.begin(), next.end(), m.inputs.begin());
        Keep(m.sum->Evaluate());
    }
}
#endif

#ifdef ZORWBX_BENCH_GINAC
void Ginac(benchmark::State& state, Workload workload, int n) {
    const Formula& formula = FormulaFor(workload, n);
    GinacFormula& g = Cached<GinacFormula>(Key(workload, n), [&] { return BuildGinac(formula); });
    SetNodes(state, NodeCount(workload, n));
    g.SetInputs(formula.base);
    if (!AgreesOnWhole(state, formula, g.Evaluate(g.root))) return;
    Alternation inputs(formula);
    for (auto _ : state) {
        g.SetInputs(inputs.Next());
        Keep(g.Evaluate(g.root));
    }
}
#endif

// ------------------------------------------------------------ intervals
void ZorWBxInterval(benchmark::State& state, Workload workload, int n) {
    const Formula& formula = FormulaFor(workload, n);
    ZorWBxFormula& z = ZorWBxSum(workload, n);
    SetNodes(state, z.nodes);
    SetIntervals(z.variables, formula.base, Width);
    ZorWBRealInterval first = z.root->GetValue().GetAsRealInterval();
    if (!AgreesOnInterval(state, formula, {first.low, first.high})) return;
    Alternation inputs(formula);
    for (auto _ : state) {
        SetIntervals(z.variables, inputs.Next(), Width);
        ZorWBRealInterval result = z.root->GetValue().GetAsRealInterval();
        Keep(result.low + result.high);
    }
}

void ZorWBxFunctionInterval(benchmark::State& state, Workload workload, int n) {
    const Formula& formula = FormulaFor(workload, n);
    SetNodes(state, ZorWBxSum(workload, n).nodes);
    ZorWBCompiledFunction& function = ZorWBxCompiledSum(workload, n);
    const std::vector<ZorWBRealInterval> base = Box(formula.base, Width);
    const std::vector<ZorWBRealInterval> shifted = Box(formula.shifted, Width);
    ZorWBRealInterval result;
    if (function.EvaluateIntervals(base.data(), &result) != ZorWBCompiledStatus::Ok)
        return Fail(state, "the compiled function refused to run");
    if (!AgreesOnInterval(state, formula, {result.low, result.high})) return;
    bool flip = false;
    for (auto _ : state) {
        flip = !flip;
        function.EvaluateIntervals((flip ? shifted : base).data(), &result);
        Keep(result.low + result.high);
    }
}

#ifdef ZORWBX_BENCH_BOOST
void BoostInterval(benchmark::State& state, Workload workload, int n) {
    const Formula& formula = FormulaFor(workload, n);
    SetNodes(state, NodeCount(workload, n));
    // Two loops over the two input sets, alternated like the reals.
    BoostIntervalLoop base(workload, n), shifted(workload, n);
    base.SetInputs(formula.base, Width);
    shifted.SetInputs(formula.shifted, Width);
    if (!AgreesOnInterval(state, formula, base.Evaluate())) return;
    bool flip = false;
    for (auto _ : state) {
        flip = !flip;
        Range result = (flip ? shifted : base).Evaluate();
        Keep(result.low + result.high);
    }
}
#endif

}  // namespace

int main(int argc, char** argv) {
    RegisterEach("real", "zorwbx_eval", benchmark::kNanosecond, ZorWBxEval);
    RegisterEach("real", "zorwbx_value", benchmark::kNanosecond, ZorWBxValue);
    RegisterEach("real", "zorwbx_set", benchmark::kNanosecond, ZorWBxSetInputs);
    RegisterEach("real", "zorwbx_function", benchmark::kNanosecond, ZorWBxFunction);
    RegisterEach("real", "loop", benchmark::kNanosecond, CompiledLoop);
#ifdef ZORWBX_BENCH_MUPARSER
    RegisterEach("real", "muparser", benchmark::kNanosecond, Muparser);
#endif
#ifdef ZORWBX_BENCH_GINAC
    RegisterEach("real", "ginac", benchmark::kMicrosecond, Ginac);
#endif
    RegisterEach("interval", "zorwbx_value", benchmark::kNanosecond, ZorWBxInterval);
    RegisterEach("interval", "zorwbx_function", benchmark::kNanosecond, ZorWBxFunctionInterval);
#ifdef ZORWBX_BENCH_BOOST
    RegisterEach("interval", "boost", benchmark::kNanosecond, BoostInterval);
#endif
    return RunBenchmarks(argc, argv);
}
