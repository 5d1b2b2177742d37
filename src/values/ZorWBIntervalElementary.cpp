// Powers, roots, exponential and logarithms, hyperbolic functions and
// rounding of real intervals. Each gives the image of its argument clipped
// to its domain; a point value that overflows is kept at the infinite end.

#include <algorithm>
#include <cmath>

#include "values/ZorWBIntervalFunctions.h"
#include "values/ZorWBIntervalRules.h"

using namespace ZorWBIntervalRules;

namespace {

// x ^ y for x >= 0. 0 ^ 0 is 1 (the limit along y = 0, as in std::pow) and
// 0 to a negative power is plus infinity, so a base interval reaching 0 with
// a negative exponent is unbounded above, like a quotient by an interval
// reaching 0 (no error).
double NonNegativePower(double x, double y) {
    if (x == 0.0) {
        if (y > 0.0) return 0.0;
        return y == 0.0 ? 1.0 : ZorWBRealLimit;
    }
    return ClampToLine(ZorWBRealPower(x, y));
}

// The non-negative degree-th root of v >= 0. The square root is correctly
// rounded; cbrt and pow with the rounded exponent 1 / degree are not, and
// one Newton step with a fused residual brings exact powers back to their
// exact roots.
double PositiveRoot(double v, int degree) {
    if (degree == 1) return v;
    if (degree == 2) return std::sqrt(v);
    if (v == 0.0) return 0.0;
    double root = degree == 3 ? std::cbrt(v) : std::pow(v, 1.0 / degree);
    const double power = std::pow(root, degree - 1);
    if (std::isfinite(power) && power > 0.0) {
        root -= std::fma(power, root, -v) / (static_cast<double>(degree) * power);
    }
    return root;
}

// The real degree-th root that keeps the sign (odd degrees).
double SignedRoot(double v, int degree) {
    return v < 0.0 ? -PositiveRoot(-v, degree) : PositiveRoot(v, degree);
}

bool RejectDegree(const ZorWBEnvironment& environment, int degree) {
    if (degree > 0) return false;
    environment.SetError(ZorWBError::Domain);
    return true;
}

ZorWBRealInterval PositiveBranch(const ZorWBRealInterval& x, int degree) {
    return IncreasingImage(x, [degree](double v) { return PositiveRoot(v, degree); });
}

ZorWBRealInterval NegatedPositiveBranch(const ZorWBRealInterval& x, int degree) {
    return Normalise(-PositiveRoot(x.high, degree), -PositiveRoot(x.low, degree));
}

ZorWBRealInterval SignedBranch(const ZorWBRealInterval& x, int degree) {
    return IncreasingImage(x, [degree](double v) { return SignedRoot(v, degree); });
}

// An increasing function defined everywhere.
template <typename Function>
ZorWBRealInterval Increasing(const ZorWBEnvironment& environment, const ZorWBRealInterval& x,
                             Function function) {
    if (!AcceptOperands(environment, x)) return ZorWBReal_Nil;
    return IncreasingImage(x, function);
}

// An increasing function defined on [domainLow, domainHigh].
template <typename Function>
ZorWBRealInterval IncreasingOnDomain(const ZorWBEnvironment& environment,
                                     const ZorWBRealInterval& x, double domainLow,
                                     double domainHigh, Function function) {
    ZorWBRealInterval clipped;
    if (!AcceptInDomain(environment, x, domainLow, domainHigh, clipped)) return ZorWBReal_Nil;
    return IncreasingImage(clipped, function);
}

}  // namespace

ZorWBRealInterval ZorWBPow(const ZorWBEnvironment& environment, const ZorWBRealInterval& base,
                           const ZorWBRealInterval& exponent) {
    if (RejectEmpty(environment, exponent)) return ZorWBReal_Nil;
    ZorWBRealInterval x;
    if (!AcceptInDomain(environment, base, 0.0, ZorWBRealLimit, x)) return ZorWBReal_Nil;
    // x ^ y is monotone in x for each y and in y for each x, so its extremes
    // over the box lie at the corners.
    const double corners[] = {
        NonNegativePower(x.low, exponent.low), NonNegativePower(x.low, exponent.high),
        NonNegativePower(x.high, exponent.low), NonNegativePower(x.high, exponent.high)};
    return Normalise(*std::min_element(corners, corners + 4),
                     *std::max_element(corners, corners + 4));
}

ZorWBRealInterval ZorWBPow(const ZorWBEnvironment& environment, const ZorWBRealInterval& base,
                           int exponent) {
    return PowerOf(environment, base, exponent);
}

// Odd degrees: the one real root, sign kept, over all reals. Even degrees:
// x clipped to [0, +inf) and the two branches, positive and negative. The
// result is the hull of the branches that meet range, within range. A degree
// below 1 is a domain error.
ZorWBRealInterval ZorWBRoot(const ZorWBEnvironment& environment, const ZorWBRealInterval& x,
                            int degree, const ZorWBRealInterval& range) {
    if (RejectDegree(environment, degree)) return ZorWBReal_Nil;
    if (RejectEmpty(environment, range)) return ZorWBReal_Nil;
    if (degree % 2 != 0) {
        if (!AcceptOperands(environment, x)) return ZorWBReal_Nil;
        const ZorWBRealInterval branch = SignedBranch(x, degree);
        return HullInRange(range, &branch, 1);
    }
    ZorWBRealInterval clipped;
    if (!AcceptInDomain(environment, x, 0.0, ZorWBRealLimit, clipped)) return ZorWBReal_Nil;
    const ZorWBRealInterval branches[] = {PositiveBranch(clipped, degree),
                                          NegatedPositiveBranch(clipped, degree)};
    return HullInRange(range, branches, 2);
}

// The non-negative roots: of x clipped to [0, +inf), for every degree.
ZorWBRealInterval ZorWBRootPositive(const ZorWBEnvironment& environment, const ZorWBRealInterval& x,
                                    int degree) {
    if (RejectDegree(environment, degree)) return ZorWBReal_Nil;
    ZorWBRealInterval clipped;
    if (!AcceptInDomain(environment, x, 0.0, ZorWBRealLimit, clipped)) return ZorWBReal_Nil;
    return PositiveBranch(clipped, degree);
}

// The non-positive roots: for even degrees the negative branch over x
// clipped to [0, +inf); for odd degrees the root of x clipped to (-inf, 0].
ZorWBRealInterval ZorWBRootNegative(const ZorWBEnvironment& environment, const ZorWBRealInterval& x,
                                    int degree) {
    if (RejectDegree(environment, degree)) return ZorWBReal_Nil;
    ZorWBRealInterval clipped;
    if (degree % 2 == 0) {
        if (!AcceptInDomain(environment, x, 0.0, ZorWBRealLimit, clipped)) return ZorWBReal_Nil;
        return NegatedPositiveBranch(clipped, degree);
    }
    if (!AcceptInDomain(environment, x, -ZorWBRealLimit, 0.0, clipped)) return ZorWBReal_Nil;
    return SignedBranch(clipped, degree);
}

ZorWBRealInterval ZorWBSqrt(const ZorWBEnvironment& environment, const ZorWBRealInterval& x) {
    return IncreasingOnDomain(environment, x, 0.0, ZorWBRealLimit,
                              [](double v) { return std::sqrt(v); });
}

ZorWBRealInterval ZorWBExp(const ZorWBEnvironment& environment, const ZorWBRealInterval& x) {
    return Increasing(environment, x, [](double v) { return std::exp(v); });
}

ZorWBRealInterval ZorWBLn(const ZorWBEnvironment& environment, const ZorWBRealInterval& x) {
    return IncreasingOnDomain(environment, x, ZorWBRealSmallestPositive, ZorWBRealLimit,
                              [](double v) { return std::log(v); });
}

// The base-10 logarithm (ZorWBLn is the natural one), on the same domain.
ZorWBRealInterval ZorWBLog(const ZorWBEnvironment& environment, const ZorWBRealInterval& x) {
    return IncreasingOnDomain(environment, x, ZorWBRealSmallestPositive, ZorWBRealLimit,
                              [](double v) { return std::log10(v); });
}

ZorWBRealInterval ZorWBSinh(const ZorWBEnvironment& environment, const ZorWBRealInterval& x) {
    return Increasing(environment, x, [](double v) { return std::sinh(v); });
}

ZorWBRealInterval ZorWBCosh(const ZorWBEnvironment& environment, const ZorWBRealInterval& x) {
    if (!AcceptOperands(environment, x)) return ZorWBReal_Nil;
    return EvenImage(x, [](double v) { return std::cosh(v); });
}

ZorWBRealInterval ZorWBTanh(const ZorWBEnvironment& environment, const ZorWBRealInterval& x) {
    return Increasing(environment, x, [](double v) { return std::tanh(v); });
}

ZorWBRealInterval ZorWBAsinh(const ZorWBEnvironment& environment, const ZorWBRealInterval& x) {
    return Increasing(environment, x, [](double v) { return std::asinh(v); });
}

ZorWBRealInterval ZorWBAcosh(const ZorWBEnvironment& environment, const ZorWBRealInterval& x) {
    return IncreasingOnDomain(environment, x, 1.0, ZorWBRealLimit,
                              [](double v) { return std::acosh(v); });
}

// The domain is [-1, 1]; the infinite values at -1 and 1 are the infinite
// ends of the line.
ZorWBRealInterval ZorWBAtanh(const ZorWBEnvironment& environment, const ZorWBRealInterval& x) {
    return IncreasingOnDomain(environment, x, -1.0, 1.0, [](double v) { return std::atanh(v); });
}

// The rounding functions are monotone: the images of the two bounds.
ZorWBRealInterval ZorWBCeil(const ZorWBEnvironment& environment, const ZorWBRealInterval& x) {
    return Increasing(environment, x, [](double v) { return std::ceil(v); });
}

ZorWBRealInterval ZorWBFloor(const ZorWBEnvironment& environment, const ZorWBRealInterval& x) {
    return Increasing(environment, x, [](double v) { return std::floor(v); });
}

// Halves are rounded away from zero.
ZorWBRealInterval ZorWBRound(const ZorWBEnvironment& environment, const ZorWBRealInterval& x) {
    return Increasing(environment, x, [](double v) { return std::round(v); });
}

ZorWBRealInterval ZorWBTrunc(const ZorWBEnvironment& environment, const ZorWBRealInterval& x) {
    return Increasing(environment, x, [](double v) { return std::trunc(v); });
}
