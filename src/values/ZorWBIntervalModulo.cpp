// The floored modulo a - b * floor(a / b) of intervals (the result has the
// sign of b), for integers and reals. A divisor of 0 is a domain error; a
// divisor interval holding 0 and more is clipped to its non-zero values.
// The result is the exact image of the two intervals (its closure for
// reals: as a approaches a multiple of b from below the remainder approaches
// b, which the closed result includes).

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "values/ZorWBIntervalFunctions.h"
#include "values/ZorWBIntervalRules.h"

using namespace ZorWBIntervalRules;

namespace {

using Wide = std::int64_t;

// Integer divisors beyond this count are not enumerated one by one.
constexpr Wide ZorWBModEnumerationLimit = 1024;

struct RealHull {
    double low = HUGE_VAL;
    double high = -HUGE_VAL;
    void Add(double value) {
        low = std::fmin(low, value);
        high = std::fmax(high, value);
    }
    void Add(const RealHull& other) {
        low = std::fmin(low, other.low);
        high = std::fmax(high, other.high);
    }
    bool IsEmpty() const { return low > high; }
};

double RealModulo(double a, double b) {
    return ZorWBIntervalRules::FlooredRemainder(a, b);
}

// floor(a / b) for b > 0, also where a / b underflows: a negative a then
// has the quotient -1, not the floor of -0.
double FloorOfQuotient(double a, double b) {
    const double floored = std::floor(a / b);
    return a < 0.0 && floored == 0.0 ? -1.0 : floored;
}

// The closure of { a mod b : a in [a1, a2], b in [p, q] } for 0 < p <= q.
// Where floor(a / b) = k the remainder is a - k b, linear, so its extremes
// over the box lie at the box's corners or where the lines a = m b cross the
// box. On such a line the remainder is 0, and next to it, on the side of
// quotient m - 1, it approaches b. Every m with kMin < m <= kMax crosses the
// box (a / b is continuous on it); the largest b on the line a = m b is
// min(q, a2 / m) for m > 0, q for m = 0 and min(q, a1 / m) for m < 0, each
// decreasing as m moves away from 0, so only the m nearest 0 on each side
// matter.
RealHull RealPositiveDivisorModulo(double a1, double a2, double p, double q) {
    RealHull hull;
    for (double a : {a1, a2}) {
        for (double b : {p, q})
            hull.Add(RealModulo(a, b));
    }
    const double kMin = std::fmin(FloorOfQuotient(a1, p), FloorOfQuotient(a1, q));
    const double kMax = std::fmax(FloorOfQuotient(a2, p), FloorOfQuotient(a2, q));
    if (kMax > kMin) {
        hull.Add(0.0);
        if (kMin < 0.0 && kMax >= 0.0) hull.Add(q);
        const double mPositive = std::fmax(kMin + 1.0, 1.0);
        if (mPositive <= kMax) hull.Add(std::fmin(q, a2 / mPositive));
        const double mNegative = std::fmin(kMax, -1.0);
        if (mNegative > kMin) hull.Add(std::fmin(q, a1 / mNegative));
    }
    hull.low = std::fmax(hull.low, 0.0);
    hull.high = std::fmin(hull.high, q);
    return hull;
}

// a mod b = -((-a) mod (-b)) reduces a negative divisor to a positive one.
RealHull NegativeDivisorModulo(double a1, double a2, double p, double q) {
    const RealHull mirrored = RealPositiveDivisorModulo(-a2, -a1, -q, -p);
    RealHull hull;
    hull.low = -mirrored.high;
    hull.high = -mirrored.low;
    return hull;
}

Wide FloorDivide(Wide a, Wide b) {
    const Wide quotient = a / b;
    return (a % b != 0 && ((a < 0) != (b < 0))) ? quotient - 1 : quotient;
}

struct IntegerHull {
    Wide low = INT64_MAX;
    Wide high = INT64_MIN;
    void Add(Wide from, Wide to) {
        low = std::min(low, from);
        high = std::max(high, to);
    }
};

// The remainders of [a1, a2] by one divisor b > 0: the two remainders of the
// bounds when no multiple of b lies in between, else every remainder.
void AddIntegerModulo(Wide a1, Wide a2, Wide b, IntegerHull& hull) {
    const Wide quotient = FloorDivide(a1, b);
    if (quotient == FloorDivide(a2, b)) {
        hull.Add(a1 - quotient * b, a2 - quotient * b);
    } else {
        hull.Add(0, b - 1);
    }
}

// Remainders of [a1, a2] by the divisors [p, q], 1 <= p <= q. Divisors above
// the dividends' magnitude leave a remainder affine in b, so the two ends of
// that stretch give its image. The others are taken one by one from the
// largest down, stopping once nothing smaller can widen the hull (all
// remainders by b lie in [0, b - 1]). Beyond the enumeration limit the rest
// is bounded by the real image, rounded inwards to integers: sound, at most
// slightly wider than the integer image.
IntegerHull IntegerPositiveDivisorModulo(Wide a1, Wide a2, Wide p, Wide q) {
    IntegerHull hull;
    const Wide magnitude = std::max(a1 < 0 ? -a1 : a1, a2 < 0 ? -a2 : a2);
    Wide b = q;
    if (q > magnitude) {
        const Wide smallest = std::max(p, magnitude + 1);
        AddIntegerModulo(a1, a2, q, hull);
        AddIntegerModulo(a1, a2, smallest, hull);
        b = smallest - 1;
    }
    for (Wide count = 0; b >= p; --b, ++count) {
        if (hull.low == 0 && hull.high >= b - 1) return hull;
        if (count == ZorWBModEnumerationLimit) {
            const RealHull rest =
                RealPositiveDivisorModulo(static_cast<double>(a1), static_cast<double>(a2),
                                          static_cast<double>(p), static_cast<double>(b));
            hull.Add(static_cast<Wide>(std::ceil(rest.low)),
                     std::min(static_cast<Wide>(std::floor(rest.high)), b - 1));
            return hull;
        }
        AddIntegerModulo(a1, a2, b, hull);
    }
    return hull;
}

}  // namespace

ZorWBIntegerInterval ZorWBMod(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& a,
                              const ZorWBIntegerInterval& b) {
    if (RejectEmpty(environment, a, b)) return ZorWBInteger_Nil;
    if (b.low == 0 && b.high == 0) {
        environment.SetError(ZorWBError::Domain);
        return ZorWBInteger_Nil;
    }
    if (IsBlocked(environment)) return ZorWBInteger_Nil;
    IntegerHull hull;
    if (b.high >= 1) {
        const IntegerHull part =
            IntegerPositiveDivisorModulo(a.low, a.high, std::max(b.low, 1), b.high);
        hull.Add(part.low, part.high);
    }
    if (b.low <= -1) {
        const IntegerHull part = IntegerPositiveDivisorModulo(
            -Wide{a.high}, -Wide{a.low}, -Wide{std::min(b.high, -1)}, -Wide{b.low});
        hull.Add(-part.high, -part.low);
    }
    return {ClampToIntegerLine(hull.low), ClampToIntegerLine(hull.high)};
}

// Divisors closer to 0 than the smallest positive real count as 0.
ZorWBRealInterval ZorWBMod(const ZorWBEnvironment& environment, const ZorWBRealInterval& a,
                           const ZorWBRealInterval& b) {
    if (RejectEmpty(environment, a, b)) return ZorWBReal_Nil;
    const bool hasPositive = b.high >= ZorWBRealSmallestPositive;
    const bool hasNegative = b.low <= -ZorWBRealSmallestPositive;
    if (!hasPositive && !hasNegative) {
        environment.SetError(ZorWBError::Domain);
        return ZorWBReal_Nil;
    }
    if (IsBlocked(environment)) return ZorWBReal_Nil;
    RealHull hull;
    if (hasPositive) {
        hull.Add(RealPositiveDivisorModulo(a.low, a.high,
                                           std::fmax(b.low, ZorWBRealSmallestPositive), b.high));
    }
    if (hasNegative) {
        hull.Add(NegativeDivisorModulo(a.low, a.high, b.low,
                                       std::fmin(b.high, -ZorWBRealSmallestPositive)));
    }
    return Normalise(hull.low, hull.high);
}
