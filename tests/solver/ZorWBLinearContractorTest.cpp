// The small simplex solver against known optima and sampled feasible
// points, and the linear relaxation's contraction: it keeps every zero of
// the box and proves empty only boxes without one.

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "PlantedSystem.h"
#include "SolverTestSupport.h"
#include "solver/ZorWBLinearContractor.h"

using Result = ZorWBLinearProgram::Result;

TEST(LinearProgram, FindsTheOptimumAndItsDuals) {
    // max x + y with x + 2y <= 4 and 3x + y <= 6 in [0, 10]^2: (1.6, 1.2).
    ZorWBLinearProgram program;
    ASSERT_EQ(program.Prepare(2, 2, {1, 2, 3, 1}, {4, 6}, {0, 0}, {10, 10}), Result::Optimal);
    ASSERT_EQ(program.Maximize({1, 1}), Result::Optimal);
    EXPECT_NEAR(program.GetSolution()[0], 1.6, 1e-12);
    EXPECT_NEAR(program.GetSolution()[1], 1.2, 1e-12);
    // Duals: 1 = 0.4 * 1 + 0.2 * 3 and 1 = 0.4 * 2 + 0.2 * 1.
    EXPECT_NEAR(program.GetDuals()[0], 0.4, 1e-12);
    EXPECT_NEAR(program.GetDuals()[1], 0.2, 1e-12);
    // Another objective from the same basis: max x gives x = 2.
    ASSERT_EQ(program.Maximize({1, 0}), Result::Optimal);
    EXPECT_NEAR(program.GetSolution()[0], 2.0, 1e-12);
    // A start outside the rows (x + y >= 3 reads -x - y <= -3) needs phase 1.
    ASSERT_EQ(program.Prepare(1, 2, {-1, -1}, {-3}, {0, 0}, {2, 2}), Result::Optimal);
    ASSERT_EQ(program.Maximize({-1, 0}), Result::Optimal);
    EXPECT_NEAR(program.GetSolution()[0], 1.0, 1e-12);
    // x + y <= -1 within [0, 1]^2: no point; the dual certifies it.
    ASSERT_EQ(program.Prepare(1, 2, {1, 1}, {-1}, {0, 0}, {1, 1}), Result::Infeasible);
    EXPECT_GT(program.GetDuals()[0], 0.0);
    EXPECT_EQ(program.Prepare(1, 2, {1}, {-1}, {0, 0}, {1, 1}), Result::Failed);
}

TEST(LinearProgram, OptimaBoundEverySampledFeasiblePoint) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    int optimal = 0;
    for (int trial = 0; trial < 500; ++trial) {
        const int m = 2 + trial % 6, n = 1 + trial % 4;
        std::vector<double> a(static_cast<std::size_t>(m * n)), b(static_cast<std::size_t>(m));
        for (double& value : a)
            value = uniform(random);
        for (double& value : b)
            value = uniform(random);
        std::vector<double> low(static_cast<std::size_t>(n), -1.0),
            high(static_cast<std::size_t>(n), 1.0);
        std::vector<double> c(static_cast<std::size_t>(n));
        for (double& value : c)
            value = uniform(random);
        ZorWBLinearProgram program;
        Result prepared = program.Prepare(m, n, a, b, low, high);
        Result result = prepared == Result::Optimal ? program.Maximize(c) : prepared;
        double best = -INFINITY;
        for (int sample = 0; sample < 2000; ++sample) {
            std::vector<double> x(static_cast<std::size_t>(n));
            for (double& value : x)
                value = uniform(random);
            bool feasible = true;
            for (int i = 0; i < m && feasible; ++i) {
                double row = 0.0;
                for (int j = 0; j < n; ++j)
                    row += a[i * n + j] * x[j];
                feasible = row <= b[i];
            }
            double value = 0.0;
            for (int j = 0; j < n; ++j)
                value += c[j] * x[j];
            if (feasible) best = std::max(best, value);
        }
        if (result == Result::Infeasible) {
            EXPECT_EQ(best, -INFINITY) << "trial " << trial;
            continue;
        }
        ASSERT_EQ(result, Result::Optimal) << "trial " << trial;
        ++optimal;
        double value = 0.0;
        for (int j = 0; j < n; ++j)
            value += c[j] * program.GetSolution()[j];
        EXPECT_GE(value, best - 1e-9) << "trial " << trial;
    }
    EXPECT_GT(optimal, 200);
}

TEST(LinearContractor, KeepsAPlantedZeroAndNarrowsTheBox) {
    int narrowed = 0;
    for (unsigned int seed = 0; seed < 300; ++seed) {
        ZorWBFactory f;
        PlantedSystem planted(f, seed, PlantedSystemOptions::Square(seed));
        FactorySquareSystem square(f);
        if (!square.Get().IsValid()) continue;
        ZorWBLinearContractor contractor(square.Get());
        std::vector<ZorWBRoundedInterval> box = planted.BoxAroundPoint(1e-4, 0.3);
        double before = 0.0, after = 0.0;
        for (const ZorWBRoundedInterval& x : box)
            before += x.Width();
        for (int step = 0; step < 4; ++step) {
            ASSERT_TRUE(contractor.Contract(box)) << "seed " << seed;
            for (std::size_t v = 0; v < box.size(); ++v)
                ASSERT_TRUE(box[v].Contains(planted.point[v])) << "seed " << seed;
        }
        for (const ZorWBRoundedInterval& x : box)
            after += x.Width();
        narrowed += after < 0.5 * before;
    }
    EXPECT_GT(narrowed, 100);
}
