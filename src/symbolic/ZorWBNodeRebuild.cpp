#include "symbolic/ZorWBNodeRebuild.h"

#include "expressions/ZorWBFactory.h"

ZorWBExpression* ZorWBRebuildNode(ZorWBFactory& factory, const ZorWBExpression* node,
                                  const std::vector<ZorWBExpression*>& children) {
    if (!node) return nullptr;
    int n = node->GetNbOfChildren();
    bool same = static_cast<int>(children.size()) == n;
    for (int i = 0; same && i < n; ++i)
        same = children[static_cast<std::size_t>(i)] == node->GetChild(i);
    if (same) return const_cast<ZorWBExpression*>(node);
    ZorWBExpressionType type = node->GetType();
    if (type == ZorWBExpressionType::Sum || type == ZorWBExpressionType::Product ||
        type == ZorWBExpressionType::Min || type == ZorWBExpressionType::Max) {
        if (children.size() == 1) return children.front();
        return factory.CreateOperator(type, static_cast<int>(children.size()), children.data());
    }
    if (static_cast<int>(children.size()) != n) return nullptr;
    // The copy has no parent yet, so replacing its children is cheap.
    ZorWBExpression* copy = factory.CreateOperator(node);
    if (!copy || copy == node) return nullptr;
    for (int i = 0; i < n; ++i) {
        ZorWBExpression* child = children[static_cast<std::size_t>(i)];
        if (copy->GetChild(i) != child && !copy->ReplaceChild(i, child)) return nullptr;
    }
    return copy;
}

void ZorWBCopyProperties(ZorWBFactory& factory, const ZorWBExpression* from, ZorWBExpression* to) {
    if (!from || !to || from == to) return;
    for (int i = 0; i < factory.GetNbOfProperties(); ++i) {
        if (i == factory.GetTemporaryProperty()) continue;
        int value = from->GetProperty(i);
        if (to->GetProperty(i) != value) to->SetProperty(i, value);
    }
}
