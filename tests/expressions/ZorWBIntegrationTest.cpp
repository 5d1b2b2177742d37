#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <vector>

#include "CalculusTestSupport.h"

using Type = ZorWBExpressionType;

namespace {

// Random integrands from the forms of the integration table, over linear
// arguments a x + b that stay positive for x, a, b in [0.5, 2].
class TableForms {
  public:
    TableForms(ZorWBFactory& f, ZorWBVariable* x, ZorWBVariable* y, unsigned int seed)
        : _f(f), _x(x), _y(y), _random(seed) {}

    ZorWBExpression* Constant() { return _f.CreateRealConstant(Uniform(_random, 0.5, 2.0)); }

    ZorWBExpression* LinearArgument() {
        switch (Index(5)) {
            case 0:
                return _x;
            case 1:
                return _f.CreateProduct(Constant(), _x);
            case 2:
                return _f.CreateSum(_x, Constant());
            case 3:
                return _f.CreateQuotient(_f.CreateSum(_f.CreateProduct(_y, _x), Constant()),
                                         Constant());
            default:
                return _f.CreateSum(_f.CreateProduct(Constant(), _x), Constant());
        }
    }

    ZorWBExpression* Form() {
        ZorWBFactory& f = _f;
        ZorWBExpression* u = LinearArgument();
        switch (Index(17)) {
            case 0:
                return f.CreateExp(u);
            case 1:
                return f.CreateSin(u);
            case 2:
                return f.CreateCos(u);
            case 3:
                return f.CreateSinh(u);
            case 4:
                return f.CreateCosh(u);
            case 5:
                return f.CreatePower(u, 1 + Index(3));
            case 6:
                return f.CreatePower(u, -1 - Index(3));
            case 7:
                return f.CreatePower(u, f.CreateRealConstant(0.5));
            case 8:
                return f.CreatePower(u,
                                     f.CreateConstant(ZorWBValue(ZorWBCreateFraction(1, 3, 0, 0))));
            case 9:
                return f.CreatePower(u, _y);
            case 10:
                return f.CreateQuotient(Constant(), u);
            case 11:
                return f.CreatePower(f.GetTwo(), u);
            case 12:
                return f.CreateSqrt(u);
            case 13:
                return f.CreateRoot(u, 3);
            case 14:
                return f.CreateRoot(u, _y);
            case 15:
                return f.CreatePower(u, f.CreateRealConstant(-1.0));
            default:
                return u;
        }
    }

    // Sums, constant multiples, quotients by constants and negations of forms.
    ZorWBExpression* Integrand(int depth) {
        if (depth == 0) return Form();
        ZorWBFactory& f = _f;
        switch (Index(6)) {
            case 0:
                return f.CreateSum(Integrand(depth - 1), Integrand(depth - 1));
            case 1:
                return f.CreateProduct(Constant(), Integrand(depth - 1));
            case 2: {
                ZorWBExpression* factors[] = {_y, Integrand(depth - 1), Constant()};
                return f.CreateProduct(3, factors);
            }
            case 3:
                return f.CreateQuotient(Integrand(depth - 1), f.CreateSum(_y, f.GetOne()));
            case 4:
                return f.CreateUnaryMinus(Integrand(depth - 1));
            default:
                return f.CreateSum(Integrand(depth - 1), f.CreateSin(_y));
        }
    }

  private:
    int Index(int n) { return std::uniform_int_distribution<int>(0, n - 1)(_random); }

    ZorWBFactory& _f;
    ZorWBVariable* _x;
    ZorWBVariable* _y;
    std::mt19937 _random;
};

}  // namespace

TEST(ZorWBIntegration, TheDerivativeOfEveryAntiDerivativeIsTheIntegrand) {
    std::mt19937 random(77);
    for (unsigned int seed = 1; seed <= 150; ++seed) {
        SCOPED_TRACE(seed);
        ZorWBFactory f(ZorWBLevel::All);
        ZorWBVariable* x = f.CreateVariable();
        ZorWBVariable* y = f.CreateVariable();
        TableForms forms(f, x, y, seed);
        ZorWBExpression* integrand = forms.Integrand(static_cast<int>(seed % 3));
        bool done = false;
        ZorWBExpression* antiDerivative = f.CreateAntiDerivative(integrand, x, done);
        ASSERT_TRUE(done);
        ASSERT_NE(antiDerivative, nullptr);
        EXPECT_NE(antiDerivative->GetType(), Type::Integrate);
        ZorWBExpression* derivative = f.CreateDerivative(antiDerivative, x);
        ASSERT_NE(derivative, nullptr);
        for (int sample = 0; sample < 5; ++sample) {
            SetReal(x, Uniform(random, 0.5, 2.0));
            SetReal(y, Uniform(random, 0.5, 2.0));
            double expected = Reading(integrand);
            ASSERT_TRUE(std::isfinite(expected));
            EXPECT_TRUE(Agrees(Reading(derivative), expected, 1e-9))
                << Reading(derivative) << " vs " << expected;
        }
    }
}

TEST(ZorWBIntegration, LeafRules) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    bool done = false;

    ZorWBExpression* square = f.CreateAntiDerivative(x, x, done);
    EXPECT_TRUE(done);
    ASSERT_EQ(square->GetType(), Type::Product);
    const ZorWBExpression* half = square->GetChild(0);
    const ZorWBExpression* power = square->GetChild(1);
    ASSERT_EQ(half->GetType(), Type::Quotient);
    EXPECT_EQ(half->GetChild(0), f.GetOne());
    EXPECT_EQ(half->GetChild(1), f.GetTwo());
    ASSERT_EQ(power->GetType(), Type::Power);
    EXPECT_EQ(power->GetChild(0), x);
    EXPECT_EQ(power->GetChild(1), f.GetTwo());

    done = false;
    ZorWBExpression* other = f.CreateAntiDerivative(y, x, done);
    EXPECT_TRUE(done);
    ASSERT_EQ(other->GetType(), Type::Product);
    EXPECT_EQ(other->GetChild(0), y);
    EXPECT_EQ(other->GetChild(1), x);

    EXPECT_EQ(f.CreateAntiDerivative(f.GetZero(), x, done), f.GetZero());
    EXPECT_TRUE(done);
    EXPECT_EQ(f.CreateAntiDerivative(f.CreateRealConstant(0.0), x, done), f.GetZero());
    ZorWBExpression* three = f.CreateRealConstant(3.0);
    ZorWBExpression* line = f.CreateAntiDerivative(three, x, done);
    EXPECT_TRUE(done);
    EXPECT_EQ(line->GetChild(0), three);
    EXPECT_EQ(line->GetChild(1), x);

    // Without a variable nothing is found.
    done = true;
    EXPECT_EQ(f.CreateAntiDerivative(three, nullptr, done), nullptr);
    EXPECT_FALSE(done);
    done = true;
    EXPECT_EQ(f.CreateAntiDerivative(x, nullptr, done), nullptr);
    EXPECT_FALSE(done);
    done = true;
    EXPECT_EQ(f.CreateAntiDerivative(f.CreateSin(x), nullptr, done), nullptr);
    EXPECT_FALSE(done);
    EXPECT_EQ(f.CreateAntiDerivative(nullptr, x, done), nullptr);
}

TEST(ZorWBIntegration, TableShapesReuseTheIntegrand) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    bool done = false;
    // exp(x) is its own antiderivative: the same node.
    ZorWBExpression* exp = f.CreateExp(x);
    EXPECT_EQ(f.CreateAntiDerivative(exp, x, done), exp);
    // x^-1 and 1/x give Ln(Abs(x)).
    for (ZorWBExpression* reciprocal : {f.CreatePower(x, -1), f.CreateQuotient(f.GetOne(), x)}) {
        ZorWBExpression* log = f.CreateAntiDerivative(reciprocal, x, done);
        EXPECT_TRUE(done);
        ASSERT_EQ(log->GetType(), Type::Ln);
        ASSERT_EQ(log->GetChild(0)->GetType(), Type::Abs);
        EXPECT_EQ(log->GetChild(0)->GetChild(0), x);
    }
    // x^2 gives x^3 / 3 with the computed exponent.
    ZorWBExpression* cube = f.CreateAntiDerivative(f.CreatePower(x, 2), x, done);
    ASSERT_EQ(cube->GetType(), Type::Quotient);
    EXPECT_EQ(cube->GetChild(0)->GetChild(1), f.GetThree());
    EXPECT_EQ(cube->GetChild(1), f.GetThree());
    // An integrand free of the variable is multiplied by it.
    ZorWBExpression* free = f.CreateSin(y);
    ZorWBExpression* scaled = f.CreateAntiDerivative(free, x, done);
    EXPECT_TRUE(done);
    EXPECT_EQ(scaled->GetChild(0), free);
    EXPECT_EQ(scaled->GetChild(1), x);
    // Terms that integrate to zero are left out.
    EXPECT_EQ(f.CreateAntiDerivative(f.CreateSum(exp, f.GetZero()), x, done), exp);
}

TEST(ZorWBIntegration, FormsOutsideTheTableGiveAnIntegrateNode) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    SetReal(x, 0.5);
    std::vector<ZorWBExpression*> unknown = {
        f.CreateProduct(x, f.CreateSin(x)),                               // two factors with x
        f.CreateTan(x),                                                   // not in the table
        f.CreateSin(f.CreatePower(x, 2)),                                 // argument not linear
        f.CreateSum(f.CreateSin(x), f.CreateTan(x)),                      // one unknown term
        f.CreateQuotient(f.GetOne(), f.CreateSqrt(f.CreatePower(x, 3))),  // not rational
        f.CreateQuotient(f.GetOne(),
                         f.CreateSum(f.CreatePower(x, 4), f.GetOne())),  // quartic roots
        f.CreatePower(x, x),                                             // exponent and base vary
        f.CreateLessEqual(x, f.GetOne()),                                // a comparison
    };
    for (ZorWBExpression* e : unknown) {
        bool done = true;
        ZorWBExpression* result = f.CreateAntiDerivative(e, x, done);
        EXPECT_FALSE(done);
        ASSERT_NE(result, nullptr);
        ASSERT_EQ(result->GetType(), Type::Integrate);
        EXPECT_EQ(result->GetChild(0), e);
        EXPECT_EQ(result->GetChild(1), x);
        // An antiderivative without closed form has no value.
        EXPECT_TRUE(IsUndefined(result));
        EXPECT_TRUE(std::isnan(result->Eval()));
    }
}

TEST(ZorWBIntegration, DerivativesOfIntegrateNodes) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    ZorWBExpression* integrand = f.CreateTan(f.CreateProduct(x, y));
    ZorWBExpression* node = f.CreateIntegrateOperator(integrand, x);
    EXPECT_EQ(f.CreateDerivative(node, x), integrand);
    // By another variable: under the integral sign.
    ZorWBExpression* byY = f.CreateDerivative(node, y);
    ASSERT_EQ(byY->GetType(), Type::Integrate);
    EXPECT_EQ(byY->GetChild(1), x);
    SetReal(x, 0.3);
    SetReal(y, 0.7);
    double expected = 0.3 / std::pow(std::cos(0.21), 2);
    EXPECT_NEAR(Reading(byY->GetChild(0)), expected, 1e-12);
    // Free of the variable: zero; by a non-variable: no derivative.
    EXPECT_EQ(f.CreateDerivative(f.CreateIntegrateOperator(f.CreateTan(y), x), x)->GetType(),
              Type::Tan);
    EXPECT_EQ(f.CreateDerivative(f.CreateIntegrateOperator(f.CreateTan(x), y), x)->GetType(),
              Type::Integrate);
    EXPECT_EQ(f.CreateDerivative(f.CreateIntegrateOperator(f.CreateTan(y), y), x), f.GetZero());
    EXPECT_EQ(f.CreateDerivative(f.CreateIntegrateOperator(integrand, f.CreateSum(x, y)), x),
              nullptr);
}

TEST(ZorWBIntegration, DefiniteIntegrals) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    bool done = false;
    ZorWBValue low(0.0);
    ZorWBValue high(1);
    ZorWBExpression* third = f.CreateAntiDerivative(f.CreatePower(x, 2), x, low, high, done);
    ASSERT_TRUE(done);
    EXPECT_NEAR(Reading(third), 1.0 / 3.0, 1e-15);
    EXPECT_TRUE(third->IsFree(x));
    EXPECT_EQ(low.GetAsReal(), 0.0);  // the bounds are read, not changed
    EXPECT_EQ(high.GetAsInteger(), 1);

    // Other variables stay: integral of y / x from 1 to 2 is y ln 2.
    ZorWBValue one(1.0);
    ZorWBValue two(2.0);
    ZorWBExpression* log = f.CreateAntiDerivative(f.CreateQuotient(y, x), x, one, two, done);
    ASSERT_TRUE(done);
    for (double value : {0.5, 3.0}) {
        SetReal(y, value);
        EXPECT_NEAR(Reading(log), value * std::log(2.0), 1e-14);
    }
    // Without an antiderivative: the Integrate node, done false.
    ZorWBExpression* tan = f.CreateTan(x);
    ZorWBExpression* none = f.CreateAntiDerivative(tan, x, one, two, done);
    EXPECT_FALSE(done);
    ASSERT_EQ(none->GetType(), Type::Integrate);
    EXPECT_EQ(none->GetChild(0), tan);
    EXPECT_EQ(f.CreateAntiDerivative(nullptr, x, one, two, done), nullptr);
}

TEST(ZorWBIntegration, SuccessiveIntegrals) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    ZorWBVariable* xy[] = {x, y};
    bool done = false;
    ZorWBExpression* both = f.CreateAntiDerivative(f.CreateProduct(x, y), 2, xy, done);
    ASSERT_TRUE(done);
    SetReal(x, 2.0);
    SetReal(y, 3.0);
    EXPECT_DOUBLE_EQ(Reading(both), 4.0 * 9.0 / 4.0);
    // A step without a closed form stops the chain there.
    ZorWBExpression* tan = f.CreateTan(x);
    ZorWBExpression* stopped = f.CreateAntiDerivative(tan, 2, xy, done);
    EXPECT_FALSE(done);
    ASSERT_EQ(stopped->GetType(), Type::Integrate);
    EXPECT_EQ(stopped->GetChild(0), tan);
    EXPECT_EQ(f.CreateAntiDerivative(tan, 0, xy, done), tan);
    EXPECT_TRUE(done);
    EXPECT_EQ(f.CreateAntiDerivative(tan, 2, nullptr, done), nullptr);
    EXPECT_FALSE(done);
}

TEST(ZorWBIntegration, SharedAndDeepIntegrandsGrowLinearly) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    // u(k+1) = u(k) + u(k): a tree of 2^100 leaves as a graph of 100 sums.
    ZorWBExpression* u = f.CreateCos(x);
    for (int k = 0; k < 100; ++k)
        u = f.CreateSum(u, u);
    int before = f.GetNbOfExpressions();
    bool done = false;
    ZorWBExpression* antiDerivative = f.CreateAntiDerivative(u, x, done);
    ASSERT_TRUE(done);
    EXPECT_LE(f.GetNbOfExpressions() - before, 100 + 2);
    SetReal(x, 0.25);
    EXPECT_NEAR(Reading(antiDerivative), std::ldexp(std::sin(0.25), 100),
                1e-12 * std::ldexp(1.0, 100));

    // A deep chain integrates without a deep call stack.
    const int depth = 200000;
    ZorWBExpression* chain = x;
    for (int k = 0; k < depth; ++k)
        chain = f.CreateSum(chain, x);
    before = f.GetNbOfExpressions();
    antiDerivative = f.CreateAntiDerivative(chain, x, done);
    ASSERT_TRUE(done);
    EXPECT_LE(f.GetNbOfExpressions() - before, depth + 4);
    SetReal(x, 2.0);
    EXPECT_DOUBLE_EQ(Reading(antiDerivative), (depth + 1) * 2.0);
}
