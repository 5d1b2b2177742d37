// Elimination of a sparse system of linear equalities: n equations over
// n + 10 variables (see MakeLinearSystem), solved for n of them in terms of
// the last ten. ZorWBx runs its symbolic transformations with mode 6
// (elimination and simplification) on a factory holding the system, made
// afresh, untimed, for each iteration; GiNaC's lsolve solves the same
// equations (exact integers, as written) for v_0 .. v_{n-1}. Both results
// are checked against back substitution at fixed values of the ten free
// variables. Sizes 10, 100 and 1000 (lsolve takes seconds at 1000).
//
// Besides, ZorWBx alone on a mixed system (the same kind of equalities,
// with coefficients 1 to 9, plus as many inequalities between two
// variables anywhere), with mode 2 (elimination and substitution) and 6.

#include <functional>
#include <memory>
#include <random>
#include <vector>

#include "BenchSupport.h"
#include "BenchZorWBx.h"
#include "expressions/ZorWBEquation.h"
#include "symbolic/ZorWBSymbolicTransformations.h"

#ifdef ZORWBX_BENCH_GINAC
#include "BenchGinac.h"
#endif

namespace {

using namespace bench;

constexpr unsigned int EliminateAndSimplify = 6;
constexpr unsigned int EliminateAndSubstitute = 2;

const LinearSystem& SystemOf(int n) {
    return Cached<LinearSystem>(
        std::to_string(n), [&] { return std::make_unique<LinearSystem>(MakeLinearSystem(n)); });
}

std::vector<ZorWBVariable*> BuildSystem(ZorWBFactory& f, const LinearSystem& system) {
    std::vector<ZorWBVariable*> v;
    for (int i = 0; i < system.NbOfVariables(); ++i)
        v.push_back(f.CreateVariable());
    for (const LinearSystem::Equation& equation : system.equations) {
        ZorWBExpression* terms[3];
        for (int t = 0; t < 3; ++t)
            terms[t] = f.CreateProduct(f.CreateIntegerConstant(equation.terms[t].coefficient),
                                       v[static_cast<std::size_t>(equation.terms[t].variable)]);
        f.AddEquation(f.CreateSum(3, terms), ZorWBEqualZero,
                      f.CreateIntegerConstant(equation.rightSide));
    }
    return v;
}

void Transform(ZorWBFactory& f, unsigned int mode) {
    ZorWBSymbolicTransformations* st = ZorCreateWBSymbolicTransformations(0, f);
    st->SetMode(mode);
    st->Run();
    ZorRemove(st);
}

// Every equation left holds one eliminated variable and the free ones at
// most, and holds at the solution of the system.
bool AgreesWithSolution(benchmark::State& state, ZorWBFactory& f,
                        const std::vector<ZorWBVariable*>& v, const LinearSystem& system) {
    std::vector<double> solution = system.Solve(SystemParameters());
    double scale = 0.0;
    for (std::size_t i = 0; i < v.size(); ++i) {
        v[i]->SetValue(ZorWBValue(solution[i]), nullptr);
        scale = std::max(scale, 100.0 * std::fabs(solution[i]));
    }
    for (const ZorWBEquation* e = f.GetFirstEquation(); e; e = e->GetNext()) {
        ZorWBExpression* root = e->GetRoot();
        std::string what = "equation " + std::to_string(e->GetId());
        ZorQelListPZorWBVariable present;
        root->FindPresentVariables(present);
        if (present.GetSize() > 11) {
            Fail(state, what + " still holds " + std::to_string(present.GetSize()) + " variables");
            return false;
        }
        if (!Agrees(state, what, root->GetValue().GetAsReal(), 0.0, scale)) return false;
    }
    return true;
}

// Times the transformation alone: the factory is made, filled by build and
// destroyed with the timer paused.
void TimeTransform(benchmark::State& state, const std::function<void(ZorWBFactory&)>& build,
                   unsigned int mode) {
    for (auto _ : state) {
        state.PauseTiming();
        auto f = std::make_unique<ZorWBFactory>();
        build(*f);
        state.ResumeTiming();
        Transform(*f, mode);
        state.PauseTiming();
        Keep(f->GetNbOfEquations());
        f.reset();
        state.ResumeTiming();
    }
}

void ZorWBxEliminate(benchmark::State& state, int n) {
    const LinearSystem& system = SystemOf(n);
    {
        ZorWBFactory f;
        std::vector<ZorWBVariable*> v = BuildSystem(f, system);
        Transform(f, EliminateAndSimplify);
        if (!AgreesWithSolution(state, f, v, system)) return;
    }
    TimeTransform(
        state, [&](ZorWBFactory& f) { BuildSystem(f, system); }, EliminateAndSimplify);
}

#ifdef ZORWBX_BENCH_GINAC
struct GinacSystem {
    std::vector<GiNaC::symbol> symbols;
    GiNaC::lst equations;
    GiNaC::lst unknowns;
};

GinacSystem MakeGinacSystem(const LinearSystem& system) {
    GinacSystem g;
    for (int i = 0; i < system.NbOfVariables(); ++i)
        g.symbols.emplace_back("v" + std::to_string(i));
    for (const LinearSystem::Equation& equation : system.equations) {
        GiNaC::ex sum = 0;
        for (const LinearSystem::Term& term : equation.terms)
            sum += term.coefficient * g.symbols[static_cast<std::size_t>(term.variable)];
        g.equations.append(sum == equation.rightSide);
    }
    for (int i = 0; i < system.n; ++i)
        g.unknowns.append(g.symbols[static_cast<std::size_t>(i)]);
    return g;
}

void GinacEliminate(benchmark::State& state, int n) {
    const LinearSystem& system = SystemOf(n);
    GinacSystem g = MakeGinacSystem(system);
    GiNaC::ex solution = GiNaC::lsolve(g.equations, g.unknowns);
    std::vector<double> expected = system.Solve(SystemParameters());
    GinacFormula values;
    for (int j = 0; j < 10; ++j)
        values.values[g.symbols[static_cast<std::size_t>(n + j)]] =
            GiNaC::numeric(SystemParameters()[j]);
    if (solution.nops() != static_cast<std::size_t>(n))
        return Fail(state, "GiNaC: lsolve gave " + std::to_string(solution.nops()) + " solutions");
    for (int i = 0; i < n; ++i) {
        double value = values.Evaluate(solution.op(static_cast<std::size_t>(i)).rhs());
        double reference = expected[static_cast<std::size_t>(i)];
        if (!Agrees(state, "v" + std::to_string(i), value, reference, reference)) return;
    }
    for (auto _ : state)
        Keep(static_cast<double>(GiNaC::lsolve(g.equations, g.unknowns).nops()));
}
#endif

// ------------------------------------------------------------ the mixed system
void BuildMixedSystem(ZorWBFactory& f, int n) {
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

void ZorWBxMixed(benchmark::State& state, int n, unsigned int mode) {
    TimeTransform(
        state, [&](ZorWBFactory& f) { BuildMixedSystem(f, n); }, mode);
}

}  // namespace

int main(int argc, char** argv) {
    const auto unit = benchmark::kMillisecond;
    for (int n : {10, 100, 1000}) {
        Register("eliminate", "sparse", "zorwbx", n, unit,
                 [=](benchmark::State& state) { ZorWBxEliminate(state, n); });
#ifdef ZORWBX_BENCH_GINAC
        Register("eliminate", "sparse", "ginac", n, unit,
                 [=](benchmark::State& state) { GinacEliminate(state, n); });
#endif
    }
    Register("eliminate", "mixed", "zorwbx_mode2", 1000, unit,
             [](benchmark::State& state) { ZorWBxMixed(state, 1000, EliminateAndSubstitute); });
    Register("eliminate", "mixed", "zorwbx", 1000, unit,
             [](benchmark::State& state) { ZorWBxMixed(state, 1000, EliminateAndSimplify); });
    return RunBenchmarks(argc, argv);
}
