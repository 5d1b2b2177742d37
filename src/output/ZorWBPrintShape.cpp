#include "output/ZorWBPrintShape.h"

#include "expressions/ZorWBBlackBoxOperator.h"
#include "expressions/ZorWBExpression.h"
#include "expressions/ZorWBGraphWalk.h"

namespace {

using Type = ZorWBExpressionType;
using Binding = ZorWBBinding;

int Count(const ZorWBExpression* e) {
    return e->GetNbOfChildren();
}

bool Is(const ZorWBExpression* e, Type type, int children) {
    return e->GetType() == type && Count(e) == children;
}

bool IsConstant(const ZorWBExpression* e) {
    return e->GetType() == Type::Constant;
}

bool IsMinusOne(const ZorWBExpression* e) {
    if (!IsConstant(e)) return false;
    const ZorWBValue& value = e->GetExprValue();
    return value.GetType() == ZorWBIntegerType && value.GetAsInteger() == -1;
}

// Whether the text of e, read back under a unary minus, has its sign folded
// in (a constant, or a product led by one) instead of getting a factor -1.
bool FoldsUnderUnaryMinus(const ZorWBExpression* e) {
    if (IsConstant(e) || e->GetType() == Type::UnaryMinus) return true;
    if (e->GetType() != Type::Product || Count(e) < 2) return false;
    const ZorWBExpression* first = e->GetChild(0);
    return IsConstant(first) || first->GetType() == Type::UnaryMinus;
}

// The same after a binary minus, which also folds into quotients of a
// constant (CreateSub).
bool FoldsUnderSubtraction(const ZorWBExpression* e) {
    if (FoldsUnderUnaryMinus(e)) return true;
    if (!Is(e, Type::Quotient, 2)) return false;
    const ZorWBExpression* first = e->GetChild(0);
    return IsConstant(first) || first->GetType() == Type::UnaryMinus;
}

}  // namespace

bool ZorWBPrintShape::IsInfix(const ZorWBExpression* e) {
    switch (e->GetType()) {
        case Type::Sum:
        case Type::Product:
            return Count(e) >= 2;
        case Type::Quotient:
        case Type::Power:
        case Type::Root:
            return Count(e) == 2;
        default:
            return false;
    }
}

bool ZorWBPrintShape::IsNegativeConstant(const ZorWBExpression* e) {
    return IsConstant(e) && ZorWBIsNegativeNumber(e->GetExprValue());
}

bool ZorWBPrintShape::IsPlainNegation(const ZorWBExpression* e, bool afterMinus) {
    if (!Is(e, Type::Product, 2) || !IsMinusOne(e->GetChild(0))) return false;
    const ZorWBExpression* negated = e->GetChild(1);
    return afterMinus ? !FoldsUnderSubtraction(negated) : !FoldsUnderUnaryMinus(negated);
}

bool ZorWBPrintShape::IsNegatedShape(const ZorWBExpression* e) {
    if (IsNegativeConstant(e)) return true;
    bool product = e->GetType() == Type::Product && Count(e) >= 2;
    bool quotient = Is(e, Type::Quotient, 2);
    return (product || quotient) && IsNegativeConstant(e->GetChild(0));
}

bool ZorWBPrintShape::IsSubtractedShape(const ZorWBExpression* e) {
    bool product = e->GetType() == Type::Product && Count(e) >= 2;
    bool quotient = Is(e, Type::Quotient, 2);
    const ZorWBExpression* number = product || quotient ? e->GetChild(0) : e;
    if (!IsConstant(number)) return false;
    ZorWBValueType kind = number->GetExprValue().GetType();
    return kind == ZorWBIntegerType || kind == ZorWBRealType;
}

Binding ZorWBPrintShape::BindingOf(const ZorWBExpression* e) {
    if (IsNegativeConstant(e) || e->GetType() == Type::UnaryMinus) return Binding::Unary;
    if (!IsInfix(e)) return Binding::Primary;
    switch (e->GetType()) {
        case Type::Sum:
            return Binding::Additive;
        case Type::Product:
            return IsPlainNegation(e, false) ? Binding::Unary : Binding::Multiplicative;
        case Type::Quotient:
            return Binding::Multiplicative;
        default:  // Power, Root
            return Binding::Power;
    }
}

Binding ZorWBPrintShape::NegatedBindingOf(const ZorWBExpression* e) {
    if (IsConstant(e)) return Binding::Primary;
    if (IsPlainNegation(e, true)) return BindingOf(e->GetChild(1));
    return Binding::Multiplicative;
}

ZorQelString ZorWBPrintShape::CallName(const ZorWBExpression* e) {
    if (e->GetType() == Type::BlackBox)
        return static_cast<const ZorWBBlackBoxOperator*>(e)->GetBlackBoxName();
    const char* name = TypeCallName(e->GetType());
    return name ? name : "ERROR";
}

const char* ZorWBPrintShape::TypeCallName(ZorWBExpressionType type) {
    const ZorWBExpressionTypeInfo* info = ZorWBGetExpressionTypeInfo(type);
    if (!info) return nullptr;
    return *info->function ? info->function : info->name;
}

const ZorWBExpression* ZorWBPrintShape::Printable(const ZorWBExpression* e) {
    return ZorWBGraphWalk::IsUnfoldable(e) ? e : nullptr;
}
