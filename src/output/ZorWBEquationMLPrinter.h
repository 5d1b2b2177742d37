#ifndef ZORWB_EQUATIONMLPRINTER_H
#define ZORWB_EQUATIONMLPRINTER_H

#include "ZorWBxExport.h"
#include "qel/ZorQelString.h"
#include "values/ZorWBValue.h"

class ZorWBEquation;
class ZorWBExpression;
class ZorWBFactory;
class ZorWBModel;
class ZorWBNode;

// Writes factory expressions, values, equations and parsed models as MathML
// presentation markup, each as one <math> element in the MathML namespace
// (equations in block display, expressions and values inline), in ASCII
// (see ZorWBMathMLText).
//
// Forms:
// - numbers as <mn>, a negative one after a minus sign; names as <mi>;
//   values as ZorWBMathMLText::AppendValue writes them (intervals [a, b],
//   enumerations {a, b}, fractions of Pi as fractions);
// - sums and differences with + and the minus sign, a sum operand of a
//   negated shape after a minus sign as in the text printer ("a - 3",
//   "a - 2 b"); products with the dot operator, or an invisible times
//   between a number and a following name or call ("2 x", "3 sin(x)");
// - quotients as <mfrac>, powers as <msup>, square roots as <msqrt>, other
//   roots as <mroot>, abs, floor and ceil between their bars and brackets;
// - if-then-else as a cases layout: a brace before a table of two rows,
//   "value if condition" and "value otherwise";
// - comparisons with =, the not-equal sign, <=, <, >=, >; "and", "or",
//   implication and negation with the logical signs;
// - int(f, x) as an integral sign, f, d and x; every other function, min,
//   max, round, mod, step (with its four parameters) and black-box calls as
//   name(arguments) with the function-application operator.
// Brackets follow the precedence of the text printer (ZorWBNeedsBrackets
// over the bindings of ZorWBPrintShape), where the layout itself does not
// delimit its operand: a fraction, a superscript, a radical, bars and the
// arguments of a call need none, and a fraction binds like a power (so
// (a/b)^2 keeps its brackets and a * b/c needs none).
//
// Parsed models are written as they were read, units included: a number or
// a bracketed term followed by its unit in upright type ("10 mm",
// "(a + b) deg"), the degree sign, ' and " as the degree, prime and double
// prime signs. Binary minus and unary minus of the model are written as
// read. The factory has no units: its numbers are in base units.
//
// A missing node and an expression that would unfold to more than
// ZorWBGraphWalk::MaxUnfoldedSize nodes are written as an <merror> holding
// "?". Walks use an explicit stack: graphs of any depth print.
class ZORWBX_API ZorWBEquationMLPrinter {
  public:
    static ZorQelString Print(const ZorWBExpression* expression);
    static ZorQelString PrintValue(const ZorWBValue& value);
    // "root REL 0", or "A REL B" when the root is A - B in a negated shape,
    // as the text printer writes it.
    static ZorQelString Print(const ZorWBEquation* equation);
    // One element per equation, each followed by a line break.
    static ZorQelString Print(const ZorWBFactory& factory);

    // A node of a parsed model: an equation (block) or a term (inline).
    static ZorQelString Print(const ZorWBNode* node);
    // One element per equation of the model, each followed by a line break.
    static ZorQelString Print(const ZorWBModel& model);
};

#endif
