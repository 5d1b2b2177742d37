#include <gtest/gtest.h>

#include "qel/ZorQelArray.h"

TEST(ZorQelArray, OutOfRangeAccessIsHarmless) {
    ZorQelIntArray array(3, 5);
    EXPECT_EQ(array.Get(-1), 0);
    EXPECT_EQ(array.Get(3), 0);
    EXPECT_FALSE(array.Set(3, 1));
    EXPECT_FALSE(array.RemoveAt(7));
    EXPECT_FALSE(array.InsertAt(-1, 1));
    EXPECT_EQ(array.GetSize(), 3);
    ZorQelArray<int*> pointers;
    EXPECT_EQ(pointers.Get(0), nullptr);
    EXPECT_EQ(pointers.GetLast(), nullptr);
}

TEST(ZorQelArray, FillsSortsAndSearches) {
    ZorQelIntArray array;
    for (int value : {9, 3, 7, 3, 1})
        array.Add(value);
    array.Sort();
    EXPECT_EQ(array.Get(0), 1);
    EXPECT_EQ(array.Get(4), 9);
    EXPECT_EQ(array.BinarySearch(7), 3);
    EXPECT_EQ(array.BinarySearch(4), -1);
    EXPECT_EQ(array.BinarySearch(10), -1);
    EXPECT_TRUE(array.Remove(3));
    EXPECT_EQ(array.Find(3), 1);
    array.Fill(2);
    for (int value : array)
        EXPECT_EQ(value, 2);
    array.RemoveAt(1, 100);
    EXPECT_EQ(array.GetSize(), 1);
}

TEST(ZorQelBoolArray, CheckCountsTheSetFlags) {
    ZorQelBoolArray flags(5);
    EXPECT_FALSE(flags.IsAnySet());
    flags.Set(1, true);
    flags.Set(3, true);
    flags.Set(9, true);
    EXPECT_FALSE(flags.IsAnySet()) << "direct writes are counted by Check";
    EXPECT_TRUE(flags.Check());
    EXPECT_EQ(flags.GetNbOfSet(), 2);
    EXPECT_FALSE(flags.Get(9));
    flags.Fill(true);
    EXPECT_EQ(flags.GetNbOfSet(), 5);
    flags.Fill(false);
    EXPECT_FALSE(flags.Check());
}
