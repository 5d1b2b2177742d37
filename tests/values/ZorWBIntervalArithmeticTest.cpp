#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

#include "IntervalTestSupport.h"
#include "values/ZorWBIntervalFunctions.h"

namespace {

using R = ZorWBRealInterval;
using I = ZorWBIntegerInterval;
using RealBinary = ZorWBRealInterval (*)(const ZorWBEnvironment&, const ZorWBRealInterval&,
                                         const ZorWBRealInterval&);

const int Max = ZorWBIntegerMax;

// Checks a real operator on random pairs: the values at the corners and at
// inner points lie in the result, and the corners reach its bounds.
void ExpectSoundAndTightReal(RealBinary function,
                             const std::function<double(double, double)>& point,
                             const std::function<bool(const ZorWBRealInterval&)>& skipDivisor,
                             std::uint64_t seed) {
    IntervalGenerator generator(seed, -1e3, 1e3, {0.0, 1.0, -1.0});
    for (int trial = 0; trial < 3000; ++trial) {
        const ZorWBRealInterval a = generator.Next();
        const ZorWBRealInterval b = generator.Next();
        if (skipDivisor(b)) continue;
        const ZorWBEnvironment environment(0);
        const ZorWBRealInterval result = function(environment, a, b);
        ObservedHull observed;
        // 0 is where the absolute value turns.
        std::vector<double> xs = generator.Samples(a, 6);
        std::vector<double> ys = generator.Samples(b, 6);
        if (a.low < 0.0 && 0.0 < a.high) xs.push_back(0.0);
        if (b.low < 0.0 && 0.0 < b.high) ys.push_back(0.0);
        for (double x : xs) {
            for (double y : ys)
                observed.Add(point(x, y));
        }
        ASSERT_TRUE(IsSoundAndTight(result, observed, 1e-12))
            << "[" << a.low << ", " << a.high << "] with [" << b.low << ", " << b.high << "]";
        ASSERT_EQ(environment.GetError(), 0u);
    }
}

bool Never(const ZorWBRealInterval&) {
    return false;
}

}  // namespace

TEST(ZorWBIntervalConstruction, BuildsIntervalsAndConvertsBetweenKinds) {
    EXPECT_TRUE(ZorWBIsEqual(ZorWBCreateIntegerInterval(4), ZorWBIntegerInterval{4, 4}));
    EXPECT_TRUE(ZorWBIsEqual(ZorWBCreateIntegerInterval(-2, 5), ZorWBIntegerInterval{-2, 5}));
    const ZorWBRealInterval point = ZorWBCreateRealInterval(2.5);
    EXPECT_EQ(point.low, 2.5);
    EXPECT_EQ(point.high, 2.5);
    EXPECT_EQ(ZorWBCreateRealInterval(-1.0, 3.0).high, 3.0);

    // The integers inside a real interval.
    EXPECT_TRUE(ZorWBIsEqual(ZorWBCreateIntegerInterval(ZorWBRealInterval{0.5, 3.5}), {1, 3}));
    EXPECT_TRUE(ZorWBIsEqual(ZorWBCreateIntegerInterval(ZorWBRealInterval{-3.0, -3.0}), {-3, -3}));
    EXPECT_TRUE(
        ZorWBIsEqual(ZorWBCreateIntegerInterval(ZorWBRealInterval{1 + 4e-15, 2 - 4e-15}), {1, 2}));
    EXPECT_TRUE(IsNil(ZorWBCreateIntegerInterval(ZorWBRealInterval{0.2, 0.8})));
    EXPECT_TRUE(IsNil(ZorWBCreateIntegerInterval(ZorWBReal_Nil)));
    EXPECT_TRUE(ZorWBIsEqual(ZorWBCreateIntegerInterval(ZorWBReal_Any), ZorWBInteger_Any));
    EXPECT_TRUE(
        ZorWBIsEqual(ZorWBCreateIntegerInterval(ZorWBRealInterval{1e10, 1e11}), {Max, Max}));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(
        ZorWBIsEqual(ZorWBCreateIntegerInterval(ZorWBRealInterval{nan, nan}), ZorWBInteger_Any));

    const ZorWBRealInterval real = ZorWBCreateRealInterval(ZorWBIntegerInterval{2, 5});
    EXPECT_EQ(real.low, 2.0);
    EXPECT_EQ(real.high, 5.0);
    EXPECT_TRUE(ZorWBIsInfinite(ZorWBCreateRealInterval(ZorWBInteger_Any)));
    EXPECT_EQ(ZorWBCreateRealInterval(ZorWBIntegerInterval{0, Max + 1}).high, TestL);
    EXPECT_TRUE(IsNil(ZorWBCreateRealInterval(ZorWBInteger_Nil)));
}

TEST(ZorWBIntervalTests, SetTestsUseTheirToleranceAndMeasuresTheBounds) {
    EXPECT_FALSE(ZorWBIsEmpty(ZorWBRealInterval{1.0, 1.0 - 5e-15}));
    EXPECT_TRUE(ZorWBIsEmpty(ZorWBRealInterval{1.0, 1.0 - 2e-14}));
    EXPECT_FALSE(ZorWBIsEmpty(ZorWBRealInterval{1.0, 0.9}, 0.2));
    EXPECT_TRUE(ZorWBIsEmpty(ZorWBRealInterval{1.0, 1.0 - 2e-14}, -1.0));
    EXPECT_TRUE(ZorWBIsEmpty(ZorWBReal_Nil));
    EXPECT_TRUE(ZorWBIsConsistent(ZorWBRealInterval{1.0, 1.0 - 5e-15}));
    EXPECT_TRUE(ZorWBIsEmpty(ZorWBInteger_Nil));
    EXPECT_FALSE(ZorWBIsConsistent(ZorWBIntegerInterval{2, 1}));

    EXPECT_TRUE(ZorWBIsExact(ZorWBRealInterval{2.0, 2.0 + 5e-15}));
    EXPECT_FALSE(ZorWBIsExact(ZorWBRealInterval{2.0, 2.0 + 5e-14}));
    EXPECT_TRUE(ZorWBIsExact(ZorWBRealInterval{2.0, 2.1}, 0.2));
    EXPECT_TRUE(ZorWBIsExact(ZorWBIntegerInterval{3, 3}));
    EXPECT_FALSE(ZorWBIsExact(ZorWBIntegerInterval{3, 4}));

    EXPECT_TRUE(ZorWBIsEqual(ZorWBRealInterval{1, 2}, ZorWBRealInterval{1 + 5e-15, 2 - 5e-15}));
    EXPECT_FALSE(ZorWBIsEqual(ZorWBRealInterval{1, 2}, ZorWBRealInterval{1, 2 + 1e-13}));
    EXPECT_FALSE(ZorWBIsEqual(ZorWBIntegerInterval{1, 2}, ZorWBIntegerInterval{1, 3}));

    EXPECT_TRUE(ZorWBContains(ZorWBRealInterval{0, 10}, ZorWBRealInterval{-5e-15, 10 + 5e-15}));
    EXPECT_FALSE(ZorWBContains(ZorWBRealInterval{0, 10}, ZorWBRealInterval{-1e-13, 5}));
    EXPECT_FALSE(ZorWBContains(ZorWBRealInterval{0, 10}, ZorWBRealInterval{5, 10 + 1e-13}));
    EXPECT_TRUE(ZorWBContains(ZorWBIntegerInterval{0, 10}, ZorWBIntegerInterval{0, 10}));
    EXPECT_FALSE(ZorWBContains(ZorWBIntegerInterval{0, 10}, ZorWBIntegerInterval{-1, 3}));

    // Only the whole line is infinite; a half-line counts as finite.
    EXPECT_TRUE(ZorWBIsInfinite(ZorWBReal_Any));
    EXPECT_TRUE(ZorWBIsFinite(ZorWBRealInterval{0, TestL}));
    EXPECT_TRUE(ZorWBIsInfinite(ZorWBInteger_Any));
    EXPECT_TRUE(ZorWBIsFinite(ZorWBIntegerInterval{-Max, 0}));

    EXPECT_EQ(ZorWBMAG(ZorWBRealInterval{-7, 3}), 7.0);
    EXPECT_EQ(ZorWBMAG(ZorWBIntegerInterval{-2, 9}), 9);
    EXPECT_EQ(ZorWBMAG(ZorWBIntegerInterval{INT_MIN, 0}), INT_MAX);
    EXPECT_EQ(ZorWBWidth(ZorWBRealInterval{-1.5, 2}), 3.5);
    EXPECT_EQ(ZorWBWidth(ZorWBIntegerInterval{-3, 4}), 7);
    EXPECT_EQ(ZorWBWidth(ZorWBInteger_Any), Max);
    EXPECT_EQ(ZorWBWidth(ZorWBIntegerInterval{INT_MIN, INT_MAX}), Max);
    EXPECT_EQ(ZorWBMiddle(ZorWBRealInterval{1, 4}), 2.5);
    EXPECT_EQ(ZorWBMiddle(ZorWBRealInterval{1e308, 1.5e308}), 1.25e308);
    EXPECT_EQ(ZorWBMiddle(ZorWBIntegerInterval{1, 4}), 2);
    EXPECT_EQ(ZorWBMiddle(ZorWBIntegerInterval{-4, -1}), -2);
    EXPECT_EQ(ZorWBMiddle(ZorWBIntegerInterval{Max, Max}), Max);

    EXPECT_EQ(ZorWBSignum(ZorWBRealInterval{-3, -1}), -1);
    EXPECT_EQ(ZorWBSignum(ZorWBRealInterval{0, 0}), 0);
    EXPECT_EQ(ZorWBSignum(ZorWBRealInterval{1e-300, 1}), 1);
    EXPECT_EQ(ZorWBSignum(ZorWBRealInterval{0, 1}), 2);
    EXPECT_EQ(ZorWBSignum(ZorWBIntegerInterval{-1, 1}), 2);
    EXPECT_EQ(ZorWBSignum(ZorWBIntegerInterval{2, 3}), 1);
}

TEST(ZorWBIntervalIntersect, SnapsNearCoincidentBoundsOntoTheFirstOperand) {
    const ZorWBRealInterval unit = {0.0, 1.0};
    auto expect = [](ZorWBRealInterval result, double low, double high) {
        EXPECT_EQ(result.low, low);
        EXPECT_EQ(result.high, high);
    };
    expect(ZorWBIntersect(unit, {1e-15, 2}), 0.0, 1.0);
    expect(ZorWBIntersect(unit, {0.5, 2}), 0.5, 1.0);
    expect(ZorWBIntersect(unit, {-1, 1 - 1e-15}), 0.0, 1.0);
    expect(ZorWBIntersect(unit, {-1, 0.25}), 0.0, 0.25);
    // An operand that misses by a hair meets the nearer bound.
    expect(ZorWBIntersect(unit, {1 + 1e-15, 2}), 1.0, 1.0);
    expect(ZorWBIntersect(unit, {-1, -1e-15}), 0.0, 0.0);
    EXPECT_TRUE(IsNil(ZorWBIntersect(unit, {1.1, 2})));
    EXPECT_TRUE(IsNil(ZorWBIntersect(unit, {-2, -1e-13})));
    // The snapping distance grows with a tenth of the bound, capped at 0.05.
    expect(ZorWBIntersect(R{1000, 2000}, {1000 + 5e-13, 3000}), 1000, 2000);
    expect(ZorWBIntersect(R{1000, 2000}, {1000 + 4e-12, 3000}), 1000 + 4e-12, 2000);
    expect(ZorWBIntersect(R{1e14, 2e14}, {1e14 + 0.03125, 3e14}), 1e14, 2e14);
    expect(ZorWBIntersect(R{1e14, 2e14}, {1e14 + 0.0625, 3e14}), 1e14 + 0.0625, 2e14);
    // A larger tolerance snaps farther; a negative one means the default.
    expect(ZorWBIntersect(unit, {0.01, 0.5}, 0.02), 0.0, 0.5);
    expect(ZorWBIntersect(unit, {1e-13, 0.5}, -1.0), 1e-13, 0.5);

    IntervalGenerator generator(11, -10, 10, {0.0, 1.0});
    for (int trial = 0; trial < 5000; ++trial) {
        const ZorWBRealInterval a = generator.Next();
        ZorWBRealInterval b = generator.Next();
        if (generator.Chance(0.3)) b.low = a.low + generator.Uniform(-1e-14, 1e-14);
        if (generator.Chance(0.3)) b.high = a.high + generator.Uniform(-1e-14, 1e-14);
        const ZorWBRealInterval result = ZorWBIntersect(a, b);
        const double plainLow = std::fmax(a.low, b.low);
        const double plainHigh = std::fmin(a.high, b.high);
        if (IsNil(result)) {
            ASSERT_GT(plainLow - plainHigh, 0.0);
            continue;
        }
        // Never leaves a, and holds the plain intersection.
        ASSERT_GE(result.low, a.low);
        ASSERT_LE(result.high, a.high);
        if (plainLow <= plainHigh) {
            ASSERT_LE(result.low, plainLow);
            ASSERT_GE(result.high, plainHigh);
        }
    }
}

TEST(ZorWBIntervalIntersect, IntegerFormIsPlainAndUniteIsTheHull) {
    EXPECT_TRUE(ZorWBIsEqual(ZorWBIntersect(ZorWBIntegerInterval{0, 5}, {3, 9}), {3, 5}));
    EXPECT_TRUE(ZorWBIsEmpty(ZorWBIntersect(ZorWBIntegerInterval{0, 5}, {6, 9})));
    EXPECT_TRUE(ZorWBIsEqual(ZorWBUnite(ZorWBIntegerInterval{0, 5}, {7, 9}), {0, 9}));
    const ZorWBRealInterval hull = ZorWBUnite(ZorWBRealInterval{-1, 0}, {2, 3});
    EXPECT_EQ(hull.low, -1.0);
    EXPECT_EQ(hull.high, 3.0);
    const ZorWBRealInterval withNil = ZorWBUnite(ZorWBReal_Nil, {2, 3});
    EXPECT_EQ(withNil.low, 2.0);
    EXPECT_EQ(withNil.high, 3.0);
    EXPECT_TRUE(IsNil(ZorWBUnite(ZorWBReal_Nil, ZorWBReal_Nil)));
    EXPECT_TRUE(ZorWBIsInfinite(ZorWBUnite(ZorWBRealInterval{-1e39, 0}, {0, 1e39})));
}

TEST(ZorWBIntervalScalar, HelpersReportDomainErrorsWithTheMinusInfinityMarker) {
    struct Case {
        std::function<double(const ZorWBEnvironment&)> call;
        double expected;
        unsigned int error;
    };
    const double minus = ZorWBRealMinusInfinity;
    const double plus = ZorWBRealPlusInfinity;
    const std::vector<Case> cases = {
        {[](auto& e) { return ZorWBRealDiv(e, 0.0, 0.0); }, plus, 0},
        {[](auto& e) { return ZorWBRealDiv(e, 1.0, 0.0); }, minus, 1},
        {[](auto& e) { return ZorWBRealDiv(e, -1e39, 2.0); }, minus, 1},
        {[](auto& e) { return ZorWBRealDiv(e, 2.0, -1e39); }, minus, 1},
        {[](auto& e) { return ZorWBRealDiv(e, 0.0, 5.0); }, 0.0, 0},
        {[](auto& e) { return ZorWBRealDiv(e, 1e38, 1e-5); }, minus, 1},
        {[](auto& e) { return ZorWBRealDiv(e, -1e38, 1e-5); }, minus, 1},
        {[](auto& e) { return ZorWBRealDiv(e, 6.0, -3.0); }, -2.0, 0},
        {[](auto& e) { return ZorWBRealDiv(e, 1e39, -2.0); }, minus, 0},
        {[](auto& e) { return ZorWBRealDiv(e, 1e39, 2.0); }, plus, 0},
        {[](auto& e) { return ZorWBRealDiv(e, 3.0, 1e39); }, 0.0, 0},
        {[](auto& e) { return ZorWBRealSqrt(e, -1.0); }, minus, 1},
        {[](auto& e) { return ZorWBRealSqrt(e, -1e39); }, minus, 1},
        {[](auto& e) { return ZorWBRealSqrt(e, 1e39); }, plus, 0},
        {[](auto& e) { return ZorWBRealSqrt(e, 6.25); }, 2.5, 0},
        {[](auto& e) { return ZorWBRealLn(e, 0.0); }, minus, 1},
        {[](auto& e) { return ZorWBRealLn(e, 1e-39); }, minus, 1},
        {[](auto& e) { return ZorWBRealLn(e, -1e39); }, minus, 1},
        {[](auto& e) { return ZorWBRealLn(e, 1.0); }, 0.0, 0},
        {[](auto& e) { return ZorWBRealLn(e, 1e39); }, plus, 0},
        {[](auto& e) { return ZorWBRealAbs(e, -1e39); }, minus, 1},
        {[](auto& e) { return ZorWBRealAbs(e, -2.0); }, 2.0, 0},
        {[](auto& e) { return ZorWBRealAbs(e, 1e39); }, 1e39, 0},
    };
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const ZorWBEnvironment environment(0);
        EXPECT_EQ(cases[i].call(environment), cases[i].expected) << "case " << i;
        EXPECT_EQ(environment.GetError(), cases[i].error) << "case " << i;
    }
    EXPECT_NEAR(ZorWBRealLn(ZorWBEnvironment(0), ZorWBRealSmallestPositive), -88.72283905206835,
                1e-12);

    const ZorWBEnvironment environment(0);
    EXPECT_EQ(ZorWBIntegerAbs(environment, 2147483647), 2147483647);
    EXPECT_EQ(ZorWBIntegerAbs(environment, -5), 5);
    EXPECT_EQ(environment.GetError(), 0u);
    EXPECT_EQ(ZorWBIntegerAbs(environment, -2147483647), -2147483647);
    EXPECT_EQ(environment.GetError(), 1u);
    const ZorWBEnvironment other(0);
    EXPECT_EQ(ZorWBIntegerAbs(other, INT_MIN), -2147483647);
    EXPECT_EQ(other.GetError(), 1u);
}

TEST(ZorWBIntervalScalar, SaturatingAdditionMatchesWideArithmetic) {
    IntervalGenerator generator(3, 0, 1);
    const std::vector<int> edges = {INT_MIN, -Max - 1, -Max,    -Max + 1, -1,
                                    0,       1,        Max - 1, Max,      INT_MAX};
    // For a first operand of the finite range, whatever the second.
    auto check = [](int a, int b) {
        bool overflow = true;
        const int sum = ZorWBSaturatingAdd(a, b, overflow);
        const std::int64_t wide = std::int64_t{a} + b;
        if (wide > Max) {
            ASSERT_TRUE(overflow && sum == Max) << a << " + " << b;
        } else if (wide < -Max) {
            ASSERT_TRUE(overflow && sum == -Max) << a << " + " << b;
        } else {
            ASSERT_TRUE(!overflow && sum == wide) << a << " + " << b;
        }
    };
    for (int a : edges) {
        if (a < -Max || a > Max) continue;
        for (int b : edges)
            check(a, b);
    }
    for (int trial = 0; trial < 20000; ++trial) {
        check(generator.Integer(-Max, Max), generator.Integer(INT_MIN, INT_MAX));
        check(Max - generator.Integer(0, 100), generator.Integer(-100, 100));
    }
    // Saturation looks only in the direction of the second operand's sign, so
    // a first operand already beyond the range passes through.
    bool overflow = true;
    EXPECT_EQ(ZorWBSaturatingAdd(INT_MAX, 0, overflow), INT_MAX);
    EXPECT_FALSE(overflow);
}

TEST(ZorWBIntervalInteger, SumAndDifferenceSaturateOrFailAtTheLimits) {
    const ZorWBEnvironment environment(0);
    EXPECT_TRUE(
        ZorWBIsEqual(ZorWBSum(environment, ZorWBIntegerInterval{0, Max}, {0, 1}), {0, Max}));
    EXPECT_TRUE(
        ZorWBIsEqual(ZorWBSub(environment, ZorWBIntegerInterval{-Max, 0}, {0, 5}), {-Max, 0}));
    EXPECT_EQ(environment.GetError(), 0u);

    const ZorWBEnvironment low(0);
    EXPECT_TRUE(IsNil(ZorWBSum(low, ZorWBIntegerInterval{Max, Max}, {1, 1})));
    EXPECT_EQ(low.GetError(), 1u);
    const ZorWBEnvironment high(0);
    EXPECT_TRUE(IsNil(ZorWBSum(high, ZorWBIntegerInterval{-10, -Max}, {-Max, -Max})));
    EXPECT_EQ(high.GetError(), 1u);
    const ZorWBEnvironment difference(0);
    EXPECT_TRUE(IsNil(ZorWBSub(difference, ZorWBIntegerInterval{Max, Max}, {-1, -1})));
    EXPECT_EQ(difference.GetError(), 1u);
    const ZorWBEnvironment negated(0);
    EXPECT_TRUE(IsNil(ZorWBSub(negated, ZorWBIntegerInterval{0, 0}, {INT_MIN, INT_MIN})));
    EXPECT_EQ(negated.GetError(), 1u);
}

TEST(ZorWBIntervalInteger, ProductsAndQuotientsAtTheLimits) {
    const ZorWBEnvironment environment(0);
    EXPECT_TRUE(
        ZorWBIsEqual(ZorWBMul(environment, ZorWBIntegerInterval{-100000, 100000}, {100000, 100000}),
                     ZorWBInteger_Any));
    EXPECT_TRUE(ZorWBIsEqual(ZorWBMul(environment, ZorWBInteger_Any, {0, 0}), {0, 0}));
    EXPECT_TRUE(ZorWBIsEqual(
        ZorWBDiv(environment, ZorWBIntegerInterval{INT_MIN, INT_MIN}, {-1, -1}), {Max, Max}));
    EXPECT_TRUE(
        ZorWBIsEqual(ZorWBDiv(environment, ZorWBIntegerInterval{7, 9}, {-1, 2}), ZorWBInteger_Any));
    EXPECT_TRUE(
        ZorWBIsEqual(ZorWBDiv(environment, ZorWBIntegerInterval{7, 9}, {0, 0}), ZorWBInteger_Any));
    EXPECT_TRUE(ZorWBIsEqual(ZorWBDiv(environment, ZorWBIntegerInterval{-7, 9}, {2, 2}), {-3, 4}));
    EXPECT_TRUE(ZorWBIsEqual(ZorWBAbs(environment, ZorWBIntegerInterval{INT_MIN, -3}), {3, Max}));
    EXPECT_TRUE(ZorWBIsEqual(ZorWBAbs(environment, ZorWBIntegerInterval{-8, 5}), {0, 8}));
    EXPECT_EQ(environment.GetError(), 0u);

    const ZorWBEnvironment overflow(0);
    EXPECT_TRUE(IsNil(ZorWBMul(overflow, ZorWBIntegerInterval{100000, 100000}, {100000, 100000})));
    EXPECT_EQ(overflow.GetError(), 1u);
    const ZorWBEnvironment negative(0);
    EXPECT_TRUE(IsNil(ZorWBMul(negative, ZorWBIntegerInterval{100000, 100000}, {-100000, -99999})));
    EXPECT_EQ(negative.GetError(), 1u);
}

TEST(ZorWBIntervalInteger, OperatorsGiveTheExactImageOfSmallIntervals) {
    ExpectExactIntegerImage(
        ZorWBSum, [](int x, int y, std::int64_t& v) { return v = x + y, true; }, 21);
    ExpectExactIntegerImage(
        ZorWBSub, [](int x, int y, std::int64_t& v) { return v = x - y, true; }, 22);
    ExpectExactIntegerImage(
        ZorWBMul, [](int x, int y, std::int64_t& v) { return v = x * y, true; }, 23);
    ExpectExactIntegerImage(
        ZorWBMin, [](int x, int y, std::int64_t& v) { return v = std::min(x, y), true; }, 24);
    ExpectExactIntegerImage(
        ZorWBMax, [](int x, int y, std::int64_t& v) { return v = std::max(x, y), true; }, 25);
    // Divisors holding 0 give the whole line; the others truncate.
    ExpectExactIntegerImage(
        ZorWBDiv, [](int x, int y, std::int64_t& v) { return v = x / y, true; }, 26, true);
    ExpectExactIntegerImage([](const ZorWBEnvironment& e, const ZorWBIntegerInterval& a,
                               const ZorWBIntegerInterval&) { return ZorWBAbs(e, a); },
                            [](int x, int, std::int64_t& v) { return v = std::abs(x), true; }, 27);
}

TEST(ZorWBIntervalReal, OperatorsAreSoundAndTightOnRandomOperands) {
    ExpectSoundAndTightReal(
        ZorWBSum, [](double x, double y) { return x + y; }, Never, 31);
    ExpectSoundAndTightReal(
        ZorWBSub, [](double x, double y) { return x - y; }, Never, 32);
    ExpectSoundAndTightReal(
        ZorWBMul, [](double x, double y) { return x * y; }, Never, 33);
    ExpectSoundAndTightReal(
        ZorWBDiv, [](double x, double y) { return x / y; },
        [](const ZorWBRealInterval& b) { return b.low <= 0.0 && 0.0 <= b.high; }, 34);
    ExpectSoundAndTightReal(
        ZorWBMin, [](double x, double y) { return std::fmin(x, y); }, Never, 35);
    ExpectSoundAndTightReal(
        ZorWBMax, [](double x, double y) { return std::fmax(x, y); }, Never, 36);
    ExpectSoundAndTightReal([](const ZorWBEnvironment& e, const ZorWBRealInterval& a,
                               const ZorWBRealInterval&) { return ZorWBAbs(e, a); },
                            [](double x, double) { return std::fabs(x); }, Never, 37);
}

TEST(ZorWBIntervalReal, DocumentedCasesOfSumAndQuotient) {
    const ZorWBEnvironment environment(0);
    const ZorWBRealInterval sum = ZorWBSum(environment, R{1, 2}, {3, 4});
    EXPECT_EQ(sum.low, 4.0);
    EXPECT_EQ(sum.high, 6.0);
    const ZorWBRealInterval quotient = ZorWBDiv(environment, R{1, 2}, {-1, 1});
    EXPECT_TRUE(ZorWBIsInfinite(quotient));
    EXPECT_TRUE(ZorWBIsInfinite(ZorWBDiv(environment, R{1, 2}, {0, 0})));
    EXPECT_TRUE(ZorWBIsInfinite(ZorWBDiv(environment, R{1, 2}, {0, 3})));
    EXPECT_EQ(environment.GetError(), 0u);
    // Results beyond the real limit are clamped, or empty when wholly beyond.
    const ZorWBRealInterval clamped = ZorWBSum(environment, R{0, TestL}, {0, TestL});
    EXPECT_EQ(clamped.high, TestL);
    EXPECT_TRUE(IsNil(ZorWBMul(environment, R{1e20, 1e20}, {1e20, 1e20})));
    EXPECT_EQ(environment.GetError(), 0u);

    const ZorWBEnvironment empty(0);
    EXPECT_TRUE(IsNil(ZorWBSum(empty, R{1, 2}, {5, 4})));
    EXPECT_EQ(empty.GetError(), 1u);
}

TEST(ZorWBIntervalComparison, EqualAndLessEqualAnswerInFourStates) {
    const ZorWBEnvironment environment(0);
    EXPECT_EQ(ZorWBEqual(environment, ZorWBRealInterval{1, 1}, {1, 1}), ZorWBTrue);
    EXPECT_EQ(ZorWBEqual(environment, ZorWBRealInterval{1, 1}, {1 + 5e-15, 1 + 5e-15}), ZorWBTrue);
    EXPECT_EQ(ZorWBEqual(environment, ZorWBRealInterval{1, 2}, {3, 4}), ZorWBFalse);
    EXPECT_EQ(ZorWBEqual(environment, ZorWBRealInterval{3, 4}, {1, 2}), ZorWBFalse);
    EXPECT_EQ(ZorWBEqual(environment, ZorWBRealInterval{1, 3}, {2, 4}), ZorWBUnknown);
    EXPECT_EQ(ZorWBEqual(environment, ZorWBRealInterval{1, 2}, {2 + 5e-15, 3}), ZorWBUnknown);
    EXPECT_EQ(ZorWBLessEqual(environment, ZorWBRealInterval{1, 2}, {2, 3}), ZorWBTrue);
    EXPECT_EQ(ZorWBLessEqual(environment, ZorWBRealInterval{3, 4}, {1, 2}), ZorWBFalse);
    EXPECT_EQ(ZorWBLessEqual(environment, ZorWBRealInterval{2 + 5e-15, 4}, {1, 2}), ZorWBUnknown);
    EXPECT_EQ(ZorWBLessEqual(environment, ZorWBRealInterval{1, 3}, {2, 4}), ZorWBUnknown);

    EXPECT_EQ(ZorWBEqual(environment, ZorWBIntegerInterval{4, 4}, {4, 4}), ZorWBTrue);
    EXPECT_EQ(ZorWBEqual(environment, ZorWBIntegerInterval{4, 5}, {4, 5}), ZorWBUnknown);
    EXPECT_EQ(ZorWBEqual(environment, ZorWBIntegerInterval{1, 2}, {3, 4}), ZorWBFalse);
    EXPECT_EQ(ZorWBLessEqual(environment, ZorWBIntegerInterval{1, 3}, {3, 4}), ZorWBTrue);
    EXPECT_EQ(ZorWBLessEqual(environment, ZorWBIntegerInterval{5, 6}, {3, 4}), ZorWBFalse);
    EXPECT_EQ(ZorWBLessEqual(environment, ZorWBIntegerInterval{1, 4}, {3, 4}), ZorWBUnknown);
    EXPECT_EQ(environment.GetError(), 0u);

    const ZorWBEnvironment real(0);
    EXPECT_EQ(ZorWBEqual(real, ZorWBRealInterval{1, 1}, ZorWBReal_Nil), ZorWBEmpty);
    EXPECT_EQ(real.GetError(), 1u);
    const ZorWBEnvironment integer(0);
    EXPECT_EQ(ZorWBLessEqual(integer, ZorWBInteger_Nil, ZorWBIntegerInterval{1, 1}), ZorWBEmpty);
    EXPECT_EQ(integer.GetError(), 1u);
}

TEST(ZorWBIntervalComparison, AnswersAgreeWithSampledPoints) {
    IntervalGenerator generator(41, -5, 5, {0.0, 1.0});
    for (int trial = 0; trial < 3000; ++trial) {
        const ZorWBRealInterval a = generator.Next();
        const ZorWBRealInterval b = generator.Next();
        const ZorWBEnvironment environment(0);
        const ZorWBBoolean lessEqual = ZorWBLessEqual(environment, a, b);
        const ZorWBBoolean equal = ZorWBEqual(environment, a, b);
        bool someLessEqual = false;
        bool someGreater = false;
        bool someEqual = false;
        bool someDifferent = false;
        for (double x : generator.Samples(a, 5)) {
            for (double y : generator.Samples(b, 5)) {
                (x <= y ? someLessEqual : someGreater) = true;
                (x == y ? someEqual : someDifferent) = true;
            }
        }
        ASSERT_FALSE(lessEqual == ZorWBTrue && someGreater);
        ASSERT_FALSE(lessEqual == ZorWBFalse && someLessEqual);
        ASSERT_FALSE(equal == ZorWBTrue && someDifferent);
        ASSERT_FALSE(equal == ZorWBFalse && someEqual);
        // The samples hold the bounds, so no greater pair means a.high <= b.low.
        ASSERT_TRUE(someGreater || lessEqual == ZorWBTrue);
    }
}
