#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "values/ZorWBInverseFunctions.h"
#include "values/ZorWBValueFunctions.h"

namespace {

constexpr ZorWBBoolean F = ZorWBFalse;
constexpr ZorWBBoolean T = ZorWBTrue;
constexpr ZorWBBoolean U = ZorWBUnknown;
constexpr ZorWBBoolean E = ZorWBEmpty;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kPi = 3.141592653589793;

using RI = ZorWBRealInterval;
using II = ZorWBIntegerInterval;

bool IsNil(const RI& a) {
    return a.low > a.high;
}

bool IsNil(const II& a) {
    return a.low > a.high;
}

void ExpectNear(const RI& actual, double low, double high) {
    EXPECT_NEAR(actual.low, low, 1e-12) << "high " << actual.high;
    EXPECT_NEAR(actual.high, high, 1e-12) << "low " << actual.low;
}

void ExpectInterval(const II& actual, int low, int high) {
    EXPECT_EQ(actual.low, low);
    EXPECT_EQ(actual.high, high);
}

RI RealOf(const ZorWBValue& value) {
    return value.GetAsRealInterval();
}

}  // namespace

// Each table is written out in full: rows the result, columns the other
// operand's state.
TEST(ZorWBInverseBoolean, TablesAreExactlyTheFourProjections) {
    const ZorWBBoolean inverseAnd[4][4] = {{U, F, U, E}, {E, T, T, E}, {U, U, U, E}, {E, E, E, E}};
    const ZorWBBoolean inverseOr[4][4] = {{F, E, F, E}, {T, U, U, E}, {U, U, U, E}, {E, E, E, E}};
    const ZorWBBoolean premise[4][4] = {{T, E, T, E}, {F, U, U, E}, {U, U, U, E}, {E, E, E, E}};
    const ZorWBBoolean conclusion[4][4] = {{E, F, F, E}, {U, T, U, E}, {U, U, U, E}, {E, E, E, E}};
    for (int r = 0; r < 4; ++r) {
        for (int o = 0; o < 4; ++o) {
            auto result = static_cast<ZorWBBoolean>(r);
            auto other = static_cast<ZorWBBoolean>(o);
            EXPECT_EQ(ZorWBInverseAnd(result, other), inverseAnd[r][o]) << r << o;
            EXPECT_EQ(ZorWBInverseOr(result, other), inverseOr[r][o]) << r << o;
            EXPECT_EQ(ZorWBInverseImplication1(result, other), premise[r][o]) << r << o;
            EXPECT_EQ(ZorWBInverseImplication2(result, other), conclusion[r][o]) << r << o;
        }
    }
    EXPECT_EQ(ZorWBInverseAnd(T, F), E);
    EXPECT_EQ(ZorWBInverseAnd(static_cast<ZorWBBoolean>(7), T), E);
    EXPECT_EQ(ZorWBInverseOr(T, static_cast<ZorWBBoolean>(-1)), E);
}

// The tables are the projections of the forward tables: x may take a truth
// value when some truth value of the other operand sends the pair into the
// result set.
TEST(ZorWBInverseBoolean, TablesFollowFromTheForwardTables) {
    auto truths = [](int state) { return state == 2 ? 3 : state == 3 ? 0 : 1 << state; };
    auto project = [&](ZorWBBoolean (*forward)(ZorWBBoolean, ZorWBBoolean), bool xFirst, int result,
                       int other) {
        int allowed = 0;
        for (int x = 0; x < 2; ++x) {
            for (int y = 0; y < 2; ++y) {
                auto a = static_cast<ZorWBBoolean>(xFirst ? x : y);
                auto b = static_cast<ZorWBBoolean>(xFirst ? y : x);
                if ((truths(other) >> y & 1) && (truths(result) >> forward(a, b) & 1))
                    allowed |= 1 << x;
            }
        }
        return static_cast<ZorWBBoolean>(allowed == 3 ? 2 : allowed == 0 ? 3 : allowed - 1);
    };
    for (int r = 0; r < 4; ++r) {
        for (int o = 0; o < 4; ++o) {
            auto result = static_cast<ZorWBBoolean>(r);
            auto other = static_cast<ZorWBBoolean>(o);
            EXPECT_EQ(ZorWBInverseAnd(result, other), project(ZorWBAnd, true, r, o));
            EXPECT_EQ(ZorWBInverseOr(result, other), project(ZorWBOr, true, r, o));
            EXPECT_EQ(ZorWBInverseImplication1(result, other),
                      project(ZorWBImplication, true, r, o));
            EXPECT_EQ(ZorWBInverseImplication2(result, other),
                      project(ZorWBImplication, false, r, o));
        }
    }
}

TEST(ZorWBInverseIntervals, AbsoluteValueKeepsTheReachableBranches) {
    ExpectInterval(ZorWBInverseAbs(II{2, 3}, II{0, 10}), 2, 3);
    ExpectInterval(ZorWBInverseAbs(II{2, 3}, II{-10, 10}), -3, 3);
    ExpectInterval(ZorWBInverseAbs(II{2, 3}, II{-10, 1}), -3, -2);
    EXPECT_TRUE(IsNil(ZorWBInverseAbs(II{-2, -1}, II{-10, 10})));
    ExpectNear(ZorWBInverseAbs(RI{2, 3}, RI{0, 10}), 2, 3);
    ExpectNear(ZorWBInverseAbs(RI{2, 3}, RI{-10, 10}), -3, 3);
    ExpectNear(ZorWBInverseAbs(RI{2, 3}, RI{-10, 1}), -3, -2);
    EXPECT_TRUE(IsNil(ZorWBInverseAbs(RI{-2, -1}, RI{-10, 10})));
    // Infinite bounds and the extreme integers do not overflow.
    ExpectInterval(ZorWBInverseAbs(II{-2147483647 - 1, 2147483647}, ZorWBInteger_Any), -2147483646,
                   2147483646);
    ExpectInterval(ZorWBInverseAbs(II{0, 0}, II{-5, 5}), 0, 0);
}

// The real candidate meets the domain through the snapping intersection of
// the interval arithmetic, the domain first: a candidate bound within the
// snapping distance of a domain bound lands on it, and the result never
// leaves the domain.
TEST(ZorWBInverseIntervals, AbsoluteValueMeetsTheDomainThroughTheSnappingIntersection) {
    const RI nearHigh = ZorWBInverseAbs(RI{2, 3}, RI{-1, 3 + 4e-15});
    EXPECT_EQ(nearHigh.low, 2.0);
    EXPECT_EQ(nearHigh.high, 3 + 4e-15);
    const RI nearLow = ZorWBInverseAbs(RI{2, 3}, RI{-3 - 4e-15, 1});
    EXPECT_EQ(nearLow.low, -3 - 4e-15);
    EXPECT_EQ(nearLow.high, -2.0);
    // A domain just beyond the reach of the result, by more than the
    // snapping distance (1e-13 at 100), holds no solution.
    EXPECT_TRUE(IsNil(ZorWBInverseAbs(RI{50, 100}, RI{100 + 5e-13, 200})));
    for (const RI& domain : {RI{0, 10}, RI{-10, 10}, RI{2.5, 2.75}, RI{-7, -2.9999999999999996}}) {
        const RI result = ZorWBInverseAbs(RI{2, 3}, domain);
        EXPECT_TRUE(domain.low <= result.low && result.high <= domain.high)
            << domain.low << ", " << domain.high;
    }
}

TEST(ZorWBInverseIntervals, MaximumAndMinimumFollowTheOtherOperand) {
    ExpectInterval(ZorWBInverseMax(II{5, 5}, II{0, 10}, II{0, 3}), 5, 5);
    ExpectInterval(ZorWBInverseMax(II{5, 5}, II{0, 10}, II{0, 7}), 0, 5);
    EXPECT_TRUE(IsNil(ZorWBInverseMax(II{5, 5}, II{0, 10}, II{6, 7})));
    ExpectNear(ZorWBInverseMax(RI{5, 5}, RI{0, 10}, RI{0, 3}), 5, 5);
    ExpectNear(ZorWBInverseMax(RI{5, 5}, RI{0, 10}, RI{0, 7}), 0, 5);
    EXPECT_TRUE(IsNil(ZorWBInverseMax(RI{5, 5}, RI{0, 10}, RI{6, 7})));
    ExpectInterval(ZorWBInverseMin(II{5, 5}, II{0, 10}, II{7, 10}), 5, 5);
    ExpectInterval(ZorWBInverseMin(II{5, 5}, II{0, 10}, II{3, 10}), 5, 10);
    EXPECT_TRUE(IsNil(ZorWBInverseMin(II{5, 5}, II{0, 10}, II{3, 4})));
    ExpectNear(ZorWBInverseMin(RI{5, 5}, RI{0, 10}, RI{3, 10}), 5, 10);
    EXPECT_TRUE(IsNil(ZorWBInverseMax(ZorWBInteger_Nil, II{0, 10}, II{0, 3})));
    EXPECT_TRUE(IsNil(ZorWBInverseMin(RI{1, 2}, RI{0, 10}, ZorWBReal_Nil)));
}

TEST(ZorWBInverseIntervals, FloorAndCeilingCloseTheOpenEndByAHair) {
    RI floor = ZorWBInverseFloor(RI{2, 2});
    EXPECT_EQ(floor.low, 2.0);
    EXPECT_EQ(floor.high, 3 - 1.5e-14);
    EXPECT_TRUE(IsNil(ZorWBInverseFloor(RI{2.2, 2.8})));
    RI ceil = ZorWBInverseCeil(RI{2, 2});
    EXPECT_EQ(ceil.low, 1 + 1.5e-14);
    EXPECT_EQ(ceil.high, 2.0);
    EXPECT_TRUE(IsNil(ZorWBInverseCeil(RI{2.2, 2.8})));
    // Above 10 the hair is relative to a tenth of the high bound.
    EXPECT_EQ(ZorWBInverseFloor(RI{-3.5, 100}).high, 101 - 1.5e-13);
    EXPECT_EQ(ZorWBInverseFloor(RI{-3.5, 100}).low, -3.0);
    EXPECT_TRUE(IsNil(ZorWBInverseFloor(ZorWBReal_Nil)));
}

TEST(ZorWBInverseIntervals, ModuloNarrowsDividendsAndDivisors) {
    ZorWBEnvironment environment(ZorWBLevel::All);
    ExpectInterval(ZorWBInverseMod1(environment, II{1, 2}, II{0, 20}, II{5, 5}), 1, 17);
    ExpectNear(ZorWBInverseMod1(environment, RI{1, 2}, RI{0, 20}, RI{5, 5}), 1, 17);
    // Negative divisors leave remainders in (b, 0].
    ExpectInterval(ZorWBInverseMod1(environment, II{-2, -1}, II{0, 20}, II{-5, -5}), 3, 19);
    EXPECT_TRUE(IsNil(ZorWBInverseMod1(environment, II{5, 9}, II{0, 20}, II{3, 5})));
    // 7 mod y = 1 for y in {2, 3, 6}.
    ExpectInterval(ZorWBInverseMod2(environment, II{1, 1}, II{1, 10}, II{7, 7}), 2, 6);
    // 7 = k y + 0.5: y = 6.5 / k, from k = 1 to k = 10 within [0.6, 10].
    ExpectNear(ZorWBInverseMod2(environment, RI{0.5, 0.5}, RI{0.6, 10}, RI{7, 7}), 0.65, 6.5);
    EXPECT_EQ(environment.GetError(), 0u);
}

TEST(ZorWBInverseIntervals, ModuloReportsWhatItCannotUse) {
    struct Case {
        RI result, domain, other;
        bool second;
        unsigned int code;
    } cases[] = {
        {{0, 1}, {0, 9}, {0, 0}, false, 11},     {{0, 1}, {0, 0}, {0, 9}, true, 11},
        {{kNaN, 1}, {0, 9}, {1, 2}, false, 300}, {{0, 1}, {0, kNaN}, {1, 2}, false, 301},
        {{0, 1}, {0, 9}, {kNaN, 2}, true, 302},
    };
    for (const Case& c : cases) {
        ZorWBEnvironment environment(ZorWBLevel::All);
        RI answer = c.second ? ZorWBInverseMod2(environment, c.result, c.domain, c.other)
                             : ZorWBInverseMod1(environment, c.result, c.domain, c.other);
        EXPECT_EQ(environment.GetError(), c.code);
        EXPECT_EQ(answer.low, c.domain.low);
    }
    ZorWBEnvironment environment(ZorWBLevel::All);
    II domain = ZorWBInverseMod1(environment, II{0, 1}, II{3, 9}, II{0, 0});
    EXPECT_EQ(environment.GetError(), 11u);
    ExpectInterval(domain, 3, 9);
}

TEST(ZorWBInverseIntervals, PowerSolvesForBaseAndExponent) {
    ZorWBEnvironment environment(ZorWBLevel::All);
    ExpectNear(ZorWBInversePow1(environment, RI{4, 9}, RI{-10, 10}, RI{2, 2}), -3, 3);
    ExpectNear(ZorWBInversePow1(environment, RI{4, 9}, RI{0, 10}, RI{2, 2}), 2, 3);
    ExpectNear(ZorWBInversePow1(environment, RI{4, 9}, RI{0, 100}, RI{0.5, 0.5}), 16, 81);
    ExpectNear(ZorWBInversePow1(environment, RI{-27, -8}, RI{-10, 10}, RI{3, 3}), -3, -2);
    // x^0 = 1 for every base.
    ExpectNear(ZorWBInversePow1(environment, RI{1, 1}, RI{-4, 5}, RI{0, 0}), -4, 5);
    ExpectNear(ZorWBInversePow2(environment, RI{8, 8}, RI{-10, 10}, RI{2, 2}), 3, 3);
    ExpectNear(ZorWBInversePow2(environment, RI{-8, -8}, RI{-10, 10}, RI{-2, -2}), 3, 3);
    ExpectNear(ZorWBInversePow2(environment, RI{4, 4}, RI{-10, 10}, RI{-2, -2}), 2, 2);
    EXPECT_TRUE(IsNil(ZorWBInversePow2(environment, RI{-4, -4}, RI{-10, 10}, RI{-2, -2})));
    EXPECT_TRUE(IsNil(ZorWBInversePow1(environment, RI{-4, -1}, RI{0, 10}, RI{2, 2})));
    EXPECT_EQ(environment.GetError(), 0u);
    ZorWBInversePow2(environment, RI{1, 2}, RI{0, 1}, RI{kNaN, 2});
    EXPECT_EQ(environment.GetError(), 865u);
}

TEST(ZorWBInverseEnumerations, ListsKeepExactlyTheFeasibleElements) {
    ZorWBValue domain, result, other;
    const int elements[] = {-3, -2, 0, 2, 5};
    domain.Set(5, elements);
    const int two[] = {2};
    result.Set(1, two);
    ZorWBIntegerEnum abs = ZorWBInverseAbs(result.GetIntegerEnum(), domain.GetIntegerEnum());
    ASSERT_EQ(abs.GetRep(), ZorWBEnumList);
    ASSERT_EQ(abs.GetSize(), 2);
    EXPECT_EQ(abs.Get(0), -2);
    EXPECT_EQ(abs.Get(1), 2);
    // An interval domain narrows to the hull; any stays any when nothing goes.
    ZorWBIntegerEnum interval(ZorWBEnumInterval);
    interval.SetAsIntegerInterval({-10, 10});
    ZorWBIntegerEnum narrowed = ZorWBInverseAbs(result.GetIntegerEnum(), interval);
    EXPECT_EQ(narrowed.GetRep(), ZorWBEnumInterval);
    EXPECT_EQ(narrowed.GetAsIntegerInterval().low, -2);
    EXPECT_EQ(narrowed.GetAsIntegerInterval().high, 2);
    ZorWBRealEnum any(ZorWBEnumAny);
    EXPECT_TRUE(ZorWBInverseMax(any, any, any).IsAny());
    const double results[] = {1.5, 4.0}, others[] = {1.5, 4.0, 7.5};
    result.Set(2, results);
    other.Set(3, others);
    ZorWBRealEnum between(ZorWBEnumInterval);
    between.SetAsRealInterval({5, 6});
    // max(x, y) with x in [5, 6] is at least 5: never 1.5 or 4.
    EXPECT_TRUE(ZorWBInverseMax(result.GetRealEnum(), between, other.GetRealEnum()).IsNil());
    // min(x, 1.5) = 1.5 for every x of [5, 6].
    ZorWBRealEnum minimum = ZorWBInverseMin(result.GetRealEnum(), between, other.GetRealEnum());
    EXPECT_EQ(minimum.GetAsRealInterval().low, 5.0);
    EXPECT_EQ(minimum.GetAsRealInterval().high, 6.0);
}

TEST(ZorWBInverseValues, PiecewiseInversesMeetTheirDefinitions) {
    ZorWBEnvironment environment(ZorWBLevel::All);
    ZorWBValue wide(RI{-10, 10});
    ExpectNear(RealOf(ZorWBInverseDim1(environment, ZorWBValue(0), wide, ZorWBValue(RI{2, 3}))),
               -10, 3);
    ExpectNear(
        RealOf(ZorWBInverseDim1(environment, ZorWBValue(RI{1, 2}), wide, ZorWBValue(RI{2, 3}))), 3,
        5);
    ExpectNear(
        RealOf(ZorWBInverseDim2(environment, ZorWBValue(RI{1, 2}), wide, ZorWBValue(RI{2, 3}))), 0,
        2);
    ExpectNear(
        RealOf(ZorWBInverseSign1(environment, ZorWBValue(RI{2, 3}), wide, ZorWBValue(RI{1, 2}))),
        -3, 3);
    EXPECT_TRUE(ZorWBIsEmpty(environment, ZorWBInverseSign1(environment, ZorWBValue(RI{-3, -2}),
                                                            wide, ZorWBValue(RI{1, 2}))));
    ExpectNear(
        RealOf(ZorWBInverseSign2(environment, ZorWBValue(RI{2, 3}), wide, ZorWBValue(RI{-3, -2}))),
        0, 10);
    ExpectNear(RealOf(ZorWBInverseSign2(environment, ZorWBValue(RI{-3, -2}), wide,
                                        ZorWBValue(RI{-3, -2}))),
               -10, -1.5e-14);
    // Rounding half away from zero, truncation and floor.
    ExpectNear(RealOf(ZorWBInverseRound(environment, ZorWBValue(2), wide)), 1.5, 2.5);
    ExpectNear(RealOf(ZorWBInverseRound(environment, ZorWBValue(-2), wide)), -2.5, -1.5);
    EXPECT_EQ(RealOf(ZorWBInverseRound(environment, ZorWBValue(-2), wide)).high, -1.5);
    EXPECT_EQ(RealOf(ZorWBInverseRound(environment, ZorWBValue(2), wide)).low, 1.5);
    EXPECT_LT(RealOf(ZorWBInverseRound(environment, ZorWBValue(2), wide)).high, 2.5);
    ExpectNear(RealOf(ZorWBInverseTrunc(environment, ZorWBValue(0), wide)), -1, 1);
    EXPECT_GT(RealOf(ZorWBInverseTrunc(environment, ZorWBValue(0), wide)).low, -1.0);
    ZorWBValue integers(II{-10, 10});
    EXPECT_EQ(ZorWBInverseTrunc(environment, ZorWBValue(0), integers).GetAsIntegerInterval().low,
              0);
    EXPECT_EQ(
        ZorWBInverseFloor(environment, ZorWBValue(RI{2, 4}), integers).GetAsIntegerInterval().high,
        4);
    // Steps: the unit step by default, and a ramp from (0, 0) to (2, 10).
    ExpectNear(RealOf(ZorWBInverseStep(environment, ZorWBValue(1), wide, nullptr)), 0, 10);
    ExpectNear(RealOf(ZorWBInverseStep(environment, ZorWBValue(0), wide, nullptr)), -10, 0);
    EXPECT_LT(RealOf(ZorWBInverseStep(environment, ZorWBValue(0), wide, nullptr)).high, 0.0);
    const double ramp[] = {0, 2, 0, 10};
    ExpectNear(RealOf(ZorWBInverseStep(environment, ZorWBValue(5), wide, ramp)), 1, 1);
    // The two-argument arc tangent.
    ZorWBValue square(RI{-1, 1});
    ExpectNear(RealOf(ZorWBInverseAtan21(environment, ZorWBValue(0.0), square, square)), 0, 0);
    ExpectNear(RealOf(ZorWBInverseAtan22(environment, ZorWBValue(0.0), square, square)), 0, 1);
    ExpectNear(
        RealOf(ZorWBInverseAtan21(environment, ZorWBValue(kPi / 4), wide, ZorWBValue(RI{0, 2}))), 0,
        2);
    ExpectNear(RealOf(ZorWBInverseAtan22(environment, ZorWBValue(kPi), square, square)), -1, 0);
    EXPECT_EQ(environment.GetError(), 0u);
}

TEST(ZorWBInverseValues, ComparisonsNarrowByTheirTruth) {
    ZorWBEnvironment environment(ZorWBLevel::All);
    ZorWBValue x(RI{0, 10}), y(RI{2, 5});
    ExpectNear(RealOf(ZorWBInverseLessEqual1(environment, ZorWBValue(T), x, y)), 0, 5);
    ExpectNear(RealOf(ZorWBInverseLessEqual1(environment, ZorWBValue(F), x, y)), 2, 10);
    ExpectNear(RealOf(ZorWBInverseLessEqual1(environment, ZorWBValue(U), x, y)), 0, 10);
    EXPECT_TRUE(
        ZorWBIsEmpty(environment, ZorWBInverseLessEqual1(environment, ZorWBValue(E), x, y)));
    ExpectNear(RealOf(ZorWBInverseLessEqual2(environment, ZorWBValue(T), x, y)), 2, 10);
    ExpectNear(RealOf(ZorWBInverseLessEqual2(environment, ZorWBValue(F), x, y)), 0, 5);
    ZorWBValue xi(II{0, 10}), yi(II{2, 5});
    EXPECT_EQ(ZorWBInverseLessEqual1(environment, ZorWBValue(F), xi, yi).GetAsIntegerInterval().low,
              3);
    EXPECT_EQ(
        ZorWBInverseLessEqual2(environment, ZorWBValue(F), xi, yi).GetAsIntegerInterval().high, 4);
    ExpectNear(RealOf(ZorWBInverseEqual(environment, ZorWBValue(T), x, ZorWBValue(RI{5, 20}))), 5,
               10);
    ExpectNear(RealOf(ZorWBInverseEqual(environment, ZorWBValue(U), x, y)), 0, 10);
    ExpectNear(RealOf(ZorWBInverseNotEqual(environment, ZorWBValue(F), x, ZorWBValue(RI{5, 20}))),
               5, 10);
    // A false equality removes a single value of y at an end of x.
    ZorWBValue removed = ZorWBInverseEqual(environment, ZorWBValue(F), xi, ZorWBValue(10));
    EXPECT_EQ(removed.GetAsIntegerInterval().high, 9);
    ZorWBValue kept = ZorWBInverseEqual(environment, ZorWBValue(F), xi, yi);
    EXPECT_EQ(kept.GetAsIntegerInterval().high, 10);
    EXPECT_EQ(environment.GetError(), 0u);
}

TEST(ZorWBInverseValues, LogicalInversesNarrowBooleansAndIntegers) {
    ZorWBEnvironment environment(ZorWBLevel::All);
    EXPECT_EQ(
        ZorWBInverseAnd(environment, ZorWBValue(F), ZorWBValue(U), ZorWBValue(T)).GetAsBoolean(),
        F);
    EXPECT_EQ(
        ZorWBInverseAnd(environment, ZorWBValue(T), ZorWBValue(U), ZorWBValue(F)).GetAsBoolean(),
        E);
    EXPECT_EQ(
        ZorWBInverseOr(environment, ZorWBValue(T), ZorWBValue(T), ZorWBValue(0)).GetAsBoolean(), T);
    // An integer operand keeps its non-zero part when it must be true.
    ZorWBValue narrowed =
        ZorWBInverseImplication2(environment, ZorWBValue(T), ZorWBValue(II{0, 4}), ZorWBValue(T));
    EXPECT_EQ(narrowed.GetAsIntegerInterval().low, 1);
    EXPECT_EQ(narrowed.GetAsIntegerInterval().high, 4);
    ZorWBValue zero =
        ZorWBInverseImplication1(environment, ZorWBValue(T), ZorWBValue(II{-3, 0}), ZorWBValue(F));
    EXPECT_EQ(zero.GetAsIntegerInterval().low, 0);
    EXPECT_EQ(zero.GetAsIntegerInterval().high, 0);
    EXPECT_EQ(environment.GetError(), 0u);
}

// Operands the inverses cannot combine leave the domain and the function's
// own code.
TEST(ZorWBInverseValues, UnusableOperandsSetTheFunctionsCode) {
    ZorWBValue real(1.5), boolean(T), undefined, domain(RI{0, 4}), nan(kNaN);
    const double badStep[] = {2, 1, 0, 1};
    struct Case {
        unsigned int code;
        ZorWBValue (*call)(const ZorWBEnvironment&, const ZorWBValue&, const ZorWBValue&,
                           const ZorWBValue&, const ZorWBValue&);
    };
    using V = const ZorWBValue&;
    using Env = const ZorWBEnvironment&;
    const Case cases[] = {
        {860, [](Env e, V r, V d, V, V) { return ZorWBInverseAbs(e, r, d); }},
        {864, [](Env e, V r, V d, V o, V) { return ZorWBInverseMod1(e, r, d, o); }},
        {864, [](Env e, V r, V d, V o, V) { return ZorWBInverseMod2(e, r, d, o); }},
        {865, [](Env e, V r, V d, V o, V) { return ZorWBInversePow1(e, r, d, o); }},
        {865, [](Env e, V r, V d, V o, V) { return ZorWBInversePow2(e, r, d, o); }},
        {88, [](Env e, V r, V d, V, V) { return ZorWBInverseRound(e, r, d); }},
        {88, [](Env e, V r, V d, V, V) { return ZorWBInverseTrunc(e, r, d); }},
        {88, [](Env e, V r, V d, V, V) { return ZorWBInverseFloor(e, r, d); }},
        {88, [](Env e, V r, V d, V, V) { return ZorWBInverseCeil(e, r, d); }},
        {2, [](Env e, V r, V d, V o, V) { return ZorWBInverseMin(e, r, d, o); }},
        {2, [](Env e, V r, V d, V o, V) { return ZorWBInverseMax(e, r, d, o); }},
        {2, [](Env e, V r, V d, V o, V) { return ZorWBInverseDim1(e, r, d, o); }},
        {2, [](Env e, V r, V d, V o, V) { return ZorWBInverseSign2(e, r, d, o); }},
        {2, [](Env e, V r, V d, V o, V) { return ZorWBInverseAtan21(e, r, d, o); }},
        {2, [](Env e, V r, V d, V, V) { return ZorWBInverseStep(e, r, d, nullptr); }},
        {2, [](Env e, V, V d, V o, V) { return ZorWBInverseLessEqual1(e, ZorWBValue(T), d, o); }},
        {2, [](Env e, V, V d, V o, V) { return ZorWBInverseEqual(e, ZorWBValue(T), d, o); }},
    };
    for (const Case& c : cases) {
        for (const ZorWBValue* bad : {&boolean, &undefined, &nan}) {
            ZorWBEnvironment environment(ZorWBLevel::All);
            // The bad operand as the result set and as the other operand.
            ZorWBValue answer = c.call(environment, *bad, domain, *bad, real);
            EXPECT_EQ(environment.GetError(), c.code);
            EXPECT_TRUE(ZorWBIsEqual(environment, answer, domain));
        }
    }
    struct Logical {
        unsigned int code;
        ZorWBValue (*call)(Env, V, V, V);
    } logical[] = {{866, ZorWBInverseAnd},
                   {865, ZorWBInverseOr},
                   {867, ZorWBInverseImplication1},
                   {868, ZorWBInverseImplication2}};
    for (const Logical& c : logical) {
        ZorWBEnvironment environment(ZorWBLevel::All);
        c.call(environment, ZorWBValue(T), real, ZorWBValue(T));
        EXPECT_EQ(environment.GetError(), c.code);
    }
    ZorWBEnvironment environment(ZorWBLevel::All);
    ZorWBInverseStep(environment, ZorWBValue(1), domain, badStep);
    EXPECT_EQ(environment.GetError(), 2u);
    environment.ClearError();
    ZorWBInverseEqual(environment, ZorWBValue(1.5), domain, domain);
    EXPECT_EQ(environment.GetError(), 2u);
    environment.ClearError();
    ZorWBValue divisor = ZorWBInverseMod2(environment, ZorWBValue(1), ZorWBValue(0), ZorWBValue(7));
    EXPECT_EQ(environment.GetError(), 11u);
    EXPECT_EQ(divisor.GetAsInteger(), 0);
}

TEST(ZorWBInverseValues, AnswersKeepTheDomainsKind) {
    ZorWBEnvironment environment(ZorWBLevel::All);
    ZorWBValue three(II{3, 3});
    // A scalar is kept whole, or becomes the empty interval of its numbers.
    EXPECT_EQ(ZorWBInverseAbs(environment, three, ZorWBValue(-3)).GetAsInteger(), -3);
    ZorWBValue none = ZorWBInverseAbs(environment, three, ZorWBValue(2));
    EXPECT_EQ(none.GetType(), ZorWBIntegerIntervalType);
    EXPECT_TRUE(IsNil(none.GetAsIntegerInterval()));
    ZorWBValue half =
        ZorWBInverseAbs(environment, ZorWBValue(0.5), ZorWBValue(ZorWBFraction{-1, 2, 0}));
    EXPECT_EQ(half.GetType(), ZorWBFractionType);
    EXPECT_EQ(ZorWBInverseAbs(environment, ZorWBValue(0.7), ZorWBValue(0.5)).GetType(),
              ZorWBRealIntervalType);
    // An enumeration held as an interval is corrected into a short list.
    ZorWBIntegerEnum interval(ZorWBEnumInterval);
    interval.SetAsIntegerInterval({-100, 100});
    ZorWBValue listed = ZorWBInverseAbs(environment, three, ZorWBValue(interval));
    ASSERT_EQ(listed.GetType(), ZorWBIntegerEnumType);
    EXPECT_EQ(listed.GetIntegerEnum().GetRep(), ZorWBEnumList);
    EXPECT_EQ(listed.GetIntegerEnum().GetSize(), 7);
    // A boolean domain reads as 0 / 1.
    EXPECT_EQ(
        ZorWBInverseMax(environment, ZorWBValue(1), ZorWBValue(U), ZorWBValue(0)).GetAsBoolean(),
        T);
    EXPECT_EQ(environment.GetError(), 0u);
}

// Infinite ends, the infinity markers, the extreme integers and tiny or huge
// magnitudes neither crash nor leave the domain.
TEST(ZorWBInverseIntervals, ExtremeOperandsStayInsideTheDomain) {
    const double L = ZorWBRealLimit, marker = ZorWBRealPlusInfinity;
    const RI reals[] = {{-L, L},       {-marker, marker}, {0, 0}, {-1e-300, 1e-300}, {1e300, L},
                        {-L, -1e-320}, {-7, 1e20},        {3, 3}, {-0.0, -0.0},      {L, -L}};
    const II integers[] = {{-2147483647 - 1, 2147483647}, {-2147483646, 2147483646}, {0, 0},
                           {2147483646, 2147483646},      {-5, 2147483647},          {7, -7}};
    auto inside = [](const RI& answer, const RI& domain) {
        return IsNil(answer) || (answer.low >= domain.low && answer.high <= domain.high);
    };
    auto insideInt = [](const II& answer, const II& domain) {
        return IsNil(answer) || (answer.low >= domain.low && answer.high <= domain.high);
    };
    for (const RI& r : reals) {
        for (const RI& x : reals) {
            for (const RI& y : reals) {
                ZorWBEnvironment environment(ZorWBLevel::All);
                EXPECT_TRUE(inside(ZorWBInverseAbs(r, x), x));
                EXPECT_TRUE(inside(ZorWBInverseMax(r, x, y), x));
                EXPECT_TRUE(inside(ZorWBInverseMin(r, x, y), x));
                EXPECT_TRUE(inside(ZorWBInverseMod1(environment, r, x, y), x));
                EXPECT_TRUE(inside(ZorWBInverseMod2(environment, r, x, y), x));
                EXPECT_TRUE(inside(ZorWBInversePow1(environment, r, x, y), x));
                EXPECT_TRUE(inside(ZorWBInversePow2(environment, r, x, y), x));
                ZorWBValue domain(x), other(y), result(r);
                for (const ZorWBValue& answer :
                     {ZorWBInverseAtan21(environment, result, domain, other),
                      ZorWBInverseSign2(environment, result, domain, other),
                      ZorWBInverseDim1(environment, result, domain, other),
                      ZorWBInverseRound(environment, result, domain),
                      ZorWBInverseStep(environment, result, domain, nullptr)}) {
                    EXPECT_TRUE(inside(answer.GetAsRealInterval(), x));
                }
            }
        }
    }
    for (const II& r : integers) {
        for (const II& x : integers) {
            for (const II& y : integers) {
                ZorWBEnvironment environment(ZorWBLevel::All);
                EXPECT_TRUE(insideInt(ZorWBInverseAbs(r, x), x));
                EXPECT_TRUE(insideInt(ZorWBInverseMax(r, x, y), x));
                EXPECT_TRUE(insideInt(ZorWBInverseMin(r, x, y), x));
                EXPECT_TRUE(insideInt(ZorWBInverseMod1(environment, r, x, y), x));
                EXPECT_TRUE(insideInt(ZorWBInverseMod2(environment, r, x, y), x));
                ZorWBValue answer = ZorWBInverseTrunc(environment, ZorWBValue(r), ZorWBValue(x));
                EXPECT_TRUE(insideInt(answer.GetAsIntegerInterval(), x));
            }
        }
    }
}
