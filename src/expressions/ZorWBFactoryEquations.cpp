// The factory's equations: creation in id order, links, lookups and removal.

#include <algorithm>
#include <new>

#include "expressions/ZorWBEquation.h"
#include "expressions/ZorWBFactory.h"

ZorWBEquation* ZorWBFactory::AddEquation(ZorWBExpression* root, ZorWBEquationType type) {
    if (!root || root->GetFactory() != this) return nullptr;
    ZorWBEquation* equation =
        new (std::nothrow) ZorWBEquation(this, root, type, _nextEquationId, _equations.GetLast());
    if (!equation) return nullptr;
    try {
        _equations.Add(equation);
    } catch (const std::bad_alloc&) {
        delete equation;
        return nullptr;
    }
    ++_nextEquationId;
    return equation;
}

ZorWBEquation* ZorWBFactory::AddEquation(ZorWBExpression* left, ZorWBEquationType type,
                                         ZorWBExpression* right) {
    return AddEquation(right ? CreateSub(left, right) : left, type);
}

bool ZorWBFactory::RemoveEquation(ZorWBEquation*& equation) {
    if (!equation || !_equations.Remove(equation)) return false;
    delete equation;
    equation = nullptr;
    return true;
}

ZorWBEquation* ZorWBFactory::GetEquationById(int id) const {
    auto begin = _equations.begin();
    auto end = _equations.end();
    auto found = std::lower_bound(begin, end, id, [](const ZorWBEquation* equation, int key) {
        return equation->GetId() < key;
    });
    return (found != end && (*found)->GetId() == id) ? *found : nullptr;
}

ZorWBEquation* ZorWBFactory::GetEquationByName(const ZorQelString& name) const {
    for (ZorWBEquation* equation : _equations) {
        if (equation->GetName() == name) return equation;
    }
    return nullptr;
}

ZorWBEquation* ZorWBFactory::GetNextEquation(const ZorWBEquation* equation) {
    return equation ? equation->GetNext() : GetFirstEquation();
}

const ZorWBEquation* ZorWBFactory::GetNextEquation(const ZorWBEquation* equation) const {
    return equation ? equation->GetNext() : GetFirstEquation();
}

ZorWBEquation* ZorWBFactory::GetPrevEquation(const ZorWBEquation* equation) {
    return equation ? equation->GetPrev() : GetLastEquation();
}

const ZorWBEquation* ZorWBFactory::GetPrevEquation(const ZorWBEquation* equation) const {
    return equation ? equation->GetPrev() : GetLastEquation();
}
