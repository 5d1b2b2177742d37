#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <vector>

#include "IntervalTestSupport.h"
#include "values/ZorWBIntervalFunctions.h"

namespace {

using R = ZorWBRealInterval;
using I = ZorWBIntegerInterval;

std::int64_t FlooredModulo(std::int64_t a, std::int64_t b) {
    const std::int64_t remainder = a % b;
    return (remainder != 0 && ((remainder < 0) != (b < 0))) ? remainder + b : remainder;
}

double RealModulo(double a, double b) {
    return a - b * std::floor(a / b);
}

// Points of the box and points next to the lines a = m b, where the
// remainder jumps from about b to 0, so that the supremum is approached.
ObservedHull ObserveModulo(IntervalGenerator& generator, const R& a, const R& b) {
    ObservedHull observed;
    std::vector<double> as = generator.Samples(a, 12);
    std::vector<double> bs = generator.Samples(b, 12);
    for (double x : as) {
        for (double y : bs)
            observed.Add(RealModulo(x, y));
    }
    for (double y : bs) {
        const double first = std::ceil(std::fmin(a.low / y, a.high / y));
        const double last = std::floor(std::fmax(a.low / y, a.high / y));
        for (double m = first; m <= last; ++m) {
            const double offset = 1e-9 * std::fmax(1.0, std::fabs(m * y));
            for (double x : {m * y - offset, m * y + offset}) {
                if (a.low <= x && x <= a.high) observed.Add(RealModulo(x, y));
            }
        }
    }
    for (double x : as) {
        for (double m = -200; m <= 200; ++m) {
            if (m == 0) continue;
            const double line = x / m;
            for (double y : {line * (1 + 1e-10), line * (1 - 1e-10)}) {
                if (b.low <= y && y <= b.high) observed.Add(RealModulo(x, y));
            }
        }
    }
    return observed;
}

}  // namespace

TEST(ZorWBIntervalModulo, IntegerImageIsExactOnSmallIntervals) {
    ExpectExactIntegerImage(
        ZorWBMod,
        [](int x, int y, std::int64_t& v) {
            if (y == 0) return false;
            v = FlooredModulo(x, y);
            return true;
        },
        51);
}

TEST(ZorWBIntervalModulo, IntegerImageIsExactForWideDivisorsAndSoundBeyond) {
    IntervalGenerator generator(52, 0, 1);
    for (int trial = 0; trial < 300; ++trial) {
        const int aLow = generator.Integer(-3000000, 3000000);
        const I a = {aLow, aLow + generator.Integer(0, 4)};
        const int divisorHigh =
            generator.Chance(0.5) ? generator.Integer(2, 900) : generator.Integer(2000, 6000);
        const I b = generator.Chance(0.5) ? I{1, divisorHigh} : I{-divisorHigh, -1};
        std::vector<std::int64_t> values;
        for (int x = a.low; x <= a.high; ++x) {
            for (int y = b.low; y <= b.high; ++y)
                values.push_back(FlooredModulo(x, y));
        }
        const I expected = IntegerHull(values);
        const ZorWBEnvironment environment(0);
        const I result = ZorWBMod(environment, a, b);
        ASSERT_EQ(environment.GetError(), 0u);
        if (divisorHigh <= 900) {
            ASSERT_EQ(result.low, expected.low) << a.low << " mod " << b.low << ".." << b.high;
            ASSERT_EQ(result.high, expected.high) << a.low << " mod " << b.low << ".." << b.high;
        } else {
            ASSERT_LE(result.low, expected.low);
            ASSERT_GE(result.high, expected.high);
            ASSERT_LE(result.high - result.low, divisorHigh - 1);
        }
    }
}

TEST(ZorWBIntervalModulo, IntegerEdgeCases) {
    const ZorWBEnvironment environment(0);
    EXPECT_TRUE(ZorWBIsEqual(ZorWBMod(environment, I{7, 7}, I{0, 3}), I{0, 1}));
    EXPECT_TRUE(ZorWBIsEqual(ZorWBMod(environment, I{7, 7}, I{-3, -3}), I{-2, -2}));
    EXPECT_TRUE(ZorWBIsEqual(ZorWBMod(environment, I{-7, -7}, I{3, 3}), I{2, 2}));
    EXPECT_TRUE(ZorWBIsEqual(ZorWBMod(environment, ZorWBInteger_Any, I{3, 3}), I{0, 2}));
    EXPECT_TRUE(ZorWBIsEqual(ZorWBMod(environment, I{5, 9}, I{-3, 3}), I{-2, 2}));
    EXPECT_TRUE(
        ZorWBIsEqual(ZorWBMod(environment, I{INT_MIN, INT_MIN}, I{INT_MIN, INT_MIN}), I{0, 0}));
    EXPECT_TRUE(ZorWBIsEqual(ZorWBMod(environment, I{7, 7}, I{2, 2000000000}), I{0, 7}));
    EXPECT_TRUE(ZorWBIsEqual(ZorWBMod(environment, I{-7, -7}, I{8, 2000000000}), I{1, 1999999993}));
    EXPECT_EQ(environment.GetError(), 0u);

    const ZorWBEnvironment zero(0);
    EXPECT_TRUE(IsNil(ZorWBMod(zero, I{1, 5}, I{0, 0})));
    EXPECT_EQ(zero.GetError(), 1u);
}

TEST(ZorWBIntervalModulo, RealImageIsSoundAndTight) {
    IntervalGenerator dividends(53, -50, 50, {0.0, 2.0, -2.0});
    IntervalGenerator divisors(54, 0.5, 20, {0.5, 1.0, 2.0});
    for (int trial = 0; trial < 1500; ++trial) {
        const R a = dividends.Next();
        R b = divisors.Next();
        if (divisors.Chance(0.4)) b = {-b.high, -b.low};
        const ZorWBEnvironment environment(0);
        const R result = ZorWBMod(environment, a, b);
        ASSERT_EQ(environment.GetError(), 0u);
        const ObservedHull observed = ObserveModulo(dividends, a, b);
        // The supremum is only approached, to within the offsets used above.
        const double slack = 1e-7 * std::fmax(std::fabs(b.low), std::fabs(b.high));
        ASSERT_LE(result.low, observed.low + 1e-12);
        ASSERT_GE(result.high, observed.high - 1e-12);
        ASSERT_GE(result.low, observed.low - slack)
            << "[" << a.low << ", " << a.high << "] mod [" << b.low << ", " << b.high << "]";
        ASSERT_LE(result.high, observed.high + slack)
            << "[" << a.low << ", " << a.high << "] mod [" << b.low << ", " << b.high << "]";
    }
}

TEST(ZorWBIntervalModulo, RealEdgeCases) {
    const ZorWBEnvironment environment(0);
    auto expect = [&](R a, R b, double low, double high) {
        const R result = ZorWBMod(environment, a, b);
        EXPECT_NEAR(result.low, low, 1e-15) << a.low << " mod " << b.low;
        EXPECT_NEAR(result.high, high, 1e-15) << a.low << " mod " << b.low;
    };
    expect({5.5, 5.5}, {2, 2}, 1.5, 1.5);
    expect({1, 3}, {2, 2}, 0, 2);
    expect({-1, -0.5}, {2, 2}, 1, 1.5);
    expect({1, 2}, {-3, -3}, -2, -1);
    expect({0.5, 0.7}, {1e-10, 1}, 0, 0.7);
    expect({7, 7}, {2, 3}, 0, 7.0 / 3.0);
    expect({1, 1.5}, {0, 2}, 0, 1.5);
    expect({-3, 3}, {4, 5}, 0, 5);
    // The remainder is the one a - b floor(a / b) gives in doubles.
    expect({0.3, 0.3}, {0.1, 0.1}, RealModulo(0.3, 0.1), RealModulo(0.3, 0.1));
    EXPECT_TRUE(ZorWBIsEqual(ZorWBMod(environment, ZorWBReal_Any, R{3, 3}), R{0, 3}));
    EXPECT_EQ(environment.GetError(), 0u);

    for (R divisor : {R{0, 0}, R{-1e-40, 1e-40}}) {
        const ZorWBEnvironment zero(0);
        EXPECT_TRUE(IsNil(ZorWBMod(zero, R{1, 2}, divisor)));
        EXPECT_EQ(zero.GetError(), 1u);
    }
}
