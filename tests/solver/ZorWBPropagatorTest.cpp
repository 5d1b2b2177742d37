// Propagation over a factory's equations: sound on generated systems around
// a planted point, the compiled and the value paths against each other, and
// the kinds of domains (integers, enumerations, booleans, if-then-else).

#include <gtest/gtest.h>

#include <cmath>

#include "PlantedSystem.h"
#include "SolverTestSupport.h"
#include "solver/ZorWBConstraintSystem.h"
#include "solver/ZorWBPropagator.h"
#include "values/ZorWBIntervalFunctions.h"

namespace {

ZorWBRealInterval IntervalOf(const ZorWBVariable* variable) {
    return variable->GetExprValue().GetAsRealInterval();
}

bool Holds(const ZorWBRealInterval& interval, double x) {
    return interval.low <= x && x <= interval.high;
}

PlantedSystemOptions RandomOptions(PlantedSystem& random, bool exact) {
    PlantedSystemOptions options;
    options.variables = 1 + random.Index(4);
    options.equalities = random.Index(options.variables + 1);
    options.inequalities = random.Index(3);
    options.exact = exact;
    options.trigonometric = random.Index(3) != 0;
    options.valueOperators = random.Index(3) == 0;
    options.terms = 1 + random.Index(4);
    return options;
}

}  // namespace

TEST(Propagator, NeverRemovesAPointThatSatisfiesTheConstraints) {
    for (unsigned int seed = 0; seed < 400; ++seed) {
        ZorWBFactory scratch;
        PlantedSystem dice(scratch, seed, PlantedSystemOptions());
        ZorWBFactory factory;
        PlantedSystem system(factory, seed, RandomOptions(dice, seed % 4 == 0));
        system.SetBoxAroundPoint(dice.Uniform(0.01, 4.0));
        ZorWBPropagator propagator(factory);
        ZorWBPropagationResult result = propagator.Propagate();
        ASSERT_TRUE(result.consistent) << "seed " << seed << ", equation " << result.equationId;
        for (std::size_t i = 0; i < system.variables.size(); ++i) {
            ZorWBRealInterval domain = IntervalOf(system.variables[i]);
            ASSERT_TRUE(Holds(domain, system.point[i]))
                << "seed " << seed << ": x" << i << " = " << system.point[i] << " left ["
                << domain.low << ", " << domain.high << "]";
        }
    }
}

TEST(Propagator, CompiledAndValuePathsKeepThePointAndNarrowAlike) {
    int narrowedByBoth = 0;
    for (unsigned int seed = 0; seed < 300; ++seed) {
        ZorWBFactory factory;
        PlantedSystemOptions options;
        options.variables = 3;
        options.equalities = 1;
        options.inequalities = seed % 2;
        options.terms = 3;
        PlantedSystem system(factory, seed, options);
        system.SetBoxAroundPoint(1.0 + seed % 3);
        for (ZorWBEquation* equation : system.equations) {
            ZorWBConstraintSystem compiled(factory, {equation});
            ASSERT_TRUE(compiled.GetConstraint(0).IsOnTape());
            ZorWBDomainBox box;
            std::vector<ZorWBValue> domains;
            for (ZorWBVariable* variable : system.variables) {
                box.intervals.push_back(ZorWBFromRealInterval(IntervalOf(variable)));
                domains.push_back(variable->GetExprValue());
            }
            // As many revisions as the value path makes passes at most.
            ZorWBPropagationSettings once;
            once.ratio = 1.0;  // one revision: nothing is revised twice
            ZorWBPropagationReport report;
            for (int pass = 0; pass < ZorWBValueConstraint::MaxPasses; ++pass)
                ASSERT_TRUE(compiled.Propagate(box, once, report));
            ZorWBValueConstraint values(equation->GetRoot());
            ASSERT_TRUE(values.Revise(factory.GetEnvironment(), equation->GetType(),
                                      factory.GetEnvironment().GetTolerance(), domains));
            bool narrowed = false;
            for (std::size_t i = 0; i < system.variables.size(); ++i) {
                const ZorWBRoundedInterval& tape = box.intervals[i];
                ZorWBRealInterval value = domains[i].GetAsRealInterval();
                ASSERT_TRUE(tape.Contains(system.point[i])) << "seed " << seed;
                ASSERT_TRUE(Holds(value, system.point[i])) << "seed " << seed;
                // The tape's projections are at least as sharp, up to the
                // rounding of the value functions.
                const double slack = 1e-9 * (1.0 + std::fabs(value.low) + std::fabs(value.high));
                EXPECT_GE(tape.low, value.low - slack) << "seed " << seed << ", x" << i;
                EXPECT_LE(tape.high, value.high + slack) << "seed " << seed << ", x" << i;
                ZorWBRealInterval before = IntervalOf(system.variables[i]);
                narrowed = narrowed || value.low > before.low || value.high < before.high;
            }
            narrowedByBoth += narrowed;
        }
    }
    EXPECT_GT(narrowedByBoth, 30);  // the comparison is not vacuous
}

TEST(Propagator, NarrowsALinearEquationToItsProjections) {
    ZorWBFactory f;
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    f.AddEquation(f.CreateSum(x, y), ZorWBEqualZero, f.GetThree());  // x + y = 3
    SetInterval(x, 0.0, 10.0);
    SetInterval(y, 2.0, 5.0);
    ZorWBPropagator propagator(f);
    ZorWBPropagationResult result = propagator.Propagate();
    ASSERT_TRUE(result.consistent);
    EXPECT_EQ(result.nbOfNarrowedVariables, 2);
    ZorWBRealInterval xs = IntervalOf(x), ys = IntervalOf(y);
    EXPECT_EQ(xs.low, 0.0);  // x in [0, 10] ∩ (3 - [2, 5])
    EXPECT_NEAR(xs.high, 1.0, 1e-13);
    EXPECT_GE(xs.high, 1.0);
    EXPECT_EQ(ys.low, 2.0);  // y in [2, 5] ∩ (3 - [0, 1])
    EXPECT_NEAR(ys.high, 3.0, 1e-13);
    // Undefined variables range over the whole line.
    ZorWBFactory g;
    ZorWBVariable* z = g.CreateVariable();
    g.AddEquation(g.CreatePower(z, 2), ZorWBLessEqualZero, g.CreateIntegerConstant(4));
    ASSERT_TRUE(ZorWBPropagator(g).Propagate().consistent);
    EXPECT_NEAR(IntervalOf(z).low, -2.0, 1e-13);
    EXPECT_NEAR(IntervalOf(z).high, 2.0, 1e-13);
}

TEST(Propagator, ProvesAnInconsistentSystemAndNamesTheEquation) {
    ZorWBFactory f;
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    f.AddEquation(f.CreateSum(x, y), ZorWBEqualZero, f.GetOne());
    ZorWBEquation* circle = f.AddEquation(f.CreateSum(f.CreatePower(x, 2), f.CreatePower(y, 2)),
                                          ZorWBEqualZero, f.GetMinusOne());
    ZorWBPropagator propagator(f);
    ZorWBPropagationResult result = propagator.Propagate();
    EXPECT_FALSE(result.consistent);
    EXPECT_EQ(result.equationId, circle->GetId());
    // Undefined variables stay undefined: the values are left as they were.
    EXPECT_EQ(x->GetExprValue().GetType(), ZorWBUndefinedType);

    // x + y = 1 and x - y = 3 within [0, 1]^2: the first projection empties x.
    ZorWBFactory g;
    ZorWBVariable* a = g.CreateVariable();
    ZorWBVariable* b = g.CreateVariable();
    g.AddEquation(g.CreateSum(a, b), ZorWBEqualZero, g.GetOne());
    ZorWBEquation* second = g.AddEquation(g.CreateSub(a, b), ZorWBEqualZero, g.GetThree());
    SetInterval(a, 0.0, 1.0);
    SetInterval(b, 0.0, 1.0);
    result = ZorWBPropagator(g).Propagate();
    EXPECT_FALSE(result.consistent);
    EXPECT_EQ(result.equationId, second->GetId());
    EXPECT_EQ(IntervalOf(a).high, 1.0);
}

TEST(Propagator, NarrowingOneVariableRevisitsOnlyTheEquationsAboveIt) {
    ZorWBFactory f;
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    ZorWBVariable* z = f.CreateVariable();
    ZorWBVariable* w = f.CreateVariable();
    f.AddEquation(f.CreateSum(x, y), ZorWBEqualZero, f.GetThree());
    f.AddEquation(f.CreateProduct(z, w), ZorWBEqualZero, f.GetTwo());
    f.AddEquation(f.CreateSub(w, z), ZorWBLessEqualZero, nullptr);
    for (ZorWBVariable* v : {x, y, z, w})
        SetInterval(v, -10.0, 10.0);
    ZorWBPropagator propagator(f);
    ZorWBPropagationResult result = propagator.Narrow(x, ZorWBValue(ZorWBRealInterval{0.0, 1.0}));
    ASSERT_TRUE(result.consistent);
    EXPECT_EQ(result.nbOfRevisions, 1);
    EXPECT_NEAR(IntervalOf(y).low, 2.0, 1e-13);
    EXPECT_NEAR(IntervalOf(y).high, 3.0, 1e-13);
    EXPECT_EQ(IntervalOf(z).low, -10.0);  // untouched: no equation above x reads z
    // A narrowing that empties the variable leaves it as it was.
    result = propagator.Narrow(x, ZorWBValue(ZorWBRealInterval{5.0, 6.0}));
    EXPECT_FALSE(result.consistent);
    EXPECT_EQ(IntervalOf(x).high, 1.0);
    EXPECT_EQ(propagator.Narrow(nullptr, ZorWBValue(1.0)).nbOfRevisions, 0);
}

TEST(Propagator, IntegerDomainsKeepIntegerBoundsAndEnumerationsDropElements) {
    ZorWBFactory f;
    ZorWBVariable* n = f.CreateVariable();
    ZorWBVariable* x = f.CreateVariable();
    f.AddEquation(f.CreateProduct(f.GetTwo(), n), ZorWBEqualZero, x);  // 2 n = x
    n->SetExprValue(ZorWBValue(ZorWBIntegerInterval{0, 10}));
    SetInterval(x, 3.5, 7.2);
    ASSERT_TRUE(ZorWBPropagator(f).Propagate().consistent);
    ASSERT_EQ(n->GetExprValue().GetType(), ZorWBIntegerIntervalType);
    EXPECT_EQ(n->GetExprValue().GetAsIntegerInterval().low, 2);
    EXPECT_EQ(n->GetExprValue().GetAsIntegerInterval().high, 3);
    EXPECT_NEAR(IntervalOf(x).low, 4.0, 1e-13);
    EXPECT_NEAR(IntervalOf(x).high, 6.0, 1e-13);

    ZorWBFactory g;
    ZorWBVariable* k = g.CreateVariable();
    ZorWBVariable* y = g.CreateVariable();
    g.AddEquation(g.CreatePower(k, 2), ZorWBEqualZero, y);  // k^2 = y
    const int elements[] = {1, 2, 3, 5, 8};
    ZorWBValue listed;
    listed.Set(5, elements);
    k->SetExprValue(listed);
    SetInterval(y, 3.0, 30.0);
    ASSERT_TRUE(ZorWBPropagator(g).Propagate().consistent);
    const ZorWBValue& kept = k->GetExprValue();
    ASSERT_EQ(kept.GetType(), ZorWBIntegerEnumType);
    ASSERT_EQ(kept.GetIntegerEnum().GetSize(), 3);
    EXPECT_EQ(kept.GetIntegerEnum().Get(0), 2);
    EXPECT_EQ(kept.GetIntegerEnum().Get(2), 5);
    EXPECT_NEAR(IntervalOf(y).low, 4.0, 1e-12);
    EXPECT_NEAR(IntervalOf(y).high, 25.0, 1e-12);
}

TEST(Propagator, IfThenElseAndBooleansFollowTheConditionsState) {
    // c = if (t <= 3) then 5 else 8.
    ZorWBFactory f;
    ZorWBVariable* t = f.CreateVariable();
    ZorWBVariable* c = f.CreateVariable();
    ZorWBExpression* choice = f.CreateIfThenElse(
        f.CreateLessEqual(t, f.GetThree()), f.CreateIntegerConstant(5), f.CreateIntegerConstant(8));
    f.AddEquation(c, ZorWBEqualZero, choice);
    SetInterval(t, 0.0, 2.0);
    SetInterval(c, 0.0, 100.0);
    ZorWBPropagator first(f);
    ASSERT_TRUE(first.Propagate().consistent);
    EXPECT_NEAR(IntervalOf(c).low, 5.0, 1e-9);
    EXPECT_NEAR(IntervalOf(c).high, 5.0, 1e-9);
    // The value of c decides the condition, which narrows t.
    SetInterval(t, 0.0, 10.0);
    SetInterval(c, 7.0, 9.0);
    ASSERT_TRUE(first.Propagate().consistent);
    EXPECT_NEAR(IntervalOf(c).low, 8.0, 1e-9);
    EXPECT_GE(IntervalOf(t).low, 3.0 - 1e-9);
    EXPECT_EQ(IntervalOf(t).high, 10.0);
    SetInterval(c, 6.0, 7.0);  // neither branch
    EXPECT_FALSE(first.Propagate().consistent);

    // if (b and d) then 10 else 0 = 10 forces b and d true; if b then x else
    // y = 3 with x out of reach forces b false.
    ZorWBFactory g;
    ZorWBVariable* b = g.CreateVariable();
    ZorWBVariable* d = g.CreateVariable();
    g.AddEquation(g.CreateIfThenElse(g.CreateAnd(b, d), g.CreateIntegerConstant(10), g.GetZero()),
                  ZorWBEqualZero, g.CreateIntegerConstant(10));
    b->SetExprValue(ZorWBValue(ZorWBUnknown));
    d->SetExprValue(ZorWBValue(ZorWBUnknown));
    ASSERT_TRUE(ZorWBPropagator(g).Propagate().consistent);
    EXPECT_EQ(b->GetExprValue().GetAsBoolean(), ZorWBTrue);
    EXPECT_EQ(d->GetExprValue().GetAsBoolean(), ZorWBTrue);

    ZorWBFactory h;
    ZorWBVariable* e = h.CreateVariable();
    ZorWBVariable* u = h.CreateVariable();
    ZorWBVariable* v = h.CreateVariable();
    h.AddEquation(h.CreateIfThenElse(e, u, v), ZorWBEqualZero, h.GetThree());
    e->SetExprValue(ZorWBValue(ZorWBUnknown));
    SetInterval(u, 0.0, 1.0);
    SetInterval(v, 2.0, 4.0);
    ASSERT_TRUE(ZorWBPropagator(h).Propagate().consistent);
    EXPECT_EQ(e->GetExprValue().GetAsBoolean(), ZorWBFalse);
    EXPECT_NEAR(IntervalOf(v).low, 3.0, 1e-9);
    EXPECT_NEAR(IntervalOf(v).high, 3.0, 1e-9);
    EXPECT_EQ(IntervalOf(u).low, 0.0);
}
