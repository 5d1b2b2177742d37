#include "expressions/ZorWBEquation.h"

#include <exception>
#include <unordered_map>
#include <vector>

#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"

ZorWBEquation::ZorWBEquation(ZorWBFactory* factory, ZorWBExpression* root, ZorWBEquationType type,
                             int id, ZorWBEquation* previous)
    : _factory(factory), _root(root), _type(type), _id(id), _previous(previous) {
    if (_previous) _previous->_next = this;
}

ZorWBEquation::~ZorWBEquation() {
    if (_previous) _previous->_next = _next;
    if (_next) _next->_previous = _previous;
}

bool ZorWBEquation::SetRoot(ZorWBExpression* root) {
    if (root && root->GetFactory() != _factory) return false;
    _root = root;
    return true;
}

const ZorQelString& ZorWBEquation::GetName() {
    if (_name.IsEmpty()) _name = ZorQelString("eq") + _id;
    return _name;
}

void ZorWBEquation::GetTheoreticalVarList(ZorQelIntArray* out) const try {
    if (!out) return;
    for (int index : _theoreticalVariables)
        out->Add(index);
} catch (const std::exception&) {
}

void ZorWBEquation::SetTheoreticalVarList(ZorQelIntArray* list) try {
    if (!list) return;
    for (int index : *list)
        _theoreticalVariables.Add(index);
} catch (const std::exception&) {
}

void ZorWBEquation::ForgetVariableIndex(int index) {
    int kept = 0;
    for (int i = 0; i < _theoreticalVariables.GetSize(); ++i) {
        int listed = _theoreticalVariables[i];
        if (listed == index) continue;
        _theoreticalVariables.Set(kept++, listed > index ? listed - 1 : listed);
    }
    _theoreticalVariables.SetSize(kept);
}

bool ZorWBEquation::MarkPresentVariables(ZorQelArray<unsigned char>& present) const try {
    int nbOfVariables = _factory->GetNbOfVariables();
    if (!_root || nbOfVariables == 0) return false;
    present.SetSize(nbOfVariables, 0);
    _root->FillPresentVariables(present.GetData());
    return true;
} catch (const std::exception&) {
    return false;
}

bool ZorWBEquation::FindPresentVariables(ZorQelListPZorWBVariable& out) const try {
    ZorQelArray<unsigned char> present;
    if (!MarkPresentVariables(present)) return false;
    out.RemoveAll();
    for (int i = 0; i < present.GetSize(); ++i) {
        if (present[i]) out.Add(_factory->GetVariable(i));
    }
    return true;
} catch (const std::exception&) {
    return false;
}

bool ZorWBEquation::AreVarConsistent() const {
    if (_theoreticalVariables.IsEmpty()) return true;
    ZorQelArray<unsigned char> present;
    if (!MarkPresentVariables(present)) return false;
    for (int i = 0; i < present.GetSize(); ++i) {
        if (present[i] && !_theoreticalVariables.Contains(_factory->GetVariable(i)->GetIdx()))
            return false;
    }
    return true;
}

void ZorWBEquation::DuplicateRoot() {
    if (_root) _root = Clone(_root);
}

// Each node once, children first: variables and black-box calls stay shared,
// constants become new constants of the same value, other operators new
// nodes of the same kind over the copied children.
ZorWBExpression* ZorWBEquation::Clone(ZorWBExpression* e) try {
    if (!e) return nullptr;
    ZorWBFactory& factory = *_factory;
    std::unordered_map<const ZorWBExpression*, ZorWBExpression*> copies;
    std::vector<ZorWBExpression*> children;
    return ZorWBGraphWalk::PostOrder<ZorWBExpression*>(
        e, copies, [&](const ZorWBExpression* node) -> ZorWBExpression* {
            ZorWBExpression* self = const_cast<ZorWBExpression*>(node);
            switch (node->GetType()) {
                case ZorWBExpressionType::Variable:
                case ZorWBExpressionType::BlackBox:
                    return self;
                case ZorWBExpressionType::Constant:
                    return factory.CreateConstant(node->GetExprValue());
                default:
                    break;
            }
            int n = ZorWBGraphWalk::NbOfChildren(node);
            children.assign(static_cast<std::size_t>(n), nullptr);
            for (int i = 0; i < n; ++i) {
                children[static_cast<std::size_t>(i)] = copies[ZorWBGraphWalk::Child(node, i)];
                if (!children[static_cast<std::size_t>(i)]) return nullptr;
            }
            return factory.MakeLike(nullptr, node, n, children.data());
        });
} catch (const std::exception&) {
    return nullptr;
}
