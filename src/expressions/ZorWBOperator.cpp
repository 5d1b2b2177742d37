#include "expressions/ZorWBOperator.h"

#include <cmath>
#include <exception>
#include <new>

#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBGraphWalk.h"

ZorWBOperator::ZorWBOperator(ZorWBFactory* factory, ZorWBExpressionType type, int tag, int n,
                             ZorWBExpression* const* children)
    : ZorWBExpression(factory, type, tag) {
    if (n <= 0 || !children) return;
    if (n > NbOfInlineChildren) {
        ZorWBExpression** heap = new (std::nothrow) ZorWBExpression*[n];
        if (!heap) return;  // no children: the factory sees the shortfall and gives up
        _heapChildren = heap;
        _traits |= HeapChildrenTrait;
    }
    ZorWBExpression** own = Children();
    for (int i = 0; i < n; ++i) {
        if (!children[i] || !AddParent(children[i], this)) return;
        own[i] = children[i];
        ++_count;
    }
}

ZorWBOperator::~ZorWBOperator() {
    ZorWBExpression** children = Children();
    if (!IsFactoryDestroying()) {
        for (int i = 0; i < _count; ++i)
            children[i]->_parents.Remove(this);
    }
    if (_traits & HeapChildrenTrait) delete[] _heapChildren;
}

const ZorWBExpression* ZorWBOperator::GetChild(int i) const {
    return (i >= 0 && i < _count) ? Children()[i] : nullptr;
}

ZorWBExpression* ZorWBOperator::GetChild(int i) {
    return (i >= 0 && i < _count) ? Children()[i] : nullptr;
}

bool ZorWBOperator::RemoveChild(int i) {
    if (i < 0 || i >= _count) return false;
    ZorWBExpression** children = Children();
    ZorWBExpression* child = children[i];
    for (int j = i + 1; j < _count; ++j)
        children[j - 1] = children[j];
    children[--_count] = nullptr;
    NoteStructureChange();
    RemoveParent(child, this);
    ResetBufferComplete();
    return true;
}

bool ZorWBOperator::RemoveChild(ZorWBExpression* child) {
    for (int i = 0; i < _count; ++i) {
        if (Children()[i] == child) return RemoveChild(i);
    }
    return false;
}

bool ZorWBOperator::ReplaceChild(int i, ZorWBExpression* child) {
    if (i < 0 || i >= _count || !child || child->GetFactory() != GetFactory()) return false;
    if (child == Children()[i]) return true;
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
    ZorWBExpression* old = Children()[i];
    if (!AddParent(child, this)) return false;
    Children()[i] = child;
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
    ZorWBExpression* const* children = Children();
    for (int i = 0; i < _count; ++i) {
        if (!children[i]->AllowsBufferEval()) return false;
    }
    return true;
}

void ZorWBOperator::RemoveUniqueChildren() try {
    ZorWBFactory& factory = *GetFactory();
    factory.DestroyNodes(factory.UniqueDescendants(this, factory.MarkEquationRoots()));
} catch (const std::exception&) {
}

bool ZorWBOperator::HasSameHead(const ZorWBOperator* other) const {
    return other->GetType() == GetType() && other->_count == _count;
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
