// Construction, set tests, measures, scalar helpers, the arithmetic
// operators and the comparisons of integer and real intervals.

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>

#include "values/ZorWBIntervalFunctions.h"
#include "values/ZorWBIntervalRules.h"

using namespace ZorWBIntervalRules;

namespace {

// The set tests have no environment: a negative tolerance (such as the -1.0
// that elsewhere stands for the environment's tolerance) means the default.
double ResolveTolerance(double tolerance) {
    return tolerance < 0.0 ? ZorWBIntervalTolerance : tolerance;
}

// -x without overflow: the one integer with no opposite maps to the largest.
int SafeNegate(int x) {
    return x == INT_MIN ? INT_MAX : -x;
}

int IntegerBound(double value, int nanBound) {
    if (std::isnan(value)) return nanBound;
    if (value <= -ZorWBIntegerMax) return -ZorWBIntegerMax;
    if (value >= ZorWBIntegerMax) return ZorWBIntegerMax;
    return static_cast<int>(value);
}

double RealBound(int value) {
    if (value <= -ZorWBIntegerMax) return -ZorWBRealLimit;
    if (value >= ZorWBIntegerMax) return ZorWBRealLimit;
    return value;
}

// The snapping distance of a bound in ZorWBIntersect: the tolerance, scaled
// by a tenth of the bound's magnitude when that exceeds 1, at most 0.05.
double SnapDistance(double bound, double tolerance) {
    const double scale = std::fabs(bound / 10.0);
    return std::fmin(scale > 1.0 ? scale * tolerance : tolerance, 0.05);
}

// Adds two bound pairs with the saturating addition. A low bound that
// overflows upwards, or a high bound downwards, leaves no integer: error 1.
ZorWBIntegerInterval AddBounds(const ZorWBEnvironment& environment, int lowA, int lowB, int highA,
                               int highB) {
    bool lowOverflow = false;
    bool highOverflow = false;
    const int low = ZorWBSaturatingAdd(lowA, lowB, lowOverflow);
    const int high = ZorWBSaturatingAdd(highA, highB, highOverflow);
    if ((lowOverflow && low == ZorWBIntegerMax) || (highOverflow && high == -ZorWBIntegerMax)) {
        environment.SetError(ZorWBError::Domain);
        return ZorWBInteger_Nil;
    }
    return {low, high};
}

}  // namespace

// ------------------------------------------------------------ construction

ZorWBIntegerInterval ZorWBCreateIntegerInterval(int value) {
    return {value, value};
}

ZorWBIntegerInterval ZorWBCreateIntegerInterval(int low, int high) {
    return {low, high};
}

// The integers inside the real interval widened by the fixed tolerance, so
// that a bound a rounding error away from an integer still counts it. Ends
// beyond the finite integer range become the infinite integer ends; an
// interval holding no integer gives the empty integer interval.
ZorWBIntegerInterval ZorWBCreateIntegerInterval(const ZorWBRealInterval& interval) {
    if (IsEmptyInterval(interval)) return ZorWBInteger_Nil;
    const ZorWBIntegerInterval result = {
        IntegerBound(std::ceil(interval.low - ZorWBIntervalTolerance), -ZorWBIntegerMax),
        IntegerBound(std::floor(interval.high + ZorWBIntervalTolerance), ZorWBIntegerMax)};
    return result.low > result.high ? ZorWBInteger_Nil : result;
}

ZorWBRealInterval ZorWBCreateRealInterval(double value) {
    return {value, value};
}

ZorWBRealInterval ZorWBCreateRealInterval(double low, double high) {
    return {low, high};
}

// Integer bounds at the infinite ends (ZorWBInteger_Any's bounds and beyond)
// become the infinite real ends.
ZorWBRealInterval ZorWBCreateRealInterval(const ZorWBIntegerInterval& interval) {
    if (IsEmptyInterval(interval)) return ZorWBReal_Nil;
    return {RealBound(interval.low), RealBound(interval.high)};
}

// ------------------------------------------------------------ tests and measures

bool ZorWBIsEmpty(const ZorWBIntegerInterval& a) {
    return IsEmptyInterval(a);
}

bool ZorWBIsEmpty(const ZorWBRealInterval& a, double tolerance) {
    return a.low - a.high > ResolveTolerance(tolerance);
}

bool ZorWBIsConsistent(const ZorWBIntegerInterval& a) {
    return !ZorWBIsEmpty(a);
}

bool ZorWBIsConsistent(const ZorWBRealInterval& a, double tolerance) {
    return !ZorWBIsEmpty(a, tolerance);
}

bool ZorWBIsExact(const ZorWBIntegerInterval& a) {
    return a.low == a.high;
}

bool ZorWBIsExact(const ZorWBRealInterval& a, double tolerance) {
    return std::fabs(a.high - a.low) < ResolveTolerance(tolerance);
}

bool ZorWBIsEqual(const ZorWBIntegerInterval& a, const ZorWBIntegerInterval& b) {
    return a.low == b.low && a.high == b.high;
}

bool ZorWBIsEqual(const ZorWBRealInterval& a, const ZorWBRealInterval& b, double tolerance) {
    const double t = ResolveTolerance(tolerance);
    return std::fabs(a.low - b.low) < t && std::fabs(a.high - b.high) < t;
}

bool ZorWBContains(const ZorWBIntegerInterval& a, const ZorWBIntegerInterval& b) {
    return a.low <= b.low && b.high <= a.high;
}

bool ZorWBContains(const ZorWBRealInterval& a, const ZorWBRealInterval& b, double tolerance) {
    const double t = ResolveTolerance(tolerance);
    return a.low - b.low < t && b.high - a.high < t;
}

bool ZorWBIsInfinite(const ZorWBIntegerInterval& a) {
    return a.low <= -ZorWBIntegerMax && a.high >= ZorWBIntegerMax;
}

bool ZorWBIsInfinite(const ZorWBRealInterval& a) {
    return a.low <= -ZorWBRealLimit && a.high >= ZorWBRealLimit;
}

bool ZorWBIsFinite(const ZorWBIntegerInterval& a) {
    return !ZorWBIsInfinite(a);
}

bool ZorWBIsFinite(const ZorWBRealInterval& a) {
    return !ZorWBIsInfinite(a);
}

int ZorWBMAG(const ZorWBIntegerInterval& a) {
    return std::max(a.low < 0 ? SafeNegate(a.low) : a.low,
                    a.high < 0 ? SafeNegate(a.high) : a.high);
}

double ZorWBMAG(const ZorWBRealInterval& a) {
    return std::fmax(std::fabs(a.low), std::fabs(a.high));
}

int ZorWBWidth(const ZorWBIntegerInterval& a) {
    bool overflow = false;
    return ZorWBSaturatingAdd(a.high, SafeNegate(a.low), overflow);
}

double ZorWBWidth(const ZorWBRealInterval& a) {
    return a.high - a.low;
}

// The midpoint rounded towards zero.
int ZorWBMiddle(const ZorWBIntegerInterval& a) {
    return static_cast<int>((static_cast<std::int64_t>(a.low) + a.high) / 2);
}

// Halves first, so that no sum of two large bounds overflows.
double ZorWBMiddle(const ZorWBRealInterval& a) {
    return 0.5 * a.low + 0.5 * a.high;
}

int ZorWBSignum(const ZorWBIntegerInterval& a) {
    if (a.low == 0 && a.high == 0) return 0;
    if (a.high < 0) return -1;
    if (a.low > 0) return 1;
    return 2;
}

int ZorWBSignum(const ZorWBRealInterval& a) {
    if (a.low == 0.0 && a.high == 0.0) return 0;
    if (a.high < 0.0) return -1;
    if (a.low > 0.0) return 1;
    return 2;
}

ZorWBIntegerInterval ZorWBIntersect(const ZorWBIntegerInterval& a, const ZorWBIntegerInterval& b) {
    return {std::max(a.low, b.low), std::min(a.high, b.high)};
}

// Bounds of b that lie within the snapping distance of a bound of a are
// replaced by that bound of a, so that repeated narrowing does not shave
// rounding errors off a's bounds, and b missing a by a hair still meets it.
ZorWBRealInterval ZorWBIntersect(const ZorWBRealInterval& a, const ZorWBRealInterval& b,
                                 double tolerance) {
    const double t = ResolveTolerance(tolerance);
    const double lowSnap = SnapDistance(a.low, t);
    const double highSnap = SnapDistance(a.high, t);
    double low = b.low;
    if (a.low + lowSnap >= b.low) {
        low = a.low;
    } else if (b.low > a.high && a.high + highSnap >= b.low) {
        low = a.high;
    }
    double high = a.high;
    if (!(b.high >= a.high - highSnap)) {
        high = (a.low > b.high && b.high >= a.low - lowSnap) ? a.low : b.high;
    }
    return Normalise(low, high);
}

ZorWBIntegerInterval ZorWBUnite(const ZorWBIntegerInterval& a, const ZorWBIntegerInterval& b) {
    return {std::min(a.low, b.low), std::max(a.high, b.high)};
}

ZorWBRealInterval ZorWBUnite(const ZorWBRealInterval& a, const ZorWBRealInterval& b) {
    return Normalise(std::fmin(a.low, b.low), std::fmax(a.high, b.high));
}

// ------------------------------------------------------------ scalar helpers

// 0 / 0 is deliberately plus infinity without an error. Not fixed elsewhere
// and chosen here: a NaN operand is a domain error; plus infinity divided by
// a finite non-zero number is the infinity of the quotient's sign, and a
// finite number divided by plus infinity is 0.
double ZorWBRealDiv(const ZorWBEnvironment& environment, double x, double y) {
    if (x == 0.0 && y == 0.0) return ZorWBRealPlusInfinity;
    if (std::isnan(x) || std::isnan(y) || x < -ZorWBRealLimit || y < -ZorWBRealLimit || y == 0.0) {
        environment.SetError(ZorWBError::Domain);
        return ZorWBRealMinusInfinity;
    }
    if (x == 0.0) return 0.0;
    const bool xInfinite = x > ZorWBRealLimit;
    const bool yInfinite = y > ZorWBRealLimit;
    if (xInfinite && !yInfinite) return y > 0.0 ? ZorWBRealPlusInfinity : ZorWBRealMinusInfinity;
    if (yInfinite && !xInfinite) return 0.0;
    const double quotient = x / y;
    if (xInfinite || std::fabs(quotient) > ZorWBRealLimit) {
        environment.SetError(ZorWBError::Domain);
        return ZorWBRealMinusInfinity;
    }
    return quotient;
}

double ZorWBRealSqrt(const ZorWBEnvironment& environment, double x) {
    if (!(x >= 0.0)) {
        environment.SetError(ZorWBError::Domain);
        return ZorWBRealMinusInfinity;
    }
    return x > ZorWBRealLimit ? ZorWBRealPlusInfinity : std::sqrt(x);
}

// Plus infinity gives the plus-infinity marker.
double ZorWBRealLn(const ZorWBEnvironment& environment, double x) {
    if (!(x >= ZorWBRealSmallestPositive)) {
        environment.SetError(ZorWBError::Domain);
        return ZorWBRealMinusInfinity;
    }
    return x > ZorWBRealLimit ? ZorWBRealPlusInfinity : std::log(x);
}

// The absolute value of minus infinity is deliberately an error.
double ZorWBRealAbs(const ZorWBEnvironment& environment, double x) {
    if (x < -ZorWBRealLimit || std::isnan(x)) {
        environment.SetError(ZorWBError::Domain);
        return ZorWBRealMinusInfinity;
    }
    return std::fabs(x);
}

// Every integer at or below the minus-infinity marker is minus infinity.
int ZorWBIntegerAbs(const ZorWBEnvironment& environment, int x) {
    if (x <= ZorWBIntegerMinusInfinity) {
        environment.SetError(ZorWBError::Domain);
        return ZorWBIntegerMinusInfinity;
    }
    return x < 0 ? -x : x;
}

int ZorWBSaturatingAdd(int a, int b, bool& overflow) {
    overflow = false;
    if (b >= 1 && a > ZorWBIntegerMax - b) {
        overflow = true;
        return ZorWBIntegerMax;
    }
    if (b < 1 && a < -(ZorWBIntegerMax + b)) {
        overflow = true;
        return -ZorWBIntegerMax;
    }
    return a + b;
}

// ------------------------------------------------------------ operators

ZorWBIntegerInterval ZorWBSum(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& a,
                              const ZorWBIntegerInterval& b) {
    if (!AcceptOperands(environment, a, b)) return ZorWBInteger_Nil;
    return AddBounds(environment, a.low, b.low, a.high, b.high);
}

ZorWBRealInterval ZorWBSum(const ZorWBEnvironment& environment, const ZorWBRealInterval& a,
                           const ZorWBRealInterval& b) {
    return SumOf(environment, a, b);
}

ZorWBIntegerInterval ZorWBSub(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& a,
                              const ZorWBIntegerInterval& b) {
    if (!AcceptOperands(environment, a, b)) return ZorWBInteger_Nil;
    return AddBounds(environment, a.low, SafeNegate(b.high), a.high, SafeNegate(b.low));
}

ZorWBRealInterval ZorWBSub(const ZorWBEnvironment& environment, const ZorWBRealInterval& a,
                           const ZorWBRealInterval& b) {
    if (!AcceptOperands(environment, a, b)) return ZorWBReal_Nil;
    return Normalise(a.low - b.high, a.high - b.low);
}

// Products are exact in 64 bits. A bound beyond the finite range becomes the
// infinite end on its side; a low bound beyond plus infinity (or a high bound
// beyond minus infinity) leaves no integer and is an overflow, as in ZorWBSum.
ZorWBIntegerInterval ZorWBMul(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& a,
                              const ZorWBIntegerInterval& b) {
    if (!AcceptOperands(environment, a, b)) return ZorWBInteger_Nil;
    using Wide = std::int64_t;
    const Wide products[] = {Wide{a.low} * b.low, Wide{a.low} * b.high, Wide{a.high} * b.low,
                             Wide{a.high} * b.high};
    Wide low = 0;
    Wide high = 0;
    MinMax(products, low, high);
    if (low > ZorWBIntegerMax || high < -ZorWBIntegerMax) {
        environment.SetError(ZorWBError::Domain);
        return ZorWBInteger_Nil;
    }
    return {ClampToIntegerLine(low), ClampToIntegerLine(high)};
}

ZorWBRealInterval ZorWBMul(const ZorWBEnvironment& environment, const ZorWBRealInterval& a,
                           const ZorWBRealInterval& b) {
    return ProductOf(environment, a, b);
}

// Quotients are computed in 64 bits (INT_MIN / -1 has no 32-bit result) and
// clamped to the integer line.
ZorWBIntegerInterval ZorWBDiv(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& a,
                              const ZorWBIntegerInterval& b) {
    if (!AcceptOperands(environment, a, b)) return ZorWBInteger_Nil;
    if (b.low < 1 && b.high >= 0) return ZorWBInteger_Any;
    using Wide = std::int64_t;
    const Wide quotients[] = {Wide{a.low} / b.low, Wide{a.low} / b.high, Wide{a.high} / b.low,
                              Wide{a.high} / b.high};
    Wide low = 0;
    Wide high = 0;
    MinMax(quotients, low, high);
    return {ClampToIntegerLine(low), ClampToIntegerLine(high)};
}

ZorWBRealInterval ZorWBDiv(const ZorWBEnvironment& environment, const ZorWBRealInterval& a,
                           const ZorWBRealInterval& b) {
    if (!AcceptOperands(environment, a, b)) return ZorWBReal_Nil;
    if (b.low <= 0.0 && 0.0 <= b.high) return ZorWBReal_Any;
    const double quotients[] = {a.low / b.low, a.low / b.high, a.high / b.low, a.high / b.high};
    double low = 0.0;
    double high = 0.0;
    MinMax(quotients, low, high);
    return Normalise(low, high);
}

ZorWBIntegerInterval ZorWBMin(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& a,
                              const ZorWBIntegerInterval& b) {
    if (!AcceptOperands(environment, a, b)) return ZorWBInteger_Nil;
    return {std::min(a.low, b.low), std::min(a.high, b.high)};
}

ZorWBRealInterval ZorWBMin(const ZorWBEnvironment& environment, const ZorWBRealInterval& a,
                           const ZorWBRealInterval& b) {
    if (!AcceptOperands(environment, a, b)) return ZorWBReal_Nil;
    return Normalise(std::fmin(a.low, b.low), std::fmin(a.high, b.high));
}

ZorWBIntegerInterval ZorWBMax(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& a,
                              const ZorWBIntegerInterval& b) {
    if (!AcceptOperands(environment, a, b)) return ZorWBInteger_Nil;
    return {std::max(a.low, b.low), std::max(a.high, b.high)};
}

ZorWBRealInterval ZorWBMax(const ZorWBEnvironment& environment, const ZorWBRealInterval& a,
                           const ZorWBRealInterval& b) {
    if (!AcceptOperands(environment, a, b)) return ZorWBReal_Nil;
    return Normalise(std::fmax(a.low, b.low), std::fmax(a.high, b.high));
}

// A plain image: negated bounds beyond the finite range saturate at the
// infinite end.
ZorWBIntegerInterval ZorWBAbs(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& a) {
    if (!AcceptOperands(environment, a)) return ZorWBInteger_Nil;
    if (a.low >= 0) return a;
    const int negatedLow = ClampToIntegerLine(-std::int64_t{a.low});
    if (a.high <= 0) return {ClampToIntegerLine(-std::int64_t{a.high}), negatedLow};
    return {0, std::max(negatedLow, a.high)};
}

ZorWBRealInterval ZorWBAbs(const ZorWBEnvironment& environment, const ZorWBRealInterval& a) {
    if (!AcceptOperands(environment, a)) return ZorWBReal_Nil;
    return EvenImage(a, [](double v) { return v; });
}

// ------------------------------------------------------------ comparisons
// Comparisons answer for the operands as given; an error already in the
// environment does not change the answer.

ZorWBBoolean ZorWBEqual(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& a,
                        const ZorWBIntegerInterval& b) {
    if (RejectEmpty(environment, a, b)) return ZorWBEmpty;
    if (a.low == a.high && b.low == b.high && a.low == b.low) return ZorWBTrue;
    if (a.low > b.high || b.low > a.high) return ZorWBFalse;
    return ZorWBUnknown;
}

ZorWBBoolean ZorWBEqual(const ZorWBEnvironment& environment, const ZorWBRealInterval& a,
                        const ZorWBRealInterval& b) {
    if (RejectEmpty(environment, a, b)) return ZorWBEmpty;
    const double t = ZorWBIntervalTolerance;
    if (ZorWBIsExact(a, t) && ZorWBIsExact(b, t) && std::fabs(a.low - b.low) < t) return ZorWBTrue;
    if (a.low > b.high + t || b.low > a.high + t) return ZorWBFalse;
    return ZorWBUnknown;
}

ZorWBBoolean ZorWBLessEqual(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& a,
                            const ZorWBIntegerInterval& b) {
    if (RejectEmpty(environment, a, b)) return ZorWBEmpty;
    if (b.low >= a.high) return ZorWBTrue;
    if (a.low > b.high) return ZorWBFalse;
    return ZorWBUnknown;
}

ZorWBBoolean ZorWBLessEqual(const ZorWBEnvironment& environment, const ZorWBRealInterval& a,
                            const ZorWBRealInterval& b) {
    if (RejectEmpty(environment, a, b)) return ZorWBEmpty;
    if (b.low >= a.high) return ZorWBTrue;
    if (a.low > b.high + ZorWBIntervalTolerance) return ZorWBFalse;
    return ZorWBUnknown;
}
