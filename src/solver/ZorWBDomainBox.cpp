#include "solver/ZorWBDomainBox.h"

#include <algorithm>
#include <cmath>

#include "values/ZorWBIntervalFunctions.h"

namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();

// An integer bound of the values layer as a real bound (the infinity
// markers are infinite).
double IntegerBound(int bound) {
    if (bound >= ZorWBIntegerPlusInfinity) return Infinity;
    if (bound <= ZorWBIntegerMinusInfinity) return -Infinity;
    return bound;
}

int ToIntegerBound(double bound) {
    if (bound >= ZorWBIntegerPlusInfinity) return ZorWBIntegerPlusInfinity;
    if (bound <= ZorWBIntegerMinusInfinity) return ZorWBIntegerMinusInfinity;
    return static_cast<int>(bound);
}

ZorWBRoundedInterval BooleanHull(ZorWBBoolean state) {
    switch (state) {
        case ZorWBFalse:
            return {0.0, 0.0};
        case ZorWBTrue:
            return {1.0, 1.0};
        case ZorWBUnknown:
            return {0.0, 1.0};
        default:
            return ZorWBEmptyInterval();
    }
}

}  // namespace

bool ZorWBDomainBox::IsEmpty() const {
    return std::any_of(intervals.begin(), intervals.end(),
                       [](const ZorWBRoundedInterval& interval) { return interval.IsEmpty(); });
}

const ZorWBValue& ZorWBDomainBox::GetListed(int variable) const {
    static const ZorWBValue none;
    return variable >= 0 && variable < static_cast<int>(values.size()) ? values[variable] : none;
}

bool ZorWBDomainBox::Intersects(const ZorWBDomainBox& other) const {
    if (GetSize() != other.GetSize()) return false;
    for (int v = 0; v < GetSize(); ++v) {
        if (ZorWBIntersect(intervals[v], other.intervals[v]).IsEmpty()) return false;
    }
    return true;
}

bool ZorWBDomainBox::IsInside(const ZorWBDomainBox& outer) const {
    if (GetSize() != outer.GetSize()) return false;
    for (int v = 0; v < GetSize(); ++v) {
        if (!ZorWBIsSubset(intervals[v], outer.intervals[v])) return false;
    }
    return true;
}

void ZorWBReadDomain(const ZorWBValue& value, ZorWBDomainKind& kind, ZorWBRoundedInterval& interval,
                     ZorWBValue& listed) {
    kind = ZorWBDomainKindOf(value);
    interval = ZorWBDomainHull(value);
    if (kind == ZorWBDomainKind::Integer) interval = ZorWBIntegerHull(interval);
    listed = kind == ZorWBDomainKind::Listed ? value : ZorWBValue();
}

ZorWBDomainKind ZorWBDomainKindOf(const ZorWBValue& value) {
    switch (value.GetType()) {
        case ZorWBIntegerType:
        case ZorWBIntegerIntervalType:
            return ZorWBDomainKind::Integer;
        case ZorWBIntegerEnumType:
            return value.GetIntegerEnum().GetRep() == ZorWBEnumList ? ZorWBDomainKind::Listed
                                                                    : ZorWBDomainKind::Integer;
        case ZorWBRealEnumType:
        case ZorWBBooleanType:
            return ZorWBDomainKind::Listed;
        default:
            return ZorWBDomainKind::Real;
    }
}

ZorWBRoundedInterval ZorWBDomainHull(const ZorWBValue& value) {
    switch (value.GetType()) {
        case ZorWBUndefinedType:
            return {};
        case ZorWBBooleanType:
            return BooleanHull(value.GetAsBoolean());
        case ZorWBIntegerType:
        case ZorWBIntegerIntervalType:
        case ZorWBIntegerEnumType: {
            ZorWBIntegerInterval hull = value.GetAsIntegerInterval();
            if (hull.low > hull.high) return ZorWBEmptyInterval();
            return {IntegerBound(hull.low), IntegerBound(hull.high)};
        }
        case ZorWBRealEnumType:
            if (value.GetRealEnum().IsNil()) return ZorWBEmptyInterval();
            return ZorWBFromRealInterval(value.GetAsRealInterval());
        default: {
            ZorWBRealInterval hull = value.GetAsRealInterval();
            if (std::isnan(hull.low) || std::isnan(hull.high)) return {};
            return ZorWBFromRealInterval(hull);
        }
    }
}

ZorWBValue ZorWBDomainValue(ZorWBDomainKind kind, const ZorWBRoundedInterval& interval,
                            const ZorWBValue& listed) {
    switch (kind) {
        case ZorWBDomainKind::Integer: {
            if (interval.IsEmpty()) return ZorWBValue(ZorWBInteger_Nil);
            ZorWBRoundedInterval integers = ZorWBIntegerHull(interval);
            if (integers.IsEmpty()) return ZorWBValue(ZorWBInteger_Nil);
            return ZorWBValue(
                ZorWBIntegerInterval{ToIntegerBound(integers.low), ToIntegerBound(integers.high)});
        }
        case ZorWBDomainKind::Listed:
            return listed;
        default:
            return ZorWBValue(ZorWBToRealInterval(interval));
    }
}

ZorWBRoundedInterval ZorWBIntegerHull(const ZorWBRoundedInterval& interval) {
    if (interval.IsEmpty()) return ZorWBEmptyInterval();
    return {std::ceil(interval.low), std::floor(interval.high)};
}

ZorWBRoundedInterval ZorWBAllowedSet(ZorWBEquationType type, double tolerance) {
    switch (type) {
        case ZorWBEqualZero:
            return {-tolerance, tolerance};
        case ZorWBLessEqualZero:
            return {-Infinity, tolerance};
        case ZorWBLessZero:
            return {-Infinity, 0.0};
        case ZorWBGreaterEqualZero:
            return {-tolerance, Infinity};
        case ZorWBGreaterZero:
            return {0.0, Infinity};
        default:
            return {};
    }
}

ZorWBBoolean ZorWBRelationHolds(ZorWBEquationType type, const ZorWBRoundedInterval& root,
                                double tolerance) {
    if (root.IsEmpty()) return ZorWBEmpty;
    auto verdict = [](bool holds, bool fails) {
        return holds ? ZorWBTrue : fails ? ZorWBFalse : ZorWBUnknown;
    };
    // The tests of the value functions' comparisons with 0.
    const bool equal = root.high - root.low < tolerance && std::fabs(root.low) < tolerance;
    const bool different = root.low > tolerance || root.high < -tolerance;
    switch (type) {
        case ZorWBEqualZero:
            return verdict(equal, different);
        case ZorWBNotEqualZero:
            return verdict(different, equal);
        case ZorWBLessEqualZero:
            return verdict(root.high <= 0.0, root.low > tolerance);
        case ZorWBLessZero:
            return verdict(root.high < -tolerance, root.low >= 0.0);
        case ZorWBGreaterEqualZero:
            return verdict(root.low >= 0.0, root.high < -tolerance);
        case ZorWBGreaterZero:
            return verdict(root.low > tolerance, root.high <= 0.0);
        default:
            return ZorWBUnknown;
    }
}
