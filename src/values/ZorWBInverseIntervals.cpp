// Inverse functions on intervals and enumerations: absolute value, minimum,
// maximum, ceiling and floor.

#include <algorithm>
#include <cmath>

#include "values/ZorWBIntervalFunctions.h"
#include "values/ZorWBInverseFunctions.h"
#include "values/ZorWBInverseSets.h"

namespace {

bool IsEmpty(const ZorWBIntegerInterval& a) {
    return a.low > a.high;
}

// -v within the finite range: the infinite bounds swap ends, and no value
// (not even INT_MIN) overflows.
int Negate(int v) {
    if (v >= ZorWBIntegerMax) return -ZorWBIntegerMax;
    if (v <= -ZorWBIntegerMax) return ZorWBIntegerMax;
    return -v;
}

ZorWBIntegerInterval Intersect(const ZorWBIntegerInterval& a, const ZorWBIntegerInterval& b) {
    ZorWBIntegerInterval c = {std::max(a.low, b.low), std::min(a.high, b.high)};
    return IsEmpty(c) ? ZorWBInteger_Nil : c;
}

// The hair by which the open end of the inverse floor and ceiling is closed,
// computed from the result's high bound.
double RoundingHair(const ZorWBRealInterval& result) {
    double tenth = std::fabs(result.high / 10.0);
    double e = tenth > 1.0 ? tenth * 1e-14 : 1e-14;
    return std::min(1.5 * e, 1.0);
}

// The integers of a result set, or false when it holds none.
bool IntegerRange(const ZorWBRealInterval& result, double& low, double& high) {
    if (ZorWBInverseHasNaN(result)) return false;
    low = std::ceil(result.low);
    high = std::floor(result.high);
    return low <= high;
}

// Projections with the signature of the piece drivers.
ZorWBRealInterval AbsProjection(const ZorWBRealInterval& r, const ZorWBRealInterval& x,
                                const ZorWBRealInterval&) {
    return ZorWBInverseAbs(r, x);
}

ZorWBRealInterval MinOf(const ZorWBRealInterval& r, const ZorWBRealInterval& x,
                        const ZorWBRealInterval& y) {
    return ZorWBInverseMin(r, x, y);
}

ZorWBRealInterval MaxOf(const ZorWBRealInterval& r, const ZorWBRealInterval& x,
                        const ZorWBRealInterval& y) {
    return ZorWBInverseMax(r, x, y);
}

}  // namespace

// ---------------------------------------------------------------- absolute value

ZorWBIntegerInterval ZorWBInverseAbs(const ZorWBIntegerInterval& result,
                                     const ZorWBIntegerInterval& domain) {
    if (IsEmpty(result) || IsEmpty(domain) || result.high < 0) return ZorWBInteger_Nil;
    int nearest = std::max(result.low, 0);
    ZorWBIntegerInterval candidate;
    if (domain.high < nearest)
        candidate = {Negate(result.high), Negate(nearest)};
    else if (domain.low > Negate(nearest))
        candidate = {nearest, result.high};
    else
        candidate = {Negate(result.high), result.high};  // the gap between branches is kept
    return Intersect(candidate, domain);
}

ZorWBRealInterval ZorWBInverseAbs(const ZorWBRealInterval& result,
                                  const ZorWBRealInterval& domain) {
    if (ZorWBInverseHasNaN(result) || ZorWBInverseHasNaN(domain)) return domain;
    if (ZorWBInverseIsEmpty(result) || ZorWBInverseIsEmpty(domain) || result.high < 0.0)
        return ZorWBReal_Nil;
    double nearest = std::max(result.low, 0.0);
    ZorWBRealInterval candidate;
    if (domain.high < nearest)
        candidate = {-result.high, -nearest};
    else if (domain.low > -nearest)
        candidate = {nearest, result.high};
    else
        candidate = {-result.high, result.high};
    // The domain first: bounds snap onto the domain's, which the result
    // never leaves.
    return ZorWBIntersect(domain, candidate, ZorWBIntervalTolerance);
}

// ---------------------------------------------------------------- minimum and maximum

ZorWBIntegerInterval ZorWBInverseMax(const ZorWBIntegerInterval& result,
                                     const ZorWBIntegerInterval& domain,
                                     const ZorWBIntegerInterval& other) {
    if (IsEmpty(result) || IsEmpty(domain) || IsEmpty(other) || result.high < other.low)
        return ZorWBInteger_Nil;
    // When the other operand can reach the result, x need only stay at or
    // below it; otherwise x itself must be the maximum.
    if (other.high >= result.low) return Intersect(domain, {domain.low, result.high});
    return Intersect(domain, result);
}

ZorWBRealInterval ZorWBInverseMax(const ZorWBRealInterval& result, const ZorWBRealInterval& domain,
                                  const ZorWBRealInterval& other) {
    if (ZorWBInverseHasNaN(result) || ZorWBInverseHasNaN(domain) || ZorWBInverseHasNaN(other))
        return domain;
    if (ZorWBInverseIsEmpty(result) || ZorWBInverseIsEmpty(other) || result.high < other.low)
        return ZorWBReal_Nil;
    if (other.high >= result.low) return ZorWBInverseClip({domain.low, result.high}, domain);
    return ZorWBInverseClip(result, domain);
}

ZorWBIntegerInterval ZorWBInverseMin(const ZorWBIntegerInterval& result,
                                     const ZorWBIntegerInterval& domain,
                                     const ZorWBIntegerInterval& other) {
    if (IsEmpty(result) || IsEmpty(domain) || IsEmpty(other) || result.low > other.high)
        return ZorWBInteger_Nil;
    if (other.low <= result.high) return Intersect(domain, {result.low, domain.high});
    return Intersect(domain, result);
}

ZorWBRealInterval ZorWBInverseMin(const ZorWBRealInterval& result, const ZorWBRealInterval& domain,
                                  const ZorWBRealInterval& other) {
    if (ZorWBInverseHasNaN(result) || ZorWBInverseHasNaN(domain) || ZorWBInverseHasNaN(other))
        return domain;
    if (ZorWBInverseIsEmpty(result) || ZorWBInverseIsEmpty(other) || result.low > other.high)
        return ZorWBReal_Nil;
    if (other.low <= result.high) return ZorWBInverseClip({result.low, domain.high}, domain);
    return ZorWBInverseClip(result, domain);
}

// ---------------------------------------------------------------- ceiling and floor

ZorWBRealInterval ZorWBInverseFloor(const ZorWBRealInterval& result) {
    double low = 0.0, high = 0.0;
    if (!IntegerRange(result, low, high)) return ZorWBReal_Nil;
    return {low, high + 1.0 - RoundingHair(result)};
}

ZorWBRealInterval ZorWBInverseCeil(const ZorWBRealInterval& result) {
    double low = 0.0, high = 0.0;
    if (!IntegerRange(result, low, high)) return ZorWBReal_Nil;
    return {low - 1.0 + RoundingHair(result), high};
}

// ---------------------------------------------------------------- enumerations

ZorWBIntegerEnum ZorWBInverseAbs(const ZorWBIntegerEnum& result, const ZorWBIntegerEnum& domain) {
    return ZorWBInverseProjectEnum(ZorWBInverseSet(result), domain, ZorWBInverseSet::Whole(),
                                   AbsProjection);
}

ZorWBRealEnum ZorWBInverseAbs(const ZorWBRealEnum& result, const ZorWBRealEnum& domain) {
    return ZorWBInverseProjectEnum(ZorWBInverseSet(result), domain, ZorWBInverseSet::Whole(),
                                   AbsProjection);
}

ZorWBIntegerEnum ZorWBInverseMin(const ZorWBIntegerEnum& result, const ZorWBIntegerEnum& domain,
                                 const ZorWBIntegerEnum& other) {
    return ZorWBInverseProjectEnum(ZorWBInverseSet(result), domain, ZorWBInverseSet(other), MinOf);
}

ZorWBRealEnum ZorWBInverseMin(const ZorWBRealEnum& result, const ZorWBRealEnum& domain,
                              const ZorWBRealEnum& other) {
    return ZorWBInverseProjectEnum(ZorWBInverseSet(result), domain, ZorWBInverseSet(other), MinOf);
}

ZorWBIntegerEnum ZorWBInverseMax(const ZorWBIntegerEnum& result, const ZorWBIntegerEnum& domain,
                                 const ZorWBIntegerEnum& other) {
    return ZorWBInverseProjectEnum(ZorWBInverseSet(result), domain, ZorWBInverseSet(other), MaxOf);
}

ZorWBRealEnum ZorWBInverseMax(const ZorWBRealEnum& result, const ZorWBRealEnum& domain,
                              const ZorWBRealEnum& other) {
    return ZorWBInverseProjectEnum(ZorWBInverseSet(result), domain, ZorWBInverseSet(other), MaxOf);
}
