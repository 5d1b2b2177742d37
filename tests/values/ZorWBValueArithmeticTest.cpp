#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <random>

#include "TestAllocator.h"
#include "ValueTestSupport.h"
#include "values/ZorWBValueFunctions.h"

using namespace valuetest;

namespace {

using BinaryFunction = ZorWBValue (*)(const ZorWBEnvironment&, const ZorWBValue&,
                                      const ZorWBValue&);

struct BinaryCase {
    const char* name;
    BinaryFunction function;
    double (*point)(double, double);  // NaN where the operation is undefined
    // Where sets of integers compute otherwise (null: as point).
    double (*integerSetPoint)(double, double) = nullptr;
};

double FlooredMod(double x, double y) {
    return y == 0.0 ? NAN : x - y * std::floor(x / y);
}
double Quotient(double x, double y) {
    if (y == 0.0) return x == 0.0 ? INFINITY : NAN;  // 0 / 0 is deliberately plus infinity
    return x / y;
}
// Sets of integers divide by the integer interval division: the truncated
// quotients, and every integer by a divisor that holds 0.
double TruncatedQuotient(double x, double y) {
    return y == 0.0 ? NAN : std::trunc(x / y);
}
double Power(double x, double y) {
    return (x == 0.0 && y < 0.0) ? NAN : std::pow(x, y);
}

ZorWBValue Atan2WithoutRange(const ZorWBEnvironment& environment, const ZorWBValue& y,
                             const ZorWBValue& x) {
    return ZorWBAtan2(environment, y, x);
}

const BinaryCase BinaryCases[] = {
    {"Sum", ZorWBSum, [](double x, double y) { return x + y; }},
    {"Sub", ZorWBSub, [](double x, double y) { return x - y; }},
    {"Mul", ZorWBMul, [](double x, double y) { return x * y; }},
    {"Div", ZorWBDiv, Quotient, TruncatedQuotient},
    {"Mod", ZorWBMod, FlooredMod},
    {"Min", ZorWBMin, [](double x, double y) { return std::min(x, y); }},
    {"Max", ZorWBMax, [](double x, double y) { return std::max(x, y); }},
    {"Dim", ZorWBDim, [](double x, double y) { return std::max(x - y, 0.0); }},
    {"Sign", ZorWBSign, [](double x, double y) { return y >= 0 ? std::fabs(x) : -std::fabs(x); }},
    {"Pow", ZorWBPow, Power},
    {"Atan2", Atan2WithoutRange,
     [](double y, double x) { return (x == 0.0 && y == 0.0) ? NAN : std::atan2(y, x); }},
};

bool IsRealKind(ZorWBValueType kind) {
    return kind == ZorWBRealType || kind == ZorWBRealIntervalType || kind == ZorWBRealEnumType ||
           kind == ZorWBFractionType;
}

bool IsIntegerSetKind(ZorWBValueType kind) {
    return kind == ZorWBIntegerIntervalType || kind == ZorWBIntegerEnumType ||
           kind == ZorWBBooleanType;
}

// Whether the integer 0 is one of the value's numbers.
bool HoldsZero(const ZorWBValue& value) {
    if (IsList(value)) {
        std::vector<double> elements = ListElements(value);
        return std::find(elements.begin(), elements.end(), 0.0) != elements.end();
    }
    ZorWBIntegerInterval hull = value.GetAsIntegerInterval();
    return hull.low <= 0 && 0 <= hull.high;
}

bool IsWholeIntegerLine(const ZorWBValue& value) {
    if (value.IsAKindOf(ZorWBIntegerEnumType)) return value.GetIntegerEnum().IsAny();
    ZorWBIntegerInterval hull = value.GetAsIntegerInterval();
    return value.IsAKindOf(ZorWBIntegerIntervalType) && hull.low == ZorWBInteger_Any.low &&
           hull.high == ZorWBInteger_Any.high;
}

}  // namespace

// For operands of every pair of kinds, the image of every pair of sampled
// points lies in the result, and two lists give exactly the images of their
// elements. Sets of integers (integer intervals, enumerations and booleans)
// compute with their own point function where the operation has one.
TEST(ZorWBValueArithmetic, BinaryResultsHoldTheImagesOfTheirOperands) {
    std::mt19937 rng(20240611);
    for (const BinaryCase& operation : BinaryCases) {
        for (ZorWBValueType firstKind : AllKinds) {
            for (ZorWBValueType secondKind : AllKinds) {
                for (int trial = 0; trial < 120; ++trial) {
                    ZorWBEnvironment environment;
                    ZorWBValue a = RandomOperand(rng, firstKind);
                    ZorWBValue b = RandomOperand(rng, secondKind);
                    ZorWBValue result = operation.function(environment, a, b);
                    bool booleanWithReal =
                        (firstKind == ZorWBBooleanType && IsRealKind(secondKind)) ||
                        (secondKind == ZorWBBooleanType && IsRealKind(firstKind));
                    bool quiet = operation.function == ZorWBDim;
                    ASSERT_EQ((environment.GetError() & 2) != 0, booleanWithReal && !quiet)
                        << operation.name << " " << Describe(a) << ", " << Describe(b);
                    if (booleanWithReal) continue;
                    bool integerSets = operation.integerSetPoint &&
                                       IsIntegerSetKind(ZorWBGetCommonType(environment, a, b));
                    if (integerSets && HoldsZero(b)) {
                        ASSERT_TRUE(IsWholeIntegerLine(result))
                            << operation.name << "(" << Describe(a) << ", " << Describe(b)
                            << ") = " << Describe(result);
                        continue;
                    }
                    auto point = integerSets ? operation.integerSetPoint : operation.point;
                    std::vector<double> images;
                    for (double x : PointsOf(rng, a)) {
                        for (double y : PointsOf(rng, b)) {
                            double image = point(x, y);
                            if (std::isnan(image)) continue;
                            images.push_back(image);
                            ASSERT_TRUE(Holds(result, image))
                                << operation.name << "(" << Describe(a) << ", " << Describe(b)
                                << ") at " << x << ", " << y << " = " << image << " not in "
                                << Describe(result);
                        }
                    }
                    if (IsList(a) && IsList(b) && !images.empty()) {
                        ASSERT_TRUE(HoldsExactly(result, images))
                            << operation.name << " of two lists";
                    }
                    if (IsList(a) && IsList(b)) {
                        bool undefinedPair = false;
                        for (double x : ListElements(a))
                            for (double y : ListElements(b))
                                undefinedPair = undefinedPair || std::isnan(point(x, y));
                        ASSERT_EQ((environment.GetError() & 1) != 0, undefinedPair)
                            << operation.name << "(" << Describe(a) << ", " << Describe(b)
                            << "): a domain error exactly where a pair has no image";
                    }
                }
            }
        }
    }
}

namespace {

struct IntegerCase {
    const char* name;
    BinaryFunction function;
    bool (*point)(long long x, long long y, long long& image);  // false where undefined
};

long long FlooredIntegerMod(long long x, long long y) {
    long long remainder = x % y;
    return remainder != 0 && (remainder < 0) != (y < 0) ? remainder + y : remainder;
}

bool IntegerPower(long long x, long long y, long long& image) {
    if (y < 0) return false;
    image = 1;
    for (long long i = 0; i < y; ++i)
        image *= x;
    return true;
}

const IntegerCase IntegerCases[] = {
    {"Sum", ZorWBSum, [](long long x, long long y, long long& z) { return z = x + y, true; }},
    {"Sub", ZorWBSub, [](long long x, long long y, long long& z) { return z = x - y, true; }},
    {"Mul", ZorWBMul, [](long long x, long long y, long long& z) { return z = x * y, true; }},
    {"Mod", ZorWBMod,
     [](long long x, long long y, long long& z) {
         return y != 0 && (z = FlooredIntegerMod(x, y), true);
     }},
    {"Min", ZorWBMin,
     [](long long x, long long y, long long& z) { return z = std::min(x, y), true; }},
    {"Max", ZorWBMax,
     [](long long x, long long y, long long& z) { return z = std::max(x, y), true; }},
    {"Dim", ZorWBDim,
     [](long long x, long long y, long long& z) { return z = std::max(x - y, 0LL), true; }},
    {"Sign", ZorWBSign,
     [](long long x, long long y, long long& z) {
         return z = y >= 0 ? std::llabs(x) : -std::llabs(x), true;
     }},
    {"Pow", ZorWBPow, IntegerPower},
    {"Div", ZorWBDiv,
     [](long long x, long long y, long long& z) { return y != 0 && (z = x / y, true); }},
};

}  // namespace

// An integer interval result of integer interval (or integer) operands is
// the hull of the images of every pair of their integers: sound and tight.
TEST(ZorWBValueArithmetic, IntegerIntervalResultsAreTheHullsOfTheirImages) {
    std::mt19937 rng(977);
    for (const IntegerCase& operation : IntegerCases) {
        for (int trial = 0; trial < 2000; ++trial) {
            int aLow = RandomInt(rng, -9, 9);
            int bLow = RandomInt(rng, -4, 6);
            ZorWBIntegerInterval a = {aLow, aLow + RandomInt(rng, 0, 6)};
            ZorWBIntegerInterval b = {bLow, bLow + RandomInt(rng, 0, 3)};
            ZorWBValue second = RandomInt(rng, 0, 1) ? ZorWBValue(b) : ZorWBValue(b.low);
            if (second.IsAKindOf(ZorWBIntegerType)) b.high = b.low;
            ZorWBEnvironment environment;
            ZorWBValue result = operation.function(environment, ZorWBValue(a), second);
            if (operation.function == ZorWBPow && !result.IsAKindOf(ZorWBIntegerIntervalType))
                continue;  // a power that leaves the integers is a real interval
            ASSERT_EQ(result.GetType(), ZorWBIntegerIntervalType) << operation.name;
            if (operation.function == ZorWBDiv && b.low <= 0 && 0 <= b.high) {
                ASSERT_TRUE(IsWholeIntegerLine(result)) << "a divisor holding 0";
                continue;
            }
            long long low = LLONG_MAX;
            long long high = LLONG_MIN;
            for (long long x = a.low; x <= a.high; ++x) {
                for (long long y = b.low; y <= b.high; ++y) {
                    long long image = 0;
                    if (!operation.point(x, y, image)) continue;
                    low = std::min(low, image);
                    high = std::max(high, image);
                }
            }
            if (low > high) continue;
            ASSERT_EQ(environment.GetError(), 0u);
            ZorWBIntegerInterval hull = result.GetAsIntegerInterval();
            ASSERT_TRUE(hull.low == low && hull.high == high)
                << operation.name << "([" << a.low << ", " << a.high << "], " << Describe(second)
                << ") = [" << hull.low << ", " << hull.high << "], images [" << low << ", " << high
                << "]";
        }
    }
    // x^0 is 1 for every x, 0 included; [7, 9] / 2 truncates to [3, 4],
    // while two integers still divide exactly.
    ZorWBEnvironment environment;
    ZorWBValue quotient =
        ZorWBDiv(environment, ZorWBValue(ZorWBIntegerInterval{7, 9}), ZorWBValue(2));
    ASSERT_EQ(quotient.GetType(), ZorWBIntegerIntervalType);
    EXPECT_EQ(quotient.GetAsIntegerInterval().low, 3);
    EXPECT_EQ(quotient.GetAsIntegerInterval().high, 4);
    EXPECT_TRUE(ZorWBDiv(environment, ZorWBValue(7), ZorWBValue(2)).IsAFraction());
    ZorWBValue one = ZorWBPow(environment, ZorWBValue(ZorWBIntegerInterval{-2, 3}), ZorWBValue(0));
    ASSERT_EQ(one.GetType(), ZorWBIntegerIntervalType);
    EXPECT_EQ(one.GetAsIntegerInterval().low, 1);
    EXPECT_EQ(one.GetAsIntegerInterval().high, 1);
}

TEST(ZorWBValueArithmetic, CommonKindFollowsTheTable) {
    ZorWBEnvironment environment;
    const std::vector<ZorWBValue> samples = OneValueOfEachKind();
    const int table[8][8] = {
        {0, 0, 0, 0, 0, 0, 0, 0}, {0, 1, 2, 3, 4, 5, 6, 3}, {0, 2, 2, 4, 4, 6, 6, 0},
        {0, 3, 4, 3, 4, 5, 6, 3}, {0, 4, 4, 4, 4, 6, 6, 0}, {0, 5, 6, 5, 6, 5, 6, 3},
        {0, 6, 6, 6, 6, 6, 6, 0}, {0, 3, 0, 3, 0, 3, 0, 7},
    };
    for (int first = 0; first < 8; ++first)
        for (int second = 0; second < 8; ++second)
            EXPECT_EQ(ZorWBGetCommonType(environment, samples[first], samples[second]),
                      table[first][second])
                << first << " with " << second;
    EXPECT_EQ(
        ZorWBGetCommonType(environment, ZorWBValue(static_cast<ZorWBValueType>(42)), ZorWBValue(1)),
        ZorWBUndefinedType);
}

// A fraction reads as a real from the level on; below it as what it
// simplifies to, an integer when it is one.
TEST(ZorWBValueArithmetic, FractionOperandsByLevel) {
    ZorWBEnvironment below(LevelBelowFractionAsReal);
    ZorWBEnvironment at(LevelFractionAsReal);
    ZorWBValue two = Fraction(4, 2);
    EXPECT_EQ(ZorWBGetCommonType(below, two, ZorWBValue(1)), ZorWBIntegerType);
    EXPECT_EQ(ZorWBGetCommonType(at, two, ZorWBValue(1)), ZorWBRealType);
    EXPECT_EQ(ZorWBGetCommonType(below, Fraction(1, 2), ZorWBValue(1)), ZorWBRealType);
    EXPECT_EQ(ZorWBGetCommonType(below, two, ZorWBValue(ZorWBTrue)), ZorWBIntegerIntervalType);
    EXPECT_EQ(ZorWBGetCommonType(at, two, ZorWBValue(ZorWBTrue)), ZorWBUndefinedType);

    ZorWBValue sumBelow = ZorWBSum(below, two, ZorWBValue(1));
    EXPECT_EQ(sumBelow.GetType(), ZorWBIntegerType);
    EXPECT_EQ(sumBelow.GetAsInteger(), 3);
    ZorWBValue sumAt = ZorWBSum(at, two, ZorWBValue(1));
    EXPECT_EQ(sumAt.GetType(), ZorWBRealType);
    EXPECT_EQ(sumAt.GetAsReal(), 3.0);
    ZorWBValue productAt = ZorWBMul(at, Fraction(1, 2), ZorWBValue(3));
    EXPECT_EQ(productAt.GetType(), ZorWBRealType);
    EXPECT_EQ(productAt.GetAsReal(), 1.5);
    EXPECT_EQ(ZorWBMul(below, two, ZorWBValue(ZorWBIntegerInterval{1, 2})).GetType(),
              ZorWBIntegerIntervalType);
    EXPECT_EQ(ZorWBMul(at, two, ZorWBValue(ZorWBIntegerInterval{1, 2})).GetType(),
              ZorWBRealIntervalType);
    ZorWBValue halfPi = ZorWBSum(below, Fraction(1, 2, 1), ZorWBValue(0));
    EXPECT_EQ(halfPi.GetType(), ZorWBRealType);
    EXPECT_EQ(halfPi.GetAsReal(), 1.5707963267948966);
    EXPECT_EQ(below.GetError(), 0u);
    ZorWBSum(at, two, ZorWBValue(ZorWBTrue));
    EXPECT_EQ(at.GetError(), 2u);
}

TEST(ZorWBValueArithmetic, IntegersStayExactOrBecomeReals) {
    ZorWBEnvironment environment;
    std::mt19937 rng(20240611);
    BinaryFunction exact[] = {ZorWBSum, ZorWBSub, ZorWBMul};
    auto expected = [](int index, long long x, long long y) {
        return index == 0 ? x + y : index == 1 ? x - y : x * y;
    };
    for (int trial = 0; trial < 3000; ++trial) {
        int x = RandomInt(rng, -2147483646, 2147483646) >> RandomInt(rng, 0, 30);
        int y = RandomInt(rng, -2147483646, 2147483646) >> RandomInt(rng, 0, 30);
        for (int index = 0; index < 3; ++index) {
            ZorWBValue result = exact[index](environment, ZorWBValue(x), ZorWBValue(y));
            long long value = expected(index, x, y);
            if (value >= -2147483646 && value <= 2147483646) {
                ASSERT_EQ(result.GetType(), ZorWBIntegerType);
                ASSERT_EQ(result.GetAsInteger(), value);
            } else {
                ASSERT_EQ(result.GetType(), ZorWBRealType);
                ASSERT_EQ(result.GetAsReal(), static_cast<double>(value));
            }
        }
    }
    ZorWBValue beyond = ZorWBSum(environment, ZorWBValue(2147483646), ZorWBValue(1));
    EXPECT_EQ(beyond.GetType(), ZorWBRealType);
    EXPECT_EQ(beyond.GetAsReal(), 2147483647.0);
    ZorWBValue dim = ZorWBDim(environment, ZorWBValue(3), ZorWBValue(5));
    EXPECT_EQ(dim.GetType(), ZorWBIntegerType);
    EXPECT_EQ(dim.GetAsInteger(), 0);
    EXPECT_EQ(ZorWBSign(environment, ZorWBValue(-4), ZorWBValue(0)).GetAsInteger(), 4);
    EXPECT_EQ(ZorWBSign(environment, ZorWBValue(4), ZorWBValue(-1)).GetAsInteger(), -4);
    EXPECT_EQ(ZorWBMod(environment, ZorWBValue(-7), ZorWBValue(3)).GetAsInteger(), 2);
    EXPECT_EQ(ZorWBMod(environment, ZorWBValue(7), ZorWBValue(-3)).GetAsInteger(), -2);
    EXPECT_EQ(ZorWBMod(environment, ZorWBValue(-7.5), ZorWBValue(2.0)).GetAsReal(), 0.5);
    EXPECT_EQ(ZorWBMod(environment, ZorWBValue(10.0), ZorWBValue(0.2)).GetAsReal(), 0.0);
    // The remainder stays on the divisor's side where the quotient underflows.
    double remainder =
        ZorWBMod(environment, ZorWBValue(1.1521116795372028e-319), ZorWBValue(-259845521408.0))
            .GetAsReal();
    EXPECT_TRUE(-259845521408.0 <= remainder && remainder <= 0.0) << remainder;
    EXPECT_EQ(environment.GetError(), 0u);
}

TEST(ZorWBValueArithmetic, IntegerQuotientsAndPowersAreExact) {
    ZorWBEnvironment environment;
    auto expectFraction = [&](const ZorWBValue& value, int numerator, int denominator) {
        ASSERT_TRUE(value.IsAFraction()) << Describe(value);
        EXPECT_EQ(value.GetAsFraction().numerator, numerator);
        EXPECT_EQ(value.GetAsFraction().denominator, denominator);
        EXPECT_EQ(value.GetAsFraction().power, 0);
    };
    EXPECT_EQ(ZorWBDiv(environment, ZorWBValue(6), ZorWBValue(-3)).GetAsInteger(), -2);
    expectFraction(ZorWBDiv(environment, ZorWBValue(1), ZorWBValue(2)), 1, 2);
    expectFraction(ZorWBDiv(environment, ZorWBValue(4), ZorWBValue(-6)), -2, 3);
    expectFraction(ZorWBDiv(environment, ZorWBValue(-2147483646), ZorWBValue(2147483645)),
                   -2147483646, 2147483645);
    EXPECT_EQ(ZorWBPow(environment, ZorWBValue(2), ZorWBValue(10)).GetAsInteger(), 1024);
    EXPECT_EQ(ZorWBPow(environment, ZorWBValue(-3), ZorWBValue(3)).GetAsInteger(), -27);
    EXPECT_EQ(ZorWBPow(environment, ZorWBValue(0), ZorWBValue(0)).GetAsInteger(), 1);
    EXPECT_EQ(ZorWBPow(environment, ZorWBValue(-1), ZorWBValue(-7)).GetAsInteger(), -1);
    ZorWBValue large = ZorWBPow(environment, ZorWBValue(2), ZorWBValue(31));
    EXPECT_EQ(large.GetType(), ZorWBRealType);
    EXPECT_EQ(large.GetAsReal(), 2147483648.0);
    expectFraction(ZorWBPow(environment, ZorWBValue(2), ZorWBValue(-3)), 1, 8);
    expectFraction(ZorWBPow(environment, ZorWBValue(-2), ZorWBValue(-3)), -1, 8);
    ZorWBValue tiny = ZorWBPow(environment, ZorWBValue(3), ZorWBValue(-40));
    EXPECT_EQ(tiny.GetType(), ZorWBRealType);
    EXPECT_DOUBLE_EQ(tiny.GetAsReal(), std::pow(3.0, -40));
    EXPECT_EQ(ZorWBPow(environment, ZorWBValue(-2.0), ZorWBValue(2.0)).GetAsReal(), 4.0);
    ZorWBIntegerInterval squares =
        ZorWBPow(environment, ZorWBValue(ZorWBIntegerInterval{-3, 2}), ZorWBValue(2))
            .GetAsIntegerInterval();
    EXPECT_EQ(squares.low, 0);
    EXPECT_EQ(squares.high, 9);
    // A negative power of a base that reaches 0 is unbounded on that side only.
    ZorWBRealInterval inverses =
        ZorWBPow(environment, ZorWBValue(ZorWBIntegerInterval{-1, 1}), ZorWBValue(-2))
            .GetAsRealInterval();
    EXPECT_EQ(inverses.low, 1.0);
    EXPECT_EQ(inverses.high, ZorWBRealLimit);
    EXPECT_EQ(ZorWBPow(environment, ZorWBValue(ZorWBRealInterval{0, 2}), ZorWBValue(-1.0))
                  .GetAsRealInterval()
                  .low,
              0.5);
    EXPECT_EQ(environment.GetError(), 0u);

    // Division by zero follows the scalar rules: 0 / 0 quietly plus infinity.
    ZorWBValue zeroByZero = ZorWBDiv(environment, ZorWBValue(0), ZorWBValue(0));
    EXPECT_EQ(zeroByZero.GetAsInteger(), 2147483647);
    EXPECT_EQ(environment.GetError(), 0u);
    EXPECT_EQ(ZorWBDiv(environment, ZorWBValue(5), ZorWBValue(0)).GetAsInteger(), -2147483647);
    EXPECT_EQ(environment.GetError(), 1u);
    environment.ClearError();
    EXPECT_EQ(ZorWBPow(environment, ZorWBValue(0), ZorWBValue(-1)).GetAsInteger(), -2147483647);
    EXPECT_EQ(environment.GetError(), 1u);
    environment.ClearError();
    EXPECT_EQ(ZorWBPow(environment, ZorWBValue(-8.0), ZorWBValue(0.5)).GetAsReal(),
              ZorWBRealMinusInfinity);
    EXPECT_EQ(environment.GetError(), 1u);
    environment.ClearError();
    ZorWBMod(environment, ZorWBValue(5), ZorWBValue(0));
    EXPECT_EQ(environment.GetError(), 1u);
}

// A negative base has powers at the integral points of a real exponent
// interval, as it has at an integral real exponent.
TEST(ZorWBValueArithmetic, NegativeBasesToRealExponentIntervalsKeepTheIntegralExponents) {
    ZorWBEnvironment environment;
    auto power = [&](ZorWBRealInterval base, ZorWBRealInterval exponent) {
        environment.ClearError();
        return ZorWBPow(environment, ZorWBValue(base), ZorWBValue(exponent)).GetAsRealInterval();
    };
    // (-2)^2 = 4 and (-2)^3 = -8.
    ZorWBRealInterval both = power({-2, -2}, {2, 3});
    EXPECT_EQ(both.low, -8.0);
    EXPECT_EQ(both.high, 4.0);
    // [-3, -2] to 2: [4, 9]; the non-integral exponents have no power.
    ZorWBRealInterval squares = power({-3, -2}, {2, 2.5});
    EXPECT_EQ(squares.low, 4.0);
    EXPECT_EQ(squares.high, 9.0);
    ZorWBRealInterval inverse = power({-3, -2}, {-4, -3.5});
    EXPECT_DOUBLE_EQ(inverse.low, 1.0 / 81);
    EXPECT_DOUBLE_EQ(inverse.high, 1.0 / 16);
    // A base across 0: the real power of [0, 2] and the powers of [-1, 2].
    EXPECT_EQ(environment.GetError(), 0u);
    ZorWBRealInterval across = power({-1, 2}, {1, 1.5});
    EXPECT_EQ(across.low, -1.0);
    EXPECT_DOUBLE_EQ(across.high, std::pow(2.0, 1.5));
    EXPECT_EQ(environment.GetError(), 0u);
    // Without an integral exponent a negative base has no power.
    ZorWBRealInterval none = power({-3, -2}, {2.25, 2.5});
    EXPECT_GT(none.low, none.high);
    EXPECT_EQ(environment.GetError(), 1u);
    // Many integral exponents: bounded by the powers of |base|, either sign.
    ZorWBRealInterval many = power({-4.5, -2.5}, {-364904448, -364904446.5});
    EXPECT_LE(many.low, 0.0);
    EXPECT_GE(many.high, 0.0);
}

// The integer markers compute as infinities, through the reals.
TEST(ZorWBValueArithmetic, InfinityMarkersBehaveAsInfinities) {
    ZorWBEnvironment environment;
    ZorWBValue plus(2147483647);
    ZorWBValue minus(-2147483647);
    EXPECT_EQ(ZorWBSum(environment, plus, ZorWBValue(1)).GetAsReal(), ZorWBRealPlusInfinity);
    EXPECT_EQ(ZorWBMul(environment, minus, ZorWBValue(-2)).GetAsReal(), ZorWBRealPlusInfinity);
    EXPECT_EQ(ZorWBMul(environment, plus, ZorWBValue(0)).GetAsReal(), 0.0);
    EXPECT_EQ(
        ZorWBMul(environment, ZorWBValue(ZorWBRealPlusInfinity), ZorWBValue(1e-30)).GetAsReal(),
        ZorWBRealPlusInfinity);
    EXPECT_EQ(ZorWBSum(environment, ZorWBValue(3e38), ZorWBValue(3e38)).GetAsReal(),
              ZorWBRealPlusInfinity);
    EXPECT_EQ(
        ZorWBPow(environment, ZorWBValue(ZorWBRealPlusInfinity), ZorWBValue(-1.0)).GetAsReal(),
        0.0);
    EXPECT_EQ(environment.GetError(), 0u);
    EXPECT_EQ(ZorWBSub(environment, plus, plus).GetAsReal(), ZorWBRealMinusInfinity);
    EXPECT_EQ(environment.GetError(), 1u);
}

// Incompatible kinds set error 2 and give the empty real interval; Dim
// answers quietly from the level on. Errors accumulate and are never cleared.
TEST(ZorWBValueArithmetic, IncompatibleKindsAndErrorAccumulation) {
    ZorWBEnvironment environment;
    ZorWBValue result = ZorWBSum(environment, ZorWBValue(1.5), ZorWBValue(ZorWBTrue));
    EXPECT_EQ(environment.GetError(), 2u);
    ASSERT_EQ(result.GetType(), ZorWBRealIntervalType);
    EXPECT_GT(result.GetAsRealInterval().low, result.GetAsRealInterval().high);
    ZorWBDiv(environment, ZorWBValue(1), ZorWBValue(0));
    EXPECT_EQ(environment.GetError(), 3u);
    ZorWBSum(environment, ZorWBValue(1), ZorWBValue(2));
    EXPECT_EQ(environment.GetError(), 3u) << "a success does not clear the word";

    ZorWBEnvironment undefined;
    ZorWBMul(undefined, ZorWBValue(), ZorWBValue(1));
    EXPECT_EQ(undefined.GetError(), 2u);

    ZorWBEnvironment below(LevelBelowQuiet);
    ZorWBEnvironment at(LevelQuiet);
    EXPECT_EQ(ZorWBDim(below, ZorWBValue(1.0), ZorWBValue(ZorWBFalse)).GetType(),
              ZorWBRealIntervalType);
    EXPECT_EQ(below.GetError(), 2u);
    EXPECT_EQ(ZorWBDim(at, ZorWBValue(1.0), ZorWBValue(ZorWBFalse)).GetType(), ZorWBUndefinedType);
    EXPECT_EQ(at.GetError(), 0u);
    ZorWBSum(at, ZorWBValue(1.0), ZorWBValue(ZorWBFalse));
    EXPECT_EQ(at.GetError(), 2u) << "only the tests and Dim answer quietly";

    ZorWBEnvironment clean;
    ZorWBValue booleans = ZorWBSum(clean, ZorWBValue(ZorWBTrue), ZorWBValue(ZorWBUnknown));
    ASSERT_EQ(booleans.GetType(), ZorWBIntegerIntervalType);
    EXPECT_EQ(booleans.GetAsIntegerInterval().low, 1);
    EXPECT_EQ(booleans.GetAsIntegerInterval().high, 2);
}

TEST(ZorWBValueArithmetic, EnumerationResults) {
    ZorWBEnvironment environment;
    const int small[] = {1, 2, 3};
    const int other[] = {10, 20};
    ZorWBValue a;
    a.Set(3, small);
    ZorWBValue b;
    b.Set(2, other);
    ZorWBValue sum = ZorWBSum(environment, a, b);
    ASSERT_EQ(sum.GetType(), ZorWBIntegerEnumType);
    EXPECT_TRUE(HoldsExactly(sum, {11, 12, 13, 21, 22, 23}));
    // Integer enumerations divide as sets of integers, element by element.
    EXPECT_TRUE(HoldsExactly(ZorWBDiv(environment, a, ZorWBValue(2)), {0, 1}));
    EXPECT_EQ(ZorWBDiv(environment, a, ZorWBValue(2)).GetType(), ZorWBIntegerEnumType);
    EXPECT_TRUE(HoldsExactly(ZorWBDiv(environment, a, ZorWBValue(2.0)), {0.5, 1, 1.5}));
    const int withZero[] = {0, 2};
    ZorWBValue divisors;
    divisors.Set(2, withZero);
    EXPECT_TRUE(ZorWBDiv(environment, a, divisors).GetIntegerEnum().IsAny());
    EXPECT_EQ(ZorWBSum(environment, a, ZorWBValue(0.5)).GetType(), ZorWBRealEnumType);
    // An integer interval operand is listed when it is narrow.
    EXPECT_TRUE(HoldsExactly(ZorWBMul(environment, ZorWBValue(ZorWBIntegerInterval{1, 3}), b),
                             {10, 20, 30, 40, 60}));

    // More distinct results than the size limit: the hull.
    environment.SetMaxEnumSize(4);
    ZorWBValue wide = ZorWBSum(environment, a, b);
    ASSERT_EQ(wide.GetIntegerEnum().GetRep(), ZorWBEnumInterval);
    EXPECT_EQ(wide.GetIntegerEnum().GetAsIntegerInterval().low, 11);
    EXPECT_EQ(wide.GetIntegerEnum().GetAsIntegerInterval().high, 23);
    environment.SetMaxEnumSize(50);

    // Nil propagates without error; any goes through the whole line.
    ZorWBValue nil = ZorWBSum(environment, a, ZorWBValue(ZorWBIntegerEnum(ZorWBEnumNil)));
    EXPECT_TRUE(nil.GetIntegerEnum().IsNil());
    EXPECT_TRUE(
        ZorWBSum(environment, ZorWBValue(ZorWBRealEnum(ZorWBEnumAny)), a).GetRealEnum().IsAny());
    const int zero[] = {0};
    ZorWBValue zeros;
    zeros.Set(1, zero);
    EXPECT_TRUE(HoldsExactly(
        ZorWBMul(environment, zeros, ZorWBValue(ZorWBIntegerEnum(ZorWBEnumAny))), {0}));
    EXPECT_EQ(environment.GetError(), 0u);

    // An element outside the domain adds no element, and is a domain error;
    // all of them leave nothing.
    const double reals[] = {-1.0, 4.0};
    ZorWBValue roots;
    roots.Set(2, reals);
    EXPECT_TRUE(HoldsExactly(ZorWBSqrt(environment, roots), {2.0}));
    EXPECT_EQ(environment.GetError(), 1u);
    environment.ClearError();
    const double negatives[] = {-1.0, -4.0};
    roots.Set(2, negatives);
    EXPECT_TRUE(ZorWBSqrt(environment, roots).GetRealEnum().IsNil());
    EXPECT_EQ(environment.GetError(), 1u);
}

TEST(ZorWBValueArithmetic, ScalarKindsDoNotAllocate) {
    ZorWBEnvironment environment;
    ZorWBEnvironment old(LevelBelowFractionAsReal);
    const ZorWBValue operands[] = {ZorWBValue(3),
                                   ZorWBValue(-2.5),
                                   ZorWBValue(ZorWBIntegerInterval{-1, 4}),
                                   ZorWBValue(ZorWBRealInterval{0.5, 2.0}),
                                   ZorWBValue(ZorWBTrue),
                                   Fraction(3, 4)};
    std::size_t before = AllocationCount();
    for (const ZorWBValue& a : operands) {
        for (const ZorWBValue& b : operands) {
            for (const BinaryCase& operation : BinaryCases) {
                operation.function(environment, a, b);
                operation.function(old, a, b);
            }
            ZorWBEqual(environment, a, b);
            ZorWBLessEqual(old, a, b);
            ZorWBContains(environment, a, b);
            ZorWBIsEqual(environment, a, b);
            ZorWBNotEqual(environment, a, b);
            ZorWBImplication(a, b);
            ZorWBValue changed(a);
            ZorWBIntersect(environment, changed, b);
            ZorWBUnite(environment, changed, b);
            ZorWBExclude(old, changed, b);
        }
        ZorWBCos(environment, a);
        ZorWBAsin(environment, a, &operands[3]);
        ZorWBIsEmpty(environment, a);
        ZorWBIsExact(old, a);
        ZorWBFloor(environment, a);
        ZorWBUnaryMinus(old, a);
        ZorWBRoot(environment, a, ZorWBValue(3));
        ZorWBStep(environment, a, nullptr);
        ZorWBRound(environment, a, ZorWBValue(0.5), ZorWBValue(0.1));
    }
    EXPECT_EQ(AllocationCount(), before);
}
