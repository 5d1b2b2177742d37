#include "expressions/ZorWBConstant.h"

#include "expressions/ZorWBFactory.h"
#include "expressions/ZorWBNodeAnnex.h"

ZorWBConstant::ZorWBConstant(ZorWBFactory* factory, ZorWBExpressionType type, int tag)
    : ZorWBExpression(factory, type, tag) {}

ZorWBConstant::ZorWBConstant(ZorWBFactory* factory, int tag, const ZorWBValue& value)
    : ZorWBConstant(factory, ZorWBExpressionType::Constant, tag) {
    _value = value;
    _value.UpdateEnv(factory->GetEnvironment());
}

void ZorWBConstant::SetExprValue(const ZorWBValue& value) {
    SetValue(value, nullptr);
}

// The resets go first: whether the buffer stays valid decides where the
// value goes. They read no value.
void ZorWBConstant::SetValue(const ZorWBValue& value, ZorWBExpression* alsoReset) {
    ZorWBFactory* factory = GetFactory();
    if (GetEnvironment().CheckLevel(ZorWBLevel::ResetBufferUpward)) factory->ResetBuffer(this);
    if (alsoReset) factory->ResetBuffer(alsoReset);
    StoreValue(value);
}

void ZorWBConstant::StoreValue(const ZorWBValue& value) {
    const ZorWBEnvironment& environment = GetEnvironment();
    ZorWBNodeAnnex* annex = GetAnnex();
    if (IsBufferValid()) {
        // The buffer keeps the value it was computed to; the new one waits.
        if (!annex) annex = MakeAnnex();
        if (annex && !annex->heldValue) annex->heldValue.reset(new (std::nothrow) ZorWBValue());
        if (annex && annex->heldValue) {
            *annex->heldValue = value;
            annex->heldValue->UpdateEnv(environment);
            _traits |= HeldValueTrait;
            return;
        }
    }
    _value = value;
    _value.UpdateEnv(environment);
    if (_traits & HeldValueTrait) {
        _traits &= static_cast<unsigned char>(~HeldValueTrait);
        annex->heldValue.reset();
    }
}

const ZorWBValue& ZorWBConstant::HeldValue() const {
    return *GetAnnex()->heldValue;
}

bool ZorWBConstant::IsEqualTo(const ZorWBExpression* other) const {
    if (other == this) return true;
    if (!other || other->GetType() != GetType()) return false;
    const ZorWBConstant* constant = static_cast<const ZorWBConstant*>(other);
    return GetExprValue().IsEqualTo(GetEnvironment(), constant->GetExprValue());
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
    const ZorWBValue& value = GetExprValue();
    isZero = value.IsEqualTo(GetEnvironment(), ZorWBValue(0.0));
    if (!isZero) isOne = value.IsEqualTo(GetEnvironment(), ZorWBValue(1.0));
}

// Into the buffer itself, the constant value is already there unless it is
// held apart.
void ZorWBConstant::DoEval(ZorWBValue& value) const {
    value = GetExprValue();
}

double ZorWBConstant::DoEval() const {
    return RealReading(GetExprValue());
}

ZorWBPredefinedConstant::ZorWBPredefinedConstant(ZorWBFactory* factory, int tag,
                                                 ZorWBPredefinedConst index)
    : ZorWBConstant(factory, tag, ZorWBFactory::GetPredefinedValue(index)), _index(index) {}
