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

#endif
