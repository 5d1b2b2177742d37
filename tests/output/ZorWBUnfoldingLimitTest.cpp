// Writers without sharing write a shared node at each of its uses, so the
// text of a graph can grow exponentially with the graph. Past the limit on
// the unfolded tree the writers give up quickly with a visible mark instead
// of running out of time and memory.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "debug/ZorWBDebug.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"
#include "expressions/ZorWBVariable.h"
#include "output/ZorWBEquationPrinter.h"
#include "output/ZorWBEquations.h"

namespace {

// x, then levels Sum(previous, previous): 2^(levels + 1) - 1 nodes unfolded.
ZorWBExpression* Doubling(ZorWBFactory& factory, int levels) {
    ZorWBVariable* x = factory.CreateVariable();
    x->SetName("x");
    ZorWBExpression* e = x;
    for (int i = 0; i < levels; ++i)
        e = factory.CreateSum(e, e);
    return e;
}

}  // namespace

TEST(ZorWBUnfoldingLimit, UnfoldedSizesAreCountedUpToTheLimit) {
    ZorWBFactory factory;
    EXPECT_EQ(ZorWBGraphWalk::UnfoldedSize(Doubling(factory, 10), 1LL << 40), (1LL << 11) - 1);
    EXPECT_EQ(ZorWBGraphWalk::UnfoldedSize(Doubling(factory, 200), 1000), 1000);
    EXPECT_EQ(ZorWBGraphWalk::UnfoldedSize(nullptr, 1000), 0);
    // 2^24 - 1 nodes unfold within the limit, 2^25 - 1 beyond it.
    EXPECT_TRUE(ZorWBGraphWalk::IsUnfoldable(Doubling(factory, 23)));
    EXPECT_FALSE(ZorWBGraphWalk::IsUnfoldable(Doubling(factory, 24)));
}

TEST(ZorWBUnfoldingLimit, WritersMarkWhatTheyCannotUnfold) {
    ZorWBFactory factory;
    ZorWBExpression* small = Doubling(factory, 2);
    ZorWBExpression* huge = Doubling(factory, 100);
    EXPECT_EQ(ZorWBEquationPrinter::Print(small).GetStdString(), "x + x + (x + x)");
    EXPECT_EQ(ZorWBEquationPrinter::Print(huge).GetStdString(), "?");
    factory.AddEquation(huge, ZorWBEqualZero);
    factory.AddEquation(small, ZorWBEqualZero);
    EXPECT_EQ(ZorWBEquationPrinter::Print(factory).GetStdString(),
              "? = 0;\nx + x + (x + x) = 0;\n");
    EXPECT_EQ(ZorWBDebug::ExpStr(huge).GetStdString(), "expression too large to write");

    // The replay writer has no term for it: its line stays open, so the
    // section does not read back.
    ZorWBEquations writer(factory, ZorQelStorage::InputPart, 0);
    EXPECT_EQ(writer.CreateTerm(huge, true), nullptr);
    std::unique_ptr<ZorQelExpressionTerm> term(writer.CreateTerm(small, true));
    ASSERT_NE(term, nullptr);
    ZorQelStream stream;
    stream.OpenMemory();
    writer.WriteEquations(stream, true);
    const ZorQelStorage::Section* section =
        stream.GetStorage().FindSection("#!EQUATIONS", ZorQelStorage::InputPart);
    ASSERT_NE(section, nullptr);
    std::string body = section->body.GetStdString();
    EXPECT_EQ(body.substr(0, 5), "eq0= ");
    EXPECT_EQ(body.substr(5, 3), "eq1");
}
