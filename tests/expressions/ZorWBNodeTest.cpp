#include <gtest/gtest.h>

#include "ExpressionTestSupport.h"
#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBOperator.h"
#include "values/TestAllocator.h"

using Type = ZorWBExpressionType;

TEST(ZorWBNode, ParentsAreListedOncePerHoldingOperator) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* square = f.CreateProduct(x, x);
    ZorWBExpression* sum = f.CreateSum(square, x);
    ASSERT_EQ(x->GetNbOfParents(), 3);
    EXPECT_EQ(x->GetParent(0), square);
    EXPECT_EQ(x->GetParent(1), square);
    EXPECT_EQ(x->GetParent(2), sum);
    EXPECT_EQ(square->GetNbOfChildren(), 2);
    EXPECT_EQ(square->GetChild(0), x);
    EXPECT_EQ(square->GetChild(1), x);
    EXPECT_EQ(square->GetChild(2), nullptr);
    EXPECT_EQ(square->GetChild(-1), nullptr);
    EXPECT_EQ(x->GetNbOfChildren(), 0);
    EXPECT_EQ(x->GetChild(0), nullptr);
    EXPECT_FALSE(sum->AddChild(x));

    // Replacing a child moves the parent entry.
    ZorWBVariable* y = f.CreateVariable();
    EXPECT_TRUE(sum->ReplaceChild(1, y));
    EXPECT_EQ(x->GetNbOfParents(), 2);
    EXPECT_EQ(y->GetParent(0), sum);
    EXPECT_FALSE(sum->ReplaceChild(1, nullptr));
    EXPECT_FALSE(sum->ReplaceChild(2, y));
    EXPECT_FALSE(x->ReplaceChild(0, y));

    // A replacement may not close a cycle.
    ZorWBExpression* top = f.CreateExp(sum);
    EXPECT_FALSE(sum->ReplaceChild(0, top));
    EXPECT_FALSE(sum->ReplaceChild(0, sum));
    EXPECT_EQ(sum->GetChild(0), square);

    // Nor may it take a node of another factory.
    ZorWBFactory other(ZorWBLevel::All);
    EXPECT_FALSE(sum->ReplaceChild(0, other.CreateVariable()));
    EXPECT_EQ(f.CreateSum(x, other.CreateVariable()), nullptr);

    // Removing a child drops one parent entry.
    EXPECT_TRUE(square->RemoveChild(0));
    EXPECT_EQ(square->GetNbOfChildren(), 1);
    EXPECT_EQ(x->GetNbOfParents(), 1);
    EXPECT_FALSE(square->RemoveChild(5));
}

TEST(ZorWBNode, StructuralEquality) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* a = f.CreateVariable();
    ZorWBVariable* b = f.CreateVariable();
    EXPECT_TRUE(f.CreateSum(a, b)->IsEqualTo(f.CreateSum(b, a)));
    EXPECT_TRUE(f.CreateMax(a, b)->IsEqualTo(f.CreateMax(b, a)));
    EXPECT_FALSE(f.CreateQuotient(a, b)->IsEqualTo(f.CreateQuotient(b, a)));
    EXPECT_FALSE(f.CreateAnd(a, b)->IsEqualTo(f.CreateAnd(b, a)));
    EXPECT_FALSE(f.CreateEqual(a, b)->IsEqualTo(f.CreateEqual(b, a)));
    EXPECT_FALSE(f.CreateSum(a, b)->IsEqualTo(f.CreateProduct(a, b)));
    EXPECT_FALSE(f.CreateSum(a, b)->IsEqualTo(nullptr));
    EXPECT_FALSE(f.CreateSum(a, a)->IsEqualTo(f.CreateSum(a, b)));
    ZorWBExpression* three[] = {a, b, a};
    ZorWBExpression* threeOther[] = {b, a, a};
    EXPECT_TRUE(f.CreateSum(3, three)->IsEqualTo(f.CreateSum(3, threeOther)));
    EXPECT_FALSE(f.CreateSum(3, three)->IsEqualTo(f.CreateSum(a, b)));

    // Same name, different index: different variables.
    a->SetName("p");
    b->SetName("p");
    EXPECT_FALSE(a->IsEqualTo(b));
    EXPECT_TRUE(a->IsEqualTo(a));

    // Constants compare by value within the tolerance, across kinds.
    EXPECT_TRUE(f.CreateRealConstant(2.0)->IsEqualTo(f.CreateIntegerConstant(2)));
    EXPECT_FALSE(f.CreateRealConstant(2.0)->IsEqualTo(f.CreateRealConstant(2.5)));
    EXPECT_FALSE(f.CreateRealConstant(0.0)->IsEqualTo(a));

    // Nested commutative children match without order.
    ZorWBExpression* left = f.CreateProduct(f.CreateSum(a, f.GetTwo()), f.CreateSin(b));
    ZorWBExpression* right = f.CreateProduct(f.CreateSin(b), f.CreateSum(f.GetTwo(), a));
    EXPECT_TRUE(left->IsEqualTo(right));
    EXPECT_TRUE(right->IsEqualTo(left));

    // Steps are equal only with equal parameters.
    EXPECT_TRUE(f.CreateStep(a, 0, 1, 0, 1)->IsEqualTo(f.CreateStep(a, 0, 1, 0, 1)));
    EXPECT_FALSE(f.CreateStep(a, 0, 1, 0, 1)->IsEqualTo(f.CreateStep(a, 0, 2, 0, 1)));
}

TEST(ZorWBNode, CommutativeMatchingIsGreedy) {
    // Constant equality within a tolerance is not transitive: c0 ~ c1 ~ c2
    // but not c0 ~ c2. Sum(c1, c0) against Sum(c0, c2): c1 takes c0 first,
    // then c0 finds no partner, although c1 ~ c2 and c0 ~ c0 would match.
    ZorWBFactory f(ZorWBLevel::All);
    f.SetTolerance(1.0);
    ZorWBExpression* c0 = f.CreateRealConstant(0.0);
    ZorWBExpression* c1 = f.CreateRealConstant(0.6);
    ZorWBExpression* c2 = f.CreateRealConstant(1.2);
    ZorWBExpression* c0Again = f.CreateRealConstant(0.0);
    EXPECT_FALSE(f.CreateSum(c1, c0)->IsEqualTo(f.CreateSum(c0Again, c2)));
    EXPECT_TRUE(f.CreateSum(c0, c1)->IsEqualTo(f.CreateSum(c0Again, c2)));
}

TEST(ZorWBNode, EqualityOfDeepAndHeavilySharedGraphs) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    // Two towers of squares: as trees they have 2^60 leaves.
    ZorWBExpression* a = x;
    ZorWBExpression* b = x;
    for (int i = 0; i < 60; ++i) {
        a = f.CreateProduct(a, a);
        b = f.CreateProduct(b, b);
    }
    EXPECT_TRUE(a->IsEqualTo(b));
    // Deep chains compare without deep recursion.
    ZorWBExpression* c = x;
    ZorWBExpression* d = x;
    for (int i = 0; i < 200000; ++i) {
        c = f.CreateSum(c, f.GetOne());
        d = f.CreateSum(f.GetOne(), d);
    }
    EXPECT_TRUE(c->IsEqualTo(d));
    EXPECT_FALSE(c->IsEqualTo(f.CreateSum(d, f.GetOne())));
}

TEST(ZorWBNode, PropertiesFallBackToTheRegistryDefault) {
    ZorWBFactory f(ZorWBLevel::All);
    int weight = f.RegisterProperty("weight", 7);
    int mark = f.RegisterProperty("mark", 0);
    EXPECT_EQ(f.RegisterProperty("weight", 99), weight);
    EXPECT_EQ(f.GetDefaultPropertyValue(weight), 7);
    EXPECT_EQ(f.GetDefaultPropertyValue(99), -1);
    EXPECT_EQ(f.GetDefaultPropertyValue(-1), -1);
    EXPECT_EQ(f.GetPropertyName(weight), "weight");
    EXPECT_EQ(f.GetPropertyName(f.GetTemporaryProperty()), "temporary");
    EXPECT_EQ(f.GetTemporaryProperty(), 0);

    ZorWBVariable* x = f.CreateVariable();
    EXPECT_EQ(x->GetProperty(weight), 7);
    EXPECT_EQ(x->GetProperty(42), -1);  // never registered
    std::size_t allocations = AllocationCount();
    x->SetProperty(mark, 0);  // the default: nothing is stored or allocated
    x->SetProperty(weight, 7);
    EXPECT_EQ(AllocationCount(), allocations);
    EXPECT_EQ(x->GetProperty(mark), 0);
    x->SetProperty(mark, 5);
    EXPECT_EQ(x->GetProperty(mark), 5);
    EXPECT_EQ(x->GetProperty(weight), 7);  // slot filled with "not set"
    x->SetProperty(weight, -1);            // -1 reads as "not set"
    EXPECT_EQ(x->GetProperty(weight), 7);
    x->SetProperty(-3, 4);
    EXPECT_EQ(x->GetProperty(-3), -1);
    x->SetProperty(40, 4);  // beyond the registry: kept, default -1 elsewhere
    EXPECT_EQ(x->GetProperty(40), 4);
    EXPECT_EQ(x->GetProperty(39), -1);
}

TEST(ZorWBNode, ConstancyAndFreedom) {
    CountingBlackBox bb;
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    ZorWBExpression* c = f.CreateRealConstant(3.0);
    EXPECT_FALSE(x->IsConstant());
    EXPECT_TRUE(c->IsConstant());
    EXPECT_TRUE(f.CreateSin(f.CreateSum(c, f.GetPi()))->IsConstant());
    EXPECT_FALSE(f.CreateSin(f.CreateSum(c, y))->IsConstant());
    EXPECT_TRUE(f.DeclareBlackBox(&bb, 0, nullptr, false)->IsConstant());

    ZorWBExpression* e = f.CreateProduct(x, f.CreateCos(c));
    EXPECT_FALSE(e->IsFree(x));
    EXPECT_TRUE(e->IsFree(y));
    EXPECT_TRUE(c->IsFree(x));
    EXPECT_FALSE(x->IsFree(x));
    EXPECT_TRUE(x->IsFree(y));
    EXPECT_TRUE(e->IsFree(nullptr));
}

TEST(ZorWBNode, PresentVariablesInIndexOrder) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* v[4];
    for (ZorWBVariable*& variable : v)
        variable = f.CreateVariable();
    ZorWBExpression* e = f.CreateSum(f.CreateProduct(v[3], v[1]), f.CreateSin(v[3]));
    ZorWBVariable** found = nullptr;
    ASSERT_EQ(e->FindPresentVariables(found), 2);
    EXPECT_EQ(found[0], v[1]);
    EXPECT_EQ(found[1], v[3]);
    delete[] found;
    EXPECT_EQ(f.GetOne()->FindPresentVariables(found), 0);
    EXPECT_EQ(found, nullptr);
    ZorQelListPZorWBVariable list;
    list.Add(v[0]);
    EXPECT_EQ(v[2]->FindPresentVariables(list), 1);
    EXPECT_EQ(list[0], v[2]);
    unsigned char present[4] = {0, 0, 0, 0};
    e->FillPresentVariables(present);
    EXPECT_EQ(present[0] + present[2], 0);
    EXPECT_EQ(present[1] + present[3], 2);
    e->FillPresentVariables(nullptr);  // ignored
}

TEST(ZorWBNode, PolynomialRecognition) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    ZorWBExpression* linear = f.CreateSum(f.CreateProduct(f.GetTwo(), x), f.CreateSin(f.GetOne()));
    ZorWBExpression* quadratic =
        f.CreateSum(f.CreateProduct(x, y), f.CreateQuotient(x, f.GetThree()));
    ZorWBExpression* cubic = f.CreatePower(f.CreateSum(x, y), 3);
    ZorWBExpression* trig = f.CreateProduct(f.CreateSin(y), f.CreatePower(x, 4));
    ZorWBExpression* rational = f.CreateQuotient(f.CreateSum(x, f.GetOne()), f.CreatePower(x, 2));

    EXPECT_TRUE(f.GetOne()->IsLinear());
    EXPECT_TRUE(linear->IsLinear());
    EXPECT_FALSE(quadratic->IsLinear());
    EXPECT_TRUE(quadratic->IsQuadratic());
    EXPECT_FALSE(cubic->IsQuadratic());
    EXPECT_TRUE(cubic->IsPolynomial());
    EXPECT_FALSE(trig->IsPolynomial());  // Sin(y) holds a variable

    int degree = -1;
    EXPECT_TRUE(trig->IsPolynomial(x, degree));  // Sin(y) is a coefficient in x
    EXPECT_EQ(degree, 4);
    EXPECT_FALSE(trig->IsPolynomial(y));
    EXPECT_TRUE(quadratic->IsPolynomial(y, degree));
    EXPECT_EQ(degree, 1);
    EXPECT_TRUE(f.GetOne()->IsPolynomial(x, degree));
    EXPECT_EQ(degree, 0);
    EXPECT_FALSE(x->IsPolynomial(nullptr));
    EXPECT_FALSE(rational->IsPolynomial(x));
    EXPECT_TRUE(rational->IsRationalFunction(x));
    EXPECT_TRUE(f.CreatePower(x, -2)->IsRationalFunction(x));
    EXPECT_FALSE(f.CreatePower(x, -2)->IsPolynomial());
    EXPECT_FALSE(f.CreateSqrt(x)->IsRationalFunction(x));
    EXPECT_TRUE(f.CreateSqrt(y)->IsRationalFunction(x));
    EXPECT_FALSE(f.CreatePower(x, f.CreateRealConstant(0.5))->IsPolynomial());
    EXPECT_TRUE(f.CreatePower(x, f.CreateRealConstant(2.0))->IsQuadratic());
    EXPECT_FALSE(f.CreatePower(x, y)->IsRationalFunction(x));
    EXPECT_FALSE(x->IsRationalFunction(nullptr));

    // The term builders make polynomials of their degree.
    const double coefficients[] = {1.0, 0.0, -2.0, 0.5, 3.0};
    EXPECT_TRUE(f.CreatePolynomialTerm(4, coefficients, x)->IsPolynomial(x, degree));
    EXPECT_EQ(degree, 4);
    EXPECT_TRUE(f.CreateLinearTerm(2.0, 1.0, x)->IsLinear());
    EXPECT_TRUE(f.CreateQuadraticTerm(2.0, 1.0, 0.0, x)->IsPolynomial(x, degree));
    EXPECT_EQ(degree, 2);

    // Degrees saturate instead of overflowing.
    ZorWBExpression* huge = x;
    for (int i = 0; i < 8; ++i)
        huge = f.CreatePower(huge, 1000);
    EXPECT_TRUE(huge->IsPolynomial());
    EXPECT_FALSE(huge->IsQuadratic());
}

TEST(ZorWBNode, VariableFieldsAndNames) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* v0 = f.CreateVariable();
    ZorWBVariable* v1 = f.CreateVariable();
    EXPECT_EQ(v0->GetIdx(), 0);
    EXPECT_EQ(v1->GetIdx(), 1);
    EXPECT_EQ(v1->GetName(), "va1");
    v1->SetName("speed");
    EXPECT_EQ(v1->GetName(), "speed");
    EXPECT_EQ(f.GetVariable("speed"), v1);
    EXPECT_EQ(f.GetVariable("va0"), v0);
    EXPECT_EQ(f.GetVariable("nothing"), nullptr);
    EXPECT_EQ(v0->GetType(), Type::Variable);
    EXPECT_EQ(v0->GetExprValue().GetType(), ZorWBUndefinedType);

    double preferred = 42.0;
    EXPECT_FALSE(v0->GetPreferedValue(preferred));
    EXPECT_EQ(preferred, 42.0);
    v0->SetPreferedValue(1.5);
    EXPECT_TRUE(v0->GetPreferedValue(preferred));
    EXPECT_EQ(preferred, 1.5);
    EXPECT_FALSE(v0->IsFixed());
    v0->Fix(true);
    EXPECT_TRUE(v0->IsFixed());
    EXPECT_EQ(v0->GetDividedFlag(), 1);
    v0->SetDividedFlag(3);
    EXPECT_EQ(v0->GetDividedFlag(), 3);

    EXPECT_EQ(f.GetNextVariable(nullptr), v0);
    EXPECT_EQ(f.GetNextVariable(v0), v1);
    EXPECT_EQ(f.GetNextVariable(v1), nullptr);
    EXPECT_EQ(f.GetVariable(2), nullptr);
    EXPECT_EQ(f.GetVariable(-1), nullptr);
    f.UpdateIsVariablesSorted(true);
    EXPECT_TRUE(f.IsVariablesSorted());
    f.CreateVariable();
    EXPECT_FALSE(f.IsVariablesSorted());
}

TEST(ZorWBNode, ZeroOrOneByIdentityFromItsLevel) {
    for (unsigned int level :
         {Below(ZorWBLevel::PredefinedZeroOne), ZorWBLevel::PredefinedZeroOne}) {
        bool byIdentity = level >= ZorWBLevel::PredefinedZeroOne;
        ZorWBFactory f(level);
        bool isZero = false;
        bool isOne = false;
        f.CreateRealConstant(0.0)->IsZeroOrOne(isZero, isOne);
        EXPECT_TRUE(isZero);
        EXPECT_FALSE(isOne);
        f.CreateRealConstant(1.0)->IsZeroOrOne(isZero, isOne);
        EXPECT_FALSE(isZero);
        EXPECT_TRUE(isOne);
        f.CreateRealConstant(0.5)->IsZeroOrOne(isZero, isOne);
        EXPECT_FALSE(isZero || isOne);

        // A shared Zero whose value was changed still counts as zero by identity.
        f.GetZero()->SetValue(ZorWBValue(5), nullptr);
        f.GetOne()->SetValue(ZorWBValue(7), nullptr);
        f.GetZero()->IsZeroOrOne(isZero, isOne);
        EXPECT_EQ(isZero, byIdentity) << std::hex << level;
        f.GetOne()->IsZeroOrOne(isZero, isOne);
        EXPECT_EQ(isOne, byIdentity) << std::hex << level;
    }
}

TEST(ZorWBNode, CanBeRemovedOnlyWithoutOtherParents) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    EXPECT_TRUE(x->CanBeRemoved(nullptr));
    ZorWBExpression* s = f.CreateSin(x);
    EXPECT_TRUE(x->CanBeRemoved(s));
    EXPECT_FALSE(x->CanBeRemoved(nullptr));
    f.CreateCos(x);
    EXPECT_FALSE(x->CanBeRemoved(s));
}

TEST(ZorWBNode, StepParameters) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* step = f.CreateStep(x, 1.0, 2.0, 3.0, 4.0);
    ASSERT_EQ(step->GetNbOfParameters(), 4);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(step->GetParameter(i), i + 1.0);
    EXPECT_EQ(step->GetParameter(4), 0.0);
    EXPECT_EQ(step->GetParameter(-1), 0.0);
    step->SetParameter(2, 9.0);
    EXPECT_EQ(step->GetParameter(2), 9.0);
    step->SetParameter(7, 9.0);  // ignored

    ZorWBExpression* sqrt = f.CreateSqrt(x);
    EXPECT_EQ(sqrt->GetNbOfParameters(), 0);
    sqrt->SetParameter(0, 1.0);
    EXPECT_EQ(sqrt->GetParameter(0), 0.0);
    EXPECT_EQ(x->GetNbOfParameters(), 0);

    ZorWBExpression* plain = f.CreateUnaryOperator(Type::Step, x);
    ASSERT_NE(plain, nullptr);
    EXPECT_EQ(plain->GetParameter(3), 0.0);
}
