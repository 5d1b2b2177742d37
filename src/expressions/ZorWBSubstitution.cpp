// Substitution of expressions for variables.
//
// PartialEval and Evaluate copy: a variable listed in vars gives its exprs
// entry, any other leaf itself, and an operator itself when none of its
// children changed, else a new node of the same kind over the new children
// (a Step keeps its parameters, a black-box call its black box). Shared nodes
// are handled once, so the result keeps the sharing of the source. A null
// child result makes every node above it null.
//
// Below the level ZorWBLevel::NewPartialEval, PartialEval works as the older
// evaluator did: the expression is entered as an equation of type 1 (which
// takes an equation id), its root duplicated (DuplicateRoot) and the equation
// removed; the substitution then runs on the duplicate, so the result is
// always a copy, and the duplicate's nodes that the result does not use are
// removed again.
//
// ReplaceVar, ReplaceBBx and Replace work in place instead: every node of the
// subgraph that holds the target as a child gets the new expression there.

#include <exception>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"
#include "expressions/ZorWBVariable.h"

ZorWBExpression* ZorWBExpression::Substitute(ZorWBExpression* root, ZorWBVariable** vars,
                                             ZorWBExpression** exprs, int n) {
    if (!root) return nullptr;
    ZorWBFactory& factory = *root->_factory;
    if (n >= 1 && (!vars || !exprs)) return nullptr;
    std::unordered_map<const ZorWBExpression*, ZorWBExpression*> results;
    std::vector<ZorWBExpression*> children;
    return ZorWBGraphWalk::PostOrder<ZorWBExpression*>(
        root, results, [&](const ZorWBExpression* node) -> ZorWBExpression* {
            ZorWBExpression* self = const_cast<ZorWBExpression*>(node);
            if (node->GetType() == ZorWBExpressionType::Variable) {
                for (int i = 0; i < n; ++i) {
                    if (vars[i] == node) return exprs[i];
                }
                return self;
            }
            int count = ZorWBGraphWalk::NbOfChildren(node);
            bool changed = false;
            children.assign(static_cast<std::size_t>(count), nullptr);
            for (int i = 0; i < count; ++i) {
                ZorWBExpression* child = ZorWBGraphWalk::Child(node, i);
                ZorWBExpression* result = results[child];
                if (!result) return nullptr;
                children[static_cast<std::size_t>(i)] = result;
                changed = changed || result != child;
            }
            return changed ? factory.MakeLike(nullptr, node, count, children.data()) : self;
        });
}

ZorWBExpression* ZorWBExpression::PartialEval(ZorWBVariable** vars, ZorWBExpression** exprs,
                                              int n) {
    if (!GetEnvironment().CheckLevel(ZorWBLevel::NewPartialEval))
        return PartialEvalFromDuplicate(vars, exprs, n);
    return Substitute(this, vars, exprs, n);
}

ZorWBExpression* ZorWBExpression::PartialEval(ZorWBVariable* variable,
                                              ZorWBExpression* expression) {
    return PartialEval(&variable, &expression, 1);
}

ZorWBExpression* ZorWBExpression::Evaluate(int n, ZorWBVariable** vars, ZorWBExpression** exprs) {
    return Substitute(this, vars, exprs, n);
}

ZorWBExpression* ZorWBExpression::PartialEvalFromDuplicate(ZorWBVariable** vars,
                                                           ZorWBExpression** exprs, int n) try {
    ZorWBFactory& factory = *_factory;
    ZorWBEquation* equation = factory.AddEquation(this, ZorWBEqualZero);
    if (!equation) return nullptr;
    equation->DuplicateRoot();
    ZorWBExpression* duplicate = equation->GetRoot();
    factory.RemoveEquation(equation);
    ZorWBExpression* result = Substitute(duplicate, vars, exprs, n);
    if (duplicate && duplicate != this && duplicate != result) factory.RemoveExpression(duplicate);
    return result;
} catch (const std::exception&) {
    return nullptr;
}

namespace {

// Puts replacement in place of every child of the subgraph below root that
// matches; nodes of the replacement's own subgraph are left alone, so no
// cycle can form. Returns the new root.
template <class Matches>
ZorWBExpression* ReplaceWhere(ZorWBExpression* root, ZorWBExpression* replacement,
                              Matches matches) try {
    if (!root || !replacement || replacement->GetFactory() != root->GetFactory()) return root;
    if (matches(root)) return replacement;
    std::vector<ZorWBExpression*> nodes = ZorWBGraphWalk::Collect(root);
    std::vector<ZorWBExpression*> inside = ZorWBGraphWalk::Collect(replacement);
    std::unordered_set<const ZorWBExpression*> untouchable(inside.begin(), inside.end());
    for (ZorWBExpression* node : nodes) {
        if (node->IsLeaf() || untouchable.count(node)) continue;
        for (int i = 0; i < node->GetNbOfChildren(); ++i) {
            if (matches(node->GetChild(i))) node->ReplaceChild(i, replacement);
        }
    }
    return root;
} catch (const std::exception&) {
    return root;
}

}  // namespace

ZorWBExpression* ZorWBExpression::Replace(ZorWBExpression* oldNode, ZorWBExpression* newNode) {
    if (!oldNode) return this;
    return ReplaceWhere(this, newNode,
                        [oldNode](const ZorWBExpression* node) { return node == oldNode; });
}

ZorWBExpression* ZorWBExpression::ReplaceVar(ZorWBVariable* variable, ZorWBExpression* expression) {
    return Replace(variable, expression);
}

ZorWBExpression* ZorWBExpression::ReplaceBBx(ZorWBBlackBox* blackBox, ZorWBExpression* expression) {
    if (!blackBox) return this;
    return ReplaceWhere(this, expression, [blackBox](const ZorWBExpression* node) {
        return node->GetType() == ZorWBExpressionType::BlackBox &&
               static_cast<const ZorWBBlackBoxOperator*>(node)->GetBlackBox() == blackBox;
    });
}
