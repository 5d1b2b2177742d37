#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "ExpressionTestSupport.h"
#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBOperator.h"
#include "qel/ZorQelGlobalParameters.h"

using Type = ZorWBExpressionType;

namespace {

// The value of a constant node as an integer, failing on other kinds.
int IntegerOf(const ZorWBExpression* e) {
    EXPECT_EQ(e->GetType(), Type::Constant);
    EXPECT_EQ(e->GetExprValue().GetType(), ZorWBIntegerType);
    return e->GetExprValue().GetAsInteger();
}

}  // namespace

TEST(ZorWBFactory, CreationNeverMergesButSharesPredefinedConstants) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* a = f.CreateVariable();
    ZorWBVariable* b = f.CreateVariable();
    ZorWBExpression* s1 = f.CreateSum(a, b);
    ZorWBExpression* s2 = f.CreateSum(a, b);
    EXPECT_NE(s1, s2);
    EXPECT_TRUE(s1->IsEqualTo(s2));

    EXPECT_EQ(f.CreateIntegerConstant(2), f.CreateIntegerConstant(2));
    EXPECT_EQ(f.CreateIntegerConstant(2), f.GetTwo());
    EXPECT_EQ(f.CreateIntegerConstant(-1), f.GetMinusOne());
    EXPECT_EQ(f.CreateIntegerConstant(0), f.GetZero());
    EXPECT_EQ(f.CreateIntegerConstant(1), f.GetOne());
    EXPECT_EQ(f.CreateIntegerConstant(3), f.GetThree());
    EXPECT_NE(f.CreateIntegerConstant(4), f.CreateIntegerConstant(4));
    EXPECT_NE(f.CreateRealConstant(2.0), f.CreateRealConstant(2.0));
    EXPECT_NE(f.CreateRealConstant(0.0), f.GetZero());
    EXPECT_EQ(f.CreateConstant(ZorWBValue(3)), f.GetThree());
    ZorWBConstant* interval = f.CreateConstant(ZorWBValue(ZorWBRealInterval{1.0, 2.0}));
    EXPECT_EQ(interval->GetExprValue().GetType(), ZorWBRealIntervalType);
}

TEST(ZorWBFactory, PredefinedConstantValues) {
    ZorWBFactory f(ZorWBLevel::All);
    EXPECT_EQ(f.GetConstant(static_cast<ZorWBPredefinedConst>(11)), nullptr);
    EXPECT_EQ(f.GetConstant(static_cast<ZorWBPredefinedConst>(-1)), nullptr);
    const int fractions[4][3] = {{1, 1, 1}, {1, 2, 1}, {1, 180, 1}, {180, 1, -1}};
    for (int k = 0; k < 4; ++k) {
        const ZorWBValue& value =
            f.GetConstant(static_cast<ZorWBPredefinedConst>(k))->GetExprValue();
        ASSERT_EQ(value.GetType(), ZorWBFractionType);
        ZorWBFraction fraction = value.GetAsFraction();
        EXPECT_EQ(fraction.numerator, fractions[k][0]);
        EXPECT_EQ(fraction.denominator, fractions[k][1]);
        EXPECT_EQ(fraction.power, fractions[k][2]);
    }
    EXPECT_EQ(f.GetIndefinite()->GetExprValue().GetType(), ZorWBUndefinedType);
    EXPECT_EQ(f.GetInvalid()->GetExprValue().GetAsReal(), -3.4028234663852886e+39);
    EXPECT_EQ(IntegerOf(f.GetMinusOne()), -1);
    EXPECT_EQ(IntegerOf(f.GetZero()), 0);
    EXPECT_EQ(IntegerOf(f.GetOne()), 1);
    EXPECT_EQ(IntegerOf(f.GetTwo()), 2);
    EXPECT_EQ(IntegerOf(f.GetThree()), 3);

    ZorWBPredefinedConst index = ZorWBConstZero;
    EXPECT_TRUE(f.IsPredefinedConstant(f.GetRToD(), index));
    EXPECT_EQ(index, ZorWBConstRToD);
    EXPECT_FALSE(f.IsPredefinedConstant(f.CreateRealConstant(1.0), index));
    EXPECT_EQ(index, -1);

    // Predefined constants are permanent even in temporary mode.
    ZorWBFactory g(ZorWBLevel::All);
    g.UseTemporaryStorage(true);
    ZorWBConstant* pi = g.GetPi();
    EXPECT_EQ(g.GetNbOfTemporaryExpressions(), 0);
    g.UseTemporaryStorage(false);
    EXPECT_EQ(g.GetPi(), pi);
}

TEST(ZorWBFactory, PiConstantsSharedFromTheirLevel) {
    for (unsigned int level :
         {Below(ZorWBLevel::SharedPiConstants), ZorWBLevel::SharedPiConstants}) {
        ZorWBFactory f(level);
        bool shared = level >= ZorWBLevel::SharedPiConstants;
        ZorWBConstant* pi = f.CreateConstantPi();
        ZorWBConstant* dToR = f.CreateConstantDTOR();
        ZorWBConstant* rToD = f.CreateConstantRTOD();
        EXPECT_EQ(pi == f.GetPi(), shared);
        EXPECT_EQ(dToR == f.GetDToR(), shared);
        EXPECT_EQ(rToD == f.GetRToD(), shared);
        EXPECT_TRUE(pi->IsEqualTo(f.GetPi()));
        EXPECT_TRUE(rToD->IsEqualTo(f.GetRToD()));
        EXPECT_NEAR(pi->Eval(), M_PI, 1e-15);
        EXPECT_NEAR(dToR->Eval() * rToD->Eval(), 1.0, 1e-15);
    }
}

TEST(ZorWBFactory, SubtractionFoldsTheSignDifferenceDoesNot) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();

    ZorWBExpression* sub = f.CreateSub(x, f.GetThree());
    ASSERT_EQ(sub->GetType(), Type::Sum);
    EXPECT_EQ(sub->GetChild(0), x);
    EXPECT_EQ(IntegerOf(sub->GetChild(1)), -3);

    ZorWBExpression* difference = f.CreateDifference(x, f.GetThree());
    ASSERT_EQ(difference->GetType(), Type::Sum);
    const ZorWBExpression* product = difference->GetChild(1);
    ASSERT_EQ(product->GetType(), Type::Product);
    EXPECT_EQ(product->GetChild(0), f.GetThree());
    EXPECT_EQ(product->GetChild(1), f.GetMinusOne());

    // -(1 * y) is a fold of the leading constant onto the shared MinusOne.
    ZorWBExpression* leading = f.CreateSub(x, f.CreateProduct(f.GetOne(), y));
    EXPECT_EQ(leading->GetChild(1)->GetChild(0), f.GetMinusOne());
    EXPECT_EQ(leading->GetChild(1)->GetChild(1), y);

    ZorWBExpression* three[] = {f.CreateRealConstant(2.5), y, x};
    ZorWBExpression* subProduct = f.CreateSub(x, f.CreateProduct(3, three));
    const ZorWBExpression* folded = subProduct->GetChild(1);
    ASSERT_EQ(folded->GetNbOfChildren(), 3);
    EXPECT_EQ(folded->GetChild(0)->GetExprValue().GetAsReal(), -2.5);
    EXPECT_EQ(folded->GetChild(1), y);
    EXPECT_EQ(folded->GetChild(2), x);

    ZorWBExpression* subQuotient = f.CreateSub(x, f.CreateQuotient(f.CreateIntegerConstant(4), y));
    const ZorWBExpression* quotient = subQuotient->GetChild(1);
    ASSERT_EQ(quotient->GetType(), Type::Quotient);
    EXPECT_EQ(IntegerOf(quotient->GetChild(0)), -4);
    EXPECT_EQ(quotient->GetChild(1), y);

    ZorWBExpression* plain = f.CreateSub(x, f.CreateSin(y));
    const ZorWBExpression* negated = plain->GetChild(1);
    EXPECT_EQ(negated->GetChild(0), f.GetMinusOne());
    EXPECT_EQ(negated->GetChild(1)->GetType(), Type::Sin);

    EXPECT_EQ(f.CreateSub(x, nullptr), x);
    EXPECT_EQ(f.CreateSub(nullptr, y), nullptr);
    EXPECT_EQ(f.CreateDifference(x, nullptr), nullptr);

    // Both forms compute x - y.
    SetReal(x, 5.0);
    SetReal(y, 1.5);
    EXPECT_DOUBLE_EQ(RealValue(f.CreateSub(x, y)), 3.5);
    EXPECT_DOUBLE_EQ(RealValue(f.CreateDifference(x, y)), 3.5);
}

TEST(ZorWBFactory, ComparisonsAreBuiltFromLessEqual) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* a = f.CreateVariable();
    ZorWBVariable* b = f.CreateVariable();
    ZorWBExpression* ge = f.CreateGreaterEqual(a, b);
    EXPECT_EQ(ge->GetType(), Type::LessEqual);
    EXPECT_EQ(ge->GetChild(0), b);
    ZorWBExpression* less = f.CreateLess(a, b);
    EXPECT_EQ(less->GetType(), Type::Not);
    EXPECT_EQ(less->GetChild(0)->GetChild(0), b);
    ZorWBExpression* greater = f.CreateGreater(a, b);
    EXPECT_EQ(greater->GetChild(0)->GetChild(0), a);
    int before = f.GetNbOfExpressions();
    EXPECT_EQ(f.CreateLess(a, nullptr), nullptr);
    EXPECT_EQ(f.CreateGreater(nullptr, b), nullptr);
    EXPECT_EQ(f.CreatePower(nullptr, 7), nullptr);
    EXPECT_EQ(f.GetNbOfExpressions(), before);  // nothing made on failure

    SetReal(a, 1.0);
    SetReal(b, 2.0);
    EXPECT_EQ(less->GetValue().GetAsBoolean(), ZorWBTrue);
    EXPECT_EQ(greater->GetValue().GetAsBoolean(), ZorWBFalse);
    EXPECT_EQ(ge->GetValue().GetAsBoolean(), ZorWBFalse);
}

TEST(ZorWBFactory, GeneralDispatchFollowsTheTypeTable) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* one[] = {x};
    ZorWBExpression* two[] = {x, x};
    ZorWBExpression* three[] = {x, x, x};
    for (int t = 0; t < ZorWBNbOfExpressionTypes; ++t) {
        Type type = static_cast<Type>(t);
        const ZorWBExpressionTypeInfo* info = ZorWBGetExpressionTypeInfo(type);
        ZorWBExpression* unary = f.CreateOperator(type, 1, one);
        ZorWBExpression* binary = f.CreateOperator(type, 2, two);
        ZorWBExpression* ternary = f.CreateOperator(type, 3, three);
        bool operatorNode = info->family != ZorWBNodeFamily::NoNode &&
                            info->family != ZorWBNodeFamily::Leaf &&
                            info->family != ZorWBNodeFamily::BlackBox;
        bool step = type == Type::Step;
        EXPECT_EQ(unary != nullptr, operatorNode && !step && info->children == 1) << info->name;
        EXPECT_EQ(binary != nullptr, operatorNode && (info->children == 2 || info->children < 0))
            << info->name;
        EXPECT_EQ(ternary != nullptr, operatorNode && (info->children == 3 || info->children < 0 ||
                                                       type == Type::Round))
            << info->name;
        for (ZorWBExpression* node : {unary, binary, ternary}) {
            if (node) {
                EXPECT_EQ(node->GetType(), type);
            }
        }
    }
    EXPECT_EQ(f.CreateOperator(Type::Sum, 0, one), nullptr);
    EXPECT_EQ(f.CreateOperator(Type::Sum, 2, nullptr), nullptr);
    EXPECT_EQ(f.CreateOperator(Type::Sin, static_cast<ZorWBExpression*>(nullptr)), nullptr);
    EXPECT_EQ(f.CreateOperator(static_cast<Type>(99), x), nullptr);
    EXPECT_EQ(f.CreateOperator(Type::Minus, x, x), nullptr);
    ZorQelListPZorWBExpression list;
    list.Add(x);
    list.Add(f.GetTwo());
    list.Add(x);
    EXPECT_EQ(f.CreateOperator(Type::Max, list)->GetNbOfChildren(), 3);

    // The family creators refuse types of other families.
    EXPECT_EQ(f.CreateUnaryOperator(Type::Sin, x), nullptr);
    EXPECT_EQ(f.CreateTrigonometricOperator(Type::Sqrt, x), nullptr);
    EXPECT_NE(f.CreateTrigonometricOperator(Type::Acosh, x), nullptr);
    EXPECT_EQ(f.CreateBooleanOperator(Type::Not, x, x), nullptr);
    EXPECT_NE(f.CreateBooleanOperator(Type::Not, x), nullptr);
    EXPECT_NE(f.CreateBooleanOperator(Type::Implication, x, x), nullptr);
    EXPECT_EQ(f.CreateBinaryOperator(Type::Sum, x, x), nullptr);
    EXPECT_EQ(f.CreateAlgebraicOperator(Type::Quotient, 2, two), nullptr);
    EXPECT_NE(f.CreateAlgebraicOperator(Type::Min, 3, three), nullptr);
}

TEST(ZorWBFactory, StepThroughTheGeneralDispatch) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* ok[] = {x, f.GetOne(), f.CreateRealConstant(2.5), f.GetZero(), f.GetThree()};
    ZorWBExpression* step = f.CreateOperator(Type::Step, 5, ok);
    ASSERT_NE(step, nullptr);
    EXPECT_EQ(step->GetType(), Type::Step);
    EXPECT_EQ(step->GetNbOfChildren(), 1);
    EXPECT_EQ(step->GetParameter(0), 1.0);
    EXPECT_EQ(step->GetParameter(1), 2.5);
    EXPECT_EQ(step->GetParameter(3), 3.0);
    ZorWBExpression* notConstant[] = {x, f.GetOne(), x, f.GetZero(), f.GetThree()};
    EXPECT_EQ(f.CreateOperator(Type::Step, 5, notConstant), nullptr);
    ZorWBExpression* interval[] = {x, f.GetOne(), f.GetOne(), f.GetZero(),
                                   f.CreateConstant(ZorWBValue(ZorWBRealInterval{0.0, 1.0}))};
    EXPECT_EQ(f.CreateOperator(Type::Step, 5, interval), nullptr);
    EXPECT_EQ(f.CreateOperator(Type::Step, 4, ok), nullptr);
}

TEST(ZorWBFactory, ThreeChildRoundFromItsLevel) {
    for (unsigned int level :
         {Below(ZorWBLevel::RoundWithThreeChildren), ZorWBLevel::RoundWithThreeChildren}) {
        ZorWBFactory f(level);
        ZorWBVariable* x = f.CreateVariable();
        ZorWBExpression* round =
            f.CreateOperator(Type::Round, x, f.CreateRealConstant(0.5), f.GetZero());
        if (level < ZorWBLevel::RoundWithThreeChildren) {
            EXPECT_EQ(round, nullptr);
            continue;
        }
        ASSERT_NE(round, nullptr);
        EXPECT_EQ(round->GetNbOfChildren(), 3);
        SetReal(x, 1.3);
        EXPECT_DOUBLE_EQ(RealValue(round), 1.5);
        EXPECT_DOUBLE_EQ(round->Eval(), 1.5);
        EXPECT_EQ(f.CreateOperator(Type::Round, x, nullptr, f.GetZero()), nullptr);
    }
}

TEST(ZorWBFactory, TagsAndLookup) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* s = f.CreateSin(x);
    EXPECT_EQ(x->GetTag(), 0);
    EXPECT_EQ(s->GetTag(), 1);
    EXPECT_EQ(f.GetAndIncrementGlobalTag(), 2);
    EXPECT_EQ(f.GetGlobalTag(), 3);
    f.UpdateGlobalTag(1);
    EXPECT_EQ(f.GetGlobalTag(), 3);
    f.UpdateGlobalTag(10);
    EXPECT_EQ(f.GetGlobalTag(), 11);
    EXPECT_EQ(f.CreateCos(x)->GetTag(), 11);
    EXPECT_EQ(f.GetExpressionFromTag(1), s);
    EXPECT_EQ(f.GetExpressionFromTag(99), nullptr);

    f.UseTemporaryStorage(true);
    ZorWBExpression* temporary = f.CreateExp(x);
    EXPECT_EQ(f.GetExpressionFromTag(temporary->GetTag()), nullptr);
    EXPECT_EQ(temporary->GetProperty(f.GetTemporaryProperty()), 1);
    ZorWBVariable* y = f.CreateVariable();  // always permanent
    EXPECT_EQ(f.GetExpressionFromTag(y->GetTag()), y);
    f.UseTemporaryStorage(false);
    EXPECT_EQ(f.GetNbOfTemporaryExpressions(), 0);
}

// A factory whose tagged creators are open, as replay and cloning use them.
class TaggingFactory : public ZorWBFactory {
  public:
    TaggingFactory() : ZorWBFactory(ZorWBLevel::All) {}
    using ZorWBFactory::CreateIntegerConstant;
    using ZorWBFactory::CreateSum;
    using ZorWBFactory::CreateVariable;
};

TEST(ZorWBFactory, TaggedCreatorsUseTheGivenTag) {
    TaggingFactory f;
    int tag = 40;
    ZorWBVariable* x = f.CreateVariable(&tag);
    EXPECT_EQ(x->GetTag(), 40);
    EXPECT_EQ(f.GetGlobalTag(), 0);  // the caller updates the counter
    f.UpdateGlobalTag(tag);
    int sumTag = 50;
    ZorWBExpression* s = f.CreateSum(&sumTag, x, f.CreateIntegerConstant(nullptr, 17));
    EXPECT_EQ(s->GetTag(), 50);
    EXPECT_EQ(s->GetChild(1)->GetTag(), 41);
    EXPECT_EQ(f.GetExpressionFromTag(50), s);
}

TEST(ZorWBFactory, TemporaryStorageKeepsWhatEquationsReach) {
    ZorWBFactory f(ZorWBLevel::All);
    int weight = f.RegisterProperty("weight", 0);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    ZorWBExpression* permanent = f.CreateSum(x, y);
    ZorWBEquation* kept = f.AddEquation(permanent, ZorWBEqualZero);
    ZorWBEquation* untouched = f.AddEquation(f.CreateCos(y), ZorWBEqualZero);
    ZorWBExpression* untouchedRoot = untouched->GetRoot();
    int expressionsBefore = f.GetNbOfExpressions();

    f.UseTemporaryStorage(true);
    ZorWBExpression* shared = f.CreateSin(x);
    ZorWBExpression* root = f.CreateProduct(shared, f.CreateSum(shared, f.CreateRealConstant(2.0)));
    root->SetProperty(weight, 9);
    ZorWBExpression* scratch = f.CreateExp(y);
    // A permanent node takes a temporary child in place.
    permanent->ReplaceChild(1, f.CreateAbs(y));
    kept->SetRoot(root);
    int rootTag = root->GetTag();
    EXPECT_EQ(f.GetNbOfExpressions(), expressionsBefore);
    EXPECT_GT(f.GetNbOfTemporaryExpressions(), 4);
    (void)scratch;

    ZorWBEquation* permanentEquation = f.AddEquation(permanent, ZorWBEqualZero);
    f.UseTemporaryStorage(false);
    EXPECT_EQ(f.GetNbOfTemporaryExpressions(), 0);
    ZorWBExpression* newRoot = kept->GetRoot();
    EXPECT_NE(newRoot->GetTag(), rootTag);
    EXPECT_EQ(newRoot->GetType(), Type::Product);
    EXPECT_EQ(newRoot->GetProperty(weight), 9);
    EXPECT_EQ(newRoot->GetProperty(f.GetTemporaryProperty()), 0);
    // The shared temporary Sin was copied once.
    EXPECT_EQ(newRoot->GetChild(0), newRoot->GetChild(1)->GetChild(0));
    EXPECT_EQ(f.GetExpressionFromTag(newRoot->GetTag()), newRoot);
    EXPECT_EQ(untouched->GetRoot(), untouchedRoot);
    // The permanent node now holds a permanent copy of its temporary child.
    EXPECT_EQ(permanentEquation->GetRoot(), permanent);
    EXPECT_EQ(permanent->GetChild(1)->GetType(), Type::Abs);
    EXPECT_EQ(permanent->GetChild(1)->GetProperty(f.GetTemporaryProperty()), 0);
    // Only the copies were added: Sin, Sum, 2.0, Product and Abs.
    EXPECT_EQ(f.GetNbOfExpressions(), expressionsBefore + 5);

    SetReal(x, 0.5);
    SetReal(y, -2.0);
    EXPECT_DOUBLE_EQ(RealValue(newRoot), std::sin(0.5) * (std::sin(0.5) + 2.0));
    EXPECT_DOUBLE_EQ(RealValue(permanent), 2.5);
}

TEST(ZorWBFactory, RemoveExpressionRefusesNodesInUse) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* inner = f.CreateSin(x);
    ZorWBExpression* outer = f.CreateCos(inner);
    ZorWBExpression* other = f.CreateExp(inner);
    int count = f.GetNbOfExpressions();

    ZorWBExpression* target = inner;
    EXPECT_FALSE(f.RemoveExpression(target));
    EXPECT_EQ(target, inner);
    EXPECT_FALSE(f.RemoveExpression(target, outer));  // other still uses it
    EXPECT_EQ(f.GetNbOfExpressions(), count);

    ZorWBExpression* pointer = other;
    EXPECT_TRUE(f.RemoveExpression(pointer));
    EXPECT_EQ(pointer, nullptr);
    EXPECT_EQ(inner->GetNbOfParents(), 1);  // inner stays: outer uses it

    // A node used by exactly the exception goes, and the parent loses it.
    target = inner;
    EXPECT_TRUE(f.RemoveExpression(target, outer));
    EXPECT_EQ(outer->GetNbOfChildren(), 0);
    EXPECT_EQ(x->GetNbOfParents(), 0);

    ZorWBExpression* constant = f.GetOne();
    EXPECT_FALSE(f.RemoveExpression(constant));  // shared constants stay
    ZorWBExpression* none = nullptr;
    EXPECT_FALSE(f.RemoveExpression(none));
    f.UseTemporaryStorage(true);
    ZorWBExpression* temporary = f.CreateExp(x);
    EXPECT_FALSE(f.RemoveExpression(temporary));  // not among the expressions
    f.UseTemporaryStorage(false);

    // Removing a variable takes it out of the variable list.
    ZorWBVariable* lonely = f.CreateVariable();
    ZorWBExpression* asNode = lonely;
    EXPECT_TRUE(f.RemoveExpression(asNode));
    EXPECT_EQ(f.GetNbOfVariables(), 1);
}

TEST(ZorWBFactory, RemoveExpressionTakesTheNodesOnlyItUses) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* kept = f.CreateSin(x);
    ZorWBExpression* keeper = f.CreateExp(kept);
    int count = f.GetNbOfExpressions();
    // Only used below the root: a shared square, a constant, a chain.
    ZorWBExpression* c = f.CreateRealConstant(3.0);
    ZorWBExpression* a = f.CreateProduct(c, c);
    ZorWBExpression* left = f.CreateSum(a, kept);
    ZorWBExpression* right = f.CreateSum(a, x);
    ZorWBExpression* chain = right;
    for (int i = 0; i < 100000; ++i)
        chain = f.CreateAbs(chain);
    ZorWBExpression* root = f.CreateProduct(left, chain);
    EXPECT_TRUE(f.RemoveExpression(root));
    EXPECT_EQ(root, nullptr);
    EXPECT_EQ(f.GetNbOfExpressions(), count);
    EXPECT_EQ(kept->GetNbOfParents(), 1);
    EXPECT_EQ(keeper->GetChild(0), kept);
    ASSERT_EQ(x->GetNbOfParents(), 1);
    EXPECT_EQ(x->GetParent(0), kept);
}

TEST(ZorWBFactory, RemoveUniqueChildrenKeepsSharedOnes) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* shared = f.CreateSin(x);
    ZorWBExpression* own = f.CreateCos(x);
    ZorWBExpression* node = f.CreateSum(shared, own);
    f.CreateExp(shared);
    int count = f.GetNbOfExpressions();
    node->RemoveUniqueChildren();
    EXPECT_EQ(f.GetNbOfExpressions(), count - 1);
    ASSERT_EQ(node->GetNbOfChildren(), 1);
    EXPECT_EQ(node->GetChild(0), shared);
    EXPECT_EQ(x->GetNbOfParents(), 1);
}

// An equation root has no parent, yet it is in use: removing what lies
// above it, or closing temporary storage, leaves it alone.
TEST(ZorWBFactory, RemovalKeepsEveryEquationRoot) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    SetReal(x, 0.5);
    ZorWBExpression* inner = f.CreateSin(x);
    ZorWBEquation* equation = f.AddEquation(inner, ZorWBEqualZero);
    ZorWBExpression* outer = f.CreateCos(inner);
    EXPECT_TRUE(f.RemoveExpression(outer));
    ASSERT_EQ(equation->GetRoot(), inner);
    EXPECT_EQ(inner->GetNbOfParents(), 0);
    EXPECT_DOUBLE_EQ(RealValue(equation->GetRoot()), std::sin(0.5));

    // A root deep below a node whose unique children go.
    ZorWBExpression* deep = f.CreateExp(x);
    ZorWBEquation* deepEquation = f.AddEquation(deep, ZorWBLessZero);
    ZorWBExpression* node = f.CreateSum(f.CreateAbs(f.CreateAbs(deep)), f.CreateRealConstant(1.5));
    node->RemoveUniqueChildren();
    EXPECT_EQ(node->GetNbOfChildren(), 0);
    ASSERT_EQ(deepEquation->GetRoot(), deep);
    EXPECT_DOUBLE_EQ(RealValue(deep), std::exp(0.5));

    // Closing temporary storage reads every root.
    f.UseTemporaryStorage(true);
    f.CreateSin(f.CreateSin(x));
    f.UseTemporaryStorage(false);
    EXPECT_EQ(equation->GetRoot(), inner);
    EXPECT_EQ(deepEquation->GetRoot(), deep);

    // The root itself is refused while an equation holds it, and goes after.
    ZorWBExpression* root = inner;
    EXPECT_FALSE(f.RemoveExpression(root));
    EXPECT_EQ(root, inner);
    EXPECT_TRUE(f.RemoveEquation(equation));
    EXPECT_TRUE(f.RemoveExpression(root));
    EXPECT_EQ(root, nullptr);
}

// Removing a variable renumbers the ones after it, so that every index is
// still the variable's position: walks, present variables and equality stay
// right, and theoretical lists and default names follow the new indices.
TEST(ZorWBFactory, RemovingAVariableKeepsIndicesAtTheirPositions) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* v[4];
    for (ZorWBVariable*& variable : v)
        variable = f.CreateVariable();
    EXPECT_EQ(v[2]->GetName(), "va2");  // a default name asked before the removal
    v[3]->SetName("w");
    ZorWBExpression* sum = f.CreateSum(v[1], v[2]);
    ZorWBEquation* equation = f.AddEquation(f.CreateSum(sum, v[3]), ZorWBEqualZero);
    ZorQelIntArray listed;
    for (int index : {0, 1, 2, 3})
        listed.Add(index);
    equation->SetTheoreticalVarList(&listed);

    ZorWBExpression* removed = v[0];
    ASSERT_TRUE(f.RemoveExpression(removed));
    ASSERT_EQ(f.GetNbOfVariables(), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(f.GetVariable(i), v[i + 1]);
        EXPECT_EQ(v[i + 1]->GetIdx(), i);
    }
    EXPECT_EQ(v[2]->GetName(), "va1");
    EXPECT_EQ(v[3]->GetName(), "w");
    EXPECT_EQ(f.GetVariable("va1"), v[2]);

    ZorQelListPZorWBVariable present;
    ASSERT_EQ(sum->FindPresentVariables(present), 2);
    EXPECT_EQ(present[0], v[1]);
    EXPECT_EQ(present[1], v[2]);
    ASSERT_TRUE(equation->FindPresentVariables(present));
    EXPECT_EQ(present.GetSize(), 3);
    int walked = 0;
    for (ZorWBVariable* variable = f.GetNextVariable(nullptr); variable;
         variable = f.GetNextVariable(variable))
        ++walked;
    EXPECT_EQ(walked, 3);

    // Index 0 went with its variable; 1, 2, 3 became 0, 1, 2.
    ZorQelIntArray theoretical;
    equation->GetTheoreticalVarList(&theoretical);
    ASSERT_EQ(theoretical.GetSize(), 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(theoretical[i], i);
    EXPECT_TRUE(equation->AreVarConsistent());

    ZorWBVariable* fresh = f.CreateVariable();
    EXPECT_EQ(fresh->GetIdx(), 3);
    EXPECT_EQ(fresh->GetName(), "va3");
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(fresh->IsEqualTo(f.GetVariable(i)));
}
