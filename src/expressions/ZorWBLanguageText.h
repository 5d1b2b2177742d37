#ifndef ZORWB_LANGUAGETEXT_H
#define ZORWB_LANGUAGETEXT_H

#include "ZorWBxExport.h"
#include "expressions/ZorWBEquationType.h"
#include "expressions/ZorWBExpressionType.h"
#include "qel/ZorQelString.h"
#include "values/ZorWBValue.h"

// How the equation language writes numbers, values and operators: the part
// that the printer of parsed models and the printer of factory expressions
// share.

// How tightly a printed form binds, loosest first: conditions, + and -,
// * and /, a leading unary minus, ^, and the forms that never need brackets
// (numbers, names, calls, bracketed text).
enum class ZorWBBinding : int { Condition, Additive, Multiplicative, Unary, Power, Primary };

// The binding of the infix operator of a type: Sum and Minus additive,
// Product and Quotient multiplicative, Power power; Condition for the others.
ZORWBX_API ZorWBBinding ZorWBInfixBinding(ZorWBExpressionType type);

// Whether an operand of an infix operator needs brackets, from the
// operand's binding: the left operand of a left-grouping operator when it
// binds less tightly, a right operand also when it binds as tightly; the
// reverse for the right-grouping ^.
ZORWBX_API bool ZorWBNeedsBrackets(ZorWBExpressionType type, bool leftOperand,
                                   ZorWBBinding operand);

// The relation of an equation as written between its sides (" = ", " != ",
// " <= ", " < ", " >= ", " > "), or null for the types without one.
ZORWBX_API const char* ZorWBRelationText(ZorWBEquationType type);

// Whether a value is written with a leading minus sign (a negative integer
// or real, minus zero included; not NaN).
ZORWBX_API bool ZorWBIsNegativeNumber(const ZorWBValue& value);

// Appends a value as the language writes it, whatever the process locale:
// - integers in decimal;
// - reals in their shortest round-trip form, always with a point or an
//   exponent (".0" is added where the form would read back as an integer:
//   2.0, -0.0), the infinities as 1e999 and -1e999 (which read back as
//   them), NaN as (0.0 / 0.0);
// - Pi as "Pi", other fractions as "(n/d*Pi^p)", without "/1", with "*Pi"
//   for the power 1 and no Pi for the power 0: "(1/2*Pi)", "(180*Pi^-1)";
// and, in forms that do not read back:
// - intervals as "[low, high]", enumerations as "{a, b, c}" ("{low .. high}"
//   when held as an interval, "{any}" and "{}" for the whole and the empty
//   set), booleans as "true", "false", "unknown" and "empty", the undefined
//   value as "undefined".
ZORWBX_API void ZorWBAppendValueText(ZorQelString& text, const ZorWBValue& value);

// Appends an integer or real value with its sign changed, as written after
// a minus sign (-5 as 5, the smallest integer included); other kinds as
// ZorWBAppendValueText writes them.
ZORWBX_API void ZorWBAppendNegatedText(ZorQelString& text, const ZorWBValue& value);

#endif
