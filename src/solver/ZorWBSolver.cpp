#include "solver/ZorWBSolver.h"

#include <algorithm>
#include <exception>
#include <thread>

#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "solver/ZorWBBranchAndPrune.h"
#include "solver/ZorWBSolverSearch.h"

namespace {

constexpr int MaxThreads = 64;

// A bound of a single variable: an inequality whose root is linear in one
// variable.
bool IsBound(const ZorWBEquation& equation) {
    const ZorWBEquationType type = equation.GetType();
    if (type != ZorWBLessEqualZero && type != ZorWBLessZero && type != ZorWBGreaterEqualZero &&
        type != ZorWBGreaterZero)
        return false;
    const ZorWBExpression* root = equation.GetRoot();
    ZorQelListPZorWBVariable variables;
    return root->IsLinear() && root->FindPresentVariables(variables) == 1;
}

// The kept relations and the bounds, by position; the unknowns.
void Classify(const ZorWBFactory& factory, ZorWBSolverProblem& problem) {
    std::vector<char> present(static_cast<std::size_t>(factory.GetNbOfVariables()), 0);
    for (int i = 0; i < factory.GetNbOfEquations(); ++i) {
        const ZorWBEquation* equation = factory.GetEquation(i);
        if (!equation->GetRoot() || !ZorWBIsRelation(equation->GetType())) continue;
        if (IsBound(*equation)) {
            problem.bounds.push_back(i);
            continue;
        }
        problem.kept.push_back(i);
        ZorQelListPZorWBVariable variables;
        equation->GetRoot()->FindPresentVariables(variables);
        for (int k = 0; k < variables.GetSize(); ++k)
            present[variables.Get(k)->GetIdx()] = 1;
    }
    for (int v = 0; v < factory.GetNbOfVariables(); ++v) {
        if (present[v] && !problem.initial.intervals[v].IsPoint()) problem.unknowns.push_back(v);
    }
}

void ReadDomains(const ZorWBFactory& factory,
                 const std::vector<std::pair<int, ZorWBValue>>& overrides,
                 ZorWBSolverProblem& problem) {
    const int n = factory.GetNbOfVariables();
    problem.initial.intervals.resize(static_cast<std::size_t>(n));
    problem.initial.values.resize(static_cast<std::size_t>(n));
    problem.kinds.resize(static_cast<std::size_t>(n));
    auto read = [&](int v, const ZorWBValue& value) {
        ZorWBReadDomain(value, problem.kinds[v], problem.initial.intervals[v],
                        problem.initial.values[v]);
    };
    for (int v = 0; v < n; ++v)
        read(v, factory.GetVariable(v)->GetExprValue());
    for (const auto& [v, value] : overrides)
        read(v, value);
    // Boxes hold values only for listed domains: without any, none is kept.
    if (std::none_of(problem.kinds.begin(), problem.kinds.end(),
                     [](ZorWBDomainKind kind) { return kind == ZorWBDomainKind::Listed; }))
        problem.initial.values.clear();
}

int ThreadCount(int requested) {
    if (requested > 0) return requested;
    const unsigned int hardware = std::thread::hardware_concurrency();
    return hardware == 0 ? 1 : static_cast<int>(std::min<unsigned int>(hardware, MaxThreads));
}

}  // namespace

ZorWBSolver::ZorWBSolver(const ZorWBFactory& factory) : _factory(factory) {}

ZorWBSolver::~ZorWBSolver() = default;

void ZorWBSolver::SetOptions(const ZorWBSolverOptions& options) {
    _options = options;
    if (!(_options.eps >= 1e-300)) _options.eps = 1e-300;
    if (!(_options.ratio >= 0.0 && _options.ratio < 1.0)) _options.ratio = 0.01;
    _options.threads = std::min(std::max(_options.threads, 0), MaxThreads);
    if (!(_options.timeout > 0.0)) _options.timeout = 0.0;
    _options.maxCells = std::max(_options.maxCells, 0LL);
    _options.maxSolutions = std::max(_options.maxSolutions, 0);
    if (!(_options.progressInterval >= 0.0)) _options.progressInterval = 0.25;
}

bool ZorWBSolver::SetDomain(int variable, const ZorWBValue& domain) {
    if (variable < 0 || variable >= _factory.GetNbOfVariables() ||
        domain.GetType() == ZorWBUndefinedType)
        return false;
    _domains.emplace_back(variable, domain);
    return true;
}

const ZorWBSolverBox& ZorWBSolver::GetBox(int i) const {
    static const ZorWBSolverBox none;
    return i >= 0 && i < GetNbOfBoxes() ? _boxes[i] : none;
}

ZorWBSolverStatus ZorWBSolver::Solve() try {
    _boxes.clear();
    _statistics = ZorWBSolverStatistics();
    _emptyingEquationId = -1;
    _message = "";
    _square = false;
    ZorWBSolverProblem problem;
    problem.options = _options;
    ReadDomains(_factory, _domains, problem);
    Classify(_factory, problem);
    _unknowns = problem.unknowns;

    std::vector<std::unique_ptr<ZorWBBranchAndPrune>> workers;
    workers.emplace_back(new ZorWBBranchAndPrune(_factory, problem));
    if (!workers[0]->IsValid()) {
        _message = "the equations could not be copied for the solver (black boxes cannot be)";
        return _status = ZorWBSolverStatus::Failed;
    }
    _square = workers[0]->IsSquare();
    ZorWBDomainBox root;
    int emptying = -1;
    if (problem.initial.IsEmpty() || !workers[0]->PropagateRoot(problem.initial, root, emptying)) {
        if (emptying >= 0) _emptyingEquationId = _factory.GetEquation(emptying)->GetId();
        _statistics.complete = true;
        return _status = ZorWBSolverStatus::Infeasible;
    }
    for (int i = ThreadCount(_options.threads); i > 1; --i)
        workers.emplace_back(new ZorWBBranchAndPrune(_factory, problem));
    ZorWBSolverSearch search(problem, workers);
    search.Run(root, _boxes, _statistics);
    if (!_statistics.complete) return _status = ZorWBSolverStatus::Incomplete;
    return _status = _boxes.empty() ? ZorWBSolverStatus::Infeasible : ZorWBSolverStatus::Complete;
} catch (const std::exception&) {
    _boxes.clear();
    _message = "the solver ran out of memory";
    return _status = ZorWBSolverStatus::Failed;
}
