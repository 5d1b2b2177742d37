// Powers and roots of values.
//
// An integer to a non-negative integer power is an exact integer when it
// fits, else a real; to a negative power it is the exact fraction 1 / b^n when
// the denominator fits, else a real. A real base may be negative only with an
// integral exponent. An exponent held by an integer kind keeps that meaning
// in interval computations: a negative base interval to an integer exponent
// interval is the union of its integer powers.
//
// The root of degree n is the real power 1 / n with its branches: odd degrees
// keep the sign, even degrees give the non-negative root unless the current
// range of the result asks for the negative branch. The root of an integer
// that is a perfect power is an integer.

#include <algorithm>
#include <cmath>

#include "values/ZorWBRealPower.h"
#include "values/ZorWBValueDispatch.h"
#include "values/ZorWBValueFunctions.h"

using namespace ZorWBDispatch;

namespace {

// base^exponent in 64 bits (exponent >= 0); false when the magnitude leaves
// the finite integer range.
bool ExactPower(long long base, long long exponent, long long& result) {
    result = 1;
    long long factor = base;
    while (exponent > 0) {
        if (exponent & 1) {
            result *= factor;
            if (!IsFiniteInteger(result)) return false;
        }
        exponent >>= 1;
        if (exponent > 0) {
            factor *= factor;
            // |factor| >= 2 here, and a later bit multiplies it in.
            if (!IsFiniteInteger(factor)) return false;
        }
    }
    return true;
}

bool IsIntegral(double value) {
    return std::floor(value) == value;
}

bool IsOdd(double integral) {
    return std::fmod(integral, 2.0) != 0.0;
}

double InfinitePower(const ZorWBEnvironment& environment, double x, double y) {
    if (IsInfiniteReal(x)) {
        if (y == 0.0) return 1.0;
        if (x > 0.0) return y > 0.0 ? ZorWBRealPlusInfinity : 0.0;
        if (IsInfiniteReal(y) || !IsIntegral(y)) return RealDomainError(environment);
        if (y < 0.0) return 0.0;
        return IsOdd(y) ? ZorWBRealMinusInfinity : ZorWBRealPlusInfinity;
    }
    double magnitude = std::fabs(x);
    if (magnitude == 1.0) return x > 0.0 ? 1.0 : RealDomainError(environment);
    if ((magnitude < 1.0) == (y > 0.0)) return 0.0;
    // An infinite result needs a positive base: its sign is undetermined for
    // a negative one, and 0 to minus infinity divides by zero.
    if (x <= 0.0) return RealDomainError(environment);
    return ZorWBRealPlusInfinity;
}

double RealPower(const ZorWBEnvironment& environment, double x, double y) {
    if (x != x || y != y) return RealDomainError(environment);
    if (IsInfiniteReal(x) || IsInfiniteReal(y)) return InfinitePower(environment, x, y);
    if (x == 0.0 && y < 0.0) return RealDomainError(environment);  // a division by zero
    if (x < 0.0 && !IsIntegral(y)) return RealDomainError(environment);
    return FinishReal(environment, ZorWBRealPower(x, y));
}

ZorWBValue IntegerPower(const ZorWBEnvironment& environment, int x, int y) {
    if (!IsFiniteInteger(x) || !IsFiniteInteger(y))
        return ZorWBValue(RealPower(environment, IntegerToReal(x), IntegerToReal(y)));
    long long result = 0;
    if (y >= 0) {
        if (ExactPower(x, y, result)) return ZorWBValue(static_cast<int>(result));
        return ZorWBValue(RealPower(environment, x, y));
    }
    if (x == 0) {
        environment.SetError(ZorWBError::Domain);  // 1 / 0
        return ZorWBValue(ZorWBIntegerMinusInfinity);
    }
    if (!ExactPower(x, -static_cast<long long>(y), result))
        return ZorWBValue(RealPower(environment, x, y));
    int numerator = result < 0 ? -1 : 1;
    int denominator = static_cast<int>(result < 0 ? -result : result);
    if (denominator == 1) return ZorWBValue(numerator);
    return ZorWBValue(ZorWBCreateFraction(numerator, denominator, 0, 0));
}

// base^n on integer intervals (n >= 0); false when a bound's power leaves
// the finite integer range (the power is then a real interval). x^0 is 1
// for every x, 0 included; an even power of a base across 0 reaches 0.
bool IntegerIntervalPower(const ZorWBIntegerInterval& base, int n, ZorWBIntegerInterval& power) {
    if (n == 0) {
        power = {1, 1};
        return true;
    }
    long long low = 0;
    long long high = 0;
    if (!ExactPower(base.low, n, low) || !ExactPower(base.high, n, high)) return false;
    if (n % 2 != 0 || base.low >= 0)
        power = {static_cast<int>(low), static_cast<int>(high)};
    else if (base.high <= 0)
        power = {static_cast<int>(high), static_cast<int>(low)};
    else
        power = {0, static_cast<int>(std::max(low, high))};
    return true;
}

// The number of integer exponents that an interval power unites one by one.
int MaxUnitedExponents(const ZorWBEnvironment& environment) {
    return std::min(std::max(environment.GetMaxEnumSize(), 1), 1024);
}

// The powers of a base to the integral exponents of an interval: their union
// (Nil when the interval holds no integer).
ZorWBRealInterval IntegralExponentPowers(const ZorWBEnvironment& environment,
                                         const ZorWBRealInterval& base,
                                         const ZorWBRealInterval& exponent) {
    double first = std::ceil(exponent.low);
    double last = std::floor(exponent.high);
    if (first > last) return ZorWBReal_Nil;
    if (std::fabs(first) <= ZorWBIntegerMax && std::fabs(last) <= ZorWBIntegerMax &&
        last - first < MaxUnitedExponents(environment)) {
        ZorWBRealInterval united = ZorWBReal_Nil;
        for (double k = first; k <= last; k += 1.0)
            united = ZorWBUnite(united, ZorWBPow(environment, base, static_cast<int>(k)));
        return united;
    }
    // Too many exponents: the powers of |base| bound the magnitude, either sign.
    double magnitude = ZorWBPow(environment, ZorWBAbs(environment, base), exponent).high;
    return ZorWBCreateRealInterval(-magnitude, magnitude);
}

// A negative base has powers at integral exponents only: an integer exponent
// interval gives the union of its integer powers, a real one the real power
// of the base clipped to [0, +inf) united with the powers at the integral
// exponents it holds (as a real base to an integral real exponent is).
ZorWBRealInterval IntervalPower(const ZorWBEnvironment& environment, const ZorWBRealInterval& base,
                                const ZorWBRealInterval& exponent, bool integerExponent) {
    if (ZorWBIsEmpty(exponent)) return RealIntervalDomainError(environment);
    bool single = exponent.low == exponent.high && IsIntegral(exponent.low) &&
                  std::fabs(exponent.low) <= ZorWBIntegerMax;
    if (single) return ZorWBPow(environment, base, static_cast<int>(exponent.low));
    if (base.low >= 0.0) return ZorWBPow(environment, base, exponent);
    ZorWBRealInterval integral = IntegralExponentPowers(environment, base, exponent);
    // A wholly negative base has no real power to add (and no domain error
    // while an integral exponent gives it powers).
    if (!ZorWBIsEmpty(integral) && (integerExponent || base.high < 0.0)) return integral;
    return ZorWBUnite(ZorWBPow(environment, base, exponent), integral);
}

struct PowOperator : OperatorBase {
    bool integerExponent;  // the exponent operand holds integers only

    explicit PowOperator(bool integers) : integerExponent(integers) {}

    ZorWBValue Integer(const ZorWBEnvironment& environment, int x, int y) const {
        return IntegerPower(environment, x, y);
    }
    double Real(const ZorWBEnvironment& environment, double x, double y) const {
        return RealPower(environment, x, y);
    }
    ZorWBValue IntegerInterval(const ZorWBEnvironment& environment,
                               const ZorWBIntegerInterval& base,
                               const ZorWBIntegerInterval& exponent) const {
        // Finite bounds to a single non-negative exponent stay integers when
        // their powers do.
        ZorWBIntegerInterval power;
        bool single =
            exponent.low == exponent.high && exponent.low >= 0 && exponent.low <= ZorWBIntegerMax;
        bool finite =
            base.low <= base.high && base.low > -ZorWBIntegerMax && base.high < ZorWBIntegerMax;
        if (single && finite && IntegerIntervalPower(base, exponent.low, power))
            return ZorWBValue(power);
        return ZorWBValue(IntervalPower(environment, ZorWBCreateRealInterval(base),
                                        ZorWBCreateRealInterval(exponent), true));
    }
    ZorWBRealInterval RealInterval(const ZorWBEnvironment& environment,
                                   const ZorWBRealInterval& base,
                                   const ZorWBRealInterval& exponent) const {
        return IntervalPower(environment, base, exponent, integerExponent);
    }
};

// ------------------------------------------------------------ roots

double RealRoot(const ZorWBEnvironment& environment, double x, long long degree) {
    if (degree == 0 || x != x) return RealDomainError(environment);
    if (degree < 0) return ZorWBRealDiv(environment, 1.0, RealRoot(environment, x, -degree));
    bool odd = degree % 2 != 0;
    if (x < 0.0 && !odd) return RealDomainError(environment);
    if (IsInfiniteReal(x)) return x > 0.0 ? ZorWBRealPlusInfinity : ZorWBRealMinusInfinity;
    double magnitude = std::fabs(x);
    double root = degree == 2   ? std::sqrt(magnitude)
                  : degree == 3 ? std::cbrt(magnitude)
                                : std::pow(magnitude, 1.0 / static_cast<double>(degree));
    return x < 0.0 ? -root : root;
}

struct RootOperator : RealFunction<RootOperator> {
    int degree;
    const ZorWBValue* range;  // the current range of the result, or null

    RootOperator(int n, const ZorWBValue* resultRange) : degree(n), range(resultRange) {}

    // With a range an element may have two roots: enumerations go through
    // their hull.
    bool ElementWise() const { return range == nullptr; }

    ZorWBValue Integer(const ZorWBEnvironment& environment, int x) const {
        if (degree > 0 && IsFiniteInteger(x) && (x >= 0 || degree % 2 != 0)) {
            long long magnitude = x < 0 ? -static_cast<long long>(x) : x;
            long long root =
                std::llround(RealRoot(environment, static_cast<double>(magnitude), degree));
            long long power = 0;
            if (ExactPower(root, degree, power) && power == magnitude)
                return ZorWBValue(static_cast<int>(x < 0 ? -root : root));
        }
        return ZorWBValue(Real(environment, IntegerToReal(x)));
    }
    double Real(const ZorWBEnvironment& environment, double x) const {
        return RealRoot(environment, x, degree);
    }
    ZorWBRealInterval RealInterval(const ZorWBEnvironment& environment,
                                   const ZorWBRealInterval& x) const {
        if (degree == 0) return RealIntervalDomainError(environment);
        if (degree > 0) return ZorWBRoot(environment, x, degree, RootRange(degree));
        // x^(1/-n) = 1 / x^(1/n); the range of the inner root is the
        // reciprocal of the result's range.
        long long inner = -static_cast<long long>(degree);
        ZorWBRealInterval one = ZorWBCreateRealInterval(1.0);
        ZorWBRealInterval innerRange =
            range ? ZorWBDiv(environment, one, range->GetAsRealInterval()) : RootRange(inner);
        ZorWBRealInterval root =
            ZorWBRoot(environment, x, static_cast<int>(std::min(inner, 2147483647LL)), innerRange);
        ZorWBRealInterval result = ZorWBDiv(environment, one, root);
        return range ? ZorWBIntersect(result, range->GetAsRealInterval()) : result;
    }

  private:
    // The given range, or the principal branch: the non-negative roots for
    // even degrees, every root for odd ones.
    ZorWBRealInterval RootRange(long long n) const {
        if (range) return range->GetAsRealInterval();
        if (n % 2 == 0) return ZorWBCreateRealInterval(0.0, ZorWBRealLimit);
        return ZorWBReal_Any;
    }
};

enum class DegreeForm { Integer, Real, Invalid };

// An integer degree, or a single real one (read as the power 1 / d).
DegreeForm ReadDegree(const ZorWBEnvironment& environment, const ZorWBValue& degree, int& n,
                      double& real) {
    if (degree.IsAKindOf(ZorWBIntegerType)) {
        n = degree.GetAsInteger();
        return DegreeForm::Integer;
    }
    if (!ZorWBIsExact(environment, degree)) return DegreeForm::Invalid;
    real = ExactNumber(degree);
    if (IsIntegral(real) && std::fabs(real) <= ZorWBIntegerMax) {
        n = static_cast<int>(real);
        return DegreeForm::Integer;
    }
    return (real == real && !IsInfiniteReal(real)) ? DegreeForm::Real : DegreeForm::Invalid;
}

}  // namespace

double ZorWBLibraryPower(double x, double y) {
    return std::pow(x, y);
}

ZorWBValue ZorWBPow(const ZorWBEnvironment& environment, const ZorWBValue& base,
                    const ZorWBValue& exponent) {
    return ApplyBinary(environment, base, exponent, PowOperator(IsIntegerKind(exponent.GetType())));
}

// A degree that is neither an integer nor one real number (an interval, an
// enumeration, a boolean or an undefined value) cannot be applied: error 2.
// A non-integral real degree d is the power 1 / d, which has one branch.
ZorWBValue ZorWBRoot(const ZorWBEnvironment& environment, const ZorWBValue& operand,
                     const ZorWBValue& degree, const ZorWBValue* range) {
    operand.RecordEnv(environment);
    degree.RecordEnv(environment);
    int n = 0;
    double real = 0.0;
    switch (ReadDegree(environment, degree, n, real)) {
        case DegreeForm::Integer:
            break;
        case DegreeForm::Real:
            return ZorWBPow(environment, operand, ZorWBValue(1.0 / real));
        default:
            return IncompatibleKinds(environment);
    }
    RootOperator root(n, range);
    if (range && IsScalarKind(operand.GetType())) {
        range->RecordEnv(environment);
        return ValueOfImage(
            root.RealInterval(environment, ZorWBCreateRealInterval(operand.GetAsReal())));
    }
    return ApplyUnary(environment, operand, root);
}
