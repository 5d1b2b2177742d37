// Backward operators of sin, cos and tan: the inverse image of a set of
// values is a union of pieces repeated every period, and only the pieces
// nearest each end of the domain decide its new bounds.
//
// Method: the pieces of one period are computed once, outward, as offsets
// (for sin: [asin Y, asin Y̅] and [π − asin Y̅, π − asin Y], both within the
// window [−π/2, 3π/2]). The new low bound is the first point of a piece
// k·period + offset at or above the domain's low bound: the scan starts one
// period before the period whose window holds the bound (that index is
// computed in doubles and may be off by one) and stops at the first piece
// that reaches the bound, so it looks at a handful of pieces whatever the
// domain's width.
// The high bound is found the same way going down. A domain end that is
// infinite or beyond 2^30 (where a double no longer knows its phase) is left
// as it is. Cost: a few evaluations of the inverse function and of k·π.

#include <algorithm>
#include <cmath>

#include "solver/ZorWBProjections.h"
#include "solver/ZorWBRoundedSteps.h"

namespace ZorWBProjection {

namespace {

constexpr double LargestPhase = 1073741824.0;  // 2^30
constexpr double PiBelow = 3.141592653589793;  // the double just below pi
// Periods scanned from the starting one, one period before the bound's:
// enough to pass two whole periods beyond the bound.
constexpr int ScannedPeriods = 4;

// The pieces of one period: offsets[0..count) in increasing order, all
// within the window [windowStart, windowStart + period], where the period is
// periodScale * pi.
struct PeriodicPieces {
    ZorWBRoundedInterval offsets[2];
    int count;
    double periodScale;
    double windowStart;
};

// offset + k * periodScale * pi, outward.
ZorWBRoundedInterval Piece(const PeriodicPieces& pieces, int i, double k) {
    using namespace ZorWBRoundedSteps;
    const double turns = k * pieces.periodScale;  // an integer: exact
    const double piAbove = ZorWBNextUp(PiBelow);
    const double low = turns >= 0.0 ? MultiplyDown(turns, PiBelow) : MultiplyDown(turns, piAbove);
    const double high = turns >= 0.0 ? MultiplyUp(turns, piAbove) : MultiplyUp(turns, PiBelow);
    const ZorWBRoundedInterval& offset = pieces.offsets[i];
    return {Down(offset.low + low), Up(offset.high + high)};
}

// The index of the period whose window holds x, give or take one.
double PeriodOf(const PeriodicPieces& pieces, double x) {
    return std::floor((x - pieces.windowStart) / (pieces.periodScale * PiBelow));
}

bool Usable(double bound) {
    return std::fabs(bound) < LargestPhase;
}

// The smallest point at or above low that lies in a piece (+inf if none is
// found: the pieces were empty).
double FirstPointFrom(const PeriodicPieces& pieces, double low) {
    const double start = PeriodOf(pieces, low) - 1.0;
    for (int period = 0; period < ScannedPeriods; ++period) {
        for (int i = 0; i < pieces.count; ++i) {
            ZorWBRoundedInterval piece = Piece(pieces, i, start + period);
            if (piece.high >= low) return std::max(low, piece.low);
        }
    }
    return ZorWBRoundedSteps::Infinity;
}

// The largest point at or below high that lies in a piece.
double LastPointFrom(const PeriodicPieces& pieces, double high) {
    const double start = PeriodOf(pieces, high) + 1.0;
    for (int period = 0; period < ScannedPeriods; ++period) {
        for (int i = pieces.count - 1; i >= 0; --i) {
            ZorWBRoundedInterval piece = Piece(pieces, i, start - period);
            if (piece.low <= high) return std::min(high, piece.high);
        }
    }
    return -ZorWBRoundedSteps::Infinity;
}

bool NarrowPeriodic(ZorWBRoundedInterval& x, const PeriodicPieces& pieces) {
    if (x.IsEmpty() || pieces.count == 0) {
        x = ZorWBEmptyInterval();
        return false;
    }
    if (Usable(x.low)) x.low = FirstPointFrom(pieces, x.low);
    if (Usable(x.high)) x.high = LastPointFrom(pieces, x.high);
    return !x.IsEmpty();
}

// The sine values z can take.
ZorWBRoundedInterval UnitValues(const ZorWBRoundedInterval& z) {
    return ZorWBIntersect(z, {-1.0, 1.0});
}

bool CoversUnit(const ZorWBRoundedInterval& values) {
    return values.low <= -1.0 && values.high >= 1.0;
}

}  // namespace

bool Sine(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x) {
    ZorWBRoundedInterval values = UnitValues(z);
    if (CoversUnit(values)) return !x.IsEmpty();
    PeriodicPieces pieces{{}, 0, 2.0, -PiBelow / 2.0};
    if (!values.IsEmpty()) {
        ZorWBRoundedInterval rising = ZorWBArcSine(values);  // within [-pi/2, pi/2]
        pieces.offsets[0] = rising;
        pieces.offsets[1] = ZorWBSubtract(ZorWBPiInterval(), rising);
        pieces.count = 2;
    }
    return NarrowPeriodic(x, pieces);
}

bool Cosine(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x) {
    ZorWBRoundedInterval values = UnitValues(z);
    if (CoversUnit(values)) return !x.IsEmpty();
    PeriodicPieces pieces{{}, 0, 2.0, 0.0};
    if (!values.IsEmpty()) {
        ZorWBRoundedInterval falling = ZorWBArcCosine(values);  // within [0, pi]
        pieces.offsets[0] = falling;
        pieces.offsets[1] = ZorWBSubtract(ZorWBPiMultiple(1.0, 2.0), falling);
        pieces.count = 2;
    }
    return NarrowPeriodic(x, pieces);
}

bool Tangent(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x) {
    if (z.IsEmpty()) {
        x = ZorWBEmptyInterval();
        return false;
    }
    if (!z.IsBounded()) return !x.IsEmpty();
    PeriodicPieces pieces{{ZorWBArcTangent(z)}, 1, 1.0, -PiBelow / 2.0};  // within [-pi/2, pi/2]
    return NarrowPeriodic(x, pieces);
}

}  // namespace ZorWBProjection
