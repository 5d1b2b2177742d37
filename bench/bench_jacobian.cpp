// A workload formula as a system of one equation per term, as a solver's
// Newton step asks it: every input changes (the two input sets alternate),
// then the residuals of all the equations, or the residuals and the sparse
// Jacobian (the derivative of each equation by each variable it holds:
// five per equation of the chain, three of trig). ZorWBx answers through a
// compiled function over every variable; the compiled loop is the formula
// and its derivatives written by hand; muparser evaluates one parser per
// equation (residuals only: it has no derivatives); GiNaC substitutes and
// evaluates each equation and each of its derivatives, made once by diff.

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

namespace {

using namespace bench;

ZorWBxFormula& ZorWBxSystem(Workload workload, int n) {
    return Cached<ZorWBxFormula>(Key(workload, n),
                                 [&] { return BuildZorWBx(FormulaFor(workload, n), true); });
}

// The nodes of all the equations as ZorWBx holds them.
int SystemNodes(Workload workload, int n) {
    return ZorWBxSystem(workload, n).nodes;
}

// The variables of each equation, in increasing order: the Jacobian's
// pattern, which every contestant fills in this order.
const std::vector<std::vector<int>>& Pattern(Workload workload, int n) {
    struct Rows {
        std::vector<std::vector<int>> rows;
    };
    return Cached<Rows>(Key(workload, n),
                        [&] {
                            const Formula& formula = FormulaFor(workload, n);
                            auto pattern = std::make_unique<Rows>();
                            for (int term : formula.terms) {
                                std::vector<int> row = VariablesOf(formula, term);
                                std::sort(row.begin(), row.end());
                                pattern->rows.push_back(row);
                            }
                            return pattern;
                        })
        .rows;
}

bool AgreesOnResiduals(benchmark::State& state, const Formula& formula,
                       const std::vector<double>& residuals) {
    for (std::size_t i = 0; i < residuals.size(); ++i) {
        double expected = Evaluate(formula, formula.terms[i], formula.base);
        if (!Agrees(state, "residual " + std::to_string(i), residuals[i], expected,
                    std::fabs(expected) + 1.0))
            return false;
    }
    return true;
}

bool AgreesOnJacobian(benchmark::State& state, const Formula& formula,
                      const std::vector<std::vector<int>>& pattern,
                      const std::vector<double>& entries) {
    std::size_t k = 0;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        for (int variable : pattern[i]) {
            double expected = ReferenceDerivative(formula, formula.terms[i], variable);
            if (!Agrees(state,
                        "the derivative of equation " + std::to_string(i) + " by " +
                            formula.names[static_cast<std::size_t>(variable)],
                        entries[k++], expected, std::fabs(expected) + 1.0))
                return false;
        }
    }
    return true;
}

std::size_t NbOfEntries(const std::vector<std::vector<int>>& pattern) {
    std::size_t count = 0;
    for (const std::vector<int>& row : pattern)
        count += row.size();
    return count;
}

// ------------------------------------------------------------ ZorWBx
void ZorWBx(benchmark::State& state, Workload workload, int n, bool jacobian) {
    const Formula& formula = FormulaFor(workload, n);
    SetNodes(state, SystemNodes(workload, n));
    ZorWBCompiledFunction& function = Cached<ZorWBCompiledFunction>(
        Key(workload, n), [&] { return CompileZorWBx(ZorWBxSystem(workload, n)); });
    std::vector<double> residuals(static_cast<std::size_t>(n));
    std::vector<double> entries(static_cast<std::size_t>(function.GetNbOfNonZeros()));
    if (function.EvaluateJacobian(formula.base.data(), residuals.data(), entries.data()) !=
        ZorWBCompiledStatus::Ok)
        return Fail(state, "the compiled function refused to run");
    if (!AgreesOnResiduals(state, formula, residuals)) return;
    if (!AgreesOnJacobian(state, formula, Pattern(workload, n), entries)) return;
    Alternation inputs(formula);
    for (auto _ : state) {
        if (jacobian) {
            function.EvaluateJacobian(inputs.Next().data(), residuals.data(), entries.data());
        } else {
            function.Evaluate(inputs.Next().data(), residuals.data());
        }
        Keep(residuals[0] + (jacobian ? entries[0] : 0.0));
    }
}

void ZorWBxResiduals(benchmark::State& state, Workload workload, int n) {
    ZorWBx(state, workload, n, false);
}
void ZorWBxJacobian(benchmark::State& state, Workload workload, int n) {
    ZorWBx(state, workload, n, true);
}

// ------------------------------------------------------------ compiled loop
// The entries of one equation, its variables in increasing order (the
// chain's x_i, x_{i+1}, y_i, y_{i+1}, d_i; trig's a_i, x_i, y_i).
void LoopEntries(Workload workload, const double* v, int n, int i, double*& out) {
    if (workload == Workload::Chain) {
        const double* x = v;
        const double* y = v + n + 1;
        const double* d = y + n + 1;
        double dx = 2.0 * (x[i] - x[i + 1]);
        double dy = 2.0 * (y[i] - y[i + 1]);
        *out++ = dx;
        *out++ = -dx;
        *out++ = dy;
        *out++ = -dy;
        *out++ = -2.0 * d[i];
        return;
    }
    const double* a = v;
    const double* x = v + n;
    const double* y = x + n;
    double c = std::cos(a[i]);
    double s = std::sin(a[i]);
    *out++ = -s * x[i] - c * y[i];
    *out++ = c;
    *out++ = -s;
}

void Loop(benchmark::State& state, Workload workload, int n, bool jacobian) {
    const Formula& formula = FormulaFor(workload, n);
    SetNodes(state, SystemNodes(workload, n));
    std::vector<double> residuals(static_cast<std::size_t>(n));
    std::vector<double> entries(NbOfEntries(Pattern(workload, n)));
    auto run = [&](const std::vector<double>& inputs) {
        const double* v = inputs.data();
        double* out = entries.data();
        for (int i = 0; i < n; ++i) {
            residuals[static_cast<std::size_t>(i)] =
                workload == Workload::Chain ? ChainTerm(v, n, i) : TrigTerm(v, n, i);
            if (jacobian) LoopEntries(workload, v, n, i, out);
        }
    };
    run(formula.base);
    if (!AgreesOnResiduals(state, formula, residuals)) return;
    if (jacobian && !AgreesOnJacobian(state, formula, Pattern(workload, n), entries)) return;
    Alternation inputs(formula);
    for (auto _ : state) {
        run(inputs.Next());
        Keep(residuals[0] + entries[0]);
    }
}

void LoopResiduals(benchmark::State& state, Workload workload, int n) {
    Loop(state, workload, n, false);
}
void LoopJacobian(benchmark::State& state, Workload workload, int n) {
    Loop(state, workload, n, true);
}

// ------------------------------------------------------------ muparser
#ifdef ZORWBX_BENCH_MUPARSER
void MuparserResiduals(benchmark::State& state, Workload workload, int n) {
    const Formula& formula = FormulaFor(workload, n);
    MuparserSystem& m =
        Cached<MuparserSystem>(Key(workload, n), [&] { return MakeMuparserSystem(formula); });
    SetNodes(state, SystemNodes(workload, n));
    if (!m.error.empty()) return Fail(state, m.error);
    std::vector<double> residuals(static_cast<std::size_t>(n));
    auto run = [&](const std::vector<double>& inputs) {
        std::copy(inputs.begin(), inputs.end(), m.inputs.begin());
        for (std::size_t i = 0; i < m.equations.size(); ++i)
            residuals[i] = m.equations[i]->Evaluate();
    };
    run(formula.base);
    if (!AgreesOnResiduals(state, formula, residuals)) return;
    Alternation inputs(formula);
    for (auto _ : state) {
        run(inputs.Next());
        Keep(residuals[0]);
    }
}
#endif

// ------------------------------------------------------------ GiNaC
#ifdef ZORWBX_BENCH_GINAC
struct GinacSystem {
    std::unique_ptr<GinacFormula> formula;
    std::vector<GiNaC::ex> derivatives;  // in the pattern's order
};

void GinacJacobian(benchmark::State& state, Workload workload, int n) {
    const Formula& formula = FormulaFor(workload, n);
    const std::vector<std::vector<int>>& pattern = Pattern(workload, n);
    GinacSystem& g = Cached<GinacSystem>(Key(workload, n), [&] {
        auto system = std::make_unique<GinacSystem>();
        system->formula = BuildGinac(formula);
        for (std::size_t i = 0; i < pattern.size(); ++i) {
            for (int variable : pattern[i])
                system->derivatives.push_back(system->formula->terms[i].diff(
                    system->formula->symbols[static_cast<std::size_t>(variable)]));
        }
        return system;
    });
    SetNodes(state, SystemNodes(workload, n));
    std::vector<double> residuals(static_cast<std::size_t>(n));
    std::vector<double> entries(g.derivatives.size());
    auto run = [&](const std::vector<double>& inputs) {
        g.formula->SetInputs(inputs);
        for (std::size_t i = 0; i < residuals.size(); ++i)
            residuals[i] = g.formula->Evaluate(g.formula->terms[i]);
        for (std::size_t k = 0; k < entries.size(); ++k)
            entries[k] = g.formula->Evaluate(g.derivatives[k]);
    };
    run(formula.base);
    if (!AgreesOnResiduals(state, formula, residuals)) return;
    if (!AgreesOnJacobian(state, formula, pattern, entries)) return;
    Alternation inputs(formula);
    for (auto _ : state) {
        run(inputs.Next());
        Keep(residuals[0] + entries[0]);
    }
}
#endif

}  // namespace

int main(int argc, char** argv) {
    RegisterEach("jacobian", "zorwbx_residuals", benchmark::kMicrosecond, ZorWBxResiduals);
    RegisterEach("jacobian", "zorwbx_jacobian", benchmark::kMicrosecond, ZorWBxJacobian);
    RegisterEach("jacobian", "loop_residuals", benchmark::kMicrosecond, LoopResiduals);
    RegisterEach("jacobian", "loop_jacobian", benchmark::kMicrosecond, LoopJacobian);
#ifdef ZORWBX_BENCH_MUPARSER
    RegisterEach("jacobian", "muparser_residuals", benchmark::kMicrosecond, MuparserResiduals);
#endif
#ifdef ZORWBX_BENCH_GINAC
    // About 100 s per call at N = 10,000.
    RegisterEach("jacobian", "ginac_jacobian", benchmark::kMicrosecond, GinacJacobian, 1000);
#endif
    return RunBenchmarks(argc, argv);
}
