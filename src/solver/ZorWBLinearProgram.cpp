// The dense two-phase simplex of small linear programs (the method is in
// the header). The tableau keeps the rows scaled so that the basic columns
// are unit vectors; the objective row holds the reduced costs, whose entries
// under the slack columns are the dual values of the rows.

#include "solver/ZorWBLinearProgram.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double Epsilon = 1e-11;
// Pivots at most, per row and column: a guard against cycling left over by
// the degenerate-pivot rule.
constexpr int PivotsPerDimension = 50;
// Degenerate pivots in a row before Bland's rule takes over.
constexpr int DegenerateRun = 20;

}  // namespace

void ZorWBLinearProgram::Pivot(int row, int column) {
    const double pivot = At(row, column);
    for (int k = 0; k < _width; ++k)
        At(row, k) /= pivot;
    for (int r = 0; r < _rows; ++r) {
        const double factor = At(r, column);
        if (r == row || factor == 0.0) continue;
        for (int k = 0; k < _width; ++k)
            At(r, k) -= factor * At(row, k);
    }
    const double factor = _objective[column];
    if (factor != 0.0) {
        for (int k = 0; k < _width; ++k)
            _objective[k] -= factor * At(row, k);
    }
    _basis[row] = column;
}

bool ZorWBLinearProgram::Run(int columns, bool& unbounded) {
    unbounded = false;
    const int limit = PivotsPerDimension * (_rows + columns);
    int degenerate = 0;
    for (int pivots = 0; pivots < limit; ++pivots) {
        // Entering: the most negative reduced cost, or the first negative
        // one (Bland) after a run of degenerate pivots.
        int entering = -1;
        for (int k = 0; k < columns; ++k) {
            if (_objective[k] >= -Epsilon) continue;
            if (entering < 0 ||
                (degenerate < DegenerateRun && _objective[k] < _objective[entering]))
                entering = k;
            if (degenerate >= DegenerateRun) break;
        }
        if (entering < 0) return true;
        int leaving = -1;
        double best = 0.0;
        for (int r = 0; r < _rows; ++r) {
            const double coefficient = At(r, entering);
            if (coefficient <= Epsilon) continue;
            const double ratio = At(r, _width - 1) / coefficient;
            if (leaving < 0 || ratio < best - Epsilon ||
                (ratio <= best + Epsilon && _basis[r] < _basis[leaving])) {
                leaving = r;
                best = ratio;
            }
        }
        if (leaving < 0) {
            unbounded = true;
            return false;
        }
        degenerate = best <= Epsilon ? degenerate + 1 : 0;
        Pivot(leaving, entering);
    }
    return false;
}

ZorWBLinearProgram::Result ZorWBLinearProgram::Prepare(int m, int n, const std::vector<double>& a,
                                                       const std::vector<double>& b,
                                                       const std::vector<double>& low,
                                                       const std::vector<double>& high) {
    _m = m;
    _n = n;
    _low = low;
    if (m < 0 || n < 1 || a.size() != static_cast<std::size_t>(m * n) ||
        b.size() != static_cast<std::size_t>(m) || low.size() != static_cast<std::size_t>(n) ||
        high.size() != static_cast<std::size_t>(n))
        return _state = Result::Failed;
    // Rows: A z <= b - A low, then z <= high - low. Columns: z, the slacks,
    // the artificials of the rows with a negative right side, the right side.
    _rows = m + n;
    std::vector<double> rhs(static_cast<std::size_t>(_rows));
    for (int i = 0; i < m; ++i) {
        double shifted = b[i];
        for (int j = 0; j < n; ++j)
            shifted -= a[i * n + j] * low[j];
        rhs[i] = shifted;
    }
    for (int j = 0; j < n; ++j)
        rhs[m + j] = high[j] - low[j];
    int artificials = 0;
    for (double value : rhs)
        artificials += value < 0.0;
    _slack0 = n;
    _artificial0 = n + _rows;
    _width = n + _rows + artificials + 1;
    _tableau.assign(static_cast<std::size_t>(_rows) * _width, 0.0);
    _basis.assign(static_cast<std::size_t>(_rows), 0);
    _objective.assign(static_cast<std::size_t>(_width), 0.0);
    for (int i = 0, next = _artificial0; i < _rows; ++i) {
        const double sign = rhs[i] < 0.0 ? -1.0 : 1.0;
        for (int j = 0; j < n; ++j)
            At(i, j) = sign * (i < m ? a[i * n + j] : (j == i - m ? 1.0 : 0.0));
        At(i, _slack0 + i) = sign;
        At(i, _width - 1) = sign * rhs[i];
        if (sign > 0.0) {
            _basis[i] = _slack0 + i;
        } else {
            At(i, next) = 1.0;
            _basis[i] = next++;
            // Phase 1 maximises minus the artificials: their rows are
            // subtracted so that the objective row is reduced.
            for (int k = 0; k < _width; ++k)
                _objective[k] -= At(i, k);
            _objective[_basis[i]] += 1.0;
        }
    }
    _y.assign(static_cast<std::size_t>(m), 0.0);
    if (artificials == 0) return _state = Result::Optimal;
    bool unbounded = false;
    if (!Run(_width - 1, unbounded)) return _state = Result::Failed;
    if (_objective[_width - 1] < -1e-9 * (1.0 + std::fabs(_objective[_width - 1]))) {
        ReadDuals();
        return _state = Result::Infeasible;
    }
    // Artificials left in the basis at level 0 leave it where they can.
    for (int r = 0; r < _rows; ++r) {
        if (_basis[r] < _artificial0) continue;
        for (int k = 0; k < _artificial0; ++k) {
            if (std::fabs(At(r, k)) > Epsilon) {
                Pivot(r, k);
                break;
            }
        }
    }
    return _state = Result::Optimal;
}

void ZorWBLinearProgram::ReadDuals() {
    for (int i = 0; i < _m; ++i)
        _y[i] = std::max(0.0, _objective[_slack0 + i]);
}

ZorWBLinearProgram::Result ZorWBLinearProgram::Maximize(const std::vector<double>& c) {
    if (_state != Result::Optimal || c.size() != static_cast<std::size_t>(_n)) return _state;
    // Phase 2 from the feasible basis of the last solve: the objective row of
    // c·z, reduced over the basic columns.
    std::fill(_objective.begin(), _objective.end(), 0.0);
    for (int j = 0; j < _n; ++j)
        _objective[j] = -c[j];
    for (int r = 0; r < _rows; ++r) {
        const int basic = _basis[r];
        if (basic < _n && _objective[basic] != 0.0) {
            const double factor = _objective[basic];
            for (int k = 0; k < _width; ++k)
                _objective[k] -= factor * At(r, k);
        }
    }
    bool unbounded = false;
    if (!Run(_artificial0, unbounded)) {
        _state = Result::Failed;  // the tableau may be left anywhere
        return unbounded ? Result::Unbounded : Result::Failed;
    }
    _x = _low;
    for (int r = 0; r < _rows; ++r) {
        if (_basis[r] < _n) _x[_basis[r]] += At(r, _width - 1);
    }
    ReadDuals();
    return Result::Optimal;
}
