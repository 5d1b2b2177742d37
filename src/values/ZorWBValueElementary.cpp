// One-operand functions of values, the smooth step and the rounding to a
// step.
//
// Functions with a real result read integers and fractions as reals, integer
// intervals as real intervals, and map enumerations element by element to a
// real enumeration. The functions that keep integers (negation, absolute
// value and the four roundings) give integers for integers, integer
// intervals for integer intervals and booleans, and compute fractions of
// power 0 exactly. Rounding a real gives a real, since it may lie beyond the
// integer range.

#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "values/ZorWBValueDispatch.h"
#include "values/ZorWBValueFunctions.h"

using namespace ZorWBDispatch;

namespace {

constexpr double HalfPi = 1.5707963267948966;
// Angles beyond it have no meaningful sine, as in the interval functions.
constexpr double LargestAngle = 1e9;

// ------------------------------------------------------------ scalar forms

double Exp(const ZorWBEnvironment& environment, double x) {
    return FinishReal(environment, std::exp(x));
}

double Ln(const ZorWBEnvironment& environment, double x) {
    return ZorWBRealLn(environment, x);
}

double Log(const ZorWBEnvironment& environment, double x) {
    double natural = ZorWBRealLn(environment, x);
    if (IsInfiniteReal(natural)) return natural;  // the error marker
    return FinishReal(environment, std::log10(x));
}

double Sqrt(const ZorWBEnvironment& environment, double x) {
    return ZorWBRealSqrt(environment, x);
}

bool IsAngle(double x) {
    return std::fabs(x) <= LargestAngle;
}

double Sin(const ZorWBEnvironment& environment, double x) {
    return IsAngle(x) ? std::sin(x) : RealDomainError(environment);
}
double Cos(const ZorWBEnvironment& environment, double x) {
    return IsAngle(x) ? std::cos(x) : RealDomainError(environment);
}
double Tan(const ZorWBEnvironment& environment, double x) {
    return IsAngle(x) ? std::tan(x) : RealDomainError(environment);
}

double Sinh(const ZorWBEnvironment& environment, double x) {
    return FinishReal(environment, std::sinh(x));
}
double Cosh(const ZorWBEnvironment& environment, double x) {
    return FinishReal(environment, std::cosh(x));
}
double Tanh(const ZorWBEnvironment& environment, double x) {
    return FinishReal(environment, std::tanh(x));
}

// The inverse hyperbolic functions grow without bound: at an infinite
// operand they give the infinity itself.
double Asinh(const ZorWBEnvironment& environment, double x) {
    if (IsInfiniteReal(x)) return x > 0.0 ? ZorWBRealPlusInfinity : ZorWBRealMinusInfinity;
    return FinishReal(environment, std::asinh(x));
}
double Acosh(const ZorWBEnvironment& environment, double x) {
    if (!(x >= 1.0)) return RealDomainError(environment);
    if (IsInfiniteReal(x)) return ZorWBRealPlusInfinity;
    return FinishReal(environment, std::acosh(x));
}
// The poles at -1 and 1 are domain errors, as the logarithm's pole at 0.
double Atanh(const ZorWBEnvironment& environment, double x) {
    if (!(std::fabs(x) < 1.0)) return RealDomainError(environment);
    return FinishReal(environment, std::atanh(x));
}

double Asin(const ZorWBEnvironment& environment, double x) {
    if (!(std::fabs(x) <= 1.0)) return RealDomainError(environment);
    return std::asin(x);
}
double Acos(const ZorWBEnvironment& environment, double x) {
    if (!(std::fabs(x) <= 1.0)) return RealDomainError(environment);
    return std::acos(x);
}
double Atan(const ZorWBEnvironment& environment, double x) {
    return FinishReal(environment, std::atan(x));
}

// The angle of the point (x, y); the origin has none. Minus zero is zero
// here as in the intervals: a point on the negative x axis has the angle pi.
double Atan2(const ZorWBEnvironment& environment, double y, double x) {
    if ((x == 0.0 && y == 0.0) || x != x || y != y) return RealDomainError(environment);
    return std::atan2(y + 0.0, x);
}

template <class F>
ZorWBValue Apply(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return ApplyUnary(environment, a, F());
}

using SqrtFunction = SimpleRealFunction<Sqrt, ZorWBSqrt>;
using ExpFunction = SimpleRealFunction<Exp, ZorWBExp>;
using LnFunction = SimpleRealFunction<Ln, ZorWBLn>;
using LogFunction = SimpleRealFunction<Log, ZorWBLog>;
using SinFunction = SimpleRealFunction<Sin, ZorWBSin>;
using CosFunction = SimpleRealFunction<Cos, ZorWBCos>;
using TanFunction = SimpleRealFunction<Tan, ZorWBTan>;
using SinhFunction = SimpleRealFunction<Sinh, ZorWBSinh>;
using CoshFunction = SimpleRealFunction<Cosh, ZorWBCosh>;
using TanhFunction = SimpleRealFunction<Tanh, ZorWBTanh>;
using AsinhFunction = SimpleRealFunction<Asinh, ZorWBAsinh>;
using AcoshFunction = SimpleRealFunction<Acosh, ZorWBAcosh>;
using AtanhFunction = SimpleRealFunction<Atanh, ZorWBAtanh>;

// ------------------------------------------------------------ inverse trigonometry

using RangedInterval = ZorWBRealInterval (*)(const ZorWBEnvironment&, const ZorWBRealInterval&,
                                             const ZorWBRealInterval&);

// asin, acos and atan: without a range the principal value (element by
// element for enumerations); with the current range of the result, every
// branch inside it through the interval function, so that a single operand
// may give several angles (their hull) and enumerations go through their
// hull.
struct InverseTrigonometric : RealFunction<InverseTrigonometric> {
    double (*scalar)(const ZorWBEnvironment&, double);
    RangedInterval interval;
    ZorWBRealInterval principal;
    const ZorWBValue* range;

    bool ElementWise() const { return range == nullptr; }
    double Real(const ZorWBEnvironment& environment, double x) const {
        return scalar(environment, x);
    }
    ZorWBRealInterval RealInterval(const ZorWBEnvironment& environment,
                                   const ZorWBRealInterval& x) const {
        return interval(environment, x, range ? range->GetAsRealInterval() : principal);
    }
};

ZorWBValue ApplyInverse(const ZorWBEnvironment& environment, const ZorWBValue& a,
                        const InverseTrigonometric& function) {
    if (function.range && IsScalarKind(a.GetType())) {
        a.RecordEnv(environment);
        function.range->RecordEnv(environment);
        return ValueOfImage(
            function.RealInterval(environment, ZorWBCreateRealInterval(a.GetAsReal())));
    }
    return ApplyUnary(environment, a, function);
}

struct Atan2Operator : OperatorBase {
    const ZorWBValue* range;

    bool ElementWise() const { return range == nullptr; }
    ZorWBValue Integer(const ZorWBEnvironment& environment, int y, int x) const {
        return ZorWBValue(Real(environment, IntegerToReal(y), IntegerToReal(x)));
    }
    double Real(const ZorWBEnvironment& environment, double y, double x) const {
        return Atan2(environment, y, x);
    }
    ZorWBValue IntegerInterval(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& y,
                               const ZorWBIntegerInterval& x) const {
        return ZorWBValue(
            RealInterval(environment, ZorWBCreateRealInterval(y), ZorWBCreateRealInterval(x)));
    }
    ZorWBRealInterval RealInterval(const ZorWBEnvironment& environment, const ZorWBRealInterval& y,
                                   const ZorWBRealInterval& x) const {
        ZorWBRealInterval principal = ZorWBCreateRealInterval(-ZorWBPi, ZorWBPi);
        return ZorWBAtan2(environment, y, x, range ? range->GetAsRealInterval() : principal);
    }
};

// ------------------------------------------------------------ functions keeping integers

// The integer-keeping functions: Derived gives the exact forms on integers,
// on integer intervals and on reduced fractions of power 0; the rest reads as
// reals.
template <class Derived>
struct IntegerKeepingFunction : OperatorBase {
    static constexpr bool BooleanAsInteger = true;

    ZorWBValue IntegerInterval(const ZorWBEnvironment& environment,
                               const ZorWBIntegerInterval& x) const {
        if (ZorWBIsEmpty(x)) return ZorWBValue(IntegerIntervalDomainError(environment));
        return ZorWBValue(static_cast<const Derived&>(*this).OnIntegers(environment, x));
    }
    ZorWBValue Fraction(const ZorWBEnvironment& environment, const ZorWBValue& x) const {
        ZorWBValue reduced(x);
        reduced.SimplifyFraction(false);
        if (!reduced.IsAFraction()) return ApplyUnary(environment, reduced, Derived());
        ZorWBFraction fraction = reduced.GetAsFraction();
        ZorWBValue exact;
        if (static_cast<const Derived&>(*this).OnFraction(fraction, exact)) return exact;
        return ZorWBValue(static_cast<const Derived&>(*this).Real(environment, x.GetAsReal()));
    }
};

// n / d rounded by a rounding of n / d in 64 bits (d > 0).
enum class Rounding { Ceil, Floor, Trunc, Round };

long long RoundQuotient(long long numerator, long long denominator, Rounding rounding) {
    long long quotient = numerator / denominator;
    long long remainder = numerator % denominator;
    if (remainder == 0) return quotient;
    int away = numerator < 0 ? -1 : 1;  // the direction away from zero
    switch (rounding) {
        case Rounding::Ceil:
            return numerator > 0 ? quotient + 1 : quotient;
        case Rounding::Floor:
            return numerator < 0 ? quotient - 1 : quotient;
        case Rounding::Trunc:
            return quotient;
        default:
            return 2 * (remainder < 0 ? -remainder : remainder) >= denominator ? quotient + away
                                                                               : quotient;
    }
}

template <Rounding Mode, double (*Scalar)(double),
          ZorWBRealInterval (*Interval)(const ZorWBEnvironment&, const ZorWBRealInterval&)>
struct RoundingFunction : IntegerKeepingFunction<RoundingFunction<Mode, Scalar, Interval>> {
    ZorWBValue Integer(const ZorWBEnvironment&, int x) const { return ZorWBValue(x); }
    double Real(const ZorWBEnvironment& environment, double x) const {
        return FinishReal(environment, Scalar(x));
    }
    ZorWBIntegerInterval OnIntegers(const ZorWBEnvironment&, const ZorWBIntegerInterval& x) const {
        return x;
    }
    ZorWBRealInterval RealInterval(const ZorWBEnvironment& environment,
                                   const ZorWBRealInterval& x) const {
        return Interval(environment, x);
    }
    bool OnFraction(const ZorWBFraction& fraction, ZorWBValue& exact) const {
        if (fraction.power != 0) return false;
        exact = IntegerResult(RoundQuotient(fraction.numerator, fraction.denominator, Mode));
        return true;
    }
};

double CeilOf(double x) {
    return std::ceil(x);
}
double FloorOf(double x) {
    return std::floor(x);
}
double TruncOf(double x) {
    return std::trunc(x);
}
double RoundHalfAway(double x) {
    return std::round(x);
}

using CeilFunction = RoundingFunction<Rounding::Ceil, CeilOf, ZorWBCeil>;
using FloorFunction = RoundingFunction<Rounding::Floor, FloorOf, ZorWBFloor>;
using TruncFunction = RoundingFunction<Rounding::Trunc, TruncOf, ZorWBTrunc>;
using RoundFunction = RoundingFunction<Rounding::Round, RoundHalfAway, ZorWBRound>;

// -x; the integer infinity markers negate through the reals.
struct NegateFunction : IntegerKeepingFunction<NegateFunction> {
    ZorWBValue Integer(const ZorWBEnvironment& environment, int x) const {
        if (IsFiniteInteger(x)) return ZorWBValue(-x);
        return ZorWBValue(Real(environment, IntegerToReal(x)));
    }
    double Real(const ZorWBEnvironment& environment, double x) const {
        return FinishReal(environment, -x);
    }
    ZorWBIntegerInterval OnIntegers(const ZorWBEnvironment&, const ZorWBIntegerInterval& x) const {
        // Bounds beyond the finite range are the infinite ends.
        auto negated = [](int bound) {
            long long value = -static_cast<long long>(bound);
            return static_cast<int>(
                std::max<long long>(-ZorWBIntegerMax, std::min<long long>(value, ZorWBIntegerMax)));
        };
        return {negated(x.high), negated(x.low)};
    }
    ZorWBRealInterval RealInterval(const ZorWBEnvironment& environment,
                                   const ZorWBRealInterval& x) const {
        if (ZorWBIsEmpty(x)) return RealIntervalDomainError(environment);
        return ZorWBCreateRealInterval(-x.high, -x.low);
    }
    bool OnFraction(const ZorWBFraction& fraction, ZorWBValue& exact) const {
        long long numerator = -static_cast<long long>(fraction.numerator);
        if (numerator > ZorWBIntegerMax) return false;
        exact = ZorWBValue(ZorWBCreateFraction(static_cast<int>(numerator), fraction.denominator,
                                               fraction.power, 0));
        return true;
    }
};

// |x| by the scalar helpers: minus infinity is error 1.
struct AbsFunction : IntegerKeepingFunction<AbsFunction> {
    ZorWBValue Integer(const ZorWBEnvironment& environment, int x) const {
        return ZorWBValue(ZorWBIntegerAbs(environment, x));
    }
    double Real(const ZorWBEnvironment& environment, double x) const {
        return ZorWBRealAbs(environment, x);
    }
    ZorWBIntegerInterval OnIntegers(const ZorWBEnvironment& environment,
                                    const ZorWBIntegerInterval& x) const {
        return ZorWBAbs(environment, x);
    }
    ZorWBRealInterval RealInterval(const ZorWBEnvironment& environment,
                                   const ZorWBRealInterval& x) const {
        return ZorWBAbs(environment, x);
    }
    bool OnFraction(const ZorWBFraction& fraction, ZorWBValue& exact) const {
        if (fraction.numerator >= 0) {
            exact = ZorWBValue(fraction);
            return true;
        }
        return NegateFunction().OnFraction(fraction, exact);
    }
};

// ------------------------------------------------------------ step

// The step of parameters {x0, x1, y0, y1}: y0 up to x0, y1 from x1 on, linear
// between when x0 < x1. When x0 >= x1 it is a sharp step at x0: y0 below x0,
// y1 at and above it (a reversed pair x1 < x0 is read as that sharp step).
// The function is monotone, so the image of an interval is spanned by the
// images of its ends.
struct StepFunction : RealFunction<StepFunction> {
    double x0, x1, y0, y1;

    double Real(const ZorWBEnvironment& environment, double x) const {
        if (x != x) return RealDomainError(environment);
        if (x1 <= x0) return x < x0 ? y0 : y1;
        if (x <= x0) return y0;
        if (x >= x1) return y1;
        return FinishReal(environment, y0 + (x - x0) * ((y1 - y0) / (x1 - x0)));
    }
    ZorWBRealInterval RealInterval(const ZorWBEnvironment& environment,
                                   const ZorWBRealInterval& x) const {
        if (ZorWBIsEmpty(x)) return RealIntervalDomainError(environment);
        double atLow = Real(environment, x.low);
        double atHigh = Real(environment, std::max(x.low, x.high));
        return ZorWBCreateRealInterval(std::min(atLow, atHigh), std::max(atLow, atHigh));
    }
};

bool IsExactZero(const ZorWBEnvironment& environment, const ZorWBValue& value) {
    if (!ZorWBIsExact(environment, value) || value.IsAKindOf(ZorWBBooleanType)) return false;
    return ExactNumber(value) == 0.0;
}

// origin + step * round((a - origin) / step) on values; a zero step leaves a.
ZorWBValue RoundToStep(const ZorWBEnvironment& environment, const ZorWBValue& a,
                       const ZorWBValue& step, const ZorWBValue& origin) {
    if (IsExactZero(environment, step)) return a;
    ZorWBValue steps =
        ZorWBRound(environment, ExactQuotient(environment, ZorWBSub(environment, a, origin), step));
    return ZorWBSum(environment, origin, ZorWBMul(environment, step, steps));
}

bool IsMultipleList(const ZorWBValue& value) {
    return IsEnumKind(value.GetType()) && IsListEnum(value) && EnumSize(value) > 1;
}

ZorWBValue ListElement(const ZorWBValue& list, int i) {
    if (list.IsAKindOf(ZorWBIntegerEnumType)) return ZorWBValue(list.GetIntegerEnum().Get(i));
    return ZorWBValue(list.GetRealEnum().Get(i));
}

// The number of element combinations of the operands taken one by one (an
// operand that is not a list counts once).
long long ListCombinations(std::initializer_list<const ZorWBValue*> operands) {
    long long combinations = 1;
    for (const ZorWBValue* operand : operands)
        if (IsEnumKind(operand->GetType()) && IsListEnum(*operand))
            combinations *= std::max(EnumSize(*operand), 1);
    return combinations;
}

// An enumeration as its hull interval; other values as they are.
ZorWBValue HullOf(const ZorWBValue& value) {
    if (value.IsAKindOf(ZorWBIntegerEnumType)) return ZorWBValue(value.GetAsIntegerInterval());
    if (value.IsAKindOf(ZorWBRealEnumType)) return ZorWBValue(value.GetAsRealInterval());
    return value;
}

// The rounding over every combination of an enumerated step or origin with
// the values of a.
ZorWBValue RoundToStepLists(const ZorWBEnvironment& environment, const ZorWBValue& a,
                            const ZorWBValue& step, const ZorWBValue& origin) {
    // Uniting into an enumeration keeps separate results apart (the
    // enumeration becomes real when a result is).
    ZorWBValue result = NilEnum(true);
    int steps = IsMultipleList(step) ? EnumSize(step) : 1;
    int origins = IsMultipleList(origin) ? EnumSize(origin) : 1;
    for (int i = 0; i < steps; ++i) {
        ZorWBValue stepValue = steps > 1 ? ListElement(step, i) : step;
        for (int j = 0; j < origins; ++j) {
            ZorWBValue originValue = origins > 1 ? ListElement(origin, j) : origin;
            ZorWBUnite(environment, result, RoundToStep(environment, a, stepValue, originValue));
        }
    }
    return result;
}

}  // namespace

ZorWBValue ZorWBUnaryMinus(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return Apply<NegateFunction>(environment, a);
}
ZorWBValue ZorWBAbs(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return Apply<AbsFunction>(environment, a);
}
ZorWBValue ZorWBSqrt(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return Apply<SqrtFunction>(environment, a);
}
ZorWBValue ZorWBExp(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return Apply<ExpFunction>(environment, a);
}
ZorWBValue ZorWBLn(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return Apply<LnFunction>(environment, a);
}
ZorWBValue ZorWBLog(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return Apply<LogFunction>(environment, a);
}
ZorWBValue ZorWBSin(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return Apply<SinFunction>(environment, a);
}
ZorWBValue ZorWBCos(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return Apply<CosFunction>(environment, a);
}
ZorWBValue ZorWBTan(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return Apply<TanFunction>(environment, a);
}
ZorWBValue ZorWBSinh(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return Apply<SinhFunction>(environment, a);
}
ZorWBValue ZorWBCosh(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return Apply<CoshFunction>(environment, a);
}
ZorWBValue ZorWBTanh(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return Apply<TanhFunction>(environment, a);
}
ZorWBValue ZorWBAsinh(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return Apply<AsinhFunction>(environment, a);
}
ZorWBValue ZorWBAcosh(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return Apply<AcoshFunction>(environment, a);
}
ZorWBValue ZorWBAtanh(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return Apply<AtanhFunction>(environment, a);
}
ZorWBValue ZorWBCeil(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return Apply<CeilFunction>(environment, a);
}
ZorWBValue ZorWBFloor(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return Apply<FloorFunction>(environment, a);
}
ZorWBValue ZorWBTrunc(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return Apply<TruncFunction>(environment, a);
}
ZorWBValue ZorWBRound(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return Apply<RoundFunction>(environment, a);
}

// Without a range the principal ranges: [-pi/2, pi/2] for asin and atan,
// [0, pi] for acos.
ZorWBValue ZorWBAsin(const ZorWBEnvironment& environment, const ZorWBValue& a,
                     const ZorWBValue* range) {
    return ApplyInverse(environment, a, {{}, Asin, ZorWBAsin, {-HalfPi, HalfPi}, range});
}
ZorWBValue ZorWBAcos(const ZorWBEnvironment& environment, const ZorWBValue& a,
                     const ZorWBValue* range) {
    return ApplyInverse(environment, a, {{}, Acos, ZorWBAcos, {0.0, ZorWBPi}, range});
}
ZorWBValue ZorWBAtan(const ZorWBEnvironment& environment, const ZorWBValue& a,
                     const ZorWBValue* range) {
    return ApplyInverse(environment, a, {{}, Atan, ZorWBAtan, {-HalfPi, HalfPi}, range});
}

// Without a range the principal range [-pi, pi].
ZorWBValue ZorWBAtan2(const ZorWBEnvironment& environment, const ZorWBValue& y, const ZorWBValue& x,
                      const ZorWBValue* range) {
    Atan2Operator function;
    function.range = range;
    if (range && IsScalarKind(y.GetType()) && IsScalarKind(x.GetType())) {
        y.RecordEnv(environment);
        x.RecordEnv(environment);
        range->RecordEnv(environment);
        return ValueOfImage(function.RealInterval(environment,
                                                  ZorWBCreateRealInterval(y.GetAsReal()),
                                                  ZorWBCreateRealInterval(x.GetAsReal())));
    }
    return ApplyBinary(environment, y, x, function);
}

// A null parameter array is the unit step at 0: {0, 0, 0, 1}. Parameters
// that are not numbers are a domain error.
ZorWBValue ZorWBStep(const ZorWBEnvironment& environment, const ZorWBValue& a,
                     const double* parameters) {
    static const double unitStep[] = {0.0, 0.0, 0.0, 1.0};
    const double* p = parameters ? parameters : unitStep;
    for (int i = 0; i < 4; ++i) {
        if (p[i] != p[i]) {
            a.RecordEnv(environment);
            environment.SetError(ZorWBError::Domain);
            return ZorWBValue(ZorWBReal_Nil);
        }
    }
    StepFunction step;
    step.x0 = p[0];
    step.x1 = p[1];
    step.y0 = p[2];
    step.y1 = p[3];
    return ApplyUnary(environment, a, step);
}

// origin + step * round((a - origin) / step), rounding half away from zero;
// a zero step gives a unchanged. For a single step and origin the chain of
// monotone operations gives the exact image of a; an enumerated step or
// origin is taken element by element (the results united) up to the cap on
// element combinations, beyond which the enumerations go through their
// hulls; interval steps and origins give a hull.
ZorWBValue ZorWBRound(const ZorWBEnvironment& environment, const ZorWBValue& a,
                      const ZorWBValue& step, const ZorWBValue& origin) {
    a.RecordEnv(environment);
    step.RecordEnv(environment);
    origin.RecordEnv(environment);
    ZorWBValueType kinds[] = {LookupKind(environment, a), LookupKind(environment, step),
                              LookupKind(environment, origin)};
    if (!TableKind(kinds[0], kinds[1]) || !TableKind(kinds[0], kinds[2]) ||
        !TableKind(kinds[1], kinds[2]))
        return IncompatibleKinds(environment);
    if (!IsMultipleList(step) && !IsMultipleList(origin))
        return RoundToStep(environment, a, step, origin);
    if (ListCombinations({&a, &step, &origin}) <= MaxElementCombinations)
        return RoundToStepLists(environment, a, step, origin);
    // Too many combinations: the hulls, as every element-wise computation.
    return EnumFromInterval(environment,
                            RoundToStep(environment, HullOf(a), HullOf(step), HullOf(origin)));
}
