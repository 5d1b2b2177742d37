#ifndef ZORWB_TESTS_INTERVALTESTSUPPORT_H
#define ZORWB_TESTS_INTERVALTESTSUPPORT_H

// Generators of random intervals and checks of interval images used by the
// property tests of the interval arithmetic.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <iomanip>
#include <random>
#include <vector>

#include "values/ZorWBEnvironment.h"
#include "values/ZorWBInterval.h"

constexpr double TestPi = 3.141592653589793;
constexpr double TestL = ZorWBRealLimit;

inline bool IsNil(const ZorWBRealInterval& a) {
    return a.low == ZorWBReal_Nil.low && a.high == ZorWBReal_Nil.high;
}
inline bool IsNil(const ZorWBIntegerInterval& a) {
    return a.low == ZorWBInteger_Nil.low && a.high == ZorWBInteger_Nil.high;
}

// The slack allowed between a point value and an interval bound.
inline double Slack(double value, double relative) {
    return relative * std::fmax(1.0, std::fabs(value));
}

inline double ClampToLimit(double value) {
    return std::fmin(std::fmax(value, -TestL), TestL);
}

// Random intervals inside a span, with a share of points, very narrow
// intervals and bounds placed on the given special values.
class IntervalGenerator {
  public:
    IntervalGenerator(std::uint64_t seed, double spanLow, double spanHigh,
                      std::initializer_list<double> specials = {})
        : _random(seed), _spanLow(spanLow), _spanHigh(spanHigh), _specials(specials) {}

    double Uniform(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(_random);
    }
    int Integer(int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(_random);
    }
    bool Chance(double probability) { return Uniform(0.0, 1.0) < probability; }

    double Bound() {
        if (!_specials.empty() && Chance(0.15)) {
            return _specials[static_cast<std::size_t>(Integer(0, int(_specials.size()) - 1))];
        }
        return Uniform(_spanLow, _spanHigh);
    }

    ZorWBRealInterval Next() {
        const double first = Bound();
        const double shape = Uniform(0.0, 1.0);
        double second = first;
        if (shape > 0.4) {
            second = Bound();
        } else if (shape > 0.1) {
            second = first + Uniform(0.0, 1e-3) * (_spanHigh - _spanLow);
        }
        return {std::fmin(first, second), std::fmax(first, second)};
    }

    // The bounds and evenly spread points of an interval, jittered.
    std::vector<double> Samples(const ZorWBRealInterval& x, int count) {
        std::vector<double> samples = {x.low, x.high};
        for (int i = 1; i < count; ++i) {
            const double t = (i + Uniform(-0.5, 0.5)) / count;
            samples.push_back(std::fmin(x.high, std::fmax(x.low, x.low + t * (x.high - x.low))));
        }
        return samples;
    }

  private:
    std::mt19937_64 _random;
    double _spanLow;
    double _spanHigh;
    std::vector<double> _specials;
};

// The hull of observed point values.
struct ObservedHull {
    double low = HUGE_VAL;
    double high = -HUGE_VAL;
    void Add(double value) {
        low = std::fmin(low, value);
        high = std::fmax(high, value);
    }
    bool IsEmpty() const { return low > high; }
};

inline ::testing::AssertionResult Holds(const ZorWBRealInterval& result, double value,
                                        double relative) {
    if (result.low - Slack(value, relative) <= value &&
        value <= result.high + Slack(value, relative)) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << std::setprecision(17) << value << " lies outside ["
                                         << result.low << ", " << result.high << "]";
}

// Every observed value lies in the result, and the result's bounds are
// reached by observed values.
inline ::testing::AssertionResult IsSoundAndTight(const ZorWBRealInterval& result,
                                                  const ObservedHull& observed, double relative) {
    if (observed.IsEmpty()) return ::testing::AssertionFailure() << "nothing observed";
    const bool sound = result.low <= observed.low + Slack(observed.low, relative) &&
                       observed.high <= result.high + Slack(observed.high, relative);
    const bool tight = result.low >= observed.low - Slack(observed.low, relative) &&
                       result.high <= observed.high + Slack(observed.high, relative);
    if (sound && tight) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << std::setprecision(17) << (sound ? "not tight" : "not sound") << ": result ["
           << result.low << ", " << result.high << "], observed [" << observed.low << ", "
           << observed.high << "]";
}

inline ZorWBIntegerInterval IntegerHull(const std::vector<std::int64_t>& values) {
    std::int64_t low = values.front();
    std::int64_t high = values.front();
    for (std::int64_t v : values) {
        low = std::min(low, v);
        high = std::max(high, v);
    }
    return {static_cast<int>(low), static_cast<int>(high)};
}

// Checks an integer operator against the hull of its values on every pair
// of integers of small random intervals.
using IntegerBinary = ZorWBIntegerInterval (*)(const ZorWBEnvironment&, const ZorWBIntegerInterval&,
                                               const ZorWBIntegerInterval&);

inline void ExpectExactIntegerImage(IntegerBinary function,
                                    const std::function<bool(int, int, std::int64_t&)>& point,
                                    std::uint64_t seed, bool divisorWithoutZero = false) {
    IntervalGenerator generator(seed, 0, 1);
    for (int trial = 0; trial < 2000; ++trial) {
        const int aLow = generator.Integer(-25, 25);
        const int bLow = generator.Integer(-25, 25);
        const ZorWBIntegerInterval a = {aLow, aLow + generator.Integer(0, 12)};
        const ZorWBIntegerInterval b = {bLow, bLow + generator.Integer(0, 12)};
        if (divisorWithoutZero && b.low <= 0 && b.high >= 0) continue;
        std::vector<std::int64_t> values;
        for (int x = a.low; x <= a.high; ++x) {
            for (int y = b.low; y <= b.high; ++y) {
                std::int64_t value = 0;
                if (point(x, y, value)) values.push_back(value);
            }
        }
        const ZorWBEnvironment environment(0);
        const ZorWBIntegerInterval result = function(environment, a, b);
        if (values.empty()) continue;
        const ZorWBIntegerInterval expected = IntegerHull(values);
        ASSERT_EQ(result.low, expected.low)
            << "[" << a.low << ", " << a.high << "] with [" << b.low << ", " << b.high << "]";
        ASSERT_EQ(result.high, expected.high)
            << "[" << a.low << ", " << a.high << "] with [" << b.low << ", " << b.high << "]";
        ASSERT_EQ(environment.GetError(), 0u);
    }
}

#endif
