#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

#include "IntervalTestSupport.h"
#include "values/ZorWBIntervalFunctions.h"

namespace {

const double Pi = TestPi;
const double TwoPi = 2 * TestPi;

// The points of x where phase + k pi, for whole k, falls.
std::vector<double> MultiplesOfPi(const R& x, double phase) {
    std::vector<double> points;
    for (double k = std::ceil((x.low - phase) / Pi); k * Pi + phase <= x.high; ++k) {
        points.push_back(k * Pi + phase);
        if (points.size() > 8) break;
    }
    return points;
}

using InverseFunction = R (*)(const ZorWBEnvironment&, const R&, const R&);

// An inverse trigonometric function: its principal value, the other
// solutions of f(t) = v next to a principal one, and the period.
struct InverseCheck {
    InverseFunction function;
    std::function<double(double)> forward;
    std::function<double(double)> principal;
    std::function<std::vector<double>(double)> solutionsWithinPeriod;
    double period;
    double spanLow;
    double spanHigh;
};

// Checks the inverse against every solution within the limits (and the
// principal values), restricted to random ranges. The bounds of the range
// and the limits are reached when they are solutions themselves.
void ExpectInverseSoundAndTight(const InverseCheck& check, std::uint64_t seed) {
    IntervalGenerator generator(seed, check.spanLow, check.spanHigh, {-1.0, 0.0, 0.5, 1.0});
    IntervalGenerator ranges(seed + 1, -8, 8, {0.0, Pi, -Pi, Pi / 2, -Pi / 2, TwoPi});
    for (int trial = 0; trial < 2000; ++trial) {
        const R x = generator.Next();
        const R clipped = {std::fmax(x.low, -1.0), std::fmin(x.high, 1.0)};
        const R domain = check.period == Pi ? x : clipped;
        if (domain.low > domain.high) continue;
        const double lower = ranges.Chance(0.7) ? -TwoPi : ranges.Uniform(-15, 0);
        const double upper = ranges.Chance(0.7) ? TwoPi : ranges.Uniform(0, 15);
        const R principalRange = {check.principal(check.period == Pi ? -TestL : -1.0),
                                  check.principal(check.period == Pi ? TestL : 1.0)};
        const double pick = ranges.Uniform(0, 1);
        const R range = pick < 0.3 ? R{std::fmin(principalRange.low, principalRange.high),
                                       std::fmax(principalRange.low, principalRange.high)}
                                   : (pick < 0.45 ? ZorWBReal_Any : ranges.Next());
        ZorWBEnvironment environment(0);
        environment.SetTrigonometricLimits(lower, upper);
        const R result = check.function(environment, x, range);
        ASSERT_EQ(environment.GetError(), 0u);

        const double p1 = check.principal(domain.low);
        const double p2 = check.principal(domain.high);
        const R principalImage = {std::fmin(p1, p2), std::fmax(p1, p2)};
        auto isCandidate = [&](double t) {
            const bool allowed =
                (lower <= t && t <= upper) || (principalImage.low <= t && t <= principalImage.high);
            return allowed && range.low <= t && t <= range.high;
        };
        ObservedHull observed;
        for (double v : generator.Samples(domain, 16)) {
            for (double base : check.solutionsWithinPeriod(v)) {
                for (int k = -6; k <= 6; ++k) {
                    const double t = base + k * check.period;
                    if (isCandidate(t)) observed.Add(t);
                }
            }
        }
        for (double t : {range.low, range.high, lower, upper}) {
            const double value = check.forward(t);
            const double slack = 1e-15 * std::fmax(1.0, std::fabs(value));
            if (isCandidate(t) && domain.low - slack <= value && value <= domain.high + slack) {
                observed.Add(t);
            }
        }
        if (observed.IsEmpty()) {
            ASSERT_TRUE(IsNil(result) || result.high - result.low < 1e-9);
            continue;
        }
        ASSERT_TRUE(IsSoundAndTight(result, observed, 1e-9))
            << "x [" << x.low << ", " << x.high << "] range [" << range.low << ", " << range.high
            << "] limits [" << lower << ", " << upper << "]";
    }
}

// Whether the ray from the origin at angle t meets the box.
bool RayMeetsBox(double t, const R& y, const R& x) {
    double from = 0.0;
    double to = HUGE_VAL;
    const double directions[] = {std::cos(t), std::sin(t)};
    const R slabs[] = {x, y};
    for (int i = 0; i < 2; ++i) {
        if (std::fabs(directions[i]) < 1e-15) {
            if (slabs[i].low > 1e-12 || slabs[i].high < -1e-12) return false;
            continue;
        }
        const double a = slabs[i].low / directions[i];
        const double b = slabs[i].high / directions[i];
        from = std::fmax(from, std::fmin(a, b));
        to = std::fmin(to, std::fmax(a, b));
    }
    return from <= to * (1 + 1e-12) + 1e-12;
}

}  // namespace

TEST(ZorWBIntervalTrigonometric, SineAndCosineAreSoundAndTight) {
    const double limit = 1e9;
    const std::vector<double> specials = {0.0, Pi / 2, Pi, -Pi, 3 * Pi / 2};
    ExpectSoundAndTightUnary({ZorWBCos, [](double v) { return std::cos(v); }, -limit, limit, -20,
                              20, specials, [](const R& x) { return MultiplesOfPi(x, 0.0); }},
                             71);
    ExpectSoundAndTightUnary({ZorWBSin, [](double v) { return std::sin(v); }, -limit, limit, -20,
                              20, specials, [](const R& x) { return MultiplesOfPi(x, Pi / 2); }},
                             72);
    // Far from 0 the quadrants still fall right.
    ExpectSoundAndTightUnary({ZorWBCos,
                              [](double v) { return std::cos(v); },
                              -limit,
                              limit,
                              -1e6,
                              1e6,
                              {},
                              [](const R& x) { return MultiplesOfPi(x, 0.0); },
                              1e-9},
                             73);
    ExpectSoundAndTightUnary({ZorWBSin,
                              [](double v) { return std::sin(v); },
                              -limit,
                              limit,
                              -3e9,
                              3e9,
                              {},
                              [](const R& x) { return MultiplesOfPi(x, Pi / 2); },
                              1e-6},
                             74, 1000);
}

TEST(ZorWBIntervalTrigonometric, CosineDocumentedCases) {
    const ZorWBEnvironment environment(0);
    EXPECT_TRUE(Is(ZorWBCos(environment, R{0, 7}), -1, 1, 0));
    EXPECT_TRUE(Is(ZorWBCos(environment, R{0.1, 0.2}), std::cos(0.2), std::cos(0.1), 0));
    EXPECT_TRUE(Is(ZorWBCos(environment, R{-0.1, 0.1}), std::cos(0.1), 1, 0));
    EXPECT_TRUE(Is(ZorWBCos(environment, R{3, 3.5}), -1, std::cos(3.5), 0));
    EXPECT_TRUE(Is(ZorWBCos(environment, R{0.1, 0.1 + TwoPi - 0.01}), -1, 1, 0));
    EXPECT_TRUE(Is(ZorWBSin(environment, R{1, 2}), std::sin(1), 1, 0));
    EXPECT_TRUE(Is(ZorWBSin(environment, R{-2, -1}), -1, std::sin(-1), 0));
    EXPECT_TRUE(Is(ZorWBCos(environment, ZorWBReal_Any), -1, 1, 0));
    EXPECT_EQ(environment.GetError(), 0u);
    const ZorWBEnvironment far(0);
    EXPECT_TRUE(IsNil(ZorWBCos(far, R{2e9, 3e9})));
    EXPECT_EQ(far.GetError(), 1u);
}

TEST(ZorWBIntervalTrigonometric, TangentIsTheWholeLineExactlyAcrossAPole) {
    IntervalGenerator generator(75, -10, 10, {0.0, Pi / 2, -Pi / 2});
    for (int trial = 0; trial < 4000; ++trial) {
        const R x = generator.Next();
        const ZorWBEnvironment environment(0);
        const R result = ZorWBTan(environment, x);
        ASSERT_EQ(environment.GetError(), 0u);
        const bool crossesPole =
            x.high - x.low >= Pi || !MultiplesOfPi({x.low - 1e-12, x.high + 1e-12}, Pi / 2).empty();
        if (ZorWBIsInfinite(result)) {
            ASSERT_TRUE(crossesPole) << x.low << ", " << x.high;
            continue;
        }
        // No pole lies inside an interval with a bounded image.
        ASSERT_TRUE(MultiplesOfPi({x.low + 1e-9, x.high - 1e-9}, Pi / 2).empty())
            << x.low << ", " << x.high;
        ObservedHull observed;
        for (double v : generator.Samples(x, 16))
            observed.Add(ClampToLimit(std::tan(v)));
        ASSERT_TRUE(IsSoundAndTight(result, observed, 1e-12)) << x.low << ", " << x.high;
    }
    const ZorWBEnvironment environment(0);
    EXPECT_TRUE(Is(ZorWBTan(environment, R{-Pi / 4, Pi / 4}), -1, 1, 1e-15));
    EXPECT_TRUE(ZorWBIsInfinite(ZorWBTan(environment, R{1, 2})));
    EXPECT_TRUE(ZorWBIsInfinite(ZorWBTan(environment, R{0, 3.2})));
    EXPECT_TRUE(Is(ZorWBTan(environment, R{2, 4}), std::tan(2), std::tan(4), 0));
}

TEST(ZorWBIntervalInverseTrigonometric, BranchesWithinLimitsAndRangeAreSoundAndTight) {
    ExpectInverseSoundAndTight(
        {ZorWBAsin, [](double t) { return std::sin(t); }, [](double v) { return std::asin(v); },
         [](double v) {
             return std::vector<double>{std::asin(v), Pi - std::asin(v)};
         },
         TwoPi, -1.2, 1.2},
        81);
    ExpectInverseSoundAndTight(
        {ZorWBAcos, [](double t) { return std::cos(t); }, [](double v) { return std::acos(v); },
         [](double v) {
             return std::vector<double>{std::acos(v), -std::acos(v)};
         },
         TwoPi, -1.2, 1.2},
        83);
    ExpectInverseSoundAndTight(
        {ZorWBAtan, [](double t) { return std::tan(t); }, [](double v) { return std::atan(v); },
         [](double v) { return std::vector<double>{std::atan(v)}; }, Pi, -20, 20},
        85);
}

TEST(ZorWBIntervalInverseTrigonometric, PrincipalValuesAndOtherBranches) {
    ZorWBEnvironment environment(0);
    const R principalAcos = {0, Pi};
    EXPECT_TRUE(Is(ZorWBAcos(environment, R{0.5, 1}, principalAcos), 0, Pi / 3, 1e-15));
    EXPECT_TRUE(Is(ZorWBAcos(environment, R{-3, 3}, principalAcos), 0, Pi, 1e-15));
    EXPECT_TRUE(
        Is(ZorWBAcos(environment, R{0.5, 0.5}, R{-TwoPi, TwoPi}), -5 * Pi / 3, 5 * Pi / 3, 1e-14));
    EXPECT_TRUE(Is(ZorWBAcos(environment, R{0.5, 0.5}, R{3, 7.5}), 5 * Pi / 3, 5 * Pi / 3, 1e-14));
    EXPECT_TRUE(Is(ZorWBAsin(environment, R{1, 1}, R{-Pi / 2, Pi / 2}), Pi / 2, Pi / 2, 1e-15));
    EXPECT_TRUE(Is(ZorWBAsin(environment, R{0.5, 0.5}, R{0, 3}), Pi / 6, 5 * Pi / 6, 1e-14));
    EXPECT_TRUE(Is(ZorWBAtan(environment, R{1, 1}, R{-Pi / 2, Pi / 2}), Pi / 4, Pi / 4, 1e-15));
    EXPECT_TRUE(Is(ZorWBAtan(environment, R{1, 1}, R{0, 4}), Pi / 4, 5 * Pi / 4, 1e-14));
    EXPECT_TRUE(Is(ZorWBAtan(environment, R{1, 1}, ZorWBReal_Any), -7 * Pi / 4, 5 * Pi / 4, 1e-14));
    EXPECT_TRUE(IsNil(ZorWBAsin(environment, R{0.5, 0.5}, R{3, 4})));
    EXPECT_EQ(environment.GetError(), 0u);

    // Wider limits let farther branches in; the principal value always counts.
    environment.SetTrigonometricLimits(-4 * Pi, 4 * Pi);
    EXPECT_TRUE(Is(ZorWBAcos(environment, R{0.5, 0.5}, R{3, 7.5}), 5 * Pi / 3, 7 * Pi / 3, 1e-14));
    environment.SetTrigonometricLimits(0, 0.1);
    EXPECT_TRUE(Is(ZorWBAcos(environment, R{0.5, 0.5}, principalAcos), Pi / 3, Pi / 3, 1e-15));
    environment.SetTrigonometricLimits(-1e300, 1e300);
    EXPECT_TRUE(Is(ZorWBAtan(environment, R{0, 0}, R{-100, 100}), -31 * Pi, 31 * Pi, 1e-12));
    EXPECT_EQ(environment.GetError(), 0u);

    const ZorWBEnvironment outside(0);
    EXPECT_TRUE(IsNil(ZorWBAsin(outside, R{2, 3}, R{-Pi, Pi})));
    EXPECT_EQ(outside.GetError(), 1u);
    const ZorWBEnvironment emptyRange(0);
    EXPECT_TRUE(IsNil(ZorWBAcos(emptyRange, R{0, 1}, ZorWBReal_Nil)));
    EXPECT_EQ(emptyRange.GetError(), 1u);
}

TEST(ZorWBIntervalInverseTrigonometric, Atan2IsSoundAndTight) {
    IntervalGenerator boxes(91, -5, 5, {0.0, 1.0, -1.0});
    IntervalGenerator ranges(92, -8, 8, {0.0, Pi, -Pi, TwoPi});
    for (int trial = 0; trial < 3000; ++trial) {
        const R y = boxes.Next();
        const R x = boxes.Next();
        // The principal range gives the principal image; others every branch.
        const bool principalOnly = ranges.Chance(0.5);
        const R range = principalOnly ? R{-Pi, Pi} : ranges.Next();
        const ZorWBEnvironment environment(0);
        const R result = ZorWBAtan2(environment, y, x, range);
        ASSERT_EQ(environment.GetError(), 0u);
        const bool holdsOrigin = x.low <= 0 && 0 <= x.high && y.low <= 0 && 0 <= y.high;
        auto isCandidate = [&](double t) {
            return -TwoPi <= t && t <= TwoPi && range.low <= t && t <= range.high;
        };
        ObservedHull observed;
        std::vector<double> ys = boxes.Samples(y, 10);
        // Where the box meets the negative x axis, the angle jumps from pi to -pi.
        if (y.low < 0 && 0 <= y.high) ys.insert(ys.end(), {0.0, -1e-300});
        for (double yv : ys) {
            for (double xv : boxes.Samples(x, 10)) {
                if (yv == 0 && xv == 0) continue;
                for (int k = principalOnly ? 0 : -2; k <= (principalOnly ? 0 : 2); ++k) {
                    const double t = std::atan2(yv, xv) + k * TwoPi;
                    if (isCandidate(t)) observed.Add(t);
                }
            }
        }
        if (holdsOrigin && principalOnly) {
            observed.Add(-Pi);
            observed.Add(Pi);
        }
        for (double t : {range.low, range.high, -TwoPi, TwoPi, -Pi, Pi}) {
            if (!principalOnly && isCandidate(t) && (holdsOrigin || RayMeetsBox(t, y, x))) {
                observed.Add(t);
            }
        }
        if (observed.IsEmpty()) {
            ASSERT_TRUE(IsNil(result) || result.high - result.low < 1e-9);
            continue;
        }
        ASSERT_TRUE(IsSoundAndTight(result, observed, 1e-9))
            << "y [" << y.low << ", " << y.high << "] x [" << x.low << ", " << x.high << "] range ["
            << range.low << ", " << range.high << "]";
    }
}

TEST(ZorWBIntervalInverseTrigonometric, Atan2Cases) {
    ZorWBEnvironment environment(0);
    const R principal = {-Pi, Pi};
    EXPECT_TRUE(Is(ZorWBAtan2(environment, R{1, 1}, R{1, 1}, principal), Pi / 4, Pi / 4, 1e-15));
    EXPECT_TRUE(
        Is(ZorWBAtan2(environment, R{1, 2}, R{-1, 1}, principal), Pi / 4, 3 * Pi / 4, 1e-15));
    // A box holding the origin has every direction.
    EXPECT_TRUE(Is(ZorWBAtan2(environment, R{-1, 1}, R{0, 1}, principal), -Pi, Pi, 1e-15));
    EXPECT_TRUE(Is(ZorWBAtan2(environment, R{0, 0}, R{0, 0}, ZorWBReal_Any), -TwoPi, TwoPi, 1e-15));
    // Across the negative x axis: both ends of the principal range, or the
    // arc in one piece beyond pi.
    EXPECT_TRUE(Is(ZorWBAtan2(environment, R{-1, 1}, R{-2, -1}, principal), -Pi, Pi, 1e-15));
    EXPECT_TRUE(Is(ZorWBAtan2(environment, R{-1, 1}, R{-2, -1}, R{0, TwoPi}), 3 * Pi / 4,
                   5 * Pi / 4, 1e-14));
    EXPECT_TRUE(Is(ZorWBAtan2(environment, R{-1, 0}, R{-2, -1}, R{-Pi, 0}), -Pi, std::atan2(-1, -1),
                   1e-15));
    EXPECT_TRUE(
        Is(ZorWBAtan2(environment, R{0, 1}, R{-2, -1}, principal), std::atan2(1, -1), Pi, 1e-15));
    EXPECT_TRUE(IsNil(ZorWBAtan2(environment, R{1, 2}, R{-1, 1}, R{TwoPi - 1, TwoPi + 3})));
    environment.SetTrigonometricLimits(-4 * Pi, 4 * Pi);
    EXPECT_TRUE(Is(ZorWBAtan2(environment, R{1, 2}, R{-1, 1}, R{TwoPi - 1, TwoPi + 3}), 9 * Pi / 4,
                   11 * Pi / 4, 1e-14));
    EXPECT_EQ(environment.GetError(), 0u);
}
