#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <vector>

#include "IntervalTestSupport.h"
#include "values/ZorWBIntervalFunctions.h"
#include "values/ZorWBValueFunctions.h"

namespace {

std::int64_t FlooredModulo(std::int64_t a, std::int64_t b) {
    const std::int64_t remainder = a % b;
    return (remainder != 0 && ((remainder < 0) != (b < 0))) ? remainder + b : remainder;
}

double RealModulo(double a, double b) {
    return a - b * std::floor(a / b);
}

// Points of the box, and points on both sides of the lines a = m b where the
// remainder jumps between about b and 0, so that its supremum is approached.
ObservedHull ObserveModulo(IntervalGenerator& generator, const R& a, const R& b) {
    ObservedHull observed;
    const std::vector<double> as = generator.Samples(a, 12);
    const std::vector<double> bs = generator.Samples(b, 12);
    auto add = [&](double x, double y) {
        if (a.low <= x && x <= a.high && b.low <= y && y <= b.high) observed.Add(RealModulo(x, y));
    };
    for (double y : bs) {
        for (double x : as)
            add(x, y);
        const double first = std::ceil(std::fmin(a.low / y, a.high / y));
        for (double m = first; m <= std::floor(std::fmax(a.low / y, a.high / y)); ++m) {
            const double offset = 1e-9 * std::fmax(1.0, std::fabs(m * y));
            add(m * y - offset, y);
            add(m * y + offset, y);
        }
    }
    for (double x : as) {
        for (double m = -200; m <= 200; ++m) {
            add(x, x / m * (1 + 1e-10));
            add(x, x / m * (1 - 1e-10));
        }
    }
    return observed;
}

}  // namespace

TEST(ZorWBIntervalModulo, IntegerImageIsExact) {
    ExpectExactIntegerImage(
        ZorWBMod,
        [](int x, int y, std::int64_t& v) { return y != 0 && (v = FlooredModulo(x, y), true); },
        51);
    // Wide divisors and large dividends, against brute force; beyond 1024
    // divisors the result only has to hold the image.
    IntervalGenerator generator(52, 0, 1);
    for (int trial = 0; trial < 300; ++trial) {
        const int aLow = generator.Integer(-3000000, 3000000);
        const I a = {aLow, aLow + generator.Integer(0, 4)};
        const int top =
            generator.Chance(0.5) ? generator.Integer(2, 900) : generator.Integer(2000, 6000);
        const I b = generator.Chance(0.5) ? I{1, top} : I{-top, -1};
        std::int64_t low = INT64_MAX;
        std::int64_t high = INT64_MIN;
        for (int x = a.low; x <= a.high; ++x) {
            for (int y = b.low; y <= b.high; ++y) {
                low = std::min(low, FlooredModulo(x, y));
                high = std::max(high, FlooredModulo(x, y));
            }
        }
        const ZorWBEnvironment environment(0);
        const I result = ZorWBMod(environment, a, b);
        ASSERT_EQ(environment.GetError(), 0u);
        if (top <= 900) {
            ASSERT_TRUE(Is(result, double(low), double(high))) << a.low << " mod " << top;
        } else {
            ASSERT_TRUE(result.low <= low && high <= result.high && result.high - result.low < top);
        }
    }
}

TEST(ZorWBIntervalModulo, IntegerEdgeCases) {
    const ZorWBEnvironment environment(0);
    EXPECT_TRUE(Is(ZorWBMod(environment, I{7, 7}, I{0, 3}), 0, 1));  // 0 left out
    EXPECT_TRUE(Is(ZorWBMod(environment, I{7, 7}, I{-3, -3}), -2, -2));
    EXPECT_TRUE(Is(ZorWBMod(environment, I{-7, -7}, I{3, 3}), 2, 2));
    EXPECT_TRUE(Is(ZorWBMod(environment, ZorWBInteger_Any, I{3, 3}), 0, 2));
    EXPECT_TRUE(Is(ZorWBMod(environment, I{5, 9}, I{-3, 3}), -2, 2));
    EXPECT_TRUE(Is(ZorWBMod(environment, I{INT_MIN, INT_MIN}, I{INT_MIN, INT_MIN}), 0, 0));
    EXPECT_TRUE(Is(ZorWBMod(environment, I{7, 7}, I{2, 2000000000}), 0, 7));
    EXPECT_TRUE(Is(ZorWBMod(environment, I{-7, -7}, I{8, 2000000000}), 1, 1999999993));
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
        // The supremum is approached to within the offsets used above.
        const double slack = 1e-7 * std::fmax(std::fabs(b.low), std::fabs(b.high));
        ASSERT_TRUE(result.low <= observed.low + 1e-12 && observed.high - 1e-12 <= result.high &&
                    result.low >= observed.low - slack && result.high <= observed.high + slack)
            << "[" << a.low << ", " << a.high << "] mod [" << b.low << ", " << b.high << "]";
    }
}

TEST(ZorWBIntervalModulo, RealEdgeCases) {
    const ZorWBEnvironment environment(0);
    const std::vector<std::tuple<R, R, double, double>> cases = {
        {{5.5, 5.5}, {2, 2}, 1.5, 1.5},
        {{1, 3}, {2, 2}, 0, 2},
        {{-1, -0.5}, {2, 2}, 1, 1.5},
        {{1, 2}, {-3, -3}, -2, -1},
        {{0.5, 0.7}, {1e-10, 1}, 0, 0.7},
        {{7, 7}, {2, 3}, 0, 7.0 / 3.0},
        {{1, 1.5}, {0, 2}, 0, 1.5},
        {{-3, 3}, {4, 5}, 0, 5},
        {ZorWBReal_Any, {3, 3}, 0, 3},
        // The remainder that a - b floor(a / b) gives in doubles.
        {{0.3, 0.3}, {0.1, 0.1}, RealModulo(0.3, 0.1), RealModulo(0.3, 0.1)},
        // A quotient beyond 2^52: the exact remainder, in the divisor's range.
        {{-1.96154140198989e23, -1.96154140198989e23},
         {-4.909, -4.909},
         std::fmod(-1.96154140198989e23, -4.909),
         std::fmod(-1.96154140198989e23, -4.909)},
        // Dividends across 0 whose quotients underflow: both sides of 0 count.
        {{-42.75, 2.6831747008687296e-312}, {-23639499997184, -23639499997184}, -23639499997184, 0},
        {{-1e-312, 42.75}, {23639499997184, 23639499997184}, 0, 23639499997184},
    };
    for (const auto& [a, b, low, high] : cases) {
        EXPECT_TRUE(Is(ZorWBMod(environment, a, b), low, high, 1e-15)) << a.low << " mod " << b.low;
    }
    EXPECT_EQ(environment.GetError(), 0u);
    // The value function gives the exact remainder of single numbers, also
    // where the quotient overflows.
    ZorWBValue tiny = ZorWBMod(environment, ZorWBValue(-2.60400390625), ZorWBValue(1e-309));
    EXPECT_GE(tiny.GetAsReal(), 0.0);
    EXPECT_LT(tiny.GetAsReal(), 1e-309);
    ZorWBValue huge = ZorWBMod(environment, ZorWBValue(-1.96e23), ZorWBValue(-4.909));
    EXPECT_LE(huge.GetAsReal(), 0.0);
    EXPECT_GT(huge.GetAsReal(), -4.909);
    EXPECT_EQ(environment.GetError(), 0u);
    for (R divisor : {R{0, 0}, R{-1e-40, 1e-40}}) {
        const ZorWBEnvironment zero(0);
        EXPECT_TRUE(IsNil(ZorWBMod(zero, R{1, 2}, divisor)));
        EXPECT_EQ(zero.GetError(), 1u);
    }
}
