#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "CalculusTestSupport.h"
#include "expressions/ZorWBOperator.h"

using Type = ZorWBExpressionType;

namespace {

using Builder = std::function<ZorWBExpression*(ZorWBFactory&, ZorWBVariable*, ZorWBVariable*)>;

struct OperatorCase {
    std::string name;
    Builder build;
    double low;  // x and y are drawn from [low, high]
    double high;
};

ZorWBExpression* Real(ZorWBFactory& f, double value) {
    return f.CreateRealConstant(value);
}

// Every operator kind, over arguments that involve both variables, on a
// domain where the function is defined.
std::vector<OperatorCase> OperatorCases() {
    using F = ZorWBFactory;
    using V = ZorWBVariable*;
    return {
        {"Sum",
         [](F& f, V x, V y) {
             return f.CreateSum(3,
                                std::vector<ZorWBExpression*>{x, y, f.CreateProduct(x, y)}.data());
         },
         -2, 2},
        {"Product",
         [](F& f, V x, V y) {
             return f.CreateProduct(3, std::vector<ZorWBExpression*>{x, y, f.CreateSin(x)}.data());
         },
         -2, 2},
        {"Quotient", [](F& f, V x, V y) { return f.CreateQuotient(f.CreateSin(x), y); }, 0.5, 2},
        {"PowerInteger", [](F& f, V x, V y) { return f.CreatePower(f.CreateProduct(x, y), 3); }, -2,
         2},
        {"PowerSquare", [](F& f, V x, V y) { return f.CreatePower(f.CreateSum(x, y), 2); }, -2, 2},
        {"PowerNegative", [](F& f, V x, V y) { return f.CreatePower(f.CreateSum(x, y), -2); }, 0.5,
         2},
        {"PowerReal",
         [](F& f, V x, V y) { return f.CreatePower(f.CreateProduct(x, y), Real(f, 2.5)); }, 0.5, 2},
        {"PowerFraction",
         [](F& f, V x, V y) {
             return f.CreatePower(f.CreateSum(x, y),
                                  f.CreateConstant(ZorWBValue(ZorWBCreateFraction(3, 2, 0, 0))));
         },
         0.5, 2},
        {"PowerVariable", [](F& f, V x, V y) { return f.CreatePower(x, y); }, 0.5, 2},
        {"RootOdd",
         [](F& f, V x, V y) { return f.CreateRoot(f.CreateProduct(f.CreateUnaryMinus(x), y), 3); },
         0.5, 2},
        {"RootVariable", [](F& f, V x, V y) { return f.CreateRoot(x, y); }, 0.5, 2},
        {"Sqrt", [](F& f, V x, V y) { return f.CreateSqrt(f.CreateProduct(x, y)); }, 0.5, 2},
        {"Log", [](F& f, V x, V y) { return f.CreateLog(f.CreateProduct(x, y)); }, 0.5, 2},
        {"Ln", [](F& f, V x, V y) { return f.CreateLn(f.CreateSum(x, y)); }, 0.5, 2},
        {"Exp", [](F& f, V x, V y) { return f.CreateExp(f.CreateProduct(x, y)); }, -1, 1},
        {"Sin", [](F& f, V x, V y) { return f.CreateSin(f.CreateProduct(x, y)); }, -2, 2},
        {"Cos", [](F& f, V x, V y) { return f.CreateCos(f.CreateProduct(x, y)); }, -2, 2},
        {"Tan", [](F& f, V x, V y) { return f.CreateTan(f.CreateProduct(x, y)); }, -1, 1},
        {"Asin",
         [](F& f, V x, V y) {
             return f.CreateAsin(f.CreateProduct(f.CreateProduct(x, y), Real(f, 0.8)));
         },
         -1, 1},
        {"Acos",
         [](F& f, V x, V y) {
             return f.CreateAcos(f.CreateProduct(f.CreateProduct(x, y), Real(f, 0.8)));
         },
         -1, 1},
        {"Atan", [](F& f, V x, V y) { return f.CreateAtan(f.CreateProduct(x, y)); }, -2, 2},
        {"Atan2", [](F& f, V x, V y) { return f.CreateAtan2(y, x); }, -2, 2},
        {"Sinh", [](F& f, V x, V y) { return f.CreateSinh(f.CreateProduct(x, y)); }, -1.5, 1.5},
        {"Cosh", [](F& f, V x, V y) { return f.CreateCosh(f.CreateProduct(x, y)); }, -1.5, 1.5},
        {"Tanh", [](F& f, V x, V y) { return f.CreateTanh(f.CreateProduct(x, y)); }, -1.5, 1.5},
        {"Asinh", [](F& f, V x, V y) { return f.CreateASinh(f.CreateProduct(x, y)); }, -2, 2},
        {"Acosh",
         [](F& f, V x, V y) {
             return f.CreateACosh(f.CreateSum(f.CreateProduct(x, y), Real(f, 4.0)));
         },
         -1.5, 1.5},
        {"Atanh",
         [](F& f, V x, V y) {
             return f.CreateATanh(f.CreateProduct(f.CreateProduct(x, y), Real(f, 0.8)));
         },
         -1, 1},
        {"Abs", [](F& f, V x, V y) { return f.CreateAbs(f.CreateSub(x, y)); }, -2, 2},
        {"Sign", [](F& f, V x, V y) { return f.CreateSign(f.CreateSin(x), y); }, -2, 2},
        {"Dim", [](F& f, V x, V y) { return f.CreateDim(f.CreateSin(x), y); }, -1, 1},
        {"Mod", [](F& f, V x, V y) { return f.CreateMod(f.CreateProduct(x, Real(f, 3.0)), y); },
         0.5, 2},
        {"ModNegative", [](F& f, V x, V y) { return f.CreateMod(f.CreateUnaryMinus(x), y); }, 0.5,
         2},
        {"Step",
         [](F& f, V x, V y) { return f.CreateStep(f.CreateProduct(x, y), -0.5, 0.5, 1.0, 3.0); },
         -1, 1},
        {"SharpStep",
         [](F& f, V x, V y) { return f.CreateStep(f.CreateSum(x, y), 0.0, 0.0, 1.0, 3.0); }, -1, 1},
        {"IfThenElse",
         [](F& f, V x, V y) {
             return f.CreateIfThenElse(f.CreateLessEqual(x, y), f.CreateSin(x),
                                       f.CreateProduct(x, y));
         },
         -2, 2},
        {"Min",
         [](F& f, V x, V y) {
             return f.CreateMin(3,
                                std::vector<ZorWBExpression*>{x, y, f.CreateProduct(x, y)}.data());
         },
         -2, 2},
        {"Max",
         [](F& f, V x, V y) {
             return f.CreateMax(3,
                                std::vector<ZorWBExpression*>{x, y, f.CreateProduct(x, y)}.data());
         },
         -2, 2},
        {"UnaryMinus", [](F& f, V x, V y) { return f.CreateUnaryMinus(f.CreateProduct(x, y)); }, -2,
         2},
        {"Floor",
         [](F& f, V x, V y) { return f.CreateSum(f.CreateFloor(f.CreateProduct(x, y)), x); }, -2,
         2},
        {"Ceil", [](F& f, V x, V y) { return f.CreateSum(f.CreateCeil(f.CreateProduct(x, y)), y); },
         -2, 2},
        {"Round", [](F& f, V x, V y) { return f.CreateRound(f.CreateProduct(x, y)); }, -2, 2},
        {"Trunc", [](F& f, V x, V y) { return f.CreateTrunc(f.CreateProduct(x, y)); }, -2, 2},
        {"Round3",
         [](F& f, V x, V y) {
             return f.CreateOperator(Type::Round, x, y, f.CreateProduct(y, Real(f, 0.3)));
         },
         0.5, 2},
        {"Round3ConstantStep",
         [](F& f, V x, V y) { return f.CreateOperator(Type::Round, x, Real(f, 0.25), y); }, -2, 2},
    };
}

}  // namespace

TEST(ZorWBDifferentiation, EveryOperatorAgreesWithCentralDifferences) {
    std::mt19937 random(20240611);
    for (const OperatorCase& c : OperatorCases()) {
        SCOPED_TRACE(c.name);
        ZorWBFactory f(ZorWBLevel::All);
        ZorWBVariable* x = f.CreateVariable();
        ZorWBVariable* y = f.CreateVariable();
        ZorWBExpression* e = c.build(f, x, y);
        ASSERT_NE(e, nullptr);
        auto setPoint = [&]() {
            SetReal(x, Uniform(random, c.low, c.high));
            SetReal(y, Uniform(random, c.low, c.high));
        };
        const int samples = 60;
        // Piecewise functions lose a few points next to their joints.
        EXPECT_GE(CheckDerivative(e, x, setPoint, samples), samples * 2 / 3);
        EXPECT_GE(CheckDerivative(e, y, setPoint, samples), samples * 2 / 3);
    }
}

TEST(ZorWBDifferentiation, RandomSmoothCompositionsAgreeWithCentralDifferences) {
    for (unsigned int seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        ZorWBFactory f(ZorWBLevel::All);
        SmoothGraph graph(f, seed, 3);
        ZorWBExpression* last = nullptr;
        for (int i = 0; i < 40; ++i)
            last = graph.AddSmoothNode();
        for (ZorWBVariable* x : graph.variables) {
            int compared = CheckDerivative(
                last, x, [&graph]() { graph.Randomise(); }, 8);
            EXPECT_EQ(compared, 8);
        }
    }
}

TEST(ZorWBDifferentiation, RandomPiecewiseCompositionsAgreeAwayFromTheirJoints) {
    int compared = 0;
    int samples = 0;
    for (unsigned int seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        ZorWBFactory f(ZorWBLevel::All);
        RandomGraph graph(f, seed, 3);
        ZorWBExpression* last = nullptr;
        for (int i = 0; i < 30; ++i)
            last = graph.AddNode();
        for (ZorWBVariable* x : graph.variables) {
            auto randomise = [&graph]() {
                for (ZorWBVariable* v : graph.variables)
                    SetReal(v, graph.Uniform());
            };
            compared += CheckDerivative(last, x, randomise, 10, true);
            samples += 10;
        }
    }
    EXPECT_GE(compared, samples / 2);
}

TEST(ZorWBDifferentiation, LeafRulesAndNullArguments) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    ZorWBExpression* c = f.CreateRealConstant(4.0);
    ZorWBExpression* sum = f.CreateSum(x, y);

    EXPECT_EQ(f.CreateDerivative(x, x), f.GetOne());
    EXPECT_EQ(f.CreateDerivative(y, x), f.GetZero());
    EXPECT_EQ(f.CreateDerivative(c, x), f.GetZero());
    EXPECT_EQ(f.CreateDerivative(f.CreateSum(c, f.GetTwo()), x), f.GetZero());
    EXPECT_EQ(f.CreateDerivative(nullptr, x), nullptr);
    EXPECT_EQ(f.CreateDerivative(sum, nullptr), nullptr);

    // Null variables: a variable and an operator give themselves, a
    // constant gives null.
    EXPECT_EQ(x->Differentiate(nullptr), x);
    EXPECT_EQ(sum->Differentiate(nullptr), sum);
    EXPECT_EQ(f.CreateSin(x)->Differentiate(nullptr)->GetType(), Type::Sin);
    EXPECT_EQ(c->Differentiate(nullptr), nullptr);
    EXPECT_EQ(c->Differentiate(x), f.GetZero());
}

TEST(ZorWBDifferentiation, ConstantLeafRuleByLevel) {
    for (unsigned int level :
         {Below(ZorWBLevel::PredefinedZeroOne), ZorWBLevel::PredefinedZeroOne}) {
        ZorWBFactory f(level);
        ZorWBVariable* x = f.CreateVariable();
        ZorWBExpression* c = f.CreateRealConstant(4.0);
        ZorWBExpression* first = c->Differentiate(x);
        ZorWBExpression* second = c->Differentiate(x);
        if (level >= ZorWBLevel::PredefinedZeroOne) {
            EXPECT_EQ(first, f.GetZero());
            EXPECT_EQ(second, f.GetZero());
        } else {
            // A fresh real 0.0 each time, kept for older data.
            ASSERT_NE(first, nullptr);
            EXPECT_NE(first, second);
            EXPECT_NE(first, f.GetZero());
            EXPECT_EQ(first->GetExprValue().GetType(), ZorWBRealType);
            EXPECT_EQ(first->GetExprValue().GetAsReal(), 0.0);
        }
        // CreateDerivative answers the shared Zero for a constant at every level.
        EXPECT_EQ(f.CreateDerivative(c, x), f.GetZero());
    }
}

TEST(ZorWBDifferentiation, ChainRuleShapesReuseTheOperands) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();

    // A single term is not wrapped in a Sum; zero terms are dropped.
    EXPECT_EQ(f.CreateDerivative(f.CreateSum(x, y), x), f.GetOne());
    ZorWBExpression* twice = f.CreateDerivative(f.CreateSum(x, x), x);
    ASSERT_EQ(twice->GetType(), Type::Sum);
    EXPECT_EQ(twice->GetChild(0), f.GetOne());
    EXPECT_EQ(twice->GetChild(1), f.GetOne());

    // d(x y)/dx is y itself; d(sin x)/dx is Cos(x) over x itself.
    EXPECT_EQ(f.CreateDerivative(f.CreateProduct(x, y), x), y);
    ZorWBExpression* cosine = f.CreateDerivative(f.CreateSin(x), x);
    ASSERT_EQ(cosine->GetType(), Type::Cos);
    EXPECT_EQ(cosine->GetChild(0), x);
    // d(exp u)/dx = exp(u) u' reuses the Exp node.
    ZorWBExpression* u = f.CreateProduct(x, y);
    ZorWBExpression* exp = f.CreateExp(u);
    ZorWBExpression* dExp = f.CreateDerivative(exp, x);
    ASSERT_EQ(dExp->GetType(), Type::Product);
    EXPECT_EQ(dExp->GetChild(0), exp);
    EXPECT_EQ(dExp->GetChild(1), y);

    // Piecewise-constant functions and comparisons give Zero.
    EXPECT_EQ(f.CreateDerivative(f.CreateFloor(u), x), f.GetZero());
    EXPECT_EQ(f.CreateDerivative(f.CreateLessEqual(x, y), x), f.GetZero());
    EXPECT_EQ(f.CreateDerivative(f.CreateNot(f.CreateLessEqual(x, y)), x), f.GetZero());
    EXPECT_EQ(f.CreateLessEqual(x, y)->Differentiate(nullptr)->GetType(), Type::LessEqual);
    // Exponents 0 and 1.
    EXPECT_EQ(f.CreateDerivative(f.CreatePower(u, 0), x), f.GetZero());
    EXPECT_EQ(f.CreateDerivative(f.CreatePower(u, 1), x), y);
    // A sharp step is flat on both sides.
    EXPECT_EQ(f.CreateDerivative(f.CreateStep(x, 1.0, 1.0, 0.0, 5.0), x), f.GetZero());
    EXPECT_EQ(f.CreateDerivative(f.CreateStep(x, 0.0, 1.0, 2.0, 2.0), x), f.GetZero());
}

TEST(ZorWBDifferentiation, PiecewiseDerivativesAtTheirJoints) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    ZorWBExpression* dAbs = f.CreateDerivative(f.CreateAbs(x), x);
    ZorWBExpression* dMinFirst = f.CreateDerivative(f.CreateMin(x, y), x);
    ZorWBExpression* dMinSecond = f.CreateDerivative(f.CreateMin(x, y), y);
    ZorWBExpression* dMaxSame = f.CreateDerivative(f.CreateMax(x, x), x);
    ZorWBExpression* dDim = f.CreateDerivative(f.CreateDim(x, y), x);
    ZorWBExpression* dStep = f.CreateDerivative(f.CreateStep(x, 0.0, 2.0, 1.0, 5.0), x);
    ZorWBExpression* dIf = f.CreateDerivative(
        f.CreateIfThenElse(f.CreateLessEqual(x, y), f.CreateProduct(x, f.GetThree()), y), x);

    SetReal(x, 0.0);
    SetReal(y, 0.0);
    EXPECT_EQ(Reading(dAbs), 1.0);  // the right derivative at 0
    // A tie goes to the first child: each term counts once.
    EXPECT_EQ(Reading(dMinFirst), 1.0);
    EXPECT_EQ(Reading(dMinSecond), 0.0);
    EXPECT_EQ(Reading(dMaxSame), 1.0);
    EXPECT_EQ(Reading(dDim), 0.0);   // a <= b: the flat side
    EXPECT_EQ(Reading(dStep), 0.0);  // the ramp starts strictly after x0
    EXPECT_EQ(Reading(dIf), 3.0);
    SetReal(x, 1.0);
    EXPECT_EQ(Reading(dStep), 2.0);
    EXPECT_EQ(Reading(dDim), 1.0);
    EXPECT_EQ(Reading(dIf), 0.0);
    EXPECT_EQ(Reading(dMinFirst), 0.0);
    SetReal(x, -1.0);
    EXPECT_EQ(Reading(dAbs), -1.0);

    // An undetermined condition makes the derivative indefinite.
    x->SetExprValue(ZorWBValue(ZorWBRealInterval{-1.0, 1.0}));
    EXPECT_TRUE(IsUndefined(dIf));
}

TEST(ZorWBDifferentiation, SuccessiveDerivatives) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    // x^2 y^3: d/dx then d/dy gives 6 x y^2.
    ZorWBExpression* e = f.CreateProduct(f.CreatePower(x, 2), f.CreatePower(y, 3));
    ZorWBVariable* xy[] = {x, y};
    ZorWBExpression* mixed = f.CreateDerivative(e, 2, xy);
    ASSERT_NE(mixed, nullptr);
    SetReal(x, 1.5);
    SetReal(y, -2.0);
    EXPECT_DOUBLE_EQ(Reading(mixed), 6.0 * 1.5 * 4.0);
    ZorWBVariable* xxx[] = {x, x, x};
    EXPECT_EQ(f.CreateDerivative(e, 3, xxx), f.GetZero());  // the third step meets a constant
    EXPECT_EQ(f.CreateDerivative(e, 0, xy), e);
    EXPECT_EQ(f.CreateDerivative(e, 2, nullptr), nullptr);
    ZorWBVariable* withNull[] = {x, nullptr};
    EXPECT_EQ(f.CreateDerivative(e, 2, withNull), nullptr);
    EXPECT_EQ(f.CreateDerivative(f.GetTwo(), 2, xy), f.GetZero());
}

TEST(ZorWBDifferentiation, MinAndMaxFromTheirLevel) {
    for (unsigned int level :
         {Below(ZorWBLevel::DifferentiateMinMax), ZorWBLevel::DifferentiateMinMax}) {
        bool differentiable = level >= ZorWBLevel::DifferentiateMinMax;
        ZorWBFactory f(level);
        ZorWBVariable* x = f.CreateVariable();
        ZorWBVariable* y = f.CreateVariable();
        ZorWBExpression* three[] = {x, y, f.GetTwo()};
        ZorWBExpression* min = f.CreateMin(x, y);
        EXPECT_EQ(f.CreateDerivative(min, x) != nullptr, differentiable);
        EXPECT_EQ(f.CreateDerivative(f.CreateMax(3, three), y) != nullptr, differentiable);
        // A null step makes every enclosing derivative null.
        EXPECT_EQ(f.CreateDerivative(f.CreateSin(f.CreateSum(min, x)), x) != nullptr,
                  differentiable);
        if (!differentiable) continue;
        SetReal(x, 3.0);
        SetReal(y, 5.0);
        EXPECT_EQ(Reading(f.CreateDerivative(min, x)), 1.0);
    }
}

TEST(ZorWBDifferentiation, SumAndProductRulesBelowAndAtTheGeneralChainRule) {
    for (unsigned int level :
         {Below(ZorWBLevel::PredefinedZeroOne), ZorWBLevel::PredefinedZeroOne}) {
        SCOPED_TRACE(level);
        ZorWBFactory f(level);
        ZorWBVariable* x = f.CreateVariable();
        ZorWBVariable* y = f.CreateVariable();
        // x y x: two terms, each the product with one x replaced by 1 (left out).
        ZorWBExpression* factors[] = {x, y, x};
        ZorWBExpression* d = f.CreateDerivative(f.CreateProduct(3, factors), x);
        ASSERT_EQ(d->GetType(), Type::Sum);
        ASSERT_EQ(d->GetNbOfChildren(), 2);
        for (int i = 0; i < 2; ++i) {
            const ZorWBExpression* term = d->GetChild(i);
            ASSERT_EQ(term->GetType(), Type::Product);
            EXPECT_EQ(term->GetNbOfChildren(), 2);
        }
        EXPECT_EQ(d->GetChild(0)->GetChild(0), y);
        EXPECT_EQ(d->GetChild(1)->GetChild(1), y);
        // Sum: the terms that are not zero, one of them alone.
        ZorWBExpression* parts[] = {y, f.CreateProduct(x, f.GetThree()), f.GetTwo()};
        EXPECT_EQ(f.CreateDerivative(f.CreateSum(3, parts), x), f.GetThree());
        EXPECT_EQ(f.CreateDerivative(f.CreateSum(y, f.GetTwo()), x), f.GetZero());
        SetReal(x, 2.0);
        SetReal(y, 3.0);
        EXPECT_DOUBLE_EQ(Reading(d), 12.0);
    }
}

TEST(ZorWBDifferentiation, SharedNodesAreDifferentiatedOnce) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    // u(k+1) = sin(u(k)) cos(u(k)): the tree unfolds to 2^200 leaves.
    ZorWBExpression* u = x;
    const int depth = 200;
    int before = f.GetNbOfExpressions();
    for (int k = 0; k < depth; ++k)
        u = f.CreateProduct(f.CreateSin(u), f.CreateCos(u));
    int original = f.GetNbOfExpressions() - before;
    before = f.GetNbOfExpressions();
    ZorWBExpression* d = f.CreateDerivative(u, x);
    ASSERT_NE(d, nullptr);
    int made = f.GetNbOfExpressions() - before;
    EXPECT_LE(made, 3 * original);
    SetReal(x, 0.3);
    EXPECT_TRUE(Agrees(Reading(d), CentralDifference(u, x)));

    // A node under many parents: its derivative is made once.
    ZorWBExpression* shared = f.CreateSin(x);
    std::vector<ZorWBExpression*> terms;
    for (int k = 0; k < 500; ++k)
        terms.push_back(f.CreateProduct(shared, f.CreateRealConstant(k)));
    ZorWBExpression* sum = f.CreateSum(static_cast<int>(terms.size()), terms.data());
    before = f.GetNbOfExpressions();
    ASSERT_NE(f.CreateDerivative(sum, x), nullptr);
    int cosines = 0;
    for (int i = before; i < f.GetNbOfExpressions(); ++i)
        cosines += f.GetExpression(i)->GetType() == Type::Cos;
    EXPECT_EQ(cosines, 1);
    EXPECT_LE(f.GetNbOfExpressions() - before, 500 + 2);
}

TEST(ZorWBDifferentiation, ChainsOfCompositionsGrowLinearly) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* u = x;
    const int depth = 5000;
    for (int k = 0; k < depth; ++k)
        u = f.CreateSin(f.CreateProduct(u, f.CreateRealConstant(1.001)));
    int before = f.GetNbOfExpressions();
    ZorWBExpression* d = f.CreateDerivative(u, x);
    ASSERT_NE(d, nullptr);
    // Cos, its product with the inner derivative, and the inner product.
    EXPECT_LE(f.GetNbOfExpressions() - before, 3 * depth);
    SetReal(x, 0.01);
    EXPECT_TRUE(Agrees(Reading(d), CentralDifference(u, x)));
}

TEST(ZorWBDifferentiation, AMillionDeepChainNeedsNoDeepCallStack) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* u = x;
    const int depth = 1000000;
    for (int k = 0; k < depth; ++k)
        u = f.CreateSum(u, x);
    f.GetOne();  // made on first use
    int before = f.GetNbOfExpressions();
    ZorWBExpression* d = f.CreateDerivative(u, x);
    ASSERT_NE(d, nullptr);
    EXPECT_EQ(f.GetNbOfExpressions() - before, depth);
    SetReal(x, 0.5);
    EXPECT_EQ(d->GetValue().GetAsInteger(), depth + 1);
}

TEST(ZorWBDifferentiation, DismantledNodesHaveNoDerivative) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    std::vector<ZorWBExpression*> nodes = {f.CreateQuotient(f.CreateSin(x), y),
                                           f.CreatePower(x, y),
                                           f.CreateAtan2(x, y),
                                           f.CreateIntegrateOperator(f.CreateSin(x), x),
                                           f.CreateOperator(Type::Round, x, y, y),
                                           f.CreateIfThenElse(f.CreateLessEqual(x, y), x, y)};
    for (ZorWBExpression* node : nodes) {
        SCOPED_TRACE(static_cast<int>(node->GetType()));
        ASSERT_TRUE(node->RemoveChild(node->GetNbOfChildren() - 1));
        EXPECT_EQ(f.CreateDerivative(node, x), nullptr);
        bool done = true;
        ZorWBExpression* antiDerivative = f.CreateAntiDerivative(node, x, done);
        EXPECT_FALSE(done);
        ASSERT_NE(antiDerivative, nullptr);
        EXPECT_EQ(antiDerivative->GetType(), Type::Integrate);
    }
}

// The differentiation passes over the parts of a system that do not reach
// the variable; an Integrate node in the factory (whose derivative may not
// exist) makes it look at every node again. Both ways give one derivative.
TEST(ZorWBDifferentiation, PartsFreeOfTheVariableGiveZeroWithAndWithoutIntegrateNodes) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    std::vector<ZorWBVariable*> ys;
    std::vector<ZorWBExpression*> terms;
    for (int k = 0; k < 50; ++k) {
        ZorWBVariable* y = f.CreateVariable();
        ys.push_back(y);
        ZorWBExpression* away = f.CreateSin(f.CreateProduct(y, f.CreateCos(y)));
        terms.push_back(k % 5 == 0 ? f.CreateProduct(away, f.CreateProduct(x, x)) : away);
    }
    ZorWBExpression* sum = f.CreateSum(static_cast<int>(terms.size()), terms.data());
    for (std::size_t k = 0; k < ys.size(); ++k)
        SetReal(ys[k], 0.1 * static_cast<double>(k));
    SetReal(x, 0.7);
    ZorWBExpression* shortcut = f.CreateDerivative(sum, x);
    ASSERT_NE(shortcut, nullptr);
    EXPECT_TRUE(Agrees(Reading(shortcut), CentralDifference(sum, x)));
    EXPECT_EQ(f.CreateDerivative(terms[1], x), f.GetZero());

    ASSERT_NE(f.CreateIntegrateOperator(f.CreateSin(ys[0]), ys[0]), nullptr);
    ZorWBExpression* full = f.CreateDerivative(f.CreateSum(sum, f.CreateRealConstant(1.0)), x);
    ASSERT_NE(full, nullptr);
    EXPECT_TRUE(Agrees(Reading(full), Reading(shortcut)));
    EXPECT_EQ(f.CreateDerivative(terms[1], x), f.GetZero());
}
