#include "expressions/ZorWBLanguageText.h"

#include <cmath>
#include <type_traits>

namespace {

// Whether the text from position from on would read back as an integer.
bool LooksLikeInteger(const ZorQelString& text, int from) {
    if (from >= text.GetLength()) return false;
    for (int i = from; i < text.GetLength(); ++i) {
        char c = text.GetAt(i);
        if (c < '0' || c > '9') return false;
    }
    return true;
}

void AppendReal(ZorQelString& text, double real) {
    if (std::isnan(real)) {
        text += "(0.0 / 0.0)";
        return;
    }
    if (std::isinf(real)) {
        text += real > 0 ? "1e999" : "-1e999";
        return;
    }
    int start = text.GetLength();
    text.AppendDouble(real);
    if (LooksLikeInteger(text, start + (std::signbit(real) ? 1 : 0))) text += ".0";
}

void AppendFraction(ZorQelString& text, const ZorWBFraction& fraction) {
    if (fraction.numerator == 1 && fraction.denominator == 1 && fraction.power == 1) {
        text += "Pi";
        return;
    }
    text += "(";
    text += fraction.numerator;
    if (fraction.denominator != 1) text += "/" + ZorQelString::FromInt(fraction.denominator);
    if (fraction.power != 0) text += "*Pi";
    if (fraction.power != 0 && fraction.power != 1)
        text += "^" + ZorQelString::FromInt(fraction.power);
    text += ")";
}

template <class Number>
void AppendNumber(ZorQelString& text, Number number) {
    if constexpr (std::is_same_v<Number, double>)
        AppendReal(text, number);
    else
        text += number;
}

template <class Number>
void AppendPair(ZorQelString& text, const char* open, Number low, const char* separator,
                Number high, const char* close) {
    text += open;
    AppendNumber(text, low);
    text += separator;
    AppendNumber(text, high);
    text += close;
}

template <class Enum>
void AppendEnum(ZorQelString& text, const Enum& elements) {
    switch (elements.GetRep()) {
        case ZorWBEnumAny:
            text += "{any}";
            return;
        case ZorWBEnumNil:
            text += "{}";
            return;
        case ZorWBEnumInterval:
            AppendPair(text, "{", elements.Get(0), " .. ", elements.Get(1), "}");
            return;
        default:
            text += "{";
            for (int i = 0; i < elements.GetSize(); ++i) {
                if (i > 0) text += ", ";
                AppendNumber(text, elements.Get(i));
            }
            text += "}";
            return;
    }
}

const char* BooleanText(ZorWBBoolean value) {
    switch (value) {
        case ZorWBFalse:
            return "false";
        case ZorWBTrue:
            return "true";
        case ZorWBUnknown:
            return "unknown";
        default:
            return "empty";
    }
}

}  // namespace

ZorWBBinding ZorWBInfixBinding(ZorWBExpressionType type) {
    switch (type) {
        case ZorWBExpressionType::Sum:
        case ZorWBExpressionType::Minus:
            return ZorWBBinding::Additive;
        case ZorWBExpressionType::Product:
        case ZorWBExpressionType::Quotient:
            return ZorWBBinding::Multiplicative;
        case ZorWBExpressionType::Power:
            return ZorWBBinding::Power;
        default:
            return ZorWBBinding::Condition;
    }
}

bool ZorWBNeedsBrackets(ZorWBExpressionType type, bool leftOperand, ZorWBBinding operand) {
    ZorWBBinding own = ZorWBInfixBinding(type);
    bool groupsRight = type == ZorWBExpressionType::Power;
    return leftOperand == groupsRight ? operand <= own : operand < own;
}

const char* ZorWBRelationText(ZorWBEquationType type) {
    switch (type) {
        case ZorWBEqualZero:
            return " = ";
        case ZorWBNotEqualZero:
            return " != ";
        case ZorWBLessEqualZero:
            return " <= ";
        case ZorWBLessZero:
            return " < ";
        case ZorWBGreaterEqualZero:
            return " >= ";
        case ZorWBGreaterZero:
            return " > ";
        default:
            return nullptr;
    }
}

bool ZorWBIsNegativeNumber(const ZorWBValue& value) {
    switch (value.GetType()) {
        case ZorWBIntegerType:
            return value.GetAsInteger() < 0;
        case ZorWBRealType:
            return std::signbit(value.GetAsReal()) && !std::isnan(value.GetAsReal());
        default:
            return false;
    }
}

void ZorWBAppendValueText(ZorQelString& text, const ZorWBValue& value) {
    switch (value.GetType()) {
        case ZorWBIntegerType:
            text += value.GetAsInteger();
            return;
        case ZorWBRealType:
            AppendReal(text, value.GetAsReal());
            return;
        case ZorWBFractionType:
            AppendFraction(text, value.GetAsFraction());
            return;
        case ZorWBIntegerIntervalType: {
            ZorWBIntegerInterval interval = value.GetAsIntegerInterval();
            AppendPair(text, "[", interval.low, ", ", interval.high, "]");
            return;
        }
        case ZorWBRealIntervalType: {
            ZorWBRealInterval interval = value.GetAsRealInterval();
            AppendPair(text, "[", interval.low, ", ", interval.high, "]");
            return;
        }
        case ZorWBIntegerEnumType:
            AppendEnum(text, value.GetIntegerEnum());
            return;
        case ZorWBRealEnumType:
            AppendEnum(text, value.GetRealEnum());
            return;
        case ZorWBBooleanType:
            text += BooleanText(value.GetAsBoolean());
            return;
        default:
            text += "undefined";
            return;
    }
}

void ZorWBAppendNegatedText(ZorQelString& text, const ZorWBValue& value) {
    switch (value.GetType()) {
        case ZorWBIntegerType:
            text += -static_cast<long long>(value.GetAsInteger());
            return;
        case ZorWBRealType:
            AppendReal(text, -value.GetAsReal());
            return;
        default:
            ZorWBAppendValueText(text, value);
            return;
    }
}
