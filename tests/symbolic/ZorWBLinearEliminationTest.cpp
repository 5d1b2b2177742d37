#include <gtest/gtest.h>

#include "SymbolicTestSupport.h"
#include "parser/ZorWBModel.h"
#include "parser/ZorWBParser.h"
#include "parser/ZorWBParserMessenger.h"
#include "symbolic/ZorWBSymbolicTransformations.h"

namespace {

using ST = ZorWBSymbolicTransformations;

std::vector<std::string> Roots(ZorWBFactory& f) {
    std::vector<std::string> roots;
    for (ZorWBEquation* e = f.GetFirstEquation(); e; e = e->GetNext())
        roots.push_back(Text(e->GetRoot()) + ZorWBDebug::Str(e->GetType()).GetStdString());
    return roots;
}

class EliminationTest : public ::testing::TestWithParam<bool> {
  protected:
    ZorWBFactory f;
    ZorWBVariable* x = NamedVariable(f, "x");
    ZorWBVariable* y = NamedVariable(f, "y");
    ZorWBVariable* z = NamedVariable(f, "z");

    void SetUp() override { f.GetEnvironment().SetUseOldSymbolicTransformations(GetParam()); }
    ZorWBExpression* Times(int c, ZorWBExpression* v) { return f.CreateProduct(Int(f, c), v); }
    void Run(unsigned int mode) {
        ST* st = ZorCreateWBSymbolicTransformations(0, f);
        st->SetMode(mode);
        st->Run();
        ZorRemove(st);
    }
};

TEST_P(EliminationTest, TwoEquationsSolveInOnePass) {
    f.AddEquation(f.CreateSum(x, y), ZorWBEqualZero);
    f.AddEquation(f.CreateSub(f.CreateSub(x, y), Int(f, 2)), ZorWBEqualZero);
    Run(2);
    // Forms are collected last to first: x - y - 2 pivots on x (lower index
    // on equal magnitudes), then y; written back last form first.
    EXPECT_EQ(Roots(f), (std::vector<std::string>{"Sum(y, 1)  = 0", "Sum(x, -1)  = 0"}));
    EXPECT_EQ(f.GetEquation(0)->GetId(), 2);
}

TEST_P(EliminationTest, InexactCoefficientsAreLeftUnsolved) {
    ZorWBExpression* interval = f.CreateConstant(ZorWBValue(ZorWBRealInterval{1.0, 2.0}));
    f.AddEquation(f.CreateProduct(interval, x), ZorWBEqualZero);
    Run(2);
    ASSERT_EQ(f.GetNbOfEquations(), 1);
    ZorWBExpression* root = f.GetFirstEquation()->GetRoot();
    ASSERT_EQ(root->GetType(), ZorWBExpressionType::Product);
    EXPECT_TRUE(root->GetChild(0)->GetExprValue().IsEqualTo(
        f.GetEnvironment(), ZorWBValue(ZorWBRealInterval{1.0, 2.0})));
    EXPECT_EQ(root->GetChild(1), x);
}

TEST_P(EliminationTest, EquationsWithoutUnknownsVanish) {
    f.AddEquation(f.CreateSum(Int(f, 3), Int(f, -3)), ZorWBEqualZero);
    f.AddEquation(Int(f, 5), ZorWBEqualZero);
    f.AddEquation(f.CreateProduct(Int(f, 2), f.CreateSum(x, y)), ZorWBEqualZero);
    f.AddEquation(f.CreateSum(y, Int(f, 1)), ZorWBLessEqualZero);
    Run(2);
    EXPECT_EQ(Roots(f), std::vector<std::string>{"Sum(y, 1) <= 0"});
}

TEST_P(EliminationTest, VariablesOfCompoundTermsAreNotPivots) {
    // 5x + z + 2*(x + y) = 0 solves for z although x has the larger coefficient.
    ZorWBExpression* compound = f.CreateProduct(Int(f, 2), f.CreateSum(x, y));
    f.AddEquation(f.CreateSum(3, std::vector<ZorWBExpression*>{Times(5, x), z, compound}.data()),
                  ZorWBEqualZero);
    Run(2);
    ASSERT_EQ(f.GetNbOfEquations(), 1);
    ZorWBExpression* root = f.GetFirstEquation()->GetRoot();
    x->SetExprValue(ZorWBValue(1.0));
    y->SetExprValue(ZorWBValue(2.0));
    z->SetExprValue(ZorWBValue(-11.0));
    EXPECT_NEAR(Evaluate(root), 0.0, 1e-12);
    // The definition is of z: z - (-7x - 2y) = 0.
    EXPECT_EQ(Text(root), "Sum(Product(7, x), Product(2, y), z)");
}

TEST_P(EliminationTest, NoVariablesMeansNothingChanges) {
    ZorWBFactory g;
    g.GetEnvironment().SetUseOldSymbolicTransformations(GetParam());
    g.AddEquation(g.CreateSum(g.CreateIntegerConstant(1), g.CreateIntegerConstant(2)),
                  ZorWBEqualZero);
    ST* st = ZorCreateWBSymbolicTransformations(0, g);
    st->SetMode(2);
    st->Run();
    ZorRemove(st);
    EXPECT_EQ(Roots(g), std::vector<std::string>{"Sum(1, 2)  = 0"});
}

TEST_P(EliminationTest, SubstitutionReachesNonlinearEquationsAndLaterPasses) {
    // x = 2 makes x*y = 6 linear in a second pass: y = 3; then sin(z) + y.
    f.AddEquation(f.CreateSub(x, Int(f, 2)), ZorWBEqualZero);
    f.AddEquation(f.CreateSub(f.CreateProduct(x, y), Int(f, 6)), ZorWBEqualZero);
    f.AddEquation(f.CreateSum(f.CreateSin(z), y), ZorWBGreaterZero);
    Run(2);
    EXPECT_EQ(Roots(f), (std::vector<std::string>{"Sum(Sin(z), 3) > 0", "Sum(y, -3)  = 0",
                                                  "Sum(x, -2)  = 0"}));
}

TEST_P(EliminationTest, TypicalRequest) {
    // 2x + 3y = 12 and x - y <= 1.
    f.AddEquation(f.CreateSum(Times(2, x), Times(3, y)), ZorWBEqualZero, Int(f, 12));
    f.AddEquation(f.CreateSub(x, y), ZorWBLessEqualZero, Int(f, 1));
    Run(2);
    ASSERT_EQ(f.GetNbOfEquations(), 2);
    ZorWBEquation* inequality = f.GetFirstEquation();
    EXPECT_EQ(inequality->GetType(), ZorWBLessEqualZero);
    ZorQelListPZorWBVariable present;
    ASSERT_TRUE(inequality->FindPresentVariables(present));
    ASSERT_EQ(present.GetSize(), 1);
    EXPECT_EQ(present.Get(0), x);
    // x - (12 - 2x)/3 - 1 <= 0 is 5x/3 - 5 <= 0: true below 3, false above.
    x->SetExprValue(ZorWBValue(2.5));
    EXPECT_LT(Evaluate(inequality->GetRoot()), 0.0);
    x->SetExprValue(ZorWBValue(3.5));
    EXPECT_GT(Evaluate(inequality->GetRoot()), 0.0);
    // The definition equation holds where both originals do.
    y->SetExprValue(ZorWBValue((12.0 - 7.0) / 3.0));
    EXPECT_NEAR(Evaluate(f.GetLastEquation()->GetRoot()), 0.0, 1e-12);
}

TEST_P(EliminationTest, RepeatedVariablesAreMergedBeforeTheFormIsRead) {
    for (unsigned int mode : {2u, 6u}) {
        ZorWBFactory g;
        ZorWBVariable* u = g.CreateVariable();
        ZorWBVariable* v = g.CreateVariable();
        // u + 2u + v = 3 is 3u + v = 3, also when the simplifier did not run.
        ZorWBExpression* left =
            g.CreateSum(g.CreateSum(u, g.CreateProduct(g.CreateIntegerConstant(2), u)), v);
        g.AddEquation(left, ZorWBEqualZero, g.CreateIntegerConstant(3));
        ST* st = ZorCreateWBSymbolicTransformations(0, g);
        st->SetMode(mode);
        st->Run();
        ZorRemove(st);
        ASSERT_EQ(g.GetNbOfEquations(), 1);
        v->SetExprValue(ZorWBValue(0.0));
        u->SetExprValue(ZorWBValue(1.0));
        EXPECT_NEAR(Evaluate(g.GetFirstEquation()->GetRoot()), 0.0, 1e-12) << "mode " << mode;
    }
}

// va2 is a term of the third equation and inside products of the others: it
// comes back into the remainder of the form that solved for it, and a later
// pass solves for it again. The first form then defines nothing and is
// written back as an equation; every result holds at the solution.
TEST_P(EliminationTest, AVariableSolvedAgainInALaterPassLeavesItsFirstFormAnEquation) {
    const char* text =
        "va2 * -5.0 * -5.0 + va2 * -5.0 * -5.0 + (-3.375 + va0) = 44.375;\n"
        "va3 + (va2 * -5.0 * -5.0 + va2 * -5.0 * -5.0 + (-3.375 + va0)) = 42.375;\n"
        "2 * va0 + 2 * va0 - va1 + 4 * va2 + 5.5 = 0;\n"
        "va0 + 2.5 + (va2 * -5.0 * -5.0 + va2 * -5.0 * -5.0 + (-3.375 + va0)) + (va3 + (va2 * "
        "-5.0 * -5.0 + va2 * -5.0 * -5.0 + (-3.375 + va0))) * log(va2 * -5.0 * -5.0 + va2 * -5.0 "
        "* -5.0 + (-3.375 + va0)) * (va3 + (va2 * -5.0 * -5.0 + va2 * -5.0 * -5.0 + (-3.375 + "
        "va0))) = 3002.2935650991144;\n";
    ZorWBFactory system;
    system.GetEnvironment().SetUseOldSymbolicTransformations(GetParam());
    ZorWBModel model;
    ZorQelIntArray ids;
    ZorWBParserMessenger messenger;
    ASSERT_EQ(ZorWBParser::Parse(text, model, ids, messenger), 0);
    ZorQelIntArray equations;
    ASSERT_EQ(model.FillFactory(system, equations), 0);
    ST* st = ZorCreateWBSymbolicTransformations(0, system);
    st->SetMode(2);
    st->Run();
    ZorRemove(st);
    const std::pair<const char*, double> solution[] = {
        {"va0", -2.25}, {"va1", 0.5}, {"va2", 1.0}, {"va3", -2.0}};
    for (const auto& [name, value] : solution)
        system.GetVariable(ZorQelString(name))->SetExprValue(ZorWBValue(value));
    EXPECT_EQ(system.GetNbOfEquations(), 4);
    for (ZorWBEquation* e = system.GetFirstEquation(); e; e = e->GetNext())
        EXPECT_NEAR(Evaluate(e->GetRoot()), 0.0, 1e-9) << Text(e->GetRoot());
}

INSTANTIATE_TEST_SUITE_P(BothEngines, EliminationTest, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) {
                             return info.param ? "Old" : "New";
                         });

TEST(EliminationTraceTest, TracesNameEachStep) {
    ZorWBFactory f;
    ZorWBVariable* x = NamedVariable(f, "x");
    ZorWBVariable* y = NamedVariable(f, "y");
    f.AddEquation(f.CreateSum(f.CreateProduct(Int(f, 2), x), f.CreateProduct(Int(f, 3), y)),
                  ZorWBEqualZero, Int(f, 12));
    f.AddEquation(f.CreateSub(x, y), ZorWBEqualZero);
    TraceCapture trace(2);
    ST* st = ZorCreateWBSymbolicTransformations(0, f);
    st->SetMode(2);
    st->Run();
    ZorRemove(st);
    const std::string& text = trace.Text();
    for (const char* expected :
         {"Eq[0] = Sum(Sum(Product(2, x), Product(3, y)), -12)\nEq[1] = Sum(x, Product(-1, y))\n",
          "::FillValues() Sum(x, Product(-1, y))\n", "  LinearForm[0] = + x - y\n", "Factor = -1\n",
          "  LinearForm[1] = + 5 * y + ##-12 ##\n",
          "substitute variables at LinearForm[1] = + 2 * x + 3 * y + ##-12 ##\n",
          "after substitute + 5 * y + ##-12 ##\n", "Factor = -1/5\n",
          "substitute variables at LinearForm[0] = - x + y\n",
          "after substitute - x + ##{12/5} ##\n",
          "\n\nExpressions for variables:\nx := {12/5}\ny := {12/5}\n",
          "Var[0] = null expression\nVar[1] = null expression\n"}) {
        EXPECT_NE(text.find(expected), std::string::npos) << expected << "\nin\n" << text;
    }
}

}  // namespace
