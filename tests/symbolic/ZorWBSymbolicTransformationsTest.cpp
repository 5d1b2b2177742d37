#include <gtest/gtest.h>

#include "SymbolicTestSupport.h"
#include "symbolic/ZorWBSymbolicReplay.h"
#include "symbolic/ZorWBSymbolicTransformations.h"
#include "symbolic/ZorWBSymbolicTransformationsNew.h"
#include "symbolic/ZorWBSymbolicTransformationsOld.h"

namespace {

using ST = ZorWBSymbolicTransformations;

// Opens the protected property operations for the tests.
class OpenTransformations : public ZorWBSymbolicTransformationsNew {
  public:
    using ST::Binarise;
    using ST::Flatten;
    using ST::GetProperty;
    using ST::SetProperties;
    using ST::SetProperty;
    using ZorWBSymbolicTransformationsNew::ZorWBSymbolicTransformationsNew;
};

std::vector<std::string> Roots(ZorWBFactory& f) {
    std::vector<std::string> roots;
    for (ZorWBEquation* e = f.GetFirstEquation(); e; e = e->GetNext())
        roots.push_back(Text(e->GetRoot()) + ZorWBDebug::Str(e->GetType()).GetStdString());
    return roots;
}

class TransformationsTest : public ::testing::Test {
  protected:
    ZorWBFactory f;
    ZorWBVariable* x = NamedVariable(f, "x");
    ZorWBVariable* y = NamedVariable(f, "y");

    // Runs a new operator with mode over the factory; returns whether it
    // found inconsistent inequalities.
    bool Run(unsigned int mode, std::vector<int> ids = {}) {
        ST* st = ZorCreateWBSymbolicTransformations(0, f);
        st->SetMode(mode);
        for (int id : ids)
            st->SetEquationToSimplify(id);
        st->Run();
        bool inconsistent = st->AreInequalitiesInconsistent();
        ZorRemove(st);
        return inconsistent;
    }
};

TEST_F(TransformationsTest, IdentityOfTheOperator) {
    ST* st = ZorCreateWBSymbolicTransformations(7, f);
    ASSERT_NE(st, nullptr);
    EXPECT_NE(dynamic_cast<ZorWBSymbolicTransformationsNew*>(st), nullptr);
    EXPECT_EQ(st->GetOperatorName(), "ZorWBSymbolicTransformations");
    EXPECT_EQ(st->GetOperatorShortName(), "ST");
    EXPECT_EQ(st->GetVersionOfStream(), 1);
    EXPECT_EQ(ST::_CurrentStreamVersion, 1);
    EXPECT_EQ(st->GetQelLevel(), 7u);
    EXPECT_EQ(st->GetMode(), 0u);
    ZorQelStream stream;
    EXPECT_TRUE(st->CheckInput(stream));
    EXPECT_TRUE(st->CheckOutput(stream));
    ZorQelOperator::OperatorInfo& info = st->GetOperatorInfo();
    EXPECT_EQ(info.GetName(), "ZorWBSymbolicTransformations");
    EXPECT_EQ(info.GetShortName(), "ST");
    EXPECT_EQ(info.GetReplayKeyword(), "QelWBReplay");
    // One identity for the whole process, whatever the engine.
    f.GetEnvironment().SetUseOldSymbolicTransformations(true);
    ST* old = ZorCreateWBSymbolicTransformations(7, f);
    ASSERT_NE(old, nullptr);
    EXPECT_NE(dynamic_cast<ZorWBSymbolicTransformationsOld*>(old), nullptr);
    EXPECT_EQ(&old->GetOperatorInfo(), &info);
    EXPECT_FALSE(old->SetEquationToSimplify(0));
    EXPECT_TRUE(st->SetEquationToSimplify(0));
    ZorRemove(old);
    ZorRemove(st);
    ZorRemove(nullptr);
    // The new engine registers "constant" then "linear" at creation.
    EXPECT_EQ(f.GetPropertyName(1), "constant");
    EXPECT_EQ(f.GetPropertyName(2), "linear");
}

TEST_F(TransformationsTest, PropertiesOfWholeGraphs) {
    OpenTransformations st(0, f);
    ZorWBExpression* two = Int(f, 2);
    ZorWBExpression* affine = f.CreateSum(f.CreateProduct(two, x), f.CreateProduct(y, Int(f, 3)));
    ZorWBExpression* square = f.CreateProduct(x, y);
    ZorWBExpression* root = f.CreateSum(affine, f.CreateSin(two));
    st.SetProperties(root);
    // Without mode bit 0 only "constant" is computed.
    EXPECT_TRUE(st.GetProperty(f.CreateSin(two), ST::ZorWBConstantProperty) == false);
    EXPECT_TRUE(st.GetProperty(root->GetChild(1), ST::ZorWBConstantProperty));
    EXPECT_FALSE(st.GetProperty(root, ST::ZorWBConstantProperty));
    EXPECT_FALSE(st.GetProperty(affine, ST::ZorWBLinearProperty));
    st.SetMode(1);
    st.SetProperties(root);
    st.SetProperties(square);
    EXPECT_TRUE(st.GetProperty(affine, ST::ZorWBLinearProperty));
    EXPECT_TRUE(st.GetProperty(x, ST::ZorWBLinearProperty));
    EXPECT_FALSE(st.GetProperty(x, ST::ZorWBConstantProperty));
    EXPECT_FALSE(st.GetProperty(square, ST::ZorWBLinearProperty));
    // Sin is neither Sum nor Product: never linear, even over a constant.
    EXPECT_FALSE(st.GetProperty(root->GetChild(1), ST::ZorWBLinearProperty));
    EXPECT_FALSE(st.GetProperty(root, ST::ZorWBLinearProperty));
    // "linear" is never cleared on an operator.
    st.SetProperty(square, ST::ZorWBLinearProperty, true);
    st.SetProperties(square);
    EXPECT_TRUE(st.GetProperty(square, ST::ZorWBLinearProperty));
    EXPECT_FALSE(st.GetProperty(nullptr, ST::ZorWBConstantProperty));
    st.SetProperty(nullptr, ST::ZorWBConstantProperty, true);
    st.SetProperties(nullptr);
}

TEST_F(TransformationsTest, ModeZeroOnlyCopiesRootsAndMarksConstants) {
    ZorWBExpression* root = f.CreateSum(f.CreateSum(x, Int(f, 0)), f.CreateSin(Int(f, 2)));
    ZorWBEquation* e = f.AddEquation(root, ZorWBEqualZero);
    Run(0);
    ASSERT_EQ(f.GetNbOfEquations(), 1);
    EXPECT_NE(e->GetRoot(), root);
    EXPECT_TRUE(e->GetRoot()->IsEqualTo(root));
    int constant = f.RegisterProperty("constant", 0);
    EXPECT_EQ(e->GetRoot()->GetChild(1)->GetProperty(constant), 1);
    EXPECT_EQ(e->GetRoot()->GetProperty(constant), 0);
}

TEST_F(TransformationsTest, EligibleEquations) {
    ZorWBEquation* first = f.AddEquation(f.CreateSum(x, x), ZorWBEqualZero);
    ZorWBEquation* second = f.AddEquation(f.CreateSum(y, y), ZorWBLessEqualZero);
    // Only the listed equation is simplified; an unknown id is ignored.
    ST* st = ZorCreateWBSymbolicTransformations(0, f);
    st->SetMode(4);
    st->SetEquationToSimplify(second->GetId());
    st->SetEquationToSimplify(99);
    st->Run();
    EXPECT_TRUE(
        static_cast<ZorWBSymbolicTransformationsNew*>(st)->GetEquationsToSimplify().IsEmpty());
    EXPECT_EQ(Text(first->GetRoot()), "Sum(x, x)");
    EXPECT_EQ(Text(second->GetRoot()), "Product(2, y)");
    // Mode 2 alone runs as mode 3 over every equation, whatever the list.
    st->SetMode(2);
    st->SetEquationToSimplify(second->GetId());
    st->Run();
    EXPECT_EQ(st->GetMode(), 3u);
    EXPECT_EQ(Roots(f), (std::vector<std::string>{"Product(2, y) <= 0", "x  = 0"}));
    ZorRemove(st);
}

TEST_F(TransformationsTest, SimplificationRemovesVanishingEquations) {
    f.AddEquation(f.CreateSub(f.CreateProduct(Int(f, 2), x), f.CreateSum(x, x)), ZorWBEqualZero);
    f.AddEquation(f.CreateSub(x, x), ZorWBLessZero);
    f.AddEquation(f.CreateSum(x, Int(f, 1)), ZorWBGreaterZero);
    Run(4);
    EXPECT_EQ(Roots(f), std::vector<std::string>{"Sum(x, 1) > 0"});
    // With the check on, constant inequalities stay for it to read.
    f.AddEquation(f.CreateSub(y, y), ZorWBLessZero);
    EXPECT_TRUE(Run(4 + 16 + 2));
}

TEST_F(TransformationsTest, ConsistencyCheckReadsTheStoredRoot) {
    // The check is off without bit 1: a fresh operator reports nothing.
    f.AddEquation(Int(f, 1), ZorWBGreaterEqualZero);
    EXPECT_FALSE(Run(16));
    // Root 1 of type 5 tests LessEqual(1, 0): false, inconsistent.
    EXPECT_TRUE(Run(18));
    ZorWBFactory g;
    g.AddEquation(g.CreateIntegerConstant(1), ZorWBLessEqualZero);
    ST* st = ZorCreateWBSymbolicTransformations(0, g);
    st->SetMode(18);
    st->Run();
    EXPECT_FALSE(st->AreInequalitiesInconsistent());
    ZorRemove(st);
    // Each relation with its operands in the stored order.
    struct Case {
        ZorWBEquationType type;
        int root;
        bool inconsistent;
    };
    for (Case c : {Case{ZorWBNotEqualZero, 0, true}, Case{ZorWBNotEqualZero, 2, false},
                   Case{ZorWBLessEqualZero, -1, true}, Case{ZorWBLessZero, -1, true},
                   Case{ZorWBLessZero, 1, false}, Case{ZorWBGreaterEqualZero, -1, false},
                   Case{ZorWBGreaterZero, 1, true}, Case{ZorWBGreaterZero, -1, false},
                   Case{ZorWBMinimize, 0, false}}) {
        ZorWBFactory h;
        h.CreateVariable();
        h.AddEquation(h.CreateIntegerConstant(c.root), c.type);
        ST* check = ZorCreateWBSymbolicTransformations(0, h);
        check->SetMode(18);
        check->Run();
        EXPECT_EQ(check->AreInequalitiesInconsistent(), c.inconsistent)
            << "type " << c.type << " root " << c.root;
        ZorRemove(check);
    }
}

TEST_F(TransformationsTest, OldEngineNeverReportsInconsistency) {
    f.GetEnvironment().SetUseOldSymbolicTransformations(true);
    f.AddEquation(Int(f, 1), ZorWBGreaterEqualZero);
    f.AddEquation(f.CreateSub(x, Int(f, 2)), ZorWBEqualZero);
    ST* st = ZorCreateWBSymbolicTransformations(0, f);
    st->SetMode(18);
    TraceCapture trace(1);
    st->Run();
    // The old engine traces flattening from level 1, with "After: ".
    EXPECT_NE(trace.Text().find("Before: Sum(x, -2)\nAfter: Sum(x, -2)\n"), std::string::npos)
        << trace.Text();
    EXPECT_FALSE(st->AreInequalitiesInconsistent());
    EXPECT_EQ(Roots(f), (std::vector<std::string>{"1 >= 0", "Sum(x, -2)  = 0"}));
    ZorRemove(st);
}

TEST_F(TransformationsTest, BinarisationByLevel) {
    ZorWBExpression* z = f.CreateVariable();
    ZorWBExpression* w = f.CreateVariable();
    ZorWBExpression* sum = f.CreateSum(4, std::vector<ZorWBExpression*>{x, y, z, w}.data());
    ZorWBExpression* choice = f.CreateIfThenElse(f.CreateLessEqual(x, y), z, w);
    ZorWBExpression* round = f.CreateOperator(ZorWBExpressionType::Round, x, y, z);
    f.AddEquation(sum, ZorWBEqualZero);
    f.AddEquation(f.CreateProduct(choice, round), ZorWBLessEqualZero);
    Run(8);
    EXPECT_EQ(Roots(f),
              (std::vector<std::string>{
                  "Sum(Sum(Sum(x, y), va2), va3)  = 0",
                  "Product(IfThenElse(LessEqual(x, y), va2, va3), Round(x, y, va2)) <= 0"}));
    // Below the level IfThenElse is binarised too, but the factory has no
    // two-child IfThenElse, so it keeps its children.
    ZorWBFactory old(Below(ZorWBLevel::KeepIfThenElseTernary));
    ZorWBExpression* a = old.CreateVariable();
    old.AddEquation(
        old.CreateIfThenElse(a, a, old.CreateSum(3, std::vector<ZorWBExpression*>{a, a, a}.data())),
        ZorWBEqualZero);
    ST* st = ZorCreateWBSymbolicTransformations(0, old);
    st->SetMode(8);
    st->Run();
    EXPECT_EQ(Roots(old),
              std::vector<std::string>{"IfThenElse(va0, va0, Sum(Sum(va0, va0), va0))  = 0"});
    ZorRemove(st);
}

TEST_F(TransformationsTest, FlatteningAppendsChildrenOfTheSameType) {
    ZorWBExpression* z = NamedVariable(f, "z");
    ZorWBExpression* w = NamedVariable(f, "w");
    // Sum(Sum(x, y), z, Sum(w, 1)): the last nested sum goes to the end first.
    ZorWBExpression* root = f.CreateSum(
        3, std::vector<ZorWBExpression*>{f.CreateSum(x, y), z, f.CreateSum(w, Int(f, 1))}.data());
    f.AddEquation(f.CreateSin(root), ZorWBEqualZero);
    f.AddEquation(f.CreateMax(f.CreateMax(x, y), f.CreateProduct(x, f.CreateProduct(y, z))),
                  ZorWBEqualZero);
    TraceCapture trace(2);
    Run(2);
    EXPECT_EQ(Roots(f), (std::vector<std::string>{"Sin(Sum(z, w, 1, x, y))  = 0",
                                                  "Max(Product(x, y, z), x, y)  = 0"}));
    EXPECT_NE(trace.Text().find("Before: Sin(Sum(Sum(x, y), z, Sum(w, 1)))\n"
                                "After : Sin(Sum(z, w, 1, x, y))\n"),
              std::string::npos);
}

TEST_F(TransformationsTest, DeepRootsOfEveryStep) {
    // Deep, but without a node shared by every level: the factory's clean-up
    // of temporary nodes costs time in the number of parents of a node.
    ZorWBExpression* chain = x;
    for (int i = 0; i < 5000; ++i)
        chain = f.CreateSum(f.CreateCos(chain), f.CreateRealConstant(0.25 * (i % 3)));
    f.AddEquation(f.CreateSum(chain, y), ZorWBLessEqualZero);
    f.AddEquation(f.CreateSub(y, Int(f, 2)), ZorWBEqualZero);
    Run(2 + 4 + 8 + 16);
    ASSERT_EQ(f.GetNbOfEquations(), 2);
    x->SetExprValue(ZorWBValue(0.5));
    double value = Evaluate(f.GetFirstEquation()->GetRoot());
    EXPECT_FALSE(std::isnan(value));
}

TEST_F(TransformationsTest, WalksOfVeryDeepGraphs) {
    OpenTransformations st(0, f);
    st.SetMode(1);
    ZorWBExpression* chain = x;
    for (int i = 0; i < 200000; ++i) {
        chain = f.CreateProduct(
            3,
            std::vector<ZorWBExpression*>{f.CreateSum(chain, y), f.CreateProduct(x, y), x}.data());
    }
    st.SetProperties(chain);
    EXPECT_FALSE(st.GetProperty(chain, ST::ZorWBLinearProperty));
    ZorWBExpression* flat = st.Flatten(chain);
    EXPECT_EQ(flat->GetNbOfChildren(), 4);
    ZorWBExpression* binary = st.Binarise(flat, true);
    EXPECT_EQ(binary->GetNbOfChildren(), 2);
    EXPECT_EQ(Text(binary->GetChild(1)), "y");
}

TEST_F(TransformationsTest, FinalNormalisationBelowItsLevel) {
    for (unsigned int level :
         {Below(ZorWBLevel::NoFinalNormalisation), ZorWBLevel::NoFinalNormalisation}) {
        ZorWBFactory g(level);
        ZorWBVariable* u = g.CreateVariable();
        ZorWBVariable* v = g.CreateVariable();
        g.AddEquation(g.CreateSub(u, v), ZorWBLessEqualZero);
        ST* st = ZorCreateWBSymbolicTransformations(0, g);
        st->SetMode(4);
        st->Run();
        EXPECT_EQ(Text(g.GetFirstEquation()->GetRoot()), level == ZorWBLevel::NoFinalNormalisation
                                                             ? "Sum(va0, Product(-1, va1))"
                                                             : "Sum(va0, UnaryMinus(va1))");
        ZorRemove(st);
    }
}

}  // namespace
