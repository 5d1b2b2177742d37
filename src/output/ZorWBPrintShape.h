#ifndef ZORWB_PRINTSHAPE_H
#define ZORWB_PRINTSHAPE_H

#include "ZorWBxExport.h"
#include "expressions/ZorWBLanguageText.h"
#include "qel/ZorQelString.h"

class ZorWBExpression;

// The shapes of factory expressions that the printers write alike, whatever
// their output (the equation language, MathML): which nodes are infix, which
// are written after a minus sign, and how tightly each printed form binds.
// The bindings are those of ZorWBLanguageText, so every printer brackets by
// the same precedence (ZorWBNeedsBrackets).
class ZORWBX_API ZorWBPrintShape {
  public:
    // Sums and Products of two or more operands; Quotient, Power and Root of
    // two.
    static bool IsInfix(const ZorWBExpression* e);
    // A constant holding a negative integer or real.
    static bool IsNegativeConstant(const ZorWBExpression* e);
    // Product(-1, b) that can be written "-b" (alone, afterMinus false) or
    // "a - b" (in a sum, afterMinus true): b is not itself a shape whose sign
    // the reader would fold.
    static bool IsPlainNegation(const ZorWBExpression* e, bool afterMinus);
    // The shapes that CreateSub makes of a - b: a negative constant, a
    // product led by a negative constant, a quotient of a negative constant.
    // In a sum they are written after a minus.
    static bool IsNegatedShape(const ZorWBExpression* e);
    // The shapes that CreateSub(a, b) makes of a number or of a product or
    // quotient led by one, whatever its sign: an equation root Sum(A, B) with
    // such a B reads back from "A REL b", b written as the negation of B.
    static bool IsSubtractedShape(const ZorWBExpression* e);
    // How tightly the printed form of e binds: a negative number, a unary
    // minus and a plain negation as Unary, the infix operators by their
    // type, everything else Primary.
    static ZorWBBinding BindingOf(const ZorWBExpression* e);
    // The binding of the negation of a negated shape (written after "-").
    static ZorWBBinding NegatedBindingOf(const ZorWBExpression* e);
    // The name a call of e is written with: the black box's name, the
    // function name of the type, or the type's member name.
    static ZorQelString CallName(const ZorWBExpression* e);
    // The name a call of a type is written with, parsed models included:
    // its function name, or its member name; null for an unknown type.
    static const char* TypeCallName(ZorWBExpressionType type);
    // The expression, or null (which the printers write as a placeholder)
    // when it unfolds to a tree too large to write out.
    static const ZorWBExpression* Printable(const ZorWBExpression* e);
};

#endif
