#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "expressions/ZorWBNodeAnnex.h"
#include "expressions/ZorWBParentList.h"

namespace {

// Addresses standing for parents: the list stores them and never reads
// through them.
ZorWBExpression* Parent(int i) {
    alignas(8) static char storage[8 * 64];
    return reinterpret_cast<ZorWBExpression*>(storage + 8 * i);
}

void ExpectSame(const ZorWBParentList& list, const std::vector<ZorWBExpression*>& model) {
    ASSERT_EQ(list.GetSize(), static_cast<int>(model.size()));
    EXPECT_EQ(list.IsEmpty(), model.empty());
    for (int i = 0; i < list.GetSize(); ++i)
        EXPECT_EQ(list.Get(i), model[static_cast<std::size_t>(i)]);
    EXPECT_EQ(list.Get(-1), nullptr);
    EXPECT_EQ(list.Get(list.GetSize()), nullptr);
    EXPECT_EQ(list.GetLast(), model.empty() ? nullptr : model.back());
}

}  // namespace

// Random additions and removals, with and without an annex, against a plain
// vector: the parents keep their order, a removal takes the most recent
// occurrence, and the annex stays through every move between the single
// word and the blocks.
TEST(ZorWBParentList, KeepsItsParentsInOrderAndItsAnnexThroughEveryChange) {
    std::mt19937 random(7);
    ZorWBNodeAnnex annexes[2];
    for (int round = 0; round < 200; ++round) {
        ZorWBParentList list;
        std::vector<ZorWBExpression*> model;
        ZorWBNodeAnnex* annex = nullptr;
        for (int step = 0; step < 60; ++step) {
            int choice = std::uniform_int_distribution<int>(0, 9)(random);
            ZorWBExpression* parent = Parent(std::uniform_int_distribution<int>(0, 5)(random));
            if (choice < 5) {
                ASSERT_TRUE(list.Add(parent));
                model.push_back(parent);
            } else if (choice < 8) {
                auto last = std::find(model.rbegin(), model.rend(), parent);
                EXPECT_EQ(list.Remove(parent), last != model.rend());
                if (last != model.rend()) model.erase(std::next(last).base());
            } else if (choice == 8) {
                annex = annex == &annexes[0] ? &annexes[1] : &annexes[0];
                ASSERT_TRUE(list.SetAnnex(annex));
            } else {
                auto drop = [parent](const ZorWBExpression* entry) { return entry == parent; };
                list.RemoveIf(drop);
                model.erase(std::remove(model.begin(), model.end(), parent), model.end());
            }
            ExpectSame(list, model);
            EXPECT_EQ(list.GetAnnex(), annex);
        }
        list.Clear();
        ExpectSame(list, {});
        EXPECT_EQ(list.GetAnnex(), annex);
    }
}
