// Black-box calls: declaration and lookup of the factory's black boxes, and
// the calls of derivative black boxes that differentiation makes.

#include <new>

#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBDerivBlackBox.h"
#include "expressions/ZorWBFactory.h"

bool ZorWBFactory::RegisterBlackBox(ZorWBBlackBox* bb) {
    ZorWBDerivBlackBox* derivative =
        bb->IsADerivative() ? dynamic_cast<ZorWBDerivBlackBox*>(bb) : nullptr;
    try {
        _blackBoxes.Add(bb);
    } catch (const std::bad_alloc&) {
        return false;
    }
    try {
        if (derivative) _derivBlackBoxes.Add(derivative);
    } catch (const std::bad_alloc&) {
        _blackBoxes.RemoveAt(_blackBoxes.GetSize() - 1);
        return false;
    }
    return true;
}

ZorWBExpression* ZorWBFactory::DeclareBlackBox(const int* tag, ZorWBBlackBox* bb, int n,
                                               ZorWBExpression* const* args, bool internal) {
    if (!bb || n < 0 || !OperandsBelongHere(n, args)) return nullptr;
    ZorWBBlackBoxOperator* node =
        new (std::nothrow) ZorWBBlackBoxOperator(this, TakeTag(tag), n, args, bb, _blackBoxCount);
    if (!node) return nullptr;
    if (node->GetNbOfChildren() != n) {
        delete node;
        return nullptr;
    }
    bool known = _blackBoxes.Contains(bb);
    if (!known && !RegisterBlackBox(bb)) {
        delete node;
        return nullptr;
    }
    ++_blackBoxCount;
    // A black box may answer differently for the same arguments.
    if (_environment.CheckLevel(ZorWBLevel::ResetBufferUpward))
        node->SetAllowBufferEval(false, false, false);
    bb->SetOperator(node);
    if (internal) bb->SetInternal();
    bool nameSet = false;
    bb->GetName(nameSet);
    if (!known && !nameSet) bb->SetDefaultName(ZorWBBlackBoxOperator::GetDefaultBlackBoxName(node));
    return Register(node);
}

ZorWBBlackBox* ZorWBFactory::GetBlackBoxByName(const ZorQelString& name) const {
    for (ZorWBBlackBox* bb : _blackBoxes) {
        if (bb->GetName() == name) return bb;
    }
    return nullptr;
}

ZorWBDerivBlackBox* ZorWBFactory::GetDerivBlackBox(const ZorWBBlackBox* primitive,
                                                   const ZorWBVariable* x) const {
    for (ZorWBDerivBlackBox* derivative : _derivBlackBoxes) {
        if (derivative->IsAPrimitive(primitive) && derivative->IsTheDiffVariable(x))
            return derivative;
    }
    return nullptr;
}

namespace {

bool SameArguments(const ZorWBExpression* a, const ZorWBExpression* b) {
    if (a->GetNbOfChildren() != b->GetNbOfChildren()) return false;
    for (int i = 0; i < a->GetNbOfChildren(); ++i) {
        if (a->GetChild(i) != b->GetChild(i)) return false;
    }
    return true;
}

}  // namespace

// An existing derivative black box is called again: through its own node
// when that node has the same arguments, else through a new node on call's
// arguments (a black box serves several calls).
ZorWBExpression* ZorWBFactory::DeclareDerivativeCall(ZorWBBlackBoxOperator* call,
                                                     ZorWBVariable* x) {
    ZorWBBlackBox* primitive = call->GetBlackBox();
    if (!primitive || !x) return nullptr;
    ZorWBDerivBlackBox* derivative = GetDerivBlackBox(primitive, x);
    if (!derivative)
        return DeclareOwnDerivative(new (std::nothrow) ZorWBDerivBlackBox(primitive, x), call);
    ZorWBBlackBoxOperator* node = derivative->GetOperator();
    if (node && node->GetFactory() == this && SameArguments(node, call)) return node;
    return DeclareBlackBox(derivative, call->_count, call->Children(), derivative->IsInternal());
}

ZorWBExpression* ZorWBFactory::DeclarePartialDerivativeCall(ZorWBBlackBoxOperator* call, int i) {
    ZorWBBlackBox* primitive = call->GetBlackBox();
    if (!primitive || i < 0 || i >= call->_count) return nullptr;
    for (ZorWBDerivBlackBox* derivative : _derivBlackBoxes) {
        if (derivative->IsAPrimitive(primitive) && derivative->GetDiffArgument() == i &&
            derivative->IsInternal())
            return DeclareBlackBox(derivative, call->_count, call->Children(), true);
    }
    return DeclareOwnDerivative(
        new (std::nothrow) ZorWBDerivBlackBox(primitive, i, _environment.GetBBPrecision()), call);
}

ZorWBExpression* ZorWBFactory::DeclareOwnDerivative(ZorWBDerivBlackBox* derivative,
                                                    ZorWBBlackBoxOperator* call) {
    if (!derivative) return nullptr;
    ZorWBExpression* node = DeclareBlackBox(derivative, call->_count, call->Children(), true);
    // Once registered, the factory destroys it with the others.
    if (!node && !_blackBoxes.Contains(derivative)) delete derivative;
    return node;
}
