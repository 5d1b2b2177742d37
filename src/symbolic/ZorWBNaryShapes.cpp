// Flattening and binarisation of n-ary operators.
//
// Both rebuild the graph bottom-up (ZorWBGraphWalk::PostOrder), each node
// once, over its children's results. Flattening does not rebuild the nodes
// that disappear: a Sum whose every user is itself a Sum is spliced into its
// users and never made on its own. So the left-grouped chain a+a+...+a of n
// terms, which the parser builds n levels deep, gives one node of n
// operands; rebuilding every level would make nodes of 2, 3, ..., n
// operands, n^2 / 2 pointers in all (16,000 terms took 2 GB). The operands
// of a node that stays are gathered through its spliced descendants with an
// explicit stack, in the order that merging each level in turn gives: the
// operands of other types in order, then the merged operands of the
// children of the same type, the last child first. Binarisation pairs the
// operands in one pass from the left instead of removing the first two of
// the list over and over.
//
// Cost: linear in the nodes of the graph plus the operands of the result. A
// spliced node shared by two users is gathered for each of them, as the
// tree it stands for holds it twice.

#include "symbolic/ZorWBNaryShapes.h"

#include <exception>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"
#include "symbolic/ZorWBNodeRebuild.h"

namespace {

using Type = ZorWBExpressionType;
using Results = std::unordered_map<const ZorWBExpression*, ZorWBExpression*>;

bool IsNary(Type type) {
    return type == Type::Sum || type == Type::Product || type == Type::Min || type == Type::Max;
}

// Whether a child merges into its parent when flattening.
bool MergesInto(const ZorWBExpression* parent, const ZorWBExpression* child) {
    return IsNary(parent->GetType()) && child->GetType() == parent->GetType();
}

// node over operands, with its properties; node itself when the factory
// refuses.
ZorWBExpression* Rebuild(ZorWBFactory& factory, ZorWBExpression* node,
                         const std::vector<ZorWBExpression*>& operands) {
    ZorWBExpression* rebuilt = ZorWBRebuildNode(factory, node, operands);
    if (!rebuilt) return node;
    ZorWBCopyProperties(factory, node, rebuilt);
    return rebuilt;
}

// The nodes that flattening keeps: the root, and every node that has a user
// it does not merge into.
std::unordered_set<const ZorWBExpression*> KeptNodes(const ZorWBExpression* root) {
    std::unordered_set<const ZorWBExpression*> kept{root};
    ZorWBGraphWalk::PreOrder(root, [&kept](const ZorWBExpression* node) {
        for (int i = 0; i < node->GetNbOfChildren(); ++i) {
            const ZorWBExpression* child = node->GetChild(i);
            if (!MergesInto(node, child)) kept.insert(child);
        }
        return true;
    });
    return kept;
}

// The operands of a flattened n-ary node: the results of its children of
// other types in order, then, the last child first, the operands of its
// children of its own type, gathered in the same way.
void GatherOperands(const ZorWBExpression* node, Results& results,
                    std::vector<ZorWBExpression*>& operands) {
    std::vector<const ZorWBExpression*> pending{node};
    while (!pending.empty()) {
        const ZorWBExpression* current = pending.back();
        pending.pop_back();
        int n = current->GetNbOfChildren();
        for (int i = 0; i < n; ++i) {
            const ZorWBExpression* child = current->GetChild(i);
            if (!MergesInto(current, child)) operands.push_back(results[child]);
        }
        for (int i = 0; i < n; ++i) {
            const ZorWBExpression* child = current->GetChild(i);
            if (MergesInto(current, child)) pending.push_back(child);
        }
    }
}

void Pair(ZorWBFactory& factory, Type type, std::vector<ZorWBExpression*>& operands) {
    if (operands.size() <= 2) return;
    // operands[0 .. next) are paired into left.
    ZorWBExpression* left = operands[0];
    std::size_t next = 1;
    for (; operands.size() - next > 1; ++next) {
        ZorWBExpression* two[2] = {left, operands[next]};
        ZorWBExpression* pair = factory.CreateOperator(type, 2, two);
        if (!pair) break;
        left = pair;
    }
    operands[next - 1] = left;
    operands.erase(operands.begin(), operands.begin() + static_cast<std::ptrdiff_t>(next - 1));
}

}  // namespace

ZorWBExpression* ZorWBFlatten(ZorWBFactory& factory, ZorWBExpression* root) try {
    if (!root) return nullptr;
    std::unordered_set<const ZorWBExpression*> kept = KeptNodes(root);
    Results results;
    std::vector<ZorWBExpression*> operands;
    return ZorWBGraphWalk::PostOrder<ZorWBExpression*>(
        root, results, [&](const ZorWBExpression* node) -> ZorWBExpression* {
            ZorWBExpression* e = const_cast<ZorWBExpression*>(node);
            if (e->GetNbOfChildren() == 0 || !kept.count(e)) return e;
            operands.clear();
            if (IsNary(e->GetType())) {
                GatherOperands(e, results, operands);
            } else {
                for (int i = 0; i < e->GetNbOfChildren(); ++i)
                    operands.push_back(results[e->GetChild(i)]);
            }
            return Rebuild(factory, e, operands);
        });
} catch (const std::exception&) {
    return root;
}

ZorWBExpression* ZorWBBinarise(ZorWBFactory& factory, ZorWBExpression* root,
                               bool keepIfThenElse) try {
    if (!root) return nullptr;
    Results results;
    std::vector<ZorWBExpression*> operands;
    return ZorWBGraphWalk::PostOrder<ZorWBExpression*>(
        root, results, [&](const ZorWBExpression* node) -> ZorWBExpression* {
            ZorWBExpression* e = const_cast<ZorWBExpression*>(node);
            if (e->GetNbOfChildren() == 0) return e;
            operands.clear();
            for (int i = 0; i < e->GetNbOfChildren(); ++i)
                operands.push_back(results[e->GetChild(i)]);
            if (!keepIfThenElse || e->GetType() != Type::IfThenElse)
                Pair(factory, e->GetType(), operands);
            return Rebuild(factory, e, operands);
        });
} catch (const std::exception&) {
    return root;
}
