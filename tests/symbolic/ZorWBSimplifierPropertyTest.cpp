// Generated checks of the simplifier: over random expression graphs, the
// result is never heavier than the input, and wherever the input evaluates
// without error the result has the same value.

#include <gtest/gtest.h>

#include "SymbolicTestSupport.h"
#include "symbolic/ZorWBSimplifier.h"

namespace {

void CheckExpressions(unsigned int level, unsigned int firstSeed, int nbOfSeeds) {
    int compared = 0;
    for (unsigned int seed = firstSeed; seed < firstSeed + unsigned(nbOfSeeds); ++seed) {
        ZorWBFactory f(level);
        RandomExpressions random(f, seed, 3);
        ZorWBExpression* input = random.Expression(4 + random.Index(12));
        ZorWBSimplifier simplifier(f);
        ZorWBExpression* output = simplifier.Simplify(input, true);
        ASSERT_NE(output, nullptr) << "seed " << seed;
        EXPECT_LE(ZorWBSimplifier::Weight(output), ZorWBSimplifier::Weight(input))
            << "seed " << seed << "\n  " << Text(input) << "\n  " << Text(output);
        ZorWBExpression* once = simplifier.SimplifyOnce(input, true);
        EXPECT_LE(ZorWBSimplifier::Weight(once), ZorWBSimplifier::Weight(input));
        for (int point = 0; point < 8; ++point) {
            random.AssignRandomValues();
            double expected = Evaluate(input);
            if (std::isnan(expected)) continue;
            ++compared;
            EXPECT_TRUE(Close(expected, Evaluate(output)))
                << "seed " << seed << "\n  " << Text(input) << " = " << expected << "\n  "
                << Text(output) << " = " << Evaluate(output);
            EXPECT_TRUE(Close(expected, Evaluate(once))) << "seed " << seed;
        }
    }
    EXPECT_GT(compared, nbOfSeeds);
}

TEST(SimplifierPropertyTest, NeverHeavierAndEqualWhereDefined) {
    CheckExpressions(ZorWBLevel::All, 1, 600);
}

TEST(SimplifierPropertyTest, OlderLevelsToo) {
    CheckExpressions(Below(ZorWBLevel::ThreeSimplifyRounds), 5000, 150);
}

TEST(SimplifierPropertyTest, ZeroResultsMeanZeroEverywhere) {
    // Differences of an expression and a rearranged copy vanish; whatever
    // vanishes is 0 at every point where the input is defined.
    int vanished = 0;
    for (unsigned int seed = 100; seed < 400; ++seed) {
        ZorWBFactory f;
        RandomExpressions random(f, seed, 2);
        ZorWBExpression* a = random.Expression(3 + random.Index(6));
        ZorWBExpression* b = random.Index(2) ? a : random.Expression(2);
        ZorWBExpression* difference =
            f.CreateSub(f.CreateProduct(f.CreateIntegerConstant(2), a), f.CreateSum(b, a));
        ZorWBSimplifier simplifier(f);
        if (simplifier.Simplify(difference, false)) continue;
        ++vanished;
        for (int point = 0; point < 5; ++point) {
            random.AssignRandomValues();
            double value = Evaluate(difference);
            if (std::isnan(value)) continue;
            EXPECT_TRUE(Close(value, 0.0)) << "seed " << seed;
        }
    }
    EXPECT_GT(vanished, 50);
}

}  // namespace
