#include "expressions/ZorWBOperator.h"

#include <cmath>
#include <exception>
#include <new>

#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"

ZorWBOperator::ZorWBOperator(ZorWBFactory* factory, ZorWBExpressionType type, int tag, int n,
                             ZorWBExpression* const* children)
    : ZorWBExpression(factory, type, tag), _children(_inlineChildren) {
    if (n <= 0 || !children) return;
    if (n > 2) {
        _children = new (std::nothrow) ZorWBExpression*[n];
        if (!_children) {
            _children = _inlineChildren;
            return;  // no children: the factory sees the shortfall and gives up
        }
    }
    for (int i = 0; i < n; ++i) {
        if (!children[i] || !AddParent(children[i], this)) return;
        _children[i] = children[i];
        ++_nbOfChildren;
    }
}

ZorWBOperator::~ZorWBOperator() {
    if (!IsFactoryDestroying()) {
        for (int i = 0; i < _nbOfChildren; ++i)
            _children[i]->_parents.Remove(this);
    }
    if (_children != _inlineChildren) delete[] _children;
}

const ZorWBExpression* ZorWBOperator::GetChild(int i) const {
    return (i >= 0 && i < _nbOfChildren) ? _children[i] : nullptr;
}

ZorWBExpression* ZorWBOperator::GetChild(int i) {
    return (i >= 0 && i < _nbOfChildren) ? _children[i] : nullptr;
}

bool ZorWBOperator::RemoveChild(int i) {
    if (i < 0 || i >= _nbOfChildren) return false;
    ZorWBExpression* child = _children[i];
    for (int j = i + 1; j < _nbOfChildren; ++j)
        _children[j - 1] = _children[j];
    _children[--_nbOfChildren] = nullptr;
    NoteStructureChange();
    RemoveParent(child, this);
    ResetBufferComplete();
    return true;
}

bool ZorWBOperator::RemoveChild(ZorWBExpression* child) {
    for (int i = 0; i < _nbOfChildren; ++i) {
        if (_children[i] == child) return RemoveChild(i);
    }
    return false;
}

bool ZorWBOperator::ReplaceChild(int i, ZorWBExpression* child) {
    if (i < 0 || i >= _nbOfChildren || !child || child->GetFactory() != GetFactory()) return false;
    if (child == _children[i]) return true;
    // The new edge closes a cycle exactly when child is this node or one of
    // its ancestors.
    bool cycle = child == this;
    if (!cycle && !_parents.IsEmpty() && !child->IsLeaf()) {
        ZorWBGraphWalk::PreOrder(child, [this, &cycle](const ZorWBExpression* node) {
            cycle = node == this;
            return !cycle;
        });
    }
    return !cycle && ReplaceChildUnchecked(i, child);
}

bool ZorWBOperator::ReplaceChildUnchecked(int i, ZorWBExpression* child) {
    ZorWBExpression* old = _children[i];
    if (!AddParent(child, this)) return false;
    _children[i] = child;
    NoteStructureChange();
    RemoveParent(old, this);
    ResetBufferComplete();
    return true;
}

void ZorWBOperator::ResetBuffer(bool complete) {
    if (GetEnvironment().CheckLevel(ZorWBLevel::ResetBufferUpward)) {
        ZorWBExpression::ResetBuffer(complete);
        return;
    }
    ResetBufferPartial();
    if (complete) ResetBufferDownward();
}

bool ZorWBOperator::ValidateAllowBufferEval() const {
    if (!AllowsBufferEval()) return false;
    for (int i = 0; i < _nbOfChildren; ++i) {
        if (!_children[i]->AllowsBufferEval()) return false;
    }
    return true;
}

void ZorWBOperator::RemoveUniqueChildren() try {
    ZorWBFactory& factory = *GetFactory();
    factory.DestroyNodes(factory.UniqueDescendants(this, factory.MarkEquationRoots()));
} catch (const std::exception&) {
}

bool ZorWBOperator::HasSameHead(const ZorWBOperator* other) const {
    return other->GetType() == GetType() && other->_nbOfChildren == _nbOfChildren;
}

// ------------------------------------------------------------ Step parameters

ZorWBUnaryOperator::ZorWBUnaryOperator(ZorWBFactory* factory, ZorWBExpressionType type, int tag,
                                       int n, ZorWBExpression* const* children)
    : ZorWBOperator(factory, type, tag, n, children) {
    if (type == ZorWBExpressionType::Step)
        _parameters = new (std::nothrow) double[NbOfStepParameters]{0.0, 0.0, 0.0, 0.0};
}

ZorWBUnaryOperator::~ZorWBUnaryOperator() {
    delete[] _parameters;
}

void ZorWBUnaryOperator::SetParameter(int i, double value) {
    if (!_parameters || i < 0 || i >= NbOfStepParameters) return;
    _parameters[i] = value;
    NoteStructureChange();
    ResetBufferComplete();
}

double ZorWBUnaryOperator::GetParameter(int i) const {
    if (!_parameters || i < 0 || i >= NbOfStepParameters) return 0.0;
    return _parameters[i];
}

int ZorWBUnaryOperator::GetNbOfParameters() const {
    return _parameters ? NbOfStepParameters : 0;
}

// Two steps are equal only with the same parameters.
bool ZorWBUnaryOperator::HasSameHead(const ZorWBOperator* other) const {
    if (!ZorWBOperator::HasSameHead(other)) return false;
    for (int i = 0; i < GetNbOfParameters(); ++i) {
        if (GetParameter(i) != other->GetParameter(i)) return false;
    }
    return true;
}

// ------------------------------------------------------------ IfThenElse

int ZorWBIfThenElseOperator::ChosenBranch(const ZorWBValue& condition) {
    if (!condition.IsAKindOf(ZorWBBooleanType)) return IndefiniteBranch;
    switch (condition.GetAsBoolean()) {
        case ZorWBTrue:
            return 1;
        case ZorWBFalse:
            return 2;
        case ZorWBUnknown:
        case ZorWBEmpty:
            return IndefiniteBranch;
        default:
            return KeepBranch;
    }
}

int ZorWBIfThenElseOperator::ChosenBranch(double condition) {
    if (std::isnan(condition)) return IndefiniteBranch;
    return condition != 0.0 ? 1 : 2;
}
