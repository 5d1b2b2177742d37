#include "symbolic/ZorWBConstantArithmetic.h"

#include "values/ZorWBFraction.h"
#include "values/ZorWBInterval.h"
#include "values/ZorWBValueFunctions.h"

namespace ZorWBConstantArithmetic {
namespace {

// numerator / denominator * Pi^power, denominator > 0, reduced.
struct Rational {
    long long numerator = 0;
    long long denominator = 1;
    long long power = 0;
};

constexpr long long ExactLimit = ZorWBIntegerMax;
// Beyond this the repeated products of an exact power could overflow.
constexpr int MaxExactExponent = 64;

bool Fits(long long value) {
    return value >= -ExactLimit && value <= ExactLimit;
}

bool Read(const ZorWBValue& v, Rational& r) {
    if (v.IsAKindOf(ZorWBIntegerType)) {
        int n = v.GetAsInteger();
        if (!Fits(n)) return false;
        r = {n, 1, 0};
        return true;
    }
    if (!v.IsAFraction()) return false;
    ZorWBFraction f = v.GetAsFraction();
    if (f.denominator == 0 || !Fits(f.numerator) || !Fits(f.denominator) || !Fits(f.power))
        return false;
    r = {f.numerator, f.denominator, f.numerator == 0 ? 0 : f.power};
    if (r.denominator < 0) {
        r.numerator = -r.numerator;
        r.denominator = -r.denominator;
    }
    return true;
}

// Reduces r and writes it as an integer (a whole number without Pi) or a
// fraction; false when a part leaves the finite integer range.
bool Write(Rational r, ZorWBValue& out) {
    if (r.denominator == 0) return false;
    if (r.denominator < 0) {
        r.numerator = -r.numerator;
        r.denominator = -r.denominator;
    }
    long long divisor = ZorWBGcd(r.numerator, r.denominator);
    if (divisor > 1) {
        r.numerator /= divisor;
        r.denominator /= divisor;
    }
    if (r.numerator == 0) r.power = 0;
    if (!Fits(r.numerator) || !Fits(r.denominator) || !Fits(r.power)) return false;
    if (r.denominator == 1 && r.power == 0) {
        out = ZorWBValue(static_cast<int>(r.numerator));
    } else {
        out = ZorWBValue(ZorWBCreateFraction(static_cast<int>(r.numerator),
                                             static_cast<int>(r.denominator),
                                             static_cast<int>(r.power), 0));
    }
    return true;
}

// Reduced product of two reduced rationals: cross-reducing first keeps every
// intermediate product within 64 bits (each factor is below 2^31).
bool Multiply(const Rational& a, const Rational& b, Rational& out) {
    long long g1 = ZorWBGcd(a.numerator, b.denominator);
    long long g2 = ZorWBGcd(b.numerator, a.denominator);
    if (g1 == 0) g1 = 1;
    if (g2 == 0) g2 = 1;
    long long numerator = (a.numerator / g1) * (b.numerator / g2);
    long long denominator = (a.denominator / g2) * (b.denominator / g1);
    out = {numerator, denominator, numerator == 0 ? 0 : a.power + b.power};
    return Fits(out.numerator) && Fits(out.denominator) && Fits(out.power);
}

}  // namespace

bool IsRational(const ZorWBValue& v) {
    Rational r;
    return Read(v, r);
}

bool IsExactly(const ZorWBValue& v, double d) {
    switch (v.GetType()) {
        case ZorWBIntegerType:
        case ZorWBRealType:
            return v.GetAsReal() == d;
        case ZorWBFractionType: {
            Rational r;
            if (!Read(v, r)) return false;
            if (r.numerator == 0) return d == 0.0;
            return r.power == 0 && static_cast<double>(r.numerator) == d * r.denominator;
        }
        case ZorWBIntegerIntervalType:
        case ZorWBRealIntervalType:
        case ZorWBIntegerEnumType:
        case ZorWBRealEnumType: {
            ZorWBRealInterval hull = v.GetAsRealInterval();
            return hull.low == d && hull.high == d;
        }
        default:
            return false;
    }
}

bool Sum(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b,
         bool mixPowers, ZorWBValue& out) {
    Rational x, y;
    if (Read(a, x) && Read(b, y)) {
        if (x.numerator == 0) return Write(y, out);
        if (y.numerator == 0) return Write(x, out);
        if (x.power == y.power) {
            // Each part is below 2^31, so the cross products stay within 64 bits.
            Rational sum{x.numerator * y.denominator + y.numerator * x.denominator,
                         x.denominator * y.denominator, x.power};
            if (Write(sum, out)) return true;
        } else if (!mixPowers) {
            return false;
        }
    }
    return Checked(
        environment, [&] { return ZorWBSum(environment, a, b); }, out);
}

bool Product(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b,
             ZorWBValue& out) {
    Rational x, y, product;
    if (Read(a, x) && Read(b, y) && Multiply(x, y, product) && Write(product, out)) return true;
    return Checked(
        environment, [&] { return ZorWBMul(environment, a, b); }, out);
}

bool Quotient(const ZorWBEnvironment& environment, const ZorWBValue& a, const ZorWBValue& b,
              ZorWBValue& out) {
    Rational x, y;
    if (Read(a, x) && Read(b, y)) {
        if (y.numerator == 0) return false;
        Rational inverse{y.denominator, y.numerator, -y.power};
        if (inverse.denominator < 0) {
            inverse.numerator = -inverse.numerator;
            inverse.denominator = -inverse.denominator;
        }
        Rational quotient;
        if (Multiply(x, inverse, quotient) && Write(quotient, out)) return true;
    }
    return Checked(
        environment, [&] { return ZorWBDiv(environment, a, b); }, out);
}

bool Power(const ZorWBEnvironment& environment, const ZorWBValue& base, const ZorWBValue& exponent,
           ZorWBValue& out) {
    Rational x;
    if (Read(base, x) && exponent.IsAKindOf(ZorWBIntegerType)) {
        int n = exponent.GetAsInteger();
        if (n < 0 && x.numerator == 0) return false;
        if (n >= -MaxExactExponent && n <= MaxExactExponent) {
            Rational factor = x;
            if (n < 0) factor = {x.denominator, x.numerator, -x.power};
            if (factor.denominator < 0) {
                factor.numerator = -factor.numerator;
                factor.denominator = -factor.denominator;
            }
            Rational result{1, 1, 0};
            bool fits = true;
            for (int i = 0; i < (n < 0 ? -n : n) && fits; ++i)
                fits = Multiply(result, factor, result);
            if (fits && Write(result, out)) return true;
        }
    }
    return Checked(
        environment, [&] { return ZorWBPow(environment, base, exponent); }, out);
}

bool TrigonometricOfPi(ZorWBExpressionType type, const ZorWBValue& angle, ZorWBValue& out) {
    Rational r;
    if (!Read(angle, r)) return false;
    if (r.numerator != 0 && r.power != 1) return false;
    // The angle is k * Pi / 2 for an integer k.
    long long twice = 2 * r.numerator;
    if (twice % r.denominator != 0) return false;
    long long quarter = ((twice / r.denominator) % 4 + 4) % 4;
    static const int sines[4] = {0, 1, 0, -1};
    static const int cosines[4] = {1, 0, -1, 0};
    switch (type) {
        case ZorWBExpressionType::Sin:
            out = ZorWBValue(sines[quarter]);
            return true;
        case ZorWBExpressionType::Cos:
            out = ZorWBValue(cosines[quarter]);
            return true;
        case ZorWBExpressionType::Tan:
            if (quarter % 2 != 0) return false;
            out = ZorWBValue(0);
            return true;
        default:
            return false;
    }
}

}  // namespace ZorWBConstantArithmetic
