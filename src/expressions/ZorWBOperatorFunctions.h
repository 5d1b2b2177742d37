#ifndef ZORWB_OPERATORFUNCTIONS_H
#define ZORWB_OPERATORFUNCTIONS_H

#include "expressions/ZorWBExpressionType.h"

class ZorWBEnvironment;
class ZorWBValue;

// The value functions of the operator types, as the nodes' DoEval applies
// them, for the evaluations that compute without nodes (compiled programs
// over values); and their shortcuts.
//
// A shortcut does what the value function of its type does when the
// general kind dispatch picks a real interval, written without the
// dispatch: the same interval function on the same readings, the same
// environment recorded on the operands, the same result (a real interval
// without environment). It computes result from a and b and answers true,
// or answers false, touching nothing, when the kinds are not those it
// takes; the caller then goes the general way. The node walk
// (ZorWBOperator::EvaluateFast and FoldValue), the compiled value programs
// and the compiled programs over values all take their shortcuts from
// here, so that they agree to the bit.

using ZorWBUnaryValueFunction = ZorWBValue (*)(const ZorWBEnvironment&, const ZorWBValue&);
using ZorWBBinaryValueFunction = ZorWBValue (*)(const ZorWBEnvironment&, const ZorWBValue&,
                                                const ZorWBValue&);
using ZorWBValueShortcut = bool (*)(const ZorWBEnvironment& environment, const ZorWBValue& a,
                                    const ZorWBValue& b, ZorWBValue& result);

// The value function of a type of the unary or trigonometric families
// (Round of one operand included, Step not); null for any other type.
ZorWBUnaryValueFunction ZorWBUnaryValueFunctionOf(ZorWBExpressionType type);
// The value function of a type of the binary and two-operand Boolean
// families, or one step of the left fold of Sum, Product, Min and Max;
// null for any other type.
ZorWBBinaryValueFunction ZorWBBinaryValueFunctionOf(ZorWBExpressionType type);

// The shortcut of a type: for Sum, Product, Min and Max one step of the
// left fold (result = a op b, a real interval with an integer, a real or a
// real interval); for Quotient the same pairs; for Power those pairs whose
// exponent is one integral number; for the unary and trigonometric types
// with an interval function a real interval a (b is not read). Null for
// every other type.
ZorWBValueShortcut ZorWBValueShortcutOf(ZorWBExpressionType type);

#endif
