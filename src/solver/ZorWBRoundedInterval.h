#ifndef ZORWB_ROUNDEDINTERVAL_H
#define ZORWB_ROUNDEDINTERVAL_H

#include <cstdint>
#include <cstring>
#include <limits>

#include "ZorWBxExport.h"
#include "values/ZorWBInterval.h"

// Outward-rounded real interval arithmetic: the arithmetic under the solver's
// proofs. The interval functions of the values layer round their bounds to
// nearest, which is right for evaluation but cannot prove anything; here every
// bound a computation rounds is moved outward past the exact result, so that
// the computed interval always holds the exact image of its operands.
//
// Method: each operation computes its bounds in round-to-nearest and then
// steps each bound outward by whole units in the last place: one for the
// correctly rounded operations (+, -, *, /, sqrt), a few for the functions of
// <cmath>, whose error glibc documents as at most one or two units (see
// RoundedUlps in the implementation). Stepping is bit arithmetic on the
// double, so it costs a few instructions; the rounding mode of the processor
// is never changed, so the functions of <cmath> keep their accuracy.
//
// Bounds are IEEE doubles; infinities are the infinite ends. An interval is
// empty when low > high or a bound is NaN (the canonical empty interval is
// [+inf, -inf]). Every function gives the empty interval for an empty
// operand, and clips its argument to its domain (an argument wholly outside
// gives the empty interval: the function is undefined there).
struct ZorWBRoundedInterval {
    double low = -std::numeric_limits<double>::infinity();
    double high = std::numeric_limits<double>::infinity();

    bool IsEmpty() const { return !(low <= high); }
    bool IsPoint() const { return low == high; }
    bool IsBounded() const {
        return low > -std::numeric_limits<double>::infinity() &&
               high < std::numeric_limits<double>::infinity();
    }
    bool Contains(double x) const { return low <= x && x <= high; }
    // The same bounds, bit for bit but for the sign of 0.
    bool IsSameAs(const ZorWBRoundedInterval& other) const {
        return low == other.low && high == other.high;
    }
    // Whether other lies inside this interval, its bounds off this one's.
    bool ContainsInInterior(const ZorWBRoundedInterval& other) const {
        return low < other.low && other.high < high;
    }
    // High - low rounded up; +inf for an unbounded interval, 0 when empty.
    double Width() const;
    // A point of the interval: the midpoint of a bounded one, 0 for the whole
    // line, a point beyond the finite end of a half-line.
    double Middle() const;
    // The larger magnitude of the bounds.
    double Magnitude() const;
    // The smaller magnitude of the points (0 when 0 is inside).
    double Mignitude() const;
};

// ------------------------------------------------------------ construction
inline ZorWBRoundedInterval ZorWBMakeInterval(double low, double high) {
    return {low, high};
}
inline ZorWBRoundedInterval ZorWBMakePoint(double x) {
    return {x, x};
}
ZORWBX_API ZorWBRoundedInterval ZorWBEmptyInterval();
// The values layer's interval: bounds beyond the real limit are infinite; an
// empty interval of the values layer is the empty interval.
ZORWBX_API ZorWBRoundedInterval ZorWBFromRealInterval(const ZorWBRealInterval& interval);
// Back to the values layer: infinite ends become the real limits.
ZORWBX_API ZorWBRealInterval ZorWBToRealInterval(const ZorWBRoundedInterval& interval);

// ------------------------------------------------------------ rounding steps
// The next double below (above) x; infinities of the same sign and NaN are
// kept, and +inf (-inf) steps to the largest finite double.
inline double ZorWBNextDown(double x) {
    if (!(x > -std::numeric_limits<double>::infinity())) return x;
    if (x == 0.0) return -std::numeric_limits<double>::denorm_min();
    std::uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    if (x > 0.0)
        --bits;
    else
        ++bits;
    std::memcpy(&x, &bits, sizeof bits);
    return x;
}
inline double ZorWBNextUp(double x) {
    return -ZorWBNextDown(-x);
}

// ------------------------------------------------------------ sets
inline ZorWBRoundedInterval ZorWBIntersect(const ZorWBRoundedInterval& a,
                                           const ZorWBRoundedInterval& b) {
    return {a.low > b.low ? a.low : b.low, a.high < b.high ? a.high : b.high};
}
// The hull; an empty operand is ignored.
inline ZorWBRoundedInterval ZorWBHull(const ZorWBRoundedInterval& a,
                                      const ZorWBRoundedInterval& b) {
    if (a.IsEmpty()) return b;
    if (b.IsEmpty()) return a;
    return {a.low < b.low ? a.low : b.low, a.high > b.high ? a.high : b.high};
}
// Whether a holds b (an empty b is held by anything).
ZORWBX_API bool ZorWBIsSubset(const ZorWBRoundedInterval& b, const ZorWBRoundedInterval& a);

// ------------------------------------------------------------ arithmetic
inline ZorWBRoundedInterval ZorWBAdd(const ZorWBRoundedInterval& a, const ZorWBRoundedInterval& b) {
    if (a.IsEmpty() || b.IsEmpty())
        return {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
    return {ZorWBNextDown(a.low + b.low), ZorWBNextUp(a.high + b.high)};
}
inline ZorWBRoundedInterval ZorWBSubtract(const ZorWBRoundedInterval& a,
                                          const ZorWBRoundedInterval& b) {
    if (a.IsEmpty() || b.IsEmpty())
        return {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
    return {ZorWBNextDown(a.low - b.high), ZorWBNextUp(a.high - b.low)};
}
inline ZorWBRoundedInterval ZorWBNegate(const ZorWBRoundedInterval& a) {
    return {-a.high, -a.low};
}
ZORWBX_API ZorWBRoundedInterval ZorWBMultiply(const ZorWBRoundedInterval& a,
                                              const ZorWBRoundedInterval& b);
// c * a for a finite number c != 0.
inline ZorWBRoundedInterval ZorWBScale(const ZorWBRoundedInterval& a, double c) {
    if (a.IsEmpty()) return a;
    const double low = c > 0.0 ? a.low : a.high, high = c > 0.0 ? a.high : a.low;
    return {ZorWBNextDown(low * c), ZorWBNextUp(high * c)};
}
// The hull of {x / y : x in a, y in b, y != 0}: a divisor holding 0 inside
// gives the whole line (unless a is [0, 0]), a divisor [0, 0] the empty
// interval.
ZORWBX_API ZorWBRoundedInterval ZorWBDivide(const ZorWBRoundedInterval& a,
                                            const ZorWBRoundedInterval& b);
// The same set without the hull: one or two intervals in pieces[0..count),
// ordered; a divisor holding 0 inside and a dividend away from 0 give two
// half-lines. Returns the count (0 for the empty set).
ZORWBX_API int ZorWBDivideExtended(const ZorWBRoundedInterval& a, const ZorWBRoundedInterval& b,
                                   ZorWBRoundedInterval pieces[2]);
// The points t with t * a in b, as one or two pieces like the division:
// b ÷ a, and the whole line when both hold 0 (t * 0 = 0 for every t).
ZORWBX_API int ZorWBFactorPreimage(const ZorWBRoundedInterval& b, const ZorWBRoundedInterval& a,
                                   ZorWBRoundedInterval pieces[2]);
ZORWBX_API ZorWBRoundedInterval ZorWBSquare(const ZorWBRoundedInterval& a);
// a to an integer power; 0 to the power 0 is 1, negative powers are
// 1 / a^-n.
ZORWBX_API ZorWBRoundedInterval ZorWBPower(const ZorWBRoundedInterval& a, int exponent);
// The real degree-th root (degree >= 1): odd degrees keep the sign, even
// degrees take the non-negative root of the non-negative part.
ZORWBX_API ZorWBRoundedInterval ZorWBRoot(const ZorWBRoundedInterval& a, int degree);
ZORWBX_API ZorWBRoundedInterval ZorWBSquareRoot(const ZorWBRoundedInterval& a);
ZORWBX_API ZorWBRoundedInterval ZorWBAbsolute(const ZorWBRoundedInterval& a);
ZORWBX_API ZorWBRoundedInterval ZorWBMinimum(const ZorWBRoundedInterval& a,
                                             const ZorWBRoundedInterval& b);
ZORWBX_API ZorWBRoundedInterval ZorWBMaximum(const ZorWBRoundedInterval& a,
                                             const ZorWBRoundedInterval& b);

// ------------------------------------------------------------ elementary functions
ZORWBX_API ZorWBRoundedInterval ZorWBExponential(const ZorWBRoundedInterval& a);
// The natural and the base-10 logarithm; 0 and below are outside the domain.
ZORWBX_API ZorWBRoundedInterval ZorWBLogarithm(const ZorWBRoundedInterval& a);
ZORWBX_API ZorWBRoundedInterval ZorWBLogarithm10(const ZorWBRoundedInterval& a);
// 10 to the power a.
ZORWBX_API ZorWBRoundedInterval ZorWBExponential10(const ZorWBRoundedInterval& a);
ZORWBX_API ZorWBRoundedInterval ZorWBSine(const ZorWBRoundedInterval& a);
ZORWBX_API ZorWBRoundedInterval ZorWBCosine(const ZorWBRoundedInterval& a);
// An interval that reaches a pole gives the whole line.
ZORWBX_API ZorWBRoundedInterval ZorWBTangent(const ZorWBRoundedInterval& a);
// The principal branches.
ZORWBX_API ZorWBRoundedInterval ZorWBArcSine(const ZorWBRoundedInterval& a);
ZORWBX_API ZorWBRoundedInterval ZorWBArcCosine(const ZorWBRoundedInterval& a);
ZORWBX_API ZorWBRoundedInterval ZorWBArcTangent(const ZorWBRoundedInterval& a);
ZORWBX_API ZorWBRoundedInterval ZorWBHyperbolicSine(const ZorWBRoundedInterval& a);
ZORWBX_API ZorWBRoundedInterval ZorWBHyperbolicCosine(const ZorWBRoundedInterval& a);
ZORWBX_API ZorWBRoundedInterval ZorWBHyperbolicTangent(const ZorWBRoundedInterval& a);
ZORWBX_API ZorWBRoundedInterval ZorWBAreaSine(const ZorWBRoundedInterval& a);
ZORWBX_API ZorWBRoundedInterval ZorWBAreaCosine(const ZorWBRoundedInterval& a);
ZORWBX_API ZorWBRoundedInterval ZorWBAreaTangent(const ZorWBRoundedInterval& a);

// Pi and its multiples as enclosures.
ZORWBX_API ZorWBRoundedInterval ZorWBPiInterval();
// k * pi * scale for an integer k (as a double) and a scale of 1 or 2.
ZORWBX_API ZorWBRoundedInterval ZorWBPiMultiple(double k, double scale);

#endif
