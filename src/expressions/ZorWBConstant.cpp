#include "expressions/ZorWBConstant.h"

#include "expressions/ZorWBFactory.h"

ZorWBConstant::ZorWBConstant(ZorWBFactory* factory, ZorWBExpressionType type, int tag)
    : ZorWBExpression(factory, type, tag) {
    _constantValue.UpdateEnv(factory->GetEnvironment());
}

ZorWBConstant::ZorWBConstant(ZorWBFactory* factory, int tag, const ZorWBValue& value)
    : ZorWBConstant(factory, ZorWBExpressionType::Constant, tag) {
    _constantValue = value;
    _constantValue.UpdateEnv(factory->GetEnvironment());
}

void ZorWBConstant::SetExprValue(const ZorWBValue& value) {
    SetValue(value, nullptr);
}

void ZorWBConstant::SetValue(const ZorWBValue& value, ZorWBExpression* alsoReset) {
    _constantValue = value;
    _constantValue.UpdateEnv(GetEnvironment());
    ZorWBFactory* factory = GetFactory();
    if (GetEnvironment().CheckLevel(ZorWBLevel::ResetBufferUpward)) factory->ResetBuffer(this);
    if (alsoReset) factory->ResetBuffer(alsoReset);
}

bool ZorWBConstant::IsEqualTo(const ZorWBExpression* other) const {
    if (other == this) return true;
    if (!other || other->GetType() != GetType()) return false;
    const ZorWBConstant* constant = static_cast<const ZorWBConstant*>(other);
    return _constantValue.IsEqualTo(GetEnvironment(), constant->_constantValue);
}

void ZorWBConstant::IsZeroOrOne(bool& isZero, bool& isOne) const {
    isZero = false;
    isOne = false;
    ZorWBFactory* factory = GetFactory();
    if (GetEnvironment().CheckLevel(ZorWBLevel::PredefinedZeroOne)) {
        ZorWBPredefinedConst index;
        if (factory->IsPredefinedConstant(this, index)) {
            isZero = index == ZorWBConstZero;
            isOne = index == ZorWBConstOne;
            if (isZero || isOne) return;
        }
    }
    isZero = _constantValue.IsEqualTo(GetEnvironment(), ZorWBValue(0.0));
    if (!isZero) isOne = _constantValue.IsEqualTo(GetEnvironment(), ZorWBValue(1.0));
}

void ZorWBConstant::DoEval(ZorWBValue& value) const {
    value = _constantValue;
}

double ZorWBConstant::DoEval() const {
    return RealReading(_constantValue);
}

ZorWBPredefinedConstant::ZorWBPredefinedConstant(ZorWBFactory* factory, int tag,
                                                 ZorWBPredefinedConst index)
    : ZorWBConstant(factory, tag, ZorWBFactory::GetPredefinedValue(index)), _index(index) {}
