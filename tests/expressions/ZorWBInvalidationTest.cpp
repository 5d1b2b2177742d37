#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <set>
#include <vector>

#include "ExpressionTestSupport.h"

namespace {

// The same random graph in two factories, one stopping its upward resets at
// invalid ancestors, the other walking to the top (the reference).
struct Twin {
    explicit Twin(unsigned int level, unsigned int seed)
        : shortcut(level), full(level), a(shortcut, seed, 6), b(full, seed, 6) {
        full.EnableResetShortcut(false);
        for (int i = 0; i < 60; ++i) {
            a.AddNode();
            b.AddNode();
        }
    }
    ZorWBFactory shortcut;
    ZorWBFactory full;
    RandomGraph a;
    RandomGraph b;
};

// Every node alike in both factories: buffering, validity and, for valid
// buffers, the value.
void ExpectSameBuffers(const Twin& twin, const char* step) {
    ASSERT_EQ(twin.a.nodes.size(), twin.b.nodes.size());
    for (std::size_t i = 0; i < twin.a.nodes.size(); ++i) {
        const ZorWBExpression* x = twin.a.nodes[i];
        const ZorWBExpression* y = twin.b.nodes[i];
        ASSERT_EQ(x->AllowsBufferEval(), y->AllowsBufferEval()) << step << " node " << i;
        ASSERT_EQ(x->IsBufferValid(), y->IsBufferValid()) << step << " node " << i;
        if (x->IsBufferValid()) {
            ASSERT_EQ(RealValue(x), RealValue(y)) << step << " node " << i;
        }
    }
    EXPECT_EQ(twin.shortcut.GetNbOfEvaluations(), twin.full.GetNbOfEvaluations()) << step;
}

}  // namespace

// Property: on random graphs with IfThenElse nodes (valid over the branch
// they did not take), partial and factory-wide resets, buffering taken away
// and given back, and at the levels where assigning resets upward or not,
// stopping at invalid ancestors leaves every buffer as the full walk does,
// with the same evaluations, and reaches fewer nodes.
TEST(ZorWBInvalidation, StoppingAtInvalidAncestorsLeavesTheBuffersOfTheFullWalk) {
    long long shortcutResets = 0;
    long long fullResets = 0;
    for (unsigned int level : {ZorWBLevel::All, Below(ZorWBLevel::ResetBufferUpward)}) {
        for (unsigned int seed = 1; seed <= 25; ++seed) {
            Twin twin(level, seed);
            int property = twin.shortcut.RegisterProperty("mark", 0);
            twin.full.RegisterProperty("mark", 0);
            std::mt19937 random(seed);
            auto index = [&random](std::size_t n) {
                return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
            };
            for (int step = 0; step < 300; ++step) {
                std::size_t node = index(twin.a.nodes.size());
                std::size_t variable = index(twin.a.variables.size());
                ZorWBExpression* x = twin.a.nodes[node];
                ZorWBExpression* y = twin.b.nodes[node];
                int operation = static_cast<int>(index(20));
                if (operation < 8) {
                    double value = std::uniform_real_distribution<double>(-1.0, 1.0)(random);
                    SetReal(twin.a.variables[variable], value);
                    SetReal(twin.b.variables[variable], value);
                } else if (operation < 14) {
                    x->GetValue();
                    y->GetValue();
                } else if (operation == 14) {
                    x->ResetBufferPartial();
                    y->ResetBufferPartial();
                } else if (operation == 15) {
                    twin.shortcut.ResetBuffer(nullptr);
                    twin.full.ResetBuffer(nullptr);
                } else if (operation == 16) {
                    x->ResetBuffer(true);
                    y->ResetBuffer(true);
                } else if (operation == 17) {
                    // Without propagation: a buffered parent over an unbuffered node.
                    x->SetAllowBufferEval(false, step % 2 == 0, false);
                    y->SetAllowBufferEval(false, step % 2 == 0, false);
                } else if (operation == 18) {
                    x->SetAllowBufferEval(true, step % 3 != 0, step % 4 != 0);
                    y->SetAllowBufferEval(true, step % 3 != 0, step % 4 != 0);
                } else {
                    x->SetProperty(property, step);
                    y->SetProperty(property, step);
                }
                ExpectSameBuffers(twin, std::to_string(step).c_str());
                if (HasFatalFailure()) return;
            }
            shortcutResets += twin.shortcut.GetNbOfBufferResets();
            fullResets += twin.full.GetNbOfBufferResets();
        }
    }
    EXPECT_LT(shortcutResets, fullResets);
}

// Counting: after one evaluation of a system of chained equations, assigning
// every variable invalidates each node above them once, where the full walk
// goes to the top of each variable's equations again and again; assigning
// one again reaches only that variable.
TEST(ZorWBInvalidation, ManyAssignmentsInvalidateEachNodeOnce) {
    for (bool shortcut : {true, false}) {
        ZorWBFactory f(ZorWBLevel::All);
        f.EnableResetShortcut(shortcut);
        constexpr int N = 200;
        std::vector<ZorWBVariable*> x;
        for (int i = 0; i <= N; ++i) {
            x.push_back(f.CreateVariable());
            SetReal(x.back(), i);
        }
        std::vector<ZorWBExpression*> terms;
        for (int i = 0; i < N; ++i)
            terms.push_back(f.CreatePower(f.CreateSub(x[i], x[i + 1]), 2));
        ZorWBExpression* root = f.CreateSum(N, terms.data());
        EXPECT_DOUBLE_EQ(RealValue(root), N);
        f.ResetNbOfBufferResets();
        for (ZorWBVariable* variable : x)
            SetReal(variable, 0.5);
        // Each term (x[i] - x[i+1])^2 is Power(Sum(x[i], Product(-1, x[i+1])), 2):
        // once, the N + 1 variables, the 3 N operators and the root; the
        // full walk from an inner variable reaches 7 nodes (itself, the
        // root, and 3 and 2 nodes of its two terms), 4 and 5 at the ends.
        long long once = (N + 1) + 3 * N + 1;
        long long full = 7 * (N - 1) + 4 + 5;
        EXPECT_EQ(f.GetNbOfBufferResets(), shortcut ? once : full);
        EXPECT_FALSE(root->IsBufferValid());
        EXPECT_DOUBLE_EQ(RealValue(root), 0.0);
        f.ResetNbOfBufferResets();
        SetReal(x[N / 2], 1.0);
        SetReal(x[N / 2], 2.0);  // stops at the variable itself
        EXPECT_EQ(f.GetNbOfBufferResets(), shortcut ? 7 : 2 * 7);
        EXPECT_DOUBLE_EQ(RealValue(root), 2 * 1.5 * 1.5);
    }
}
