// Backward operators of the arithmetic and the monotonic functions. Each
// computes the inverse image of the result set with the outward-rounded
// functions and intersects it with the operand's domain; a function that is
// not injective contributes each of its branches as a separate piece, and
// the domain keeps the hull of its intersections with the pieces, so that
// the gap between branches is removed where it lies at an end of the domain.

#include "solver/ZorWBProjections.h"

#include <algorithm>
#include <cmath>

#include "solver/ZorWBRoundedSteps.h"

namespace ZorWBProjection {

namespace {

using ZorWBRoundedSteps::Infinity;

// x ∩ set, answering whether it is non-empty.
bool Narrow(ZorWBRoundedInterval& x, const ZorWBRoundedInterval& set) {
    x = ZorWBIntersect(x, set);
    return !x.IsEmpty();
}

bool NarrowToPieces(ZorWBRoundedInterval& x, const ZorWBRoundedInterval* pieces, int count) {
    x = HullOfIntersections(x, pieces, count);
    return !x.IsEmpty();
}

// The two branches ±set of an even function whose non-negative branch is
// set (itself non-negative).
int SymmetricPieces(const ZorWBRoundedInterval& set, ZorWBRoundedInterval pieces[2]) {
    if (set.IsEmpty()) return 0;
    pieces[0] = ZorWBNegate(set);
    pieces[1] = set;
    return 2;
}

// The points x with x^n in w (n > 0), as pieces: at most two.
int PowerPreimage(const ZorWBRoundedInterval& w, unsigned int n, ZorWBRoundedInterval pieces[2]) {
    const int degree = static_cast<int>(std::min(n, 2147483647u));
    if (n % 2 == 1) {
        pieces[0] = ZorWBRoot(w, degree);
        return pieces[0].IsEmpty() ? 0 : 1;
    }
    return SymmetricPieces(ZorWBRoot(ZorWBIntersect(w, {0.0, Infinity}), degree), pieces);
}

}  // namespace

ZorWBRoundedInterval HullOfIntersections(const ZorWBRoundedInterval& x,
                                         const ZorWBRoundedInterval* pieces, int count) {
    ZorWBRoundedInterval hull = ZorWBEmptyInterval();
    for (int i = 0; i < count; ++i)
        hull = ZorWBHull(hull, ZorWBIntersect(x, pieces[i]));
    return hull;
}

bool Add(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x, ZorWBRoundedInterval& y) {
    return Narrow(x, ZorWBSubtract(z, y)) && Narrow(y, ZorWBSubtract(z, x));
}

bool Multiply(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x, ZorWBRoundedInterval& y) {
    ZorWBRoundedInterval pieces[2];
    if (!NarrowToPieces(x, pieces, ZorWBFactorPreimage(z, y, pieces))) return false;
    return NarrowToPieces(y, pieces, ZorWBFactorPreimage(z, x, pieces));
}

bool Scale(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x, double c) {
    return Narrow(x, ZorWBDivide(z, ZorWBMakePoint(c)));
}

bool Divide(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x, ZorWBRoundedInterval& y) {
    if (!Narrow(x, ZorWBMultiply(z, y))) return false;
    // x = z * y: y is a factor of x.
    ZorWBRoundedInterval pieces[2];
    return NarrowToPieces(y, pieces, ZorWBFactorPreimage(x, z, pieces));
}

bool Negate(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x) {
    return Narrow(x, ZorWBNegate(z));
}

bool Power(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x, int n) {
    if (n == 0) return z.Contains(1.0) && !x.IsEmpty();
    ZorWBRoundedInterval pieces[2];
    if (n > 0) {
        return NarrowToPieces(x, pieces, PowerPreimage(z, static_cast<unsigned int>(n), pieces));
    }
    // x^n = 1 / x^-n: the powers x^-n lie in 1 ÷ z, one or two pieces.
    ZorWBRoundedInterval powers[2];
    const int count = ZorWBDivideExtended({1.0, 1.0}, z, powers);
    const unsigned int m = 0u - static_cast<unsigned int>(n);
    ZorWBRoundedInterval hull = ZorWBEmptyInterval();
    for (int i = 0; i < count; ++i) {
        hull = ZorWBHull(hull, HullOfIntersections(x, pieces, PowerPreimage(powers[i], m, pieces)));
    }
    x = hull;
    return !x.IsEmpty();
}

bool Root(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x, int n) {
    if (n < 1) return false;
    if (n % 2 == 0) return Narrow(x, ZorWBPower(ZorWBIntersect(z, {0.0, Infinity}), n));
    return Narrow(x, ZorWBPower(z, n));
}

bool Exponential(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x) {
    return Narrow(x, ZorWBLogarithm(z));
}

bool Logarithm(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x) {
    return Narrow(x, ZorWBExponential(z));
}

bool Logarithm10(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x) {
    return Narrow(x, ZorWBExponential10(z));
}

bool ArcSine(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x) {
    const ZorWBRoundedInterval halfPi = ZorWBPiMultiple(1.0, 0.5);
    ZorWBRoundedInterval angles = ZorWBIntersect(z, {-halfPi.high, halfPi.high});
    return Narrow(x, ZorWBSine(angles)) && Narrow(x, {-1.0, 1.0});
}

bool ArcCosine(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x) {
    ZorWBRoundedInterval angles = ZorWBIntersect(z, {0.0, ZorWBPiInterval().high});
    return Narrow(x, ZorWBCosine(angles)) && Narrow(x, {-1.0, 1.0});
}

bool ArcTangent(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x) {
    // atan takes its values in (-pi/2, pi/2); halfPi is the double just
    // below pi/2, where tan is still finite and increasing. A bound of Z at
    // or beyond it leaves that end of x open.
    const double halfPi = ZorWBPiMultiple(1.0, 0.5).low;
    const double beyond = ZorWBNextUp(halfPi);
    if (z.IsEmpty() || z.high < -beyond || z.low > beyond) {
        x = ZorWBEmptyInterval();
        return false;
    }
    auto tangent = [halfPi](double angle) {
        return std::tan(std::min(std::max(angle, -halfPi), halfPi));
    };
    ZorWBRoundedInterval tangents = {
        z.low <= -halfPi ? -Infinity : ZorWBRoundedSteps::DownBy(tangent(z.low), 2),
        z.high >= halfPi ? Infinity : ZorWBRoundedSteps::UpBy(tangent(z.high), 2)};
    return Narrow(x, tangents);
}

bool HyperbolicSine(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x) {
    return Narrow(x, ZorWBAreaSine(z));
}

bool HyperbolicCosine(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x) {
    ZorWBRoundedInterval pieces[2];
    return NarrowToPieces(x, pieces, SymmetricPieces(ZorWBAreaCosine(z), pieces));
}

bool HyperbolicTangent(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x) {
    return Narrow(x, ZorWBAreaTangent(z));
}

bool AreaSine(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x) {
    return Narrow(x, ZorWBHyperbolicSine(z));
}

bool AreaCosine(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x) {
    return Narrow(x, ZorWBHyperbolicCosine(ZorWBIntersect(z, {0.0, Infinity})));
}

bool AreaTangent(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x) {
    return Narrow(x, ZorWBHyperbolicTangent(z));
}

bool Absolute(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x) {
    ZorWBRoundedInterval pieces[2];
    return NarrowToPieces(x, pieces, SymmetricPieces(ZorWBIntersect(z, {0.0, Infinity}), pieces));
}

namespace {

// One operand of min(x, y) = z.
bool NarrowMinimumOperand(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x,
                          const ZorWBRoundedInterval& y) {
    if (!Narrow(x, {z.low, Infinity})) return false;
    return y.low <= z.high || Narrow(x, z);
}

bool NarrowMaximumOperand(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x,
                          const ZorWBRoundedInterval& y) {
    if (!Narrow(x, {-Infinity, z.high})) return false;
    return y.high >= z.low || Narrow(x, z);
}

}  // namespace

bool Minimum(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x, ZorWBRoundedInterval& y) {
    return NarrowMinimumOperand(z, x, y) && NarrowMinimumOperand(z, y, x);
}

bool Maximum(const ZorWBRoundedInterval& z, ZorWBRoundedInterval& x, ZorWBRoundedInterval& y) {
    return NarrowMaximumOperand(z, x, y) && NarrowMaximumOperand(z, y, x);
}

}  // namespace ZorWBProjection
