#ifndef ZORWB_VALUEDISPATCH_H
#define ZORWB_VALUEDISPATCH_H

// The machinery shared by the value functions: the kind table, the scalar
// conventions of integer and real results, enumeration building, and the
// two templates that dispatch a one- or two-operand operator on the kinds of
// its operands. An operator is a small object that says what it does on each
// number form:
//
//   ZorWBValue Integer(env, int...)                the exact integer computation
//   double Real(env, double...)                    the real computation
//   ZorWBValue IntegerInterval(env, interval...)   an integer or real interval
//   ZorWBRealInterval RealInterval(env, interval...)
//   bool ElementWise() const                       enumerations element by element
//   static bool IntegerElementsAsSets              integer elements through IntegerInterval
//
// and, for one operand, how it reads a fraction and a boolean. The templates
// do the rest, so the per-kind switch of the operators lives only here (the
// comparisons and the set tests have one template each in their files).

#include <memory>
#include <optional>

#include "values/ZorWBEnvironment.h"
#include "values/ZorWBIntervalFunctions.h"
#include "values/ZorWBValue.h"

namespace ZorWBDispatch {

// ------------------------------------------------------------ scalar conventions

inline bool IsFiniteInteger(long long value) {
    return value >= -ZorWBIntegerMax && value <= ZorWBIntegerMax;
}

// An integer beyond the finite range is an infinity marker: it reads as the
// real marker of its sign.
inline double IntegerToReal(int value) {
    if (value > ZorWBIntegerMax) return ZorWBRealPlusInfinity;
    if (value < -ZorWBIntegerMax) return ZorWBRealMinusInfinity;
    return value;
}

// Integer results are exact: a result outside the finite integer range
// becomes a real (without an error) instead of overflowing.
inline ZorWBValue IntegerResult(long long value) {
    if (IsFiniteInteger(value)) return ZorWBValue(static_cast<int>(value));
    return ZorWBValue(static_cast<double>(value));
}

// The error result of the real functions: error 1 and the minus-infinity marker.
inline double RealDomainError(const ZorWBEnvironment& environment) {
    environment.SetError(ZorWBError::Domain);
    return ZorWBRealMinusInfinity;
}

// A real result under the limits: beyond the real limit it is the infinity
// marker of its sign (saturation, not an error); NaN, which only NaN operands
// produce, is a domain error.
inline double FinishReal(const ZorWBEnvironment& environment, double value) {
    if (value >= -ZorWBRealLimit && value <= ZorWBRealLimit) return value;
    if (value > ZorWBRealLimit) return ZorWBRealPlusInfinity;
    if (value < -ZorWBRealLimit) return ZorWBRealMinusInfinity;
    return RealDomainError(environment);
}

inline bool IsInfiniteReal(double value) {
    return value > ZorWBRealLimit || value < -ZorWBRealLimit;
}

// The error result of interval computations: error 1 and the empty interval.
ZorWBRealInterval RealIntervalDomainError(const ZorWBEnvironment& environment);
ZorWBIntegerInterval IntegerIntervalDomainError(const ZorWBEnvironment& environment);
// The same, typed by an interval of the wanted kind.
inline ZorWBRealInterval IntervalDomainError(const ZorWBEnvironment& environment,
                                             const ZorWBRealInterval& /*kind*/) {
    return RealIntervalDomainError(environment);
}
inline ZorWBIntegerInterval IntervalDomainError(const ZorWBEnvironment& environment,
                                                const ZorWBIntegerInterval& /*kind*/) {
    return IntegerIntervalDomainError(environment);
}

// The number that an exact value (ZorWBIsExact) stands for, whatever its
// kind: the one point of its hull. A boolean reads as its integer.
inline double ExactNumber(const ZorWBValue& exact) {
    if (exact.IsAKindOf(ZorWBBooleanType)) return exact.GetAsInteger();
    return exact.GetAsRealInterval().low;
}

// The value of a real image that an interval function computed for a single
// operand: a real when it is one point, else the interval (several branches,
// or empty).
ZorWBValue ValueOfImage(const ZorWBRealInterval& image);

// The boolean state of a subset of {0, 1} given as an integer interval.
ZorWBBoolean BooleanOfIntegerSet(const ZorWBIntegerInterval& set);

// ------------------------------------------------------------ kinds

// The kind-combination table: rows the first operand's kind, columns the
// second's; 0 where the pair cannot be combined.
inline constexpr ZorWBValueType KindTable[8][8] = {
    {ZorWBUndefinedType, ZorWBUndefinedType, ZorWBUndefinedType, ZorWBUndefinedType,
     ZorWBUndefinedType, ZorWBUndefinedType, ZorWBUndefinedType, ZorWBUndefinedType},
    {ZorWBUndefinedType, ZorWBIntegerType, ZorWBRealType, ZorWBIntegerIntervalType,
     ZorWBRealIntervalType, ZorWBIntegerEnumType, ZorWBRealEnumType, ZorWBIntegerIntervalType},
    {ZorWBUndefinedType, ZorWBRealType, ZorWBRealType, ZorWBRealIntervalType, ZorWBRealIntervalType,
     ZorWBRealEnumType, ZorWBRealEnumType, ZorWBUndefinedType},
    {ZorWBUndefinedType, ZorWBIntegerIntervalType, ZorWBRealIntervalType, ZorWBIntegerIntervalType,
     ZorWBRealIntervalType, ZorWBIntegerEnumType, ZorWBRealEnumType, ZorWBIntegerIntervalType},
    {ZorWBUndefinedType, ZorWBRealIntervalType, ZorWBRealIntervalType, ZorWBRealIntervalType,
     ZorWBRealIntervalType, ZorWBRealEnumType, ZorWBRealEnumType, ZorWBUndefinedType},
    {ZorWBUndefinedType, ZorWBIntegerEnumType, ZorWBRealEnumType, ZorWBIntegerEnumType,
     ZorWBRealEnumType, ZorWBIntegerEnumType, ZorWBRealEnumType, ZorWBIntegerIntervalType},
    {ZorWBUndefinedType, ZorWBRealEnumType, ZorWBRealEnumType, ZorWBRealEnumType, ZorWBRealEnumType,
     ZorWBRealEnumType, ZorWBRealEnumType, ZorWBUndefinedType},
    {ZorWBUndefinedType, ZorWBIntegerIntervalType, ZorWBUndefinedType, ZorWBIntegerIntervalType,
     ZorWBUndefinedType, ZorWBIntegerIntervalType, ZorWBUndefinedType, ZorWBBooleanType},
};

// The table's entry; kinds outside 0..7 combine with nothing.
inline ZorWBValueType TableKind(ZorWBValueType first, ZorWBValueType second) {
    if (first < 0 || first >= 8 || second < 0 || second >= 8) return ZorWBUndefinedType;
    return KindTable[first][second];
}

inline bool IsScalarKind(ZorWBValueType type) {
    return type == ZorWBIntegerType || type == ZorWBRealType || type == ZorWBFractionType;
}
inline bool IsEnumKind(ZorWBValueType type) {
    return type == ZorWBIntegerEnumType || type == ZorWBRealEnumType;
}
// Integers, integer intervals, integer enumerations and booleans hold only
// integers.
inline bool IsIntegerKind(ZorWBValueType type) {
    return type == ZorWBIntegerType || type == ZorWBIntegerIntervalType ||
           type == ZorWBIntegerEnumType || type == ZorWBBooleanType;
}

// The two operands of a binary function as the kind table reads them: below
// the level ZorWBLevel::FractionAsReal a fraction is replaced by what
// SimplifyFraction(true) makes of it (an integer or a real); from that level
// on it stays a fraction that reads as a real.
class OperandPair {
  public:
    OperandPair(const ZorWBEnvironment& environment, const ZorWBValue& first,
                const ZorWBValue& second);
    OperandPair(const OperandPair&) = delete;
    OperandPair& operator=(const OperandPair&) = delete;

    const ZorWBValue& First() const { return *_first; }
    const ZorWBValue& Second() const { return *_second; }
    ZorWBValueType CommonType() const { return _commonType; }

  private:
    // The simplified readings of fraction operands, made only when needed.
    std::optional<ZorWBValue> _firstReading;
    std::optional<ZorWBValue> _secondReading;
    const ZorWBValue* _first;
    const ZorWBValue* _second;
    ZorWBValueType _commonType;
};

// The kind under which the table looks a value up (a fraction reads as a real
// or as its simplified kind, by level).
ZorWBValueType LookupKind(const ZorWBEnvironment& environment, const ZorWBValue& value);

// ------------------------------------------------------------ failures by kind

// Kinds that cannot be combined: error 2 and the empty real interval.
ZorWBValue IncompatibleKinds(const ZorWBEnvironment& environment);
// An undefined operand of a one-operand function: from the level
// ZorWBLevel::QuietIncompatibleTests on an undefined result without error,
// below it error 2 and the empty real interval.
ZorWBValue UndefinedOperand(const ZorWBEnvironment& environment);
// Whether an incompatible pair must set error 2 (tests and Dim answer quietly
// from the level ZorWBLevel::QuietIncompatibleTests on).
bool ReportIncompatibleTest(const ZorWBEnvironment& environment);

// ------------------------------------------------------------ enumerations

// The largest number of element combinations computed one by one; beyond it
// the enumeration goes through its hull.
constexpr long long MaxElementCombinations = 1 << 16;

// A value converted to an enumeration of the given number type and
// normalised (an integer interval narrower than the size limit becomes a
// list).
ZorWBValue ReadEnum(const ZorWBEnvironment& environment, const ZorWBValue& value, bool integers);
bool IsNilEnum(const ZorWBValue& enumeration);
bool IsListEnum(const ZorWBValue& enumeration);
int EnumSize(const ZorWBValue& enumeration);
ZorWBValue NilEnum(bool integers);
// An interval result (integer or real interval value) as an enumeration in
// interval representation, normalised: empty becomes nil, the whole line any,
// and a narrow integer interval a list.
ZorWBValue EnumFromInterval(const ZorWBEnvironment& environment, const ZorWBValue& interval);

// Gathers the results of an element-by-element computation into an
// enumeration: sorted, without repeats (reals within the environment's
// tolerance), an integer enumeration when every result is an integer, the
// hull in interval representation when there are more distinct results than
// the environment's maximum enumeration size or when a result is an interval
// wider than one number. Each element is computed under a private copy of
// the environment, so that a failure is told apart: an element whose
// computation fails adds no element, and its error codes (1 for a domain
// error) reach the environment; when every element fails the result is nil.
class ElementCollector {
  public:
    ElementCollector(const ZorWBEnvironment& environment, long long capacity);
    ElementCollector(const ElementCollector&) = delete;
    ElementCollector& operator=(const ElementCollector&) = delete;

    // False when the buffer could not be allocated.
    bool IsValid() const { return _values != nullptr; }
    // The environment for the next element's computation (its error cleared).
    const ZorWBEnvironment& ElementEnvironment() {
        _local.ClearError();
        return _local;
    }
    void Add(double result) { Store(result, false); }
    void Add(const ZorWBValue& result);
    ZorWBValue Finish(bool integersWhenEmpty);

  private:
    bool Failed(double result);
    void Store(double result, bool isInteger);
    void AddSet(const ZorWBIntegerInterval& result);
    ZorWBValue Hull(const double* values, long long count) const;

    const ZorWBEnvironment& _environment;
    ZorWBEnvironment _local;
    std::unique_ptr<double[]> _values;
    long long _capacity;
    long long _count = 0;
    unsigned int _errors = ZorWBError::None;  // the codes of the failed elements
    bool _allIntegers = true;
    // The hull of the results wider than one number (empty while none is).
    ZorWBRealInterval _spread = ZorWBReal_Nil;
};

// The quotient of the numbers that a and b stand for: two integers divide
// exactly and integer intervals as real intervals (ZorWBDiv divides integer
// sets as integers).
ZorWBValue ExactQuotient(const ZorWBEnvironment& environment, const ZorWBValue& a,
                         const ZorWBValue& b);

// ------------------------------------------------------------ operator bases

// Defaults shared by the operators. Elements of integer enumerations compute
// by the exact integer form, or, for an operator whose integer sets compute
// otherwise (IntegerElementsAsSets), by its integer interval form on the
// single elements, so that a list agrees with its hull.
struct OperatorBase {
    static constexpr bool IntegerElementsAsSets = false;
    bool ElementWise() const { return true; }
    ZorWBValue Incompatible(const ZorWBEnvironment& environment) const {
        return IncompatibleKinds(environment);
    }
};

// A two-operand operator whose integer form is exact 64-bit arithmetic on
// finite operands (Derived::Exact) and goes through the real form when an
// operand is an infinity marker.
template <class Derived>
struct ExactIntegerOperator : OperatorBase {
    ZorWBValue Integer(const ZorWBEnvironment& environment, int x, int y) const {
        const Derived& self = static_cast<const Derived&>(*this);
        if (IsFiniteInteger(x) && IsFiniteInteger(y)) return IntegerResult(self.Exact(x, y));
        return ZorWBValue(self.Real(environment, IntegerToReal(x), IntegerToReal(y)));
    }
};

// A one-operand function with a real result: integers and fractions read as
// reals, integer intervals as real intervals, booleans are incompatible.
template <class Derived>
struct RealFunction : OperatorBase {
    static constexpr bool BooleanAsInteger = false;
    ZorWBValue Integer(const ZorWBEnvironment& environment, int x) const {
        return ZorWBValue(static_cast<const Derived&>(*this).Real(environment, IntegerToReal(x)));
    }
    ZorWBValue IntegerInterval(const ZorWBEnvironment& environment,
                               const ZorWBIntegerInterval& x) const {
        return ZorWBValue(static_cast<const Derived&>(*this).RealInterval(
            environment, ZorWBCreateRealInterval(x)));
    }
    ZorWBValue Fraction(const ZorWBEnvironment& environment, const ZorWBValue& x) const {
        return ZorWBValue(static_cast<const Derived&>(*this).Real(environment, x.GetAsReal()));
    }
};

// A real function given by a scalar and an interval function.
template <double (*Scalar)(const ZorWBEnvironment&, double),
          ZorWBRealInterval (*Interval)(const ZorWBEnvironment&, const ZorWBRealInterval&)>
struct SimpleRealFunction : RealFunction<SimpleRealFunction<Scalar, Interval>> {
    double Real(const ZorWBEnvironment& environment, double x) const {
        return Scalar(environment, x);
    }
    ZorWBRealInterval RealInterval(const ZorWBEnvironment& environment,
                                   const ZorWBRealInterval& x) const {
        return Interval(environment, x);
    }
};

// ------------------------------------------------------------ dispatch

template <class Op>
ZorWBValue UnaryOnEnum(const ZorWBEnvironment& environment, const ZorWBValue& a, const Op& op) {
    bool integers = a.IsAKindOf(ZorWBIntegerEnumType);
    ZorWBValue operand = ReadEnum(environment, a, integers);
    if (IsNilEnum(operand)) return NilEnum(integers);
    if (op.ElementWise() && IsListEnum(operand)) {
        ElementCollector collector(environment, EnumSize(operand));
        if (collector.IsValid()) {
            for (int i = 0; i < EnumSize(operand); ++i) {
                if (integers)
                    collector.Add(op.Integer(collector.ElementEnvironment(),
                                             operand.GetIntegerEnum().Get(i)));
                else
                    collector.Add(
                        op.Real(collector.ElementEnvironment(), operand.GetRealEnum().Get(i)));
            }
            return collector.Finish(integers);
        }
    }
    if (integers)
        return EnumFromInterval(environment,
                                op.IntegerInterval(environment, operand.GetAsIntegerInterval()));
    return EnumFromInterval(environment,
                            ZorWBValue(op.RealInterval(environment, operand.GetAsRealInterval())));
}

// Applies a one-operand operator by the operand's kind. Enumerations go
// element by element (through the interval form when held as an interval or
// when the operator asks for it); booleans read as integer intervals for the
// operators that keep integers and are incompatible with real functions.
template <class Op>
ZorWBValue ApplyUnary(const ZorWBEnvironment& environment, const ZorWBValue& a, const Op& op) {
    a.RecordEnv(environment);
    switch (a.GetType()) {
        case ZorWBRealType:
            return ZorWBValue(op.Real(environment, a.GetAsReal()));
        case ZorWBIntegerType:
            return op.Integer(environment, a.GetAsInteger());
        case ZorWBIntegerIntervalType:
            return op.IntegerInterval(environment, a.GetAsIntegerInterval());
        case ZorWBRealIntervalType:
            return ZorWBValue(op.RealInterval(environment, a.GetAsRealInterval()));
        case ZorWBFractionType:
            return op.Fraction(environment, a);
        case ZorWBIntegerEnumType:
        case ZorWBRealEnumType:
            return UnaryOnEnum(environment, a, op);
        case ZorWBBooleanType:
            if (Op::BooleanAsInteger)
                return op.IntegerInterval(environment, a.GetAsIntegerInterval());
            return IncompatibleKinds(environment);
        case ZorWBUndefinedType:
            return UndefinedOperand(environment);
        default:
            return IncompatibleKinds(environment);
    }
}

// One pair of integer elements (the infinity markers compute as infinities,
// by the integer form).
template <class Op>
ZorWBValue IntegerElement(const ZorWBEnvironment& environment, const Op& op, int x, int y) {
    if (Op::IntegerElementsAsSets && IsFiniteInteger(x) && IsFiniteInteger(y))
        return op.IntegerInterval(environment, {x, x}, {y, y});
    return op.Integer(environment, x, y);
}

template <class Op>
ZorWBValue BinaryOnEnums(const ZorWBEnvironment& environment, const ZorWBValue& a,
                         const ZorWBValue& b, bool integers, const Op& op) {
    ZorWBValue first = ReadEnum(environment, a, integers);
    ZorWBValue second = ReadEnum(environment, b, integers);
    if (IsNilEnum(first) || IsNilEnum(second)) return NilEnum(integers);
    long long combinations = static_cast<long long>(EnumSize(first)) * EnumSize(second);
    if (op.ElementWise() && IsListEnum(first) && IsListEnum(second) &&
        combinations <= MaxElementCombinations) {
        ElementCollector collector(environment, combinations);
        if (collector.IsValid()) {
            for (int i = 0; i < EnumSize(first); ++i) {
                for (int j = 0; j < EnumSize(second); ++j) {
                    if (integers)
                        collector.Add(IntegerElement(collector.ElementEnvironment(), op,
                                                     first.GetIntegerEnum().Get(i),
                                                     second.GetIntegerEnum().Get(j)));
                    else
                        collector.Add(op.Real(collector.ElementEnvironment(),
                                              first.GetRealEnum().Get(i),
                                              second.GetRealEnum().Get(j)));
                }
            }
            return collector.Finish(integers);
        }
    }
    if (integers)
        return EnumFromInterval(environment,
                                op.IntegerInterval(environment, first.GetAsIntegerInterval(),
                                                   second.GetAsIntegerInterval()));
    return EnumFromInterval(environment,
                            ZorWBValue(op.RealInterval(environment, first.GetAsRealInterval(),
                                                       second.GetAsRealInterval())));
}

template <class Op>
ZorWBValue BinaryInKind(const ZorWBEnvironment& environment, const ZorWBValue& x,
                        const ZorWBValue& y, ZorWBValueType kind, const Op& op) {
    switch (kind) {
        case ZorWBIntegerType:
            return op.Integer(environment, x.GetAsInteger(), y.GetAsInteger());
        case ZorWBRealType:
            return ZorWBValue(op.Real(environment, x.GetAsReal(), y.GetAsReal()));
        case ZorWBIntegerIntervalType:
        case ZorWBBooleanType:  // two booleans compute as the integer sets {0}, {1}, {0, 1}
            return op.IntegerInterval(environment, x.GetAsIntegerInterval(),
                                      y.GetAsIntegerInterval());
        case ZorWBRealIntervalType:
            return ZorWBValue(
                op.RealInterval(environment, x.GetAsRealInterval(), y.GetAsRealInterval()));
        case ZorWBIntegerEnumType:
            return BinaryOnEnums(environment, x, y, true, op);
        case ZorWBRealEnumType:
            return BinaryOnEnums(environment, x, y, false, op);
        default:
            return op.Incompatible(environment);
    }
}

// Applies a two-operand operator in the common kind of its operands. Two
// reals and two integers, the hot cases, are decided first; fractions need
// their reading by level.
template <class Op>
ZorWBValue ApplyBinary(const ZorWBEnvironment& environment, const ZorWBValue& a,
                       const ZorWBValue& b, const Op& op) {
    a.RecordEnv(environment);
    b.RecordEnv(environment);
    if (a.IsAKindOf(ZorWBRealType) && b.IsAKindOf(ZorWBRealType))
        return ZorWBValue(op.Real(environment, a.GetAsReal(), b.GetAsReal()));
    if (a.IsAKindOf(ZorWBIntegerType) && b.IsAKindOf(ZorWBIntegerType))
        return op.Integer(environment, a.GetAsInteger(), b.GetAsInteger());
    if (!a.IsAFraction() && !b.IsAFraction())
        return BinaryInKind(environment, a, b, TableKind(a.GetType(), b.GetType()), op);
    OperandPair operands(environment, a, b);
    return BinaryInKind(environment, operands.First(), operands.Second(), operands.CommonType(),
                        op);
}

}  // namespace ZorWBDispatch

#endif
