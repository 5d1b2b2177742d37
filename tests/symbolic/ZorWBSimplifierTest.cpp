#include <gtest/gtest.h>

#include "SymbolicTestSupport.h"
#include "symbolic/ZorWBConstantArithmetic.h"
#include "symbolic/ZorWBSimplifier.h"

namespace {

class SimplifierTest : public ::testing::Test {
  protected:
    ZorWBFactory f;
    ZorWBVariable* x = NamedVariable(f, "x");
    ZorWBVariable* y = NamedVariable(f, "y");
    ZorWBVariable* z = NamedVariable(f, "z");
    ZorWBSimplifier simplifier{f};

    std::string Simplified(ZorWBExpression* e) { return Text(simplifier.Simplify(e, false)); }
    ZorWBExpression* Fraction(int n, int d, int power = 0) {
        return f.CreateConstant(ZorWBValue(ZorWBCreateFraction(n, d, power, 0)));
    }
};

TEST_F(SimplifierTest, ConstantsFoldExactlyThroughIntegersAndFractionsOfPi) {
    // 1/3 + 1/6 is the fraction 1/2, not a rounded real.
    EXPECT_EQ(Simplified(f.CreateSum(f.CreateQuotient(Int(f, 1), Int(f, 3)),
                                     f.CreateQuotient(Int(f, 1), Int(f, 6)))),
              "{1/2}");
    EXPECT_EQ(Simplified(f.CreateSum(f.CreateConstantPi(), f.CreateConstantPi())), "{2/1 * Pi^1}");
    EXPECT_EQ(Simplified(f.CreateProduct(f.CreateConstantPi(), f.CreateConstantRTOD())), "180");
    // Rationals of different powers of Pi have no exact sum: both stay.
    EXPECT_EQ(Simplified(f.CreateSum(Int(f, 1), f.CreateConstantPi())), "Sum(1, {1/1 * Pi^1})");
    // A real absorbs the other constants.
    EXPECT_EQ(Simplified(f.CreateSum(f.CreateRealConstant(0.5), Int(f, 2))), "2.5");
    EXPECT_EQ(Simplified(f.CreatePower(Fraction(2, 3), Int(f, -2))), "{9/4}");
    // Multiples of Pi/2 under sin, cos and tan are exact.
    EXPECT_EQ(Simplified(f.CreateSum(f.CreateSin(f.CreateConstantPi()), x)), "x");
    EXPECT_EQ(Simplified(f.CreateSum(f.CreateCos(Fraction(3, 2, 1)), x)), "x");
    EXPECT_EQ(Simplified(f.CreateCos(f.CreateConstantPi())), "-1");
    // An integer that leaves the exact range folds as a real.
    EXPECT_EQ(Simplified(f.CreateProduct(Int(f, 2000000000), Int(f, 4))), "8e+09");
}

TEST_F(SimplifierTest, FoldingStopsWhereEvaluationReportsAnError) {
    f.GetEnvironment().ClearError();
    f.GetEnvironment().SetError(ZorWBError::IncompatibleKinds);
    ZorWBExpression* log = f.CreateLn(Int(f, -1));
    EXPECT_EQ(simplifier.Simplify(log, false), log);
    ZorWBExpression* division = f.CreateQuotient(Int(f, 1), Int(f, 0));
    EXPECT_EQ(Text(simplifier.Simplify(division, false)), "Quotient(1, 0)");
    // The host's error word is left as it was.
    EXPECT_EQ(f.GetEnvironment().GetError(), ZorWBError::IncompatibleKinds);
    f.GetEnvironment().ClearError();
}

TEST_F(SimplifierTest, NeutralAndAbsorbingElements) {
    EXPECT_EQ(Simplified(f.CreateSum(x, Int(f, 0))), "x");
    EXPECT_EQ(Simplified(f.CreateProduct(Int(f, 1), x)), "x");
    EXPECT_EQ(Simplified(f.CreatePower(x, 1)), "x");
    EXPECT_EQ(Simplified(f.CreateSum(f.CreatePower(x, 0), y)), "Sum(y, 1)");
    EXPECT_EQ(Simplified(f.CreateSum(f.CreateProduct(Int(f, 0), x), y)), "y");
    EXPECT_EQ(Simplified(f.CreateQuotient(x, f.CreateRealConstant(1.0))), "x");
    // 0 * ln(x) and ln(x)^0 keep the domain of ln(x).
    EXPECT_EQ(Simplified(f.CreateSum(f.CreateProduct(Int(f, 0), f.CreateLn(x)), y)),
              "Sum(Product(0, Ln(x)), y)");
    EXPECT_EQ(Simplified(f.CreateSum(f.CreatePower(f.CreateLn(x), 0), y)),
              "Sum(Power(Ln(x), 0), y)");
}

TEST_F(SimplifierTest, LikeTermsMeetInCanonicalOrder) {
    ZorWBExpression* a = f.CreateSum(f.CreateSum(f.CreateProduct(Int(f, 2), y), x),
                                     f.CreateSum(f.CreateProduct(y, Int(f, 3)), Int(f, 4)));
    EXPECT_EQ(Simplified(a), "Sum(x, Product(5, y), 4)");
    // x*y and y*x are one term; x*x and x^2 too.
    EXPECT_EQ(Simplified(f.CreateSum(f.CreateProduct(x, y), f.CreateProduct(y, x))),
              "Product(2, x, y)");
    EXPECT_EQ(Simplified(f.CreateSum(f.CreateProduct(x, x), f.CreatePower(x, 2))),
              "Product(2, Power(x, 2))");
    // Equal inputs in any order give equal outputs.
    ZorWBExpression* p = simplifier.Simplify(
        f.CreateSum(3, std::vector<ZorWBExpression*>{z, f.CreateSin(y), x}.data()), false);
    ZorWBExpression* q = simplifier.Simplify(
        f.CreateSum(3, std::vector<ZorWBExpression*>{x, z, f.CreateSin(y)}.data()), false);
    EXPECT_EQ(Text(p), Text(q));
    // A numeric factor of a sum is distributed where terms then merge.
    ZorWBExpression* d = f.CreateSub(f.CreateSum(x, Int(f, 1)),
                                     f.CreateProduct(Int(f, 2), f.CreateSum(x, Int(f, -3))));
    EXPECT_EQ(Simplified(d), "Sum(Product(-1, x), 7)");
    // ...but not where it would only make the sum heavier.
    ZorWBExpression* kept = f.CreateSum(f.CreateProduct(Int(f, 2), f.CreateSum(x, y)), z);
    EXPECT_EQ(Simplified(kept), "Sum(Product(2, Sum(x, y)), z)");
}

TEST_F(SimplifierTest, CancellationKeepsPartialTerms) {
    EXPECT_EQ(simplifier.Simplify(f.CreateSub(f.CreateSin(x), f.CreateSin(x)), false), nullptr);
    EXPECT_EQ(Simplified(f.CreateSub(f.CreateLn(x), f.CreateLn(x))), "Product(0, Ln(x))");
    EXPECT_EQ(
        Simplified(f.CreateSub(f.CreateQuotient(Int(f, 1), x), f.CreateQuotient(Int(f, 1), x))),
        "Quotient(0, x)");
    EXPECT_EQ(
        Simplified(f.CreateSum(f.CreateQuotient(Int(f, 2), x), f.CreateQuotient(Int(f, 3), x))),
        "Quotient(5, x)");
}

TEST_F(SimplifierTest, PowersOfEqualBasesMerge) {
    ZorWBExpression* cube = f.CreateProduct(3, std::vector<ZorWBExpression*>{x, x, x}.data());
    EXPECT_EQ(Simplified(cube), "Power(x, 3)");
    EXPECT_EQ(Simplified(f.CreateProduct(f.CreatePower(x, 2), x)), "Power(x, 3)");
    EXPECT_EQ(Simplified(f.CreatePower(f.CreatePower(x, 2), 3)), "Power(x, 6)");
    // x^-1 * x is undefined at 0: it stays a product.
    EXPECT_EQ(Simplified(f.CreateProduct(f.CreatePower(x, -1), x)), "Product(x, Power(x, -1))");
    EXPECT_EQ(Simplified(f.CreateProduct(f.CreatePower(x, -1), f.CreatePower(x, -2))),
              "Power(x, -3)");
    EXPECT_EQ(Simplified(f.CreatePower(f.CreatePower(x, -1), -1)), "Power(Power(x, -1), -1)");
    // The exponents of (x^2)^-1 have opposite signs: both sides need x != 0.
    EXPECT_EQ(Simplified(f.CreatePower(f.CreatePower(x, 2), -1)), "Power(x, -2)");
}

TEST_F(SimplifierTest, UnaryRules) {
    EXPECT_EQ(Simplified(f.CreateUnaryMinus(f.CreateUnaryMinus(x))), "x");
    EXPECT_EQ(Simplified(f.CreateUnaryMinus(f.CreateProduct(Int(f, 3), x))), "Product(-3, x)");
    EXPECT_EQ(Simplified(f.CreateSqrt(f.CreatePower(x, 2))), "Abs(x)");
    EXPECT_EQ(Simplified(f.CreateLn(f.CreateExp(x))), "x");
    EXPECT_EQ(Simplified(f.CreateAbs(f.CreateAbs(x))), "Abs(x)");
    // exp(ln(x)) = x only for x > 0: kept.
    EXPECT_EQ(Simplified(f.CreateExp(f.CreateLn(x))), "Exp(Ln(x))");
    EXPECT_EQ(Simplified(f.CreateNot(f.CreateNot(f.CreateLessEqual(x, y)))), "LessEqual(x, y)");
    ZorWBExpression* choice =
        f.CreateIfThenElse(f.CreateLessEqual(Int(f, 1), Int(f, 2)), x, f.CreateLn(y));
    EXPECT_EQ(Simplified(choice), "x");
    EXPECT_EQ(Simplified(f.CreateMin(f.CreateMin(x, Int(f, 3)), f.CreateMin(x, Int(f, 1)))),
              "Min(x, 1)");
    // A quotient by an exact constant is a product by its inverse.
    EXPECT_EQ(Simplified(f.CreateQuotient(f.CreateSum(x, Int(f, 1)), Int(f, 3))),
              "Sum(Product({1/3}, x), {1/3})");
}

TEST_F(SimplifierTest, TrigonometricPairs) {
    EXPECT_EQ(
        Simplified(f.CreateSum(f.CreatePower(f.CreateSin(x), 2), f.CreatePower(f.CreateCos(x), 2))),
        "1");
    ZorWBExpression* scaled =
        f.CreateSum(3,
                    std::vector<ZorWBExpression*>{
                        f.CreateProduct(Int(f, 3), f.CreatePower(f.CreateCos(y), 2)), z,
                        f.CreateProduct(Int(f, 3), f.CreatePower(f.CreateSin(y), 2))}
                        .data());
    EXPECT_EQ(Simplified(scaled), "Sum(z, 3)");
    // a sin^2 + b cos^2 = b + (a - b) sin^2.
    ZorWBExpression* unequal =
        f.CreateSum(f.CreateProduct(Int(f, 5), f.CreatePower(f.CreateSin(x), 2)),
                    f.CreateProduct(Int(f, 2), f.CreatePower(f.CreateCos(x), 2)));
    EXPECT_EQ(Simplified(unequal), "Sum(Product(3, Power(Sin(x), 2)), 2)");
    // The same with a common factor.
    ZorWBExpression* factored = f.CreateSum(f.CreateProduct(y, f.CreatePower(f.CreateSin(x), 2)),
                                            f.CreateProduct(f.CreatePower(f.CreateCos(x), 2), y));
    EXPECT_EQ(Simplified(factored), "y");
    EXPECT_EQ(Simplified(f.CreateProduct(f.CreateTan(x), f.CreateCos(x))), "Sin(x)");
    EXPECT_EQ(Simplified(f.CreateProduct(
                  3, std::vector<ZorWBExpression*>{f.CreateCos(y), z, f.CreateTan(y)}.data())),
              "Product(Sin(y), z)");
    EXPECT_EQ(Simplified(f.CreateQuotient(f.CreateSin(x), f.CreateCos(x))), "Tan(x)");
    // Different arguments do not pair.
    EXPECT_EQ(Simplified(f.CreateProduct(f.CreateTan(x), f.CreateCos(y))),
              "Product(Tan(x), Cos(y))");
    // Over a partial argument, cos(u)^2 carries a domain: no rewrite.
    ZorWBExpression* partial = f.CreateSum(f.CreatePower(f.CreateSin(f.CreateLn(x)), 2),
                                           f.CreatePower(f.CreateCos(f.CreateLn(x)), 2));
    EXPECT_NE(Simplified(partial), "1");
}

TEST_F(SimplifierTest, SubstitutionOfDefinitions) {
    std::vector<ZorWBExpression*> definitions(3, nullptr);
    std::vector<ZorQelBoolArray> dependencies(3);
    definitions[0] = f.CreateSum(y, Int(f, 1));  // x := y + 1
    definitions[1] = Int(f, 2);                  // y := 2
    simplifier.SetDefinitions(definitions.data(), dependencies.data(), 3);
    EXPECT_EQ(Simplified(f.CreateSum(x, z)), "Sum(z, 3)");
    // Definitions that contain their variable, directly or in a cycle, stay.
    definitions[0] = f.CreateSum(x, Int(f, 1));
    definitions[1] = f.CreateSum(z, Int(f, 1));
    definitions[2] = f.CreateSum(y, Int(f, 1));
    simplifier.SetDefinitions(definitions.data(), dependencies.data(), 3);
    EXPECT_EQ(Simplified(f.CreateSum(3, std::vector<ZorWBExpression*>{x, y, z}.data())),
              "Sum(x, y, z)");
    // A definition through a chain of others is substituted all the way.
    definitions = {f.CreateProduct(Int(f, 2), y), f.CreateSum(z, Int(f, 1)), nullptr};
    std::vector<ZorQelBoolArray> flags(3, ZorQelBoolArray(3));
    flags[0].Set(1, true);
    flags[1].Set(2, true);
    simplifier.SetDefinitions(definitions.data(), flags.data(), 3);
    EXPECT_EQ(Simplified(f.CreateSub(x, z)), "Sum(z, 2)");
    // A dependency array is believed: a flagged self-dependency stops it.
    flags[0].Set(0, true);
    simplifier.SetDefinitions(definitions.data(), flags.data(), 3);
    EXPECT_EQ(Simplified(f.CreateSub(x, z)), "Sum(x, Product(-1, z))");
    simplifier.ClearDefinitions();
    EXPECT_EQ(Simplified(f.CreateSum(x, y)), "Sum(x, y)");
}

TEST_F(SimplifierTest, ZeroRootsVanishUnlessKeptForTheCheck) {
    ZorWBExpression* zero = f.CreateSub(f.CreateProduct(Int(f, 2), x), f.CreateSum(x, x));
    EXPECT_EQ(simplifier.Simplify(zero, false), nullptr);
    ZorWBExpression* kept = simplifier.Simplify(zero, true);
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(Text(kept), "0");
    EXPECT_EQ(Text(simplifier.Simplify(f.CreateSum(Int(f, 2), Int(f, 3)), false)), "5");
    EXPECT_EQ(simplifier.Simplify(nullptr, false), nullptr);
    EXPECT_EQ(simplifier.Simplify(f.CreateRealConstant(0.0), false), nullptr);
}

TEST_F(SimplifierTest, FinalNormalisationWritesNegationsAndSquareRoots) {
    ZorWBExpression* e = f.CreateSum(x, f.CreateProduct(Int(f, -1), y));
    EXPECT_EQ(Text(simplifier.FinalNormalisation(e)), "Sum(x, UnaryMinus(y))");
    ZorWBExpression* root = f.CreatePower(x, Fraction(1, 2));
    EXPECT_EQ(Text(simplifier.FinalNormalisation(root)), "Sqrt(x)");
    ZorWBExpression* product =
        f.CreateProduct(3, std::vector<ZorWBExpression*>{Int(f, -1), x, y}.data());
    EXPECT_EQ(Text(simplifier.FinalNormalisation(product)), "UnaryMinus(Product(x, y))");
}

TEST_F(SimplifierTest, TraceNamesEachSimplifiedExpression) {
    TraceCapture trace(2);
    simplifier.Simplify(f.CreateSum(x, x), false);
    EXPECT_EQ(trace.Text(), "Expr: Sum(x, x) with weight (3) simplified to Product(2, x)\n");
}

TEST_F(SimplifierTest, RoundsAndTheLastMergeFollowTheLevel) {
    for (unsigned int level :
         {Below(ZorWBLevel::ThreeSimplifyRounds), ZorWBLevel::ThreeSimplifyRounds}) {
        ZorWBFactory g(level);
        ZorWBVariable* u = g.CreateVariable();
        ZorWBSimplifier s(g);
        // sqrt((-u)^2) is |-u| after one round and |u| after the second.
        ZorWBExpression* e = g.CreateSqrt(g.CreatePower(g.CreateUnaryMinus(u), 2));
        EXPECT_EQ(Text(s.Simplify(e, false)),
                  level == ZorWBLevel::ThreeSimplifyRounds ? "Abs(va0)" : "Abs(UnaryMinus(va0))");
    }
    for (unsigned int level :
         {Below(ZorWBLevel::MergeLikeTermsPass), ZorWBLevel::MergeLikeTermsPass}) {
        ZorWBFactory g(level);
        ZorWBVariable* u = g.CreateVariable();
        ZorWBVariable* v = g.CreateVariable();
        ZorWBSimplifier s(g);
        // 2*(sin^2 + cos^2 + u) + v: the pair becomes 1 after the rounds, and
        // only the last pass distributes the 2 again.
        ZorWBExpression* inner =
            g.CreateSum(3, std::vector<ZorWBExpression*>{g.CreatePower(g.CreateSin(v), 2),
                                                         g.CreatePower(g.CreateCos(v), 2), u}
                               .data());
        ZorWBExpression* e = g.CreateSum(g.CreateProduct(g.CreateIntegerConstant(2), inner), v);
        EXPECT_EQ(Text(s.Simplify(e, false)), level == ZorWBLevel::MergeLikeTermsPass
                                                  ? "Sum(Product(2, va0), va1, 2)"
                                                  : "Sum(Product(2, Sum(va0, 1)), va1)");
    }
}

TEST_F(SimplifierTest, WeightCountsTreeNodes) {
    EXPECT_EQ(ZorWBSimplifier::Weight(nullptr), 0);
    EXPECT_EQ(ZorWBSimplifier::Weight(x), 1);
    ZorWBExpression* shared = f.CreateSum(x, y);
    EXPECT_EQ(ZorWBSimplifier::Weight(f.CreateProduct(shared, shared)), 7);
}

TEST_F(SimplifierTest, DeepAndSharedGraphs) {
    // A chain far deeper than any call stack.
    ZorWBExpression* chain = x;
    for (int i = 0; i < 100000; ++i)
        chain = f.CreateSum(f.CreateSin(chain), Int(f, 1));
    ZorWBExpression* simplified = simplifier.Simplify(chain, false);
    ASSERT_NE(simplified, nullptr);
    EXPECT_LE(ZorWBSimplifier::Weight(simplified), ZorWBSimplifier::Weight(chain));
    // Doubling 70 times makes a tree of more than 2^70 nodes in a graph of 71.
    ZorWBExpression* doubled = x;
    for (int i = 0; i < 70; ++i)
        doubled = f.CreateSum(doubled, doubled);
    EXPECT_EQ(ZorWBSimplifier::Weight(doubled), 1LL << 60);
    ZorWBExpression* product = simplifier.Simplify(doubled, false);
    ASSERT_NE(product, nullptr);
    x->SetExprValue(ZorWBValue(1.0));
    EXPECT_DOUBLE_EQ(Evaluate(product), std::ldexp(1.0, 70));
}

TEST(ConstantArithmeticTest, ExactnessAndFailures) {
    ZorWBEnvironment environment;
    ZorWBValue out;
    using namespace ZorWBConstantArithmetic;
    EXPECT_TRUE(IsRational(ZorWBValue(ZorWBCreateFraction(1, 3, 1, 0))));
    EXPECT_FALSE(IsRational(ZorWBValue(ZorWBCreateFraction(1, 0, 0, 0))));
    EXPECT_FALSE(IsRational(ZorWBValue(ZorWBIntegerPlusInfinity)));
    EXPECT_TRUE(IsExactly(ZorWBValue(ZorWBRealInterval{2.0, 2.0}), 2.0));
    EXPECT_FALSE(IsExactly(ZorWBValue(ZorWBRealInterval{1.0, 2.0}), 1.0));
    EXPECT_FALSE(
        Sum(environment, ZorWBValue(1), ZorWBValue(ZorWBCreateFraction(1, 1, 1, 0)), false, out));
    ASSERT_TRUE(
        Sum(environment, ZorWBValue(1), ZorWBValue(ZorWBCreateFraction(1, 1, 1, 0)), true, out));
    EXPECT_DOUBLE_EQ(out.GetAsReal(), 1.0 + ZorWBPi);
    EXPECT_FALSE(Quotient(environment, ZorWBValue(1), ZorWBValue(0), out));
    EXPECT_FALSE(Power(environment, ZorWBValue(0), ZorWBValue(-1), out));
    ASSERT_TRUE(Power(environment, ZorWBValue(-2), ZorWBValue(31), out));
    EXPECT_DOUBLE_EQ(out.GetAsReal(), -2147483648.0);
    EXPECT_FALSE(TrigonometricOfPi(ZorWBExpressionType::Tan,
                                   ZorWBValue(ZorWBCreateFraction(1, 2, 1, 0)), out));
    ASSERT_TRUE(TrigonometricOfPi(ZorWBExpressionType::Sin,
                                  ZorWBValue(ZorWBCreateFraction(-1, 2, 1, 0)), out));
    EXPECT_EQ(out.GetAsInteger(), -1);
    // A fold beyond the real limit would stand for infinity: it does not fold.
    EXPECT_FALSE(Product(environment, ZorWBValue(1e200), ZorWBValue(1e200), out));
    EXPECT_FALSE(Power(environment, ZorWBValue(2), ZorWBValue(200), out));
    EXPECT_EQ(environment.GetError(), ZorWBError::None);
}

}  // namespace
