// Comparisons of values and the four-state logic.
//
// Comparisons work in the common kind of their operands: integers exactly,
// reals within the environment's tolerance, intervals through the interval
// comparisons, enumerations through the comparisons of their hulls, except
// that equality of two lists is decided element by element (no common element
// is false, the same single element true, else unknown). An empty (nil)
// enumeration makes the answer empty without an error. Two booleans compare
// as the sets of their states ({0}, {1}, {0, 1}); an empty state makes the
// answer empty.

#include <cmath>

#include "values/ZorWBValueDispatch.h"
#include "values/ZorWBValueFunctions.h"

using namespace ZorWBDispatch;

namespace {

using LogicTable = ZorWBBoolean[4][4];

constexpr ZorWBBoolean F = ZorWBFalse;
constexpr ZorWBBoolean T = ZorWBTrue;
constexpr ZorWBBoolean U = ZorWBUnknown;
constexpr ZorWBBoolean E = ZorWBEmpty;

// Rows: the first operand's state; columns: the second's. Empty absorbs
// everything, even where the other operand alone would decide.
constexpr LogicTable AndTable = {{F, F, F, E}, {F, T, U, E}, {F, U, U, E}, {E, E, E, E}};
constexpr LogicTable OrTable = {{F, T, U, E}, {T, T, T, E}, {U, T, U, E}, {E, E, E, E}};
constexpr LogicTable ImplicationTable = {{T, T, T, E}, {F, T, U, E}, {U, T, U, E}, {E, E, E, E}};

// A state outside the four reads as empty.
int StateIndex(ZorWBBoolean state) {
    return (state >= ZorWBFalse && state <= ZorWBEmpty) ? state : ZorWBEmpty;
}

ZorWBBoolean Lookup(const LogicTable& table, ZorWBBoolean a, ZorWBBoolean b) {
    return table[StateIndex(a)][StateIndex(b)];
}

ZorWBValue LogicOnValues(const LogicTable& table, const ZorWBValue& a, const ZorWBValue& b) {
    if (!a.IsConvertible(ZorWBBooleanType) || !b.IsConvertible(ZorWBBooleanType))
        return ZorWBValue(ZorWBEmpty);
    return ZorWBValue(Lookup(table, a.GetAsBoolean(), b.GetAsBoolean()));
}

ZorWBBoolean Truth(bool value) {
    return value ? ZorWBTrue : ZorWBFalse;
}

// ------------------------------------------------------------ comparisons

// Whether two sorted lists share an element (within tolerance).
bool ShareAnElement(const ZorWBRealEnum& a, const ZorWBRealEnum& b, double tolerance) {
    int i = 0;
    int j = 0;
    while (i < a.GetSize() && j < b.GetSize()) {
        double x = a.Get(i);
        double y = b.Get(j);
        if (std::fabs(x - y) < tolerance || x == y) return true;
        if (x < y)
            ++i;
        else
            ++j;
    }
    return false;
}

struct EqualComparison {
    static constexpr bool ListsDecide = true;
    bool Integer(int x, int y) const { return x == y; }
    bool Real(double x, double y, double tolerance) const {
        return std::fabs(x - y) < tolerance || x == y;
    }
    template <class Interval>
    ZorWBBoolean Intervals(const ZorWBEnvironment& environment, const Interval& x,
                           const Interval& y) const {
        return ZorWBEqual(environment, x, y);
    }
    ZorWBBoolean Lists(const ZorWBRealEnum& x, const ZorWBRealEnum& y, double tolerance) const {
        if (!ShareAnElement(x, y, tolerance)) return ZorWBFalse;
        return (x.GetSize() == 1 && y.GetSize() == 1) ? ZorWBTrue : ZorWBUnknown;
    }
    void Incompatible(const ZorWBEnvironment& environment) const {
        ReportIncompatibleTest(environment);
    }
};

// a <= b; reals count as ordered when a exceeds b by less than the tolerance.
struct LessEqualComparison {
    static constexpr bool ListsDecide = false;  // the hulls decide as well
    bool Integer(int x, int y) const { return x <= y; }
    bool Real(double x, double y, double tolerance) const { return x - y < tolerance || x <= y; }
    template <class Interval>
    ZorWBBoolean Intervals(const ZorWBEnvironment& environment, const Interval& x,
                           const Interval& y) const {
        return ZorWBLessEqual(environment, x, y);
    }
    ZorWBBoolean Lists(const ZorWBRealEnum&, const ZorWBRealEnum&, double) const {
        return ZorWBUnknown;
    }
    void Incompatible(const ZorWBEnvironment& environment) const {
        environment.SetError(ZorWBError::IncompatibleKinds);
    }
};

template <class Comparison>
ZorWBBoolean CompareBooleans(const ZorWBEnvironment& environment, const ZorWBValue& a,
                             const ZorWBValue& b, const Comparison& comparison) {
    ZorWBIntegerInterval x = a.GetAsIntegerInterval();
    ZorWBIntegerInterval y = b.GetAsIntegerInterval();
    if (ZorWBIsEmpty(x) || ZorWBIsEmpty(y)) return ZorWBEmpty;
    return comparison.Intervals(environment, x, y);
}

template <class Comparison>
ZorWBBoolean CompareEnums(const ZorWBEnvironment& environment, const ZorWBValue& a,
                          const ZorWBValue& b, bool integers, const Comparison& comparison) {
    ZorWBValue x = ReadEnum(environment, a, integers);
    ZorWBValue y = ReadEnum(environment, b, integers);
    if (IsNilEnum(x) || IsNilEnum(y)) return ZorWBEmpty;
    if (Comparison::ListsDecide && IsListEnum(x) && IsListEnum(y)) {
        // Integers are apart by 1 at least: half of it tells them apart exactly.
        double tolerance = integers ? 0.5 : environment.GetTolerance();
        if (integers)
            return comparison.Lists(ZorWBRealEnum(x.GetIntegerEnum()),
                                    ZorWBRealEnum(y.GetIntegerEnum()), tolerance);
        return comparison.Lists(x.GetRealEnum(), y.GetRealEnum(), tolerance);
    }
    if (integers)
        return comparison.Intervals(environment, x.GetAsIntegerInterval(),
                                    y.GetAsIntegerInterval());
    return comparison.Intervals(environment, x.GetAsRealInterval(), y.GetAsRealInterval());
}

template <class Comparison>
ZorWBBoolean Compare(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b,
                     const Comparison& comparison) {
    a.RecordEnv(environment);
    b.RecordEnv(environment);
    double tolerance = environment.GetTolerance();
    if (a.IsAKindOf(ZorWBRealType) && b.IsAKindOf(ZorWBRealType))
        return Truth(comparison.Real(a.GetAsReal(), b.GetAsReal(), tolerance));
    if (a.IsAKindOf(ZorWBIntegerType) && b.IsAKindOf(ZorWBIntegerType))
        return Truth(comparison.Integer(a.GetAsInteger(), b.GetAsInteger()));

    OperandPair operands(environment, a, b);
    const ZorWBValue& x = operands.First();
    const ZorWBValue& y = operands.Second();
    switch (operands.CommonType()) {
        case ZorWBIntegerType:
            return Truth(comparison.Integer(x.GetAsInteger(), y.GetAsInteger()));
        case ZorWBRealType:
            return Truth(comparison.Real(x.GetAsReal(), y.GetAsReal(), tolerance));
        case ZorWBIntegerIntervalType:
            return comparison.Intervals(environment, x.GetAsIntegerInterval(),
                                        y.GetAsIntegerInterval());
        case ZorWBRealIntervalType:
            return comparison.Intervals(environment, x.GetAsRealInterval(), y.GetAsRealInterval());
        case ZorWBIntegerEnumType:
            return CompareEnums(environment, x, y, true, comparison);
        case ZorWBRealEnumType:
            return CompareEnums(environment, x, y, false, comparison);
        case ZorWBBooleanType:
            return CompareBooleans(environment, x, y, comparison);
        default:
            comparison.Incompatible(environment);
            return ZorWBFalse;
    }
}

}  // namespace

ZorWBBoolean ZorWBAnd(ZorWBBoolean a, ZorWBBoolean b) {
    return Lookup(AndTable, a, b);
}

ZorWBBoolean ZorWBOr(ZorWBBoolean a, ZorWBBoolean b) {
    return Lookup(OrTable, a, b);
}

ZorWBBoolean ZorWBNot(ZorWBBoolean a) {
    static constexpr ZorWBBoolean negation[4] = {T, F, U, E};
    return negation[StateIndex(a)];
}

ZorWBBoolean ZorWBImplication(ZorWBBoolean a, ZorWBBoolean b) {
    return Lookup(ImplicationTable, a, b);
}

ZorWBValue ZorWBAnd(const ZorWBValue& a, const ZorWBValue& b) {
    return LogicOnValues(AndTable, a, b);
}

ZorWBValue ZorWBOr(const ZorWBValue& a, const ZorWBValue& b) {
    return LogicOnValues(OrTable, a, b);
}

ZorWBValue ZorWBImplication(const ZorWBValue& a, const ZorWBValue& b) {
    return LogicOnValues(ImplicationTable, a, b);
}

ZorWBValue ZorWBNot(const ZorWBValue& a) {
    if (!a.IsConvertible(ZorWBBooleanType)) return ZorWBValue(ZorWBEmpty);
    return ZorWBValue(ZorWBNot(a.GetAsBoolean()));
}

// Kinds that cannot be combined are not equal; they set error 2 below the
// level ZorWBLevel::QuietIncompatibleTests.
ZorWBValue ZorWBEqual(const ZorWBEnvironment& environment, const ZorWBValue& a,
                      const ZorWBValue& b) {
    return ZorWBValue(Compare(environment, a, b, EqualComparison()));
}

// The negation of ZorWBEqual: kinds that cannot be combined are not equal.
ZorWBValue ZorWBNotEqual(const ZorWBEnvironment& environment, const ZorWBValue& a,
                         const ZorWBValue& b) {
    return ZorWBNot(ZorWBEqual(environment, a, b));
}

// Kinds that cannot be combined set error 2 and answer false.
ZorWBValue ZorWBLessEqual(const ZorWBEnvironment& environment, const ZorWBValue& a,
                          const ZorWBValue& b) {
    return ZorWBValue(Compare(environment, a, b, LessEqualComparison()));
}
