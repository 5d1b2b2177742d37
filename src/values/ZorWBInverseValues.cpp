// Inverse functions on values for the operators with interval forms:
// absolute value, minimum, maximum, modulo and power.

#include "values/ZorWBInverseFunctions.h"
#include "values/ZorWBInverseSets.h"

namespace {

using Interval = ZorWBRealInterval;

Interval AbsProjection(const Interval& r, const Interval& x, const Interval&, bool) {
    return ZorWBInverseAbs(r, x);
}

Interval MinProjection(const Interval& r, const Interval& x, const Interval& y, bool) {
    return ZorWBInverseMin(r, x, y);
}

Interval MaxProjection(const Interval& r, const Interval& x, const Interval& y, bool) {
    return ZorWBInverseMax(r, x, y);
}

Interval PowBaseProjection(const Interval& r, const Interval& x, const Interval& y, bool) {
    return ZorWBInversePowBases(r, x, y);
}

// Whether a divisor set holds nothing but 0, for which the modulo is undefined.
bool IsOnlyZero(const ZorWBValue& divisor) {
    ZorWBInverseSet set(divisor);
    return !set.IsEmpty() && set.GetHull().low == 0.0 && set.GetHull().high == 0.0;
}

// The modulo inverses: kinds first (864), then a divisor that can only be 0 (11).
template <class Core>
ZorWBValue InverseMod(const ZorWBEnvironment& environment, const ZorWBValue& result,
                      const ZorWBValue& domain, const ZorWBValue& other, const ZorWBValue& divisor,
                      Core core) {
    bool integer = false;
    if (!ZorWBInverseCheckOperands(environment, &result, domain, &other, ZorWBError::InverseMod,
                                   integer))
        return domain;
    if (IsOnlyZero(divisor)) {
        environment.SetError(ZorWBError::InverseModInterval);
        return domain;
    }
    return ZorWBInverseProjectValue(environment, result, domain, &other,
                                    [&](const Interval& r, const Interval& x, const Interval& y) {
                                        return core(r, x, y, integer);
                                    });
}

}  // namespace

ZorWBValue ZorWBInverseAbs(const ZorWBEnvironment& environment, const ZorWBValue& result,
                           const ZorWBValue& domain) {
    return ZorWBInverseNumeric(environment, result, domain, nullptr, ZorWBError::InverseAbs,
                               AbsProjection);
}

ZorWBValue ZorWBInverseMin(const ZorWBEnvironment& environment, const ZorWBValue& result,
                           const ZorWBValue& domain, const ZorWBValue& other) {
    return ZorWBInverseNumeric(environment, result, domain, &other, ZorWBError::IncompatibleKinds,
                               MinProjection);
}

ZorWBValue ZorWBInverseMax(const ZorWBEnvironment& environment, const ZorWBValue& result,
                           const ZorWBValue& domain, const ZorWBValue& other) {
    return ZorWBInverseNumeric(environment, result, domain, &other, ZorWBError::IncompatibleKinds,
                               MaxProjection);
}

ZorWBValue ZorWBInverseMod1(const ZorWBEnvironment& environment, const ZorWBValue& result,
                            const ZorWBValue& dividend, const ZorWBValue& divisor) {
    return InverseMod(environment, result, dividend, divisor, divisor, ZorWBInverseModDividends);
}

ZorWBValue ZorWBInverseMod2(const ZorWBEnvironment& environment, const ZorWBValue& result,
                            const ZorWBValue& divisor, const ZorWBValue& dividend) {
    return InverseMod(environment, result, divisor, dividend, divisor, ZorWBInverseModDivisors);
}

ZorWBValue ZorWBInversePow1(const ZorWBEnvironment& environment, const ZorWBValue& result,
                            const ZorWBValue& base, const ZorWBValue& exponent) {
    return ZorWBInverseNumeric(environment, result, base, &exponent, ZorWBError::InverseOrPow,
                               PowBaseProjection);
}

ZorWBValue ZorWBInversePow2(const ZorWBEnvironment& environment, const ZorWBValue& result,
                            const ZorWBValue& exponent, const ZorWBValue& base) {
    return ZorWBInverseNumeric(environment, result, exponent, &base, ZorWBError::InverseOrPow,
                               ZorWBInversePowExponents);
}
