#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "ParserTestSupport.h"
#include "parser/ZorWBModelArena.h"

TEST(ZorWBModelArena, PiecesAreAlignedDisjointAndCounted) {
    ZorWBModelArena arena;
    std::mt19937 random(16);
    std::vector<std::pair<unsigned char*, std::size_t>> pieces;
    std::size_t asked = 0;
    for (int i = 0; i < 2000; ++i) {
        // Mostly node-sized pieces, now and then one larger than a block.
        std::size_t size = i % 500 == 7 ? 300000 + random() % 1000 : random() % 200;
        auto* piece = static_cast<unsigned char*>(arena.Allocate(size));
        ASSERT_NE(piece, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(piece) % ZorWBModelArena::Alignment, 0u);
        std::memset(piece, i & 0xff, size);
        pieces.emplace_back(piece, size);
        asked += size;
    }
    // A piece written later never overwrote an earlier one.
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        for (std::size_t j = 0; j < pieces[i].second; ++j)
            ASSERT_EQ(pieces[i].first[j], static_cast<unsigned char>(i & 0xff)) << i;
    }
    EXPECT_GE(arena.GetReservedSize(), asked);
    EXPECT_LE(arena.GetReservedSize(), 2 * asked + 512 * 1024);
}

// Large models fill several blocks and node lists; removed equations and
// everything else end with the model (the sanitizer build checks for leaks
// and stale reads).
TEST(ZorWBModel, NodesLiveInTheModelUntilItEnds) {
    ZorWBModel model;
    ZorWBLocation here(1, 1, 1, 2);
    std::vector<ZorWBEqNode*> equations;
    for (int i = 0; i < 3000; ++i) {
        ZorWBNode* x = model.CreateVariable(here, ("x" + std::to_string(i % 40)).c_str());
        ZorWBNode* c = model.CreateConstant(here, ZorWBValue(i), here, "mm");
        ZorWBNode* terms[] = {x, c};
        ZorWBNode* sum =
            model.CreateOperator(here, ZorWBExpressionType::Sum, ZorWBNoComparison, 2, terms);
        ASSERT_NE(sum, nullptr);
        EXPECT_EQ(sum->GetChild(1), c);
        EXPECT_EQ(c->GetParentNode(), sum);
        equations.push_back(model.AddEquation(sum));
    }
    EXPECT_EQ(model.GetNbOfNodes(), 3 * 3000);
    for (int i = 0; i < 3000; i += 2)
        EXPECT_EQ(model.RemoveEquation(equations[static_cast<std::size_t>(i)]), 0);
    EXPECT_EQ(model.GetNbOfEquations(), 1500);
    EXPECT_EQ(model.GetEquationById(2), nullptr);
    EXPECT_EQ(model.GetEquationById(2999), equations[2999]);
    EXPECT_EQ(model.GetEquationById(3000), nullptr);
    EXPECT_EQ(model.GetEquationById(-1), nullptr);
    EXPECT_EQ(ZorWBModelPrinter::Print(equations[1]->GetLeftTerm()).GetStdString(), "x1 + 1 mm");

    ZorWBNode* none[] = {nullptr};
    EXPECT_EQ(model.CreateOperator(here, ZorWBExpressionType::Sum, ZorWBNoComparison, -1, none),
              nullptr);
    EXPECT_EQ(model.CreateOperator(here, ZorWBExpressionType::Sum, ZorWBNoComparison, 2, nullptr),
              nullptr);
}

// The arguments of a call are gathered in the parse's arena, growing past
// their first room; the identifier texts live there too.
TEST(ZorWBGrammar, LongArgumentListsKeepTheirOrder) {
    std::string text = "f(";
    for (int i = 0; i < 37; ++i)
        text += (i ? ", a" : "a") + std::to_string(i);
    text += ") = longvariablename_" + std::string(200, 'z') + ";";
    ParsedText parsed(text.c_str());
    ASSERT_EQ(parsed.errors, 0);
    ZorWBNode* call = parsed.Equation(0)->GetLeftTerm();
    ASSERT_EQ(call->GetNbOfChildren(), 37);
    for (int i = 0; i < 37; ++i)
        EXPECT_EQ(ZorWBModelPrinter::Print(call->GetChild(i)).GetStdString(),
                  "a" + std::to_string(i));
    EXPECT_EQ(ZorWBModelPrinter::Print(parsed.Equation(0)->GetRightTerm()).GetStdString(),
              "longvariablename_" + std::string(200, 'z'));
}
