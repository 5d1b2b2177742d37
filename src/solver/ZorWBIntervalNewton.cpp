// Interval Newton (Hansen–Sengupta with a Gauss–Seidel sweep) and the
// proof by inflation; the method and its theorem are in the header. The
// midpoint Jacobian is inverted in doubles: only the preconditioner is
// approximate, every enclosure after it is outward-rounded, so a wrong
// inverse makes a step weaker, never unsound.

#include "solver/ZorWBIntervalNewton.h"

#include <algorithm>
#include <cmath>

namespace {

// acc + c · x, outward.
ZorWBRoundedInterval AddScaled(const ZorWBRoundedInterval& acc, double c,
                               const ZorWBRoundedInterval& x) {
    if (c == 0.0) return acc;
    return ZorWBAdd(acc, ZorWBMultiply(ZorWBMakePoint(c), x));
}

bool IsZero(const ZorWBRoundedInterval& x) {
    return x.low == 0.0 && x.high == 0.0;
}

// Solves the rows of work (n × width, the first n columns the matrix) in
// place by Gauss–Jordan elimination with partial pivoting; false when a
// pivot is 0 or not finite.
bool GaussJordan(std::vector<double>& work, int n, int width) {
    auto at = [&](int row, int column) -> double& {
        return work[static_cast<std::size_t>(row * width + column)];
    };
    for (int column = 0; column < n; ++column) {
        int pivot = column;
        for (int row = column + 1; row < n; ++row) {
            if (std::fabs(at(row, column)) > std::fabs(at(pivot, column))) pivot = row;
        }
        const double p = at(pivot, column);
        if (p == 0.0 || !std::isfinite(p)) return false;
        if (pivot != column) {
            for (int k = 0; k < width; ++k)
                std::swap(at(pivot, k), at(column, k));
        }
        for (int k = 0; k < width; ++k)
            at(column, k) /= p;
        for (int row = 0; row < n; ++row) {
            const double factor = at(row, column);
            if (row == column || factor == 0.0) continue;
            for (int k = column; k < width; ++k)
                at(row, k) -= factor * at(column, k);
        }
    }
    return true;
}

bool IsBounded(const std::vector<ZorWBRoundedInterval>& box, const std::vector<int>& unknowns) {
    return std::all_of(unknowns.begin(), unknowns.end(), [&](int v) { return box[v].IsBounded(); });
}

}  // namespace

ZorWBIntervalNewton::ZorWBIntervalNewton(ZorWBSquareSystem& system)
    : _system(system),
      _n(system.GetSize()),
      _jacobian(static_cast<std::size_t>(_n * _n)),
      _preconditioned(static_cast<std::size_t>(_n * _n)),
      _functions(static_cast<std::size_t>(_n)),
      _inverse(static_cast<std::size_t>(_n * _n)) {}

bool ZorWBIntervalNewton::InvertMidpoint() {
    const int width = 2 * _n;
    _work.assign(static_cast<std::size_t>(_n * width), 0.0);
    for (int i = 0; i < _n; ++i) {
        for (int j = 0; j < _n; ++j)
            _work[i * width + j] = _jacobian[i * _n + j].Middle();
        _work[i * width + _n + i] = 1.0;
    }
    if (!GaussJordan(_work, _n, width)) return false;
    for (int i = 0; i < _n; ++i) {
        for (int j = 0; j < _n; ++j)
            _inverse[i * _n + j] = _work[i * width + _n + j];
    }
    return true;
}

bool ZorWBIntervalNewton::Precondition(const std::vector<ZorWBRoundedInterval>& box,
                                       const std::vector<double>& center) {
    const std::vector<int>& unknowns = _system.GetUnknowns();
    _pointBox = box;
    for (int j = 0; j < _n; ++j)
        _pointBox[unknowns[j]] = ZorWBMakePoint(center[j]);
    if (!_system.EvaluateFunctions(_pointBox, _functions.data())) return false;
    if (!_system.EvaluateJacobian(box, _jacobian.data()) || !InvertMidpoint()) return false;
    // A = C·J over the entries of J that are not known to be 0; b = C·F(m).
    std::vector<ZorWBRoundedInterval> b(static_cast<std::size_t>(_n), ZorWBMakePoint(0.0));
    for (int i = 0; i < _n; ++i) {
        for (int j = 0; j < _n; ++j) {
            ZorWBRoundedInterval sum = ZorWBMakePoint(0.0);
            for (int k = 0; k < _n; ++k) {
                if (!_system.IsStructuralZero(k, j))
                    sum = AddScaled(sum, _inverse[i * _n + k], _jacobian[k * _n + j]);
            }
            _preconditioned[i * _n + j] = sum;
        }
        for (int k = 0; k < _n; ++k)
            b[i] = AddScaled(b[i], _inverse[i * _n + k], _functions[k]);
    }
    _functions.swap(b);
    return true;
}

ZorWBNewtonOutcome ZorWBIntervalNewton::Step(std::vector<ZorWBRoundedInterval>& box,
                                             const std::vector<double>& center, bool& strictly) {
    strictly = false;
    if (!Precondition(box, center)) return ZorWBNewtonOutcome::Unchanged;
    const std::vector<int>& unknowns = _system.GetUnknowns();
    bool inside = true, changed = false;
    for (int i = 0; i < _n; ++i) {
        // −b_i − Σ_{j≠i} A_ij (X_j − m_j)
        ZorWBRoundedInterval sum = ZorWBNegate(_functions[i]);
        for (int j = 0; j < _n; ++j) {
            const ZorWBRoundedInterval& a = _preconditioned[i * _n + j];
            if (j == i || IsZero(a)) continue;
            ZorWBRoundedInterval offset =
                ZorWBSubtract(box[unknowns[j]], ZorWBMakePoint(center[j]));
            sum = ZorWBSubtract(sum, ZorWBMultiply(a, offset));
        }
        const ZorWBRoundedInterval current = box[unknowns[i]];
        const ZorWBRoundedInterval& diagonal = _preconditioned[i * _n + i];
        ZorWBRoundedInterval pieces[2];
        const int count = ZorWBFactorPreimage(sum, diagonal, pieces);
        ZorWBRoundedInterval narrowed = ZorWBEmptyInterval();
        for (int k = 0; k < count; ++k) {
            ZorWBRoundedInterval image = ZorWBAdd(ZorWBMakePoint(center[i]), pieces[k]);
            narrowed = ZorWBHull(narrowed, ZorWBIntersect(current, image));
            inside = inside && count == 1 && !diagonal.Contains(0.0) &&
                     current.ContainsInInterior(image);
        }
        if (narrowed.IsEmpty()) return ZorWBNewtonOutcome::Empty;
        if (narrowed.low != current.low || narrowed.high != current.high) {
            changed = true;
            box[unknowns[i]] = narrowed;
        }
    }
    strictly = inside;
    if (inside) return ZorWBNewtonOutcome::Proved;
    return changed ? ZorWBNewtonOutcome::Contracted : ZorWBNewtonOutcome::Unchanged;
}

ZorWBNewtonOutcome ZorWBIntervalNewton::Contract(std::vector<ZorWBRoundedInterval>& box) {
    const std::vector<int>& unknowns = _system.GetUnknowns();
    if (_n == 0 || !_system.IsValid() || !IsBounded(box, unknowns))
        return ZorWBNewtonOutcome::Unchanged;
    std::vector<double> center(static_cast<std::size_t>(_n));
    for (int j = 0; j < _n; ++j)
        center[j] = box[unknowns[j]].Middle();
    bool strictly = false;
    return Step(box, center, strictly);
}

bool ZorWBIntervalNewton::Refine(const std::vector<ZorWBRoundedInterval>& box,
                                 std::vector<double>& point) {
    const std::vector<int>& unknowns = _system.GetUnknowns();
    const int maxIterations = 20;
    std::vector<double> step(static_cast<std::size_t>(_n));
    for (int iteration = 0; iteration < maxIterations; ++iteration) {
        _pointBox = box;
        for (int j = 0; j < _n; ++j)
            _pointBox[unknowns[j]] = ZorWBMakePoint(point[j]);
        if (!_system.EvaluateFunctions(_pointBox, _functions.data()) ||
            !_system.EvaluateJacobian(_pointBox, _jacobian.data()) || !InvertMidpoint())
            return false;
        double largest = 0.0, scale = 0.0;
        for (int i = 0; i < _n; ++i) {
            double delta = 0.0;
            for (int k = 0; k < _n; ++k)
                delta += _inverse[i * _n + k] * _functions[k].Middle();
            step[i] = delta;
            largest = std::max(largest, std::fabs(delta));
            scale = std::max(scale, std::fabs(point[i]));
        }
        if (!std::isfinite(largest)) return false;
        for (int i = 0; i < _n; ++i)
            point[i] -= step[i];
        if (largest <= 1e-15 * (1.0 + scale)) return true;
    }
    return false;
}

bool ZorWBIntervalNewton::ProveUnique(const std::vector<ZorWBRoundedInterval>& cell,
                                      std::vector<ZorWBRoundedInterval>& existence,
                                      std::vector<ZorWBRoundedInterval>& uniqueness) {
    const std::vector<int>& unknowns = _system.GetUnknowns();
    if (_n == 0 || !_system.IsValid() || !IsBounded(cell, unknowns)) return false;
    std::vector<double> middle(static_cast<std::size_t>(_n)), point;
    for (int j = 0; j < _n; ++j)
        middle[j] = cell[unknowns[j]].Middle();
    point = middle;
    // An approximate zero near the cell; the midpoint when the iterations
    // wander off.
    bool near = Refine(cell, point);
    for (int j = 0; near && j < _n; ++j) {
        const ZorWBRoundedInterval& domain = cell[unknowns[j]];
        const double width = domain.high - domain.low;
        near = point[j] >= domain.low - width && point[j] <= domain.high + width;
    }
    if (!near) point = middle;
    // U: the cell and the point, inflated by a tenth of the width and a few
    // units of the magnitude.
    uniqueness = cell;
    for (int j = 0; j < _n; ++j) {
        const ZorWBRoundedInterval& domain = cell[unknowns[j]];
        const double low = std::min(domain.low, point[j]), high = std::max(domain.high, point[j]);
        const double margin =
            0.1 * (high - low) + 1e-12 * (1.0 + std::max(std::fabs(low), std::fabs(high)));
        uniqueness[unknowns[j]] = {ZorWBNextDown(low - margin), ZorWBNextUp(high + margin)};
    }
    existence = uniqueness;
    bool strictly = false;
    if (Step(existence, point, strictly) != ZorWBNewtonOutcome::Proved || !strictly) return false;
    return Tighten(existence);
}

bool ZorWBIntervalNewton::Tighten(std::vector<ZorWBRoundedInterval>& box) {
    const std::vector<int>& unknowns = _system.GetUnknowns();
    auto widest = [&] {
        double width = 0.0;
        for (int v : unknowns)
            width = std::max(width, box[v].Width());
        return width;
    };
    for (int step = 0; step < MaxTighteningSteps; ++step) {
        const double before = widest();
        const ZorWBNewtonOutcome outcome = Contract(box);
        if (outcome == ZorWBNewtonOutcome::Empty) return false;
        if (outcome == ZorWBNewtonOutcome::Unchanged || widest() > 0.99 * before) break;
    }
    return true;
}
