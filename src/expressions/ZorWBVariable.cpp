#include "expressions/ZorWBVariable.h"

#include <exception>

#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBNodeAnnex.h"

ZorWBVariable::ZorWBVariable(ZorWBFactory* factory, int tag, int index)
    : ZorWBConstant(factory, ZorWBExpressionType::Variable, tag) {
    _count = index;
}

const ZorQelString& ZorWBVariable::GetName() {
    if (_name.IsEmpty()) _name = ZorQelString("va") + _count;
    return _name;
}

void ZorWBVariable::SetIndex(int index) try {
    if (_name == ZorQelString("va") + _count) _name = ZorQelString();
    _count = index;
} catch (const std::exception&) {
    _count = index;
}

void ZorWBVariable::SetPreferedValue(double value) {
    ZorWBNodeAnnex* annex = MakeAnnex();
    if (!annex) return;
    annex->preferredValue = value;
    annex->hasPreferredValue = true;
}

double ZorWBVariable::GetPreferedValue() const {
    ZorWBNodeAnnex* annex = GetAnnex();
    return annex ? annex->preferredValue : 0.0;
}

bool ZorWBVariable::GetPreferedValue(double& value) const {
    ZorWBNodeAnnex* annex = GetAnnex();
    if (!annex || !annex->hasPreferredValue) return false;
    value = annex->preferredValue;
    return true;
}

void ZorWBVariable::SetDividedFlag(int flag) {
    ZorWBNodeAnnex* annex = flag == 1 ? GetAnnex() : MakeAnnex();
    if (annex) annex->dividedFlag = flag;
}

int ZorWBVariable::GetDividedFlag() const {
    ZorWBNodeAnnex* annex = GetAnnex();
    return annex ? annex->dividedFlag : 1;
}

void ZorWBVariable::Fix(bool fixed) {
    if (fixed == IsFixed()) return;
    GetFactory()->ResetBuffer(nullptr);
    if (fixed) {
        _traits |= FixedTrait;
    } else {
        _traits &= static_cast<unsigned char>(~FixedTrait);
    }
}

bool ZorWBVariable::IsEqualTo(const ZorWBExpression* other) const {
    if (other == this) return true;
    if (!other || other->GetType() != GetType()) return false;
    return static_cast<const ZorWBVariable*>(other)->_count == _count;
}
