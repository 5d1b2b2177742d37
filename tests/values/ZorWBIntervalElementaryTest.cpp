#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <vector>

#include "IntervalTestSupport.h"
#include "values/ZorWBIntervalFunctions.h"

namespace {

const double L = TestL;

std::vector<double> Zero(const R&) {
    return {0.0};
}

// x ^ y on the clipped base: 0 ^ 0 = 1 and 0 to a negative power is the
// infinite end.
double PowerPoint(double x, double y) {
    if (x == 0.0) return y > 0.0 ? 0.0 : (y == 0.0 ? 1.0 : L);
    return ClampToLimit(std::pow(x, y));
}

double RootPoint(double v, int degree) {
    return std::copysign(std::pow(std::fabs(v), 1.0 / degree), v);
}

}  // namespace

TEST(ZorWBIntervalElementary, MonotoneFunctionsAreSoundAndTight) {
    const std::vector<UnaryCheck> checks = {
        {ZorWBSqrt, [](double v) { return std::sqrt(v); }, 0, L, -10, 100, {0.0, 4.0}, nullptr},
        {ZorWBExp, [](double v) { return std::exp(v); }, -L, L, -800, 800, {0.0, 88.7}, nullptr},
        {ZorWBLn, [](double v) { return std::log(v); }, 1 / L, L, -5, 50, {0.0, 1.0}, nullptr},
        {ZorWBLog, [](double v) { return std::log10(v); }, 1 / L, L, -5, 50, {0.0, 1.0}, nullptr},
        {ZorWBSinh, [](double v) { return std::sinh(v); }, -L, L, -800, 800, {0.0}, nullptr},
        {ZorWBCosh, [](double v) { return std::cosh(v); }, -L, L, -800, 800, {0.0}, Zero},
        {ZorWBTanh, [](double v) { return std::tanh(v); }, -L, L, -30, 30, {0.0}, nullptr},
        {ZorWBAsinh, [](double v) { return std::asinh(v); }, -L, L, -1e6, 1e6, {0.0}, nullptr},
        {ZorWBAcosh, [](double v) { return std::acosh(v); }, 1, L, -2, 100, {1.0}, nullptr},
        {ZorWBAtanh, [](double v) { return std::atanh(v); }, -1, 1, -1.5, 1.5, {-1, 0, 1}, nullptr},
        {ZorWBCeil, [](double v) { return std::ceil(v); }, -L, L, -10, 10, {0.5, -2}, nullptr},
        {ZorWBFloor, [](double v) { return std::floor(v); }, -L, L, -10, 10, {0.5, -2}, nullptr},
        {ZorWBRound, [](double v) { return std::round(v); }, -L, L, -10, 10, {0.5, -2.5}, nullptr},
        {ZorWBTrunc, [](double v) { return std::trunc(v); }, -L, L, -10, 10, {-0.5, 2}, nullptr},
    };
    for (std::size_t i = 0; i < checks.size(); ++i) {
        SCOPED_TRACE(i);
        ExpectSoundAndTightUnary(checks[i], 100 + i);
    }
}

// Clipping takes the part of the argument inside the domain and never
// widens it: an argument wholly beyond the domain's edge, however close, is
// a domain error, even where the emptiness tolerance would call the clipped
// interval a point.
TEST(ZorWBIntervalElementary, ArgumentsBeyondTheDomainAreNotWidenedOntoItsEdge) {
    using Function = R (*)(const ZorWBEnvironment&, const R&);
    const std::pair<Function, R> outside[] = {
        {ZorWBLn, R{0, 0}},
        {ZorWBLn, R{-1, 1e-50}},
        {ZorWBLog, R{0, 0}},
        {ZorWBLog, R{-2, 1e-40}},
        {ZorWBSqrt, R{-2, -1e-15}},
        {ZorWBAcosh, R{0, 1 - 1e-15}},
        {ZorWBAtanh, R{1 + 1e-15, 2}},
        {ZorWBAtanh, R{-3, -1 - 1e-15}},
    };
    for (const auto& [function, x] : outside) {
        const ZorWBEnvironment environment(0);
        EXPECT_TRUE(IsNil(function(environment, x))) << x.low << ", " << x.high;
        EXPECT_EQ(environment.GetError(), 1u) << x.low << ", " << x.high;
    }
    const ZorWBEnvironment root(0);
    EXPECT_TRUE(IsNil(ZorWBRootPositive(root, R{-1, -1e-15}, 2)));
    EXPECT_EQ(root.GetError(), 1u);
    const ZorWBEnvironment power(0);
    EXPECT_TRUE(IsNil(ZorWBPow(power, R{-1, -1e-15}, R{0.5, 0.5})));
    EXPECT_EQ(power.GetError(), 1u);
    const ZorWBEnvironment trigonometric(0);
    EXPECT_TRUE(IsNil(ZorWBAcos(trigonometric, R{1 + 1e-15, 1 + 1e-15}, R{0, 4})));
    EXPECT_EQ(trigonometric.GetError(), 1u);
    // Touching the edge exactly is inside.
    const ZorWBEnvironment edge(0);
    EXPECT_TRUE(Is(ZorWBSqrt(edge, R{-2, 0}), 0, 0));
    EXPECT_TRUE(Is(ZorWBAcosh(edge, R{0, 1}), 0, 0));
    EXPECT_TRUE(Is(ZorWBLn(edge, R{-1, 1 / L}), std::log(1 / L), std::log(1 / L)));
    EXPECT_EQ(edge.GetError(), 0u);
}

TEST(ZorWBIntervalElementary, DomainsClipSilentlyAndOverflowStaysAtTheLimit) {
    const ZorWBEnvironment environment(0);
    EXPECT_TRUE(Is(ZorWBLn(environment, R{-1, 1}), std::log(1 / L), 0.0));
    EXPECT_TRUE(Is(ZorWBLog(environment, R{-1, 100}), std::log10(1 / L), 2.0));
    EXPECT_TRUE(Is(ZorWBSqrt(environment, R{-4, 9}), 0, 3));
    EXPECT_TRUE(Is(ZorWBExp(environment, R{1000, 1001}), L, L));
    EXPECT_TRUE(Is(ZorWBCosh(environment, R{-1000, 1}), 1, L));
    EXPECT_TRUE(Is(ZorWBAtanh(environment, R{1, 2}), L, L));
    EXPECT_TRUE(Is(ZorWBAtanh(environment, R{-3, 3}), -L, L));
    EXPECT_TRUE(Is(ZorWBAcosh(environment, R{0, 1}), 0, 0));
    EXPECT_TRUE(Is(ZorWBRound(environment, R{-2.5, 0.5}), -3, 1));
    EXPECT_EQ(environment.GetError(), 0u);
    const ZorWBEnvironment negative(0);
    EXPECT_TRUE(IsNil(ZorWBLn(negative, R{-2, -1})));
    EXPECT_EQ(negative.GetError(), 1u);
}

TEST(ZorWBIntervalPower, RealExponentIsSoundAndTight) {
    IntervalGenerator bases(61, -1, 10, {0.0, 1.0});
    IntervalGenerator exponents(62, -4, 4, {0.0, 1.0, -1.0});
    for (int trial = 0; trial < 3000; ++trial) {
        const R base = bases.Next();
        const R exponent = exponents.Next();
        const ZorWBEnvironment environment(0);
        const R result = ZorWBPow(environment, base, exponent);
        if (base.high < 0.0) {
            ASSERT_TRUE(IsNil(result) && environment.GetError() == 1u);
            continue;
        }
        ObservedHull observed;
        for (double x : bases.Samples({std::fmax(base.low, 0.0), base.high}, 8)) {
            for (double y : exponents.Samples(exponent, 8))
                observed.Add(PowerPoint(x, y));
        }
        ASSERT_TRUE(IsSoundAndTight(result, observed, 1e-12))
            << "[" << base.low << ", " << base.high << "] ^ [" << exponent.low << ", "
            << exponent.high << "]";
    }
    const ZorWBEnvironment environment(0);
    EXPECT_TRUE(Is(ZorWBPow(environment, R{0, 0}, R{-2, -1}), L, L));
    EXPECT_TRUE(Is(ZorWBPow(environment, R{0, 2}, R{-1, -1}), 0.5, L));
    EXPECT_TRUE(Is(ZorWBPow(environment, R{0, 0}, R{0, 0}), 1, 1));
    EXPECT_TRUE(Is(ZorWBPow(environment, R{-5, 4}, R{0.5, 0.5}), 0, 2));
    EXPECT_TRUE(Is(ZorWBPow(environment, R{10, 10}, R{100, 100}), L, L));
    EXPECT_EQ(environment.GetError(), 0u);
}

TEST(ZorWBIntervalPower, IntegerExponentIsSoundAndTight) {
    IntervalGenerator bases(63, -5, 5, {0.0, 1.0, -1.0});
    for (int trial = 0; trial < 4000; ++trial) {
        const R base = bases.Next();
        const int exponent = bases.Integer(-7, 7);
        const ZorWBEnvironment environment(0);
        const R result = ZorWBPow(environment, base, exponent);
        ASSERT_EQ(environment.GetError(), 0u);
        std::vector<double> samples = bases.Samples(base, 16);
        // 0 is reached from the sides the base holds (from both when it is
        // 0 alone): a negative power is infinite there, with the sign of the
        // side's values.
        samples.erase(std::remove(samples.begin(), samples.end(), 0.0), samples.end());
        const bool holdsZero = base.low <= 0.0 && 0.0 <= base.high;
        const bool zeroAlone = base.low == base.high;
        if (holdsZero && (base.low < 0.0 || zeroAlone)) samples.push_back(-0.0);
        if (holdsZero && (base.high > 0.0 || zeroAlone)) samples.push_back(0.0);
        ObservedHull observed;
        for (double x : samples)
            observed.Add(ClampToLimit(std::pow(x, exponent)));
        ASSERT_TRUE(IsSoundAndTight(result, observed, 1e-12))
            << "[" << base.low << ", " << base.high << "] ^ " << exponent;
    }
    const ZorWBEnvironment environment(0);
    EXPECT_TRUE(Is(ZorWBPow(environment, R{-1, 1}, 0), 1, 1));
    EXPECT_TRUE(Is(ZorWBPow(environment, R{0, 0}, 0), 1, 1));
    EXPECT_TRUE(Is(ZorWBPow(environment, R{-2, 3}, 2), 0, 9));
    EXPECT_TRUE(Is(ZorWBPow(environment, R{-2, -1}, -2), 0.25, 1));
    EXPECT_TRUE(Is(ZorWBPow(environment, R{10, 10}, 40), L, L));
    // A negative power of a base that holds or touches 0: unbounded on the
    // sides the base reaches 0 from, as with a real exponent.
    EXPECT_TRUE(Is(ZorWBPow(environment, R{0, 2}, -1), 0.5, L));
    EXPECT_TRUE(Is(ZorWBPow(environment, R{-1, 1}, -2), 1, L));
    EXPECT_TRUE(Is(ZorWBPow(environment, R{-2, 0}, -1), -L, -0.5));
    EXPECT_TRUE(Is(ZorWBPow(environment, R{-2, 0}, -2), 0.25, L));
    EXPECT_TRUE(Is(ZorWBPow(environment, R{-1, 1}, -1), -L, L));
    EXPECT_TRUE(Is(ZorWBPow(environment, R{0, 0}, -2), L, L));
    EXPECT_TRUE(Is(ZorWBPow(environment, R{0, 0}, -1), -L, L));
    EXPECT_EQ(environment.GetError(), 0u);
}

TEST(ZorWBIntervalRoot, BranchesAreSoundAndTight) {
    IntervalGenerator generator(64, -10, 100, {0.0, 1.0, 16.0});
    IntervalGenerator ranges(65, -6, 6, {0.0, 2.0, -2.0});
    for (int trial = 0; trial < 4000; ++trial) {
        const R x = generator.Next();
        const int degree = generator.Integer(1, 7);
        const bool even = degree % 2 == 0;
        const R positiveDomain = {std::fmax(x.low, 0.0), x.high};
        const R negativeDomain = even ? positiveDomain : R{x.low, std::fmin(x.high, 0.0)};
        const R domain = even ? positiveDomain : x;
        const ZorWBEnvironment environment(0);
        const R positive = ZorWBRootPositive(environment, x, degree);
        if (positiveDomain.low > positiveDomain.high) {
            ASSERT_TRUE(IsNil(positive) && environment.GetError() == 1u);
            if (even) continue;
        } else {
            ObservedHull observed;
            for (double v : generator.Samples(positiveDomain, 12))
                observed.Add(RootPoint(v, degree));
            ASSERT_TRUE(IsSoundAndTight(positive, observed, 1e-12)) << degree;
        }
        if (negativeDomain.low <= negativeDomain.high) {
            ObservedHull observed;
            for (double v : generator.Samples(negativeDomain, 12)) {
                observed.Add(even ? -RootPoint(v, degree) : RootPoint(v, degree));
            }
            const R negative = ZorWBRootNegative(ZorWBEnvironment(0), x, degree);
            ASSERT_TRUE(IsSoundAndTight(negative, observed, 1e-12)) << degree;
        }
        // Within a random range: every root of a sampled value in the range is
        // in the result, whose bounds are roots or bounds of the range.
        const R range = ranges.Chance(0.2) ? ZorWBReal_Any : ranges.Next();
        const R result = ZorWBRoot(ZorWBEnvironment(0), x, degree, range);
        ObservedHull observed;
        for (double v : generator.Samples(domain, 24)) {
            const double root = RootPoint(v, degree);
            for (double candidate : {root, -root}) {
                if ((even || candidate == root) && range.low <= candidate &&
                    candidate <= range.high) {
                    observed.Add(candidate);
                }
            }
        }
        for (double bound : {range.low, range.high}) {
            const double power = std::pow(bound, degree);
            const double slack = 1e-12 * std::fabs(power);
            if (domain.low - slack <= power && power <= domain.high + slack) observed.Add(bound);
        }
        if (observed.IsEmpty()) {
            ASSERT_TRUE(IsNil(result) || result.high - result.low < 1e-9);
        } else {
            ASSERT_TRUE(IsSoundAndTight(result, observed, 1e-9))
                << "[" << x.low << ", " << x.high << "] degree " << degree << " in [" << range.low
                << ", " << range.high << "]";
        }
    }
}

TEST(ZorWBIntervalRoot, EdgeCases) {
    const ZorWBEnvironment environment(0);
    EXPECT_TRUE(Is(ZorWBRoot(environment, R{-8, -8}, 3, ZorWBReal_Any), -2, -2));
    EXPECT_TRUE(Is(ZorWBRoot(environment, R{16, 16}, 4, ZorWBReal_Any), -2, 2));
    EXPECT_TRUE(Is(ZorWBRoot(environment, R{16, 16}, 4, R{0, 10}), 2, 2));
    EXPECT_TRUE(Is(ZorWBRoot(environment, R{4, 9}, 2, R{-10, -2.5}), -3, -2.5));
    EXPECT_TRUE(
        Is(ZorWBRoot(environment, R{27, 243}, 3, ZorWBReal_Any), 3, std::cbrt(243.0), 1e-14));
    EXPECT_TRUE(
        Is(ZorWBRootPositive(environment, R{3.375, 81}, 4), std::pow(3.375, 0.25), 3, 1e-15));
    EXPECT_TRUE(Is(ZorWBRootNegative(environment, R{-8, 27}, 3), -2, 0));
    // Extended precision tells the correctly rounded roots.
    EXPECT_TRUE(Is(ZorWBRoot(environment, R{1e-300, 1e200}, 7, ZorWBReal_Any),
                   double(std::pow(1e-300L, 1.0L / 7)), double(std::pow(1e200L, 1.0L / 7))));
    // A root missing the range by a rounding error lands on its bound.
    const double below = 1.4142135623730949;
    EXPECT_TRUE(Is(ZorWBRoot(environment, R{2, 2}, 2, R{0, below}), below, below));
    EXPECT_TRUE(IsNil(ZorWBRoot(environment, R{1, 4}, 2, R{5, 6})));
    EXPECT_TRUE(Is(ZorWBRootPositive(environment, R{2, 2}, INT_MAX), 1, 1, 1e-9));
    EXPECT_EQ(environment.GetError(), 0u);
    for (int degree : {0, -2, INT_MIN}) {
        const ZorWBEnvironment bad(0);
        EXPECT_TRUE(IsNil(ZorWBRoot(bad, R{1, 2}, degree, ZorWBReal_Any)));
        EXPECT_TRUE(IsNil(ZorWBRootPositive(bad, R{1, 2}, degree)));
        EXPECT_TRUE(IsNil(ZorWBRootNegative(bad, R{1, 2}, degree)));
        EXPECT_EQ(bad.GetError(), 1u);
    }
}
