#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <vector>

#include "CalculusTestSupport.h"
#include "expressions/ZorWBSegmentFunction.h"

using Type = ZorWBExpressionType;
using Interval = ZorWBSegmentFunctionInterval;
using Point = ZorWBSegmentFunctionDataPt;

namespace {

const double Pi = std::acos(-1.0);

// Opens the shape builders to the tests.
class ShapeFactory : public ZorWBFactory {
  public:
    using ZorWBFactory::CreateSegmentFunction_Cubic;
    using ZorWBFactory::CreateSegmentFunction_Linear;
    using ZorWBFactory::CreateSegmentFunction_Quadratic;
    using ZorWBFactory::CreateSegmentFunction_QuarterCos;
    using ZorWBFactory::CreateSegmentFunction_QuarterSin;
    using ZorWBFactory::CreateSegmentFunction_X;
    using ZorWBFactory::CreateSegmentFunction_Y;
    using ZorWBFactory::ZorWBFactory;
};

// The unit shape of each interpolation type at t in [0, 1].
double UnitShape(Interval::ZorWBInterpolationType type, double t) {
    switch (type) {
        case Interval::Linear:
            return t;
        case Interval::Quadratic:
            return t * t;
        case Interval::Cubic:
            return 3.0 * t * t - 2.0 * t * t * t;
        case Interval::QuarterSin:
            return std::sin(t * Pi / 2.0);
        default:
            return 1.0 - std::cos(t * Pi / 2.0);
    }
}

ZorWBExpression* (ShapeFactory::*ShapeOf(Interval::ZorWBInterpolationType type))(ZorWBExpression*,
                                                                                 const Point&,
                                                                                 const Point&) {
    switch (type) {
        case Interval::Linear:
            return &ShapeFactory::CreateSegmentFunction_Linear;
        case Interval::Quadratic:
            return &ShapeFactory::CreateSegmentFunction_Quadratic;
        case Interval::Cubic:
            return &ShapeFactory::CreateSegmentFunction_Cubic;
        case Interval::QuarterSin:
            return &ShapeFactory::CreateSegmentFunction_QuarterSin;
        default:
            return &ShapeFactory::CreateSegmentFunction_QuarterCos;
    }
}

const Interval::ZorWBInterpolationType AllTypes[] = {Interval::Linear, Interval::Quadratic,
                                                     Interval::Cubic, Interval::QuarterSin,
                                                     Interval::QuarterCos};

// A difference a - b written Sum(a, Product(b, MinusOne)).
void ExpectDifference(const ZorWBExpression* e, const ZorWBExpression* a, double b,
                      ZorWBFactory& f) {
    ASSERT_EQ(e->GetType(), Type::Sum);
    if (a) {
        EXPECT_EQ(e->GetChild(0), a);
    }
    const ZorWBExpression* negated = e->GetChild(1);
    ASSERT_EQ(negated->GetType(), Type::Product);
    EXPECT_EQ(negated->GetChild(0)->GetExprValue().GetAsReal(), b);
    EXPECT_EQ(negated->GetChild(1), f.GetMinusOne());
}

}  // namespace

TEST(ZorWBSegmentFunction, ShapesOnOneInterval) {
    std::mt19937 random(31);
    ShapeFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    for (int trial = 0; trial < 20; ++trial) {
        double xa = Uniform(random, -5.0, 5.0);
        double xb = xa + Uniform(random, 0.5, 3.0);
        double ya = Uniform(random, -5.0, 5.0);
        double yb = Uniform(random, -5.0, 5.0);
        Point start(xa, ya);
        Point end(xb, yb);
        for (Interval::ZorWBInterpolationType type : AllTypes) {
            ZorWBExpression* piece = (f.*ShapeOf(type))(x, start, end);
            ASSERT_NE(piece, nullptr);
            for (double t : {0.0, 1.0, Uniform(random, 0.0, 1.0), Uniform(random, 0.0, 1.0)}) {
                SetReal(x, xa + t * (xb - xa));
                EXPECT_NEAR(Reading(piece), ya + (yb - ya) * UnitShape(type, t), 1e-12);
            }
        }
    }
}

TEST(ZorWBSegmentFunction, ShapeNodes) {
    ShapeFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    Point start(1.5, 2.5);
    Point end(4.5, -0.5);
    // (x - xa) / (xb - xa)
    ZorWBExpression* t = f.CreateSegmentFunction_X(x, start, end);
    ASSERT_EQ(t->GetType(), Type::Quotient);
    ExpectDifference(t->GetChild(0), x, 1.5, f);
    ExpectDifference(t->GetChild(1), nullptr, 1.5, f);
    EXPECT_EQ(t->GetChild(1)->GetChild(0)->GetExprValue().GetAsReal(), 4.5);
    // ya + (yb - ya) u
    ZorWBExpression* y = f.CreateSegmentFunction_Y(x, start, end);
    ASSERT_EQ(y->GetType(), Type::Sum);
    EXPECT_EQ(y->GetChild(0)->GetExprValue().GetAsReal(), 2.5);
    const ZorWBExpression* scaled = y->GetChild(1);
    ASSERT_EQ(scaled->GetType(), Type::Product);
    ExpectDifference(scaled->GetChild(0), nullptr, 2.5, f);
    EXPECT_EQ(scaled->GetChild(1), x);
    // The shapes use the shared constants.
    ZorWBExpression* sine = f.CreateSegmentFunction_QuarterSin(x, start, end);
    const ZorWBExpression* sin = sine->GetChild(1)->GetChild(1);
    ASSERT_EQ(sin->GetType(), Type::Sin);
    EXPECT_EQ(sin->GetChild(0)->GetChild(1), f.GetPiByTwo());
    ZorWBExpression* cubic = f.CreateSegmentFunction_Cubic(x, start, end);
    const ZorWBExpression* smooth = cubic->GetChild(1)->GetChild(1);
    EXPECT_EQ(smooth->GetChild(0)->GetChild(0), f.GetThree());
    EXPECT_EQ(smooth->GetChild(1)->GetChild(1), f.GetMinusOne());
    // Integer data give the shared integer constants.
    ZorWBExpression* integral = f.CreateSegmentFunction_X(x, Point(ZorWBValue(2), ZorWBValue(0)),
                                                          Point(ZorWBValue(3), ZorWBValue(1)));
    EXPECT_EQ(integral->GetChild(0)->GetChild(1)->GetChild(0), f.GetTwo());
}

TEST(ZorWBSegmentFunction, BoundariesGapsAndOutside) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBSegmentFunction sf;
    EXPECT_TRUE(sf.AddInterval(Interval(Point(0.0, 0.0), Point(1.0, 1.0), Interval::Linear)));
    EXPECT_TRUE(sf.AddInterval(Interval(Point(1.0, 10.0), Point(2.0, 20.0), Interval::Quadratic)));
    // A gap from 2 to 3.
    EXPECT_TRUE(sf.AddInterval(Interval(Point(3.0, 5.0), Point(4.0, 7.0), Interval::Cubic)));
    EXPECT_TRUE(sf.AddInterval(Interval(Point(4.0, 0.0), Point(5.0, 1.0), Interval::QuarterSin)));
    EXPECT_EQ(sf.GetNumIntervals(), 4);
    EXPECT_EQ(sf.GetInterval(4), nullptr);
    EXPECT_EQ(sf.GetInterval(-1), nullptr);
    EXPECT_EQ(sf.GetInterval(2)->GetType(), Interval::Cubic);
    ZorWBExpression* e = f.CreateSegmentFunction(x, sf);
    ASSERT_NE(e, nullptr);
    EXPECT_EQ(e->GetType(), Type::IfThenElse);

    struct Expectation {
        double x;
        double y;  // NaN: indefinite
    };
    const double none = std::nan("");
    const Expectation expectations[] = {
        {-0.5, none},              // left of the first point
        {0.0, 0.0},                // the first start point belongs to the first interval
        {0.5, 0.5},   {1.0, 1.0},  // an inner point belongs to the earlier interval
        {1.5, 12.5},  {2.0, 20.0}, {2.5, none},  // in the gap
        {3.0, none},                             // the start after a gap is still left of the piece
        {3.5, 6.0},   {4.0, 7.0},  {4.5, std::sin(Pi / 4.0)},
        {5.0, 1.0},   {5.5, none},  // right of the last point
    };
    for (const Expectation& expected : expectations) {
        SCOPED_TRACE(expected.x);
        SetReal(x, expected.x);
        if (std::isnan(expected.y)) {
            EXPECT_TRUE(IsUndefined(e));
        } else {
            EXPECT_NEAR(Reading(e), expected.y, 1e-12);
        }
    }

    // The derivative follows the pieces inside the intervals.
    std::mt19937 random(2);
    int compared = CheckDerivative(
        e, x, [&]() { SetReal(x, Uniform(random, 0.0, 5.0)); }, 60);
    EXPECT_GE(compared, 30);
    ZorWBExpression* slope = f.CreateDerivative(e, x);
    SetReal(x, 0.25);
    EXPECT_NEAR(Reading(slope), 1.0, 1e-12);
    SetReal(x, 1.5);
    EXPECT_NEAR(Reading(slope), 10.0, 1e-12);
    // Where the value is indefinite, the Indefinite constant contributes
    // nothing to the derivative.
    SetReal(x, 2.5);
    EXPECT_EQ(Reading(slope), 0.0);
}

TEST(ZorWBSegmentFunction, EmptyUnknownAndNull) {
    for (unsigned int level :
         {Below(ZorWBLevel::EmptySegmentNoBuffer), ZorWBLevel::EmptySegmentNoBuffer}) {
        ZorWBFactory f(level);
        ZorWBVariable* x = f.CreateVariable();
        ZorWBExpression* argument = f.CreateSum(x, f.GetOne());
        ZorWBExpression* above = f.CreateSin(argument);
        ZorWBSegmentFunction empty;
        EXPECT_EQ(f.CreateSegmentFunction(argument, empty), f.GetIndefinite());
        bool unbuffered = level >= ZorWBLevel::EmptySegmentNoBuffer;
        EXPECT_EQ(argument->AllowsBufferEval(), !unbuffered);
        EXPECT_EQ(above->AllowsBufferEval(), !unbuffered);
        EXPECT_TRUE(x->AllowsBufferEval());
    }
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBSegmentFunction sf;
    sf.AddInterval(Interval(Point(0.0, 0.0), Point(1.0, 1.0), Interval::Linear));
    EXPECT_EQ(f.CreateSegmentFunction(nullptr, sf), nullptr);
    sf.AddInterval(Interval(Point(1.0, 0.0), Point(2.0, 1.0),
                            static_cast<Interval::ZorWBInterpolationType>(7)));
    EXPECT_EQ(f.CreateSegmentFunction(x, sf), nullptr);
    ZorWBSegmentFunction zero;
    zero.AddInterval(Interval(Point(0.0, 0.0), Point(1.0, 1.0),
                              static_cast<Interval::ZorWBInterpolationType>(0)));
    EXPECT_EQ(f.CreateSegmentFunction(x, zero), nullptr);
    // A point keeps values of any kind.
    Point exact(ZorWBValue(1), ZorWBValue(ZorWBRealInterval{0.0, 1.0}));
    EXPECT_EQ(exact.GetX().GetType(), ZorWBIntegerType);
    EXPECT_EQ(exact.GetY().GetType(), ZorWBRealIntervalType);
}

TEST(ZorWBSegmentFunction, InterpolatingPolynomialsReproduceTheirDegree) {
    std::mt19937 random(13);
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    auto c = [&f](double value) { return f.CreateRealConstant(value); };
    for (int trial = 0; trial < 20; ++trial) {
        // A random cubic p and four increasing abscissas.
        double k[4];
        for (double& coefficient : k)
            coefficient = Uniform(random, -2.0, 2.0);
        auto p = [&k](double v, int degree) {
            double sum = 0.0;
            for (int i = degree; i >= 0; --i)
                sum = sum * v + k[i];
            return sum;
        };
        auto dp = [&k](double v) { return k[1] + 2.0 * k[2] * v + 3.0 * k[3] * v * v; };
        double xs[4];
        xs[0] = Uniform(random, -2.0, 0.0);
        for (int i = 1; i < 4; ++i)
            xs[i] = xs[i - 1] + Uniform(random, 0.3, 1.0);

        ZorWBExpression* line =
            f.CreateLinearInterpolation2P(x, c(xs[0]), c(p(xs[0], 1)), c(xs[1]), c(p(xs[1], 1)));
        ZorWBExpression* parabola = f.CreateQuadraticInterpolation3P(
            x, c(xs[0]), c(p(xs[0], 2)), c(xs[1]), c(p(xs[1], 2)), c(xs[2]), c(p(xs[2], 2)));
        ZorWBExpression* cubic =
            f.CreateCubicInterpolation4P(x, c(xs[0]), c(p(xs[0], 3)), c(xs[1]), c(p(xs[1], 3)),
                                         c(xs[2]), c(p(xs[2], 3)), c(xs[3]), c(p(xs[3], 3)));
        ZorWBExpression* hermite = f.CreateCubicInterpolation2P2D(
            x, c(xs[0]), c(p(xs[0], 3)), c(xs[3]), c(p(xs[3], 3)), c(dp(xs[0])), c(dp(xs[3])));
        ZorWBExpression* unitLine = f.CreateLinearInterpolation01(x, c(p(0.0, 1)), c(p(1.0, 1)));
        ZorWBExpression* unitHermite =
            f.CreateCubicInterpolation01(x, c(p(0.0, 3)), c(p(1.0, 3)), c(dp(0.0)), c(dp(1.0)));
        for (double v : {xs[0], xs[1], xs[2], xs[3], Uniform(random, -3.0, 3.0), 0.0, 1.0}) {
            SetReal(x, v);
            double scale = 1.0 + std::fabs(p(v, 3));
            EXPECT_NEAR(Reading(line), p(v, 1), 1e-9 * scale);
            EXPECT_NEAR(Reading(parabola), p(v, 2), 1e-9 * scale);
            EXPECT_NEAR(Reading(cubic), p(v, 3), 1e-9 * scale);
            EXPECT_NEAR(Reading(hermite), p(v, 3), 1e-9 * scale);
            EXPECT_NEAR(Reading(unitLine), p(v, 1), 1e-9 * scale);
            EXPECT_NEAR(Reading(unitHermite), p(v, 3), 1e-9 * scale);
        }
        // The Hermite forms take the given slopes at their ends.
        ZorWBExpression* slope = f.CreateDerivative(hermite, x);
        for (int end : {0, 3}) {
            SetReal(x, xs[end]);
            EXPECT_NEAR(Reading(slope), dp(xs[end]), 1e-9 * (1.0 + std::fabs(dp(xs[end]))));
        }
    }
}

TEST(ZorWBSegmentFunction, InterpolationsWithMissingOperands) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* a = f.GetOne();
    ZorWBExpression* n = nullptr;
    EXPECT_EQ(f.CreateLinearInterpolation01(n, a, a), nullptr);
    EXPECT_EQ(f.CreateLinearInterpolation01(x, a, n), nullptr);
    EXPECT_EQ(f.CreateLinearInterpolation2P(x, a, a, n, a), nullptr);
    EXPECT_EQ(f.CreateLinearInterpolation2P(x, a, n, a, a), nullptr);
    EXPECT_EQ(f.CreateQuadraticInterpolation3P(x, a, a, a, a, a, n), nullptr);
    EXPECT_EQ(f.CreateQuadraticInterpolation3P(n, a, a, a, a, a, a), nullptr);
    EXPECT_EQ(f.CreateCubicInterpolation4P(x, a, a, a, a, a, a, n, a), nullptr);
    EXPECT_EQ(f.CreateCubicInterpolation01(x, a, a, a, n), nullptr);
    EXPECT_EQ(f.CreateCubicInterpolation2P2D(x, a, a, a, a, n, a), nullptr);
    EXPECT_EQ(f.CreateCubicInterpolation2P2D(x, a, n, a, a, a, a), nullptr);
    // Equal abscissas divide by zero: no value, and a domain error.
    ZorWBExpression* flat = f.CreateLinearInterpolation2P(x, a, a, a, f.GetTwo());
    SetReal(x, 0.5);
    f.GetEnvironment().ClearError();
    Reading(flat);
    EXPECT_NE(f.GetEnvironment().GetError() & ZorWBError::Domain, 0u);
}
