#include "values/ZorWBInverseSets.h"

#include <algorithm>
#include <cmath>

#include "values/ZorWBValueFunctions.h"

namespace {

constexpr double L = ZorWBRealLimit;

// A bound within a rounding error of an integer reads as that integer.
double SnapToInteger(double v) {
    double nearest = std::round(v);
    return std::fabs(v - nearest) <= 1e-12 * std::max(1.0, std::fabs(v)) ? nearest : v;
}

int ToIntegerBound(double integral) {
    if (integral >= ZorWBIntegerMax) return ZorWBIntegerMax;
    if (integral <= -ZorWBIntegerMax) return -ZorWBIntegerMax;
    return static_cast<int>(integral);
}

// The hair by which the inverse floor closes its open end: 1.5 times 1e-14,
// relative to a tenth of the bound above 10, at most 1.
double Hair(double bound) {
    double tenth = std::fabs(bound / 10.0);
    double e = tenth > 1.0 ? tenth * 1e-14 : 1e-14;
    return std::min(1.5 * e, 1.0);
}

bool IsIntegerKind(ZorWBValueType type) {
    return type == ZorWBIntegerType || type == ZorWBIntegerIntervalType ||
           type == ZorWBIntegerEnumType || type == ZorWBBooleanType;
}

}  // namespace

// ---------------------------------------------------------------- real sets

double ZorWBInverseSlack(double x) {
    return 1e-14 * std::max(1.0, std::fabs(x));
}

bool ZorWBInverseIsEmpty(const ZorWBRealInterval& a) {
    return a.low - a.high > ZorWBInverseSlack(a.low);
}

bool ZorWBInverseHasNaN(const ZorWBRealInterval& a) {
    return std::isnan(a.low) || std::isnan(a.high);
}

bool ZorWBInverseHolds(const ZorWBRealInterval& a, double v) {
    double slack = ZorWBInverseSlack(v);
    return a.low - slack <= v && v <= a.high + slack;
}

bool ZorWBInverseMeets(const ZorWBRealInterval& a, const ZorWBRealInterval& b) {
    return !ZorWBInverseIsEmpty(a) && !ZorWBInverseIsEmpty(b) &&
           !ZorWBInverseIsEmpty({std::max(a.low, b.low), std::min(a.high, b.high)});
}

ZorWBRealInterval ZorWBInverseHull(const ZorWBRealInterval& a, const ZorWBRealInterval& b) {
    if (ZorWBInverseIsEmpty(a)) return b;
    if (ZorWBInverseIsEmpty(b)) return a;
    return {std::min(a.low, b.low), std::max(a.high, b.high)};
}

ZorWBRealInterval ZorWBInverseClip(const ZorWBRealInterval& candidate,
                                   const ZorWBRealInterval& domain) {
    if (ZorWBInverseIsEmpty(candidate) || ZorWBInverseIsEmpty(domain)) return ZorWBReal_Nil;
    double low = std::max(candidate.low, domain.low);
    double high = std::min(candidate.high, domain.high);
    if (low <= high) return {low, high};
    if (low - high > ZorWBInverseSlack(low)) return ZorWBReal_Nil;
    double point = std::max(domain.low, std::min(high, domain.high));
    return {point, point};
}

ZorWBRealInterval ZorWBInverseNegate(const ZorWBRealInterval& a) {
    if (ZorWBInverseIsEmpty(a)) return ZorWBReal_Nil;
    return {-a.high, -a.low};
}

ZorWBRealInterval ZorWBInverseAbsImage(const ZorWBRealInterval& a) {
    if (ZorWBInverseIsEmpty(a)) return ZorWBReal_Nil;
    if (a.low >= 0.0) return a;
    if (a.high <= 0.0) return {-a.high, -a.low};
    return {0.0, std::max(-a.low, a.high)};
}

double ZorWBInverseClamp(double v) {
    return std::max(-L, std::min(L, v));
}

double ZorWBInverseOpenLower(double excluded, bool integer) {
    return integer ? std::floor(excluded) + 1.0 : excluded + Hair(excluded);
}

double ZorWBInverseOpenUpper(double excluded, bool integer) {
    return integer ? std::ceil(excluded) - 1.0 : excluded - Hair(excluded);
}

ZorWBRealInterval ZorWBInverseToReal(const ZorWBIntegerInterval& a) {
    if (a.low > a.high) return ZorWBReal_Nil;
    auto bound = [](int v) {
        if (v >= ZorWBIntegerMax) return L;
        if (v <= -ZorWBIntegerMax) return -L;
        return static_cast<double>(v);
    };
    return {bound(a.low), bound(a.high)};
}

ZorWBIntegerInterval ZorWBInverseToInteger(const ZorWBRealInterval& a) {
    if (ZorWBInverseHasNaN(a) || ZorWBInverseIsEmpty(a)) return ZorWBInteger_Nil;
    double low = ZorWBInverseRoundUp(a.low);
    double high = ZorWBInverseRoundDown(a.high);
    if (low > high) return ZorWBInteger_Nil;
    return {ToIntegerBound(low), ToIntegerBound(high)};
}

double ZorWBInverseRoundUp(double v) {
    return std::ceil(SnapToInteger(v));
}

double ZorWBInverseRoundDown(double v) {
    return std::floor(SnapToInteger(v));
}

// ---------------------------------------------------------------- pieces

ZorWBInverseSet::ZorWBInverseSet(const ZorWBRealInterval& interval) {
    SetInterval(interval);
}

ZorWBInverseSet::ZorWBInverseSet(const ZorWBIntegerInterval& interval) {
    SetInterval(ZorWBInverseToReal(interval));
}

ZorWBInverseSet::ZorWBInverseSet(const ZorWBIntegerEnum& enumeration) {
    if (enumeration.GetRep() == ZorWBEnumList) {
        _ints = enumeration.GetData();
        _count = enumeration.GetSize();
    }
    SetInterval(ZorWBInverseToReal(enumeration.GetAsIntegerInterval()));
}

ZorWBInverseSet::ZorWBInverseSet(const ZorWBRealEnum& enumeration) {
    if (enumeration.GetRep() == ZorWBEnumList) {
        _reals = enumeration.GetData();
        _count = enumeration.GetSize();
    }
    SetInterval(enumeration.GetAsRealInterval());
}

ZorWBInverseSet::ZorWBInverseSet(const ZorWBValue& value) {
    switch (value.GetType()) {
        case ZorWBIntegerEnumType:
            *this = ZorWBInverseSet(value.GetIntegerEnum());
            break;
        case ZorWBRealEnumType:
            *this = ZorWBInverseSet(value.GetRealEnum());
            break;
        case ZorWBIntegerType:
        case ZorWBIntegerIntervalType:
        case ZorWBBooleanType:
            SetInterval(ZorWBInverseToReal(value.GetAsIntegerInterval()));
            break;
        case ZorWBRealType:
        case ZorWBRealIntervalType:
        case ZorWBFractionType:
            SetInterval(value.GetAsRealInterval());
            break;
        default:
            break;  // undefined: no numeric reading
    }
}

void ZorWBInverseSet::SetInterval(const ZorWBRealInterval& interval) {
    _hull = interval;
    _empty = ZorWBInverseIsEmpty(interval);  // a NaN bound reads as not empty
}

bool ZorWBInverseSet::HasNaN() const {
    if (ZorWBInverseHasNaN(_hull)) return true;
    for (int i = 0; _reals && i < _count; ++i) {
        if (std::isnan(_reals[i])) return true;
    }
    return false;
}

ZorWBRealInterval ZorWBInverseSet::GetPiece(int i) const {
    if (i < 0 || i >= _count) return _hull;
    double v = _ints ? static_cast<double>(_ints[i]) : _reals[i];
    return {v, v};
}

void ZorWBInverseStoreHull(ZorWBIntegerEnum& out, const ZorWBIntegerEnum& domain,
                           const ZorWBRealInterval& hull) {
    ZorWBIntegerInterval integers = ZorWBInverseToInteger(hull);
    if (integers.low > integers.high)
        out.SetNil();
    else if (domain.IsAny() && integers.low <= -ZorWBIntegerMax && integers.high >= ZorWBIntegerMax)
        out.SetAny();
    else
        out.SetAsIntegerInterval(integers);
}

void ZorWBInverseStoreHull(ZorWBRealEnum& out, const ZorWBRealEnum& domain,
                           const ZorWBRealInterval& hull) {
    if (ZorWBInverseIsEmpty(hull))
        out.SetNil();
    else if (domain.IsAny() && hull.low <= -L && hull.high >= L)
        out.SetAny();
    else
        out.SetAsRealInterval(hull);
}

// ---------------------------------------------------------------- values

bool ZorWBInverseCheckOperands(const ZorWBEnvironment& environment, const ZorWBValue* result,
                               const ZorWBValue& domain, const ZorWBValue* other, unsigned int code,
                               bool& integer) {
    const ZorWBValue* operands[3] = {result, &domain, other};
    bool usable = true;
    for (const ZorWBValue* operand : operands) {
        if (!operand) continue;
        operand->RecordEnv(environment);
        usable = usable && !ZorWBInverseSet(*operand).HasNaN();
    }
    usable = usable &&
             (!result || ZorWBGetCommonType(environment, *result, domain) != ZorWBUndefinedType) &&
             (!other || ZorWBGetCommonType(environment, domain, *other) != ZorWBUndefinedType);
    if (!usable) {
        environment.SetError(code);
        return false;
    }
    integer = IsIntegerKind(domain.GetType()) && (!other || IsIntegerKind(other->GetType()));
    return true;
}

ZorWBValue ZorWBInverseEmptyLike(const ZorWBValue& domain) {
    switch (domain.GetType()) {
        case ZorWBIntegerType:
        case ZorWBIntegerIntervalType:
            return ZorWBValue(ZorWBInteger_Nil);
        case ZorWBRealType:
        case ZorWBRealIntervalType:
        case ZorWBFractionType:
            return ZorWBValue(ZorWBReal_Nil);
        case ZorWBIntegerEnumType:
            return ZorWBValue(ZorWBIntegerEnum(ZorWBEnumNil));
        case ZorWBRealEnumType:
            return ZorWBValue(ZorWBRealEnum(ZorWBEnumNil));
        case ZorWBBooleanType:
            return ZorWBValue(ZorWBEmpty);
        default:
            return domain;
    }
}

ZorWBValue ZorWBInverseNarrowed(const ZorWBValue& domain, const ZorWBRealInterval& hull) {
    bool empty = ZorWBInverseIsEmpty(hull);
    switch (domain.GetType()) {
        case ZorWBIntegerType:
        case ZorWBRealType:
        case ZorWBFractionType:
            return empty ? ZorWBInverseEmptyLike(domain) : domain;
        case ZorWBIntegerIntervalType:
            return ZorWBValue(ZorWBInverseToInteger(hull));
        case ZorWBRealIntervalType:
            return ZorWBValue(empty ? ZorWBReal_Nil : hull);
        case ZorWBBooleanType: {
            ZorWBIntegerInterval bits = ZorWBInverseToInteger(ZorWBInverseClip(hull, {0.0, 1.0}));
            if (bits.low > bits.high) return ZorWBValue(ZorWBEmpty);
            if (bits.low == bits.high) return ZorWBValue(bits.low == 0 ? ZorWBFalse : ZorWBTrue);
            return ZorWBValue(ZorWBUnknown);
        }
        default:
            return domain;
    }
}
