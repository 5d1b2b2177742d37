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

bool IsNearInteger(double value, double tolerance) {
    return std::fabs(value - std::round(value)) <= tolerance * std::max(1.0, std::fabs(value));
}

// An enumeration read as reals, and whether it holds integers only (an
// integer interval holds no number between its integers).
struct RealSet {
    ZorWBRealEnum elements;
    bool integers;

    bool Contains(double value, double tolerance) const {
        return elements.Contains(value, tolerance) &&
               (!integers || IsNearInteger(value, tolerance));
    }
};

RealSet ReadRealSet(const ZorWBEnvironment& environment, const ZorWBValue& value, bool integers) {
    return {AsReals(ReadEnum(environment, value, integers)),
            IsIntegerKind(LookupKind(environment, value))};
}

ZorWBRealEnum Filter(const ZorWBRealEnum& list, const RealSet& other, double tolerance,
                     bool keepContained) {
    ZorWBRealEnum kept(ZorWBEnumList);
    for (int i = 0; i < list.GetSize(); ++i) {
        if (other.Contains(list.Get(i), tolerance) == keepContained) kept.Append(list.Get(i));
    }
    return kept;
}

ZorWBRealEnum IntersectReals(const RealSet& first, const RealSet& second, double tolerance) {
    const ZorWBRealEnum& a = first.elements;
    const ZorWBRealEnum& b = second.elements;
    if (a.IsNil() || b.IsNil()) return ZorWBRealEnum(ZorWBEnumNil);
    if (a.IsAny()) return b;
    if (b.IsAny()) return a;
    if (a.GetRep() == ZorWBEnumList) return Filter(a, second, tolerance, true);
    if (b.GetRep() == ZorWBEnumList) return Filter(b, first, tolerance, true);
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

// The part of a that b does not cover, closed: a hole inside a keeps a. When
// b holds integers only, it removes something from the closure of a only when
// a is that one integer.
ZorWBRealInterval RealDifference(const ZorWBRealInterval& a, const ZorWBRealInterval& b,
                                 double tolerance, bool integersOnly) {
    if (integersOnly) {
        bool removed = ZorWBIsExact(a, tolerance) && IsNearInteger(a.low, tolerance) &&
                       ZorWBContains(b, a, tolerance);
        return removed ? ZorWBReal_Nil : a;
    }
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
                           const RealSet& other, double tolerance) {
    const ZorWBRealEnum& b = other.elements;
    if (a.IsNil() || b.IsNil() || a.IsAny()) return a;
    if (b.IsAny()) return ZorWBRealEnum(ZorWBEnumNil);
    ZorWBRealEnum result(ZorWBEnumInterval);
    ZorWBRealInterval hull = a.GetAsRealInterval();
    if (a.GetRep() == ZorWBEnumList) {
        result = Filter(a, other, tolerance, false);
    } else if (b.GetRep() == ZorWBEnumList) {
        // Removing points from an interval changes its closure only when it
        // is a single point.
        bool removed = ZorWBIsExact(hull, tolerance) && other.Contains(hull.low, tolerance);
        result.SetAsRealInterval(removed ? ZorWBReal_Nil : hull);
    } else {
        result.SetAsRealInterval(
            RealDifference(hull, b.GetAsRealInterval(), tolerance, other.integers));
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

// Enumerations are intersected and removed element by element (a boolean
// combines with an integer enumeration as with its hull, which may hold
// more).
bool HasEnumeration(ZorWBValueType commonType, const ZorWBValue& a, const ZorWBValue& b) {
    return IsEnumKind(commonType) || IsEnumKind(a.GetType()) || IsEnumKind(b.GetType());
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
    if (HasEnumeration(kind, x, y)) {
        ZorWBRealEnum both = IntersectReals(ReadRealSet(environment, x, integers),
                                            ReadRealSet(environment, y, integers), tolerance);
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
            // A NaN holds no number: the union is the other operand's hull.
            bool holdsNothing = std::isnan(a.GetAsReal());
            if (!IsScalarKind(a.GetType()) || !ZorWBIsExact(hull, tolerance) || holdsNothing)
                a.Set(hull);
            return;
        }
    }
}

void ZorWBExclude(const ZorWBEnvironment& environment, ZorWBValue& a, const ZorWBValue& b) {
    a.RecordEnv(environment);
    b.RecordEnv(environment);
    double tolerance = environment.GetTolerance();
    OperandPair operands(environment, a, b);
    const ZorWBValue& x = operands.First();
    const ZorWBValue& y = operands.Second();
    ZorWBValueType kind = operands.CommonType();
    if (kind == ZorWBUndefinedType) {
        environment.SetError(ZorWBError::IncompatibleKinds);
        return;
    }
    bool integers = IsIntegerOperand(environment, x);
    if (!HasEnumeration(kind, x, y)) {
        if (integers)
            StoreIntegerSet(a,
                            IntegerDifference(x.GetAsIntegerInterval(), y.GetAsIntegerInterval()));
        else
            StoreRealSet(a,
                         RealDifference(x.GetAsRealInterval(), y.GetAsRealInterval(), tolerance,
                                        IsIntegerOperand(environment, y)),
                         tolerance);
        return;
    }
    ZorWBValue first = ReadEnum(environment, x, integers);
    if (integers) {
        ZorWBValue second = ReadEnum(environment, y, true);
        StoreSubset(a,
                    ZorWBValue(ExcludeIntegers(environment, first.GetIntegerEnum(),
                                               second.GetIntegerEnum())),
                    true, true, tolerance);
    } else {
        StoreSubset(a,
                    ZorWBValue(ExcludeReals(environment, first.GetRealEnum(),
                                            ReadRealSet(environment, y, false), tolerance)),
                    false, true, tolerance);
    }
}

// ------------------------------------------------------------ tests

namespace {

// A test of two values in their common kind: scalars by equality (reals
// within the tolerance), intervals, booleans and enumerations by the test's
// own forms. Kinds that cannot be combined answer false, with error 2 below
// the level ZorWBLevel::QuietIncompatibleTests.
template <class Test>
bool TestPair(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b,
              double tolerance, const Test& test) {
    a.RecordEnv(environment);
    b.RecordEnv(environment);
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
            return test.Integers(x.GetAsIntegerInterval(), y.GetAsIntegerInterval());
        case ZorWBRealIntervalType:
            return test.Reals(x.GetAsRealInterval(), y.GetAsRealInterval(), tolerance);
        case ZorWBIntegerEnumType:
            return test.Enums(environment, x, y, true, tolerance);
        case ZorWBRealEnumType:
            return test.Enums(environment, x, y, false, tolerance);
        default:
            ReportIncompatibleTest(environment);
            return false;
    }
}

// Containment of enumerations is that of their hulls.
struct ContainsTest {
    bool Integers(const ZorWBIntegerInterval& a, const ZorWBIntegerInterval& b) const {
        return ZorWBContains(a, b);
    }
    bool Reals(const ZorWBRealInterval& a, const ZorWBRealInterval& b, double tolerance) const {
        return ZorWBContains(a, b, tolerance);
    }
    bool Enums(const ZorWBEnvironment&, const ZorWBValue& a, const ZorWBValue& b, bool integers,
               double tolerance) const {
        if (integers) return Integers(a.GetAsIntegerInterval(), b.GetAsIntegerInterval());
        return Reals(a.GetAsRealInterval(), b.GetAsRealInterval(), tolerance);
    }
};

struct EqualTest {
    bool Integers(const ZorWBIntegerInterval& a, const ZorWBIntegerInterval& b) const {
        return ZorWBIsEqual(a, b);
    }
    bool Reals(const ZorWBRealInterval& a, const ZorWBRealInterval& b, double tolerance) const {
        return ZorWBIsEqual(a, b, tolerance);
    }
    bool Enums(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b,
               bool integers, double tolerance) const {
        return EnumsEqual(environment, a, b, integers, tolerance);
    }
};

// A test of one value by its form: scalars, integer sets, real sets (hulls
// of intervals and enumerations), boolean states, and the rest (undefined or
// unknown kinds).
template <class Test>
bool TestValue(const ZorWBValue& a, const Test& test) {
    switch (a.GetType()) {
        case ZorWBIntegerType:
        case ZorWBRealType:
        case ZorWBFractionType:
            return test.Scalar();
        case ZorWBIntegerIntervalType:
        case ZorWBIntegerEnumType:
            return test.Integers(a.GetAsIntegerInterval());
        case ZorWBRealIntervalType:
        case ZorWBRealEnumType:
            return test.Reals(a.GetAsRealInterval());
        case ZorWBBooleanType:
            return test.State(a.GetAsBoolean());
        default:
            return test.Other(a.GetType());
    }
}

// An undefined value (or an unknown kind) is not empty; below the level
// ZorWBLevel::QuietIncompatibleTests asking sets error 2.
struct EmptyTest {
    const ZorWBEnvironment& environment;
    bool Scalar() const { return false; }
    bool Integers(const ZorWBIntegerInterval& a) const { return ZorWBIsEmpty(a); }
    bool Reals(const ZorWBRealInterval& a) const {
        return ZorWBIsEmpty(a, environment.GetTolerance());
    }
    bool State(ZorWBBoolean state) const {
        return state < ZorWBFalse || state > ZorWBUnknown;  // empty, or no state at all
    }
    bool Other(ZorWBValueType) const {
        ReportIncompatibleTest(environment);
        return false;
    }
};

// A single value: scalars always, intervals and enumerations when their hull
// is one point, booleans when true or false. An undefined value is not.
struct ExactTest {
    double tolerance;
    bool Scalar() const { return true; }
    bool Integers(const ZorWBIntegerInterval& a) const { return ZorWBIsExact(a); }
    bool Reals(const ZorWBRealInterval& a) const { return ZorWBIsExact(a, tolerance); }
    bool State(ZorWBBoolean state) const { return state == ZorWBFalse || state == ZorWBTrue; }
    bool Other(ZorWBValueType) const { return false; }
};

// The widest value of its kind: the whole line, any, unknown. An undefined
// value counts as indefinite, since nothing is known of it.
struct IndefiniteTest {
    bool Scalar() const { return false; }
    bool Integers(const ZorWBIntegerInterval& a) const { return ZorWBIsInfinite(a); }
    bool Reals(const ZorWBRealInterval& a) const { return ZorWBIsInfinite(a); }
    bool State(ZorWBBoolean state) const { return state == ZorWBUnknown; }
    bool Other(ZorWBValueType type) const { return type == ZorWBUndefinedType; }
};

}  // namespace

// Does a contain b: scalars by equality, intervals and enumerations by their
// hulls.
bool ZorWBContains(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b) {
    return TestPair(environment, a, b, environment.GetTolerance(), ContainsTest());
}

// Equality of values as sets (see ZorWBEqual for the four-state comparison).
bool ZorWBIsEqual(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b,
                  double tolerance) {
    return TestPair(environment, a, b, environment.ResolveTolerance(tolerance), EqualTest());
}

bool ZorWBIsEmpty(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    a.RecordEnv(environment);
    return TestValue(a, EmptyTest{environment});
}

bool ZorWBIsConsistent(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return !ZorWBIsEmpty(environment, a);
}

bool ZorWBIsExact(const ZorWBEnvironment& environment, const ZorWBValue& a, double tolerance) {
    a.RecordEnv(environment);
    return TestValue(a, ExactTest{environment.ResolveTolerance(tolerance)});
}

bool ZorWBIsIndefinite(const ZorWBValue& a) {
    return TestValue(a, IndefiniteTest());
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
