#ifndef ZORWB_INTERVALRULES_H
#define ZORWB_INTERVALRULES_H

// Rules shared by the interval operators (internal to the library): the
// checks of operands, the clipping of an argument to a function's domain and
// the normalisation of every real result. Each rule is written here once.

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "values/ZorWBEnvironment.h"
#include "values/ZorWBInterval.h"
#include "values/ZorWBIntervalFunctions.h"
#include "values/ZorWBRealPower.h"

namespace ZorWBIntervalRules {

constexpr double Pi = 3.141592653589793;
constexpr double HalfPi = 1.5707963267948966;
constexpr double TwoPi = 6.283185307179586;
constexpr double InversePi = 0.3183098861837907;

// The floored remainder a - b floor(a / b) (b non-zero, both finite), in
// [0, b) or (b, 0]. The formula, kept where it is exact so that mod(10, 0.2)
// is 0 rather than the remainder of the binary 0.2, loses every digit (or
// overflows) once |a / b| passes 2^52, and its rounding can leave the
// divisor's side of 0 (a quotient that underflows to -0, a large a): the
// exact remainder of fmod then.
inline double FlooredRemainder(double a, double b) {
    const double quotient = a / b;
    if (std::fabs(quotient) < 4503599627370496.0) {
        const double remainder = a - b * std::floor(quotient);
        if (b > 0.0 ? 0.0 <= remainder && remainder <= b : b <= remainder && remainder <= 0.0)
            return remainder;
    }
    const double remainder = std::fmod(a, b);
    return remainder != 0.0 && (remainder < 0.0) != (b < 0.0) ? remainder + b : remainder;
}

inline bool IsEmptyInterval(const ZorWBRealInterval& a) {
    return a.low - a.high > ZorWBIntervalTolerance;
}
inline bool IsEmptyInterval(const ZorWBIntegerInterval& a) {
    return a.low > a.high;
}

// Every real result passes here: an inverted result, or one lying wholly
// beyond the real limit, is the empty interval (without an error); otherwise
// the bounds are clamped to the whole line. A NaN bound is an unknown end and
// becomes the infinite end on its side.
inline ZorWBRealInterval Normalise(double low, double high) {
    if (low > high || low > ZorWBRealLimit || high < -ZorWBRealLimit) return ZorWBReal_Nil;
    return {low >= -ZorWBRealLimit ? low : -ZorWBRealLimit,
            high <= ZorWBRealLimit ? high : ZorWBRealLimit};
}
inline ZorWBRealInterval Normalise(const ZorWBRealInterval& a) {
    return Normalise(a.low, a.high);
}

// A point value that overflows is the infinite end itself, so that the
// elementary functions keep an overflowing bound at the limit instead of
// losing the result.
inline double ClampToLine(double value) {
    if (value > ZorWBRealLimit) return ZorWBRealLimit;
    if (value < -ZorWBRealLimit) return -ZorWBRealLimit;
    return value;
}

// An integer bound beyond the finite range is the infinite end on its side.
inline int ClampToIntegerLine(std::int64_t value) {
    if (value > ZorWBIntegerMax) return ZorWBIntegerMax;
    if (value < -ZorWBIntegerMax) return -ZorWBIntegerMax;
    return static_cast<int>(value);
}

// An empty operand is a domain error: error 1, and the caller returns the
// empty interval.
template <typename... Intervals>
bool RejectEmpty(const ZorWBEnvironment& environment, const Intervals&... operands) {
    if (!(IsEmptyInterval(operands) || ...)) return false;
    environment.SetError(ZorWBError::Domain);
    return true;
}

// A set error, from this call or an earlier one not yet cleared, blanks
// every later result of the same evaluation.
inline bool IsBlocked(const ZorWBEnvironment& environment) {
    return environment.GetError() != ZorWBError::None;
}

// True when an operator may compute: no operand is empty and the
// environment holds no error.
template <typename... Intervals>
bool AcceptOperands(const ZorWBEnvironment& environment, const Intervals&... operands) {
    return !RejectEmpty(environment, operands...) && !IsBlocked(environment);
}

// The operand checks of a function defined on [domainLow, domainHigh]: the
// argument is clipped to the domain (a NaN bound counts as unknown and takes
// the domain's bound). Clipping never widens: an argument that lies wholly
// beyond an edge of the domain, however close to it, leaves nothing, which
// is a domain error. The clipped bounds lie in the domain, so the function
// is never evaluated outside it.
inline bool AcceptInDomain(const ZorWBEnvironment& environment, const ZorWBRealInterval& x,
                           double domainLow, double domainHigh, ZorWBRealInterval& clipped) {
    if (RejectEmpty(environment, x)) return false;
    if (x.high < domainLow || x.low > domainHigh) {
        environment.SetError(ZorWBError::Domain);
        return false;
    }
    clipped = {std::fmax(x.low, domainLow), std::fmin(x.high, domainHigh)};
    return !IsBlocked(environment);
}

// The image of an increasing function: its values at the two bounds.
template <typename Function>
ZorWBRealInterval IncreasingImage(const ZorWBRealInterval& x, Function function) {
    return Normalise(ClampToLine(function(x.low)), ClampToLine(function(x.high)));
}

// The image of an even function that increases on [0, +inf).
template <typename Function>
ZorWBRealInterval EvenImage(const ZorWBRealInterval& x, Function function) {
    if (x.low >= 0.0) return IncreasingImage(x, function);
    if (x.high <= 0.0) return IncreasingImage({-x.high, -x.low}, function);
    return Normalise(ClampToLine(function(0.0)), ClampToLine(function(std::fmax(-x.low, x.high))));
}

// The hull of the parts of the branches that meet range. Each branch is met
// through the snapping intersection with range as first operand, so a branch
// ending within the tolerance of a bound of range lands exactly on it, and
// the result never leaves range. No branch meeting range gives the empty
// interval without an error: the range simply holds no solution.
inline ZorWBRealInterval HullInRange(const ZorWBRealInterval& range,
                                     const ZorWBRealInterval* branches, int count) {
    ZorWBRealInterval hull = ZorWBReal_Nil;
    for (int i = 0; i < count; ++i) {
        const ZorWBRealInterval part = ZorWBIntersect(range, branches[i], ZorWBIntervalTolerance);
        if (!IsEmptyInterval(part)) hull = ZorWBUnite(hull, part);
    }
    return hull;
}

// The smallest and the largest of values, as std::min_element and
// std::max_element pick them (the first of equal ones; NaN never wins).
template <typename Bound, std::size_t Count>
void MinMax(const Bound (&values)[Count], Bound& low, Bound& high) {
    low = *std::min_element(values, values + Count);
    high = *std::max_element(values, values + Count);
}

// The bodies of the most frequent real interval operators, inline so that
// the evaluation's shortcuts (ZorWBOperator::EvaluateFast) can use them
// without a call; the exported functions are these.
inline ZorWBRealInterval SumOf(const ZorWBEnvironment& environment, const ZorWBRealInterval& a,
                               const ZorWBRealInterval& b) {
    if (!AcceptOperands(environment, a, b)) return ZorWBReal_Nil;
    return Normalise(a.low + b.low, a.high + b.high);
}

inline ZorWBRealInterval ProductOf(const ZorWBEnvironment& environment, const ZorWBRealInterval& a,
                                   const ZorWBRealInterval& b) {
    if (!AcceptOperands(environment, a, b)) return ZorWBReal_Nil;
    const double products[] = {a.low * b.low, a.low * b.high, a.high * b.low, a.high * b.high};
    double low = 0.0;
    double high = 0.0;
    MinMax(products, low, high);
    return Normalise(low, high);
}

inline double IntegerPower(double x, int exponent) {
    return ClampToLine(ZorWBRealPower(x, static_cast<double>(exponent)));
}

// x^exponent (exponent < 0) over a base that holds or touches 0: the hull
// of the images of the base's two sides, each unbounded towards 0 (plus
// infinity for even exponents, the side's sign for odd ones), as the real
// exponent form has it. A base that is 0 alone reaches 0 from both sides.
inline ZorWBRealInterval NegativePowerAcrossZero(const ZorWBRealInterval& base, int exponent) {
    const bool even = exponent % 2 == 0;
    const bool fromAbove = base.high > 0.0 || base.low == base.high;
    const bool fromBelow = base.low < 0.0 || base.low == base.high;
    ZorWBRealInterval hull = ZorWBReal_Nil;
    if (fromAbove) hull = ZorWBUnite(hull, {IntegerPower(base.high, exponent), ZorWBRealLimit});
    if (fromBelow && even)
        hull = ZorWBUnite(hull, {IntegerPower(base.low, exponent), ZorWBRealLimit});
    if (fromBelow && !even)
        hull = ZorWBUnite(hull, {-ZorWBRealLimit, IntegerPower(base.low, exponent)});
    return hull;
}

// Any base for an integer exponent. The exponent 0 gives [1, 1] even where
// the base holds 0; a negative exponent is unbounded where the base reaches
// 0, without an error.
inline ZorWBRealInterval PowerOf(const ZorWBEnvironment& environment, const ZorWBRealInterval& base,
                                 int exponent) {
    if (!AcceptOperands(environment, base)) return ZorWBReal_Nil;
    if (exponent == 0) return {1.0, 1.0};
    if (exponent < 0 && base.low <= 0.0 && 0.0 <= base.high)
        return NegativePowerAcrossZero(base, exponent);
    const auto power = [exponent](double v) { return IntegerPower(v, exponent); };
    if (exponent > 0 && exponent % 2 == 0) return EvenImage(base, power);
    // Odd powers, and negative powers on one side of 0, are monotone.
    const double atLow = power(base.low);
    const double atHigh = power(base.high);
    return Normalise(std::fmin(atLow, atHigh), std::fmax(atLow, atHigh));
}

}  // namespace ZorWBIntervalRules

#endif
