// Differentiation of a whole workload formula by each of ten variables
// spread over its variable list, one derivative per iteration (the ten in
// turn): ZorWBx's CreateDerivative and GiNaC's diff. Each derivative is
// checked, by its value at the base inputs, against forward
// differentiation of the formula's tree.
//
// ZorWBx keeps every node it makes until its factory goes, so each
// derivative is made in the factory's temporary storage: UseTemporaryStorage
// (true) before CreateDerivative, and UseTemporaryStorage(false) after it
// destroys the derivative's nodes again (no equation holds them). The timed
// work is thus making and destroying the derivative, and the factory holds
// the same nodes after every iteration; GiNaC's result is likewise released
// when the next one replaces it.

#include "BenchSupport.h"
#include "BenchZorWBx.h"

#ifdef ZORWBX_BENCH_GINAC
#include "BenchGinac.h"
#endif

namespace {

using namespace bench;

bool AgreesOnDerivative(benchmark::State& state, const Formula& formula, int variable, double got) {
    double expected = ReferenceDerivative(formula, formula.root, variable);
    return Agrees(state, "the derivative by " + formula.names[static_cast<std::size_t>(variable)],
                  got, expected, expected);
}

void ZorWBxDerivative(benchmark::State& state, Workload workload, int n) {
    const Formula& formula = FormulaFor(workload, n);
    ZorWBxFormula& z =
        Cached<ZorWBxFormula>(Key(workload, n), [&] { return BuildZorWBx(formula, false); });
    SetNodes(state, z.nodes);
    ZorWBFactory& factory = *z.factory;
    SetReals(z.variables, formula.base);
    std::vector<ZorWBVariable*> by;
    for (int v : formula.DerivativeVariables()) {
        ZorWBVariable* variable = z.variables[static_cast<std::size_t>(v)];
        by.push_back(variable);
        factory.UseTemporaryStorage(true);
        ZorWBExpression* derivative = factory.CreateDerivative(z.root, variable);
        double value = derivative ? derivative->Eval() : 0.0;
        factory.UseTemporaryStorage(false);
        if (!derivative) return Fail(state, "CreateDerivative gave null");
        if (!AgreesOnDerivative(state, formula, v, value)) return;
    }
    int kept = factory.GetNbOfExpressions();
    std::size_t next = 0;
    for (auto _ : state) {
        factory.UseTemporaryStorage(true);
        ZorWBExpression* derivative = factory.CreateDerivative(z.root, by[next]);
        Keep(derivative->GetNbOfChildren());
        factory.UseTemporaryStorage(false);
        next = (next + 1) % by.size();
    }
    if (factory.GetNbOfExpressions() != kept || factory.GetNbOfTemporaryExpressions() != 0)
        Fail(state, "the factory kept nodes of the derivatives");
}

#ifdef ZORWBX_BENCH_GINAC
void GinacDerivative(benchmark::State& state, Workload workload, int n) {
    const Formula& formula = FormulaFor(workload, n);
    GinacFormula& g = Cached<GinacFormula>(Key(workload, n), [&] { return BuildGinac(formula); });
    SetNodes(state, NodeCount(workload, n));
    g.SetInputs(formula.base);
    std::vector<GiNaC::symbol> by;
    for (int v : formula.DerivativeVariables()) {
        by.push_back(g.symbols[static_cast<std::size_t>(v)]);
        if (!AgreesOnDerivative(state, formula, v, g.Evaluate(g.root.diff(by.back())))) return;
    }
    std::size_t next = 0;
    GiNaC::ex derivative;
    for (auto _ : state) {
        derivative = g.root.diff(by[next]);
        Keep(static_cast<double>(derivative.nops()));
        next = (next + 1) % by.size();
    }
}
#endif

}  // namespace

int main(int argc, char** argv) {
    RegisterEach("derivative", "zorwbx", benchmark::kMicrosecond, ZorWBxDerivative);
#ifdef ZORWBX_BENCH_GINAC
    RegisterEach("derivative", "ginac", benchmark::kMicrosecond, GinacDerivative);
#endif
    return RunBenchmarks(argc, argv);
}
