// Black-box calls: declaration and lookup of the factory's black boxes.

#include <new>

#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBFactory.h"

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
    if (!known) {
        try {
            _blackBoxes.Add(bb);
        } catch (const std::bad_alloc&) {
            delete node;
            return nullptr;
        }
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
