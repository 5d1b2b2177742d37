#ifndef ZORWB_TESTS_INTERVALTESTSUPPORT_H
#define ZORWB_TESTS_INTERVALTESTSUPPORT_H

// Random intervals and checks of interval images for the property tests of
// the interval arithmetic.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <iomanip>
#include <random>
#include <utility>
#include <vector>

#include "values/ZorWBEnvironment.h"
#include "values/ZorWBInterval.h"

using R = ZorWBRealInterval;
using I = ZorWBIntegerInterval;
constexpr double TestPi = 3.141592653589793;
constexpr double TestL = ZorWBRealLimit;

inline bool IsNil(const R& a) {
    return a.low == ZorWBReal_Nil.low && a.high == ZorWBReal_Nil.high;
}
inline bool IsNil(const I& a) {
    return a.low == ZorWBInteger_Nil.low && a.high == ZorWBInteger_Nil.high;
}

// The interval has these bounds, within the tolerance.
template <typename Interval>
::testing::AssertionResult Is(const Interval& a, double low, double high, double tolerance = 0) {
    if (std::fabs(a.low - low) <= tolerance && std::fabs(a.high - high) <= tolerance) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << std::setprecision(17) << "[" << a.low << ", " << a.high
                                         << "] is not [" << low << ", " << high << "]";
}

inline double Slack(double value, double relative) {
    return relative * std::fmax(1.0, std::fabs(value));
}
inline double ClampToLimit(double value) {
    return std::fmin(std::fmax(value, -TestL), TestL);
}

// Random intervals within a span: a share of points, of very narrow
// intervals and of bounds on given special values.
class IntervalGenerator {
  public:
    IntervalGenerator(std::uint64_t seed, double low, double high,
                      std::vector<double> specials = {})
        : _random(seed), _low(low), _high(high), _specials(std::move(specials)) {}

    double Uniform(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(_random);
    }
    int Integer(int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(_random);
    }
    bool Chance(double probability) { return Uniform(0.0, 1.0) < probability; }

    R Next() {
        const double first = Bound();
        const double shape = Uniform(0.0, 1.0);
        const double second = shape > 0.4   ? Bound()
                              : shape > 0.1 ? first + Uniform(0.0, 1e-3) * (_high - _low)
                                            : first;
        return {std::fmin(first, second), std::fmax(first, second)};
    }

    // The bounds and jittered evenly spread points of an interval.
    std::vector<double> Samples(const R& x, int count) {
        std::vector<double> samples = {x.low, x.high};
        for (int i = 1; i < count; ++i) {
            const double t = (i + Uniform(-0.5, 0.5)) / count;
            samples.push_back(std::fmin(x.high, std::fmax(x.low, x.low + t * (x.high - x.low))));
        }
        return samples;
    }

  private:
    double Bound() {
        if (_specials.empty() || !Chance(0.15)) return Uniform(_low, _high);
        return _specials[static_cast<std::size_t>(Integer(0, int(_specials.size()) - 1))];
    }

    std::mt19937_64 _random;
    double _low;
    double _high;
    std::vector<double> _specials;
};

struct ObservedHull {
    double low = HUGE_VAL;
    double high = -HUGE_VAL;
    void Add(double value) {
        low = std::fmin(low, value);
        high = std::fmax(high, value);
    }
    bool IsEmpty() const { return low > high; }
};

// Every observed value lies in the result (sound) and the observed values
// reach its bounds (tight), within a relative slack.
inline ::testing::AssertionResult IsSoundAndTight(const R& result, const ObservedHull& observed,
                                                  double relative) {
    if (observed.IsEmpty()) return ::testing::AssertionFailure() << "nothing observed";
    const double lowSlack = Slack(observed.low, relative);
    const double highSlack = Slack(observed.high, relative);
    const bool sound =
        result.low <= observed.low + lowSlack && observed.high <= result.high + highSlack;
    const bool tight =
        result.low >= observed.low - lowSlack && result.high <= observed.high + highSlack;
    if (sound && tight) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << std::setprecision(17) << (sound ? "not tight" : "not sound") << ": result ["
           << result.low << ", " << result.high << "], observed [" << observed.low << ", "
           << observed.high << "]";
}

using IntegerBinary = I (*)(const ZorWBEnvironment&, const I&, const I&);

// An integer operator against the hull of its values over every pair of
// integers of small random intervals; point answers false where undefined.
inline void ExpectExactIntegerImage(IntegerBinary function,
                                    const std::function<bool(int, int, std::int64_t&)>& point,
                                    std::uint64_t seed, bool divisorWithoutZero = false) {
    IntervalGenerator generator(seed, 0, 1);
    for (int trial = 0; trial < 2000; ++trial) {
        const int aLow = generator.Integer(-25, 25);
        const int bLow = generator.Integer(-25, 25);
        const I a = {aLow, aLow + generator.Integer(0, 12)};
        const I b = {bLow, bLow + generator.Integer(0, 12)};
        if (divisorWithoutZero && b.low <= 0 && b.high >= 0) continue;
        std::int64_t low = INT64_MAX;
        std::int64_t high = INT64_MIN;
        for (int x = a.low; x <= a.high; ++x) {
            for (int y = b.low; y <= b.high; ++y) {
                std::int64_t value = 0;
                if (!point(x, y, value)) continue;
                low = std::min(low, value);
                high = std::max(high, value);
            }
        }
        if (low > high) continue;
        const ZorWBEnvironment environment(0);
        ASSERT_TRUE(Is(function(environment, a, b), double(low), double(high)))
            << "[" << a.low << ", " << a.high << "] with [" << b.low << ", " << b.high << "]";
        ASSERT_EQ(environment.GetError(), 0u);
    }
}

using RealUnary = R (*)(const ZorWBEnvironment&, const R&);

// A function of one real interval on random arguments: within the domain,
// the values at sampled points and at the critical points (where it turns)
// lie in the result and reach its bounds; an argument wholly outside the
// domain, however close to its edge, is a domain error with the empty
// interval.
struct UnaryCheck {
    RealUnary function;
    std::function<double(double)> point;
    double domainLow;
    double domainHigh;
    double spanLow;
    double spanHigh;
    std::vector<double> specials;
    std::function<std::vector<double>(const R&)> criticalPoints;
    double relative = 1e-12;
};

inline void ExpectSoundAndTightUnary(const UnaryCheck& check, std::uint64_t seed,
                                     int trials = 3000) {
    IntervalGenerator generator(seed, check.spanLow, check.spanHigh, check.specials);
    for (int trial = 0; trial < trials; ++trial) {
        const R x = generator.Next();
        const R clipped = {std::fmax(x.low, check.domainLow), std::fmin(x.high, check.domainHigh)};
        const ZorWBEnvironment environment(0);
        const R result = check.function(environment, x);
        if (clipped.low > clipped.high) {
            ASSERT_TRUE(IsNil(result) && environment.GetError() == 1u) << x.low << ", " << x.high;
            continue;
        }
        ASSERT_EQ(environment.GetError(), 0u);
        std::vector<double> points = generator.Samples(clipped, 16);
        if (check.criticalPoints) {
            for (double v : check.criticalPoints(clipped)) {
                if (clipped.low <= v && v <= clipped.high) points.push_back(v);
            }
        }
        ObservedHull observed;
        for (double v : points)
            observed.Add(ClampToLimit(check.point(v)));
        ASSERT_TRUE(IsSoundAndTight(result, observed, check.relative))
            << std::setprecision(17) << "[" << x.low << ", " << x.high << "]";
    }
}

#endif
