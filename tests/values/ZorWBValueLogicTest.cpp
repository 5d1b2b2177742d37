#include <gtest/gtest.h>

#include <random>

#include "ValueTestSupport.h"
#include "values/ZorWBValueFunctions.h"

using namespace valuetest;

namespace {

const ZorWBBoolean States[] = {ZorWBFalse, ZorWBTrue, ZorWBUnknown, ZorWBEmpty};

ZorWBBoolean StateOf(const ZorWBValue& value) {
    EXPECT_EQ(value.GetType(), ZorWBBooleanType);
    return value.GetAsBoolean();
}

ZorWBValue List(std::initializer_list<int> elements) {
    std::vector<int> values(elements);
    ZorWBValue list;
    list.Set(static_cast<int>(values.size()), values.data());
    return list;
}

ZorWBValue RealList(std::initializer_list<double> elements) {
    std::vector<double> values(elements);
    ZorWBValue list;
    list.Set(static_cast<int>(values.size()), values.data());
    return list;
}

}  // namespace

TEST(ZorWBValueLogic, FourStateTablesInFull) {
    const int andTable[4][4] = {{0, 0, 0, 3}, {0, 1, 2, 3}, {0, 2, 2, 3}, {3, 3, 3, 3}};
    const int orTable[4][4] = {{0, 1, 2, 3}, {1, 1, 1, 3}, {2, 1, 2, 3}, {3, 3, 3, 3}};
    const int implicationTable[4][4] = {{1, 1, 1, 3}, {0, 1, 2, 3}, {2, 1, 2, 3}, {3, 3, 3, 3}};
    const int notTable[4] = {1, 0, 2, 3};
    for (ZorWBBoolean a : States) {
        EXPECT_EQ(ZorWBNot(a), notTable[a]);
        EXPECT_EQ(StateOf(ZorWBNot(ZorWBValue(a))), notTable[a]);
        for (ZorWBBoolean b : States) {
            EXPECT_EQ(ZorWBAnd(a, b), andTable[a][b]) << a << " and " << b;
            EXPECT_EQ(ZorWBOr(a, b), orTable[a][b]) << a << " or " << b;
            EXPECT_EQ(ZorWBImplication(a, b), implicationTable[a][b]) << a << " => " << b;
            EXPECT_EQ(StateOf(ZorWBAnd(ZorWBValue(a), ZorWBValue(b))), andTable[a][b]);
            EXPECT_EQ(StateOf(ZorWBOr(ZorWBValue(a), ZorWBValue(b))), orTable[a][b]);
            EXPECT_EQ(StateOf(ZorWBImplication(ZorWBValue(a), ZorWBValue(b))),
                      implicationTable[a][b]);
        }
    }
    // A state outside the four reads as empty.
    EXPECT_EQ(ZorWBAnd(static_cast<ZorWBBoolean>(9), ZorWBFalse), ZorWBEmpty);
    EXPECT_EQ(ZorWBNot(static_cast<ZorWBBoolean>(-1)), ZorWBEmpty);
}

TEST(ZorWBValueLogic, OperandsMustReadAsBooleans) {
    ZorWBValue emptyInterval(ZorWBIntegerInterval{3, 2});
    EXPECT_EQ(StateOf(ZorWBAnd(ZorWBValue(ZorWBFalse), emptyInterval)), ZorWBEmpty);
    EXPECT_EQ(StateOf(ZorWBOr(ZorWBValue(1.0), ZorWBValue(ZorWBTrue))), ZorWBEmpty);
    EXPECT_EQ(StateOf(ZorWBOr(ZorWBValue(ZorWBTrue), ZorWBValue(ZorWBRealInterval{0, 1}))),
              ZorWBEmpty);
    EXPECT_EQ(StateOf(ZorWBImplication(ZorWBValue(ZorWBFalse), ZorWBValue(ZorWBUnknown))),
              ZorWBTrue);
    EXPECT_EQ(StateOf(ZorWBAnd(ZorWBValue(), ZorWBValue(ZorWBTrue))), ZorWBEmpty);
    EXPECT_EQ(StateOf(ZorWBNot(ZorWBValue(ZorWBCreateFraction(1, 2, 0, 0)))), ZorWBEmpty);
    EXPECT_EQ(StateOf(ZorWBAnd(ZorWBValue(5), ZorWBValue(ZorWBIntegerInterval{-1, 1}))),
              ZorWBUnknown);
    EXPECT_EQ(StateOf(ZorWBOr(List({0}), ZorWBValue(0))), ZorWBFalse);
    EXPECT_EQ(StateOf(ZorWBNot(List({2, 7}))), ZorWBFalse);
}

TEST(ZorWBValueLogic, ComparisonsByCommonKind) {
    ZorWBEnvironment environment;
    auto equal = [&](const ZorWBValue& a, const ZorWBValue& b) {
        return StateOf(ZorWBEqual(environment, a, b));
    };
    auto lessEqual = [&](const ZorWBValue& a, const ZorWBValue& b) {
        return StateOf(ZorWBLessEqual(environment, a, b));
    };
    EXPECT_EQ(equal(ZorWBValue(3), ZorWBValue(3)), ZorWBTrue);
    EXPECT_EQ(equal(ZorWBValue(3), ZorWBValue(3.0)), ZorWBTrue);
    EXPECT_EQ(equal(ZorWBValue(1.0), ZorWBValue(1.0 + 5e-15)), ZorWBTrue) << "within tolerance";
    EXPECT_EQ(equal(ZorWBValue(1.0), ZorWBValue(1.0 + 5e-14)), ZorWBFalse);
    EXPECT_EQ(lessEqual(ZorWBValue(1.0 + 5e-15), ZorWBValue(1.0)), ZorWBTrue);
    EXPECT_EQ(lessEqual(ZorWBValue(2), ZorWBValue(1)), ZorWBFalse);
    EXPECT_EQ(equal(ZorWBValue(ZorWBIntegerInterval{1, 3}), ZorWBValue(ZorWBIntegerInterval{2, 4})),
              ZorWBUnknown);
    EXPECT_EQ(equal(ZorWBValue(ZorWBRealInterval{1, 2}), ZorWBValue(4)), ZorWBFalse);
    EXPECT_EQ(lessEqual(ZorWBValue(ZorWBRealInterval{1, 2}), ZorWBValue(2)), ZorWBTrue);
    EXPECT_EQ(lessEqual(ZorWBValue(ZorWBRealInterval{1, 3}), ZorWBValue(2)), ZorWBUnknown);
    EXPECT_EQ(StateOf(ZorWBNotEqual(environment, ZorWBValue(1), ZorWBValue(2))), ZorWBTrue);

    // Lists decide equality element by element, other enumerations by hulls.
    EXPECT_EQ(equal(List({1, 3}), ZorWBValue(2)), ZorWBFalse);
    EXPECT_EQ(equal(List({1, 3}), ZorWBValue(3)), ZorWBUnknown);
    EXPECT_EQ(equal(List({3}), ZorWBValue(3)), ZorWBTrue);
    EXPECT_EQ(equal(RealList({0.5, 2.5}), List({1, 2})), ZorWBFalse);
    EXPECT_EQ(equal(RealList({1.0 + 1e-15}), List({1})), ZorWBTrue);
    EXPECT_EQ(lessEqual(List({1, 3}), ZorWBValue(3)), ZorWBTrue);
    EXPECT_EQ(lessEqual(List({1, 5}), ZorWBValue(3)), ZorWBUnknown);
    EXPECT_EQ(equal(ZorWBValue(ZorWBIntegerEnum(ZorWBEnumNil)), ZorWBValue(1)), ZorWBEmpty);

    // Booleans compare as the sets of their states.
    EXPECT_EQ(equal(ZorWBValue(ZorWBTrue), ZorWBValue(ZorWBTrue)), ZorWBTrue);
    EXPECT_EQ(equal(ZorWBValue(ZorWBTrue), ZorWBValue(ZorWBFalse)), ZorWBFalse);
    EXPECT_EQ(equal(ZorWBValue(ZorWBUnknown), ZorWBValue(ZorWBTrue)), ZorWBUnknown);
    EXPECT_EQ(equal(ZorWBValue(ZorWBEmpty), ZorWBValue(ZorWBTrue)), ZorWBEmpty);
    EXPECT_EQ(lessEqual(ZorWBValue(ZorWBFalse), ZorWBValue(ZorWBUnknown)), ZorWBTrue);
    EXPECT_EQ(lessEqual(ZorWBValue(ZorWBTrue), ZorWBValue(ZorWBUnknown)), ZorWBUnknown);
    EXPECT_EQ(equal(ZorWBValue(ZorWBTrue), ZorWBValue(1)), ZorWBTrue);
    EXPECT_EQ(environment.GetError(), 0u);
    EXPECT_EQ(equal(ZorWBValue(ZorWBIntegerInterval{3, 2}), ZorWBValue(1)), ZorWBEmpty);
    EXPECT_EQ(environment.GetError(), 1u) << "the interval comparison reports an empty operand";
}

TEST(ZorWBValueLogic, IncompatibleComparisonsByLevel) {
    ZorWBEnvironment below(LevelBelowQuiet);
    ZorWBEnvironment at(LevelQuiet);
    EXPECT_EQ(StateOf(ZorWBEqual(below, ZorWBValue(1.5), ZorWBValue(ZorWBTrue))), ZorWBFalse);
    EXPECT_EQ(below.GetError(), 2u);
    EXPECT_EQ(StateOf(ZorWBEqual(at, ZorWBValue(1.5), ZorWBValue(ZorWBTrue))), ZorWBFalse);
    EXPECT_EQ(at.GetError(), 0u);
    EXPECT_EQ(StateOf(ZorWBNotEqual(at, ZorWBValue(), ZorWBValue(1))), ZorWBTrue);
    EXPECT_EQ(StateOf(ZorWBLessEqual(at, ZorWBValue(1.5), ZorWBValue(ZorWBTrue))), ZorWBFalse);
    EXPECT_EQ(at.GetError(), 2u) << "LessEqual always reports";
}

// Sampled points decide comparisons soundly: true means every pair of points
// compares true, false every pair false.
TEST(ZorWBValueLogic, ComparisonsAgreeWithSampledPoints) {
    std::mt19937 rng(99);
    for (int trial = 0; trial < 20000; ++trial) {
        ZorWBValueType firstKind = AllKinds[RandomInt(rng, 0, 5)];
        ZorWBValueType secondKind = AllKinds[RandomInt(rng, 0, 5)];
        ZorWBEnvironment environment;
        ZorWBValue a = RandomOperand(rng, firstKind);
        ZorWBValue b = RandomOperand(rng, secondKind);
        ZorWBBoolean equal = StateOf(ZorWBEqual(environment, a, b));
        ZorWBBoolean lessEqual = StateOf(ZorWBLessEqual(environment, a, b));
        ASSERT_EQ(environment.GetError(), 0u);
        for (double x : PointsOf(rng, a)) {
            for (double y : PointsOf(rng, b)) {
                if (equal == ZorWBTrue) {
                    ASSERT_NEAR(x, y, 1e-12) << Describe(a) << " = " << Describe(b);
                }
                if (equal == ZorWBFalse) {
                    ASSERT_NE(x, y) << Describe(a) << " = " << Describe(b);
                }
                if (lessEqual == ZorWBTrue) {
                    ASSERT_LE(x, y + 1e-12);
                }
                if (lessEqual == ZorWBFalse) {
                    ASSERT_GT(x, y);
                }
            }
        }
    }
}
