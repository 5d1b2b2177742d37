// Set operations and tests on values, and the value members that forward to
// them.
//
// Intersect and Exclude change a value in place and keep its number type: a
// value of integers (an integer, an integer interval or enumeration, a
// boolean) keeps only integers, so intersecting it with a real interval
// leaves the integers inside. A scalar that loses its only element becomes
// the empty interval of its number type. Exclude keeps the value's kind and
// gives the hull where the difference is not representable (a hole inside an
// interval). Intersecting with an enumeration gives an enumeration, and Unite
// takes the common kind of both operands, giving the hull where the union is
// not representable (two distinct integers unite to the integer interval
// between them).
//
// Booleans are the integer sets {0} (false), {1} (true), {0, 1} (unknown) and
// {} (empty) in all these operations.

#include <algorithm>
#include <cmath>

#include "values/ZorWBValueDispatch.h"
#include "values/ZorWBValueFunctions.h"

using namespace ZorWBDispatch;

namespace {

// ------------------------------------------------------------ enumerations as real sets

// Integer enumerations are computed as exactly represented reals and read
// back as integers.
ZorWBRealEnum AsReals(const ZorWBValue& enumeration) {
    if (enumeration.IsAKindOf(ZorWBIntegerEnumType))
        return ZorWBRealEnum(enumeration.GetIntegerEnum());
    return enumeration.GetRealEnum();
}

ZorWBValue FromReals(const ZorWBEnvironment& environment, const ZorWBRealEnum& reals,
                     bool integers) {
    if (integers && reals.IsAny()) return ZorWBValue(ZorWBIntegerEnum(ZorWBEnumAny));
    ZorWBValue result(reals);
    if (integers) return ReadEnum(environment, result, true);
    result.GetRealEnum().Correct(environment);
    return result;
}

// Replaces the target by an enumeration without taking its environment.
void SetEnum(ZorWBValue& target, const ZorWBValue& enumeration) {
    if (enumeration.IsAKindOf(ZorWBIntegerEnumType))
        target.Set(enumeration.GetIntegerEnum());
    else
        target.Set(enumeration.GetRealEnum());
}

ZorWBRealEnum Filter(const ZorWBRealEnum& list, const ZorWBRealEnum& other, double tolerance,
                     bool keepContained) {
    ZorWBRealEnum kept(ZorWBEnumList);
    for (int i = 0; i < list.GetSize(); ++i) {
        if (other.Contains(list.Get(i), tolerance) == keepContained) kept.Append(list.Get(i));
    }
    return kept;
}

ZorWBRealEnum IntersectReals(const ZorWBRealEnum& a, const ZorWBRealEnum& b, double tolerance) {
    if (a.IsNil() || b.IsNil()) return ZorWBRealEnum(ZorWBEnumNil);
    if (a.IsAny()) return b;
    if (b.IsAny()) return a;
    if (a.GetRep() == ZorWBEnumList) return Filter(a, b, tolerance, true);
    if (b.GetRep() == ZorWBEnumList) return Filter(b, a, tolerance, true);
    ZorWBRealEnum result(ZorWBEnumNil);
    ZorWBRealInterval both =
        ZorWBIntersect(a.GetAsRealInterval(), b.GetAsRealInterval(), tolerance);
    if (ZorWBIsConsistent(both, tolerance)) result.SetAsRealInterval(both);
    return result;
}

// The sorted union of two lists, elements within tolerance merged.
ZorWBRealEnum MergeLists(const ZorWBRealEnum& a, const ZorWBRealEnum& b, double tolerance) {
    ZorWBRealEnum merged(ZorWBEnumList);
    int i = 0;
    int j = 0;
    while (i < a.GetSize() || j < b.GetSize()) {
        bool fromA = j >= b.GetSize() || (i < a.GetSize() && a.Get(i) <= b.Get(j));
        double next = fromA ? a.Get(i++) : b.Get(j++);
        int size = merged.GetSize();
        double gap = size == 0 ? 1.0 : next - merged.Get(size - 1);
        if (gap > 0.0 && gap >= tolerance) merged.Append(next);
    }
    return merged;
}

ZorWBRealEnum UniteReals(const ZorWBEnvironment& environment, const ZorWBRealEnum& a,
                         const ZorWBRealEnum& b, double tolerance) {
    if (a.IsNil()) return b;
    if (b.IsNil()) return a;
    if (a.IsAny() || b.IsAny()) return ZorWBRealEnum(ZorWBEnumAny);
    if (a.GetRep() == ZorWBEnumList && b.GetRep() == ZorWBEnumList) {
        ZorWBRealEnum merged = MergeLists(a, b, tolerance);
        if (merged.GetSize() <= environment.GetMaxEnumSize()) return merged;
    }
    ZorWBRealEnum hull(ZorWBEnumInterval);
    hull.SetAsRealInterval(ZorWBUnite(a.GetAsRealInterval(), b.GetAsRealInterval()));
    return hull;
}

// ------------------------------------------------------------ differences

// The part of a that b does not cover, closed: a hole inside a keeps a.
ZorWBRealInterval RealDifference(const ZorWBRealInterval& a, const ZorWBRealInterval& b,
                                 double tolerance) {
    if (b.high < a.low || b.low > a.high) return a;
    bool coversLow = b.low <= a.low + tolerance;
    bool coversHigh = b.high >= a.high - tolerance;
    if (coversLow && coversHigh) return ZorWBReal_Nil;
    if (coversLow) return {std::max(b.high, a.low), a.high};
    if (coversHigh) return {a.low, std::min(b.low, a.high)};
    return a;
}

ZorWBIntegerInterval IntegerDifference(const ZorWBIntegerInterval& a,
                                       const ZorWBIntegerInterval& b) {
    if (b.high < a.low || b.low > a.high) return a;
    bool coversLow = b.low <= a.low;
    bool coversHigh = b.high >= a.high;
    if (coversLow && coversHigh) return ZorWBInteger_Nil;
    if (coversLow) return {b.high + 1, a.high};
    if (coversHigh) return {a.low, b.low - 1};
    return a;
}

ZorWBIntegerEnum ExcludeIntegers(const ZorWBEnvironment& environment, const ZorWBIntegerEnum& a,
                                 const ZorWBIntegerEnum& b) {
    if (a.IsNil() || b.IsNil() || a.IsAny()) return a;  // no complement of a set in any
    if (b.IsAny()) return ZorWBIntegerEnum(ZorWBEnumNil);
    ZorWBIntegerEnum result(ZorWBEnumList);
    if (a.GetRep() == ZorWBEnumList) {
        for (int i = 0; i < a.GetSize(); ++i) {
            if (!b.Contains(a.Get(i))) result.Append(a.Get(i));
        }
    } else if (b.GetRep() == ZorWBEnumList) {
        // Removing elements of a wide interval can only shorten its ends.
        long long low = a.GetAsIntegerInterval().low;
        long long high = a.GetAsIntegerInterval().high;
        while (low <= high && b.Contains(static_cast<int>(low)))
            ++low;
        while (high >= low && b.Contains(static_cast<int>(high)))
            --high;
        result.SetAsIntegerInterval(ZorWBCreateIntegerInterval(
            static_cast<int>(std::min<long long>(low, ZorWBIntegerMax)),
            static_cast<int>(std::max<long long>(high, -ZorWBIntegerMax))));
    } else {
        result.SetAsIntegerInterval(
            IntegerDifference(a.GetAsIntegerInterval(), b.GetAsIntegerInterval()));
    }
    result.Correct(environment);
    return result;
}

ZorWBRealEnum ExcludeReals(const ZorWBEnvironment& environment, const ZorWBRealEnum& a,
                           const ZorWBRealEnum& b, double tolerance) {
    if (a.IsNil() || b.IsNil() || a.IsAny()) return a;
    if (b.IsAny()) return ZorWBRealEnum(ZorWBEnumNil);
    ZorWBRealEnum result(ZorWBEnumInterval);
    ZorWBRealInterval hull = a.GetAsRealInterval();
    if (a.GetRep() == ZorWBEnumList) {
        result = Filter(a, b, tolerance, false);
    } else if (b.GetRep() == ZorWBEnumList) {
        // Removing points from an interval changes its closure only when it
        // is a single point.
        bool removed = ZorWBIsExact(hull, tolerance) && b.Contains(hull.low, tolerance);
        result.SetAsRealInterval(removed ? ZorWBReal_Nil : hull);
    } else {
        result.SetAsRealInterval(RealDifference(hull, b.GetAsRealInterval(), tolerance));
    }
    result.Correct(environment);
    return result;
}

// ------------------------------------------------------------ storing results in a

bool StoreIntegerSet(ZorWBValue& a, const ZorWBIntegerInterval& set) {
    bool consistent = !ZorWBIsEmpty(set);
    if (a.IsAKindOf(ZorWBBooleanType))
        a.Set(BooleanOfIntegerSet(set));
    else if (a.IsAKindOf(ZorWBIntegerIntervalType))
        a.Set(consistent ? set : ZorWBInteger_Nil);
    else if (!consistent)
        a.Set(ZorWBInteger_Nil);
    return consistent;
}

bool StoreRealSet(ZorWBValue& a, const ZorWBRealInterval& set, double tolerance) {
    bool consistent = ZorWBIsConsistent(set, tolerance);
    if (a.IsAKindOf(ZorWBRealIntervalType))
        a.Set(consistent ? set : ZorWBReal_Nil);
    else if (!consistent)
        a.Set(ZorWBReal_Nil);
    return consistent;
}

// a takes a subset of itself held as an enumeration: a scalar stays or
// becomes empty, an interval or a boolean takes the hull, an enumeration
// takes it as it is.
bool StoreSubset(ZorWBValue& a, const ZorWBValue& subset, bool integers, bool keepIntervals,
                 double tolerance) {
    if (integers &&
        (a.IsAKindOf(ZorWBBooleanType) || (keepIntervals && a.IsAKindOf(ZorWBIntegerIntervalType))))
        return StoreIntegerSet(a, subset.GetAsIntegerInterval());
    if (!integers && keepIntervals && a.IsAKindOf(ZorWBRealIntervalType))
        return StoreRealSet(a, subset.GetAsRealInterval(), tolerance);
    bool consistent = !IsNilEnum(subset);
    if (!IsScalarKind(a.GetType()))
        SetEnum(a, subset);
    else if (!consistent && integers)
        a.Set(ZorWBInteger_Nil);
    else if (!consistent)
        a.Set(ZorWBReal_Nil);
    return consistent;
}

bool IsIntegerOperand(const ZorWBEnvironment& environment, const ZorWBValue& value) {
    return IsIntegerKind(LookupKind(environment, value));
}

// The representation of an enumeration value, a whole-line interval counting
// as any.
ZorWBEnumRepresentation Category(const ZorWBValue& enumeration) {
    bool integers = enumeration.IsAKindOf(ZorWBIntegerEnumType);
    ZorWBEnumRepresentation representation =
        integers ? enumeration.GetIntegerEnum().GetRep() : enumeration.GetRealEnum().GetRep();
    bool whole = integers ? ZorWBIsInfinite(enumeration.GetAsIntegerInterval())
                          : ZorWBIsInfinite(enumeration.GetAsRealInterval());
    return representation == ZorWBEnumInterval && whole ? ZorWBEnumAny : representation;
}

bool EnumsEqual(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b,
                bool integers, double tolerance) {
    ZorWBValue first = ReadEnum(environment, a, integers);
    ZorWBValue second = ReadEnum(environment, b, integers);
    ZorWBEnumRepresentation firstCategory = Category(first);
    ZorWBEnumRepresentation secondCategory = Category(second);
    ZorWBRealEnum x = AsReals(first);
    ZorWBRealEnum y = AsReals(second);
    if (integers) tolerance = 0.5;  // integers are apart by 1 at least
    if (firstCategory == ZorWBEnumAny || firstCategory == ZorWBEnumNil ||
        secondCategory == ZorWBEnumAny || secondCategory == ZorWBEnumNil)
        return firstCategory == secondCategory;
    bool sameHull = ZorWBIsEqual(x.GetAsRealInterval(), y.GetAsRealInterval(), tolerance);
    if (firstCategory == ZorWBEnumInterval && secondCategory == ZorWBEnumInterval) return sameHull;
    if (firstCategory == ZorWBEnumList && secondCategory == ZorWBEnumList) {
        if (x.GetSize() != y.GetSize()) return false;
        for (int i = 0; i < x.GetSize(); ++i) {
            if (!(std::fabs(x.Get(i) - y.Get(i)) < tolerance || x.Get(i) == y.Get(i))) return false;
        }
        return true;
    }
    // A list equals an interval when it fills it: every integer of it, or
    // its single point.
    bool firstIsList = firstCategory == ZorWBEnumList;
    const ZorWBRealEnum& list = firstIsList ? x : y;
    ZorWBRealInterval interval = (firstIsList ? y : x).GetAsRealInterval();
    ZorWBRealInterval hull = list.GetAsRealInterval();
    double count = integers ? hull.high - hull.low + 1.0 : 1.0;
    return sameHull && static_cast<double>(list.GetSize()) == count &&
           (integers || ZorWBIsExact(interval, tolerance));
}

}  // namespace

bool ZorWBIntersect(const ZorWBEnvironment& environment, ZorWBValue& a, const ZorWBValue& b,
                    double tolerance) {
    a.RecordEnv(environment);
    b.RecordEnv(environment);
    tolerance = environment.ResolveTolerance(tolerance);
    OperandPair operands(environment, a, b);
    const ZorWBValue& x = operands.First();
    const ZorWBValue& y = operands.Second();
    ZorWBValueType kind = operands.CommonType();
    if (kind == ZorWBUndefinedType) {
        environment.SetError(ZorWBError::IncompatibleKinds);
        return false;
    }
    bool integers = IsIntegerOperand(environment, x);
    if (IsEnumKind(kind)) {
        ZorWBRealEnum both = IntersectReals(AsReals(ReadEnum(environment, x, integers)),
                                            AsReals(ReadEnum(environment, y, integers)), tolerance);
        return StoreSubset(a, FromReals(environment, both, integers), integers, false, tolerance);
    }
    if (integers)
        return StoreIntegerSet(a,
                               ZorWBIntersect(x.GetAsIntegerInterval(), y.GetAsIntegerInterval()));
    return StoreRealSet(a, ZorWBIntersect(x.GetAsRealInterval(), y.GetAsRealInterval(), tolerance),
                        tolerance);
}

void ZorWBUnite(const ZorWBEnvironment& environment, ZorWBValue& a, const ZorWBValue& b) {
    a.RecordEnv(environment);
    b.RecordEnv(environment);
    double tolerance = environment.GetTolerance();
    OperandPair operands(environment, a, b);
    const ZorWBValue& x = operands.First();
    const ZorWBValue& y = operands.Second();
    switch (operands.CommonType()) {
        case ZorWBUndefinedType:
            environment.SetError(ZorWBError::IncompatibleKinds);
            return;
        case ZorWBIntegerEnumType:
        case ZorWBRealEnumType: {
            bool integers = operands.CommonType() == ZorWBIntegerEnumType;
            ZorWBRealEnum both =
                UniteReals(environment, AsReals(ReadEnum(environment, x, integers)),
                           AsReals(ReadEnum(environment, y, integers)), tolerance);
            SetEnum(a, FromReals(environment, both, integers));
            return;
        }
        case ZorWBBooleanType:
            a.Set(BooleanOfIntegerSet(
                ZorWBUnite(x.GetAsIntegerInterval(), y.GetAsIntegerInterval())));
            return;
        case ZorWBIntegerType:
        case ZorWBIntegerIntervalType: {
            ZorWBIntegerInterval hull =
                ZorWBUnite(x.GetAsIntegerInterval(), y.GetAsIntegerInterval());
            if (!a.IsAKindOf(ZorWBIntegerType) || !ZorWBIsExact(hull)) a.Set(hull);
            return;
        }
        default: {
            ZorWBRealInterval hull = ZorWBUnite(x.GetAsRealInterval(), y.GetAsRealInterval());
            if (!IsScalarKind(a.GetType()) || !ZorWBIsExact(hull, tolerance)) a.Set(hull);
            return;
        }
    }
}

void ZorWBExclude(const ZorWBEnvironment& environment, ZorWBValue& a, const ZorWBValue& b) {
    a.RecordEnv(environment);
    b.RecordEnv(environment);
    double tolerance = environment.GetTolerance();
    OperandPair operands(environment, a, b);
    if (operands.CommonType() == ZorWBUndefinedType) {
        environment.SetError(ZorWBError::IncompatibleKinds);
        return;
    }
    bool integers = IsIntegerOperand(environment, operands.First());
    ZorWBValue x = ReadEnum(environment, operands.First(), integers);
    ZorWBValue y = ReadEnum(environment, operands.Second(), integers);
    ZorWBValue rest =
        integers
            ? ZorWBValue(ExcludeIntegers(environment, x.GetIntegerEnum(), y.GetIntegerEnum()))
            : ZorWBValue(ExcludeReals(environment, x.GetRealEnum(), y.GetRealEnum(), tolerance));
    StoreSubset(a, rest, integers, true, tolerance);
}

// Does a contain b: scalars by equality, intervals and enumerations by their
// hulls. Kinds that cannot be combined answer false (with error 2 below the
// level ZorWBLevel::QuietIncompatibleTests).
bool ZorWBContains(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b) {
    a.RecordEnv(environment);
    b.RecordEnv(environment);
    OperandPair operands(environment, a, b);
    const ZorWBValue& x = operands.First();
    const ZorWBValue& y = operands.Second();
    double tolerance = environment.GetTolerance();
    switch (operands.CommonType()) {
        case ZorWBIntegerType:
            return x.GetAsInteger() == y.GetAsInteger();
        case ZorWBRealType:
            return std::fabs(x.GetAsReal() - y.GetAsReal()) < tolerance ||
                   x.GetAsReal() == y.GetAsReal();
        case ZorWBIntegerIntervalType:
        case ZorWBIntegerEnumType:
        case ZorWBBooleanType:
            return ZorWBContains(x.GetAsIntegerInterval(), y.GetAsIntegerInterval());
        case ZorWBRealIntervalType:
        case ZorWBRealEnumType:
            return ZorWBContains(x.GetAsRealInterval(), y.GetAsRealInterval(), tolerance);
        default:
            ReportIncompatibleTest(environment);
            return false;
    }
}

// An undefined value (or an unknown kind) is not empty; below the level
// ZorWBLevel::QuietIncompatibleTests asking sets error 2.
bool ZorWBIsEmpty(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    a.RecordEnv(environment);
    switch (a.GetType()) {
        case ZorWBIntegerType:
        case ZorWBRealType:
        case ZorWBFractionType:
            return false;
        case ZorWBIntegerIntervalType:
        case ZorWBIntegerEnumType:
            return ZorWBIsEmpty(a.GetAsIntegerInterval());
        case ZorWBRealIntervalType:
        case ZorWBRealEnumType:
            return ZorWBIsEmpty(a.GetAsRealInterval(), environment.GetTolerance());
        case ZorWBBooleanType: {
            ZorWBBoolean state = a.GetAsBoolean();
            return state < ZorWBFalse || state > ZorWBUnknown;  // empty, or no state at all
        }
        default:
            ReportIncompatibleTest(environment);
            return false;
    }
}

bool ZorWBIsConsistent(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return !ZorWBIsEmpty(environment, a);
}

// Equality of values as sets (see ZorWBEqual for the four-state comparison).
bool ZorWBIsEqual(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b,
                  double tolerance) {
    a.RecordEnv(environment);
    b.RecordEnv(environment);
    tolerance = environment.ResolveTolerance(tolerance);
    OperandPair operands(environment, a, b);
    const ZorWBValue& x = operands.First();
    const ZorWBValue& y = operands.Second();
    switch (operands.CommonType()) {
        case ZorWBIntegerType:
            return x.GetAsInteger() == y.GetAsInteger();
        case ZorWBRealType:
            return std::fabs(x.GetAsReal() - y.GetAsReal()) < tolerance ||
                   x.GetAsReal() == y.GetAsReal();
        case ZorWBIntegerIntervalType:
        case ZorWBBooleanType:
            return ZorWBIsEqual(x.GetAsIntegerInterval(), y.GetAsIntegerInterval());
        case ZorWBRealIntervalType:
            return ZorWBIsEqual(x.GetAsRealInterval(), y.GetAsRealInterval(), tolerance);
        case ZorWBIntegerEnumType:
            return EnumsEqual(environment, x, y, true, tolerance);
        case ZorWBRealEnumType:
            return EnumsEqual(environment, x, y, false, tolerance);
        default:
            ReportIncompatibleTest(environment);
            return false;
    }
}

// A single value: scalars always, intervals and enumerations when their hull
// is one point, booleans when true or false. An undefined value is not.
bool ZorWBIsExact(const ZorWBEnvironment& environment, const ZorWBValue& a, double tolerance) {
    a.RecordEnv(environment);
    tolerance = environment.ResolveTolerance(tolerance);
    switch (a.GetType()) {
        case ZorWBIntegerType:
        case ZorWBRealType:
        case ZorWBFractionType:
            return true;
        case ZorWBIntegerIntervalType:
        case ZorWBIntegerEnumType:
            return ZorWBIsExact(a.GetAsIntegerInterval());
        case ZorWBRealIntervalType:
        case ZorWBRealEnumType:
            return ZorWBIsExact(a.GetAsRealInterval(), tolerance);
        case ZorWBBooleanType:
            return a.GetAsBoolean() == ZorWBFalse || a.GetAsBoolean() == ZorWBTrue;
        default:
            return false;
    }
}

// The widest value of its kind: the whole line, any, unknown. An undefined
// value counts as indefinite, since nothing is known of it.
bool ZorWBIsIndefinite(const ZorWBValue& a) {
    switch (a.GetType()) {
        case ZorWBUndefinedType:
            return true;
        case ZorWBIntegerIntervalType:
        case ZorWBIntegerEnumType:
            return ZorWBIsInfinite(a.GetAsIntegerInterval());
        case ZorWBRealIntervalType:
        case ZorWBRealEnumType:
            return ZorWBIsInfinite(a.GetAsRealInterval());
        case ZorWBBooleanType:
            return a.GetAsBoolean() == ZorWBUnknown;
        default:
            return false;
    }
}

// ------------------------------------------------------------ value members

bool ZorWBValue::Intersect(const ZorWBEnvironment& environment, const ZorWBValue& other) {
    RecordEnv(environment);
    return ZorWBIntersect(environment, *this, other, -1.0);
}

void ZorWBValue::Unite(const ZorWBEnvironment& environment, const ZorWBValue& other) {
    RecordEnv(environment);
    ZorWBUnite(environment, *this, other);
}

void ZorWBValue::Exclude(const ZorWBEnvironment& environment, const ZorWBValue& other) {
    RecordEnv(environment);
    ZorWBExclude(environment, *this, other);
}

bool ZorWBValue::IsEmpty(const ZorWBEnvironment& environment) const {
    RecordEnv(environment);
    return ZorWBIsEmpty(environment, *this);
}

bool ZorWBValue::IsExact(const ZorWBEnvironment& environment) const {
    RecordEnv(environment);
    return ZorWBIsExact(environment, *this, -1.0);
}

bool ZorWBValue::IsIndefinite(const ZorWBEnvironment& environment) const {
    RecordEnv(environment);
    return ZorWBIsIndefinite(*this);
}

bool ZorWBValue::IsEqualTo(const ZorWBEnvironment& environment, const ZorWBValue& other) const {
    RecordEnv(environment);
    return ZorWBIsEqual(environment, *this, other, -1.0);
}
