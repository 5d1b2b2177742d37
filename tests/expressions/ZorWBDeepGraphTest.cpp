// Graphs a million nodes deep through the operations a host runs on them
// that have no deep test of their own: every walk must use the heap, never
// the call stack (a recursive walk would overflow it and end the process).

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBVariable.h"

namespace {

constexpr int Depth = 1000000;

// x, then alternately Sum(previous, y) and Abs(previous): a chain of
// binary and unary nodes sharing the two leaves.
ZorWBExpression* Chain(ZorWBFactory& f, ZorWBVariable* x, ZorWBVariable* y) {
    ZorWBExpression* e = x;
    for (int i = 0; i < Depth; ++i)
        e = i % 2 ? f.CreateAbs(e) : f.CreateSum(e, y);
    return e;
}

}  // namespace

TEST(ZorWBDeepGraph, CopyCompareSubstituteAnalyseResetAndDestroyAMillionDeepGraph) {
    auto factory = std::make_unique<ZorWBFactory>();
    ZorWBFactory& f = *factory;
    ZorWBVariable* x = f.CreateVariable();
    ZorWBVariable* y = f.CreateVariable();
    x->SetExprValue(ZorWBValue(1));
    y->SetExprValue(ZorWBValue(1));
    ZorWBExpression* chain = Chain(f, x, y);
    ASSERT_EQ(chain->GetValue().GetAsInteger(), 1 + Depth / 2);

    // Invalidation reaches every ancestor; the factory-wide reset too.
    y->SetExprValue(ZorWBValue(2));
    EXPECT_EQ(chain->GetValue().GetAsInteger(), 1 + Depth);
    f.ResetBuffer(nullptr);
    EXPECT_EQ(chain->GetValue().GetAsInteger(), 1 + Depth);

    // Analyses.
    ZorQelListPZorWBVariable present;
    EXPECT_EQ(chain->FindPresentVariables(present), 2);
    EXPECT_FALSE(chain->IsFree(y));
    EXPECT_FALSE(chain->IsConstant());

    // A copy in another factory is equal in structure and value.
    ZorWBFactory other;
    ZorWBExpression* copy = other.CloneExpression(chain);
    ASSERT_NE(copy, nullptr);
    other.GetVariable(0)->SetExprValue(ZorWBValue(1));
    other.GetVariable(1)->SetExprValue(ZorWBValue(2));
    EXPECT_EQ(copy->GetValue().GetAsInteger(), 1 + Depth);
    EXPECT_TRUE(Chain(f, x, y)->IsEqualTo(chain));

    // Substituting x = 5 copies the whole chain.
    ZorWBVariable* variables[] = {x};
    ZorWBExpression* five[] = {f.CreateIntegerConstant(5)};
    ZorWBExpression* substituted = chain->PartialEval(variables, five, 1);
    ASSERT_NE(substituted, nullptr);
    EXPECT_TRUE(substituted->IsFree(x));
    EXPECT_EQ(substituted->GetValue().GetAsInteger(), 5 + Depth);

    // The equations copy too, and everything is destroyed without a deep
    // call stack.
    f.AddEquation(chain, ZorWBEqualZero);
    ZorWBFactory equations;
    EXPECT_EQ(equations.CloneEquations(f), 1);
    factory.reset();
}

// A million nodes sharing a few constants: removing them, or closing the
// temporary storage that made them, settles each edge once instead of
// searching a million-long parent list for each dying node.
TEST(ZorWBDeepGraph, RemovalAndTemporaryStorageStayLinearInTheUsersOfASharedConstant) {
    auto factory = std::make_unique<ZorWBFactory>();
    ZorWBFactory& f = *factory;
    ZorWBVariable* x = f.CreateVariable();
    x->SetExprValue(ZorWBValue(3));
    ZorWBConstant* half = f.CreateRealConstant(0.5);
    ZorWBConstant* two = f.GetTwo();
    int before = f.GetNbOfExpressions();

    // Products of x and the shared constants under one sum: the products go
    // in the order of the sum's children, the first users of the constants
    // first.
    std::vector<ZorWBExpression*> terms(static_cast<std::size_t>(Depth));
    auto makeTerms = [&]() {
        for (std::size_t i = 0; i < terms.size(); ++i)
            terms[i] = i % 2 ? f.CreateProduct(half, x) : f.CreateProduct(x, two);
    };
    constexpr double Value = Depth / 2 * (1.5 + 6.0);
    makeTerms();
    ZorWBExpression* root = f.CreateSum(Depth, terms.data());
    ZorWBExpression* kept = f.CreateProduct(two, half);
    ASSERT_DOUBLE_EQ(root->GetValue().GetAsReal(), Value);
    EXPECT_TRUE(f.RemoveExpression(root));
    EXPECT_EQ(f.GetNbOfExpressions(), before + 1);
    ASSERT_EQ(two->GetNbOfParents(), 1);
    EXPECT_EQ(two->GetParent(0), kept);
    EXPECT_EQ(half->GetNbOfParents(), 1);
    EXPECT_EQ(x->GetNbOfParents(), 0);

    // The same graph made in temporary storage and reached by an equation:
    // the permanent copies join the constants' parents before the
    // temporary nodes leave them.
    f.UseTemporaryStorage(true);
    makeTerms();
    ZorWBEquation* equation = f.AddEquation(f.CreateSum(Depth, terms.data()), ZorWBEqualZero);
    f.UseTemporaryStorage(false);
    EXPECT_EQ(f.GetNbOfTemporaryExpressions(), 0);
    EXPECT_EQ(two->GetNbOfParents(), 1 + Depth / 2);
    EXPECT_EQ(half->GetNbOfParents(), 1 + Depth / 2);
    EXPECT_EQ(x->GetNbOfParents(), Depth);
    EXPECT_EQ(equation->GetRoot()->GetNbOfChildren(), Depth);
    EXPECT_DOUBLE_EQ(equation->GetRoot()->GetValue().GetAsReal(), Value);
    factory.reset();
}
