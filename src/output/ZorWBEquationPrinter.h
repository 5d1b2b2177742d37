#ifndef ZORWB_EQUATIONPRINTER_H
#define ZORWB_EQUATIONPRINTER_H

#include "ZorWBxExport.h"
#include "qel/ZorQelString.h"
#include "values/ZorWBValue.h"

class ZorWBEquation;
class ZorWBExpression;
class ZorWBFactory;

// Writes factory expressions, values, equations and whole factories in the
// equation language, so that reading the text of an expression back (for
// instance ReadZorWBExpression of the text followed by ";") into the same
// factory gives an expression IsEqualTo the original, for every shape that
// the language can write:
// - numbers as ZorWBAppendValueText writes them (reals always with a point
//   or an exponent, whatever the locale), variables by name;
// - + - * / ^ with the fewest brackets that keep the tree; a sum operand of
//   the shapes that CreateSub folds a sign into (a negative number, a product
//   led by a negative number, a quotient of a negative number) is written
//   after a minus: Sum(a, -3) as "a - 3", Sum(a, Product(-2, b)) as
//   "a - 2 * b", Sum(a, Product(-1, b)) as "a - b"; Product(-1, b) alone as
//   "-b" (where reading "-b" gives it back, else as "-1 * b");
// - functions, min and max with all their operands, step with its four
//   parameters, round with three operands, int(f, x) and black-box calls as
//   calls; IfThenElse as "if (c) then (a) else (b)", its condition made of
//   ==, !=, <=, > (Not(LessEqual(a, b)) is "a > b"), "!(...)" around a
//   comparison, and "and" / "or" grouping from the left.
// An equation is written "left REL right;", which reads back to the root
// CreateSub(left, right): a root Sum(A, B) whose B is a number, or a product
// or quotient led by a number, as "A REL -B;" (Sum(x, -5) with "=" as
// "x = 5;", Sum(x, 3) as "x = -3;", Sum(x, 0) as "x = 0;",
// Sum(x, Product(-1, y)) as "x = y;"), reading back to the same root; any
// other root R as "R REL 0;", which reads back as Sum(R, 0), equal in value.
// A root without relation is written "root;", and minimise and maximise as
// "root; /* minimize */" and "root; /* maximize */". A factory is written
// one equation a line.
//
// What the language cannot write exactly comes out in these forms:
// - a Sum or Product of more than two operands reads back nested to the
//   left (the language has only the binary + and *): equal in value;
// - UnaryMinus(x) as "-x", which reads back as Product(-1, x) (or as the
//   negated constant);
// - Root(x, n) as "x ^ (1 / n)", a power;
// - Not(Equal(a, b)) as "a != b" (a NotEqual; "!(a == b)" would read as the
//   equality), Implication(a, b) as "(not a) or b", and an "and" / "or"
//   whose right operand is itself an "and" / "or" with its operands swapped
//   (the language cannot bracket conditions): equal in value;
// - fractions of Pi other than Pi itself as "(n/d*Pi^p)", a product;
// - non-finite reals as 1e999, -1e999 and (0.0 / 0.0);
// - and, in forms that do not read back: intervals "[low, high]",
//   enumerations "{a, b}", booleans "true", "false", "unknown", "empty",
//   the undefined value "undefined", conditions outside a condition (in
//   brackets: "(a <= b)"), a condition that is not a comparison, both
//   operands of "and" / "or" compound (the right one in brackets), an
//   operator with an unusual number of operands (as Name(operands)), names
//   that are not identifiers, and a missing root ("?");
// - black-box calls read back as calls of new black boxes, which are never
//   equal to the original ones.
// Shared nodes are written at each of their uses; an expression whose text
// would so unfold to more than 16777216 nodes (ZorWBGraphWalk::
// MaxUnfoldedSize: a graph with much sharing can unfold exponentially) is
// written "?", as a missing root is. The walk uses an explicit
// stack: graphs of any depth print (a graph a million nodes deep included).
class ZORWBX_API ZorWBEquationPrinter {
  public:
    static ZorQelString Print(const ZorWBExpression* expression);
    // One line, as ZorWBAppendValueText writes it.
    static ZorQelString PrintValue(const ZorWBValue& value);
    // The equation with its relation and the final ";", without line break.
    static ZorQelString Print(const ZorWBEquation* equation);
    // Every equation in order, each followed by a line break.
    static ZorQelString Print(const ZorWBFactory& factory);
};

#endif
