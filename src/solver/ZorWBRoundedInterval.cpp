// Outward-rounded interval arithmetic: sets, the four operations, powers and
// roots. Each bound computed in round-to-nearest steps one unit outward (the
// operations here are correctly rounded, so one step passes the exact
// value); bounds that are exact by construction (a bound copied or negated,
// a product or quotient with a zero operand) are left alone. Products of 0
// and an infinity count as 0: an interval bound at infinity stands for
// arbitrarily large finite values. Products and quotients take their bounds
// from the signs of the operands, so that no bound is an infinity divided by
// an infinity.

#include "solver/ZorWBRoundedInterval.h"

#include <algorithm>
#include <cmath>

#include "solver/ZorWBRoundedSteps.h"

using namespace ZorWBRoundedSteps;

double ZorWBRoundedInterval::Width() const {
    if (IsEmpty()) return 0.0;
    return ZorWBNextUp(high - low);
}

double ZorWBRoundedInterval::Middle() const {
    if (IsBounded()) {
        double middle = 0.5 * low + 0.5 * high;
        return std::min(std::max(middle, low), high);
    }
    if (low == -Infinity && high == Infinity) return 0.0;
    // A point beyond the finite end, far enough to matter for a bisection.
    if (low == -Infinity) return high > 0.0 ? 0.0 : std::min(-1.0, 2.0 * high);
    return low < 0.0 ? 0.0 : std::max(1.0, 2.0 * low);
}

double ZorWBRoundedInterval::Magnitude() const {
    return std::max(std::fabs(low), std::fabs(high));
}

double ZorWBRoundedInterval::Mignitude() const {
    if (low > 0.0) return low;
    if (high < 0.0) return -high;
    return 0.0;
}

ZorWBRoundedInterval ZorWBEmptyInterval() {
    return {Infinity, -Infinity};
}

ZorWBRoundedInterval ZorWBFromRealInterval(const ZorWBRealInterval& interval) {
    if (!(interval.low <= interval.high)) return ZorWBEmptyInterval();
    double low = interval.low <= -ZorWBRealLimit ? -Infinity : interval.low;
    double high = interval.high >= ZorWBRealLimit ? Infinity : interval.high;
    return {low, high};
}

ZorWBRealInterval ZorWBToRealInterval(const ZorWBRoundedInterval& interval) {
    if (interval.IsEmpty()) return ZorWBReal_Nil;
    return {std::max(interval.low, -ZorWBRealLimit), std::min(interval.high, ZorWBRealLimit)};
}

bool ZorWBIsSubset(const ZorWBRoundedInterval& b, const ZorWBRoundedInterval& a) {
    return b.IsEmpty() || (a.low <= b.low && b.high <= a.high);
}

ZorWBRoundedInterval ZorWBMultiply(const ZorWBRoundedInterval& a, const ZorWBRoundedInterval& b) {
    if (a.IsEmpty() || b.IsEmpty()) return ZorWBEmptyInterval();
    // The bounds of the product by the signs of the operands (non-negative,
    // non-positive or holding 0 inside).
    if (a.low >= 0.0) {
        if (b.low >= 0.0) return {MultiplyDown(a.low, b.low), MultiplyUp(a.high, b.high)};
        if (b.high <= 0.0) return {MultiplyDown(a.high, b.low), MultiplyUp(a.low, b.high)};
        return {MultiplyDown(a.high, b.low), MultiplyUp(a.high, b.high)};
    }
    if (a.high <= 0.0) {
        if (b.low >= 0.0) return {MultiplyDown(a.low, b.high), MultiplyUp(a.high, b.low)};
        if (b.high <= 0.0) return {MultiplyDown(a.high, b.high), MultiplyUp(a.low, b.low)};
        return {MultiplyDown(a.low, b.high), MultiplyUp(a.low, b.low)};
    }
    if (b.low >= 0.0) return {MultiplyDown(a.low, b.high), MultiplyUp(a.high, b.high)};
    if (b.high <= 0.0) return {MultiplyDown(a.high, b.low), MultiplyUp(a.low, b.low)};
    return {std::min(MultiplyDown(a.low, b.high), MultiplyDown(a.high, b.low)),
            std::max(MultiplyUp(a.low, b.low), MultiplyUp(a.high, b.high))};
}

namespace {

// The quotient of a by a divisor that does not hold 0, by the signs of the
// operands; no bound divides an infinity by an infinity.
ZorWBRoundedInterval DivideAwayFromZero(const ZorWBRoundedInterval& a,
                                        const ZorWBRoundedInterval& b) {
    if (b.low > 0.0) {
        if (a.low >= 0.0) return {DivideDown(a.low, b.high), DivideUp(a.high, b.low)};
        if (a.high <= 0.0) return {DivideDown(a.low, b.low), DivideUp(a.high, b.high)};
        return {DivideDown(a.low, b.low), DivideUp(a.high, b.low)};
    }
    if (a.low >= 0.0) return {DivideDown(a.high, b.high), DivideUp(a.low, b.low)};
    if (a.high <= 0.0) return {DivideDown(a.high, b.low), DivideUp(a.low, b.high)};
    return {DivideDown(a.high, b.high), DivideUp(a.low, b.high)};
}

}  // namespace

int ZorWBDivideExtended(const ZorWBRoundedInterval& a, const ZorWBRoundedInterval& b,
                        ZorWBRoundedInterval pieces[2]) {
    if (a.IsEmpty() || b.IsEmpty() || (b.low == 0.0 && b.high == 0.0)) return 0;
    if (b.low > 0.0 || b.high < 0.0) {
        pieces[0] = DivideAwayFromZero(a, b);
        return 1;
    }
    if (a.low == 0.0 && a.high == 0.0) {
        pieces[0] = {0.0, 0.0};
        return 1;
    }
    if (a.low < 0.0 && a.high > 0.0) {
        pieces[0] = {};
        return 1;
    }
    // a lies on one side of 0 (touching it at most): each side of the
    // divisor gives a half-line.
    const bool positive = a.low >= 0.0;
    const double nearest = positive ? a.low : a.high;
    int count = 0;
    if (b.low < 0.0) {  // divisors in [b.low, 0)
        pieces[count++] = positive ? ZorWBRoundedInterval{-Infinity, DivideUp(nearest, b.low)}
                                   : ZorWBRoundedInterval{DivideDown(nearest, b.low), Infinity};
    }
    if (b.high > 0.0) {  // divisors in (0, b.high]
        pieces[count++] = positive ? ZorWBRoundedInterval{DivideDown(nearest, b.high), Infinity}
                                   : ZorWBRoundedInterval{-Infinity, DivideUp(nearest, b.high)};
    }
    if (count == 2 && pieces[0].low > pieces[1].low) std::swap(pieces[0], pieces[1]);
    if (count == 2 && pieces[0].high >= pieces[1].low) {
        pieces[0] = ZorWBHull(pieces[0], pieces[1]);
        count = 1;
    }
    return count;
}

int ZorWBFactorPreimage(const ZorWBRoundedInterval& b, const ZorWBRoundedInterval& a,
                        ZorWBRoundedInterval pieces[2]) {
    if (b.Contains(0.0) && a.Contains(0.0)) {
        pieces[0] = {};
        return 1;
    }
    return ZorWBDivideExtended(b, a, pieces);
}

ZorWBRoundedInterval ZorWBDivide(const ZorWBRoundedInterval& a, const ZorWBRoundedInterval& b) {
    ZorWBRoundedInterval pieces[2];
    int count = ZorWBDivideExtended(a, b, pieces);
    if (count == 0) return ZorWBEmptyInterval();
    return count == 1 ? pieces[0] : ZorWBHull(pieces[0], pieces[1]);
}

ZorWBRoundedInterval ZorWBSquare(const ZorWBRoundedInterval& a) {
    if (a.IsEmpty()) return ZorWBEmptyInterval();
    double low = a.Mignitude(), high = a.Magnitude();
    return {low == 0.0 ? 0.0 : MultiplyDown(low, low), MultiplyUp(high, high)};
}

namespace {

// a^n for n >= 1.
ZorWBRoundedInterval PositivePower(const ZorWBRoundedInterval& a, unsigned int n) {
    if (n == 1) return a;
    if (n % 2 == 0) return {PowerDown(a.Mignitude(), n), PowerUp(a.Magnitude(), n)};
    return {SignedPowerDown(a.low, n), SignedPowerUp(a.high, n)};
}

}  // namespace

ZorWBRoundedInterval ZorWBPower(const ZorWBRoundedInterval& a, int exponent) {
    if (a.IsEmpty()) return ZorWBEmptyInterval();
    if (exponent == 0) return {1.0, 1.0};
    if (exponent == 2) return ZorWBSquare(a);
    if (exponent > 0) return PositivePower(a, static_cast<unsigned int>(exponent));
    unsigned int n = 0u - static_cast<unsigned int>(exponent);
    return ZorWBDivide({1.0, 1.0}, PositivePower(a, n));
}

ZorWBRoundedInterval ZorWBRoot(const ZorWBRoundedInterval& a, int degree) {
    if (a.IsEmpty() || degree < 1) return ZorWBEmptyInterval();
    if (degree == 1) return a;
    if (degree % 2 == 0) {
        if (a.high < 0.0) return ZorWBEmptyInterval();
        return {RootDown(std::max(a.low, 0.0), degree), RootUp(a.high, degree)};
    }
    return {SignedRootDown(a.low, degree), SignedRootUp(a.high, degree)};
}

ZorWBRoundedInterval ZorWBSquareRoot(const ZorWBRoundedInterval& a) {
    return ZorWBRoot(a, 2);
}

ZorWBRoundedInterval ZorWBAbsolute(const ZorWBRoundedInterval& a) {
    if (a.IsEmpty()) return ZorWBEmptyInterval();
    return {a.Mignitude(), a.Magnitude()};
}

ZorWBRoundedInterval ZorWBMinimum(const ZorWBRoundedInterval& a, const ZorWBRoundedInterval& b) {
    if (a.IsEmpty() || b.IsEmpty()) return ZorWBEmptyInterval();
    return {std::min(a.low, b.low), std::min(a.high, b.high)};
}

ZorWBRoundedInterval ZorWBMaximum(const ZorWBRoundedInterval& a, const ZorWBRoundedInterval& b) {
    if (a.IsEmpty() || b.IsEmpty()) return ZorWBEmptyInterval();
    return {std::max(a.low, b.low), std::max(a.high, b.high)};
}
