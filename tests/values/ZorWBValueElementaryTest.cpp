#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "TestAllocator.h"
#include "ValueTestSupport.h"
#include "values/ZorWBValueFunctions.h"

using namespace valuetest;

namespace {

using UnaryFunction = ZorWBValue (*)(const ZorWBEnvironment&, const ZorWBValue&);

struct UnaryCase {
    const char* name;
    UnaryFunction function;
    double (*point)(double);  // NaN where the function is undefined
    bool keepsIntegers;       // integer operands give integers, booleans are integer sets
};

ZorWBValue Asin(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return ZorWBAsin(environment, a);
}
ZorWBValue Acos(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return ZorWBAcos(environment, a);
}
ZorWBValue Atan(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return ZorWBAtan(environment, a);
}
ZorWBValue Round(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return ZorWBRound(environment, a);
}
ZorWBValue Step(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    static const double parameters[] = {-1.0, 2.0, 3.0, -2.0};
    return ZorWBStep(environment, a, parameters);
}
double StepPoint(double x) {
    return x <= -1.0 ? 3.0 : x >= 2.0 ? -2.0 : 3.0 + (x + 1.0) * (-5.0 / 3.0);
}
ZorWBValue CubeRoot(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return ZorWBRoot(environment, a, ZorWBValue(3));
}
ZorWBValue InverseSquareRoot(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return ZorWBRoot(environment, a, ZorWBValue(-2));
}
ZorWBValue RoundToHalves(const ZorWBEnvironment& environment, const ZorWBValue& a) {
    return ZorWBRound(environment, a, ZorWBValue(0.5), ZorWBValue(0.1));
}

const UnaryCase UnaryCases[] = {
    {"UnaryMinus", ZorWBUnaryMinus, [](double x) { return -x; }, true},
    {"Abs", ZorWBAbs, [](double x) { return std::fabs(x); }, true},
    {"Ceil", ZorWBCeil, [](double x) { return std::ceil(x); }, true},
    {"Floor", ZorWBFloor, [](double x) { return std::floor(x); }, true},
    {"Trunc", ZorWBTrunc, [](double x) { return std::trunc(x); }, true},
    {"Round", Round, [](double x) { return std::round(x); }, true},
    {"Sqrt", ZorWBSqrt, [](double x) { return std::sqrt(x); }, false},
    {"Exp", ZorWBExp, [](double x) { return std::exp(x); }, false},
    {"Ln", ZorWBLn, [](double x) { return x > 0 ? std::log(x) : NAN; }, false},
    {"Log", ZorWBLog, [](double x) { return x > 0 ? std::log10(x) : NAN; }, false},
    {"Sin", ZorWBSin, [](double x) { return std::sin(x); }, false},
    {"Cos", ZorWBCos, [](double x) { return std::cos(x); }, false},
    {"Tan", ZorWBTan, [](double x) { return std::tan(x); }, false},
    {"Sinh", ZorWBSinh, [](double x) { return std::sinh(x); }, false},
    {"Cosh", ZorWBCosh, [](double x) { return std::cosh(x); }, false},
    {"Tanh", ZorWBTanh, [](double x) { return std::tanh(x); }, false},
    {"Asinh", ZorWBAsinh, [](double x) { return std::asinh(x); }, false},
    {"Acosh", ZorWBAcosh, [](double x) { return std::acosh(x); }, false},
    {"Atanh", ZorWBAtanh, [](double x) { return std::fabs(x) < 1 ? std::atanh(x) : NAN; }, false},
    {"Asin", Asin, [](double x) { return std::asin(x); }, false},
    {"Acos", Acos, [](double x) { return std::acos(x); }, false},
    {"Atan", Atan, [](double x) { return std::atan(x); }, false},
    {"Step", Step, StepPoint, false},
    {"CubeRoot", CubeRoot, [](double x) { return std::cbrt(x); }, false},
    {"InverseSquareRoot", InverseSquareRoot,
     [](double x) { return x > 0 ? 1.0 / std::sqrt(x) : NAN; }, false},
    {"RoundToHalves", RoundToHalves,
     [](double x) { return 0.1 + 0.5 * std::round((x - 0.1) / 0.5); }, false},
};

}  // namespace

// For operands of every kind, the image of every sampled point lies in the
// result, a list gives exactly the images of its elements, and the functions
// that keep integers give an integer kind for integer operands.
TEST(ZorWBValueElementary, UnaryResultsHoldTheImagesOfTheirOperands) {
    std::mt19937 rng(31337);
    for (const UnaryCase& operation : UnaryCases) {
        for (ZorWBValueType kind : AllKinds) {
            for (int trial = 0; trial < 300; ++trial) {
                ZorWBEnvironment environment;
                ZorWBValue a = RandomOperand(rng, kind);
                ZorWBValue result = operation.function(environment, a);
                bool incompatible = kind == ZorWBBooleanType && !operation.keepsIntegers;
                ASSERT_EQ(environment.GetError() == 2u, incompatible)
                    << operation.name << " of " << Describe(a);
                if (incompatible) continue;
                std::vector<double> images;
                for (double x : PointsOf(rng, a)) {
                    double image = operation.point(x);
                    if (std::isnan(image)) continue;
                    images.push_back(image);
                    ASSERT_TRUE(Holds(result, image))
                        << operation.name << "(" << Describe(a) << ") at " << x << " = " << image
                        << " not in " << Describe(result);
                }
                if (IsList(a) && !images.empty()) {
                    ASSERT_TRUE(HoldsExactly(result, images)) << operation.name << " of a list";
                }
                if (IsList(a)) {
                    std::vector<double> elements = ListElements(a);
                    bool undefined = std::any_of(elements.begin(), elements.end(), [&](double x) {
                        return std::isnan(operation.point(x));
                    });
                    ASSERT_EQ((environment.GetError() & 1) != 0, undefined)
                        << operation.name << "(" << Describe(a)
                        << "): a domain error exactly where an element has no image";
                }
                bool integerKind = kind == ZorWBIntegerType || kind == ZorWBIntegerIntervalType ||
                                   kind == ZorWBIntegerEnumType;
                if (operation.keepsIntegers && integerKind) {
                    ASSERT_EQ(result.GetType(), kind) << operation.name << " of " << Describe(a);
                }
                bool rounding =
                    operation.function != ZorWBUnaryMinus && operation.function != ZorWBAbs;
                if (operation.keepsIntegers && rounding && kind == ZorWBFractionType &&
                    a.GetAsFraction().power == 0) {
                    ASSERT_EQ(result.GetType(), ZorWBIntegerType) << operation.name;
                }
            }
        }
    }
}

// Rounding a fraction of power 0 is exact (half away from zero), at every
// level; negation and absolute value keep it a fraction.
TEST(ZorWBValueElementary, FractionsRoundExactly) {
    ZorWBEnvironment environment;
    auto fraction = [](int n, int d, int p) { return ZorWBValue(ZorWBCreateFraction(n, d, p, 0)); };
    EXPECT_EQ(ZorWBFloor(environment, fraction(7, 2, 0)).GetAsInteger(), 3);
    EXPECT_EQ(ZorWBFloor(environment, fraction(-7, 2, 0)).GetAsInteger(), -4);
    EXPECT_EQ(ZorWBCeil(environment, fraction(-7, 2, 0)).GetAsInteger(), -3);
    EXPECT_EQ(ZorWBTrunc(environment, fraction(-7, 2, 0)).GetAsInteger(), -3);
    EXPECT_EQ(ZorWBRound(environment, fraction(-5, 2, 0)).GetAsInteger(), -3);
    EXPECT_EQ(ZorWBRound(environment, fraction(5, 2, 0)).GetAsInteger(), 3);
    EXPECT_EQ(ZorWBRound(environment, fraction(7, 3, 0)).GetAsInteger(), 2);
    EXPECT_EQ(ZorWBFloor(environment, fraction(8, 4, 0)).GetAsInteger(), 2);
    EXPECT_EQ(ZorWBFloor(environment, fraction(1, 2, 1)).GetAsReal(), 1.0);
    ZorWBValue negated = ZorWBUnaryMinus(environment, fraction(6, -4, 0));
    ASSERT_TRUE(negated.IsAFraction());
    EXPECT_EQ(negated.GetAsFraction().numerator, 3);
    EXPECT_EQ(negated.GetAsFraction().denominator, 2);
    EXPECT_EQ(ZorWBAbs(environment, fraction(-1, 3, 1)).GetAsFraction().numerator, 1);
    EXPECT_EQ(ZorWBRound(environment, ZorWBValue(-2.5)).GetAsReal(), -3.0);
    EXPECT_EQ(environment.GetError(), 0u);

    // Real functions read a fraction as a real, whatever the level.
    ZorWBEnvironment old(LevelBelowFractionAsReal);
    ZorWBValue cosine = ZorWBCos(old, fraction(1, 3, 1));
    EXPECT_EQ(cosine.GetType(), ZorWBRealType);
    EXPECT_NEAR(cosine.GetAsReal(), 0.5, 1e-15);
}

TEST(ZorWBValueElementary, UndefinedAndBooleanOperands) {
    ZorWBEnvironment below(LevelBelowQuiet);
    ZorWBEnvironment at(LevelQuiet);
    ZorWBValue belowResult = ZorWBCos(below, ZorWBValue());
    EXPECT_EQ(below.GetError(), 2u);
    ASSERT_EQ(belowResult.GetType(), ZorWBRealIntervalType);
    EXPECT_GT(belowResult.GetAsRealInterval().low, belowResult.GetAsRealInterval().high);
    EXPECT_EQ(ZorWBAbs(at, ZorWBValue()).GetType(), ZorWBUndefinedType);
    EXPECT_EQ(at.GetError(), 0u);

    ZorWBEnvironment environment;
    EXPECT_EQ(ZorWBSqrt(environment, ZorWBValue(ZorWBTrue)).GetType(), ZorWBRealIntervalType);
    EXPECT_EQ(environment.GetError(), 2u);
    environment.ClearError();
    ZorWBIntegerInterval negated =
        ZorWBUnaryMinus(environment, ZorWBValue(ZorWBUnknown)).GetAsIntegerInterval();
    EXPECT_EQ(negated.low, -1);
    EXPECT_EQ(negated.high, 0);
    EXPECT_EQ(ZorWBUnaryMinus(environment, ZorWBValue(ZorWBInteger_Any)).GetAsIntegerInterval().low,
              -2147483646);
    EXPECT_EQ(environment.GetError(), 0u);
    // The absolute value of minus infinity is an error, as in the scalar helper.
    EXPECT_EQ(ZorWBAbs(environment, ZorWBValue(-2147483647)).GetAsInteger(), -2147483647);
    EXPECT_EQ(environment.GetError(), 1u);
}

TEST(ZorWBValueElementary, DomainErrors) {
    auto error = [](UnaryFunction function, double x) {
        ZorWBEnvironment environment;
        ZorWBValue result = function(environment, ZorWBValue(x));
        return environment.GetError() == 1u && result.GetAsReal() == ZorWBRealMinusInfinity;
    };
    EXPECT_TRUE(error(ZorWBSqrt, -1.0));
    EXPECT_TRUE(error(ZorWBLn, 0.0));
    EXPECT_TRUE(error(ZorWBLog, -2.0));
    EXPECT_TRUE(error(Asin, 1.5));
    EXPECT_TRUE(error(Acos, -1.5));
    EXPECT_TRUE(error(ZorWBAcosh, 0.5));
    EXPECT_TRUE(error(ZorWBAtanh, 1.0));
    EXPECT_TRUE(error(ZorWBCos, 2e9));
    EXPECT_FALSE(error(ZorWBCos, 1e9));
    ZorWBEnvironment environment;
    EXPECT_EQ(ZorWBExp(environment, ZorWBValue(1000.0)).GetAsReal(), ZorWBRealPlusInfinity);
    EXPECT_EQ(ZorWBAsinh(environment, ZorWBValue(ZorWBRealMinusInfinity)).GetAsReal(),
              ZorWBRealMinusInfinity);
    EXPECT_EQ(ZorWBLog(environment, ZorWBValue(1000)).GetAsReal(), 3.0);
    EXPECT_EQ(environment.GetError(), 0u);
    ZorWBAtan2(environment, ZorWBValue(0), ZorWBValue(0.0));
    EXPECT_EQ(environment.GetError(), 1u);
}

// Minus zero is zero: a point on the negative x axis has the angle pi, as
// the interval form says of [-0, -0].
TEST(ZorWBValueElementary, Atan2OnTheNegativeXAxisIsPi) {
    ZorWBEnvironment environment;
    const double pi = 3.141592653589793;
    EXPECT_EQ(ZorWBAtan2(environment, ZorWBValue(-0.0), ZorWBValue(-0.47)).GetAsReal(), pi);
    ZorWBRealInterval image =
        ZorWBAtan2(environment, ZorWBValue(ZorWBRealInterval{-0.0, -0.0}), ZorWBValue(-0.47))
            .GetAsRealInterval();
    EXPECT_EQ(image.high, pi);
    EXPECT_EQ(environment.GetError(), 0u);
}

// Roots of perfect powers are exact integers; even roots without a range
// are the non-negative branch, and a range selects the other one.
TEST(ZorWBValueElementary, RootsAndTheirBranches) {
    ZorWBEnvironment environment;
    EXPECT_EQ(ZorWBRoot(environment, ZorWBValue(8), ZorWBValue(3)).GetAsInteger(), 2);
    EXPECT_EQ(ZorWBRoot(environment, ZorWBValue(-27), ZorWBValue(3)).GetAsInteger(), -3);
    EXPECT_EQ(ZorWBRoot(environment, ZorWBValue(1024), ZorWBValue(10)).GetAsInteger(), 2);
    EXPECT_EQ(ZorWBRoot(environment, ZorWBValue(2), ZorWBValue(2)).GetAsReal(), std::sqrt(2.0));
    EXPECT_EQ(ZorWBRoot(environment, ZorWBValue(4), ZorWBValue(2.0)).GetAsInteger(), 2);
    EXPECT_EQ(ZorWBRoot(environment, ZorWBValue(4.0), ZorWBValue(-2)).GetAsReal(), 0.5);
    EXPECT_DOUBLE_EQ(ZorWBRoot(environment, ZorWBValue(8.0), ZorWBValue(1.5)).GetAsReal(), 4.0);
    // A degree held as a one-point set is that number.
    EXPECT_EQ(ZorWBRoot(environment, ZorWBValue(27), ZorWBValue(ZorWBIntegerInterval{3, 3}))
                  .GetAsInteger(),
              3);
    EXPECT_EQ(
        ZorWBRoot(environment, ZorWBValue(4.0), ZorWBValue(ZorWBRealInterval{2, 2})).GetAsReal(),
        2.0);
    ZorWBValue negative(ZorWBRealInterval{-3.0, -1.0});
    EXPECT_EQ(ZorWBRoot(environment, ZorWBValue(4), ZorWBValue(2), &negative).GetAsReal(), -2.0);
    ZorWBValue both(ZorWBRealInterval{-3.0, 3.0});
    ZorWBRealInterval hull =
        ZorWBRoot(environment, ZorWBValue(4.0), ZorWBValue(2), &both).GetAsRealInterval();
    EXPECT_DOUBLE_EQ(hull.low, -2.0);
    EXPECT_DOUBLE_EQ(hull.high, 2.0);
    ZorWBRealInterval principal =
        ZorWBRoot(environment, ZorWBValue(ZorWBRealInterval{4.0, 9.0}), ZorWBValue(2))
            .GetAsRealInterval();
    EXPECT_DOUBLE_EQ(principal.low, 2.0);
    EXPECT_DOUBLE_EQ(principal.high, 3.0);
    EXPECT_EQ(environment.GetError(), 0u);

    ZorWBRoot(environment, ZorWBValue(-4), ZorWBValue(2));
    EXPECT_EQ(environment.GetError(), 1u);
    ZorWBEnvironment zero;
    ZorWBRoot(zero, ZorWBValue(4), ZorWBValue(0));
    EXPECT_EQ(zero.GetError(), 1u);
    ZorWBEnvironment interval;
    ZorWBRoot(interval, ZorWBValue(4), ZorWBValue(ZorWBIntegerInterval{2, 3}));
    EXPECT_EQ(interval.GetError(), 2u);
}

TEST(ZorWBValueElementary, InverseTrigonometryWithARange) {
    ZorWBEnvironment environment;
    EXPECT_DOUBLE_EQ(ZorWBAsin(environment, ZorWBValue(0.5)).GetAsReal(), std::asin(0.5));
    ZorWBValue second(ZorWBRealInterval{2.0, 3.0});
    EXPECT_NEAR(ZorWBAsin(environment, ZorWBValue(0.5), &second).GetAsReal(), 5 * ZorWBPi / 6,
                1e-12);
    ZorWBRealInterval principal =
        ZorWBAcos(environment, ZorWBValue(ZorWBRealInterval{-1.0, 1.0})).GetAsRealInterval();
    EXPECT_NEAR(principal.low, 0.0, 1e-15);
    EXPECT_NEAR(principal.high, ZorWBPi, 1e-15);
    ZorWBRealInterval angles =
        ZorWBAtan2(environment, ZorWBValue(ZorWBRealInterval{-1.0, 1.0}), ZorWBValue(-1))
            .GetAsRealInterval();
    EXPECT_NEAR(angles.low, -ZorWBPi, 1e-12);
    EXPECT_NEAR(angles.high, ZorWBPi, 1e-12);
    EXPECT_DOUBLE_EQ(ZorWBAtan2(environment, ZorWBValue(1), ZorWBValue(-1)).GetAsReal(),
                     3 * ZorWBPi / 4);
    EXPECT_EQ(environment.GetError(), 0u);
}

// {x0, x1, y0, y1}: y0 up to x0, y1 from x1 on, linear between; a sharp step
// when x0 == x1; the unit step at 0 without parameters. Interval images are
// exact.
TEST(ZorWBValueElementary, StepParameters) {
    ZorWBEnvironment environment;
    auto step = [&](double x, const double* parameters) {
        return ZorWBStep(environment, ZorWBValue(x), parameters).GetAsReal();
    };
    EXPECT_EQ(step(-0.1, nullptr), 0.0);
    EXPECT_EQ(step(0.0, nullptr), 1.0);
    const double ramp[] = {0.0, 2.0, 1.0, 5.0};
    EXPECT_EQ(step(-1.0, ramp), 1.0);
    EXPECT_EQ(step(0.5, ramp), 2.0);
    EXPECT_EQ(step(2.0, ramp), 5.0);
    EXPECT_EQ(step(7.0, ramp), 5.0);
    const double sharp[] = {1.0, 1.0, 4.0, -4.0};
    EXPECT_EQ(step(0.999, sharp), 4.0);
    EXPECT_EQ(step(1.0, sharp), -4.0);
    ZorWBRealInterval image =
        ZorWBStep(environment, ZorWBValue(ZorWBRealInterval{0.5, 1.0}), ramp).GetAsRealInterval();
    EXPECT_EQ(image.low, 2.0);
    EXPECT_EQ(image.high, 3.0);
    ZorWBRealInterval jump =
        ZorWBStep(environment, ZorWBValue(ZorWBIntegerInterval{0, 3}), sharp).GetAsRealInterval();
    EXPECT_EQ(jump.low, -4.0);
    EXPECT_EQ(jump.high, 4.0);
    EXPECT_EQ(environment.GetError(), 0u);
    const double broken[] = {0.0, NAN, 0.0, 1.0};
    ZorWBStep(environment, ZorWBValue(1.0), broken);
    EXPECT_EQ(environment.GetError(), 1u);
}

TEST(ZorWBValueElementary, RoundingToAStep) {
    ZorWBEnvironment environment;
    ZorWBValue exact = ZorWBRound(environment, ZorWBValue(17), ZorWBValue(5), ZorWBValue(1));
    ASSERT_EQ(exact.GetType(), ZorWBIntegerType);
    EXPECT_EQ(exact.GetAsInteger(), 16);
    EXPECT_EQ(ZorWBRound(environment, ZorWBValue(-7), ZorWBValue(2), ZorWBValue(0)).GetAsInteger(),
              -8)
        << "half away from zero";
    EXPECT_DOUBLE_EQ(
        ZorWBRound(environment, ZorWBValue(1.26), ZorWBValue(0.25), ZorWBValue(0.0)).GetAsReal(),
        1.25);
    ZorWBValue unchanged = ZorWBRound(environment, ZorWBValue(1.26), ZorWBValue(0), ZorWBValue(3));
    EXPECT_EQ(unchanged.GetAsReal(), 1.26);
    // A step held as a one-point interval is that number, not a zero step.
    ZorWBValue pointStep(ZorWBRealInterval{0.25, 0.25});
    EXPECT_DOUBLE_EQ(ZorWBRound(environment, ZorWBValue(1.26), pointStep, ZorWBValue(0.0))
                         .GetAsRealInterval()
                         .low,
                     1.25);
    const int steps[] = {2, 3};
    ZorWBValue stepList;
    stepList.Set(2, steps);
    EXPECT_TRUE(
        HoldsExactly(ZorWBRound(environment, ZorWBValue(7), stepList, ZorWBValue(0)), {6, 8}));
    ZorWBRealInterval hull = ZorWBRound(environment, ZorWBValue(ZorWBRealInterval{0.2, 1.3}),
                                        ZorWBValue(0.5), ZorWBValue(0))
                                 .GetAsRealInterval();
    EXPECT_EQ(hull.low, 0.0);
    EXPECT_EQ(hull.high, 1.5);
    // Integer sets round by the quotients of their numbers, not by the
    // truncating division of integer sets: 7 / 2 and 9 / 2 round to 4 and 5.
    ZorWBRealInterval integers = ZorWBRound(environment, ZorWBValue(ZorWBIntegerInterval{7, 9}),
                                            ZorWBValue(2), ZorWBValue(0))
                                     .GetAsRealInterval();
    EXPECT_EQ(integers.low, 8.0);
    EXPECT_EQ(integers.high, 10.0);
    EXPECT_EQ(environment.GetError(), 0u);
}

// Listed steps and origins are combined one by one up to the cap on element
// combinations that every element-wise computation has; beyond it the
// enumerations go through their hulls. The work done is counted by the
// allocations (each combination of an enumerated value allocates), not
// timed.
TEST(ZorWBValueElementary, RoundingToListedStepsBeyondTheCombinationCapGoesThroughTheHulls) {
    ZorWBEnvironment environment;
    const double values[] = {0.3, 1.7};
    std::vector<double> steps;
    std::vector<double> origins;
    for (int i = 0; i < 300; ++i) {
        steps.push_back(0.5 + 0.01 * i);
        origins.push_back(0.001 * i);
    }
    ZorWBValue a;
    a.Set(2, values);
    ZorWBValue step;
    step.Set(static_cast<int>(steps.size()), steps.data());
    ZorWBValue origin;
    origin.Set(static_cast<int>(origins.size()), origins.data());
    std::size_t before = AllocationCount();
    ZorWBValue rounded = ZorWBRound(environment, a, step, origin);
    EXPECT_LT(AllocationCount() - before, 1000u) << "2 x 300 x 300 combinations, one by one";
    ASSERT_EQ(rounded.GetType(), ZorWBRealEnumType);
    EXPECT_EQ(rounded.GetRealEnum().GetRep(), ZorWBEnumInterval);
    for (double x : values)
        for (std::size_t i = 0; i < steps.size(); i += 7)
            for (std::size_t j = 0; j < origins.size(); j += 11) {
                double image = origins[j] + steps[i] * std::round((x - origins[j]) / steps[i]);
                ASSERT_TRUE(Holds(rounded, image)) << x << " " << steps[i] << " " << origins[j];
            }
    EXPECT_EQ(environment.GetError(), 0u);
    // Below the cap each combination is computed: the images exactly.
    const double fewSteps[] = {2.0, 3.0};
    const double fewOrigins[] = {0.0, 0.5};
    step.Set(2, fewSteps);
    origin.Set(2, fewOrigins);
    EXPECT_TRUE(
        HoldsExactly(ZorWBRound(environment, ZorWBValue(7.0), step, origin), {8.0, 6.0, 6.5, 6.5}));
}
