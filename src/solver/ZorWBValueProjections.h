#ifndef ZORWB_VALUEPROJECTIONS_H
#define ZORWB_VALUEPROJECTIONS_H

#include <vector>

#include "expressions/ZorWBExpressionType.h"
#include "values/ZorWBEnvironment.h"
#include "values/ZorWBValue.h"

class ZorWBExpression;

// Propagation through the value functions, for every node type: the forward
// image of a node's children (a value function of the values layer) and the
// backward narrowing of its children from the node's set (an inverse
// function of the values layer, or the classical projection written with
// value functions). This is the path of the kinds the tape does not handle:
// integers, enumerations, booleans, logic, comparisons, if-then-else,
// rounding, modulo, steps, and real operators outside the tape's table.
//
// The values layer rounds to nearest, so a narrowed real set is widened by
// a relative hair before it narrows a domain; inverse functions that report
// an operand combination they cannot handle (their error code) narrow
// nothing.
namespace ZorWBValueProjection {

// The node's value from its children's (the node itself is read for its
// parameters and type only).
ZorWBValue Forward(const ZorWBEnvironment& environment, const ZorWBExpression& node,
                   const std::vector<const ZorWBValue*>& children);

// Narrows the children of node (in place) to what can produce a value of
// result. Black boxes and integrals narrow nothing.
void Backward(const ZorWBEnvironment& environment, const ZorWBExpression& node,
              const ZorWBValue& result, const std::vector<ZorWBValue*>& children);

// value ∩ candidate, with a real candidate widened by a relative hair; an
// undefined candidate narrows nothing.
void Narrow(const ZorWBEnvironment& environment, ZorWBValue& value, const ZorWBValue& candidate);

// Whether a value holds no element.
bool IsEmptyValue(const ZorWBEnvironment& environment, const ZorWBValue& value);

}  // namespace ZorWBValueProjection

#endif
