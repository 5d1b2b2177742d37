#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <vector>

#include "ExpressionTestSupport.h"
#include "expressions/ZorWBEquation.h"
#include "values/TestAllocator.h"

using Type = ZorWBExpressionType;

namespace {

// Every ancestor of node, node included.
std::set<const ZorWBExpression*> AncestorsOf(const ZorWBExpression* node) {
    std::set<const ZorWBExpression*> found{node};
    std::vector<const ZorWBExpression*> stack{node};
    while (!stack.empty()) {
        const ZorWBExpression* current = stack.back();
        stack.pop_back();
        for (int i = 0; i < current->GetNbOfParents(); ++i) {
            if (found.insert(current->GetParent(i)).second) stack.push_back(current->GetParent(i));
        }
    }
    return found;
}

// A black box answering 1, 2, 3, ... at its successive calls.
class SequenceBlackBox : public ZorWBBBx {
  public:
    double Eval() override { return ++calls; }
    int calls = 0;
};

void EvaluateAll(const std::vector<ZorWBExpression*>& nodes) {
    for (ZorWBExpression* node : nodes)
        node->GetValue();
}

}  // namespace

TEST(ZorWBEvaluation, BuffersAnswerUntilAVariableChanges) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    ZorWBVariable* z = f.CreateVariable();
    SetReal(x, 1.0);
    SetReal(y, 2.0);
    SetReal(z, 3.0);
    ZorWBExpression* sum = f.CreateSum(x, y);
    ZorWBExpression* product = f.CreateProduct(y, z);
    EXPECT_FALSE(f.IsBufferUsed());

    EXPECT_DOUBLE_EQ(RealValue(sum), 3.0);
    EXPECT_EQ(f.GetNbOfEvaluations(), 3);  // x, y and the sum
    EXPECT_TRUE(f.IsBufferUsed());
    EXPECT_TRUE(sum->IsBufferValid());
    f.ResetNbOfEvaluations();
    EXPECT_DOUBLE_EQ(RealValue(sum), 3.0);
    EXPECT_EQ(f.GetNbOfEvaluations(), 0);

    EXPECT_DOUBLE_EQ(RealValue(product), 6.0);
    EXPECT_EQ(f.GetNbOfEvaluations(), 2);  // z and the product; y was valid
    f.ResetNbOfEvaluations();

    SetReal(x, 10.0);
    EXPECT_FALSE(sum->IsBufferValid());
    EXPECT_TRUE(product->IsBufferValid());
    EXPECT_DOUBLE_EQ(RealValue(sum), 12.0);
    EXPECT_DOUBLE_EQ(RealValue(product), 6.0);
    EXPECT_EQ(f.GetNbOfEvaluations(), 2);  // x and the sum

    // The factory-wide reset invalidates everything and clears the flag.
    f.ResetBuffer(nullptr);
    EXPECT_FALSE(f.IsBufferUsed());
    EXPECT_FALSE(product->IsBufferValid());
    EXPECT_FALSE(y->IsBufferValid());
    f.ResetBuffer(sum);
    EXPECT_FALSE(f.IsBufferUsed());
    EXPECT_DOUBLE_EQ(RealValue(sum), 12.0);
    EXPECT_TRUE(f.IsBufferUsed());

    // Eval(value) copies the value.
    ZorWBValue out;
    sum->Eval(out);
    EXPECT_DOUBLE_EQ(out.GetAsReal(), 12.0);
}

TEST(ZorWBEvaluation, TemporaryNodesStayCorrectAcrossFactoryResets) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    SetReal(x, 1.0);
    f.UseTemporaryStorage(true);
    ZorWBExpression* temporary = f.CreateSum(x, f.GetOne());
    EXPECT_DOUBLE_EQ(RealValue(temporary), 2.0);
    f.ResetBuffer(nullptr);
    EXPECT_TRUE(temporary->IsBufferValid());  // not reached by the factory-wide reset
    SetReal(x, 5.0);
    EXPECT_DOUBLE_EQ(RealValue(temporary), 6.0);
    f.UseTemporaryStorage(false);
}

TEST(ZorWBEvaluation, OneVariableChangeRecomputesExactlyTheNodesAboveIt) {
    ZorWBFactory f(ZorWBLevel::All);
    RandomGraph graph(f, 1234, 30);
    while (f.GetNbOfExpressions() < 1000)
        graph.AddNode();
    std::vector<ZorWBExpression*> nodes(f.GetExpressions().begin(), f.GetExpressions().end());
    ASSERT_GE(nodes.size(), 1000u);
    EvaluateAll(nodes);
    f.ResetNbOfEvaluations();
    EvaluateAll(nodes);
    EXPECT_EQ(f.GetNbOfEvaluations(), 0);

    for (int round = 0; round < 20; ++round) {
        ZorWBVariable* x = graph.AnyVariable();
        SetReal(x, graph.Uniform());
        f.ResetNbOfEvaluations();
        EvaluateAll(nodes);
        EXPECT_EQ(f.GetNbOfEvaluations(), static_cast<long long>(AncestorsOf(x).size()));
    }
}

TEST(ZorWBEvaluation, UnbufferedNodesSpreadToAncestorsAndGiveBufferingBack) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* a = f.CreateVariable();
    ZorWBVariable* b = f.CreateVariable();
    SetReal(a, 1.0);
    SetReal(b, 2.0);
    ZorWBExpression* left = f.CreateSin(a);
    ZorWBExpression* right = f.CreateCos(b);
    ZorWBExpression* top = f.CreateSum(left, right);
    ZorWBExpression* root = f.CreateExp(top);
    ZorWBExpression* aside = f.CreateAbs(b);

    a->SetAllowBufferEval(false, true, false);
    b->SetAllowBufferEval(false, true, false);
    for (ZorWBExpression* e : {static_cast<ZorWBExpression*>(a), left, top, root, right, aside})
        EXPECT_FALSE(e->AllowsBufferEval());

    // Unbuffered nodes are recomputed at every call, each once per call.
    root->GetValue();
    f.ResetNbOfEvaluations();
    root->GetValue();
    EXPECT_EQ(f.GetNbOfEvaluations(), 6);
    EXPECT_FALSE(root->IsBufferValid());

    // Back for a: only left, since top still has the unbuffered right.
    a->SetAllowBufferEval(true, true, true);
    EXPECT_TRUE(a->AllowsBufferEval());
    EXPECT_TRUE(left->AllowsBufferEval());
    EXPECT_FALSE(top->AllowsBufferEval());
    EXPECT_FALSE(root->AllowsBufferEval());
    b->SetAllowBufferEval(true, true, true);
    for (ZorWBExpression* e : {static_cast<ZorWBExpression*>(b), right, top, root, aside})
        EXPECT_TRUE(e->AllowsBufferEval());

    // Without propagation only the node changes; without validation the
    // node takes buffering back whatever its children.
    top->SetAllowBufferEval(false, false, false);
    EXPECT_FALSE(top->AllowsBufferEval());
    EXPECT_TRUE(root->AllowsBufferEval());
    a->SetAllowBufferEval(false, false, false);
    left->SetAllowBufferEval(false, false, false);
    left->SetAllowBufferEval(true, false, true);
    EXPECT_FALSE(left->AllowsBufferEval());
    left->SetAllowBufferEval(true, false, false);
    EXPECT_TRUE(left->AllowsBufferEval());

    // A new parent of an unbuffered child is unbuffered, with its ancestors.
    ZorWBExpression* late = f.CreateSum(root, f.GetOne());
    ZorWBVariable* c = f.CreateVariable();
    c->SetAllowBufferEval(false, false, false);
    EXPECT_TRUE(root->ReplaceChild(0, f.CreateProduct(c, c)));
    EXPECT_FALSE(root->AllowsBufferEval());
    EXPECT_FALSE(late->AllowsBufferEval());
    // Removing that child again gives buffering back where nothing else forbids it.
    EXPECT_TRUE(root->ReplaceChild(0, f.CreateProduct(b, b)));
    EXPECT_TRUE(root->AllowsBufferEval());
    EXPECT_TRUE(late->AllowsBufferEval());
}

// An unbuffered node keeps no value, so it is computed again wherever it is
// asked for: a black box used twice is called twice, and a stateful one
// gives each use its own answer.
TEST(ZorWBEvaluation, UnbufferedNodesAreComputedAtEveryRequest) {
    SequenceBlackBox sequence;  // the black boxes outlive the factory
    CountingBlackBox counting;
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBExpression* call = f.DeclareBlackBox(&sequence, 0, nullptr, false);
    ZorWBExpression* twice = f.CreateSum(call, call);
    EXPECT_DOUBLE_EQ(RealValue(twice), 1.0 + 2.0);
    EXPECT_EQ(sequence.calls, 2);
    EXPECT_EQ(twice->Eval(), 3.0 + 4.0);
    // A node above the call is unbuffered too: each use asks the call again.
    ZorWBExpression* doubled = f.CreateProduct(call, f.GetTwo());
    ZorWBExpression* operands[] = {doubled, doubled, call};
    ZorWBExpression* three = f.CreateSum(3, operands);
    EXPECT_DOUBLE_EQ(RealValue(three), 2.0 * 5.0 + 2.0 * 6.0 + 7.0);
    EXPECT_EQ(three->Eval(), 2.0 * 8.0 + 2.0 * 9.0 + 10.0);
    EXPECT_EQ(sequence.calls, 10);

    // A tower of shared squares asks the call once per path: 2^10 times,
    // while the buffered Sin beside it is computed once.
    counting.offset = 1.0;
    ZorWBExpression* one = f.DeclareBlackBox(&counting, 0, nullptr, false);
    ZorWBExpression* tower = one;
    for (int i = 0; i < 10; ++i)
        tower = f.CreateProduct(tower, tower);
    ZorWBVariable* x = f.CreateVariable();
    SetReal(x, 1.0);
    ZorWBExpression* sine = f.CreateSin(x);
    ZorWBExpression* root = f.CreateSum(f.CreateSum(tower, sine), sine);
    f.ResetNbOfEvaluations();
    EXPECT_DOUBLE_EQ(RealValue(root), 1.0 + 2.0 * std::sin(1.0));
    EXPECT_EQ(counting.calls, 1024);
    // 2047 nodes of the unfolded tower, x, Sin and the two Sums.
    EXPECT_EQ(f.GetNbOfEvaluations(), 2047 + 4);
    EXPECT_DOUBLE_EQ(root->Eval(), 1.0 + 2.0 * std::sin(1.0));
    EXPECT_EQ(counting.calls, 2048);
    // The compiled value program of the root asks as often.
    long long runs = f.GetNbOfValueProgramRuns();
    for (int i = 1; i <= 2; ++i) {
        EXPECT_DOUBLE_EQ(RealValue(root), 1.0 + 2.0 * std::sin(1.0));
        EXPECT_EQ(counting.calls, 2048 + 1024 * i);
    }
    EXPECT_EQ(f.GetNbOfValueProgramRuns(), runs + 2);
}

TEST(ZorWBEvaluation, BufferingComesBackThroughDiamonds) {
    // Two unbuffered sources under a diamond: buffering returns to the top
    // only once both are given back, in either order.
    for (bool sourceAFirst : {true, false}) {
        ZorWBFactory f(ZorWBLevel::All);
        ZorWBVariable* a = f.CreateVariable();
        ZorWBVariable* b = f.CreateVariable();
        ZorWBExpression* p = f.CreateSum(a, b);
        ZorWBExpression* q = f.CreateProduct(a, b);
        ZorWBExpression* top = f.CreateMax(p, q);
        a->SetAllowBufferEval(false, true, false);
        b->SetAllowBufferEval(false, true, false);
        ZorWBVariable* first = sourceAFirst ? a : b;
        ZorWBVariable* second = sourceAFirst ? b : a;
        first->SetAllowBufferEval(true, true, true);
        EXPECT_FALSE(top->AllowsBufferEval());
        second->SetAllowBufferEval(true, true, true);
        EXPECT_TRUE(p->AllowsBufferEval());
        EXPECT_TRUE(q->AllowsBufferEval());
        EXPECT_TRUE(top->AllowsBufferEval());
    }
}

TEST(ZorWBEvaluation, IfThenElseEvaluatesOnlyTheChosenBranch) {
    CountingBlackBox thenBox;
    CountingBlackBox elseBox;
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    thenBox.offset = 10.0;
    elseBox.offset = 20.0;
    ZorWBExpression* thenPart = f.DeclareBlackBox(&thenBox, 0, nullptr, false);
    ZorWBExpression* elsePart = f.DeclareBlackBox(&elseBox, 0, nullptr, false);
    ZorWBExpression* choice = f.CreateIfThenElse(f.CreateLessEqual(x, y), thenPart, elsePart);

    SetReal(x, 1.0);
    SetReal(y, 2.0);
    EXPECT_DOUBLE_EQ(RealValue(choice), 10.0);
    EXPECT_EQ(thenBox.calls, 1);
    EXPECT_EQ(elseBox.calls, 0);
    SetReal(x, 3.0);
    EXPECT_DOUBLE_EQ(RealValue(choice), 20.0);
    EXPECT_EQ(thenBox.calls, 1);
    EXPECT_EQ(elseBox.calls, 1);

    // An undetermined condition: indefinite, and neither branch runs.
    x->SetExprValue(ZorWBValue(ZorWBRealInterval{1.0, 3.0}));
    EXPECT_EQ(choice->GetValue().GetType(), ZorWBUndefinedType);
    EXPECT_EQ(thenBox.calls + elseBox.calls, 2);
    // A condition that is not a boolean: indefinite too.
    ZorWBExpression* numeric = f.CreateIfThenElse(y, thenPart, elsePart);
    EXPECT_EQ(numeric->GetValue().GetType(), ZorWBUndefinedType);
    EXPECT_EQ(thenBox.calls + elseBox.calls, 2);

    // The real evaluation follows the condition's truth.
    SetReal(x, 1.0);
    EXPECT_DOUBLE_EQ(choice->Eval(), 10.0);
    EXPECT_DOUBLE_EQ(numeric->Eval(), 10.0);  // 2.0 is true
    SetReal(y, 0.0);
    EXPECT_DOUBLE_EQ(numeric->Eval(), 20.0);
    EXPECT_EQ(elseBox.calls, 2);
}

TEST(ZorWBEvaluation, PartialEvalCopiesOnlyWhatChanges) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    ZorWBVariable* z = f.CreateVariable();
    ZorWBExpression* two = f.GetTwo();
    ZorWBExpression* sum = f.CreateSum(x, y);
    ZorWBExpression* result = sum->PartialEval(x, two);
    ASSERT_NE(result, sum);
    EXPECT_EQ(result->GetType(), Type::Sum);
    EXPECT_EQ(result->GetChild(0), two);
    EXPECT_EQ(result->GetChild(1), y);
    ZorWBExpression* other = f.CreateSum(y, z);
    EXPECT_EQ(other->PartialEval(x, two), other);
    EXPECT_EQ(x->PartialEval(x, two), two);
    EXPECT_EQ(y->PartialEval(x, two), y);
    EXPECT_EQ(two->PartialEval(x, y), two);
    EXPECT_EQ(sum->PartialEval(nullptr, nullptr, 0), sum);
    EXPECT_EQ(sum->PartialEval(nullptr, nullptr, 1), nullptr);
    EXPECT_EQ(sum->PartialEval(x, nullptr), nullptr);

    // Several substitutions at once; the first listed pair wins.
    ZorWBVariable* vars[] = {y, x, y};
    ZorWBExpression* exprs[] = {z, f.GetThree(), x};
    ZorWBExpression* both = sum->Evaluate(3, vars, exprs);
    EXPECT_EQ(both->GetChild(0), f.GetThree());
    EXPECT_EQ(both->GetChild(1), z);

    // Shared nodes stay shared, Steps keep their parameters.
    ZorWBExpression* step = f.CreateStep(x, 0.0, 1.0, 0.0, 1.0);
    ZorWBExpression* square = f.CreateProduct(step, step);
    ZorWBExpression* copied = square->PartialEval(x, y);
    EXPECT_EQ(copied->GetChild(0), copied->GetChild(1));
    EXPECT_EQ(copied->GetChild(0)->GetParameter(1), 1.0);
    EXPECT_EQ(copied->GetChild(0)->GetChild(0), y);
}

TEST(ZorWBEvaluation, OlderPartialEvalWorksOnADuplicate) {
    for (unsigned int level : {Below(ZorWBLevel::NewPartialEval), ZorWBLevel::NewPartialEval}) {
        bool newer = level >= ZorWBLevel::NewPartialEval;
        ZorWBFactory f(level);
        ZorWBVariable* x = f.CreateVariable();
        ZorWBVariable* y = f.CreateVariable();
        ZorWBExpression* sum = f.CreateSum(f.CreateSin(x), y);
        ZorWBExpression* unrelated = f.CreateCos(y);
        int nodes = f.GetNbOfExpressions();

        ZorWBExpression* same = unrelated->PartialEval(x, f.GetTwo());
        EXPECT_EQ(same == unrelated, newer);
        EXPECT_TRUE(same->IsEqualTo(unrelated));
        EXPECT_EQ(f.GetNbOfEquations(), 0);

        ZorWBExpression* result = sum->PartialEval(x, f.GetTwo());
        EXPECT_EQ(result->GetChild(0)->GetChild(0), f.GetTwo());
        EXPECT_EQ(result->GetChild(1), y);
        SetReal(y, 0.5);
        EXPECT_DOUBLE_EQ(RealValue(result), std::sin(2.0) + 0.5);
        // The older evaluator used equation ids 0 and 1 and left only its result.
        ZorWBEquation* next = f.AddEquation(x, ZorWBEqualZero);
        EXPECT_EQ(next->GetId(), newer ? 0 : 2);
        int made = newer ? 3 : 4;  // Two, Sin, Sum (+ the Cos copy)
        EXPECT_EQ(f.GetNbOfExpressions(), nodes + made);
        EXPECT_EQ(x->PartialEval(x, y), y);
    }
}

TEST(ZorWBEvaluation, ResetsTravelUpFromTheirLevelAndDownBelowIt) {
    for (unsigned int level :
         {Below(ZorWBLevel::ResetBufferUpward), ZorWBLevel::ResetBufferUpward}) {
        bool upward = level >= ZorWBLevel::ResetBufferUpward;
        ZorWBFactory f(level);
        ZorWBVariable* x = f.CreateVariable();
        ZorWBVariable* y = f.CreateVariable();
        SetReal(x, 1.0);
        SetReal(y, 2.0);
        ZorWBExpression* inner = f.CreateSum(x, y);
        ZorWBExpression* middle = f.CreateExp(inner);
        ZorWBExpression* top = f.CreateSqrt(middle);
        ZorWBExpression* other = f.CreateCos(y);
        top->GetValue();
        other->GetValue();

        middle->ResetBuffer(true);
        EXPECT_FALSE(middle->IsBufferValid());
        EXPECT_FALSE(top->IsBufferValid());
        // Downward, and the leaves reached then reset their own ancestors.
        EXPECT_EQ(inner->IsBufferValid(), upward);
        EXPECT_EQ(x->IsBufferValid(), upward);
        EXPECT_EQ(other->IsBufferValid(), upward);
        top->GetValue();
        other->GetValue();
        middle->ResetBuffer(false);
        EXPECT_FALSE(middle->IsBufferValid());
        EXPECT_TRUE(top->IsBufferValid());
        EXPECT_TRUE(inner->IsBufferValid());

        // Assigning a constant or a variable resets the buffers above it only
        // from the level on; below it the host resets them itself.
        top->GetValue();
        SetReal(x, 4.0);
        EXPECT_EQ(top->IsBufferValid(), !upward);
        EXPECT_DOUBLE_EQ(RealValue(top), upward ? std::exp(3.0) : std::exp(1.5));
        f.ResetBuffer(nullptr);
        EXPECT_DOUBLE_EQ(RealValue(top), std::exp(3.0));
        ZorWBConstant* c = f.CreateRealConstant(1.0);
        ZorWBExpression* above = f.CreateSum(c, y);
        EXPECT_DOUBLE_EQ(RealValue(above), 3.0);
        c->SetValue(ZorWBValue(5.0), other);
        EXPECT_FALSE(other->IsBufferValid());  // alsoReset at every level
        EXPECT_DOUBLE_EQ(RealValue(above), upward ? 7.0 : 3.0);

        // A property change resets the node and its ancestors from the level on.
        int mark = f.RegisterProperty("mark", 0);
        top->GetValue();
        inner->SetProperty(mark, 3);
        EXPECT_EQ(top->IsBufferValid(), !upward);
        EXPECT_EQ(inner->IsBufferValid(), !upward);
    }
}

// A constant keeps its value in its buffer. A value assigned while the
// buffer stays valid (below the level of upward resets) waits beside it:
// GetValue answers the buffer, GetExprValue and Eval() the new value, until
// the buffer is computed again.
TEST(ZorWBEvaluation, AValueAssignedUnderAValidBufferWaitsForTheNextComputation) {
    ZorWBFactory old(Below(ZorWBLevel::ResetBufferUpward));
    ZorWBVariable* x = old.CreateVariable();
    SetReal(x, 1.0);
    ZorWBExpression* sum = old.CreateSum(x, old.GetOne());
    EXPECT_DOUBLE_EQ(RealValue(sum), 2.0);
    for (double value : {5.0, 6.0}) {
        SetReal(x, value);
        EXPECT_TRUE(x->IsBufferValid());
        EXPECT_DOUBLE_EQ(RealValue(x), 1.0);
        EXPECT_DOUBLE_EQ(x->GetExprValue().GetAsReal(), value);
        EXPECT_DOUBLE_EQ(x->Eval(), value);
        EXPECT_DOUBLE_EQ(RealValue(sum), 2.0);
        EXPECT_DOUBLE_EQ(sum->Eval(), value + 1.0);
    }
    x->ResetBuffer(false);
    EXPECT_DOUBLE_EQ(RealValue(x), 6.0);
    EXPECT_DOUBLE_EQ(RealValue(sum), 2.0);  // still buffered
    old.ResetBuffer(nullptr);
    EXPECT_DOUBLE_EQ(RealValue(sum), 7.0);
    // Storing the buffer back takes the waiting value's place.
    SetReal(x, 8.0);
    x->UpdateExprValue(false);
    EXPECT_DOUBLE_EQ(x->GetExprValue().GetAsReal(), 6.0);
}

TEST(ZorWBEvaluation, FixingAVariableResetsTheFactory) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    SetReal(x, 1.0);
    SetReal(y, 1.0);
    ZorWBExpression* e = f.CreateSum(y, y);
    e->GetValue();
    x->Fix(false);  // unchanged state: nothing happens
    EXPECT_TRUE(e->IsBufferValid());
    x->Fix(true);
    EXPECT_FALSE(e->IsBufferValid());
}

TEST(ZorWBEvaluation, PreviousValueKeptBelowTheAllLevel) {
    for (unsigned int level : {Below(ZorWBLevel::All), ZorWBLevel::All}) {
        ZorWBFactory f(level);
        ZorWBVariable* x = f.CreateVariable();
        SetReal(x, 2.0);
        ZorWBExpression* e = f.CreateProduct(x, x);
        EXPECT_EQ(e->GetPreviousValue().GetType(), ZorWBUndefinedType);
        e->GetValue();
        if (level == ZorWBLevel::All) {
            EXPECT_EQ(e->GetPreviousValue().GetType(), ZorWBUndefinedType);
        } else {
            EXPECT_DOUBLE_EQ(e->GetPreviousValue().GetAsReal(), 4.0);
            SetReal(x, 3.0);
            e->GetValue();
            EXPECT_DOUBLE_EQ(e->GetPreviousValue().GetAsReal(), 9.0);
        }
    }
}

// Every node that an evaluation computes starts by clearing a lone domain
// error, as a recursive evaluation asking each child in turn would: an
// error stays only when nothing is computed after it.
TEST(ZorWBEvaluation, EachComputedNodeStartsByClearingALoneDomainError) {
    ZorWBFactory f(ZorWBLevel::All);
    const ZorWBEnvironment& environment = f.GetEnvironment();
    ZorWBVariable* x = f.CreateVariable();
    SetReal(x, 2.0);
    // x is computed after the failing square root and clears its error.
    ZorWBExpression* failing = f.CreateSqrt(f.GetMinusOne());
    ZorWBExpression* sum = f.CreateSum(failing, x);
    sum->GetValue();
    EXPECT_EQ(environment.GetError(), 0u);
    // Once x is buffered, nothing is computed after the square root.
    f.ResetBuffer(failing);
    sum->GetValue();
    EXPECT_EQ(environment.GetError(), ZorWBError::Domain);
    // With the failing operand last, its error stays.
    ZorWBVariable* y = f.CreateVariable();
    SetReal(y, 3.0);
    f.CreateSum(y, f.CreateSqrt(f.CreateIntegerConstant(-4)))->GetValue();
    EXPECT_EQ(environment.GetError(), ZorWBError::Domain);

    // A fold step that fails (min(NaN, 1)) is cleared when the next operand
    // computed starts, and stays when that operand answers from its buffer.
    ZorWBVariable* z = f.CreateVariable();
    SetReal(z, 5.0);
    ZorWBExpression* operands[] = {f.CreateRealConstant(std::nan("")), f.CreateRealConstant(1.0),
                                   z};
    ZorWBExpression* minimum = f.CreateMin(3, operands);
    minimum->GetValue();
    EXPECT_EQ(environment.GetError(), 0u);
    f.ResetBuffer(minimum);
    minimum->GetValue();
    EXPECT_EQ(environment.GetError(), ZorWBError::Domain);

    // Beside another code, a domain error is not lone: both persist.
    environment.SetError(ZorWBError::IncompatibleKinds);
    f.ResetBuffer(failing);
    sum->GetValue();
    EXPECT_EQ(environment.GetError(), ZorWBError::IncompatibleKinds | ZorWBError::Domain);
    SetReal(x, 9.0);
    sum->GetValue();
    EXPECT_EQ(environment.GetError(), ZorWBError::IncompatibleKinds | ZorWBError::Domain);
    environment.ClearError();
    SetReal(x, 4.0);
    ZorWBExpression* fine = f.CreateSum(f.CreateSqrt(x), f.CreateCos(x));
    EXPECT_DOUBLE_EQ(RealValue(fine), 2.0 + std::cos(4.0));
    EXPECT_EQ(environment.GetError(), 0u);
}

TEST(ZorWBEvaluation, UpdateExprValueStoresTheValues) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    SetReal(x, 3.0);
    ZorWBExpression* e = f.CreateProduct(x, f.GetTwo());
    e->UpdateExprValue(false);
    EXPECT_DOUBLE_EQ(e->GetExprValue().GetAsReal(), 6.0);
    e->UpdateExprValue(true);
    EXPECT_DOUBLE_EQ(x->GetExprValue().GetAsReal(), 3.0);
    EXPECT_DOUBLE_EQ(RealValue(e), 6.0);
    f.GetTwo()->SetExprValue(ZorWBValue(5));
    EXPECT_EQ(f.GetTwo()->GetExprValue().GetAsInteger(), 5);
}

TEST(ZorWBEvaluation, EvaluatingScalarsAllocatesNothing) {
    ZorWBFactory f(ZorWBLevel::All);
    RandomGraph graph(f, 99, 10);
    ZorWBExpression* root = nullptr;
    for (int i = 0; i < 300; ++i)
        root = graph.AddNode();
    ZorWBVariable* x = graph.variables[0];
    for (int i = 0; i < 3; ++i) {  // grows the factory's reusable stacks
        SetReal(x, 0.1 * i);
        root->GetValue();
        root->Eval();
    }
    std::size_t before = AllocationCount();
    double sum = 0.0;
    for (int i = 0; i < 20; ++i) {
        SetReal(x, 0.05 * i);
        sum += RealValue(root);
        sum += root->Eval();
        sum += RealValue(root);  // a valid buffer
    }
    EXPECT_EQ(AllocationCount(), before);
    EXPECT_FALSE(std::isnan(sum));
}

TEST(ZorWBEvaluation, MillionDeepChainWithoutDeepRecursion) {
    constexpr int Depth = 1000000;
    auto factory = std::make_unique<ZorWBFactory>(ZorWBLevel::All);
    ZorWBFactory& f = *factory;
    ZorWBVariable* x = f.CreateVariable();
    x->SetExprValue(ZorWBValue(1));
    ZorWBExpression* chain = x;
    for (int i = 0; i < Depth; ++i)
        chain = f.CreateSum(chain, x);
    EXPECT_EQ(chain->GetValue().GetAsInteger(), Depth + 1);
    EXPECT_EQ(chain->Eval(), Depth + 1.0);
    x->SetExprValue(ZorWBValue(2));
    f.ResetNbOfEvaluations();
    EXPECT_EQ(chain->GetValue().GetAsInteger(), 2 * (Depth + 1));
    EXPECT_EQ(f.GetNbOfEvaluations(), Depth + 1);
    x->SetAllowBufferEval(false, true, false);
    EXPECT_FALSE(chain->AllowsBufferEval());
    x->SetAllowBufferEval(true, true, true);
    EXPECT_TRUE(chain->AllowsBufferEval());
    EXPECT_TRUE(chain->IsLinear());
    EXPECT_FALSE(chain->IsFree(x));
    factory.reset();
}

// Property: buffered values after random changes equal a fresh evaluation
// (a copy of the graph in a new factory), and the real evaluation agrees.
TEST(ZorWBEvaluation, RandomGraphsAgreeWithFreshAndRealEvaluation) {
    for (unsigned int seed = 1; seed <= 12; ++seed) {
        ZorWBFactory f(ZorWBLevel::All);
        RandomGraph graph(f, seed, 5);
        ZorWBExpression* root = nullptr;
        for (int i = 0; i < 120; ++i)
            root = graph.AddNode();
        for (int round = 0; round < 15; ++round) {
            for (int changes = 0; changes <= round % 3; ++changes)
                SetReal(graph.AnyVariable(), graph.Uniform());
            // Some intermediate nodes are asked too, so buffers mix states.
            graph.Pick()->GetValue();
            double buffered = RealValue(root);

            ZorWBFactory fresh(ZorWBLevel::All);
            ZorWBExpression* copy = fresh.CloneExpression(root);
            ASSERT_NE(copy, nullptr);
            EXPECT_EQ(RealValue(copy), buffered) << "seed " << seed << " round " << round;
            EXPECT_NEAR(root->Eval(), buffered, 1e-12) << "seed " << seed;
            EXPECT_EQ(f.GetEnvironment().GetError(), 0u);
        }
    }
}

// Eval() and GetValue() share the real modulo: mod(10, 0.2) is 0 for both,
// not the remainder of the binary 0.2.
TEST(ZorWBEvaluation, EvalAndGetValueGiveTheSameModulo) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* mod = f.CreateOperator(ZorWBExpressionType::Mod, x, f.CreateRealConstant(0.2));
    for (double value : {10.0, -10.0, 0.7, 1e-300, -3.25}) {
        SetReal(x, value);
        EXPECT_EQ(mod->Eval(), RealValue(mod)) << value;
    }
    SetReal(x, 10.0);
    EXPECT_EQ(mod->Eval(), 0.0);
}

// Eval() reads a value that is not a number as the number standing for it,
// the same in the node walk, the compiled program and a black box's argument.
TEST(ZorWBEvaluation, EvalReadsSetsAtTheirMidpointAndBooleansAsZeroOrOne) {
    ZorWBFactory f(ZorWBLevel::All);
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* sum = f.CreateSum(x, f.CreateIntegerConstant(1));
    const std::vector<std::pair<ZorWBValue, double>> readings = {
        {ZorWBValue(ZorWBRealInterval{0.5, 1.5}), 1.0},
        {ZorWBValue(ZorWBIntegerInterval{2, 4}), 3.0},
        {ZorWBValue(ZorWBTrue), 1.0},
        {ZorWBValue(ZorWBFalse), 0.0},
        {ZorWBValue(7), 7.0},
    };
    for (const auto& [value, reading] : readings) {
        x->SetExprValue(value);
        EXPECT_EQ(x->Eval(), reading) << value.Str().GetString();
        EXPECT_EQ(sum->Eval(), reading + 1.0) << value.Str().GetString();
    }
    x->SetExprValue(ZorWBValue(ZorWBUnknown));
    EXPECT_TRUE(std::isnan(sum->Eval()));
}

// Property: substituting a constant for a variable and evaluating equals
// evaluating with the variable set to that constant.
TEST(ZorWBEvaluation, RandomPartialEvaluationMatchesAssignment) {
    for (unsigned int seed = 20; seed < 32; ++seed) {
        ZorWBFactory f(ZorWBLevel::All);
        RandomGraph graph(f, seed, 4);
        ZorWBExpression* root = nullptr;
        for (int i = 0; i < 80; ++i)
            root = graph.AddNode();
        ZorWBVariable* x = graph.AnyVariable();
        double at = graph.Uniform();
        ZorWBExpression* constant = f.CreateRealConstant(at);
        ZorWBExpression* substituted = root->PartialEval(x, constant);
        ZorWBExpression* evaluated = root->Evaluate(1, &x, &constant);
        EXPECT_TRUE(substituted->IsFree(x));
        EXPECT_TRUE(substituted->IsEqualTo(evaluated));
        SetReal(x, graph.Uniform());
        double partial = RealValue(substituted);
        SetReal(x, at);
        EXPECT_EQ(partial, RealValue(root)) << "seed " << seed;
        EXPECT_EQ(RealValue(evaluated), partial);
    }
}
