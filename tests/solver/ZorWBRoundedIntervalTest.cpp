// The outward-rounded interval functions against their exact images at
// sampled points, computed in long double (64 bits of mantissa, so the
// reference is more accurate than the doubles the bounds are made of).

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "SolverTestSupport.h"
#include "solver/ZorWBRoundedInterval.h"

namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();

struct UnaryCase {
    const char* name;
    std::function<ZorWBRoundedInterval(const ZorWBRoundedInterval&)> interval;
    std::function<long double(long double)> exact;
    // The points where the function is defined.
    std::function<bool(double)> defined;
    double scale;
};

bool Everywhere(double) {
    return true;
}

const UnaryCase UnaryCases[] = {
    {"exp", ZorWBExponential, [](long double x) { return expl(x); }, Everywhere, 20.0},
    {"exp10", ZorWBExponential10, [](long double x) { return powl(10.0L, x); }, Everywhere, 10.0},
    {"ln", ZorWBLogarithm, [](long double x) { return logl(x); }, [](double x) { return x > 0; },
     50.0},
    {"log10", ZorWBLogarithm10, [](long double x) { return log10l(x); },
     [](double x) { return x > 0; }, 50.0},
    {"sin", ZorWBSine, [](long double x) { return sinl(x); }, Everywhere, 20.0},
    {"cos", ZorWBCosine, [](long double x) { return cosl(x); }, Everywhere, 20.0},
    {"tan", ZorWBTangent, [](long double x) { return tanl(x); }, Everywhere, 3.0},
    {"asin", ZorWBArcSine, [](long double x) { return asinl(x); },
     [](double x) { return std::fabs(x) <= 1; }, 1.2},
    {"acos", ZorWBArcCosine, [](long double x) { return acosl(x); },
     [](double x) { return std::fabs(x) <= 1; }, 1.2},
    {"atan", ZorWBArcTangent, [](long double x) { return atanl(x); }, Everywhere, 50.0},
    {"sinh", ZorWBHyperbolicSine, [](long double x) { return sinhl(x); }, Everywhere, 20.0},
    {"cosh", ZorWBHyperbolicCosine, [](long double x) { return coshl(x); }, Everywhere, 20.0},
    {"tanh", ZorWBHyperbolicTangent, [](long double x) { return tanhl(x); }, Everywhere, 5.0},
    {"asinh", ZorWBAreaSine, [](long double x) { return asinhl(x); }, Everywhere, 50.0},
    {"acosh", ZorWBAreaCosine, [](long double x) { return acoshl(x); },
     [](double x) { return x >= 1; }, 50.0},
    {"atanh", ZorWBAreaTangent, [](long double x) { return atanhl(x); },
     [](double x) { return std::fabs(x) < 1; }, 1.2},
    {"sqrt", ZorWBSquareRoot, [](long double x) { return sqrtl(x); },
     [](double x) { return x >= 0; }, 100.0},
    {"abs", ZorWBAbsolute, [](long double x) { return fabsl(x); }, Everywhere, 10.0},
    {"square", ZorWBSquare, [](long double x) { return x * x; }, Everywhere, 1e5},
    {"cube", [](const ZorWBRoundedInterval& a) { return ZorWBPower(a, 3); },
     [](long double x) { return x * x * x; }, Everywhere, 1e3},
    {"power -2", [](const ZorWBRoundedInterval& a) { return ZorWBPower(a, -2); },
     [](long double x) { return 1.0L / (x * x); }, [](double x) { return x != 0; }, 10.0},
    {"power 7", [](const ZorWBRoundedInterval& a) { return ZorWBPower(a, 7); },
     [](long double x) { return powl(x, 7); }, Everywhere, 10.0},
    {"cube root", [](const ZorWBRoundedInterval& a) { return ZorWBRoot(a, 3); },
     [](long double x) { return cbrtl(x); }, Everywhere, 1e6},
    {"fifth root", [](const ZorWBRoundedInterval& a) { return ZorWBRoot(a, 5); },
     [](long double x) { return x < 0 ? -powl(-x, 0.2L) : powl(x, 0.2L); }, Everywhere, 1e6},
    {"fourth root", [](const ZorWBRoundedInterval& a) { return ZorWBRoot(a, 4); },
     [](long double x) { return powl(x, 0.25L); }, [](double x) { return x >= 0; }, 1e6},
    {"negate", ZorWBNegate, [](long double x) { return -x; }, Everywhere, 10.0},
    {"scale by 0.1", [](const ZorWBRoundedInterval& a) { return ZorWBScale(a, 0.1); },
     [](long double x) { return x * static_cast<long double>(0.1); }, Everywhere, 1e10},
    {"scale by -3", [](const ZorWBRoundedInterval& a) { return ZorWBScale(a, -3.0); },
     [](long double x) { return x * -3.0L; }, Everywhere, 1e10},
};

struct BinaryCase {
    const char* name;
    std::function<ZorWBRoundedInterval(const ZorWBRoundedInterval&, const ZorWBRoundedInterval&)>
        interval;
    std::function<long double(long double, long double)> exact;
    bool dividesByB;
};

const BinaryCase BinaryCases[] = {
    {"add", ZorWBAdd, [](long double a, long double b) { return a + b; }, false},
    {"subtract", ZorWBSubtract, [](long double a, long double b) { return a - b; }, false},
    {"multiply", ZorWBMultiply, [](long double a, long double b) { return a * b; }, false},
    {"divide", ZorWBDivide, [](long double a, long double b) { return a / b; }, true},
    {"min", ZorWBMinimum, [](long double a, long double b) { return std::min(a, b); }, false},
    {"max", ZorWBMaximum, [](long double a, long double b) { return std::max(a, b); }, false},
};

}  // namespace

TEST(RoundedInterval, EveryFunctionEnclosesItsImageAtSampledPoints) {
    IntervalSampler sampler(11);
    for (const UnaryCase& c : UnaryCases) {
        for (int trial = 0; trial < 3000; ++trial) {
            ZorWBRoundedInterval x = sampler.Interval(c.scale);
            ZorWBRoundedInterval image = c.interval(x);
            for (double point : sampler.Points(x, 6)) {
                if (!c.defined(point)) continue;
                long double exact = c.exact(point);
                ASSERT_TRUE(Holds(image, exact))
                    << c.name << " of [" << x.low << ", " << x.high << "] = [" << image.low << ", "
                    << image.high << "] misses " << static_cast<double>(exact) << " at " << point;
            }
        }
    }
}

TEST(RoundedInterval, EveryOperationEnclosesItsImageAtSampledPoints) {
    IntervalSampler sampler(12);
    for (const BinaryCase& c : BinaryCases) {
        for (int trial = 0; trial < 5000; ++trial) {
            double scale = sampler.Chance(20) ? 1e-300 : sampler.Chance(20) ? 1e300 : 100.0;
            ZorWBRoundedInterval a = sampler.Interval(scale), b = sampler.Interval(scale);
            ZorWBRoundedInterval image = c.interval(a, b);
            for (double x : sampler.Points(a, 3)) {
                for (double y : sampler.Points(b, 3)) {
                    if (c.dividesByB && y == 0) continue;
                    long double exact = c.exact(x, y);
                    if (std::isinf(static_cast<double>(exact))) continue;
                    ASSERT_TRUE(Holds(image, exact)) << c.name << " misses " << x << ", " << y;
                }
            }
        }
    }
}

TEST(RoundedInterval, BoundsMoveOutwardPastTheNearestDouble) {
    // 0.1 + 0.2 rounds to nearest above 0.3; the enclosure holds 0.3 either way.
    ZorWBRoundedInterval sum = ZorWBAdd({0.1, 0.1}, {0.2, 0.2});
    EXPECT_LT(sum.low, 0.1 + 0.2);
    EXPECT_GT(sum.high, 0.1 + 0.2);
    EXPECT_EQ(ZorWBNextUp(1.0), 1.0 + std::numeric_limits<double>::epsilon());
    EXPECT_EQ(ZorWBNextDown(0.0), -std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(ZorWBNextDown(-Infinity), -Infinity);
    EXPECT_EQ(ZorWBNextUp(Infinity), Infinity);
    // Exact zeros stay exact, and 0 times an infinite bound is 0.
    ZorWBRoundedInterval product = ZorWBMultiply({0.0, 0.0}, {-Infinity, Infinity});
    EXPECT_EQ(product.low, 0.0);
    EXPECT_EQ(product.high, 0.0);
    ZorWBRoundedInterval halfLine = ZorWBMultiply({0.0, 2.0}, {3.0, Infinity});
    EXPECT_EQ(halfLine.low, 0.0);
    EXPECT_EQ(halfLine.high, Infinity);
}

TEST(RoundedInterval, DivisionKeepsTheTwoHalfLinesOfADivisorAroundZero) {
    ZorWBRoundedInterval pieces[2];
    ASSERT_EQ(ZorWBDivideExtended({1.0, 2.0}, {-1.0, 4.0}, pieces), 2);
    EXPECT_EQ(pieces[0].low, -Infinity);
    EXPECT_GE(pieces[0].high, -1.0);
    EXPECT_LT(pieces[0].high, -0.99);
    EXPECT_LE(pieces[1].low, 0.25);
    EXPECT_GT(pieces[1].low, 0.24);
    EXPECT_EQ(pieces[1].high, Infinity);
    // A dividend holding 0 gives the whole line; a divisor touching 0 one side.
    ASSERT_EQ(ZorWBDivideExtended({-1.0, 2.0}, {-1.0, 4.0}, pieces), 1);
    EXPECT_FALSE(pieces[0].IsBounded());
    ASSERT_EQ(ZorWBDivideExtended({1.0, 2.0}, {0.0, 4.0}, pieces), 1);
    EXPECT_EQ(pieces[0].high, Infinity);
    EXPECT_GT(pieces[0].low, 0.0);
    EXPECT_EQ(ZorWBDivideExtended({1.0, 2.0}, {0.0, 0.0}, pieces), 0);
    EXPECT_TRUE(ZorWBDivide({1.0, 2.0}, {0.0, 0.0}).IsEmpty());
    // t * [0, 2] in [0, 1] holds for every t (t * 0 = 0), which the division
    // alone, [0, +inf), does not say: a Newton step once emptied boxes so.
    ASSERT_EQ(ZorWBDivideExtended({0.0, 1.0}, {0.0, 2.0}, pieces), 1);
    EXPECT_EQ(pieces[0].low, 0.0);
    ASSERT_EQ(ZorWBFactorPreimage({0.0, 1.0}, {0.0, 2.0}, pieces), 1);
    EXPECT_FALSE(pieces[0].IsBounded());
    EXPECT_EQ(ZorWBFactorPreimage({1.0, 2.0}, {0.0, 0.0}, pieces), 0);
    ZorWBRoundedInterval zero = ZorWBDivide({0.0, 0.0}, {-1.0, 1.0});
    EXPECT_EQ(zero.low, 0.0);
    EXPECT_EQ(zero.high, 0.0);
}

TEST(RoundedInterval, PeriodicFunctionsReachTheirExtremaInside) {
    ZorWBRoundedInterval sine = ZorWBSine({1.0, 2.0});  // holds pi/2
    EXPECT_EQ(sine.high, 1.0);
    EXPECT_LE(sine.low, std::sin(1.0));
    EXPECT_GT(sine.low, 0.8);
    ZorWBRoundedInterval cosine = ZorWBCosine({3.0, 3.5});  // holds pi
    EXPECT_EQ(cosine.low, -1.0);
    EXPECT_GE(cosine.high, std::cos(3.0));
    EXPECT_LT(cosine.high, -0.93);
    ZorWBRoundedInterval whole = ZorWBCosine({0.0, 7.0});
    EXPECT_EQ(whole.low, -1.0);
    EXPECT_EQ(whole.high, 1.0);
    EXPECT_FALSE(ZorWBTangent({1.0, 2.0}).IsBounded());  // a pole at pi/2
    EXPECT_TRUE(ZorWBTangent({-1.0, 1.0}).IsBounded());
    EXPECT_EQ(ZorWBSine({1e12, 1e12 + 1.0}).low, -1.0);  // no phase left
}

TEST(RoundedInterval, FunctionsOutsideTheirDomainGiveTheEmptyInterval) {
    EXPECT_TRUE(ZorWBLogarithm({-2.0, -1.0}).IsEmpty());
    EXPECT_TRUE(ZorWBLogarithm({-2.0, 0.0}).IsEmpty());
    EXPECT_EQ(ZorWBLogarithm({-2.0, 1.0}).low, -Infinity);
    EXPECT_TRUE(ZorWBSquareRoot({-2.0, -1.0}).IsEmpty());
    EXPECT_EQ(ZorWBSquareRoot({-2.0, 4.0}).low, 0.0);
    EXPECT_TRUE(ZorWBArcSine({1.5, 2.0}).IsEmpty());
    EXPECT_TRUE(ZorWBAreaCosine({-1.0, 0.5}).IsEmpty());
    EXPECT_TRUE(ZorWBRoot({-3.0, -1.0}, 2).IsEmpty());
    EXPECT_TRUE(ZorWBAdd(ZorWBEmptyInterval(), {1.0, 2.0}).IsEmpty());
    EXPECT_TRUE(ZorWBSine(ZorWBEmptyInterval()).IsEmpty());
}

TEST(RoundedInterval, ValuesLayerIntervalsConvertWithTheirInfiniteEnds) {
    ZorWBRoundedInterval whole = ZorWBFromRealInterval(ZorWBReal_Any);
    EXPECT_EQ(whole.low, -Infinity);
    EXPECT_EQ(whole.high, Infinity);
    EXPECT_TRUE(ZorWBFromRealInterval(ZorWBReal_Nil).IsEmpty());
    ZorWBRealInterval back = ZorWBToRealInterval(whole);
    EXPECT_EQ(back.low, -ZorWBRealLimit);
    EXPECT_EQ(back.high, ZorWBRealLimit);
    EXPECT_EQ(ZorWBRoundedInterval({-Infinity, Infinity}).Middle(), 0.0);
    EXPECT_GT(ZorWBRoundedInterval({5.0, Infinity}).Middle(), 5.0);
    EXPECT_LT(ZorWBRoundedInterval({-Infinity, -5.0}).Middle(), -5.0);
}
