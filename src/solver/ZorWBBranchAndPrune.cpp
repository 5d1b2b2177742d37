// One worker's examination of a cell: contraction (propagation, Newton,
// linear relaxation, shaving), proof, classification, split. Everything a
// cell does depends on its box alone (no state is kept between cells but
// scratch), so that any worker gives the same result for the same cell.

#include "solver/ZorWBBranchAndPrune.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "expressions/ZorWBEquation.h"
#include "values/ZorWBValueFunctions.h"

namespace {

// Where a bounded domain is cut: off the middle, so that a zero at the
// middle of a symmetric domain does not fall on the cut.
constexpr double SplitRatio = 0.45;
// Contraction runs in at most MaxRounds rounds, and starts another round at
// once after a step (Newton, linear relaxation, shaving) that narrowed some
// unknown by more than RoundProgress of its width.
constexpr int MaxRounds = 8;
constexpr double RoundProgress = 0.1;
// Proofs by inflation are tried on boxes whose unknowns are all narrower
// than this part of their magnitude (plus one).
constexpr double ProofWidth = 1e-3;
// Square systems of at most this many unknowns are also contracted by
// linear relaxation (its 2n linear programs grow with the cube of n), on
// boxes whose unknowns are all narrower than this part of their magnitude
// plus one (a linearisation over wider boxes prunes nothing).
constexpr int LinearMaxUnknowns = 12;
constexpr double LinearWidth = 1.0;
// Slices of a domain tried at each end when shaving.
constexpr int ShavingSlices = 10;

std::vector<ZorWBEquation*> EquationsAt(ZorWBFactory& factory, const std::vector<int>& positions) {
    std::vector<ZorWBEquation*> equations;
    for (int position : positions)
        equations.push_back(factory.GetEquation(position));
    return equations;
}

double RelativeWidth(const ZorWBRoundedInterval& x) {
    return x.Width() / (1.0 + x.Magnitude());
}

}  // namespace

ZorWBBranchAndPrune::ZorWBBranchAndPrune(const ZorWBFactory& source,
                                         const ZorWBSolverProblem& problem)
    : _problem(problem), _factory(source.GetWBLevel()) {
    _factory.GetEnvironment() = source.GetEnvironment();
    _factory.GetEnvironment().ClearError();
    if (_factory.CloneEquations(source) != source.GetNbOfEquations()) return;
    _settings.ratio = problem.options.ratio;
    _settings.tolerance = problem.options.tolerance;
    _kept.reset(new ZorWBConstraintSystem(_factory, EquationsAt(_factory, problem.kept)));
    _kept->SetKinds(problem.kinds);
    std::vector<int> equalities;
    bool allOnTape = true;
    for (int c = 0; c < _kept->GetNbOfConstraints(); ++c) {
        const ZorWBConstraintSystem::Constraint& constraint = _kept->GetConstraint(c);
        if (constraint.relation != ZorWBEqualZero) continue;
        equalities.push_back(c);
        allOnTape = allOnTape && constraint.IsOnTape();
    }
    _nbOfEqualities = static_cast<int>(equalities.size());
    if (allOnTape && !equalities.empty() && equalities.size() == problem.unknowns.size()) {
        _square.reset(new ZorWBSquareSystem(_factory, *_kept, equalities, problem.unknowns));
        if (_square->IsValid()) {
            _newton.reset(new ZorWBIntervalNewton(*_square));
            if (_square->GetSize() <= LinearMaxUnknowns)
                _linear.reset(new ZorWBLinearContractor(*_square));
        }
    }
    _valid = true;
}

bool ZorWBBranchAndPrune::PropagateRoot(ZorWBDomainBox& initial, ZorWBDomainBox& root,
                                        int& emptyingEquation) {
    // The bounds alone make the initial box; every relation then narrows it
    // into the root cell.
    ZorWBConstraintSystem bounds(_factory, EquationsAt(_factory, _problem.bounds));
    bounds.SetKinds(_problem.kinds);
    ZorWBPropagationReport report;
    if (bounds.Propagate(initial, _settings, report)) {
        root = initial;
        if (_kept->Propagate(root, _settings, report)) return true;
    }
    emptyingEquation = -1;
    for (int position = 0; position < _factory.GetNbOfEquations(); ++position) {
        if (_factory.GetEquation(position)->GetId() == report.emptyingEquationId)
            emptyingEquation = position;
    }
    return false;
}

bool ZorWBBranchAndPrune::PropagateFrom(ZorWBDomainBox& box, int variable) {
    ZorWBPropagationReport report;
    const std::vector<int> seeds{variable};
    return _kept->Propagate(box, _settings, report, &seeds);
}

namespace {

// Whether some unknown shrank by more than a part of its width.
bool Progressed(const ZorWBDomainBox& before, const ZorWBDomainBox& after,
                const std::vector<int>& unknowns, double part) {
    for (int v : unknowns) {
        const double width = before.intervals[v].Width();
        if (width - after.intervals[v].Width() > part * width) return true;
    }
    return false;
}

}  // namespace

bool ZorWBBranchAndPrune::ShaveVariable(ZorWBDomainBox& box, int v) {
    const ZorWBRoundedInterval x = box.intervals[v];
    const double width = (x.high - x.low) / ShavingSlices;
    // The box with v in slices first..last, propagated: false when empty.
    auto trial = [&](int first, int last, ZorWBDomainBox& part) {
        part = box;
        part.intervals[v] = {first == 0 ? x.low : x.low + first * width,
                             last == ShavingSlices - 1 ? x.high : x.low + (last + 1) * width};
        return PropagateFrom(part, v);
    };
    auto unite = [](ZorWBDomainBox& hull, const ZorWBDomainBox& part) {
        for (int i = 0; i < hull.GetSize(); ++i)
            hull.intervals[i] = ZorWBHull(hull.intervals[i], part.intervals[i]);
    };
    ZorWBDomainBox hull, part;
    int first = 0;
    while (first < ShavingSlices && !trial(first, first, hull))
        ++first;
    if (first == ShavingSlices) return false;
    int last = ShavingSlices - 1;
    while (last > first && !trial(last, last, part))
        --last;
    if (last > first) unite(hull, part);
    if (last > first + 1 && trial(first + 1, last - 1, part)) unite(hull, part);
    box.intervals = hull.intervals;
    return true;
}

bool ZorWBBranchAndPrune::Shave(ZorWBDomainBox& box) {
    std::vector<int> order;
    for (int v : _problem.unknowns) {
        const ZorWBRoundedInterval& x = box.intervals[v];
        if (_problem.kinds[v] == ZorWBDomainKind::Real && x.IsBounded() &&
            x.high - x.low >= _problem.options.eps)
            order.push_back(v);
    }
    const std::vector<double> score = SplitScores(box);
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return score[a] > score[b]; });
    for (int v : order) {
        if (IsLate()) return true;
        if (!ShaveVariable(box, v)) return false;
    }
    return true;
}

bool ZorWBBranchAndPrune::Contract(ZorWBDomainBox& box, bool& proved, ZorWBDomainBox& provingBox) {
    ZorWBPropagationReport report;
    for (int round = 0; round < MaxRounds && !IsLate(); ++round) {
        if (!_kept->Propagate(box, _settings, report)) return false;
        if (_newton) {
            const ZorWBDomainBox before = box;
            ZorWBNewtonOutcome outcome = _newton->Contract(box.intervals);
            if (outcome != ZorWBNewtonOutcome::Unchanged) _jacobianFresh = true;
            if (outcome == ZorWBNewtonOutcome::Empty) return false;
            if (outcome == ZorWBNewtonOutcome::Proved && !proved) {
                proved = true;
                provingBox = before;
            }
            // Newton converging: let it go on.
            if (Progressed(before, box, _problem.unknowns, RoundProgress)) continue;
        }
        if (_linear && IsNarrowerThan(box, LinearWidth)) {
            const ZorWBDomainBox before = box;
            if (!_linear->Contract(box.intervals)) return false;
            if (Progressed(before, box, _problem.unknowns, RoundProgress)) continue;
        }
        const ZorWBDomainBox before = box;
        if (!Shave(box)) return false;
        if (!Progressed(before, box, _problem.unknowns, RoundProgress)) return true;
    }
    return true;
}

ZorWBBoolean ZorWBBranchAndPrune::InequalitiesHold(const ZorWBDomainBox& box) {
    const double tolerance = _kept->ResolveTolerance(_settings);
    ZorWBBoolean all = ZorWBTrue;
    for (int c = 0; c < _kept->GetNbOfConstraints(); ++c) {
        const ZorWBEquationType relation = _kept->GetConstraint(c).relation;
        if (relation == ZorWBEqualZero) continue;
        ZorWBBoolean holds = ZorWBRelationHolds(relation, _kept->EvaluateRoot(c, box), tolerance);
        if (holds == ZorWBFalse || holds == ZorWBEmpty) return ZorWBFalse;
        if (holds == ZorWBUnknown) all = ZorWBUnknown;
    }
    return all;
}

void ZorWBBranchAndPrune::Certify(const ZorWBDomainBox& cell, const ZorWBDomainBox& existence,
                                  const ZorWBDomainBox& uniqueness, ZorWBCellResult& result) {
    // The cell holds at most the one zero of the existence box.
    if (!existence.Intersects(cell) || !existence.Intersects(_problem.initial)) return;
    result.proved = true;
    if (!existence.IsInside(_problem.initial)) {
        ZorWBDomainBox part = existence;
        for (int v = 0; v < part.GetSize(); ++v)
            part.intervals[v] = ZorWBIntersect(part.intervals[v], _problem.initial.intervals[v]);
        result.outputs.push_back({ZorWBBoxType::Unknown, part, ZorWBDomainBox()});
        return;
    }
    switch (InequalitiesHold(existence)) {
        case ZorWBTrue:
            result.outputs.push_back({ZorWBBoxType::Solution, existence, uniqueness});
            break;
        case ZorWBUnknown:
            result.outputs.push_back({ZorWBBoxType::Boundary, existence, uniqueness});
            break;
        default:
            break;
    }
}

bool ZorWBBranchAndPrune::IsNarrowerThan(const ZorWBDomainBox& box, double part) const {
    for (int v : _problem.unknowns) {
        if (RelativeWidth(box.intervals[v]) > part) return false;
    }
    return true;
}

bool ZorWBBranchAndPrune::CanSplit(const ZorWBDomainBox& box, int variable, double& point) const {
    const ZorWBRoundedInterval& x = box.intervals[variable];
    switch (_problem.kinds[variable]) {
        case ZorWBDomainKind::Integer:
            if (!(x.low < x.high)) return false;
            point = x.IsBounded() ? std::floor(x.low + SplitRatio * (x.high - x.low)) : x.Middle();
            point = std::floor(point) + 0.5;  // between two integers
            return point > x.low && point < x.high;
        case ZorWBDomainKind::Listed:
            point = x.IsBounded() ? x.low + SplitRatio * (x.high - x.low) : x.Middle();
            return x.low < x.high && point > x.low && point < x.high;
        case ZorWBDomainKind::Real:
            break;
    }
    if (x.IsBounded()) {
        if (x.high - x.low < _problem.options.eps) return false;
        point = x.low + SplitRatio * (x.high - x.low);
    } else {
        point = x.Middle();
    }
    return std::isfinite(point) && point > x.low && point < x.high;
}

std::vector<double> ZorWBBranchAndPrune::SplitScores(const ZorWBDomainBox& box) const {
    std::vector<double> score(static_cast<std::size_t>(box.GetSize()), 0.0);
    if (!_newton || !_jacobianFresh) {
        for (int v : _problem.unknowns)
            score[v] = box.intervals[v].Width();
        return score;
    }
    // Relative smear: each equality's |df/dx|·width, normalised by the row's
    // sum, summed over the equalities.
    const std::vector<ZorWBRoundedInterval>& jacobian = _newton->GetJacobian();
    const std::vector<int>& unknowns = _square->GetUnknowns();
    const int n = _square->GetSize();
    for (int i = 0; i < n; ++i) {
        double row = 0.0;
        for (int j = 0; j < n; ++j)
            row += jacobian[i * n + j].Magnitude() * box.intervals[unknowns[j]].Width();
        if (!(row > 0.0) || !std::isfinite(row)) continue;
        for (int j = 0; j < n; ++j)
            score[unknowns[j]] +=
                jacobian[i * n + j].Magnitude() * box.intervals[unknowns[j]].Width() / row;
    }
    return score;
}

int ZorWBBranchAndPrune::ChooseVariable(const ZorWBDomainBox& box) {
    double point = 0.0;
    std::vector<int> candidates;
    for (int v : _problem.unknowns) {
        if (!CanSplit(box, v, point)) continue;
        if (!box.intervals[v].IsBounded()) return v;
        candidates.push_back(v);
    }
    if (candidates.empty()) return -1;
    std::vector<double> score = SplitScores(box);
    int best = candidates[0];
    for (int v : candidates) {
        if (score[v] > score[best] ||
            (score[v] == score[best] && box.intervals[v].Width() > box.intervals[best].Width()))
            best = v;
    }
    return best;
}

void ZorWBBranchAndPrune::Split(const ZorWBDomainBox& box, int variable, double point,
                                ZorWBCellResult& result) {
    ZorWBDomainBox left = box, right = box;
    const ZorWBRoundedInterval& x = box.intervals[variable];
    if (_problem.kinds[variable] == ZorWBDomainKind::Integer) {
        left.intervals[variable] = {x.low, std::floor(point)};
        right.intervals[variable] = {std::ceil(point), x.high};
    } else {
        left.intervals[variable] = {x.low, point};
        right.intervals[variable] = {point, x.high};
    }
    if (_problem.kinds[variable] == ZorWBDomainKind::Listed) {
        const ZorWBEnvironment& environment = _factory.GetEnvironment();
        for (ZorWBDomainBox* half : {&left, &right}) {
            ZorWBIntersect(environment, half->values[variable],
                           ZorWBValue(ZorWBToRealInterval(half->intervals[variable])));
            half->intervals[variable] = ZorWBDomainHull(half->values[variable]);
        }
    }
    result.children.push_back(std::move(left));
    result.children.push_back(std::move(right));
}

bool ZorWBBranchAndPrune::IsLate() {
    if (!_late && _deadline) _late = std::chrono::steady_clock::now() > *_deadline;
    return _late;
}

ZorWBCellResult ZorWBBranchAndPrune::Examine(
    const ZorWBDomainBox& cell, const std::chrono::steady_clock::time_point* deadline) {
    _deadline = deadline;
    _late = false;
    ZorWBCellResult result = ExamineCell(cell);
    result.late = _late;
    return result;
}

ZorWBCellResult ZorWBBranchAndPrune::ExamineCell(const ZorWBDomainBox& cell) {
    ZorWBCellResult result;
    ZorWBDomainBox box = cell;
    bool proved = false;
    ZorWBDomainBox provingBox;
    _jacobianFresh = false;
    if (!Contract(box, proved, provingBox)) return result;
    if (_newton) {
        if (proved) {
            if (_newton->Tighten(box.intervals)) Certify(cell, box, provingBox, result);
            return result;
        }
        ZorWBDomainBox existence = box, uniqueness = box;
        if (IsNarrowerThan(box, ProofWidth) &&
            _newton->ProveUnique(box.intervals, existence.intervals, uniqueness.intervals)) {
            Certify(cell, existence, uniqueness, result);
            return result;
        }
    }
    if (!HasEqualities() && InequalitiesHold(box) == ZorWBTrue) {
        result.outputs.push_back({ZorWBBoxType::Solution, box, ZorWBDomainBox()});
        return result;
    }
    const int variable = ChooseVariable(box);
    double point = 0.0;
    if (variable < 0 || !CanSplit(box, variable, point)) {
        const ZorWBBoxType type = HasEqualities() ? ZorWBBoxType::Unknown : ZorWBBoxType::Boundary;
        result.outputs.push_back({type, box, ZorWBDomainBox()});
        return result;
    }
    Split(box, variable, point, result);
    return result;
}
