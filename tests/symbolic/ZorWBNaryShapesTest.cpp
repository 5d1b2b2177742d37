#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "SymbolicTestSupport.h"
#include "symbolic/ZorWBNaryShapes.h"

namespace {

using Type = ZorWBExpressionType;

bool IsNary(Type type) {
    return type == Type::Sum || type == Type::Product || type == Type::Min || type == Type::Max;
}

std::string Join(const std::vector<std::string>& operands) {
    std::string text;
    for (const std::string& operand : operands)
        text += (text.empty() ? "" : ", ") + operand;
    return text;
}

// The tree a graph stands for, written out.
std::string Shape(const ZorWBExpression* e) {
    if (e->GetNbOfChildren() == 0) return Text(e);
    std::vector<std::string> operands;
    for (int i = 0; i < e->GetNbOfChildren(); ++i)
        operands.push_back(Shape(e->GetChild(i)));
    return std::string(ZorWBExpressionTypeName(e->GetType())) + "(" + Join(operands) + ")";
}

std::vector<std::string> MergedOperands(const ZorWBExpression* e);

// The reference flattening, on the tree: every level merged in turn.
std::string Merged(const ZorWBExpression* e) {
    if (e->GetNbOfChildren() == 0) return Text(e);
    std::vector<std::string> operands;
    if (IsNary(e->GetType())) {
        operands = MergedOperands(e);
    } else {
        for (int i = 0; i < e->GetNbOfChildren(); ++i)
            operands.push_back(Merged(e->GetChild(i)));
    }
    return std::string(ZorWBExpressionTypeName(e->GetType())) + "(" + Join(operands) + ")";
}

// The children merged; then, last to first, each child of the parent's type
// leaves its place and its own merged operands go to the end.
std::vector<std::string> MergedOperands(const ZorWBExpression* e) {
    int n = e->GetNbOfChildren();
    std::vector<std::string> operands;
    for (int i = 0; i < n; ++i)
        operands.push_back(Merged(e->GetChild(i)));
    for (int i = n - 1; i >= 0; --i) {
        if (e->GetChild(i)->GetType() != e->GetType()) continue;
        operands.erase(operands.begin() + i);
        for (const std::string& operand : MergedOperands(e->GetChild(i)))
            operands.push_back(operand);
    }
    return operands;
}

// Random graphs of nested n-ary operators, functions and leaves; small
// nodes made before in the same graph are used again.
class NaryGraphs {
  public:
    NaryGraphs(ZorWBFactory& f, unsigned int seed) : _f(f), _random(seed) {
        for (const char* name : {"x", "y", "z"})
            _leaves.push_back(NamedVariable(f, name));
        _leaves.push_back(Int(f, 2));
    }

    ZorWBExpression* Graph(int depth) {
        _made = _leaves;
        return Make(depth);
    }

  private:
    ZorWBExpression* Make(int depth) {
        if (depth == 0 || Pick(5) == 0) return _made[Pick(static_cast<int>(_made.size()))];
        static const Type nary[] = {Type::Sum, Type::Product, Type::Min, Type::Max};
        ZorWBExpression* made = nullptr;
        if (Pick(4) == 0) {
            made = _f.CreateSin(Make(depth - 1));
        } else {
            std::vector<ZorWBExpression*> operands(2 + Pick(2));
            // Mostly one type, so that levels nest.
            Type type = Pick(3) ? Type::Sum : nary[Pick(4)];
            for (ZorWBExpression*& operand : operands)
                operand = Make(depth - 1);
            made = _f.CreateOperator(type, static_cast<int>(operands.size()), operands.data());
        }
        if (depth <= 2) _made.push_back(made);
        return made;
    }

    int Pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(_random); }

    ZorWBFactory& _f;
    std::mt19937 _random;
    std::vector<ZorWBExpression*> _leaves;
    std::vector<ZorWBExpression*> _made;
};

}  // namespace

TEST(ZorWBNaryShapes, FlatteningGivesWhatMergingEachLevelInTurnGives) {
    ZorWBFactory f;
    NaryGraphs graphs(f, 11);
    for (int round = 0; round < 400; ++round) {
        ZorWBExpression* root = graphs.Graph(2 + round % 4);
        std::string before = Shape(root);
        ZorWBExpression* flat = ZorWBFlatten(f, root);
        ASSERT_NE(flat, nullptr);
        EXPECT_EQ(Shape(flat), Merged(root)) << before;
        EXPECT_EQ(Shape(root), before);  // the input is not changed
    }
    EXPECT_EQ(ZorWBFlatten(f, nullptr), nullptr);
}

TEST(ZorWBNaryShapes, FlatteningAChainMakesOnlyTheNodesThatStay) {
    // Sum(...Sum(Sum(v0, v1), v2)..., vn): one node of n + 1 operands, the
    // last added first, where merging each level in turn would make n
    // nodes of 2 to n + 1 operands.
    const int n = 5000;
    ZorWBFactory f;
    std::vector<ZorWBVariable*> v{NamedVariable(f, "a"), NamedVariable(f, "b"),
                                  NamedVariable(f, "c")};
    ZorWBExpression* chain = f.CreateSum(v[0], v[1]);
    for (int i = 2; i <= n; ++i)
        chain = f.CreateSum(chain, v[std::size_t(i % 3)]);
    ZorWBExpression* root = f.CreateSin(chain);
    int before = f.GetGlobalTag();
    ZorWBExpression* flat = ZorWBFlatten(f, root);
    EXPECT_EQ(f.GetGlobalTag() - before, 2);  // the merged sum and its sine
    const ZorWBExpression* sum = flat->GetChild(0);
    ASSERT_EQ(sum->GetNbOfChildren(), n + 1);
    EXPECT_EQ(sum->GetChild(0), v[std::size_t(n % 3)]);
    EXPECT_EQ(sum->GetChild(n - 1), v[0]);
    EXPECT_EQ(sum->GetChild(n), v[1]);

    // A chain a million levels deep flattens on a small call stack.
    ZorWBExpression* deep = v[0];
    for (int i = 0; i < 1000000; ++i)
        deep = f.CreateProduct(deep, v[1]);
    EXPECT_EQ(ZorWBFlatten(f, deep)->GetNbOfChildren(), 1000001);
}

TEST(ZorWBNaryShapes, BinarisingPairsFromTheLeft) {
    ZorWBFactory f;
    ZorWBVariable* a = NamedVariable(f, "a");
    ZorWBVariable* b = NamedVariable(f, "b");
    const int n = 300000;
    std::vector<ZorWBExpression*> operands;
    for (int i = 0; i < n; ++i)
        operands.push_back(i % 2 ? b : a);
    ZorWBExpression* sum = f.CreateSum(n, operands.data());
    int before = f.GetGlobalTag();
    const ZorWBExpression* binary = ZorWBBinarise(f, sum, true);
    EXPECT_EQ(f.GetGlobalTag() - before, n - 1);
    // ((a + b) + a) + ... : the left operand is the pair of all but the last.
    for (int i = n - 1; i > 0; --i) {
        ASSERT_EQ(binary->GetNbOfChildren(), 2);
        ASSERT_EQ(binary->GetChild(1), operands[std::size_t(i)]);
        binary = binary->GetChild(0);
    }
    EXPECT_EQ(binary, a);
    // Without a two-operand form a node keeps its operands.
    ZorWBExpression* choice = f.CreateIfThenElse(f.CreateLessEqual(a, b), a, b);
    EXPECT_EQ(ZorWBBinarise(f, choice, false), choice);
}
