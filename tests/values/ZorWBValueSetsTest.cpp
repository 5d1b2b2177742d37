#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "ValueTestSupport.h"
#include "values/ZorWBValueFunctions.h"

using namespace valuetest;

namespace {

ZorWBValue List(std::initializer_list<int> elements) {
    std::vector<int> values(elements);
    ZorWBValue list;
    list.Set(static_cast<int>(values.size()), values.data());
    return list;
}

ZorWBIntegerInterval IntegersOf(const ZorWBValue& value) {
    EXPECT_EQ(value.GetType(), ZorWBIntegerIntervalType);
    return value.GetAsIntegerInterval();
}

ZorWBRealInterval RealsOf(const ZorWBValue& value) {
    EXPECT_EQ(value.GetType(), ZorWBRealIntervalType);
    return value.GetAsRealInterval();
}

}  // namespace

// The value keeps its number type: integers intersected with reals keep the
// integers inside; a scalar that is not inside becomes empty.
TEST(ZorWBValueSets, IntersectKeepsTheNumberTypeOfTheValue) {
    ZorWBEnvironment environment;
    ZorWBValue integers(ZorWBIntegerInterval{0, 10});
    EXPECT_TRUE(ZorWBIntersect(environment, integers, ZorWBValue(ZorWBRealInterval{1.5, 4.2})));
    EXPECT_EQ(IntegersOf(integers).low, 2);
    EXPECT_EQ(IntegersOf(integers).high, 4);
    ZorWBValue one(1);
    EXPECT_TRUE(ZorWBIntersect(environment, one, ZorWBValue(ZorWBRealInterval{0.5, 2.0})));
    EXPECT_EQ(one.GetAsInteger(), 1);
    EXPECT_FALSE(ZorWBIntersect(environment, one, ZorWBValue(2)));
    EXPECT_TRUE(ZorWBIsEmpty(environment, one));
    ZorWBValue real(1.0);
    EXPECT_TRUE(ZorWBIntersect(environment, real, ZorWBValue(1.0 + 1e-15)));
    EXPECT_EQ(real.GetAsReal(), 1.0) << "the first operand's value is kept";
    EXPECT_FALSE(ZorWBIntersect(environment, real, ZorWBValue(1.0 + 1e-15), 1e-16));
    ZorWBValue reals(ZorWBRealInterval{0.0, 2.0});
    EXPECT_TRUE(ZorWBIntersect(environment, reals, ZorWBValue(ZorWBIntegerInterval{1, 5})));
    EXPECT_EQ(RealsOf(reals).low, 1.0);
    EXPECT_EQ(RealsOf(reals).high, 2.0);
    ZorWBValue listed = List({1, 4, 7});
    EXPECT_TRUE(ZorWBIntersect(environment, listed, ZorWBValue(ZorWBRealInterval{3.5, 9.0})));
    EXPECT_TRUE(HoldsExactly(listed, {4, 7}));
    ZorWBValue wide(ZorWBIntegerInterval{0, 100});
    EXPECT_TRUE(ZorWBIntersect(environment, wide, List({-3, 5, 50, 200})));
    EXPECT_TRUE(HoldsExactly(wide, {5, 50}));
    ZorWBValue unknown(ZorWBUnknown);
    EXPECT_TRUE(ZorWBIntersect(environment, unknown, ZorWBValue(ZorWBIntegerInterval{1, 9})));
    EXPECT_EQ(unknown.GetAsBoolean(), ZorWBTrue);
    EXPECT_FALSE(ZorWBIntersect(environment, unknown, ZorWBValue(ZorWBFalse)));
    EXPECT_EQ(unknown.GetAsBoolean(), ZorWBEmpty);
    EXPECT_EQ(environment.GetError(), 0u);
    ZorWBValue mismatch(2.5);
    EXPECT_FALSE(ZorWBIntersect(environment, mismatch, ZorWBValue(ZorWBTrue)));
    EXPECT_EQ(environment.GetError(), 2u);
    EXPECT_EQ(mismatch.GetAsReal(), 2.5);
}

TEST(ZorWBValueSets, UniteTakesTheCommonKind) {
    ZorWBEnvironment environment;
    ZorWBValue integer(3);
    ZorWBUnite(environment, integer, ZorWBValue(3));
    EXPECT_EQ(integer.GetType(), ZorWBIntegerType);
    ZorWBUnite(environment, integer, ZorWBValue(7));
    EXPECT_EQ(IntegersOf(integer).low, 3);
    EXPECT_EQ(IntegersOf(integer).high, 7);
    ZorWBUnite(environment, integer, ZorWBValue(7.5));
    EXPECT_EQ(RealsOf(integer).high, 7.5);
    ZorWBValue listed = List({1, 5});
    ZorWBUnite(environment, listed, ZorWBValue(3));
    EXPECT_TRUE(HoldsExactly(listed, {1, 3, 5}));
    environment.SetMaxEnumSize(3);
    ZorWBUnite(environment, listed, ZorWBValue(60));
    EXPECT_EQ(listed.GetIntegerEnum().GetRep(), ZorWBEnumInterval);
    EXPECT_EQ(listed.GetIntegerEnum().GetAsIntegerInterval().high, 60);
    ZorWBValue state(ZorWBFalse);
    ZorWBUnite(environment, state, ZorWBValue(ZorWBTrue));
    EXPECT_EQ(state.GetAsBoolean(), ZorWBUnknown);
    ZorWBValue empty(ZorWBReal_Nil);
    ZorWBUnite(environment, empty, ZorWBValue(ZorWBRealInterval{1, 2}));
    EXPECT_EQ(RealsOf(empty).low, 1.0);
    // A NaN holds no number: the union holds the other operand.
    ZorWBValue notANumber(std::nan(""));
    ZorWBUnite(environment, notANumber, ZorWBValue(7552.0));
    EXPECT_EQ(RealsOf(notANumber).low, 7552.0);
    EXPECT_EQ(RealsOf(notANumber).high, 7552.0);
    EXPECT_EQ(environment.GetError(), 0u);
}

// A difference that leaves a hole inside keeps the value (its hull).
TEST(ZorWBValueSets, ExcludeRemovesWhatTheKindCanLose) {
    ZorWBEnvironment environment;
    ZorWBValue integers(ZorWBIntegerInterval{0, 10});
    ZorWBExclude(environment, integers, ZorWBValue(ZorWBIntegerInterval{-5, 3}));
    EXPECT_EQ(IntegersOf(integers).low, 4);
    ZorWBExclude(environment, integers, ZorWBValue(ZorWBRealInterval{8.5, 20}));
    EXPECT_EQ(IntegersOf(integers).high, 8) << "8 is not covered by [8.5, 20]";
    ZorWBExclude(environment, integers, ZorWBValue(6));
    EXPECT_EQ(IntegersOf(integers).low, 4);
    EXPECT_EQ(IntegersOf(integers).high, 8);
    ZorWBValue reals(ZorWBRealInterval{0.0, 1.0});
    ZorWBExclude(environment, reals, ZorWBValue(ZorWBRealInterval{0.5, 3.0}));
    EXPECT_EQ(RealsOf(reals).high, 0.5);
    ZorWBExclude(environment, reals, ZorWBValue(ZorWBRealInterval{-1.0, 2.0}));
    EXPECT_TRUE(ZorWBIsEmpty(environment, reals));
    ZorWBValue listed = List({1, 2, 3});
    ZorWBExclude(environment, listed, ZorWBValue(ZorWBRealInterval{1.5, 2.5}));
    EXPECT_TRUE(HoldsExactly(listed, {1, 3}));
    ZorWBIntegerEnum wide(ZorWBEnumInterval);
    wide.SetAsIntegerInterval({0, 100});
    ZorWBValue trimmed(wide);
    ZorWBExclude(environment, trimmed, List({0, 1, 50, 100}));
    EXPECT_EQ(trimmed.GetIntegerEnum().GetAsIntegerInterval().low, 2);
    EXPECT_EQ(trimmed.GetIntegerEnum().GetAsIntegerInterval().high, 99);
    ZorWBValue unknown(ZorWBUnknown);
    ZorWBExclude(environment, unknown, ZorWBValue(1));
    EXPECT_EQ(unknown.GetAsBoolean(), ZorWBFalse);
    ZorWBValue scalar(2.0);
    ZorWBExclude(environment, scalar, ZorWBValue(2));
    EXPECT_TRUE(ZorWBIsEmpty(environment, scalar));
    EXPECT_EQ(environment.GetError(), 0u);
}

TEST(ZorWBValueSets, TestsAndTheirLevelRules) {
    ZorWBEnvironment below(LevelBelowQuiet);
    ZorWBEnvironment at(LevelQuiet);
    EXPECT_FALSE(ZorWBContains(below, ZorWBValue(1.5), ZorWBValue(ZorWBTrue)));
    EXPECT_EQ(below.GetError(), 2u);
    EXPECT_FALSE(ZorWBContains(at, ZorWBValue(1.5), ZorWBValue(ZorWBTrue)));
    EXPECT_FALSE(ZorWBIsEqual(at, ZorWBValue(1.5), ZorWBValue(ZorWBTrue)));
    EXPECT_FALSE(ZorWBIsEmpty(at, ZorWBValue()));
    EXPECT_EQ(at.GetError(), 0u);
    below.ClearError();
    EXPECT_FALSE(ZorWBIsEqual(below, ZorWBValue(), ZorWBValue(1)));
    EXPECT_EQ(below.GetError(), 2u);
    below.ClearError();
    EXPECT_FALSE(ZorWBIsEmpty(below, ZorWBValue()));
    EXPECT_EQ(below.GetError(), 2u);

    ZorWBEnvironment environment;
    EXPECT_TRUE(ZorWBContains(environment, ZorWBValue(ZorWBRealInterval{0, 2}), ZorWBValue(1)));
    EXPECT_TRUE(ZorWBContains(environment, List({1, 5}), ZorWBValue(3))) << "by the hulls";
    EXPECT_TRUE(ZorWBContains(environment, ZorWBValue(ZorWBUnknown), ZorWBValue(ZorWBTrue)));
    EXPECT_FALSE(ZorWBContains(environment, ZorWBValue(ZorWBTrue), ZorWBValue(ZorWBUnknown)));
    EXPECT_TRUE(ZorWBIsEqual(environment, List({1, 2, 3}), ZorWBValue(ZorWBIntegerInterval{1, 3})));
    EXPECT_FALSE(ZorWBIsEqual(environment, List({1, 3}), ZorWBValue(ZorWBIntegerInterval{1, 3})));
    EXPECT_TRUE(ZorWBIsEqual(environment, ZorWBValue(1.0), ZorWBValue(1.0 + 1e-15)));
    EXPECT_FALSE(ZorWBIsEqual(environment, ZorWBValue(1.0), ZorWBValue(1.0 + 1e-15), 1e-16));
    EXPECT_TRUE(ZorWBIsExact(environment, List({4})));
    EXPECT_FALSE(ZorWBIsExact(environment, ZorWBValue(ZorWBUnknown)));
    EXPECT_TRUE(ZorWBIsExact(environment, ZorWBValue(ZorWBRealInterval{1, 1 + 1e-15})));
    EXPECT_FALSE(ZorWBIsExact(environment, ZorWBValue(ZorWBRealInterval{1, 1 + 1e-15}), 1e-16));
    EXPECT_TRUE(ZorWBIsEmpty(environment, ZorWBValue(ZorWBRealInterval{1, 1 - 1e-13})));
    EXPECT_FALSE(ZorWBIsEmpty(environment, ZorWBValue(ZorWBRealInterval{1, 1 - 1e-15})));
    EXPECT_TRUE(ZorWBIsEmpty(environment, ZorWBValue(ZorWBEmpty)));
    EXPECT_TRUE(ZorWBIsConsistent(environment, ZorWBValue(ZorWBUnknown)));
    EXPECT_TRUE(ZorWBIsIndefinite(ZorWBValue(ZorWBInteger_Any)));
    EXPECT_TRUE(ZorWBIsIndefinite(ZorWBValue(ZorWBRealEnum(ZorWBEnumAny))));
    EXPECT_TRUE(ZorWBIsIndefinite(ZorWBValue(ZorWBUnknown)));
    EXPECT_TRUE(ZorWBIsIndefinite(ZorWBValue()));
    EXPECT_FALSE(ZorWBIsIndefinite(ZorWBValue(ZorWBRealInterval{-1e30, 1e30})));
    EXPECT_FALSE(ZorWBIsIndefinite(ZorWBValue(5)));
    EXPECT_EQ(environment.GetError(), 0u);
}

// The members forward with the environment's tolerance and record the first
// environment they see.
TEST(ZorWBValueSets, MembersForwardAndRecordTheFirstEnvironment) {
    ZorWBEnvironment first;
    ZorWBEnvironment second;
    second.SetTolerance(1e-3);
    ZorWBValue value(1.0);
    EXPECT_TRUE(value.IsExact(first));
    value.IsEqualTo(second, ZorWBValue(1.0005));
    EXPECT_EQ(value.GetEnvironment(), &first) << "the first environment stays";
    EXPECT_TRUE(value.IsEqualTo(second, ZorWBValue(1.0005))) << "the given tolerance applies";
    EXPECT_FALSE(value.IsEqualTo(first, ZorWBValue(1.0005)));
    EXPECT_FALSE(value.IsEmpty(second));
    EXPECT_FALSE(value.IsIndefinite(second));
    ZorWBValue interval(ZorWBRealInterval{0, 4});
    EXPECT_TRUE(interval.Intersect(second, ZorWBValue(ZorWBRealInterval{1, 9})));
    EXPECT_EQ(interval.GetEnvironment(), &second);
    interval.Unite(first, ZorWBValue(-1.0));
    interval.Exclude(first, ZorWBValue(ZorWBRealInterval{3, 5}));
    EXPECT_EQ(RealsOf(interval).low, -1.0);
    EXPECT_EQ(RealsOf(interval).high, 3.0);
    EXPECT_EQ(interval.GetEnvironment(), &second);
    EXPECT_TRUE(interval.IsConsistent(first));
}

// Generated operands: the intersection holds every point of both, the union
// every point of either, and the difference every point of the value that
// the other does not hold.
TEST(ZorWBValueSets, SetOperationsHoldTheirPoints) {
    std::mt19937 rng(4242);
    for (int trial = 0; trial < 20000; ++trial) {
        ZorWBValueType firstKind = AllKinds[RandomInt(rng, 0, 6)];
        ZorWBValueType secondKind = AllKinds[RandomInt(rng, 0, 6)];
        ZorWBEnvironment environment;
        ZorWBValue a = RandomOperand(rng, firstKind);
        ZorWBValue b = RandomOperand(rng, secondKind);
        ZorWBValue intersection(a);
        ZorWBValue united(a);
        ZorWBValue rest(a);
        bool consistent = ZorWBIntersect(environment, intersection, b);
        ZorWBUnite(environment, united, b);
        ZorWBExclude(environment, rest, b);
        if (environment.GetError() != 0u) {
            ASSERT_EQ(environment.GetError(), 2u);
            continue;
        }
        std::vector<double> second = PointsOf(rng, b);
        ASSERT_EQ(consistent, !ZorWBIsEmpty(environment, intersection));
        for (double y : second)
            ASSERT_TRUE(Holds(united, y)) << Describe(a) << " | " << Describe(b) << " at " << y;
        for (double x : PointsOf(rng, a)) {
            ASSERT_TRUE(Holds(united, x)) << Describe(a) << " | " << Describe(b) << " at " << x;
            if (CertainlyIn(b, x)) {
                ASSERT_TRUE(Holds(intersection, x))
                    << Describe(a) << " & " << Describe(b) << " at " << x;
            }
            if (CertainlyOut(b, x)) {
                ASSERT_TRUE(Holds(rest, x)) << Describe(a) << " - " << Describe(b) << " at " << x;
            }
            if (CertainlyIn(b, x) && IsList(rest)) {
                ASSERT_FALSE(CertainlyIn(rest, x))
                    << Describe(a) << " - " << Describe(b) << " keeps " << x;
            }
        }
    }
}
