#ifndef ZORWB_REALFUNCTIONS_H
#define ZORWB_REALFUNCTIONS_H

#include "expressions/ZorWBExpressionType.h"
#include "values/ZorWBRealPower.h"

// The real-number counterparts of the operators' value functions, as the
// plain evaluation (ZorWBExpression::Eval) applies them. The node walk and
// the compiled real programs (ZorWBRealProgram) both take their functions
// from here, so the two evaluations agree to the bit.

using ZorWBUnaryRealFunction = double (*)(double);
using ZorWBBinaryRealFunction = double (*)(double, double);
// Comparisons read the environment's tolerance.
using ZorWBLogicalRealFunction = double (*)(double, double, double tolerance);

// The function of an operator type of the unary, trigonometric, algebraic
// (one fold step), binary or two-operand Boolean families; null for a type
// outside the family.
ZorWBUnaryRealFunction ZorWBUnaryRealFunctionOf(ZorWBExpressionType type);
ZorWBBinaryRealFunction ZorWBBinaryRealFunctionOf(ZorWBExpressionType type);
ZorWBLogicalRealFunction ZorWBLogicalRealFunctionOf(ZorWBExpressionType type);

class ZorWBValue;
// The double that stands for a leaf's value in the plain evaluation: the
// number itself, 1 or 0 for a boolean that is true or false, the midpoint of
// an interval or enumeration, NaN for what stands for no number (undefined,
// unknown or empty). Every real reading of a value (Eval, black-box
// arguments, compiled real programs) goes through it.
double ZorWBRealReading(const ZorWBValue& value);

#endif
