// The branch-and-prune solver: never loses a planted solution, proves each
// solution box of a square system to hold exactly one zero (found by point
// Newton iterations from its midpoint, and no two boxes overlap), tells
// infeasible systems from empty results, keeps its limits, and gives the
// same boxes for any number of threads.

#include <gtest/gtest.h>

#include <cmath>

#include "PlantedSystem.h"
#include "SolverTestSupport.h"
#include "expressions/ZorWBBlackBox.h"
#include "solver/ZorWBSolver.h"

namespace {

// The circle and the diagonal within [-2, 2]^2: two solutions.
void BoundedCircleAndDiagonal(ZorWBFactory& f) {
    CircleAndDiagonal(f);
    SetInterval(f.GetVariable(0), -2.0, 2.0);
    SetInterval(f.GetVariable(1), -2.0, 2.0);
}

int CountOf(const ZorWBSolver& solver, ZorWBBoxType type) {
    int count = 0;
    for (int i = 0; i < solver.GetNbOfBoxes(); ++i)
        count += solver.GetBox(i).GetType() == type;
    return count;
}

bool Holds(const ZorWBSolverBox& box, const std::vector<double>& point, double slack = 0.0) {
    for (std::size_t v = 0; v < point.size(); ++v) {
        ZorWBRoundedInterval x = box.GetInterval(static_cast<int>(v));
        if (!(x.low - slack <= point[v] && point[v] <= x.high + slack)) return false;
    }
    return true;
}

bool Overlap(const ZorWBSolverBox& a, const ZorWBSolverBox& b) {
    for (int v = 0; v < a.GetNbOfVariables(); ++v) {
        if (ZorWBIntersect(a.GetInterval(v), b.GetInterval(v)).IsEmpty()) return false;
    }
    return true;
}

// Point Newton on the equations of a factory, with the Jacobian by central
// differences: the zero it converges to from start, or an empty vector.
std::vector<double> NewtonFrom(ZorWBFactory& f, std::vector<double> x) {
    const int n = static_cast<int>(x.size());
    auto residuals = [&](const std::vector<double>& point) {
        for (int v = 0; v < n; ++v)
            f.GetVariable(v)->SetExprValue(ZorWBValue(point[v]));
        std::vector<double> r;
        for (int i = 0; i < f.GetNbOfEquations(); ++i)
            r.push_back(f.GetEquation(i)->GetRoot()->Eval());
        return r;
    };
    for (int iteration = 0; iteration < 40; ++iteration) {
        std::vector<double> r = residuals(x);
        std::vector<std::vector<double>> a(static_cast<std::size_t>(n),
                                           std::vector<double>(static_cast<std::size_t>(n + 1)));
        for (int j = 0; j < n; ++j) {
            const double h = 1e-7 * (1.0 + std::fabs(x[j]));
            std::vector<double> up = x, down = x;
            up[j] += h;
            down[j] -= h;
            std::vector<double> ru = residuals(up), rd = residuals(down);
            for (int i = 0; i < n; ++i)
                a[i][j] = (ru[i] - rd[i]) / (2 * h);
        }
        for (int i = 0; i < n; ++i)
            a[i][n] = r[i];
        for (int c = 0; c < n; ++c) {  // Gaussian elimination
            int pivot = c;
            for (int i = c + 1; i < n; ++i) {
                if (std::fabs(a[i][c]) > std::fabs(a[pivot][c])) pivot = i;
            }
            std::swap(a[c], a[pivot]);
            if (a[c][c] == 0.0) return {};
            for (int i = c + 1; i < n; ++i) {
                const double factor = a[i][c] / a[c][c];
                for (int k = c; k <= n; ++k)
                    a[i][k] -= factor * a[c][k];
            }
        }
        for (int i = n - 1; i >= 0; --i) {
            double delta = a[i][n];
            for (int k = i + 1; k < n; ++k)
                delta -= a[i][k] * a[k][n];
            a[i][n] = delta / a[i][i];
            x[i] -= a[i][n];
        }
    }
    return x;
}

ZorWBSolverOptions Limited(long long cells) {
    ZorWBSolverOptions options;
    options.maxCells = cells;
    return options;
}

}  // namespace

TEST(Solver, ProvesBothSolutionsOfACircleAndALine) {
    ZorWBFactory f;
    BoundedCircleAndDiagonal(f);
    ZorWBSolver solver(f);
    ASSERT_EQ(solver.Solve(), ZorWBSolverStatus::Complete);
    EXPECT_TRUE(solver.IsSquare());
    ASSERT_EQ(solver.GetNbOfBoxes(), 2);
    const double root = std::sqrt(0.5);
    for (int i = 0; i < 2; ++i) {
        const ZorWBSolverBox& box = solver.GetBox(i);
        EXPECT_EQ(box.GetType(), ZorWBBoxType::Solution);
        const double sign = box.GetInterval(0).Middle() < 0 ? -1.0 : 1.0;
        EXPECT_TRUE(box.GetInterval(0).Contains(sign * root));
        EXPECT_TRUE(box.GetInterval(1).Contains(sign * root));
        EXPECT_LT(box.GetInterval(0).Width(), 1e-10);
    }
    EXPECT_EQ(solver.GetStatistics().solutions, 2);
    EXPECT_EQ(CountOf(solver, ZorWBBoxType::Solution), 2);
    EXPECT_TRUE(solver.GetStatistics().complete);
}

TEST(Solver, NeverLosesAPlantedSolution) {
    for (unsigned int seed = 0; seed < 200; ++seed) {
        ZorWBFactory f;
        PlantedSystemOptions options;
        options.variables = options.equalities = 1 + seed % 3;
        options.inequalities = seed % 4 == 3 ? 1 : 0;
        options.exact = seed % 2 == 0;
        options.terms = 2 + seed % 2;
        PlantedSystem system(f, seed, options);
        system.SetBoxAroundPoint(2.0);
        ZorWBSolver solver(f);
        solver.SetOptions(Limited(3000));
        ZorWBSolverStatus status = solver.Solve();
        ASSERT_NE(status, ZorWBSolverStatus::Failed) << "seed " << seed;
        ASSERT_NE(status, ZorWBSolverStatus::Infeasible) << "seed " << seed;
        bool found = false;
        for (int i = 0; i < solver.GetNbOfBoxes() && !found; ++i)
            found = Holds(solver.GetBox(i), system.point);
        EXPECT_TRUE(found) << "seed " << seed << ": the planted point is in no box";
    }
}

TEST(Solver, EachSolutionBoxHoldsOneZeroAndNoTwoOverlap) {
    int checked = 0;
    for (unsigned int seed = 0; seed < 100; ++seed) {
        ZorWBFactory f;
        PlantedSystemOptions options;
        options.variables = options.equalities = 2 + seed % 2;
        options.exact = true;
        PlantedSystem system(f, seed, options);
        system.SetBoxAroundPoint(1.5);
        ZorWBSolver solver(f);
        solver.SetOptions(Limited(3000));
        solver.Solve();
        if (!solver.IsSquare()) continue;
        for (int i = 0; i < solver.GetNbOfBoxes(); ++i) {
            const ZorWBSolverBox& box = solver.GetBox(i);
            if (box.GetType() != ZorWBBoxType::Solution) continue;
            std::vector<double> middle;
            for (int v = 0; v < box.GetNbOfVariables(); ++v)
                middle.push_back(box.GetInterval(v).Middle());
            std::vector<double> zero = NewtonFrom(f, middle);
            ASSERT_FALSE(zero.empty()) << "seed " << seed;
            EXPECT_TRUE(Holds(box, zero, 1e-9)) << "seed " << seed << ", box " << i;
            for (int j = 0; j < i; ++j) {
                if (solver.GetBox(j).GetType() == ZorWBBoxType::Solution) {
                    EXPECT_FALSE(Overlap(box, solver.GetBox(j))) << "seed " << seed;
                }
            }
            ++checked;
        }
    }
    EXPECT_GT(checked, 40);
}

TEST(Solver, ProvesAnInconsistentSystemInfeasible) {
    // Propagation alone proves it, and names the equation.
    ZorWBFactory f;
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    ZorWBEquation* sum = f.AddEquation(f.CreateSum(f.CreatePower(x, 2), f.CreatePower(y, 2)),
                                       ZorWBEqualZero, f.GetMinusOne());
    ZorWBSolver solver(f);
    EXPECT_EQ(solver.Solve(), ZorWBSolverStatus::Infeasible);
    EXPECT_EQ(solver.GetEmptyingEquationId(), sum->GetId());
    EXPECT_EQ(solver.GetNbOfBoxes(), 0);
    EXPECT_TRUE(solver.GetStatistics().complete);
    // Two circles that do not meet: the search proves it.
    ZorWBFactory g;
    ZorWBVariable* a = g.CreateVariable();
    ZorWBVariable* b = g.CreateVariable();
    g.AddEquation(g.CreateSum(g.CreatePower(a, 2), g.CreatePower(b, 2)), ZorWBEqualZero,
                  g.GetOne());
    g.AddEquation(g.CreateSum(g.CreatePower(g.CreateSub(a, g.GetThree()), 2), g.CreatePower(b, 2)),
                  ZorWBEqualZero, g.GetOne());
    ZorWBSolver search(g);
    EXPECT_EQ(search.Solve(), ZorWBSolverStatus::Infeasible);
    EXPECT_EQ(search.GetNbOfBoxes(), 0);
    // An empty initial domain.
    ZorWBFactory h;
    ZorWBVariable* z = h.CreateVariable();
    h.AddEquation(z, ZorWBEqualZero);
    h.AddEquation(z, ZorWBGreaterEqualZero, h.GetThree());
    EXPECT_EQ(ZorWBSolver(h).Solve(), ZorWBSolverStatus::Infeasible);
}

TEST(Solver, InequalitiesAloneGiveInnerAndBoundaryBoxes) {
    ZorWBFactory f;
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    f.AddEquation(f.CreateSum(f.CreatePower(x, 2), f.CreatePower(y, 2)), ZorWBLessEqualZero,
                  f.GetOne());
    SetInterval(x, -2.0, 2.0);
    SetInterval(y, -2.0, 2.0);
    ZorWBSolver solver(f);
    ZorWBSolverOptions options;
    options.eps = 0.05;
    solver.SetOptions(options);
    ASSERT_EQ(solver.Solve(), ZorWBSolverStatus::Complete);
    double inner = 0.0;
    for (int i = 0; i < solver.GetNbOfBoxes(); ++i) {
        const ZorWBSolverBox& box = solver.GetBox(i);
        const ZorWBRoundedInterval a = box.GetInterval(0), b = box.GetInterval(1);
        if (box.GetType() == ZorWBBoxType::Solution) {
            // Every corner, so every point (the disk is convex), is inside.
            for (double u : {a.low, a.high}) {
                for (double v : {b.low, b.high})
                    EXPECT_LE(u * u + v * v, 1.0);
            }
            inner += (a.high - a.low) * (b.high - b.low);
        } else {
            EXPECT_EQ(box.GetType(), ZorWBBoxType::Boundary);
            EXPECT_LT(std::max(a.Width(), b.Width()), 0.05);
        }
    }
    EXPECT_GT(inner, 2.9);
    EXPECT_LT(inner, M_PI);
    EXPECT_GT(CountOf(solver, ZorWBBoxType::Boundary), 0);
}

TEST(Solver, StopsAtItsLimitsLeavingPendingBoxes) {
    ZorWBFactory f;
    ASSERT_TRUE(ReadProblem("Kin1.bch", f));
    ZorWBSolver solver(f);
    solver.SetOptions(Limited(10));
    ASSERT_EQ(solver.Solve(), ZorWBSolverStatus::Incomplete);
    EXPECT_EQ(solver.GetStatistics().stopReason, ZorWBStopReason::Cells);
    EXPECT_EQ(solver.GetStatistics().cells, 10);
    ASSERT_GT(solver.GetStatistics().pendings, 0);
    EXPECT_EQ(solver.GetBox(solver.GetNbOfBoxes() - 1).GetType(), ZorWBBoxType::Pending);
    ZorWBSolverOptions options;
    options.maxSolutions = 3;
    solver.SetOptions(options);
    ASSERT_EQ(solver.Solve(), ZorWBSolverStatus::Incomplete);
    EXPECT_EQ(solver.GetStatistics().stopReason, ZorWBStopReason::Solutions);
    EXPECT_EQ(solver.GetStatistics().solutions, 3);
    options = ZorWBSolverOptions();
    options.timeout = 1e-9;
    solver.SetOptions(options);
    ASSERT_EQ(solver.Solve(), ZorWBSolverStatus::Incomplete);
    EXPECT_EQ(solver.GetStatistics().stopReason, ZorWBStopReason::Time);
}

TEST(Solver, GivesTheSameBoxesInTheSameOrderForAnyNumberOfThreads) {
    ZorWBFactory f;
    ASSERT_TRUE(ReadProblem("Kin1.bch", f));
    for (long long cells : {0LL, 37LL}) {
        std::vector<std::vector<ZorWBSolverBox>> runs;
        for (int threads : {1, 2, 3}) {
            ZorWBSolver solver(f);
            ZorWBSolverOptions options = Limited(cells);
            options.threads = threads;
            solver.SetOptions(options);
            solver.Solve();
            runs.emplace_back();
            for (int i = 0; i < solver.GetNbOfBoxes(); ++i)
                runs.back().push_back(solver.GetBox(i));
        }
        for (std::size_t run = 1; run < runs.size(); ++run) {
            ASSERT_EQ(runs[run].size(), runs[0].size()) << "cells " << cells;
            for (std::size_t i = 0; i < runs[0].size(); ++i) {
                EXPECT_EQ(runs[run][i].GetType(), runs[0][i].GetType());
                for (int v = 0; v < runs[0][i].GetNbOfVariables(); ++v) {
                    EXPECT_EQ(runs[run][i].GetInterval(v).low, runs[0][i].GetInterval(v).low);
                    EXPECT_EQ(runs[run][i].GetInterval(v).high, runs[0][i].GetInterval(v).high);
                }
            }
        }
    }
}

TEST(Solver, FindsTheReferenceCountsOfBenchmarkProblems) {
    // The reference counts of certified solutions; ponts-geo also keeps a
    // Newton step from emptying a box whose preconditioned diagonal touches
    // 0 while its right side does.
    const std::pair<const char*, int> problems[] = {{"Kin1.bch", 16},
                                                    {"cyclohexan3D.bch", 16},
                                                    {"kolev36.bch", 1},
                                                    {"yamamura8a.bch", 7},
                                                    {"ponts-geo.bch", 128}};
    for (const auto& [name, count] : problems) {
        ZorWBFactory f;
        ASSERT_TRUE(ReadProblem(name, f)) << name;
        ZorWBSolver solver(f);
        ASSERT_EQ(solver.Solve(), ZorWBSolverStatus::Complete) << name;
        EXPECT_EQ(solver.GetStatistics().solutions, count) << name;
        EXPECT_EQ(solver.GetNbOfBoxes(), count) << name;
    }
}

TEST(Solver, ReadsItsInitialBoxFromValuesDomainsAndBounds) {
    // x >= 1 and x <= 2 make the box of an undefined x; x^2 = 2 leaves one
    // solution there, and the bounds are no equations of the square system.
    ZorWBFactory f;
    ZorWBVariable* x = f.CreateVariable();
    f.AddEquation(x, ZorWBGreaterEqualZero, f.GetOne());
    f.AddEquation(f.CreateSub(x, f.GetTwo()), ZorWBLessEqualZero);
    f.AddEquation(f.CreatePower(x, 2), ZorWBEqualZero, f.GetTwo());
    ZorWBSolver solver(f);
    ASSERT_EQ(solver.Solve(), ZorWBSolverStatus::Complete);
    EXPECT_TRUE(solver.IsSquare());
    ASSERT_EQ(solver.GetNbOfBoxes(), 1);
    EXPECT_TRUE(solver.GetBox(0).GetInterval(0).Contains(std::sqrt(2.0)));
    // A domain set on the solver wins over the value: now both roots.
    ASSERT_TRUE(solver.SetDomain(0, ZorWBValue(ZorWBRealInterval{-5.0, 5.0})));
    EXPECT_FALSE(solver.SetDomain(7, ZorWBValue(1.0)));
    ASSERT_EQ(solver.Solve(), ZorWBSolverStatus::Complete);
    EXPECT_EQ(solver.GetStatistics().solutions, 1);  // the bounds still hold
    // Unbounded: the real cube root of 2 on the whole line.
    ZorWBFactory g;
    ZorWBVariable* y = g.CreateVariable();
    g.AddEquation(g.CreatePower(y, 3), ZorWBEqualZero, g.GetTwo());
    ZorWBSolver whole(g);
    ASSERT_EQ(whole.Solve(), ZorWBSolverStatus::Complete);
    ASSERT_EQ(whole.GetNbOfBoxes(), 1);
    EXPECT_TRUE(whole.GetBox(0).GetInterval(0).Contains(std::cbrt(2.0)));
    // An integer variable: the solution keeps integer bounds.
    ZorWBFactory h;
    ZorWBVariable* n = h.CreateVariable();
    h.AddEquation(h.CreatePower(n, 2), ZorWBEqualZero, h.CreateIntegerConstant(9));
    n->SetExprValue(ZorWBValue(ZorWBIntegerInterval{-10, 10}));
    ZorWBSolver integers(h);
    ASSERT_EQ(integers.Solve(), ZorWBSolverStatus::Complete);
    ASSERT_EQ(integers.GetNbOfBoxes(), 2);
    EXPECT_EQ(integers.GetBox(0).GetValue(0).GetType(), ZorWBIntegerIntervalType);
    EXPECT_EQ(integers.GetBox(0).GetValue(0).GetAsIntegerInterval().low, -3);
    EXPECT_EQ(integers.GetBox(1).GetValue(0).GetAsIntegerInterval().high, 3);
}

TEST(Solver, RefusesEquationsThatCallBlackBoxes) {
    class Identity : public ZorWBBBx {
      public:
        double Eval() override { return GetArgument(0); }
    };
    ZorWBFactory f;
    ZorWBVariable* x = f.CreateVariable();
    ZorWBExpression* argument = x;
    ZorWBExpression* call = f.DeclareBlackBox(new Identity, 1, &argument, true);
    ASSERT_NE(call, nullptr);
    f.AddEquation(call, ZorWBEqualZero);
    ZorWBSolver solver(f);
    EXPECT_EQ(solver.Solve(), ZorWBSolverStatus::Failed);
    EXPECT_STRNE(solver.GetMessage(), "");
    EXPECT_EQ(solver.GetNbOfBoxes(), 0);
}
