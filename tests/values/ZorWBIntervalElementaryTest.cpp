#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <vector>

#include "IntervalTestSupport.h"
#include "values/ZorWBIntervalFunctions.h"

namespace {

using R = ZorWBRealInterval;

std::vector<double> Zero(const R&) {
    return {0.0};
}

void ExpectInterval(const R& result, double low, double high, double tolerance = 0.0) {
    EXPECT_NEAR(result.low, low, tolerance);
    EXPECT_NEAR(result.high, high, tolerance);
}

// x ^ y on the clipped base: 0 ^ 0 = 1 and 0 to a negative power is the
// infinite end.
double PowerPoint(double x, double y) {
    if (x == 0.0) return y > 0.0 ? 0.0 : (y == 0.0 ? 1.0 : TestL);
    return ClampToLimit(std::pow(x, y));
}

double RootPoint(double v, int degree) {
    return v < 0.0 ? -std::pow(-v, 1.0 / degree) : std::pow(v, 1.0 / degree);
}

// Whether t is a degree-th root of a value in x.
bool IsRootOf(double t, int degree, const R& x) {
    const double power = std::pow(t, degree);
    const double slack = 1e-12 * std::fabs(power);
    return x.low - slack <= power && power <= x.high + slack;
}

}  // namespace

TEST(ZorWBIntervalElementary, MonotoneFunctionsAreSoundAndTight) {
    const double L = TestL;
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

TEST(ZorWBIntervalElementary, DomainsClipSilentlyAndOverflowStaysAtTheLimit) {
    const double L = TestL;
    const ZorWBEnvironment environment(0);
    ExpectInterval(ZorWBLn(environment, R{-1, 1}), std::log(1 / L), 0.0);
    ExpectInterval(ZorWBLog(environment, R{-1, 100}), std::log10(1 / L), 2.0);
    ExpectInterval(ZorWBSqrt(environment, R{-4, 9}), 0, 3);
    ExpectInterval(ZorWBSqrt(environment, R{-4, -5e-15}), 0, 0);
    ExpectInterval(ZorWBExp(environment, R{1000, 1001}), L, L);
    ExpectInterval(ZorWBExp(environment, R{-L, 0}), 0, 1);
    ExpectInterval(ZorWBCosh(environment, R{-1000, 1}), 1, L);
    ExpectInterval(ZorWBAtanh(environment, R{1, 2}), L, L);
    ExpectInterval(ZorWBAtanh(environment, R{-3, 3}), -L, L);
    ExpectInterval(ZorWBAcosh(environment, R{0, 1}), 0, 0);
    ExpectInterval(ZorWBRound(environment, R{-2.5, 0.5}), -3, 1);
    ExpectInterval(ZorWBTrunc(environment, R{-2.7, 2.7}), -2, 2);
    EXPECT_EQ(environment.GetError(), 0u);

    const ZorWBEnvironment negative(0);
    EXPECT_TRUE(IsNil(ZorWBLn(negative, R{-2, -1})));
    EXPECT_EQ(negative.GetError(), 1u);
    const ZorWBEnvironment below(0);
    EXPECT_TRUE(IsNil(ZorWBAcosh(below, R{-5, 0.5})));
    EXPECT_EQ(below.GetError(), 1u);
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
            ASSERT_TRUE(IsNil(result));
            ASSERT_EQ(environment.GetError(), 1u);
            continue;
        }
        ASSERT_EQ(environment.GetError(), 0u);
        ObservedHull observed;
        for (double x : bases.Samples({std::fmax(base.low, 0.0), base.high}, 8)) {
            for (double y : exponents.Samples(exponent, 8))
                observed.Add(PowerPoint(x, y));
        }
        ASSERT_TRUE(IsSoundAndTight(result, observed, 1e-12))
            << "[" << base.low << ", " << base.high << "] ^ [" << exponent.low << ", "
            << exponent.high << "]";
    }
}

TEST(ZorWBIntervalPower, RealExponentEdgeCases) {
    const double L = TestL;
    const ZorWBEnvironment environment(0);
    ExpectInterval(ZorWBPow(environment, R{0, 0}, R{-2, -1}), L, L);
    ExpectInterval(ZorWBPow(environment, R{0, 2}, R{-1, -1}), 0.5, L);
    ExpectInterval(ZorWBPow(environment, R{0, 0}, R{0, 0}), 1, 1);
    ExpectInterval(ZorWBPow(environment, R{0, 0}, R{0, 3}), 0, 1);
    ExpectInterval(ZorWBPow(environment, R{-5, 4}, R{0.5, 0.5}), 0, 2);
    ExpectInterval(ZorWBPow(environment, R{10, 10}, R{100, 100}), L, L);
    EXPECT_EQ(environment.GetError(), 0u);
    const ZorWBEnvironment negative(0);
    EXPECT_TRUE(IsNil(ZorWBPow(negative, R{-3, -1}, R{1, 2})));
    EXPECT_EQ(negative.GetError(), 1u);
    const ZorWBEnvironment emptyExponent(0);
    EXPECT_TRUE(IsNil(ZorWBPow(emptyExponent, R{1, 2}, ZorWBReal_Nil)));
    EXPECT_EQ(emptyExponent.GetError(), 1u);
}

TEST(ZorWBIntervalPower, IntegerExponentIsSoundAndTight) {
    IntervalGenerator bases(63, -5, 5, {0.0, 1.0, -1.0});
    for (int trial = 0; trial < 4000; ++trial) {
        const R base = bases.Next();
        const int exponent = bases.Integer(-7, 7);
        const ZorWBEnvironment environment(0);
        const R result = ZorWBPow(environment, base, exponent);
        ASSERT_EQ(environment.GetError(), 0u);
        if (exponent < 0 && base.low <= 0.0 && 0.0 <= base.high) {
            ASSERT_TRUE(ZorWBIsInfinite(result));
            continue;
        }
        ObservedHull observed;
        std::vector<double> samples = bases.Samples(base, 16);
        if (base.low < 0.0 && 0.0 < base.high) samples.push_back(0.0);
        for (double x : samples)
            observed.Add(ClampToLimit(std::pow(x, exponent)));
        ASSERT_TRUE(IsSoundAndTight(result, observed, 1e-12))
            << "[" << base.low << ", " << base.high << "] ^ " << exponent;
    }
}

TEST(ZorWBIntervalPower, IntegerExponentEdgeCases) {
    const ZorWBEnvironment environment(0);
    ExpectInterval(ZorWBPow(environment, R{-1, 1}, 0), 1, 1);
    ExpectInterval(ZorWBPow(environment, R{0, 0}, 0), 1, 1);
    ExpectInterval(ZorWBPow(environment, R{-2, 3}, 2), 0, 9);
    ExpectInterval(ZorWBPow(environment, R{-2, 3}, 3), -8, 27);
    ExpectInterval(ZorWBPow(environment, R{-2, -1}, -1), -1, -0.5);
    ExpectInterval(ZorWBPow(environment, R{-2, -1}, -2), 0.25, 1);
    ExpectInterval(ZorWBPow(environment, R{10, 10}, 40), TestL, TestL);
    EXPECT_TRUE(ZorWBIsInfinite(ZorWBPow(environment, R{-1, 1}, -1)));
    EXPECT_TRUE(ZorWBIsInfinite(ZorWBPow(environment, R{0, 0}, -2)));
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
        const ZorWBEnvironment positiveEnvironment(0);
        const ZorWBEnvironment negativeEnvironment(0);
        const R positive = ZorWBRootPositive(positiveEnvironment, x, degree);
        const R negative = ZorWBRootNegative(negativeEnvironment, x, degree);
        if (positiveDomain.low > positiveDomain.high) {
            ASSERT_TRUE(IsNil(positive));
            ASSERT_EQ(positiveEnvironment.GetError(), 1u);
        } else {
            ObservedHull observed;
            for (double v : generator.Samples(positiveDomain, 12)) {
                observed.Add(RootPoint(v, degree));
            }
            ASSERT_TRUE(IsSoundAndTight(positive, observed, 1e-12)) << degree;
        }
        if (negativeDomain.low <= negativeDomain.high) {
            ObservedHull observed;
            for (double v : generator.Samples(negativeDomain, 12)) {
                observed.Add(even ? -RootPoint(v, degree) : RootPoint(v, degree));
            }
            ASSERT_TRUE(IsSoundAndTight(negative, observed, 1e-12)) << degree;
        }

        // The full root within a random range: every root of a sampled value
        // in the range is in the result, whose bounds are roots or range bounds.
        const R range = ranges.Chance(0.2) ? ZorWBReal_Any : ranges.Next();
        const ZorWBEnvironment full(0);
        const R result = ZorWBRoot(full, x, degree, range);
        const R domain = even ? positiveDomain : x;
        if (domain.low > domain.high) {
            ASSERT_TRUE(IsNil(result));
            continue;
        }
        ObservedHull observed;
        for (double v : generator.Samples(domain, 24)) {
            for (double root : {RootPoint(v, degree), -RootPoint(v, degree)}) {
                if ((even || root == RootPoint(v, degree)) && range.low <= root &&
                    root <= range.high) {
                    observed.Add(root);
                }
            }
        }
        for (double bound : {range.low, range.high}) {
            if (IsRootOf(bound, degree, domain)) observed.Add(bound);
        }
        if (observed.IsEmpty()) {
            ASSERT_TRUE(IsNil(result) || result.high - result.low < 1e-9);
            continue;
        }
        ASSERT_TRUE(IsSoundAndTight(result, observed, 1e-9))
            << "[" << x.low << ", " << x.high << "] degree " << degree << " in [" << range.low
            << ", " << range.high << "]";
    }
}

TEST(ZorWBIntervalRoot, EdgeCases) {
    const ZorWBEnvironment environment(0);
    ExpectInterval(ZorWBRoot(environment, R{8, 8}, 3, ZorWBReal_Any), 2, 2);
    ExpectInterval(ZorWBRoot(environment, R{-8, -8}, 3, ZorWBReal_Any), -2, -2);
    ExpectInterval(ZorWBRoot(environment, R{16, 16}, 4, ZorWBReal_Any), -2, 2);
    ExpectInterval(ZorWBRoot(environment, R{16, 16}, 4, R{0, 10}), 2, 2);
    ExpectInterval(ZorWBRoot(environment, R{4, 9}, 2, R{-10, -2.5}), -3, -2.5);
    ExpectInterval(ZorWBRoot(environment, R{-4, 9}, 2, R{-1, 1}), -1, 1);
    ExpectInterval(ZorWBRoot(environment, R{32, 243}, 5, ZorWBReal_Any), 2, 3);
    // Extended precision tells the correctly rounded roots.
    const R wide = ZorWBRoot(environment, R{1e-300, 1e200}, 7, ZorWBReal_Any);
    EXPECT_EQ(wide.low, static_cast<double>(std::pow(1e-300L, 1.0L / 7)));
    EXPECT_EQ(wide.high, static_cast<double>(std::pow(1e200L, 1.0L / 7)));
    // A root that misses the range by a rounding error lands on its bound.
    ExpectInterval(ZorWBRoot(environment, R{2, 2}, 2, R{0, 1.4142135623730949}), 1.4142135623730949,
                   1.4142135623730949);
    EXPECT_TRUE(IsNil(ZorWBRoot(environment, R{1, 4}, 2, R{5, 6})));
    ExpectInterval(ZorWBRootPositive(environment, R{16, 81}, 4), 2, 3);
    ExpectInterval(ZorWBRootNegative(environment, R{16, 81}, 4), -3, -2);
    ExpectInterval(ZorWBRootNegative(environment, R{-8, 27}, 3), -2, 0);
    ExpectInterval(ZorWBRootPositive(environment, R{-8, 27}, 3), 0, 3);
    ExpectInterval(ZorWBRootPositive(environment, R{2, 2}, INT_MAX), 1, 1, 1e-9);
    EXPECT_EQ(environment.GetError(), 0u);

    for (int degree : {0, -2, INT_MIN}) {
        const ZorWBEnvironment bad(0);
        EXPECT_TRUE(IsNil(ZorWBRoot(bad, R{1, 2}, degree, ZorWBReal_Any)));
        EXPECT_TRUE(IsNil(ZorWBRootPositive(bad, R{1, 2}, degree)));
        EXPECT_TRUE(IsNil(ZorWBRootNegative(bad, R{1, 2}, degree)));
        EXPECT_EQ(bad.GetError(), 1u);
    }
    const ZorWBEnvironment outside(0);
    EXPECT_TRUE(IsNil(ZorWBRootPositive(outside, R{-8, -1}, 3)));
    EXPECT_EQ(outside.GetError(), 1u);
    const ZorWBEnvironment evenNegative(0);
    EXPECT_TRUE(IsNil(ZorWBRoot(evenNegative, R{-8, -1}, 2, ZorWBReal_Any)));
    EXPECT_EQ(evenNegative.GetError(), 1u);
}
