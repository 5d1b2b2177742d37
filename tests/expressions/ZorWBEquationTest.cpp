#include <gtest/gtest.h>

#include "ExpressionTestSupport.h"
#include "expressions/ZorWBEquation.h"

using Type = ZorWBExpressionType;

TEST(ZorWBEquation, IdsNamesAndLinks) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    EXPECT_EQ(f.AddEquation(nullptr, ZorWBEqualZero), nullptr);
    EXPECT_EQ(f.GetFirstEquation(), nullptr);
    EXPECT_EQ(f.GetNextEquation(nullptr), nullptr);
    EXPECT_EQ(f.GetPrevEquation(nullptr), nullptr);
    ZorWBEquation* e0 = f.AddEquation(x, ZorWBEqualZero);
    ZorWBEquation* e1 = f.AddEquation(f.CreateSin(x), ZorWBLessZero);
    ZorWBEquation* e2 = f.AddEquation(f.CreateCos(x), ZorWBMaximize);
    EXPECT_EQ(e0->GetId(), 0);
    EXPECT_EQ(e2->GetId(), 2);
    EXPECT_EQ(e0->GetName(), "eq0");
    e0->SetName("balance");
    EXPECT_EQ(e0->GetName(), "balance");
    EXPECT_EQ(f.GetEquationByName("balance"), e0);
    EXPECT_EQ(f.GetEquationByName("eq2"), e2);
    EXPECT_EQ(f.GetEquationByName("eq9"), nullptr);
    EXPECT_EQ(e0->GetFactory(), &f);
    EXPECT_EQ(e0->GetState(), 1);
    EXPECT_EQ(e1->GetType(), ZorWBLessZero);
    EXPECT_EQ(e0->GetPrev(), nullptr);
    EXPECT_EQ(e0->GetNext(), e1);
    EXPECT_EQ(e2->GetPrev(), e1);
    const ZorWBFactory& constFactory = f;
    EXPECT_EQ(constFactory.GetFirstEquation(), e0);
    EXPECT_EQ(constFactory.GetLastEquation(), e2);
    EXPECT_EQ(constFactory.GetNextEquation(e0), e1);
    EXPECT_EQ(f.GetPrevEquation(nullptr), e2);
    EXPECT_EQ(f.GetPrevEquation(e1), e0);

    // Removing the middle one relinks its neighbours; ids are not reused.
    ZorWBExpression* middleRoot = e1->GetRoot();
    ZorWBEquation* removed = e1;
    EXPECT_TRUE(f.RemoveEquation(removed));
    EXPECT_EQ(removed, nullptr);
    EXPECT_EQ(e0->GetNext(), e2);
    EXPECT_EQ(e2->GetPrev(), e0);
    EXPECT_EQ(f.GetEquationById(2), e2);
    EXPECT_EQ(f.GetEquationById(1), nullptr);
    EXPECT_EQ(f.GetEquationById(-4), nullptr);
    EXPECT_EQ(f.GetNbOfEquations(), 2);
    EXPECT_EQ(middleRoot->GetType(), Type::Sin);  // the root stays in the factory
    ZorWBEquation* e3 = f.AddEquation(x, ZorWBGreaterZero);
    EXPECT_EQ(e3->GetId(), 3);
    EXPECT_EQ(e3->GetPrev(), e2);
    EXPECT_EQ(f.GetEquationById(3), e3);
    ZorWBEquation* none = nullptr;
    EXPECT_FALSE(f.RemoveEquation(none));

    // Removing the last then adding links to the new last.
    ZorWBEquation* last = e3;
    f.RemoveEquation(last);
    EXPECT_EQ(e2->GetNext(), nullptr);
    EXPECT_EQ(f.AddEquation(x, ZorWBEqualZero)->GetPrev(), e2);
}

TEST(ZorWBEquation, TwoSidedEquationsSubtract) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBEquation* e = f.AddEquation(x, ZorWBEqualZero, f.GetThree());
    ASSERT_EQ(e->GetRoot()->GetType(), Type::Sum);
    EXPECT_EQ(e->GetRoot()->GetChild(1)->GetExprValue().GetAsInteger(), -3);
    EXPECT_EQ(f.AddEquation(x, ZorWBEqualZero, nullptr)->GetRoot(), x);
    EXPECT_EQ(f.AddEquation(nullptr, ZorWBEqualZero, x), nullptr);
    e->SetRoot(x);
    EXPECT_EQ(e->GetRoot(), x);
}

// A root must belong to the equation's factory: the present variables are
// marked in one byte per variable of that factory.
TEST(ZorWBEquation, SetRootRefusesANodeOfAnotherFactory) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBFactory other(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* far[6];
    for (ZorWBVariable*& variable : far)
        variable = other.CreateVariable();
    ZorWBExpression* foreign = other.CreateSum(far[4], far[5]);
    ZorWBEquation* e = f.AddEquation(f.CreateSin(x), ZorWBEqualZero);
    ZorWBExpression* root = e->GetRoot();

    EXPECT_FALSE(e->SetRoot(foreign));
    EXPECT_EQ(e->GetRoot(), root);
    ZorQelListPZorWBVariable present;
    ASSERT_TRUE(e->FindPresentVariables(present));
    ASSERT_EQ(present.GetSize(), 1);
    EXPECT_EQ(present[0], x);
    ZorQelIntArray listed;
    listed.Add(0);
    e->SetTheoreticalVarList(&listed);
    EXPECT_TRUE(e->AreVarConsistent());

    // A root of the factory, or none, is taken.
    EXPECT_TRUE(e->SetRoot(x));
    EXPECT_EQ(e->GetRoot(), x);
    EXPECT_TRUE(e->SetRoot(nullptr));
    EXPECT_EQ(e->GetRoot(), nullptr);
    EXPECT_FALSE(e->FindPresentVariables(present));
}

TEST(ZorWBEquation, TheoreticalVariablesAndConsistency) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* v[4];
    for (ZorWBVariable*& variable : v)
        variable = f.CreateVariable();
    ZorWBEquation* e =
        f.AddEquation(f.CreateSum(v[2], f.CreateProduct(v[0], v[2])), ZorWBEqualZero);
    EXPECT_TRUE(e->AreVarConsistent());  // empty list: anything goes

    ZorQelListPZorWBVariable present;
    present.Add(v[3]);
    ASSERT_TRUE(e->FindPresentVariables(present));
    ASSERT_EQ(present.GetSize(), 2);
    EXPECT_EQ(present[0], v[0]);
    EXPECT_EQ(present[1], v[2]);

    ZorQelIntArray list;
    list.Add(2);
    e->SetTheoreticalVarList(&list);
    EXPECT_FALSE(e->AreVarConsistent());  // v0 is present but not listed
    ZorQelIntArray more;
    more.Add(0);
    more.Add(3);  // listed but absent: allowed
    e->SetTheoreticalVarList(&more);
    EXPECT_TRUE(e->AreVarConsistent());
    e->SetTheoreticalVarList(nullptr);
    ZorQelIntArray out;
    out.Add(9);
    e->GetTheoreticalVarList(&out);
    ASSERT_EQ(out.GetSize(), 4);
    EXPECT_EQ(out[0], 9);
    EXPECT_EQ(out[1], 2);
    EXPECT_EQ(out[3], 3);
    e->GetTheoreticalVarList(nullptr);

    // Without variables in the factory the answers are false.
    ZorWBFactory empty(ZorWBLevel::All);
    ZorWBEquation* constant = empty.AddEquation(empty.GetOne(), ZorWBEqualZero);
    EXPECT_FALSE(constant->FindPresentVariables(present));
    EXPECT_TRUE(constant->AreVarConsistent());
    constant->SetTheoreticalVarList(&list);
    EXPECT_FALSE(constant->AreVarConsistent());
}

TEST(ZorWBEquation, DuplicateRootCopiesConstantsAndOperators) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* c = f.CreateRealConstant(2.5);
    ZorWBExpression* shared = f.CreateProduct(x, c);
    ZorWBExpression* root = f.CreateSum(shared, f.CreateStep(shared, 0.0, 1.0, 0.0, 2.0));
    ZorWBEquation* e = f.AddEquation(root, ZorWBEqualZero);
    int count = f.GetNbOfExpressions();
    e->DuplicateRoot();
    ZorWBExpression* copy = e->GetRoot();
    EXPECT_NE(copy, root);
    EXPECT_TRUE(copy->IsEqualTo(root));
    EXPECT_EQ(f.GetNbOfExpressions(), count + 4);  // Sum, Product, 2.5 and Step
    EXPECT_EQ(copy->GetChild(0), copy->GetChild(1)->GetChild(0));
    EXPECT_EQ(copy->GetChild(0)->GetChild(0), x);
    EXPECT_NE(copy->GetChild(0)->GetChild(1), c);
    EXPECT_EQ(copy->GetChild(1)->GetParameter(3), 2.0);

    ZorWBEquation* variableRoot = f.AddEquation(x, ZorWBEqualZero);
    variableRoot->DuplicateRoot();
    EXPECT_EQ(variableRoot->GetRoot(), x);
}
