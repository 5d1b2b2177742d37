#include "output/ZorWBMathMLText.h"

#include <cmath>
#include <cstdlib>

namespace {

void AppendNumberText(ZorQelString& out, const ZorWBValue& number) {
    ZorQelString text;
    ZorWBAppendValueText(text, number);
    out += "<mn>";
    out += text;
    out += "</mn>";
}

// One element for a real of either sign.
void AppendReal(ZorQelString& out, double real) {
    if (std::isnan(real)) {
        out += "<mi mathvariant=\"normal\">NaN</mi>";
        return;
    }
    bool negative = std::signbit(real);
    if (negative) out += "<mrow>" + ZorQelString(ZorWBMathMLText::MinusSign());
    if (std::isinf(real))
        out += "<mi>&#x221E;</mi>";
    else
        AppendNumberText(out, ZorWBValue(std::fabs(real)));
    if (negative) out += "</mrow>";
}

void AppendInteger(ZorQelString& out, long long integer) {
    if (integer < 0) out += "<mrow>" + ZorQelString(ZorWBMathMLText::MinusSign());
    out += "<mn>";
    out.AppendInt(std::llabs(integer));
    out += "</mn>";
    if (integer < 0) out += "</mrow>";
}

void AppendNumber(ZorQelString& out, double real) {
    AppendReal(out, real);
}

void AppendNumber(ZorQelString& out, int integer) {
    AppendInteger(out, integer);
}

// n/d * Pi^p as a fraction whose numerator is n pi^p.
void AppendFraction(ZorQelString& out, const ZorWBFraction& fraction) {
    long long numerator = fraction.numerator;
    bool negative = numerator < 0;
    if (negative) out += "<mrow>" + ZorQelString(ZorWBMathMLText::MinusSign());
    if (fraction.denominator != 1) out += "<mfrac>";
    bool factor = std::llabs(numerator) != 1 || fraction.power == 0;
    bool both = factor && fraction.power != 0;
    if (both) out += "<mrow>";
    if (factor) AppendInteger(out, std::llabs(numerator));
    if (both) out += "<mo>&#x2062;</mo>";
    if (fraction.power == 1) {
        out += "<mi>&#x3C0;</mi>";
    } else if (fraction.power != 0) {
        out += "<msup><mi>&#x3C0;</mi>";
        AppendInteger(out, fraction.power);
        out += "</msup>";
    }
    if (both) out += "</mrow>";
    if (fraction.denominator != 1) {
        AppendInteger(out, fraction.denominator);
        out += "</mfrac>";
    }
    if (negative) out += "</mrow>";
}

template <class Number>
void AppendPair(ZorQelString& out, const char* open, Number low, const char* separator, Number high,
                const char* close) {
    out += "<mrow><mo>";
    out += open;
    out += "</mo>";
    AppendNumber(out, low);
    ZorWBMathMLText::AppendOperator(out, separator);
    AppendNumber(out, high);
    out += "<mo>";
    out += close;
    out += "</mo></mrow>";
}

template <class Enum>
void AppendEnum(ZorQelString& out, const Enum& elements) {
    switch (elements.GetRep()) {
        case ZorWBEnumAny:
            out += "<mrow><mo>{</mo><mtext>any</mtext><mo>}</mo></mrow>";
            return;
        case ZorWBEnumNil:
            out += "<mrow><mo>{</mo><mo>}</mo></mrow>";
            return;
        case ZorWBEnumInterval:
            AppendPair(out, "{", elements.Get(0), "&#x2026;", elements.Get(1), "}");
            return;
        default:
            out += "<mrow><mo>{</mo>";
            for (int i = 0; i < elements.GetSize(); ++i) {
                if (i > 0) out += "<mo>,</mo>";
                AppendNumber(out, elements.Get(i));
            }
            out += "<mo>}</mo></mrow>";
            return;
    }
}

}  // namespace

const char* ZorWBMathMLText::MathOpen(bool block) {
    return block ? "<math xmlns=\"http://www.w3.org/1998/Math/MathML\" display=\"block\">"
                 : "<math xmlns=\"http://www.w3.org/1998/Math/MathML\">";
}

void ZorWBMathMLText::AppendEscaped(ZorQelString& out, const char* text) {
    if (!text) return;
    for (const char* c = text; *c; ++c) {
        unsigned char byte = static_cast<unsigned char>(*c);
        switch (byte) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            case '\'':
                out += "&apos;";
                break;
            default:
                if (byte >= 0x80) {
                    out += "&#";
                    out.AppendInt(byte);
                    out += ";";
                } else if (byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\r') {
                    out += "&#xFFFD;";
                } else {
                    out.AppendChar(static_cast<char>(byte));
                }
        }
    }
}

void ZorWBMathMLText::AppendValue(ZorQelString& out, const ZorWBValue& value) {
    switch (value.GetType()) {
        case ZorWBIntegerType:
            AppendInteger(out, value.GetAsInteger());
            return;
        case ZorWBRealType:
            AppendReal(out, value.GetAsReal());
            return;
        case ZorWBFractionType:
            AppendFraction(out, value.GetAsFraction());
            return;
        case ZorWBIntegerIntervalType: {
            ZorWBIntegerInterval interval = value.GetAsIntegerInterval();
            AppendPair(out, "[", interval.low, ",", interval.high, "]");
            return;
        }
        case ZorWBRealIntervalType: {
            ZorWBRealInterval interval = value.GetAsRealInterval();
            AppendPair(out, "[", interval.low, ",", interval.high, "]");
            return;
        }
        case ZorWBIntegerEnumType:
            AppendEnum(out, value.GetIntegerEnum());
            return;
        case ZorWBRealEnumType:
            AppendEnum(out, value.GetRealEnum());
            return;
        default: {
            ZorQelString word;
            ZorWBAppendValueText(word, value);
            out += "<mtext>";
            out += word;
            out += "</mtext>";
            return;
        }
    }
}

void ZorWBMathMLText::AppendNegatedValue(ZorQelString& out, const ZorWBValue& value) {
    switch (value.GetType()) {
        case ZorWBIntegerType:
            AppendInteger(out, -static_cast<long long>(value.GetAsInteger()));
            return;
        case ZorWBRealType:
            AppendReal(out, -value.GetAsReal());
            return;
        default:
            AppendValue(out, value);
            return;
    }
}

ZorWBBinding ZorWBMathMLText::BindingOfValue(const ZorWBValue& value) {
    if (ZorWBIsNegativeNumber(value)) return ZorWBBinding::Unary;
    if (value.GetType() != ZorWBFractionType) return ZorWBBinding::Primary;
    ZorWBFraction fraction = value.GetAsFraction();
    if (fraction.numerator < 0) return ZorWBBinding::Unary;
    bool pi = fraction.numerator == 1 && fraction.denominator == 1 && fraction.power == 1;
    return pi ? ZorWBBinding::Primary : ZorWBBinding::Multiplicative;
}

const char* ZorWBMathMLText::RelationSymbol(ZorWBEquationType type) {
    switch (type) {
        case ZorWBEqualZero:
            return "=";
        case ZorWBNotEqualZero:
            return "&#x2260;";
        case ZorWBLessEqualZero:
            return "&#x2264;";
        case ZorWBLessZero:
            return "&lt;";
        case ZorWBGreaterEqualZero:
            return "&#x2265;";
        case ZorWBGreaterZero:
            return "&gt;";
        default:
            return nullptr;
    }
}

const char* ZorWBMathMLText::ComparisonSymbol(int comparison) {
    switch (comparison) {
        case 2:
            return "&lt;";
        case 3:
            return "&#x2265;";
        case 4:
            return "&gt;";
        default:
            return "&#x2264;";
    }
}

void ZorWBMathMLText::AppendOperator(ZorQelString& out, const char* symbol) {
    out += "<mo>";
    out += symbol;
    out += "</mo>";
}
