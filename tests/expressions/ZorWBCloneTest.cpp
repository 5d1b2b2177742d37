#include <gtest/gtest.h>

#include <cmath>

#include "ExpressionTestSupport.h"
#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBEquation.h"

using Type = ZorWBExpressionType;

TEST(ZorWBClone, CopyIntoAnotherFactoryMatchesVariablesByName) {
    ZorWBFactory source(ZorWBLevel::All);
    ZorWBVariable* x = source.CreateVariable();
    ZorWBVariable* y = source.CreateVariable();
    y->SetName("width");
    SetReal(x, 0.25);
    SetReal(y, 1.5);
    y->SetPreferedValue(1.25);
    y->Fix(true);
    ZorWBExpression* shared = source.CreateSin(x);
    ZorWBExpression* root = source.CreateSum(
        source.CreateProduct(shared, shared),
        source.CreateSum(source.CreateStep(y, 0.0, 1.0, 0.0, 2.0), source.GetPi()));

    ZorWBFactory target(ZorWBLevel::All);
    ZorWBVariable* existing = target.CreateVariable();
    existing->SetName("width");
    SetReal(existing, 0.5);
    ZorWBExpression* copy = target.CloneExpression(root);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->GetFactory(), &target);
    // The named variable was found, the other made with its name and value.
    ASSERT_EQ(target.GetNbOfVariables(), 2);
    ZorWBVariable* madeX = target.GetVariable(1);
    EXPECT_EQ(madeX->GetName(), "va0");
    EXPECT_EQ(madeX->GetExprValue().GetAsReal(), 0.25);
    // Sharing and the Step's parameters survive, Pi maps onto the shared one.
    const ZorWBExpression* square = copy->GetChild(0);
    EXPECT_EQ(square->GetChild(0), square->GetChild(1));
    EXPECT_EQ(square->GetChild(0)->GetChild(0), madeX);
    const ZorWBExpression* step = copy->GetChild(1)->GetChild(0);
    EXPECT_EQ(step->GetChild(0), existing);
    EXPECT_EQ(step->GetParameter(1), 1.0);
    EXPECT_EQ(step->GetParameter(3), 2.0);
    EXPECT_EQ(copy->GetChild(1)->GetChild(1), target.GetPi());

    // Same value when the variables hold the same values.
    SetReal(existing, 1.5);
    EXPECT_DOUBLE_EQ(RealValue(copy), RealValue(root));

    // A variable map overrides names, entry by index; a foreign entry fails.
    ZorWBVariable* z = target.CreateVariable();
    ZorWBVariable* map[] = {z, nullptr};
    ZorWBExpression* mapped = target.CloneExpression(shared, map, 2);
    EXPECT_EQ(mapped->GetChild(0), z);
    ZorWBVariable* foreign[] = {x};
    EXPECT_EQ(target.CloneExpression(shared, foreign, 1), nullptr);
    EXPECT_EQ(target.CloneExpression(nullptr), nullptr);
}

TEST(ZorWBClone, CopyWithinOneFactoryKeepsVariablesAndBlackBoxes) {
    CountingBlackBox bb;
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* args[] = {x};
    ZorWBExpression* call = f.DeclareBlackBox(&bb, 1, args, false);
    ZorWBExpression* root = f.CreateProduct(call, f.CreateRealConstant(2.0));
    ZorWBExpression* copy = f.CloneExpression(root);
    EXPECT_NE(copy, root);
    EXPECT_TRUE(copy->IsEqualTo(root));
    EXPECT_EQ(copy->GetChild(0), call);
    EXPECT_NE(copy->GetChild(1), root->GetChild(1));

    // Into another factory the call is declared again on the same black box.
    ZorWBFactory other(ZorWBLevel::All);
    ZorWBExpression* moved = other.CloneExpression(root);
    ASSERT_NE(moved, nullptr);
    ASSERT_EQ(moved->GetChild(0)->GetType(), Type::BlackBox);
    EXPECT_EQ(static_cast<const ZorWBBlackBoxOperator*>(moved->GetChild(0))->GetBlackBox(), &bb);
    EXPECT_EQ(other.GetNbOfBlackBoxes(), 1);

    // The library's own black boxes cannot have two owners.
    ZorWBBlackBox* internal = new CountingBlackBox();
    ZorWBExpression* internalCall = f.DeclareBlackBox(internal, 1, args, true);
    EXPECT_EQ(other.CloneExpression(internalCall), nullptr);
}

TEST(ZorWBClone, CloneEquationsIntoAFreshFactory) {
    ZorWBFactory source(ZorWBLevel::All);
    ZorWBVariable* a = source.CreateVariable();
    ZorWBVariable* b = source.CreateVariable();
    b->SetName("b");
    source.CreateVariable();  // unused, still matched
    ZorWBEquation* first = source.AddEquation(source.CreateSum(a, b), ZorWBLessEqualZero);
    ZorWBEquation* second = source.AddEquation(source.CreateSin(b), ZorWBMinimize);
    second->SetName("objective");
    first->GetName();  // the default name is not copied as a name
    ZorQelIntArray theoretical;
    theoretical.Add(1);
    theoretical.Add(0);
    first->SetTheoreticalVarList(&theoretical);
    first->SetState(7);

    ZorWBFactory target(ZorWBLevel::All);
    target.AddEquation(target.CreateVariable(), ZorWBEqualZero);  // shifts ids
    target.GetVariable(0)->SetName("other");
    ASSERT_EQ(target.CloneEquations(source), 2);
    ASSERT_EQ(target.GetNbOfEquations(), 3);
    EXPECT_EQ(target.GetNbOfVariables(), 4);
    ZorWBEquation* copy = target.GetEquation(1);
    EXPECT_EQ(copy->GetType(), ZorWBLessEqualZero);
    EXPECT_EQ(copy->GetName(), "eq1");
    EXPECT_EQ(copy->GetState(), 7);
    ZorQelIntArray copied;
    copy->GetTheoreticalVarList(&copied);
    ASSERT_EQ(copied.GetSize(), 2);
    EXPECT_EQ(copied[0], target.GetVariable("b")->GetIdx());
    EXPECT_EQ(copied[1], target.GetVariable("va0")->GetIdx());
    EXPECT_EQ(target.GetEquation(2)->GetName(), "objective");
    EXPECT_EQ(target.GetEquation(2)->GetType(), ZorWBMinimize);

    // Only the listed ids; within one factory the equations are duplicated.
    ZorQelIntArray ids;
    ids.Add(second->GetId());
    EXPECT_EQ(source.CloneEquations(source, &ids), 1);
    EXPECT_EQ(source.GetNbOfEquations(), 3);
    EXPECT_EQ(source.GetLastEquation()->GetRoot()->GetChild(0), b);
    EXPECT_NE(source.GetLastEquation()->GetRoot(), second->GetRoot());
}

TEST(ZorWBClone, CreateOperatorCopiesANode) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* step = f.CreateStep(x, 1, 2, 3, 4);
    ZorWBExpression* copy = f.CreateOperator(step);
    EXPECT_NE(copy, step);
    EXPECT_TRUE(copy->IsEqualTo(step));
    EXPECT_EQ(copy->GetChild(0), x);
    EXPECT_EQ(f.CreateOperator(x), x);
    EXPECT_EQ(f.CreateOperator(f.GetPi()), f.GetPi());
    ZorWBExpression* constant = f.CreateRealConstant(0.5);
    ZorWBExpression* constantCopy = f.CreateOperator(constant);
    EXPECT_NE(constantCopy, constant);
    EXPECT_TRUE(constantCopy->IsEqualTo(constant));
    EXPECT_EQ(f.CreateOperator(static_cast<const ZorWBExpression*>(nullptr)), nullptr);
}

TEST(ZorWBClone, PolynomialTermShapes) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* linear = f.CreateLinearTerm(2.0, 1.0, x);
    ASSERT_EQ(linear->GetType(), Type::Sum);
    ASSERT_EQ(linear->GetNbOfChildren(), 2);
    EXPECT_EQ(linear->GetChild(0)->GetType(), Type::Product);
    EXPECT_EQ(linear->GetChild(0)->GetChild(1), x);
    ZorWBExpression* quadratic = f.CreateQuadraticTerm(1.0, 0.0, -4.0, x);
    ASSERT_EQ(quadratic->GetNbOfChildren(), 3);
    EXPECT_EQ(quadratic->GetChild(0)->GetChild(1)->GetType(), Type::Power);
    const double one[] = {5.0};
    EXPECT_EQ(f.CreatePolynomialTerm(0, one, x)->GetType(), Type::Constant);
    EXPECT_EQ(f.CreatePolynomialTerm(-1, one, x), nullptr);
    EXPECT_EQ(f.CreatePolynomialTerm(0, nullptr, x), nullptr);
    EXPECT_EQ(f.CreateLinearTerm(1.0, 1.0, nullptr), nullptr);

    // Evaluated against Horner's rule for random coefficients.
    std::mt19937 random(7);
    std::uniform_real_distribution<double> uniform(-3.0, 3.0);
    for (int trial = 0; trial < 50; ++trial) {
        int degree = 1 + trial % 6;
        double coefficients[7];
        for (int k = 0; k <= degree; ++k)
            coefficients[k] = uniform(random);
        ZorWBExpression* term = f.CreatePolynomialTerm(degree, coefficients, x);
        double at = uniform(random);
        SetReal(x, at);
        double expected = 0.0;
        for (int k = 0; k <= degree; ++k)
            expected = expected * at + coefficients[k];
        EXPECT_NEAR(RealValue(term), expected, 1e-9 * (1.0 + std::fabs(expected)));
        int found = -1;
        EXPECT_TRUE(term->IsPolynomial(x, found));
        EXPECT_EQ(found, degree);
    }
}
