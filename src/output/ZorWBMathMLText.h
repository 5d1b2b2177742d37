#ifndef ZORWB_MATHMLTEXT_H
#define ZORWB_MATHMLTEXT_H

#include "ZorWBxExport.h"
#include "expressions/ZorWBEquationType.h"
#include "expressions/ZorWBLanguageText.h"
#include "qel/ZorQelString.h"
#include "values/ZorWBValue.h"

// The pieces of MathML presentation markup that the MathML printer and the
// HTML report share: escaped text and values.
//
// Everything is written in ASCII: characters outside it are numeric
// character references (the minus sign as &#x2212;, a byte of 0x80 and
// above as the Latin-1 character of that number, the only 8-bit text of the
// language being the degree sign), control characters that XML forbids as
// U+FFFD, and the five XML specials as &amp; &lt; &gt; &quot; &apos;. So the
// text is well-formed XML and HTML alike, in any encoding that extends ASCII.
class ZORWBX_API ZorWBMathMLText {
  public:
    // The opening tag of a math element in the MathML namespace, block
    // (display="block") or inline.
    static const char* MathOpen(bool block);
    static const char* MathClose() { return "</math>"; }

    // Appends text escaped for XML character data and attribute values.
    static void AppendEscaped(ZorQelString& out, const char* text);

    // Appends one element for a value, as the equation language writes it:
    // numbers as <mn> (a negative one after a minus sign: <mrow><mo>-</mo>
    // <mn>3</mn></mrow>), the infinities as the infinity sign, NaN as the
    // identifier NaN, Pi as pi and other fractions of Pi as fractions
    // (<mfrac> of n pi^p over d), intervals as [low, high], enumerations as
    // {a, b, c} ({low ... high} when held as an interval, {any} and {}),
    // booleans and the undefined value as their words (<mtext>).
    static void AppendValue(ZorQelString& out, const ZorWBValue& value);
    // The same with the sign of an integer or real changed (written after a
    // minus sign); other kinds as AppendValue.
    static void AppendNegatedValue(ZorQelString& out, const ZorWBValue& value);
    // How tightly the element of a value binds as an operand: Unary for a
    // negative number or a negative fraction of Pi, Multiplicative for any
    // other fraction but Pi itself, Primary for the rest.
    static ZorWBBinding BindingOfValue(const ZorWBValue& value);

    // The operator of a relation (=, the not-equal sign, <=, <, >=, >), as
    // character references where needed; null for types without one.
    static const char* RelationSymbol(ZorWBEquationType type);
    // The same for the comparison type of a parsed LessEqual node (1 <=,
    // 2 <, 3 >=, 4 >; anything else <=).
    static const char* ComparisonSymbol(int comparison);

    // <mo>SYMBOL</mo>, the minus sign, and an element for a missing or
    // unprintable node.
    static void AppendOperator(ZorQelString& out, const char* symbol);
    static const char* MinusSign() { return "<mo>&#x2212;</mo>"; }
    static const char* Unprintable() { return "<merror><mtext>?</mtext></merror>"; }
};

#endif
