#ifndef ZORWB_MODELPRINTER_H
#define ZORWB_MODELPRINTER_H

#include "ZorWBxExport.h"
#include "qel/ZorQelString.h"
#include "values/ZorWBValue.h"

class ZorWBModel;
class ZorWBNode;

// Writes parsed-model nodes back in the equation language, so that reading
// the text again gives an equal model (node IsEqual) for everything the
// parser can build:
// - numbers as ZorWBAppendValueText writes them: integers in decimal, reals
//   in their shortest round-trip form with a point or an exponent (the
//   infinities as 1e999 and -1e999, which read back as them), Pi as "Pi";
// - operators with their usual symbols (+ - * / ^, unary -, == != < <= > >=,
//   and, or, !) and the fewest brackets that keep the tree: the left operand
//   of a left-associative operator is bracketed when it binds less tightly,
//   the right one also when it binds as tightly (and the reverse for ^);
// - functions and black-box calls as name(arguments), conditionals as
//   "if (c) then (a) else (b)"; a unit follows its number ("10 mm") or the
//   bracketed node it is attached to ("(a + b) deg");
// - an equation as "left = right;" or "term;", a model one equation a line;
//   an objective, which the language cannot write, as its expression (the
//   left term, or "left - right") followed by "; /* minimize */" or
//   "; /* maximize */", which reads back as a one-term equation.
// What the language cannot write comes out readable but not readable back:
// a missing child as "?", a fraction other than Pi as "(n/d*Pi^p)", values of
// other kinds in the forms of ZorWBAppendValueText, an operator without its usual arity or
// function name as Name(arguments), and an "and"/"or" right operand that is
// itself an "and"/"or" in brackets.
// The walk uses an explicit stack: any depth prints.
class ZORWBX_API ZorWBModelPrinter {
  public:
    static ZorQelString Print(const ZorWBNode* node);
    static ZorQelString Print(const ZorWBModel& model);
    // Appends a value as the language writes a number (ZorWBAppendValueText).
    static void AppendValue(ZorQelString& text, const ZorWBValue& value);
};

#endif
