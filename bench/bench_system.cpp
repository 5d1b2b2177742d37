// The chain as a system of one equation per term, as a solver holds it:
// each iteration changes one variable (cycling through all of them) and then
// reads the value of every equation's root. ZorWBx answers from the cached
// values of the roots that the change did not reach; muparser evaluates
// every equation again (one parser per equation); the compiled loop
// recomputes every root into an array.

#include "BenchInputs.h"
#include "BenchLoops.h"
#include "BenchSupport.h"
#include "BenchZorWBx.h"
#include "expressions/ZorWBEquation.h"

#ifdef ZORWBX_BENCH_MUPARSER
#include "BenchMuparser.h"
#endif

namespace {

using namespace bench;

constexpr Workload System = Workload::Chain;

// Every root against its term, and their sum against the whole formula.
bool AgreesOnRoots(benchmark::State& state, const Formula& formula,
                   const std::vector<double>& roots) {
    double sum = 0.0;
    for (std::size_t i = 0; i < roots.size(); ++i) {
        double expected = Evaluate(formula, formula.terms[i], formula.base);
        if (!Agrees(state, "root " + std::to_string(i), roots[i], expected, expected)) return false;
        sum += roots[i];
    }
    return Agrees(state, "the sum of the roots", sum, Evaluate(formula, formula.root, formula.base),
                  Magnitude(formula));
}

void ZorWBxSystem(benchmark::State& state, int n) {
    const Formula& formula = FormulaFor(System, n);
    ZorWBxFormula& z =
        Cached<ZorWBxFormula>(Key(System, n), [&] { return BuildZorWBx(formula, true); });
    SetNodes(state, NodeCount(System, n));
    SetReals(z.variables, formula.base);
    const ZorWBFactory& factory = *z.factory;
    std::vector<double> first;
    for (const ZorWBEquation* e = factory.GetFirstEquation(); e; e = e->GetNext())
        first.push_back(e->GetRoot()->GetValue().GetAsReal());
    if (!AgreesOnRoots(state, formula, first)) return;
    SingleChange change(formula);
    for (auto _ : state) {
        double value;
        int k = change.Next(value);
        z.variables[static_cast<std::size_t>(k)]->SetValue(ZorWBValue(value), nullptr);
        double sum = 0.0;
        for (const ZorWBEquation* e = factory.GetFirstEquation(); e; e = e->GetNext())
            sum += e->GetRoot()->GetValue().GetAsReal();
        Keep(sum);
    }
}

void LoopSystem(benchmark::State& state, int n) {
    const Formula& formula = FormulaFor(System, n);
    SetNodes(state, NodeCount(System, n));
    std::vector<double> inputs = formula.base;
    std::vector<double> roots(static_cast<std::size_t>(n));
    auto recompute = [&] {
        for (int i = 0; i < n; ++i)
            roots[static_cast<std::size_t>(i)] = ChainTerm(inputs.data(), n, i);
    };
    recompute();
    if (!AgreesOnRoots(state, formula, roots)) return;
    SingleChange change(formula);
    for (auto _ : state) {
        double value;
        int k = change.Next(value);
        inputs[static_cast<std::size_t>(k)] = value;
        recompute();
        double sum = 0.0;
        for (double root : roots)
            sum += root;
        Keep(sum);
    }
}

#ifdef ZORWBX_BENCH_MUPARSER
void Muparser(benchmark::State& state, int n) {
    const Formula& formula = FormulaFor(System, n);
    MuparserSystem& m =
        Cached<MuparserSystem>(Key(System, n), [&] { return MakeMuparserSystem(formula); });
    SetNodes(state, NodeCount(System, n));
    if (!m.error.empty()) return Fail(state, m.error);
    m.inputs = formula.base;
    std::vector<double> first;
    for (const auto& equation : m.equations)
        first.push_back(equation->Evaluate());
    if (!AgreesOnRoots(state, formula, first)) return;
    SingleChange change(formula);
    for (auto _ : state) {
        double value;
        int k = change.Next(value);
        m.inputs[static_cast<std::size_t>(k)] = value;
        double sum = 0.0;
        for (const auto& equation : m.equations)
            sum += equation->Evaluate();
        Keep(sum);
    }
}
#endif

void RegisterSystem(const char* contestant, void (*runner)(benchmark::State&, int)) {
    for (int n : Sizes())
        Register("system", WorkloadName(System), contestant, n, benchmark::kMicrosecond,
                 [=](benchmark::State& state) { runner(state, n); });
}

}  // namespace

int main(int argc, char** argv) {
    RegisterSystem("zorwbx_value", ZorWBxSystem);
    RegisterSystem("loop", LoopSystem);
#ifdef ZORWBX_BENCH_MUPARSER
    RegisterSystem("muparser", Muparser);
#endif
    return RunBenchmarks(argc, argv);
}
