#include "expressions/ZorWBVariable.h"

#include <exception>

#include "expressions/ZorWBFactory.h"

ZorWBVariable::ZorWBVariable(ZorWBFactory* factory, int tag, int index)
    : ZorWBConstant(factory, ZorWBExpressionType::Variable, tag), _index(index) {}

const ZorQelString& ZorWBVariable::GetName() {
    if (_name.IsEmpty()) _name = ZorQelString("va") + _index;
    return _name;
}

void ZorWBVariable::SetIndex(int index) try {
    if (_name == ZorQelString("va") + _index) _name = ZorQelString();
    _index = index;
} catch (const std::exception&) {
    _index = index;
}

void ZorWBVariable::Fix(bool fixed) {
    if (fixed == _fixed) return;
    GetFactory()->ResetBuffer(nullptr);
    _fixed = fixed;
}

bool ZorWBVariable::IsEqualTo(const ZorWBExpression* other) const {
    if (other == this) return true;
    if (!other || other->GetType() != GetType()) return false;
    return static_cast<const ZorWBVariable*>(other)->_index == _index;
}
