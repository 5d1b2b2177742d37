#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include "TestAllocator.h"
#include "ValueTestSupport.h"
#include "values/ZorWBEnvironment.h"
#include "values/ZorWBValue.h"

using namespace valuetest;

namespace {

ZorWBValue Simplified(ZorWBValue value, bool toReal) {
    value.SimplifyFraction(toReal);
    return value;
}

}  // namespace

TEST(ZorWBValue, KindConstructorsGiveZeroValues) {
    EXPECT_EQ(ZorWBValue().GetType(), ZorWBUndefinedType);
    EXPECT_EQ(ZorWBValue(ZorWBIntegerType).GetAsInteger(), 0);
    EXPECT_EQ(ZorWBValue(ZorWBRealType).GetAsReal(), 0.0);
    EXPECT_EQ(ZorWBValue(ZorWBBooleanType).GetAsBoolean(), ZorWBFalse);
    ZorWBRealInterval interval = ZorWBValue(ZorWBRealIntervalType).GetAsRealInterval();
    EXPECT_EQ(interval.low, 0.0);
    EXPECT_EQ(interval.high, 0.0);
    EXPECT_TRUE(ZorWBValue(ZorWBIntegerEnumType).GetIntegerEnum().IsAny());

    ZorWBValue fraction(ZorWBFractionType);
    EXPECT_EQ(fraction.GetType(), ZorWBIntegerType);
    EXPECT_EQ(fraction.GetAsInteger(), 0);

    ZorWBValue unknownKind(static_cast<ZorWBValueType>(42));
    EXPECT_EQ(unknownKind.GetType(), 42);
    EXPECT_EQ(unknownKind.Str(), "ERROR (unknown value type)");
}

TEST(ZorWBValue, StrByKind) {
    EXPECT_EQ(ZorWBValue().Str(), "ERROR (undefined value)");
    EXPECT_EQ(ZorWBValue(-12).Str(), "-12");
    EXPECT_EQ(ZorWBValue(0.25).Str(), "0.25");
    EXPECT_EQ(ZorWBValue(ZorWBIntegerInterval{2, 5}).Str(), "Integer interval [2 -> 5]");
    EXPECT_EQ(ZorWBValue(ZorWBRealInterval{0.5, 1.5}).Str(), "Real interval [0.5 -> 1.5]");
    EXPECT_EQ(ZorWBValue(ZorWBIntegerEnum()).Str(), "Integer enum");
    EXPECT_EQ(ZorWBValue(ZorWBRealEnum()).Str(), "Real enum");
    EXPECT_EQ(ZorWBValue(ZorWBFalse).Str(), "FALSE");
    EXPECT_EQ(ZorWBValue(ZorWBTrue).Str(), "TRUE");
    EXPECT_EQ(ZorWBValue(ZorWBUnknown).Str(), "TRUE");
    EXPECT_EQ(ZorWBValue(ZorWBEmpty).Str(), "TRUE");
    EXPECT_EQ(Fraction(1, 2, 1).Str(), "Fraction");
}

TEST(ZorWBValue, SimplifyFractionKeepsItsMarkerPairing) {
    ZorWBValue zeroByZero = Simplified(Fraction(0, 0, 0), false);
    EXPECT_EQ(zeroByZero.GetType(), ZorWBIntegerType);
    EXPECT_EQ(zeroByZero.GetAsInteger(), 2147483647);
    EXPECT_EQ(Simplified(Fraction(3, 0, 0), false).GetAsInteger(), -2147483647);
    EXPECT_EQ(Simplified(Fraction(-3, 0, 0), false).GetAsInteger(), -2147483647);
    EXPECT_EQ(Simplified(Fraction(5, -2147483647, 0), false).GetAsInteger(), -2147483647);
    EXPECT_EQ(Simplified(Fraction(0, 7, 3), false).GetAsInteger(), 0);
    ZorWBValue plusMarker = Simplified(Fraction(2147483647, 3, 0), false);
    EXPECT_EQ(plusMarker.GetType(), ZorWBRealType);
    EXPECT_EQ(plusMarker.GetAsReal(), 3.4028234663852886e+39);
}

TEST(ZorWBValue, SimplifyFractionReducesOrReadsAsReal) {
    ZorWBValue reduced = Simplified(Fraction(6, 4, 0), false);
    ASSERT_TRUE(reduced.IsAFraction());
    EXPECT_EQ(reduced.GetAsFraction().numerator, 3);
    EXPECT_EQ(reduced.GetAsFraction().denominator, 2);
    ZorWBValue signs = Simplified(Fraction(-6, -4, 0), false);
    EXPECT_EQ(signs.GetAsFraction().numerator, 3);
    EXPECT_EQ(signs.GetAsFraction().denominator, 2);
    ZorWBValue negative = Simplified(Fraction(6, -4, 1), false);
    EXPECT_EQ(negative.GetAsFraction().numerator, -3);
    EXPECT_EQ(negative.GetAsFraction().denominator, 2);
    EXPECT_EQ(negative.GetAsFraction().power, 1);
    ZorWBValue whole = Simplified(Fraction(4, 2, 0), false);
    EXPECT_EQ(whole.GetType(), ZorWBIntegerType);
    EXPECT_EQ(whole.GetAsInteger(), 2);
    ZorWBValue halfPi = Simplified(Fraction(1, 2, 1), true);
    EXPECT_EQ(halfPi.GetType(), ZorWBRealType);
    EXPECT_EQ(halfPi.GetAsReal(), 1.5707963267948966);
    // Extreme integers neither overflow nor lose exactness.
    EXPECT_EQ(Simplified(Fraction(INT_MIN, -1, 0), false).GetAsReal(), 2147483648.0);
    ZorWBValue extreme = Simplified(Fraction(INT_MIN, -2, 1), false);
    EXPECT_EQ(extreme.GetAsFraction().numerator, 1073741824);
    EXPECT_EQ(extreme.GetAsFraction().denominator, 1);
}

TEST(ZorWBValue, FractionReadsAsItsRealValue) {
    EXPECT_DOUBLE_EQ(Fraction(1, 180, 1).GetAsReal(), 3.141592653589793 / 180);
    EXPECT_DOUBLE_EQ(Fraction(180, 1, -1).GetAsReal(), 180 / 3.141592653589793);
    EXPECT_EQ(Fraction(3, 0, 0).GetAsReal(), ZorWBRealMinusInfinity);
    EXPECT_EQ(Fraction(1, 2, 0).GetAsBoolean(), ZorWBTrue);
    EXPECT_EQ(Fraction(0, 2, 0).GetAsBoolean(), ZorWBFalse);
}

TEST(ZorWBValue, BooleanReadingOfIntegerSets) {
    EXPECT_EQ(ZorWBValue(ZorWBIntegerInterval{0, 0}).GetAsBoolean(), ZorWBFalse);
    EXPECT_EQ(ZorWBValue(ZorWBIntegerInterval{1, 4}).GetAsBoolean(), ZorWBTrue);
    EXPECT_EQ(ZorWBValue(ZorWBIntegerInterval{-1, 1}).GetAsBoolean(), ZorWBUnknown);
    EXPECT_EQ(ZorWBValue(ZorWBIntegerInterval{3, 2}).GetAsBoolean(), ZorWBEmpty);
    EXPECT_EQ(ZorWBValue().GetAsBoolean(), ZorWBUnknown);
    EXPECT_EQ(ZorWBValue(-4).GetAsBoolean(), ZorWBTrue);
    EXPECT_EQ(ZorWBValue(0).GetAsBoolean(), ZorWBFalse);
    const int elements[] = {2, 5, 9};
    ZorWBValue enumeration;
    enumeration.Set(3, elements);
    EXPECT_EQ(enumeration.GetAsBoolean(), ZorWBTrue);
    EXPECT_EQ(ZorWBValue(ZorWBIntegerEnum(ZorWBEnumNil)).GetAsBoolean(), ZorWBEmpty);
    EXPECT_EQ(ZorWBValue(ZorWBIntegerEnum(ZorWBEnumAny)).GetAsBoolean(), ZorWBUnknown);
}

TEST(ZorWBValue, ConvertibilityTable) {
    const std::vector<ZorWBValue> samples = OneValueOfEachKind();
    // Rows: the value's kind 0..8; columns: the target kind 0..8.
    const bool expected[9][9] = {
        {1, 0, 0, 1, 1, 0, 0, 0, 0}, {0, 1, 1, 1, 1, 0, 0, 1, 0}, {0, 0, 1, 1, 1, 0, 0, 0, 0},
        {0, 0, 0, 1, 1, 0, 0, 1, 0}, {0, 0, 0, 1, 1, 0, 0, 0, 0}, {0, 0, 0, 1, 1, 1, 0, 1, 0},
        {0, 0, 0, 1, 1, 0, 1, 0, 0}, {0, 1, 0, 1, 0, 0, 0, 1, 0}, {0, 0, 0, 1, 1, 0, 0, 0, 1},
    };
    for (int kind = 0; kind < 9; ++kind) {
        ASSERT_EQ(samples[kind].GetType(), kind);
        for (int target = 0; target < 9; ++target) {
            EXPECT_EQ(samples[kind].IsConvertible(static_cast<ZorWBValueType>(target)),
                      expected[kind][target])
                << "kind " << kind << " to " << target;
        }
    }
}

TEST(ZorWBValue, ConversionsBetweenNumberKinds) {
    EXPECT_EQ(ZorWBValue(ZorWBTrue).GetAsInteger(), 1);
    EXPECT_EQ(ZorWBValue(7).GetAsReal(), 7.0);
    EXPECT_EQ(ZorWBValue(2147483647).GetAsReal(), ZorWBRealPlusInfinity);
    ZorWBIntegerInterval unknown = ZorWBValue(ZorWBUnknown).GetAsIntegerInterval();
    EXPECT_EQ(unknown.low, 0);
    EXPECT_EQ(unknown.high, 1);
    ZorWBIntegerInterval inside =
        ZorWBValue(ZorWBRealInterval{0.5, 3.0000000000000004}).GetAsIntegerInterval();
    EXPECT_EQ(inside.low, 1);
    EXPECT_EQ(inside.high, 3);
    ZorWBIntegerInterval whole = ZorWBValue(ZorWBReal_Any).GetAsIntegerInterval();
    EXPECT_EQ(whole.low, -ZorWBIntegerMax);
    EXPECT_EQ(whole.high, ZorWBIntegerMax);
    ZorWBRealInterval widened = ZorWBValue(ZorWBInteger_Any).GetAsRealInterval();
    EXPECT_EQ(widened.low, -ZorWBRealLimit);
    EXPECT_EQ(widened.high, ZorWBRealLimit);
    ZorWBRealInterval empty = ZorWBValue(ZorWBInteger_Nil).GetAsRealInterval();
    EXPECT_GT(empty.low, empty.high);
    EXPECT_EQ(ZorWBValue(ZorWBRealInterval{NAN, 1}).GetAsIntegerInterval().low,
              ZorWBInteger_Nil.low);
}

// A conversion that the convertibility table does not list gives the
// default result, what the same getter gives for an undefined value (0, 0.0,
// the whole line, unknown), not a nearest reading. The one reading beyond
// the table is a fraction's real, which every real function takes.
TEST(ZorWBValue, ConversionsOutsideTheTableGiveTheDefaultResult) {
    EXPECT_EQ(ZorWBValue(3.7).GetAsInteger(), 0);
    EXPECT_EQ(ZorWBValue(1e300).GetAsInteger(), 0);
    EXPECT_EQ(ZorWBValue(ZorWBIntegerInterval{4, 4}).GetAsInteger(), 0);
    EXPECT_EQ(ZorWBValue(ZorWBRealInterval{1, 3}).GetAsReal(), 0.0);
    EXPECT_EQ(ZorWBValue(ZorWBTrue).GetAsReal(), 0.0);
    EXPECT_EQ(ZorWBValue(2.5).GetAsBoolean(), ZorWBUnknown);
    ZorWBRealInterval line = ZorWBValue(ZorWBTrue).GetAsRealInterval();
    EXPECT_EQ(line.low, -ZorWBRealLimit);
    EXPECT_EQ(line.high, ZorWBRealLimit);
    EXPECT_DOUBLE_EQ(Fraction(1, 4, 1).GetAsReal(), 3.141592653589793 / 4);

    ZorWBEnvironment environment(0);
    ZorWBValue integer(ZorWBIntegerType);
    integer.Assign(environment, ZorWBValue(3.7));
    EXPECT_EQ(integer.GetType(), ZorWBIntegerType);
    EXPECT_EQ(integer.GetAsInteger(), 0);
    ZorWBValue real(1.5);
    real.Assign(environment, ZorWBValue(ZorWBIntegerInterval{4, 4}));
    EXPECT_EQ(real.GetAsReal(), 0.0);

    // Every kind against every scalar target.
    const ZorWBValue undefined;
    std::vector<ZorWBValue> samples = OneValueOfEachKind();
    samples.push_back(ZorWBValue(-2.5));
    samples.push_back(ZorWBValue(ZorWBRealInterval{-3, 7}));
    for (const ZorWBValue& value : samples) {
        SCOPED_TRACE(value.GetType());
        if (!value.IsConvertible(ZorWBIntegerType)) {
            EXPECT_EQ(value.GetAsInteger(), undefined.GetAsInteger());
        }
        if (!value.IsConvertible(ZorWBRealType) && !value.IsAFraction()) {
            EXPECT_EQ(value.GetAsReal(), undefined.GetAsReal());
        }
        if (!value.IsConvertible(ZorWBRealIntervalType)) {
            EXPECT_EQ(value.GetAsRealInterval().low, undefined.GetAsRealInterval().low);
            EXPECT_EQ(value.GetAsRealInterval().high, undefined.GetAsRealInterval().high);
        }
        bool listedBoolean = value.IsAKindOf(ZorWBUndefinedType) || value.IsAFraction();
        if (!value.IsConvertible(ZorWBBooleanType) && !listedBoolean) {
            EXPECT_EQ(value.GetAsBoolean(), undefined.GetAsBoolean());
        }
    }
}

TEST(ZorWBValue, EnumerationConversions) {
    ZorWBIntegerEnum integers;
    ZorWBValue(ZorWBIntegerInterval{3, 6}).GetAsIntegerEnum(integers);
    EXPECT_EQ(integers.GetRep(), ZorWBEnumInterval);
    const double reals[] = {2.0, 0.5, 1.0, 2.0};
    ZorWBValue realList;
    realList.Set(4, reals);
    EXPECT_EQ(realList.GetRealEnum().GetSize(), 3) << "sorted without repeats";
    EXPECT_EQ(realList.GetRealEnum().Get(0), 0.5);
    realList.GetAsIntegerEnum(integers);
    EXPECT_EQ(integers.GetRep(), ZorWBEnumList);
    EXPECT_EQ(integers.GetSize(), 2);
    EXPECT_EQ(integers.Get(0), 1);
    ZorWBRealEnum realsOut;
    ZorWBValue(4).GetAsRealEnum(realsOut);
    EXPECT_EQ(realsOut.GetSize(), 1);
    EXPECT_EQ(realsOut.Get(0), 4.0);
    ZorWBValue(ZorWBInteger_Nil).GetAsRealEnum(realsOut);
    EXPECT_TRUE(realsOut.IsNil());
    ZorWBValue().GetAsRealEnum(realsOut);
    EXPECT_TRUE(realsOut.IsAny());

    ZorWBValue nothing;
    nothing.Set(0, static_cast<const int*>(nullptr));
    EXPECT_EQ(nothing.GetType(), ZorWBIntegerEnumType);
    EXPECT_EQ(nothing.GetIntegerEnum().GetSize(), 0);
}

TEST(ZorWBValue, SetIndefiniteWidensOnlySetKinds) {
    ZorWBValue interval(ZorWBIntegerInterval{1, 2});
    interval.SetIndefinite();
    EXPECT_EQ(interval.GetAsIntegerInterval().low, ZorWBInteger_Any.low);
    ZorWBValue boolean(ZorWBTrue);
    boolean.SetIndefinite();
    EXPECT_EQ(boolean.GetAsBoolean(), ZorWBUnknown);
    ZorWBValue integer(5);
    integer.SetIndefinite();
    EXPECT_EQ(integer.GetAsInteger(), 5);
    const double reals[] = {1.0};
    ZorWBValue list;
    list.Set(1, reals);
    list.SetIndefinite();
    EXPECT_TRUE(list.GetRealEnum().IsAny());
}

TEST(ZorWBValue, AssignKeepsTheKindOfTheTarget) {
    ZorWBEnvironment environment(0);
    ZorWBValue integer(ZorWBIntegerType);
    integer.Assign(environment, ZorWBValue(ZorWBTrue));
    EXPECT_EQ(integer.GetAsInteger(), 1);
    EXPECT_EQ(integer.GetEnvironment(), &environment);

    ZorWBValue list(ZorWBIntegerEnumType);
    list.Assign(environment, ZorWBValue(ZorWBIntegerInterval{3, 5}));
    ASSERT_EQ(list.GetIntegerEnum().GetRep(), ZorWBEnumList) << "narrow intervals are expanded";
    EXPECT_EQ(list.GetIntegerEnum().GetSize(), 3);

    ZorWBValue wide(ZorWBIntegerEnumType);
    wide.Assign(environment, ZorWBValue(ZorWBIntegerInterval{0, 50}));
    EXPECT_EQ(wide.GetIntegerEnum().GetRep(), ZorWBEnumInterval);

    ZorWBValue reals(ZorWBRealEnumType);
    reals.Assign(environment, ZorWBValue(ZorWBIntegerInterval{1, 2}));
    ASSERT_EQ(reals.GetRealEnum().GetRep(), ZorWBEnumList);
    EXPECT_EQ(reals.GetRealEnum().Get(1), 2.0);
    reals.Assign(environment, ZorWBValue(ZorWBRealInterval{1, 0}));
    EXPECT_TRUE(reals.GetRealEnum().IsNil());

    ZorWBValue fraction = Fraction(1, 3, 0);
    fraction.Assign(environment, ZorWBValue(2.5));
    EXPECT_EQ(fraction.GetType(), ZorWBRealType);
    ZorWBValue fractionKept = Fraction(1, 3, 0);
    fractionKept.Assign(environment, ZorWBValue(ZorWBTrue));
    EXPECT_TRUE(fractionKept.IsAFraction());

    ZorWBValue undefined;
    undefined.Assign(environment, ZorWBValue(3));
    EXPECT_EQ(undefined.GetType(), ZorWBUndefinedType);
    undefined.AssignWithType(environment, ZorWBValue(3));
    EXPECT_EQ(undefined.GetAsInteger(), 3);
    ZorWBValue real(1.5);
    real.AssignWithType(environment, ZorWBValue(7));
    EXPECT_EQ(real.GetType(), ZorWBRealType) << "a defined value keeps its kind";
    EXPECT_EQ(real.GetAsReal(), 7.0);
}

TEST(ZorWBValue, RecordsTheFirstEnvironmentOnly) {
    ZorWBEnvironment first(0), second(0);
    ZorWBValue value(1);
    value.RecordEnv(first);
    value.RecordEnv(second);
    EXPECT_EQ(value.GetEnvironment(), &first);
    value.UpdateEnv(second);
    EXPECT_EQ(value.GetEnvironment(), &second);
}

TEST(ZorWBValue, CopiesCarryEnumerationsOnlyForEnumerationKinds) {
    const int elements[] = {1, 2, 3};
    ZorWBValue list;
    list.Set(3, elements);
    ZorWBValue copy(list);
    EXPECT_EQ(copy.GetIntegerEnum().GetSize(), 3);
    copy = ZorWBValue(4);
    EXPECT_TRUE(copy.GetIntegerEnum().IsAny());
    EXPECT_EQ(copy.GetAsInteger(), 4);
    ZorWBValue moved(std::move(list));
    EXPECT_EQ(moved.GetIntegerEnum().GetSize(), 3);
    std::unique_ptr<ZorWBValue> clone(moved.Clone());
    EXPECT_EQ(clone->GetIntegerEnum().Get(2), 3);
    EXPECT_EQ(moved.GetMiddle(), 2.0);
    EXPECT_EQ(moved.GetWidth(), 2.0);
    EXPECT_EQ(ZorWBValue(ZorWBRealInterval{-5, 3}).GetMAG(), 5.0);
}

// An enumeration lives in a block of its own: copies and assignments copy
// it, moves take it, a change of kind releases it, and the getters of the
// other kind read "any" without changing the value.
TEST(ZorWBValue, EnumerationsOwnTheirBlockThroughCopiesMovesAndKindChanges) {
    static_assert(sizeof(ZorWBValue) == 32, "every node holds a value: keep it small");
    ZorWBEnvironment environment;
    const double reals[] = {0.5, -1.0, 2.0};
    ZorWBValue list;
    list.Set(3, reals);
    ZorWBValue copy;
    copy = list;
    copy.GetRealEnum().Remove(0.5, 0.0);
    EXPECT_EQ(list.GetRealEnum().GetSize(), 3);
    EXPECT_EQ(copy.GetRealEnum().GetSize(), 2);
    copy = list;  // same kind: copied into the block it holds
    EXPECT_EQ(copy.GetRealEnum().GetSize(), 3);
    const ZorWBValue& itself = copy;
    copy = itself;
    EXPECT_EQ(copy.GetRealEnum().Get(0), -1.0);

    // The other kind's getters read "any"; a change through the mutable one
    // is not kept.
    EXPECT_TRUE(list.GetIntegerEnum().IsAny());
    list.GetIntegerEnum().Append(7);
    EXPECT_TRUE(static_cast<const ZorWBValue&>(list).GetIntegerEnum().IsAny());
    EXPECT_EQ(list.GetType(), ZorWBRealEnumType);
    EXPECT_TRUE(ZorWBValue(2.5).GetRealEnum().IsAny());

    // A kind without a block reads "any" and gets one on a change.
    ZorWBValue any(ZorWBIntegerEnumType);
    EXPECT_TRUE(any.GetIntegerEnum().IsAny());
    any.GetIntegerEnum().SetAsIntegerInterval({2, 4});
    EXPECT_EQ(any.GetAsIntegerInterval().high, 4);
    any.SetIndefinite();
    EXPECT_TRUE(any.GetIntegerEnum().IsAny());

    // Moves leave the source reading "any"; kind changes release the block.
    ZorWBValue moved(std::move(copy));
    EXPECT_EQ(moved.GetRealEnum().GetSize(), 3);
    EXPECT_TRUE(copy.GetRealEnum().IsAny());
    ZorWBValue target(ZorWBRealInterval{0.0, 1.0});
    target = std::move(moved);
    EXPECT_EQ(target.GetAsRealInterval().low, -1.0);
    target.Set(ZorWBIntegerEnum(ZorWBEnumNil));
    EXPECT_EQ(target.GetType(), ZorWBIntegerEnumType);
    EXPECT_TRUE(target.GetIntegerEnum().IsNil());
    target.Set(3);
    EXPECT_EQ(target.GetAsInteger(), 3);
    target.Set(target.GetIntegerEnum());  // a scalar's "any" taken as a value
    EXPECT_TRUE(target.GetIntegerEnum().IsAny());

    // Assignments into an enumeration kind fill its block, an undefined
    // target first taking the kind.
    ZorWBValue undefined;
    undefined.AssignWithType(environment, list);
    EXPECT_EQ(undefined.GetType(), ZorWBRealEnumType);
    EXPECT_EQ(undefined.GetRealEnum().GetSize(), 3);
    ZorWBValue integers(ZorWBIntegerEnumType);
    integers.Assign(environment, ZorWBValue(ZorWBIntegerInterval{1, 3}));
    EXPECT_EQ(integers.GetIntegerEnum().GetAsIntegerInterval().low, 1);
    ZorWBValue realsFromIntegers(ZorWBRealEnumType);
    realsFromIntegers.Assign(environment, ZorWBValue(5));
    EXPECT_EQ(realsFromIntegers.GetRealEnum().Get(0), 5.0);
}

TEST(ZorWBValue, ScalarKindsNeverTouchTheHeap) {
    std::size_t before = AllocationCount();
    ZorWBValue values[] = {ZorWBValue(3),
                           ZorWBValue(2.5),
                           ZorWBValue(ZorWBIntegerInterval{1, 2}),
                           ZorWBValue(ZorWBRealInterval{1, 2}),
                           ZorWBValue(ZorWBUnknown),
                           Fraction(1, 2, 1)};
    for (const ZorWBValue& value : values) {
        ZorWBValue copy(value);
        ZorWBValue assigned;
        assigned = copy;
        assigned = ZorWBValue(7);
        assigned.Set(1.5);
        ZorWBValue moved(std::move(copy));
        (void)moved.GetAsRealInterval();
        (void)moved.GetAsBoolean();
    }
    EXPECT_EQ(AllocationCount(), before);
}

TEST(ZorWBValue, GeneratedConversionsAgreeWithEachOther) {
    std::mt19937 random(11);
    std::uniform_int_distribution<int> integers(-1000, 1000);
    for (int i = 0; i < 2000; ++i) {
        int low = integers(random), high = integers(random);
        if (low > high) std::swap(low, high);
        ZorWBValue interval(ZorWBIntegerInterval{low, high});
        ZorWBRealInterval asReal = interval.GetAsRealInterval();
        ASSERT_EQ(asReal.low, low);
        ASSERT_EQ(asReal.high, high);
        ZorWBIntegerInterval back = ZorWBValue(asReal).GetAsIntegerInterval();
        ASSERT_EQ(back.low, low);
        ASSERT_EQ(back.high, high);
        ZorWBBoolean expected = low == 0 && high == 0   ? ZorWBFalse
                                : (low > 0 || high < 0) ? ZorWBTrue
                                                        : ZorWBUnknown;
        ASSERT_EQ(interval.GetAsBoolean(), expected);
        int numerator = integers(random), denominator = integers(random);
        if (denominator == 0) continue;
        ZorWBValue fraction = Simplified(Fraction(numerator, denominator, 0), false);
        ASSERT_DOUBLE_EQ(fraction.GetAsReal(), static_cast<double>(numerator) / denominator);
    }
}

TEST(ZorWBValue, ListsBeyondTheElementLimitAreHeldAsTheirHull) {
    // Up to the limit a list; NaN elements are left out.
    std::vector<double> reals = {3.0, NAN, -1.0, 3.0, 2.5};
    ZorWBValue value;
    value.Set(static_cast<int>(reals.size()), reals.data());
    ASSERT_EQ(value.GetRealEnum().GetRep(), ZorWBEnumList);
    ASSERT_EQ(value.GetRealEnum().GetSize(), 3);
    EXPECT_EQ(value.GetRealEnum().Get(0), -1.0);
    EXPECT_EQ(value.GetRealEnum().Get(2), 3.0);
    std::vector<double> onlyNaN = {NAN, NAN};
    value.Set(2, onlyNaN.data());
    EXPECT_EQ(value.GetRealEnum().GetRep(), ZorWBEnumList);
    EXPECT_EQ(value.GetRealEnum().GetSize(), 0);

    std::vector<int> atLimit(ZorWBMaxEnumSize);
    for (int i = 0; i < ZorWBMaxEnumSize; ++i)
        atLimit[static_cast<std::size_t>(i)] = ZorWBMaxEnumSize - 2 * i;
    value.Set(ZorWBMaxEnumSize, atLimit.data());
    ASSERT_EQ(value.GetIntegerEnum().GetRep(), ZorWBEnumList);
    EXPECT_EQ(value.GetIntegerEnum().GetSize(), ZorWBMaxEnumSize);

    // One more element: the hull, whatever the order of the elements.
    std::vector<int> beyond = atLimit;
    beyond.push_back(-7 * ZorWBMaxEnumSize);
    value.Set(static_cast<int>(beyond.size()), beyond.data());
    ASSERT_EQ(value.GetIntegerEnum().GetRep(), ZorWBEnumInterval);
    EXPECT_EQ(value.GetIntegerEnum().GetAsIntegerInterval().low, -7 * ZorWBMaxEnumSize);
    EXPECT_EQ(value.GetIntegerEnum().GetAsIntegerInterval().high, ZorWBMaxEnumSize);
    std::vector<double> realsBeyond(static_cast<std::size_t>(ZorWBMaxEnumSize) + 1, 0.5);
    realsBeyond[7] = NAN;
    realsBeyond[9] = -2.0;
    value.Set(static_cast<int>(realsBeyond.size()), realsBeyond.data());
    ASSERT_EQ(value.GetRealEnum().GetRep(), ZorWBEnumInterval);
    EXPECT_EQ(value.GetRealEnum().GetAsRealInterval().low, -2.0);
    EXPECT_EQ(value.GetRealEnum().GetAsRealInterval().high, 0.5);
}
