// The linear relaxation of a square system and its rigorous use (method and
// proof in the header): every bound that reaches the box is recomputed from
// the duals in outward rounding, so the floating-point simplex can err
// without losing a zero.

#include "solver/ZorWBLinearContractor.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// The largest value of coefficient · x over x in an interval, rounded up.
double MaximumOver(const ZorWBRoundedInterval& coefficient, const ZorWBRoundedInterval& x) {
    return ZorWBMultiply(coefficient, x).high;
}

}  // namespace

ZorWBLinearContractor::ZorWBLinearContractor(ZorWBSquareSystem& system)
    : _system(system),
      _n(system.GetSize()),
      _jacobian(static_cast<std::size_t>(_n * _n)),
      _functions(static_cast<std::size_t>(_n)) {}

void ZorWBLinearContractor::AddRow(const std::vector<double>& coefficients,
                                   const ZorWBRoundedInterval& offset,
                                   const std::vector<double>& corner) {
    // coefficients·x <= offset + coefficients·corner, the right side rounded up.
    ZorWBRoundedInterval rhs = offset;
    for (int j = 0; j < _n; ++j) {
        if (!std::isfinite(coefficients[j])) return;
        rhs = ZorWBAdd(rhs,
                       ZorWBMultiply(ZorWBMakePoint(coefficients[j]), ZorWBMakePoint(corner[j])));
    }
    if (!std::isfinite(rhs.high)) return;
    _rows.insert(_rows.end(), coefficients.begin(), coefficients.end());
    _rhs.push_back(rhs.high);
}

bool ZorWBLinearContractor::Relax(const std::vector<ZorWBRoundedInterval>& box) {
    const std::vector<int>& unknowns = _system.GetUnknowns();
    _rows.clear();
    _rhs.clear();
    if (!_system.EvaluateJacobian(box, _jacobian.data())) return false;
    std::vector<double> corner(static_cast<std::size_t>(_n)), row(static_cast<std::size_t>(_n));
    for (const bool lower : {true, false}) {
        std::vector<ZorWBRoundedInterval> point = box;
        for (int j = 0; j < _n; ++j) {
            corner[j] = lower ? box[unknowns[j]].low : box[unknowns[j]].high;
            point[unknowns[j]] = ZorWBMakePoint(corner[j]);
        }
        if (!_system.EvaluateFunctions(point, _functions.data())) return false;
        for (int i = 0; i < _n; ++i) {
            const ZorWBRoundedInterval& f = _functions[i];
            // At the lower corner x - c >= 0: f(x) lies between f(c) + J.lo (x - c)
            // and f(c) + J.hi (x - c); at the upper corner the bounds swap.
            for (int j = 0; j < _n; ++j)
                row[j] = lower ? _jacobian[i * _n + j].low : _jacobian[i * _n + j].high;
            AddRow(row, ZorWBMakePoint(-f.low), corner);  // J x <= -F.lo + J c
            for (int j = 0; j < _n; ++j)
                row[j] = lower ? -_jacobian[i * _n + j].high : -_jacobian[i * _n + j].low;
            AddRow(row, ZorWBMakePoint(f.high), corner);  // -J x <= F.hi - J c
        }
    }
    return true;
}

double ZorWBLinearContractor::ProvedMaximum(const std::vector<double>& direction,
                                            const std::vector<ZorWBRoundedInterval>& box) {
    const std::vector<int>& unknowns = _system.GetUnknowns();
    const std::vector<double>& y = _program.GetDuals();
    const int m = static_cast<int>(_rhs.size());
    // y·b + max over X of (direction - Aᵀy)·x.
    ZorWBRoundedInterval bound = ZorWBMakePoint(0.0);
    for (int i = 0; i < m; ++i)
        bound = ZorWBAdd(bound, ZorWBMultiply(ZorWBMakePoint(y[i]), ZorWBMakePoint(_rhs[i])));
    double maximum = bound.high;
    for (int j = 0; j < _n; ++j) {
        ZorWBRoundedInterval residual = ZorWBMakePoint(direction[j]);
        for (int i = 0; i < m; ++i) {
            residual = ZorWBSubtract(
                residual, ZorWBMultiply(ZorWBMakePoint(y[i]), ZorWBMakePoint(_rows[i * _n + j])));
        }
        maximum = ZorWBAdd(ZorWBMakePoint(maximum),
                           ZorWBMakePoint(MaximumOver(residual, box[unknowns[j]])))
                      .high;
    }
    return std::isnan(maximum) ? std::numeric_limits<double>::infinity() : maximum;
}

bool ZorWBLinearContractor::ProvesEmpty(const std::vector<ZorWBRoundedInterval>& box) {
    // With y >= 0, every x of the polytope has 0 <= y·b - (Aᵀy)·x; a box on
    // which max of -(Aᵀy)·x stays below -y·b holds none.
    std::vector<double> zero(static_cast<std::size_t>(_n), 0.0);
    return ProvedMaximum(zero, box) < 0.0;
}

bool ZorWBLinearContractor::Contract(std::vector<ZorWBRoundedInterval>& box) {
    const std::vector<int>& unknowns = _system.GetUnknowns();
    if (_n == 0 || !_system.IsValid()) return true;
    for (int v : unknowns) {
        if (!box[v].IsBounded()) return true;
    }
    if (!Relax(box) || _rhs.empty()) return true;
    const int m = static_cast<int>(_rhs.size());
    std::vector<double> low(static_cast<std::size_t>(_n)), high(static_cast<std::size_t>(_n));
    for (int j = 0; j < _n; ++j) {
        low[j] = box[unknowns[j]].low;
        high[j] = box[unknowns[j]].high;
    }
    // One feasible basis for all 2n objectives; the bounds they prove narrow
    // the box at the end.
    switch (_program.Prepare(m, _n, _rows, _rhs, low, high)) {
        case ZorWBLinearProgram::Result::Infeasible:
            return !ProvesEmpty(box);
        case ZorWBLinearProgram::Result::Optimal:
            break;
        default:
            return true;
    }
    std::vector<double> direction(static_cast<std::size_t>(_n), 0.0);
    std::vector<ZorWBRoundedInterval> narrowed = box;
    for (int j = 0; j < _n; ++j) {
        for (const double sign : {1.0, -1.0}) {
            std::fill(direction.begin(), direction.end(), 0.0);
            direction[j] = sign;
            if (_program.Maximize(direction) != ZorWBLinearProgram::Result::Optimal) continue;
            const double bound = ProvedMaximum(direction, box);
            ZorWBRoundedInterval& x = narrowed[unknowns[j]];
            if (sign > 0.0)
                x.high = std::min(x.high, bound);
            else
                x.low = std::max(x.low, -bound);
            if (x.IsEmpty()) return false;
        }
    }
    box.swap(narrowed);
    return true;
}
