// Every backward operator checked on the set it states: for sampled points
// of the domains whose image (in long double) lies in the result set, the
// narrowed domains must still hold them; and narrowing never widens.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "SolverTestSupport.h"
#include "solver/ZorWBProjections.h"

namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();
namespace P = ZorWBProjection;

using UnaryProjection = std::function<bool(const ZorWBRoundedInterval&, ZorWBRoundedInterval&)>;

struct UnaryCase {
    const char* name;
    UnaryProjection project;
    std::function<long double(long double)> exact;
    std::function<bool(double)> defined;
    double scale;
};

bool Everywhere(double) {
    return true;
}

const UnaryCase UnaryCases[] = {
    {"negate", P::Negate, [](long double x) { return -x; }, Everywhere, 10},
    {"scale by -0.3", [](auto& z, auto& x) { return P::Scale(z, x, -0.3); },
     [](long double x) { return static_cast<long double>(-0.3) * x; }, Everywhere, 10},
    {"scale by 7", [](auto& z, auto& x) { return P::Scale(z, x, 7.0); },
     [](long double x) { return 7.0L * x; }, Everywhere, 10},
    {"square", [](auto& z, auto& x) { return P::Power(z, x, 2); },
     [](long double x) { return x * x; }, Everywhere, 10},
    {"cube", [](auto& z, auto& x) { return P::Power(z, x, 3); },
     [](long double x) { return x * x * x; }, Everywhere, 10},
    {"power -2", [](auto& z, auto& x) { return P::Power(z, x, -2); },
     [](long double x) { return 1 / (x * x); }, [](double x) { return x != 0; }, 10},
    {"power -3", [](auto& z, auto& x) { return P::Power(z, x, -3); },
     [](long double x) { return 1 / (x * x * x); }, [](double x) { return x != 0; }, 10},
    {"square root", [](auto& z, auto& x) { return P::Root(z, x, 2); },
     [](long double x) { return sqrtl(x); }, [](double x) { return x >= 0; }, 10},
    {"cube root", [](auto& z, auto& x) { return P::Root(z, x, 3); },
     [](long double x) { return cbrtl(x); }, Everywhere, 10},
    {"exp", P::Exponential, [](long double x) { return expl(x); }, Everywhere, 5},
    {"ln", P::Logarithm, [](long double x) { return logl(x); }, [](double x) { return x > 0; }, 10},
    {"log10", P::Logarithm10, [](long double x) { return log10l(x); },
     [](double x) { return x > 0; }, 10},
    {"sin", P::Sine, [](long double x) { return sinl(x); }, Everywhere, 30},
    {"cos", P::Cosine, [](long double x) { return cosl(x); }, Everywhere, 30},
    {"tan", P::Tangent, [](long double x) { return tanl(x); }, Everywhere, 10},
    {"asin", P::ArcSine, [](long double x) { return asinl(x); },
     [](double x) { return std::fabs(x) <= 1; }, 1.5},
    {"acos", P::ArcCosine, [](long double x) { return acosl(x); },
     [](double x) { return std::fabs(x) <= 1; }, 1.5},
    {"atan", P::ArcTangent, [](long double x) { return atanl(x); }, Everywhere, 20},
    {"sinh", P::HyperbolicSine, [](long double x) { return sinhl(x); }, Everywhere, 5},
    {"cosh", P::HyperbolicCosine, [](long double x) { return coshl(x); }, Everywhere, 5},
    {"tanh", P::HyperbolicTangent, [](long double x) { return tanhl(x); }, Everywhere, 3},
    {"asinh", P::AreaSine, [](long double x) { return asinhl(x); }, Everywhere, 20},
    {"acosh", P::AreaCosine, [](long double x) { return acoshl(x); },
     [](double x) { return x >= 1; }, 20},
    {"atanh", P::AreaTangent, [](long double x) { return atanhl(x); },
     [](double x) { return std::fabs(x) < 1; }, 1.5},
    {"abs", P::Absolute, [](long double x) { return fabsl(x); }, Everywhere, 10},
};

using BinaryProjection =
    std::function<bool(const ZorWBRoundedInterval&, ZorWBRoundedInterval&, ZorWBRoundedInterval&)>;

struct BinaryCase {
    const char* name;
    BinaryProjection project;
    std::function<long double(long double, long double)> exact;
    bool dividesByY;
};

const BinaryCase BinaryCases[] = {
    {"add", P::Add, [](long double x, long double y) { return x + y; }, false},
    {"multiply", P::Multiply, [](long double x, long double y) { return x * y; }, false},
    {"divide", P::Divide, [](long double x, long double y) { return x / y; }, true},
    {"min", P::Minimum, [](long double x, long double y) { return std::min(x, y); }, false},
    {"max", P::Maximum, [](long double x, long double y) { return std::max(x, y); }, false},
};

// A result set around the image of a sampled point, so that some points of
// the domain can produce it and others cannot.
ZorWBRoundedInterval ResultAround(IntervalSampler& sampler, long double image, double scale) {
    double center = static_cast<double>(image);
    if (!std::isfinite(center)) return {};
    double spread = sampler.Uniform(0.0, 0.5) * (std::fabs(center) + scale) * 0.2;
    switch (sampler.Index(4)) {
        case 0:
            return {center, center};
        case 1:
            return {-Infinity, center + spread};
        default:
            return {center - spread, center + sampler.Uniform(0.0, spread)};
    }
}

}  // namespace

TEST(Projection, OneOperandNarrowingKeepsEveryPointThatProducesTheSet) {
    IntervalSampler sampler(21);
    for (const UnaryCase& c : UnaryCases) {
        for (int trial = 0; trial < 3000; ++trial) {
            ZorWBRoundedInterval x = sampler.Interval(c.scale);
            std::vector<double> points = sampler.Points(x, 12);
            double anchor = points[static_cast<std::size_t>(sampler.Index(14))];
            if (!c.defined(anchor)) continue;
            ZorWBRoundedInterval z = ResultAround(sampler, c.exact(anchor), c.scale);
            ZorWBRoundedInterval narrowed = x;
            bool consistent = c.project(z, narrowed);
            ASSERT_TRUE(ZorWBIsSubset(narrowed, x)) << c.name;
            for (double point : points) {
                if (!c.defined(point) || !Holds(z, c.exact(point))) continue;
                ASSERT_TRUE(consistent && Holds(narrowed, point))
                    << c.name << ": z in [" << z.low << ", " << z.high << "], x in [" << x.low
                    << ", " << x.high << "] narrowed to [" << narrowed.low << ", " << narrowed.high
                    << "] loses " << point;
            }
        }
    }
}

TEST(Projection, TwoOperandNarrowingKeepsEveryPairThatProducesTheSet) {
    IntervalSampler sampler(22);
    for (const BinaryCase& c : BinaryCases) {
        for (int trial = 0; trial < 3000; ++trial) {
            ZorWBRoundedInterval x = sampler.Interval(10), y = sampler.Interval(10);
            std::vector<double> xs = sampler.Points(x, 5), ys = sampler.Points(y, 5);
            double ax = xs[static_cast<std::size_t>(sampler.Index(7))];
            double ay = ys[static_cast<std::size_t>(sampler.Index(7))];
            if (c.dividesByY && ay == 0) continue;
            ZorWBRoundedInterval z = ResultAround(sampler, c.exact(ax, ay), 10);
            ZorWBRoundedInterval nx = x, ny = y;
            bool consistent = c.project(z, nx, ny);
            ASSERT_TRUE(ZorWBIsSubset(nx, x) && ZorWBIsSubset(ny, y)) << c.name;
            for (double px : xs) {
                for (double py : ys) {
                    if (c.dividesByY && py == 0) continue;
                    if (!Holds(z, c.exact(px, py))) continue;
                    ASSERT_TRUE(consistent && Holds(nx, px) && Holds(ny, py))
                        << c.name << " loses (" << px << ", " << py << ")";
                }
            }
        }
    }
}

TEST(Projection, BranchesOfEvenFunctionsAreCutAtTheEndsOfTheDomain) {
    // x^2 in [4, 9]: x in [-3, -2] u [2, 3].
    ZorWBRoundedInterval x{-10.0, 2.5};
    ASSERT_TRUE(P::Power({4.0, 9.0}, x, 2));
    EXPECT_LE(x.low, -3.0);
    EXPECT_GT(x.low, -3.0001);
    EXPECT_EQ(x.high, 2.5);
    ZorWBRoundedInterval negative{-10.0, 1.0};
    ASSERT_TRUE(P::Power({4.0, 9.0}, negative, 2));
    EXPECT_LE(negative.high, -2.0 + 1e-12);
    EXPECT_GE(negative.high, -2.0 - 1e-12);
    // |x| in [2, 3] (the values layer's edge cases).
    ZorWBRoundedInterval a{0.0, 10.0}, b{-10.0, 10.0}, c{-10.0, 1.0};
    ASSERT_TRUE(P::Absolute({2.0, 3.0}, a) && P::Absolute({2.0, 3.0}, b) &&
                P::Absolute({2.0, 3.0}, c));
    EXPECT_EQ(a.low, 2.0);
    EXPECT_EQ(a.high, 3.0);
    EXPECT_EQ(b.low, -3.0);
    EXPECT_EQ(c.high, -2.0);
    ZorWBRoundedInterval d{0.0, 10.0};
    EXPECT_FALSE(P::Absolute({-2.0, -1.0}, d));
    // x * y = 1 with y in [-1, 2]: x in (-inf, -1] u [0.5, +inf), cut by X.
    ZorWBRoundedInterval x2{-0.5, 10.0}, y2{-1.0, 2.0};
    ASSERT_TRUE(P::Multiply({1.0, 1.0}, x2, y2));
    EXPECT_GE(x2.low, 0.4999);
    EXPECT_LE(x2.low, 0.5);
}

TEST(Projection, PeriodicPreimagesNarrowToTheNearestBranch) {
    // sin x = 1 with x in [0, 10]: x in {pi/2, 5 pi/2}.
    ZorWBRoundedInterval x{0.0, 10.0};
    ASSERT_TRUE(P::Sine({1.0, 1.0}, x));
    EXPECT_NEAR(x.low, M_PI / 2, 1e-7);
    EXPECT_NEAR(x.high, 5 * M_PI / 2, 1e-7);
    // cos x in [2, 3]: nothing.
    ZorWBRoundedInterval y{0.0, 10.0};
    EXPECT_FALSE(P::Cosine({2.0, 3.0}, y));
    // cos x >= 0.5 with x in [1.5, 7]: x in [5 pi/3, 7].
    ZorWBRoundedInterval w{1.5, 7.0};
    ASSERT_TRUE(P::Cosine({0.5, 1.0}, w));
    EXPECT_NEAR(w.low, 5 * M_PI / 3, 1e-9);
    EXPECT_EQ(w.high, 7.0);
    // Far from 0, and an infinite end stays infinite.
    ZorWBRoundedInterval far{1e6, Infinity};
    ASSERT_TRUE(P::Sine({1.0, 1.0}, far));
    EXPECT_NEAR(std::sin(far.low), 1.0, 1e-9);
    EXPECT_EQ(far.high, Infinity);
    // tan x = 1 with x in [0, 4]: x in {pi/4, 5 pi/4}.
    ZorWBRoundedInterval t{0.0, 4.0};
    ASSERT_TRUE(P::Tangent({1.0, 1.0}, t));
    EXPECT_NEAR(t.low, M_PI / 4, 1e-9);
    EXPECT_NEAR(t.high, 5 * M_PI / 4, 1e-9);
}
