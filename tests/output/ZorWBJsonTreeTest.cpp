#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "output/ZorWBJsonTree.h"

namespace {

std::string Printed(const ZorWBJsonValue& value) {
    ZorQelString out;
    EXPECT_TRUE(value.Print(out));
    return out.GetStdString();
}

// Key order as signed bytes, a prefix first.
bool SignedLess(const std::string& a, const std::string& b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return static_cast<signed char>(x) < static_cast<signed char>(y);
    });
}

}  // namespace

TEST(ZorWBJsonTree, ScalarsPrintCompactly) {
    EXPECT_EQ(Printed(ZorWBJsonValue(42)), "42");
    EXPECT_EQ(Printed(ZorWBJsonValue(-7)), "-7");
    EXPECT_EQ(Printed(ZorWBJsonValue(0.5)), "0.500000");
    EXPECT_EQ(Printed(ZorWBJsonValue(-2.0)), "-2.000000");
    EXPECT_EQ(Printed(ZorWBJsonValue(1.0 / 3.0)), "0.333333");
    EXPECT_EQ(Printed(ZorWBJsonValue(1e20)), "100000000000000000000.000000");
    EXPECT_EQ(Printed(ZorWBJsonValue(1e-9)), "0.000000");
    EXPECT_EQ(Printed(ZorWBJsonValue(3.4028234663852886e+39)).size(), 40u + 7u);
    // JSON has no infinities and no NaN: the infinity markers and null.
    EXPECT_EQ(Printed(ZorWBJsonValue(HUGE_VAL)), Printed(ZorWBJsonValue(3.4028234663852886e+39)));
    EXPECT_EQ(Printed(ZorWBJsonValue(-HUGE_VAL)), Printed(ZorWBJsonValue(-3.4028234663852886e+39)));
    EXPECT_EQ(Printed(ZorWBJsonValue(std::nan(""))), "null");
    EXPECT_EQ(Printed(ZorWBJsonValue(-std::nan(""))), "null");
    EXPECT_EQ(Printed(ZorWBJsonValue(true)), "1");
    EXPECT_EQ(Printed(ZorWBJsonValue(false)), "0");
    EXPECT_EQ(Printed(ZorWBJsonValue(ZorQelString("a \"quoted\" \\ text\n"))),
              "\"a \"quoted\" \\ text\n\"");
    EXPECT_EQ(Printed(ZorWBJsonValue()), "ERROR");
    EXPECT_EQ(Printed(ZorWBJsonValue::MakeList()), "[]");
    EXPECT_EQ(Printed(ZorWBJsonValue::MakeObject()), "{}");
    EXPECT_EQ(ZorWBJsonValue(3).GetNbOfEntries(), 0);
    EXPECT_FALSE(ZorWBJsonValue(3).AddMember("a", ZorWBJsonValue(1)));
    EXPECT_FALSE(ZorWBJsonValue::MakeObject().Append(ZorWBJsonValue(1)));
    EXPECT_FALSE(ZorWBJsonValue::MakeList().AddMember("a", ZorWBJsonValue(1)));
}

TEST(ZorWBJsonTree, MembersAreSortedBySignedBytesAndDuplicatesKept) {
    ZorWBJsonValue object = ZorWBJsonValue::MakeObject();
    ASSERT_TRUE(object.AddMember("b", ZorWBJsonValue(1)));
    ASSERT_TRUE(object.AddMember("a", ZorWBJsonValue(2)));
    ASSERT_TRUE(object.AddMember("ab", ZorWBJsonValue(3)));
    ASSERT_TRUE(object.AddMember("a", ZorWBJsonValue(4)));
    ASSERT_TRUE(object.AddMember("\xC3\xA9", ZorWBJsonValue(5)));  // bytes above 127 are negative
    ASSERT_TRUE(object.AddMember("B", ZorWBJsonValue(6)));
    ASSERT_TRUE(object.AddMember("", ZorWBJsonValue(7)));
    EXPECT_EQ(Printed(object), "{\"\":7,\"\xC3\xA9\":5,\"B\":6,\"a\":2,\"a\":4,\"ab\":3,\"b\":1}");

    // Any insertion order gives the stable sort of the keys.
    std::mt19937 random(5);
    const char alphabet[] = {'a', 'b', 'Z', '0', '\x80', '\xFF', '_'};
    for (int round = 0; round < 200; ++round) {
        ZorWBJsonValue sorted = ZorWBJsonValue::MakeObject();
        std::vector<std::pair<std::string, int>> members;
        int count = 1 + static_cast<int>(random() % 30);
        for (int i = 0; i < count; ++i) {
            std::string key;
            for (int length = static_cast<int>(random() % 4); length > 0; --length)
                key += alphabet[random() % sizeof alphabet];
            members.emplace_back(key, i);
            ASSERT_TRUE(sorted.AddMember(key, ZorWBJsonValue(i)));
        }
        std::stable_sort(members.begin(), members.end(),
                         [](const auto& a, const auto& b) { return SignedLess(a.first, b.first); });
        std::string expected = "{";
        for (std::size_t i = 0; i < members.size(); ++i) {
            if (i > 0) expected += ",";
            expected += "\"" + members[i].first + "\":" + std::to_string(members[i].second);
        }
        EXPECT_EQ(Printed(sorted), expected + "}");
        EXPECT_EQ(sorted.GetNbOfEntries(), count);
    }
    EXPECT_EQ(ZorWBJsonValue::CompareKeys("a", "ab"), -1);
    EXPECT_EQ(ZorWBJsonValue::CompareKeys("\x80", "a"), -1);
    EXPECT_EQ(ZorWBJsonValue::CompareKeys("b", "b"), 0);
    EXPECT_EQ(ZorWBJsonValue::CompareKeys("c", "b"), 1);
}

TEST(ZorWBJsonTree, ContainersStartWithTenEntriesAndDouble) {
    ZorWBJsonValue list = ZorWBJsonValue::MakeList();
    ZorWBJsonValue object = ZorWBJsonValue::MakeObject();
    EXPECT_EQ(list.GetRoom(), 0);
    std::vector<int> rooms;
    for (int i = 0; i < 41; ++i) {
        ASSERT_TRUE(list.Append(ZorWBJsonValue(i)));
        ASSERT_TRUE(object.AddMember("k", ZorWBJsonValue(i)));
        rooms.push_back(list.GetRoom());
        EXPECT_EQ(object.GetRoom(), list.GetRoom());
    }
    EXPECT_EQ(rooms[0], 10);
    EXPECT_EQ(rooms[9], 10);
    EXPECT_EQ(rooms[10], 20);
    EXPECT_EQ(rooms[20], 40);
    EXPECT_EQ(rooms[40], 80);
}

TEST(ZorWBJsonTree, ContainersAreSharedAndCyclesRefused) {
    ZorWBJsonValue list = ZorWBJsonValue::MakeList();
    ZorWBJsonValue copy = list;
    ASSERT_TRUE(copy.Append(ZorWBJsonValue(1)));
    EXPECT_EQ(Printed(list), "[1]");
    ZorWBJsonValue object = ZorWBJsonValue::MakeObject();
    ASSERT_TRUE(object.AddMember("x", list));
    ASSERT_TRUE(object.AddMember("y", list));
    ASSERT_TRUE(list.Append(ZorWBJsonValue(2)));
    EXPECT_EQ(Printed(object), "{\"x\":[1,2],\"y\":[1,2]}");
    // No container may hold itself, directly or through others.
    EXPECT_FALSE(list.Append(list));
    EXPECT_FALSE(list.Append(object));
    EXPECT_FALSE(object.AddMember("z", object));
    ZorWBJsonValue outer = ZorWBJsonValue::MakeList();
    ASSERT_TRUE(outer.Append(object));
    EXPECT_FALSE(list.Append(outer));
    EXPECT_EQ(Printed(outer), "[{\"x\":[1,2],\"y\":[1,2]}]");
    ZorWBJsonValue assigned;
    assigned = outer;
    outer = ZorWBJsonValue(5);
    EXPECT_EQ(Printed(assigned), "[{\"x\":[1,2],\"y\":[1,2]}]");
    // Assigning a value that lives inside the container being released.
    ZorWBJsonValue holder = ZorWBJsonValue::MakeList();
    ASSERT_TRUE(holder.Append(ZorWBJsonValue(ZorQelString("inner"))));
    ZorWBJsonValue only = holder;
    holder = ZorWBJsonValue();
    EXPECT_EQ(Printed(only), "[\"inner\"]");
}

TEST(ZorWBJsonTree, DeepNestingPrintsAndReleasesWithoutRecursion) {
    // Far deeper than a recursive printer or release could go on the stack.
    const int depth = 200000;
    ZorWBJsonValue root = ZorWBJsonValue::MakeList();
    ZorWBJsonValue current = root;
    for (int i = 0; i < depth; ++i) {
        ZorWBJsonValue next = ZorWBJsonValue::MakeList();
        ASSERT_TRUE(current.Append(next));
        current = next;
    }
    current = ZorWBJsonValue();
    std::string text = Printed(root);
    ASSERT_EQ(text.size(), 2u * (depth + 1));
    EXPECT_EQ(text.substr(0, 3), "[[[");
    EXPECT_EQ(text.substr(text.size() - 3), "]]]");
    root = ZorWBJsonValue();  // releases every nested list
}
