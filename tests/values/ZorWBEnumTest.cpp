#include <gtest/gtest.h>

#include "values/ZorWBEnum.h"
#include "values/ZorWBEnvironment.h"

TEST(ZorWBIntegerEnum, CorrectNormalisesIntervalsAndEmptyLists) {
    ZorWBEnvironment environment(0);
    ZorWBIntegerEnum narrow;
    narrow.SetAsIntegerInterval({-2, 2});
    narrow.Correct(environment);
    ASSERT_EQ(narrow.GetRep(), ZorWBEnumList);
    ASSERT_EQ(narrow.GetSize(), 5);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(narrow.Get(i), i - 2);

    ZorWBIntegerEnum atLimit;
    atLimit.SetAsIntegerInterval({0, 49});
    atLimit.Correct(environment);
    EXPECT_EQ(atLimit.GetRep(), ZorWBEnumList) << "width 49 is below the limit 50";
    ZorWBIntegerEnum tooWide;
    tooWide.SetAsIntegerInterval({0, 50});
    tooWide.Correct(environment);
    EXPECT_EQ(tooWide.GetRep(), ZorWBEnumInterval);

    ZorWBIntegerEnum infinite;
    infinite.SetAsIntegerInterval({ZorWBIntegerMinusInfinity, 3});
    environment.SetMaxEnumSize(2147483647);
    infinite.Correct(environment);
    EXPECT_EQ(infinite.GetRep(), ZorWBEnumInterval);

    ZorWBIntegerEnum empty;
    empty.SetAsIntegerInterval({3, 2});
    empty.Correct(environment);
    EXPECT_TRUE(empty.IsNil());
    ZorWBIntegerEnum emptyList(ZorWBEnumList);
    emptyList.Correct(environment);
    EXPECT_TRUE(emptyList.IsNil());
}

// The largest finite integers are elements like any other: only the
// infinity markers beyond them are infinite ends.
TEST(ZorWBIntegerEnum, TheLargestFiniteIntegersExpandIntoLists) {
    ZorWBEnvironment environment(0);
    const ZorWBIntegerInterval ends[] = {{2147483640, ZorWBIntegerMax},
                                         {-ZorWBIntegerMax, -2147483640}};
    for (const ZorWBIntegerInterval& hull : ends) {
        ZorWBIntegerEnum corrected;
        corrected.SetAsIntegerInterval(hull);
        corrected.Correct(environment);
        ASSERT_EQ(corrected.GetRep(), ZorWBEnumList) << hull.low;
        ASSERT_EQ(corrected.GetSize(), 7);
        for (int i = 0; i < 7; ++i)
            EXPECT_EQ(corrected.Get(i), hull.low + i);
        ZorWBIntegerEnum updated;
        updated.SetAsIntegerInterval(hull);
        EXPECT_FALSE(updated.Insert(hull.low)) << "already an element";
        EXPECT_EQ(updated.GetRep(), ZorWBEnumList);
        EXPECT_EQ(updated.GetSize(), 7);
    }
    for (const ZorWBIntegerInterval& toMarker :
         {ZorWBIntegerInterval{2147483640, ZorWBIntegerPlusInfinity},
          ZorWBIntegerInterval{ZorWBIntegerMinusInfinity, -2147483640}}) {
        ZorWBIntegerEnum infinite;
        infinite.SetAsIntegerInterval(toMarker);
        infinite.Correct(environment);
        EXPECT_EQ(infinite.GetRep(), ZorWBEnumInterval) << toMarker.low;
    }
}

TEST(ZorWBIntegerEnum, SortedListOperations) {
    ZorWBIntegerEnum list;
    for (int value : {5, 1, 9, 5, 3})
        list.Insert(value);
    ASSERT_EQ(list.GetSize(), 4);
    EXPECT_EQ(list.Get(0), 1);
    EXPECT_EQ(list.Get(3), 9);
    int position = -5;
    EXPECT_TRUE(list.Find(5, position));
    EXPECT_EQ(position, 2);
    EXPECT_FALSE(list.Find(4, position));
    EXPECT_EQ(position, -1);
    EXPECT_EQ(list.FindGT(5), 3);
    EXPECT_EQ(list.FindGT(9), -1);
    EXPECT_EQ(list.FindLT(5), 1);
    EXPECT_EQ(list.FindLT(1), -1);
    EXPECT_TRUE(list.Remove(3));
    EXPECT_FALSE(list.Remove(3));
    EXPECT_TRUE(list.RemovePosition(0, 10));
    EXPECT_EQ(list.GetSize(), 0);
    EXPECT_FALSE(list.RemovePosition(0, 1));
    EXPECT_EQ(list.Get(-1), 0);
    EXPECT_EQ(list.Get(100), 0);
    EXPECT_FALSE(list.Set(100, 1));
    EXPECT_FALSE(list.SetSize(-1));
}

TEST(ZorWBIntegerEnum, HullsAndIntervalMembership) {
    EXPECT_EQ(ZorWBIntegerEnum(ZorWBEnumAny).GetAsIntegerInterval().high, ZorWBIntegerMax);
    ZorWBIntegerInterval nil = ZorWBIntegerEnum(ZorWBEnumNil).GetAsIntegerInterval();
    EXPECT_GT(nil.low, nil.high);
    EXPECT_TRUE(ZorWBIntegerEnum(ZorWBEnumAny).Contains(123));
    EXPECT_FALSE(ZorWBIntegerEnum(ZorWBEnumNil).Contains(0));

    ZorWBIntegerEnum interval;
    interval.SetAsIntegerInterval({10, 20});
    int position = 0;
    EXPECT_TRUE(interval.Find(15, position));
    EXPECT_EQ(position, 5);
    EXPECT_TRUE(interval.Remove(10));
    EXPECT_EQ(interval.GetAsIntegerInterval().low, 11);
    EXPECT_TRUE(interval.Remove(15)) << "a small interval is expanded to remove an inner element";
    EXPECT_EQ(interval.GetRep(), ZorWBEnumList);
    EXPECT_EQ(interval.GetSize(), 9);

    ZorWBIntegerEnum huge;
    huge.SetAsIntegerInterval({0, 2000000000});
    EXPECT_FALSE(huge.Append(5)) << "too wide to become a list";
    EXPECT_FALSE(huge.Remove(7));
    EXPECT_EQ(huge.GetRep(), ZorWBEnumInterval);
}

TEST(ZorWBRealEnum, ToleranceAndConversionFromIntegers) {
    ZorWBRealEnum list;
    EXPECT_TRUE(list.Insert(1.0, 1e-9));
    EXPECT_FALSE(list.Insert(1.0 + 1e-12, 1e-9));
    EXPECT_TRUE(list.Insert(0.5, 1e-9));
    EXPECT_EQ(list.GetSize(), 2);
    int position = 0;
    EXPECT_TRUE(list.Find(1.0 - 1e-12, position, 1e-9));
    EXPECT_EQ(position, 1);
    EXPECT_TRUE(list.Find(0.5, position, 0.0));
    EXPECT_TRUE(list.Remove(0.5, 1e-9));
    ZorWBRealInterval hull = list.GetAsRealInterval();
    EXPECT_EQ(hull.low, 1.0);

    ZorWBRealEnum interval;
    interval.SetAsRealInterval({0, 1});
    EXPECT_FALSE(interval.Append(2.0)) << "real intervals are never expanded";
    EXPECT_TRUE(interval.Contains(1.0 + 1e-15, 1e-14));

    ZorWBIntegerEnum integers;
    integers.Insert(2);
    integers.Insert(4);
    ZorWBRealEnum converted(integers);
    EXPECT_EQ(converted.GetRep(), ZorWBEnumList);
    EXPECT_EQ(converted.Get(1), 4.0);

    ZorWBEnvironment environment(0);
    ZorWBRealEnum empty;
    empty.SetAsRealInterval({2, 1});
    empty.Correct(environment);
    EXPECT_TRUE(empty.IsNil());
}

TEST(ZorWBEnum, CopiesAreIndependent) {
    ZorWBIntegerEnum original;
    original.Insert(1);
    ZorWBIntegerEnum copy(original);
    copy.Insert(2);
    EXPECT_EQ(original.GetSize(), 1);
    original = copy;
    EXPECT_EQ(original.GetSize(), 2);
    const ZorWBIntegerEnum& itself = original;  // a self-assignment
    original = itself;
    EXPECT_EQ(original.GetSize(), 2);
}
