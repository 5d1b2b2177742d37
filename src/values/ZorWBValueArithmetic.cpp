// The two-operand arithmetic of values: sum, difference, product, quotient,
// modulo, minimum, maximum, positive difference and sign transfer.
//
// Integer operands compute exactly in 64 bits; a result outside the finite
// integer range becomes a real, and the integer infinity markers compute as
// infinities through the real forms. Real results beyond the real limit
// saturate to the infinity markers without an error; only the quotient
// treats an overflow as an error, as its scalar helper does.

#include <algorithm>
#include <cmath>

#include "values/ZorWBIntervalRules.h"
#include "values/ZorWBValueDispatch.h"
#include "values/ZorWBValueFunctions.h"

using namespace ZorWBDispatch;

namespace {

bool OppositeInfinities(double x, double y) {
    return (x > ZorWBRealLimit && y < -ZorWBRealLimit) ||
           (x < -ZorWBRealLimit && y > ZorWBRealLimit);
}

double RealSum(const ZorWBEnvironment& environment, double x, double y) {
    if (!IsInfiniteReal(x) && !IsInfiniteReal(y)) return FinishReal(environment, x + y);
    // Opposite infinities have no sum.
    if (OppositeInfinities(x, y)) return RealDomainError(environment);
    return (x > ZorWBRealLimit || y > ZorWBRealLimit) ? ZorWBRealPlusInfinity
                                                      : ZorWBRealMinusInfinity;
}

double RealProduct(const ZorWBEnvironment& environment, double x, double y) {
    if (!IsInfiniteReal(x) && !IsInfiniteReal(y)) return FinishReal(environment, x * y);
    // An infinity times 0 is 0, as in the interval product.
    if (x == 0.0 || y == 0.0) return 0.0;
    if (x != x || y != y) return RealDomainError(environment);
    return (x < 0.0) != (y < 0.0) ? ZorWBRealMinusInfinity : ZorWBRealPlusInfinity;
}

// The modulo takes the sign of the divisor: x - y * floor(x / y), so that
// mod(-1, 360) is 359. A zero divisor is a division by zero.
long long FlooredModulo(long long x, long long y) {
    long long remainder = x % y;
    if (remainder != 0 && (remainder < 0) != (y < 0)) remainder += y;
    return remainder;
}

double RealModulo(const ZorWBEnvironment& environment, double x, double y) {
    if (y == 0.0 || IsInfiniteReal(x) || x != x || y != y) return RealDomainError(environment);
    if (IsInfiniteReal(y)) {
        // Only an operand on the divisor's side of 0 is its own remainder.
        if (x == 0.0 || (x > 0.0) == (y > 0.0)) return x;
        return RealDomainError(environment);
    }
    // The same remainder as the interval modulo.
    return FinishReal(environment, ZorWBIntervalRules::FlooredRemainder(x, y));
}

// |a| with the sign of b, for integer and real intervals alike: b >= 0 keeps
// |a|, b < 0 negates it, and a b on both sides gives both.
template <class Interval>
Interval SignOfIntervals(const ZorWBEnvironment& environment, const Interval& a,
                         const Interval& b) {
    if (ZorWBIsEmpty(b)) return IntervalDomainError(environment, b);
    Interval magnitude = ZorWBAbs(environment, a);
    if (ZorWBIsEmpty(magnitude) || b.low >= 0) return magnitude;
    Interval result = magnitude;
    result.low = -magnitude.high;
    result.high = b.high < 0 ? -magnitude.low : magnitude.high;
    return result;
}

struct SumOperator : ExactIntegerOperator<SumOperator> {
    long long Exact(long long x, long long y) const { return x + y; }
    double Real(const ZorWBEnvironment& environment, double x, double y) const {
        return RealSum(environment, x, y);
    }
    ZorWBValue IntegerInterval(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& x,
                               const ZorWBIntegerInterval& y) const {
        return ZorWBValue(ZorWBSum(environment, x, y));
    }
    ZorWBRealInterval RealInterval(const ZorWBEnvironment& environment, const ZorWBRealInterval& x,
                                   const ZorWBRealInterval& y) const {
        return ZorWBSum(environment, x, y);
    }
};

struct SubOperator : ExactIntegerOperator<SubOperator> {
    long long Exact(long long x, long long y) const { return x - y; }
    double Real(const ZorWBEnvironment& environment, double x, double y) const {
        return RealSum(environment, x, -y);
    }
    ZorWBValue IntegerInterval(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& x,
                               const ZorWBIntegerInterval& y) const {
        return ZorWBValue(ZorWBSub(environment, x, y));
    }
    ZorWBRealInterval RealInterval(const ZorWBEnvironment& environment, const ZorWBRealInterval& x,
                                   const ZorWBRealInterval& y) const {
        return ZorWBSub(environment, x, y);
    }
};

struct MulOperator : ExactIntegerOperator<MulOperator> {
    long long Exact(long long x, long long y) const { return x * y; }
    double Real(const ZorWBEnvironment& environment, double x, double y) const {
        return RealProduct(environment, x, y);
    }
    ZorWBValue IntegerInterval(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& x,
                               const ZorWBIntegerInterval& y) const {
        return ZorWBValue(ZorWBMul(environment, x, y));
    }
    ZorWBRealInterval RealInterval(const ZorWBEnvironment& environment, const ZorWBRealInterval& x,
                                   const ZorWBRealInterval& y) const {
        return ZorWBMul(environment, x, y);
    }
};

// The quotient of the numbers the operands stand for. Two integers divide
// exactly: an integer when the division is exact, otherwise the reduced
// fraction. By zero it follows the scalar division: 0 / 0 is the
// plus-infinity marker without an error, n / 0 error 1 and the minus-infinity
// marker. Integer intervals divide as real intervals.
struct QuotientOperator : OperatorBase {
    ZorWBValue Integer(const ZorWBEnvironment& environment, int x, int y) const {
        if (!IsFiniteInteger(x) || !IsFiniteInteger(y))
            return ZorWBValue(Real(environment, IntegerToReal(x), IntegerToReal(y)));
        if (y == 0) {
            if (x == 0) return ZorWBValue(ZorWBIntegerPlusInfinity);
            environment.SetError(ZorWBError::Domain);
            return ZorWBValue(ZorWBIntegerMinusInfinity);
        }
        if (x % y == 0) return IntegerResult(static_cast<long long>(x) / y);
        long long divisor = ZorWBGcd(x, y);
        long long numerator = x / divisor;
        long long denominator = y / divisor;
        if (denominator < 0) {
            numerator = -numerator;
            denominator = -denominator;
        }
        return ZorWBValue(
            ZorWBCreateFraction(static_cast<int>(numerator), static_cast<int>(denominator), 0, 0));
    }
    double Real(const ZorWBEnvironment& environment, double x, double y) const {
        return ZorWBRealDiv(environment, x, y);
    }
    ZorWBValue IntegerInterval(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& x,
                               const ZorWBIntegerInterval& y) const {
        return ZorWBValue(
            ZorWBDiv(environment, ZorWBCreateRealInterval(x), ZorWBCreateRealInterval(y)));
    }
    ZorWBRealInterval RealInterval(const ZorWBEnvironment& environment, const ZorWBRealInterval& x,
                                   const ZorWBRealInterval& y) const {
        return ZorWBDiv(environment, x, y);
    }
};

// The quotient of the value functions: two integers divide exactly, but
// integer intervals and integer enumerations are sets of integers and divide
// by the integer interval division, element by element for lists: the
// truncated quotients, and every integer when the divisor holds 0.
struct DivOperator : QuotientOperator {
    static constexpr bool IntegerElementsAsSets = true;

    ZorWBValue IntegerInterval(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& x,
                               const ZorWBIntegerInterval& y) const {
        return ZorWBValue(ZorWBDiv(environment, x, y));
    }
};

struct ModOperator : OperatorBase {
    ZorWBValue Integer(const ZorWBEnvironment& environment, int x, int y) const {
        if (!IsFiniteInteger(x) || !IsFiniteInteger(y))
            return ZorWBValue(Real(environment, IntegerToReal(x), IntegerToReal(y)));
        if (y == 0) {
            environment.SetError(ZorWBError::Domain);
            return ZorWBValue(ZorWBIntegerMinusInfinity);
        }
        return IntegerResult(FlooredModulo(x, y));
    }
    double Real(const ZorWBEnvironment& environment, double x, double y) const {
        return RealModulo(environment, x, y);
    }
    ZorWBValue IntegerInterval(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& x,
                               const ZorWBIntegerInterval& y) const {
        return ZorWBValue(ZorWBMod(environment, x, y));
    }
    ZorWBRealInterval RealInterval(const ZorWBEnvironment& environment, const ZorWBRealInterval& x,
                                   const ZorWBRealInterval& y) const {
        return ZorWBMod(environment, x, y);
    }
};

struct MinOperator : ExactIntegerOperator<MinOperator> {
    long long Exact(long long x, long long y) const { return std::min(x, y); }
    double Real(const ZorWBEnvironment& environment, double x, double y) const {
        if (x != x || y != y) return RealDomainError(environment);
        return FinishReal(environment, std::min(x, y));
    }
    ZorWBValue IntegerInterval(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& x,
                               const ZorWBIntegerInterval& y) const {
        return ZorWBValue(ZorWBMin(environment, x, y));
    }
    ZorWBRealInterval RealInterval(const ZorWBEnvironment& environment, const ZorWBRealInterval& x,
                                   const ZorWBRealInterval& y) const {
        return ZorWBMin(environment, x, y);
    }
};

struct MaxOperator : ExactIntegerOperator<MaxOperator> {
    long long Exact(long long x, long long y) const { return std::max(x, y); }
    double Real(const ZorWBEnvironment& environment, double x, double y) const {
        if (x != x || y != y) return RealDomainError(environment);
        return FinishReal(environment, std::max(x, y));
    }
    ZorWBValue IntegerInterval(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& x,
                               const ZorWBIntegerInterval& y) const {
        return ZorWBValue(ZorWBMax(environment, x, y));
    }
    ZorWBRealInterval RealInterval(const ZorWBEnvironment& environment, const ZorWBRealInterval& x,
                                   const ZorWBRealInterval& y) const {
        return ZorWBMax(environment, x, y);
    }
};

// max(a - b, 0). Kinds that cannot be combined answer like the tests: from
// the level ZorWBLevel::QuietIncompatibleTests on an undefined value without
// an error.
struct DimOperator : ExactIntegerOperator<DimOperator> {
    long long Exact(long long x, long long y) const { return std::max(x - y, 0LL); }
    double Real(const ZorWBEnvironment& environment, double x, double y) const {
        if (OppositeInfinities(x, -y)) return RealDomainError(environment);
        return std::max(RealSum(environment, x, -y), 0.0);
    }
    ZorWBValue IntegerInterval(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& x,
                               const ZorWBIntegerInterval& y) const {
        return ZorWBValue(ZorWBMax(environment, ZorWBSub(environment, x, y), {0, 0}));
    }
    ZorWBRealInterval RealInterval(const ZorWBEnvironment& environment, const ZorWBRealInterval& x,
                                   const ZorWBRealInterval& y) const {
        return ZorWBMax(environment, ZorWBSub(environment, x, y), {0.0, 0.0});
    }
    ZorWBValue Incompatible(const ZorWBEnvironment& environment) const {
        if (ReportIncompatibleTest(environment)) return ZorWBValue(ZorWBReal_Nil);
        return ZorWBValue();
    }
};

// |a| with the sign of b; b >= 0 counts as positive. The absolute value of
// minus infinity is error 1, as for ZorWBAbs.
struct SignOperator : ExactIntegerOperator<SignOperator> {
    long long Exact(long long x, long long y) const {
        long long magnitude = x < 0 ? -x : x;
        return y >= 0 ? magnitude : -magnitude;
    }
    double Real(const ZorWBEnvironment& environment, double x, double y) const {
        if (y != y) return RealDomainError(environment);
        double magnitude = ZorWBRealAbs(environment, x);
        if (magnitude < 0.0) return magnitude;  // the error marker
        return y >= 0.0 ? magnitude : -magnitude;
    }
    ZorWBValue IntegerInterval(const ZorWBEnvironment& environment, const ZorWBIntegerInterval& x,
                               const ZorWBIntegerInterval& y) const {
        return ZorWBValue(SignOfIntervals(environment, x, y));
    }
    ZorWBRealInterval RealInterval(const ZorWBEnvironment& environment, const ZorWBRealInterval& x,
                                   const ZorWBRealInterval& y) const {
        return SignOfIntervals(environment, x, y);
    }
};

}  // namespace

ZorWBValue ZorWBSum(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b) {
    return ApplyBinary(environment, a, b, SumOperator());
}

ZorWBValue ZorWBSub(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b) {
    return ApplyBinary(environment, a, b, SubOperator());
}

ZorWBValue ZorWBMul(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b) {
    return ApplyBinary(environment, a, b, MulOperator());
}

ZorWBValue ZorWBDiv(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b) {
    return ApplyBinary(environment, a, b, DivOperator());
}

ZorWBValue ZorWBDispatch::ExactQuotient(const ZorWBEnvironment& environment, const ZorWBValue& a,
                                        const ZorWBValue& b) {
    return ApplyBinary(environment, a, b, QuotientOperator());
}

ZorWBValue ZorWBMod(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b) {
    return ApplyBinary(environment, a, b, ModOperator());
}

ZorWBValue ZorWBMin(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b) {
    return ApplyBinary(environment, a, b, MinOperator());
}

ZorWBValue ZorWBMax(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b) {
    return ApplyBinary(environment, a, b, MaxOperator());
}

ZorWBValue ZorWBDim(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b) {
    return ApplyBinary(environment, a, b, DimOperator());
}

ZorWBValue ZorWBSign(const ZorWBEnvironment& environment, const ZorWBValue& a,
                     const ZorWBValue& b) {
    return ApplyBinary(environment, a, b, SignOperator());
}
