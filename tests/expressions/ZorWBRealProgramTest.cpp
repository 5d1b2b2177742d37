// The compiled real programs behind Eval() against the node walk: the same
// doubles to the bit, the same black-box calls, over random graphs of every
// operator kind, after value changes and after structural changes.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "AnyKindGraph.h"
#include "ExpressionTestSupport.h"
#include "expressions/ZorWBOperator.h"

using Type = ZorWBExpressionType;

namespace {

std::uint64_t Bits(double value) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

struct Evaluation {
    double value;
    int calls;
};

// Eval() of root with programs off (the node walk), then with programs on:
// the first call walks and the second runs the compiled program. A black
// box reads its arguments through their buffered values, so every call
// starts with no buffer valid and no error set (a set error blanks the
// interval results).
void ExpectProgramMatchesWalk(ZorWBFactory& f, CountingBlackBox& blackBox,
                              const ZorWBExpression* root) {
    auto evaluate = [&f, &blackBox, root]() {
        f.ResetBuffer(nullptr);
        f.GetEnvironment().ClearError();
        int before = blackBox.calls;
        double value = root->Eval();
        return Evaluation{value, blackBox.calls - before};
    };
    f.EnableRealPrograms(false);
    Evaluation walk = evaluate();
    f.EnableRealPrograms(true);
    evaluate();
    Evaluation program = evaluate();
    EXPECT_EQ(Bits(program.value), Bits(walk.value)) << program.value << " " << walk.value;
    EXPECT_EQ(program.calls, walk.calls);
}

}  // namespace

// At the current levels a black-box call and the nodes above it are
// unbuffered: a root that reaches one of them twice has its code twice,
// and calls the black box as often as the walk; below
// ZorWBLevel::ResetBufferUpward the calls are buffered and computed once.
TEST(ZorWBRealProgram, RandomGraphsOfEveryKindGiveTheWalksDoublesAndCalls) {
    CountingBlackBox blackBox;
    long long programRuns = 0;
    for (unsigned int seed = 1; seed <= 60; ++seed) {
        ZorWBFactory f(seed % 2 ? ZorWBLevel::All : Below(ZorWBLevel::ResetBufferUpward));
        AnyKindGraph graph(f, blackBox, seed);
        for (int i = 0; i < 70; ++i)
            graph.AddNode();
        for (int round = 0; round < 4; ++round) {
            for (std::size_t i = graph.nodes.size() - 12; i < graph.nodes.size(); ++i)
                ExpectProgramMatchesWalk(f, blackBox, graph.nodes[i]);
            graph.AssignValues();
        }
        programRuns += f.GetNbOfRealProgramRuns();
    }
    EXPECT_GT(programRuns, 1000);
}

TEST(ZorWBRealProgram, StructuralChangesDropThePrograms) {
    CountingBlackBox blackBox;
    std::mt19937 random(5);
    for (unsigned int seed = 100; seed < 130; ++seed) {
        ZorWBFactory f;
        AnyKindGraph graph(f, blackBox, seed);
        for (int i = 0; i < 60; ++i)
            graph.AddNode();
        ZorWBExpression* root = graph.nodes.back();
        for (int change = 0; change < 12; ++change) {
            root->Eval();
            root->Eval();
            unsigned long long version = f.GetStructureVersion();
            ZorWBExpression* node = graph.nodes[graph.nodes.size() - 1 - random() % 40];
            int n = node->GetNbOfChildren();
            if (n == 0) continue;
            switch (random() % 3) {
                case 0:
                    node->ReplaceChild(static_cast<int>(random() % n), graph.Pick());
                    break;
                case 1:
                    node->RemoveChild(static_cast<int>(random() % n));
                    break;
                default:
                    node->SetParameter(0, 0.5);  // only a Step takes it
                    break;
            }
            if (f.GetStructureVersion() != version) {
                // The next call walks again and compiles nothing yet.
                long long runs = f.GetNbOfRealProgramRuns();
                root->Eval();
                EXPECT_EQ(f.GetNbOfRealProgramRuns(), runs);
            }
            ExpectProgramMatchesWalk(f, blackBox, root);
        }
    }
}

// The black-box calls count the computations of a node: at a level where
// they are buffered, a shared one is computed once per evaluation, like any
// buffered node.
TEST(ZorWBRealProgram, OnlyTheChosenBranchRunsAndSharedNodesRunOnce) {
    CountingBlackBox blackBox;  // outlives the factory's nodes that call it
    ZorWBFactory f(Below(ZorWBLevel::ResetBufferUpward));
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* c = f.CreateVariable();
    ZorWBVariable* d = f.CreateVariable();
    ZorWBExpression* arguments[] = {x};
    ZorWBExpression* shared = f.DeclareBlackBox(&blackBox, 1, arguments, false);
    ZorWBExpression* onlyThen = f.CreateSin(f.CreateSum(shared, f.GetOne()));
    ZorWBExpression* first = f.CreateIfThenElse(c, onlyThen, f.CreateCos(x));
    // The shared call sits in a branch of the first IfThenElse, in a branch
    // of the second one and, through it, after both.
    ZorWBExpression* second =
        f.CreateIfThenElse(d, f.CreateProduct(shared, f.GetTwo()), f.CreateExp(x));
    ZorWBExpression* parts[] = {first, second, f.CreateProduct(shared, shared), onlyThen};
    ZorWBExpression* root = f.CreateSum(4, parts);
    x->SetExprValue(ZorWBValue(0.25));
    const double states[] = {1.0, 0.0, std::numeric_limits<double>::quiet_NaN()};
    for (double cState : states) {
        for (double dState : states) {
            c->SetExprValue(std::isnan(cState) ? ZorWBValue() : ZorWBValue(cState));
            d->SetExprValue(std::isnan(dState) ? ZorWBValue() : ZorWBValue(dState));
            ExpectProgramMatchesWalk(f, blackBox, root);
            int before = blackBox.calls;
            root->Eval();
            EXPECT_EQ(blackBox.calls - before, 1);
        }
    }
    c->SetExprValue(ZorWBValue(0.0));
    d->SetExprValue(ZorWBValue(0.0));
    ZorWBExpression* lonely = f.CreateIfThenElse(
        c, f.DeclareBlackBox(&blackBox, 1, arguments, false), f.CreateSum(4, parts));
    lonely->Eval();
    int before = blackBox.calls;
    lonely->Eval();
    EXPECT_EQ(blackBox.calls - before, 1);  // the else part's single call
}

// x * x stands for pow(x, 2) only where pow rounds the same way: checked on
// random significands and on squares that are exact ties.
TEST(ZorWBRealProgram, SquaresAgreeWithTheLibraryPower) {
    ZorWBFactory f;
    std::vector<ZorWBVariable*> xs;
    std::vector<ZorWBExpression*> squares;
    for (int i = 0; i < 16; ++i) {
        xs.push_back(f.CreateVariable());
        squares.push_back(f.CreatePower(xs.back(), 2));
    }
    ZorWBExpression* root = f.CreateSum(16, squares.data());
    std::mt19937_64 random(11);
    volatile double two = 2.0;
    for (int round = 0; round < 20000; ++round) {
        double expected = 0.0;
        for (int i = 0; i < 16; ++i) {
            std::uint64_t bits = random();
            double x;
            if (i % 2 == 0) {
                // Few significant bits: the exact square may be a tie.
                x = std::ldexp(static_cast<double>((bits % (1u << 27)) | 1u),
                               -static_cast<int>((bits >> 40) % 40));
            } else {
                x = std::ldexp(1.0 + static_cast<double>(bits >> 12) * 0x1p-52,
                               static_cast<int>((bits >> 4) % 200) - 100);
            }
            xs[static_cast<std::size_t>(i)]->SetExprValue(ZorWBValue(x));
            double square = std::pow(x, two);
            expected = i == 0 ? square : expected + square;
        }
        ASSERT_EQ(Bits(root->Eval()), Bits(expected)) << round;
    }
    EXPECT_GT(f.GetNbOfRealProgramRuns(), 19000);
}

// Sine and cosine of one node are computed together; the results are those
// of sin and cos.
TEST(ZorWBRealProgram, SineAndCosineOfOneNodeMatchTheLibrary) {
    ZorWBFactory f;
    ZorWBVariable* a = f.CreateVariable();
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* terms[] = {f.CreateProduct(f.CreateCos(a), x), f.CreateSin(a), f.CreateTan(a),
                                f.CreateProduct(f.CreateSin(a), f.CreateCos(x))};
    ZorWBExpression* root = f.CreateSum(4, terms);
    std::mt19937_64 random(3);
    for (int round = 0; round < 20000; ++round) {
        double angle = std::uniform_real_distribution<double>(-1e6, 1e6)(random);
        if (round % 2) angle = std::ldexp(angle, -20);
        a->SetExprValue(ZorWBValue(angle));
        x->SetExprValue(ZorWBValue(0.5));
        double expected = std::cos(angle) * 0.5 + std::sin(angle);
        expected = expected + std::tan(angle);
        expected = expected + std::sin(angle) * std::cos(0.5);
        ASSERT_EQ(Bits(root->Eval()), Bits(expected)) << angle;
    }
}

// A chain far deeper than any call stack compiles and runs.
TEST(ZorWBRealProgram, DeepChainsCompileWithoutRecursion) {
    ZorWBFactory f;
    ZorWBVariable* x = f.CreateVariable();
    x->SetExprValue(ZorWBValue(0.5));
    ZorWBExpression* e = x;
    for (int i = 0; i < 200000; ++i)
        e = i % 2 ? f.CreateSin(e) : f.CreateSum(e, f.GetOne());
    f.EnableRealPrograms(false);
    double walk = e->Eval();
    f.EnableRealPrograms(true);
    e->Eval();
    EXPECT_EQ(Bits(e->Eval()), Bits(walk));
    EXPECT_EQ(f.GetNbOfRealProgramRuns(), 1);
}

TEST(ZorWBRealProgram, SmallRootsAndDisabledProgramsWalk) {
    ZorWBFactory f;
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* small = f.CreateSin(f.CreateSum(x, f.GetOne()));
    for (int i = 0; i < 3; ++i)
        small->Eval();
    EXPECT_EQ(f.GetNbOfRealProgramRuns(), 0);
    ZorWBExpression* big = small;
    for (int i = 0; i < 10; ++i)
        big = f.CreateSum(big, x);
    f.EnableRealPrograms(false);
    EXPECT_FALSE(f.IsRealProgramsEnabled());
    for (int i = 0; i < 3; ++i)
        big->Eval();
    EXPECT_EQ(f.GetNbOfRealProgramRuns(), 0);
    f.EnableRealPrograms(true);
    for (int i = 0; i < 3; ++i)
        big->Eval();
    EXPECT_EQ(f.GetNbOfRealProgramRuns(), 2);
}
