// Copies of expressions and equations into this factory, from this factory or
// another one.

#include <exception>
#include <unordered_map>
#include <vector>

#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"

ZorWBVariable* ZorWBFactory::MatchVariable(ZorWBVariable* source) {
    const ZorQelString& name = source->GetName();
    ZorWBVariable* variable = GetVariable(name);
    if (variable) return variable;
    variable = CreateVariable();
    if (!variable) return nullptr;
    variable->SetName(name);
    variable->SetValue(source->GetExprValue(), nullptr);
    double preferred = 0.0;
    if (source->GetPreferedValue(preferred)) variable->SetPreferedValue(preferred);
    variable->Fix(source->IsFixed());
    variable->SetDividedFlag(source->GetDividedFlag());
    return variable;
}

ZorWBExpression* ZorWBFactory::CloneWith(
    const ZorWBExpression* source,
    const std::function<ZorWBVariable*(ZorWBVariable*)>& mapVariable) {
    if (!source) return nullptr;
    ZorWBFactory* from = source->GetFactory();
    std::unordered_map<const ZorWBExpression*, ZorWBExpression*> copies;
    std::vector<ZorWBExpression*> children;
    return ZorWBGraphWalk::PostOrder<ZorWBExpression*>(
        source, copies, [&](const ZorWBExpression* node) -> ZorWBExpression* {
            ZorWBExpression* self = const_cast<ZorWBExpression*>(node);
            if (node->GetType() == ZorWBExpressionType::Variable)
                return mapVariable(static_cast<ZorWBVariable*>(self));
            if (node->GetType() == ZorWBExpressionType::Constant) {
                ZorWBPredefinedConst index;
                if (from->IsPredefinedConstant(static_cast<const ZorWBConstant*>(node), index))
                    return GetConstant(index);
                return CreateConstant(node->GetExprValue());
            }
            if (node->GetType() == ZorWBExpressionType::BlackBox) {
                if (from == this) return self;
                ZorWBBlackBox* bb = static_cast<const ZorWBBlackBoxOperator*>(node)->GetBlackBox();
                if (!bb || bb->IsInternal()) return nullptr;
            }
            int n = ZorWBGraphWalk::NbOfChildren(node);
            children.assign(static_cast<std::size_t>(n), nullptr);
            for (int i = 0; i < n; ++i) {
                children[static_cast<std::size_t>(i)] = copies[ZorWBGraphWalk::Child(node, i)];
                if (!children[static_cast<std::size_t>(i)]) return nullptr;
            }
            return MakeLike(nullptr, node, n, children.data());
        });
}

ZorWBExpression* ZorWBFactory::CloneExpression(const ZorWBExpression* source,
                                               ZorWBVariable* const* variableMap, int mapSize) try {
    if (!source) return nullptr;
    bool sameFactory = source->GetFactory() == this;
    return CloneWith(source, [&](ZorWBVariable* variable) -> ZorWBVariable* {
        int index = variable->GetIdx();
        if (variableMap && index >= 0 && index < mapSize && variableMap[index]) {
            ZorWBVariable* mapped = variableMap[index];
            return mapped->GetFactory() == this ? mapped : nullptr;
        }
        return sameFactory ? variable : MatchVariable(variable);
    });
} catch (const std::exception&) {
    return nullptr;
}

int ZorWBFactory::CloneEquations(const ZorWBFactory& source,
                                 const ZorQelIntArray* equationIds) try {
    bool sameFactory = &source == this;
    // Matching all variables first, in index order, gives a new factory the
    // source's variables at the same indices.
    std::vector<ZorWBVariable*> matched;
    for (int i = 0; i < source.GetNbOfVariables(); ++i) {
        ZorWBVariable* variable = source.GetVariable(i);
        matched.push_back(sameFactory ? variable : MatchVariable(variable));
        if (!matched.back()) return -1;
    }
    int count = source.GetNbOfEquations();  // copies into this factory come after
    int added = 0;
    for (int e = 0; e < count; ++e) {
        ZorWBEquation* original = source.GetEquation(e);
        if (equationIds && !equationIds->Contains(original->GetId())) continue;
        ZorWBExpression* root =
            CloneExpression(original->GetRoot(), matched.data(), static_cast<int>(matched.size()));
        ZorWBEquation* copy = AddEquation(root, original->GetType());
        if (!copy) return -1;
        for (int index : original->_theoreticalVariables) {
            ZorWBVariable* variable = index >= 0 && index < static_cast<int>(matched.size())
                                          ? matched[static_cast<std::size_t>(index)]
                                          : nullptr;
            copy->_theoreticalVariables.Add(variable ? variable->GetIdx() : index);
        }
        copy->SetState(original->GetState());
        if (!original->_name.IsEmpty() && original->_name != ZorQelString("eq") + original->GetId())
            copy->SetName(original->_name);
        ++added;
    }
    return added;
} catch (const std::exception&) {
    return -1;
}
