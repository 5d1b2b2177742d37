// Interval Newton on square systems: it keeps every zero of the box, proves
// uniqueness only where a single zero lies, and encloses that zero tightly.

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "PlantedSystem.h"
#include "SolverTestSupport.h"
#include "solver/ZorWBIntervalNewton.h"

namespace {

// A factory's square system and its interval Newton.
struct Square {
    explicit Square(ZorWBFactory& factory)
        : whole(factory), system(&whole.Get()), newton(new ZorWBIntervalNewton(*system)) {}
    FactorySquareSystem whole;
    ZorWBSquareSystem* system;
    std::unique_ptr<ZorWBIntervalNewton> newton;
};

std::vector<ZorWBRoundedInterval> Box(std::initializer_list<ZorWBRoundedInterval> intervals) {
    return std::vector<ZorWBRoundedInterval>(intervals);
}

}  // namespace

TEST(IntervalNewton, ProvesTheUniqueZeroOfACircleAndALineAndEnclosesItTightly) {
    ZorWBFactory f;
    CircleAndDiagonal(f);
    Square square(f);
    ASSERT_TRUE(square.system->IsValid());
    const double root = std::sqrt(0.5);
    std::vector<ZorWBRoundedInterval> box = Box({{0.5, 0.9}, {0.6, 0.8}});
    ZorWBNewtonOutcome outcome = square.newton->Contract(box);
    EXPECT_NE(outcome, ZorWBNewtonOutcome::Empty);
    EXPECT_TRUE(box[0].Contains(root) && box[1].Contains(root));
    std::vector<ZorWBRoundedInterval> existence, uniqueness;
    ASSERT_TRUE(square.newton->ProveUnique(box, existence, uniqueness));
    for (int v = 0; v < 2; ++v) {
        EXPECT_TRUE(existence[v].Contains(root));
        EXPECT_LT(existence[v].Width(), 1e-13);
        EXPECT_TRUE(ZorWBIsSubset(box[v], uniqueness[v]));
    }
    // Away from the zeros, a step proves the box empty.
    std::vector<ZorWBRoundedInterval> far = Box({{2.0, 3.0}, {2.0, 3.1}});
    EXPECT_EQ(square.newton->Contract(far), ZorWBNewtonOutcome::Empty);
}

TEST(IntervalNewton, NeverProvesABoxThatHoldsTwoZeros) {
    ZorWBFactory f;
    CircleAndDiagonal(f);
    Square square(f);
    // Both (r, r) and (-r, -r).
    std::vector<ZorWBRoundedInterval> box = Box({{-1.0, 1.0}, {-0.9, 0.95}});
    std::vector<ZorWBRoundedInterval> contracted = box;
    EXPECT_NE(square.newton->Contract(contracted), ZorWBNewtonOutcome::Proved);
    std::vector<ZorWBRoundedInterval> existence, uniqueness;
    EXPECT_FALSE(square.newton->ProveUnique(box, existence, uniqueness));
    // A double zero: x^2 = 0 has one zero but a singular Jacobian.
    ZorWBFactory g;
    ZorWBVariable* x = g.CreateVariable();
    g.AddEquation(g.CreatePower(x, 2), ZorWBEqualZero);
    Square singular(g);
    std::vector<ZorWBRoundedInterval> around = Box({{-0.1, 0.2}});
    EXPECT_FALSE(singular.newton->ProveUnique(around, existence, uniqueness));
    EXPECT_NE(singular.newton->Contract(around), ZorWBNewtonOutcome::Empty);
}

TEST(IntervalNewton, KeepsAPlantedZeroAndProvesOnlyBoxesThatHoldIt) {
    int proved = 0;
    for (unsigned int seed = 0; seed < 300; ++seed) {
        ZorWBFactory f;
        PlantedSystem planted(f, seed, PlantedSystemOptions::Square(seed));
        Square square(f);
        if (!square.system->IsValid()) continue;
        std::vector<ZorWBRoundedInterval> box = planted.BoxAroundPoint(1e-6, 0.5);
        for (int step = 0; step < 6; ++step) {
            ZorWBNewtonOutcome outcome = square.newton->Contract(box);
            ASSERT_NE(outcome, ZorWBNewtonOutcome::Empty) << "seed " << seed;
            for (std::size_t v = 0; v < box.size(); ++v)
                ASSERT_TRUE(box[v].Contains(planted.point[v])) << "seed " << seed;
        }
        std::vector<ZorWBRoundedInterval> existence, uniqueness;
        if (!square.newton->ProveUnique(box, existence, uniqueness)) continue;
        ++proved;
        for (std::size_t v = 0; v < box.size(); ++v)
            ASSERT_TRUE(existence[v].Contains(planted.point[v])) << "seed " << seed;
    }
    EXPECT_GT(proved, 100);
}
