#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>

#include "CalculusTestSupport.h"
#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBDerivBlackBox.h"

using Type = ZorWBExpressionType;

namespace {

// f(a, b) = a^2 b + sin(a), counting its calls.
class SurfaceBlackBox : public ZorWBBBx {
  public:
    double Eval() override {
        ++calls;
        double a = GetArgument(0);
        double b = GetArgument(1);
        return a * a * b + std::sin(a);
    }
    static double ByA(double a, double b) { return 2.0 * a * b + std::cos(a); }
    static double ByB(double a, double) { return a * a; }
    int calls = 0;
};

// f(a) = a^3, reading its argument through its operator node instead of
// GetArgument.
class NodeReadingBlackBox : public ZorWBBBx {
  public:
    double Eval() override {
        double a = GetOperator()->GetChild(0)->GetValue().GetAsReal();
        return a * a * a;
    }
};

ZorWBDerivBlackBox* DerivativeOf(const ZorWBExpression* call) {
    EXPECT_EQ(call->GetType(), Type::BlackBox);
    ZorWBBlackBox* bb = static_cast<const ZorWBBlackBoxOperator*>(call)->GetBlackBox();
    EXPECT_TRUE(bb->IsADerivative());
    return static_cast<ZorWBDerivBlackBox*>(bb);
}

}  // namespace

TEST(ZorWBDerivBlackBox, PartialDerivativesByArgumentAtCurrentLevels) {
    SurfaceBlackBox surface;
    ZorWBFactory f(ZorWBLevel::PredefinedZeroOne);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    ZorWBExpression* args[] = {x, y};
    ZorWBExpression* call = f.DeclareBlackBox(&surface, 2, args, false);

    // d/dx f(x, y) is the call of the partial derivative by argument 0.
    ZorWBExpression* byX = f.CreateDerivative(call, x);
    ZorWBDerivBlackBox* first = DerivativeOf(byX);
    EXPECT_EQ(first->GetName(), "darg0BBx0");
    EXPECT_EQ(first->GetDiffArgument(), 0);
    EXPECT_EQ(first->GetAPrimitive(), &surface);
    EXPECT_TRUE(first->IsInternal());
    EXPECT_EQ(first->GetStep(), f.GetEnvironment().GetBBPrecision());
    EXPECT_EQ(byX->GetChild(0), x);
    EXPECT_EQ(byX->GetChild(1), y);
    EXPECT_EQ(f.GetDerivBlackBox(&surface, x), nullptr);  // no derivative by a variable

    // The same partial derivative black box serves the next derivative.
    ZorWBExpression* again = f.CreateDerivative(call, x);
    EXPECT_NE(again, byX);
    EXPECT_EQ(DerivativeOf(again), first);
    ZorWBExpression* byY = f.CreateDerivative(call, y);
    EXPECT_EQ(DerivativeOf(byY)->GetName(), "darg1BBx0");
    EXPECT_EQ(f.GetNbOfDerivBlackBoxes(), 2);

    std::mt19937 random(5);
    for (int sample = 0; sample < 20; ++sample) {
        double a = Uniform(random, -2.0, 2.0);
        double b = Uniform(random, -2.0, 2.0);
        SetReal(x, a);
        SetReal(y, b);
        surface.calls = 0;
        EXPECT_TRUE(Agrees(Reading(byX), SurfaceBlackBox::ByA(a, b), 1e-7));
        EXPECT_EQ(surface.calls, 2);  // one call on each side
        EXPECT_TRUE(Agrees(Reading(byY), SurfaceBlackBox::ByB(a, b), 1e-7));
        // The arguments themselves are left alone.
        EXPECT_EQ(x->GetExprValue().GetAsReal(), a);
        EXPECT_EQ(byX->Eval(), Reading(byX));
    }
}

// A partial derivative by an argument that is a variable moves the variable
// itself, so a black box that reads its operands through its node sees the
// step; the variable gets its whole value back.
TEST(ZorWBDerivBlackBox, AVariableArgumentIsMovedThroughTheVariable) {
    NodeReadingBlackBox cube;
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* args[] = {x};
    ZorWBExpression* call = f.DeclareBlackBox(&cube, 1, args, false);
    ZorWBExpression* derivative = f.CreateDerivative(call, x);
    for (double a : {-1.5, 0.25, 2.0}) {
        SetReal(x, a);
        EXPECT_TRUE(Agrees(Reading(derivative), 3.0 * a * a, 1e-6)) << a;
        EXPECT_EQ(derivative->Eval(), Reading(derivative));
        EXPECT_EQ(x->GetExprValue().GetType(), ZorWBRealType);
        EXPECT_EQ(x->GetExprValue().GetAsReal(), a);
        EXPECT_DOUBLE_EQ(Reading(call), a * a * a);
    }
    // Around the midpoint of an interval, which comes back whole.
    x->SetExprValue(ZorWBValue(ZorWBRealInterval{1.0, 3.0}));
    EXPECT_TRUE(Agrees(Reading(derivative), 12.0, 1e-6));
    EXPECT_EQ(x->GetExprValue().GetType(), ZorWBRealIntervalType);
    EXPECT_EQ(x->GetExprValue().GetAsRealInterval().high, 3.0);
}

TEST(ZorWBDerivBlackBox, ChainRuleThroughArgumentsAndSecondDerivatives) {
    SurfaceBlackBox surface;
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    ZorWBExpression* args[] = {f.CreateSin(x), f.CreateProduct(x, y)};
    ZorWBExpression* call = f.DeclareBlackBox(&surface, 2, args, false);
    ZorWBExpression* e = f.CreateProduct(call, f.CreateCos(y));
    std::mt19937 random(9);
    auto setPoint = [&]() {
        SetReal(x, Uniform(random, -1.5, 1.5));
        SetReal(y, Uniform(random, -1.5, 1.5));
    };
    EXPECT_EQ(CheckDerivative(e, x, setPoint, 20), 20);
    EXPECT_EQ(CheckDerivative(e, y, setPoint, 20), 20);

    // d2/dx2 f(x, y) = 2 y - sin(x): a derivative of a derivative black box.
    ZorWBExpression* plain[] = {x, y};
    ZorWBExpression* direct = f.DeclareBlackBox(&surface, 2, plain, false);
    ZorWBVariable* xx[] = {x, x};
    ZorWBExpression* second = f.CreateDerivative(direct, 2, xx);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(DerivativeOf(second)->GetAPrimitive()->IsADerivative(), true);
    for (int sample = 0; sample < 10; ++sample) {
        setPoint();
        double a = x->GetExprValue().GetAsReal();
        double b = y->GetExprValue().GetAsReal();
        EXPECT_NEAR(Reading(second), 2.0 * b - std::sin(a), 1e-4);
    }
}

TEST(ZorWBDerivBlackBox, DerivativeByVariableBelowTheChainRuleLevel) {
    SurfaceBlackBox surface;
    ZorWBFactory f(Below(ZorWBLevel::PredefinedZeroOne));
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    ZorWBVariable* z = f.CreateVariable();
    ZorWBExpression* args[] = {x, y};
    ZorWBExpression* call = f.DeclareBlackBox(&surface, 2, args, false);

    ZorWBExpression* byX = f.CreateDerivative(call, x);
    ZorWBDerivBlackBox* derivative = DerivativeOf(byX);
    EXPECT_EQ(derivative->GetName(), "dva0BBx0");
    EXPECT_TRUE(derivative->IsTheDiffVariable(x));
    EXPECT_FALSE(derivative->IsTheDiffVariable(y));
    EXPECT_TRUE(derivative->IsAPrimitive(&surface));
    EXPECT_TRUE(derivative->IsInternal());
    EXPECT_EQ(f.GetDerivBlackBox(&surface, x), derivative);
    // Asked again, the first derivative's call comes back.
    EXPECT_EQ(f.CreateDerivative(call, x), byX);
    EXPECT_EQ(f.GetNbOfDerivBlackBoxes(), 1);
    // Not an argument: no derivative; a null variable: the node itself.
    EXPECT_EQ(f.CreateDerivative(call, z), nullptr);
    EXPECT_EQ(call->Differentiate(nullptr), call);
    ZorWBExpression* inner[] = {f.CreateSin(x), y};
    EXPECT_EQ(f.CreateDerivative(f.DeclareBlackBox(&surface, 2, inner, false), x), nullptr);

    // Another call of the same black box reuses the derivative black box on
    // its own arguments: d/dx f(y, x) = y^2.
    ZorWBExpression* swapped[] = {y, x};
    ZorWBExpression* byXSwapped =
        f.CreateDerivative(f.DeclareBlackBox(&surface, 2, swapped, false), x);
    EXPECT_EQ(DerivativeOf(byXSwapped), derivative);
    EXPECT_EQ(byXSwapped->GetChild(0), y);

    ZorWBExpression* above = f.CreateSum(x, f.GetOne());
    std::mt19937 random(3);
    for (int sample = 0; sample < 20; ++sample) {
        double a = Uniform(random, -2.0, 2.0);
        double b = Uniform(random, -2.0, 2.0);
        SetReal(x, a);
        SetReal(y, b);
        EXPECT_DOUBLE_EQ(Reading(above), a + 1.0);
        EXPECT_TRUE(Agrees(Reading(byX), SurfaceBlackBox::ByA(a, b), 1e-7));
        EXPECT_TRUE(Agrees(Reading(byXSwapped), b * b, 1e-7));
        // The variable is back, and what was evaluated above it too.
        EXPECT_EQ(x->GetExprValue().GetAsReal(), a);
        EXPECT_DOUBLE_EQ(Reading(above), a + 1.0);
        EXPECT_DOUBLE_EQ(Reading(call), a * a * b + std::sin(a));
    }
    // A value of another kind comes back whole.
    x->SetExprValue(ZorWBValue(ZorWBRealInterval{0.5, 1.5}));
    EXPECT_TRUE(
        Agrees(Reading(byX), SurfaceBlackBox::ByA(1.0, y->GetExprValue().GetAsReal()), 1e-7));
    EXPECT_EQ(x->GetExprValue().GetType(), ZorWBRealIntervalType);
}

TEST(ZorWBDerivBlackBox, DerivativesWithoutAValue) {
    SurfaceBlackBox surface;
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    ZorWBExpression* args[] = {x, y};
    ZorWBExpression* call = f.DeclareBlackBox(&surface, 2, args, false);
    ZorWBExpression* byX = f.CreateDerivative(call, x);
    SetReal(y, 1.0);
    // An undefined argument.
    EXPECT_TRUE(std::isnan(Reading(byX)));
    SetReal(x, 1.0);
    EXPECT_FALSE(std::isnan(Reading(byX)));

    // A step of zero, made with the environment's precision at zero.
    ZorWBFactory flat(ZorWBLevel::All);
    flat.GetEnvironment().SetBBPrecision(0.0);
    ZorWBVariable* u = flat.CreateVariable();
    SetReal(u, 1.0);
    ZorWBExpression* one[] = {u, flat.GetTwo()};
    ZorWBExpression* dFlat =
        flat.CreateDerivative(flat.DeclareBlackBox(&surface, 2, one, false), u);
    ASSERT_NE(dFlat, nullptr);
    EXPECT_TRUE(std::isnan(Reading(dFlat)));

    // Without a primitive or a variable: default name, no step, no value.
    ZorWBDerivBlackBox orphan(nullptr, x);
    EXPECT_EQ(orphan.GetName(), "BBx");
    EXPECT_EQ(orphan.GetStep(), 0.0);
    EXPECT_TRUE(std::isnan(orphan.Eval()));
    ZorWBDerivBlackBox noVariable(&surface, nullptr);
    EXPECT_EQ(noVariable.GetStep(), 0.0);
    EXPECT_TRUE(std::isnan(noVariable.Eval()));
    ZorWBValue value;
    orphan.Eval(value);
    EXPECT_EQ(value.GetType(), ZorWBRealType);
}

TEST(ZorWBDerivBlackBox, HostDerivativesAreRegisteredAndLeftToTheHost) {
    // The host's black boxes outlive the factory.
    SurfaceBlackBox surface;
    std::unique_ptr<ZorWBDerivBlackBox> own;
    ZorWBFactory f(Below(ZorWBLevel::PredefinedZeroOne));
    ZorWBVariable* x = f.CreateVariable();
    x->SetName("alpha");
    ZorWBExpression* args[] = {x, f.GetTwo()};
    ZorWBExpression* call = f.DeclareBlackBox(&surface, 2, args, false);
    own = std::make_unique<ZorWBDerivBlackBox>(&surface, x);
    EXPECT_EQ(own->GetName(), "dalphaBBx0");
    ZorWBExpression* hostCall = f.DeclareBlackBox(own.get(), 2, args, false);
    EXPECT_EQ(f.GetDerivBlackBox(&surface, x), own.get());
    // Differentiation finds the host's derivative and its call.
    EXPECT_EQ(f.CreateDerivative(call, x), hostCall);
    EXPECT_FALSE(own->IsInternal());
    SetReal(x, 0.5);
    EXPECT_TRUE(Agrees(Reading(hostCall), SurfaceBlackBox::ByA(0.5, 2.0), 1e-7));
    EXPECT_EQ(f.GetDerivBlackBox(nullptr, x), nullptr);
    EXPECT_EQ(f.GetDerivBlackBox(&surface, nullptr), nullptr);
    EXPECT_EQ(f.GetDerivBlackBox(5), nullptr);
}

TEST(ZorWBDerivBlackBox, InternalDerivativesDieWithTheFactory) {
    // LeakSanitizer reports the derivative black boxes if they outlive it.
    SurfaceBlackBox surface;
    for (unsigned int level : {Below(ZorWBLevel::PredefinedZeroOne), ZorWBLevel::All}) {
        ZorWBFactory f(level);
        ZorWBVariable* x = f.CreateVariable();
        ZorWBVariable* y = f.CreateVariable();
        ZorWBExpression* args[] = {x, y};
        ZorWBExpression* call = f.DeclareBlackBox(&surface, 2, args, false);
        ASSERT_NE(f.CreateDerivative(call, x), nullptr);
        ASSERT_NE(f.CreateDerivative(call, y), nullptr);
        f.UseTemporaryStorage(true);
        ASSERT_NE(f.CreateDerivative(f.CreateSin(call), x), nullptr);
        EXPECT_EQ(f.GetNbOfDerivBlackBoxes(), 2);
        EXPECT_EQ(f.GetNbOfBlackBoxes(), 3);
    }
    EXPECT_EQ(surface.GetOperator(), nullptr);
}
