// GetValue with its shortcuts and compiled value programs against the plain
// node walk: after every evaluation each node holds the same value (kind,
// payload and recorded environment) and the same buffer state, and the
// evaluation count, the error word and the black-box calls are the same.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "AnyKindGraph.h"
#include "ExpressionTestSupport.h"
#include "values/ZorWBValueFunctions.h"

namespace {

// What an evaluation leaves behind. A recorded environment is told as none,
// the factory's own, or another one.
struct State {
    std::vector<std::string> values;
    std::vector<int> environments;
    long long evaluations = 0;
    unsigned int error = 0;
    int calls = 0;
};

// Two factories built alike from one seed, one evaluating with shortcuts and
// value programs, the other with the plain node walk. Whatever they are
// asked, they must end in the same state.
struct Twin {
    explicit Twin(unsigned int seed, bool fast) : graph(factory, blackBox, seed) {
        factory.EnableFastValues(fast);
        for (int i = 0; i < 60; ++i)
            graph.AddNode();
    }

    State Evaluate(ZorWBExpression* root) {
        long long before = factory.GetNbOfEvaluations();
        int calls = blackBox.calls;
        root->GetValue();
        State state;
        for (const ZorWBExpression* node : graph.nodes) {
            const ZorWBValue& value = node->GetExprValue();
            state.values.push_back(std::to_string(node->IsBufferValid()) + " " +
                                   std::to_string(value.GetType()) + " " + value.Str().GetString());
            const ZorWBEnvironment* environment = value.GetEnvironment();
            state.environments.push_back(!environment                               ? 0
                                         : environment == &factory.GetEnvironment() ? 1
                                                                                    : 2);
        }
        state.evaluations = factory.GetNbOfEvaluations() - before;
        state.error = factory.GetEnvironment().GetError();
        state.calls = blackBox.calls - calls;
        return state;
    }

    CountingBlackBox blackBox;  // outlives the factory that calls it
    ZorWBFactory factory;
    // Also draws the values: the twins draw the same ones.
    AnyKindGraph graph;
};

void ExpectSameState(const State& fast, const State& walk) {
    ASSERT_EQ(fast.values.size(), walk.values.size());
    for (std::size_t i = 0; i < fast.values.size(); ++i) {
        EXPECT_EQ(fast.values[i], walk.values[i]) << "node " << i;
        EXPECT_EQ(fast.environments[i], walk.environments[i]) << "node " << i;
    }
    EXPECT_EQ(fast.evaluations, walk.evaluations);
    EXPECT_EQ(fast.error, walk.error);
    EXPECT_EQ(fast.calls, walk.calls);
}

}  // namespace

// Each root is evaluated in full twice (the second time by a compiled
// program, with shortcuts), then again after one variable changes (only
// what lies above it), with and without the error word cleared first.
TEST(ZorWBFastValue, RandomGraphsLeaveTheWalksValuesBuffersCountsAndErrors) {
    long long programRuns = 0;
    for (unsigned int seed = 1; seed <= 80; ++seed) {
        Twin fast(seed, true);
        Twin walk(seed, false);
        for (int round = 0; round < 6; ++round) {
            for (Twin* twin : {&fast, &walk}) {
                for (ZorWBVariable* variable : twin->graph.variables)
                    variable->SetExprValue(twin->graph.AnyInterval());
                // A structural change, which drops the compiled programs.
                AnyKindGraph& graph = twin->graph;
                ZorWBExpression* node = graph.nodes[graph.nodes.size() - 1 - graph.Index(30)];
                int n = node->GetNbOfChildren();
                if (n > 0) node->ReplaceChild(graph.Index(n), graph.Pick());
            }
            std::size_t count = fast.graph.nodes.size();
            for (std::size_t i = count - 8; i < count; ++i) {
                SCOPED_TRACE("seed " + std::to_string(seed) + " root " + std::to_string(i));
                for (int step = 0; step < 3; ++step) {
                    for (Twin* twin : {&fast, &walk}) {
                        if (step < 2) twin->factory.ResetBuffer(nullptr);
                        if (step == 2)
                            twin->graph.variables[0]->SetExprValue(twin->graph.AnyInterval());
                        if (round % 2 == 0) twin->factory.GetEnvironment().ClearError();
                    }
                    ExpectSameState(fast.Evaluate(fast.graph.nodes[i]),
                                    walk.Evaluate(walk.graph.nodes[i]));
                }
            }
        }
        programRuns += fast.factory.GetNbOfValueProgramRuns();
        EXPECT_EQ(walk.factory.GetNbOfValueProgramRuns(), 0);
    }
    EXPECT_GT(programRuns, 1000);
}

// Sums, products, quotients, powers and the elementary functions of real
// intervals take the shortcut; each result is the value function's.
TEST(ZorWBFastValue, IntervalOperatorsGiveTheValueFunctionsResults) {
    ZorWBFactory f;
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    const ZorWBEnvironment& e = f.GetEnvironment();
    struct Case {
        ZorWBExpression* node;
        ZorWBValue (*expected)(const ZorWBEnvironment&, const ZorWBValue&, const ZorWBValue&);
    };
    std::vector<Case> cases = {
        {f.CreateSum(x, y), ZorWBSum},
        {f.CreateProduct(x, y), ZorWBMul},
        {f.CreateMin(x, y), ZorWBMin},
        {f.CreateMax(x, y), ZorWBMax},
        {f.CreateQuotient(x, y), ZorWBDiv},
        {f.CreatePower(x, y), ZorWBPow},
        {f.CreateSin(x), [](const ZorWBEnvironment& env, const ZorWBValue& a,
                            const ZorWBValue&) { return ZorWBSin(env, a); }},
        {f.CreateSqrt(x), [](const ZorWBEnvironment& env, const ZorWBValue& a,
                             const ZorWBValue&) { return ZorWBSqrt(env, a); }},
        {f.CreateACosh(x), [](const ZorWBEnvironment& env, const ZorWBValue& a,
                              const ZorWBValue&) { return ZorWBAcosh(env, a); }},
    };
    std::mt19937 random(9);
    auto uniform = [&random](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    for (int round = 0; round < 3000; ++round) {
        double low = uniform(-4.0, 4.0);
        ZorWBValue a(ZorWBRealInterval{low, low + uniform(0.0, 3.0)});
        ZorWBValue b = round % 3 == 0   ? ZorWBValue(static_cast<int>(random() % 7) - 3)
                       : round % 3 == 1 ? ZorWBValue(uniform(-3.0, 3.0))
                                        : ZorWBValue(ZorWBRealInterval{low, low + 1.0});
        if (round % 50 == 0) b = ZorWBValue(ZorWBRealInterval{1.0, 0.0});  // empty
        x->SetExprValue(a);
        y->SetExprValue(b);
        for (const Case& c : cases) {
            e.ClearError();
            ZorWBValue expected = c.expected(e, a, b);
            unsigned int error = e.GetError();
            e.ClearError();
            const ZorWBValue& value = c.node->GetValue();
            EXPECT_EQ(value.GetType(), expected.GetType());
            EXPECT_EQ(std::string(value.Str().GetString()),
                      std::string(expected.Str().GetString()));
            EXPECT_EQ(value.GetEnvironment(), nullptr);
            EXPECT_EQ(e.GetError(), error);
        }
    }
}
