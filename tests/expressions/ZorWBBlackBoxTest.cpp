#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "ExpressionTestSupport.h"
#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBEquation.h"

using Type = ZorWBExpressionType;

namespace {

const ZorWBBlackBoxOperator* AsCall(const ZorWBExpression* e) {
    EXPECT_EQ(e->GetType(), Type::BlackBox);
    return static_cast<const ZorWBBlackBoxOperator*>(e);
}

// Reads its arguments as values: the interval hull's width of the first.
class WidthBlackBox : public ZorWBBlackBox {
  public:
    void Eval(ZorWBValue& value) override {
        ZorWBRealInterval hull = GetArgumentValue(0).GetAsRealInterval();
        value.Set(hull.high - hull.low);
    }
    double Eval() override { return 0.0; }
};

}  // namespace

TEST(ZorWBBlackBox, DeclarationNamesAndSerialNumbers) {
    CountingBlackBox first;
    CountingBlackBox second;
    CountingBlackBox named;
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* args[] = {x, f.GetTwo()};
    named.SetName("force");
    EXPECT_EQ(f.DeclareBlackBox(nullptr, 1, args, false), nullptr);
    EXPECT_EQ(f.DeclareBlackBox(&first, 2, nullptr, false), nullptr);
    ZorWBExpression* a = f.DeclareBlackBox(&first, 2, args, false);
    ZorWBExpression* b = f.DeclareBlackBox(&second, 1, args, false);
    ZorWBExpression* c = f.DeclareBlackBox(&named, 0, nullptr, false);
    EXPECT_EQ(AsCall(a)->GetSerialNumber(), 0);
    EXPECT_EQ(AsCall(b)->GetSerialNumber(), 1);
    EXPECT_EQ(AsCall(b)->GetBlackBoxName(), "BBx1");
    EXPECT_EQ(second.GetName(), "BBx1");
    bool isSet = true;
    second.GetName(isSet);
    EXPECT_FALSE(isSet);
    EXPECT_EQ(AsCall(c)->GetBlackBoxName(), "force");
    EXPECT_EQ(ZorWBBlackBoxOperator::GetDefaultBlackBoxName(AsCall(c)), "BBx2");
    EXPECT_EQ(ZorWBBlackBoxOperator::GetDefaultBlackBoxName(nullptr), "BBx");
    EXPECT_EQ(f.GetBlackBoxByName("BBx1"), &second);
    EXPECT_EQ(f.GetBlackBoxByName("force"), &named);
    EXPECT_EQ(f.GetBlackBoxByName("BBx7"), nullptr);
    EXPECT_EQ(first.GetOperator(), a);
    EXPECT_EQ(f.GetNbOfBlackBoxes(), 3);
    EXPECT_EQ(f.GetBlackBoxCount(), 3);
    AsCall(const_cast<ZorWBExpression*>(a))->GetBlackBox()->SetName("renamed");
    EXPECT_EQ(f.GetBlackBoxByName("renamed"), &first);
    const_cast<ZorWBBlackBoxOperator*>(AsCall(b))->SetBlackBoxName("torque");
    EXPECT_EQ(second.GetName(), "torque");
}

TEST(ZorWBBlackBox, ArgumentsReachTheBlackBoxAndCallsAreNotBuffered) {
    for (unsigned int level :
         {Below(ZorWBLevel::ResetBufferUpward), ZorWBLevel::ResetBufferUpward}) {
        bool unbuffered = level >= ZorWBLevel::ResetBufferUpward;
        CountingBlackBox bb;
        ZorWBFactory f(level);
        ZorWBVariable* x = f.CreateVariable();
        ZorWBVariable* y = f.CreateVariable();
        SetReal(x, 2.0);
        SetReal(y, 0.5);
        ZorWBExpression* args[] = {f.CreateSin(x), y};
        ZorWBExpression* call = f.DeclareBlackBox(&bb, 2, args, false);
        ZorWBExpression* above = f.CreateProduct(call, f.GetTwo());
        ZorWBExpression* beside = f.CreateCos(y);
        EXPECT_EQ(call->AllowsBufferEval(), !unbuffered);
        EXPECT_EQ(above->AllowsBufferEval(), !unbuffered);
        EXPECT_TRUE(beside->AllowsBufferEval());

        EXPECT_DOUBLE_EQ(RealValue(above), 2.0 * (std::sin(2.0) + 0.5));
        bb.offset = 1.0;  // the black box changes without its arguments changing
        double again = RealValue(above);
        EXPECT_EQ(bb.calls, unbuffered ? 2 : 1);
        EXPECT_DOUBLE_EQ(again,
                         unbuffered ? 2.0 * (std::sin(2.0) + 1.5) : 2.0 * (std::sin(2.0) + 0.5));
        EXPECT_DOUBLE_EQ(above->Eval(), 2.0 * (std::sin(2.0) + 1.5));

        // Giving buffering back with validation does not reach a black-box
        // call; without validation it does.
        call->SetAllowBufferEval(true, true, true);
        EXPECT_EQ(call->AllowsBufferEval(), !unbuffered);
        EXPECT_EQ(above->AllowsBufferEval(), !unbuffered);
        call->SetAllowBufferEval(true, true, false);
        EXPECT_TRUE(call->AllowsBufferEval());
        EXPECT_TRUE(above->AllowsBufferEval());
        EXPECT_EQ(bb.GetOperator(), call);
    }
}

TEST(ZorWBBlackBox, OneBlackBoxServesSeveralCalls) {
    CountingBlackBox bb;
    CountingBlackBox lonely;
    WidthBlackBox width;
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    SetReal(x, 3.0);
    ZorWBExpression* firstArgs[] = {x};
    ZorWBExpression* secondArgs[] = {f.CreateProduct(x, x)};
    ZorWBExpression* first = f.DeclareBlackBox(&bb, 1, firstArgs, false);
    ZorWBExpression* second = f.DeclareBlackBox(&bb, 1, secondArgs, false);
    EXPECT_EQ(f.GetNbOfBlackBoxes(), 1);
    EXPECT_DOUBLE_EQ(RealValue(f.CreateSum(first, second)), 12.0);
    EXPECT_EQ(bb.GetOperator(), second);
    EXPECT_EQ(bb.GetNbOfArguments(), 1);

    // Outside a call, the arguments are those of the last node.
    EXPECT_DOUBLE_EQ(bb.GetArgument(0), 9.0);
    EXPECT_TRUE(std::isnan(bb.GetArgument(1)));
    EXPECT_EQ(bb.GetArgumentValue(-1).GetType(), ZorWBUndefinedType);
    EXPECT_EQ(lonely.GetNbOfArguments(), 0);
    EXPECT_TRUE(std::isnan(lonely.GetArgument(0)));

    // Interval arguments reach a black box that reads values.
    x->SetExprValue(ZorWBValue(ZorWBRealInterval{1.0, 4.0}));
    ZorWBExpression* widthArgs[] = {x};
    EXPECT_DOUBLE_EQ(RealValue(f.DeclareBlackBox(&width, 1, widthArgs, false)), 3.0);
}

TEST(ZorWBBlackBox, EqualityByObjectFromItsLevel) {
    for (unsigned int level :
         {Below(ZorWBLevel::BlackBoxEqualityByObject), ZorWBLevel::BlackBoxEqualityByObject}) {
        CountingBlackBox p;
        CountingBlackBox q;
        ZorWBFactory f(level);
        ZorWBVariable* x = f.CreateVariable();
        ZorWBExpression* args[] = {x, f.GetOne()};
        ZorWBExpression* swapped[] = {f.GetOne(), x};
        ZorWBExpression* a = f.DeclareBlackBox(&p, 2, args, false);
        ZorWBExpression* b = f.DeclareBlackBox(&q, 2, args, false);
        ZorWBExpression* c = f.DeclareBlackBox(&p, 2, args, false);
        ZorWBExpression* d = f.DeclareBlackBox(&p, 2, swapped, false);
        EXPECT_EQ(a->IsEqualTo(b), level < ZorWBLevel::BlackBoxEqualityByObject);
        EXPECT_TRUE(a->IsEqualTo(c));
        EXPECT_FALSE(a->IsEqualTo(d));  // arguments in order
        EXPECT_EQ(f.CreateSin(a)->IsEqualTo(f.CreateSin(b)),
                  level < ZorWBLevel::BlackBoxEqualityByObject);
    }
}

TEST(ZorWBBlackBox, InternalBlackBoxesDieWithTheFactory) {
    // LeakSanitizer reports the internal one if it is not destroyed; the
    // external one must outlive the factory and be left alone.
    CountingBlackBox external;
    {
        ZorWBFactory f(ZorWBLevel::All);
        ZorWBVariable* x = f.CreateVariable();
        ZorWBExpression* args[] = {x};
        ZorWBBlackBox* internal = new CountingBlackBox();
        ZorWBExpression* call = f.DeclareBlackBox(internal, 1, args, true);
        EXPECT_TRUE(internal->IsInternal());
        f.DeclareBlackBox(&external, 1, args, false);
        f.DeclareBlackBox(internal, 1, args, true);  // listed once
        EXPECT_EQ(f.GetNbOfBlackBoxes(), 2);
        f.UseTemporaryStorage(true);
        f.DeclareBlackBox(internal, 1, args, true);  // a temporary call
        f.AddEquation(call, ZorWBEqualZero);
    }
    EXPECT_FALSE(external.IsInternal());
    EXPECT_EQ(external.GetOperator(), nullptr);
}

TEST(ZorWBBlackBox, DuplicatedRootsShareBlackBoxCalls) {
    CountingBlackBox bb;
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* args[] = {f.CreateSin(x)};
    ZorWBExpression* call = f.DeclareBlackBox(&bb, 1, args, false);
    ZorWBExpression* root = f.CreateSum(call, f.CreateRealConstant(1.0));
    ZorWBEquation* equation = f.AddEquation(root, ZorWBEqualZero);
    equation->DuplicateRoot();
    ZorWBExpression* copy = equation->GetRoot();
    EXPECT_NE(copy, root);
    EXPECT_EQ(copy->GetChild(0), call);
    EXPECT_EQ(call->GetNbOfParents(), 2);

    // Replacing the calls of a black box in place.
    ZorWBExpression* replaced = copy->ReplaceBBx(&bb, x);
    EXPECT_EQ(replaced, copy);
    EXPECT_EQ(copy->GetChild(0), x);
    EXPECT_EQ(root->GetChild(0), call);
    EXPECT_EQ(call->ReplaceBBx(&bb, x), x);
}

namespace {

// A black box reading its arguments (a value evaluation of each) and the
// real of a node it watches (a real evaluation): run inside Eval() and
// inside GetValue(), it nests evaluations of both kinds into each other.
class ReadingBlackBox : public ZorWBBBx {
  public:
    double Eval() override {
        double sum = watched ? 0.5 * watched->Eval() : 0.0;
        for (int i = 0; i < GetNbOfArguments(); ++i)
            sum += 0.25 * GetArgument(i);
        return std::tanh(sum);
    }
    const ZorWBExpression* watched = nullptr;
};

// The value of node computed by plain recursion over the graph.
double Reference(const ZorWBExpression* node,
                 const std::vector<std::unique_ptr<ReadingBlackBox>>& boxes) {
    const ZorWBExpression* a = node->GetChild(0);
    switch (node->GetType()) {
        case ZorWBExpressionType::Variable:
        case ZorWBExpressionType::Constant:
            return node->GetExprValue().GetAsReal();
        case ZorWBExpressionType::Sum:
            return Reference(a, boxes) + Reference(node->GetChild(1), boxes);
        case ZorWBExpressionType::Product:
            return Reference(a, boxes) * Reference(node->GetChild(1), boxes);
        case ZorWBExpressionType::Sin:
            return std::sin(Reference(a, boxes));
        case ZorWBExpressionType::Atan2:
            return std::atan2(Reference(a, boxes), Reference(node->GetChild(1), boxes));
        default: {  // a call of boxes[i]
            const auto* call = static_cast<const ZorWBBlackBoxOperator*>(node);
            const ReadingBlackBox* box = static_cast<const ReadingBlackBox*>(call->GetBlackBox());
            double sum = box->watched ? 0.5 * Reference(box->watched, boxes) : 0.0;
            for (int i = 0; i < node->GetNbOfChildren(); ++i)
                sum += 0.25 * Reference(node->GetChild(i), boxes);
            return std::tanh(sum);
        }
    }
}

}  // namespace

// Property: on random graphs whose black boxes evaluate their arguments and
// the real of a node below them, Eval(), the compiled programs of later
// calls and GetValue() all give the value of a plain recursion, whatever
// the buffers hold: the real evaluation keeps the results of the nodes it
// computed while value evaluations run inside it, and the other way round.
TEST(ZorWBBlackBox, EvaluationsNestedThroughBlackBoxesGiveThePlainValues) {
    for (unsigned int seed = 1; seed <= 20; ++seed) {
        std::vector<std::unique_ptr<ReadingBlackBox>> boxes;
        ZorWBFactory f(ZorWBLevel::All);
        RandomGraph graph(f, seed, 4);
        std::vector<ZorWBExpression*>& nodes = graph.nodes;
        for (int i = 0; i < 40; ++i) {
            ZorWBExpression* a = graph.Pick();
            ZorWBExpression* b = graph.Pick();
            switch (graph.Index(7)) {
                case 0:
                    nodes.push_back(f.CreateSum(a, b));
                    break;
                case 1:
                    nodes.push_back(f.CreateProduct(a, f.CreateRealConstant(graph.Uniform())));
                    break;
                case 2:
                    nodes.push_back(f.CreateSin(f.CreateSum(a, b)));
                    break;
                case 3:
                    if (boxes.size() < 4) {
                        boxes.push_back(std::make_unique<ReadingBlackBox>());
                        boxes.back()->watched = graph.Pick();
                        ZorWBExpression* arguments[] = {a, b};
                        nodes.push_back(f.DeclareBlackBox(boxes.back().get(), 2, arguments, false));
                    }
                    break;
                case 4:  // reads both operands once both are computed
                    nodes.push_back(f.CreateAtan2(a, b));
                    break;
                default:
                    nodes.push_back(f.CreateProduct(a, b));
                    break;
            }
        }
        ZorWBExpression* root = f.CreateSum(nodes.back(), nodes[nodes.size() / 2]);
        for (int round = 0; round < 6; ++round) {
            SetReal(graph.AnyVariable(), graph.Uniform());
            graph.Pick()->GetValue();
            double expected = Reference(root, boxes);
            EXPECT_NEAR(root->Eval(), expected, 1e-12) << "seed " << seed << " round " << round;
            EXPECT_NEAR(RealValue(root), expected, 1e-12) << "seed " << seed;
            EXPECT_NEAR(root->Eval(), expected, 1e-12) << "seed " << seed;
        }
    }
}
