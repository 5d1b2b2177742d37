// Compiled functions against the node walk and the symbolic derivatives:
// residuals with Eval()'s bits and black-box calls, interval residuals with
// GetValue()'s values and error word, Jacobians with the symbolic
// derivatives' values, interval Jacobians enclosing the point ones, over
// generated graphs of every kind; and the refusals (a changed graph, a
// destroyed factory, bad arguments).

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "AnyKindGraph.h"
#include "ExpressionTestSupport.h"
#include "expressions/ZorWBCompiledFunction.h"

using Status = ZorWBCompiledStatus;

namespace {

std::uint64_t Bits(double value) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

// Reals mostly, and now and then 0, an integer, NaN or a large number.
double AnyReal(std::mt19937& random) {
    std::uniform_real_distribution<double> uniform(-3.0, 3.0);
    switch (random() % 10) {
        case 0:
            return 0.0;
        case 1:
            return static_cast<double>(static_cast<int>(random() % 7) - 3);
        case 2:
            return std::nan("");
        case 3:
            return uniform(random) * 1e200;
        default:
            return uniform(random);
    }
}

// Real intervals mostly of width up to 2, and now and then a point, an
// empty interval, one reaching an infinite end, or the whole line.
ZorWBRealInterval AnyBox(std::mt19937& random) {
    std::uniform_real_distribution<double> uniform(-3.0, 3.0);
    double low = uniform(random);
    switch (random() % 12) {
        case 0:
            return {low, low};
        case 1:
            return {low, low - 1.0};
        case 2:
            return {-ZorWBRealLimit, low};
        case 3:
            return {-ZorWBRealLimit, ZorWBRealLimit};
        default:
            return {low, low + std::fabs(uniform(random)) * 0.7};
    }
}

struct Roots {
    std::vector<const ZorWBExpression*> roots;
    std::vector<ZorWBVariable*> variables;
};

// The last eight nodes of graph over its first four variables (the other
// two are read from their nodes).
Roots LastNodes(AnyKindGraph& graph) {
    Roots r;
    for (std::size_t i = graph.nodes.size() - 8; i < graph.nodes.size(); ++i)
        r.roots.push_back(graph.nodes[i]);
    r.variables.assign(graph.variables.begin(), graph.variables.begin() + 4);
    return r;
}

// The last count nodes of graph over all its variables.
template <class Graph>
Roots LastNodesOverAll(const Graph& graph, std::size_t count) {
    Roots r;
    for (std::size_t i = graph.nodes.size() - count; i < graph.nodes.size(); ++i)
        r.roots.push_back(graph.nodes[i]);
    r.variables = graph.variables;
    return r;
}

ZorWBCompiledFunction Compile(const Roots& r) {
    return ZorWBCompiledFunction(static_cast<int>(r.roots.size()), r.roots.data(),
                                 static_cast<int>(r.variables.size()), r.variables.data());
}

// What GetValue gives for value, told to the bit: its kind and text, and
// the bounds of its reading as a real interval.
std::string Exactly(const ZorWBValue& value) {
    ZorWBRealInterval hull = value.GetAsRealInterval();
    return std::to_string(value.GetType()) + " " + value.Str().GetString() + " " +
           std::to_string(Bits(hull.low)) + " " + std::to_string(Bits(hull.high));
}

}  // namespace

// The variables listed hold the point when Eval() is asked; the compiled
// function is given the same point (one variable through a slot), while
// the other variables hold values of every kind. The black boxes count
// their calls.
TEST(ZorWBCompiledFunction, ResidualsAreTheBitsAndCallsOfEvalOnGraphsOfEveryKind) {
    CountingBlackBox blackBox;
    std::mt19937 random(3);
    int compared = 0;
    for (unsigned int seed = 1; seed <= 60; ++seed) {
        ZorWBFactory f(seed % 3 ? ZorWBLevel::All : Below(ZorWBLevel::ResetBufferUpward));
        AnyKindGraph graph(f, blackBox, seed);
        for (int i = 0; i < 70; ++i)
            graph.AddNode();
        Roots r = LastNodes(graph);
        ZorWBCompiledFunction function = Compile(r);
        // Only an unbuffered node reached twice from one root is refused.
        if (function.GetStatus() != Status::Ok) continue;
        double slot = 0.0;
        function.BindSlot(2, &slot);
        for (int round = 0; round < 6; ++round) {
            graph.AssignValues();
            std::vector<double> point(r.variables.size());
            for (std::size_t i = 0; i < point.size(); ++i) {
                point[i] = AnyReal(random);
                SetReal(r.variables[i], point[i]);
            }
            slot = point[2];
            point[2] = 12345.0;  // not read: the slot is
            // A black box reads its arguments through their buffered
            // values: both evaluations start with none valid.
            f.ResetBuffer(nullptr);
            std::vector<double> expected;
            int calls = blackBox.calls;
            for (const ZorWBExpression* root : r.roots)
                expected.push_back(root->Eval());
            int expectedCalls = blackBox.calls - calls;
            std::vector<double> residuals(r.roots.size());
            f.ResetBuffer(nullptr);
            calls = blackBox.calls;
            ASSERT_EQ(function.Evaluate(point.data(), residuals.data()), Status::Ok);
            EXPECT_EQ(blackBox.calls - calls, expectedCalls) << "seed " << seed;
            for (std::size_t i = 0; i < expected.size(); ++i) {
                EXPECT_EQ(Bits(residuals[i]), Bits(expected[i]))
                    << "seed " << seed << " root " << i << ": " << residuals[i] << " against "
                    << expected[i];
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 2000) << compared;
}

// The variables listed hold the box and every buffer is invalid when
// GetValue() is asked of the roots in order; the compiled function is given
// the box. Both start from the same error word (sometimes a lone domain
// error, which the first node started clears). The graphs call no black
// box, but for a few, which are refused; half of them have no branch.
TEST(ZorWBCompiledFunction, IntervalResidualsAreTheValuesAndErrorWordOfGetValue) {
    CountingBlackBox blackBox;
    std::mt19937 random(5);
    int compared = 0;
    int refused = 0;
    for (unsigned int seed = 1; seed <= 60; ++seed) {
        ZorWBFactory f(seed % 3 ? ZorWBLevel::All : Below(ZorWBLevel::ResetBufferUpward));
        AnyKindGraph graph(f, blackBox, seed);
        graph.callsBlackBoxes = seed % 10 == 0;
        // Without branches, the program's values share registers.
        graph.branches = seed % 2 == 0;
        for (int i = 0; i < 70; ++i)
            graph.AddNode();
        Roots r = LastNodes(graph);
        ZorWBCompiledFunction function = Compile(r);
        if (function.GetStatus() != Status::Ok) continue;
        const ZorWBEnvironment& e = f.GetEnvironment();
        for (int round = 0; round < 6; ++round) {
            graph.AssignValues(true);
            std::vector<ZorWBRealInterval> box(r.variables.size());
            for (std::size_t i = 0; i < box.size(); ++i) {
                box[i] = AnyBox(random);
                r.variables[i]->SetExprValue(ZorWBValue(box[i]));
            }
            unsigned int start = round % 2 ? ZorWBError::Domain : ZorWBError::None;
            f.ResetBuffer(nullptr);
            e.ClearError();
            e.SetError(start);
            std::vector<std::string> expected;
            for (const ZorWBExpression* root : r.roots)
                expected.push_back(Exactly(root->GetValue()));
            unsigned int expectedError = e.GetError();
            e.ClearError();
            e.SetError(start);
            std::vector<ZorWBRealInterval> residuals(r.roots.size());
            Status status = function.EvaluateIntervals(box.data(), residuals.data());
            if (status == Status::NoIntervalForm) {
                ++refused;
                break;
            }
            ASSERT_EQ(status, Status::Ok);
            EXPECT_EQ(e.GetError(), expectedError) << "seed " << seed;
            for (std::size_t i = 0; i < expected.size(); ++i) {
                const ZorWBValue& value = function.GetIntervalResult(static_cast<int>(i));
                EXPECT_EQ(Exactly(value), expected[i]) << "seed " << seed << " root " << i;
                ZorWBRealInterval hull = value.GetAsRealInterval();
                EXPECT_EQ(Bits(residuals[i].low), Bits(hull.low));
                EXPECT_EQ(Bits(residuals[i].high), Bits(hull.high));
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 1000) << compared;
    EXPECT_GT(refused, 0);  // roots calling a black box
}

namespace {

// The Jacobian's entry of root by variable (0 outside the pattern).
double Entry(const ZorWBCompiledFunction& function, const std::vector<double>& jacobian, int root,
             int variable) {
    for (int k = function.GetRowStarts()[root]; k < function.GetRowStarts()[root + 1]; ++k) {
        if (function.GetColumns()[k] == variable) return jacobian[static_cast<std::size_t>(k)];
    }
    return 0.0;
}

bool Close(double a, double b) {
    return std::fabs(a - b) <= 1e-9 * (1.0 + std::fabs(a) + std::fabs(b));
}

// Each entry against the symbolic derivative of its root by its variable,
// evaluated with Eval() at the point (the variables hold it); the
// residuals against Evaluate's bits. Returns the entries compared (both
// finite).
int ExpectJacobianIsSymbolic(ZorWBFactory& f, ZorWBCompiledFunction& function, const Roots& r,
                             const std::vector<std::vector<ZorWBExpression*>>& derivatives,
                             const std::vector<double>& point) {
    for (std::size_t i = 0; i < point.size(); ++i)
        SetReal(r.variables[i], point[i]);
    std::vector<double> residuals(r.roots.size());
    std::vector<double> plain(r.roots.size());
    std::vector<double> jacobian(static_cast<std::size_t>(function.GetNbOfNonZeros()));
    EXPECT_EQ(function.EvaluateJacobian(point.data(), residuals.data(), jacobian.data()),
              Status::Ok);
    EXPECT_EQ(function.Evaluate(point.data(), plain.data()), Status::Ok);
    int compared = 0;
    for (std::size_t i = 0; i < r.roots.size(); ++i) {
        EXPECT_EQ(Bits(residuals[i]), Bits(plain[i]));
        for (std::size_t j = 0; j < r.variables.size(); ++j) {
            f.ResetBuffer(nullptr);
            double symbolic = derivatives[i][j]->Eval();
            double automatic = Entry(function, jacobian, static_cast<int>(i), static_cast<int>(j));
            // Where the symbolic derivative multiplies the 0 of a piece not
            // selected by an infinite slope above it (a kink under a
            // square root at 0), it is NaN and the sweep, which leaves
            // that term out, may be finite; never the other way round.
            if (!std::isfinite(symbolic) || !std::isfinite(automatic)) {
                if (!std::isfinite(automatic)) {
                    EXPECT_FALSE(std::isfinite(symbolic))
                        << "root " << i << " variable " << j << ": " << automatic << " against "
                        << symbolic;
                }
                continue;
            }
            EXPECT_TRUE(Close(automatic, symbolic)) << "root " << i << " variable " << j << ": "
                                                    << automatic << " against " << symbolic;
            ++compared;
        }
    }
    return compared;
}

std::vector<std::vector<ZorWBExpression*>> SymbolicDerivatives(ZorWBFactory& f, const Roots& r) {
    std::vector<std::vector<ZorWBExpression*>> derivatives;
    for (const ZorWBExpression* root : r.roots) {
        derivatives.emplace_back();
        for (ZorWBVariable* variable : r.variables)
            derivatives.back().push_back(
                f.CreateDerivative(const_cast<ZorWBExpression*>(root), variable));
    }
    return derivatives;
}

}  // namespace

// Random graphs of smooth and piecewise operators (products, quotients,
// Min, Max, Dim, |x|, sqrt, IfThenElse on comparisons), at points of
// [-1, 1].
TEST(ZorWBCompiledFunction, JacobiansAreTheSymbolicDerivativesAtThePoint) {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    int compared = 0;
    for (unsigned int seed = 1; seed <= 40; ++seed) {
        ZorWBFactory f;
        RandomGraph graph(f, seed, 5);
        for (int i = 0; i < 40; ++i)
            graph.AddNode();
        Roots r = LastNodesOverAll(graph, 6);
        ZorWBCompiledFunction function = Compile(r);
        ASSERT_EQ(function.GetStatus(), Status::Ok);
        std::vector<std::vector<ZorWBExpression*>> derivatives = SymbolicDerivatives(f, r);
        for (int round = 0; round < 5; ++round) {
            std::vector<double> point(r.variables.size());
            for (double& x : point)
                x = uniform(random);
            compared += ExpectJacobianIsSymbolic(f, function, r, derivatives, point);
        }
    }
    EXPECT_GT(compared, 4000) << compared;
}

// Every operator kind with a derivative, at generic points and where the
// piece changes: ties of Min and Max (the first extremum), |x| and sign at
// 0, Dim at a = b, a Step at its ends, Round with a step of 0, an
// IfThenElse on a NaN condition, powers with a constant and a variable
// exponent; and the pattern: exactly the variables present in each root.
TEST(ZorWBCompiledFunction, JacobiansFollowTheSymbolicRulesOfEveryKindAtJointsAndTies) {
    using Type = ZorWBExpressionType;
    ZorWBFactory f;
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    ZorWBVariable* z = f.CreateVariable();
    ZorWBExpression* three[] = {x, y, z};
    Roots r;
    r.variables = {x, y, z};
    for (Type type : {Type::Sum, Type::Product, Type::Min, Type::Max})
        r.roots.push_back(f.CreateOperator(type, 3, three));
    for (Type type :
         {Type::Quotient, Type::Power, Type::Root, Type::Atan2, Type::Dim, Type::Sign, Type::Mod})
        r.roots.push_back(f.CreateOperator(type, x, f.CreateSum(y, f.GetTwo())));
    for (Type type :
         {Type::Sqrt,  Type::Log,   Type::Ln,    Type::Exp,        Type::Abs,  Type::Ceil,
          Type::Floor, Type::Round, Type::Trunc, Type::UnaryMinus, Type::Sin,  Type::Cos,
          Type::Tan,   Type::Asin,  Type::Acos,  Type::Atan,       Type::Sinh, Type::Cosh,
          Type::Tanh,  Type::Asinh, Type::Acosh, Type::Atanh})
        r.roots.push_back(f.CreateOperator(type, f.CreateProduct(x, y)));
    r.roots.push_back(f.CreatePower(x, 3));
    r.roots.push_back(f.CreatePower(f.CreateSum(x, f.GetTwo()), y));
    r.roots.push_back(f.CreatePower(x, f.CreateRealConstant(0.5)));
    r.roots.push_back(f.CreateStep(x, -0.5, 0.5, 1.0, 3.0));
    r.roots.push_back(f.CreateStep(x, 0.5, 0.5, 1.0, 3.0));
    r.roots.push_back(f.CreateOperator(Type::Round, x, y, z));
    r.roots.push_back(f.CreateOperator(Type::Round, x, f.GetZero(), z));
    r.roots.push_back(f.CreateIfThenElse(f.CreateLessEqual(x, y), f.CreateSin(z), f.CreateCos(y)));
    r.roots.push_back(f.CreateIfThenElse(f.CreateSqrt(x), y, z));
    r.roots.push_back(f.CreateNot(f.CreateLessEqual(x, y)));
    ZorWBCompiledFunction function = Compile(r);
    ASSERT_EQ(function.GetStatus(), Status::Ok);
    for (std::size_t i = 0; i < r.roots.size(); ++i) {
        ZorWBVariable** present = nullptr;
        int count = r.roots[i]->FindPresentVariables(present);
        std::vector<int> expected;
        for (int k = 0; k < count; ++k)
            expected.push_back(present[k]->GetIdx());
        delete[] present;
        std::vector<int> columns(function.GetColumns() + function.GetRowStarts()[i],
                                 function.GetColumns() + function.GetRowStarts()[i + 1]);
        EXPECT_EQ(columns, expected) << "root " << i;
    }
    std::vector<std::vector<ZorWBExpression*>> derivatives = SymbolicDerivatives(f, r);
    int compared = 0;
    const std::vector<std::vector<double>> points = {
        {0.3, 0.7, -0.4}, {0.5, 0.5, 0.5},  {0.0, 0.0, 0.0},   {-0.5, 0.2, 0.2},
        {0.5, -0.5, 2.0}, {-0.3, 0.9, 0.0}, {1.5, -1.25, 0.75}};
    for (const std::vector<double>& point : points)
        compared += ExpectJacobianIsSymbolic(f, function, r, derivatives, point);
    // Each root alone: most programs have no jump, and take the slopes of
    // sums, products and negations from registers rather than computing
    // them.
    for (std::size_t i = 0; i < r.roots.size(); ++i) {
        Roots alone;
        alone.roots = {r.roots[i]};
        alone.variables = r.variables;
        ZorWBCompiledFunction single = Compile(alone);
        for (const std::vector<double>& point : points)
            compared += ExpectJacobianIsSymbolic(f, single, alone, {derivatives[i]}, point);
    }
    EXPECT_GT(compared, 400) << compared;
}

// Boxes of [-1, 1]: at points sampled in each box, the residuals and the
// Jacobian lie in the interval forms (within a rounding error of the bounds,
// which are rounded to nearest).
TEST(ZorWBCompiledFunction, IntervalJacobiansEncloseTheJacobiansAtThePointsOfTheBox) {
    std::mt19937 random(13);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    auto inside = [](double value, const ZorWBRealInterval& range) {
        double slack = 1e-9 * (1.0 + std::fabs(value));
        return range.low - slack <= value && value <= range.high + slack;
    };
    int checked = 0;
    for (unsigned int seed = 1; seed <= 30; ++seed) {
        ZorWBFactory f;
        RandomGraph graph(f, seed, 4);
        for (int i = 0; i < 30; ++i)
            graph.AddNode();
        Roots r = LastNodesOverAll(graph, 5);
        ZorWBCompiledFunction function = Compile(r);
        ASSERT_EQ(function.GetStatus(), Status::Ok);
        std::size_t entries = static_cast<std::size_t>(function.GetNbOfNonZeros());
        std::vector<int> rowOf(entries);
        for (std::size_t i = 0; i < r.roots.size(); ++i) {
            for (int k = function.GetRowStarts()[i]; k < function.GetRowStarts()[i + 1]; ++k)
                rowOf[static_cast<std::size_t>(k)] = static_cast<int>(i);
        }
        for (int round = 0; round < 5; ++round) {
            std::vector<ZorWBRealInterval> box(r.variables.size());
            for (ZorWBRealInterval& b : box) {
                double a = uniform(random);
                double c = uniform(random);
                b = {std::fmin(a, c), std::fmin(a, c) + std::fabs(a - c) * 0.3};
            }
            std::vector<ZorWBRealInterval> images(r.roots.size());
            std::vector<ZorWBRealInterval> enclosures(entries);
            f.GetEnvironment().ClearError();
            ASSERT_EQ(
                function.EvaluateIntervalJacobian(box.data(), images.data(), enclosures.data()),
                Status::Ok);
            // Only the roots whose image is a real interval, computed
            // without error (an undetermined IfThenElse is undefined, and
            // what follows an error is empty).
            bool clean = f.GetEnvironment().GetError() == 0;
            std::vector<bool> bounded(r.roots.size());
            for (std::size_t i = 0; i < r.roots.size(); ++i)
                bounded[i] = clean && function.GetIntervalResult(static_cast<int>(i)).GetType() ==
                                          ZorWBRealIntervalType;
            for (int sample = 0; sample < 10; ++sample) {
                std::vector<double> point(box.size());
                for (std::size_t i = 0; i < box.size(); ++i)
                    point[i] =
                        box[i].low + (box[i].high - box[i].low) * (uniform(random) + 1.0) / 2.0;
                std::vector<double> residuals(r.roots.size());
                std::vector<double> jacobian(entries);
                ASSERT_EQ(
                    function.EvaluateJacobian(point.data(), residuals.data(), jacobian.data()),
                    Status::Ok);
                for (std::size_t i = 0; i < residuals.size(); ++i) {
                    if (!bounded[i]) continue;
                    EXPECT_TRUE(inside(residuals[i], images[i]))
                        << residuals[i] << " outside [" << images[i].low << ", " << images[i].high
                        << "]";
                }
                for (std::size_t k = 0; k < entries; ++k) {
                    if (!std::isfinite(jacobian[k]) || !bounded[static_cast<std::size_t>(rowOf[k])])
                        continue;
                    EXPECT_TRUE(inside(jacobian[k], enclosures[k]))
                        << "seed " << seed << " entry " << k << ": " << jacobian[k] << " outside ["
                        << enclosures[k].low << ", " << enclosures[k].high << "]";
                    ++checked;
                }
            }
        }
    }
    EXPECT_GT(checked, 5000) << checked;
}

// A compiled function reads no node once the graph's structure changed,
// whatever the change, nor once the factory is destroyed; it says so by
// its status and leaves the results alone. (The sanitizers run this test:
// a read of a freed node would be reported.)
TEST(ZorWBCompiledFunction, RefusesToRunOnceTheGraphChangedOrTheFactoryIsGone) {
    using Change = std::function<void(ZorWBFactory&, std::vector<ZorWBExpression*>&,
                                      std::vector<ZorWBVariable*>&)>;
    const std::vector<Change> changes = {
        // A node removed (here one no root uses).
        [](ZorWBFactory& f, std::vector<ZorWBExpression*>& nodes, std::vector<ZorWBVariable*>&) {
            ZorWBExpression* spare = f.CreateSum(nodes[0], f.GetOne());
            f.RemoveExpression(spare);
        },
        // A child of a root removed, with the nodes only it used.
        [](ZorWBFactory& f, std::vector<ZorWBExpression*>& nodes, std::vector<ZorWBVariable*>&) {
            ZorWBExpression* child = nodes[0]->GetChild(1);
            nodes[0]->RemoveChild(1);
            f.RemoveExpression(child);
        },
        // A variable replaced, and the old one removed.
        [](ZorWBFactory& f, std::vector<ZorWBExpression*>& nodes,
           std::vector<ZorWBVariable*>& variables) {
            ZorWBVariable* z = f.CreateVariable();
            nodes[1] = nodes[1]->ReplaceVar(variables[1], z);
            ZorWBExpression* old = variables[1];
            f.RemoveExpression(old);
        },
        // A Step parameter set, buffering turned off.
        [](ZorWBFactory&, std::vector<ZorWBExpression*>& nodes, std::vector<ZorWBVariable*>&) {
            nodes[2]->SetParameter(0, 0.25);
        },
        [](ZorWBFactory&, std::vector<ZorWBExpression*>& nodes, std::vector<ZorWBVariable*>&) {
            nodes[1]->SetAllowBufferEval(false, true, false);
        },
    };
    for (std::size_t c = 0; c <= changes.size(); ++c) {
        auto f = std::make_unique<ZorWBFactory>();
        std::vector<ZorWBVariable*> variables = {f->CreateVariable(), f->CreateVariable()};
        ZorWBVariable* x = variables[0];
        ZorWBVariable* y = variables[1];
        std::vector<ZorWBExpression*> nodes = {
            f->CreateSum(f->CreateProduct(x, y), f->CreateSin(f->CreateProduct(x, x))),
            f->CreatePower(f->CreateDifference(x, y), 2),
            f->CreateStep(f->CreateSum(x, y), -1.0, 1.0, 0.0, 2.0)};
        auto function = std::make_unique<ZorWBCompiledFunction>(
            3, std::vector<const ZorWBExpression*>(nodes.begin(), nodes.end()).data(), 2,
            variables.data());
        const double point[] = {0.5, -0.25};
        const ZorWBRealInterval box[] = {{0.5, 0.75}, {-0.25, 0.0}};
        std::vector<double> residuals(3, 7.0);
        std::vector<double> jacobian(static_cast<std::size_t>(function->GetNbOfNonZeros()), 7.0);
        std::vector<ZorWBRealInterval> images(3, ZorWBRealInterval{7.0, 7.0});
        std::vector<ZorWBRealInterval> enclosures(jacobian.size(), ZorWBRealInterval{7.0, 7.0});
        ASSERT_EQ(function->Evaluate(point, residuals.data()), Status::Ok);
        Status expected = Status::FactoryDestroyed;
        if (c < changes.size()) {
            changes[c](*f, nodes, variables);
            expected = Status::GraphChanged;
        } else {
            f.reset();
        }
        std::fill(residuals.begin(), residuals.end(), 7.0);
        EXPECT_EQ(function->GetStatus(), expected);
        EXPECT_EQ(function->Evaluate(point, residuals.data()), expected);
        EXPECT_EQ(function->EvaluateJacobian(point, residuals.data(), jacobian.data()), expected);
        EXPECT_EQ(function->EvaluateIntervals(box, images.data()), expected);
        EXPECT_EQ(function->EvaluateIntervalJacobian(box, images.data(), enclosures.data()),
                  expected);
        for (double value : residuals)
            EXPECT_EQ(value, 7.0);
        for (double value : jacobian)
            EXPECT_EQ(value, 7.0);
        for (const ZorWBRealInterval& image : images)
            EXPECT_EQ(image.low, 7.0);
        // Either may go first.
        if (c % 2) {
            function.reset();
            f.reset();
        } else {
            f.reset();
            function.reset();
        }
    }
    EXPECT_STREQ(ZorWBCompiledStatusText(Status::GraphChanged),
                 "the graph changed after the function was compiled");
    EXPECT_STREQ(ZorWBCompiledStatusText(Status::FactoryDestroyed),
                 "the factory of the function is destroyed");
}

TEST(ZorWBCompiledFunction, RefusesWhatItCannotCompileOrRun) {
    CountingBlackBox blackBox;  // outlives the factory that calls it
    ZorWBFactory f;
    ZorWBFactory other;
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    ZorWBVariable* foreign = other.CreateVariable();
    const ZorWBExpression* root = f.CreateProduct(x, y);
    const ZorWBExpression* null = nullptr;
    ZorWBVariable* both[] = {x, y};
    ZorWBVariable* twice[] = {x, x};
    ZorWBVariable* withForeign[] = {x, foreign};
    ZorWBVariable* withNull[] = {x, nullptr};
    const ZorWBExpression* foreignRoot = other.CreateSin(foreign);
    EXPECT_EQ(ZorWBCompiledFunction(0, &root, 2, both).GetStatus(), Status::NotCompiled);
    EXPECT_EQ(ZorWBCompiledFunction(1, nullptr, 2, both).GetStatus(), Status::NotCompiled);
    EXPECT_EQ(ZorWBCompiledFunction(1, &null, 2, both).GetStatus(), Status::NotCompiled);
    EXPECT_EQ(ZorWBCompiledFunction(1, &root, 2, twice).GetStatus(), Status::NotCompiled);
    EXPECT_EQ(ZorWBCompiledFunction(1, &root, 2, withForeign).GetStatus(), Status::NotCompiled);
    EXPECT_EQ(ZorWBCompiledFunction(1, &root, 2, withNull).GetStatus(), Status::NotCompiled);
    EXPECT_EQ(ZorWBCompiledFunction(1, &root, 2, nullptr).GetStatus(), Status::NotCompiled);
    EXPECT_EQ(ZorWBCompiledFunction(1, &foreignRoot, 2, both).GetStatus(), Status::NotCompiled);
    ZorWBCompiledFunction none(1, &root, 2, twice);
    double out[2] = {7.0, 7.0};
    EXPECT_EQ(none.Evaluate(out, out), Status::NotCompiled);
    EXPECT_EQ(none.GetNbOfNonZeros(), 0);

    ZorWBCompiledFunction function(1, &root, 2, both);
    ASSERT_EQ(function.GetStatus(), Status::Ok);
    EXPECT_EQ(function.Evaluate(nullptr, out), Status::BadArgument);
    EXPECT_EQ(function.Evaluate(out, nullptr), Status::BadArgument);
    EXPECT_EQ(function.EvaluateJacobian(out, out, nullptr), Status::BadArgument);
    EXPECT_EQ(function.EvaluateIntervals(nullptr, nullptr), Status::BadArgument);
    EXPECT_FALSE(function.BindSlot(2, out));
    EXPECT_FALSE(function.BindSlot(-1, out));
    // Every variable bound: no point is needed.
    double slots[2] = {3.0, 4.0};
    EXPECT_TRUE(function.BindSlot(0, &slots[0]));
    EXPECT_TRUE(function.BindSlot(1, &slots[1]));
    EXPECT_EQ(function.Evaluate(nullptr, out), Status::Ok);
    EXPECT_EQ(out[0], 12.0);
    EXPECT_EQ(function.GetIntervalResult(5).GetType(), ZorWBUndefinedType);

    // A black box: residuals only. An integral: no derivatives.
    ZorWBExpression* arguments[] = {x, y};
    const ZorWBExpression* call = f.DeclareBlackBox(&blackBox, 2, arguments, false);
    ZorWBCompiledFunction calling(1, &call, 2, both);
    const ZorWBRealInterval box[] = {{0.0, 1.0}, {0.0, 1.0}};
    ZorWBRealInterval images[1];
    const double point[] = {1.0, 2.0};
    EXPECT_EQ(calling.Evaluate(point, out), Status::Ok);
    EXPECT_EQ(out[0], 3.0);
    EXPECT_EQ(calling.EvaluateJacobian(point, out, out), Status::NoDerivative);
    EXPECT_EQ(calling.EvaluateIntervals(box, images), Status::NoIntervalForm);
    const ZorWBExpression* integral = f.CreateIntegrateOperator(x, y);
    ZorWBCompiledFunction integrating(1, &integral, 2, both);
    EXPECT_EQ(integrating.EvaluateJacobian(point, out, out), Status::NoDerivative);
    EXPECT_EQ(integrating.EvaluateIntervals(box, images), Status::Ok);
    EXPECT_EQ(integrating.GetIntervalResult(0).GetType(), ZorWBUndefinedType);
}

// The variables listed keep their values, and the graph its buffers and
// evaluation count, whatever the compiled function is asked; but for the
// variables under a black-box call, which hold the last point.
TEST(ZorWBCompiledFunction, CallsLeaveTheVariablesAndBuffersAlone) {
    CountingBlackBox blackBox;  // outlives the factory that calls it
    ZorWBFactory f;
    RandomGraph graph(f, 21, 4);
    for (int i = 0; i < 40; ++i)
        graph.AddNode();
    Roots r = LastNodesOverAll(graph, 6);
    for (const ZorWBExpression* root : r.roots)
        root->GetValue();
    long long evaluations = f.GetNbOfEvaluations();
    ZorWBCompiledFunction function = Compile(r);
    const double point[] = {0.1, 0.2, 0.3, 0.4};
    const ZorWBRealInterval box[] = {{0.1, 0.2}, {0.2, 0.3}, {0.3, 0.4}, {0.4, 0.5}};
    std::vector<double> residuals(r.roots.size());
    std::vector<double> jacobian(static_cast<std::size_t>(function.GetNbOfNonZeros()));
    std::vector<ZorWBRealInterval> images(r.roots.size());
    std::vector<ZorWBRealInterval> enclosures(jacobian.size());
    std::vector<std::string> before;
    for (ZorWBVariable* variable : r.variables)
        before.push_back(variable->GetExprValue().Str().GetString());
    EXPECT_EQ(function.Evaluate(point, residuals.data()), Status::Ok);
    EXPECT_EQ(function.EvaluateJacobian(point, residuals.data(), jacobian.data()), Status::Ok);
    EXPECT_EQ(function.EvaluateIntervalJacobian(box, images.data(), enclosures.data()), Status::Ok);
    for (std::size_t i = 0; i < r.variables.size(); ++i)
        EXPECT_EQ(before[i], r.variables[i]->GetExprValue().Str().GetString());
    for (const ZorWBExpression* root : r.roots)
        EXPECT_TRUE(root->IsBufferValid());
    EXPECT_EQ(f.GetNbOfEvaluations(), evaluations);

    ZorWBExpression* arguments[] = {graph.variables[0], f.CreateSin(graph.variables[1])};
    const ZorWBExpression* call = f.DeclareBlackBox(&blackBox, 2, arguments, false);
    ZorWBCompiledFunction calling(1, &call, 4, graph.variables.data());
    ASSERT_EQ(calling.Evaluate(point, residuals.data()), Status::Ok);
    EXPECT_EQ(residuals[0], 0.1 + std::sin(0.2));
    EXPECT_EQ(graph.variables[0]->GetExprValue().GetAsReal(), 0.1);
    EXPECT_EQ(graph.variables[1]->GetExprValue().GetAsReal(), 0.2);
    EXPECT_EQ(before[2], graph.variables[2]->GetExprValue().Str().GetString());
}
